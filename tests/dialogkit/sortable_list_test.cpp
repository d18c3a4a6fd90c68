#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "text/codepage.h"
#include "ui/sortable_list.h"

namespace tavlet::ui {
namespace {

using Lines = std::vector<std::string>;
const std::string kKey = "Software\\Morvane\\Tavlet\\2.0 - R16\\WorkSetDlg\\FileList";
constexpr ColumnEditMode kPath{1, 1, 1, 0, 0, 0, 0};
constexpr ColumnEditMode kReadOnlyMark{1, 0, 0, 0, 0, 0, 1};

// The rows' data is an index into this table; the compare function sorts by the
// text of the sort column, the direction from the state it is given.
std::vector<Lines>* gTable = nullptr;
int CompareCells(std::intptr_t a, std::intptr_t b, const SortState* state) {
  const std::size_t column = static_cast<std::size_t>(state->sortColumn < 0 ? 0 : state->sortColumn);
  const int order = text::Mbsicmp((*gTable)[static_cast<std::size_t>(a)][column],
                                  (*gTable)[static_cast<std::size_t>(b)][column]);
  return state->sortAscending ? order : -order;
}

class SortableListTest : public ::testing::Test {
 protected:
  SortableListTest() { gTable = &table; }
  ~SortableListTest() override { gTable = nullptr; }
  void Fill(SortableList& list) {
    list.InsertColumn(0, "路径", kPath, kFormatLeft, 300);
    list.InsertColumn(1, "只读", kReadOnlyMark, kFormatCenter, 40);
    list.InsertColumn(2, "Size", {}, kFormatRight, 60);
    for (std::size_t i = 0; i < table.size(); ++i) list.AddRow(table[i], static_cast<std::intptr_t>(i));
  }
  static Lines Column(const SortableList& list, std::size_t column) {
    Lines out;
    for (const ListRow& row : list.Rows()) out.push_back(row.cells[column]);
    return out;
  }
  SettingsStore Store() { return SettingsStore(registry, kKey); }

  std::vector<Lines> table = {{"b.dwg", "X", "2"}, {"C.dwg", "", "3"}, {"a.dwg", "", "1"}};
  MemoryRegistry registry;
};

TEST_F(SortableListTest, TheStoredSortIsDecoded) {
  struct Case {
    int stored;
    int column;
    bool ascending;
    Lines order;  // column 0 after Initialize
  } cases[] = {
      {-3, 2, false, {"C.dwg", "b.dwg", "a.dwg"}},
      {3, 2, true, {"a.dwg", "b.dwg", "C.dwg"}},
      {1, 0, true, {"a.dwg", "b.dwg", "C.dwg"}},
      {-2, 1, false, {"b.dwg", "C.dwg", "a.dwg"}},
      {0, -1, true, {"a.dwg", "b.dwg", "C.dwg"}},  // no sort column: the function gets -1
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.stored);
    MemoryRegistry fresh;
    SettingsStore(fresh, kKey).SetInt("", "Sort", c.stored);
    SortableList list(fresh, kKey);
    Fill(list);
    list.Initialize(&CompareCells);
    EXPECT_EQ(list.State().sortColumn, c.column);
    EXPECT_EQ(list.State().sortAscending, c.ascending);
    EXPECT_EQ(list.State().sortParam, &list);
    EXPECT_EQ(Column(list, 0), c.order);
    EXPECT_EQ(EncodeSort(c.column, c.ascending), c.stored == 0 ? 0 : c.stored);
  }
}

TEST_F(SortableListTest, HeaderClicksFlipOrSwitchAndAreStored) {
  SortableList list(registry, kKey);
  Fill(list);
  list.Initialize(&CompareCells);
  struct Click {
    int column;
    int stored;
    Lines order;
    HeaderMark mark0, mark2;
  } clicks[] = {
      {0, 1, {"a.dwg", "b.dwg", "C.dwg"}, HeaderMark::Up, HeaderMark::None},
      {0, -1, {"C.dwg", "b.dwg", "a.dwg"}, HeaderMark::Down, HeaderMark::None},
      {2, -3, {"C.dwg", "b.dwg", "a.dwg"}, HeaderMark::None, HeaderMark::Down},  // keeps the direction
      {2, 3, {"a.dwg", "b.dwg", "C.dwg"}, HeaderMark::None, HeaderMark::Up},
  };
  for (const Click& c : clicks) {
    SCOPED_TRACE(c.stored);
    list.OnHeaderClick(c.column);
    EXPECT_EQ(Store().GetInt("", "Sort", 99), c.stored);
    EXPECT_EQ(list.State().lastClickColumn, -1);
    EXPECT_EQ(Column(list, 0), c.order);
    EXPECT_EQ(list.MarkOf(0), c.mark0);
    EXPECT_EQ(list.MarkOf(2), c.mark2);
  }
}

TEST_F(SortableListTest, WithoutACompareFunctionAClickSortsNothingAndMarksNothing) {
  SortableList list(registry, kKey);
  Fill(list);
  list.Initialize(nullptr);
  list.OnHeaderClick(0);
  EXPECT_EQ(Column(list, 0), (Lines{"b.dwg", "C.dwg", "a.dwg"}));
  EXPECT_EQ(list.MarkOf(0), HeaderMark::None);
  EXPECT_EQ(Store().GetInt("", "Sort", 99), 1);
}

TEST_F(SortableListTest, WidthsAreStoredPerColumnAndReadBack) {
  {
    SortableList list(registry, kKey);
    Fill(list);
    list.OnEndTrack(1, 77, true);
    list.OnEndTrack(2, 99, false);  // no width in the mask
    list.OnEndTrack(5, 10, true);   // no such column
  }
  RegValue value;
  EXPECT_TRUE(registry.QueryValue(kKey, "Col2", value));
  EXPECT_EQ(value.type, kRegDword);
  EXPECT_FALSE(registry.QueryValue(kKey, "Col3", value));
  SortableList again(registry, kKey);
  Fill(again);
  EXPECT_EQ(again.Columns()[0].width, 300);
  EXPECT_EQ(again.Columns()[1].width, 77);
  EXPECT_EQ(again.Columns()[2].width, 60);
}

TEST_F(SortableListTest, AnEmptyKeyPersistsNothing) {
  SettingsStore(registry, "").SetInt("", "Sort", -3);
  SortableList list(registry, "");
  Fill(list);
  list.Initialize(&CompareCells);
  EXPECT_EQ(list.State().sortColumn, -1);
  list.OnEndTrack(0, 120, true);
  list.OnHeaderClick(1);
  list.SaveOrder({2, 0, 1});
  EXPECT_EQ(list.Columns()[0].width, 120);
  EXPECT_TRUE(list.StoredOrder().empty());
  EXPECT_FALSE(registry.KeyExists(kKey));
  EXPECT_EQ(SettingsStore(registry, "").GetInt("", "Sort", 0), -3);
}

TEST_F(SortableListTest, ValuesOfTheWrongTypeGiveTheDefaults) {
  registry.SetValue(kKey, "Col1", kRegSz, std::string("wide\0", 5));
  registry.SetValue(kKey, "Sort", kRegBinary, std::string("\x01\x02\x03\x04\x05", 5));
  registry.SetValue(kKey, "Order", kRegDword, std::string("\x02\x00\x00\x00", 4));
  SortableList list(registry, kKey);
  Fill(list);
  list.Initialize(&CompareCells);
  EXPECT_EQ(list.Columns()[0].width, 300);
  EXPECT_EQ(list.State().sortColumn, -1);
  EXPECT_EQ(Column(list, 0).size(), 3u);
  for (int column : list.StoredOrder()) EXPECT_LT(column, 3);
}

TEST_F(SortableListTest, ColumnOrderAndTheReorderStyle) {
  SortableList list(registry, kKey);
  Fill(list);
  list.SaveOrder({2, 0, 1});
  EXPECT_EQ(Store().GetString("", "Order", ""), "2,0,1");
  EXPECT_EQ(list.StoredOrder(), (std::vector<int>{2, 0, 1}));
  Store().SetString("", "Order", "1,x,7");
  EXPECT_EQ(list.StoredOrder(), (std::vector<int>{1, 0, 7}));

  EXPECT_EQ(ReorderStyle(0x21, true), 0x31u);
  EXPECT_EQ(ReorderStyle(0x21, false), 0x21u);
  // Off with the bit set: combined with 0xFFFFFFEF by or, as the control does.
  EXPECT_EQ(ReorderStyle(0x31, false), 0xFFFFFFFFu);
}

TEST_F(SortableListTest, ClipboardTextJoinsCellsWithCommasAndRowsWithNewlines) {
  SortableList two(registry, "");
  two.InsertColumn(0, "A", {}, kFormatLeft, 50);
  two.InsertColumn(1, "B", {}, kFormatLeft, 50);
  two.AddRow({"1", "2"});
  two.AddRow({"3", "4"});
  EXPECT_EQ(two.ClipboardText(), "1,2\n3,4");

  SortableList list(registry, "");
  list.InsertColumn(0, "路径", kPath, kFormatLeft, 300);
  list.InsertColumn(1, "只读", kReadOnlyMark, kFormatLeft, 40);
  list.AddRow({"C:\\图纸\\a,b.dwg", "X"});
  list.AddRow({"D:\\表\\c.dwg", ""});  // 表 ends in the byte 0x5C
  list.AddRow({"", ""});
  EXPECT_EQ(list.ClipboardText(), "C:\\图纸\\a,b.dwg,X\nD:\\表\\c.dwg,\n,");

  SortableList empty(registry, "");
  EXPECT_EQ(empty.ClipboardText(), "");
}

class GuardedList final : public SortableList {
 public:
  using SortableList::SortableList;
  bool CanDeleteRows() override { return allow; }
  void GetCellTip(int row, int column, std::string& text) const override {
    if (row == 0 && column == 1) text = "只读文件";
  }
  void CellEditMode(int, int column, ColumnEditMode& mode) const override {
    if (column == 0) mode.showOnly = 1;
  }
  bool allow = false;
};

TEST_F(SortableListTest, DeleteKeyTipsAndEditableCells) {
  GuardedList list(registry, "");
  Fill(list);
  list.Rows()[0].selected = true;
  list.Rows()[2].selected = true;
  EXPECT_EQ(list.OnDeleteKey(), 0u);
  list.allow = true;
  EXPECT_EQ(list.OnDeleteKey(), 2u);
  EXPECT_EQ(Column(list, 0), Lines{"C.dwg"});

  list.AddRow({"x.dwg", "X", "9"});
  EXPECT_EQ(list.CellTip(0, 1), "只读文件");
  EXPECT_EQ(list.CellTip(0, 0), "C.dwg");
  EXPECT_EQ(list.CellTip(9, 0), "");

  ColumnEditMode mode;
  EXPECT_TRUE(list.CanEditCell(0, 0, mode));
  EXPECT_EQ(mode.showOnly, 1);
  EXPECT_EQ(EditorStyle(mode), 0x50000880u);
  EXPECT_TRUE(list.CanEditCell(0, 1, mode));
  EXPECT_EQ(mode, kReadOnlyMark);
  EXPECT_EQ(EditorStyle(mode), 0x50000080u);
  list.OnEndTrack(2, 5, true);
  EXPECT_TRUE(list.CanEditCell(0, 2, mode));
  list.OnEndTrack(2, 4, true);
  EXPECT_FALSE(list.CanEditCell(0, 2, mode));
  EXPECT_FALSE(list.CanEditCell(0, 3, mode));
  EXPECT_FALSE(list.CanEditCell(5, 0, mode));
}

TEST(SortableListClicks, WhatALeftClickDoes) {
  const ClickPolicy full{true, true, false, true};
  struct Case {
    const char* name;
    ClickPolicy policy;
    ListHit hit;
    bool selected;
    ClickAction action;
  } cases[] = {
      {"selected row: edit", full, {1, 1, false, true}, true, ClickAction::StartEdit},
      {"unselected row: the system selects it", full, {1, 1, false, true}, false, ClickAction::System},
      {"edit on first click", {true, true, true, false}, {1, 1, false, true}, false, ClickAction::StartEdit},
      {"check box of column 0", full, {1, 0, true, false}, true, ClickAction::ToggleCheck},
      {"check box and label: edit", full, {1, 0, true, true}, true, ClickAction::StartEdit},
      {"check boxes don't toggle", {true, true, false, false}, {1, 0, true, false}, true, ClickAction::StartEdit},
      {"editing off", {true, false, true, true}, {1, 1, false, true}, true, ClickAction::System},
      {"no LVS_EDITLABELS", {false, true, true, true}, {1, 1, false, true}, true, ClickAction::System},
      {"no row", full, {-1, 0, false, false}, true, ClickAction::System},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(DecideClick(c.policy, c.hit, c.selected), c.action);
  }
  EXPECT_TRUE(IsBelowLastRow(false, 0, 500, 0, 0));
  EXPECT_TRUE(IsBelowLastRow(false, 3, 75, 40, 60));   // above 2*60-40 = 80
  EXPECT_FALSE(IsBelowLastRow(false, 3, 80, 40, 60));
  EXPECT_EQ(EditorLeftOffset(0, false, true), 2);
  EXPECT_EQ(EditorLeftOffset(0, true, false), -1);
  EXPECT_EQ(EditorLeftOffset(1, true, true), 6);
  EXPECT_EQ(EditorLeftOffset(1, false, false), 8);
  EXPECT_EQ(EditorLeftOffset(2, true, false), 5);
}

}  // namespace
}  // namespace tavlet::ui
