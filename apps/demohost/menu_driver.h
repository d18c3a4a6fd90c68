// Scripts drive the bar's popup menu while it is up. TrackPopupMenu runs its
// own modal loop, so the script cannot step in between messages; instead a
// thread timer, which the menu loop dispatches, finds the popup windows, reads
// their menus by the items' texts and presses the keys the loop reads, one a
// tick, checking the highlighted item each time. That takes the same path as a
// user at the keyboard: WM_MENUSELECT for every item passed, WM_COMMAND for the
// one chosen.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "image_file.h"

namespace tavlet::demo {

enum class MenuAction {
  Close,  // close the popup as soon as it shows
  Pick,   // walk `path` and choose its last entry
  Show,   // walk `path`, open its last entry when it is a submenu, take a picture, close
};

struct MenuRun {
  MenuAction action = MenuAction::Close;
  std::vector<std::string> path;  // code page 936 texts, top level first

  bool opened = false;
  bool done = false;
  int topEntries = 0;
  std::string error;
  std::optional<Picture> shot;  // Show: the frame and every open popup
  RECT shotRect{};
  // The visible tip while the path's last entry was highlighted, if any.
  std::string tipText;
  RECT tipRect{};
  POINT tipAt{};  // the tip's client origin: where the bar placed it, inside its border
  SIZE tipBubble{};  // what the tip control answers to TTM_GETBUBBLESIZE for its tool
  RECT itemRect{};  // the last entry's rectangle on the screen
};

// "a > b > c" split at " > " and turned from UTF-8 to code page 936 when the
// text is UTF-8 (a script in code page 936 is taken as it is).
std::vector<std::string> ParseMenuPath(const std::string& text);

// Drives the next popup menu of this thread as `run` asks, pumping messages
// with `pump` until it is done or `timeoutMs` have passed; false when no popup
// showed or the path could not be followed (the reason in run.error).
bool DriveMenu(MenuRun& run, HWND frame, int timeoutMs, const std::function<void(int)>& pump);

}  // namespace tavlet::demo
