#include "platform/win32/ui/flat_hover_button.h"

#include <commctrl.h>

#include "platform/win32/dib_paint.h"
#include "platform/win32/handles.h"

namespace tavlet::win32 {
namespace {

constexpr UINT_PTR kHoverTimer = 1;
constexpr UINT kHoverPeriod = 10;

void Frame(HDC dc, const RECT& r, COLORREF topLeft, COLORREF bottomRight) {
  GdiObject<HBRUSH> light(CreateSolidBrush(topLeft)), dark(CreateSolidBrush(bottomRight));
  RECT edge{r.left, r.top, r.right - 1, r.top + 1};
  FillRect(dc, &edge, light.get());
  edge = {r.left, r.top, r.left + 1, r.bottom - 1};
  FillRect(dc, &edge, light.get());
  edge = {r.right - 1, r.top, r.right, r.bottom};
  FillRect(dc, &edge, dark.get());
  edge = {r.left, r.bottom - 1, r.right, r.bottom};
  FillRect(dc, &edge, dark.get());
}

void Fill(HDC dc, const RECT& r, COLORREF color) {
  GdiObject<HBRUSH> brush(CreateSolidBrush(color));
  FillRect(dc, &r, brush.get());
}

}  // namespace

// The dialog hands WM_DRAWITEM of an owner-drawn button to its owner; this
// passes the button's own back to it.
class FlatHoverButton::ParentHook final : public WindowHook {
 public:
  explicit ParentHook(FlatHoverButton& button) : button_(button) {}

 protected:
  LRESULT WindowProc(UINT message, WPARAM, LPARAM lParam) override {
    if (message == WM_DRAWITEM) {
      const auto* item = reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
      if (item && item->CtlType == ODT_BUTTON && item->hwndItem == button_.Hooked()) {
        button_.DrawItem(*item);
        return TRUE;
      }
    }
    return Default();
  }

 private:
  FlatHoverButton& button_;
};

FlatHoverButton* FlatHoverButton::Attach(HWND dialog, int id) {
  HWND button = GetDlgItem(dialog, id);
  if (!button) return nullptr;
  auto* control = new FlatHoverButton();
  if (!control->WindowHook::Attach(button)) {
    delete control;
    return nullptr;
  }
  control->parent_ = std::make_unique<ParentHook>(*control);
  control->parent_->Attach(dialog);
  const LONG_PTR style = GetWindowLongPtrA(button, GWL_STYLE);
  SetWindowLongPtrA(button, GWL_STYLE, (style & ~static_cast<LONG_PTR>(BS_TYPEMASK)) | BS_OWNERDRAW);
  InvalidateRect(button, nullptr, TRUE);
  return control;
}

FlatHoverButton::~FlatHoverButton() { ReleaseImages(); }

void FlatHoverButton::ReleaseImages() {
  if (icon_ && ownsIcon_) DestroyIcon(icon_);
  icon_ = nullptr;
  ownsIcon_ = false;
}

void FlatHoverButton::SetBitmaps(HBITMAP normal, HBITMAP disabled, bool deleteOld) {
  if (deleteOld) {
    if (bitmap_ && bitmap_ != normal) DeleteObject(bitmap_);
    if (disabledBitmap_ && disabledBitmap_ != disabled) DeleteObject(disabledBitmap_);
  }
  bitmap_ = normal;
  disabledBitmap_ = disabled;
  if (Hooked()) InvalidateRect(Hooked(), nullptr, TRUE);
}

void FlatHoverButton::SetIcon(HICON icon, bool destroy) {
  if (icon_ != icon) ReleaseImages();
  icon_ = icon;
  ownsIcon_ = destroy;
  if (Hooked()) InvalidateRect(Hooked(), nullptr, TRUE);
}

void FlatHoverButton::SetTip(const std::string& text) {
  HWND button = Hooked();
  if (!button) return;
  TTTOOLINFOA tool{};
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = GetParent(button);
  tool.uId = reinterpret_cast<UINT_PTR>(button);
  tool.lpszText = const_cast<char*>(text.c_str());
  if (!tip_) {
    if (text.empty()) return;
    tip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                           CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, GetParent(button), nullptr,
                           nullptr, nullptr);
    if (tip_) SendMessageA(tip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    return;
  }
  SendMessageA(tip_, text.empty() ? TTM_DELTOOLA : TTM_UPDATETIPTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
}

LRESULT FlatHoverButton::WindowProc(UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      pressed_ = true;
      break;
    case WM_LBUTTONUP:
      pressed_ = false;
      break;
    case WM_MOUSEMOVE:
      SetTimer(Hooked(), kHoverTimer, kHoverPeriod, nullptr);
      break;
    case WM_TIMER:
      if (wParam == kHoverTimer) {
        OnTimer();
        return 0;
      }
      break;
    case WM_DESTROY: {
      KillTimer(Hooked(), kHoverTimer);
      if (tip_ && IsWindow(tip_)) DestroyWindow(tip_);
      tip_ = nullptr;
      parent_.reset();
      const LRESULT result = Default();
      Detach();
      delete this;
      return result;
    }
    default:
      break;
  }
  return Default();
}

void FlatHoverButton::OnTimer() {
  HWND button = Hooked();
  POINT cursor{};
  GetCursorPos(&cursor);
  RECT window{};
  GetWindowRect(button, &window);
  if (!pressed_ && PtInRect(&window, cursor)) {
    if (hot_) return;
    ScreenDc dc(button);
    RECT client{};
    GetClientRect(button, &client);
    if (!icon_) Fill(dc.get(), client, backColor);
    DrawContent(dc.get(), client, 1);
    if (alphaHover) {
      FillAlphaRect(dc.get(), client, GetSysColor(COLOR_HIGHLIGHT), 0x33);
      Frame(dc.get(), client, GetSysColor(COLOR_HIGHLIGHT), GetSysColor(COLOR_HIGHLIGHT));
    } else {
      Frame(dc.get(), client, GetSysColor(COLOR_3DHIGHLIGHT), GetSysColor(COLOR_3DSHADOW));
    }
    hot_ = true;
    return;
  }
  KillTimer(button, kHoverTimer);
  // The hover frame may reach the parent's pixels next to the button.
  InflateRect(&window, 2, 2);
  HWND parent = GetParent(button);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&window), 2);
  InvalidateRect(parent, &window, TRUE);
  InvalidateRect(button, nullptr, TRUE);
  hot_ = false;
}

void FlatHoverButton::DrawItem(const DRAWITEMSTRUCT& item) {
  HDC dc = item.hDC;
  const RECT& r = item.rcItem;
  if (!(item.itemState & ODS_SELECTED)) {
    if (!icon_) Fill(dc, r, backColor);
    Frame(dc, r, backColor, backColor);
    DrawContent(dc, r, (item.itemState & ODS_DISABLED) ? 3 : 0);
    if (item.itemState & ODS_FOCUS) {
      RECT focus = r;
      InflateRect(&focus, -3, -3);
      DrawFocusRect(dc, &focus);
    }
    return;
  }
  Frame(dc, r, GetSysColor(COLOR_3DSHADOW), GetSysColor(COLOR_3DHIGHLIGHT));
  DrawContent(dc, r, 2);
}

void FlatHoverButton::DrawContent(HDC dc, const RECT& client, int state) {
  const int shift = state == 1 ? -1 : state == 2 ? 1 : 0;
  if (!bitmap_ && !icon_) {
    char text[256] = {};
    GetWindowTextA(Hooked(), text, sizeof text);
    RECT box = client;
    OffsetRect(&box, shift, shift);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(state == 3 ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
    SelectedObject font(dc, reinterpret_cast<HFONT>(SendMessageA(Hooked(), WM_GETFONT, 0, 0)));
    DrawTextA(dc, text, -1, &box, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
    return;
  }
  int width = GetSystemMetrics(SM_CXICON), height = GetSystemMetrics(SM_CYICON);
  if (!icon_) {
    BITMAP info{};
    GetObjectA(bitmap_, sizeof info, &info);
    width = info.bmWidth;
    height = info.bmHeight;
  }
  const int x = client.left + (client.right - client.left - width) / 2 + shift;
  const int y = client.top + (client.bottom - client.top - height) / 2 + shift;
  if (icon_) {
    DrawStateA(dc, nullptr, nullptr, reinterpret_cast<LPARAM>(icon_), 0, x, y, 0, 0,
               state == 3 ? DST_ICON | DSS_DISABLED : DST_ICON);
    return;
  }
  HBITMAP shown = state == 3 && disabledBitmap_ ? disabledBitmap_ : bitmap_;
  DrawStateA(dc, nullptr, nullptr, reinterpret_cast<LPARAM>(shown), 0, x, y, 0, 0,
             state == 3 ? DST_BITMAP | DSS_DISABLED : DST_BITMAP);
}

}  // namespace tavlet::win32
