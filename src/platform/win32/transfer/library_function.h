// Functions of a library looked up at run time, typed by the declaration the
// platform headers give them: FindFunction(library, "send", api.send) with
// `decltype(&::send) send` in the table.
#pragma once

#include <windows.h>

namespace tavlet::win32 {

template <typename Function>
bool FindFunction(HMODULE library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
  return function != nullptr;
}

}  // namespace tavlet::win32
