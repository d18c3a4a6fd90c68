#include "ui/preferences_dialog.h"

#include <array>
#include <climits>
#include <cstdio>
#include <cstring>
#include <utility>

#include "bar/bar_model.h"

namespace tavlet::ui {
namespace {

using enum ControlKind;

constexpr std::array kGeneral = {
    PreferenceControl{pref::kLoadOnCommand, Check, "通过命令加载 (而不是在启动时自动加载)"},
    PreferenceControl{pref::kSwitchOnBusy, Check, "当命令激活时允许切换"},
    PreferenceControl{pref::kZoomExtentsOnSave, Check, "使用 Tavlet 保存命令时缩放到范围"},
    PreferenceControl{pref::kShowFullPathInRefs, Check, "在菜单中显示参照的全路径"},
    PreferenceControl{pref::kSortGroup, Group, "排序"},
    PreferenceControl{pref::kSortNone, Radio, "不进行排序"},
    PreferenceControl{pref::kSortByName, Radio, "按文件名排序"},
    PreferenceControl{pref::kSortByPath, Radio, "按文件路径排序"},
    PreferenceControl{pref::kTipsGroup, Group, "信息提示"},
    PreferenceControl{pref::kShowTips, Check, "显示提示"},
    PreferenceControl{pref::kShowFullPathInTips, Check, "显示文件全路径"},
    PreferenceControl{pref::kShowDwgPropsInTips, Check, "显示简要信息 (DWGPROPS)"},
    PreferenceControl{pref::kTipWidthLabel, Label, "最大宽度:"},
    PreferenceControl{pref::kTipWidth, Edit, ""},
    PreferenceControl{pref::kTipDelayLabel, Label, "显示延时:"},
    PreferenceControl{pref::kTipDelay, Edit, ""},
    PreferenceControl{pref::kTipRemainLabel, Label, "停留时间:"},
    PreferenceControl{pref::kTipRemain, Edit, ""},
    PreferenceControl{pref::kWorksetsGroup, Group, "工作集"},
    PreferenceControl{pref::kSortWorksets, Check, "菜单中按字母次序排序"},
    PreferenceControl{pref::kSheetSetsGroup, Group, "图纸集"},
    PreferenceControl{pref::kNumSheetSetsLabel, Label, "菜单中图纸集的最大显示数量:"},
    PreferenceControl{pref::kNumSheetSets, Edit, ""},
    PreferenceControl{pref::kShowFullPathInSheetSets, Check, "菜单中显示全路径"},
};

constexpr std::array kDisplay = {
    PreferenceControl{pref::kHideOnSingle, Check, "单一文件时隐藏"},
    PreferenceControl{pref::kLockSize, Check, "锁定尺寸 (不允许调整大小)"},
    PreferenceControl{pref::kModeGroup, Group, "选项卡或预览"},
    PreferenceControl{pref::kPreviews, Radio, "预览缩略图"},
    PreferenceControl{pref::kTabs, Radio, "文字选项卡"},
    PreferenceControl{pref::kShowDwgName, Check, "显示文件名"},
    PreferenceControl{pref::kDwgNameAbove, Check, "文件名置于预览之上"},
    PreferenceControl{pref::kAutoUpdatePreviews, Check, "自动刷新预览"},
    PreferenceControl{pref::kScrollOverflow, Check, "预览过多时，使用滚动条"},
    PreferenceControl{pref::kScrollBarSizeLabel, Label, "滚动条大小 (像素)"},
    PreferenceControl{pref::kScrollBarSize, Edit, ""},
    PreferenceControl{pref::kPlacementGroup, Group, "固定或浮动"},
    PreferenceControl{pref::kFloating, Radio, "浮动"},
    PreferenceControl{pref::kDocked, Radio, "固定"},
    PreferenceControl{pref::kDockLeft, Radio, "左侧"},
    PreferenceControl{pref::kDockRight, Radio, "右侧"},
    PreferenceControl{pref::kDockTop, Radio, "顶部"},
    PreferenceControl{pref::kDockBottom, Radio, "底部"},
    PreferenceControl{pref::kDockCommandLeft, Radio, "命令窗口左侧"},
    PreferenceControl{pref::kDockCommandRight, Radio, "命令窗口右侧"},
    PreferenceControl{pref::kColorsGroup, Group, "预览颜色"},
    PreferenceControl{pref::kBackground, ColorButton, ""},
    PreferenceControl{pref::kBackgroundLabel, Label, "背景"},
    PreferenceControl{pref::kTitleBack, ColorButton, ""},
    PreferenceControl{pref::kTitleBackLabel, Label, "标题背景"},
    PreferenceControl{pref::kTitleText, ColorButton, ""},
    PreferenceControl{pref::kTitleTextLabel, Label, "标题文字"},
    PreferenceControl{pref::kReadOnly, ColorButton, ""},
    PreferenceControl{pref::kReadOnlyLabel, Label, "只读指示"},
    PreferenceControl{pref::kModified, ColorButton, ""},
    PreferenceControl{pref::kModifiedLabel, Label, "修改指示"},
    PreferenceControl{pref::kResetColors, Button, "重置到默认"},
    PreferenceControl{pref::kFontGroup, Group, "字体"},
    PreferenceControl{pref::kChooseFont, Button, "选择"},
    PreferenceControl{pref::kFontLabel, Label, "字体类型"},
};

constexpr std::array kExtras = {
    PreferenceControl{pref::kExtraDrawingCommands, Check, "图纸菜单中的更多操作 (关闭其他图纸、复制完整路径、在文件夹中显示)"},
    PreferenceControl{pref::kCtrlTabSwitcher, Check, "Ctrl+Tab 切换图纸"},
    PreferenceControl{pref::kKeepThumbnails, Check, "保留缩略图 (重新打开时显示)"},
    PreferenceControl{pref::kSheetSetListByEncoding, Check, "按文件编码读取最近的图纸集 (UTF-8)"},
    PreferenceControl{pref::kSessionGroup, Group, "会话恢复"},
    PreferenceControl{pref::kSessionOff, Radio, "不记录会话"},
    PreferenceControl{pref::kSessionRecord, Radio, "记录打开的图纸 (TLRESTORE)"},
    PreferenceControl{pref::kSessionOffer, Radio, "记录, 并在启动时提示恢复"},
};

// Radio groups: a choice clears the others of its group.
constexpr std::array<std::initializer_list<int>, 5> kRadioGroups = {{
    {pref::kSortNone, pref::kSortByName, pref::kSortByPath},
    {pref::kPreviews, pref::kTabs},
    {pref::kFloating, pref::kDocked},
    {pref::kDockLeft, pref::kDockRight, pref::kDockTop, pref::kDockBottom, pref::kDockCommandLeft,
     pref::kDockCommandRight},
    {pref::kSessionOff, pref::kSessionRecord, pref::kSessionOffer},
}};

// Dock radios and their sides, in the order OK tests them.
constexpr std::array<std::pair<int, int>, 6> kDockRadios = {{
    {pref::kDockLeft, bar::kDockLeft},
    {pref::kDockRight, bar::kDockRight},
    {pref::kDockTop, bar::kDockTop},
    {pref::kDockBottom, bar::kDockBottom},
    {pref::kDockCommandLeft, bar::kDockCommandLeft},
    {pref::kDockCommandRight, bar::kDockCommandRight},
}};

// The controls that show one setting each, as the data exchange binds them;
// the numbers in the order the pages exchange them.
template <typename Field>
struct Binding {
  int id;
  Field BarSettings::*field;
};
constexpr Binding<int> kCheckBindings[] = {
    {pref::kLoadOnCommand, &BarSettings::LoadOnCommand},
    {pref::kSwitchOnBusy, &BarSettings::SwitchOnBusy},
    {pref::kZoomExtentsOnSave, &BarSettings::ZoomExtentsOnSave},
    {pref::kShowFullPathInRefs, &BarSettings::ShowFullPathInRefs},
    {pref::kShowTips, &BarSettings::ShowTips},
    {pref::kShowFullPathInTips, &BarSettings::ShowFullPathInTips},
    {pref::kShowDwgPropsInTips, &BarSettings::ShowDwgPropsInTips},
    {pref::kSortWorksets, &BarSettings::SortWorksets},
    {pref::kShowFullPathInSheetSets, &BarSettings::ShowFullPathInSheetSets},
    {pref::kHideOnSingle, &BarSettings::HideOnSingle},
    {pref::kLockSize, &BarSettings::LockSize},
    {pref::kShowDwgName, &BarSettings::ShowDwgName},
    {pref::kDwgNameAbove, &BarSettings::DwgNameAbove},
    {pref::kAutoUpdatePreviews, &BarSettings::AutoUpdatePreviews},
    {pref::kScrollOverflow, &BarSettings::ScrollOverflow},
};
constexpr Binding<int> kNumberBindings[] = {
    {pref::kTipWidth, &BarSettings::TipWidth},
    {pref::kTipDelay, &BarSettings::TipDelay},
    {pref::kTipRemain, &BarSettings::TipRemain},
    {pref::kNumSheetSets, &BarSettings::NumSheetSets},
    {pref::kScrollBarSize, &BarSettings::ScrollBarSize},
};
constexpr Binding<std::uint32_t> kColorBindings[] = {
    {pref::kBackground, &BarSettings::Background}, {pref::kTitleBack, &BarSettings::TitleBack},
    {pref::kTitleText, &BarSettings::TitleText},   {pref::kReadOnly, &BarSettings::ReadOnly},
    {pref::kModified, &BarSettings::Modified},
};

constexpr std::pair<int, int ExtraSettings::*> kExtraCheckBindings[] = {
    {pref::kExtraDrawingCommands, &ExtraSettings::extraDrawingCommands},
    {pref::kCtrlTabSwitcher, &ExtraSettings::ctrlTabSwitcher},
    {pref::kKeepThumbnails, &ExtraSettings::keepThumbnails},
    {pref::kSheetSetListByEncoding, &ExtraSettings::sheetSetListByEncoding},
};
// SessionRestore's radios by value; a stored value past 2 offers, as the module reads it.
constexpr int kSessionRadios[] = {pref::kSessionOff, pref::kSessionRecord, pref::kSessionOffer};

int SessionChoice(int value) { return value <= 0 ? 0 : value >= 2 ? 2 : 1; }

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

}  // namespace

std::span<const PreferenceControl> PageControls(int page) {
  if (page == kGeneralPageId) return kGeneral;
  if (page == kDisplayPageId) return kDisplay;
  if (page == kExtrasPageId) return kExtras;
  return {};
}

int PageOf(int id) {
  for (int page : kPageIds)
    for (const PreferenceControl& control : PageControls(page))
      if (control.id == id) return page;
  return 0;
}

NumberExchange ExchangeInt(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && IsBlank(text[i])) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  const std::size_t digits = i;
  long long magnitude = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    // Past 32 bits the value only saturates; stop growing before 64 bits overflow.
    if (magnitude <= INT_MAX + 1LL) magnitude = magnitude * 10 + (text[i] - '0');
  }
  if (i == digits) return {};
  while (i < text.size() && IsBlank(text[i])) ++i;
  if (i != text.size()) return {};
  const long long value = negative ? -magnitude : magnitude;
  if (value > INT_MAX) return {true, INT_MAX};
  if (value < INT_MIN) return {true, INT_MIN};
  return {true, static_cast<int>(value)};
}

std::string FontLabelText(const LogFontA& font, int logPixelsY) {
  char face[sizeof font.lfFaceName + 1] = {};
  std::memcpy(face, font.lfFaceName, sizeof font.lfFaceName);
  const long long points = logPixelsY ? -(static_cast<long long>(font.lfHeight) * 72 / logPixelsY) : 0;
  char text[96];
  std::snprintf(text, sizeof text, "%s, %lli pt.", face, points);
  return text;
}

PreviewColors DefaultPreviewColors(DisplayDefaults& display) {
  PreviewColors colors;
  colors.readOnly = 172;
  colors.modified = 364328;
  colors.background = display.SysColor(15);
  colors.titleBack = display.SysColor(15);
  colors.titleText = display.SysColor(18);
  return colors;
}

PreferencesDialog::PreferencesDialog(const BarSettings& bar, int lastTab, DisplayDefaults& display,
                                     int logPixelsY)
    : currentTab(lastTab), labelFont(bar.LabelFont), tabFont(bar.TabFont), display_(display),
      logPixelsY_(logPixelsY) {
  for (int page : kPageIds)
    for (const PreferenceControl& control : PageControls(page)) controls_[control.id].text = control.text;

  // Both pages' data exchange, then their opening rules in the pages' order.
  for (const auto& [id, field] : kCheckBindings) At(id).checked = bar.*field != 0;
  for (const auto& [id, field] : kNumberBindings) At(id).text = std::to_string(bar.*field);
  for (const auto& [id, field] : kColorBindings) At(id).color = bar.*field;
  Choose(bar.SortBy == 1 ? pref::kSortByName : bar.SortBy == 2 ? pref::kSortByPath : pref::kSortNone);
  // Shown but never changeable here: their values go back as they came.
  Enable({pref::kSheetSetsGroup, pref::kShowFullPathInSheetSets, pref::kNumSheetSetsLabel, pref::kNumSheetSets},
         false);
  TipsRule();

  Choose(bar.Floating ? pref::kFloating : pref::kDocked);
  DockingRule();
  Choose(bar.TabMode > 0 ? pref::kTabs : pref::kPreviews);
  PreviewRule();
  int dock = pref::kDockLeft;
  for (const auto& [id, side] : kDockRadios)
    if (side == bar.DockSide) dock = id;
  Choose(dock);
  ScrollRule();

  ShowExtras({});
}

PreferencesDialog::State& PreferencesDialog::At(int id) { return controls_[id]; }

const PreferencesDialog::State* PreferencesDialog::Find(int id) const {
  auto found = controls_.find(id);
  return found == controls_.end() ? nullptr : &found->second;
}

bool PreferencesDialog::Checked(int id) const {
  const State* state = Find(id);
  return state && state->checked;
}

bool PreferencesDialog::Enabled(int id) const {
  const State* state = Find(id);
  return state && state->enabled;
}

std::string PreferencesDialog::Text(int id) const {
  const State* state = Find(id);
  return state ? state->text : std::string();
}

std::uint32_t PreferencesDialog::Color(int id) const {
  const State* state = Find(id);
  return state ? state->color : 0;
}

void PreferencesDialog::Enable(std::initializer_list<int> ids, bool on) {
  for (int id : ids) At(id).enabled = on;
}

void PreferencesDialog::Choose(int id) {
  for (const auto& group : kRadioGroups) {
    bool inGroup = false;
    for (int member : group) inGroup = inGroup || member == id;
    if (!inGroup) continue;
    for (int member : group) At(member).checked = member == id;
  }
}

void PreferencesDialog::TipsRule() {
  Enable({pref::kShowFullPathInTips, pref::kShowDwgPropsInTips, pref::kTipWidth, pref::kTipDelay, pref::kTipRemain},
         Checked(pref::kShowTips));
}

void PreferencesDialog::DockingRule() {
  // Only enabled or not: the side chosen stays chosen while floating.
  Enable({pref::kDockLeft, pref::kDockRight, pref::kDockTop, pref::kDockBottom, pref::kDockCommandLeft,
          pref::kDockCommandRight},
         Checked(pref::kDocked));
}

void PreferencesDialog::PreviewRule() {
  Enable({pref::kShowDwgName, pref::kDwgNameAbove, pref::kAutoUpdatePreviews, pref::kColorsGroup, pref::kBackground,
          pref::kBackgroundLabel, pref::kTitleBack, pref::kTitleBackLabel, pref::kTitleText, pref::kTitleTextLabel,
          pref::kReadOnly, pref::kReadOnlyLabel, pref::kModified, pref::kModifiedLabel, pref::kScrollOverflow,
          pref::kScrollBarSizeLabel, pref::kScrollBarSize},
         Checked(pref::kPreviews));
  ShowFontLabel();
}

void PreferencesDialog::ScrollRule() {
  Enable({pref::kScrollBarSizeLabel, pref::kScrollBarSize}, Checked(pref::kScrollOverflow));
}

void PreferencesDialog::ShowFontLabel() {
  At(pref::kFontLabel).text = FontLabelText(FontForChooser(), logPixelsY_);
}

void PreferencesDialog::Click(int id) {
  const int page = PageOf(id);
  if (!page || !Enabled(id)) return;
  ControlKind kind = Label;
  for (const PreferenceControl& control : PageControls(page))
    if (control.id == id) kind = control.kind;
  if (kind == Check) At(id).checked = !At(id).checked;
  if (kind == Radio) Choose(id);
  switch (id) {
    case pref::kShowTips: TipsRule(); break;
    case pref::kFloating:
    case pref::kDocked: DockingRule(); break;
    case pref::kPreviews:
    case pref::kTabs: PreviewRule(); break;
    case pref::kScrollOverflow: ScrollRule(); break;
    case pref::kResetColors: {
      const PreviewColors colors = DefaultPreviewColors(display_);
      At(pref::kReadOnly).color = colors.readOnly;
      At(pref::kModified).color = colors.modified;
      At(pref::kBackground).color = colors.background;
      At(pref::kTitleBack).color = colors.titleBack;
      At(pref::kTitleText).color = colors.titleText;
      break;
    }
    default: break;
  }
}

void PreferencesDialog::Type(int id, std::string text) {
  if (PageOf(id) && Enabled(id)) At(id).text = std::move(text);
}

void PreferencesDialog::SetColor(int id, std::uint32_t color) {
  if (PageOf(id)) At(id).color = color;
}

void PreferencesDialog::TakeChosenFont(const LogFontA& chosen) {
  if (FontButtonEditsTabFont()) {
    tabFont = chosen;
    flags.tabFontChanged = true;
  } else {
    labelFont = chosen;
    flags.labelFontChanged = true;
  }
  ShowFontLabel();
}

void PreferencesDialog::ShowExtras(const ExtraSettings& stored) {
  storedExtras_ = stored;
  for (const auto& [id, field] : kExtraCheckBindings) At(id).checked = stored.*field != 0;
  Choose(kSessionRadios[SessionChoice(stored.sessionRestore)]);
}

ExtraSettings PreferencesDialog::ChosenExtras() const {
  ExtraSettings chosen = storedExtras_;
  for (const auto& [id, field] : kExtraCheckBindings)
    if (Checked(id) != (storedExtras_.*field != 0)) chosen.*field = Checked(id) ? 1 : 0;
  for (int value = 0; value < 3; ++value)
    if (Checked(kSessionRadios[value]) && value != SessionChoice(storedExtras_.sessionRestore))
      chosen.sessionRestore = value;
  return chosen;
}

int PreferencesDialog::ChosenSortBy() const {
  if (Checked(pref::kSortByName)) return 1;
  if (Checked(pref::kSortByPath)) return 2;
  return 0;
}

int PreferencesDialog::ChosenDockSide() const {
  for (const auto& [id, side] : kDockRadios)
    if (Checked(id)) return side;
  return 0;
}

PreferencesOkResult PreferencesDialog::Ok(PreferencePagesTarget& target) {
  // Both pages exchange their numbers first, so that a refused one leaves the
  // bar's fields as they were.
  std::map<int, int> numbers;
  for (const auto& binding : kNumberBindings) {
    const NumberExchange number = ExchangeInt(Text(binding.id));
    if (!number.ok) return {false, PageOf(binding.id), binding.id};
    numbers[binding.id] = number.value;
  }
  GeneralOk(numbers, target);
  DisplayOk(numbers, target);
  return {};
}

void PreferencesDialog::GeneralOk(const std::map<int, int>& numbers, PreferencePagesTarget& target) {
  BarSettings& bar = target.Settings();
  const int showTips = Checked(pref::kShowTips);
  const int fullPathInTips = Checked(pref::kShowFullPathInTips);
  const int propsInTips = Checked(pref::kShowDwgPropsInTips);
  const int tipWidth = numbers.at(pref::kTipWidth);
  const int tipDelay = numbers.at(pref::kTipDelay);
  const int tipRemain = numbers.at(pref::kTipRemain);
  if (tipDelay != bar.TipDelay || tipRemain != bar.TipRemain || showTips != bar.ShowTips ||
      fullPathInTips != bar.ShowFullPathInTips || propsInTips != bar.ShowDwgPropsInTips || tipWidth != bar.TipWidth)
    flags.tipsChanged = true;
  bar.ShowTips = showTips;
  bar.TipWidth = tipWidth;
  bar.TipDelay = tipDelay;
  bar.TipRemain = tipRemain;
  bar.ShowDwgPropsInTips = propsInTips;
  bar.ShowFullPathInTips = fullPathInTips;
  bar.SwitchOnBusy = Checked(pref::kSwitchOnBusy);
  bar.ZoomExtentsOnSave = Checked(pref::kZoomExtentsOnSave);
  bar.ShowFullPathInRefs = Checked(pref::kShowFullPathInRefs);
  bar.SortWorksets = Checked(pref::kSortWorksets);
  bar.NumSheetSets = numbers.at(pref::kNumSheetSets);
  bar.ShowFullPathInSheetSets = Checked(pref::kShowFullPathInSheetSets);
  const int sortBy = ChosenSortBy();
  if (sortBy != bar.SortBy) {
    target.SetSortBy(sortBy);
    flags.sortChanged = true;
  }
  const int loadOnCommand = Checked(pref::kLoadOnCommand);
  if (loadOnCommand != bar.LoadOnCommand) {
    bar.LoadOnCommand = loadOnCommand;
    target.RegisterLoadControl(loadOnCommand ? 4 : 2);
  }
}

void PreferencesDialog::DisplayOk(const std::map<int, int>& numbers, PreferencePagesTarget& target) {
  BarSettings& bar = target.Settings();
  const int floating = Checked(pref::kDocked) ? 0 : 1;
  if (floating != bar.Floating) {
    bar.Floating = floating;
    flags.floatingChanged = true;
  }
  const int tabMode = Checked(pref::kPreviews) ? 0 : 1;
  if (tabMode != bar.TabMode) {
    bar.TabMode = tabMode;
    flags.tabModeChanged = true;
  }
  const int dockSide = ChosenDockSide();
  if (dockSide != bar.DockSide) {
    bar.DockSide = dockSide;
    flags.dockSideChanged = true;
  }
  const int hideOnSingle = Checked(pref::kHideOnSingle);
  if (hideOnSingle != bar.HideOnSingle) {
    bar.HideOnSingle = hideOnSingle;
    flags.hideOnSingleChanged = true;
  }
  const int autoUpdate = Checked(pref::kAutoUpdatePreviews);
  bar.AutoUpdatePreviews = autoUpdate;
  target.SetAutoUpdatePreviews(autoUpdate);
  bar.LockSize = Checked(pref::kLockSize);
  bar.ShowDwgName = Checked(pref::kShowDwgName);
  bar.DwgNameAbove = Checked(pref::kDwgNameAbove);
  const int scrollOverflow = Checked(pref::kScrollOverflow);
  if (scrollOverflow != bar.ScrollOverflow) {
    bar.ScrollOverflow = scrollOverflow;
    target.ResetStripScroll();
    flags.previewsChanged = true;
  }
  const int scrollBarSize = numbers.at(pref::kScrollBarSize);
  if (scrollBarSize != bar.ScrollBarSize) {
    bar.ScrollBarSize = scrollBarSize;
    flags.previewsChanged = true;
  }
  bar.Background = Color(pref::kBackground);
  bar.TitleBack = Color(pref::kTitleBack);
  bar.TitleText = Color(pref::kTitleText);
  bar.ReadOnly = Color(pref::kReadOnly);
  bar.Modified = Color(pref::kModified);
  flags.colorsChanged = true;
}

}  // namespace tavlet::ui
