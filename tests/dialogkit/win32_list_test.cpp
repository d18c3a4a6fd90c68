// The sortable list on a real list-view control under Wine: a header clicked
// with the mouse sorts and stores the sort, a dragged width and the column order
// land in the registry, the clipboard holds the text in both formats.
#ifdef _WIN32
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "platform/win32/registry_backend_win32.h"
#include "platform/win32/ui/sortable_list_ctrl.h"
#include "text/codepage.h"

namespace tavlet::win32 {
namespace {

using Lines = std::vector<std::string>;
const std::string kKey = "Software\\Morvane\\Tavlet\\Tests\\SortableList";

const std::vector<Lines> kRows = {{"b.dwg", "X"}, {"C,d.dwg", ""}, {"图纸.dwg", "X"}, {"a.dwg", ""}};

int CompareRows(std::intptr_t a, std::intptr_t b, const ui::SortState* state) {
  const std::size_t column = static_cast<std::size_t>(state->sortColumn < 0 ? 0 : state->sortColumn);
  const int order = text::Mbsicmp(kRows[static_cast<std::size_t>(a)][column], kRows[static_cast<std::size_t>(b)][column]);
  return state->sortAscending ? order : -order;
}

struct ListWindow {
  ListWindow() {
    INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
    InitCommonControlsEx(&controls);
    parent = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 500, 300, nullptr, nullptr, nullptr, nullptr);
    list = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, 500, 300, parent, nullptr,
                           nullptr, nullptr);
  }
  ~ListWindow() {
    if (IsWindow(parent)) DestroyWindow(parent);
  }
  HWND parent = nullptr;
  HWND list = nullptr;
};

Lines Column(SortableListCtrl& ctrl, int column) {
  Lines out;
  for (int r = 0; r < ctrl.RowCount(); ++r) out.push_back(ctrl.CellText(r, column));
  return out;
}

void ClickHeader(HWND header, int item) {
  RECT r{};
  SendMessageA(header, HDM_GETITEMRECT, item, reinterpret_cast<LPARAM>(&r));
  const LPARAM at = MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
  SendMessageA(header, WM_LBUTTONUP, 0, at);
}

std::string ClipboardText(UINT format) {
  std::string text;
  if (!OpenClipboard(nullptr)) return "<not opened>";
  if (HANDLE data = GetClipboardData(format)) {
    if (const char* bytes = static_cast<const char*>(GlobalLock(data))) {
      text = bytes;
      GlobalUnlock(data);
    }
  }
  CloseClipboard();
  return text;
}

TEST(Win32SortableList, HeaderClicksSortAndTheRegistryKeepsSortWidthsAndOrder) {
  Win32Registry registry;
  SettingsStore(registry, kKey).SetInt("", "Col2", 77);
  SettingsStore(registry, kKey).SetInt("", "Sort", -1);
  {
    ListWindow window;
    SortableListCtrl ctrl(registry, kKey);
    ASSERT_TRUE(ctrl.Attach(window.list));
    ctrl.InsertColumn(0, "路径", {1, 1, 1, 0, 0, 0, 0}, ui::kFormatLeft, 200);
    ctrl.InsertColumn(1, "只读", {1, 0, 0, 0, 0, 0, 1}, ui::kFormatLeft, 40);
    EXPECT_EQ(SendMessageA(window.list, LVM_GETCOLUMNWIDTH, 1, 0), 77);
    for (std::size_t i = 0; i < kRows.size(); ++i) ctrl.AddRow(kRows[i], static_cast<LPARAM>(i));
    ctrl.Initialize(&CompareRows);
    EXPECT_EQ(Column(ctrl, 0), (Lines{"图纸.dwg", "C,d.dwg", "b.dwg", "a.dwg"}));

    HWND header = reinterpret_cast<HWND>(SendMessageA(window.list, LVM_GETHEADER, 0, 0));
    ClickHeader(header, 0);
    EXPECT_EQ(Column(ctrl, 0), (Lines{"a.dwg", "b.dwg", "C,d.dwg", "图纸.dwg"}));
    EXPECT_EQ(SettingsStore(registry, kKey).GetInt("", "Sort", 0), 1);
    ClickHeader(header, 1);
    EXPECT_EQ(SettingsStore(registry, kKey).GetInt("", "Sort", 0), 2);
    EXPECT_EQ(Column(ctrl, 1), (Lines{"", "", "X", "X"}));
    HDITEMA mark{};
    mark.mask = HDI_FORMAT;
    SendMessageA(header, HDM_GETITEMA, 1, reinterpret_cast<LPARAM>(&mark));
    EXPECT_TRUE(mark.fmt & HDF_BITMAP_ON_RIGHT);
    SendMessageA(header, HDM_GETITEMA, 0, reinterpret_cast<LPARAM>(&mark));
    EXPECT_FALSE(mark.fmt & HDF_BITMAP);

    // The end of a drag of the first column's divider.
    HDITEMA width{};
    width.mask = HDI_WIDTH;
    width.cxy = 123;
    NMHEADERA drag{};
    drag.hdr = {header, static_cast<UINT_PTR>(GetDlgCtrlID(header)), HDN_ENDTRACKA};
    drag.iItem = 0;
    drag.pitem = &width;
    SendMessageA(window.list, WM_NOTIFY, drag.hdr.idFrom, reinterpret_cast<LPARAM>(&drag));
    EXPECT_EQ(SettingsStore(registry, kKey).GetInt("", "Col1", 0), 123);

    ctrl.EnableColumnReorder(true);
    int order[2] = {1, 0};
    SendMessageA(window.list, LVM_SETCOLUMNORDERARRAY, 2, reinterpret_cast<LPARAM>(order));

    EXPECT_TRUE(ctrl.CopyToClipboard());
    const std::string expected = "a.dwg,\nC,d.dwg,\nb.dwg,X\n图纸.dwg,X";
    EXPECT_EQ(ClipboardText(RegisterClipboardFormatA("Csv")), expected);
    EXPECT_EQ(ClipboardText(CF_TEXT), expected);
    // The window goes before its list object, as in a dialog, and with it the order.
    DestroyWindow(window.parent);
  }
  EXPECT_EQ(SettingsStore(registry, kKey).GetString("", "Order", ""), "1,0");
}

}  // namespace
}  // namespace tavlet::win32
#endif
