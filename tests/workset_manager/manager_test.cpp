#include "workset_manager/manager_fixture.h"

namespace tavlet {
namespace {

using operations::PathOf;

class WorksetManagerTest : public ::testing::Test, public ManagerWorld {};

// Members the manager lists are those keyed "File...": a file written by another
// tool, or by hand, in that form.
constexpr const char kListed[] =
    "[Site]\r\n"
    "File1=C:\\dwg\\1.dwg,0\r\n"
    "File2=C:\\dwg\\2.dwg,1\r\n"
    "File3=C:\\dwg\\3.dwg,0\r\n"
    "[alpha]\r\n";

TEST_F(WorksetManagerTest, OpensWithSortedNamesItsHintsAndTheWorksetShownLast) {
  struct Case {
    const char* file;
    const char* recent;
    Lines names;
    const char* comboText;
    const char* emptyText;
    Lines rows;
  };
  const Case cases[] = {
      {nullptr, "", {}, manager_texts::kTypeAName, manager_texts::kEmptyCreateAbove, {}},
      {kListed, "", {"alpha", "Site"}, manager_texts::kChooseOne, manager_texts::kEmptyChooseAbove, {}},
      {kListed, "Site", {"alpha", "Site"}, "Site", manager_texts::kEmptyChooseAbove,
       {"C:\\dwg\\1.dwg|", "C:\\dwg\\2.dwg|X", "C:\\dwg\\3.dwg|"}},
      // The look-up is exact: a name only like the stored one selects nothing.
      {kListed, "site ", {"alpha", "Site"}, manager_texts::kChooseOne, manager_texts::kEmptyChooseAbove, {}},
  };
  for (const Case& c : cases) {
    ManagerWorld world;
    if (c.file) world.UseFile(c.file);
    WriteString(world.store, keys::RecentWorkset, c.recent);
    world.Manager();
    SCOPED_TRACE(c.recent);
    EXPECT_EQ(world.view.names, c.names);
    EXPECT_EQ(world.view.comboText, c.comboText);
    EXPECT_EQ(world.view.emptyText, c.emptyText);
    EXPECT_EQ(world.view.RowLines(), c.rows);
    EXPECT_TRUE(world.view.preview.empty());
    EXPECT_TRUE(world.Boxes().empty());
  }
}

TEST_F(WorksetManagerTest, NewNamesAreCheckedAndGoodOnesWrittenAtOnce) {
  const std::string longName(300, 'n');
  struct Case {
    std::string typed;
    const char* box;  // null: created
    std::string file;
  };
  const Case cases[] = {
      {"", manager_texts::kNeedsAName, "[abc]\r\n"},
      {manager_texts::kTypeAName, manager_texts::kNeedsAName, "[abc]\r\n"},
      {manager_texts::kChooseOne, manager_texts::kNeedsAName, "[abc]\r\n"},
      {"ABC", manager_texts::kNameInUse, "[abc]\r\n"},
      {"Site plans", nullptr, "[abc]\r\n[Site plans]\r\n"},
      {"总图", nullptr, "[abc]\r\n[总图]\r\n"},
      {"a=b", nullptr, "[abc]\r\n[a=b]\r\n"},
      {"a]b", nullptr, "[abc]\r\n[a]b]\r\n"},
      {longName, nullptr, "[abc]\r\n[" + longName + "]\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    ManagerWorld world;
    world.UseFile("[abc]\r\n");
    WorksetManager& manager = world.Manager();
    world.view.Type(manager, c.typed);
    EXPECT_TRUE(world.view.createEnabled);
    manager.OnCreate();
    EXPECT_EQ(world.FileText(), c.file);
    if (c.box) {
      EXPECT_EQ(world.Boxes(), Lines{c.box});
      EXPECT_EQ(world.view.comboFocused, 1);
      EXPECT_EQ(world.view.selection, -1);
    } else {
      EXPECT_TRUE(world.Boxes().empty());
      ASSERT_GE(world.view.selection, 0);
      EXPECT_EQ(world.view.ComboItem(world.view.selection), c.typed);
      EXPECT_TRUE(world.view.rows.empty());
      // A manager opened afterwards finds the same name in the file.
      ManagerWorld again;
      again.UseFile(world.FileText());
      again.Manager();
      EXPECT_NE(again.view.FindComboExact(c.typed), -1);
    }
  }
}

TEST_F(WorksetManagerTest, ActionsWithoutACreatedWorksetSayWhyAndWriteNothing) {
  using Action = void (WorksetManager::*)();
  const Action actions[] = {&WorksetManager::OnDelete,         &WorksetManager::OnAddOpenDrawings,
                            &WorksetManager::OnBrowse,         &WorksetManager::OnRemoveSelected,
                            &WorksetManager::OnAddReferences,  &WorksetManager::OnOpenSelected};
  for (Action action : actions) {
    ManagerWorld world;
    world.UseFile("[abc]\r\n");
    world.Open(PathOf(1));
    world.references = {"C:\\x.dwg"};
    world.view.browse = {true, {"C:\\y.dwg"}, 0};
    WorksetManager& manager = world.Manager(true);
    world.view.Type(manager, "typed");
    (manager.*action)();
    world.view.Type(manager, "");
    (manager.*action)();
    EXPECT_EQ(world.Boxes(), (Lines{"typed 已经被添加到工作集!", manager_texts::kNoWorksetChosen}));
    EXPECT_EQ(world.FileText(), "[abc]\r\n");
    EXPECT_TRUE(world.opened.empty());
    // "None chosen" fills the combo again, which puts its hint back.
    EXPECT_EQ(world.view.comboText, manager_texts::kChooseOne);
  }
}

TEST_F(WorksetManagerTest, OpenDrawingsGoInUnmarkedAndTheWriterKeysHideThemFromTheList) {
  UseFile("[Site]\r\n");
  Open(PathOf(1));
  files.AddFile(PathOf(2), operations::Drawing(PathOf(2)));
  ASSERT_NE(host.OpenDrawing(PathOf(2), /*readOnly=*/true), nullptr);
  WorksetManager& manager = Manager();
  view.Pick(manager, "Site");
  EXPECT_EQ(view.emptyText, manager_texts::kEmptyNoFilesYet);
  EXPECT_EQ(ReadString(store, keys::RecentWorkset), "Site");
  manager.OnAddOpenDrawings();
  // The automation's read-only test never holds, so the second drawing is
  // unmarked too.
  EXPECT_EQ(FileText(), "[Site]\r\n文件1=C:\\dwg\\1.dwg,0\r\n文件2=C:\\dwg\\2.dwg,0\r\n");
  EXPECT_TRUE(view.rows.empty());
  // The reader sees no member, so adding again repeats them, numbered on.
  manager.OnAddOpenDrawings();
  EXPECT_NE(FileText().find("文件4=C:\\dwg\\2.dwg,0\r\n"), std::string::npos);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(WorksetManagerTest, ReferencesAndBrowsedFilesAreAddedBehindTheMembersSkippingThoseIn) {
  UseFile(kListed);
  WorksetManager& manager = Manager();
  view.Pick(manager, "Site");
  references = {"C:\\dwg\\2.DWG", "C:\\ref\\base.dwg"};
  manager.OnAddReferences();
  EXPECT_EQ(Boxes(), Lines{"1 文件已经在选定的工作集中"});
  EXPECT_NE(FileText().find("File3=C:\\dwg\\3.dwg,0\r\n文件4=C:\\ref\\base.dwg,0\r\n"), std::string::npos);
  referencesOk = false;
  references = {"C:\\ref\\other.dwg"};
  manager.OnAddReferences();
  EXPECT_EQ(FileText().find("other"), std::string::npos);

  struct Browse {
    BrowseOutcome outcome;
    const char* box;  // null: none
    const char* added;
  };
  const Browse browses[] = {
      {{true, {"C:\\b\\one.txt", "C:\\b\\two.pdf"}, 0}, nullptr, "文件5=C:\\b\\one.txt,0\r\n文件6=C:\\b\\two.pdf,0\r\n"},
      {{true, {}, 0}, manager_texts::kNoFileChosen, nullptr},
      {{false, {}, kBrowseBufferTooSmall}, manager_texts::kTooManyFiles, nullptr},
      {{false, {}, 0}, nullptr, nullptr},
  };
  for (const Browse& b : browses) {
    const std::string before = FileText();
    const std::size_t boxes = Boxes().size();
    view.browse = b.outcome;
    manager.OnBrowse();
    if (b.box) EXPECT_EQ(Boxes().back(), b.box);
    else EXPECT_EQ(Boxes().size(), boxes);
    if (b.added) EXPECT_NE(FileText().find(std::string("File3=C:\\dwg\\3.dwg,0\r\n文件4=C:\\ref\\base.dwg,0\r\n") + b.added), std::string::npos);
    else EXPECT_EQ(FileText(), before);
  }
}

TEST_F(WorksetManagerTest, RemovingAndEditingRewriteTheSectionNumberedFromOne) {
  UseFile(kListed);
  WorksetManager& manager = Manager();
  view.Pick(manager, "Site");
  manager.OnRemoveSelected();
  EXPECT_EQ(Boxes(), Lines{manager_texts::kNothingSelected});
  view.selected = {1};
  manager.OnRemoveSelected();
  EXPECT_EQ(FileText(), "[Site]\r\n文件1=C:\\dwg\\1.dwg,0\r\n文件2=C:\\dwg\\3.dwg,0\r\n[alpha]\r\n");

  // An edit rewrites from the rows as they stood, then the cell takes the text;
  // with the writer's keys the list is empty by then.
  UseFile(kListed);
  view.Pick(manager, "Site");
  manager.OnEndLabelEdit(0, 0, "C:\\new.dwg");
  EXPECT_EQ(FileText(),
            "[Site]\r\n文件1=C:\\dwg\\1.dwg,0\r\n文件2=C:\\dwg\\2.dwg,1\r\n文件3=C:\\dwg\\3.dwg,0\r\n[alpha]\r\n");
  EXPECT_TRUE(view.rows.empty());
  // Another column is no edit of the workset.
  UseFile(kListed);
  view.Pick(manager, "Site");
  manager.OnEndLabelEdit(0, 2, "x");
  EXPECT_EQ(FileText(), kListed);
}

TEST_F(WorksetManagerTest, DeletingAsksAndOnlyYesRemovesTheSection) {
  UseFile(kListed);
  WorksetManager& manager = Manager();
  view.Pick(manager, "Site");
  host.QueueBoxAnswer(port::kAnswerNo);
  manager.OnDelete();
  EXPECT_EQ(FileText(), kListed);
  host.QueueBoxAnswer(port::kAnswerYes);
  manager.OnDelete();
  EXPECT_EQ(Boxes(), (Lines{"移除 Site?", "移除 Site?"}));
  EXPECT_EQ(FileText(), "[alpha]\r\n");
  EXPECT_EQ(view.names, Lines{"alpha"});
  EXPECT_EQ(view.comboText, manager_texts::kChooseOne);
  // The last one gone, the hint asks for a name again.
  view.Pick(manager, "alpha");
  host.QueueBoxAnswer(port::kAnswerYes);
  manager.OnDelete();
  EXPECT_EQ(view.comboText, manager_texts::kTypeAName);
  EXPECT_EQ(view.emptyText, manager_texts::kEmptyCreateAbove);
}

TEST_F(WorksetManagerTest, OpeningSelectedRowsReportsAMissingFileAndOpensTheOthers) {
  UseFile(kListed);
  files.AddFile(PathOf(1), operations::Drawing(PathOf(1)));
  files.AddFile(PathOf(3), operations::Drawing(PathOf(3)));
  WorksetManager& manager = Manager();
  view.Pick(manager, "Site");
  manager.OnOpenSelected();
  EXPECT_EQ(Boxes(), Lines{manager_texts::kNothingSelected});
  view.selected = {0, 1, 2};
  manager.OnRowSelectionChanged();
  EXPECT_EQ(view.preview, (Lines{PathOf(1), PathOf(2), PathOf(3)}));
  manager.OnOpenSelected();
  EXPECT_EQ(Boxes().back(), "指定路径的文件不存在 -\nC:\\dwg\\2.dwg");
  long count = 0;
  host.Documents()->DocumentCount(&count);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(view.selected, (std::vector<int>{0, 1, 2}));  // the dialog stays as it was
}

TEST_F(WorksetManagerTest, SheetSetsNeedALaterHostAndAChoiceFromThePopup) {
  UseFile(kListed);
  sheetsets::SheetSetCommands sheetSets(sheetsets::SheetSetServices{
      host, host::GetAcadApplication(host), files, store, shell, nullptr, nullptr, nullptr, 16.1});
  worksets = std::make_unique<WorksetStore>(Services());
  WorksetManagerServices services{*worksets, *host.Boxes(), files, store, host::GetAcadApplication(host),
                                  nullptr,    0,     nullptr, nullptr, {}};
  services.sheetSets = &sheetSets;
  for (double version : {16.0, 16.1}) {
    services.hostVersion = version;
    WorksetManager manager(services, view);
    manager.OnInitDialog();
    view.Pick(manager, "Site");
    view.menuChoice = 4711;
    manager.OnAddFromSheetSet();
  }
  EXPECT_EQ(Boxes(), Lines{manager_texts::kNeedsSheetSets});
  // Both lists empty: each submenu holds its grayed placeholder, and an id that
  // is no sheet set's ends the action.
  EXPECT_EQ(view.shownMenu, "> 最近\n  100 没有找到 (grayed)\n> 找到\n  101 没有找到 (grayed)\n");
  EXPECT_EQ(FileText(), kListed);

  // A sheet set found below the search path, chosen: its ticked sheets go in.
  files.AddFolder("C:\\sets\\");
  files.AddFile("C:\\sets\\office.dst", "");
  sheetSets.sheetSetSearchPath = "C:\\sets\\";
  struct Sheets final : sheetsets::SheetSetDialogRunner {
    bool Run(const std::string& path, std::vector<std::string>& selected) override {
      asked.push_back(path);
      selected = {"C:\\sheets\\A-101.dwg", "C:\\dwg\\1.dwg"};
      return true;
    }
    Lines asked;
  } dialog;
  services.sheetSetDialog = &dialog;
  WorksetManager manager(services, view);
  manager.OnInitDialog();
  view.Pick(manager, "Site");
  view.menuChoice = 101;
  manager.OnAddFromSheetSet();
  EXPECT_EQ(dialog.asked, Lines{"C:\\sets\\office.dst"});
  EXPECT_EQ(view.shownMenu, "> 最近\n  100 没有找到 (grayed)\n> 找到\n  101 C:\\sets\\office.dst\n");
  EXPECT_EQ(Boxes().back(), "1 文件已经在选定的工作集中");
  EXPECT_NE(FileText().find("File3=C:\\dwg\\3.dwg,0\r\n文件4=C:\\sheets\\A-101.dwg,0\r\n"), std::string::npos);
}

TEST_F(WorksetManagerTest, AFileMadeReadOnlyOrRemovedWhileOpenLosesNothing) {
  UseFile(kListed);
  WorksetManager& manager = Manager();
  view.Pick(manager, "Site");
  files.SetReadOnly(kUserFile, true);
  view.Type(manager, "new");
  manager.OnCreate();
  view.Pick(manager, "Site");
  view.selected = {0};
  manager.OnRemoveSelected();
  references = {"C:\\r.dwg"};
  manager.OnAddReferences();
  host.QueueBoxAnswer(port::kAnswerYes);
  manager.OnDelete();
  EXPECT_EQ(FileText(), kListed);
  EXPECT_EQ(Boxes(), Lines{"移除 Site?"});

  // Gone: the actions read an empty file, and the next write starts a new one.
  files.SetReadOnly(kUserFile, false);
  ASSERT_EQ(files.Remove(kUserFile), FileError::None);
  view.Pick(manager, "Site");
  EXPECT_TRUE(view.rows.empty());
  manager.OnAddReferences();
  EXPECT_EQ(FileText(), "[Site]\r\n文件1=C:\\r.dwg,0\r\n");
}

TEST(WorksetManagerLayout, FollowsTheDialogUnitsOfTheFont) {
  const ui::FontDialogUnits units(6, 13);  // 1.5 pixels a unit across, 1.625 down
  const WorksetManagerLayout l = LayOutWorksetManager({0, 0, 600, 400}, units);
  EXPECT_EQ(l.label, (ui::Rect{2, 2, 62, 28}));
  EXPECT_EQ(l.combo, (ui::Rect{62, 2, 550, 28}));
  EXPECT_EQ(l.create, (ui::Rect{550, 2, 574, 28}));
  EXPECT_EQ(l.remove, (ui::Rect{574, 2, 598, 28}));
  EXPECT_EQ(l.group, (ui::Rect{2, 28, 598, 398}));  // 4 units down: 6.5 pixels, rounded up
  // Inside: 6 pixels in, 16 down; a gap of 36 pixels after the second button.
  EXPECT_EQ(l.open, (ui::Rect{8, 44, 32, 70}));
  EXPECT_EQ(l.removeFiles.left, 32);
  EXPECT_EQ(l.browse.left, 92);
  EXPECT_EQ(l.addReferences.left, 116);
  EXPECT_EQ(l.addOpen.left, 140);
  EXPECT_EQ(l.addSheetSet, (ui::Rect{164, 44, 188, 70}));
  EXPECT_EQ(l.list, (ui::Rect{8, 72, 487, 391}));
  EXPECT_EQ(l.preview, (ui::Rect{487, 72, 592, 391}));
}

}  // namespace
}  // namespace tavlet
