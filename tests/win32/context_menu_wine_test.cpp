// The bar's right click in the demo host's real frame: the popup that opens,
// entries picked by their texts doing their work on the simulated host, the
// workset tip beside its entry, and a path that leads nowhere.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>

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
  ASSERT_EQ(Run("wait 100\n"), "");
  HWND tip = nullptr;
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND hwnd, LPARAM found) -> BOOL {
        char name[64] = {};
        GetClassNameA(hwnd, name, sizeof name);
        if (lstrcmpiA(name, "tooltips_class32") == 0 && IsWindowVisible(hwnd)) *reinterpret_cast<HWND*>(found) = hwnd;
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&tip));
  EXPECT_EQ(tip, nullptr);
}

TEST_F(ContextMenuOnFrame, APathThatLeadsNowhereFailsNamingTheEntriesThere) {
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

}  // namespace
}  // namespace tavlet::demo
