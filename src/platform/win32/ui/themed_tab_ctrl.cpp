#include "platform/win32/ui/themed_tab_ctrl.h"

#include <commctrl.h>

#include <utility>
#include <vector>

#include "platform/win32/dib_paint.h"
#include "platform/win32/handles.h"
#include "platform/win32/port_handles.h"
#include "ui/tab_paint.h"

namespace tavlet::win32 {
namespace {

constexpr char kProperty[] = "Tavlet.ThemedTabCtrl";

using IsThemeActiveFn = BOOL(WINAPI*)();
using OpenThemeDataFn = HANDLE(WINAPI*)(HWND, LPCWSTR);
using DrawThemeBackgroundFn = HRESULT(WINAPI*)(HANDLE, HDC, int, int, const RECT*, const RECT*);
using CloseThemeDataFn = HRESULT(WINAPI*)(HANDLE);

// UxTheme.dll for one use: loaded, its functions found, freed at the end.
class ThemeLibrary {
 public:
  ThemeLibrary() : module_(LoadLibraryA("UxTheme.dll")) {
    if (!module_.valid()) return;
    isThemeActive_ = reinterpret_cast<IsThemeActiveFn>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "IsThemeActive")));
    openThemeData_ = reinterpret_cast<OpenThemeDataFn>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "OpenThemeData")));
    drawThemeBackground_ = reinterpret_cast<DrawThemeBackgroundFn>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "DrawThemeBackground")));
    closeThemeData_ = reinterpret_cast<CloseThemeDataFn>(
        reinterpret_cast<void*>(GetProcAddress(module_.get(), "CloseThemeData")));
  }
  bool Active() const { return isThemeActive_ && isThemeActive_(); }
  // DrawThemeBackground of class "TAB"; false when a function is missing.
  bool Draw(HWND window, HDC dc, int part, int state, const RECT& rect) const {
    if (!openThemeData_ || !drawThemeBackground_) return false;
    HANDLE theme = openThemeData_(window, L"TAB");
    if (!theme) return false;
    const bool drawn = SUCCEEDED(drawThemeBackground_(theme, dc, part, state, &rect, nullptr));
    if (closeThemeData_) closeThemeData_(theme);
    return drawn;
  }

 private:
  Module module_;
  IsThemeActiveFn isThemeActive_ = nullptr;
  OpenThemeDataFn openThemeData_ = nullptr;
  DrawThemeBackgroundFn drawThemeBackground_ = nullptr;
  CloseThemeDataFn closeThemeData_ = nullptr;
};

RECT ItemRect(HWND tabs, int item) {
  RECT r{};
  SendMessageA(tabs, TCM_GETITEMRECT, item, reinterpret_cast<LPARAM>(&r));
  return r;
}

// The upright picture `bitmap` (w x h, or h x w for a side tab) made into the
// tab's own: flipped for the far side, rows and columns exchanged for a side.
HBITMAP TurnPicture(HDC dc, HBITMAP bitmap, int w, int h, unsigned flags) {
  const bool side = flags & ui::kTabPartOnSide, farSide = flags & ui::kTabPartFarSide;
  const int uw = side ? h : w, uh = side ? w : h;
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), uw, -uh, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
  const int inStride = (uw * 3 + 3) & ~3;
  std::vector<unsigned char> in(static_cast<std::size_t>(inStride) * uh);
  if (!GetDIBits(dc, bitmap, 0, uh, in.data(), &info, DIB_RGB_COLORS)) return nullptr;
  const int outStride = (w * 3 + 3) & ~3;
  std::vector<unsigned char> out(static_cast<std::size_t>(outStride) * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const int sx = side ? y : x;
      int sy = side ? x : y;
      if (farSide) sy = uh - 1 - sy;
      const unsigned char* p = &in[static_cast<std::size_t>(sy) * inStride + sx * 3];
      unsigned char* q = &out[static_cast<std::size_t>(y) * outStride + x * 3];
      q[0] = p[0], q[1] = p[1], q[2] = p[2];
    }
  HBITMAP turned = CreateCompatibleBitmap(dc, w, h);
  if (!turned) return nullptr;
  info.bmiHeader.biWidth = w;
  info.bmiHeader.biHeight = -h;
  SetDIBits(dc, turned, 0, h, out.data(), &info, DIB_RGB_COLORS);
  return turned;
}

}  // namespace

unsigned long SystemVersion() {
  static const unsigned long version = [] {
    const DWORD v = GetVersion();
    return (static_cast<unsigned long>(LOBYTE(LOWORD(v))) << 16) | HIBYTE(LOWORD(v));
  }();
  return version;
}

ThemedTabCtrl* ThemedTabCtrl::Attach(HWND tabs) {
  auto* control = new ThemedTabCtrl();
  if (!control->WindowHook::Attach(tabs)) {
    delete control;
    return nullptr;
  }
  SetPropA(tabs, kProperty, control);
  return control;
}

ThemedTabCtrl* ThemedTabCtrl::Of(HWND tabs) {
  return tabs ? static_cast<ThemedTabCtrl*>(GetPropA(tabs, kProperty)) : nullptr;
}

bool ThemedTabCtrl::Themed() {
  if (!themedDrawing || !IsWindow(Hooked())) return false;
  ThemeLibrary theme;
  return ui::UseThemedDrawing(themedDrawing, true, SystemVersion(), theme.Active());
}

void ThemedTabCtrl::RepaintItem(int item) {
  if (item < 0) return;
  RECT r = ItemRect(Hooked(), item);
  // The selected tab is drawn 2 pixels larger all round.
  InflateRect(&r, 2, 2);
  InvalidateRect(Hooked(), &r, FALSE);
}

void ThemedTabCtrl::OnSelChanging() {
  lastSelection = static_cast<int>(SendMessageA(Hooked(), TCM_GETCURSEL, 0, 0));
}

void ThemedTabCtrl::OnSelChange() {
  RepaintItem(lastSelection);
  RepaintItem(static_cast<int>(SendMessageA(Hooked(), TCM_GETCURSEL, 0, 0)));
}

LRESULT ThemedTabCtrl::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_PAINT:
      orientation = ui::OrientationOf(static_cast<unsigned long>(GetWindowLongPtrA(Hooked(), GWL_STYLE)));
      if (Themed()) {
        ThemedPaint();
        return 0;
      }
      return PlainPaint();
    case WM_DESTROY: {
      RemovePropA(Hooked(), kProperty);
      const LRESULT result = Default();
      Detach();
      delete this;
      return result;
    }
    default:
      return WindowHook::WindowProc(message, wParam, lParam);
  }
}

LRESULT ThemedTabCtrl::PlainPaint() {
  HWND tabs = Hooked();
  PaintDc paint(tabs);
  if (!paint.get()) return 0;
  // The control's own paint, into this paint's context, so that the cover lies
  // on exactly what it drew.
  SendMessageA(tabs, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(paint.get()), PRF_CLIENT);
  const int selected = static_cast<int>(SendMessageA(tabs, TCM_GETCURSEL, 0, 0));
  if (selected >= 0)
    FillAlphaRect(paint.get(), ItemRect(tabs, selected), GetSysColor(COLOR_ACTIVECAPTION), ui::kSelectedCoverAlpha);
  return 0;
}

void ThemedTabCtrl::ThemedPaint() {
  HWND tabs = Hooked();
  PaintDc paint(tabs);
  HDC dc = paint.get();
  if (!dc) return;
  RECT client{};
  GetClientRect(tabs, &client);
  RECT adjusted = client;
  SendMessageA(tabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&adjusted));
  FillRect(dc, &client, GetSysColorBrush(COLOR_3DFACE));
  const RECT page = ToRect(ui::PageRect(FromRect(client), FromRect(adjusted), orientation));
  const unsigned flags = ui::BaseFlags(orientation);
  DrawTabPart(dc, -1, page, flags + ui::kTabPartPage);

  const int count = static_cast<int>(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0));
  if (count <= 0) return;
  TCHITTESTINFO hit{};
  GetCursorPos(&hit.pt);
  ScreenToClient(tabs, &hit.pt);
  const int hot = static_cast<int>(SendMessageA(tabs, TCM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  const int selected = static_cast<int>(SendMessageA(tabs, TCM_GETCURSEL, 0, 0));
  for (int i = 0; i < count; ++i) {
    if (i == selected) continue;
    RECT r = ItemRect(tabs, i);
    if (orientation == ui::kTabLeft) r.right += 1;
    DrawTabPart(dc, i, r, flags + (i == hot ? ui::kTabPartHot : 0));
  }
  if (selected >= 0) {
    const int rows = static_cast<int>(SendMessageA(tabs, TCM_GETROWCOUNT, 0, 0));
    const auto style = static_cast<unsigned long>(GetWindowLongPtrA(tabs, GWL_STYLE));
    const RECT r = ToRect(ui::SelectedTabRect(FromRect(ItemRect(tabs, selected)), orientation, rows, style, page.bottom));
    DrawTabPart(dc, selected, r, flags + ui::kTabPartSelected);
  }
}

void ThemedTabCtrl::DrawTabPart(HDC dc, int item, const RECT& rect, unsigned flags) {
  const int w = rect.right - rect.left, h = rect.bottom - rect.top;
  if (w <= 1 || h <= 1) return;
  const bool side = flags & ui::kTabPartOnSide, farSide = flags & ui::kTabPartFarSide;
  const bool selected = flags & ui::kTabPartSelected;
  const int uw = side ? h : w, uh = side ? w : h;

  MemoryDc memory(CreateCompatibleDC(dc));
  GdiObject<HBITMAP> picture(CreateCompatibleBitmap(dc, uw, uh));
  if (!memory.valid() || !picture.valid()) return;
  {
    SelectedObject selectedPicture(memory.get(), picture.get());
    const RECT all{0, 0, uw, uh};
    FillRect(memory.get(), &all, GetSysColorBrush(COLOR_3DFACE));
    const RECT drawn{0, 0, uw, selected ? uh + 1 : uh};
    ThemeLibrary theme;
    if (flags & ui::kTabPartPage)
      theme.Draw(Hooked(), memory.get(), 9, 0, drawn);
    else
      theme.Draw(Hooked(), memory.get(), 1, selected ? 3 : (flags & ui::kTabPartHot) ? 2 : 1, drawn);
  }
  if (farSide || side) {
    if (HBITMAP turned = TurnPicture(memory.get(), picture.get(), w, h, flags)) picture = GdiObject<HBITMAP>(turned);
  }
  SelectedObject selectedPicture(memory.get(), picture.get());
  if (!(flags & ui::kTabPartPage) && item >= 0) {
    char text[128] = {};
    TCITEMA tab{};
    tab.mask = TCIF_TEXT | TCIF_IMAGE;
    tab.pszText = text;
    tab.cchTextMax = sizeof text;
    SendMessageA(Hooked(), TCM_GETITEMA, item, reinterpret_cast<LPARAM>(&tab));
    auto images = reinterpret_cast<HIMAGELIST>(SendMessageA(Hooked(), TCM_GETIMAGELIST, 0, 0));
    const bool hasImage = images && tab.iImage >= 0;
    const ui::TabContentPlace place = ui::PlaceTabContent(flags, hasImage);
    if (hasImage)
      ImageList_Draw(images, tab.iImage, memory.get(), static_cast<int>(place.imageX), static_cast<int>(place.imageY),
                     ILD_TRANSPARENT);
    SelectedObject font(memory.get(), reinterpret_cast<HFONT>(SendMessageA(Hooked(), WM_GETFONT, 0, 0)));
    SetBkMode(memory.get(), TRANSPARENT);
    SetTextColor(memory.get(), GetSysColor(COLOR_BTNTEXT));
    RECT box{static_cast<LONG>(place.textLeft), static_cast<LONG>(place.textTop), w - 3, h};
    DrawTextExA(memory.get(), text, -1, &box, DT_SINGLELINE | DT_NOPREFIX, nullptr);
  }
  BitBlt(dc, rect.left, rect.top, w, h, memory.get(), 0, 0, SRCCOPY);
  if (selected) FillAlphaRect(dc, rect, GetSysColor(COLOR_ACTIVECAPTION), ui::kSelectedCoverAlpha);
}

}  // namespace tavlet::win32
