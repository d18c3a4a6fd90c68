#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "host/module_extras.h"
#include "settings/memory_registry.h"
#include "settings/extra_settings.h"
#include "sim/module_harness.h"
#include "ui/preferences_apply.h"

namespace tavlet::ui {
namespace {

TEST(PreferencesExtrasPageTest, ControlsShowAndChangeTheStoredValues) {
  struct Case {
    const char* name;
    ExtraSettings stored;
    std::vector<int> clicks;
    ExtraSettings chosen;
  };
  const Case cases[] = {
      {"untouched defaults", {}, {}, {}},
      {"drawing commands", {}, {pref::kExtraDrawingCommands}, {.extraDrawingCommands = 1}},
      {"switcher", {}, {pref::kCtrlTabSwitcher}, {.ctrlTabSwitcher = 1}},
      {"thumbnails", {}, {pref::kKeepThumbnails}, {.keepThumbnails = 1}},
      {"sheet sets", {}, {pref::kSheetSetListByEncoding}, {.sheetSetListByEncoding = 1}},
      {"ticked and unticked", {}, {pref::kKeepThumbnails, pref::kKeepThumbnails}, {}},
      {"session recorded", {}, {pref::kSessionRecord}, {.sessionRestore = 1}},
      {"session offered", {}, {pref::kSessionOffer}, {.sessionRestore = 2}},
      {"session off again", {.sessionRestore = 2}, {pref::kSessionOff}, {}},
      {"stored on, unticked", {.ctrlTabSwitcher = 1}, {pref::kCtrlTabSwitcher}, {}},
      // A value the page has no control for survives a run that leaves it alone.
      {"odd values kept", {.extraDrawingCommands = 5, .sessionRestore = 7}, {pref::kKeepThumbnails},
       {.extraDrawingCommands = 5, .keepThumbnails = 1, .sessionRestore = 7}},
      {"odd session re-chosen", {.sessionRestore = 7}, {pref::kSessionOffer}, {.sessionRestore = 7}},
      {"odd session changed", {.sessionRestore = -3}, {pref::kSessionRecord}, {.sessionRestore = 1}},
  };
  FixedDisplayDefaults display;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    PreferencesDialog dialog(BarSettings{}, 2, display);
    dialog.ShowExtras(c.stored);
    for (int id : c.clicks) dialog.Click(id);
    EXPECT_EQ(dialog.ChosenExtras(), c.chosen);
    EXPECT_EQ(dialog.StoredExtras(), c.stored);
  }
}

TEST(PreferencesExtrasPageTest, OpeningChecksTheStoredChoices) {
  FixedDisplayDefaults display;
  PreferencesDialog dialog(BarSettings{}, 0, display);
  EXPECT_TRUE(dialog.Checked(pref::kSessionOff));
  EXPECT_FALSE(dialog.Checked(pref::kExtraDrawingCommands));
  for (int session : {0, 1, 2, 9}) {
    SCOPED_TRACE(session);
    dialog.ShowExtras({.extraDrawingCommands = 1, .sessionRestore = session});
    EXPECT_TRUE(dialog.Checked(pref::kExtraDrawingCommands));
    EXPECT_FALSE(dialog.Checked(pref::kCtrlTabSwitcher));
    EXPECT_EQ(dialog.Checked(pref::kSessionOff), session == 0);
    EXPECT_EQ(dialog.Checked(pref::kSessionRecord), session == 1);
    EXPECT_EQ(dialog.Checked(pref::kSessionOffer), session >= 2);
  }
  // The third page follows the two others and holds only its own controls.
  EXPECT_EQ(PageOf(pref::kSessionOffer), kExtrasPageId);
  EXPECT_EQ(PageOf(pref::kFontLabel), kDisplayPageId);
  EXPECT_EQ(PageControls(kExtrasPageId).size(), 8u);
}

TEST(PreferencesExtrasPageTest, ReadingAndSavingLeaveAnUntouchedSectionAlone) {
  MemoryRegistry registry;
  SettingsStore store(registry, DefaultSettingsRoot());
  const std::string section = store.KeyPath(sections::Extras);
  EXPECT_EQ(ReadExtraSettings(store), ExtraSettings{});
  SaveExtraSettings(store, {}, {});
  EXPECT_FALSE(registry.KeyExists(section));

  // Round trip: only what differs from the stored values is written.
  const ExtraSettings stored{.ctrlTabSwitcher = 1, .sessionRestore = 2};
  SaveExtraSettings(store, {}, stored);
  EXPECT_EQ(registry.WriteLog(), (std::vector<std::string>{section + "|SessionRestore", section + "|CtrlTabSwitcher"}));
  EXPECT_EQ(ReadExtraSettings(store), stored);
  registry.ClearWriteLog();
  SaveExtraSettings(store, stored, {.keepThumbnails = 1, .sessionRestore = 2});
  EXPECT_EQ(registry.WriteLog(), (std::vector<std::string>{section + "|KeepThumbnails", section + "|CtrlTabSwitcher"}));
  EXPECT_EQ(ReadExtraSettings(store), (ExtraSettings{.keepThumbnails = 1, .sessionRestore = 2}));
}

// TLOPTIONS on the simulated host, the extras page driven by a script.
class PreferencesExtrasCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    h.OpenDrawing("C:\\d\\a.dwg");
    h.OpenDrawing("C:\\d\\b.dwg");
    h.services.preferencesDialog = [this] {
      host::TavletModule* module = h.Module();
      RunPreferences(module->Bar(), module->Arx(), module->Store(), h.display, 96, {},
                     [this](PreferencesDialog& dialog, PreferencesTarget& target) {
                       script(dialog);
                       return answerOk && dialog.Ok(target).ok;
                     });
    };
  }
  void Load() { ASSERT_EQ(h.Load(), 0); }
  void Options(std::function<void(PreferencesDialog&)> steps, bool ok = true) {
    script = std::move(steps);
    answerOk = ok;
    h.registry.ClearWriteLog();
    h.Module()->OnOptions();
  }
  std::vector<std::string> ExtrasWrites() const {
    std::vector<std::string> writes;
    for (const std::string& w : h.registry.WriteLog())
      if (w.find("\\Extras|") != std::string::npos) writes.push_back(w.substr(w.find('|') + 1));
    return writes;
  }
  bool Stored(const SettingKey& key) {
    RegValue value;
    return h.registry.QueryValue(DefaultSettingsRoot() + "\\Extras", key.key, value);
  }

  sim::ModuleHarness h;
  std::function<void(PreferencesDialog&)> script;
  bool answerOk = true;
};

TEST_F(PreferencesExtrasCommandTest, UntouchedPageOrCancelWritesNoExtrasKey) {
  Load();
  Options([](PreferencesDialog&) {});
  EXPECT_FALSE(h.registry.WriteLog().empty());  // the bar's own settings were saved
  EXPECT_TRUE(ExtrasWrites().empty());
  for (const SettingKey* key : {&keys::SheetSetListByEncoding, &keys::ExtraDrawingCommands, &keys::SessionRestore,
                                &keys::KeepThumbnails, &keys::CtrlTabSwitcher})
    EXPECT_FALSE(Stored(*key)) << key->key;

  Options(
      [](PreferencesDialog& d) {
        d.Click(pref::kExtraDrawingCommands);
        d.Click(pref::kSessionOffer);
        d.currentTab = 2;
      },
      false);
  EXPECT_EQ(h.registry.WriteLog(), (std::vector<std::string>{DefaultSettingsRoot() + "\\PreferencesDlg|LastTab"}));
  EXPECT_EQ(ReadInt(h.store, keys::LastTab), 2);
  EXPECT_EQ(h.Module()->Extras()->Session(), nullptr);
}

TEST_F(PreferencesExtrasCommandTest, SessionRestoreTakesEffectAtOk) {
  Load();
  ASSERT_EQ(h.Module()->Extras()->Session(), nullptr);
  struct Step {
    int radio;
    int stored;
    bool recording;
  };
  const Step steps[] = {
      {pref::kSessionRecord, 1, true},
      {pref::kSessionOffer, 2, true},
      {pref::kSessionOff, 0, false},
      {pref::kSessionOffer, 2, true},
  };
  for (const Step& s : steps) {
    SCOPED_TRACE(s.radio);
    Options([&](PreferencesDialog& d) { d.Click(s.radio); });
    EXPECT_EQ(ExtrasWrites(), std::vector<std::string>{"SessionRestore"});
    EXPECT_EQ(ReadInt(h.store, keys::SessionRestore), s.stored);
    const operations::SessionRecorder* session = h.Module()->Extras()->Session();
    ASSERT_EQ(session != nullptr, s.recording);
    // A recorder made at OK starts with the drawings already open.
    if (session) {
      EXPECT_EQ(session->Current().size(), 2u);
    }
  }
  // The next run shows what was stored, and leaving it writes nothing.
  int shown = -1;
  Options([&](PreferencesDialog& d) { shown = d.ChosenExtras().sessionRestore; });
  EXPECT_EQ(shown, 2);
  EXPECT_TRUE(ExtrasWrites().empty());
}

}  // namespace
}  // namespace tavlet::ui
