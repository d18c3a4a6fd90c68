// The preferences dialog without its windows: the pages' controls, each bound
// to the bar's setting it shows, the rules that enable and disable them, the
// typed numbers' data exchange, and each page's OK, which writes the bar's
// fields and raises the change flags that ApplyPreferences then acts on. A
// third page shows the additions' settings, which ApplyPreferences saves itself.
//
//   PreferencesDialog dialog(bar.Settings(), lastTab, display);
//   dialog.Click(pref::kTabs);            // the window forwards each click
//   dialog.Type(pref::kTipWidth, "250");  // and each edit's text
//   if (dialog.Ok(target).ok) ApplyPreferences(dialog, target, store);
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "settings/settings_table.h"

namespace tavlet::ui {

inline constexpr int kGeneralPageId = 505;
inline constexpr int kDisplayPageId = 506;
inline constexpr char kGeneralPageTitle[] = "常规";
inline constexpr char kDisplayPageTitle[] = "显示方式";
inline constexpr int kExtrasPageId = 507;
inline constexpr char kExtrasPageTitle[] = "扩展功能";

// The control ids of both pages.
namespace pref {
// General page (505).
inline constexpr int kLoadOnCommand = 2054;
inline constexpr int kSwitchOnBusy = 2089;
inline constexpr int kZoomExtentsOnSave = 2011;
inline constexpr int kShowFullPathInRefs = 2032;
inline constexpr int kSortGroup = 2026;
inline constexpr int kSortNone = 3000;
inline constexpr int kSortByName = 3002;
inline constexpr int kSortByPath = 3001;
inline constexpr int kTipsGroup = 2017;
inline constexpr int kShowTips = 2029;
inline constexpr int kShowFullPathInTips = 2033;
inline constexpr int kShowDwgPropsInTips = 2030;
inline constexpr int kTipWidthLabel = 2018;
inline constexpr int kTipWidth = 2019;
inline constexpr int kTipDelayLabel = 2022;
inline constexpr int kTipDelay = 2023;
inline constexpr int kTipRemainLabel = 2020;
inline constexpr int kTipRemain = 2021;
inline constexpr int kWorksetsGroup = 2015;
inline constexpr int kSortWorksets = 2025;
inline constexpr int kSheetSetsGroup = 2035;
inline constexpr int kNumSheetSetsLabel = 2049;
inline constexpr int kNumSheetSets = 2050;
inline constexpr int kShowFullPathInSheetSets = 2031;
// Display page (506).
inline constexpr int kHideOnSingle = 2058;
inline constexpr int kLockSize = 2053;
inline constexpr int kModeGroup = 2051;
inline constexpr int kPreviews = 3003;
inline constexpr int kTabs = 3004;
inline constexpr int kShowDwgName = 2034;
inline constexpr int kDwgNameAbove = 2064;
inline constexpr int kAutoUpdatePreviews = 2088;
inline constexpr int kScrollOverflow = 2040;
inline constexpr int kScrollBarSizeLabel = 2038;
inline constexpr int kScrollBarSize = 2039;
inline constexpr int kPlacementGroup = 2073;
inline constexpr int kFloating = 3005;
inline constexpr int kDocked = 3006;
inline constexpr int kDockLeft = 3007;
inline constexpr int kDockRight = 3008;
inline constexpr int kDockTop = 3009;
inline constexpr int kDockBottom = 3010;
inline constexpr int kDockCommandLeft = 3011;
inline constexpr int kDockCommandRight = 3012;
inline constexpr int kColorsGroup = 2076;
inline constexpr int kBackground = 2086;
inline constexpr int kBackgroundLabel = 2085;
inline constexpr int kTitleBack = 2080;
inline constexpr int kTitleBackLabel = 2079;
inline constexpr int kTitleText = 2078;
inline constexpr int kTitleTextLabel = 2077;
inline constexpr int kReadOnly = 2082;
inline constexpr int kReadOnlyLabel = 2081;
inline constexpr int kModified = 2084;
inline constexpr int kModifiedLabel = 2083;
inline constexpr int kResetColors = 2037;
inline constexpr int kFontGroup = 2061;
inline constexpr int kChooseFont = 2060;
inline constexpr int kFontLabel = 2059;
// Extras page (507).
inline constexpr int kExtraDrawingCommands = 4001;
inline constexpr int kCtrlTabSwitcher = 4002;
inline constexpr int kKeepThumbnails = 4003;
inline constexpr int kSheetSetListByEncoding = 4004;
inline constexpr int kSessionGroup = 4005;
inline constexpr int kSessionOff = 4006;
inline constexpr int kSessionRecord = 4007;
inline constexpr int kSessionOffer = 4008;
}  // namespace pref

enum class ControlKind { Check, Radio, Edit, Label, Group, ColorButton, Button };

struct PreferenceControl {
  int id;
  ControlKind kind;
  std::string_view text;  // code page 936; empty for an edit
};

// The pages in the order the dialog shows them.
inline constexpr int kPageIds[] = {kGeneralPageId, kDisplayPageId, kExtrasPageId};

// The controls of page 505, 506 or 507, in the order the pages list them.
std::span<const PreferenceControl> PageControls(int page);
// 505, 506 or 507; 0 for an id on no page.
int PageOf(int id);

// The additions' settings (section "Extras"), as stored: a value outside the
// page's choices is kept as it is until the user changes that control.
struct ExtraSettings {
  int extraDrawingCommands = 0;
  int ctrlTabSwitcher = 0;
  int keepThumbnails = 0;
  int sheetSetListByEncoding = 0;
  int sessionRestore = 0;  // 0 off, 1 recorded, 2 recorded and offered at start-up
  friend bool operator==(const ExtraSettings&, const ExtraSettings&) = default;
};

// The ten flags the pages' OK raises; ApplyPreferences reads them.
struct PreferenceFlags {
  bool previewsChanged = false;
  bool hideOnSingleChanged = false;
  bool tabModeChanged = false;
  bool floatingChanged = false;
  bool dockSideChanged = false;
  bool colorsChanged = false;
  bool tipsChanged = false;
  bool tabFontChanged = false;
  bool labelFontChanged = false;
  bool sortChanged = false;
  friend bool operator==(const PreferenceFlags&, const PreferenceFlags&) = default;
};

// What the pages' OK needs of the bar beyond its fields.
class PreferencePagesTarget {
 public:
  virtual ~PreferencePagesTarget() = default;
  virtual BarSettings& Settings() = 0;
  // SortBy goes to the lists' copy too.
  virtual void SetSortBy(int sortBy) = 0;
  virtual void SetAutoUpdatePreviews(int on) = 0;
  // The module's registration again, with load control 4 or 2.
  virtual void RegisterLoadControl(long loadCtrl) = 0;
  // The strip's scroll position and scroll size back to 0.
  virtual void ResetStripScroll() = 0;
};

// The data exchange's verdict on a typed number.
struct NumberExchange {
  bool ok = false;
  int value = 0;
};
// A typed integer as the dialogs' data exchange reads it: blanks around an
// optional sign and digits; anything else (an empty text too) is refused. A
// number past 32 bits saturates at the nearest 32-bit limit.
NumberExchange ExchangeInt(std::string_view text);
// The box a refused number brings up; the page stays open on the edit.
inline constexpr char kEnterIntegerText[] = "请输入一个整数。";

// "%s, %i pt." of the face name and the point size at `logPixelsY`.
std::string FontLabelText(const LogFontA& font, int logPixelsY);

// The five colours' reset values; the system colours come from `display`.
struct PreviewColors {
  std::uint32_t background = 0, titleBack = 0, titleText = 0, readOnly = 0, modified = 0;
};
PreviewColors DefaultPreviewColors(DisplayDefaults& display);

struct PreferencesOkResult {
  bool ok = true;
  int page = 0;     // the page holding the refused edit
  int control = 0;  // the refused edit
};

class PreferencesDialog {
 public:
  // The pages opened over copies of the bar's fields; `lastTab` is the page to show.
  PreferencesDialog(const BarSettings& bar, int lastTab, DisplayDefaults& display, int logPixelsY = 96);

  // ---- control state, as the windows show it ----
  bool Checked(int id) const;
  bool Enabled(int id) const;
  // An edit's or a label's text.
  std::string Text(int id) const;
  std::uint32_t Color(int id) const;

  // ---- what the user does ----
  // A check box toggles, a radio is chosen in its group; then the rules that
  // hang on that control run. The reset button puts back the default colours.
  void Click(int id);
  // An edit's new text; a disabled edit takes none.
  void Type(int id, std::string text);
  // The colour chooser's answer for a colour button.
  void SetColor(int id, std::uint32_t color);
  // The font the chooser starts on: tabFont while the tabs radio is chosen,
  // labelFont otherwise; the chooser's OK hands the chosen font to TakeChosenFont.
  bool FontButtonEditsTabFont() const { return !Checked(pref::kPreviews); }
  const LogFontA& FontForChooser() const { return FontButtonEditsTabFont() ? tabFont : labelFont; }
  void TakeChosenFont(const LogFontA& chosen);

  // ---- the extras page ----
  // The stored values, shown on the page; they start at their defaults.
  void ShowExtras(const ExtraSettings& stored);
  const ExtraSettings& StoredExtras() const { return storedExtras_; }
  // What the page says now: a control left as it showed keeps the stored value.
  ExtraSettings ChosenExtras() const;

  // ---- closing ----
  // Data exchange of both pages; on success each page's OK writes the bar's
  // fields through `target` and raises its flags. On a refused number nothing
  // is written and the result names the page and the edit.
  PreferencesOkResult Ok(PreferencePagesTarget& target);

  int currentTab = 0;
  PreferenceFlags flags;
  LogFontA labelFont;
  LogFontA tabFont;

 private:
  struct State {
    bool checked = false;
    bool enabled = true;
    std::string text;
    std::uint32_t color = 0;
  };
  State& At(int id);
  const State* Find(int id) const;
  void Enable(std::initializer_list<int> ids, bool on);
  void Choose(int id);
  void TipsRule();
  void DockingRule();
  void PreviewRule();
  void ScrollRule();
  void ShowFontLabel();
  int ChosenSortBy() const;
  int ChosenDockSide() const;
  void GeneralOk(const std::map<int, int>& numbers, PreferencePagesTarget& target);
  void DisplayOk(const std::map<int, int>& numbers, PreferencePagesTarget& target);

  std::map<int, State> controls_;
  ExtraSettings storedExtras_;
  DisplayDefaults& display_;
  int logPixelsY_;
};

}  // namespace tavlet::ui
