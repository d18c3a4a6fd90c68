// Every persistent setting of the bar, with its section, key, type and default, once,
// as data; and the load and save of the bar's settings in their fixed orders.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "settings/settings_store.h"

namespace tavlet {

enum class SettingType { Bool, Int, Color, String, Real, Font, Placement };

enum class DefaultSource {
  Fixed,          // the record's own value
  SystemColor,    // GetSysColor(intDefault) at the moment of reading
  StockGuiFont,   // the bytes of GetStockObject(17)
  HalfCommandWindow,  // half the width of the host's command window
  None,           // never read back, or the caller supplies it
};

struct SettingKey {
  std::string_view section;
  std::string_view key;
  SettingType type;
  DefaultSource source = DefaultSource::Fixed;
  int intDefault = 0;  // integer, boolean, colour; the GetSysColor index for SystemColor
  double realDefault = 0;
  std::string_view textDefault{};
};

// What the defaults that follow the machine come from. The Win32 side asks the
// system; natively fixed values stand in (FixedDisplayDefaults).
class DisplayDefaults {
 public:
  virtual ~DisplayDefaults() = default;
  virtual std::uint32_t SysColor(int index) = 0;  // COLORREF 0x00BBGGRR
  virtual LogFontA DefaultGuiFont() = 0;          // GetStockObject(17)
  virtual int CommandWindowWidth() = 0;
};

class FixedDisplayDefaults : public DisplayDefaults {
 public:
  std::uint32_t SysColor(int index) override;
  LogFontA DefaultGuiFont() override;
  int CommandWindowWidth() override { return commandWindowWidth; }
  int commandWindowWidth = 800;
};

namespace sections {
inline constexpr std::string_view Root = "";
inline constexpr std::string_view Colors = "Colors";
inline constexpr std::string_view Previews = "Previews";
inline constexpr std::string_view BlackBack = "BlackBack";
inline constexpr std::string_view WhiteBack = "WhiteBack";
inline constexpr std::string_view Mru = "MRU";
inline constexpr std::string_view Worksets = "工作集";
inline constexpr std::string_view WorkSetDlg = "WorkSetDlg";
inline constexpr std::string_view PreferencesDlg = "PreferencesDlg";
inline constexpr std::string_view SelectWsFilesDlg = "SelectWsFilesDlg";
inline constexpr std::string_view ReferencesDialog = "ReferencesDialog";
inline constexpr std::string_view SheetSetDialog = "SheetSetDialog";
}  // namespace sections

namespace keys {
using enum SettingType;
using enum DefaultSource;
// Section "" (the root key).
inline constexpr SettingKey On{"", "On", Bool, Fixed, 1};
inline constexpr SettingKey LoadOnCommand{"", "LoadOnCommand", Bool, Fixed, 0};
inline constexpr SettingKey ShowTips{"", "ShowTips", Bool, Fixed, 1};
inline constexpr SettingKey TipWidth{"", "TipWidth", Int, Fixed, 300};
inline constexpr SettingKey TipDelay{"", "TipDelay", Int, Fixed, 3000};
inline constexpr SettingKey TipRemain{"", "TipRemain", Int, Fixed, 10000};
inline constexpr SettingKey ShowFullPathInTips{"", "ShowFullPathInTips", Bool, Fixed, 0};
inline constexpr SettingKey ShowDwgPropsInTips{"", "ShowDwgPropsInTips", Bool, Fixed, 0};
inline constexpr SettingKey ShowFullPathInRefs{"", "ShowFullPathInRefs", Bool, Fixed, 0};
inline constexpr SettingKey ShowFullPathInSheetSets{"", "ShowFullPathInSheetSets", Bool, Fixed, 0};
inline constexpr SettingKey SortBy{"", "SortBy", Int, Fixed, 0};
inline constexpr SettingKey SortWorksets{"", "SortWorksets", Bool, Fixed, 0};
inline constexpr SettingKey NumSheetSets{"", "NumSheetSets", Int, Fixed, 15};
inline constexpr SettingKey ZoomExtentsOnSave{"", "ZoomExtentsOnSave", Bool, Fixed, 1};
inline constexpr SettingKey SwitchOnBusy{"", "SwitchOnBusy", Bool, Fixed, 1};
inline constexpr SettingKey HideOnSingle{"", "HideOnSingle", Bool, Fixed, 0};
inline constexpr SettingKey LockSize{"", "LockSize", Bool, Fixed, 0};
inline constexpr SettingKey TabMode{"", "TabMode", Int, Fixed, 0};
inline constexpr SettingKey Floating{"", "Floating", Bool, Fixed, 0};
inline constexpr SettingKey DockSide{"", "DockSide", Int, Fixed, 59420};
inline constexpr SettingKey Size{"", "Size", Int, Fixed, 100};
inline constexpr SettingKey WidthOnCmdWnd{"", "WidthOnCmdWnd", Int, HalfCommandWindow};
inline constexpr SettingKey MRUCount{"", "MRUCount", Int, Fixed, 10};
inline constexpr SettingKey MinSize{"", "MinSize", Int, Fixed, 26};
inline constexpr SettingKey HasScrollBar{"", "HasScrollBar", Bool, Fixed, 0};
inline constexpr SettingKey OpenSheetSetInSSM{"", "OpenSheetSetInSSM", Bool, Fixed, 0};
inline constexpr SettingKey SsSearchPath{"", "SsSearchPath", String, None};
inline constexpr SettingKey LastWorkset{"", "LastWorkset", String, Fixed, 0, 0, ""};
inline constexpr SettingKey SaveCommand{"", "SaveCommand", String, Fixed, 0, 0, "_.QSAVE\n"};
inline constexpr SettingKey DisableNewMenu{"", "DisableNewMenu", Bool, Fixed, 0};
inline constexpr SettingKey AvoidSaveasInLisp{"", "AvoidSaveasInLisp", Bool, Fixed, 0};
inline constexpr SettingKey LabelFont{"", "LabelFont", Font, StockGuiFont};
inline constexpr SettingKey TabFont{"", "TabFont", Font, StockGuiFont};
// With no stored value the floating bar takes the frame's top left corner, 300 by 100.
inline constexpr SettingKey FloatPosition{"", "FloatPosition", Placement, None};
// The about box's check for a newer build: an http(s) address; none, no check.
inline constexpr SettingKey UpdateEndpoint{"", "UpdateEndpoint", String, Fixed, 0, 0, ""};

// Section "Colors".
inline constexpr SettingKey Background{"Colors", "Background", Color, SystemColor, 15};
inline constexpr SettingKey TitleBack{"Colors", "TitleBack", Color, SystemColor, 15};
inline constexpr SettingKey TitleText{"Colors", "TitleText", Color, SystemColor, 18};
inline constexpr SettingKey ReadOnly{"Colors", "ReadOnly", Color, Fixed, 172};
inline constexpr SettingKey Modified{"Colors", "Modified", Color, Fixed, 364328};

// Section "Previews".
inline constexpr SettingKey AutoUpdatePreviews{"Previews", "AutoUpdatePreviews", Bool, Fixed, 1};
inline constexpr SettingKey ShowDwgName{"Previews", "ShowDwgName", Bool, Fixed, 1};
inline constexpr SettingKey DwgNameAbove{"Previews", "DwgNameAbove", Bool, Fixed, 0};
inline constexpr SettingKey ScrollOverflow{"Previews", "ScrollOverflow", Bool, Fixed, 0};
inline constexpr SettingKey ScrollBarSize{"Previews", "ScrollBarSize", Int, Fixed, 12};

// Sections "BlackBack" and "WhiteBack": read at every capture, never written.
namespace BlackBack {
inline constexpr SettingKey Brightness{"BlackBack", "Brightness", Real, Fixed, 0, 0};
inline constexpr SettingKey Contrast{"BlackBack", "Contrast", Real, Fixed, 0, 0};
inline constexpr SettingKey Gamma{"BlackBack", "Gamma", Real, Fixed, 0, 2.5};
inline constexpr SettingKey Sharpness{"BlackBack", "Sharpness", Int, Fixed, 20};
}  // namespace BlackBack
namespace WhiteBack {
inline constexpr SettingKey Brightness{"WhiteBack", "Brightness", Real, Fixed, 0, 0};
inline constexpr SettingKey Contrast{"WhiteBack", "Contrast", Real, Fixed, 0, 0};
inline constexpr SettingKey Gamma{"WhiteBack", "Gamma", Real, Fixed, 0, 0};
inline constexpr SettingKey Sharpness{"WhiteBack", "Sharpness", Int, Fixed, 20};
}  // namespace WhiteBack

// Section "工作集": the worksets file's path, settled once (settings/data_folder.h).
inline constexpr SettingKey WorksetsPath{"工作集", "路径", String, Fixed, 0, 0, ""};
// Section "WorkSetDlg": the workset the manager showed last.
inline constexpr SettingKey RecentWorkset{"WorkSetDlg", "最近工作集", String, Fixed, 0, 0, ""};
// Section "PreferencesDlg": the page shown last.
inline constexpr SettingKey LastTab{"PreferencesDlg", "LastTab", Int, Fixed, 0};
}  // namespace keys

// The whole table, in the order above.
std::span<const SettingKey> AllSettings();
// Looks a setting up by section and key (ignoring case); null when unknown.
const SettingKey* FindSetting(std::string_view section, std::string_view key);

// Reads with the table's default. A HalfCommandWindow or None default needs the
// overload with an explicit default.
int ReadInt(const SettingsStore& store, const SettingKey& setting);
int ReadInt(const SettingsStore& store, const SettingKey& setting, int def);
bool ReadBool(const SettingsStore& store, const SettingKey& setting);
double ReadDouble(const SettingsStore& store, const SettingKey& setting);
std::string ReadString(const SettingsStore& store, const SettingKey& setting);
std::uint32_t ReadColor(const SettingsStore& store, const SettingKey& setting,
                        DisplayDefaults& display);
// The stored 60 bytes, else the stock GUI font's.
LogFontA ReadFont(const SettingsStore& store, const SettingKey& setting, DisplayDefaults& display);

bool WriteInt(const SettingsStore& store, const SettingKey& setting, int value);
bool WriteBool(const SettingsStore& store, const SettingKey& setting, bool value);
bool WriteDouble(const SettingsStore& store, const SettingKey& setting, double value);
bool WriteString(const SettingsStore& store, const SettingKey& setting, std::string_view value);
bool WriteFont(const SettingsStore& store, const SettingKey& setting, const LogFontA& font);

// The bar's copy of its settings, one member per setting, named as the key.
// Booleans are kept as int, as the registry holds them: 0 or 1, or whatever a
// hand-edit left there.
struct BarSettings {
  // Read by the preview strip (LoadPreviewStripSettings).
  int AutoUpdatePreviews = 1;
  int ShowDwgName = 1;
  int DwgNameAbove = 0;
  int ScrollOverflow = 0;
  int ScrollBarSize = 12;
  std::uint32_t ReadOnly = 172;
  std::uint32_t Modified = 364328;
  std::uint32_t Background = 0;
  std::uint32_t TitleBack = 0;
  std::uint32_t TitleText = 0;

  // Read by LoadSettings.
  int ShowTips = 1;
  int TipWidth = 300;
  int TipDelay = 3000;
  int TipRemain = 10000;
  int LoadOnCommand = 0;
  int MinSize = 26;
  int MRUCount = 10;
  int Size = 100;
  int WidthOnCmdWnd = 0;
  int ShowFullPathInRefs = 0;
  int ShowFullPathInSheetSets = 0;
  int SortBy = 0;
  int ZoomExtentsOnSave = 1;
  int SwitchOnBusy = 1;
  int HideOnSingle = 0;
  int LockSize = 0;
  int DockSide = 59420;
  int Floating = 0;
  int OpenSheetSetInSSM = 0;
  int HasScrollBar = 0;
  int ShowDwgPropsInTips = 0;
  int ShowFullPathInTips = 0;
  int SortWorksets = 0;
  int NumSheetSets = 15;
  std::string WorksetsPath;  // "路径" of "工作集"

  // Read when the bar's window is created (LoadWindowSettings).
  LogFontA LabelFont{};
  LogFontA TabFont{};
  int TabMode = 0;
};

// Computes the worksets path when the stored one is empty (settings/data_folder.h
// gives the real rule); LoadSettings writes the result back at once.
class WorksetsPathSource {
 public:
  virtual ~WorksetsPathSource() = default;
  virtual std::string ComputeWorksetsPath() = 0;
};

// The preview strip's reads, in its order.
void LoadPreviewStripSettings(const SettingsStore& store, DisplayDefaults& display,
                              BarSettings& settings);
// The bar constructor's reads, in their order, then the worksets path (computed
// and written when empty).
void LoadBarSettings(const SettingsStore& store, DisplayDefaults& display,
                     WorksetsPathSource& worksets, BarSettings& settings);
// LabelFont, TabFont, then TabMode.
void LoadWindowSettings(const SettingsStore& store, DisplayDefaults& display,
                        BarSettings& settings);
// All three, in the order the bar runs them.
BarSettings LoadSettings(const SettingsStore& store, DisplayDefaults& display,
                         WorksetsPathSource& worksets);
// Preferences OK: the fixed order, Floating twice, LockSize never.
void SaveSettings(const SettingsStore& store, const BarSettings& settings);

}  // namespace tavlet
