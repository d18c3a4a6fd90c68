#include "preferences_driver.h"

#include <commctrl.h>

#include <cstdlib>
#include <cstring>
#include <set>
#include <sstream>

#include "image_file.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_store.h"
#include "text/codepage.h"

namespace tavlet::demo {
namespace {

constexpr int kTabsId = 1000;      // the dialog's tab control
constexpr int kFontButton = 2060;  // the display page's font button
constexpr int kFaceList = 0x470;   // the font chooser's face and size lists
constexpr int kSizeList = 0x472;
constexpr int kRedEdit = 706;  // the colour chooser's red, green and blue edits

constexpr UINT kTick = 120;
constexpr int kMaxTicks = 400;

bool IsDialog(HWND window) {
  char name[16] = {};
  GetClassNameA(window, name, sizeof name);
  return lstrcmpA(name, "#32770") == 0 && IsWindowVisible(window);
}

struct Search {
  int id;
  HWND found = nullptr;
};

BOOL CALLBACK FindId(HWND window, LPARAM param) {
  auto* search = reinterpret_cast<Search*>(param);
  if (GetDlgCtrlID(window) == search->id && !search->found) search->found = window;
  return search->found ? FALSE : TRUE;
}

// Any control of the dialog or of its pages by its id.
HWND Control(HWND dialog, int id) {
  Search search{id};
  EnumChildWindows(dialog, FindId, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

struct Windows {
  HWND preferences = nullptr;
  HWND owned = nullptr;  // a dialog the preferences own: the font chooser or a box
};

BOOL CALLBACK FindDialogs(HWND window, LPARAM param) {
  auto* found = reinterpret_cast<Windows*>(param);
  if (IsDialog(window) && Control(window, kTabsId)) found->preferences = window;
  return TRUE;
}

BOOL CALLBACK FindOwned(HWND window, LPARAM param) {
  auto* found = reinterpret_cast<Windows*>(param);
  if (IsDialog(window) && found->preferences && GetWindow(window, GW_OWNER) == found->preferences)
    found->owned = window;
  return TRUE;
}

Windows Current() {
  Windows found;
  EnumThreadWindows(GetCurrentThreadId(), FindDialogs, reinterpret_cast<LPARAM>(&found));
  EnumThreadWindows(GetCurrentThreadId(), FindOwned, reinterpret_cast<LPARAM>(&found));
  return found;
}

std::string Native(const std::string& text) {
  for (unsigned char c : text)
    if (c >= 0x80) return text::FromUtf8(text);
  return text;
}

// The run in progress; the timer procedure has no other way to it.
struct Drive {
  const std::vector<PreferencesStep>* steps = nullptr;
  std::string outputFolder;
  std::ostream* log = nullptr;
  std::size_t next = 0;
  int phase = 0;
  int ticks = 0;
  bool opened = false;
  bool busy = false;
  std::string error;
};
Drive* drive = nullptr;

void Fail(Drive& d, HWND preferences, HWND owned, const std::string& why) {
  if (d.error.empty()) d.error = why;
  d.next = d.steps->size();
  if (owned) PostMessageA(owned, WM_COMMAND, IDCANCEL, 0);
  if (preferences) PostMessageA(preferences, WM_COMMAND, IDCANCEL, 0);
}

// One step, or one phase of the font step. True when the step is finished.
bool DoStep(Drive& d, const PreferencesStep& step, const Windows& w) {
  const auto& args = step.args;
  if (step.verb == "tab") {
    HWND tabs = Control(w.preferences, kTabsId);
    SendMessageA(tabs, TCM_SETCURSEL, std::strtoul(args[0].c_str(), nullptr, 10), 0);
    NMHDR header{tabs, static_cast<UINT_PTR>(kTabsId), static_cast<UINT>(TCN_SELCHANGE)};
    SendMessageA(w.preferences, WM_NOTIFY, kTabsId, reinterpret_cast<LPARAM>(&header));
    return true;
  }
  if (step.verb == "click" || step.verb == "type") {
    const int id = std::atoi(args[0].c_str());
    HWND control = Control(w.preferences, id);
    if (!control) {
      Fail(d, w.preferences, w.owned, step.verb + ": no control " + args[0] + " in the dialog");
      return true;
    }
    if (step.verb == "click") {
      SendMessageA(control, BM_CLICK, 0, 0);
    } else {
      const std::string text = Native(args.size() > 1 ? args[1] : "");
      SendMessageA(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    return true;
  }
  if (step.verb == "font") {
    if (d.phase == 0) {
      // Posted: the chooser's own modal loop must not run inside this tick.
      PostMessageA(Control(w.preferences, kFontButton), BM_CLICK, 0, 0);
      d.phase = 1;
      return false;
    }
    if (d.phase == 1) {
      if (!w.owned) return false;
      HWND faces = GetDlgItem(w.owned, kFaceList);
      HWND sizes = GetDlgItem(w.owned, kSizeList);
      const std::string face = Native(args[0]);
      if (SendMessageA(faces, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(face.c_str())) ==
          CB_ERR) {
        std::string known;
        const int count = static_cast<int>(SendMessageA(faces, CB_GETCOUNT, 0, 0));
        for (int i = 0; i < count && i < 12; ++i) {
          char name[LF_FACESIZE + 1] = {};
          if (SendMessageA(faces, CB_GETLBTEXTLEN, i, 0) < LF_FACESIZE)
            SendMessageA(faces, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(name));
          known += (known.empty() ? "" : ", ") + text::ToUtf8(name);
        }
        Fail(d, w.preferences, w.owned, "font: no face '" + args[0] + "' in the font chooser (faces: " + known + ")");
        return true;
      }
      SendMessageA(w.owned, WM_COMMAND, MAKEWPARAM(kFaceList, CBN_SELCHANGE), reinterpret_cast<LPARAM>(faces));
      if (SendMessageA(sizes, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(args[1].c_str())) ==
          CB_ERR)
        SetWindowTextA(sizes, args[1].c_str());
      SendMessageA(w.owned, WM_COMMAND, MAKEWPARAM(kSizeList, CBN_SELCHANGE), reinterpret_cast<LPARAM>(sizes));
      PostMessageA(w.owned, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(w.owned, IDOK)));
      d.phase = 2;
      return false;
    }
    return !w.owned;
  }
  if (step.verb == "color") {
    if (d.phase == 0) {
      PostMessageA(Control(w.preferences, std::atoi(args[0].c_str())), BM_CLICK, 0, 0);
      d.phase = 1;
      return false;
    }
    if (d.phase == 1) {
      if (!w.owned) return false;
      for (int i = 0; i < 3; ++i) SetDlgItemTextA(w.owned, kRedEdit + i, args[1 + i].c_str());
      PostMessageA(w.owned, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(w.owned, IDOK)));
      d.phase = 2;
      return false;
    }
    return !w.owned;
  }
  if (step.verb == "shot") {
    SetForegroundWindow(w.preferences);
    RedrawWindow(w.preferences, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW | RDW_FRAME);
    const Picture picture = CaptureWindow(w.preferences);
    const std::string& name = args[0];
    const bool absolute = name.size() > 1 && (name[1] == ':' || name[0] == '\\' || name[0] == '/');
    const std::string path = absolute || d.outputFolder.empty() ? name : d.outputFolder + "\\" + name;
    std::string error;
    if (!WritePicture(picture, path, error)) Fail(d, w.preferences, w.owned, "shot: " + error);
    else *d.log << "    preferences screenshot " << path << " (" << picture.width << "x" << picture.height << ")"
                << std::endl;
    return true;
  }
  // ok, cancel
  PostMessageA(w.preferences, WM_COMMAND, MAKEWPARAM(step.verb == "ok" ? IDOK : IDCANCEL, BN_CLICKED), 0);
  return true;
}

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
  if (!drive || drive->busy) return;
  Drive& d = *drive;
  d.busy = true;
  const Windows w = Current();
  if (w.preferences) d.opened = true;
  if (++d.ticks > kMaxTicks) {
    Fail(d, w.preferences, w.owned, "the preferences dialog did not finish its steps in time");
  } else if (w.preferences && d.next < d.steps->size()) {
    // A box the dialog brought up (a refused number) stops the run.
    const PreferencesStep& step = (*d.steps)[d.next];
    if (w.owned && step.verb != "font" && step.verb != "color") {
      char text[256] = {};
      GetDlgItemTextA(w.owned, 0xFFFF, text, sizeof text);
      Fail(d, w.preferences, w.owned, "the dialog showed a box: " + text::ToUtf8(text));
    } else if (DoStep(d, step, w)) {
      ++d.next;
      d.phase = 0;
    }
  }
  d.busy = false;
}

}  // namespace

bool ParsePreferencesSteps(const std::string& text, std::vector<PreferencesStep>& steps, std::string& error) {
  steps.clear();
  std::stringstream all(text);
  std::string part;
  while (std::getline(all, part, ';')) {
    std::stringstream words(part);
    PreferencesStep step;
    words >> step.verb;
    if (step.verb.empty()) continue;
    for (std::string word; words >> word;) step.args.push_back(word);
    const std::size_t n = step.args.size();
    const bool number = n > 0 && std::strspn(step.args[0].c_str(), "0123456789") == step.args[0].size();
    const bool ok = (step.verb == "tab" && n == 1 && number) || (step.verb == "click" && n == 1 && number) ||
                    (step.verb == "type" && (n == 1 || n == 2) && number) || (step.verb == "font" && n == 2) ||
                    (step.verb == "color" && n == 4 && number) ||
                    (step.verb == "shot" && n == 1) || ((step.verb == "ok" || step.verb == "cancel") && n == 0);
    if (!ok) {
      error = "bad step '" + part +
              "'; expected tab N, click ID, type ID TEXT, font FACE SIZE, color ID R G B, shot PATH, ok, cancel";
      return false;
    }
    steps.push_back(step);
  }
  if (steps.empty() || (steps.back().verb != "ok" && steps.back().verb != "cancel")) {
    error = "the steps must end with ok or cancel";
    return false;
  }
  return true;
}

bool DrivePreferences(const std::vector<PreferencesStep>& steps, const std::function<void()>& open,
                      const std::string& outputFolder, std::ostream& log, std::string& error) {
  Drive d;
  d.steps = &steps;
  d.outputFolder = outputFolder;
  d.log = &log;
  drive = &d;
  const UINT_PTR timer = SetTimer(nullptr, 0, kTick, Tick);
  open();
  KillTimer(nullptr, timer);
  drive = nullptr;
  if (!d.opened) {
    error = "the preferences dialog did not open";
    return false;
  }
  if (!d.error.empty()) {
    error = d.error;
    return false;
  }
  if (d.next < steps.size()) {
    error = "the preferences dialog closed before its last step";
    return false;
  }
  return true;
}

bool CheckTabs(const Picture& shot, POINT origin, HWND frame, HWND mdiClient, const std::string& side,
               std::ostream& log, std::string& error) {
  HWND bar = FindWindowExA(frame, nullptr, "MvTavlet", nullptr);
  HWND tabs = bar ? GetDlgItem(bar, 1003) : nullptr;
  if (!bar) {
    // Docked beside the command window, the bar is further down the frame's windows.
    Search search{11265};
    EnumChildWindows(frame, FindId, reinterpret_cast<LPARAM>(&search));
    bar = search.found;
    tabs = bar ? GetDlgItem(bar, 1003) : nullptr;
  }
  if (side == "none") {
    // The bar gives its place up (HideOnSingle with one drawing): the drawing
    // area runs over the whole of the bar's rectangle.
    RECT barRect{}, area{}, overlap{};
    if (bar) GetWindowRect(bar, &barRect);
    GetWindowRect(mdiClient, &area);
    const bool covered = !bar || !IsWindowVisible(bar) ||
                         (IntersectRect(&overlap, &barRect, &area) && EqualRect(&overlap, &barRect));
    log << "    check-tabs: bar at " << barRect.left - origin.x << "," << barRect.top - origin.y << ", drawing area from "
        << area.left - origin.x << " to " << area.right - origin.x << std::endl;
    if (!covered) error = "check-tabs: the bar still takes its place beside the drawing area";
    return covered;
  }
  if (!tabs || !IsWindowVisible(tabs)) {
    error = "check-tabs: the bar shows no tabs";
    return false;
  }
  RECT barRect{}, area{}, tabRect{};
  GetWindowRect(bar, &barRect);
  GetWindowRect(mdiClient, &area);
  GetWindowRect(tabs, &tabRect);
  const bool placed = side == "left"    ? barRect.right <= area.left + 1
                      : side == "right" ? barRect.left >= area.right - 1
                      : side == "top"   ? barRect.bottom <= area.top + 1
                                        : barRect.top >= area.bottom - 1;
  // Tabs on a side are drawn turned: the control's whole rectangle is read.
  std::set<std::uint32_t> colours;
  for (int y = tabRect.top; y < tabRect.bottom; ++y)
    for (int x = tabRect.left; x < tabRect.right; ++x) colours.insert(shot.At(x - origin.x, y - origin.y));
  log << "    check-tabs: bar at " << barRect.left - origin.x << "," << barRect.top - origin.y << " "
      << barRect.right - barRect.left << "x" << barRect.bottom - barRect.top << ", drawing area from "
      << area.left - origin.x << " to " << area.right - origin.x << ", " << colours.size()
      << " colours in the tabs" << std::endl;
  if (!placed) {
    error = "check-tabs: the bar is not on the " + side + " of the drawing area";
    return false;
  }
  const LRESULT items = SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0);
  if (items < 1 || colours.size() < 3) {
    error = "check-tabs: no tabs drawn in the screenshot (" + std::to_string(items) + " tabs, " +
            std::to_string(colours.size()) + " colours)";
    return false;
  }
  return true;
}

bool CheckSetting(const std::string& name, const std::string& expected, std::ostream& log, std::string& error) {
  const auto slash = name.find('/');
  const std::string section = slash == std::string::npos ? "" : name.substr(0, slash);
  const std::string key = slash == std::string::npos ? name : name.substr(slash + 1);
  Win32Registry registry;
  SettingsStore store(registry, DefaultSettingsRoot());
  std::string found;
  LogFontA font;
  if (store.GetBinary(section, key, &font, sizeof font)) {
    font.lfFaceName[sizeof font.lfFaceName - 1] = '\0';
    found = text::ToUtf8(font.lfFaceName);
  } else {
    const int missing = -2147483647;
    const int value = store.GetInt(section, key, missing);
    found = value == missing ? "(none)" : std::to_string(value);
  }
  log << "    check-setting " << name << " = " << found << std::endl;
  if (found != expected) {
    error = "check-setting: " + name + " is " + found + ", expected " + expected;
    return false;
  }
  return true;
}

}  // namespace tavlet::demo
