// A list-view cell's text, read back through the control.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>

namespace tavlet::testing {

inline std::string ListViewText(HWND list, int row, int column) {
  char text[512] = {};
  LVITEMA item{};
  item.iSubItem = column;
  item.pszText = text;
  item.cchTextMax = sizeof text;
  SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return text;
}

}  // namespace tavlet::testing
