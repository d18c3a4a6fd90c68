#include "host/reactors.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/module_harness.h"

namespace tavlet::host {
namespace {

using sim::ModuleHarness;

class Sequences : public ::testing::Test {
 protected:
  void LoadWith(std::initializer_list<std::pair<const SettingKey*, int>> settings = {}) {
    for (const auto& [key, value] : settings) h.SetSetting(*key, value);
    h.Load();
    ASSERT_NE(h.Bar(), nullptr);
  }
  bar::BarModel& Bar() { return *h.Bar(); }
  BarEditorReactor& Editor() { return Bar().EditorReactor(); }
  const bar::DocEntry& Entry(port::Document doc) { return *Bar().Strip().FindEntry(doc); }
  std::vector<std::string> ListFulls() {
    std::vector<std::string> out;
    for (const auto& e : Bar().Strip().Entries()) out.push_back(e->path.Full);
    return out;
  }
  std::vector<std::string> TabTexts() {
    std::vector<std::string> out;
    for (const auto& t : Bar().Tabs().Tabs()) out.push_back(t.text);
    return out;
  }
  std::string Recent(int i) { return h.store.GetString("MRU", "路径_" + std::to_string(i), "none"); }

  ModuleHarness h;
};

TEST_F(Sequences, CommandThatModifiesMarksTheActiveDrawingAtItsEnd) {
  LoadWith();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  const_cast<bar::DocEntry&>(Entry(a)).previewDirty = false;
  h.windows.ClearLog();
  h.host.RunCommand("LINE");
  EXPECT_TRUE(Entry(a).modified);
  EXPECT_TRUE(Entry(a).previewDirty);
  EXPECT_EQ(TabTexts(), (std::vector<std::string>{"* a"}));
  EXPECT_EQ(h.windows.LogOf("RedrawWindow PreviewStrip"), (std::vector<std::string>{"RedrawWindow PreviewStrip 0x105"}));
  EXPECT_EQ(Editor().currentCommand, "");
}

TEST_F(Sequences, QsaveClearsTheMarkAndRecordsTheFile) {
  LoadWith();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  h.host.RunCommand("LINE");
  h.host.RunCommand("QSAVE");
  EXPECT_FALSE(Entry(a).modified);
  EXPECT_EQ(TabTexts(), (std::vector<std::string>{"a"}));
  EXPECT_EQ(Entry(a).path.Full, "C:\\dwg\\a.dwg");
  EXPECT_EQ(Recent(1), "C:\\dwg\\a.dwg");
}

TEST_F(Sequences, SaveasUnderPathOrderMovesInListAndTabs) {
  LoadWith({{&keys::SortBy, 2}});
  h.OpenDrawing("C:\\dwg\\b.dwg");
  port::Document c = h.OpenDrawing("C:\\dwg\\c.dwg");
  h.OpenDrawing("C:\\dwg\\d.dwg");
  h.host.Activate(c);
  h.host.RunCommand("LINE");
  h.host.RunCommand("SAVEAS", true, "C:\\dwg\\a.dwg");
  EXPECT_EQ(ListFulls(), (std::vector<std::string>{"C:\\dwg\\a.dwg", "C:\\dwg\\b.dwg", "C:\\dwg\\d.dwg"}));
  EXPECT_EQ(TabTexts(), (std::vector<std::string>{"a", "b", "d"}));
  EXPECT_EQ(Bar().Tabs().Tabs()[static_cast<std::size_t>(Bar().Tabs().Selected())].document, c);
  EXPECT_FALSE(Entry(c).modified);
  EXPECT_EQ(Recent(1), "C:\\dwg\\a.dwg");
  EXPECT_EQ(Recent(2), "C:\\dwg\\d.dwg");  // the opens went in first
}

TEST_F(Sequences, CancelledQsaveRenamesNothing) {
  LoadWith();
  port::Document unnamed = h.host.NewDrawing();
  h.host.RunCommand("LINE");
  h.host.RunCommand("QSAVE");  // no name yet: the dialog is left with Escape
  EXPECT_EQ(Editor().currentCommand, "");
  EXPECT_EQ(Entry(unnamed).path.Full, "Drawing1.dwg");
  EXPECT_TRUE(Entry(unnamed).modified);
  EXPECT_EQ(Recent(1), "none");
}

TEST_F(Sequences, LispTracksCommandsUnlessAvoidSaveasInLisp) {
  for (int avoid : {0, 1}) {
    ModuleHarness fresh;
    fresh.SetSetting(keys::AvoidSaveasInLisp, avoid);
    fresh.Load();
    bar::BarModel& bar = *fresh.Bar();
    port::Document a = fresh.OpenDrawing("C:\\dwg\\a.dwg");
    fresh.host.RunCommand("LINE");
    std::vector<std::string> seen;
    fresh.host.RunLisp("(command \"SAVEAS\")", [&] {
      fresh.host.RunCommand("SAVEAS", true, "C:\\dwg\\z.dwg");
      seen.push_back(bar.EditorReactor().currentCommand);
      seen.push_back(bar.EditorReactor().lispActive ? "lisp" : "-");
    });
    const bar::DocEntry& e = *bar.Strip().FindEntry(a);
    EXPECT_EQ(bar.EditorReactor().AvoidSaveasInLisp, avoid == 1);
    EXPECT_EQ(seen, (std::vector<std::string>{"", avoid ? "lisp" : "-"}));
    // Off: the save renames as any tracked command. On: the save is not seen, and
    // one poll at the end of the expression finds DBMOD 0.
    EXPECT_EQ(e.path.Full, avoid ? "C:\\dwg\\a.dwg" : "C:\\dwg\\z.dwg") << avoid;
    EXPECT_FALSE(e.modified) << avoid;
    EXPECT_FALSE(bar.EditorReactor().lispActive);
  }
}

TEST_F(Sequences, CancelledLispStopsIgnoringCommands) {
  LoadWith({{&keys::AvoidSaveasInLisp, 1}});
  h.OpenDrawing("C:\\dwg\\a.dwg");
  h.host.CancelLisp("(foo)", [&] { EXPECT_TRUE(Editor().lispActive); });
  EXPECT_FALSE(Editor().lispActive);
  h.host.CancelCommand("ERASE");
  EXPECT_EQ(Editor().currentCommand, "");
  Editor().CommandWillStart("MOVE");
  EXPECT_EQ(Editor().currentCommand, "MOVE");
  h.host.FailCommand("COPY");
  EXPECT_EQ(Editor().currentCommand, "");
}

TEST_F(Sequences, CommandEndedElsewherePollsTheMdiActiveDrawing) {
  LoadWith();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  port::Document b = h.OpenDrawing("C:\\dwg\\b.dwg");  // MDI-active
  h.host.SetCurrent(a);
  h.host.RunCommand("LINE");  // changes a
  EXPECT_FALSE(Entry(a).modified);  // not the active one: not touched
  EXPECT_FALSE(Entry(b).modified);  // polled: its DBMOD is 0
  EXPECT_EQ(h.host.Find(a)->dbmod, 1);
}

TEST_F(Sequences, ColoursReloadAfterOptionsInPreviewModeOnly) {
  struct Case {
    int tabMode;
    const char* command;
    int reloads;
  } cases[] = {{0, "OPTIONS", 1}, {0, "CONFIG", 1}, {0, "PREFERENCES", 1},
               {0, "options", 1}, {0, "LINE", 0},   {1, "OPTIONS", 0}};
  for (const Case& c : cases) {
    ModuleHarness fresh;
    fresh.SetSetting(keys::TabMode, c.tabMode);
    fresh.Load();
    fresh.OpenDrawing("C:\\dwg\\a.dwg");
    port::ColorSettings colors;
    colors.modelBackground = 0x123456;
    fresh.host.SetColors(colors);
    fresh.host.RunCommand(c.command, false);
    // The strip's creation read them once.
    EXPECT_EQ(fresh.Bar()->ColorReloads(), 1 + c.reloads) << c.command << " tab " << c.tabMode;
    EXPECT_EQ(fresh.Bar()->Colors().modelBackground, c.reloads ? 0x123456u : 0u);
  }
}

TEST_F(Sequences, ComFailureInThePollKeepsTheCommandUntilTheNext) {
  LoadWith();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  h.host.Faults().Fail("AcadDocument::GetVariable", 1, port::kDispatchException, "boom");
  h.host.RunCommand("LINE");
  EXPECT_EQ(Editor().currentCommand, "LINE");
  EXPECT_FALSE(Entry(a).modified);
  h.host.RunCommand("CIRCLE");
  EXPECT_EQ(Editor().currentCommand, "");
  EXPECT_TRUE(Entry(a).modified);

  // The same in the poll itself, called directly: the error travels out.
  h.host.Faults().Fail("DocManager::MdiActiveDocument", 1, port::kFail, "gone");
  Editor().currentCommand = "ERASE";
  try {
    Editor().PollDrawingState("ERASE");
    ADD_FAILURE() << "no error raised";
  } catch (const ComError& e) {
    EXPECT_EQ(e.Bits(), 0x80004005u);
    EXPECT_EQ(e.Description(), "gone");
  }
  EXPECT_EQ(Editor().currentCommand, "ERASE");
}

TEST_F(Sequences, PollWithoutANameOrWhileOffLeavesTheBarAlone) {
  LoadWith();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  Editor().currentCommand = "LINE";
  Editor().PollDrawingState("");
  EXPECT_EQ(Editor().currentCommand, "LINE");
  h.host.RunRegisteredCommand("TLOFF");
  h.host.RunCommand("LINE");
  EXPECT_FALSE(Entry(a).modified);
  EXPECT_EQ(Editor().currentCommand, "");
}

TEST_F(Sequences, WithoutAutomationIsModifiedDecides) {
  LoadWith();
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  h.host.SetOleLinkManagerMissing(true);
  h.host.RunCommand("LINE");
  EXPECT_TRUE(Entry(a).modified);
  EXPECT_EQ(h.host.Faults().Count("AcadDocument::GetVariable"), 0);
}

TEST_F(Sequences, OpenAndCloseFollowTheDocumentEvents) {
  LoadWith({{&keys::HideOnSingle, 1}});
  port::Document a = h.OpenDrawing("C:\\dwg\\a.dwg");
  EXPECT_EQ(Recent(1), "C:\\dwg\\a.dwg");
  EXPECT_TRUE(h.windows.Find(Bar().StripWindow())->visible);  // first drawing shows the strip
  h.windows.ClearLog();
  port::Document b = h.OpenDrawing("C:\\dwg\\b.dwg");
  EXPECT_EQ(h.windows.LogOf("MoveWindow frame").size(), 2u);  // the second drawing takes the space back
  port::Document c = h.OpenDrawing("C:\\dwg\\c.dwg");
  h.host.ClearTranscript();
  h.windows.ClearLog();
  h.host.CloseDrawing(c);  // two remain: nothing more
  EXPECT_TRUE(h.windows.LogOf("MoveWindow frame").empty());
  h.host.CloseDrawing(b);  // one remains: the space goes back to the drawing
  EXPECT_EQ(h.windows.LogOf("MoveWindow frame").size(), 2u);
  EXPECT_NE(h.host.Transcript().find("\nCommand: "), std::string::npos);
  EXPECT_EQ(ListFulls(), (std::vector<std::string>{"C:\\dwg\\a.dwg"}));
  h.host.CloseDrawing(a);  // the last: both children hidden, no view
  EXPECT_TRUE(Bar().Strip().Entries().empty());
  EXPECT_EQ(Bar().CurrentDrawingView(), nullptr);
  EXPECT_FALSE(h.windows.Find(Bar().StripWindow())->visible);
  EXPECT_EQ(Bar().Strip().ActiveIndex(), -1);
}

TEST(Reactors, ReactorsComeAndGoWithTheBar) {
  ModuleHarness h;
  h.Load();
  EXPECT_EQ(h.host.Faults().Count("Editor::AddReactor"), 1);
  EXPECT_EQ(h.host.Faults().Count("DocManager::AddReactor"), 1);
  h.Unload();
  EXPECT_EQ(h.host.Faults().Count("Editor::RemoveReactor"), 1);
  EXPECT_EQ(h.host.Faults().Count("DocManager::RemoveReactor"), 1);
  h.OpenDrawing("C:\\dwg\\a.dwg");  // nobody listens: nothing crashes
  h.host.RunCommand("LINE");
}

}  // namespace
}  // namespace tavlet::host
