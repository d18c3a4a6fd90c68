// Settings of the additions beyond the bar's original set. Every one defaults to
// off, so that with none of them stored the bar behaves and writes exactly as
// before; they live in a section of their own.
#pragma once

#include <string_view>

#include "settings/settings_table.h"

namespace tavlet {

namespace sections {
inline constexpr std::string_view Extras = "Extras";
}  // namespace sections

namespace keys {
// Read the host's recent sheet sets by the profile file's own encoding.
inline constexpr SettingKey SheetSetListByEncoding{"Extras", "SheetSetListByEncoding", SettingType::Bool,
                                                   DefaultSource::Fixed, 0};
// "close all but this one", "copy full path" and "show in folder" on a drawing's menu.
inline constexpr SettingKey ExtraDrawingCommands{"Extras", "ExtraDrawingCommands", SettingType::Bool,
                                                 DefaultSource::Fixed, 0};
// 0: nothing recorded; 1: the open drawings are kept for TLRESTORE; 2: and the
// restore is offered when the module starts.
inline constexpr SettingKey SessionRestore{"Extras", "SessionRestore", SettingType::Int, DefaultSource::Fixed, 0};
// The last thumbnail of each drawing kept across sessions.
inline constexpr SettingKey KeepThumbnails{"Extras", "KeepThumbnails", SettingType::Bool, DefaultSource::Fixed, 0};
// Ctrl+Tab in the host's frame opens the switcher, as TLSWITCH does.
inline constexpr SettingKey CtrlTabSwitcher{"Extras", "CtrlTabSwitcher", SettingType::Bool, DefaultSource::Fixed, 0};
}  // namespace keys

// An addition's setting. Reading through the store opens the section by creating
// it; with nothing stored the section is left unmade, so that a user who never
// turned an addition on finds no trace of them.
inline int ReadExtra(const SettingsStore& store, const SettingKey& setting) {
  if (!store.Backend().KeyExists(store.KeyPath(setting.section))) return setting.intDefault;
  return ReadInt(store, setting);
}

}  // namespace tavlet
