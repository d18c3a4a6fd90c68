// The whole context menu for a right click on the 100,000-entity drawing, with
// 100 recent files, 100 worksets and 50 templates (bench/menu_world.h), timed
// by hand so that the same program runs natively and under Wine, where Google
// Benchmark has no build. Prints the median and the fastest of the builds, in
// wall-clock and in the thread's CPU time.
#ifdef _WIN32
#include <windows.h>
#else
#include <time.h>
#endif

#include <algorithm>
#include <cstdio>
#include <vector>

#include "menu_world.h"

namespace {

constexpr int kWarmUp = 3;
constexpr int kRounds = 25;

// <chrono> won't compile under the project's GBK execution character set (its
// unit suffixes hold a micro sign), hence the platforms' own clocks.
double WallMilliseconds() {
#ifdef _WIN32
  LARGE_INTEGER now, frequency;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
#else
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1000.0 + static_cast<double>(now.tv_nsec) / 1e6;
#endif
}

double ThreadCpuMilliseconds() {
#ifdef _WIN32
  FILETIME created, exited, kernel, user;
  GetThreadTimes(GetCurrentThread(), &created, &exited, &kernel, &user);
  auto ticks = [](const FILETIME& t) {
    return static_cast<double>((static_cast<unsigned long long>(t.dwHighDateTime) << 32) | t.dwLowDateTime);
  };
  return (ticks(kernel) + ticks(user)) / 10000.0;
#else
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1000.0 + static_cast<double>(now.tv_nsec) / 1e6;
#endif
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main() {
  using namespace tavlet;
  bench::World w;
  std::size_t entries = 0;
  std::vector<double> wall, cpu;
  for (int round = 0; round < kWarmUp + kRounds; ++round) {
    const double start = WallMilliseconds();
    const double cpuStart = ThreadCpuMilliseconds();
    menus::MenuEntry top = w.menu->Build(w.doc);
    w.menu->EndTracking();
    const double cpuEnd = ThreadCpuMilliseconds();
    const double end = WallMilliseconds();
    entries = bench::CountEntries(top);
    // The fault plan's call log grows with every build; it is the simulation's, not the bar's.
    w.h.host.Faults().ClearLog();
    if (round < kWarmUp) continue;
    wall.push_back(end - start);
    cpu.push_back(cpuEnd - cpuStart);
  }
  std::printf("context menu of %zu entries, %d builds: wall median %.1f ms, fastest %.1f ms; "
              "CPU median %.1f ms, fastest %.1f ms\n",
              entries, kRounds, Median(wall), *std::min_element(wall.begin(), wall.end()), Median(cpu),
              *std::min_element(cpu.begin(), cpu.end()));
  return entries > 0 ? 0 : 1;
}
