#include "menu_driver.h"

#include <commctrl.h>

#include <algorithm>

#include "text/codepage.h"

namespace tavlet::demo {

namespace {

constexpr UINT kTick = 40;
constexpr int kMaxSteps = 600;
constexpr UINT kMenuGetHandle = 0x01E1;  // MN_GETHMENU

struct Drive {
  MenuRun* run = nullptr;
  HWND frame = nullptr;
  std::vector<int> indices;  // the path's entries by position
  std::vector<HMENU> menus;  // the menu at each level of the path
  std::size_t level = 0;
  int steps = 0;
  int settle = 0;  // ticks to wait before the picture
  bool resolved = false;
  DWORD deadline = 0;
};

Drive* current = nullptr;

BOOL CALLBACK CollectPopups(HWND hwnd, LPARAM found) {
  char name[32] = {};
  GetClassNameA(hwnd, name, sizeof name);
  if (lstrcmpA(name, "#32768") == 0 && IsWindowVisible(hwnd)) reinterpret_cast<std::vector<HWND>*>(found)->push_back(hwnd);
  return TRUE;
}

std::vector<HWND> Popups() {
  std::vector<HWND> found;
  EnumThreadWindows(GetCurrentThreadId(), CollectPopups, reinterpret_cast<LPARAM>(&found));
  return found;
}

std::string ItemText(HMENU menu, int index) {
  char text[512] = {};
  GetMenuStringA(menu, static_cast<UINT>(index), text, sizeof text, MF_BYPOSITION);
  return text;
}

std::string Entries(HMENU menu) {
  std::string list;
  const int count = GetMenuItemCount(menu);
  for (int i = 0; i < count; ++i) {
    const std::string text = ItemText(menu, i);
    if (text.empty()) continue;
    list += (list.empty() ? "" : ", ") + text::ToUtf8(text);
  }
  return list;
}

int Highlighted(HMENU menu) {
  const int count = GetMenuItemCount(menu);
  for (int i = 0; i < count; ++i)
    if (GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_HILITE) return i;
  return -1;
}

void Press(HWND popup, WPARAM key) {
  PostMessageA(popup, WM_KEYDOWN, key, 1);
  PostMessageA(popup, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001u));
}

void Finish(Drive& d, const std::string& error = {}) {
  d.run->error = error;
  d.run->done = true;
  if (!Popups().empty()) EndMenu();
}

bool Resolve(Drive& d, HMENU top) {
  HMENU menu = top;
  std::string where = "the popup";
  for (std::size_t k = 0; k < d.run->path.size(); ++k) {
    const std::string& wanted = d.run->path[k];
    const int count = GetMenuItemCount(menu);
    int found = -1;
    for (int i = 0; i < count && found < 0; ++i)
      if (ItemText(menu, i) == wanted) found = i;
    if (found < 0) {
      Finish(d, "menu: no entry '" + text::ToUtf8(wanted) + "' in " + where + " (entries: " + Entries(menu) + ")");
      return false;
    }
    d.indices.push_back(found);
    d.menus.push_back(menu);
    const UINT state = GetMenuState(menu, static_cast<UINT>(found), MF_BYPOSITION);
    HMENU sub = GetSubMenu(menu, found);
    const bool last = k + 1 == d.run->path.size();
    if (state & MF_GRAYED) {
      Finish(d, "menu: the entry '" + text::ToUtf8(wanted) + "' is grayed");
      return false;
    }
    if (!last && !sub) {
      Finish(d, "menu: the entry '" + text::ToUtf8(wanted) + "' opens no submenu");
      return false;
    }
    if (last && sub && d.run->action == MenuAction::Pick) {
      Finish(d, "menu: the entry '" + text::ToUtf8(wanted) + "' is a submenu, not a command");
      return false;
    }
    where = "'" + text::ToUtf8(wanted) + "'";
    menu = sub;
  }
  return true;
}

BOOL CALLBACK FindTip(HWND hwnd, LPARAM found) {
  char name[64] = {};
  GetClassNameA(hwnd, name, sizeof name);
  if (lstrcmpiA(name, TOOLTIPS_CLASSA) == 0 && IsWindowVisible(hwnd)) {
    *reinterpret_cast<HWND*>(found) = hwnd;
    return FALSE;
  }
  return TRUE;
}

void TakePicture(Drive& d) {
  RECT area{};
  GetWindowRect(d.frame, &area);
  for (HWND popup : Popups()) {
    RECT r{};
    GetWindowRect(popup, &r);
    UnionRect(&area, &area, &r);
  }
  HWND tip = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), FindTip, reinterpret_cast<LPARAM>(&tip));
  if (tip) {
    char text[2048] = {};
    TTTOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V2_SIZE;
    tool.lpszText = text;
    // The tip's one tool; its text is what shows.
    if (SendMessageA(tip, TTM_ENUMTOOLSA, 0, reinterpret_cast<LPARAM>(&tool))) {
      d.run->tipText = text;
      const auto bubble = static_cast<DWORD>(SendMessageA(tip, TTM_GETBUBBLESIZE, 0, reinterpret_cast<LPARAM>(&tool)));
      d.run->tipBubble = {LOWORD(bubble), HIWORD(bubble)};
    }
    GetWindowRect(tip, &d.run->tipRect);
    ClientToScreen(tip, &d.run->tipAt);
    UnionRect(&area, &area, &d.run->tipRect);
  }
  if (!d.indices.empty()) GetMenuItemRect(nullptr, d.menus.back(), static_cast<UINT>(d.indices.back()), &d.run->itemRect);
  HWND window = GetDesktopWindow();
  RECT screen{};
  GetWindowRect(window, &screen);
  IntersectRect(&area, &area, &screen);
  d.run->shot = CaptureRect(area);
  d.run->shotRect = area;
}

void Step(Drive& d) {
  const std::vector<HWND> popups = Popups();
  if (!d.run->opened) {
    if (popups.empty()) return;
    d.run->opened = true;
    HMENU top = reinterpret_cast<HMENU>(SendMessageA(popups.front(), kMenuGetHandle, 0, 0));
    d.run->topEntries = top ? GetMenuItemCount(top) : 0;
    if (d.run->action == MenuAction::Close) return Finish(d);
    if (!top) return Finish(d, "menu: the popup gives no menu");
    d.resolved = Resolve(d, top);
    return;
  }
  if (!d.resolved || d.run->done) return;
  if (popups.empty()) return Finish(d, "menu: the popup closed before the path was followed");
  if (++d.steps > kMaxSteps) return Finish(d, "menu: the path was not reached");
  if (d.settle > 0) {
    if (--d.settle == 0) {
      TakePicture(d);
      Finish(d);
    }
    return;
  }
  HMENU menu = d.menus[d.level];
  const int target = d.indices[d.level];
  if (Highlighted(menu) != target) return Press(popups.front(), VK_DOWN);
  const bool last = d.level + 1 == d.indices.size();
  if (!last) {
    ++d.level;
    return Press(popups.front(), VK_RIGHT);
  }
  if (d.run->action == MenuAction::Pick) {
    d.run->done = true;
    return Press(popups.front(), VK_RETURN);
  }
  if (GetSubMenu(menu, target)) Press(popups.front(), VK_RIGHT);
  // A few ticks for the last submenu and the tip to paint.
  d.settle = 4;
}

void CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD) {
  if (!current || current->run->done) return;
  // The menu loop holds the script's pump: the time limit is kept from here.
  if (static_cast<int>(current->deadline - GetTickCount()) <= 0)
    return Finish(*current, current->run->opened ? "menu: the path was not reached in time" : "");
  Step(*current);
}

std::string FromScriptText(const std::string& text) {
  const int wide = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()),
                                       nullptr, 0);
  return wide > 0 ? text::FromUtf8(text) : text;
}

}  // namespace

std::vector<std::string> ParseMenuPath(const std::string& text) {
  std::vector<std::string> path;
  std::size_t start = 0;
  for (;;) {
    const std::size_t at = text.find(" > ", start);
    path.push_back(FromScriptText(text.substr(start, at == std::string::npos ? std::string::npos : at - start)));
    if (at == std::string::npos) break;
    start = at + 3;
  }
  return path;
}

bool DriveMenu(MenuRun& run, HWND frame, int timeoutMs, const std::function<void(int)>& pump) {
  Drive drive;
  drive.run = &run;
  drive.frame = frame;
  Drive* outer = current;
  current = &drive;
  drive.deadline = GetTickCount() + static_cast<DWORD>(timeoutMs);
  const UINT_PTR timer = SetTimer(nullptr, 0, kTick, OnTick);
  while (!run.done && static_cast<int>(drive.deadline - GetTickCount()) > 0) pump(static_cast<int>(kTick));
  KillTimer(nullptr, timer);
  current = outer;
  if (!run.opened && run.error.empty()) run.error = "menu: no popup menu opened";
  pump(kTick);
  return run.opened && run.error.empty();
}

}  // namespace tavlet::demo
