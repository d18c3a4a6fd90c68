#include "platform/win32/window_hook.h"

#include <unordered_map>

namespace tavlet::win32 {

namespace {

using HookMap = std::unordered_map<HWND, WindowHook*>;

// Created on first use; few windows are ever hooked.
HookMap& Hooks() {
  static HookMap* map = new HookMap(10);
  return *map;
}

thread_local MSG lastMessage{};

}  // namespace

WindowHook::~WindowHook() { Detach(); }

const MSG& WindowHook::LastMessage() { return lastMessage; }

int WindowHook::HookedWindowCount() { return static_cast<int>(Hooks().size()); }

bool WindowHook::Attach(HWND window) {
  if (window_ || !window || !IsWindow(window)) return false;
  HookMap& hooks = Hooks();
  auto found = hooks.find(window);
  if (found == hooks.end()) {
    oldProcedure_ = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&WindowHook::HookProcedure)));
    next_ = nullptr;
  } else {
    oldProcedure_ = found->second->oldProcedure_;
    next_ = found->second;
  }
  hooks[window] = this;
  window_ = window;
  return true;
}

void WindowHook::Detach() {
  if (!window_) return;
  HookMap& hooks = Hooks();
  auto found = hooks.find(window_);
  if (found != hooks.end()) {
    if (found->second == this) {
      if (next_) {
        found->second = next_;
      } else {
        SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(oldProcedure_));
        hooks.erase(found);
      }
    } else {
      for (WindowHook* hook = found->second; hook; hook = hook->next_) {
        if (hook->next_ == this) {
          hook->next_ = next_;
          break;
        }
      }
    }
  }
  window_ = nullptr;
  next_ = nullptr;
  oldProcedure_ = nullptr;
}

LRESULT WindowHook::WindowProc(UINT, WPARAM, LPARAM) { return Default(); }

LRESULT WindowHook::Default() {
  const MSG& m = lastMessage;
  if (next_) return next_->WindowProc(m.message, m.wParam, m.lParam);
  return CallWindowProcA(oldProcedure_, m.hwnd, m.message, m.wParam, m.lParam);
}

LRESULT CALLBACK WindowHook::HookProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  HookMap& hooks = Hooks();
  auto found = hooks.find(hwnd);
  if (found == hooks.end()) return DefWindowProcA(hwnd, message, wParam, lParam);
  WindowHook* first = found->second;
  const WNDPROC old = first->oldProcedure_;
  const MSG outer = lastMessage;
  lastMessage = MSG{hwnd, message, wParam, lParam, 0, {}};
  LRESULT result = 0;
  if (message == WM_NCDESTROY) {
    // The window goes: its hooks let go of it and its own procedure comes back.
    for (WindowHook* hook = first; hook;) {
      WindowHook* next = hook->next_;
      hook->window_ = nullptr;
      hook->next_ = nullptr;
      hook = next;
    }
    hooks.erase(found);
    SetWindowLongPtrA(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(old));
    result = CallWindowProcA(old, hwnd, message, wParam, lParam);
  } else {
    try {
      result = first->WindowProc(message, wParam, lParam);
    } catch (...) {
      // The window is the host's: it gets its own handling whatever a hook did.
      result = CallWindowProcA(old, hwnd, message, wParam, lParam);
    }
  }
  lastMessage = outer;
  return result;
}

}  // namespace tavlet::win32
