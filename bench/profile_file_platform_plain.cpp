// The workset load of bench_profile_file (1,000 files added to one section, one
// write each, then the section read back), timed through ProfileFile and through
// the platform's own private-profile functions in the same process, so the two
// can be compared under Wine. A plain program: Google Benchmark has no build for
// the Windows cross-compilers here. (No <chrono>: its "µs" has no code-page 936
// form, so it doesn't compile with the project's execution character set.)
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "settings/profile_file.h"

namespace {

constexpr int kFiles = 1000;
constexpr int kRounds = 3;

std::string Key(int i) { return "文件" + std::to_string(i); }
std::string Value(int i) { return "C:\\Jobs\\114\\图纸\\plan-" + std::to_string(i) + ".dwg,0"; }

template <typename Work>
double MedianMilliseconds(Work work) {
  std::vector<double> times;
  for (int round = 0; round < kRounds; ++round) {
    LARGE_INTEGER frequency, start, end;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    work();
    QueryPerformanceCounter(&end);
    times.push_back(1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart));
  }
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

}  // namespace

int main() {
  char temp[MAX_PATH] = {};
  GetTempPathA(MAX_PATH, temp);
  const std::string ours = std::string(temp) + "tavlet_bench_ours.worksets";
  const std::string platform = std::string(temp) + "tavlet_bench_platform.worksets";

  std::size_t ourLines = 0, platformBytes = 0;
  const double ourTime = MedianMilliseconds([&] {
    DeleteFileA(ours.c_str());
    tavlet::ProfileFile file(tavlet::NativeFileSystem(), ours, true);
    for (int i = 1; i <= kFiles; ++i) file.WriteString("Site plans", Key(i), Value(i));
    std::vector<std::string> lines;
    file.GetSectionLines("Site plans", lines);
    ourLines = lines.size();
  });
  const double platformTime = MedianMilliseconds([&] {
    DeleteFileA(platform.c_str());
    for (int i = 1; i <= kFiles; ++i)
      WritePrivateProfileStringA("Site plans", Key(i).c_str(), Value(i).c_str(), platform.c_str());
    std::vector<char> buffer(32000, 0);
    platformBytes = GetPrivateProfileSectionA("Site plans", buffer.data(), 32000, platform.c_str());
  });
  DeleteFileA(ours.c_str());
  DeleteFileA(platform.c_str());

  std::printf("1,000 writes to one section, then the section read back (median of %d)\n", kRounds);
  std::printf("  ProfileFile                 %8.1f ms  (%zu lines read back)\n", ourTime, ourLines);
  std::printf("  platform profile functions  %8.1f ms  (%zu bytes read back)\n", platformTime, platformBytes);
  std::printf("  ratio ours / platform       %8.2f\n", ourTime / platformTime);
  return 0;
}
