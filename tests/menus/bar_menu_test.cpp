// The menu as the module assembles it beside the bar: there with the bar and
// only then, its last two entries reaching the module's dialogs, and the bar's
// double click going through the operations.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "menus/bar_menu.h"
#include "menus/menu_ids.h"
#include "sim/module_harness.h"
#include "worksets/workset_store.h"

namespace tavlet::menus {
namespace {

constexpr unsigned kControl = 0x0008;  // MK_CONTROL
constexpr char kWorksets[] = "C:\\Data\\test.worksets";

std::vector<std::string> Boxes(const sim::ModuleHarness& h) {
  std::vector<std::string> out;
  for (const sim::ShownBox& box : h.host.ShownBoxes()) out.push_back(box.text);
  return out;
}

TEST(BarMenuTest, TheModuleMakesTheMenuWithTheBarAndItsLastEntriesReachTheDialogs) {
  sim::ModuleHarness h;
  int about = 0, options = 0;
  h.services.aboutBox = [&] { ++about; };
  h.services.preferencesDialog = [&] { ++options; };
  ASSERT_EQ(h.Load(), 0);
  BarMenu* menu = h.Module()->Menu();
  ASSERT_NE(menu, nullptr);
  const MenuEntry top = menu->Menu().Build(nullptr);
  ASSERT_GE(top.children.size(), 2u);
  ASSERT_EQ(top.children[top.children.size() - 2].id, ids::Options);
  ASSERT_EQ(top.children.back().id, ids::About);
  EXPECT_TRUE(menu->Menu().OnCommand(ids::About));
  EXPECT_TRUE(menu->Menu().OnCommand(ids::Options));
  EXPECT_EQ(about, 1);
  EXPECT_EQ(options, 1);
  h.Unload();
  EXPECT_EQ(h.Module(), nullptr);

  sim::ModuleHarness noBar;
  noBar.SetWindowMissing("mdiclient");
  ASSERT_EQ(noBar.Load(), 0);
  EXPECT_EQ(noBar.Module()->Bar(), nullptr);
  EXPECT_EQ(noBar.Module()->Menu(), nullptr);
}

TEST(BarMenuTest, TheDoubleClickOpensTheNewestRecentFileOrWithCtrlTheLastWorkset) {
  struct Case {
    const char* name;
    unsigned flags;
    bool lastWorkset;
    std::vector<std::string> boxes;
    std::vector<std::string> opened;
  };
  const Case cases[] = {
      {"no recent file", 0, false, {"最近文件使用列表中没有文件!"}, {}},
      {"ctrl, no workset yet", kControl, false, {workset_texts::kNoneOpenedYet}, {}},
      {"ctrl, the last workset", kControl, true, {}, {"C:\\dwg\\b.dwg", "C:\\dwg\\c.dwg"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    sim::ModuleHarness h;
    h.AddDrawing("C:\\dwg\\b.dwg");
    h.AddDrawing("C:\\dwg\\c.dwg");
    h.files.AddFolder("C:\\Data\\");
    h.files.AddFile(kWorksets, "[Site plans]\n文件1=C:\\dwg\\b.dwg,0\n文件2=C:\\dwg\\c.dwg,0\n");
    h.store.SetString("工作集", "路径", kWorksets);
    if (c.lastWorkset) h.store.SetString("", "LastWorkset", "Site plans");
    ASSERT_EQ(h.Load(), 0);
    ASSERT_NE(h.Module()->Menu(), nullptr);
    h.Module()->Menu()->OnDoubleClick(c.flags);
    EXPECT_EQ(Boxes(h), c.boxes);
    std::vector<std::string> opened;
    for (port::Document doc : h.host.OpenDocuments()) opened.push_back(h.host.Find(doc)->path);
    EXPECT_EQ(opened, c.opened);
  }
}

}  // namespace
}  // namespace tavlet::menus
