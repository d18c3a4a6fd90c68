// PreviewStrip's window: applies the strip's layout (scroll bars, cells),
// paints each cell where the layout puts it, and turns clicks, scrolls and
// timers into the bar's actions.
#pragma once

#include <windows.h>
#include <vfw.h>

#include "bar/bar_model.h"
#include "bar/preview_layout.h"
#include "platform/win32/bar/gdi_canvas.h"
#include "platform/win32/handles.h"
#include "platform/win32/window.h"

namespace tavlet::win32 {

// A registered message the strip answers for scripts and tests: wParam is an
// entry's position, lParam a RECT* that receives its last painted cell in the
// strip's client coordinates; the answer is 1 when there is such an entry.
inline constexpr char kCellRectMessage[] = "Tavlet.PreviewStrip.CellRect";

// The bar's hit test of a right click: lParam is a point in the strip's client
// coordinates; the answer is the drawing of the cell there, or 0.
inline constexpr char kDocumentAtMessage[] = "Tavlet.PreviewStrip.DocumentAt";

// Where a screenshot shows that a cell was painted: the left edge of its label
// (below the picture), in the active drawing's highlight or a raised frame's light.
inline POINT CellProbe(const RECT& cell) { return {cell.left, cell.bottom - 2}; }
inline COLORREF CellEdgeColor(bool active) { return GetSysColor(active ? COLOR_ACTIVECAPTION : COLOR_3DHILIGHT); }

class PreviewStripWindow final : public OwnedByWindow {
 public:
  explicit PreviewStripWindow(bar::BarModel& bar);
  ~PreviewStripWindow() override;

  HWND Make(const RECT& rect, HWND parent, int id, const char* text, DWORD style);
  void Layout();
  const bar::StripLayout& Geometry() const { return layout_; }
  // The preferences' changes: a new label font (the cells are laid out again for
  // its height) and the scroll position back at the start.
  void SetLabelFont(const LogFontA& font);
  void ResetScroll();

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  int OnCreate(CREATESTRUCTA& create) override;
  void OnDestroy() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnPaint(HDC dc, const RECT& area) override;
  bool OnEraseBackground(HDC) override { return true; }
  void OnTimer(UINT_PTR id) override;
  void OnLButtonDown(UINT flags, int x, int y) override;
  void OnLButtonDblClk(UINT flags, int x, int y) override;
  void OnScroll(bool vertical, int code, int position, HWND bar) override;

 private:
  bar::BarModel& bar_;
  bar::StripLayout layout_;
  HWND verticalBar_ = nullptr;
  HWND horizontalBar_ = nullptr;
  GdiObject<HFONT> labelFont_;
  StripGlyphs glyphs_;
  HDRAWDIB drawDib_ = nullptr;
  UINT cellRectMessage_ = 0;
  UINT documentAtMessage_ = 0;
};

}  // namespace tavlet::win32
