// ThemedTabCtrl: a tab control that draws its tabs with the system's theme along
// any edge (the theme's own tabs only lie along the top), and otherwise leaves
// the control's own paint and owner-drawn items, adding the selected tab's
// translucent cover. It hooks a tab control that someone else made.
#pragma once

#include <windows.h>

#include "platform/win32/window_hook.h"

namespace tavlet::win32 {

class ThemedTabCtrl final : public WindowHook {
 public:
  // Hooks `tabs` for its life; the hook goes with the window. Null on failure.
  static ThemedTabCtrl* Attach(HWND tabs);
  static ThemedTabCtrl* Of(HWND tabs);

  // The owner's notifications of the control: they repaint the two tabs concerned.
  void OnSelChanging();
  void OnSelChange();

  // Off: the system's drawing always.
  bool themedDrawing = true;
  int orientation = 0;  // worked out from the style before each use
  int lastSelection = -1;

  // Whether this paint may use the theme service (the test loads UxTheme.dll).
  bool Themed();

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  ThemedTabCtrl() = default;
  void ThemedPaint();
  LRESULT PlainPaint();
  void DrawTabPart(HDC dc, int item, const RECT& rect, unsigned flags);
  void RepaintItem(int item);
};

// The system's version, major in the high word and minor in the low; read once.
unsigned long SystemVersion();

}  // namespace tavlet::win32
