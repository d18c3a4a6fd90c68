#ifdef _WIN32
#include "platform/win32/host/window_system_win32.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "host/window_system.h"

namespace tavlet::win32 {
namespace {

// Records what a hook saw and cuts 30 pixels off the left.
class CuttingHook final : public host::WindowHookSink {
 public:
  void OnWindowPosChanging(port::Window, host::WindowPos& pos) override {
    ++calls;
    pos.x += 30;
    pos.cx -= 30;
  }
  int calls = 0;
};

TEST(Win32WindowSystem, NudgeHooksAndStylesOnRealWindows) {
  auto windows = CreateWin32WindowSystem(nullptr);
  port::Window frame = windows->NewWindow({nullptr, "Frame", "frame", 0, 0, {100, 100, 500, 400}});
  if (!frame) GTEST_SKIP() << "no window station";
  port::Window child =
      windows->NewWindow({frame, "Child", "child", host::kWsChild | host::kWsVisible, 1001, {10, 20, 110, 220}});
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(windows->GetParent(child), frame);

  CuttingHook hook;
  ASSERT_TRUE(windows->AttachHook(child, &hook));
  host::NudgeFrame(*windows, child);
  EXPECT_EQ(hook.calls, 2);
  host::WindowRect r;
  ASSERT_TRUE(windows->GetWindowRect(child, r));
  windows->MapWindowPoints(nullptr, frame, r);
  EXPECT_EQ(r.Width(), 100 - 30);  // the second move was cut too

  windows->DetachHook(child, &hook);
  windows->MoveWindow(child, {10, 20, 110, 220}, false);
  EXPECT_EQ(hook.calls, 2);

  windows->SetStyle(child, windows->GetStyle(child) | host::kWsClipChildren);
  EXPECT_TRUE(windows->GetStyle(child) & host::kWsClipChildren);
  EXPECT_TRUE(windows->SetTimer(child, 101, 800));
  EXPECT_TRUE(windows->KillTimer(child, 101));
  EXPECT_GT(windows->CaptionHeight(), 0);
  EXPECT_TRUE(windows->DestroyWindow(frame));
  EXPECT_FALSE(windows->IsWindow(child));
}

}  // namespace
}  // namespace tavlet::win32
#endif
