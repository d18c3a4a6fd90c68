// The workset tip of the open menu: which items name a workset, what the tip
// lists, and where it goes beside the item.
#include "menus/workset_tip.h"
#include "menu_fixture.h"

namespace tavlet::menus {
namespace {

TEST(WorksetTip, OnlyAWorksetsAllEntryShowsItsMembers) {
  struct Case {
    const char* what;
    int id;
    int fullPath;
    std::string tip;
  };
  const Case cases[] = {
      {"a workset, by name", 5000, 0, "a.dwg\nb.dwg"},
      {"a workset, in full", 5000, 1, "C:\\dwg\\a.dwg\nC:\\dwg\\sub\\b.dwg"},
      {"its Select twin", 5001, 0, ""},
      {"a workset without members", 5002, 0, ""},
      {"the first recent sheet set", 5004, 0, ""},
      {"a fixed id", ids::ManageWorksets, 0, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    MenuWorld w;
    w.AddWorksets(
        "[Site plans]\n文件1=C:\\dwg\\a.dwg,0\n文件2=,,C:\\dwg\\sub\\b.dwg,1\n文件3=,\n[B.v2]\n");
    w.h.SetSetting(keys::ShowFullPathInRefs, c.fullPath);
    w.Start();
    w.Tree(nullptr);
    EXPECT_EQ(w.menu->WorksetTip(c.id), c.tip);
  }
}

TEST(WorksetTip, NoTipWithoutWorksets) {
  MenuWorld w;
  w.Start();
  w.Tree(nullptr);
  EXPECT_EQ(w.menu->WorksetTip(kFirstListId), "");  // "没有找到"
}

TEST(WorksetTip, TheTipGoesBesideItsItemWithinTheLargestWindow) {
  struct Case {
    host::WindowRect item;
    long x, y;
  };
  const Case cases[] = {
      {{100, 50, 200, 70}, 201, 50},
      {{900, 50, 1000, 70}, 749, 50},    // no room on the right: left of the item
      {{100, 750, 200, 770}, 201, 728},  // raised to end at the bottom
      {{873, 50, 873, 70}, 874, 50},     // ends exactly at the width: stays right
  };
  for (const Case& c : cases) {
    const TipPosition at = PlaceMenuTip(c.item, 150, 40, 1024, 768);
    EXPECT_EQ(at.x, c.x) << c.item.left;
    EXPECT_EQ(at.y, c.y) << c.item.top;
  }
}

}  // namespace
}  // namespace tavlet::menus
