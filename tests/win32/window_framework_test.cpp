// The Win32 window framework on real windows: hook chains on a window that is
// not ours, the one procedure of our window objects, and the resource handle.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/win32/host/frame_layout.h"
#include "platform/win32/window.h"
#include "platform/win32/window_hook.h"

namespace tavlet::win32 {
namespace {

constexpr UINT kProbe = WM_APP + 7;

// Appends its name to the log for each probe, and then passes it on; the window's
// own procedure answers with the log's length.
class NamedHook final : public WindowHook {
 public:
  NamedHook(char name, std::string& log) : name_(name), log_(log) {}

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == kProbe) log_ += name_;
    return WindowHook::WindowProc(message, wParam, lParam);
  }

 private:
  char name_;
  std::string& log_;
};

std::string* ownLog = nullptr;

LRESULT CALLBACK OwnProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kProbe && ownLog) {
    *ownLog += 'w';
    return static_cast<LRESULT>(ownLog->size());
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

HWND MakeForeignWindow() {
  static bool registered = false;
  if (!registered) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = OwnProcedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = "TavletHookProbe";
    registered = RegisterClassA(&windowClass) != 0;
  }
  return CreateWindowExA(0, "TavletHookProbe", "", WS_POPUP, 0, 0, 50, 50, nullptr, nullptr,
                         GetModuleHandleA(nullptr), nullptr);
}

TEST(WindowHook, ChainsRunNewestFirstAndDetachInAnyOrder) {
  // Three hooks a, b, c attached in that order; each row detaches them in one
  // order and checks the chain after every step.
  struct Case {
    std::array<int, 3> detachOrder;
    std::array<const char*, 3> chains;  // what a probe sees after each detach
  };
  const Case cases[] = {
      {{2, 1, 0}, {"baw", "aw", "w"}},
      {{0, 1, 2}, {"cbw", "cw", "w"}},
      {{1, 0, 2}, {"caw", "cw", "w"}},
      {{1, 2, 0}, {"caw", "aw", "w"}},
  };
  for (const Case& c : cases) {
    std::string log;
    ownLog = &log;
    HWND window = MakeForeignWindow();
    ASSERT_NE(window, nullptr);
    const LONG_PTR own = GetWindowLongPtrA(window, GWLP_WNDPROC);
    std::vector<std::unique_ptr<NamedHook>> hooks;
    for (char name : {'a', 'b', 'c'}) {
      hooks.push_back(std::make_unique<NamedHook>(name, log));
      ASSERT_TRUE(hooks.back()->Attach(window));
    }
    EXPECT_FALSE(hooks[0]->Attach(window));  // already attached
    EXPECT_EQ(SendMessageA(window, kProbe, 0, 0), 4);
    EXPECT_EQ(log, "cbaw");
    for (int step = 0; step < 3; ++step) {
      hooks[c.detachOrder[step]]->Detach();
      log.clear();
      SendMessageA(window, kProbe, 0, 0);
      EXPECT_EQ(log, c.chains[step]) << "step " << step;
    }
    // The last detach gives the window its own procedure back.
    EXPECT_EQ(GetWindowLongPtrA(window, GWLP_WNDPROC), own);
    DestroyWindow(window);
    ownLog = nullptr;
  }
}

TEST(WindowHook, DestroyingTheWindowReleasesEveryHook) {
  std::string log;
  ownLog = &log;
  HWND window = MakeForeignWindow();
  const int before = WindowHook::HookedWindowCount();
  NamedHook a('a', log), b('b', log);
  ASSERT_TRUE(a.Attach(window));
  ASSERT_TRUE(b.Attach(window));
  EXPECT_EQ(WindowHook::HookedWindowCount(), before + 1);
  DestroyWindow(window);
  EXPECT_EQ(a.Hooked(), nullptr);
  EXPECT_EQ(b.Hooked(), nullptr);
  EXPECT_EQ(WindowHook::HookedWindowCount(), before);
  a.Detach();  // nothing left to undo
  EXPECT_FALSE(a.Attach(window));  // not a live window
  ownLog = nullptr;
}

TEST(WindowHook, LastMessageIsTheOneBeingHandledAndComesBackAfterNesting) {
  class Nesting final : public WindowHook {
   protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
      if (message == kProbe && wParam == 1) {
        SendMessageA(Hooked(), kProbe, 2, 0);
        seenAfterNesting = LastMessage().wParam;
      }
      return WindowHook::WindowProc(message, wParam, lParam);
    }

   public:
    WPARAM seenAfterNesting = 0;
  };
  HWND window = MakeForeignWindow();
  Nesting hook;
  ASSERT_TRUE(hook.Attach(window));
  SendMessageA(window, kProbe, 1, 0);
  EXPECT_EQ(hook.seenAfterNesting, 1u);
  DestroyWindow(window);
}

class Probe final : public Window {
 public:
  int created = 0;
  int finals = 0;
  bool throwOnTimer = false;
  std::vector<UINT> timers;

 protected:
  int OnCreate(CREATESTRUCTA&) override {
    ++created;
    return 0;
  }
  void OnTimer(UINT_PTR id) override {
    if (throwOnTimer) throw std::runtime_error("handler failure");
    timers.push_back(static_cast<UINT>(id));
  }
  void OnClose() override {}
  void OnFinalMessage() override { ++finals; }
};

TEST(Window, OneProcedureFindsTheObjectAndNoExceptionLeavesIt) {
  ASSERT_TRUE(RegisterWindowClass("TavletProbeWindow", CS_DBLCLKS, IDC_ARROW, nullptr));
  EXPECT_TRUE(RegisterWindowClass("TavletProbeWindow", CS_DBLCLKS, IDC_ARROW, nullptr));  // once is enough
  Probe probe;
  HWND hwnd = probe.Create("TavletProbeWindow", 0, "probe", WS_POPUP, {0, 0, 40, 40}, nullptr, 0);
  ASSERT_NE(hwnd, nullptr);
  EXPECT_EQ(Window::FromHandle(hwnd), &probe);
  EXPECT_EQ(Window::FromHandle(GetDesktopWindow()), nullptr);
  EXPECT_EQ(probe.created, 1);
  SendMessageA(hwnd, WM_TIMER, 42, 0);
  EXPECT_EQ(probe.timers, std::vector<UINT>{42});
  probe.throwOnTimer = true;
  SendMessageA(hwnd, WM_TIMER, 43, 0);  // must come back, not unwind through the system
  SendMessageA(hwnd, WM_CLOSE, 0, 0);
  EXPECT_TRUE(IsWindow(hwnd));  // the handler ignores it
  DestroyWindow(hwnd);
  EXPECT_EQ(probe.finals, 1);
  EXPECT_EQ(probe.hwnd(), nullptr);
}

TEST(Window, ResourceScopesNestAndRestore) {
  const HINSTANCE process = GetModuleHandleA(nullptr);
  const HINSTANCE other = reinterpret_cast<HINSTANCE>(GetModuleHandleA("user32.dll"));
  EXPECT_EQ(CurrentResourceInstance(), process);
  {
    ResourceScope outer(other);
    EXPECT_EQ(CurrentResourceInstance(), other);
    {
      ResourceScope inner(process);
      EXPECT_EQ(CurrentResourceInstance(), process);
    }
    EXPECT_EQ(CurrentResourceInstance(), other);
  }
  EXPECT_EQ(CurrentResourceInstance(), process);
}

// A bar of the frame that takes `height` off the bottom, as the host's bars do.
LRESULT CALLBACK BottomBar(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kWmSizeParent) {
    auto* layout = reinterpret_cast<SizeParentParams*>(lParam);
    RECT r = layout->rect;
    r.top = r.bottom - 30;
    layout->rect.bottom = r.top;
    if (layout->deferred)
      layout->deferred = DeferWindowPos(layout->deferred, hwnd, nullptr, r.left, r.top, r.right - r.left, 30,
                                        SWP_NOZORDER | SWP_NOACTIVATE);
    return 0;
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

TEST(FrameLayout, QueryModeMovesNothingAndTheLayoutPlacesTheLeftOver) {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = BottomBar;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "TavletBottomBar";
  RegisterClassA(&windowClass);
  HWND frame = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
  HWND bar = CreateWindowExA(0, "TavletBottomBar", "", WS_CHILD, 0, 0, 10, 10, frame,
                             reinterpret_cast<HMENU>(0xE81E), nullptr, nullptr);
  HWND leftOver = CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 10, 10, frame,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(kMdiClientId)), nullptr, nullptr);
  ASSERT_TRUE(frame && bar && leftOver);
  const RECT query = RepositionBars(frame, 0, 0xFFFF, kMdiClientId, true);
  EXPECT_EQ(query.bottom, 270);
  EXPECT_EQ(query.right, 400);
  RECT r{};
  GetWindowRect(leftOver, &r);
  EXPECT_EQ(r.right - r.left, 10);  // query mode moves nothing
  RepositionDrawingArea(frame, leftOver);
  GetClientRect(leftOver, &r);
  EXPECT_EQ(r.right, 400);
  EXPECT_EQ(r.bottom, 270);
  DestroyWindow(frame);
}

}  // namespace
}  // namespace tavlet::win32
