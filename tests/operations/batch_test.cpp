// The walks over all drawings, as sequences of notices, boxes, commands and
// closes on the simulated host.
#include "ops_fixture.h"

namespace tavlet::operations {
namespace {

using BatchTest = OpsFixture;

TEST_F(BatchTest, SaveAllSavesFromTheLastToTheFirstAndReturnsToTheActiveDrawing) {
  std::vector<port::Document> docs =
      OpenMany({"dbmod 1\n", "read-only yes\ndbmod 1\n",
                "layout \"A1\"\nactive-layout \"A1\"\ncvport 3\ndbmod 1\n", "dbmod 1\n"});
  host.Activate(docs[1]);
  Ops();
  host.Faults().ClearLog();
  Ops().OnSaveAll();
  EXPECT_EQ(host.Notices(), (Lines{"start TL_SaveAll", "ended TL_SaveAll"}));
  // The notice brackets nothing: both halves come before the first drawing is touched.
  const Lines& log = host.Faults().Log();
  ASSERT_GE(log.size(), 3u);
  EXPECT_EQ(log[0], "Editor::ModelessOperationStart");
  EXPECT_EQ(log[1], "Editor::ModelessOperationEnded");
  EXPECT_EQ(TranscriptLines(), (Lines{"Command: _.QSAVE", "Command: _.PSPACE", "Command: _.QSAVE",
                                      "Command: _.QSAVE"}));
  EXPECT_EQ(Dbmod(docs[0]), 0);
  EXPECT_EQ(Dbmod(docs[1]), 1);  // read-only: untouched
  EXPECT_EQ(Dbmod(docs[2]), 0);
  EXPECT_EQ(Dbmod(docs[3]), 0);
  EXPECT_EQ(host.MdiActive(), docs[1]);
  EXPECT_EQ(windows.LogOf("RedrawWindow"), (Lines{"RedrawWindow MvTavlet 0x105"}));
  EXPECT_TRUE(host.ShownBoxes().empty());
}

TEST_F(BatchTest, SaveAllGoesOnPastAFailedSaveButNotPastAFailedWalk) {
  struct Case {
    const char* what;
    const char* call;
    int occurrence;
    Lines boxes;
    std::vector<long> dbmods;
    bool backToActive;
  };
  const Lines busy = {"错误 [0x80004005]\nbusy"};
  // clang-format off
  const std::vector<Case> cases = {
      {"the second save fails", "AcadDocument::SendCommand", 2, busy, {0, 1, 0}, true},
      {"the second Item fails", "AcadDocuments::Item", 2, busy, {1, 1, 0}, false},
      {"Count fails", "AcadDocuments::Count", 1, busy, {1, 1, 1}, true},
      {"a host exception in a save", "AcadDocument::Activate", 1, {}, {0, 0, 1}, true},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Environment e;
    DrawingOperations ops(e.Services());
    std::vector<port::Document> docs = e.OpenMany({"dbmod 1\n", "dbmod 1\n", "dbmod 1\n"});
    e.host.Activate(docs[0]);
    const bool hostException = std::string(c.what).find("exception") != std::string::npos;
    e.host.Faults().Fail(c.call, c.occurrence, hostException ? port::kHostException : port::kFail,
                         "busy");
    ops.OnSaveAll();
    EXPECT_EQ(e.BoxTexts(), c.boxes);
    if (hostException) {
      EXPECT_EQ(e.host.Transcript(),
                "未知的错误在 MvTavlet::OnSaveAll()!\nCommand: _.QSAVE\nCommand: _.QSAVE\n");
    }
    for (std::size_t i = 0; i < docs.size(); ++i) EXPECT_EQ(e.Dbmod(docs[i]), c.dbmods[i]) << i;
    EXPECT_EQ(e.host.MdiActive() == docs[0], c.backToActive);
    // The bar is repainted in every case.
    EXPECT_EQ(e.windows.LogOf("RedrawWindow"), (Lines{"RedrawWindow MvTavlet 0x105"}));
  }
}

TEST_F(BatchTest, CloseAllCancelledAtTheSecondDrawingKeepsItAndTheOlderOnes) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", "dbmod 1\n", "dbmod 1\n"});
  host.QueueBoxAnswer(port::kAnswerYes);
  host.QueueBoxAnswer(port::kAnswerCancel);
  Ops().OnCloseAll();
  EXPECT_EQ(host.Notices(), (Lines{"start TL_CloseAll", "ended TL_CloseAll"}));
  EXPECT_EQ(BoxTexts(), (Lines{"Save changes to 3?", "Save changes to 2?"}));
  EXPECT_EQ(StillOpen(docs), (Lines{"1", "2"}));
  EXPECT_EQ(host.SentCommands(), (Lines{"_.QSAVE\n"}));
}

TEST_F(BatchTest, CloseAllAsksOnlyAboutModifiedDrawingsAndNoClosesWithoutSaving) {
  std::vector<port::Document> docs = OpenMany({"", "dbmod 2\n", "", "read-only yes\ndbmod 1\n"});
  host.QueueBoxAnswer(port::kAnswerNo);
  Ops().OnCloseAll();
  EXPECT_EQ(BoxTexts(), (Lines{"Save changes to 2?"}));
  EXPECT_EQ(StillOpen(docs), Lines{});
  EXPECT_TRUE(host.SentCommands().empty());
}

TEST_F(BatchTest, SaveAndCloseAllLeavesChangesAFailedSaveLeftToTheHost) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", "read-only yes\ndbmod 1\n"});
  port::Document fresh = host.NewDrawing();  // never saved: the save can't go through
  host.RunCommand("LINE");
  // The host's own questions, for the new drawing and the read-only one.
  host.QueueBoxAnswer(port::kAnswerNo);
  host.QueueBoxAnswer(port::kAnswerNo);
  Ops().OnSaveAndCloseAll();
  EXPECT_EQ(host.Notices(), (Lines{"start TL_SaveAndCloseAll", "ended TL_SaveAndCloseAll"}));
  EXPECT_EQ(host.SentCommands(),
            (Lines{"_.QSAVE\n", "_.QSAVE\n"}));  // the new drawing, then the first
  EXPECT_EQ(BoxTexts(),
            (Lines{"Save changes to Drawing1.dwg?", "Save changes to " + PathOf(2) + "?"}));
  EXPECT_FALSE(IsOpen(fresh));
  EXPECT_EQ(StillOpen(docs), Lines{});
  EXPECT_FALSE(host.QuitRequested());
}

TEST_F(BatchTest, CloseAllWithoutSavingAsksFirstAndHasNoNotice) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", "dbmod 3\n"});
  for (long answer : {port::kAnswerNo, port::kAnswerYes}) {
    SCOPED_TRACE(answer);
    host.QueueBoxAnswer(answer);
    Ops().OnCloseAllNoSave();
    EXPECT_EQ(host.ShownBoxes().back().text, "放弃任何改动?");
    EXPECT_EQ(host.ShownBoxes().back().type, port::kBoxYesNo);
    EXPECT_EQ(StillOpen(docs), answer == port::kAnswerYes ? Lines{} : (Lines{"1", "2"}));
  }
  EXPECT_TRUE(host.Notices().empty());
  EXPECT_TRUE(host.SentCommands().empty());
  EXPECT_EQ(host.ShownBoxes().size(), 2u);
}

TEST_F(BatchTest, ExitWithoutSavingSendsItsNoticeBeforeTheQuestion) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", "dbmod 1\n"});
  host.QueueBoxAnswer(port::kAnswerNo);
  Ops().OnExitNoSave();
  EXPECT_EQ(host.Notices(), (Lines{"start TL_ExitNoSave", "ended TL_ExitNoSave"}));
  EXPECT_EQ(BoxTexts(), (Lines{"放弃任何改动?"}));
  EXPECT_EQ(StillOpen(docs), (Lines{"1", "2"}));
  EXPECT_TRUE(FrameVisible());
  EXPECT_FALSE(host.QuitRequested());

  host.QueueBoxAnswer(port::kAnswerYes);
  Ops().OnExitNoSave();
  EXPECT_EQ(windows.LogOf("ShowWindow"), (Lines{"ShowWindow frame 0"}));
  EXPECT_FALSE(FrameVisible());
  EXPECT_EQ(StillOpen(docs), Lines{});
  EXPECT_TRUE(host.SentCommands().empty());
  EXPECT_TRUE(host.QuitRequested());
}

TEST_F(BatchTest, ExitSavingAllQuitsAlsoWithNoDrawing) {
  Ops().OnExitSaveAll();
  EXPECT_TRUE(host.QuitRequested());
  EXPECT_EQ(host.Notices(), (Lines{"start TL_ExitSaveAll", "ended TL_ExitSaveAll"}));

  Environment second;
  DrawingOperations ops(second.Services());
  port::Document doc = second.Open(PathOf(1), "dbmod 1\n");
  ops.OnExitSaveAll();
  EXPECT_FALSE(second.IsOpen(doc));
  EXPECT_EQ(second.host.SentCommands(), (Lines{"_.QSAVE\n"}));
  EXPECT_TRUE(second.host.QuitRequested());
}

TEST_F(BatchTest, QuickPlotAllPlotsInTheForegroundAndRestoresBackgroundPlot) {
  struct Case {
    const char* what;
    int failingPlot;  // 0: none
    Lines plots;
    Lines boxes;
  };
  const std::string fileA = PathOf(1), fileB = PathOf(2), fileC = PathOf(3);
  // clang-format off
  const std::vector<Case> cases = {
      {"every plot goes through", 0,
       {fileC + " Model bg 0", fileB + " A1 bg 0", fileA + " Model bg 0"}, {}},
      {"the second plot fails", 2,
       {fileC + " Model bg 0", fileA + " Model bg 0"}, {"错误 [0x80004005]\nno plotter"}},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Environment e;
    DrawingOperations ops(e.Services());
    std::vector<port::Document> docs =
        e.OpenMany({"", "layout \"A1\"\nactive-layout \"A1\"\n", ""});
    e.host.Activate(docs[0]);
    if (c.failingPlot)
      e.host.Faults().Fail("AcadPlot::PlotToDevice", c.failingPlot, port::kFail, "no plotter");
    ops.OnQuickPlotAll();
    EXPECT_EQ(e.PlotsMade(), c.plots);
    EXPECT_EQ(e.BoxTexts(), c.boxes);
    EXPECT_EQ(e.BackgroundPlot(), 2);
    EXPECT_EQ(e.host.Notices(), (Lines{"start TL_QuickPlotAll", "ended TL_QuickPlotAll"}));
    // No drawing is activated for its plot, and each layout is refreshed before it plots.
    EXPECT_EQ(e.host.MdiActive(), docs[0]);
    EXPECT_EQ(e.host.Find(docs[1])->actions.front(), "refresh A1");
  }
}

TEST_F(BatchTest, PlotAllWaitsForTheDialogsOk) {
  std::vector<port::Document> docs = OpenMany({"", ""});
  Ops().OnPlotAll();
  EXPECT_TRUE(host.Plots().empty());
  shell.QueuePlotDialogAnswer(true);
  Ops().OnPlotAll();
  EXPECT_EQ(PlotsMade(), (Lines{PathOf(2) + " Model bg 2", PathOf(1) + " Model bg 2"}));
  EXPECT_EQ(shell.Calls(), (Lines{"plot dialog", "plot dialog"}));
  EXPECT_EQ(shell.LastOwner(), bar);
  EXPECT_EQ(windows.LogOf("resources"), (Lines{"resources module", "resources restored",
                                               "resources module", "resources restored"}));
  EXPECT_EQ(host.Notices(), (Lines{"start TL_PlotAll", "ended TL_PlotAll", "start TL_PlotAll",
                                   "ended TL_PlotAll"}));
}

TEST_F(BatchTest, PlotSetupAndPlotActOnTheContextDrawingOnly) {
  std::vector<port::Document> docs = OpenMany({"", "layout \"A1\"\nactive-layout \"A1\"\n"});
  Ops().OnPlotSetup();
  Ops().OnPlot();
  EXPECT_TRUE(shell.Calls().empty());
  EXPECT_TRUE(host.Plots().empty());
  Ops().contextDocument = docs[1];
  shell.QueuePlotDialogAnswer(true);
  Ops().OnPlotSetup();
  EXPECT_EQ(shell.Calls(), (Lines{"plot dialog"}));
  EXPECT_TRUE(host.Plots().empty());
  Ops().OnPlot();
  EXPECT_EQ(PlotsMade(), (Lines{PathOf(2) + " A1 bg 2"}));
  host.SetOleLinkManagerMissing(true);
  Ops().OnPlot();
  EXPECT_EQ(host.Plots().size(), 1u);
  EXPECT_TRUE(host.Notices().empty());
}


// A start-up that found no automation leaves a null application: every use ends
// in the ordinary error box, not in a crash.
TEST_F(BatchTest, WithoutTheApplicationEveryHandlerEndsInTheErrorBox) {
  OpenMany({"dbmod 1\n"});
  host.SetApplicationMissing(true);
  DrawingOperations ops(Services());
  ops.contextDocument = host.MdiActive();
  ops.OnSaveAll();
  ops.OnCloseAll();
  host.QueueBoxAnswer(port::kAnswerYes);
  ops.OnCloseAllNoSave();
  ops.OnSaveAndCloseAll();
  Lines boxes = BoxTexts();
  ASSERT_EQ(boxes.size(), 5u);
  EXPECT_EQ(boxes, (Lines{"错误 [0x80004003]\n", "错误 [0x80004003]\n", "放弃任何改动?",
                          "错误 [0x80004003]\n", "错误 [0x80004003]\n"}));
  EXPECT_EQ(host.OpenDocuments().size(), 1u);
}


// The question's modal loop lets the host run: a drawing closed there shifts the
// indices, and the walk, which holds no drawing across a step, meets a bad index
// and ends in the error box instead of touching a closed drawing.
TEST_F(BatchTest, ADrawingClosedDuringAQuestionEndsTheWalkCleanly) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", "dbmod 1\n", "dbmod 1\n"});
  host.QueueBoxAnswer(port::kAnswerNo, [&] { host.CloseDrawing(docs[0]); });
  Ops().OnCloseAll();
  EXPECT_EQ(BoxTexts(), (Lines{"Save changes to 3?", "错误 [0x8002000B]\nInvalid index"}));
  EXPECT_EQ(StillOpen(docs), (Lines{"2"}));
}

}  // namespace
}  // namespace tavlet::operations
