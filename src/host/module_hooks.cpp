#include "host/module_hooks.h"

#include "bar/bar_model.h"
#include "bar/docking.h"

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
  const bool hooked = onCommandHost || window == frame.mdiClient;
  if (bar::HookPassesThrough(true, hooked, on_, bar_.Settings().HideOnSingle, [this] { return bar_.DrawingCount(); },
                             pos))
    return;
  const bar::HookOutcome outcome = bar::CarveForHook(bar_, onCommandHost, pos);
  pos = outcome.carving.pos;
  if (outcome.carving.moveBar) windows_.MoveWindow(bar_.Window(), outcome.carving.bar, true);
  // Floating or beside the command line the strip keeps its size, but the
  // drawing area's proportions it copies may have changed.
  if (outcome.layOutStrip) bar_.LayOutStrip();
}

}  // namespace tavlet::host
