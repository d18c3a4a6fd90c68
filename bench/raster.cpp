// Reduction, filters and the whole thumbnail pipeline, with stb_image_resize's box
// filter on the same sizes for comparison. bench/run_raster.sh prints the ratios.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

#include "previews/adjust.h"
#include "previews/dib.h"
#include "previews/raster/raster.h"
#include "settings/memory_registry.h"
#include "settings/settings_store.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#define STB_IMAGE_RESIZE_IMPLEMENTATION
#define STB_IMAGE_RESIZE_STATIC
#include <stb/stb_image_resize.h>
#pragma GCC diagnostic pop

// Every allocation through operator new is counted, so that a benchmark can report
// how many its subject makes per run.
namespace {
std::atomic<long> allocations{0};
}

void* operator new(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

using tavlet::IS40_ResizeImage;

std::vector<std::uint8_t> Capture(int width, int height) {
  // A drawing-like picture: a flat background with thin lines and some noise.
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 3, 0);
  std::mt19937 random(42);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      std::uint8_t* p = &pixels[(static_cast<std::size_t>(y) * width + x) * 3];
      const bool line = x % 37 == 0 || y % 29 == 0 || (x + y) % 101 == 0;
      p[0] = line ? 255 : static_cast<std::uint8_t>(random() & 15);
      p[1] = line ? 200 : 0;
      p[2] = line ? 40 : 0;
    }
  }
  return pixels;
}

struct Size {
  int w, h, dw, dh;
};
constexpr Size kSizes[] = {{1920, 1080, 160, 90}, {1920, 1080, 192, 108}, {2560, 1440, 213, 120}};

void Report(benchmark::State& state, long allocationsBefore, int pixels) {
  state.counters["allocs_per_run"] = benchmark::Counter(
      static_cast<double>(allocations.load() - allocationsBefore) / static_cast<double>(state.iterations()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pixels));
}

void Reduce_Ours(benchmark::State& state) {
  const Size s = kSizes[state.range(0)];
  const auto source = Capture(s.w, s.h);
  std::vector<std::uint8_t> target(static_cast<std::size_t>(s.dw) * s.dh * 3);
  const long before = allocations.load();
  for (auto _ : state) {
    const int ok = IS40_ResizeImage(source.data(), s.w, s.h, s.w * 3, target.data(), s.dw, s.dh, s.dw * 3, 3,
                                    tavlet::raster::kResizeReduce, 0);
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(target.data());
  }
  Report(state, before, s.w * s.h);
}

// The area average held to the plain path, where the processor would allow more.
void Reduce_OursPlain(benchmark::State& state) {
  const bool previous = tavlet::raster::AllowVectorAreaPath(false);
  Reduce_Ours(state);
  tavlet::raster::AllowVectorAreaPath(previous);
}

// The floor of any reduction: every source byte read once, summed.
void Read_Source(benchmark::State& state) {
  const Size s = kSizes[state.range(0)];
  const auto source = Capture(s.w, s.h);
  for (auto _ : state) {
    std::uint64_t total = 0;
    for (const std::uint8_t byte : source) total += byte;
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(s.w) * s.h);
}

void Reduce_Stb(benchmark::State& state) {
  const Size s = kSizes[state.range(0)];
  const auto source = Capture(s.w, s.h);
  std::vector<std::uint8_t> target(static_cast<std::size_t>(s.dw) * s.dh * 3);
  const long before = allocations.load();
  for (auto _ : state) {
    const int ok = stbir_resize_uint8_generic(source.data(), s.w, s.h, s.w * 3, target.data(), s.dw, s.dh,
                                              s.dw * 3, 3, STBIR_ALPHA_CHANNEL_NONE, 0, STBIR_EDGE_CLAMP,
                                              STBIR_FILTER_BOX, STBIR_COLORSPACE_LINEAR, nullptr);
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(target.data());
  }
  Report(state, before, s.w * s.h);
}

void Sharpen_Thumbnail(benchmark::State& state) {
  const auto source = Capture(160, 90);
  std::vector<std::uint8_t> target(source.size());
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavlet::IS40_SharpenImage(source.data(), 160, 90, 3, 480, target.data(), 480, 20, 7));
  }
  state.SetItemsProcessed(state.iterations() * 160 * 90);
}

void Gamma_Thumbnail(benchmark::State& state) {
  auto image = Capture(160, 90);
  for (auto _ : state) {
    benchmark::DoNotOptimize(tavlet::IS40_AdjustGamma(image.data(), 160, 90, 3, 480, 2.5, 0));
  }
  state.SetItemsProcessed(state.iterations() * 160 * 90);
}

// Capture to packed thumbnail, the dark-background settings (gamma and sharpening
// both on), read from a store at every run as the bar does.
void Pipeline(benchmark::State& state) {
  const Size s = kSizes[state.range(0)];
  const auto capture = Capture(s.w, s.h);
  tavlet::MemoryRegistry registry;
  tavlet::SettingsStore store(registry, tavlet::DefaultSettingsRoot());
  const long before = allocations.load();
  for (auto _ : state) {
    tavlet::AdjustedPreview preview = tavlet::AdjustPreview(capture.data(), s.w, s.h, s.dw, s.dh, true, store);
    benchmark::DoNotOptimize(preview.dib);
    tavlet::DibFree(preview.dib);
  }
  Report(state, before, s.w * s.h);
}

BENCHMARK(Reduce_Ours)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(Reduce_OursPlain)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(Read_Source)->Arg(2)->Unit(benchmark::kMicrosecond);
BENCHMARK(Reduce_Stb)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK(Sharpen_Thumbnail)->Unit(benchmark::kMicrosecond);
BENCHMARK(Gamma_Thumbnail)->Unit(benchmark::kMicrosecond);
BENCHMARK(Pipeline)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
