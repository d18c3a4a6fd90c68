// Every host call an operation makes, failed one at a time: first as an
// automation error (the error box), then as a failure inside the host that is no
// COM error (the handler's line). The calls come from a clean run's log, so a
// call the operation starts making is swept without a change here.
#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <set>

#include "content/views.h"
#include "ops_fixture.h"

namespace tavlet::operations {
namespace {

constexpr const char* kInjected = "injected failure";

// Everything one run needs, made afresh for every run: 1 is modified in model
// space, 2 read-only and modified, 3 modified in a layout with a floating
// viewport active, and the context drawing.
struct World : Environment {
  World() {
    docs = OpenMany({"dbmod 1\n", "read-only yes\ndbmod 1\n",
                     "layout \"A1\"\nactive-layout \"A1\"\ncvport 3\ndbmod 1\n"});
    files.AddFile("C:\\dwg\\new.dwg", Drawing("C:\\dwg\\new.dwg", "dbmod 2\n"));
    host.Activate(docs[0]);
    ops = std::make_unique<DrawingOperations>(Services());
    ops->contextDocument = docs[2];
    target = Object(docs[2]);
  }
  int OpenCount() const { return static_cast<int>(StillOpen(docs).size()); }
  int Modified() const {
    int n = 0;
    for (port::Document d : docs) n += Dbmod(d) > 0 && !host.Find(d)->readOnly ? 1 : 0;
    return n;
  }

  std::vector<port::Document> docs;
  std::unique_ptr<DrawingOperations> ops;
  host::AcadDocumentPtr target;  // the third drawing's object
};

// Where one injected call stands in the clean run.
struct Injection {
  std::string call;
  int occurrence = 0;        // of that call within the run
  std::size_t position = 0;  // in the clean run's log
  const Lines* cleanLog = nullptr;
  // Position of the first `call` at or after `from` in the clean log; npos if none.
  std::size_t Find(const std::string& wanted, std::size_t from = 0) const {
    for (std::size_t i = from; i < cleanLog->size(); ++i)
      if ((*cleanLog)[i] == wanted) return i;
    return std::string::npos;
  }
};

struct Operation {
  const char* name;
  std::function<void(World&)> prepare;  // answers and state, after the drawings are open
  std::function<void(World&)> run;
  std::set<std::string> lines;  // the lines a failure that is no COM error may print
  // A failure the operation lets go by design: no box, no line.
  std::function<bool(const Injection&)> silent = [](const Injection&) { return false; };
  // What the batch did after the failure.
  std::function<void(World&, const Injection&)> check = [](World&, const Injection&) {};
};

bool IsNotice(const Injection& i) {
  return i.call == "Editor::ModelessOperationStart" || i.call == "Editor::ModelessOperationEnded" ||
         i.call == "HostSession::OleLinks";
}

bool IsWalkCall(const std::string& call) {
  return call == "AcadApplication::Documents" || call == "AcadDocuments::Count" ||
         call == "AcadDocuments::Item";
}

void QueueYes(World& w, int count) {
  for (int i = 0; i < count; ++i) w.host.QueueBoxAnswer(port::kAnswerYes);
}
void QueueNo(World& w, int count) {
  for (int i = 0; i < count; ++i) w.host.QueueBoxAnswer(port::kAnswerNo);
}

// The host's own question inside a Close with both arguments missing: its failure
// is the host's to handle, and it closes without saving.
bool HostsOwnQuestion(const Injection& i) { return IsNotice(i) || i.call == "MessageBoxes::Show"; }

// The batches of plots let every failure go but those of a plot itself.
bool OutsideAPlot(const Injection& i) {
  static const std::set<std::string> plotCalls = {"AcadDocument::ActiveLayout",
                                                  "AcadLayout::RefreshPlotDeviceInfo",
                                                  "AcadDocument::Plot", "AcadPlot::PlotToDevice"};
  return !plotCalls.count(i.call);
}

std::vector<Operation> Operations() {
  using namespace lines;
  const auto nothing = [](World&) {};
  const auto always = [](const Injection&) { return true; };
  // The look for an open drawing of that path gives up silently and the open goes on.
  const auto beforeTheOpen = [](const Injection& i) {
    return i.position < i.Find("AcadDocuments::Open") - 1;
  };
  // clang-format off
  return {
      {"SaveDrawing", nothing, [](World& w) { w.ops->SaveDrawing(w.target); }, {SaveAll}},
      {"CloseDrawing", [](World& w) { QueueYes(w, 1); },
       [](World& w) { w.ops->CloseDrawing(w.target); }, {CloseDrawing, SaveAll}, IsNotice,
       [](World& w, const Injection& i) {
         // A drawing whose question or save failed is kept with its changes.
         if (!w.host.Find(w.docs[2])->closed && i.call != "AcadDocument::Close") {
           EXPECT_EQ(w.host.Find(w.docs[2])->dbmod, 1);
         }
       }},
      {"OnClose", [](World& w) { QueueYes(w, 1); }, [](World& w) { w.ops->OnClose(); },
       {Close, CloseDrawing, SaveAll}, IsNotice},
      {"OpenFile", nothing,
       [](World& w) { w.ops->OpenFile(DrawingPath("C:\\dwg\\new.dwg", w.files), true, true); },
       {OpenFile}, beforeTheOpen},
      {"OpenLastDrawing", [](World& w) { w.recent.AddRecentFile("C:\\dwg\\new.dwg"); },
       [](World& w) { w.ops->OpenLastDrawing(); }, {OpenFile}, beforeTheOpen},
      {"OnNewDrawing", nothing, [](World& w) { w.ops->OnNewDrawing(); }, {}, always},
      {"OnSaveAll", nothing, [](World& w) { w.ops->OnSaveAll(); }, {SaveAll}, IsNotice,
       [](World& w, const Injection& i) {
         EXPECT_EQ(w.windows.LogOf("RedrawWindow"), (Lines{"RedrawWindow MvTavlet 0x105"}));
         // A failed save leaves its drawing alone and the walk goes on; a failed walk stops it.
         if (!IsWalkCall(i.call) && i.call != "AcadApplication::ActiveDocument") {
           EXPECT_LE(w.Modified(), 1);
         }
       }},
      {"OnCloseAll", [](World& w) { QueueYes(w, 3); }, [](World& w) { w.ops->OnCloseAll(); },
       {CloseAll, CloseDrawing, SaveAll}, IsNotice,
       [](World& w, const Injection& i) {
         if (IsNotice(i)) return;
         // The walk runs from the last drawing and ends at the first failure: the
         // drawing that failed and the older ones stay open.
         for (std::size_t k = 1; k < w.docs.size(); ++k)
           if (!w.host.Find(w.docs[k])->closed) {
             EXPECT_FALSE(w.host.Find(w.docs[k - 1])->closed) << k;
           }
         EXPECT_FALSE(w.host.Find(w.docs[0])->closed);
       }},
      {"OnSaveAndCloseAll", [](World& w) { QueueNo(w, 3); },
       [](World& w) { w.ops->OnSaveAndCloseAll(); }, {SaveAndCloseAll, SaveAll}, HostsOwnQuestion,
       [](World& w, const Injection& i) {
         // Only a failure of the walk or of Close stops it; a failed save is closed all the same
         // (the host's own question, answered Cancel here, keeps it).
         if (!IsWalkCall(i.call) && i.call != "AcadDocument::Close") {
           EXPECT_EQ(w.OpenCount(), 0);
         }
         EXPECT_FALSE(w.host.QuitRequested());
       }},
      {"OnCloseAllNoSave", [](World& w) { QueueYes(w, 1); },
       [](World& w) { w.ops->OnCloseAllNoSave(); }, {CloseAllNoSave}, IsNotice,
       [](World& w, const Injection&) { EXPECT_GE(w.OpenCount(), 1); }},
      {"OnExitSaveAll", [](World& w) { QueueNo(w, 3); }, [](World& w) { w.ops->OnExitSaveAll(); },
       {ExitSaveAll, SaveAll}, HostsOwnQuestion,
       [](World& w, const Injection& i) {
         const bool stops = IsWalkCall(i.call) || i.call == "AcadDocument::Close" ||
                            i.call == "AcadApplication::Quit";
         EXPECT_EQ(w.host.QuitRequested(), !stops);
       }},
      {"OnExitNoSave", [](World& w) { QueueYes(w, 1); }, [](World& w) { w.ops->OnExitNoSave(); },
       {CloseAllNoSave}, IsNotice,
       [](World& w, const Injection& i) {
         EXPECT_EQ(w.host.QuitRequested(), IsNotice(i));
         // Hidden once the question was answered and the frame found; never shown again.
         const bool hidden = IsNotice(i) || i.position > i.Find("FrameWindows::MainFrame");
         EXPECT_EQ(w.windows.Find(w.host.WindowNamed("frame"))->visible, !hidden);
       }},
      {"OnQuickPlotAll", nothing, [](World& w) { w.ops->OnQuickPlotAll(); }, {Close}, OutsideAPlot,
       [](World& w, const Injection& i) {
         const bool restoreFailed = i.call == "Editor::SetVariable" && i.occurrence == 2;
         if (!restoreFailed) {
           EXPECT_EQ(w.BackgroundPlot(), 2);
         }
         // A failed plot is told and the others go on.
         if (!OutsideAPlot(i)) {
           EXPECT_EQ(w.host.Plots().size(), 2u);
         }
       }},
      {"OnPlotAll", [](World& w) { w.shell.QueuePlotDialogAnswer(true); },
       [](World& w) { w.ops->OnPlotAll(); }, {Close}, OutsideAPlot,
       [](World& w, const Injection& i) {
         if (!OutsideAPlot(i)) {
           EXPECT_EQ(w.host.Plots().size(), 2u);
         }
       }},
      {"OnPlot", nothing, [](World& w) { w.ops->OnPlot(); }, {Close}, IsNotice},
      {"OnSaveView", [](World& w) { w.host.QueueStringAnswer(port::kRtNormal, "v"); },
       [](World& w) { w.ops->OnSaveView(); }, {SaveView},
       // The layout record, last of all, tells only a refused registration, in a
       // line of its own.
       [](const Injection& i) { return IsNotice(i) || i.position > i.Find("AcadLayout::Name"); },
       [](World& w, const Injection& i) {
         port::Database db = nullptr;
         w.host.Documents()->DatabaseOf(w.docs[2], &db);
         const std::string layout = content::ReadViewLayout("v", *w.host.Databases(), db);
         if (IsNotice(i)) {
           EXPECT_EQ(layout, "A1");
         }
         // Without the lock the host refuses the registration too.
         const bool refused =
             w.host.Transcript().find("无法注册 MRVN_TAVLET appid - ") != std::string::npos;
         EXPECT_EQ(refused,
                   i.call == "DrawingDatabase::AddRegApp" || i.call == "DocManager::LockDocument");
       }},
      {"OnChangeTemplatePath", [](World& w) { w.shell.QueueFolderAnswer(std::string("D:\\t")); },
       [](World& w) { w.ops->OnChangeTemplatePath(); }, {}, always},
  };
  // clang-format on
}

std::string Kind(bool hostException) {
  return hostException ? "host exception" : "automation error";
}

TEST(FaultSweep, EveryHostCallOfEveryOperationFailsOneAtATime) {
  int runs = 0;
  for (const Operation& op : Operations()) {
    SCOPED_TRACE(op.name);
    Lines clean;
    {
      World w;
      op.prepare(w);
      w.host.Faults().ClearLog();
      op.run(w);
      clean = w.host.Faults().Log();
      for (const sim::ShownBox& b : w.host.ShownBoxes()) {
        EXPECT_EQ(b.text.find("错误"), std::string::npos);
      }
      EXPECT_EQ(w.host.Transcript().find("未知"), std::string::npos);
    }
    ASSERT_FALSE(clean.empty());
    std::map<std::string, int> seen;
    for (std::size_t position = 0; position < clean.size(); ++position) {
      Injection injection{clean[position], ++seen[clean[position]], position, &clean};
      for (bool hostException : {false, true}) {
        SCOPED_TRACE(injection.call + " #" + std::to_string(injection.occurrence) + " " +
                     Kind(hostException));
        World w;
        op.prepare(w);
        const std::size_t boxesBefore = w.host.ShownBoxes().size();
        w.host.ClearTranscript();
        w.host.Faults().Fail(injection.call, injection.occurrence,
                             hostException ? port::kHostException : port::kFail, kInjected);
        op.run(w);
        ++runs;

        Lines boxes;
        for (std::size_t b = boxesBefore; b < w.host.ShownBoxes().size(); ++b)
          boxes.push_back(w.host.ShownBoxes()[b].text);
        const std::string errorBox = std::string("错误 [0x80004005]\n") + kInjected;
        const int errorBoxes = static_cast<int>(std::count(boxes.begin(), boxes.end(), errorBox));
        int linesPrinted = 0;
        for (const std::string& line : op.lines)
          for (std::size_t at = w.host.Transcript().find(line); at != std::string::npos;
               at = w.host.Transcript().find(line, at + 1))
            ++linesPrinted;
        const bool anyUnknownLine = w.host.Transcript().find("未知的错误在") != std::string::npos;

        if (op.silent(injection)) {
          EXPECT_EQ(errorBoxes, 0);
          EXPECT_FALSE(anyUnknownLine);
        } else if (!hostException) {
          EXPECT_EQ(errorBoxes, 1);
          EXPECT_FALSE(anyUnknownLine);
        } else {
          EXPECT_EQ(errorBoxes, 0);
          EXPECT_EQ(linesPrinted, 1) << w.host.Transcript();
        }
        // A lock stays only where the host itself refused to give it back.
        for (port::Document d : w.docs) {
          EXPECT_EQ(w.host.IsLocked(d),
                    injection.call == "DocManager::UnlockDocument" && d == w.ops->contextDocument);
        }
        if (std::string(op.name) != "OnExitNoSave") {
          EXPECT_TRUE(w.windows.Find(w.host.WindowNamed("frame"))->visible);
        }
        op.check(w, injection);
      }
    }
  }
  // Measured on this sim: the sweep's size, so that a shrinking operation shows.
  EXPECT_GT(runs, 600) << runs;
  ::testing::Test::RecordProperty("runs", runs);
}

}  // namespace
}  // namespace tavlet::operations
