#include "platform/win32/bar/preview_strip_win32.h"

#include <string>

#include "bar/strip_actions.h"
#include "platform/win32/port_handles.h"
#include "platform/win32/raster_gdi.h"

namespace tavlet::win32 {

namespace {

void Fill(HDC dc, const RECT& r, COLORREF color) {
  GdiObject<HBRUSH> brush(CreateSolidBrush(color));
  FillRect(dc, &r, brush.get());
}

void Frame(HDC dc, const RECT& r, COLORREF color, int width) {
  GdiObject<HBRUSH> brush(CreateSolidBrush(color));
  RECT edge = r;
  for (int i = 0; i < width && edge.right > edge.left && edge.bottom > edge.top; ++i) {
    FrameRect(dc, &edge, brush.get());
    InflateRect(&edge, -1, -1);
  }
}

constexpr COLORREF kPictureBack = RGB(255, 255, 255);

}  // namespace

PreviewStripWindow::PreviewStripWindow(bar::BarModel& bar) : bar_(bar) {}

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
  RECT client{};
  GetClientRect(hwnd(), &client);
  Fill(dc, client, bar_.Settings().Background);
  SelectedObject font(dc, labelFont_.get());
  TEXTMETRICA metrics{};
  GetTextMetricsA(dc, &metrics);
  layout_.titleHeight = bar::TitleHeightFor(metrics.tmHeight);
  PaintCells(dc);
}

void PreviewStripWindow::PaintCells(HDC dc) {
  bar::DocList& list = bar_.Strip();
  const std::vector<host::WindowRect> cells = layout_.PlaceCells(list, bar_.Settings());
  const int active = list.ActiveIndex();
  const auto& entries = list.Entries();
  for (std::size_t i = 0; i < cells.size() && i < entries.size(); ++i)
    DrawCell(dc, *entries[i], ToRect(cells[i]), static_cast<int>(i) == active);
}

void PreviewStripWindow::DrawCell(HDC dc, const bar::DocEntry& entry, const RECT& cell, bool active) {
  const BarSettings& settings = bar_.Settings();
  const long title = layout_.titleHeight;
  RECT label = cell;
  RECT picture = cell;
  if (entry.collapsed) {
    picture = RECT{};
  } else if (settings.ShowDwgName) {
    if (settings.DwgNameAbove) {
      label.bottom = label.top + title;
      picture.top = label.bottom;
    } else {
      label.top = label.bottom - title;
      picture.bottom = label.top;
    }
  } else {
    label = RECT{};
  }
  if (picture.right > picture.left && picture.bottom > picture.top) {
    Fill(dc, picture, kPictureBack);
    if (!entry.previewDib.empty()) {
      const auto* info = reinterpret_cast<const BITMAPINFO*>(entry.previewDib.data());
      const auto& header = info->bmiHeader;
      if (entry.previewDib.size() >= sizeof(BITMAPINFOHEADER) && header.biBitCount == 24) {
        const unsigned char* bits = entry.previewDib.data() + header.biSize;
        SetStretchBltMode(dc, HALFTONE);
        StretchDIBits(dc, picture.left + 1, picture.top + 1, picture.right - picture.left - 2,
                      picture.bottom - picture.top - 2, 0, 0, header.biWidth, header.biHeight, bits, info,
                      DIB_RGB_COLORS, SRCCOPY);
      }
    }
  }
  if (label.right > label.left && label.bottom > label.top) {
    Fill(dc, label, settings.TitleBack);
    const std::string name = entry.path.GetName();
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, entry.modified ? settings.Modified : entry.path.readOnly ? settings.ReadOnly : settings.TitleText);
    RECT text = label;
    InflateRect(&text, -2, 0);
    DrawTextA(dc, name.c_str(), static_cast<int>(name.size()), &text,
              DT_SINGLELINE | DT_VCENTER | DT_CENTER | DT_END_ELLIPSIS | DT_NOPREFIX);
  }
  Frame(dc, cell, active ? kActiveCellFrame : kCellFrame, active ? 2 : 1);
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
