// The window services that start-up, the bar's document operations and
// NudgeFrame need, as a plain C++ interface so that the whole start-up order runs
// natively against a recording fake (sim/fake_window_system.h) and for real in
// the Win32 layer (platform/win32/window_system_win32.cpp). Windows are the host
// port's opaque handles; null is the desktop where a parent is meant.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::host {

struct WindowRect {
  long left = 0, top = 0, right = 0, bottom = 0;
  long Width() const { return right - left; }
  long Height() const { return bottom - top; }
  friend bool operator==(const WindowRect&, const WindowRect&) = default;
};

// The proposed position of a WM_WINDOWPOSCHANGING, as a hook may change it.
struct WindowPos {
  long x = 0, y = 0, cx = 0, cy = 0;
};

// RedrawWindow flags, with the platform's values.
inline constexpr unsigned kRdwInvalidate = 0x0001;
inline constexpr unsigned kRdwErase = 0x0004;
inline constexpr unsigned kRdwAllChildren = 0x0080;
inline constexpr unsigned kRdwUpdateNow = 0x0100;
// The form of every redraw of the bar and of the frame.
inline constexpr unsigned kRedrawNow = kRdwInvalidate | kRdwErase | kRdwUpdateNow;  // 0x105
inline constexpr unsigned kRedrawNudge = kRedrawNow | kRdwAllChildren;               // 0x185

inline constexpr int kSwHide = 0;
inline constexpr int kSwShow = 5;

inline constexpr unsigned long kWsChild = 0x40000000ul;
inline constexpr unsigned long kWsVisible = 0x10000000ul;
inline constexpr unsigned long kWsClipChildren = 0x02000000ul;

inline constexpr unsigned int kWmMButtonUp = 0x0208;
inline constexpr unsigned int kWmMouseWheel = 0x020A;

// What a window of our own is created with.
struct WindowCreation {
  port::Window parent = nullptr;
  const char* className = "";  // the kind of window: "MvTavlet", "PreviewStrip", ...
  const char* text = "";
  unsigned long style = 0;
  int id = 0;
  WindowRect rect;
};

// Receives the messages of a window it does not own (the frame's MDI client and
// the command host), before the window's own procedure does.
class WindowHookSink {
 public:
  virtual void OnWindowPosChanging(port::Window window, WindowPos& pos) = 0;

 protected:
  ~WindowHookSink() = default;
};

class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  virtual bool IsWindow(port::Window window) = 0;
  virtual port::Window GetParent(port::Window window) = 0;
  // Screen coordinates.
  virtual bool GetWindowRect(port::Window window, WindowRect& rect) = 0;
  // The two corners of `rect` from `from`'s client coordinates to `to`'s (null:
  // the screen).
  virtual void MapWindowPoints(port::Window from, port::Window to, WindowRect& rect) = 0;
  // `rect` in the parent's client coordinates.
  virtual bool MoveWindow(port::Window window, const WindowRect& rect, bool repaint) = 0;
  // `area` null: the whole window.
  virtual bool RedrawWindow(port::Window window, const WindowRect* area, unsigned flags) = 0;
  virtual bool ShowWindow(port::Window window, int command) = 0;
  virtual unsigned long GetStyle(port::Window window) = 0;
  virtual void SetStyle(port::Window window, unsigned long style) = 0;
  virtual bool SetParent(port::Window child, port::Window parent) = 0;
  // A timer of the window's own; setting it again restarts it.
  virtual bool SetTimer(port::Window window, unsigned id, unsigned milliseconds) = 0;
  virtual bool KillTimer(port::Window window, unsigned id) = 0;
  // On the desktop (no parent given).
  virtual bool CenterWindow(port::Window window) = 0;
  virtual port::Window NewWindow(const WindowCreation& creation) = 0;
  virtual bool DestroyWindow(port::Window window) = 0;
  // The host frame lays out its bars and its MDI client again.
  virtual void RecalcFrameLayout(port::Window frame) = 0;

  // GetSystemMetrics(SM_CYCAPTION).
  virtual long CaptionHeight() = 0;

  // The module's resources are made current around windows and dialogs.
  virtual void UseModuleResources(bool module) = 0;

  // Puts `sink` in front of the window's chain of hooks; false when the window
  // is not a live one.
  virtual bool AttachHook(port::Window window, WindowHookSink* sink) = 0;
  // Restores the window's procedure chain without `sink`.
  virtual void DetachHook(port::Window window, WindowHookSink* sink) = 0;
};

// Makes the module's resources current for its lifetime.
class ModuleResourceScope {
 public:
  explicit ModuleResourceScope(WindowSystem& windows) : windows_(windows) { windows_.UseModuleResources(true); }
  ~ModuleResourceScope() { windows_.UseModuleResources(false); }
  ModuleResourceScope(const ModuleResourceScope&) = delete;
  ModuleResourceScope& operator=(const ModuleResourceScope&) = delete;

 private:
  WindowSystem& windows_;
};

// Forces the host to lay out its frame again: the window shrinks by 10 pixels on
// every side and comes back, and each move makes the frame place its children,
// which the bar's hooks then carve.
inline void NudgeFrame(WindowSystem& windows, port::Window window) {
  if (!window) return;
  WindowRect rect;
  windows.GetWindowRect(window, rect);
  windows.MapWindowPoints(nullptr, windows.GetParent(window), rect);
  WindowRect smaller{rect.left + 10, rect.top + 10, rect.right - 10, rect.bottom - 10};
  windows.MoveWindow(window, smaller, false);
  windows.MoveWindow(window, rect, true);
  windows.RedrawWindow(window, nullptr, kRedrawNudge);
}

}  // namespace tavlet::host
