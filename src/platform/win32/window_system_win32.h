// The window-system port over raw Win32 (no framework): the host's windows are
// HWNDs, our own windows are of one plain registered class until the bar's
// window procedures take them over, and hooks are window subclasses.
#pragma once

#include <memory>

#include "host/window_system.h"

namespace tavlet::win32 {

// `instance` is the module's HINSTANCE (null: the process's).
std::unique_ptr<host::WindowSystem> CreateWin32WindowSystem(void* instance);

}  // namespace tavlet::win32
