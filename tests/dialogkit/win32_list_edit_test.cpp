// In-place editing of the sortable list under Wine: a text box or a combo box over
// the cell, Enter commits through LVN_ENDLABELEDIT to the parent, Escape cancels.
#ifdef _WIN32
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "platform/win32/ui/sortable_list_ctrl.h"
#include "settings/memory_registry.h"

namespace tavlet::win32 {
namespace {

std::vector<std::string> gEnded;

LRESULT CALLBACK ParentProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NOTIFY && reinterpret_cast<NMHDR*>(lParam)->code == LVN_ENDLABELEDITA) {
    const auto* info = reinterpret_cast<NMLVDISPINFOA*>(lParam);
    gEnded.push_back(std::to_string(info->item.iItem) + ":" + std::to_string(info->item.iSubItem) + " " +
                     info->item.pszText);
    return TRUE;
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

class MarkList final : public SortableListCtrl {
 public:
  using SortableListCtrl::SortableListCtrl;
  void CellOptions(int, int, std::vector<std::string>& options) override { options = {"X", "-"}; }
};

std::string TextOf(HWND window) {
  char text[256] = {};
  GetWindowTextA(window, text, sizeof text);
  return text;
}

TEST(Win32SortableListEdit, EnterCommitsEscapeCancels) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_LISTVIEW_CLASSES};
  InitCommonControlsEx(&controls);
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = ParentProcedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "TavletListEditParent";
  RegisterClassA(&windowClass);
  HWND parent = CreateWindowExA(0, "TavletListEditParent", "", WS_POPUP | WS_VISIBLE, 0, 0, 500, 300, nullptr, nullptr,
                                GetModuleHandleA(nullptr), nullptr);
  HWND list = CreateWindowExA(0, WC_LISTVIEWA, "", WS_CHILD | WS_VISIBLE | LVS_REPORT | LVS_EDITLABELS, 0, 0, 500, 300,
                              parent, reinterpret_cast<HMENU>(2013), nullptr, nullptr);
  MemoryRegistry registry;
  MarkList ctrl(registry, "");
  ASSERT_TRUE(ctrl.Attach(list));
  ctrl.InsertColumn(0, "路径", {1, 1, 1, 0, 0, 0, 0}, ui::kFormatLeft, 200);
  ctrl.InsertColumn(1, "只读", {1, 0, 0, 0, 0, 0, 1}, ui::kFormatLeft, 60);
  ctrl.InsertColumn(2, "Narrow", {}, ui::kFormatLeft, 4);
  ctrl.AddRow({"a.dwg", "X", ""}, 0);
  ctrl.AddRow({"b.dwg", "", ""}, 1);
  gEnded.clear();

  ASSERT_TRUE(ctrl.StartEdit(1, 0));
  HWND editor = ctrl.Editor();
  ASSERT_NE(editor, nullptr);
  char className[32] = {};
  GetClassNameA(editor, className, sizeof className);
  EXPECT_EQ(_stricmp(className, "Edit"), 0);
  EXPECT_EQ(TextOf(editor), "b.dwg");
  EXPECT_EQ(GetDlgCtrlID(editor), ui::kEditorControlId);
  EXPECT_EQ(static_cast<DWORD>(GetWindowLongPtrA(editor, GWL_STYLE)) & 0x50000880u, 0x50000080u);
  EXPECT_EQ(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 1);
  SetWindowTextA(editor, "new.dwg");
  SendMessageA(editor, WM_KEYDOWN, VK_RETURN, 0);
  EXPECT_EQ(ctrl.Editor(), nullptr);
  EXPECT_FALSE(IsWindow(editor));
  EXPECT_EQ(ctrl.CellText(1, 0), "new.dwg");

  ASSERT_TRUE(ctrl.StartEdit(0, 1));
  editor = ctrl.Editor();
  GetClassNameA(editor, className, sizeof className);
  EXPECT_EQ(_stricmp(className, "ComboBox"), 0);
  EXPECT_EQ(SendMessageA(editor, CB_GETCOUNT, 0, 0), 2);
  EXPECT_EQ(SendMessageA(editor, CB_GETCURSEL, 0, 0), 0);  // "X", the cell's text
  SendMessageA(editor, CB_SETCURSEL, 1, 0);
  SendMessageA(editor, WM_KEYDOWN, VK_ESCAPE, 0);
  EXPECT_EQ(ctrl.Editor(), nullptr);
  EXPECT_EQ(ctrl.CellText(0, 1), "X");

  EXPECT_FALSE(ctrl.StartEdit(0, 2));  // four pixels wide
  EXPECT_FALSE(ctrl.StartEdit(5, 0));
  EXPECT_EQ(gEnded, (std::vector<std::string>{"1:0 new.dwg"}));

  // A first click on a row selects it; a click on a cell of the selected row
  // opens the editor there.
  ctrl.EnableEditing(true);
  SendMessageA(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
  RECT cell{};
  cell.top = 1;
  cell.left = LVIR_LABEL;
  SendMessageA(list, LVM_GETSUBITEMRECT, 1, reinterpret_cast<LPARAM>(&cell));
  const LPARAM at = MAKELPARAM(cell.left + 5, (cell.top + cell.bottom) / 2);
  SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
  SendMessageA(list, WM_LBUTTONUP, 0, at);
  EXPECT_EQ(ctrl.Editor(), nullptr);
  EXPECT_EQ(SendMessageA(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 1);
  SendMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
  ASSERT_NE(ctrl.Editor(), nullptr);
  GetClassNameA(ctrl.Editor(), className, sizeof className);
  EXPECT_EQ(_stricmp(className, "ComboBox"), 0);
  DestroyWindow(parent);
}

}  // namespace
}  // namespace tavlet::win32
#endif
