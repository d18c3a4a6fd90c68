// The workset tip of the bar's popup menu in the demo host's real frame, read
// back from the windows alone (the tooltip window, its tool, the menu item):
// while a workset's entry is highlighted the tip is up and visible, right of
// the entry at its top, or left of it when its bubble would pass the largest
// window's width, and raised to end at the largest window's height when it
// would pass that.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "bar/bar_model.h"
#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"
#include "support/test_paths.h"

namespace tavlet::demo {
namespace {

// The last track position the tip window was given, seen by a hook on the
// messages sent to this thread's windows: the control itself may move a tip
// that would leave the screen, and Wine's SM_CYMAXTRACK lies below it.
POINT trackedAt{-1, -1};
int tracked = 0;

LRESULT CALLBACK WatchTip(int code, WPARAM wParam, LPARAM lParam) {
  const auto* sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
  if (code == HC_ACTION && sent->message == TTM_TRACKPOSITION) {
    char name[64] = {};
    GetClassNameA(sent->hwnd, name, sizeof name);
    if (lstrcmpiA(name, TOOLTIPS_CLASSA) == 0) {
      trackedAt = {static_cast<short>(LOWORD(sent->lParam)), static_cast<short>(HIWORD(sent->lParam))};
      ++tracked;
    }
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

// A workset of `members` drawings whose file names are `nameLength` long.
std::string Workset(const std::string& name, int members, int nameLength) {
  std::string text = "[" + name + "]\r\n";
  for (int i = 0; i < members; ++i) {
    const std::string file = std::to_string(100 + i) + std::string(static_cast<std::size_t>(nameLength), 'w') + ".dwg";
    text += "文件" + std::to_string(i + 1) + "=C:\\dwg\\" + file + ",0\r\n";
  }
  return text;
}

TEST(MenuTipPlacement, BesideTheEntryWithinTheLargestWindow) {
  const long maxWidth = GetSystemMetrics(SM_CXMAXTRACK), maxHeight = GetSystemMetrics(SM_CYMAXTRACK);
  struct Case {
    const char* name;
    int members, nameLength;
    bool left, raised;  // the branches of the rule the case must take
  };
  // Wine's tip control holds no more than 1,024 characters, so a tip is wide or tall.
  const Case cases[] = {
      {"Small", 2, 4, false, false},
      {"Wide", 12, 70, true, false},
      {"Tall", 40, 6, false, true},
  };
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  const std::string folder = testing::MakeTempFolder("tip");
  std::ofstream(folder + "\\tip.worksets", std::ios::binary)
      << Workset(cases[0].name, cases[0].members, cases[0].nameLength)
      << Workset(cases[1].name, cases[1].members, cases[1].nameLength)
      << Workset(cases[2].name, cases[2].members, cases[2].nameLength);
  {
    Win32Registry registry;
    SettingsStore store(registry, DefaultSettingsRoot());
    store.SetInt("", "DockSide", bar::kDockLeft);
    store.SetString("工作集", "路径", folder + "\\tip.worksets");
  }
  DemoHost demo(testing::WinePath(TAVLET_ARX_PATH), false);
  ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
  // Partly past the screen's right edge, the bar on the frame's left: the
  // workset's entries open about 1,000 pixels from the left.
  const int screenWidth = GetSystemMetrics(SM_CXSCREEN), screenHeight = GetSystemMetrics(SM_CYSCREEN);
  SetWindowPos(demo.Frame(), nullptr, screenWidth - 600, screenHeight - 740, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  ASSERT_TRUE(demo.Open(testing::SamplesDir() + "\\plan.tdd"));
  std::string error;
  ASSERT_TRUE(demo.LoadModule(error, true)) << error;
  demo.Pump(200);

  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Script script;
    ASSERT_TRUE(script.Parse(std::string("menu-screenshot cell 1 \"工作集 > ") + c.name + " > All\" tip.bmp\n", error))
        << error;
    std::ostringstream log;
    ScriptRunner runner(demo, script, log, folder);
    tracked = 0;
    HHOOK hook = SetWindowsHookExA(WH_CALLWNDPROC, WatchTip, nullptr, GetCurrentThreadId());
    const bool ran = runner.Run(error);
    UnhookWindowsHookEx(hook);
    ASSERT_TRUE(ran) << error << "\n" << log.str();
    const MenuRun& seen = runner.LastMenu();
    // The tooltip window was found visible while the entry was highlighted.
    ASSERT_FALSE(seen.tipText.empty()) << log.str();
    const RECT& item = seen.itemRect;
    const long width = seen.tipBubble.cx, height = seen.tipBubble.cy;
    const std::string where = "item " + std::to_string(item.left) + "," + std::to_string(item.top) + "-" +
                              std::to_string(item.right) + "," + std::to_string(item.bottom) + " bubble " +
                              std::to_string(width) + "x" + std::to_string(height) + " largest window " +
                              std::to_string(maxWidth) + "x" + std::to_string(maxHeight) + " tip at " +
                              std::to_string(seen.tipAt.x) + "," + std::to_string(seen.tipAt.y);
    ASSERT_GT(width, 0) << where;
    EXPECT_EQ(item.right + 1 + width > maxWidth, c.left) << where;
    EXPECT_EQ(item.top + height > maxHeight, c.raised) << where;
    ASSERT_GT(tracked, 0);
    const POINT expected{c.left ? item.left - width - 1 : item.right + 1, c.raised ? maxHeight - height : item.top};
    EXPECT_EQ(trackedAt.x, expected.x) << where;
    EXPECT_EQ(trackedAt.y, expected.y) << where;
    // Where the bubble fits on the screen the control leaves it there.
    const bool fits = expected.x >= 0 && expected.x + width <= screenWidth && expected.y >= 0 &&
                      expected.y + height <= screenHeight;
    if (fits) {
      EXPECT_EQ(seen.tipAt.x, expected.x) << where;
      EXPECT_EQ(seen.tipAt.y, expected.y) << where;
    }
    EXPECT_EQ(!fits, c.raised) << where;
    EXPECT_EQ(seen.tipText.rfind("100", 0), 0u) << seen.tipText;
  }
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
}

}  // namespace
}  // namespace tavlet::demo
