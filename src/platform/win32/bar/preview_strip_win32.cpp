#include "platform/win32/bar/preview_strip_win32.h"

#include <string>

#include "bar/preview_capture.h"
#include "bar/strip_actions.h"
#include "bar/strip_paint.h"
#include "platform/win32/bar/bar_tips_win32.h"
#include "platform/win32/port_handles.h"
#include "platform/win32/raster_gdi.h"

namespace tavlet::win32 {

PreviewStripWindow::PreviewStripWindow(bar::BarModel& bar) : bar_(bar), drawDib_(DrawDibOpen()) {}

PreviewStripWindow::~PreviewStripWindow() {
  if (drawDib_) DrawDibClose(drawDib_);
}

HWND PreviewStripWindow::Make(const RECT& rect, HWND parent, int id, const char* text, DWORD style) {
  if (!RegisterWindowClass("PreviewStrip", CS_DBLCLKS, IDC_ARROW, nullptr)) return nullptr;
  return Create("PreviewStrip", 0, text, style, rect, parent, static_cast<UINT_PTR>(id));
}

int PreviewStripWindow::OnCreate(CREATESTRUCTA&) {
  const HINSTANCE instance = CurrentResourceInstance();
  verticalBar_ = CreateWindowExA(0, "SCROLLBAR", "", WS_CHILD | SBS_VERT, 0, 0, 0, 0, hwnd(), nullptr, instance,
                                 nullptr);
  horizontalBar_ = CreateWindowExA(0, "SCROLLBAR", "", WS_CHILD | SBS_HORZ, 0, 0, 0, 0, hwnd(), nullptr, instance,
                                   nullptr);
  LOGFONTA font = ToLogFont(bar_.Settings().LabelFont);
  labelFont_ = GdiObject<HFONT>(CreateFontIndirectA(&font));
  cellRectMessage_ = RegisterWindowMessageA(kCellRectMessage);
  documentAtMessage_ = RegisterWindowMessageA(kDocumentAtMessage);
  bar_.onStripLayout = [this] { Layout(); };
  return 0;
}

void PreviewStripWindow::SetLabelFont(const LogFontA& font) {
  const LOGFONTA logFont = ToLogFont(font);
  GdiObject<HFONT> made(CreateFontIndirectA(&logFont));
  if (!made.get()) return;
  labelFont_ = std::move(made);
  Layout();
  RedrawWindow(hwnd(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE);
}

void PreviewStripWindow::ResetScroll() {
  layout_.scrollPos = 0;
  Layout();
  RedrawWindow(hwnd(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE);
}

void PreviewStripWindow::OnDestroy() {
  bar_.onStripLayout = nullptr;
  KillTimer(hwnd(), bar::kActivationTimer);
  KillTimer(hwnd(), bar::kZoomTimer);
}

void PreviewStripWindow::Layout() {
  if (!hwnd()) return;
  layout_.SetDockSide(bar_.DockSide());
  RECT client{};
  GetClientRect(hwnd(), &client);
  const bar::StripFrame frame{{client.left, client.top, client.right, client.bottom}, bar_.mdiClientRect,
                              bar_.Floating()};
  ShowWindow(verticalBar_, SW_HIDE);
  ShowWindow(horizontalBar_, SW_HIDE);
  const bar::StripLayoutResult result = layout_.Layout(bar_.Strip(), bar_.Settings(), frame);
  if (BarTips* tips = BarTips::Of(bar_)) tips->ResetStripTools(hwnd(), result.tips);
  if (result.scrollBar != bar::StripScrollBar::None) {
    HWND scrollBar = result.scrollBar == bar::StripScrollBar::Vertical ? verticalBar_ : horizontalBar_;
    const RECT r = ToRect(result.scrollBarRect);
    MoveWindow(scrollBar, r.left, r.top, r.right - r.left, r.bottom - r.top, FALSE);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = result.scrollInfo.mask;
    info.nMin = static_cast<int>(result.scrollInfo.min);
    info.nMax = static_cast<int>(result.scrollInfo.max);
    info.nPage = static_cast<UINT>(result.scrollInfo.page);
    info.nPos = static_cast<int>(result.scrollInfo.pos);
    SetScrollInfo(scrollBar, SB_CTL, &info, TRUE);
    ShowWindow(scrollBar, SW_SHOW);
  }
  RedrawWindow(hwnd(), nullptr, nullptr, host::kRedrawNow);
}

void PreviewStripWindow::OnSize(UINT, int, int) { Layout(); }

LRESULT PreviewStripWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == cellRectMessage_ && cellRectMessage_ != 0) {
    const auto& entries = bar_.Strip().Entries();
    if (wParam >= entries.size() || !lParam) return 0;
    *reinterpret_cast<RECT*>(lParam) = ToRect(entries[wParam]->itemRect);
    return 1;
  }
  if (message == documentAtMessage_ && documentAtMessage_ != 0) {
    const long x = static_cast<short>(LOWORD(lParam)), y = static_cast<short>(HIWORD(lParam));
    return reinterpret_cast<LRESULT>(layout_.DocumentAt(bar_.Strip(), x, y));
  }
  return Window::OnMessage(message, wParam, lParam);
}

void PreviewStripWindow::OnPaint(HDC dc, const RECT&) {
  SavedDcState saved(dc);
  RECT client{};
  GetClientRect(hwnd(), &client);
  SelectObject(dc, labelFont_.get());
  GdiCanvas canvas(dc, &glyphs_, drawDib_);
  const BarSettings& settings = bar_.Settings();
  const bar::StripPaintInputs inputs{FromRect(client), settings, bar_.Colors(), *bar_.Session().Documents(),
                                     settings.LabelFont};
  BarTips* tips = BarTips::Of(bar_);
  bar::StripPaintHooks hooks;
  hooks.capture = [this](bar::DocEntry& entry) { bar::UpdatePreview(bar_, layout_, &entry); };
  hooks.tip = [this, tips](const bar::DocEntry& entry) {
    if (tips) tips->UpdateStripTool(hwnd(), entry);
  };
  bar::PaintStrip(canvas, inputs, bar_.Strip(), layout_, hooks);
}

void PreviewStripWindow::OnTimer(UINT_PTR id) {
  if (!bar::OnStripTimer(bar_, static_cast<unsigned>(id))) Default();
}

void PreviewStripWindow::OnLButtonDown(UINT flags, int x, int y) {
  const bar::StripClick click = layout_.OnLButtonDown(bar_.Strip(), flags, x, y);
  switch (click.action) {
    case bar::StripClickAction::None:
      Default();
      break;
    case bar::StripClickAction::Expanded:
      Layout();
      break;
    case bar::StripClickAction::Switch:
      bar::SwitchToDocument(bar_.Session(), bar_.Settings(), click.document);
      break;
  }
}

void PreviewStripWindow::OnLButtonDblClk(UINT flags, int x, int y) {
  // The bar answers double clicks wherever they land on it.
  POINT point{x, y};
  HWND parent = GetParent(hwnd());
  MapWindowPoints(hwnd(), parent, &point, 1);
  SendMessageA(parent, WM_LBUTTONDBLCLK, flags, MAKELPARAM(point.x, point.y));
}

void PreviewStripWindow::OnScroll(bool vertical, int code, int position, HWND bar) {
  const long pos = layout_.OnScroll(code, position, bar_.Settings());
  SetScrollPos(bar ? bar : (vertical ? verticalBar_ : horizontalBar_), SB_CTL, static_cast<int>(pos), TRUE);
  RedrawWindow(hwnd(), nullptr, nullptr, host::kRedrawNow);
}

}  // namespace tavlet::win32
