#include "platform/win32/bar/mv_tavlet_win32.h"

#include <commctrl.h>

#include <string>

#include "bar/preview_capture.h"
#include "bar/strip_actions.h"
#include "bar/strip_paint.h"
#include "host/com_error.h"
#include "platform/win32/bar/gdi_canvas.h"
#include "platform/win32/bar/preview_strip_win32.h"
#include "platform/win32/bar/tab_strip_win32.h"
#include "platform/win32/handles.h"
#include "platform/win32/port_handles.h"
#include "platform/win32/raster_gdi.h"
#include "platform/win32/ui/themed_tab_ctrl.h"

namespace tavlet::win32 {

namespace {

void Move(HWND window, const host::WindowRect& r, bool repaint) {
  MoveWindow(window, static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.Width()),
             static_cast<int>(r.Height()), repaint);
}

LPCSTR CursorId(bar::GripCursor cursor) {
  switch (cursor) {
    case bar::GripCursor::SizeWe:
      return IDC_SIZEWE;
    case bar::GripCursor::SizeNs:
      return IDC_SIZENS;
    default:
      return IDC_ARROW;
  }
}

constexpr UINT kResyncTabs = WM_APP + 0x54;

// The floating frame's placement as the settings store saves and restores it.
class FramePlacement final : public WindowPort {
 public:
  explicit FramePlacement(HWND window) : window_(window) {}
  bool IsWindow() override { return ::IsWindow(window_) != FALSE; }
  bool GetWindowRect(ScreenRect& rect) override {
    RECT r{};
    if (!::GetWindowRect(window_, &r)) return false;
    rect = {r.left, r.top, r.right, r.bottom};
    return true;
  }
  bool IsZoomed() override { return ::IsZoomed(window_) != FALSE; }
  // Only the place is restored: showing is the bar's decision.
  void ShowWindow(int) override {}
  void SetWindowPos(int x, int y, int width, int height) override {
    ::SetWindowPos(window_, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
  }

 private:
  HWND window_;
};

}  // namespace

// ---------------------------------------------------------------- MvTavlet

HWND MvTavletWindow::Make(const host::WindowCreation& c) {
  if (!RegisterWindowClass("MvTavlet", CS_DBLCLKS, IDC_ARROW, nullptr)) return nullptr;
  return Create("MvTavlet", 0, c.text, c.style, ToRect(c.rect), H(c.parent), static_cast<UINT_PTR>(c.id));
}

LRESULT MvTavletWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case kWmAcadKeepFocus:
      return 1;
    case WM_CONTEXTMENU:
      OnContextMenu({static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))});
      return 0;
    case WM_COMMAND:
      // Only the menu's choices: no control of the bar sends commands.
      if (lParam == 0 && HIWORD(wParam) == 0) {
        if (menus::BarMenu* menu = Menu()) menu->Menu().OnCommand(LOWORD(wParam));
        return 0;
      }
      break;
    case WM_MENUSELECT: {
      const LRESULT result = Default();
      if (menus::BarMenu* menu = Menu())
        popup_.OnMenuSelect(menu->Menu(), LOWORD(wParam), HIWORD(wParam), reinterpret_cast<HMENU>(lParam));
      return result;
    }
    case kResyncTabs:
      if (HWND tabs = H(bar_.TabWindow())) SyncTabControl(tabs, bar_.Tabs());
      return 0;
    case WM_NOTIFY: {
      const auto* header = reinterpret_cast<const NMHDR*>(lParam);
      if (!header || header->idFrom != static_cast<UINT_PTR>(bar::kTabStripId)) break;
      if (header->code == TCN_SELCHANGING) {
        if (ThemedTabCtrl* tabs = ThemedTabCtrl::Of(header->hwndFrom)) tabs->OnSelChanging();
        if (!bar::TabSelChanging(bar_.Session(), bar_.Settings())) return 0;
        // Some tab controls move their selection even when the change is
        // refused: the model's selection is put back once the click is over.
        PostMessageA(hwnd(), kResyncTabs, 0, 0);
        return 1;
      }
      if (header->code == TCN_SELCHANGE) {
        if (ThemedTabCtrl* tabs = ThemedTabCtrl::Of(header->hwndFrom)) tabs->OnSelChange();
        bar::TabSelChange(bar_, static_cast<int>(SendMessageA(header->hwndFrom, TCM_GETCURSEL, 0, 0)));
        return 0;
      }
      break;
    }
    case WM_DRAWITEM: {
      // The owner-drawn tabs are drawn by their owner.
      const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item && item->CtlType == ODT_TAB && item->CtlID == static_cast<UINT>(bar::kTabStripId)) {
        DrawTab(*item);
        return TRUE;
      }
      break;
    }
  }
  return Window::OnMessage(message, wParam, lParam);
}

void MvTavletWindow::SetNoticeFont(const LogFontA& font) {
  const LOGFONTA logFont = ToLogFont(font);
  GdiObject<HFONT> made(CreateFontIndirectA(&logFont));
  if (!made.get()) return;
  tabFont_ = std::move(made);
  InvalidateRect(hwnd(), nullptr, TRUE);
}

int MvTavletWindow::OnCreate(CREATESTRUCTA&) {
  const LOGFONTA font = ToLogFont(bar_.Settings().TabFont);
  tabFont_ = GdiObject<HFONT>(CreateFontIndirectA(&font));
  if (tips_.Create(hwnd())) popup_.UseTip(tips_.MenuTip());
  tips_.Apply();
  return 0;
}

void MvTavletWindow::OnDestroy() {
  // The floating frame is the bar's and goes first.
  HWND floatFrame = H(bar_.FloatFrameWindow());
  if (floatFrame && IsWindow(floatFrame)) {
    if (GetParent(hwnd()) == floatFrame) SetParent(hwnd(), nullptr);
    DestroyWindow(floatFrame);
  }
  EndTracking();
  if (GetCapture() == hwnd()) ReleaseCapture();
}

void MvTavletWindow::OnSize(UINT, int, int) {
  RECT client{};
  GetClientRect(hwnd(), &client);
  const bar::ChildRects children = bar::BarChildRects(bar_.DockSide(), bar_.Floating(), FromRect(client));
  if (HWND strip = H(bar_.StripWindow())) Move(strip, children.strip, false);
  if (HWND tabs = H(bar_.TabWindow())) {
    if (bar_.TabMode()) {
      // The tabs face the drawing area: their style follows the side, and the
      // font is given again so that the control measures with the new style.
      const auto style = static_cast<unsigned long>(GetWindowLongPtrA(tabs, GWL_STYLE));
      const unsigned long wanted = bar::TabStyleForSide(bar_.DockSide(), style);
      if (wanted != style) {
        SetWindowLongPtrA(tabs, GWL_STYLE, static_cast<LONG_PTR>(wanted));
        SendMessageA(tabs, WM_SETFONT, SendMessageA(tabs, WM_GETFONT, 0, 0), TRUE);
      }
    }
    Move(tabs, children.tabs, true);
    bar_.TabRows = static_cast<int>(SendMessageA(tabs, TCM_GETROWCOUNT, 0, 0));
  }
  if (HWND frame = H(bar_.Frame().frame)) RedrawWindow(frame, nullptr, nullptr, host::kRedrawNow);
}

void MvTavletWindow::OnPaint(HDC dc, const RECT&) {
  RECT client{};
  GetClientRect(hwnd(), &client);
  SavedDcState saved(dc);
  SelectObject(dc, tabFont_.get());
  GdiCanvas canvas(dc, nullptr, nullptr);
  try {
    // A floating bar is on no side: its notice stays level.
    bar::PaintBar(canvas, FromRect(client), bar_.DrawingCount(), bar_.Floating() ? 0 : bar_.DockSide(),
                  bar_.Settings().TabFont);
  } catch (const host::ComError& error) {
    // The count comes from automation; a failure costs the notice, not the paint.
    canvas.FillRect(FromRect(client), GetSysColor(COLOR_BTNFACE));
    const std::string line = "错误在 MvTavlet::OnPaint() - " + error.Description() + "\n";
    bar_.Session().EditorService()->Print(line.c_str());
  }
}

bool MvTavletWindow::OnSetCursor(HWND, UINT, UINT mouseMessage) {
  POINT point{};
  GetCursorPos(&point);
  ScreenToClient(hwnd(), &point);
  RECT client{};
  GetClientRect(hwnd(), &client);
  const auto answer = grip_.OnSetCursor(bar_.Settings(), bar_.TabMode(), point.x, point.y, client.right,
                                        client.bottom, GetSystemMetrics(SM_CXFRAME),
                                        mouseMessage == WM_LBUTTONDOWN);
  if (!answer) return false;
  SetCursor(LoadCursorA(nullptr, CursorId(answer->cursor)));
  if (answer->takeCapture) SetCapture(hwnd());
  return true;
}

void MvTavletWindow::OnMouseMove(UINT, int x, int y) {
  RECT client{};
  GetClientRect(hwnd(), &client);
  // The bar keeps its size during the drag; the frame's next layout applies it.
  if (const auto thickness = grip_.OnMouseMove(bar_.Settings(), x, y, client.right, client.bottom))
    TrackDrag(*thickness);
}

void MvTavletWindow::TrackDrag(long thickness) {
  RECT r{};
  GetWindowRect(hwnd(), &r);
  switch (bar_.DockSide()) {
    case bar::kDockLeft:
    case bar::kDockCommandLeft:
      r.right = r.left + thickness;
      break;
    case bar::kDockRight:
    case bar::kDockCommandRight:
      r.left = r.right - thickness;
      break;
    case bar::kDockTop:
      r.bottom = r.top + thickness;
      break;
    default:
      r.top = r.bottom - thickness;
      break;
  }
  ScreenDc screen;
  if (tracking_) DrawFocusRect(screen.get(), &tracked_);
  tracked_ = r;
  tracking_ = r.right > r.left && r.bottom > r.top;
  if (tracking_) DrawFocusRect(screen.get(), &tracked_);
}

void MvTavletWindow::EndTracking() {
  if (!tracking_) return;
  ScreenDc screen;
  DrawFocusRect(screen.get(), &tracked_);
  tracking_ = false;
}

void MvTavletWindow::OnLButtonUp(UINT, int, int) {
  EndTracking();
  if (GetCapture() == hwnd()) ReleaseCapture();
  auto* strip = dynamic_cast<PreviewStripWindow*>(Window::FromHandle(H(bar_.StripWindow())));
  grip_.OnLButtonUp(bar_, [this, strip] {
    if (strip) bar::RefreshAllPreviews(bar_, bar::PreviewCapture(bar_, strip->Geometry()));
  });
}

void MvTavletWindow::OnLButtonDblClk(UINT flags, int, int) {
  if (menus::BarMenu* menu = Menu()) menu->OnDoubleClick(flags);
}

port::Document MvTavletWindow::DocumentAt(POINT screen) {
  if (bar_.TabMode()) {
    HWND tabs = H(bar_.TabWindow());
    if (!tabs) return nullptr;
    TCHITTESTINFO hit{};
    hit.pt = screen;
    ScreenToClient(tabs, &hit.pt);
    const auto index = static_cast<int>(SendMessageA(tabs, TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
    const auto& items = bar_.Tabs().Tabs();
    return index >= 0 && static_cast<std::size_t>(index) < items.size() ? items[static_cast<std::size_t>(index)].document
                                                                        : nullptr;
  }
  HWND strip = H(bar_.StripWindow());
  if (!strip) return nullptr;
  static const UINT documentAt = RegisterWindowMessageA(kDocumentAtMessage);
  POINT client = screen;
  ScreenToClient(strip, &client);
  return reinterpret_cast<port::Document>(SendMessageA(strip, documentAt, 0, MAKELPARAM(client.x, client.y)));
}

void MvTavletWindow::OnContextMenu(POINT screen) {
  menus::BarMenu* menu = Menu();
  if (!menu) return;
  // From the keyboard the point is (-1, -1): the menu opens at the pointer.
  if (screen.x == -1 && screen.y == -1) GetCursorPos(&screen);
  popup_.Track(hwnd(), menu->Menu(), DocumentAt(screen), screen);
}

// ---------------------------------------------------------------- FloatFrame

HWND FloatFrameWindow::Make(const host::WindowCreation& c) {
  if (!RegisterWindowClass("TavletFloatFrame", CS_DBLCLKS, IDC_ARROW, reinterpret_cast<HBRUSH>(COLOR_3DFACE + 1)))
    return nullptr;
  HWND frame = H(c.parent);
  host::WindowRect drawingArea = bar_.mdiClientRect;
  if (drawingArea.Width() <= 0 || drawingArea.Height() <= 0) {
    if (HWND mdiClient = H(bar_.Frame().mdiClient)) {
      RECT r{};
      GetClientRect(mdiClient, &r);
      MapWindowPoints(mdiClient, frame, reinterpret_cast<POINT*>(&r), 2);
      drawingArea = FromRect(r);
    }
  }
  RECT onScreen = ToRect(drawingArea);
  MapWindowPoints(frame, nullptr, reinterpret_cast<POINT*>(&onScreen), 2);
  const RECT place = ToRect(bar::DefaultFloatRect(FromRect(onScreen)));
  HWND hwnd = Create("TavletFloatFrame", WS_EX_TOOLWINDOW, c.text, WS_POPUP | WS_CAPTION | WS_THICKFRAME, place,
                     frame, 0);
  if (hwnd) {
    FramePlacement placement(hwnd);
    bar_.Store().RestoreWindowPlacement(sections::Root, keys::FloatPosition.key, placement);
  }
  return hwnd;
}

LRESULT FloatFrameWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_NCACTIVATE:
      return 1;
    case kWmAcadKeepFocus:
      return 1;
    case WM_SHOWWINDOW:
      if (wParam) FitBar();
      return Default();
    default:
      return Window::OnMessage(message, wParam, lParam);
  }
}

void FloatFrameWindow::OnDestroy() {
  FramePlacement placement(hwnd());
  bar_.Store().SaveWindowPlacement(sections::Root, keys::FloatPosition.key, placement);
}

void FloatFrameWindow::OnSize(UINT, int, int) { FitBar(); }

void FloatFrameWindow::FitBar() {
  HWND barWindow = H(bar_.Window());
  if (!bar_.Floating() || !barWindow || GetParent(barWindow) != hwnd()) return;
  RECT client{};
  GetClientRect(hwnd(), &client);
  MoveWindow(barWindow, 0, 0, client.right, client.bottom, TRUE);
  RedrawWindow(barWindow, nullptr, nullptr, host::kRedrawNow | host::kRdwAllChildren);
}

// ---------------------------------------------------------------- factories

void RegisterBarWindows(Win32WindowSystem& windows, std::function<bar::BarModel*()> currentBar,
                        CurrentMenu currentMenu) {
  windows.SetFactory("MvTavlet", [currentBar, currentMenu](const host::WindowCreation& c) -> port::Window {
    bar::BarModel* bar = currentBar();
    if (!bar) return nullptr;
    auto* window = new MvTavletWindow(*bar, currentMenu);
    HWND hwnd = window->Make(c);
    if (!hwnd) delete window;
    return W(hwnd);
  });
  windows.SetFactory("PreviewStrip", [currentBar](const host::WindowCreation& c) -> port::Window {
    bar::BarModel* bar = currentBar();
    if (!bar) return nullptr;
    auto* window = new PreviewStripWindow(*bar);
    HWND hwnd = window->Make(ToRect(c.rect), H(c.parent), c.id, c.text, c.style);
    if (!hwnd) delete window;
    return W(hwnd);
  });
  windows.SetFactory("FloatFrame", [currentBar](const host::WindowCreation& c) -> port::Window {
    bar::BarModel* bar = currentBar();
    if (!bar) return nullptr;
    auto* window = new FloatFrameWindow(*bar);
    HWND hwnd = window->Make(c);
    if (!hwnd) delete window;
    return W(hwnd);
  });
  windows.SetFactory("TabStrip", [currentBar](const host::WindowCreation& c) -> port::Window {
    bar::BarModel* bar = currentBar();
    return bar ? W(CreateTabStrip(*bar, c)) : nullptr;
  });
}

}  // namespace tavlet::win32
