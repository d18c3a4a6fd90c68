#include <gtest/gtest.h>

#include <functional>

#include "host/automation.h"
#include "sim/memory_file_system.h"
#include "recorder.h"

namespace tavlet::sim {
namespace {

using Lines = std::vector<std::string>;

class EventOrder : public testing::Test {
 protected:
  void SetUp() override {
    fs.AddFile("C:\\dwg\\a.tdd", Description("C:\\dwg\\a.dwg"));
    fs.AddFile("C:\\dwg\\b.tdd", Description("C:\\dwg\\b.dwg"));
    fs.AddFile("C:\\dwg\\locked.tdd", Description("C:\\dwg\\locked.dwg", "read-only yes\n"));
  }
  MemoryFileSystem fs;
  SimHost host{fs};
  EventRecorder events{host};
};

TEST_F(EventOrder, FollowsTheHostsDocumentedSequences) {
  struct Case {
    const char* name;
    std::function<void(SimHost&)> act;
    Lines expected;
  };
  const std::vector<Case> cases = {
      {"open", [](SimHost&) {},
       {"created C:\\dwg\\b.dwg", "endDwgOpen C:\\dwg\\b.dwg", "activated C:\\dwg\\b.dwg"}},
      {"command that modifies",
       [](SimHost& h) { h.RunCommand("line"); },
       {"willStart LINE", "ended LINE dbmod 1"}},
      {"QSAVE",
       [](SimHost& h) {
         h.RunCommand("LINE");
         h.RunCommand("QSAVE");
       },
       {"willStart LINE", "ended LINE dbmod 1", "willStart QSAVE",
        "saveComplete C:\\dwg\\b.dwg of C:\\dwg\\b.dwg dbmod 0", "ended QSAVE dbmod 0"}},
      {"SAVEAS to a new name",
       [](SimHost& h) { h.RunCommand("SAVEAS", false, "D:\\new\\c.dwg"); },
       {"willStart SAVEAS", "saveComplete D:\\new\\c.dwg of D:\\new\\c.dwg dbmod 0", "ended SAVEAS dbmod 0"}},
      {"QSAVE cancelled at its dialog", [](SimHost& h) { h.CancelCommand("QSAVE"); },
       {"willStart QSAVE", "cancelled QSAVE"}},
      {"failed command", [](SimHost& h) { h.FailCommand("PLOT"); }, {"willStart PLOT", "failed PLOT"}},
      {"LISP calling a command",
       [](SimHost& h) { h.RunLisp("(command \"LINE\")", [&] { h.RunCommand("LINE"); }); },
       {"lispWillStart (command \"LINE\")", "willStart LINE", "ended LINE dbmod 1", "lispEnded"}},
      {"LISP cancelled", [](SimHost& h) { h.CancelLisp("(getpoint)"); }, {"lispWillStart (getpoint)", "lispCancelled"}},
      {"close of the active drawing",
       [](SimHost& h) { h.CloseDrawing(h.MdiActive()); },
       {"toBeDestroyed C:\\dwg\\b.dwg", "destroyed C:\\dwg\\b.dwg count 1", "activated C:\\dwg\\a.dwg"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    SimHost fresh(fs);
    EventRecorder recorder(fresh);
    ASSERT_NE(fresh.OpenDrawing("C:\\dwg\\a.tdd"), nullptr);
    ASSERT_NE(fresh.OpenDrawing("C:\\dwg\\b.tdd"), nullptr);
    recorder.Take();
    if (std::string(c.name) == "open") {
      SimHost single(fs);
      EventRecorder first(single);
      single.OpenDrawing("C:\\dwg\\b.tdd");
      EXPECT_EQ(first.Take(), c.expected);
      continue;
    }
    c.act(fresh);
    EXPECT_EQ(recorder.Take(), c.expected);
  }
}

TEST_F(EventOrder, ClosingTheLastDrawingLeavesNoActiveOne) {
  port::Document a = host.OpenDrawing("C:\\dwg\\a.tdd");
  events.Take();
  host.CloseDrawing(a);
  EXPECT_EQ(events.Take(), (Lines{"toBeDestroyed C:\\dwg\\a.dwg", "destroyed C:\\dwg\\a.dwg count 0"}));
  EXPECT_EQ(host.MdiActive(), nullptr);
  EXPECT_EQ(host.Current(), nullptr);
}

TEST_F(EventOrder, QsaveOfAReadOnlyOrUnnamedDrawingEndsByCancel) {
  host.OpenDrawing("C:\\dwg\\locked.tdd");
  host.RunCommand("LINE");
  events.Take();
  host.RunCommand("QSAVE");
  EXPECT_EQ(events.Take(), (Lines{"willStart QSAVE", "cancelled QSAVE"}));
  host.NewDrawing();
  events.Take();
  host.RunCommand("QSAVE");
  EXPECT_EQ(events.Take(), (Lines{"willStart QSAVE", "cancelled QSAVE"}));
}

TEST_F(EventOrder, SendCommandRunsTheSaveThroughTheCommandEvents) {
  port::Document a = host.OpenDrawing("C:\\dwg\\a.tdd");
  host.OpenDrawing("C:\\dwg\\b.tdd");
  host::ScopedSession session(&host);
  port::Database db = nullptr;
  host.Documents()->DatabaseOf(a, &db);
  host::AcadDocumentPtr doc = host::DocumentObjectOf(host, db);
  ASSERT_TRUE(doc);
  doc.Activate();
  events.Take();
  doc.SendCommand("_.QSAVE\n");
  EXPECT_EQ(events.Take(), (Lines{"willStart QSAVE", "saveComplete C:\\dwg\\a.dwg of C:\\dwg\\a.dwg dbmod 0",
                                  "ended QSAVE dbmod 0"}));
  doc.SendCommand("_.SAVEAS \"D:\\x y\\z.dwg\"\n");
  EXPECT_EQ(doc.FullName(), "D:\\x y\\z.dwg");
  EXPECT_EQ(host.SentCommands(), (Lines{"_.QSAVE\n", "_.SAVEAS \"D:\\x y\\z.dwg\"\n"}));
}

TEST_F(EventOrder, ActivatingTheActiveDrawingFiresNothing) {
  port::Document a = host.OpenDrawing("C:\\dwg\\a.tdd");
  port::Document b = host.OpenDrawing("C:\\dwg\\b.tdd");
  events.Take();
  host.Activate(b);
  host.Activate(a);
  EXPECT_EQ(events.Take(), (Lines{"activated C:\\dwg\\a.dwg"}));
}

TEST_F(EventOrder, AMessageBoxRunsHostEventsInsideItsModalLoop) {
  port::Document a = host.OpenDrawing("C:\\dwg\\a.tdd");
  host.OpenDrawing("C:\\dwg\\b.tdd");
  events.Take();
  host.QueueBoxAnswer(port::kAnswerNo, [&] { host.Activate(a); });
  long answer = 0;
  host.Boxes()->Show("Save changes to b?", port::kBoxYesNoCancel, &answer);
  EXPECT_EQ(answer, port::kAnswerNo);
  EXPECT_EQ(events.Take(), (Lines{"activated C:\\dwg\\a.dwg"}));
  // With the queue empty a Yes/No/Cancel box is answered Cancel.
  host.Boxes()->Show("again?", port::kBoxYesNoCancel, &answer);
  EXPECT_EQ(answer, port::kAnswerCancel);
  ASSERT_EQ(host.ShownBoxes().size(), 2u);
  EXPECT_EQ(host.ShownBoxes()[0].text, "Save changes to b?");
}

TEST_F(EventOrder, CloseWithMissingArgumentsAsksThroughTheHostsOwnBox) {
  port::Document a = host.OpenDrawing("C:\\dwg\\a.tdd");
  host.RunCommand("LINE");
  host::ScopedSession session(&host);
  port::Database db = nullptr;
  host.Documents()->DatabaseOf(a, &db);
  host::AcadDocumentPtr doc = host::DocumentObjectOf(host, db);
  host.QueueBoxAnswer(port::kAnswerCancel);
  EXPECT_THROW(doc.Close(), host::ComError);
  EXPECT_EQ(host.OpenDocuments().size(), 1u);
  host.QueueBoxAnswer(port::kAnswerYes);
  events.Take();
  doc.Close();
  EXPECT_EQ(events.Take(), (Lines{"saveComplete C:\\dwg\\a.dwg of C:\\dwg\\a.dwg dbmod 0",
                                  "toBeDestroyed C:\\dwg\\a.dwg", "destroyed C:\\dwg\\a.dwg count 0"}));
  // The object of a closed drawing refuses every call.
  EXPECT_THROW(doc.FullName(), host::ComError);
}

}  // namespace
}  // namespace tavlet::sim
