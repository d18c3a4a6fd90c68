// Save, close, open and new on one drawing, read from the simulated host's
// transcript, sent commands, boxes and drawings.
#include <algorithm>
#include <fstream>
#include <sstream>

#include "ops_fixture.h"
#include "support/test_paths.h"

namespace tavlet::operations {
namespace {

using SaveTest = OpsFixture;

TEST_F(SaveTest, ZoomRulesComeBeforeTheSaveCommand) {
  struct Case {
    const char* what;
    std::string extra;
    int zoomExtentsOnSave;
    Lines transcript;
    Lines actions;
    int cvportAfter;
    long dbmodAfter;
  };
  const std::string layout = "layout \"A1\"\nactive-layout \"A1\"\ndbmod 2\n";
  // clang-format off
  const std::vector<Case> cases = {
      {"model space zooms to its extents", "dbmod 2\n", 1,
       {"Command: _.QSAVE"}, {"zoom extents"}, 2, 0},
      {"a layout with a floating viewport active goes to paper space first",
       layout + "cvport 3\n", 1, {"Command: _.PSPACE", "Command: _.QSAVE"}, {"zoom all"}, 1, 0},
      {"a layout in paper space is zoomed to its sheet only", layout + "cvport 1\n", 1,
       {"Command: _.QSAVE"}, {"zoom all"}, 1, 0},
      {"ZoomExtentsOnSave 0: no zoom and no change of space", layout + "cvport 3\n", 0,
       {"Command: _.QSAVE"}, {}, 3, 0},
      {"a read-only drawing is left alone, silently", "read-only yes\ndbmod 4\n", 1, {}, {}, 2, 4},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Environment e;
    WriteInt(e.store, keys::ZoomExtentsOnSave, c.zoomExtentsOnSave);
    DrawingOperations ops(e.Services());
    port::Document a = e.Open("C:\\dwg\\a.dwg", c.extra);
    e.host.Faults().ClearLog();
    ops.SaveDrawing(e.Object(a));

    EXPECT_EQ(e.TranscriptLines(), c.transcript);
    EXPECT_EQ(e.host.Find(a)->actions, c.actions);
    EXPECT_EQ(e.host.Find(a)->content.cvport, c.cvportAfter);
    EXPECT_EQ(e.Dbmod(a), c.dbmodAfter);
    EXPECT_TRUE(e.host.ShownBoxes().empty());
    // The zoom is asked for before the save is sent.
    Lines zoomAndSend;
    for (const std::string& call : e.host.Faults().Log())
      if (call.find("Zoom") != std::string::npos || call == "AcadDocument::SendCommand")
        zoomAndSend.push_back(call);
    if (!c.actions.empty()) {
      ASSERT_GE(zoomAndSend.size(), 2u);
      EXPECT_EQ(zoomAndSend.back(), "AcadDocument::SendCommand");
      EXPECT_NE(zoomAndSend[zoomAndSend.size() - 2].find("Zoom"), std::string::npos);
    }
  }
}

TEST_F(SaveTest, ActivatesTheDrawingAndReadsTheSaveCommandAtEverySave) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", "dbmod 1\n"});
  ASSERT_EQ(host.MdiActive(), docs[1]);
  Ops().SaveDrawing(Object(docs[0]));
  EXPECT_EQ(host.MdiActive(), docs[0]);
  WriteString(store, keys::SaveCommand, "_.SAVE\n");
  Ops().SaveDrawing(Object(docs[1]));
  EXPECT_EQ(host.SentCommands(), (Lines{"_.QSAVE\n", "_.SAVE\n"}));
  EXPECT_EQ(Dbmod(docs[0]), 0);
  EXPECT_EQ(Dbmod(docs[1]), 0);
}

using CloseTest = OpsFixture;

TEST_F(CloseTest, AsksAboutChangesOnlyOfAWritableModifiedDrawing) {
  struct Case {
    const char* what;
    std::string extra;
    std::vector<long> answers;
    Lines boxes;
    bool result;
    Lines sent;
  };
  const Lines asked = {"Save changes to 1?"};
  // clang-format off
  const std::vector<Case> cases = {
      {"unmodified: no question", "", {}, {}, true, {}},
      {"Yes saves, then closes", "dbmod 1\n", {port::kAnswerYes}, asked, true, {"_.QSAVE\n"}},
      {"No closes without saving", "dbmod 1\n", {port::kAnswerNo}, asked, true, {}},
      {"Cancel keeps it open", "dbmod 1\n", {port::kAnswerCancel}, asked, false, {}},
      {"read-only closes with no question whatever DBMOD says", "read-only yes\ndbmod 3\n",
       {}, {}, true, {}},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Environment e;
    DrawingOperations ops(e.Services());
    port::Document doc = e.Open(PathOf(1), c.extra);
    for (long answer : c.answers) e.host.QueueBoxAnswer(answer);
    EXPECT_EQ(ops.CloseDrawing(e.Object(doc)), c.result);
    for (const sim::ShownBox& b : e.host.ShownBoxes()) EXPECT_EQ(b.type, port::kBoxYesNoCancel);
    EXPECT_EQ(e.BoxTexts(), c.boxes);
    EXPECT_EQ(e.IsOpen(doc), !c.result);
    EXPECT_EQ(e.host.SentCommands(), c.sent);
  }
}

TEST_F(CloseTest, ANeverSavedDrawingIsAskedAboutByItsShownName) {
  Open(PathOf(1));
  port::Document fresh = host.NewDrawing();
  host.RunCommand("LINE");
  host.QueueBoxAnswer(port::kAnswerNo);
  EXPECT_TRUE(Ops().CloseDrawing(Object(fresh)));
  EXPECT_EQ(BoxTexts(), (Lines{"Save changes to Drawing1?"}));
}

TEST_F(CloseTest, NullDrawingAndMissingBridgeReturnFalse) {
  port::Document doc = Open(PathOf(1));
  EXPECT_FALSE(Ops().CloseDrawing(host::AcadDocumentPtr()));
  // Without an OLE link manager the walk finds no drawing for the object.
  host.SetOleLinkManagerMissing(true);
  EXPECT_FALSE(Ops().CloseDrawing(Object(doc)));
  EXPECT_TRUE(IsOpen(doc));
  EXPECT_TRUE(host.ShownBoxes().empty());
}

TEST_F(CloseTest, OnCloseActsOnTheContextDrawingOnly) {
  std::vector<port::Document> docs = OpenMany({"dbmod 1\n", ""});
  Ops().OnClose();  // no context drawing
  host.SetOleLinkManagerMissing(true);
  Ops().contextDocument = docs[0];
  Ops().OnClose();
  EXPECT_TRUE(IsOpen(docs[0]));
  host.SetOleLinkManagerMissing(false);
  host.QueueBoxAnswer(port::kAnswerNo);
  Ops().OnClose();
  EXPECT_FALSE(IsOpen(docs[0]));
  EXPECT_TRUE(IsOpen(docs[1]));
  EXPECT_EQ(BoxTexts(), (Lines{"Save changes to 1?"}));
}

using BridgeTest = OpsFixture;

TEST_F(BridgeTest, BothWaysMeetOnTheSameDrawing) {
  std::vector<port::Document> docs = OpenMany({"", "", ""});
  for (port::Document doc : docs) {
    host::AcadDocumentPtr object = Ops().AutomationObjectOf(doc);
    ASSERT_TRUE(object);
    EXPECT_EQ(Ops().DocumentFromAutomation(object), doc);
  }
  EXPECT_EQ(Ops().DocumentFromAutomation(host::AcadDocumentPtr()), nullptr);
  EXPECT_FALSE(Ops().AutomationObjectOf(nullptr));
  // No cache: a drawing closed since is not found again.
  host::AcadDocumentPtr first = Ops().AutomationObjectOf(docs[0]);
  host.CloseDrawing(docs[0]);
  EXPECT_EQ(Ops().DocumentFromAutomation(first), nullptr);
}

using OpenTest = OpsFixture;

TEST_F(OpenTest, AlreadyOpenDrawingsAreActivatedAndNotOpenedAgain) {
  struct Case {
    const char* what;
    std::string path;
    bool complain;
    Lines boxes;
  };
  const std::vector<Case> cases = {
      {"same path", PathOf(1), true, {PathOf(1) + " 已经打开!\n"}},
      {"a path in another case", "c:\\DWG\\1.DWG", true, {"c:\\DWG\\1.DWG 已经打开!\n"}},
      {"without complaint", "C:\\Dwg\\1.dwg", false, {}},
  };
  std::vector<port::Document> docs = OpenMany({"", ""});
  files.AddFile("c:\\DWG\\1.DWG", Drawing(PathOf(1)));
  files.AddFile("C:\\Dwg\\1.dwg", Drawing(PathOf(1)));
  recent.AddRecentFile(PathOf(1));
  recent.AddRecentFile(PathOf(2));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    host.Activate(docs[1]);
    const std::size_t boxesBefore = host.ShownBoxes().size();
    Ops().OpenFile(DrawingPath(c.path, files), c.complain, true);
    EXPECT_EQ(host.MdiActive(), docs[0]);
    Lines boxes = BoxTexts();
    EXPECT_EQ(Lines(boxes.begin() + static_cast<long>(boxesBefore), boxes.end()), c.boxes);
    EXPECT_EQ(host.Faults().Count("AcadDocuments::Open"), 0);
    EXPECT_EQ(host.OpenDocuments().size(), 2u);
    // The recent list doesn't move.
    recent.LoadRecentFiles();
    ASSERT_EQ(recent.Count(), 2u);
    EXPECT_EQ(recent.At(0), PathOf(2));
  }
}

TEST_F(OpenTest, ExtensionDecidesBetweenTheHostAndTheShell) {
  struct Case {
    const char* what;
    std::string path;
    bool opened;
    Lines shell;
  };
  const std::vector<Case> cases = {
      {"lower case drawing", "C:\\dwg\\a.dwg", true, {}},
      {"capitals in the extension", "C:\\dwg\\B.DWG", true, {}},
      {"mixed case", "C:\\dwg\\c.Dwg", true, {}},
      {"a DXF file", "C:\\dwg\\d.dxf", false, {"shell C:\\dwg\\d.dxf"}},
      {"a template", "C:\\dwg\\e.dwt", false, {"shell C:\\dwg\\e.dwt"}},
      {"an image", "C:\\img\\photo.jpg", false, {"shell C:\\img\\photo.jpg"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    files.AddFile(c.path, Drawing(c.path));
    shell.ClearCalls();
    const std::size_t before = host.OpenDocuments().size();
    recent.LoadRecentFiles();
    const std::size_t recentBefore = recent.Count();
    Ops().OpenFile(DrawingPath(c.path, files), true, true);
    EXPECT_EQ(host.OpenDocuments().size(), before + (c.opened ? 1 : 0));
    EXPECT_EQ(shell.Calls(), c.shell);
    recent.LoadRecentFiles();
    EXPECT_EQ(recent.Count(), recentBefore + (c.opened ? 1 : 0));
    if (c.opened) {
      EXPECT_EQ(recent.At(0), c.path);
    }
  }
  EXPECT_TRUE(host.ShownBoxes().empty());
}

TEST_F(OpenTest, RecentEntriesCarryTheReadOnlyFlag) {
  struct Case {
    const char* what;
    std::string entry;
    std::string opened;  // empty: nothing opens
    bool readOnly;
    Lines boxes;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"flag 1 opens read-only", "C:\\dwg\\a.dwg, 1", "C:\\dwg\\a.dwg", true, {}},
      {"flag 0 opens for writing", "C:\\dwg\\b.dwg,0", "C:\\dwg\\b.dwg", false, {}},
      {"flag 2 opens for writing", "C:\\dwg\\c.dwg,2", "C:\\dwg\\c.dwg", false, {}},
      {"no flag", "C:\\dwg\\d.dwg", "C:\\dwg\\d.dwg", false, {}},
      {"a comma in the path with no flag loses its tail", "C:\\dwg\\e,f.dwg", "", false,
       {"指定路径的文件不存在 -\nC:\\dwg\\e"}},
  };
  // clang-format on
  for (const char* path :
       {"C:\\dwg\\a.dwg", "C:\\dwg\\b.dwg", "C:\\dwg\\c.dwg", "C:\\dwg\\d.dwg", "C:\\dwg\\e,f.dwg"})
    files.AddFile(path, Drawing(path));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::size_t boxesBefore = host.ShownBoxes().size();
    const std::size_t before = host.OpenDocuments().size();
    Ops().OpenFile(ParseRecentEntry(c.entry, files), true, true);
    Lines boxes = BoxTexts();
    EXPECT_EQ(Lines(boxes.begin() + static_cast<long>(boxesBefore), boxes.end()), c.boxes);
    if (c.opened.empty()) {
      EXPECT_EQ(host.OpenDocuments().size(), before);
      continue;
    }
    ASSERT_EQ(host.OpenDocuments().size(), before + 1);
    EXPECT_EQ(host.Find(host.MdiActive())->path, c.opened);
    EXPECT_EQ(host.Find(host.MdiActive())->readOnly, c.readOnly);
  }
  // A missing file of a sheet-set entry (no complaint) passes silently, before any host call.
  const std::size_t boxes = host.ShownBoxes().size();
  const int lookups = host.Faults().Count("AcadApplication::Documents");
  Ops().OpenFile(DrawingPath("C:\\gone\\sheet.dwg", files), false, false);
  EXPECT_EQ(host.ShownBoxes().size(), boxes);
  EXPECT_EQ(host.Faults().Count("AcadApplication::Documents"), lookups);
}

TEST_F(OpenTest, RestoreDbmodLeavesTheNewDrawingUnmodified) {
  for (bool restore : {true, false}) {
    SCOPED_TRACE(restore);
    const std::string path = restore ? "C:\\dwg\\r.dwg" : "C:\\dwg\\k.dwg";
    files.AddFile(path, Drawing(path, "dbmod 3\n"));
    Ops().OpenFile(DrawingPath(path, files), false, restore);
    EXPECT_EQ(Dbmod(host.MdiActive()), restore ? 0 : 3);
  }
}

TEST_F(OpenTest, AFailedOpenIsReportedOnTheCommandLineAndInABox) {
  files.AddFile("C:\\dwg\\a.dwg", Drawing("C:\\dwg\\a.dwg"));
  host.Faults().Fail("AcadDocuments::Open", 1, port::MakeResult(0x80020009u), "File access error");
  Ops().OpenFile(DrawingPath("C:\\dwg\\a.dwg", files), false, true);
  EXPECT_EQ(host.Transcript(), "错误 [0x80020009]\nFile access error\n");
  EXPECT_EQ(BoxTexts(), (Lines{"错误 [0x80020009]\nFile access error"}));
  recent.LoadRecentFiles();
  EXPECT_EQ(recent.Count(), 0u);
}

std::string ReadShared(const std::string& name) {
  std::ifstream in(testing::SharedDrawing(name), std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST_F(OpenTest, ADrawingOfALaterReleaseIsNamedByItsRelease) {
  struct Case {
    const char* file;
    std::string transcript;
    bool opens;
  };
  const std::vector<Case> cases = {
      {"acs_sample_AC1021.dwg", "用这个版本的AutoCAD不能打开 AutoCAD 2007 图形文件!\n", false},
      // A release the version table doesn't know counts as 0: not later, so unknown.
      {"acs_sample_AC1024.dwg", "未知的错误在 MvTavlet::OpenFile()!\n", false},
      {"acs_sample_AC1018.dwg", "", true},
      {"acs_sample_AC1015.dwg", "", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    std::string bytes = ReadShared(c.file);
    if (bytes.empty()) GTEST_SKIP() << "shared drawings not found";
    const std::string path = std::string("C:\\real\\") + c.file;
    files.AddFile(path, bytes);
    host.ClearTranscript();
    const std::size_t before = host.OpenDocuments().size();
    Ops().OpenFile(DrawingPath(path, files), true, true);
    EXPECT_EQ(host.Transcript(), c.transcript);
    EXPECT_EQ(host.OpenDocuments().size(), before + (c.opens ? 1 : 0));
  }
  EXPECT_TRUE(host.ShownBoxes().empty());
}

TEST_F(OpenTest, AHostFailureOnADrawingOfThisReleaseIsUnknown) {
  files.AddFile("C:\\dwg\\a.dwg", "AC1018" + std::string(64, '\0'));
  host.Faults().Fail("AcadDocuments::Open", 1, port::kHostException, "");
  EXPECT_DOUBLE_EQ(Ops().hostVersion, 16.1);  // from "16.1s (LMS Tech)"
  Ops().OpenFile(DrawingPath("C:\\dwg\\a.dwg", files), true, true);
  EXPECT_EQ(host.Transcript(), "未知的错误在 MvTavlet::OpenFile()!\n");
  // With the host version unreadable (0) every known release counts as later.
  host.SetVersionText("");
  DrawingOperations fresh(Services());
  EXPECT_EQ(fresh.hostVersion, 0);
  host.ClearTranscript();
  host.Faults().Fail("AcadDocuments::Open", 1, port::kHostException, "");
  fresh.OpenFile(DrawingPath("C:\\dwg\\a.dwg", files), true, true);
  EXPECT_EQ(host.Transcript(), "用这个版本的AutoCAD不能打开 AutoCAD 2004 图形文件!\n");
}

class VanishingFiles : public MemoryFileSystem {
 public:
  FileInfo Stat(const std::string& path) override {
    if (path == vanishing && ++seen > 1) return {};
    return MemoryFileSystem::Stat(path);
  }
  std::string vanishing;
  int seen = 0;
};

TEST_F(OpenTest, LastDrawingOpensTheFirstRecentEntry) {
  Ops().OpenLastDrawing();
  EXPECT_EQ(BoxTexts(), (Lines{"最近文件使用列表中没有文件!"}));

  files.AddFile(PathOf(2), Drawing(PathOf(2), "dbmod 1\n"));
  recent.AddRecentFile("C:\\dwg\\gone.dwg");
  recent.AddRecentFile(PathOf(2));
  Ops().OpenLastDrawing();
  ASSERT_NE(host.MdiActive(), nullptr);
  EXPECT_EQ(host.Find(host.MdiActive())->path, PathOf(2));
  EXPECT_EQ(Dbmod(host.MdiActive()), 0);
}

TEST_F(OpenTest, LastDrawingGoneSinceTheListWasReadIsToldInEnglish) {
  VanishingFiles vanishing;
  vanishing.vanishing = PathOf(1);
  vanishing.AddFile(PathOf(1), Drawing(PathOf(1)));
  RecentFileList list(store, vanishing);
  list.AddRecentFile(PathOf(1));
  DrawingOperations ops(OperationServices{host, host::GetAcadApplication(host), windows, store,
                                          vanishing, list, shell});
  ops.OpenLastDrawing();
  EXPECT_EQ(BoxTexts(), (Lines{"Unable to find last opened drawing -\n" + PathOf(1)}));
}

using NewTest = OpsFixture;

TEST_F(NewTest, WithNoDrawingOpenTheApplicationContextMakesIt) {
  Ops().OnNewDrawing();
  EXPECT_EQ(host.Faults().Count("DocManager::AppContextNewDocument"), 1);
  EXPECT_EQ(host.Faults().Count("AcadDocuments::Add"), 0);
  Ops().OnNewDrawing();
  EXPECT_EQ(host.Faults().Count("AcadDocuments::Add"), 1);
  EXPECT_EQ(host.OpenDocuments().size(), 2u);
  // A refused new drawing simply doesn't appear: no box, no line.
  host.Faults().Fail("AcadDocuments::Add", 1, port::kFail, "no template");
  Ops().OnNewDrawing();
  Ops().NewDrawingFrom("C:\\templates\\missing.dwt");
  EXPECT_EQ(host.OpenDocuments().size(), 2u);
  EXPECT_TRUE(host.ShownBoxes().empty());
  EXPECT_EQ(host.Transcript(), "");
}

}  // namespace
}  // namespace tavlet::operations
