#include "platform/win32/host/window_system_win32.h"

#include <windows.h>

#include "platform/win32/host/frame_layout.h"
#include "platform/win32/port_handles.h"
#include "platform/win32/window.h"
#include "platform/win32/window_hook.h"

namespace tavlet::win32 {

namespace {

constexpr char kPlainClass[] = "TavletWindow";

// A window of a kind that has no window class of its own yet.
class PlainWindow final : public OwnedByWindow {};

}  // namespace

// The frame hook on a window of the host's: each proposed size goes to the
// portable carving (host::FrameAreaHook), which may cut it, before the window's
// own procedure sees it.
class Win32WindowSystem::FrameAreaHook final : public WindowHook {
 public:
  explicit FrameAreaHook(host::WindowHookSink* sink) : sink_(sink) {}
  host::WindowHookSink* Sink() const { return sink_; }

 protected:
  LRESULT WindowProc(UINT message, WPARAM, LPARAM lParam) override {
    if (message == WM_WINDOWPOSCHANGING && lParam) {
      auto* p = reinterpret_cast<WINDOWPOS*>(lParam);
      if (!(p->flags & SWP_NOSIZE)) {
        host::WindowPos pos{p->x, p->y, p->cx, p->cy};
        sink_->OnWindowPosChanging(W(Hooked()), pos);
        p->x = static_cast<int>(pos.x);
        p->y = static_cast<int>(pos.y);
        p->cx = static_cast<int>(pos.cx);
        p->cy = static_cast<int>(pos.cy);
      }
    }
    return Default();
  }

 private:
  host::WindowHookSink* sink_;
};

Win32WindowSystem::Win32WindowSystem(void* instance)
    : instance_(instance ? instance : static_cast<void*>(GetModuleHandleA(nullptr))) {}

Win32WindowSystem::~Win32WindowSystem() = default;

bool Win32WindowSystem::IsWindow(port::Window w) { return w && ::IsWindow(H(w)); }
port::Window Win32WindowSystem::GetParent(port::Window w) { return W(::GetParent(H(w))); }

bool Win32WindowSystem::GetWindowRect(port::Window w, host::WindowRect& rect) {
  RECT r{};
  if (!::GetWindowRect(H(w), &r)) return false;
  rect = FromRect(r);
  return true;
}

void Win32WindowSystem::MapWindowPoints(port::Window from, port::Window to, host::WindowRect& rect) {
  RECT r = ToRect(rect);
  ::MapWindowPoints(H(from), H(to), reinterpret_cast<POINT*>(&r), 2);
  rect = FromRect(r);
}

bool Win32WindowSystem::MoveWindow(port::Window w, const host::WindowRect& r, bool repaint) {
  return ::MoveWindow(H(w), static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.Width()),
                      static_cast<int>(r.Height()), repaint) != FALSE;
}

bool Win32WindowSystem::RedrawWindow(port::Window w, const host::WindowRect* area, unsigned flags) {
  RECT r = area ? ToRect(*area) : RECT{};
  return ::RedrawWindow(H(w), area ? &r : nullptr, nullptr, flags) != FALSE;
}

bool Win32WindowSystem::ShowWindow(port::Window w, int command) { return ::ShowWindow(H(w), command) != FALSE; }

unsigned long Win32WindowSystem::GetStyle(port::Window w) {
  return static_cast<unsigned long>(GetWindowLongPtrA(H(w), GWL_STYLE));
}

void Win32WindowSystem::SetStyle(port::Window w, unsigned long style) {
  SetWindowLongPtrA(H(w), GWL_STYLE, static_cast<LONG_PTR>(style));
}

bool Win32WindowSystem::SetParent(port::Window child, port::Window parent) {
  return ::SetParent(H(child), H(parent)) != nullptr;
}

bool Win32WindowSystem::SetTimer(port::Window w, unsigned id, unsigned ms) {
  return ::SetTimer(H(w), id, ms, nullptr) != 0;
}

bool Win32WindowSystem::KillTimer(port::Window w, unsigned id) { return ::KillTimer(H(w), id) != FALSE; }

bool Win32WindowSystem::CenterWindow(port::Window w) {
  RECT r{}, work{};
  if (!::GetWindowRect(H(w), &r) || !SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0)) return false;
  const int x = work.left + ((work.right - work.left) - (r.right - r.left)) / 2;
  const int y = work.top + ((work.bottom - work.top) - (r.bottom - r.top)) / 2;
  return SetWindowPos(H(w), nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE) != FALSE;
}

port::Window Win32WindowSystem::NewWindow(const host::WindowCreation& c) {
  // Windows are made from the module's resources, whoever asked.
  ResourceScope resources(static_cast<HINSTANCE>(instance_));
  auto factory = factories_.find(c.className);
  if (factory != factories_.end()) return factory->second(c);
  if (!RegisterWindowClass(kPlainClass, CS_DBLCLKS, IDC_ARROW, nullptr)) return nullptr;
  const bool child = (c.style & WS_CHILD) != 0;
  // A top-level window of ours is a captioned tool window owned by the host's frame.
  const DWORD style = child ? c.style : (c.style | WS_POPUP | WS_CAPTION | WS_THICKFRAME);
  const DWORD exStyle = child ? 0 : WS_EX_TOOLWINDOW;
  auto* window = new PlainWindow;
  HWND hwnd = window->Create(kPlainClass, exStyle, c.text, style, ToRect(c.rect), H(c.parent),
                             child ? static_cast<UINT_PTR>(c.id) : 0);
  if (!hwnd) delete window;
  return W(hwnd);
}

bool Win32WindowSystem::DestroyWindow(port::Window w) { return ::DestroyWindow(H(w)) != FALSE; }

void Win32WindowSystem::RecalcFrameLayout(port::Window frame) {
  HWND mdiClient = FindWindowExA(H(frame), nullptr, "MDIClient", nullptr);
  RepositionDrawingArea(H(frame), mdiClient);
}

long Win32WindowSystem::CaptionHeight() { return GetSystemMetrics(SM_CYCAPTION); }

void Win32WindowSystem::UseModuleResources(bool module) {
  if (module) {
    savedResources_.push_back(SetCurrentResourceInstance(static_cast<HINSTANCE>(instance_)));
  } else if (!savedResources_.empty()) {
    SetCurrentResourceInstance(static_cast<HINSTANCE>(savedResources_.back()));
    savedResources_.pop_back();
  }
}

bool Win32WindowSystem::AttachHook(port::Window w, host::WindowHookSink* sink) {
  auto hook = std::make_unique<FrameAreaHook>(sink);
  if (!hook->Attach(H(w))) return false;
  hooks_.push_back(std::move(hook));
  return true;
}

void Win32WindowSystem::DetachHook(port::Window w, host::WindowHookSink* sink) {
  for (auto it = hooks_.begin(); it != hooks_.end(); ++it) {
    // A hook whose window was destroyed has already let go of it.
    if ((*it)->Sink() == sink && ((*it)->Hooked() == H(w) || !(*it)->Hooked())) {
      (*it)->Detach();
      hooks_.erase(it);
      return;
    }
  }
}

std::unique_ptr<host::WindowSystem> CreateWin32WindowSystem(void* instance) {
  return std::make_unique<Win32WindowSystem>(instance);
}

}  // namespace tavlet::win32
