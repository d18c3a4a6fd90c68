// One paint of the preview strip with 30 cells, on the recording canvas: the
// paint's own work (geometry, colours, marks, the host's read-only and active
// checks) without a device. bench_paint_gdi does the same on GDI under Wine.
#include <benchmark/benchmark.h>

#include "bar/tip_text.h"
#include "paint_scene.h"

namespace tavlet::bench {
namespace {

// Nothing recorded: the paint's own cost.
void BM_PaintThirtyCells(benchmark::State& state) {
  PaintScene scene;
  bar::RecordingCanvas canvas;
  canvas.quiet = true;
  const bar::StripPaintInputs inputs = scene.Inputs();
  int drawn = 0;
  for (auto _ : state) {
    drawn = bar::PaintStrip(canvas, inputs, scene.list, scene.layout, {});
    benchmark::DoNotOptimize(drawn);
  }
  state.counters["cells"] = drawn;
}
BENCHMARK(BM_PaintThirtyCells)->Unit(benchmark::kMicrosecond);

// Every call written down as text, as the tests read it.
void BM_PaintThirtyCellsRecorded(benchmark::State& state) {
  PaintScene scene;
  const bar::StripPaintInputs inputs = scene.Inputs();
  for (auto _ : state) {
    bar::RecordingCanvas canvas;
    bar::PaintStrip(canvas, inputs, scene.list, scene.layout, {});
    benchmark::DoNotOptimize(canvas.calls.data());
  }
}
BENCHMARK(BM_PaintThirtyCellsRecorded)->Unit(benchmark::kMicrosecond);

// With each cell's tip text made afresh, as the window's paint does.
void BM_PaintThirtyCellsWithTips(benchmark::State& state) {
  PaintScene scene;
  bar::RecordingCanvas canvas;
  canvas.quiet = true;
  const bar::StripPaintInputs inputs = scene.Inputs();
  const bar::TipCache cache;
  bar::StripPaintHooks hooks;
  std::size_t length = 0;
  hooks.tip = [&](const bar::DocEntry& entry) {
    length += bar::TipText(scene.host, scene.files, scene.settings, cache, entry.document).size();
  };
  for (auto _ : state) bar::PaintStrip(canvas, inputs, scene.list, scene.layout, hooks);
  benchmark::DoNotOptimize(length);
}
BENCHMARK(BM_PaintThirtyCellsWithTips)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tavlet::bench

BENCHMARK_MAIN();
