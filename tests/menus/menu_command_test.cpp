// Entries chosen through OnCommand after a right click, checked on what the host
// did, shows and prints, and on the bar's state.
#include "menu_fixture.h"

namespace tavlet::menus {
namespace {

constexpr char kImage[] = "D:\\项目\\办公楼\\照片\\入口.jpg";

// The plan, active, under the pointer; a.dwg open before it.
struct PlanWorld : MenuWorld {
  port::Document StartOnPlan() {
    Start();
    h.OpenDrawing("C:\\dwg\\a.dwg");
    plan = OpenPlan();
    Tree(plan);
    h.host.ClearTranscript();
    return plan;
  }
  int Id(const std::string& text) {
    const int id = IdOf(last, text);
    EXPECT_NE(id, 0) << text::ToUtf8(text);
    return id;
  }
  host::AcadDocumentPtr Object(port::Document doc) {
    port::Database db = nullptr;
    h.host.Documents()->DatabaseOf(doc, &db);
    return host::DocumentObjectOf(h.host, db);
  }
  bool Marked(port::Document doc) { return bar->Strip().FindEntry(doc)->modified; }
  std::string ActiveLayout(port::Document doc) { return h.host.Find(doc)->content.activeLayout; }
  Lines Paths() const {
    Lines out;
    for (port::Document d : h.host.OpenDocuments()) out.push_back(h.host.Find(d)->path);
    return out;
  }

  port::Document plan = nullptr;
};

class MenuCommandTest : public ::testing::Test, public PlanWorld {};

TEST_F(MenuCommandTest, TheEmptyRecentEntryActsAsTheFirstWorksetsAllOrDoesNothing) {
  for (bool withWorksets : {true, false}) {
    SCOPED_TRACE(withWorksets);
    PlanWorld w;
    if (withWorksets) {
      w.AddWorksets("[Site plans]\n文件1=C:\\dwg\\b.dwg,0\n[Other]\n文件1=C:\\dwg\\c.dwg,0\n");
      w.h.AddDrawing("C:\\dwg\\b.dwg");
    }
    w.Start();
    w.Tree(nullptr);
    ASSERT_EQ(MenuWorld::IdOf(w.last, texts::NoRecentFiles), kFirstListId);
    EXPECT_EQ(w.menu->OnCommand(kFirstListId), !withWorksets);
    EXPECT_EQ(w.Paths(), withWorksets ? Lines{"C:\\dwg\\b.dwg"} : Lines{});
    EXPECT_TRUE(w.Boxes().empty());
  }
}

TEST_F(MenuCommandTest, SelectOfANamedWorksetOpensTheTwinsWholeText) {
  AddWorksets("[Site plans]\n文件1=C:\\dwg\\b.dwg,0\n");
  h.AddDrawing("C:\\dwg\\b.dwg");
  Start();
  Tree(nullptr);
  // The 8-byte test against the 6-byte marker fails for every named workset:
  // "Select..." looks for a workset named "<选择>Site plans", which is empty.
  EXPECT_FALSE(menu->OnCommand(Id(texts::WorksetSelect)));
  EXPECT_TRUE(Paths().empty());
  EXPECT_EQ(Boxes(), Lines{workset_texts::kNoFiles});
}

// One entry of the plan's lists chosen after a right click on it.
TEST(MenuListCommands, EachEntryActsOnThePlan) {
  using Step = std::function<void(PlanWorld&)>;
  const Step none = [](PlanWorld&) {};
  struct Case {
    const char* what;
    Step before;  // before the module loads
    Step after;   // after the right click
    std::string entry;
    bool taken;
    std::size_t questions;
    std::string layout;
    Lines actions;
    bool marked;
    Lines boxes;
    std::string transcript;
    Lines shell;
  };
  const Step toLayout1 = [](PlanWorld& w) {
    w.Object(w.plan).PutActiveLayout(w.Object(w.plan).Layouts().Item("布局1"));
    w.Tree(w.plan);
  };
  const Step image = [](PlanWorld& w) { w.h.files.AddFile(kImage, "jpg"); };
  // clang-format off
  const Case cases[] = {
      {"a model view chosen from a layout goes to model space first", none, toLayout1,
       "入口", false, 0, "Model", {"view 入口"}, true, {}, "", {}},
      {"a paper view with its layout zooms on that layout", none, none,
       "Sheet A", false, 0, "布局1", {"zoom window 0,0 297,210"}, true, {}, "", {}},
      {"a paper view whose layout is declined does nothing more", none, none,
       "Old sheet", true, 1, "布局1", {}, false, {}, "", {}},
      {"choosing the active layout changes nothing", none, none,
       "Model", false, 0, "Model", {}, false, {}, "", {}},
      {"another layout", none, none, "Layout2", false, 0, "Layout2", {}, true, {}, "", {}},
      {"a layer state restores and marks the drawing", none, none,
       "墙体关闭", false, 0, "Model", {"layer state 墙体关闭", "regen all"}, true, {}, "", {}},
      {"a failed layer state restore leaves the drawing unmarked", none,
       [](PlanWorld& w) { w.h.host.Find(w.plan)->content.layerStates.clear(); },
       "墙体关闭", false, 0, "Model", {}, false, {},
       "Error restoring layer state 墙体关闭 - eInvalidInput\n", {}},
      {"a hyperlink holding a URL ends in the missing file box", none, none,
       "details", false, 0, "Model", {}, false,
       {"指定路径的文件不存在 -\nhttp://example.com/details"}, "", {}},
      {"an image that exists goes to the shell", image, none,
       "入口.jpg", false, 0, "Model", {}, false, {}, "", {std::string("shell ") + kImage}},
      {"without the OLE link manager a dynamic id ends in its box", none,
       [](PlanWorld& w) { w.h.host.SetOleLinkManagerMissing(true); },
       "Layout2", false, 0, "Model", {}, false, {texts::OleLinkManagerMissing}, "", {}},
      {"an automation failure shows its description alone", none,
       [](PlanWorld& w) {
         w.h.host.Faults().Fail("AcadLayouts::Item", 1, port::kFail, "No such layout");
       },
       "Layout2", false, 0, "Model", {}, false, {"No such layout"}, "", {}},
      {"a host exception is the dispatcher's line", none,
       [](PlanWorld& w) {
         w.h.host.Faults().Fail("AcadDocument::Activate", 1, port::kHostException, "");
       },
       "Layout2", false, 0, "Model", {}, false, {}, texts::UnknownError, {}},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    PlanWorld w;
    c.before(w);
    w.StartOnPlan();
    c.after(w);
    EXPECT_EQ(w.menu->OnCommand(w.Id(c.entry)), c.taken);
    EXPECT_EQ(w.chooser.asked.size(), c.questions);
    EXPECT_EQ(w.ActiveLayout(w.plan), c.layout);
    EXPECT_EQ(w.Actions(w.plan), c.actions);
    EXPECT_EQ(w.Marked(w.plan), c.marked);
    EXPECT_EQ(w.Boxes(), c.boxes);
    EXPECT_EQ(w.h.host.Transcript(), c.transcript);
    EXPECT_EQ(w.shell.Calls(), c.shell);
    EXPECT_FALSE(w.h.host.IsLocked(w.plan));
  }
}

TEST_F(MenuCommandTest, ARecentFileOpens) {
  StartOnPlan();
  h.host.CloseDrawing(h.host.OpenDocuments().front());
  EXPECT_FALSE(menu->OnCommand(Id("C:\\dwg\\a.dwg")));
  EXPECT_EQ(Paths(), (Lines{kPlanPath, "C:\\dwg\\a.dwg"}));
}

TEST_F(MenuCommandTest, APaperViewWithoutItsLayoutAsksOnceAndRemembers) {
  StartOnPlan();
  chooser.answer = {"Layout2"};
  EXPECT_FALSE(menu->OnCommand(Id("Old sheet")));
  EXPECT_EQ(chooser.asked.size(), 1u);
  EXPECT_EQ(ActiveLayout(plan), "Layout2");
  EXPECT_EQ(Actions(plan), Lines{"zoom window -40,-15 60,35"});
  EXPECT_TRUE(Marked(plan));

  Object(plan).PutActiveLayout(Object(plan).Layouts().Item("Model"));
  Tree(plan);
  EXPECT_FALSE(menu->OnCommand(Id("Old sheet")));
  EXPECT_EQ(chooser.asked.size(), 1u);
  EXPECT_EQ(ActiveLayout(plan), "Layout2");
}

TEST_F(MenuCommandTest, AFoundSheetSetOpensInTheManagerWhenSoSet) {
  h.files.AddFile("D:\\sets\\project.dst", "");
  h.SetSetting(keys::OpenSheetSetInSSM, 1);
  StartOnPlan();
  sheetSets->sheetSetSearchPath = "D:\\sets";
  Tree(plan);
  EXPECT_NE(Compact(last).find("> 找到 {5003 project}"), std::string::npos)
      << text::ToUtf8(Compact(last));
  EXPECT_FALSE(menu->OnCommand(sheetSets->foundSheetSets.begin()->first));
  EXPECT_EQ(h.host.SentCommands(), Lines{"-OPENSHEETSET \"D:\\sets\\project.dst\"\n"});
}

TEST_F(MenuCommandTest, ATemplateMakesANewDrawingAndNotFoundIsRefusedByTheHost) {
  AddTemplate("acad.dwt");
  StartOnPlan();
  const std::size_t before = h.host.OpenDocuments().size();
  EXPECT_FALSE(menu->OnCommand(Id("acad")));
  EXPECT_EQ(h.host.OpenDocuments().size(), before + 1);
  EXPECT_TRUE(Boxes().empty());

  h.files.Remove(std::string(kTemplates) + "acad.dwt");
  Tree(plan);
  const int notFound = menu->Lists().templates.begin()->first;
  EXPECT_FALSE(menu->OnCommand(notFound));
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(Boxes()[0].find("错误"), std::string::npos) << text::ToUtf8(Boxes()[0]);
  EXPECT_EQ(h.host.OpenDocuments().size(), before + 1);
}

TEST_F(MenuCommandTest, NotFoundEntriesOfTheDrawingsListsAreTakenAndDoNothing) {
  Start();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  Tree(a);
  const std::size_t boxes = Boxes().size();
  EXPECT_TRUE(menu->OnCommand(menu->Lists().layerStates.begin()->first));
  EXPECT_TRUE(menu->OnCommand(menu->Lists().views.begin()->first));
  EXPECT_TRUE(menu->OnCommand(sheetSets->recentSheetSets.begin()->first));
  EXPECT_TRUE(menu->OnCommand(sheetSets->foundSheetSets.begin()->first));
  EXPECT_EQ(Boxes().size(), boxes);
  EXPECT_TRUE(Actions(a).empty());
}

TEST_F(MenuCommandTest, ADrawingsListIdOnEmptyBarFallsThrough) {
  StartOnPlan();
  Tree(nullptr);
  // The lists were filled for the range test; nothing acts on them.
  for (int id : {menu->Lists().layouts.begin()->first, menu->Lists().layerStates.begin()->first,
                 menu->Lists().views.begin()->first}) {
    EXPECT_FALSE(menu->OnCommand(id)) << id;
  }
  EXPECT_TRUE(Actions(plan).empty());
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(h.host.Transcript(), "");
}

// The modal loop of the popup lets the drawing go before the choice arrives;
// contextDocument is taken as it was, and nothing acts on the closed drawing.
TEST_F(MenuCommandTest, AChoiceForADrawingClosedMeanwhileActsOnNothing) {
  StartOnPlan();
  const int ids[] = {Id("Layout2"),   Id("墙体关闭"),      Id("入口"),      Id("Sheet A"),
                     ids::OpenFolder, ids::RefreshPreview, ids::LockPreview};
  h.host.CloseDrawing(plan);
  h.host.ClearTranscript();
  for (int id : ids) {
    SCOPED_TRACE(id);
    menu->OnCommand(id);
    EXPECT_TRUE(Actions(plan).empty());
    for (port::Document doc : h.host.OpenDocuments()) EXPECT_FALSE(h.host.IsLocked(doc));
  }
  EXPECT_EQ(h.host.OpenDocuments().size(), 1u);
  EXPECT_TRUE(shell.Calls().empty());
  // The lists' actions show the host's description alone, the refresh its
  // handler's box; the folder and the lock find no drawing to act on.
  const std::string gone = "The document is not open.";
  EXPECT_EQ(Boxes(), (Lines{gone, gone, gone, gone, "错误 [0x80070057]\n" + gone}));
  EXPECT_EQ(h.host.Transcript(), "");
}

TEST_F(MenuCommandTest, TheSmallFixedHandlers) {
  StartOnPlan();
  h.host.ClearTranscript();
  EXPECT_TRUE(menu->OnCommand(ids::OpenFolder));
  EXPECT_EQ(shell.Calls(), Lines{"shell D:\\项目\\办公楼\\"});

  EXPECT_TRUE(menu->OnCommand(ids::LockPreview));
  EXPECT_TRUE(bar->Strip().FindEntry(plan)->previewLocked);
  EXPECT_TRUE(menu->OnCommand(ids::LockPreview));
  EXPECT_FALSE(bar->Strip().FindEntry(plan)->previewLocked);

  for (const auto& entry : bar->Strip().Entries()) entry->previewDirty = false;
  port::Document a = h.host.OpenDocuments().front();
  h.host.Activate(a);
  h.host.Faults().ClearLog();
  EXPECT_TRUE(menu->OnCommand(ids::RefreshPreview));
  // The plan was activated for it, and the drawing active before is again.
  EXPECT_TRUE(bar->Strip().FindEntry(plan)->previewDirty);
  EXPECT_EQ(h.host.MdiActive(), a);

  for (const auto& entry : bar->Strip().Entries()) entry->previewDirty = false;
  EXPECT_TRUE(menu->OnCommand(ids::RefreshAllPreviews));
  for (const auto& entry : bar->Strip().Entries()) EXPECT_TRUE(entry->previewDirty);
  EXPECT_EQ(h.host.MdiActive(), a);

  const std::size_t calls = h.host.Faults().Log().size();
  EXPECT_TRUE(menu->OnCommand(ids::CurrentDocumentOnly));
  EXPECT_EQ(h.host.Faults().Log().size(), calls + 1);
  EXPECT_FALSE(menu->OnCommand(4040));
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(h.host.Transcript(), "");
}

TEST_F(MenuCommandTest, FixedIdsReachTheirHandlers) {
  StartOnPlan();
  EXPECT_TRUE(menu->OnCommand(ids::OpenSheetSetInManager));
  EXPECT_EQ(sheetSets->OpenSheetSetInSSM, 1);
  Tree(plan);
  EXPECT_NE(DescribeMenu(last).find("4032 在管理器中打开图纸集 (checked)"), std::string::npos);

  int about = 0;
  menu = std::make_unique<ContextMenu>(
      MenuServices{h.host, host::GetAcadApplication(h.host), h.store, h.files, *bar, *ops, shell,
                   *worksets, *sheetSets, chooser, MenuDialogs{[&] { ++about; }, {}, {}}});
  EXPECT_TRUE(menu->OnCommand(ids::About));
  EXPECT_TRUE(menu->OnCommand(ids::Options));  // no dialog given: taken, nothing happens
  EXPECT_EQ(about, 1);

  ops->contextDocument = plan;
  EXPECT_TRUE(menu->OnCommand(ids::Close));
  EXPECT_EQ(Paths(), Lines{"C:\\dwg\\a.dwg"});
}

}  // namespace
}  // namespace tavlet::menus

namespace tavlet::menus {
namespace {

// Each fixed id of the all-drawings block and the submenus reaches its handler,
// seen by what the handler leaves behind.
TEST(MenuFixedCommands, EachIdReachesItsHandler) {
  struct Case {
    int id;
    std::function<bool(MenuWorld&)> done;
  };
  auto sent = [](const std::string& command) {
    return [command](MenuWorld& w) {
      const Lines& c = w.h.host.SentCommands();
      return std::find(c.begin(), c.end(), command) != c.end();
    };
  };
  auto browsed = [](const std::string& title) {
    return [title](MenuWorld& w) {
      return !w.shell.Calls().empty() && w.shell.Calls()[0].rfind("browse " + title, 0) == 0;
    };
  };
  const Case cases[] = {
      {ids::SaveAll, sent("_.QSAVE\n")},
      {ids::CloseAllNoSave, [](MenuWorld& w) { return w.h.host.OpenDocuments().empty(); }},
      {ids::Close, [](MenuWorld& w) { return w.h.host.OpenDocuments().size() == 1; }},
      {ids::QuickPlotAll, [](MenuWorld& w) { return w.h.host.Plots().size() == 2; }},
      {ids::ExitNoSave, [](MenuWorld& w) { return w.h.host.QuitRequested(); }},
      {ids::NewDrawing, [](MenuWorld& w) { return w.h.host.OpenDocuments().size() == 3; }},
      {ids::ChangeTemplatePath, browsed("选择新的模板路径")},
      {ids::SheetSetSearchPath, browsed(sheetsets::command_texts::kSearchPathTitle)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.id);
    MenuWorld w;
    w.Start();
    w.h.OpenDrawing("C:\\dwg\\a.dwg");
    w.Tree(w.OpenPlan());
    w.h.host.QueueBoxAnswer(port::kAnswerYes);  // for the question of closing without saving
    EXPECT_TRUE(w.menu->OnCommand(c.id));
    EXPECT_TRUE(c.done(w));
  }
}

}  // namespace
}  // namespace tavlet::menus
