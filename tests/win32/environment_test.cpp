// The Windows tests only mean something when the process runs with the code
// page the bar's texts are written in.
#include <windows.h>

#include <gtest/gtest.h>

namespace {

TEST(WineEnvironment, AnsiCodePageIs936) {
  EXPECT_EQ(GetACP(), 936u);
  CPINFO info{};
  ASSERT_TRUE(GetCPInfo(CP_ACP, &info));
  EXPECT_EQ(info.MaxCharSize, 2u);
}

TEST(WineEnvironment, WindowsCanBeCreated) {
  HWND window = CreateWindowExA(0, "STATIC", "probe", WS_POPUP, 0, 0, 100, 50, nullptr,
                                nullptr, GetModuleHandleA(nullptr), nullptr);
  ASSERT_NE(window, nullptr);
  RECT rect{};
  EXPECT_TRUE(GetWindowRect(window, &rect));
  EXPECT_EQ(rect.right - rect.left, 100);
  DestroyWindow(window);
}

}  // namespace
