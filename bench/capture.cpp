// One capture of the active drawing's view, from the host's screen shot to the
// thumbnail stored in its entry, on the simulated host: the drawing is redrawn
// stale before each run and the strip docked at the top, so that a 1920 x 1080
// view gives 160 x 90 (the box mean) and a 2560 x 1440 one 213 x 120 (the area
// average). Dark background: gamma and sharpening both run.
// bench/run_capture.sh runs it beside Pillow's resize of the same sizes.
#include <benchmark/benchmark.h>

#include <random>

#include "bar/preview_capture.h"
#include "sim/module_harness.h"

namespace {

using namespace tavlet;

// Thin lines of a drawing over a black background, in the picture's own units.
sim::Picture DrawingPicture() {
  sim::Picture picture{1000, 1000, 0x000000, {}};
  std::mt19937 random(7);
  for (int i = 0; i < 300; ++i) {
    const int x0 = static_cast<int>(random() % 1000), y0 = static_cast<int>(random() % 1000);
    const int x1 = static_cast<int>(random() % 1000), y1 = static_cast<int>(random() % 1000);
    const std::uint32_t colors[] = {0xFFFFFF, 0xFF0000, 0x00FF00, 0xFFFF00, 0x00FFFF};
    picture.items.push_back({sim::PictureItem::Kind::Line, x0, y0, x1, y1, colors[i % 5]});
  }
  picture.items.push_back({sim::PictureItem::Kind::Rect, 50, 50, 950, 950, 0xFFFFFF});
  return picture;
}

struct View {
  long width, height, extent;
};
constexpr View kViews[] = {{1920, 1080, 106}, {2560, 1440, 136}};

void Capture(benchmark::State& state) {
  const View view = kViews[state.range(0)];
  sim::ModuleHarness h;
  const port::Document doc = h.OpenDrawing("C:\\d\\plan.dwg");
  h.host.Find(doc)->content.picture = DrawingPicture();
  h.host.SetViewSize(view.width, view.height);
  if (h.Load() != 0) {
    state.SkipWithError("the module did not load");
    return;
  }
  bar::BarModel& model = *h.Bar();
  bar::StripLayout layout;
  layout.SetDockSide(bar::kDockTop);
  layout.clientWidth = 1000;
  layout.clientHeight = view.extent + 2;
  layout.previewExtent = view.extent;
  layout.titleHeight = 16;
  layout.viewAspect = static_cast<double>(view.width) / static_cast<double>(view.height);
  bar::DocEntry* entry = model.Strip().FindEntry(doc);
  for (auto _ : state) {
    entry->previewDirty = true;
    bar::UpdatePreview(model, layout, entry);
    benchmark::DoNotOptimize(entry->previewDib.data());
  }
  if (entry->previewDirty || entry->previewDib.empty()) state.SkipWithError("nothing was captured");
  state.counters["thumbnail_w"] = entry->previewWidth;
  state.counters["thumbnail_h"] = entry->previewHeight;
  state.SetItemsProcessed(state.iterations() * view.width * view.height);
}

BENCHMARK(Capture)->DenseRange(0, 1)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
