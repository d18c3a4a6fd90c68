// A whole module on the simulated host: in-memory files and registry, the fake
// window system with the host's windows, and the module loaded and unloaded
// through its C entry, as the host's binding would. For tests and the demo.
//
// Example:
//   ModuleHarness h;
//   h.AddDrawing("C:\\dwg\\a.dwg");
//   h.host.OpenDrawing("C:\\dwg\\a.dwg");
//   h.Load();                 // TavletEntry(1, ...)
//   h.host.RunCommand("LINE");
//   h.Bar()->Strip().Entries()  ...
#pragma once

#include <string>

#include "host/module.h"
#include "settings/memory_registry.h"
#include "sim/fake_window_system.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

class ModuleHarness {
 public:
  ModuleHarness();
  ~ModuleHarness();  // unloads a module still running
  ModuleHarness(const ModuleHarness&) = delete;
  ModuleHarness& operator=(const ModuleHarness&) = delete;

  // A drawing file the host can open.
  void AddDrawing(const std::string& path, bool readOnly = false);
  port::Document OpenDrawing(const std::string& path);
  // Makes a host window missing before the load; call before Load.
  void SetWindowMissing(const std::string& which);
  void SetSetting(const SettingKey& key, int value);

  long Load();
  long Unload();
  host::TavletModule* Module() const { return host::CurrentModule(); }
  bar::BarModel* Bar() const { return Module() ? Module()->Bar() : nullptr; }

  static void* const kPkt;

  MemoryFileSystem files;
  SimHost host{files};
  FakeWindowSystem windows;
  MemoryRegistry registry;
  FixedDisplayDefaults display;
  SettingsStore store{registry, DefaultSettingsRoot()};
  host::ModuleServices services;

 private:
  bool windowsAdded_ = false;
};

}  // namespace tavlet::sim
