#include "platform/win32/menus/context_menu_win32.h"

#include <commctrl.h>

#include <string>

#include "menus/workset_tip.h"

namespace tavlet::win32 {

namespace {

void AppendEntries(HMENU into, const menus::MenuEntry& entry, menus::MenuPath& path,
                   std::map<menus::MenuPath, HMENU>* submenus) {
  for (std::size_t i = 0; i < entry.children.size(); ++i) {
    const menus::MenuEntry& child = entry.children[i];
    if (child.IsSeparator()) {
      AppendMenuA(into, MF_SEPARATOR, 0, nullptr);
      continue;
    }
    if (child.IsPopup()) {
      HMENU submenu = CreatePopupMenu();
      if (!submenu) continue;
      path.push_back(i);
      AppendEntries(submenu, child, path, submenus);
      if (submenus) (*submenus)[path] = submenu;
      path.pop_back();
      if (!AppendMenuA(into, MF_STRING | child.flags, reinterpret_cast<UINT_PTR>(submenu), child.text.c_str()))
        DestroyMenu(submenu);
      continue;
    }
    AppendMenuA(into, MF_STRING | child.flags, static_cast<UINT_PTR>(child.id), child.text.c_str());
  }
}

TTTOOLINFOA ToolOf(HWND owner, const char* text) {
  TTTOOLINFOA tool{};
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
  tool.hwnd = owner;
  tool.uId = 0;
  tool.lpszText = const_cast<char*>(text);
  return tool;
}

}  // namespace

HMENU RealiseMenu(const menus::MenuEntry& top, std::map<menus::MenuPath, HMENU>* submenus) {
  HMENU popup = CreatePopupMenu();
  if (!popup) return nullptr;
  menus::MenuPath path;
  AppendEntries(popup, top, path, submenus);
  return popup;
}

bool ContextMenuPopup::MakeTip(HWND owner) {
  if (!tip_ || !IsWindow(tip_)) return false;
  if (owner_ == owner) return true;
  owner_ = owner;
  TTTOOLINFOA tool = ToolOf(owner, "");
  return SendMessageA(tip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool)) != 0;
}

void ContextMenuPopup::Track(HWND owner, menus::ContextMenu& menu, port::Document document, POINT screen) {
  // A second right click reaching the bar while its menu is up would rebuild the
  // lists under the open menu.
  if (tracking_) return;
  const menus::MenuEntry top = menu.Build(document);
  submenus_.clear();
  HMENU popup = RealiseMenu(top, &submenus_);
  if (popup) {
    MakeTip(owner);
    tracking_ = true;
    TrackPopupMenu(popup, 0, screen.x, screen.y, 0, owner, nullptr);
    tracking_ = false;
    HideTip();
    // The top popup takes every attached submenu with it.
    DestroyMenu(popup);
  }
  submenus_.clear();
  menu.EndTracking();
}

void ContextMenuPopup::HideTip() {
  if (tip_ && tipId_ != 0) {
    TTTOOLINFOA tool = ToolOf(owner_, nullptr);
    SendMessageA(tip_, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
  }
  tipId_ = 0;
}

void ContextMenuPopup::OnMenuSelect(menus::ContextMenu& menu, UINT item, UINT flags, HMENU) {
  HideTip();
  // A submenu's entry gives its position, not an id; 0xFFFF with no menu is the close.
  if (!tip_ || (flags & MF_POPUP) || flags == 0xFFFF) return;
  const int id = static_cast<int>(item);
  const std::string text = menu.WorksetTip(id);
  if (text.empty()) return;
  const auto place = menu.WorksetSubmenus().find(id);
  if (place == menu.WorksetSubmenus().end()) return;
  const auto submenu = submenus_.find(place->second);
  if (submenu == submenus_.end()) return;
  RECT itemRect{};
  if (!GetMenuItemRect(nullptr, submenu->second, 0, &itemRect)) return;
  TTTOOLINFOA tool = ToolOf(owner_, text.c_str());
  SendMessageA(tip_, TTM_UPDATETIPTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
  SendMessageA(tip_, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
  const auto bubble = static_cast<DWORD>(SendMessageA(tip_, TTM_GETBUBBLESIZE, 0, reinterpret_cast<LPARAM>(&tool)));
  const menus::TipPosition at = menus::PlaceMenuTip(
      {itemRect.left, itemRect.top, itemRect.right, itemRect.bottom}, LOWORD(bubble), HIWORD(bubble),
      GetSystemMetrics(SM_CXMAXTRACK), GetSystemMetrics(SM_CYMAXTRACK));
  SendMessageA(tip_, TTM_TRACKPOSITION, 0, MAKELPARAM(at.x, at.y));
  SetWindowPos(tip_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  tipId_ = id;
}

}  // namespace tavlet::win32
