#include "settings/settings_table.h"

#include <array>
#include <cstring>

#include "text/codepage.h"

namespace tavlet {
namespace {

constexpr std::array kAll = {
    keys::On, keys::LoadOnCommand, keys::ShowTips, keys::TipWidth, keys::TipDelay,
    keys::TipRemain, keys::ShowFullPathInTips, keys::ShowDwgPropsInTips,
    keys::ShowFullPathInRefs, keys::ShowFullPathInSheetSets, keys::SortBy, keys::SortWorksets,
    keys::NumSheetSets, keys::ZoomExtentsOnSave, keys::SwitchOnBusy, keys::HideOnSingle,
    keys::LockSize, keys::TabMode, keys::Floating, keys::DockSide, keys::Size,
    keys::WidthOnCmdWnd, keys::MRUCount, keys::MinSize, keys::HasScrollBar,
    keys::OpenSheetSetInSSM, keys::SsSearchPath, keys::LastWorkset, keys::SaveCommand,
    keys::DisableNewMenu, keys::AvoidSaveasInLisp, keys::LabelFont, keys::TabFont,
    keys::FloatPosition, keys::UpdateEndpoint,
    keys::Background, keys::TitleBack, keys::TitleText, keys::ReadOnly, keys::Modified,
    keys::AutoUpdatePreviews, keys::ShowDwgName, keys::DwgNameAbove, keys::ScrollOverflow,
    keys::ScrollBarSize,
    keys::BlackBack::Brightness, keys::BlackBack::Contrast, keys::BlackBack::Gamma,
    keys::BlackBack::Sharpness,
    keys::WhiteBack::Brightness, keys::WhiteBack::Contrast, keys::WhiteBack::Gamma,
    keys::WhiteBack::Sharpness,
    keys::WorksetsPath, keys::RecentWorkset, keys::LastTab,
};

}  // namespace

std::uint32_t FixedDisplayDefaults::SysColor(int index) {
  switch (index) {
    case 5: return 0x00FFFFFF;   // COLOR_WINDOW
    case 8: return 0x00000000;   // COLOR_WINDOWTEXT
    case 15: return 0x00D8E9EC;  // COLOR_BTNFACE, the classic scheme of the host's era
    case 16: return 0x0099A8AC;  // COLOR_BTNSHADOW
    case 18: return 0x00000000;  // COLOR_BTNTEXT
    default: return 0x00808080;
  }
}

LogFontA FixedDisplayDefaults::DefaultGuiFont() {
  // What GetStockObject(17) gives on a code-page 936 system.
  LogFontA font;
  font.lfHeight = -12;
  font.lfWeight = 400;
  font.lfCharSet = 134;  // GB2312_CHARSET
  const char face[] = "宋体";
  std::memcpy(font.lfFaceName, face, sizeof face);
  return font;
}

std::span<const SettingKey> AllSettings() { return kAll; }

const SettingKey* FindSetting(std::string_view section, std::string_view key) {
  for (const SettingKey& setting : kAll)
    if (text::Mbsicmp(setting.section, section) == 0 && text::Mbsicmp(setting.key, key) == 0)
      return &setting;
  return nullptr;
}

int ReadInt(const SettingsStore& store, const SettingKey& setting) {
  return ReadInt(store, setting, setting.intDefault);
}

int ReadInt(const SettingsStore& store, const SettingKey& setting, int def) {
  return store.GetInt(setting.section, setting.key, def);
}

bool ReadBool(const SettingsStore& store, const SettingKey& setting) {
  return ReadInt(store, setting) != 0;
}

double ReadDouble(const SettingsStore& store, const SettingKey& setting) {
  return store.GetDouble(setting.section, setting.key, setting.realDefault);
}

std::string ReadString(const SettingsStore& store, const SettingKey& setting) {
  return store.GetString(setting.section, setting.key, setting.textDefault);
}

std::uint32_t ReadColor(const SettingsStore& store, const SettingKey& setting,
                        DisplayDefaults& display) {
  // The system colour is asked for at each read, so that an unset colour follows
  // the user's scheme.
  const std::uint32_t def = setting.source == DefaultSource::SystemColor
                                ? display.SysColor(setting.intDefault)
                                : static_cast<std::uint32_t>(setting.intDefault);
  return static_cast<std::uint32_t>(
      store.GetInt(setting.section, setting.key, static_cast<int>(def)));
}

LogFontA ReadFont(const SettingsStore& store, const SettingKey& setting,
                  DisplayDefaults& display) {
  LogFontA font;
  if (!store.RestoreFont(setting.section, setting.key, font)) font = display.DefaultGuiFont();
  return font;
}

bool WriteInt(const SettingsStore& store, const SettingKey& setting, int value) {
  return store.SetInt(setting.section, setting.key, value);
}

bool WriteBool(const SettingsStore& store, const SettingKey& setting, bool value) {
  return store.SetInt(setting.section, setting.key, value ? 1 : 0);
}

bool WriteDouble(const SettingsStore& store, const SettingKey& setting, double value) {
  return store.SetDouble(setting.section, setting.key, value);
}

bool WriteString(const SettingsStore& store, const SettingKey& setting, std::string_view value) {
  return store.SetString(setting.section, setting.key, value);
}

bool WriteFont(const SettingsStore& store, const SettingKey& setting, const LogFontA& font) {
  return store.SaveFont(setting.section, setting.key, font);
}

void LoadPreviewStripSettings(const SettingsStore& store, DisplayDefaults& display,
                              BarSettings& s) {
  s.AutoUpdatePreviews = ReadInt(store, keys::AutoUpdatePreviews);
  s.ShowDwgName = ReadInt(store, keys::ShowDwgName);
  s.DwgNameAbove = ReadInt(store, keys::DwgNameAbove);
  s.ScrollOverflow = ReadInt(store, keys::ScrollOverflow);
  s.ScrollBarSize = ReadInt(store, keys::ScrollBarSize);
  s.ReadOnly = ReadColor(store, keys::ReadOnly, display);
  s.Modified = ReadColor(store, keys::Modified, display);
  s.Background = ReadColor(store, keys::Background, display);
  s.TitleBack = ReadColor(store, keys::TitleBack, display);
  s.TitleText = ReadColor(store, keys::TitleText, display);
}

void LoadBarSettings(const SettingsStore& store, DisplayDefaults& display,
                     WorksetsPathSource& worksets, BarSettings& s) {
  s.ShowTips = ReadInt(store, keys::ShowTips);
  s.TipWidth = ReadInt(store, keys::TipWidth);
  s.TipDelay = ReadInt(store, keys::TipDelay);
  s.TipRemain = ReadInt(store, keys::TipRemain);
  s.LoadOnCommand = ReadInt(store, keys::LoadOnCommand);
  s.MinSize = ReadInt(store, keys::MinSize);
  s.MRUCount = ReadInt(store, keys::MRUCount);
  s.Size = ReadInt(store, keys::Size);
  s.WidthOnCmdWnd = ReadInt(store, keys::WidthOnCmdWnd, display.CommandWindowWidth() / 2);
  s.ShowFullPathInRefs = ReadInt(store, keys::ShowFullPathInRefs);
  s.ShowFullPathInSheetSets = ReadInt(store, keys::ShowFullPathInSheetSets);
  s.SortBy = ReadInt(store, keys::SortBy);
  s.ZoomExtentsOnSave = ReadInt(store, keys::ZoomExtentsOnSave);
  s.SwitchOnBusy = ReadInt(store, keys::SwitchOnBusy);
  s.HideOnSingle = ReadInt(store, keys::HideOnSingle);
  s.LockSize = ReadInt(store, keys::LockSize);
  s.DockSide = ReadInt(store, keys::DockSide);
  s.Floating = ReadInt(store, keys::Floating);
  s.OpenSheetSetInSSM = ReadInt(store, keys::OpenSheetSetInSSM);
  s.HasScrollBar = ReadInt(store, keys::HasScrollBar);
  s.ShowDwgPropsInTips = ReadInt(store, keys::ShowDwgPropsInTips);
  s.ShowFullPathInTips = ReadInt(store, keys::ShowFullPathInTips);
  s.SortWorksets = ReadInt(store, keys::SortWorksets);
  s.NumSheetSets = ReadInt(store, keys::NumSheetSets);
  s.WorksetsPath = ReadString(store, keys::WorksetsPath);
  if (s.WorksetsPath.empty()) {
    // Decided once per user: from now on the stored path wins, whatever appears later.
    s.WorksetsPath = worksets.ComputeWorksetsPath();
    WriteString(store, keys::WorksetsPath, s.WorksetsPath);
  }
}

void LoadWindowSettings(const SettingsStore& store, DisplayDefaults& display, BarSettings& s) {
  s.LabelFont = ReadFont(store, keys::LabelFont, display);
  s.TabFont = ReadFont(store, keys::TabFont, display);
  s.TabMode = ReadInt(store, keys::TabMode);
}

BarSettings LoadSettings(const SettingsStore& store, DisplayDefaults& display,
                         WorksetsPathSource& worksets) {
  BarSettings settings;
  LoadPreviewStripSettings(store, display, settings);
  LoadBarSettings(store, display, worksets, settings);
  LoadWindowSettings(store, display, settings);
  return settings;
}

void SaveSettings(const SettingsStore& store, const BarSettings& s) {
  // Failures are ignored: a setting that can't be written keeps its old value.
  WriteInt(store, keys::ShowTips, s.ShowTips);
  WriteInt(store, keys::TipWidth, s.TipWidth);
  WriteInt(store, keys::TipDelay, s.TipDelay);
  WriteInt(store, keys::TipRemain, s.TipRemain);
  WriteInt(store, keys::LoadOnCommand, s.LoadOnCommand);
  WriteInt(store, keys::Floating, s.Floating);
  WriteInt(store, keys::HideOnSingle, s.HideOnSingle);
  WriteInt(store, keys::SwitchOnBusy, s.SwitchOnBusy);
  WriteInt(store, keys::ZoomExtentsOnSave, s.ZoomExtentsOnSave);
  WriteInt(store, keys::ShowFullPathInTips, s.ShowFullPathInTips);
  WriteInt(store, keys::ShowDwgPropsInTips, s.ShowDwgPropsInTips);
  WriteInt(store, keys::ShowFullPathInRefs, s.ShowFullPathInRefs);
  WriteInt(store, keys::ShowFullPathInSheetSets, s.ShowFullPathInSheetSets);
  WriteInt(store, keys::SortWorksets, s.SortWorksets);
  WriteInt(store, keys::NumSheetSets, s.NumSheetSets);
  WriteInt(store, keys::SortBy, s.SortBy);
  WriteInt(store, keys::Background, static_cast<int>(s.Background));
  WriteInt(store, keys::TitleBack, static_cast<int>(s.TitleBack));
  WriteInt(store, keys::TitleText, static_cast<int>(s.TitleText));
  WriteInt(store, keys::ReadOnly, static_cast<int>(s.ReadOnly));
  WriteInt(store, keys::Modified, static_cast<int>(s.Modified));
  WriteInt(store, keys::AutoUpdatePreviews, s.AutoUpdatePreviews);
  WriteInt(store, keys::ScrollBarSize, s.ScrollBarSize);
  WriteInt(store, keys::ScrollOverflow, s.ScrollOverflow);
  WriteInt(store, keys::ShowDwgName, s.ShowDwgName);
  WriteInt(store, keys::DwgNameAbove, s.DwgNameAbove);
  WriteInt(store, keys::TabMode, s.TabMode);
  WriteInt(store, keys::DockSide, s.DockSide);
  WriteInt(store, keys::Floating, s.Floating);
  // LockSize is not written: a change lasts for the session only.
}

}  // namespace tavlet
