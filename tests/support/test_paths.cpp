#include "support/test_paths.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#ifdef _WIN32
#include <process.h>
#define getpid _getpid
#else
#include <unistd.h>
#endif

namespace tavlet::testing {

std::string WinePath(const std::string& unixPath) {
  std::string path = "Z:" + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

std::string SharedDir() {
  std::error_code error;
  std::filesystem::path dir(TAVLET_SHARED_DIR);
  if (!std::filesystem::is_directory(dir / "testdata", error)) return {};
  return dir.string();
}

std::string SharedDrawing(const std::string& fileName) {
  const std::string dir = SharedDir();
  if (dir.empty()) return {};
  return (std::filesystem::path(dir) / "testdata" / "dwg" / fileName).string();
}

std::string SamplesDir() { return (std::filesystem::path(TAVLET_SOURCE_DIR) / "samples").string(); }

namespace {

// Removes the folders handed out when the test program ends.
struct TempFolders {
  std::vector<std::filesystem::path> made;
  ~TempFolders() {
    std::error_code error;
    for (const auto& dir : made) std::filesystem::remove_all(dir, error);
  }
};

}  // namespace

std::string MakeTempFolder(const std::string& tag) {
  static std::atomic<int> counter{0};
  static TempFolders folders;
  std::error_code error;
  auto base = std::filesystem::temp_directory_path(error);
  // CTest runs test programs side by side: the process id keeps their folders apart.
  auto dir = base / ("tavlet-test-" + tag + "-" + std::to_string(getpid()) + "-" + std::to_string(counter++));
  std::filesystem::remove_all(dir, error);
  std::filesystem::create_directories(dir, error);
  folders.made.push_back(dir);
  return dir.string();
}

}  // namespace tavlet::testing
