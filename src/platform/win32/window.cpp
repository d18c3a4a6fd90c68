#include "platform/win32/window.h"

#include <windowsx.h>

#include <string>
#include <utility>
#include <vector>

namespace tavlet::win32 {

namespace {

HINSTANCE& Module() {
  static HINSTANCE instance = nullptr;
  return instance;
}

HINSTANCE& Current() {
  static HINSTANCE instance = nullptr;
  return instance;
}

std::vector<std::pair<std::string, HINSTANCE>>& Registered() {
  static std::vector<std::pair<std::string, HINSTANCE>> classes;
  return classes;
}

}  // namespace

HINSTANCE ModuleInstance() { return Module() ? Module() : GetModuleHandleA(nullptr); }
void SetModuleInstance(HINSTANCE instance) { Module() = instance; }

HINSTANCE CurrentResourceInstance() { return Current() ? Current() : GetModuleHandleA(nullptr); }

HINSTANCE SetCurrentResourceInstance(HINSTANCE instance) { return std::exchange(Current(), instance); }

ResourceScope::ResourceScope(HINSTANCE instance) : previous_(SetCurrentResourceInstance(instance)) {}
ResourceScope::~ResourceScope() { Current() = previous_; }

bool RegisterWindowClass(const char* name, UINT style, LPCSTR cursor, HBRUSH background) {
  HINSTANCE instance = CurrentResourceInstance();
  WNDCLASSA existing{};
  if (GetClassInfoA(instance, name, &existing)) return true;
  WNDCLASSA windowClass{};
  windowClass.style = style;
  windowClass.lpfnWndProc = &Window::Procedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = cursor ? LoadCursorA(nullptr, cursor) : nullptr;
  windowClass.hbrBackground = background;
  windowClass.lpszClassName = name;
  if (RegisterClassA(&windowClass) == 0) return false;
  Registered().emplace_back(name, instance);
  return true;
}

void UnregisterWindowClasses() {
  for (const auto& [name, instance] : Registered()) UnregisterClassA(name.c_str(), instance);
  Registered().clear();
}

Window::~Window() {
  // A window whose object goes first must not call into freed memory.
  if (hwnd_) {
    SetWindowLongPtrA(hwnd_, GWLP_USERDATA, 0);
    HWND hwnd = std::exchange(hwnd_, nullptr);
    DestroyWindow(hwnd);
  }
}

HWND Window::Create(const char* className, DWORD exStyle, const char* text, DWORD style, const RECT& rect,
                    HWND parent, UINT_PTR idOrMenu) {
  return CreateWindowExA(exStyle, className, text, style, rect.left, rect.top, rect.right - rect.left,
                         rect.bottom - rect.top, parent, reinterpret_cast<HMENU>(idOrMenu), CurrentResourceInstance(),
                         this);
}

Window* Window::FromHandle(HWND hwnd) {
  if (!hwnd) return nullptr;
  // A tip control's TTF_SUBCLASS puts its own procedure in front of ours; the
  // class still names ours.
  WNDPROC procedure = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(hwnd, GWLP_WNDPROC));
  WNDPROC classProcedure = reinterpret_cast<WNDPROC>(GetClassLongPtrA(hwnd, GCLP_WNDPROC));
  if (procedure != &Window::Procedure && classProcedure != &Window::Procedure) return nullptr;
  return reinterpret_cast<Window*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA));
}

LRESULT Window::Default() {
  return DefWindowProcA(hwnd_, current_.message, current_.wParam, current_.lParam);
}

LRESULT CALLBACK Window::Procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  auto* self = reinterpret_cast<Window*>(GetWindowLongPtrA(hwnd, GWLP_USERDATA));
  if (message == WM_NCCREATE) {
    self = static_cast<Window*>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams);
    if (self) {
      SetWindowLongPtrA(hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
      self->hwnd_ = hwnd;
    }
  }
  if (!self) return DefWindowProcA(hwnd, message, wParam, lParam);
  // Handlers nest (a SendMessage inside a handler): the outer message comes back.
  const MSG outer = self->current_;
  self->current_ = MSG{hwnd, message, wParam, lParam, 0, {}};
  LRESULT result = 0;
  try {
    result = self->OnMessage(message, wParam, lParam);
  } catch (...) {
    // Nothing may leave into the host's message loop; the message gets the
    // platform's handling as if no handler had been there.
    result = DefWindowProcA(hwnd, message, wParam, lParam);
  }
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrA(hwnd, GWLP_USERDATA, 0);
    self->hwnd_ = nullptr;
    self->OnFinalMessage();
    return result;
  }
  self->current_ = outer;
  return result;
}

LRESULT Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  const int x = GET_X_LPARAM(lParam), y = GET_Y_LPARAM(lParam);
  const UINT flags = static_cast<UINT>(wParam);
  switch (message) {
    case WM_CREATE: {
      if (Default() == -1) return -1;
      return OnCreate(*reinterpret_cast<CREATESTRUCTA*>(lParam));
    }
    case WM_DESTROY:
      OnDestroy();
      return 0;
    case WM_SIZE:
      Default();
      OnSize(flags, LOWORD(lParam), HIWORD(lParam));
      return 0;
    case WM_PAINT: {
      PAINTSTRUCT paint{};
      HDC dc = BeginPaint(hwnd_, &paint);
      try {
        OnPaint(dc, paint.rcPaint);
      } catch (...) {
        EndPaint(hwnd_, &paint);
        throw;
      }
      EndPaint(hwnd_, &paint);
      return 0;
    }
    case WM_ERASEBKGND:
      return OnEraseBackground(reinterpret_cast<HDC>(wParam)) ? 1 : 0;
    case WM_TIMER:
      OnTimer(wParam);
      return 0;
    case WM_SETCURSOR:
      if (OnSetCursor(reinterpret_cast<HWND>(wParam), LOWORD(lParam), HIWORD(lParam))) return 1;
      return Default();
    case WM_MOUSEMOVE:
      OnMouseMove(flags, x, y);
      return 0;
    case WM_LBUTTONDOWN:
      OnLButtonDown(flags, x, y);
      return 0;
    case WM_LBUTTONUP:
      OnLButtonUp(flags, x, y);
      return 0;
    case WM_LBUTTONDBLCLK:
      OnLButtonDblClk(flags, x, y);
      return 0;
    case WM_RBUTTONDOWN:
      OnRButtonDown(flags, x, y);
      return 0;
    case WM_HSCROLL:
    case WM_VSCROLL:
      OnScroll(message == WM_VSCROLL, LOWORD(wParam), static_cast<short>(HIWORD(wParam)),
               reinterpret_cast<HWND>(lParam));
      return 0;
    case WM_CLOSE:
      OnClose();
      return 0;
    default:
      return Default();
  }
}

}  // namespace tavlet::win32
