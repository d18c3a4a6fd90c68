// MvTavlet's windows on Win32: the bar itself, its floating frame, and the
// factories that the window-system port calls when the portable bar creates
// them. The windows apply what the bar's model and its docking arithmetic say.
#pragma once

#include <windows.h>

#include <functional>

#include "bar/bar_model.h"
#include "bar/docking.h"
#include "menus/bar_menu.h"
#include "platform/win32/bar/bar_tips_win32.h"
#include "platform/win32/handles.h"
#include "platform/win32/host/window_system_win32.h"
#include "platform/win32/menus/context_menu_win32.h"
#include "platform/win32/window.h"

namespace tavlet::win32 {

// Sent by the host to keep the focus off its command line while a bar is used.
inline constexpr UINT kWmAcadKeepFocus = 0x7101;

// The running module's menu, looked up at each use since the module makes it
// after the bar's windows.
using CurrentMenu = std::function<menus::BarMenu*()>;

class MvTavletWindow final : public OwnedByWindow {
 public:
  MvTavletWindow(bar::BarModel& bar, CurrentMenu menu) : bar_(bar), menu_(std::move(menu)), tips_(bar) {}
  HWND Make(const host::WindowCreation& creation);
  bool Sizing() const { return grip_.Sizing(); }
  // After the tip settings changed: delays, width and texts of both tips.
  void ApplyTipSettings() { tips_.Apply(); }
  // The notice's font follows TabFont when the preferences change it.
  void SetNoticeFont(const LogFontA& font);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  int OnCreate(CREATESTRUCTA& create) override;
  void OnDestroy() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnPaint(HDC dc, const RECT& area) override;
  bool OnEraseBackground(HDC) override { return true; }
  bool OnSetCursor(HWND window, UINT hit, UINT mouseMessage) override;
  void OnMouseMove(UINT flags, int x, int y) override;
  void OnLButtonUp(UINT flags, int x, int y) override;
  void OnLButtonDblClk(UINT flags, int x, int y) override;
  void OnClose() override {}  // the bar cannot be closed by a message

 private:
  // Shows where the drag would put the bar's edge: a dotted frame drawn by
  // inversion on the screen, drawn again to erase it.
  void TrackDrag(long thickness);
  void EndTracking();
  void OnContextMenu(POINT screen);
  // The drawing under `screen`: the tab's in tab mode, else the cell's; null on empty bar.
  port::Document DocumentAt(POINT screen);
  menus::BarMenu* Menu() const { return menu_ ? menu_() : nullptr; }

  bar::BarModel& bar_;
  CurrentMenu menu_;
  ContextMenuPopup popup_;
  BarTips tips_;
  GdiObject<HFONT> tabFont_;
  bar::GripSizing grip_;
  bool tracking_ = false;
  RECT tracked_{};
};

// The popup that holds the bar while it floats: a captioned tool window owned
// by the host's frame that the keyboard cannot close.
class FloatFrameWindow final : public OwnedByWindow {
 public:
  explicit FloatFrameWindow(bar::BarModel& bar) : bar_(bar) {}
  HWND Make(const host::WindowCreation& creation);

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void OnDestroy() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnClose() override {}

 private:
  void FitBar();

  bar::BarModel& bar_;
};

// Window kinds "MvTavlet", "PreviewStrip", "TabStrip" and "FloatFrame", made
// for the bar that `currentBar` gives at the moment of creation.
void RegisterBarWindows(Win32WindowSystem& windows, std::function<bar::BarModel*()> currentBar,
                        CurrentMenu currentMenu = {});

}  // namespace tavlet::win32
