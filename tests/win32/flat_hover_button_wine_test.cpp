// The flat button's hover frame, watched by its timer, on real windows.
#include <windows.h>

#include <gtest/gtest.h>

#include "demohost/image_file.h"
#include "platform/win32/ui/flat_hover_button.h"

namespace tavlet::win32 {
namespace {

constexpr int kButtonId = 100;

void Pump(int milliseconds) {
  const DWORD end = GetTickCount() + static_cast<DWORD>(milliseconds);
  do {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    Sleep(5);
  } while (GetTickCount() < end);
}

std::uint32_t Rgb(COLORREF c) { return (std::uint32_t{GetRValue(c)} << 16) | (GetGValue(c) << 8) | GetBValue(c); }

class FlatButton : public ::testing::Test {
 protected:
  void SetUp() override {
    // A pointer left over the place by the last test would make the button hot at once.
    SetCursorPos(0, 0);
    WNDCLASSA kind{};
    kind.lpfnWndProc = DefWindowProcA;
    kind.hInstance = GetModuleHandleA(nullptr);
    kind.lpszClassName = "TavletFlatButtonTest";
    kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    RegisterClassA(&kind);
    dialog = CreateWindowExA(WS_EX_TOPMOST, "TavletFlatButtonTest", "", WS_POPUP | WS_VISIBLE, 100, 100, 200, 100,
                             nullptr, nullptr, kind.hInstance, nullptr);
    button = CreateWindowExA(0, "BUTTON", "Go", WS_CHILD | WS_VISIBLE | BS_PUSHBUTTON, 50, 30, 60, 30, dialog,
                             reinterpret_cast<HMENU>(static_cast<INT_PTR>(kButtonId)), kind.hInstance, nullptr);
    flat = FlatHoverButton::Attach(dialog, kButtonId);
    ASSERT_NE(flat, nullptr);
    flat->backColor = RGB(200, 210, 220);
    Pump(30);
  }
  void TearDown() override { DestroyWindow(dialog); }

  // The pointer over the button (or far from it) and the mouse message that starts the watch.
  void Hover(bool over) {
    RECT r{};
    GetWindowRect(button, &r);
    SetCursorPos(over ? (r.left + r.right) / 2 : r.right + 200, over ? (r.top + r.bottom) / 2 : r.bottom + 200);
    SendMessageA(button, WM_MOUSEMOVE, 0, MAKELPARAM(10, 10));
    Pump(60);
  }
  std::uint32_t Corner() { return demo::CaptureWindow(button).At(0, 0); }

  HWND dialog = nullptr;
  HWND button = nullptr;
  FlatHoverButton* flat = nullptr;
};

TEST_F(FlatButton, TheFrameShowsWhileThePointerIsOverItAndGoesWhenItLeaves) {
  EXPECT_EQ(Corner(), Rgb(flat->backColor));  // flat: the frame is in the fill's colour
  Hover(true);
  EXPECT_TRUE(flat->Hot());
  EXPECT_EQ(Corner(), Rgb(GetSysColor(COLOR_3DHIGHLIGHT)));
  // No message says the pointer left: the timer sees it.
  RECT r{};
  GetWindowRect(button, &r);
  SetCursorPos(r.right + 200, r.bottom + 200);
  Pump(60);
  EXPECT_FALSE(flat->Hot());
  EXPECT_EQ(Corner(), Rgb(flat->backColor));
}

TEST_F(FlatButton, APressedButtonShowsNoHoverFrame) {
  Hover(false);
  RECT r{};
  GetWindowRect(button, &r);
  SetCursorPos((r.left + r.right) / 2, (r.top + r.bottom) / 2);
  SendMessageA(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(10, 10));
  EXPECT_TRUE(flat->Pressed());
  SendMessageA(button, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(10, 10));
  Pump(60);
  EXPECT_FALSE(flat->Hot());
  SendMessageA(button, WM_LBUTTONUP, 0, MAKELPARAM(10, 10));
  EXPECT_FALSE(flat->Pressed());
}

TEST_F(FlatButton, ATranslucentHoverTintsTheButton) {
  flat->alphaHover = true;
  Hover(true);
  ASSERT_TRUE(flat->Hot());
  const demo::Picture shot = demo::CaptureWindow(button);
  EXPECT_EQ(shot.At(0, 0), Rgb(GetSysColor(COLOR_HIGHLIGHT)));
  const std::uint32_t inside = shot.At(3, 3);
  EXPECT_NE(inside, Rgb(flat->backColor));
  EXPECT_NE(inside, Rgb(GetSysColor(COLOR_HIGHLIGHT)));
}

}  // namespace
}  // namespace tavlet::win32
