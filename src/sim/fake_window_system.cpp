#include "sim/fake_window_system.h"

#include <algorithm>
#include <cstdio>

#include "sim/sim_host.h"

namespace tavlet::sim {

namespace {

std::string RectText(const host::WindowRect& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom);
}

}  // namespace

void FakeWindowSystem::AddWindow(port::Window window, const std::string& name, port::Window parent,
                                 host::WindowRect rect, unsigned long style) {
  FakeWindow w;
  w.name = name;
  w.parent = parent;
  w.rect = rect;
  w.style = style;
  w.visible = (style & host::kWsVisible) != 0;
  windows_[window] = w;
}

FakeWindowSystem::FakeWindow* FakeWindowSystem::Find(port::Window window) {
  auto it = windows_.find(window);
  return it == windows_.end() ? nullptr : &it->second;
}

std::string FakeWindowSystem::NameOf(port::Window window) const {
  if (!window) return "desktop";
  auto it = windows_.find(window);
  return it == windows_.end() ? "?" : it->second.name;
}

port::Window FakeWindowSystem::Named(const std::string& name) const {
  for (const auto& [handle, w] : windows_)
    if (w.name == name && w.alive) return handle;
  return nullptr;
}

std::vector<std::string> FakeWindowSystem::LogOf(const std::string& prefix) const {
  std::vector<std::string> out;
  for (const std::string& entry : log_)
    if (entry.compare(0, prefix.size(), prefix) == 0) out.push_back(entry);
  return out;
}

host::WindowRect FakeWindowSystem::OriginOf(port::Window window) const {
  auto it = windows_.find(window);
  if (!window || it == windows_.end()) return {};
  return it->second.rect;
}

bool FakeWindowSystem::IsWindow(port::Window window) {
  FakeWindow* w = Find(window);
  return w && w->alive;
}

port::Window FakeWindowSystem::GetParent(port::Window window) {
  FakeWindow* w = Find(window);
  return w && w->alive ? w->parent : nullptr;
}

bool FakeWindowSystem::GetWindowRect(port::Window window, host::WindowRect& rect) {
  Record("GetWindowRect " + NameOf(window));
  FakeWindow* w = Find(window);
  if (!w || !w->alive) return false;
  rect = w->rect;
  return true;
}

void FakeWindowSystem::MapWindowPoints(port::Window from, port::Window to, host::WindowRect& rect) {
  Record("MapWindowPoints " + NameOf(from) + " " + NameOf(to));
  host::WindowRect a = OriginOf(from), b = OriginOf(to);
  long dx = a.left - b.left, dy = a.top - b.top;
  rect = {rect.left + dx, rect.top + dy, rect.right + dx, rect.bottom + dy};
}

bool FakeWindowSystem::MoveWindow(port::Window window, const host::WindowRect& rect, bool repaint) {
  Record("MoveWindow " + NameOf(window) + " " + RectText(rect) + " " + (repaint ? "1" : "0"));
  FakeWindow* w = Find(window);
  if (!w || !w->alive) return false;
  host::WindowPos pos{rect.left, rect.top, rect.Width(), rect.Height()};
  // The hooks see the proposal first; the copy survives a hook that detaches itself.
  std::vector<host::WindowHookSink*> hooks = w->hooks;
  if (!hooks.empty()) hooks.front()->OnWindowPosChanging(window, pos);
  w = Find(window);
  host::WindowRect origin = OriginOf(w->parent);
  w->rect = {pos.x + origin.left, pos.y + origin.top, pos.x + pos.cx + origin.left, pos.y + pos.cy + origin.top};
  return true;
}

bool FakeWindowSystem::RedrawWindow(port::Window window, const host::WindowRect* area, unsigned flags) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%X", flags);
  Record("RedrawWindow " + NameOf(window) + (area ? " " + RectText(*area) : std::string()) + " " + hex);
  return IsWindow(window);
}

bool FakeWindowSystem::ShowWindow(port::Window window, int command) {
  Record("ShowWindow " + NameOf(window) + " " + std::to_string(command));
  FakeWindow* w = Find(window);
  if (!w || !w->alive) return false;
  bool was = w->visible;
  w->visible = command != host::kSwHide;
  return was;
}

unsigned long FakeWindowSystem::GetStyle(port::Window window) {
  FakeWindow* w = Find(window);
  return w ? w->style : 0;
}

void FakeWindowSystem::SetStyle(port::Window window, unsigned long style) {
  char hex[16];
  std::snprintf(hex, sizeof hex, "0x%08lX", style);
  Record("SetStyle " + NameOf(window) + " " + hex);
  if (FakeWindow* w = Find(window)) w->style = style;
}

bool FakeWindowSystem::SetParent(port::Window child, port::Window parent) {
  Record("SetParent " + NameOf(child) + " " + NameOf(parent));
  FakeWindow* w = Find(child);
  if (!w || !w->alive) return false;
  w->parent = parent;
  return true;
}

bool FakeWindowSystem::SetTimer(port::Window window, unsigned id, unsigned milliseconds) {
  Record("SetTimer " + NameOf(window) + " " + std::to_string(id) + " " + std::to_string(milliseconds));
  FakeWindow* w = Find(window);
  if (!w || !w->alive) return false;
  w->timers[id] = milliseconds;
  return true;
}

bool FakeWindowSystem::KillTimer(port::Window window, unsigned id) {
  Record("KillTimer " + NameOf(window) + " " + std::to_string(id));
  FakeWindow* w = Find(window);
  return w && w->timers.erase(id) > 0;
}

bool FakeWindowSystem::CenterWindow(port::Window window) {
  Record("CenterWindow " + NameOf(window));
  return IsWindow(window);
}

port::Window FakeWindowSystem::NewWindow(const host::WindowCreation& creation) {
  auto handle = reinterpret_cast<port::Window>(nextHandle_++);
  host::WindowRect origin = OriginOf(creation.parent);
  host::WindowRect r = creation.rect;
  AddWindow(handle, creation.className, creation.parent,
            {r.left + origin.left, r.top + origin.top, r.right + origin.left, r.bottom + origin.top},
            creation.style);
  FakeWindow& w = windows_[handle];
  w.className = creation.className;
  w.text = creation.text;
  w.id = creation.id;
  Record("CreateWindow " + w.name + " in " + NameOf(creation.parent) + " id " + std::to_string(creation.id) +
         (moduleResources_ > 0 ? " with module resources" : ""));
  return handle;
}

bool FakeWindowSystem::DestroyWindow(port::Window window) {
  Record("DestroyWindow " + NameOf(window));
  FakeWindow* w = Find(window);
  if (!w || !w->alive) return false;
  w->alive = false;
  // Children go with their parent, as on the platform.
  for (auto& [handle, child] : windows_)
    if (child.parent == window && child.alive) DestroyWindow(handle);
  return true;
}

void FakeWindowSystem::RecalcFrameLayout(port::Window frame) { Record("RecalcFrameLayout " + NameOf(frame)); }

void FakeWindowSystem::UseModuleResources(bool module) {
  moduleResources_ += module ? 1 : -1;
  Record(module ? "resources module" : "resources restored");
}

bool FakeWindowSystem::AttachHook(port::Window window, host::WindowHookSink* sink) {
  Record("AttachHook " + NameOf(window));
  FakeWindow* w = Find(window);
  if (!w || !w->alive) return false;
  w->hooks.insert(w->hooks.begin(), sink);
  return true;
}

void FakeWindowSystem::DetachHook(port::Window window, host::WindowHookSink* sink) {
  Record("DetachHook " + NameOf(window));
  if (FakeWindow* w = Find(window)) w->hooks.erase(std::remove(w->hooks.begin(), w->hooks.end(), sink), w->hooks.end());
}

void AddSimHostWindows(FakeWindowSystem& windows, const SimHost& host) {
  struct Placement {
    const char* name;
    const char* parent;
    host::WindowRect rect;
  };
  // The command window sits under the drawing area, the dock holding the host
  // holding the command line.
  const Placement placements[] = {
      {"frame", nullptr, {0, 0, 1024, 768}},
      {"mdiclient", "frame", {0, 60, 1024, 640}},
      {"cmddock", "frame", {0, 640, 1024, 740}},
      {"cmdhost", "cmddock", {0, 644, 1024, 740}},
      {"cmdline", "cmdhost", {4, 648, 1020, 736}},
  };
  for (const Placement& s : placements) {
    port::Window w = host.WindowNamed(s.name);
    if (!w) continue;
    windows.AddWindow(w, s.name, s.parent ? host.WindowNamed(s.parent) : nullptr, s.rect,
                      host::kWsVisible | host::kWsChild);
  }
}

}  // namespace tavlet::sim
