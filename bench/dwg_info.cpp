// `dwgthumb info` over 1,000 generated drawings of 2 MB each: version string plus a
// full thumbnail load per file. The target is under one second for all of them,
// warm. The files are sparse past their picture, as only the head, the image block
// and the used entry are ever read.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "previews/dwg_thumbnail.h"
#include "previews/dwg_version.h"
// The bench build has no test-support library; the writer is one small file.
#include "support/dwg_writer.cpp"

namespace {

constexpr int kFiles = 1000;
constexpr std::uintmax_t kFileSize = 2u * 1024 * 1024;

const std::vector<std::string>& Drawings() {
  static const std::vector<std::string> paths = [] {
    std::filesystem::path dir = std::filesystem::temp_directory_path() / "tavlet-bench-dwg";
    std::filesystem::create_directories(dir);
    tavlet::testing::DibShape dib;
    dib.width = 256;
    dib.height = 160;
    const std::string bytes = tavlet::testing::MakeDwgWithBitmap("AC1021", dib, 0x1B);
    std::vector<std::string> out;
    for (int i = 0; i < kFiles; ++i) {
      std::filesystem::path file = dir / ("drawing" + std::to_string(i) + ".dwg");
      if (!std::filesystem::exists(file) || std::filesystem::file_size(file) != kFileSize) {
        std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
        std::filesystem::resize_file(file, kFileSize);
      }
      out.push_back(file.string());
    }
    return out;
  }();
  return paths;
}

void BM_InfoOnThousandDrawings(benchmark::State& state) {
  const auto& paths = Drawings();
  tavlet::FileSystem& fs = tavlet::NativeFileSystem();
  for (auto _ : state) {
    int pictures = 0;
    for (const std::string& path : paths) {
      std::string version;
      tavlet::ReadDrawingVersionString(fs, path, version);
      tavlet::DwgThumbnail thumbnail(fs);
      thumbnail.Load(path, true);
      pictures += thumbnail.HasDib() ? 1 : 0;
      benchmark::DoNotOptimize(version.data());
    }
    if (pictures != kFiles) state.SkipWithError("a generated drawing gave no picture");
  }
  state.SetItemsProcessed(state.iterations() * kFiles);
}
BENCHMARK(BM_InfoOnThousandDrawings)->Unit(benchmark::kMillisecond)->MinTime(2.0);

}  // namespace

BENCHMARK_MAIN();
