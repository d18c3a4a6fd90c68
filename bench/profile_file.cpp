// Adding 1,000 files to one workset section, one WriteString each, then reading the
// section back: the worksets file's worst everyday load. Target: under 50 ms natively.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "settings/profile_file.h"
#include "sim/memory_file_system.h"


namespace {

constexpr int kFiles = 1000;

std::string Key(int i) { return "文件" + std::to_string(i); }
std::string Value(int i) { return "C:\\Jobs\\114\\图纸\\plan-" + std::to_string(i) + ".dwg,0"; }

void AddAndReadBack(tavlet::FileSystem& files, const std::string& path, benchmark::State& state) {
  files.Remove(path);
  tavlet::ProfileFile file(files, path, true);
  for (int i = 1; i <= kFiles; ++i) file.WriteString("Site plans", Key(i), Value(i));
  std::vector<std::string> lines;
  file.GetSectionLines("Site plans", lines);
  // 1,000 entries overflow the 32,000-character section buffer; the read is cut there.
  if (lines.size() < kFiles / 2) state.SkipWithError("section read back short");
  benchmark::DoNotOptimize(lines.data());
}

void BM_ProfileFileInMemory(benchmark::State& state) {
  for (auto _ : state) {
    tavlet::MemoryFileSystem files;
    files.AddFolder("C:\\Data");
    AddAndReadBack(files, "C:\\Data\\user.worksets", state);
  }
}
BENCHMARK(BM_ProfileFileInMemory)->Unit(benchmark::kMillisecond);

void BM_ProfileFileOnDisk(benchmark::State& state) {
  const std::string path =
      (std::filesystem::temp_directory_path() / "tavlet_bench.worksets").string();
  for (auto _ : state) AddAndReadBack(tavlet::NativeFileSystem(), path, state);
  tavlet::NativeFileSystem().Remove(path);
}
BENCHMARK(BM_ProfileFileOnDisk)->Unit(benchmark::kMillisecond);


}  // namespace

BENCHMARK_MAIN();
