// Host failures while the menu is built: the menu never shows a message, leaves
// nothing open or locked, keeps every shown id resolvable, and always ends with
// "选项..." and the about entry.
#include <map>

#include "menu_fixture.h"

namespace tavlet::menus {
namespace {

const char kEnd[] = "4055 选项...\n4016 关于 Tavlet...\n";

struct Session : MenuWorld {
  Session() {
    AddWorksets("[Site plans]\n文件1=C:\\dwg\\a.dwg,0\n");
    AddTemplate("acad.dwt");
    Start();
    h.OpenDrawing("C:\\dwg\\a.dwg");
    plan = OpenPlan();
  }
  port::Document plan = nullptr;
};

bool EndsWith(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(MenuFaults, ChosenFailuresCutTheMenuWhereTheBarWould) {
  struct Case {
    const char* call;
    int occurrence;
    std::string expected;  // the tree's start up to the last two entries
  };
  const std::string drawingStart = "4011 关闭 [平面图]\n4047 打开文件夹\n4039 锁定预览\n";
  const Case cases[] = {
      // The active layout is read as the layouts submenu is made: the menu ends there.
      {"AcadDocument::ActiveLayout", 1, drawingStart},
      {"AcadLayout::Name", 1, drawingStart},
      // Without the bridge the layout can't be asked either.
      {"OleLinkManager::DocumentObject", 1, drawingStart},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.call);
    Session s;
    s.h.host.Faults().Fail(c.call, c.occurrence, port::kFail, "injected");
    const std::string tree = s.Tree(s.plan);
    EXPECT_EQ(tree, drawingStart + kEnd) << text::ToUtf8(tree);
  }
}

TEST(MenuFaults, ACountThatFailsDropsTheAllDrawingsBlockOnly) {
  Session s;
  const std::string whole = s.Tree(s.plan);
  s.h.host.Faults().Fail("AcadDocuments::Count", 1, port::kFail, "injected");
  const std::string tree = s.Tree(s.plan);
  const std::size_t block = whole.find("4013 ");
  ASSERT_NE(block, std::string::npos);
  EXPECT_EQ(tree, whole.substr(0, block) + kEnd) << text::ToUtf8(tree);
}

TEST(MenuFaults, ABlockTableThatWontOpenStillGivesEachReferenceListItsEntry) {
  Session s;
  // The second opening is the reference walk's (the first is the layouts').
  s.h.host.Faults().Fail("DrawingDatabase::OpenBlockTable", 2, port::kFail, "injected");
  s.Tree(s.plan);
  const std::string tree = Compact(s.last);
  EXPECT_NE(tree.find(Bytes(
                "> 参照 {> 外部<B2> (grayed) {5009 没有找到} | > 图像 (grayed) {5010 没有找到} | "
                "> OLE 连接 (grayed) {5011 没有找到} | > 超链接 (grayed) {5012 没有找到}}\n"
                "> 图层状态 {5013 墙体关闭")),
            std::string::npos)
      << text::ToUtf8(tree);
  s.ExpectIdsResolve();
  EXPECT_EQ(ListOf(5010, s.menu->Keys()), MenuList::Images);
  EXPECT_EQ(ListOf(5013, s.menu->Keys()), MenuList::LayerStates);
}

// Every host call the build makes, failed in turn, as an error result and as an
// exception inside the host.
TEST(MenuFaults, EveryCallOfTheBuildFailingLeavesAUsableMenu) {
  Session s;
  s.h.host.Faults().ClearLog();
  const std::string whole = s.Tree(s.plan);
  const std::vector<std::string> calls = s.h.host.Faults().Log();
  ASSERT_GT(calls.size(), 100u);
  const std::size_t boxes = s.h.host.ShownBoxes().size();
  const std::string transcript = s.h.host.Transcript();
  std::map<std::string, int> seen;
  int cutShort = 0;
  for (const std::string& call : calls) {
    const int occurrence = ++seen[call];
    for (port::Result error : {port::kFail, port::kHostException}) {
      SCOPED_TRACE(call + " #" + std::to_string(occurrence) +
                   (error == port::kFail ? " fails" : " throws"));
      s.h.host.Faults().Fail(call, occurrence, error, "injected");
      const std::string tree = s.Tree(s.plan);
      s.h.host.Faults().Clear();
      ASSERT_TRUE(EndsWith(tree, kEnd)) << text::ToUtf8(tree);
      if (tree.size() < whole.size() / 2) ++cutShort;
      s.ExpectIdsResolve();
      EXPECT_EQ(s.h.host.OpenDatabaseObjects(), 0);
      EXPECT_FALSE(s.h.host.IsLocked(s.plan));
    }
  }
  EXPECT_GT(cutShort, 0);
  EXPECT_EQ(s.h.host.ShownBoxes().size(), boxes);
  EXPECT_EQ(s.h.host.Transcript(), transcript);
  // And the menu comes back whole once the host behaves.
  EXPECT_EQ(s.Tree(s.plan), whole);
}

}  // namespace
}  // namespace tavlet::menus
