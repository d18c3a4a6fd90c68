// The preferences dialog from the module DLL's resources, run modally and
// driven by a thread timer as a user would: its controls show the portable
// dialog's state, clicks and typing reach it, a refused number keeps it open
// with the platform's box, and OK hands the changes to the bar's side.
#include <gtest/gtest.h>

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/win32/settings/preferences_win32.h"
#include "settings/memory_registry.h"

namespace tavlet::win32 {
namespace {

class RecordingTarget final : public ui::PreferencesTarget {
 public:
  BarSettings& Settings() override { return settings; }
  void SetSortBy(int sortBy) override { settings.SortBy = sortBy; }
  void SetAutoUpdatePreviews(int) override {}
  void RegisterLoadControl(long) override {}
  void ResetStripScroll() override {}
  void SetTabFont(const LogFontA&) override {}
  void SetLabelFont(const LogFontA&) override {}
  void SetFloating(bool, bool) override {}
  void SetTabMode(bool, bool) override {}
  void SetDockSide(int, bool) override {}
  bool Floating() override { return false; }
  long DrawingCount() override { return 2; }
  void RepositionDrawingArea() override {}
  void RepositionCommandArea() override {}
  void LayOutStrip() override {}
  void RedrawStrip() override {}
  void Resort() override {}
  void RefreshAllPreviews() override {}
  void ApplyTipSettings() override {}
  void RecalcFrameLayout() override {}
  BarSettings settings;
};

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

HWND FindPreferences() {
  HWND found = nullptr;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM out) -> BOOL {
        char name[16] = {};
        GetClassNameA(window, name, sizeof name);
        if (lstrcmpA(name, "#32770") == 0 && IsWindowVisible(window) && GetDlgItem(window, 1000))
          *reinterpret_cast<HWND*>(out) = window;
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

// A box the dialog owns, or null.
HWND FindBox(HWND owner) {
  struct Search {
    HWND owner, found;
  } search{owner, nullptr};
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND window, LPARAM param) -> BOOL {
        auto* s = reinterpret_cast<Search*>(param);
        if (IsWindowVisible(window) && GetWindow(window, GW_OWNER) == s->owner) s->found = window;
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

HWND Child(HWND dialog, int id) {
  struct Search {
    int id;
    HWND found;
  } search{id, nullptr};
  EnumChildWindows(
      dialog,
      [](HWND window, LPARAM param) -> BOOL {
        auto* s = reinterpret_cast<Search*>(param);
        if (GetDlgCtrlID(window) == s->id) s->found = window;
        return s->found ? FALSE : TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
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
  RecordingTarget target;
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

}  // namespace
}  // namespace tavlet::win32
