#include "ui/resizable_dialog.h"

namespace tavlet::ui {

SettingsStore ResizableDialogState::Settings(RegistryBackend& backend) const {
  return SettingsStore(backend, settingsRoot + "\\" + settingsSection);
}

void ResizableDialogState::SetMinimumDialogUnits(const DialogUnits& units, long width, long height) {
  minWidth = static_cast<std::uint32_t>(units.ToPixelsX(width));
  minHeight = static_cast<std::uint32_t>(units.ToPixelsY(height));
}

bool ResizableDialogState::RestorePlacement(RegistryBackend& backend, WindowPort& window) const {
  return Stores() && Settings(backend).RestoreWindowPlacement("", placementName, window);
}

bool ResizableDialogState::SavePlacement(RegistryBackend& backend, WindowPort& window) const {
  return Stores() && Settings(backend).SaveWindowPlacement("", placementName, window);
}

int ResizableDialogState::GetInt(RegistryBackend& backend, std::string_view name, int def) const {
  return Stores() ? Settings(backend).GetInt("", name, def) : def;
}

std::string ResizableDialogState::GetString(RegistryBackend& backend, std::string_view name,
                                            std::string_view def) const {
  return Stores() ? Settings(backend).GetString("", name, def) : std::string(def);
}

double ResizableDialogState::GetDouble(RegistryBackend& backend, std::string_view name, double def) const {
  return Stores() ? Settings(backend).GetDouble("", name, def) : def;
}

bool ResizableDialogState::SetInt(RegistryBackend& backend, std::string_view name, int value) const {
  return Stores() && Settings(backend).SetInt("", name, value);
}

bool ResizableDialogState::SetString(RegistryBackend& backend, std::string_view name, std::string_view value) const {
  return Stores() && Settings(backend).SetString("", name, value);
}

bool ResizableDialogState::SetDouble(RegistryBackend& backend, std::string_view name, double value) const {
  return Stores() && Settings(backend).SetDouble("", name, value);
}

}  // namespace tavlet::ui
