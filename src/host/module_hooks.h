// FrameAreaHook: the bar takes its space on a frame that knows nothing of it by
// cutting its strip off every proposed size of the MDI client or the command
// host, and moving itself into what is left over.
#pragma once

#include "host/window_system.h"

namespace tavlet::bar {
class BarModel;
}

namespace tavlet::host {

class FrameAreaHook final : public WindowHookSink {
 public:
  // `on` is the module's; `bar` outlives the hook.
  FrameAreaHook(WindowSystem& windows, bar::BarModel& bar, const bool& on);

  bool Attach(port::Window window);
  // Restores the window's procedure chain.
  void Detach();
  port::Window AttachedTo() const { return window_; }

  void OnWindowPosChanging(port::Window window, WindowPos& pos) override;

 private:
  void Carve(port::Window window, WindowPos& pos);

  WindowSystem& windows_;
  bar::BarModel& bar_;
  const bool& on_;
  port::Window window_ = nullptr;
};

}  // namespace tavlet::host
