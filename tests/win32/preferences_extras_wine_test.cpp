// The preferences' third page under Wine: its tab and controls come from the
// module DLL's resources with the texts the portable dialog holds, its clicks
// reach the dialog, and in the demo host's frame a setting ticked there is
// stored at OK and taken by the bar's menu at its next build.
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "menus/menu_ids.h"
#include "platform/win32/registry_backend_win32.h"
#include "platform/win32/settings/preferences_win32.h"
#include "preferences_target_stub.h"
#include "settings/extra_settings.h"
#include "settings/memory_registry.h"
#include "support/test_paths.h"

namespace tavlet::win32 {
namespace {

// What the timer looks at and leaves for the test, inside the dialog's loop.
struct Seen {
  bool done = false;
  int tabs = 0;
  std::string title;
  bool extrasShown = false;
  bool generalHidden = false;
  std::vector<std::string> mismatched;  // controls whose window text is not the model's
};
Seen* seen = nullptr;

BOOL CALLBACK FindDialog(HWND window, LPARAM param) {
  char name[16] = {};
  GetClassNameA(window, name, sizeof name);
  if (lstrcmpA(name, "#32770") == 0 && IsWindowVisible(window) && GetDlgItem(window, 1000))
    *reinterpret_cast<HWND*>(param) = window;
  return TRUE;
}

struct ChildSearch {
  int id;
  HWND found;
};
BOOL CALLBACK FindChild(HWND window, LPARAM param) {
  auto* search = reinterpret_cast<ChildSearch*>(param);
  if (GetDlgCtrlID(window) == search->id) search->found = window;
  return search->found ? FALSE : TRUE;
}
HWND Child(HWND dialog, int id) {
  ChildSearch search{id, nullptr};
  EnumChildWindows(dialog, FindChild, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void CALLBACK Inspect(HWND, UINT, UINT_PTR, DWORD) {
  if (!seen || seen->done) return;
  HWND dialog = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
  if (!dialog) return;
  seen->done = true;
  HWND tabs = GetDlgItem(dialog, 1000);
  seen->tabs = static_cast<int>(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0));
  char title[64] = {};
  TCITEMA item{};
  item.mask = TCIF_TEXT;
  item.pszText = title;
  item.cchTextMax = sizeof title;
  SendMessageA(tabs, TCM_GETITEMA, 2, reinterpret_cast<LPARAM>(&item));
  seen->title = title;
  seen->extrasShown = IsWindowVisible(Child(dialog, ui::pref::kSessionGroup)) != FALSE;
  seen->generalHidden = IsWindowVisible(Child(dialog, ui::pref::kLoadOnCommand)) == FALSE;
  for (const ui::PreferenceControl& control : ui::PageControls(ui::kExtrasPageId)) {
    char text[128] = {};
    GetWindowTextA(Child(dialog, control.id), text, sizeof text);
    if (control.text != text) seen->mismatched.push_back(std::to_string(control.id));
  }
  SendMessageA(Child(dialog, ui::pref::kExtraDrawingCommands), BM_CLICK, 0, 0);
  SendMessageA(Child(dialog, ui::pref::kSessionOffer), BM_CLICK, 0, 0);
  PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
}

TEST(PreferencesExtrasWine, ThirdPageComesFromTheResourcesAndDrivesTheModel) {
  HMODULE module = LoadLibraryExA((std::string("Z:") + TAVLET_ARX_PATH).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_NE(module, nullptr) << TAVLET_ARX_PATH;
  MemoryRegistry registry;
  FixedDisplayDefaults display;
  StubPreferencesTarget target;
  target.settings.LabelFont = target.settings.TabFont = display.DefaultGuiFont();
  ui::PreferencesDialog dialog(target.settings, 2, display);
  dialog.ShowExtras({.keepThumbnails = 1, .sessionRestore = 1});
  Seen result;
  seen = &result;
  const UINT_PTR timer = SetTimer(nullptr, 0, 30, Inspect);
  PreferencesWindow window(registry, DefaultSettingsRoot(), dialog, target);
  const bool ok = window.Run(nullptr, module);
  KillTimer(nullptr, timer);
  seen = nullptr;
  FreeLibrary(module);

  ASSERT_TRUE(result.done) << "the dialog never showed";
  EXPECT_TRUE(ok);
  EXPECT_EQ(result.tabs, 3);
  EXPECT_EQ(result.title, ui::kExtrasPageTitle);
  // Opened on the stored page: the third.
  EXPECT_TRUE(result.extrasShown);
  EXPECT_TRUE(result.generalHidden);
  EXPECT_TRUE(result.mismatched.empty()) << ::testing::PrintToString(result.mismatched);
  EXPECT_EQ(dialog.ChosenExtras(), (ui::ExtraSettings{.extraDrawingCommands = 1, .keepThumbnails = 1,
                                                      .sessionRestore = 2}));
}

// TLOPTIONS in the demo host's frame: the drawing commands ticked on the third
// page are stored at OK and the next right-click menu shows them.
TEST(PreferencesExtrasOnFrame, TickedDrawingCommandsReachRegistryAndMenu) {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  std::string arx = std::string("Z:") + TAVLET_ARX_PATH;
  for (char& c : arx)
    if (c == '/') c = '\\';
  auto demo = std::make_unique<demo::DemoHost>(arx, false);
  ASSERT_TRUE(demo->CreateFrame(900, 700)) << "no display";
  ASSERT_TRUE(demo->Open(testing::SamplesDir() + "\\plan.tdd"));
  ASSERT_TRUE(demo->Open(testing::SamplesDir() + "\\section.tdd"));
  std::string error;
  ASSERT_TRUE(demo->LoadModule(error, true)) << error;
  demo->Pump(100);
  const std::string folder = testing::MakeTempFolder("preferences-extras");
  const std::string entry = std::string("menu-screenshot cell 1 \"") + menus::texts::CloseOthers + "\" menu.png\n";

  auto run = [&](const std::string& text, std::string& failure) {
    demo::Script script;
    if (!script.Parse(text, failure)) return false;
    std::ostringstream log;
    demo::ScriptRunner runner(*demo, script, log, folder);
    const bool ran = runner.Run(failure);
    std::cout << log.str();
    return ran;
  };
  // Off, as installed: the entry is not on the menu.
  std::string failure;
  EXPECT_FALSE(run(entry, failure));
  EXPECT_NE(failure.find("menu: no entry"), std::string::npos) << failure;

  ASSERT_TRUE(run("preferences \"tab 2; click 4001; shot extras.png; ok\"\n"
                  "wait 200\n"
                  "check-setting Extras/ExtraDrawingCommands 1\n"
                  "check-setting PreferencesDlg/LastTab 2\n" +
                      entry,
                  failure))
      << failure;
  // Only the ticked one was written.
  Win32Registry registry;
  SettingsStore store(registry, DefaultSettingsRoot());
  EXPECT_EQ(store.GetInt("Extras", "SessionRestore", -1), -1);
  EXPECT_EQ(store.GetInt("Extras", "CtrlTabSwitcher", -1), -1);
  std::cout << "screenshots in " << folder << std::endl;
  demo.reset();
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
}

}  // namespace
}  // namespace tavlet::win32
