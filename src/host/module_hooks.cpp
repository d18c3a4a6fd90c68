#include "host/module_hooks.h"

#include "bar/bar_model.h"

namespace tavlet::host {

FrameAreaHook::FrameAreaHook(WindowSystem& windows, bar::BarModel& bar, const bool& on)
    : windows_(windows), bar_(bar), on_(on) {}

bool FrameAreaHook::Attach(port::Window window) {
  if (!windows_.AttachHook(window, this)) return false;
  window_ = window;
  return true;
}

void FrameAreaHook::Detach() {
  if (!window_) return;
  windows_.DetachHook(window_, this);
  window_ = nullptr;
}

void FrameAreaHook::OnWindowPosChanging(port::Window window, WindowPos& pos) {
  // This runs inside the host's own SetWindowPos: whatever fails, the window
  // keeps the size the frame proposed.
  WindowPos proposed = pos;
  try {
    Carve(window, pos);
  } catch (...) {
    pos = proposed;
  }
}

void FrameAreaHook::Carve(port::Window window, WindowPos& pos) {
  const bar::FrameHandles& frame = bar_.Frame();
  const bool onCommandHost = window == frame.commandHost;
  const bool onMdiClient = window == frame.mdiClient;
  if (!on_ || !(onCommandHost || onMdiClient)) return;
  if (bar_.Settings().HideOnSingle && bar_.DrawingCount() == 1) return;
  // A frame being minimised proposes a zero size; the stored rectangles stay.
  if (pos.cx == 0 || pos.cy == 0) return;
  WindowRect rect{pos.x, pos.y, pos.x + pos.cx, pos.y + pos.cy};
  const int side = bar_.DockSide();
  const bool floating = bar_.Floating();

  if (onCommandHost) {
    bar_.commandHostRect = rect;
    if (!bar::IsAreaSide(side) && !floating) {
      const long width = bar_.CommandWidth();
      if (side == bar::kDockCommandLeft) {
        pos.x += width;
        rect.right = pos.x;
        pos.cx -= width;
      } else if (side == bar::kDockCommandRight) {
        rect.left = pos.x + pos.cx - width;
        pos.cx -= width;
      }
      windows_.MoveWindow(bar_.Window(), rect, true);
    }
  } else {
    bar_.mdiClientRect = rect;
    if (bar::IsAreaSide(side) && !floating) {
      const long thickness =
          bar_.DrawingCount() < 1 || bar_.TabMode() ? bar_.TabThickness(&rect) : bar_.PreviewThickness();
      switch (side) {
        case bar::kDockTop:
          pos.y += thickness;
          rect.bottom = pos.y;
          pos.cy -= thickness;
          break;
        case bar::kDockLeft:
          pos.x += thickness;
          rect.right = pos.x;
          pos.cx -= thickness;
          break;
        case bar::kDockRight:
          rect.left = pos.x + pos.cx - thickness;
          pos.cx -= thickness;
          break;
        default:
          rect.top = pos.y + pos.cy - thickness;
          pos.cy -= thickness;
          break;
      }
      windows_.MoveWindow(bar_.Window(), rect, true);
    }
  }
  // Floating or beside the command line the strip keeps its size, but the
  // drawing area's proportions it copies may have changed.
  if (floating || !bar::IsAreaSide(side)) bar_.LayOutStrip();
}

}  // namespace tavlet::host
