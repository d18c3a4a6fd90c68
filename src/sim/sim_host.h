// The simulated host: one session with documents, commands, events and
// automation, behind the host port, for tests and the demo.
//
// Drawings come from files through a FileSystem: a real drawing file gives its
// name, version and (through the thumbnail reader) its picture; a description
// file (sim/drawing_description.h) gives a whole drawing. Commands, saves, LISP
// and closing fire the reactors in the host's order; DBMOD counts changes and a
// save sets it to 0. Everything the command line shows is kept in a transcript.
// Every port call is counted by name and can be made to fail (FaultPlan).
//
// Example:
//   sim::SimHost host(fs);
//   host.Editor().AddReactor(&recorder);
//   port::Document a = host.OpenDrawing("C:\\dwg\\a.tdd");
//   host.RunCommand("LINE");          // DBMOD 1
//   host.RunCommand("QSAVE");         // will start, save complete, ended; DBMOD 0
//   host.Faults().Fail("AcadDocument::SendCommand", 1, port::kFail, "busy");
#pragma once

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/port/host_session.h"
#include "platform/file_system.h"
#include "sim/drawing_description.h"
#include "sim/fault_plan.h"

namespace tavlet::sim {

class SimHost;
class SimAutomationDocument;

// One open (or closed, kept for stale handles) drawing.
struct SimDocument {
  int serial = 0;
  std::string path;      // saved path; empty for a drawing never saved
  std::string fileName;  // what AcApDocument::fileName gives
  bool readOnly = false;
  bool quiescent = true;
  bool closed = false;
  int dbmod = 0;
  int pushedDbmod = 0;
  DrawingDescription content;
  std::string runningCommand;
  port::Window view = nullptr;
  SimAutomationDocument* automation = nullptr;  // one reference held by the document
  char databaseTag = 0;                         // its address is the Database handle
  // What automation did to it, in order: "zoom extents", "zoom all", "zoom window",
  // "view NAME", "regen", "plot LAYOUT", "refresh LAYOUT".
  std::vector<std::string> actions;
  std::shared_ptr<struct SimEntityIndex> entityIndex;  // sim_content.cpp's, made on the first walk
};

struct ShownBox {
  std::string text;
  unsigned long type = 0;
  long answer = 0;
};

// How a thumbnail reader hands a real drawing's picture to the host: rows
// top-down, 3 bytes a pixel, red first.
struct ThumbnailPixels {
  int width = 0, height = 0;
  std::vector<unsigned char> rgb;
};
using ThumbnailReader = std::function<bool(const std::string& path, ThumbnailPixels& out)>;

class SimHost final : public port::HostSession,
                      private port::DocManager,
                      private port::Editor,
                      private port::DrawingDatabase,
                      private port::Graphics,
                      private port::FrameWindows,
                      private port::MessageBoxes,
                      private port::HostServices,
                      private port::OleLinkManager {
 public:
  explicit SimHost(FileSystem& fs = NativeFileSystem());
  ~SimHost();
  SimHost(const SimHost&) = delete;
  SimHost& operator=(const SimHost&) = delete;

  // ---- the port ----
  port::DocManager* TAVLET_PORT_CALL Documents() override { return this; }
  port::Editor* TAVLET_PORT_CALL EditorService() override { return this; }
  port::DrawingDatabase* TAVLET_PORT_CALL Databases() override { return this; }
  port::Graphics* TAVLET_PORT_CALL GraphicsService() override { return this; }
  port::FrameWindows* TAVLET_PORT_CALL Frame() override { return this; }
  port::MessageBoxes* TAVLET_PORT_CALL Boxes() override { return this; }
  port::HostServices* TAVLET_PORT_CALL Services() override { return this; }
  port::OleLinkManager* TAVLET_PORT_CALL OleLinks() override;
  port::Result TAVLET_PORT_CALL Application(port::AcadApplication** application) override;
  port::Result TAVLET_PORT_CALL CreateSheetSetManager(port::SheetSetManager** manager) override;
  port::Result TAVLET_PORT_CALL LastErrorDescription(port::TextSink* description) override;

  // ---- the user's actions ----
  // Opens like the host's OPEN: events created, end of open, activated. Null on
  // failure, with the reason in LastOpenError().
  port::Document OpenDrawing(const std::string& path, bool readOnly = false);
  // A drawing from description text, named `sourceName` unless it names its path.
  port::Document OpenDescription(const std::string& utf8, const std::string& sourceName);
  port::Document NewDrawing();
  const std::string& LastOpenError() const { return lastOpenError_; }
  void Activate(port::Document doc);
  // Runs a command in the current drawing, as typed. QSAVE, SAVE, SAVEAS
  // (argument: the new name), PSPACE, MSPACE, ZOOM and CLOSE act; any other
  // command changes the drawing when `modifies`.
  void RunCommand(const std::string& name, bool modifies = true, const std::string& argument = "");
  // A command that ends by cancel (a dialog left with Escape) or by failure.
  void CancelCommand(const std::string& name);
  // A command whose work is `during` (APPLOAD loading a module, for instance):
  // CMDNAMES names it meanwhile. It ends normally and changes nothing itself.
  void RunCommandDuring(const std::string& name, const std::function<void()>& during);
  void FailCommand(const std::string& name);
  // A LISP expression; `body` runs inside it (commands it calls, for instance).
  void RunLisp(const std::string& firstLine, const std::function<void()>& body = {});
  void CancelLisp(const std::string& firstLine, const std::function<void()>& body = {});
  // Closes like the host's CLOSE without a question: to be destroyed, destroyed,
  // then activated for the drawing that takes over.
  void CloseDrawing(port::Document doc);
  void PostWindowMessage(port::Window window, unsigned int message);
  // Runs a command the module registered; false if none has that name.
  bool RunRegisteredCommand(const std::string& globalName);

  // ---- what tests look at and set ----
  FaultPlan& Faults() { return faults_; }
  SimDocument* Find(port::Document doc) const;
  SimDocument* FindByDatabase(port::Database db) const;
  port::Document HandleOf(const SimDocument& d) const;
  port::Database DatabaseOf(const SimDocument& d) const;
  std::vector<port::Document> OpenDocuments() const;  // in the manager's walk order
  // Sets the walk order (a permutation of the open drawings).
  void SetIterationOrder(const std::vector<port::Document>& order);
  port::Document MdiActive() const { return mdiActive_; }
  port::Document Current() const { return current_; }
  void SetCurrent(port::Document doc) { current_ = doc; }

  // The command line as the user would read it, in code page 936.
  const std::string& Transcript() const { return transcript_; }
  void ClearTranscript() { transcript_.clear(); }
  const std::vector<std::string>& SentCommands() const { return sentCommands_; }
  // "start NAME" and "ended NAME", in order.
  const std::vector<std::string>& Notices() const { return notices_; }
  const std::vector<ShownBox>& ShownBoxes() const { return shownBoxes_; }
  // acedGetString answers, first in first out; an empty queue answers cancel.
  void QueueStringAnswer(long status, const std::string& text);
  // Message-box answers; `insideLoop` runs while the box is up, before it answers.
  // An empty queue answers OK, Cancel or No by the box's type.
  void QueueBoxAnswer(long answer, std::function<void()> insideLoop = {});

  void SetVariable(const std::string& name, const port::Value& value, const std::string& text = "");
  void SetApplicationMissing(bool missing) { applicationMissing_ = missing; }
  void SetOleLinkManagerMissing(bool missing) { oleLinksMissing_ = missing; }
  void SetSheetSetComponentMissing(bool missing) { sheetSetsMissing_ = missing; }
  void SetScreenShotUnavailable(bool unavailable) { screenShotUnavailable_ = unavailable; }
  void SetQuitting(bool quitting) { quitting_ = quitting; }
  bool QuitRequested() const { return quitRequested_; }
  // "registerAppMDIAware PKT" and "unlockApplication PKT", in order.
  const std::vector<std::string>& LinkerCalls() const { return linkerCalls_; }
  // "frame", "mdiclient", "cmdline", "cmdhost", "cmddock": that window is not found.
  void SetWindowMissing(const std::string& which, bool missing);
  port::Window WindowNamed(const std::string& which) const;
  void SetViewSize(long width, long height);
  void SetColors(const port::ColorSettings& colors) { colors_ = colors; }
  void SetVersionText(const std::string& text) { versionText_ = text; }
  void SetRoamableRootFolder(const std::string& folder) { roamableRoot_ = folder; }
  void SetProductKey(const std::string& key) { productKey_ = key; }
  // Real drawings show the thumbnail they carry unless a test sets another reader.
  void SetThumbnailReader(ThumbnailReader reader) { thumbnailReader_ = std::move(reader); }
  // The registered commands: group, global name.
  std::vector<std::pair<std::string, std::string>> RegisteredCommands() const;
  bool IsLocked(port::Document doc) const;
  FileSystem& Files() { return fs_; }
  // Database objects handed out and not yet closed (released).
  int& OpenDatabaseObjects() { return openDatabaseObjects_; }

  // ---- what the drawing operations meet ----
  struct PlotRecord {
    std::string drawing;  // the drawing's file name
    std::string layout;   // the layout that plotted
    long backgroundPlot = 0;  // BACKGROUNDPLOT while it plotted
  };
  // Every plot, in order.
  const std::vector<PlotRecord>& Plots() const { return plots_; }
  void RecordPlot(const SimDocument& d);
  // The release number of the version text: 16.1 for "16.1s (LMS Tech)".
  double Release() const;
  // The open through automation takes the releases the version table knows, up
  // to the host's own; any other drawing makes the host fail inside the call
  // (kHostException). The user's own OpenDrawing still opens them, so that demos
  // show any real drawing's thumbnail.
  bool ReadsVersion(const std::string& versionString) const;
  // The version string of a drawing file or description; empty for anything else.
  std::string VersionOfFile(const std::string& path) const;
  // A profile's registry root; an empty root: the profile manager gives none.
  void SetProfileRegistryRoot(const std::string& profile, const std::string& root) {
    profileRoots_[profile] = root;
  }

  // ---- used by the automation and sheet-set objects ----
  port::Result Enter(const char* call);  // counts the call, applies a planned fault
  port::Result Fail(port::Result error, const std::string& description);
  void ClearError() { lastError_.clear(); }
  port::Result OpenThroughAutomation(const std::string& path, bool readOnly, port::Document* doc);
  port::Result NewThroughAutomation(const std::string& templateName, port::Document* doc);
  void ExecuteScript(SimDocument& d, const std::string& script);
  void Close(SimDocument& d);
  void Quit() { quitRequested_ = true; }
  void SaveDocument(SimDocument& d, const std::string& newPath);
  // A variable as seen from one drawing (DBMOD, CVPORT, TILEMODE, ... are its own).
  bool ReadVariableOf(const SimDocument* d, const std::string& name, port::Value& value, std::string& text) const;
  SimAutomationDocument* AutomationOf(SimDocument& d);
  void ActivateInternal(port::Document doc);
  void SetTilemode(SimDocument& d, bool model);
  std::string& TranscriptRef() { return transcript_; }

 private:
  // DocManager
  port::Result TAVLET_PORT_CALL MdiActiveDocument(port::Document* doc) override;
  port::Result TAVLET_PORT_CALL CurrentDocument(port::Document* doc) override;
  port::Result TAVLET_PORT_CALL DocumentCount(long* count) override;
  port::Result TAVLET_PORT_CALL DocumentAt(long index, port::Document* doc) override;
  port::Result TAVLET_PORT_CALL DocumentOfDatabase(port::Database db, port::Document* doc) override;
  port::Result TAVLET_PORT_CALL ActivateDocument(port::Document doc, bool passScript) override;
  port::Result TAVLET_PORT_CALL AppContextNewDocument(const char* templateName) override;
  port::Result TAVLET_PORT_CALL LockDocument(port::Document doc, long lockMode) override;
  port::Result TAVLET_PORT_CALL UnlockDocument(port::Document doc) override;
  port::Result TAVLET_PORT_CALL AddReactor(port::DocManagerEvents* events) override;
  port::Result TAVLET_PORT_CALL RemoveReactor(port::DocManagerEvents* events) override;
  port::Result TAVLET_PORT_CALL PathName(port::Document doc, port::TextSink* path) override;
  port::Result TAVLET_PORT_CALL FileName(port::Document doc, port::TextSink* name) override;
  port::Result TAVLET_PORT_CALL IsReadOnly(port::Document doc, bool* readOnly) override;
  port::Result TAVLET_PORT_CALL IsQuiescent(port::Document doc, bool* quiescent) override;
  port::Result TAVLET_PORT_CALL IsModified(port::Document doc, bool* modified) override;
  port::Result TAVLET_PORT_CALL DatabaseOf(port::Document doc, port::Database* db) override;
  port::Result TAVLET_PORT_CALL PopDbmod(port::Document doc) override;
  port::Result TAVLET_PORT_CALL SetCurrentDocument(port::Document doc, long lockMode, bool activate) override;

  // Editor
  port::Result TAVLET_PORT_CALL GetVariable(const char* name, port::Value* value, port::TextSink* text) override;
  port::Result TAVLET_PORT_CALL SetVariable(const char* name, const port::Value* value) override;
  port::Result TAVLET_PORT_CALL Print(const char* text) override;
  port::Result TAVLET_PORT_CALL GetString(bool allowBlanks, const char* prompt, port::TextSink* answer,
                                          long* status) override;
  port::Result TAVLET_PORT_CALL ModelessOperationStart(const char* name) override;
  port::Result TAVLET_PORT_CALL ModelessOperationEnded(const char* name) override;
  port::Result TAVLET_PORT_CALL PostCommandPrompt() override;
  port::Result TAVLET_PORT_CALL GetCurrentColors(port::ColorSettings* colors) override;
  port::Result TAVLET_PORT_CALL AddReactor(port::EditorEvents* events) override;
  port::Result TAVLET_PORT_CALL RemoveReactor(port::EditorEvents* events) override;
  port::Result TAVLET_PORT_CALL RegisterWatcher(port::WindowMessageWatcher* watcher) override;
  port::Result TAVLET_PORT_CALL RemoveWatcher(port::WindowMessageWatcher* watcher) override;
  port::Result TAVLET_PORT_CALL IsQuitting(bool* quitting) override;
  port::Result TAVLET_PORT_CALL AddCommand(const char* group, const char* globalName, const char* localName,
                                           long flags, port::CommandHandler* handler) override;
  port::Result TAVLET_PORT_CALL RemoveGroup(const char* group) override;

  // DrawingDatabase
  port::Result TAVLET_PORT_CALL Tilemode(port::Database db, bool* tilemode) override;
  port::Result TAVLET_PORT_CALL ActiveLayoutName(port::Database db, port::TextSink* name) override;
  port::Result TAVLET_PORT_CALL CurrentSpaceId(port::Database db, port::ObjectId* block) override;
  port::Result TAVLET_PORT_CALL OpenBlockTable(port::Database db, port::SymbolTable** table) override;
  port::Result TAVLET_PORT_CALL OpenViewTable(port::Database db, port::ViewTable** table) override;
  port::Result TAVLET_PORT_CALL OpenBlockRecord(port::ObjectId id, port::BlockRecord** record) override;
  port::Result TAVLET_PORT_CALL OpenViewRecord(port::ObjectId id, port::ViewRecord** record) override;
  port::Result TAVLET_PORT_CALL HasLayerStateManager(port::Database db, bool* exists) override;
  port::Result TAVLET_PORT_CALL LayerStatesDictionary(port::Database db, port::ObjectId* dictionary) override;
  port::Result TAVLET_PORT_CALL OpenDictionary(port::ObjectId id, port::Dictionary** dictionary) override;
  port::Result TAVLET_PORT_CALL RestoreLayerState(port::Database db, const char* name, long* acadStatus) override;
  port::Result TAVLET_PORT_CALL AddRegApp(port::Database db, const char* application, long* acadStatus) override;
  port::Result TAVLET_PORT_CALL ErrorStatusText(long acadStatus, port::TextSink* text) override;
  port::Result TAVLET_PORT_CALL HasSummaryInfo(port::Database db, bool* present) override;
  port::Result TAVLET_PORT_CALL SummaryText(port::Database db, long field, port::TextSink* value,
                                            long* acadStatus) override;
  port::Result TAVLET_PORT_CALL CustomSummaryCount(port::Database db, long* count) override;
  port::Result TAVLET_PORT_CALL CustomSummary(port::Database db, long index, port::TextSink* key,
                                              port::TextSink* value, long* acadStatus) override;

  // Graphics
  port::Result TAVLET_PORT_CALL HasGsView(long viewportNumber, bool* exists) override;
  port::Result TAVLET_PORT_CALL TakeScreenShot(port::ScreenImage** image) override;
  port::Result TAVLET_PORT_CALL CopyViewWindow(port::Window view, port::ScreenImage** image) override;

  // FrameWindows
  port::Result TAVLET_PORT_CALL MainFrame(port::Window* window) override;
  port::Result TAVLET_PORT_CALL MdiClient(port::Window* window) override;
  port::Result TAVLET_PORT_CALL DockCommandLine(port::Window* window) override;
  port::Result TAVLET_PORT_CALL ParentOf(port::Window child, port::Window* parent) override;
  port::Result TAVLET_PORT_CALL DrawingView(port::Window* window) override;
  port::Result TAVLET_PORT_CALL ClientSize(port::Window window, long* width, long* height) override;

  // MessageBoxes
  port::Result TAVLET_PORT_CALL Show(const char* text, unsigned long type, long* answer) override;

  // HostServices
  port::Result TAVLET_PORT_CALL VersionText(port::TextSink* text) override;
  port::Result TAVLET_PORT_CALL RoamableRootFolder(port::TextSink* folder) override;
  port::Result TAVLET_PORT_CALL WorkingDatabase(port::Database* db) override;
  port::Result TAVLET_PORT_CALL ProductKey(port::TextSink* key) override;
  port::Result TAVLET_PORT_CALL ProfileRegistryRoot(const char* profile, port::TextSink* root) override;
  port::Result TAVLET_PORT_CALL RegisterAppMdiAware(void* application) override;
  port::Result TAVLET_PORT_CALL UnlockApplication(void* application) override;

  // OleLinkManager
  port::Result TAVLET_PORT_CALL DocumentObject(port::Database db, port::AcadDocument** document) override;

  struct Variable {
    port::Value value;
    std::string text;
  };
  struct Registered {
    std::string group, globalName, localName;
    port::CommandHandler* handler = nullptr;
  };
  struct BoxAnswer {
    long answer = 0;
    std::function<void()> insideLoop;
  };

  port::Document Adopt(std::unique_ptr<SimDocument> d);
  port::Document OpenFile(const std::string& path, bool readOnly, std::string& error);
  SimDocument* CurrentDoc() const { return Find(current_); }
  template <class F>
  void ForEditor(F f);
  template <class F>
  void ForDocManager(F f);

  FileSystem& fs_;
  FaultPlan faults_;
  std::string lastError_;
  std::vector<std::unique_ptr<SimDocument>> documents_;  // creation order, closed ones kept
  std::vector<SimDocument*> walkOrder_;                   // open ones, in the manager's walk order
  port::Document mdiActive_ = nullptr;
  port::Document current_ = nullptr;
  int nextSerial_ = 1;
  int untitledCount_ = 0;
  std::string lastOpenError_;
  std::vector<port::DocManagerEvents*> docReactors_;
  std::vector<port::EditorEvents*> editorReactors_;
  std::vector<port::WindowMessageWatcher*> watchers_;
  std::vector<Registered> commands_;
  std::map<std::string, Variable> variables_;
  std::string transcript_;
  std::vector<std::string> sentCommands_;
  std::vector<std::string> notices_;
  std::vector<ShownBox> shownBoxes_;
  std::vector<std::string> linkerCalls_;
  std::deque<std::pair<long, std::string>> stringAnswers_;
  std::deque<BoxAnswer> boxAnswers_;
  std::map<port::Document, int> locks_;
  std::map<std::string, bool> missingWindows_;
  bool applicationMissing_ = false;
  bool oleLinksMissing_ = false;
  bool sheetSetsMissing_ = false;
  bool screenShotUnavailable_ = false;
  bool quitting_ = false;
  bool quitRequested_ = false;
  long viewWidth_ = 320, viewHeight_ = 240;
  port::ColorSettings colors_;
  std::string versionText_ = "16.1s (LMS Tech)";
  std::string roamableRoot_;
  std::string productKey_ = "Software\\Host\\R16.1\\ACAD-301:804";
  ThumbnailReader thumbnailReader_;
  port::AcadApplication* application_ = nullptr;
  int openDatabaseObjects_ = 0;
  std::vector<PlotRecord> plots_;
  std::map<std::string, std::string> profileRoots_;
};

}  // namespace tavlet::sim
