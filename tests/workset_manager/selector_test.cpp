#include "workset_manager/manager_fixture.h"
#include "worksets/workset_file_selection.h"

namespace tavlet {
namespace {

class FileSelectorTest : public ::testing::Test, public WorksetWorld {};

TEST_F(FileSelectorTest, ListsEveryEntryWhateverItsKeyAndGivesTheTickedInDialogOrder) {
  UseFile(
      "[Mixed]\r\n"
      "文件1=C:\\a.dwg,1\r\n"
      "File2=C:\\b,c.dwg,0\r\n"
      "other=C:\\d.txt\r\n"
      "文件4= C:\\e.dwg , 1 \r\n");
  ProfileFile file(files, kUserFile, true);
  std::vector<SelectorRow> rows = ReadSelectorRows(file, "Mixed", files);
  Lines shown;
  for (const SelectorRow& row : rows) shown.push_back(row.path + "|" + row.readOnlyMark);
  EXPECT_EQ(shown, (Lines{"C:\\a.dwg|X", "C:\\b,c.dwg|", "C:\\d.txt|", "C:\\e.dwg|X"}));

  std::vector<DrawingPath> ticked;
  EXPECT_FALSE(CollectTicked(rows, *host.Boxes(), files, ticked));
  EXPECT_EQ(BoxTexts(), Lines{selector_texts::kNothingTicked});

  // The user sorted the list by a header: the dialog's order is what counts.
  std::swap(rows[0], rows[3]);
  rows[0].checked = rows[2].checked = rows[3].checked = true;
  rows[3].readOnlyMark = "x";
  ASSERT_TRUE(CollectTicked(rows, *host.Boxes(), files, ticked));
  Lines got;
  for (const DrawingPath& p : ticked) got.push_back(p.Full + (p.readOnly ? " ro" : " rw"));
  EXPECT_EQ(got, (Lines{"C:\\e.dwg ro", "C:\\d.txt rw", "C:\\a.dwg ro"}));
  EXPECT_EQ(BoxTexts().size(), 1u);
}

TEST(FileSelectorLayout, PutsTheButtonsInTheBottomStripAtTheRight) {
  const ui::FontDialogUnits units(6, 13);
  // 35 units across: 52.5 pixels, rounded up.
  const SelectorLayout l = LayOutSelector({0, 0, 300, 200}, units);
  EXPECT_EQ(l.list, (ui::Rect{3, 3, 297, 173}));
  EXPECT_EQ(l.ok, (ui::Rect{191, 173, 244, 197}));
  EXPECT_EQ(l.cancel, (ui::Rect{244, 173, 297, 197}));
}

}  // namespace
}  // namespace tavlet
