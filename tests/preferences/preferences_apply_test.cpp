#include "ui/preferences_apply.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "sim/module_harness.h"

namespace tavlet::ui {
namespace {

// The target's calls and the font and settings writes, in one log.
class RecordingTarget final : public PreferencesTarget {
 public:
  BarSettings& Settings() override { return settings; }
  void SetSortBy(int) override {}
  void SetAutoUpdatePreviews(int) override {}
  void RegisterLoadControl(long) override {}
  void ResetStripScroll() override {}
  void SetTabFont(const LogFontA& font) override { log.push_back(std::string("SetTabFont ") + font.lfFaceName); }
  void SetLabelFont(const LogFontA& font) override { log.push_back(std::string("SetLabelFont ") + font.lfFaceName); }
  void SetFloating(bool floating, bool apply) override { Call("SetFloating", floating, apply); }
  void SetTabMode(bool mode, bool apply) override { Call("SetTabMode", mode, apply); }
  void SetDockSide(int side, bool apply) override { Call("SetDockSide", side, apply); }
  bool Floating() override { return settings.Floating != 0; }
  long DrawingCount() override { return drawings; }
  void RepositionDrawingArea() override { log.push_back("RepositionDrawingArea"); }
  void RepositionCommandArea() override { log.push_back("RepositionCommandArea"); }
  void LayOutStrip() override { log.push_back("LayOutStrip"); }
  void RedrawStrip() override { log.push_back("RedrawStrip"); }
  void Resort() override { log.push_back("Resort"); }
  void RefreshAllPreviews() override { log.push_back("RefreshAllPreviews"); }
  void ApplyTipSettings() override { log.push_back("ApplyTipSettings"); }
  void RecalcFrameLayout() override { log.push_back("RecalcFrameLayout"); }

  void Call(const char* name, int a, bool b) {
    log.push_back(std::string(name) + " " + std::to_string(a) + " " + (b ? "true" : "false"));
  }
  BarSettings settings;
  long drawings = 3;
  std::vector<std::string> log;
};

// Logs the writes that matter to the order: the fonts, and SaveSettings by its first value.
class LoggingRegistry final : public MemoryRegistry {
 public:
  explicit LoggingRegistry(std::vector<std::string>& log) : log_(log) {}
  bool SetValue(std::string_view path, std::string_view name, std::uint32_t type, std::string_view bytes) override {
    if (name == "TabFont" || name == "LabelFont") log_.push_back("write " + std::string(name));
    if (name == "ShowTips") log_.push_back("SaveSettings");
    return MemoryRegistry::SetValue(path, name, type, bytes);
  }

 private:
  std::vector<std::string>& log_;
};

TEST(ApplyPreferencesTest, FlagsAreAppliedInTheirFixedOrder) {
  struct Case {
    const char* what;
    PreferenceFlags flags;
    int tabMode, dockSide, floating, hideOnSingle;
    long drawings;
    std::vector<std::string> log;
  };
  auto flags = [](std::initializer_list<bool PreferenceFlags::*> on) {
    PreferenceFlags f;
    for (bool PreferenceFlags::*flag : on) f.*flag = true;
    return f;
  };
  using F = PreferenceFlags;
  const std::vector<std::string> saved{"SaveSettings", "RecalcFrameLayout"};
  auto then = [&](std::vector<std::string> head) {
    head.insert(head.end(), saved.begin(), saved.end());
    return head;
  };
  const Case cases[] = {
      {"no change", flags({&F::colorsChanged}), 0, 59420, 0, 0, 3, then({"RedrawStrip"})},
      {"everything", flags({&F::tabFontChanged, &F::labelFontChanged, &F::floatingChanged, &F::tabModeChanged,
                            &F::dockSideChanged, &F::hideOnSingleChanged, &F::previewsChanged, &F::colorsChanged,
                            &F::sortChanged, &F::tipsChanged}),
       1, 59421, 0, 1, 1,
       then({"SetTabFont Tahoma", "write TabFont", "SetLabelFont Arial", "write LabelFont", "SetFloating 0 true",
             "SetTabMode 1 false", "SetDockSide 59421 true", "Resort", "ApplyTipSettings"})},
      {"tabs alone", flags({&F::tabModeChanged, &F::colorsChanged}), 1, 59420, 0, 0, 3,
       then({"SetTabMode 1 true", "ApplyTipSettings"})},
      {"back to previews", flags({&F::tabModeChanged, &F::tipsChanged, &F::colorsChanged}), 0, 59420, 0, 0, 3,
       then({"SetTabMode 0 true", "RefreshAllPreviews"})},
      {"side alone", flags({&F::dockSideChanged, &F::colorsChanged}), 0, 59419, 0, 0, 3,
       then({"SetDockSide 59419 true"})},
      {"tab font re-docks", flags({&F::tabFontChanged, &F::colorsChanged}), 1, 59420, 0, 0, 3,
       then({"SetTabFont Tahoma", "write TabFont", "SetDockSide 59420 true"})},
      {"label font redraws", flags({&F::labelFontChanged, &F::colorsChanged}), 0, 59420, 0, 0, 3,
       then({"SetLabelFont Arial", "write LabelFont", "RedrawStrip"})},
      {"hide, one drawing, frame side", flags({&F::hideOnSingleChanged, &F::colorsChanged}), 0, 59422, 0, 1, 1,
       then({"RepositionDrawingArea"})},
      {"show, one drawing, command side", flags({&F::hideOnSingleChanged, &F::colorsChanged}), 0, 59425, 0, 0, 1,
       then({"RepositionCommandArea"})},
      {"hide, two drawings", flags({&F::hideOnSingleChanged, &F::previewsChanged, &F::colorsChanged}), 0, 59420, 0,
       1, 2, then({"LayOutStrip"})},
      {"hide while floating", flags({&F::hideOnSingleChanged, &F::floatingChanged, &F::colorsChanged}), 0, 59420, 1,
       1, 1, then({"SetFloating 1 true", "RedrawStrip"})},
      {"previews", flags({&F::previewsChanged, &F::colorsChanged}), 0, 59420, 0, 0, 3, then({"LayOutStrip"})},
      {"sort and tips", flags({&F::sortChanged, &F::tipsChanged, &F::colorsChanged}), 0, 59420, 0, 0, 3,
       then({"RedrawStrip", "Resort", "ApplyTipSettings"})},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    RecordingTarget target;
    target.settings.TabMode = k.tabMode;
    target.settings.DockSide = k.dockSide;
    target.settings.Floating = k.floating;
    target.settings.HideOnSingle = k.hideOnSingle;
    target.drawings = k.drawings;
    LoggingRegistry registry(target.log);
    SettingsStore store(registry, DefaultSettingsRoot());
    FixedDisplayDefaults display;
    PreferencesDialog dialog(target.settings, 0, display);
    std::strcpy(dialog.tabFont.lfFaceName, "Tahoma");
    std::strcpy(dialog.labelFont.lfFaceName, "Arial");
    dialog.flags = k.flags;
    ApplyPreferences(dialog, target, store);
    EXPECT_EQ(target.log, k.log);
    // The changed fonts became the bar's.
    EXPECT_EQ(std::string(target.settings.TabFont.lfFaceName), k.flags.tabFontChanged ? "Tahoma" : "");
    EXPECT_EQ(std::string(target.settings.LabelFont.lfFaceName), k.flags.labelFontChanged ? "Arial" : "");
  }
}

// TLOPTIONS on the simulated host, with the dialog's run scripted.
class PreferencesCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    a = h.OpenDrawing("C:\\d\\b.dwg");
    b = h.OpenDrawing("C:\\d\\a.dwg");
    h.services.preferencesDialog = [this] {
      host::TavletModule* module = h.Module();
      BarWindowActions actions;
      actions.setLabelFont = [this](const LogFontA& font) { windowCalls.push_back(std::string("label ") + font.lfFaceName); };
      actions.applyTipSettings = [this] { windowCalls.push_back("tips"); };
      RunPreferences(module->Bar(), module->Arx(), module->Store(), h.display, 96, actions,
                     [this](PreferencesDialog& dialog, PreferencesTarget& target) {
                       script(dialog);
                       return answerOk && dialog.Ok(target).ok;
                     });
    };
    ASSERT_EQ(h.Load(), 0);
    bar = h.Bar();
    ASSERT_NE(bar, nullptr);
  }
  void Options() {
    h.registry.ClearWriteLog();
    h.windows.ClearLog();
    h.Module()->OnOptions();
  }
  int Stored(const SettingKey& key) { return ReadInt(h.store, key, -99); }
  int Writes(const std::string& name) {
    return static_cast<int>(std::count_if(h.registry.WriteLog().begin(), h.registry.WriteLog().end(),
                                          [&](const std::string& w) { return w.ends_with("|" + name); }));
  }
  bool Visible(port::Window window) { return h.windows.Find(window)->visible; }

  sim::ModuleHarness h;
  port::Document a = nullptr, b = nullptr;
  bar::BarModel* bar = nullptr;
  std::function<void(PreferencesDialog&)> script = [](PreferencesDialog&) {};
  bool answerOk = true;
  std::vector<std::string> windowCalls;
};

TEST_F(PreferencesCommandTest, CancelChangesNothingButLastTab) {
  const BarSettings before = bar->Settings();
  script = [](PreferencesDialog& d) {
    d.Click(3004);
    d.Click(3008);
    d.Click(2058);
    d.Click(2029);
    d.Type(2019, "17");
    d.TakeChosenFont(LogFontA{});
    d.currentTab = 1;
  };
  answerOk = false;
  Options();
  EXPECT_EQ(h.registry.WriteLog(), (std::vector<std::string>{DefaultSettingsRoot() + "\\PreferencesDlg|LastTab"}));
  EXPECT_EQ(Stored(keys::LastTab), 1);
  // The dialog ran under the module's resources, and the bar's windows saw nothing.
  EXPECT_EQ(h.windows.Log(), (std::vector<std::string>{"resources module", "resources restored"}));
  EXPECT_TRUE(windowCalls.empty());
  EXPECT_FALSE(bar->TabMode());
  EXPECT_EQ(bar->DockSide(), before.DockSide);
  EXPECT_EQ(bar->Settings().HideOnSingle, before.HideOnSingle);
  EXPECT_EQ(bar->Settings().TipWidth, before.TipWidth);
  EXPECT_EQ(bar->Settings().LabelFont, before.LabelFont);

  // The next run opens on the page stored.
  int opened = -1;
  script = [&](PreferencesDialog& d) { opened = d.currentTab; };
  Options();
  EXPECT_EQ(opened, 1);
}

TEST_F(PreferencesCommandTest, OkWithNoChangeRedrawsAndWritesEverySetting) {
  answerOk = true;
  Options();
  // Every setting SaveSettings writes (Floating twice), LockSize never, LastTab first.
  const std::vector<std::string>& log = h.registry.WriteLog();
  ASSERT_EQ(log.size(), 30u);
  EXPECT_TRUE(log.front().ends_with("|LastTab"));
  EXPECT_EQ(Writes("Floating"), 2);
  EXPECT_EQ(Writes("LockSize"), 0);
  EXPECT_EQ(Writes("LabelFont"), 0);
  EXPECT_EQ(Stored(keys::Background), static_cast<int>(h.display.SysColor(15)));
  EXPECT_EQ(h.windows.LogOf("RedrawWindow PreviewStrip").size(), 1u);
  EXPECT_TRUE(windowCalls.empty());
}

TEST_F(PreferencesCommandTest, OkAppliesEachChangeToTheRunningBarAndStoresIt) {
  LogFontA chosen;
  chosen.lfHeight = -20;
  std::strcpy(chosen.lfFaceName, "Arial");
  script = [&](PreferencesDialog& d) {
    d.TakeChosenFont(chosen);  // in preview mode: the label font
    d.Click(3004);
    d.Click(3008);
    d.Click(2058);
    d.Click(2053);
    d.Click(3002);
  };
  port::Window frame = h.Module()->Frame().frame;
  ASSERT_EQ(h.windows.GetParent(bar->Window()), frame);
  Options();

  EXPECT_TRUE(bar->TabMode());
  EXPECT_TRUE(Visible(bar->TabWindow()));
  EXPECT_FALSE(Visible(bar->StripWindow()));
  EXPECT_EQ(bar->DockSide(), 59421);
  EXPECT_EQ(bar->Settings().HideOnSingle, 1);
  EXPECT_EQ(bar->Settings().LockSize, 1);
  EXPECT_EQ(bar->Settings().LabelFont, chosen);
  EXPECT_EQ(windowCalls, (std::vector<std::string>{"label Arial", "tips"}));
  // Sorted by name now: a before b, whatever the open order.
  ASSERT_EQ(bar->Tabs().Tabs().size(), 2u);
  EXPECT_EQ(bar->Tabs().Tabs()[0].document, b);
  EXPECT_EQ(bar->Strip().Entries()[0]->document, b);
  // The frame laid out again at the end.
  EXPECT_FALSE(h.windows.LogOf("RecalcFrameLayout").empty());

  EXPECT_EQ(Stored(keys::TabMode), 1);
  EXPECT_EQ(Stored(keys::DockSide), 59421);
  EXPECT_EQ(Stored(keys::HideOnSingle), 1);
  EXPECT_EQ(Stored(keys::SortBy), 1);
  EXPECT_EQ(Stored(keys::LockSize), -99);  // for the session only
  LogFontA stored;
  ASSERT_TRUE(h.store.GetBinary("", "LabelFont", &stored, sizeof stored));
  EXPECT_EQ(stored, chosen);
  EXPECT_EQ(Writes("TabFont"), 0);
}

TEST_F(PreferencesCommandTest, LoadOnCommandRegistersTheLoadControlAgain) {
  for (int loadOnCommand : {1, 0}) {
    SCOPED_TRACE(loadOnCommand);
    script = [](PreferencesDialog& d) { d.Click(2054); };
    Options();
    EXPECT_EQ(Stored(keys::LoadOnCommand), loadOnCommand);
    EXPECT_EQ(Writes("LOADCTRLS"), 1);
    RegValue value;
    ASSERT_TRUE(h.registry.QueryValue(h.Module()->Arx().ApplicationPath(), "LOADCTRLS", value));
    ASSERT_EQ(value.bytes.size(), 4u);
    EXPECT_EQ(value.bytes[0], loadOnCommand ? 4 : 2);
  }
}

}  // namespace
}  // namespace tavlet::ui
