// The switcher's window: the open drawings in the order they were last active,
// each with its thumbnail and name, over the middle of the host's frame; and the
// thread's keyboard hook that opens it for Ctrl+Tab instead of the MDI's own
// next window.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <vector>

#include "bar/bar_model.h"

namespace tavlet::win32 {

// How the popup was asked for: with Ctrl held (releasing it picks) and which way.
struct SwitcherRequest {
  bool byCtrlTab = false;
  bool backward = false;
};

// The request of the Ctrl+Tab being handled now; a plain one otherwise.
SwitcherRequest CurrentSwitcherRequest();

// Shows the popup over `frame` and runs it until a drawing is picked (given) or
// it is cancelled (null). `bar` gives the pictures and names; may be null.
port::Document RunSwitcherPopup(HWND frame, bar::BarModel* bar, const std::vector<port::Document>& order,
                                const SwitcherRequest& request);

// Ctrl+Tab in the host's thread while `frame` has the focus: swallowed and,
// once the key's message is done, `open` runs with the request made current.
class CtrlTabHook {
 public:
  CtrlTabHook(HWND frame, std::function<std::size_t()> drawings, std::function<void()> open);
  ~CtrlTabHook();
  CtrlTabHook(const CtrlTabHook&) = delete;
  CtrlTabHook& operator=(const CtrlTabHook&) = delete;

  bool Installed() const { return hook_ != nullptr; }

 private:
  static LRESULT CALLBACK KeyboardProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept;
  static void CALLBACK OpenLater(HWND, UINT, UINT_PTR id, DWORD) noexcept;

  HWND frame_;
  std::function<std::size_t()> drawings_;
  std::function<void()> open_;
  HHOOK hook_ = nullptr;
  UINT_PTR timer_ = 0;
  bool backward_ = false;
};

}  // namespace tavlet::win32
