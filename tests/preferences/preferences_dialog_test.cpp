#include "ui/preferences_dialog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace tavlet::ui {
namespace {

std::string FlagNames(const PreferenceFlags& f) {
  std::string names;
  auto add = [&](bool on, const char* name) {
    if (on) names += (names.empty() ? "" : ",") + std::string(name);
  };
  add(f.previewsChanged, "previews");
  add(f.hideOnSingleChanged, "hideOnSingle");
  add(f.tabModeChanged, "tabMode");
  add(f.floatingChanged, "floating");
  add(f.dockSideChanged, "dockSide");
  add(f.colorsChanged, "colors");
  add(f.tipsChanged, "tips");
  add(f.tabFontChanged, "tabFont");
  add(f.labelFontChanged, "labelFont");
  add(f.sortChanged, "sort");
  return names;
}

// The pages' side calls, recorded over a copy of the bar's fields.
class RecordingPages final : public PreferencePagesTarget {
 public:
  explicit RecordingPages(BarSettings settings) : settings(std::move(settings)) {}
  BarSettings& Settings() override { return settings; }
  void SetSortBy(int sortBy) override {
    settings.SortBy = sortBy;
    calls.push_back("SetSortBy " + std::to_string(sortBy));
  }
  void SetAutoUpdatePreviews(int on) override { calls.push_back("SetAutoUpdatePreviews " + std::to_string(on)); }
  void RegisterLoadControl(long loadCtrl) override { calls.push_back("Register " + std::to_string(loadCtrl)); }
  void ResetStripScroll() override { calls.push_back("ResetStripScroll"); }
  BarSettings settings;
  std::vector<std::string> calls;
};

BarSettings DefaultBar() {
  FixedDisplayDefaults display;
  BarSettings bar;
  bar.Background = bar.TitleBack = display.SysColor(15);
  bar.TitleText = display.SysColor(18);
  bar.LabelFont = bar.TabFont = display.DefaultGuiFont();
  return bar;
}

LogFontA Font(const char* face, int height) {
  LogFontA font;
  font.lfHeight = height;
  std::strncpy(font.lfFaceName, face, sizeof font.lfFaceName - 1);
  return font;
}

// The fields the dialog shows, and the colours.
std::vector<long long> Fields(const BarSettings& s) {
  std::vector<long long> out;
  for (int BarSettings::*field :
       {&BarSettings::AutoUpdatePreviews, &BarSettings::ShowDwgName, &BarSettings::DwgNameAbove,
        &BarSettings::ScrollOverflow, &BarSettings::ScrollBarSize, &BarSettings::ShowTips, &BarSettings::TipWidth,
        &BarSettings::TipDelay, &BarSettings::TipRemain, &BarSettings::LoadOnCommand,
        &BarSettings::ShowFullPathInRefs, &BarSettings::ShowFullPathInSheetSets, &BarSettings::SortBy,
        &BarSettings::ZoomExtentsOnSave, &BarSettings::SwitchOnBusy, &BarSettings::HideOnSingle,
        &BarSettings::LockSize, &BarSettings::DockSide, &BarSettings::Floating, &BarSettings::ShowDwgPropsInTips,
        &BarSettings::ShowFullPathInTips, &BarSettings::SortWorksets, &BarSettings::NumSheetSets,
        &BarSettings::TabMode})
    out.push_back(s.*field);
  for (std::uint32_t BarSettings::*color : {&BarSettings::ReadOnly, &BarSettings::Modified, &BarSettings::Background,
                                            &BarSettings::TitleBack, &BarSettings::TitleText})
    out.push_back(s.*color);
  return out;
}

// Every control, changed alone from the defaults: what OK writes, which flags it
// raises (colorsChanged always), and what it asks of the bar beside its fields.
TEST(PreferencesDialogTest, EachControlWritesItsSettingAndRaisesItsFlags) {
  using Act = std::function<void(PreferencesDialog&)>;
  auto click = [](int id) { return Act([id](PreferencesDialog& d) { d.Click(id); }); };
  auto type = [](int id, const char* text) { return Act([id, text](PreferencesDialog& d) { d.Type(id, text); }); };
  struct Case {
    const char* what;
    Act act;
    int BarSettings::*field;
    int expected;
    const char* flags;
    std::vector<std::string> calls;
  };
  const std::vector<std::string> none;
  const std::vector<std::string> autoUpdate{"SetAutoUpdatePreviews 1"};
  const Case cases[] = {
      {"load on command", click(2054), &BarSettings::LoadOnCommand, 1, "colors",
       {"Register 4", "SetAutoUpdatePreviews 1"}},
      {"switch on busy", click(2089), &BarSettings::SwitchOnBusy, 0, "colors", autoUpdate},
      {"zoom on save", click(2011), &BarSettings::ZoomExtentsOnSave, 0, "colors", autoUpdate},
      {"full path in refs", click(2032), &BarSettings::ShowFullPathInRefs, 1, "colors", autoUpdate},
      {"sort by name", click(3002), &BarSettings::SortBy, 1, "colors,sort", {"SetSortBy 1", "SetAutoUpdatePreviews 1"}},
      {"sort by path", click(3001), &BarSettings::SortBy, 2, "colors,sort", {"SetSortBy 2", "SetAutoUpdatePreviews 1"}},
      {"tips off", click(2029), &BarSettings::ShowTips, 0, "colors,tips", autoUpdate},
      {"full path in tips", click(2033), &BarSettings::ShowFullPathInTips, 1, "colors,tips", autoUpdate},
      {"props in tips", click(2030), &BarSettings::ShowDwgPropsInTips, 1, "colors,tips", autoUpdate},
      {"tip width", type(2019, "250"), &BarSettings::TipWidth, 250, "colors,tips", autoUpdate},
      {"tip delay", type(2023, "500"), &BarSettings::TipDelay, 500, "colors,tips", autoUpdate},
      {"tip remain", type(2021, "0"), &BarSettings::TipRemain, 0, "colors,tips", autoUpdate},
      {"sort worksets", click(2025), &BarSettings::SortWorksets, 1, "colors", autoUpdate},
      // The sheet-set options are disabled: neither a click nor typing reaches them.
      {"sheet sets count", type(2050, "3"), &BarSettings::NumSheetSets, 15, "colors", autoUpdate},
      {"sheet sets full path", click(2031), &BarSettings::ShowFullPathInSheetSets, 0, "colors", autoUpdate},
      {"hide on single", click(2058), &BarSettings::HideOnSingle, 1, "hideOnSingle,colors", autoUpdate},
      {"lock size", click(2053), &BarSettings::LockSize, 1, "colors", autoUpdate},
      {"text tabs", click(3004), &BarSettings::TabMode, 1, "tabMode,colors", autoUpdate},
      {"drawing name", click(2034), &BarSettings::ShowDwgName, 0, "colors", autoUpdate},
      {"name above", click(2064), &BarSettings::DwgNameAbove, 1, "colors", autoUpdate},
      {"auto update off", click(2088), &BarSettings::AutoUpdatePreviews, 0, "colors", {"SetAutoUpdatePreviews 0"}},
      {"scroll overflow", click(2040), &BarSettings::ScrollOverflow, 1, "previews,colors",
       {"SetAutoUpdatePreviews 1", "ResetStripScroll"}},
      {"scroll bar size",
       [](PreferencesDialog& d) {
         d.Click(2040);
         d.Click(2040);  // off again: the size edit is disabled and takes no typing
         d.Type(2039, "20");
       },
       &BarSettings::ScrollBarSize, 12, "colors", autoUpdate},
      {"scroll bar size typed",
       [](PreferencesDialog& d) {
         d.Click(2040);
         d.Type(2039, "20");
         d.Click(2040);
       },
       &BarSettings::ScrollBarSize, 20, "previews,colors", autoUpdate},
      {"floating", click(3005), &BarSettings::Floating, 1, "floating,colors", autoUpdate},
      {"right", click(3008), &BarSettings::DockSide, 59421, "dockSide,colors", autoUpdate},
      {"top", click(3009), &BarSettings::DockSide, 59419, "dockSide,colors", autoUpdate},
      {"bottom", click(3010), &BarSettings::DockSide, 59422, "dockSide,colors", autoUpdate},
      {"command left", click(3011), &BarSettings::DockSide, 59424, "dockSide,colors", autoUpdate},
      {"command right", click(3012), &BarSettings::DockSide, 59425, "dockSide,colors", autoUpdate},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    FixedDisplayDefaults display;
    const BarSettings before = DefaultBar();
    PreferencesDialog dialog(before, 0, display);
    k.act(dialog);
    RecordingPages pages(before);
    ASSERT_TRUE(dialog.Ok(pages).ok);
    EXPECT_EQ(pages.settings.*k.field, k.expected);
    EXPECT_EQ(FlagNames(dialog.flags), k.flags);
    EXPECT_EQ(pages.calls, k.calls);
    // Nothing but the field changed.
    BarSettings expected = before;
    expected.*k.field = k.expected;
    EXPECT_EQ(Fields(pages.settings), Fields(expected));
  }
}

TEST(PreferencesDialogTest, ColoursAndFontsGoToTheirCopies) {
  FixedDisplayDefaults display;
  const BarSettings before = DefaultBar();

  PreferencesDialog colours(before, 0, display);
  colours.SetColor(2086, 0x123456);
  colours.SetColor(2082, 0x00FF00);
  RecordingPages pages(before);
  ASSERT_TRUE(colours.Ok(pages).ok);
  EXPECT_EQ(pages.settings.Background, 0x123456u);
  EXPECT_EQ(pages.settings.ReadOnly, 0x00FF00u);
  EXPECT_EQ(pages.settings.TitleBack, before.TitleBack);

  // Reset puts back the five defaults, the system's for the first three.
  BarSettings custom = before;
  custom.Background = custom.TitleBack = custom.TitleText = custom.ReadOnly = custom.Modified = 0x010203;
  PreferencesDialog reset(custom, 0, display);
  reset.Click(2037);
  EXPECT_EQ(reset.Color(2086), display.SysColor(15));
  EXPECT_EQ(reset.Color(2080), display.SysColor(15));
  EXPECT_EQ(reset.Color(2078), display.SysColor(18));
  EXPECT_EQ(reset.Color(2082), 172u);
  EXPECT_EQ(reset.Color(2084), 364328u);

  // The font button edits labelFont in preview mode, tabFont in tab mode.
  PreferencesDialog fonts(before, 0, display);
  EXPECT_FALSE(fonts.FontButtonEditsTabFont());
  fonts.TakeChosenFont(Font("Arial", -16));
  EXPECT_EQ(fonts.Text(2059), "Arial, 12 pt.");
  EXPECT_EQ(FlagNames(fonts.flags), "labelFont");
  fonts.Click(3004);
  EXPECT_TRUE(fonts.FontButtonEditsTabFont());
  EXPECT_EQ(fonts.Text(2059), FontLabelText(before.TabFont, 96));
  fonts.TakeChosenFont(Font("Tahoma", -24));
  EXPECT_EQ(std::string(fonts.labelFont.lfFaceName), "Arial");
  EXPECT_EQ(std::string(fonts.tabFont.lfFaceName), "Tahoma");
  EXPECT_EQ(FlagNames(fonts.flags), "tabFont,labelFont");
}

TEST(PreferencesDialogTest, OpeningChecksTheRadiosOfTheStoredValues) {
  struct Case {
    int sortBy, tabMode, floating, dockSide;
    std::vector<int> checked;
  };
  const Case cases[] = {
      {0, 0, 0, 59420, {3000, 3003, 3006, 3007}},
      {1, 1, 1, 59421, {3002, 3004, 3005, 3008}},
      {2, -1, 0, 59419, {3001, 3003, 3006, 3009}},
      {7, 2, 0, 59422, {3000, 3004, 3006, 3010}},  // SortBy 7 shows as none; TabMode 2 as tabs
      {0, 0, 0, 59424, {3000, 3003, 3006, 3011}},
      {0, 0, 0, 59425, {3000, 3003, 3006, 3012}},
      {0, 0, 0, 12345, {3000, 3003, 3006, 3007}},  // an unknown side shows as left
  };
  const int radios[] = {3000, 3001, 3002, 3003, 3004, 3005, 3006, 3007, 3008, 3009, 3010, 3011, 3012};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.dockSide);
    FixedDisplayDefaults display;
    BarSettings bar = DefaultBar();
    bar.SortBy = k.sortBy;
    bar.TabMode = k.tabMode;
    bar.Floating = k.floating;
    bar.DockSide = k.dockSide;
    PreferencesDialog dialog(bar, 0, display);
    std::vector<int> checked;
    for (int id : radios)
      if (dialog.Checked(id)) checked.push_back(id);
    std::sort(checked.begin(), checked.end());
    std::vector<int> expected = k.checked;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(checked, expected);
  }

  // A stored SortBy of 7 goes back as 0, as a change.
  FixedDisplayDefaults display;
  BarSettings seven = DefaultBar();
  seven.SortBy = 7;
  PreferencesDialog dialog(seven, 0, display);
  RecordingPages pages(seven);
  ASSERT_TRUE(dialog.Ok(pages).ok);
  EXPECT_EQ(pages.settings.SortBy, 0);
  EXPECT_TRUE(dialog.flags.sortChanged);
}

TEST(PreferencesDialogTest, RulesEnableTheirControls) {
  FixedDisplayDefaults display;
  PreferencesDialog d(DefaultBar(), 0, display);
  // Sheet sets: shown, never enabled.
  for (int id : {2035, 2031, 2049, 2050}) EXPECT_FALSE(d.Enabled(id)) << id;

  // Tips rule.
  const int tipControls[] = {2033, 2030, 2019, 2023, 2021};
  for (int id : tipControls) EXPECT_TRUE(d.Enabled(id)) << id;
  d.Click(2029);
  for (int id : tipControls) EXPECT_FALSE(d.Enabled(id)) << id;
  d.Click(2029);
  for (int id : tipControls) EXPECT_TRUE(d.Enabled(id)) << id;

  // Docking rule: floating disables the sides, the chosen one stays checked.
  d.Click(3009);
  d.Click(3005);
  for (int id = 3007; id <= 3012; ++id) EXPECT_FALSE(d.Enabled(id)) << id;
  EXPECT_TRUE(d.Checked(3009));
  d.Click(3008);  // a disabled radio takes no click
  EXPECT_TRUE(d.Checked(3009));
  d.Click(3006);
  for (int id = 3007; id <= 3012; ++id) EXPECT_TRUE(d.Enabled(id)) << id;

  // Scroll rule, then the preview rule over it.
  EXPECT_FALSE(d.Enabled(2039));
  d.Click(2040);
  EXPECT_TRUE(d.Enabled(2038));
  EXPECT_TRUE(d.Enabled(2039));
  const int previewGroup[] = {2034, 2064, 2088, 2076, 2086, 2085, 2080, 2079, 2078,
                              2077, 2082, 2081, 2084, 2083, 2040, 2038, 2039};
  d.Click(3004);
  for (int id : previewGroup) EXPECT_FALSE(d.Enabled(id)) << id;
  d.Click(2040);  // disabled: no change
  EXPECT_TRUE(d.Checked(2040));
  d.Click(3003);
  for (int id : previewGroup) EXPECT_TRUE(d.Enabled(id)) << id;

  // The preview rule enables the size even with the scroll bar off: kept as it is.
  d.Click(2040);
  EXPECT_FALSE(d.Enabled(2039));
  d.Click(3004);
  d.Click(3003);
  EXPECT_FALSE(d.Checked(2040));
  EXPECT_TRUE(d.Enabled(2039));
}

TEST(PreferencesDialogTest, TypedNumbersFollowTheDataExchange) {
  struct Case {
    const char* text;
    bool ok;
    int value;
  };
  const Case cases[] = {
      {"300", true, 300},         {"  42\t", true, 42},        {"-5", true, -5},
      {"+7", true, 7},            {"0", true, 0},               {"-0", true, 0},
      {"2147483647", true, 2147483647},  {"2147483648", true, 2147483647},
      {"99999999999999999999999", true, 2147483647},  {"-2147483649", true, -2147483647 - 1},
      {"", false, 0},             {"   ", false, 0},            {"-", false, 0},
      {"12x", false, 0},          {"x12", false, 0},            {"1 2", false, 0},
      {"1.5", false, 0},          {"０", false, 0},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.text);
    const NumberExchange got = ExchangeInt(k.text);
    EXPECT_EQ(got.ok, k.ok);
    if (k.ok) {
      EXPECT_EQ(got.value, k.value);
    }
  }

  // A refused number keeps the dialog open on its edit and writes nothing.
  struct Refused {
    int edit;
    int page;
  };
  for (const Refused& r : {Refused{2019, 505}, Refused{2023, 505}, Refused{2021, 505}, Refused{2039, 506}}) {
    SCOPED_TRACE(r.edit);
    FixedDisplayDefaults display;
    const BarSettings before = DefaultBar();
    PreferencesDialog dialog(before, 0, display);
    dialog.Click(2058);
    dialog.Click(2040);
    dialog.Type(r.edit, "");
    RecordingPages pages(before);
    const PreferencesOkResult result = dialog.Ok(pages);
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.page, r.page);
    EXPECT_EQ(result.control, r.edit);
    EXPECT_EQ(pages.settings.HideOnSingle, 0);
    EXPECT_EQ(FlagNames(dialog.flags), "");
    EXPECT_TRUE(pages.calls.empty());
  }

  // Negative and saturated numbers go to the bar as they are: no range check.
  FixedDisplayDefaults display;
  PreferencesDialog dialog(DefaultBar(), 0, display);
  dialog.Type(2019, "-300");
  dialog.Type(2023, "4294967296");
  RecordingPages pages(DefaultBar());
  ASSERT_TRUE(dialog.Ok(pages).ok);
  EXPECT_EQ(pages.settings.TipWidth, -300);
  EXPECT_EQ(pages.settings.TipDelay, 2147483647);
}

TEST(PreferencesDialogTest, FontLabelShowsFaceAndPoints) {
  struct Case {
    int height, dpi;
    const char* text;
  };
  const Case cases[] = {
      {-12, 96, "宋体, 9 pt."},
      {-16, 96, "宋体, 12 pt."},
      {-13, 96, "宋体, 9 pt."},   // -936 / 96 truncates toward zero
      {-13, 120, "宋体, 7 pt."},
      {16, 96, "宋体, -12 pt."},  // a cell height shows negated
  };
  for (const Case& k : cases) {
    EXPECT_EQ(FontLabelText(Font("宋体", k.height), k.dpi), k.text);
  }
}

}  // namespace
}  // namespace tavlet::ui
