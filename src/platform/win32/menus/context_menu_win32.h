// The context menu's popup: the portable tree made into menu handles at the
// last moment, tracked for the bar, and taken down again; and its use of the
// bar's MenuTip, which lists a workset's members beside its entry.
#pragma once

#include <windows.h>

#include <map>

#include "menus/context_menu.h"

namespace tavlet::win32 {

// The popup menu for `top`, every submenu made and attached; `submenus`, when
// given, receives each submenu's handle under its place in the tree. The caller
// destroys the returned menu, which takes its submenus with it.
HMENU RealiseMenu(const menus::MenuEntry& top, std::map<menus::MenuPath, HMENU>* submenus);

class ContextMenuPopup {
 public:
  ContextMenuPopup() = default;
  ContextMenuPopup(const ContextMenuPopup&) = delete;
  ContextMenuPopup& operator=(const ContextMenuPopup&) = delete;

  // The whole right click after the hit test: build for `document`, track at
  // `screen` owned by `owner`, destroy every menu, end the tracking. The choice
  // reaches `owner` as WM_COMMAND afterwards.
  void Track(HWND owner, menus::ContextMenu& menu, port::Document document, POINT screen);
  // WM_MENUSELECT of the tracked popup.
  void OnMenuSelect(menus::ContextMenu& menu, UINT item, UINT flags, HMENU selected);
  void HideTip();
  // The bar's MenuTip; without one no workset tip shows.
  void UseTip(HWND tip) { tip_ = tip; }
  HWND Tip() const { return tip_; }

 private:
  bool MakeTip(HWND owner);

  HWND tip_ = nullptr;
  HWND owner_ = nullptr;
  int tipId_ = 0;
  bool tracking_ = false;
  std::map<menus::MenuPath, HMENU> submenus_;
};

}  // namespace tavlet::win32
