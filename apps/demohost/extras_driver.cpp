#include "extras_driver.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>

#include "image_file.h"
#include "text/codepage.h"

namespace tavlet::demo {
namespace {

constexpr char kSwitcherClass[] = "TavletSwitcher";

void SendKey(WORD key, bool up) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
  SendInput(1, &input, sizeof input);
}

// The popup runs its own loop: a thread timer, which that loop dispatches, does
// the rest of the keys and the picture.
struct CtrlTabRun {
  HWND frame = nullptr;
  int tabsLeft = 0;
  int ticks = 0;
  std::string shotPath;
  bool shown = false;
  bool done = false;
  std::string error;
  std::ostream* log = nullptr;
};

CtrlTabRun*& Running() {
  static CtrlTabRun* run = nullptr;
  return run;
}

void CALLBACK CtrlTabTick(HWND, UINT, UINT_PTR id, DWORD) {
  CtrlTabRun* run = Running();
  if (!run || run->done) {
    KillTimer(nullptr, id);
    return;
  }
  HWND popup = FindWindowA(kSwitcherClass, nullptr);
  if (!popup || !IsWindowVisible(popup)) {
    if (++run->ticks > 40) {
      run->error = "ctrl-tab: the switcher did not open";
      run->done = true;
      SendKey(VK_CONTROL, true);
      KillTimer(nullptr, id);
    }
    return;
  }
  if (run->tabsLeft > 0) {
    --run->tabsLeft;
    SendKey(VK_TAB, false);
    SendKey(VK_TAB, true);
    return;
  }
  RedrawWindow(popup, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  RECT frame{}, window{}, both{};
  GetWindowRect(run->frame, &frame);
  GetWindowRect(popup, &window);
  UnionRect(&both, &frame, &window);
  const Picture shot = CaptureRect(both);
  if (!WritePicture(shot, run->shotPath, run->error)) run->error = "ctrl-tab: " + run->error;
  else *run->log << "    switcher " << run->shotPath << " (" << shot.width << "x" << shot.height << ")" << std::endl;
  run->shown = true;
  run->done = true;
  KillTimer(nullptr, id);
  SendKey(VK_CONTROL, true);
}

std::string OutputPath(const DialogStepContext& context, const std::string& path) {
  const bool absolute = path.size() > 1 && (path[1] == ':' || path[0] == '\\' || path[0] == '/');
  return absolute || context.outputFolder.empty() ? path : context.outputFolder + "\\" + path;
}

// The name and extension of a path.
std::string Leaf(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// In UTF-8, as the scripts are written.
std::string NameOf(const sim::SimDocument& d) { return text::ToUtf8(Leaf(d.path.empty() ? d.fileName : d.path)); }

std::string Lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

bool CtrlTab(const DialogStepContext& context, const ScriptStep& step, std::string& error) {
  DemoHost& demo = context.demo;
  CtrlTabRun run;
  run.frame = demo.Frame();
  run.tabsLeft = std::atoi(step.args[0].c_str());
  run.shotPath = OutputPath(context, step.args[1]);
  run.log = &context.log;
  SetForegroundWindow(run.frame);
  HWND view = demo.ViewOf(demo.Host().MdiActive());
  SetFocus(view ? view : run.frame);
  demo.Pump(100);
  Running() = &run;
  SendKey(VK_CONTROL, false);
  SendKey(VK_TAB, false);
  SendKey(VK_TAB, true);
  SetTimer(nullptr, 0, 250, CtrlTabTick);
  const DWORD deadline = GetTickCount() + 15000;
  while (!run.done && static_cast<int>(deadline - GetTickCount()) > 0) demo.Pump(50);
  demo.Pump(300);
  Running() = nullptr;
  if (!run.done) {
    SendKey(VK_CONTROL, true);
    demo.Pump(100);
    error = "ctrl-tab: no switcher within 15 seconds";
    return false;
  }
  if (!run.error.empty()) {
    error = run.error;
    return false;
  }
  if (step.args.size() > 2) {
    const sim::SimDocument* active = demo.Host().Find(demo.Host().MdiActive());
    const std::string name = active ? NameOf(*active) : "<none>";
    if (Lower(name) != Lower(step.args[2])) {
      error = "ctrl-tab: '" + name + "' is active, not '" + step.args[2] + "'";
      return false;
    }
  }
  return true;
}

bool CheckClipboard(const DialogStepContext& context, const ScriptStep& step, std::string& error) {
  const std::vector<port::Document> open = context.demo.Host().OpenDocuments();
  const long index = std::atol(step.args[0].c_str());
  if (index < 1 || index > static_cast<long>(open.size())) {
    error = "check-clipboard: no open drawing " + step.args[0];
    return false;
  }
  const std::string expected = context.demo.Host().Find(open[static_cast<std::size_t>(index - 1)])->path;
  std::string text;
  if (OpenClipboard(nullptr)) {
    if (HANDLE data = GetClipboardData(CF_TEXT)) {
      if (const char* chars = static_cast<const char*>(GlobalLock(data))) {
        text = chars;
        GlobalUnlock(data);
      }
    }
    CloseClipboard();
  }
  context.log << "    clipboard: " << text::ToUtf8(text) << std::endl;
  if (text != expected) {
    error = "check-clipboard: the clipboard holds '" + text::ToUtf8(text) + "', not '" + text::ToUtf8(expected) + "'";
    return false;
  }
  return true;
}

bool CheckOpen(const DialogStepContext& context, const ScriptStep& step, std::string& error) {
  std::multiset<std::string> open, expected;
  for (port::Document doc : context.demo.Host().OpenDocuments())
    if (const sim::SimDocument* d = context.demo.Host().Find(doc)) open.insert(Lower(NameOf(*d)));
  for (const std::string& name : step.args) expected.insert(Lower(name));
  if (open == expected) return true;
  error = "check-open: open are";
  for (const std::string& name : open) error += " " + name;
  return false;
}

}  // namespace

bool IsExtrasVerb(const std::string& verb) {
  return verb == "ctrl-tab" || verb == "check-clipboard" || verb == "check-open" || verb == "crash";
}

bool RunExtrasStep(const DialogStepContext& context, const ScriptStep& step, std::string& error) {
  if (step.verb == "ctrl-tab") return CtrlTab(context, step, error);
  if (step.verb == "check-clipboard") return CheckClipboard(context, step, error);
  if (step.verb == "check-open") return CheckOpen(context, step, error);
  if (step.verb == "crash") {
    context.log << "    crash" << std::endl;
    std::cout.flush();
    TerminateProcess(GetCurrentProcess(), 3);
  }
  return true;
}

}  // namespace tavlet::demo
