// The window-system port over raw Win32: the host's windows are HWNDs; our own
// windows are made by the factory registered for their kind ("MvTavlet",
// "PreviewStrip", ...) or, for a kind without one, as plain windows of one class;
// hooks are WindowHook chains; the frame's re-layout is its query-mode layout.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/window_system.h"

namespace tavlet::win32 {

// Makes the window of one kind; `instance` is the current resource instance.
using WindowFactory = std::function<port::Window(const host::WindowCreation& creation)>;

class Win32WindowSystem final : public host::WindowSystem {
 public:
  // `instance` is the module's HINSTANCE (null: the process's).
  explicit Win32WindowSystem(void* instance);
  ~Win32WindowSystem() override;

  void SetFactory(const std::string& kind, WindowFactory factory) { factories_[kind] = std::move(factory); }

  bool IsWindow(port::Window window) override;
  port::Window GetParent(port::Window window) override;
  bool GetWindowRect(port::Window window, host::WindowRect& rect) override;
  void MapWindowPoints(port::Window from, port::Window to, host::WindowRect& rect) override;
  bool MoveWindow(port::Window window, const host::WindowRect& rect, bool repaint) override;
  bool RedrawWindow(port::Window window, const host::WindowRect* area, unsigned flags) override;
  bool ShowWindow(port::Window window, int command) override;
  unsigned long GetStyle(port::Window window) override;
  void SetStyle(port::Window window, unsigned long style) override;
  bool SetParent(port::Window child, port::Window parent) override;
  bool SetTimer(port::Window window, unsigned id, unsigned milliseconds) override;
  bool KillTimer(port::Window window, unsigned id) override;
  bool CenterWindow(port::Window window) override;
  port::Window NewWindow(const host::WindowCreation& creation) override;
  bool DestroyWindow(port::Window window) override;
  void RecalcFrameLayout(port::Window frame) override;
  long CaptionHeight() override;
  void UseModuleResources(bool module) override;
  bool AttachHook(port::Window window, host::WindowHookSink* sink) override;
  void DetachHook(port::Window window, host::WindowHookSink* sink) override;

  // Hooks attached through this object and not yet detached (for tests of unload).
  int AttachedHooks() const { return static_cast<int>(hooks_.size()); }

 private:
  class FrameAreaHook;

  void* instance_;
  std::map<std::string, WindowFactory> factories_;
  std::vector<std::unique_ptr<FrameAreaHook>> hooks_;
  std::vector<void*> savedResources_;
};

std::unique_ptr<host::WindowSystem> CreateWin32WindowSystem(void* instance);

}  // namespace tavlet::win32
