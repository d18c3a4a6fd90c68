#include "sheetsets/sheetset_fixture.h"

namespace tavlet::sheetsets {
namespace {

class SheetSetTreeTest : public ::testing::Test, public SheetSetWorld {};

TEST_F(SheetSetTreeTest, ReadsTheSampleModel) {
  SheetSetInfo info;
  ReadSheetSetModel(OpenSheetSetComponent(*manager.Get(), kSample), info);
  EXPECT_EQ(info.name, "办公楼");
  ASSERT_EQ(info.sheets.size(), 1u);
  EXPECT_EQ(info.sheets[0].name, "平面图");
  EXPECT_EQ(info.sheets[0].number, "A-01");
  EXPECT_EQ(info.sheets[0].title, "一层平面");
  EXPECT_EQ(info.sheets[0].file, "D:\\项目\\办公楼\\平面图.dwg");
  ASSERT_EQ(info.subsets.size(), 1u);
  EXPECT_EQ(info.subsets[0].name, "详图");
  EXPECT_EQ(info.subsets[0].description, "节点详图");
  ASSERT_EQ(info.subsets[0].sheets.size(), 1u);
  EXPECT_EQ(info.subsets[0].sheets[0].file, "D:\\项目\\办公楼\\剖面图.dwg");
  ASSERT_EQ(info.resourceFolders.size(), 1u);
  EXPECT_EQ(info.resourceFolders[0].folder, kResources);
  EXPECT_TRUE(info.resourceFolders[0].reference);
}

TEST_F(SheetSetTreeTest, ResourceDrawingsFollowTheSideIniPatterns) {
  const std::string head = "办公楼\n  平面图\n  详图\n    剖面图\n  资源文件夹\n    D:\\项目\\办公楼\\资源\n";
  // In the order the folder lists its entries, a subfolder searched where it is met.
  const std::string all = "      Std.DWT\n      notes.txt\n      标题栏.dwg\n      门.dwg\n";
  struct Case {
    const char* name;
    const char* ini;  // null: no side file
    std::string drawings;
  } cases[] = {
      {"no side file: every file", nullptr, all},
      {"no RESOURCES section: every file", "[OTHER]\r\n*.dwg=\r\n", all},
      {"two patterns, any case", "[RESOURCES]\r\n*.dwg=1\r\n*.dwt\r\n", "      Std.DWT\n      标题栏.dwg\n      门.dwg\n"},
      {"a pattern nothing matches", "[RESOURCES]\r\n*.pdf=\r\n", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.ini)
      files.AddFile(kSideIni, c.ini);
    else
      files.Remove(kSideIni);
    SheetSetTree tree(Services());
    tree.Load(kSample);
    EXPECT_EQ(tree.Items().Outline(), head + c.drawings);
    EXPECT_TRUE(BoxTexts().empty());
  }
}

TEST_F(SheetSetTreeTest, KindsDataAndTheExpandedRoot) {
  SheetSetTree tree(Services());
  tree.Load(kSample);
  struct Expect {
    const char* text;
    int kind;
  } expected[] = {{"办公楼", kSheetSetItem}, {"平面图", kSheetItem}, {"详图", kSubsetItem}, {"剖面图", kSheetItem},
                  {"资源文件夹", kNoKind}, {kResources, kNoKind}, {"门.dwg", kResourceDrawingItem}};
  for (const Expect& e : expected) {
    SCOPED_TRACE(e.text);
    const ui::TreeItem item = Find(tree, e.text);
    ASSERT_NE(item, ui::kNoItem);
    EXPECT_EQ(tree.KindOf(item), e.kind);
    EXPECT_EQ(tree.WantsContextMenu(item), e.kind >= kSheetSetItem && e.kind <= kSheetItem);
  }
  EXPECT_EQ(tree.Items().Node(Find(tree, "门.dwg")).data, std::string(kResources) + "\\块\\门.dwg");
  EXPECT_TRUE(tree.Items().Node(Find(tree, "办公楼")).expanded);
  EXPECT_FALSE(tree.Items().Node(Find(tree, "详图")).expanded);
}

TEST_F(SheetSetTreeTest, CollectsTickedSheetsAndResourceDrawingsInTreeOrder) {
  SheetSetTree tree(Services());
  tree.Load(kSample);
  EXPECT_EQ(tree.CollectCheckedFiles(), Lines{});
  for (const char* text : {"门.dwg", "剖面图", "详图", "办公楼", "资源文件夹", "平面图"})
    tree.Items().SetChecked(Find(tree, text), true);
  EXPECT_EQ(tree.CollectCheckedFiles(), (Lines{"D:\\项目\\办公楼\\平面图.dwg", "D:\\项目\\办公楼\\剖面图.dwg",
                                              std::string(kResources) + "\\块\\门.dwg"}));
}

TEST_F(SheetSetTreeTest, AMissingComponentSaysSoInTheTree) {
  host.SetSheetSetComponentMissing(true);
  Connect();
  EXPECT_FALSE(manager);
  SheetSetTree tree(Services());
  tree.Load(kSample);
  EXPECT_EQ(tree.Items().Outline(), "不能加载 COM 界面\n");
  EXPECT_EQ(tree.KindOf(1), kNoKind);
  EXPECT_TRUE(BoxTexts().empty());
}

TEST_F(SheetSetTreeTest, ASheetSetThatWontOpenShowsTheErrorText) {
  files.AddFile("D:\\bad.dst", "tavlet-sheetset 1\nsheet\n");
  for (const char* path : {"D:\\missing.dst", "D:\\bad.dst"}) {
    SheetSetTree tree(Services());
    tree.Load(path);
    EXPECT_EQ(tree.Items().Size(), 0u);
  }
  ASSERT_EQ(BoxTexts().size(), 2u);
  EXPECT_EQ(BoxTexts()[0], "Cannot open the sheet set D:\\missing.dst.");
  EXPECT_FALSE(BoxTexts()[1].empty());
}

TEST_F(SheetSetTreeTest, RenamingALabelRenamesTheComponent) {
  SheetSetTree tree(Services());
  tree.Load(kSample);
  EXPECT_FALSE(tree.OnEndLabelEdit(Find(tree, "平面图"), nullptr));
  EXPECT_FALSE(tree.OnEndLabelEdit(Find(tree, "门.dwg"), "x"));
  EXPECT_FALSE(tree.OnEndLabelEdit(Find(tree, "资源文件夹"), "x"));
  EXPECT_FALSE(tree.Modified());
  EXPECT_TRUE(tree.OnEndLabelEdit(Find(tree, "平面图"), "首层"));
  EXPECT_TRUE(tree.OnEndLabelEdit(Find(tree, "详图"), "大样"));
  EXPECT_TRUE(tree.Modified());
  // The name went to the component itself.
  host::StringSink name;
  tree.SheetOf(Find(tree, "首层"))->sheet->Name(&name);
  EXPECT_EQ(name.text, "首层");
}

TEST_F(SheetSetTreeTest, AFailedRenameKeepsTheOldText) {
  SheetSetTree tree(Services());
  tree.Load(kSample);
  host.Faults().Fail("SheetSetComponent::SetName", 1, port::kAccessDenied, "read-only sheet set");
  EXPECT_FALSE(tree.OnEndLabelEdit(Find(tree, "平面图"), "首层"));
  EXPECT_FALSE(tree.Modified());
  EXPECT_NE(Find(tree, "平面图"), ui::kNoItem);
  EXPECT_EQ(BoxTexts(), (Lines{"read-only sheet set"}));
}

}  // namespace
}  // namespace tavlet::sheetsets
