// The layout question of a paper-space view with no layout recorded: the dialog
// of the module's resources answered by clicks, and the module in the demo
// host's frame asking it once from the view's menu entry.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "platform/win32/content/layout_chooser_win32.h"
#include "support/test_paths.h"

namespace tavlet::win32 {
namespace {

using Names = std::vector<std::string>;

// What the answering timer does with the next question, and what it saw there.
struct Answerer {
  std::vector<std::string> clicks;  // list items to click, by text, in order
  int button = IDOK;
  int asked = 0;
  std::string title;
  Names items;
  bool multipleSelection = true;
  HWND answered = nullptr;
};
Answerer answerer;

BOOL CALLBACK FindDialog(HWND hwnd, LPARAM found) {
  char name[16] = {};
  GetClassNameA(hwnd, name, sizeof name);
  if (lstrcmpA(name, "#32770") == 0 && IsWindowVisible(hwnd)) {
    *reinterpret_cast<HWND*>(found) = hwnd;
    return FALSE;
  }
  return TRUE;
}

void CALLBACK Answer(HWND, UINT, UINT_PTR, DWORD) {
  HWND dialog = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
  if (!dialog || dialog == answerer.answered) return;
  HWND list = GetDlgItem(dialog, kLayoutListId);
  if (!list) return;
  if (answerer.items.empty()) {
    ++answerer.asked;
    char title[256] = {};
    GetWindowTextA(dialog, title, sizeof title);
    answerer.title = title;
    const int count = static_cast<int>(SendMessageA(list, LB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i) {
      char text[256] = {};
      SendMessageA(list, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
      answerer.items.push_back(text);
    }
    answerer.multipleSelection = (GetWindowLongA(list, GWL_STYLE) & (LBS_MULTIPLESEL | LBS_EXTENDEDSEL)) != 0;
  }
  // One click a tick, as a user would, then the button.
  if (!answerer.clicks.empty()) {
    const LRESULT index =
        SendMessageA(list, LB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(answerer.clicks.front().c_str()));
    answerer.clicks.erase(answerer.clicks.begin());
    RECT item{};
    SendMessageA(list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
    const LPARAM at = MAKELPARAM((item.left + item.right) / 2, (item.top + item.bottom) / 2);
    PostMessageA(list, WM_LBUTTONDOWN, MK_LBUTTON, at);
    PostMessageA(list, WM_LBUTTONUP, 0, at);
    return;
  }
  answerer.answered = dialog;
  PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(answerer.button), 0);
}

class Answering {
 public:
  Answering(std::vector<std::string> clicks, int button) {
    answerer = Answerer{};
    answerer.clicks = std::move(clicks);
    answerer.button = button;
    timer_ = SetTimer(nullptr, 0, 30, Answer);
  }
  ~Answering() { KillTimer(nullptr, timer_); }

 private:
  UINT_PTR timer_;
};

class ModuleResources {
 public:
  ModuleResources()
      : module_(LoadLibraryExA((std::string("Z:") + TAVLET_ARX_PATH).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {}
  ~ModuleResources() {
    if (module_) FreeLibrary(module_);
  }
  HINSTANCE get() const { return module_; }

 private:
  HMODULE module_;
};

TEST(LayoutChooser, ListsTheNamesSortedAndGivesTheLastSelectionOnOkOnly) {
  ModuleResources module;
  ASSERT_NE(module.get(), nullptr) << TAVLET_ARX_PATH;
  LayoutChooserWin32 chooser(module.get(), [] { return HWND{}; });
  const Names names = {"Sheet-C", "Sheet-A", "Sheet-B"};
  struct Case {
    std::vector<std::string> clicks;
    int button;
    Names chosen;
  };
  const Case cases[] = {
      {{"Sheet-B"}, IDOK, {"Sheet-B"}},
      // One selection only: a second click replaces the first.
      {{"Sheet-A", "Sheet-C"}, IDOK, {"Sheet-C"}},
      {{}, IDOK, {}},
      {{"Sheet-A"}, IDCANCEL, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.clicks.size());
    Answering answering(c.clicks, c.button);
    EXPECT_EQ(chooser.Choose("给 'Sheet' 选择布局", names), c.chosen);
    EXPECT_EQ(answerer.asked, 1);
    EXPECT_EQ(answerer.title, "给 'Sheet' 选择布局");
    EXPECT_EQ(answerer.items, (Names{"Sheet-A", "Sheet-B", "Sheet-C"}));
    EXPECT_FALSE(answerer.multipleSelection);
  }
}

TEST(LayoutChooser, APaperViewWithNoLayoutAsksOnceFromTheMenu) {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  demo::DemoHost demo(testing::WinePath(TAVLET_ARX_PATH), false);
  ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
  port::Document plan = demo.Open(testing::SamplesDir() + "\\plan.tdd");
  ASSERT_TRUE(plan) << demo.Host().LastOpenError();
  std::string error;
  ASSERT_TRUE(demo.LoadModule(error, true)) << error;
  demo.Pump(100);
  const sim::SimDocument& d = *demo.Host().Find(plan);
  auto recorded = [&] {
    for (const sim::NamedViewDesc& view : d.content.views)
      if (view.name == "Old sheet")
        for (const auto& [code, text] : view.xdata)
          if (code == 1000) return text;
    return std::string();
  };
  auto run = [&](const std::string& lines) {
    demo::Script script;
    std::string failure;
    if (!script.Parse(lines, failure)) return failure;
    std::ostringstream log;
    demo::ScriptRunner runner(demo, script, log, testing::MakeTempFolder("layouts"));
    if (!runner.Run(failure)) return failure;
    return std::string();
  };

  {
    Answering answering({"Layout2"}, IDOK);
    ASSERT_EQ(run("menu cell 1 \"视图 > Old sheet\"\nwait 100\n"), "");
    EXPECT_EQ(answerer.asked, 1);
    EXPECT_EQ(answerer.title, "给 'Old sheet' 选择布局");
    // Model space is no layout of the question.
    EXPECT_EQ(answerer.items, (Names{"Layout2", "布局1"}));
  }
  EXPECT_EQ(recorded(), "Layout2");
  EXPECT_EQ(d.content.activeLayout, "Layout2");
  ASSERT_FALSE(d.actions.empty());
  EXPECT_EQ(d.actions.back(), "zoom window -40,-15 60,35");

  // The answer stays with the view: from another layout it goes back unasked.
  ASSERT_EQ(run("menu cell 1 \"布局 > 布局1\"\nwait 100\n"), "");
  EXPECT_EQ(d.content.activeLayout, "布局1");
  {
    Answering answering({}, IDCANCEL);
    ASSERT_EQ(run("menu cell 1 \"视图 > Old sheet\"\nwait 100\n"), "");
    EXPECT_EQ(answerer.asked, 0);
  }
  EXPECT_EQ(d.content.activeLayout, "Layout2");
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
}

}  // namespace
}  // namespace tavlet::win32
