// WindowHook: intercepts the messages of a window that someone else owns (the
// host's MDI client and command host) without owning it. The hooks of one
// window form a chain: the window's procedure is replaced once, by a common
// hook procedure, which hands each message to the first hook; a hook passes it
// on with Default, and the last one to the window's old procedure. Hooks attach
// and detach in any order; WM_NCDESTROY takes the whole chain off.
#pragma once

#include <windows.h>

namespace tavlet::win32 {

class WindowHook {
 public:
  WindowHook() = default;
  // Detaches first when still attached.
  virtual ~WindowHook();
  WindowHook(const WindowHook&) = delete;
  WindowHook& operator=(const WindowHook&) = delete;

  // Puts the hook in front of the window's chain; false when `window` is not a
  // live window or the hook is attached already.
  bool Attach(HWND window);
  void Detach();
  HWND Hooked() const { return window_; }

  // The hook procedure's record of the message being handled on this thread.
  static const MSG& LastMessage();
  // How many windows carry hooks now (for tests of unload).
  static int HookedWindowCount();

 protected:
  // Gets every message of the window; the default passes it on.
  virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
  // The next hook's WindowProc, or at the chain's end the window's old procedure,
  // with the message of LastMessage().
  LRESULT Default();

 private:
  static LRESULT CALLBACK HookProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept;

  HWND window_ = nullptr;
  WNDPROC oldProcedure_ = nullptr;
  WindowHook* next_ = nullptr;
};

}  // namespace tavlet::win32
