#include "sim/module_harness.h"

namespace tavlet::sim {

namespace {
char pktTag;
}

void* const ModuleHarness::kPkt = &pktTag;

ModuleHarness::ModuleHarness() {
  services.windows = &windows;
  services.registry = &registry;
  services.files = &files;
  services.display = &display;
  services.modulePath = "C:\\Program Files\\Morvane\\Tavlet.arx";
}

ModuleHarness::~ModuleHarness() {
  if (Module()) Unload();
}

void ModuleHarness::AddDrawing(const std::string& path, bool readOnly) {
  files.AddFile(path, "AC1018" + std::string(64, '\0'), readOnly);
}

port::Document ModuleHarness::OpenDrawing(const std::string& path) {
  AddDrawing(path);
  return host.OpenDrawing(path);
}

void ModuleHarness::SetWindowMissing(const std::string& which) { host.SetWindowMissing(which, true); }

void ModuleHarness::SetSetting(const SettingKey& key, int value) { WriteInt(store, key, value); }

long ModuleHarness::Load() {
  if (!windowsAdded_) AddSimHostWindows(windows, host);
  windowsAdded_ = true;
  host::SetModuleServices(services);
  return TavletEntry(host::kInitAppMsg, kPkt, &host);
}

long ModuleHarness::Unload() { return TavletEntry(host::kUnloadAppMsg, nullptr, &host); }

}  // namespace tavlet::sim
