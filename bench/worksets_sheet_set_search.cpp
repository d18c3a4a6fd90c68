// The sheet-set menu's recursive search for "*.dst" over a folder tree of 10,000
// files (100 folders of 100, one sheet set in ten), on disk.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "sheetsets/file_finder.h"

namespace {

constexpr int kFolders = 100;
constexpr int kFilesPerFolder = 100;

void BM_RecursiveDstSearch(benchmark::State& state) {
  const std::filesystem::path root = std::filesystem::temp_directory_path() / "tavlet_bench_dst";
  std::filesystem::remove_all(root);
  for (int f = 0; f < kFolders; ++f) {
    const std::filesystem::path folder = root / ("folder" + std::to_string(f / 10)) / ("sub" + std::to_string(f));
    std::filesystem::create_directories(folder);
    for (int i = 0; i < kFilesPerFolder; ++i)
      std::ofstream(folder / ("sheet" + std::to_string(i) + (i % 10 == 0 ? ".dst" : ".dwg")));
  }
  std::size_t found = 0;
  for (auto _ : state) {
    found = tavlet::sheetsets::FindFilesRecursive(tavlet::NativeFileSystem(), root.string(), "*.dst",
                                                   [](const std::string& path) { benchmark::DoNotOptimize(path); });
  }
  if (found != kFolders * kFilesPerFolder / 10) state.SkipWithError("wrong count of sheet sets");
  state.counters["found"] = static_cast<double>(found);
  std::filesystem::remove_all(root);
}
BENCHMARK(BM_RecursiveDstSearch)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
