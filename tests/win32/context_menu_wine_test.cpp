// The bar's right click in the demo host's real frame: the popup that opens,
// entries picked by their texts doing their work on the simulated host, the
// workset tip beside its entry, and a path that leads nowhere.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"
#include "support/test_paths.h"
#include "text/codepage.h"

namespace tavlet::demo {
namespace {

std::string WinePath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t n = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++n;
  return n;
}

class ContextMenuOnFrame : public ::testing::Test {
 public:
  void SetUp() override {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
    folder = testing::MakeTempFolder("menu");
    const std::string worksets = folder + "\\test.worksets";
    std::ofstream(worksets, std::ios::binary) << "[Site plans]\r\n文件1=C:\\dwg\\b.dwg,0\r\n文件2=C:\\dwg\\c.dwg,1\r\n";
    Win32Registry registry;
    SettingsStore store(registry, DefaultSettingsRoot());
    store.SetInt("", "DockSide", 59420);
    store.SetInt("", "Size", 110);
    store.SetString("工作集", "路径", worksets);
  }
  void Start(int tabMode = 0) {
    Win32Registry registry;
    SettingsStore(registry, DefaultSettingsRoot()).SetInt("", "TabMode", tabMode);
    demo = std::make_unique<DemoHost>(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo->CreateFrame(900, 700)) << "no display";
    plan = demo->Open(testing::SamplesDir() + "\\plan.tdd");
    ASSERT_TRUE(plan) << demo->Host().LastOpenError();
    ASSERT_TRUE(demo->Open(testing::SamplesDir() + "\\section.tdd"));
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error, true)) << error;
    demo->Pump(100);
  }
  void TearDown() override {
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }

  // Runs script lines; the error when one fails, else "".
  std::string Run(const std::string& lines) {
    std::string error;
    Script script;
    if (!script.Parse(lines, error)) return error;
    runner = std::make_unique<ScriptRunner>(*demo, script, log, folder);
    if (!runner->Run(error)) return error;
    return "";
  }
  const sim::SimDocument& Plan() { return *demo->Host().Find(plan); }

  std::string folder;
  std::unique_ptr<DemoHost> demo;
  std::unique_ptr<ScriptRunner> runner;
  std::ostringstream log;
  port::Document plan = nullptr;
};

TEST_F(ContextMenuOnFrame, EntriesPickedByTheirTextsDoTheirWork) {
  Start();
  struct Case {
    const char* step;
    std::function<void(ContextMenuOnFrame&)> check;
  };
  const Case cases[] = {
      {"menu cell 1 \"布局 > Layout2\"",
       [](ContextMenuOnFrame& t) { EXPECT_EQ(t.Plan().content.activeLayout, "Layout2"); }},
      {"menu cell 1 \"视图 > Sheet A\"",
       [](ContextMenuOnFrame& t) {
         EXPECT_EQ(t.Plan().content.activeLayout, "布局1");
         ASSERT_FALSE(t.Plan().actions.empty());
         EXPECT_EQ(t.Plan().actions.back(), "zoom window 0,0 297,210");
       }},
      {"menu cell 2 \"保存全部\"",
       [](ContextMenuOnFrame& t) { EXPECT_EQ(Count(t.demo->Host().Transcript(), "_.QSAVE"), 2u); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(text::ToUtf8(c.step));
    ASSERT_EQ(Run(std::string(c.step) + "\nwait 100\n"), "");
    // The popup for a drawing: its own block, the lists, the all-drawings block, the last two.
    EXPECT_EQ(runner->LastMenu().topEntries, 23);
    c.check(*this);
  }
}

TEST_F(ContextMenuOnFrame, AWorksetsTipListsItsMembersBesideItsEntry) {
  Start();
  ASSERT_EQ(Run("menu-screenshot cell 1 \"工作集 > Site plans > All\" tip.bmp\n"), "");
  const MenuRun& seen = runner->LastMenu();
  EXPECT_EQ(seen.tipText, "b.dwg\nc.dwg");
  // Right of the entry, one pixel off, at its top.
  EXPECT_EQ(seen.tipAt.x, seen.itemRect.right + 1);
  EXPECT_EQ(seen.tipAt.y, seen.itemRect.top);
  ASSERT_TRUE(seen.shot.has_value());
  Picture shot;
  ASSERT_TRUE(ReadBmp(folder + "\\tip.bmp", shot));
  EXPECT_GE(shot.width, seen.tipRect.right - seen.shotRect.left);
  // The tip goes with the popup: nothing of it is left once the menu is closed.
  // (The bar's drawing tip may show meanwhile: the pointer rests on the cell.)
  ASSERT_EQ(Run("wait 100\n"), "");
  std::vector<std::string> shown;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND hwnd, LPARAM found) -> BOOL {
        char name[64] = {};
        GetClassNameA(hwnd, name, sizeof name);
        if (lstrcmpiA(name, "tooltips_class32") != 0 || !IsWindowVisible(hwnd)) return TRUE;
        char text[512] = {};
        TTTOOLINFOA tool{};
        tool.cbSize = TTTOOLINFOA_V2_SIZE;
        tool.lpszText = text;
        SendMessageA(hwnd, TTM_GETCURRENTTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
        reinterpret_cast<std::vector<std::string>*>(found)->push_back(text);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&shown));
  for (const std::string& text : shown) EXPECT_NE(text, "b.dwg\nc.dwg");
}

TEST_F(ContextMenuOnFrame, APathThatLeadsNowhereFailsNamingTheEntriesThere) {
  Start();
  struct Case {
    const char* step;
    const char* error;
  };
  const Case cases[] = {
      {"menu cell 1 \"参照 > 没有这个\"", "no entry '没有这个' in '参照'"},
      {"menu cell 1 \"参照\"", "is a submenu, not a command"},
      {"menu cell 1 \"保存全部 > x\"", "opens no submenu"},
  };
  for (const Case& c : cases) {
    const std::string error = Run(c.step);
    EXPECT_NE(error.find(text::ToUtf8(c.error)), std::string::npos) << error;
  }
  // Each failure closed its popup: the bar answers the next right click.
  ASSERT_EQ(Run("rclick cell 1\n"), "");
  EXPECT_NE(log.str().find("popup menu of 23 entries"), std::string::npos);
}

// A point of the frame's client area as the script's `X Y` takes it.
std::string InFrame(HWND frame, POINT screen) {
  ScreenToClient(frame, &screen);
  return std::to_string(screen.x) + " " + std::to_string(screen.y);
}

TEST_F(ContextMenuOnFrame, TheMenuIsForTheDrawingUnderThePointerOrForNone) {
  for (int tabMode : {0, 1}) {
    SCOPED_TRACE(tabMode ? "tabs" : "previews");
    TearDown();
    SetUp();
    Start(tabMode);
    POINT onPlan{}, offDrawings{};
    if (tabMode) {
      HWND tabs = nullptr;
      EnumChildWindows(
          demo->Frame(),
          [](HWND hwnd, LPARAM found) -> BOOL {
            char name[64] = {};
            GetClassNameA(hwnd, name, sizeof name);
            if (lstrcmpA(name, "SysTabControl32") == 0) *reinterpret_cast<HWND*>(found) = hwnd;
            return TRUE;
          },
          reinterpret_cast<LPARAM>(&tabs));
      ASSERT_NE(tabs, nullptr);
      int planTab = -1;
      const int count = static_cast<int>(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0));
      for (int i = 0; i < count; ++i) {
        TCITEMA item{};
        item.mask = TCIF_PARAM;
        SendMessageA(tabs, TCM_GETITEMA, i, reinterpret_cast<LPARAM>(&item));
        if (reinterpret_cast<port::Document>(item.lParam) == plan) planTab = i;
      }
      ASSERT_GE(planTab, 0);
      RECT r{};
      SendMessageA(tabs, TCM_GETITEMRECT, planTab, reinterpret_cast<LPARAM>(&r));
      MapWindowPoints(tabs, nullptr, reinterpret_cast<POINT*>(&r), 2);
      onPlan = {(r.left + r.right) / 2, (r.top + r.bottom) / 2};
      RECT all{};
      GetWindowRect(tabs, &all);
      offDrawings = {all.right - 5, all.bottom - 5};
    } else {
      RECT first{}, second{};
      ASSERT_TRUE(CellOnScreen(FindPreviewStrip(), 0, first));
      ASSERT_TRUE(CellOnScreen(FindPreviewStrip(), 1, second));
      onPlan = {(first.left + first.right) / 2, (first.top + first.bottom) / 2};
      offDrawings = {(second.left + second.right) / 2, second.bottom + 20};
    }
    ASSERT_EQ(Run("menu " + InFrame(demo->Frame(), onPlan) + " \"布局 > Layout2\"\nwait 100\n"), "");
    EXPECT_EQ(Plan().content.activeLayout, "Layout2");
    // The tabs have no preview entry; empty bar has no block for a drawing at all.
    EXPECT_EQ(runner->LastMenu().topEntries, tabMode ? 22 : 23);
    log.str("");
    ASSERT_EQ(Run("rclick " + InFrame(demo->Frame(), offDrawings) + "\n"), "");
    EXPECT_NE(log.str().find("popup menu of 15 entries"), std::string::npos) << log.str();
  }
}

}  // namespace
}  // namespace tavlet::demo
