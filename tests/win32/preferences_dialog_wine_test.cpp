// The preferences dialog from the module DLL's resources, run modally and
// driven by a thread timer as a user would: its controls show the portable
// dialog's state, clicks and typing reach it, a refused number keeps it open
// with the platform's box, and OK hands the changes to the bar's side.
#include <gtest/gtest.h>

#include <windows.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/image_file.h"
#include "demohost/script.h"
#include "platform/win32/registry_backend_win32.h"
#include "platform/win32/settings/preferences_win32.h"
#include "preferences_target_stub.h"
#include "settings/memory_registry.h"
#include "settings/settings_table.h"
#include "support/test_paths.h"

namespace tavlet::win32 {
namespace {

// The steps run one a tick inside the dialog's modal loop.
struct Steps {
  std::vector<std::function<bool()>> steps;  // true: go on to the next
  std::size_t next = 0;
  int ticks = 0;
  bool busy = false;
};
Steps* running = nullptr;

void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
  if (!running || running->busy || running->next >= running->steps.size()) return;
  running->busy = true;
  if (++running->ticks > 300) {
    ADD_FAILURE() << "step " << running->next << " never finished";
    running->next = running->steps.size();
  } else if (running->steps[running->next]()) {
    ++running->next;
  }
  running->busy = false;
}

// The searches of the dialog's windows: named procedures, as the system's
// callbacks are __stdcall on i686.
struct Search {
  int id = 0;
  HWND owner = nullptr;
  HWND found = nullptr;
};

BOOL CALLBACK FindPreferencesIn(HWND window, LPARAM param) {
  char name[16] = {};
  GetClassNameA(window, name, sizeof name);
  if (lstrcmpA(name, "#32770") == 0 && IsWindowVisible(window) && GetDlgItem(window, 1000))
    reinterpret_cast<Search*>(param)->found = window;
  return TRUE;
}

BOOL CALLBACK FindOwnedIn(HWND window, LPARAM param) {
  auto* search = reinterpret_cast<Search*>(param);
  if (IsWindowVisible(window) && GetWindow(window, GW_OWNER) == search->owner) search->found = window;
  return TRUE;
}

BOOL CALLBACK FindChildIn(HWND window, LPARAM param) {
  auto* search = reinterpret_cast<Search*>(param);
  if (GetDlgCtrlID(window) == search->id) search->found = window;
  return search->found ? FALSE : TRUE;
}

HWND FindPreferences() {
  Search search;
  EnumThreadWindows(GetCurrentThreadId(), FindPreferencesIn, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// A box the dialog owns, or null.
HWND FindBox(HWND owner) {
  Search search;
  search.owner = owner;
  EnumThreadWindows(GetCurrentThreadId(), FindOwnedIn, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND Child(HWND dialog, int id) {
  Search search;
  search.id = id;
  EnumChildWindows(dialog, FindChildIn, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

bool Checked(HWND dialog, int id) { return SendMessageA(Child(dialog, id), BM_GETCHECK, 0, 0) == BST_CHECKED; }
bool Enabled(HWND dialog, int id) { return IsWindowEnabled(Child(dialog, id)) != FALSE; }

class PreferencesDialogWine : public ::testing::Test {
 protected:
  void SetUp() override {
    module_ = LoadLibraryExA((std::string("Z:") + TAVLET_ARX_PATH).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(module_, nullptr) << TAVLET_ARX_PATH;
    target.settings.Background = target.settings.TitleBack = display.SysColor(15);
    target.settings.LabelFont = target.settings.TabFont = display.DefaultGuiFont();
  }
  void TearDown() override {
    if (module_) FreeLibrary(module_);
  }
  // Runs the dialog with `steps` done inside its loop; true for OK.
  bool Run(ui::PreferencesDialog& model, std::vector<std::function<bool()>> steps) {
    Steps run{std::move(steps)};
    running = &run;
    const UINT_PTR timer = SetTimer(nullptr, 0, 30, Tick);
    PreferencesWindow window(registry, DefaultSettingsRoot(), model, target);
    const bool ok = window.Run(nullptr, module_);
    KillTimer(nullptr, timer);
    running = nullptr;
    EXPECT_EQ(run.next, run.steps.size()) << "the dialog closed before its last step";
    return ok;
  }

  HMODULE module_ = nullptr;
  MemoryRegistry registry;
  FixedDisplayDefaults display;
  StubPreferencesTarget target;
  HWND dialog = nullptr;
};

TEST_F(PreferencesDialogWine, ControlsShowAndChangeTheDialogsState) {
  ui::PreferencesDialog model(target.settings, 0, display);
  const bool ok = Run(model, {
      [&] { return (dialog = FindPreferences()) != nullptr; },
      [&] {
        // As opened: the stored values checked, the sheet-set options disabled.
        EXPECT_TRUE(Checked(dialog, 3000));
        EXPECT_TRUE(Checked(dialog, 2029));
        EXPECT_TRUE(Checked(dialog, 3003));
        EXPECT_TRUE(Checked(dialog, 3007));
        EXPECT_FALSE(Enabled(dialog, 2050));
        EXPECT_FALSE(Enabled(dialog, 2039));
        EXPECT_TRUE(Enabled(dialog, 2034));
        char text[32] = {};
        GetWindowTextA(Child(dialog, 2019), text, sizeof text);
        EXPECT_STREQ(text, "300");
        // Wider: the group boxes follow the width, the check boxes stay.
        RECT group{}, check{}, window{};
        GetWindowRect(Child(dialog, 2017), &group);
        GetWindowRect(Child(dialog, 2029), &check);
        GetWindowRect(dialog, &window);
        SetWindowPos(dialog, nullptr, 0, 0, window.right - window.left + 120, window.bottom - window.top,
                     SWP_NOMOVE | SWP_NOZORDER);
        RECT wider{}, checkAfter{};
        GetWindowRect(Child(dialog, 2017), &wider);
        GetWindowRect(Child(dialog, 2029), &checkAfter);
        EXPECT_EQ((wider.right - wider.left) - (group.right - group.left), 120);
        EXPECT_EQ(checkAfter.right - checkAfter.left, check.right - check.left);
        return true;
      },
      [&] {
        SendMessageA(Child(dialog, 3004), BM_CLICK, 0, 0);
        SendMessageA(Child(dialog, 3002), BM_CLICK, 0, 0);
        SendMessageA(Child(dialog, 2029), BM_CLICK, 0, 0);
        EXPECT_TRUE(Checked(dialog, 3004));
        EXPECT_FALSE(Checked(dialog, 3003));
        EXPECT_FALSE(Enabled(dialog, 2034));  // the preview group goes with tab mode
        EXPECT_FALSE(Enabled(dialog, 2019));  // the tip controls with the tips
        SendMessageA(Child(dialog, 2029), BM_CLICK, 0, 0);
        SetWindowTextA(Child(dialog, 2019), "12x");
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        return true;
      },
      [&] {
        // The refused number: the box, the dialog still there on its page.
        HWND box = FindBox(dialog);
        if (!box) return false;
        char text[64] = {};
        GetDlgItemTextA(box, 0xFFFF, text, sizeof text);
        EXPECT_STREQ(text, ui::kEnterIntegerText);
        PostMessageA(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        return true;
      },
      [&] {
        if (FindBox(dialog)) return false;
        EXPECT_TRUE(IsWindowVisible(dialog));
        EXPECT_EQ(GetFocus(), Child(dialog, 2019));
        EXPECT_EQ(target.settings.SortBy, 0);  // nothing written yet
        SetWindowTextA(Child(dialog, 2019), "-250");
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        return true;
      },
  });
  EXPECT_TRUE(ok);
  EXPECT_EQ(target.settings.TabMode, 1);
  EXPECT_EQ(target.settings.SortBy, 1);
  EXPECT_EQ(target.settings.TipWidth, -250);
  EXPECT_TRUE(model.flags.tabModeChanged);
  EXPECT_TRUE(model.flags.sortChanged);
  EXPECT_TRUE(model.flags.tipsChanged);
}

TEST_F(PreferencesDialogWine, CancelWritesNothingAndKeepsThePageShown) {
  ui::PreferencesDialog model(target.settings, 1, display);
  const BarSettings before = target.settings;
  const bool ok = Run(model, {
      [&] { return (dialog = FindPreferences()) != nullptr; },
      [&] {
        // Opened on the stored page: the display page is the one shown.
        EXPECT_TRUE(IsWindowVisible(Child(dialog, 2058)));
        EXPECT_FALSE(IsWindowVisible(Child(dialog, 2054)));
        SendMessageA(Child(dialog, 2058), BM_CLICK, 0, 0);
        SendMessageA(Child(dialog, 3005), BM_CLICK, 0, 0);
        EXPECT_FALSE(Enabled(dialog, 3007));
        EXPECT_TRUE(Checked(dialog, 3007));  // floating keeps the side chosen
        PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
        return true;
      },
  });
  EXPECT_FALSE(ok);
  EXPECT_EQ(model.currentTab, 1);
  EXPECT_EQ(target.settings.HideOnSingle, before.HideOnSingle);
  EXPECT_EQ(target.settings.Floating, before.Floating);
  EXPECT_EQ(model.flags, ui::PreferenceFlags{});
  // The placement went to the dialog's section.
  RegValue placement;
  EXPECT_TRUE(registry.QueryValue(DefaultSettingsRoot() + "\\PreferencesDlg", "", placement));
}

// TLOPTIONS in the demo host's frame, the module loaded from its DLL: the
// choices made in the dialog reach the running bar and the registry at OK.
// The module loaded into the demo host's frame over two drawings.
class PreferencesOnFrame : public ::testing::Test {
 protected:
  void SetUp() override {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
    demo = std::make_unique<demo::DemoHost>(testing::WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo->CreateFrame(900, 700)) << "no display";
    ASSERT_TRUE(demo->Open(testing::SamplesDir() + "\\plan.tdd"));
    ASSERT_TRUE(demo->Open(testing::SamplesDir() + "\\section.tdd"));
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error, true)) << error;
    demo->Pump(100);
  }
  void TearDown() override {
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }

  std::unique_ptr<demo::DemoHost> demo;
};

TEST_F(PreferencesOnFrame, OkChangesTheRunningBarAndTheRegistry) {
  std::string error;

  const std::string folder = testing::MakeTempFolder("preferences");
  demo::Script script;
  ASSERT_TRUE(script.Parse("preferences \"tab 1; color 2086 255 255 224; click 3004; click 3008; click 2058; ok\"\n"
                           "wait 300\n"
                           "screenshot after.bmp\n"
                           "check-tabs right\n"
                           "check-setting TabMode 1\n"
                           "check-setting DockSide 59421\n"
                           "check-setting HideOnSingle 1\n"
                           "check-setting Colors/Background 14745599\n"
                           "check-setting PreferencesDlg/LastTab 1\n"
                           "preferences \"click 3007; cancel\"\n"
                           "check-setting DockSide 59421\n"
                           "command CLOSE\n"
                           "wait 300\n"
                           "screenshot single.bmp\n"
                           "check-tabs none\n",
                           error))
      << error;
  std::ostringstream log;
  demo::ScriptRunner runner(*demo, script, log, folder);
  EXPECT_TRUE(runner.Run(error)) << error << "\n" << log.str();
  // LockSize is never written by the dialog.
  Win32Registry registry;
  EXPECT_EQ(SettingsStore(registry, DefaultSettingsRoot()).GetInt("", "LockSize", -1), -1);
}

// The label font chosen on the display page reaches the running strip at OK: its
// labels grow with the font, read from the screen (the raised frame's light edge).
TEST_F(PreferencesOnFrame, ANewLabelFontReachesTheRunningStrip) {
  std::string error;
  auto labelHeight = [&] {
    HWND strip = demo::FindPreviewStrip();
    RECT cell{};
    if (!strip || !demo::CellOnScreen(strip, 0, cell)) return 0L;
    const demo::Picture shot = demo::CaptureRect(cell);
    const std::uint32_t light = GetSysColor(COLOR_3DHILIGHT);
    const std::uint32_t edge = (GetRValue(light) << 16) | (GetGValue(light) << 8) | GetBValue(light);
    for (int y = shot.height - 2; y > 0; --y)
      if (shot.At(shot.width - 5, y) == edge) return static_cast<long>(shot.height - y);
    return 0L;
  };
  const long before = labelHeight();
  ASSERT_GT(before, 0);
  const std::string folder = testing::MakeTempFolder("preferences-font");
  demo::Script script;
  ASSERT_TRUE(script.Parse("preferences \"tab 1; font DejaVu 28; ok\"\nwait 300\n", error)) << error;
  std::ostringstream log;
  demo::ScriptRunner runner(*demo, script, log, folder);
  ASSERT_TRUE(runner.Run(error)) << error << "\n" << log.str();
  RedrawWindow(demo->Frame(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  demo->Pump(50);
  Win32Registry registry;
  LogFontA stored{};
  ASSERT_TRUE(SettingsStore(registry, DefaultSettingsRoot()).RestoreFont("", "LabelFont", stored));
  EXPECT_LT(stored.lfHeight, -30);
  EXPECT_GT(labelHeight(), before + 8) << log.str();
}

}  // namespace
}  // namespace tavlet::win32
