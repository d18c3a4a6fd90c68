// The worksets file at the sizes an office reaches: the menu's list of 1,000
// worksets, and the manager's read of one workset of 1,000 files, on disk.
// Target: under 20 ms each natively.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "settings/settings_table.h"
#include "sim/sim_host.h"
#include "worksets/workset_store.h"

namespace {

using namespace tavlet;

constexpr int kCount = 1000;

class BenchUser final : public UserEnvironment {
 public:
  bool AppDataFolder(std::string&) override { return false; }
  std::string ModuleFolder() override { return ""; }
  bool UserName(std::string&) override { return false; }
};

std::string TempPath(const char* name) { return (std::filesystem::temp_directory_path() / name).string(); }

void WriteFile(const std::string& path, const std::string& bytes) {
  NativeFileSystem().WriteFileAtomic(path, bytes);
}

struct Store {
  explicit Store(const std::string& path) {
    WriteString(settings, keys::WorksetsPath, path);
  }
  MemoryRegistry registry;
  SettingsStore settings{registry, DefaultSettingsRoot()};
  sim::SimHost host;
  BenchUser user;
  WorksetStore worksets{{NativeFileSystem(), settings, *host.Boxes(), user, "", nullptr, nullptr}};
};

void BM_ListWorksetsForMenu(benchmark::State& state) {
  const std::string path = TempPath("tavlet_bench_menu.worksets");
  std::string bytes;
  for (int i = 0; i < kCount; ++i)
    bytes += "[工作集 " + std::to_string(i) + "]\r\n文件1=C:\\Jobs\\" + std::to_string(i) + "\\a.dwg,0\r\n";
  WriteFile(path, bytes);
  Store store(path);
  std::size_t listed = 0;
  for (auto _ : state) {
    int nextId = 5000;
    content::IdMap<DrawingPath> list;
    store.worksets.ListWorksetsForMenu(nextId, list, true, state.range(0) != 0);
    listed = list.size() / 2;
    benchmark::DoNotOptimize(list);
  }
  // The names share a 2,000-character buffer: only the first ones reach the menu.
  state.counters["worksets_listed"] = static_cast<double>(listed);
  NativeFileSystem().Remove(path);
}
BENCHMARK(BM_ListWorksetsForMenu)->Arg(0)->Arg(1)->ArgName("sorted")->Unit(benchmark::kMillisecond);

void BM_ReadWorkset(benchmark::State& state) {
  const std::string path = TempPath("tavlet_bench_read.worksets");
  std::string bytes = "[Site plans]\r\n";
  for (int i = 1; i <= kCount; ++i) bytes += "File" + std::to_string(i) + "=C:\\w\\" + std::to_string(i) + ".dwg,0\r\n";
  WriteFile(path, bytes);
  std::size_t read = 0;
  for (auto _ : state) {
    ProfileFile file(NativeFileSystem(), path, true);
    std::vector<DrawingPath> list;
    read = ReadWorkset(file, "Site plans", list, NativeFileSystem());
    benchmark::DoNotOptimize(list);
  }
  if (read != kCount) state.SkipWithError("workset read back short");
  state.counters["files"] = static_cast<double>(read);
  NativeFileSystem().Remove(path);
}
BENCHMARK(BM_ReadWorkset)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
