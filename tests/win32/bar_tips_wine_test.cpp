// The bar's two tips on real tip controls: the settings they take, and one tool
// per cell or tab with the drawing's text.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/script.h"

namespace tavlet::demo {
namespace {

constexpr int kLeft = 59420;

std::string WinePath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

struct Tool {
  HWND window = nullptr;
  UINT_PTR id = 0;
  RECT rect{};
  std::string text;
};

std::vector<Tool> Tools(HWND tip) {
  std::vector<Tool> tools;
  const int count = static_cast<int>(SendMessageA(tip, TTM_GETTOOLCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    char text[1024] = {};
    TTTOOLINFOA info{};
    info.cbSize = TTTOOLINFOA_V2_SIZE;
    info.lpszText = text;
    if (SendMessageA(tip, TTM_ENUMTOOLSA, i, reinterpret_cast<LPARAM>(&info)))
      tools.push_back({info.hwnd, info.uId, info.rect, text});
  }
  return tools;
}

// The bar's tip controls (popups, so owned by its top-level window): DocTip, then MenuTip.
std::vector<HWND> TipsOf(HWND bar) {
  struct Search {
    HWND owner;
    std::vector<HWND> found;
  } search{GetAncestor(bar, GA_ROOT), {}};
  EnumThreadWindows(
      GetCurrentThreadId(),
      [](HWND hwnd, LPARAM param) -> BOOL {
        auto* s = reinterpret_cast<Search*>(param);
        char name[64] = {};
        GetClassNameA(hwnd, name, sizeof name);
        if (lstrcmpiA(name, TOOLTIPS_CLASSA) == 0 && GetWindow(hwnd, GW_OWNER) == s->owner) s->found.push_back(hwnd);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  // DocTip has a tool for each drawing; MenuTip none until a menu shows.
  std::sort(search.found.begin(), search.found.end(), [](HWND a, HWND b) {
    return SendMessageA(a, TTM_GETTOOLCOUNT, 0, 0) > SendMessageA(b, TTM_GETTOOLCOUNT, 0, 0);
  });
  return search.found;
}

class BarTips : public ::testing::Test {
 protected:
  void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane"); }
  void TearDown() override {
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
  void Start(int tabMode) {
    for (const auto& [key, value] : std::vector<std::pair<std::string, int>>{
             {"DockSide", kLeft}, {"TipDelay", 1234}, {"TipRemain", 70000}, {"TipWidth", 250}, {"TabMode", tabMode}})
      ASSERT_TRUE(WriteSetting("", key, value));
    demo = std::make_unique<DemoHost>(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo->CreateFrame(900, 700)) << "no display";
    for (const char* name : {"alpha", "beta", "gamma"})
      demo->Host().OpenDescription(std::string("tavlet-drawing 1\npath \"C:\\dwg\\") + name +
                                       ".dwg\"\npicture 160 120 background 0xFFFFFF\n",
                                   "d.tdd");
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error, true)) << error;
    demo->Pump(50);
    bar = FindWindowExA(demo->Frame(), nullptr, "MvTavlet", nullptr);
    ASSERT_NE(bar, nullptr);
    RedrawWindow(bar, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    demo->Pump(20);
  }

  std::unique_ptr<DemoHost> demo;
  HWND bar = nullptr;
};

TEST_F(BarTips, BothTipsTakeTheDelaysAndTheWidth) {
  Start(0);
  const std::vector<HWND> tips = TipsOf(bar);
  ASSERT_EQ(tips.size(), 2u);
  for (HWND tip : tips) {
    EXPECT_EQ(SendMessageA(tip, TTM_GETDELAYTIME, TTDT_INITIAL, 0), 1234);
    EXPECT_EQ(SendMessageA(tip, TTM_GETDELAYTIME, TTDT_AUTOPOP, 0), 70000 & 0xFFFF);  // cut to 16 bits
    EXPECT_EQ(SendMessageA(tip, TTM_GETDELAYTIME, TTDT_RESHOW, 0), 250);
    EXPECT_EQ(SendMessageA(tip, TTM_GETMAXTIPWIDTH, 0, 0), 250);
  }
}

TEST_F(BarTips, EachCellHasAToolOverItsPlaceWithItsName) {
  Start(0);
  HWND strip = FindPreviewStrip();
  ASSERT_NE(strip, nullptr);
  const std::vector<HWND> tips = TipsOf(bar);
  ASSERT_EQ(tips.size(), 2u);
  const std::vector<Tool> tools = Tools(tips[0]);
  ASSERT_EQ(tools.size(), 3u);
  const char* names[] = {"alpha", "beta", "gamma"};
  for (const Tool& tool : tools) {
    ASSERT_GE(tool.id, 1u);
    ASSERT_LE(tool.id, 3u);
    EXPECT_EQ(tool.window, strip);
    EXPECT_EQ(tool.text, names[tool.id - 1]);
    RECT cell{};
    ASSERT_TRUE(CellOnScreen(strip, static_cast<int>(tool.id - 1), cell));
    MapWindowPoints(nullptr, strip, reinterpret_cast<POINT*>(&cell), 2);
    EXPECT_TRUE(EqualRect(&cell, &tool.rect)) << tool.id;
  }
}

TEST_F(BarTips, EachTabHasAToolWithItsName) {
  Start(1);
  HWND tabs = FindWindowExA(bar, nullptr, WC_TABCONTROLA, nullptr);
  ASSERT_NE(tabs, nullptr);
  const std::vector<HWND> tips = TipsOf(bar);
  ASSERT_EQ(tips.size(), 2u);
  // The hidden strip may keep the tools of its last layout; the tabs have theirs.
  std::vector<Tool> tools = Tools(tips[0]);
  std::erase_if(tools, [&](const Tool& tool) { return tool.window != tabs; });
  ASSERT_EQ(tools.size(), 3u);
  for (const Tool& tool : tools) {
    char text[64] = {};
    TCITEMA item{};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(tabs, TCM_GETITEMA, tool.id - 1, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(tool.text, text) << tool.id;
  }
}

}  // namespace
}  // namespace tavlet::demo
