#include <gtest/gtest.h>

#include "content/reference_tree.h"
#include "content_fixture.h"

namespace tavlet::content {
namespace {

// The tree as lines, two spaces a level, "[x]" for a ticked node, "= path" for an item.
void Print(const ReferenceNode& node, int depth, std::vector<std::string>& out) {
  std::string line(static_cast<std::size_t>(depth) * 2, ' ');
  line += (node.checked ? "[x] " : "[ ] ") + text::ToUtf8(node.text);
  if (!node.path.empty()) line += " = " + text::ToUtf8(node.path);
  out.push_back(line);
  for (const ReferenceNode& child : node.children) Print(child, depth + 1, out);
}

std::vector<std::string> Lines(const std::vector<ReferenceNode>& tree) {
  std::vector<std::string> out;
  for (const ReferenceNode& root : tree) Print(root, 0, out);
  return out;
}

std::vector<std::string> Ticked(const std::vector<ReferenceNode>& tree) {
  std::vector<std::string> out;
  for (const std::string& path : TickedPaths(tree)) out.push_back(text::ToUtf8(path));
  return out;
}

class ReferenceTreeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    host.OpenDescription(
        Utf8(u8"tavlet-drawing 1\npath \"D:\\项目\\平面.dwg\"\n"
             u8"xref \"S\" \"D:\\项目\\总图.dwg\" resolved\nimage \"Model\" \"D:\\p\\a.jpg\"\n"
             u8"entity \"Model\" hyperlink \"D:\\h\\Notes.pdf\"\npicture 1 1 background 0\n"),
        "a.tdd");
    host.OpenDescription(
        "tavlet-drawing 1\npath \"C:\\b.dwg\"\nentity \"Model\" hyperlink \"d:\\h\\notes.PDF\" "
        "hyperlink \"http://x\"\npicture 1 1 background 0\n",
        "b.tdd");
    host.OpenDescription("tavlet-drawing 1\npath \"C:\\empty.dwg\"\npicture 1 1 background 0\n",
                         "c.tdd");
    tree = BuildReferenceTree(host, files);
  }
  MemoryFileSystem files;
  sim::SimHost host;
  std::vector<ReferenceNode> tree;
};

TEST_F(ReferenceTreeTest, OneRootPerDrawingWithOnlyTheKindsItHas) {
  const std::vector<std::string> want = {
      Utf8(u8"[ ] 平面.dwg"),
      "  [ ] " + text::ToUtf8(kExternalReferencesTitle),
      Utf8(u8"    [ ] 总图.dwg = D:\\项目\\总图.dwg"),
      Utf8(u8"  [ ] 图像"),
      "    [ ] a.jpg = D:\\p\\a.jpg",
      Utf8(u8"  [ ] 超链接"),
      "    [ ] Notes.pdf = D:\\h\\Notes.pdf",
      "[ ] b.dwg",
      Utf8(u8"  [ ] 超链接"),
      "    [ ] notes.PDF = d:\\h\\notes.PDF",
      "    [ ] x = http://x",
      "[ ] empty.dwg",
  };
  EXPECT_EQ(Lines(tree), want);
  // "外部" and the first byte of "参".
  EXPECT_EQ(std::string(kExternalReferencesTitle), "\xCD\xE2\xB2\xBF\xB2");
  EXPECT_EQ(host.OpenDatabaseObjects(), 0);
}

TEST_F(ReferenceTreeTest, ClicksFlipMarksDownTheTreeAndOkTakesEachTickedFileOnce) {
  ToggleCheck(tree[1]);                          // the second drawing, all of it
  ToggleCheck(tree[0].children[2]);              // the first one's hyperlinks
  ToggleCheck(tree[0].children[0].children[0]);  // its reference
  EXPECT_EQ(Ticked(tree), (std::vector<std::string>{Utf8(u8"D:\\项目\\总图.dwg"), "D:\\h\\Notes.pdf",
                                                    "http://x"}));
  ToggleCheck(tree[1].children[0]);  // flips the kind and its items back
  EXPECT_FALSE(tree[1].children[0].children[1].checked);
  EXPECT_TRUE(tree[1].checked);
  ToggleCheck(tree[0].children[2]);
  EXPECT_EQ(Ticked(tree), std::vector<std::string>{Utf8(u8"D:\\项目\\总图.dwg")});
}

}  // namespace
}  // namespace tavlet::content
