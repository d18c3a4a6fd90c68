// A window system without windows: a tree of rectangles, styles, timers and
// hooks, and a log of every call, so that tests read what start-up, unload and
// the bar did to the host's windows and in which order.
//
// Rectangles are kept in screen coordinates; a window's client area is its whole
// rectangle (no borders), so mapping between windows subtracts origins. A move of
// a hooked window first passes the proposed position through its hooks, as the
// platform's WM_WINDOWPOSCHANGING does.
//
// Example:
//   FakeWindowSystem windows;
//   AddSimHostWindows(windows, host);   // frame, MDI client, command windows
//   host::NudgeFrame(windows, host.WindowNamed("frame"));
//   windows.Log();  // "GetWindowRect frame", "MoveWindow frame 10,10,1014,758 0", ...
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/window_system.h"

namespace tavlet::sim {

class SimHost;

class FakeWindowSystem final : public host::WindowSystem {
 public:
  struct FakeWindow {
    std::string name;
    port::Window parent = nullptr;
    host::WindowRect rect;  // screen
    unsigned long style = 0;
    bool visible = true;
    bool alive = true;
    std::string className, text;
    int id = 0;
    std::map<unsigned, unsigned> timers;  // id -> milliseconds
    std::vector<host::WindowHookSink*> hooks;  // first in front
  };

  // `rect` in screen coordinates.
  void AddWindow(port::Window window, const std::string& name, port::Window parent, host::WindowRect rect,
                 unsigned long style = host::kWsVisible);
  FakeWindow* Find(port::Window window);
  // The name given at AddWindow or made at CreateWindow ("MvTavlet", ...); "?" for an unknown handle.
  std::string NameOf(port::Window window) const;
  port::Window Named(const std::string& name) const;

  // Every call, in order, e.g. "MoveWindow frame 10,10,90,90 0", "SetTimer PreviewStrip 101 800".
  const std::vector<std::string>& Log() const { return log_; }
  void ClearLog() { log_.clear(); }
  // The entries of the log that start with `prefix`.
  std::vector<std::string> LogOf(const std::string& prefix) const;
  bool ModuleResourcesCurrent() const { return moduleResources_ > 0; }
  long captionHeight = 18;

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
  long CaptionHeight() override { return captionHeight; }
  void UseModuleResources(bool module) override;
  bool AttachHook(port::Window window, host::WindowHookSink* sink) override;
  void DetachHook(port::Window window, host::WindowHookSink* sink) override;

 private:
  void Record(std::string entry) { log_.push_back(std::move(entry)); }
  host::WindowRect OriginOf(port::Window window) const;

  std::map<port::Window, FakeWindow> windows_;
  std::vector<std::string> log_;
  std::size_t nextHandle_ = 0x9000;
  int moduleResources_ = 0;
};

// The simulated host's frame (1024 by 768), its MDI client, command dock, command
// host and command line, with the SimHost's handles and names "frame",
// "mdiclient", "cmddock", "cmdhost", "cmdline". Windows the host reports missing
// are left out.
void AddSimHostWindows(FakeWindowSystem& windows, const SimHost& host);

}  // namespace tavlet::sim
