// The kept thumbnails at their bound: each capture with KeepThumbnails on stores
// one picture and rewrites the whole file (4 MB of strip-sized pictures), and a
// module's load reads it once. Target: under 20 ms a store, on disk, natively.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "previews/dib.h"
#include "previews/thumbnail_cache.h"

namespace {

using namespace tavlet;

// A picture as the strip at the top keeps one: 69 x 52, 24 bits.
std::vector<unsigned char> Picture(unsigned char fill) {
  return std::vector<unsigned char>(kDibInfoHeaderSize + DibStride(69, 24) * 52, fill);
}

std::string Path(int i) { return "C:\\projects\\tower\\sheet-" + std::to_string(i) + ".dwg"; }

// A cache file filled to its bound; its path.
std::string FullCache() {
  const std::string file = (std::filesystem::temp_directory_path() / "tavlet-bench-thumbnails.bin").string();
  std::filesystem::remove(file);
  previews::ThumbnailCache cache(NativeFileSystem(), file);
  for (int i = 0; cache.Bytes() + 12000 < previews::kDefaultThumbnailCacheBytes; ++i)
    cache.Store(Path(i), 69, 52, Picture(static_cast<unsigned char>(i)));
  return file;
}

void BM_StoreIntoAFullCache(benchmark::State& state) {
  const std::string file = FullCache();
  previews::ThumbnailCache cache(NativeFileSystem(), file);
  const std::vector<unsigned char> picture = Picture(0x7F);
  int i = 0;
  for (auto _ : state) cache.Store(Path(100000 + i++), 69, 52, picture);
  state.counters["entries"] = static_cast<double>(cache.Entries().size());
  state.counters["bytes"] = static_cast<double>(cache.Bytes());
}
BENCHMARK(BM_StoreIntoAFullCache)->Unit(benchmark::kMillisecond);

void BM_LoadAFullCache(benchmark::State& state) {
  const std::string file = FullCache();
  for (auto _ : state) {
    previews::ThumbnailCache cache(NativeFileSystem(), file);
    benchmark::DoNotOptimize(cache.Entries().data());
  }
}
BENCHMARK(BM_LoadAFullCache)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
