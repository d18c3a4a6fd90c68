// The whole context menu built for a right click on a large drawing (the content
// benchmark's 100,000 entities) with 100 recent files, 100 worksets and 50
// templates, over the module on the simulated host (bench/menu_world.h).
#include <benchmark/benchmark.h>

#include "menu_world.h"

namespace {

using namespace tavlet;
using namespace tavlet::bench;

void BM_BuildContextMenu(benchmark::State& state) {
  World w;
  std::size_t entries = 0;
  for (auto _ : state) {
    menus::MenuEntry top = w.menu->Build(w.doc);
    w.menu->EndTracking();
    entries = CountEntries(top);
    benchmark::DoNotOptimize(top);
    state.PauseTiming();
    w.h.host.Faults().ClearLog();
    state.ResumeTiming();
  }
  state.counters["entries"] = static_cast<double>(entries);
  state.counters["hyperlinks"] = static_cast<double>(w.menu->Lists().references.hyperlinks.size());
  state.counters["worksetIds"] = static_cast<double>(w.menu->Lists().worksets.size());
}
BENCHMARK(BM_BuildContextMenu)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
