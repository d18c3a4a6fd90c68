#include "bar/tab_order.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bar {
namespace {

TEST(TabText, PrefixesForReadOnlyAndModified) {
  struct Case {
    bool readOnly, modified;
    const char* expected;
  } cases[] = {
      {false, false, "plan"},
      {true, false, "[R]- plan"},
      {false, true, "* plan"},
      {true, true, "* [R]- plan"},
  };
  for (const Case& c : cases) EXPECT_EQ(TabText("plan", c.readOnly, c.modified), c.expected);
}

TEST(TabText, MarkComesOffByTrimmingLeadingStarsAndBlanks) {
  EXPECT_EQ(WithoutModifiedMark("* plan"), "plan");
  EXPECT_EQ(WithoutModifiedMark("* [R]- plan"), "[R]- plan");
  EXPECT_EQ(WithoutModifiedMark("** * plan"), "plan");
  EXPECT_EQ(WithoutModifiedMark(" lead"), "lead");  // kept as the bar always trimmed
  EXPECT_EQ(WithoutModifiedMark("* "), "");
}

class TabOrderTest : public ::testing::Test {
 protected:
  port::Document Open(const std::string& path, bool readOnly = false) {
    files.AddFile(path, "AC1018" + std::string(32, '\0'));
    return host.OpenDrawing(path, readOnly);
  }
  std::vector<std::string> Texts() const {
    std::vector<std::string> out;
    for (const TabItem& t : tabs.Tabs()) out.push_back(t.text);
    return out;
  }

  MemoryFileSystem files;
  sim::SimHost host{files};
  int sortBy = 0;
  TabOrder tabs{*host.Documents(), files, sortBy};
};

TEST_F(TabOrderTest, InsertionFollowsSortBy) {
  struct Case {
    int sortBy;
    std::vector<std::string> expected;
  } cases[] = {
      {0, {"B", "c", "a"}},
      {1, {"a", "B", "c"}},
      {2, {"c", "a", "B"}},
  };
  std::vector<port::Document> docs = {Open("C:\\z\\B.dwg"), Open("C:\\a\\c.dwg"), Open("C:\\m\\a.dwg")};
  for (const Case& c : cases) {
    sortBy = c.sortBy;
    TabOrder fresh(*host.Documents(), files, sortBy);
    for (port::Document d : docs) fresh.AddTab(d);
    std::vector<std::string> got;
    for (const TabItem& t : fresh.Tabs()) got.push_back(t.text);
    EXPECT_EQ(got, c.expected) << "SortBy " << c.sortBy;
  }
}

TEST_F(TabOrderTest, ReadOnlyAndModifiedMarks) {
  port::Document a = Open("C:\\d\\a.dwg", true);
  tabs.AddTab(a);
  EXPECT_EQ(Texts(), (std::vector<std::string>{"[R]- a"}));
  tabs.SetTabModified(a, true);
  tabs.SetTabModified(a, true);
  EXPECT_EQ(Texts(), (std::vector<std::string>{"* [R]- a"}));
  tabs.SetTabModified(a, false);
  EXPECT_EQ(Texts(), (std::vector<std::string>{"[R]- a"}));
}

TEST_F(TabOrderTest, RenameUnderSortRebuildsFromTheWalkAndSelectsTheActiveTab) {
  sortBy = 2;
  port::Document b = Open("C:\\d\\b.dwg"), c = Open("C:\\d\\c.dwg"), d = Open("C:\\d\\d.dwg");
  for (port::Document doc : {b, c, d}) tabs.AddTab(doc);
  tabs.SetTabModified(b, true);
  host.Activate(c);
  tabs.RenameTab(c, "C:\\d\\a.dwg");
  // The host still reports the old path: the sim renames only by its own save.
  // The rebuild takes the documents' names afresh, so the walk decides.
  ASSERT_EQ(tabs.Tabs().size(), 3u);
  EXPECT_EQ(tabs.Tabs()[static_cast<std::size_t>(tabs.Selected())].document, c);
  EXPECT_EQ(tabs.Tabs()[0].text, "* b");  // the mark survives the rebuild
}

TEST_F(TabOrderTest, RenameAfterTheHostSavedMovesTheTab) {
  sortBy = 2;
  port::Document b = Open("C:\\d\\b.dwg"), c = Open("C:\\d\\c.dwg");
  tabs.AddTab(b);
  tabs.AddTab(c);
  host.RunCommand("SAVEAS", true, "C:\\d\\a.dwg");  // c is current; the host now names it a.dwg
  tabs.RenameTab(c, "C:\\d\\a.dwg");
  EXPECT_EQ(Texts(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(tabs.Selected(), 0);

  sortBy = 0;
  tabs.RenameTab(b, "C:\\d\\0.dwg");  // no sort: the text changes in place
  EXPECT_EQ(Texts(), (std::vector<std::string>{"a", "0"}));
}

TEST_F(TabOrderTest, RemoveKeepsTheSelectionOnItsTab) {
  port::Document a = Open("C:\\d\\a.dwg"), b = Open("C:\\d\\b.dwg"), c = Open("C:\\d\\c.dwg");
  for (port::Document doc : {a, b, c}) tabs.AddTab(doc);
  EXPECT_EQ(tabs.SelectTab(c), 2);
  tabs.RemoveTab(a);
  EXPECT_EQ(tabs.Selected(), 1);
  tabs.RemoveTab(c);
  EXPECT_EQ(tabs.Selected(), -1);
  EXPECT_EQ(Texts(), (std::vector<std::string>{"b"}));
  EXPECT_EQ(tabs.SelectTab(a), -1);
}

}  // namespace
}  // namespace tavlet::bar
