#include "script.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "dialog_driver.h"
#include "extras_driver.h"
#include "menu_driver.h"
#include "preferences_driver.h"
#include "text/codepage.h"
#include "text/words.h"
#include "platform/win32/bar/preview_strip_win32.h"

namespace tavlet::demo {

namespace {

struct Verb {
  int minArgs;
  int maxArgs;  // -1: any
  const char* usage;
};

const std::map<std::string, Verb>& Verbs() {
  static const std::map<std::string, Verb> verbs = {
      {"open", {1, 1, "open PATH"}},
      {"activate", {1, 1, "activate NAME|N"}},
      {"command", {1, -1, "command TEXT"}},
      {"click", {2, 3, "click cell N [ctrl] | click X Y [ctrl]"}},
      {"dblclick", {2, 3, "dblclick cell N [ctrl] | dblclick X Y [ctrl]"}},
      {"rclick", {2, 3, "rclick cell N | rclick X Y"}},
      {"menu", {3, 3, "menu cell N \"ENTRY > ENTRY ...\" | menu X Y \"ENTRY > ...\""}},
      {"menu-screenshot", {4, 4, "menu-screenshot cell N \"ENTRY > ...\" PATH.png|PATH.bmp"}},
      {"wheel", {1, 1, "wheel DELTA"}},
      {"resize", {2, 2, "resize WIDTH HEIGHT"}},
      {"wait", {1, 1, "wait MILLISECONDS"}},
      {"answer", {1, 1, "answer ok|cancel|yes|no"}},
      {"screenshot", {1, 1, "screenshot PATH.png|PATH.bmp"}},
      {"check-bar", {1, 1, "check-bar CELLS"}},
      {"set", {2, 2, "set [SECTION/]KEY VALUE"}},
      {"unload", {0, 0, "unload"}},
      {"load", {0, 0, "load"}},
      {"quit", {0, 0, "quit"}},
      {"dialog", {2, 4, "dialog TITLE type|select|click|header|size|screenshot|close [ARGS]"}},
      {"worksets", {2, 3, "worksets new NAME [FROM] | worksets check EXPECTED"}},
      {"preferences", {1, 1, "preferences \"STEP; STEP; ... ok|cancel\""}},
      {"check-tabs", {1, 1, "check-tabs left|right|top|bottom|none"}},
      {"check-setting", {2, 2, "check-setting [SECTION/]KEY VALUE|FACE"}},
      {"ctrl-tab", {2, 3, "ctrl-tab TABS SHOT.png|SHOT.bmp [NAME]"}},
      {"check-clipboard", {1, 1, "check-clipboard N"}},
      {"check-open", {0, -1, "check-open NAME..."}},
      {"crash", {0, 0, "crash"}},
  };
  return verbs;
}

std::string VerbList() {
  std::string list;
  for (const auto& [name, verb] : Verbs()) list += (list.empty() ? "" : ", ") + name;
  return list;
}

bool ParseInt(const std::string& text, long& value) {
  if (text.empty()) return false;
  char* end = nullptr;
  value = std::strtol(text.c_str(), &end, 10);
  return end && *end == '\0';
}

std::string Where(const std::string& path, int line) { return path + ":" + std::to_string(line) + ": "; }

BOOL CALLBACK FindStripIn(HWND hwnd, LPARAM found) {
  char name[64] = {};
  GetClassNameA(hwnd, name, sizeof name);
  if (lstrcmpA(name, "PreviewStrip") == 0 && IsWindowVisible(hwnd)) {
    *reinterpret_cast<HWND*>(found) = hwnd;
    return FALSE;
  }
  return TRUE;
}

BOOL CALLBACK FindStripInTop(HWND hwnd, LPARAM found) {
  FindStripIn(hwnd, found);
  if (!*reinterpret_cast<HWND*>(found)) EnumChildWindows(hwnd, FindStripIn, found);
  return *reinterpret_cast<HWND*>(found) ? FALSE : TRUE;
}

bool Intersect(const RECT& a, const RECT& b) {
  RECT overlap{};
  return IntersectRect(&overlap, &a, &b) != FALSE;
}

std::uint32_t Rgb(COLORREF color) {
  return (std::uint32_t{GetRValue(color)} << 16) | (std::uint32_t{GetGValue(color)} << 8) | GetBValue(color);
}

}  // namespace

HWND FindPreviewStrip() {
  HWND found = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), FindStripInTop, reinterpret_cast<LPARAM>(&found));
  return found;
}

bool CellOnScreen(HWND strip, int index, RECT& cell) {
  static const UINT message = RegisterWindowMessageA(win32::kCellRectMessage);
  if (!strip || index < 0 || !SendMessageA(strip, message, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&cell)))
    return false;
  MapWindowPoints(strip, nullptr, reinterpret_cast<POINT*>(&cell), 2);
  return true;
}

// ---------------------------------------------------------------- parsing

bool Script::Load(const std::string& path, std::string& error) {
  path_ = path;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = path + ": cannot read the script";
    return false;
  }
  std::stringstream text;
  text << in.rdbuf();
  return Parse(text.str(), error);
}

bool Script::Parse(const std::string& text, std::string& error) {
  steps_.clear();
  std::istringstream in(text);
  std::string raw;
  int number = 0;
  while (std::getline(in, raw)) {
    ++number;
    if (!raw.empty() && raw.back() == '\r') raw.pop_back();
    const std::vector<std::string> tokens = text::SplitWords(raw);
    if (tokens.empty() || tokens[0][0] == '#') continue;
    ScriptStep step{number, tokens[0], {tokens.begin() + 1, tokens.end()}, ""};
    const auto verb = Verbs().find(step.verb);
    if (verb == Verbs().end()) {
      error = Where(path_, number) + "unknown verb '" + step.verb + "'; expected one of: " + VerbList();
      return false;
    }
    const int count = static_cast<int>(step.args.size());
    if (count < verb->second.minArgs || (verb->second.maxArgs >= 0 && count > verb->second.maxArgs)) {
      error = Where(path_, number) + "expected '" + verb->second.usage + "'";
      return false;
    }
    const auto start = raw.find(step.verb) + step.verb.size();
    step.rest = raw.substr(start);
    step.rest.erase(0, step.rest.find_first_not_of(" \t"));
    long value = 0;
    const std::string& first = step.args.empty() ? std::string() : step.args[0];
    const bool needsNumber = step.verb == "wheel" || step.verb == "wait" || step.verb == "check-bar" ||
                             step.verb == "resize" || step.verb == "set";
    if (needsNumber && !ParseInt(step.verb == "set" ? step.args[1] : first, value)) {
      error = Where(path_, number) + "expected a number in '" + verb->second.usage + "'";
      return false;
    }
    if (step.verb == "resize" && !ParseInt(step.args[1], value)) {
      error = Where(path_, number) + "expected a number in '" + verb->second.usage + "'";
      return false;
    }
    if (step.verb == "answer" && first != "ok" && first != "cancel" && first != "yes" && first != "no") {
      error = Where(path_, number) + "expected '" + verb->second.usage + "'";
      return false;
    }
    if (std::vector<PreferencesStep> steps; step.verb == "preferences" && !ParsePreferencesSteps(first, steps, error)) {
      error = Where(path_, number) + "preferences: " + error;
      return false;
    }
    const bool menu = step.verb == "menu" || step.verb == "menu-screenshot";
    if (step.verb == "click" || step.verb == "dblclick" || step.verb == "rclick" || menu) {
      long a = 0, b = 0;
      const bool cell = first == "cell" && ParseInt(step.args[1], a);
      const bool point = ParseInt(first, a) && ParseInt(step.args[1], b);
      const bool modifierOk = menu ? !step.args[2].empty() : count < 3 || step.args[2] == "ctrl";
      if (!(cell || point) || !modifierOk) {
        error = Where(path_, number) + "expected '" + verb->second.usage + "'";
        return false;
      }
    }
    steps_.push_back(std::move(step));
  }
  return true;
}

// ---------------------------------------------------------------- running

std::string ScriptRunner::Resolve(const std::string& path) const {
  const bool absolute = path.size() > 1 && (path[1] == ':' || path[0] == '\\' || path[0] == '/');
  if (absolute) return path;
  const std::string& script = script_.Path();
  const auto slash = script.find_last_of("\\/");
  if (slash != std::string::npos) {
    const std::string beside = script.substr(0, slash + 1) + path;
    if (GetFileAttributesA(beside.c_str()) != INVALID_FILE_ATTRIBUTES) return beside;
  }
  return path;
}

bool ScriptRunner::Run(std::string& error) {
  for (const ScriptStep& step : script_.Steps()) {
    log_ << "[" << step.line << "] " << step.verb << (step.rest.empty() ? "" : " ") << step.rest << std::endl;
    if (!Step(step, error)) {
      error = Where(script_.Path(), step.line) + error;
      return false;
    }
    demo_.Pump(30);
    if (quit_) break;
  }
  return true;
}

bool ScriptRunner::Step(const ScriptStep& step, std::string& error) {
  const std::string& verb = step.verb;
  const auto& args = step.args;
  sim::SimHost& host = demo_.Host();
  if (verb == "open") {
    const std::string path = Resolve(args[0]);
    if (GetFileAttributesA(path.c_str()) == INVALID_FILE_ATTRIBUTES) {
      error = "open: no such file '" + args[0] + "'";
      return false;
    }
    if (!demo_.Open(path)) {
      error = "open: the host could not open '" + args[0] + "': " + host.LastOpenError();
      return false;
    }
  } else if (verb == "activate") {
    long index = 0;
    const std::vector<port::Document> open = host.OpenDocuments();
    port::Document target = nullptr;
    if (ParseInt(args[0], index)) {
      if (index >= 1 && index <= static_cast<long>(open.size())) target = open[static_cast<std::size_t>(index - 1)];
    } else {
      for (port::Document doc : open)
        if (const sim::SimDocument* d = host.Find(doc); d && lstrcmpiA(d->fileName.c_str(), args[0].c_str()) == 0)
          target = doc;
    }
    if (!target) {
      error = "activate: no open drawing '" + args[0] + "'";
      return false;
    }
    host.Activate(target);
  } else if (verb == "command") {
    demo_.Execute(step.rest);
  } else if (verb == "click" || verb == "dblclick") {
    return Click(step, error);
  } else if (verb == "rclick" || verb == "menu" || verb == "menu-screenshot") {
    return RightClick(step, error);
  } else if (verb == "wheel") {
    HWND view = demo_.ViewOf(host.MdiActive());
    if (!view) {
      error = "wheel: no drawing is open";
      return false;
    }
    RECT r{};
    GetWindowRect(view, &r);
    const long delta = std::strtol(args[0].c_str(), nullptr, 10);
    PostMessageA(view, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<short>(delta)),
                 MAKELPARAM((r.left + r.right) / 2, (r.top + r.bottom) / 2));
  } else if (verb == "resize") {
    SetWindowPos(demo_.Frame(), nullptr, 0, 0, std::atoi(args[0].c_str()), std::atoi(args[1].c_str()),
                 SWP_NOMOVE | SWP_NOZORDER);
  } else if (verb == "wait") {
    demo_.Pump(std::atoi(args[0].c_str()));
  } else if (verb == "answer") {
    const std::string& a = args[0];
    host.QueueBoxAnswer(a == "ok" ? port::kAnswerOk : a == "cancel" ? port::kAnswerCancel
                                                    : a == "yes"    ? port::kAnswerYes
                                                                    : port::kAnswerNo);
  } else if (verb == "screenshot") {
    HWND frame = demo_.Frame();
    SetForegroundWindow(frame);
    RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW | RDW_FRAME);
    demo_.Pump(200);
    shot_ = CaptureWindow(frame);
    GetWindowRect(frame, &shotRect_);
    const bool absolute = args[0].size() > 1 && (args[0][1] == ':' || args[0][0] == '\\' || args[0][0] == '/');
    const std::string path = absolute || outputFolder_.empty() ? args[0] : outputFolder_ + "\\" + args[0];
    if (!WritePicture(*shot_, path, error)) return false;
    log_ << "    screenshot " << path << " (" << shot_->width << "x" << shot_->height << ")" << std::endl;
  } else if (verb == "check-bar") {
    return CheckBar(step, error);
  } else if (verb == "set") {
    const auto slash = args[0].find('/');
    const std::string section = slash == std::string::npos ? "" : args[0].substr(0, slash);
    const std::string key = slash == std::string::npos ? args[0] : args[0].substr(slash + 1);
    if (!WriteSetting(section, key, std::atoi(args[1].c_str()))) {
      error = "set: cannot write the setting " + args[0];
      return false;
    }
  } else if (verb == "unload") {
    demo_.UnloadModule();
  } else if (verb == "load") {
    if (!demo_.LoadModule(error)) return false;
  } else if (verb == "quit") {
    quit_ = true;
  } else if (verb == "dialog" || verb == "worksets") {
    const DialogStepContext context{demo_, [this](const std::string& p) { return Resolve(p); }, outputFolder_, log_};
    return verb == "dialog" ? RunDialogStep(context, step, error) : RunWorksetsStep(context, step, error);
  } else if (verb == "preferences") {
    std::vector<PreferencesStep> steps;
    return ParsePreferencesSteps(args[0], steps, error) &&
           DrivePreferences(steps, [this] { demo_.Execute("TLOPTIONS"); }, outputFolder_, log_, error);
  } else if (verb == "check-tabs") {
    if (!shot_) {
      error = "check-tabs: take a screenshot first";
      return false;
    }
    return CheckTabs(*shot_, {shotRect_.left, shotRect_.top}, demo_.Frame(), demo_.MdiClient(), args[0], log_, error);
  } else if (verb == "check-setting") {
    return CheckSetting(args[0], args[1], log_, error);
  } else if (IsExtrasVerb(verb)) {
    return RunExtrasStep({demo_, [this](const std::string& p) { return Resolve(p); }, outputFolder_, log_}, step, error);
  }
  return true;
}

bool ScriptRunner::Click(const ScriptStep& step, std::string& error) {
  const auto& args = step.args;
  const bool ctrl = args.size() == 3;
  POINT screen{};
  HWND target = nullptr;
  if (args[0] == "cell") {
    const int index = std::atoi(args[1].c_str()) - 1;
    HWND strip = FindPreviewStrip();
    RECT cell{};
    if (!CellOnScreen(strip, index, cell)) {
      error = step.verb + ": the bar shows no cell " + args[1];
      return false;
    }
    screen = {(cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2};
    target = strip;
  } else {
    screen = {std::atoi(args[0].c_str()), std::atoi(args[1].c_str())};
    ClientToScreen(demo_.Frame(), &screen);
    target = WindowFromPoint(screen);
    if (!target) {
      error = step.verb + ": no window at " + args[0] + "," + args[1];
      return false;
    }
  }
  SetCursorPos(screen.x, screen.y);
  POINT client = screen;
  ScreenToClient(target, &client);
  const LPARAM at = MAKELPARAM(client.x, client.y);
  const WPARAM keys = ctrl ? MK_CONTROL : 0;
  if (step.verb == "rclick" || step.verb == "menu" || step.verb == "menu-screenshot") {
    PostMessageA(target, WM_RBUTTONDOWN, keys | MK_RBUTTON, at);
    // The default handling of the button's release sends WM_CONTEXTMENU, as with a real click.
    PostMessageA(target, WM_RBUTTONUP, keys, at);
    return true;
  }
  PostMessageA(target, WM_LBUTTONDOWN, keys | MK_LBUTTON, at);
  PostMessageA(target, WM_LBUTTONUP, keys, at);
  if (step.verb == "dblclick") {
    PostMessageA(target, WM_LBUTTONDBLCLK, keys | MK_LBUTTON, at);
    PostMessageA(target, WM_LBUTTONUP, keys, at);
  }
  return true;
}

bool ScriptRunner::RightClick(const ScriptStep& step, std::string& error) {
  if (!Click(step, error)) return false;
  MenuRun run;
  run.action = step.verb == "menu" ? MenuAction::Pick : step.verb == "menu-screenshot" ? MenuAction::Show
                                                                                        : MenuAction::Close;
  if (run.action != MenuAction::Close) run.path = ParseMenuPath(step.args[2]);
  // A right click off the bar opens nothing, and that is no failure of `rclick`.
  const int timeout = run.action == MenuAction::Close ? 1500 : 20000;
  const bool driven = DriveMenu(run, demo_.Frame(), timeout, [this](int ms) { demo_.Pump(ms); });
  if (run.opened) log_ << "    popup menu of " << run.topEntries << " entries" << std::endl;
  if (run.action == MenuAction::Close) return true;
  if (!driven) {
    error = run.error;
    return false;
  }
  if (!run.tipText.empty()) {
    log_ << "    menu tip at " << run.tipAt.x << "," << run.tipAt.y << " beside the entry at "
         << run.itemRect.left << "," << run.itemRect.top << "-" << run.itemRect.right << ": "
         << text::ToUtf8(run.tipText) << std::endl;
  }
  lastMenu_ = run;
  if (run.action == MenuAction::Show) {
    const std::string& name = step.args[3];
    const bool absolute = name.size() > 1 && (name[1] == ':' || name[0] == '\\' || name[0] == '/');
    const std::string path = absolute || outputFolder_.empty() ? name : outputFolder_ + "\\" + name;
    if (!run.shot || !WritePicture(*run.shot, path, error)) {
      if (error.empty()) error = "menu-screenshot: no picture was taken";
      return false;
    }
    log_ << "    screenshot " << path << " (" << run.shot->width << "x" << run.shot->height << ")" << std::endl;
  }
  return true;
}

bool ScriptRunner::CheckBar(const ScriptStep& step, std::string& error) {
  const long expected = std::strtol(step.args[0].c_str(), nullptr, 10);
  if (!shot_) {
    error = "check-bar: take a screenshot first";
    return false;
  }
  HWND strip = FindPreviewStrip();
  if (!strip) {
    error = "check-bar: the bar shows no previews";
    return false;
  }
  HWND bar = GetParent(strip);
  RECT barRect{}, drawingArea{};
  GetWindowRect(bar, &barRect);
  GetWindowRect(demo_.MdiClient(), &drawingArea);
  if (Intersect(barRect, drawingArea) && !(GetWindowLongPtrA(bar, GWL_STYLE) & WS_POPUP) &&
      GetAncestor(bar, GA_ROOT) == demo_.Frame()) {
    error = "check-bar: the bar overlaps the drawing area";
    return false;
  }
  const std::uint32_t edgeColour = Rgb(win32::CellEdgeColor(false)), activeColour = Rgb(win32::CellEdgeColor(true));
  long seen = 0;
  for (int i = 0;; ++i) {
    RECT cell{};
    if (!CellOnScreen(strip, i, cell)) break;
    const POINT probe = win32::CellProbe(cell);
    const std::uint32_t pixel = shot_->At(probe.x - shotRect_.left, probe.y - shotRect_.top);
    if (pixel == edgeColour || pixel == activeColour) ++seen;
  }
  log_ << "    check-bar: " << seen << " cells drawn in the bar at " << barRect.left - shotRect_.left << ","
       << barRect.top - shotRect_.top << " " << barRect.right - barRect.left << "x" << barRect.bottom - barRect.top
       << std::endl;
  if (seen != expected) {
    error = "check-bar: expected " + std::to_string(expected) + " cells in the screenshot, found " +
            std::to_string(seen);
    return false;
  }
  return true;
}

}  // namespace tavlet::demo
