// What a resizable dialog keeps apart from its window: the minimum size, the
// tooltip width, and where its settings live ("settingsRoot\settingsSection",
// below HKEY_CURRENT_USER). The Win32 dialog holds one and forwards WM_SIZING,
// WM_INITDIALOG and WM_DESTROY here; tests drive it with a recording window.
//
//   ResizableDialogState state;
//   state.settingsRoot = DefaultSettingsRoot();
//   state.settingsSection = "SheetSetDialog";
//   state.RestorePlacement(registry, window);   // in OnInitDialog
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "settings/settings_store.h"
#include "ui/dialog_geometry.h"

namespace tavlet::ui {

struct ResizableDialogState {
  std::uint32_t minWidth = 0;  // pixels; 0 until the dialog sets them
  std::uint32_t minHeight = 0;
  int maxTipWidth = 300;
  std::string settingsRoot;  // empty: the dialog stores nothing
  std::string settingsSection;
  std::string placementName;  // the key's default (unnamed) value, as the program's dialogs keep it

  bool Stores() const { return !settingsRoot.empty(); }
  // The store over "settingsRoot\settingsSection"; reads and writes go to its
  // section "" (the key itself).
  SettingsStore Settings(RegistryBackend& backend) const;

  // WM_SIZING.
  bool OnSizing(unsigned edge, Rect& rect) const { return ApplyMinimumSize(edge, rect, minWidth, minHeight); }
  // The minimum in dialog units, as the dialogs give it.
  void SetMinimumDialogUnits(const DialogUnits& units, long width, long height);

  // OnInitDialog and OnDestroy: nothing when the dialog stores nothing.
  bool RestorePlacement(RegistryBackend& backend, WindowPort& window) const;
  bool SavePlacement(RegistryBackend& backend, WindowPort& window) const;

  // The typed values under the dialog's path; the default (or nothing) when it
  // stores nothing.
  int GetInt(RegistryBackend& backend, std::string_view name, int def) const;
  std::string GetString(RegistryBackend& backend, std::string_view name, std::string_view def) const;
  double GetDouble(RegistryBackend& backend, std::string_view name, double def) const;
  bool SetInt(RegistryBackend& backend, std::string_view name, int value) const;
  bool SetString(RegistryBackend& backend, std::string_view name, std::string_view value) const;
  bool SetDouble(RegistryBackend& backend, std::string_view name, double value) const;
};

// MoveChild's rectangle: shrunk by `inset` on every side.
inline Rect ChildRect(long left, long top, long right, long bottom, long inset) {
  return Deflate({left, top, right, bottom}, inset);
}

}  // namespace tavlet::ui
