// Sorting a list-view of 10,000 rows through the sortable list, by each kind of
// column the program's lists have: a path (text compared ignoring case), a
// number, and a read-only mark ("X" or empty). Each figure is one header click:
// the sort stored, the marks set and LVM_SORTITEMS. A plain program, run under
// Wine (Google Benchmark has no build for the Windows cross-compilers here).
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/win32/registry_backend_win32.h"
#include "platform/win32/ui/sortable_list_ctrl.h"
#include "text/codepage.h"

namespace {

constexpr int kRows = 10000;
constexpr int kRounds = 3;

struct Row {
  std::string path, size, mark;
};
std::vector<Row> gRows;

int Compare(std::intptr_t a, std::intptr_t b, const tavlet::ui::SortState* state) {
  const Row& x = gRows[static_cast<std::size_t>(a)];
  const Row& y = gRows[static_cast<std::size_t>(b)];
  int order = 0;
  switch (state->sortColumn) {
    case 1:
      order = std::atoi(x.size.c_str()) - std::atoi(y.size.c_str());
      break;
    case 2:
      order = tavlet::text::Mbscmp(x.mark, y.mark);
      break;
    default:
      order = tavlet::text::Mbsicmp(x.path, y.path);
      break;
  }
  return state->sortAscending ? order : -order;
}

double Milliseconds(LARGE_INTEGER start, LARGE_INTEGER end) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return 1000.0 * static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

}  // namespace

int main() {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&controls);
  for (int i = 0; i < kRows; ++i) {
    const int scrambled = (i * 7919) % kRows;
    gRows.push_back({"C:\\Jobs\\" + std::to_string(scrambled % 97) + "\\图纸-" + std::to_string(scrambled) + ".dwg",
                     std::to_string((scrambled * 31) % 100000), scrambled % 3 == 0 ? "X" : ""});
  }
  HWND parent = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 600, 400, nullptr, nullptr, nullptr, nullptr);
  HWND list = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | LVS_REPORT, 0, 0, 600, 400, parent, nullptr, nullptr,
                              nullptr);
  tavlet::Win32Registry registry;
  tavlet::win32::SortableListCtrl ctrl(registry, "Software\\Morvane\\Tavlet\\Bench\\SortableList");
  ctrl.Attach(list);
  ctrl.InsertColumn(0, "路径", {1, 1, 1, 0, 0, 0, 0}, tavlet::ui::kFormatLeft, 300);
  ctrl.InsertColumn(1, "Size", {}, tavlet::ui::kFormatRight, 80);
  ctrl.InsertColumn(2, "只读", {1, 0, 0, 0, 0, 0, 1}, tavlet::ui::kFormatCenter, 40);
  for (int i = 0; i < kRows; ++i) {
    const Row& r = gRows[static_cast<std::size_t>(i)];
    ctrl.AddRow({r.path, r.size, r.mark}, i);
  }
  ctrl.Initialize(&Compare);
  const char* names[] = {"path (text, ignoring case)", "number", "read-only mark"};
  for (int column = 0; column < 3; ++column) {
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round) {
      LARGE_INTEGER start, end;
      QueryPerformanceCounter(&start);
      NMHEADERA click{};
      click.hdr = {reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0)), 0, HDN_ITEMCLICKA};
      click.iItem = column;
      SendMessageA(list, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
      QueryPerformanceCounter(&end);
      times.push_back(Milliseconds(start, end));
    }
    std::sort(times.begin(), times.end());
    std::printf("sort 10,000 rows by %s: %.1f ms (median of %d clicks)\n", names[column], times[times.size() / 2],
                kRounds);
  }
  DestroyWindow(parent);
  return 0;
}
