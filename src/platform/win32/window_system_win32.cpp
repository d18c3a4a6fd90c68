#include "platform/win32/window_system_win32.h"

#include <windows.h>
#include <commctrl.h>

namespace tavlet::win32 {

namespace {

HWND H(port::Window w) { return reinterpret_cast<HWND>(w); }
port::Window W(HWND h) { return reinterpret_cast<port::Window>(h); }

RECT ToRect(const host::WindowRect& r) {
  return {static_cast<LONG>(r.left), static_cast<LONG>(r.top), static_cast<LONG>(r.right),
          static_cast<LONG>(r.bottom)};
}
host::WindowRect FromRect(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

constexpr char kClassName[] = "TavletWindow";

LRESULT CALLBACK HookProc(HWND hwnd, UINT msg, WPARAM wParam, LPARAM lParam, UINT_PTR id, DWORD_PTR data) {
  if (msg == WM_NCDESTROY) {
    RemoveWindowSubclass(hwnd, HookProc, id);
  } else if (msg == WM_WINDOWPOSCHANGING && lParam) {
    auto* p = reinterpret_cast<WINDOWPOS*>(lParam);
    if (!(p->flags & SWP_NOSIZE)) {
      host::WindowPos pos{p->x, p->y, p->cx, p->cy};
      // Nothing may leave a window procedure of the host's by an exception.
      try {
        reinterpret_cast<host::WindowHookSink*>(data)->OnWindowPosChanging(W(hwnd), pos);
      } catch (...) {
      }
      p->x = static_cast<int>(pos.x);
      p->y = static_cast<int>(pos.y);
      p->cx = static_cast<int>(pos.cx);
      p->cy = static_cast<int>(pos.cy);
    }
  }
  return DefSubclassProc(hwnd, msg, wParam, lParam);
}

class Win32WindowSystem final : public host::WindowSystem {
 public:
  explicit Win32WindowSystem(HINSTANCE instance) : instance_(instance ? instance : GetModuleHandleA(nullptr)) {}

  bool IsWindow(port::Window w) override { return w && ::IsWindow(H(w)); }
  port::Window GetParent(port::Window w) override { return W(::GetParent(H(w))); }
  bool GetWindowRect(port::Window w, host::WindowRect& rect) override {
    RECT r{};
    if (!::GetWindowRect(H(w), &r)) return false;
    rect = FromRect(r);
    return true;
  }
  void MapWindowPoints(port::Window from, port::Window to, host::WindowRect& rect) override {
    RECT r = ToRect(rect);
    ::MapWindowPoints(H(from), H(to), reinterpret_cast<POINT*>(&r), 2);
    rect = FromRect(r);
  }
  bool MoveWindow(port::Window w, const host::WindowRect& r, bool repaint) override {
    return ::MoveWindow(H(w), static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.Width()),
                        static_cast<int>(r.Height()), repaint) != FALSE;
  }
  bool RedrawWindow(port::Window w, const host::WindowRect* area, unsigned flags) override {
    RECT r = area ? ToRect(*area) : RECT{};
    return ::RedrawWindow(H(w), area ? &r : nullptr, nullptr, flags) != FALSE;
  }
  bool ShowWindow(port::Window w, int command) override { return ::ShowWindow(H(w), command) != FALSE; }
  unsigned long GetStyle(port::Window w) override {
    return static_cast<unsigned long>(GetWindowLongPtrA(H(w), GWL_STYLE));
  }
  void SetStyle(port::Window w, unsigned long style) override {
    SetWindowLongPtrA(H(w), GWL_STYLE, static_cast<LONG_PTR>(style));
  }
  bool SetParent(port::Window child, port::Window parent) override {
    return ::SetParent(H(child), H(parent)) != nullptr;
  }
  bool SetTimer(port::Window w, unsigned id, unsigned ms) override {
    return ::SetTimer(H(w), id, ms, nullptr) != 0;
  }
  bool KillTimer(port::Window w, unsigned id) override { return ::KillTimer(H(w), id) != FALSE; }
  bool CenterWindow(port::Window w) override {
    RECT r{}, work{};
    if (!::GetWindowRect(H(w), &r) || !SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0)) return false;
    const int x = work.left + ((work.right - work.left) - (r.right - r.left)) / 2;
    const int y = work.top + ((work.bottom - work.top) - (r.bottom - r.top)) / 2;
    return SetWindowPos(H(w), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE) != FALSE;
  }
  port::Window NewWindow(const host::WindowCreation& c) override {
    RegisterClassOnce();
    const bool child = (c.style & WS_CHILD) != 0;
    // The floating frame is a captioned tool window owned by the host's frame.
    const DWORD style = child ? c.style : (c.style | WS_POPUP | WS_CAPTION | WS_THICKFRAME);
    const DWORD exStyle = child ? 0 : WS_EX_TOOLWINDOW;
    HWND hwnd = CreateWindowExA(exStyle, kClassName, c.text, style, static_cast<int>(c.rect.left),
                                static_cast<int>(c.rect.top), static_cast<int>(c.rect.Width()),
                                static_cast<int>(c.rect.Height()), H(c.parent),
                                child ? reinterpret_cast<HMENU>(static_cast<INT_PTR>(c.id)) : nullptr, instance_,
                                nullptr);
    return W(hwnd);
  }
  bool DestroyWindow(port::Window w) override { return ::DestroyWindow(H(w)) != FALSE; }
  void RecalcFrameLayout(port::Window frame) override {
    // The frame lays out its bars and its MDI client on WM_SIZE.
    RECT r{};
    if (!GetClientRect(H(frame), &r)) return;
    SendMessageA(H(frame), WM_SIZE, SIZE_RESTORED, MAKELPARAM(r.right - r.left, r.bottom - r.top));
  }
  long CaptionHeight() override { return GetSystemMetrics(SM_CYCAPTION); }
  // Raw Win32 names the module's instance at every creation and load, so there is
  // no current resource handle to switch.
  void UseModuleResources(bool) override {}
  bool AttachHook(port::Window w, host::WindowHookSink* sink) override {
    if (!IsWindow(w)) return false;
    return SetWindowSubclass(H(w), HookProc, reinterpret_cast<UINT_PTR>(sink), reinterpret_cast<DWORD_PTR>(sink)) !=
           FALSE;
  }
  void DetachHook(port::Window w, host::WindowHookSink* sink) override {
    if (IsWindow(w)) RemoveWindowSubclass(H(w), HookProc, reinterpret_cast<UINT_PTR>(sink));
  }

 private:
  void RegisterClassOnce() {
    WNDCLASSA existing{};
    if (GetClassInfoA(instance_, kClassName, &existing)) return;
    WNDCLASSA wc{};
    wc.style = CS_DBLCLKS;
    wc.lpfnWndProc = DefWindowProcA;
    wc.hInstance = instance_;
    wc.hCursor = LoadCursor(nullptr, IDC_ARROW);
    wc.lpszClassName = kClassName;
    RegisterClassA(&wc);
  }

  HINSTANCE instance_;
};

}  // namespace

std::unique_ptr<host::WindowSystem> CreateWin32WindowSystem(void* instance) {
  return std::make_unique<Win32WindowSystem>(static_cast<HINSTANCE>(instance));
}

}  // namespace tavlet::win32
