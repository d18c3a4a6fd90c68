// Conversions between the host port's window vocabulary and the platform's:
// port::Window is an HWND, host::WindowRect a RECT.
#pragma once

#include <windows.h>

#include "host/port/port_types.h"
#include "host/window_system.h"

namespace tavlet::win32 {

inline HWND H(port::Window window) { return reinterpret_cast<HWND>(window); }
inline port::Window W(HWND hwnd) { return reinterpret_cast<port::Window>(hwnd); }

inline RECT ToRect(const host::WindowRect& r) {
  return {static_cast<LONG>(r.left), static_cast<LONG>(r.top), static_cast<LONG>(r.right),
          static_cast<LONG>(r.bottom)};
}
inline host::WindowRect FromRect(const RECT& r) { return {r.left, r.top, r.right, r.bottom}; }

}  // namespace tavlet::win32
