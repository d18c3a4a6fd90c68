#include "sim/sim_host.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "sim/dwg_picture_reader.h"
#include "sim/sim_automation.h"
#include "text/codepage.h"

namespace tavlet::sim {

namespace {

port::Window FixedWindow(std::uintptr_t id) { return reinterpret_cast<port::Window>(id); }

// The frame's windows, parents first: frame > command dock > command host >
// command line; the MDI client is a child of the frame.
constexpr std::uintptr_t kFrame = 0x1010, kMdiClient = 0x1020, kCommandDock = 0x1030, kCommandHost = 0x1040,
                         kCommandLine = 0x1050, kFirstView = 0x2000;

std::string Upper(std::string s) {
  for (std::size_t i = 0; i < s.size(); i += text::CharLength(s, i))
    if (s[i] >= 'a' && s[i] <= 'z') s[i] = static_cast<char>(s[i] - 'a' + 'A');
  return s;
}

std::string NameOfPath(const std::string& path) {
  std::size_t cut = std::string::npos;
  for (std::size_t i = 0; i < path.size(); i += text::CharLength(path, i))
    if (path[i] == '\\' || path[i] == '/' || path[i] == ':') cut = i;
  return cut == std::string::npos ? path : path.substr(cut + 1);
}

void Give(port::TextSink* sink, const std::string& s) {
  if (sink) sink->Assign(s.data(), static_cast<long>(s.size()));
}

port::Value ShortValue(long v) {
  port::Value value;
  value.type = port::kValueShort;
  value.integer = v;
  return value;
}

port::Value StringValue() {
  port::Value value;
  value.type = port::kValueString;
  return value;
}

}  // namespace

SimHost::SimHost(FileSystem& fs) : fs_(fs) {
  thumbnailReader_ = [&fs](const std::string& path, ThumbnailPixels& out) { return ReadDwgPicture(fs, path, out); };
  colors_.modelBackground = 0x000000;
  colors_.layoutBackground = 0xFFFFFF;
  colors_.modelCrosshair = 0xFFFFFF;
  colors_.layoutCrosshair = 0x000000;
  variables_["BACKGROUNDPLOT"] = {ShortValue(2), ""};
  variables_["SSMAUTOOPEN"] = {ShortValue(1), ""};
  variables_["CPROFILE"] = {StringValue(), "<<Unnamed Profile>>"};
}

SimHost::~SimHost() {
  for (auto& d : documents_) {
    if (!d->automation) continue;
    d->automation->Detach();
    d->automation->Release();
  }
  if (application_) application_->Release();
}

// ---------------------------------------------------------------- bookkeeping

port::Result SimHost::Enter(const char* call) {
  std::string description;
  port::Result r = faults_.Enter(call, description);
  if (port::Failed(r)) return Fail(r, description);
  return port::kOk;
}

port::Result SimHost::Fail(port::Result error, const std::string& description) {
  lastError_ = description;
  return error;
}

port::Result SimHost::LastErrorDescription(port::TextSink* description) {
  Give(description, lastError_);
  return port::kOk;
}

SimDocument* SimHost::Find(port::Document doc) const {
  for (const auto& d : documents_)
    if (reinterpret_cast<port::Document>(d.get()) == doc) return d.get();
  return nullptr;
}

SimDocument* SimHost::FindByDatabase(port::Database db) const {
  for (const auto& d : documents_)
    if (reinterpret_cast<port::Database>(&d->databaseTag) == db) return d.get();
  return nullptr;
}

port::Document SimHost::HandleOf(const SimDocument& d) const {
  return reinterpret_cast<port::Document>(const_cast<SimDocument*>(&d));
}

port::Database SimHost::DatabaseOf(const SimDocument& d) const {
  return reinterpret_cast<port::Database>(const_cast<char*>(&d.databaseTag));
}

std::vector<port::Document> SimHost::OpenDocuments() const {
  std::vector<port::Document> out;
  for (SimDocument* d : walkOrder_) out.push_back(HandleOf(*d));
  return out;
}

void SimHost::SetIterationOrder(const std::vector<port::Document>& order) {
  std::vector<SimDocument*> walk;
  for (port::Document doc : order) {
    SimDocument* d = Find(doc);
    if (d && !d->closed) walk.push_back(d);
  }
  if (walk.size() == walkOrder_.size()) walkOrder_ = walk;
}

template <class F>
void SimHost::ForEditor(F f) {
  std::vector<port::EditorEvents*> copy = editorReactors_;
  for (port::EditorEvents* r : copy) f(r);
}

template <class F>
void SimHost::ForDocManager(F f) {
  std::vector<port::DocManagerEvents*> copy = docReactors_;
  for (port::DocManagerEvents* r : copy) f(r);
}

// ---------------------------------------------------------------- opening

port::Document SimHost::Adopt(std::unique_ptr<SimDocument> d) {
  d->serial = nextSerial_++;
  d->view = FixedWindow(kFirstView + static_cast<std::uintptr_t>(d->serial));
  d->dbmod = d->content.dbmodOnOpen;
  d->pushedDbmod = 0;
  SimDocument* raw = d.get();
  documents_.push_back(std::move(d));
  walkOrder_.push_back(raw);
  port::Document doc = HandleOf(*raw);
  current_ = doc;
  ForDocManager([&](port::DocManagerEvents* r) { r->DocumentCreated(doc); });
  if (!raw->path.empty()) {
    std::string name = raw->path;
    ForEditor([&](port::EditorEvents* r) { r->EndDwgOpen(name.c_str()); });
  }
  if (!raw->closed) ActivateInternal(doc);
  return doc;
}

port::Document SimHost::OpenFile(const std::string& path, bool readOnly, std::string& error) {
  for (SimDocument* open : walkOrder_) {
    if (text::Mbsicmp(open->path, path) == 0) {
      ActivateInternal(HandleOf(*open));
      return HandleOf(*open);
    }
  }
  std::string bytes;
  FileError fe = fs_.ReadFile(path, bytes);
  if (fe != FileError::None) {
    error = "Cannot find the file " + path + ".";
    return nullptr;
  }
  auto d = std::make_unique<SimDocument>();
  if (LooksLikeDrawingDescription(bytes)) {
    ParseResult parsed = ParseDrawingDescription(bytes, path, d->content);
    if (!parsed.ok) {
      error = parsed.message;
      return nullptr;
    }
  } else if (bytes.size() >= 6 && bytes.compare(0, 2, "AC") == 0) {
    d->content.version = bytes.substr(0, 6);
    d->content.hasPicture = false;
    ThumbnailPixels pixels;
    if (thumbnailReader_ && thumbnailReader_(path, pixels) && pixels.width > 0 && pixels.height > 0 &&
        pixels.rgb.size() >= static_cast<std::size_t>(pixels.width) * pixels.height * 3) {
      // The thumbnail becomes the picture as a grid of one-pixel fills.
      Picture& pic = d->content.picture;
      pic.width = pixels.width;
      pic.height = pixels.height;
      pic.background = 0;
      for (int y = 0; y < pixels.height; ++y)
        for (int x = 0; x < pixels.width; ++x) {
          const unsigned char* p = &pixels.rgb[(static_cast<std::size_t>(y) * pixels.width + x) * 3];
          pic.items.push_back({PictureItem::Kind::Fill, x, y, x, y,
                               (std::uint32_t{p[0]} << 16) | (std::uint32_t{p[1]} << 8) | p[2]});
        }
      d->content.hasPicture = true;
    }
  } else {
    error = "Invalid drawing file " + path + ".";
    return nullptr;
  }
  d->path = d->content.path.empty() ? path : d->content.path;
  d->fileName = d->path;
  d->readOnly = readOnly || d->content.readOnly;
  return Adopt(std::move(d));
}

port::Document SimHost::OpenDrawing(const std::string& path, bool readOnly) {
  lastOpenError_.clear();
  return OpenFile(path, readOnly, lastOpenError_);
}

port::Document SimHost::OpenDescription(const std::string& utf8, const std::string& sourceName) {
  lastOpenError_.clear();
  auto d = std::make_unique<SimDocument>();
  ParseResult parsed = ParseDrawingDescription(utf8, sourceName, d->content);
  if (!parsed.ok) {
    lastOpenError_ = parsed.message;
    return nullptr;
  }
  d->path = d->content.path.empty() ? sourceName : d->content.path;
  d->fileName = d->path;
  d->readOnly = d->content.readOnly;
  return Adopt(std::move(d));
}

port::Document SimHost::NewDrawing() {
  auto d = std::make_unique<SimDocument>();
  d->fileName = "Drawing" + std::to_string(++untitledCount_) + ".dwg";
  d->content.hasPicture = true;
  d->content.picture.width = 4;
  d->content.picture.height = 3;
  return Adopt(std::move(d));
}

port::Result SimHost::OpenThroughAutomation(const std::string& path, bool readOnly, port::Document* doc) {
  *doc = nullptr;
  std::string version = VersionOfFile(path);
  if (!version.empty() && !ReadsVersion(version))
    return Fail(port::kHostException, "The drawing file was made by a later release.");
  std::string error;
  *doc = OpenFile(path, readOnly, error);
  if (!*doc) return Fail(port::kFail, error);
  return port::kOk;
}

port::Result SimHost::NewThroughAutomation(const std::string& templateName, port::Document* doc) {
  if (!templateName.empty()) {
    FileInfo info = fs_.Stat(templateName);
    if (!info.exists) return Fail(port::kFail, "Cannot find the template " + templateName + ".");
  }
  *doc = NewDrawing();
  return port::kOk;
}

// ---------------------------------------------------------------- activation, commands

void SimHost::ActivateInternal(port::Document doc) {
  SimDocument* d = Find(doc);
  if (!d || d->closed) return;
  current_ = doc;
  if (mdiActive_ == doc) return;
  mdiActive_ = doc;
  ForDocManager([&](port::DocManagerEvents* r) { r->DocumentActivated(doc); });
}

void SimHost::Activate(port::Document doc) { ActivateInternal(doc); }

void SimHost::SetTilemode(SimDocument& d, bool model) {
  if (model) {
    d.content.activeLayout = "Model";
    d.content.cvport = 2;
  } else if (d.content.activeLayout == "Model" && !d.content.layouts.empty()) {
    d.content.activeLayout = d.content.layouts.front();
    d.content.cvport = 1;
  }
}

void SimHost::SaveDocument(SimDocument& d, const std::string& newPath) {
  if (!newPath.empty()) {
    d.path = newPath;
    d.fileName = newPath;
    d.readOnly = false;
  }
  d.dbmod = 0;
  std::string name = d.path;
  port::Database db = DatabaseOf(d);
  ForEditor([&](port::EditorEvents* r) { r->SaveComplete(db, name.c_str()); });
}

void SimHost::RunCommand(const std::string& typed, bool modifies, const std::string& argument) {
  SimDocument* d = CurrentDoc();
  if (!d) return;
  const std::string name = Upper(typed);
  d->runningCommand = name;
  d->quiescent = false;
  ForEditor([&](port::EditorEvents* r) { r->CommandWillStart(name.c_str()); });
  bool cancelled = false;
  if (name == "QSAVE" || name == "SAVE") {
    // An unnamed or read-only drawing would get the save dialog; the sim leaves it with Escape.
    cancelled = d->readOnly || d->path.empty();
    if (!cancelled) SaveDocument(*d, "");
  } else if (name == "SAVEAS") {
    cancelled = argument.empty();
    if (!cancelled) SaveDocument(*d, argument);
  } else if (name == "CLOSE") {
    Close(*d);
    return;
  } else if (name == "PSPACE") {
    if (d->content.activeLayout != "Model") d->content.cvport = 1;
  } else if (name == "MSPACE") {
    for (const ViewportDesc& v : d->content.viewports)
      if (v.layout == d->content.activeLayout && v.number > 1) {
        d->content.cvport = v.number;
        break;
      }
  } else if (name == "ZOOM") {
    d->actions.push_back(argument.empty() ? "zoom" : "zoom " + argument);
  } else if (modifies) {
    ++d->dbmod;
  }
  d->runningCommand.clear();
  d->quiescent = true;
  if (cancelled)
    ForEditor([&](port::EditorEvents* r) { r->CommandCancelled(name.c_str()); });
  else
    ForEditor([&](port::EditorEvents* r) { r->CommandEnded(name.c_str()); });
}

void SimHost::RunCommandDuring(const std::string& typed, const std::function<void()>& during) {
  SimDocument* d = CurrentDoc();
  if (!d) return;
  const std::string name = Upper(typed);
  port::Document doc = current_;
  d->runningCommand = name;
  d->quiescent = false;
  ForEditor([&](port::EditorEvents* r) { r->CommandWillStart(name.c_str()); });
  if (during) during();
  if (SimDocument* still = Find(doc)) {
    still->runningCommand.clear();
    still->quiescent = true;
  }
  ForEditor([&](port::EditorEvents* r) { r->CommandEnded(name.c_str()); });
}

void SimHost::CancelCommand(const std::string& typed) {
  SimDocument* d = CurrentDoc();
  if (!d) return;
  const std::string name = Upper(typed);
  ForEditor([&](port::EditorEvents* r) { r->CommandWillStart(name.c_str()); });
  ForEditor([&](port::EditorEvents* r) { r->CommandCancelled(name.c_str()); });
}

void SimHost::FailCommand(const std::string& typed) {
  SimDocument* d = CurrentDoc();
  if (!d) return;
  const std::string name = Upper(typed);
  ForEditor([&](port::EditorEvents* r) { r->CommandWillStart(name.c_str()); });
  ForEditor([&](port::EditorEvents* r) { r->CommandFailed(name.c_str()); });
}

void SimHost::RunLisp(const std::string& firstLine, const std::function<void()>& body) {
  ForEditor([&](port::EditorEvents* r) { r->LispWillStart(firstLine.c_str()); });
  if (body) body();
  ForEditor([&](port::EditorEvents* r) { r->LispEnded(); });
}

void SimHost::CancelLisp(const std::string& firstLine, const std::function<void()>& body) {
  ForEditor([&](port::EditorEvents* r) { r->LispWillStart(firstLine.c_str()); });
  if (body) body();
  ForEditor([&](port::EditorEvents* r) { r->LispCancelled(); });
}

void SimHost::Close(SimDocument& d) {
  if (d.closed) return;
  port::Document doc = HandleOf(d);
  ForDocManager([&](port::DocManagerEvents* r) { r->DocumentToBeDestroyed(doc); });
  walkOrder_.erase(std::remove(walkOrder_.begin(), walkOrder_.end(), &d), walkOrder_.end());
  d.closed = true;
  locks_.erase(doc);
  if (d.automation) {
    d.automation->Detach();
    d.automation->Release();
    d.automation = nullptr;
  }
  bool wasActive = mdiActive_ == doc;
  if (wasActive) mdiActive_ = nullptr;
  if (current_ == doc) current_ = nullptr;
  std::string name = d.fileName;
  ForDocManager([&](port::DocManagerEvents* r) { r->DocumentDestroyed(name.c_str()); });
  if (wasActive && !walkOrder_.empty()) ActivateInternal(HandleOf(*walkOrder_.back()));
  if (!current_ && mdiActive_) current_ = mdiActive_;
}

void SimHost::CloseDrawing(port::Document doc) {
  if (SimDocument* d = Find(doc)) Close(*d);
}

void SimHost::ExecuteScript(SimDocument& d, const std::string& script) {
  sentCommands_.push_back(script);
  current_ = HandleOf(d);
  std::size_t start = 0;
  while (start < script.size()) {
    std::size_t end = script.find('\n', start);
    std::string line = script.substr(start, end == std::string::npos ? std::string::npos : end - start);
    start = end == std::string::npos ? script.size() : end + 1;
    std::vector<std::string> tokens;
    std::string token;
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); i += text::CharLength(line, i)) {
      char c = line[i];
      if (c == '"') {
        quoted = !quoted;
      } else if (c == ' ' && !quoted) {
        if (!token.empty()) tokens.push_back(token);
        token.clear();
      } else {
        token.append(line, i, text::CharLength(line, i));
      }
    }
    if (!token.empty()) tokens.push_back(token);
    if (tokens.empty()) continue;
    transcript_ += "Command: " + line + "\n";
    std::string name = tokens.front();
    while (!name.empty() && (name.front() == '_' || name.front() == '.')) name.erase(0, 1);
    SimDocument* target = Find(current_);
    if (!target || target->closed) return;
    RunCommand(name, false, tokens.size() > 1 ? tokens.back() : "");
  }
}

void SimHost::PostWindowMessage(port::Window window, unsigned int message) {
  std::vector<port::WindowMessageWatcher*> copy = watchers_;
  for (port::WindowMessageWatcher* w : copy) w->Message(window, message, 0, 0);
}

bool SimHost::RunRegisteredCommand(const std::string& globalName) {
  for (const Registered& c : commands_) {
    if (c.globalName == globalName) {
      c.handler->Run();
      return true;
    }
  }
  return false;
}

std::vector<std::pair<std::string, std::string>> SimHost::RegisteredCommands() const {
  std::vector<std::pair<std::string, std::string>> out;
  for (const Registered& c : commands_) out.push_back({c.group, c.globalName});
  return out;
}

bool SimHost::IsLocked(port::Document doc) const {
  auto it = locks_.find(doc);
  return it != locks_.end() && it->second > 0;
}

void SimHost::QueueStringAnswer(long status, const std::string& text) { stringAnswers_.push_back({status, text}); }

void SimHost::QueueBoxAnswer(long answer, std::function<void()> insideLoop) {
  boxAnswers_.push_back({answer, std::move(insideLoop)});
}

void SimHost::SetVariable(const std::string& name, const port::Value& value, const std::string& text) {
  variables_[Upper(name)] = {value, text};
}

void SimHost::SetWindowMissing(const std::string& which, bool missing) { missingWindows_[which] = missing; }

port::Window SimHost::WindowNamed(const std::string& which) const {
  auto missing = missingWindows_.find(which);
  if (missing != missingWindows_.end() && missing->second) return nullptr;
  if (which == "frame") return FixedWindow(kFrame);
  if (which == "mdiclient") return FixedWindow(kMdiClient);
  if (which == "cmdline") return FixedWindow(kCommandLine);
  if (which == "cmdhost") return FixedWindow(kCommandHost);
  if (which == "cmddock") return FixedWindow(kCommandDock);
  return nullptr;
}

void SimHost::SetViewSize(long width, long height) {
  viewWidth_ = width;
  viewHeight_ = height;
}

// ---------------------------------------------------------------- DocManager

port::Result SimHost::MdiActiveDocument(port::Document* doc) {
  if (port::Result r = Enter("DocManager::MdiActiveDocument")) return r;
  *doc = mdiActive_;
  return port::kOk;
}

port::Result SimHost::CurrentDocument(port::Document* doc) {
  if (port::Result r = Enter("DocManager::CurrentDocument")) return r;
  *doc = current_;
  return port::kOk;
}

port::Result SimHost::DocumentCount(long* count) {
  if (port::Result r = Enter("DocManager::DocumentCount")) return r;
  *count = static_cast<long>(walkOrder_.size());
  return port::kOk;
}

port::Result SimHost::DocumentAt(long index, port::Document* doc) {
  *doc = nullptr;
  if (port::Result r = Enter("DocManager::DocumentAt")) return r;
  if (index < 0 || index >= static_cast<long>(walkOrder_.size())) return Fail(port::kBadIndex, "No such document.");
  *doc = HandleOf(*walkOrder_[static_cast<std::size_t>(index)]);
  return port::kOk;
}

port::Result SimHost::DocumentOfDatabase(port::Database db, port::Document* doc) {
  *doc = nullptr;
  if (port::Result r = Enter("DocManager::DocumentOfDatabase")) return r;
  SimDocument* d = FindByDatabase(db);
  if (d && !d->closed) *doc = HandleOf(*d);
  return port::kOk;
}

port::Result SimHost::ActivateDocument(port::Document doc, bool) {
  if (port::Result r = Enter("DocManager::ActivateDocument")) return r;
  SimDocument* d = Find(doc);
  if (!d || d->closed) return Fail(port::kInvalidArgument, "The document is not open.");
  ActivateInternal(doc);
  return port::kOk;
}

port::Result SimHost::AppContextNewDocument(const char* templateName) {
  if (port::Result r = Enter("DocManager::AppContextNewDocument")) return r;
  port::Document doc = nullptr;
  return NewThroughAutomation(templateName ? templateName : "", &doc);
}

port::Result SimHost::LockDocument(port::Document doc, long) {
  if (port::Result r = Enter("DocManager::LockDocument")) return r;
  SimDocument* d = Find(doc);
  if (!d || d->closed) return Fail(port::kInvalidArgument, "The document is not open.");
  ++locks_[doc];
  return port::kOk;
}

port::Result SimHost::UnlockDocument(port::Document doc) {
  if (port::Result r = Enter("DocManager::UnlockDocument")) return r;
  auto it = locks_.find(doc);
  if (it == locks_.end() || it->second == 0) return Fail(port::kUnexpected, "The document is not locked.");
  --it->second;
  return port::kOk;
}

port::Result SimHost::AddReactor(port::DocManagerEvents* events) {
  if (port::Result r = Enter("DocManager::AddReactor")) return r;
  docReactors_.push_back(events);
  return port::kOk;
}

port::Result SimHost::RemoveReactor(port::DocManagerEvents* events) {
  if (port::Result r = Enter("DocManager::RemoveReactor")) return r;
  docReactors_.erase(std::remove(docReactors_.begin(), docReactors_.end(), events), docReactors_.end());
  return port::kOk;
}

#define SIM_DOCUMENT(call)                                                             \
  if (port::Result r = Enter(call)) return r;                                           \
  SimDocument* d = Find(doc);                                                           \
  if (!d || d->closed) return Fail(port::kInvalidArgument, "The document is not open.")

port::Result SimHost::PathName(port::Document doc, port::TextSink* path) {
  SIM_DOCUMENT("DocManager::PathName");
  Give(path, d->path);
  return port::kOk;
}

port::Result SimHost::FileName(port::Document doc, port::TextSink* name) {
  SIM_DOCUMENT("DocManager::FileName");
  Give(name, d->fileName);
  return port::kOk;
}

port::Result SimHost::IsReadOnly(port::Document doc, bool* readOnly) {
  SIM_DOCUMENT("DocManager::IsReadOnly");
  *readOnly = d->readOnly;
  return port::kOk;
}

port::Result SimHost::IsQuiescent(port::Document doc, bool* quiescent) {
  SIM_DOCUMENT("DocManager::IsQuiescent");
  *quiescent = d->quiescent;
  return port::kOk;
}

port::Result SimHost::IsModified(port::Document doc, bool* modified) {
  SIM_DOCUMENT("DocManager::IsModified");
  *modified = d->dbmod > 0;
  return port::kOk;
}

port::Result SimHost::DatabaseOf(port::Document doc, port::Database* db) {
  SIM_DOCUMENT("DocManager::DatabaseOf");
  *db = DatabaseOf(*d);
  return port::kOk;
}

port::Result SimHost::PopDbmod(port::Document doc) {
  SIM_DOCUMENT("DocManager::PopDbmod");
  d->dbmod = d->pushedDbmod;
  return port::kOk;
}

port::Result SimHost::SetCurrentDocument(port::Document doc, long, bool activate) {
  SIM_DOCUMENT("DocManager::SetCurrentDocument");
  if (activate) ActivateInternal(doc);
  else current_ = doc;
  return port::kOk;
}

#undef SIM_DOCUMENT

// ---------------------------------------------------------------- Editor

bool SimHost::ReadVariableOf(const SimDocument* d, const std::string& name, port::Value& value,
                             std::string& text) const {
  Variable out;
  bool found = true;
  if (d && name == "DBMOD") out = {ShortValue(d->dbmod), ""};
  else if (d && name == "CVPORT") out = {ShortValue(d->content.cvport), ""};
  else if (d && name == "TILEMODE") out = {ShortValue(d->content.activeLayout == "Model" ? 1 : 0), ""};
  else if (name == "CMDNAMES") out = {StringValue(), d ? d->runningCommand : ""};
  else if (d && name == "CMDACTIVE") out = {ShortValue(d->runningCommand.empty() ? 0 : 1), ""};
  else if (d && name == "DWGNAME") out = {StringValue(), NameOfPath(d->fileName)};
  else found = false;
  if (!found) {
    auto it = variables_.find(name);
    if (it == variables_.end()) return false;
    out = it->second;
  }
  value = out.value;
  value.text = nullptr;
  text = out.text;
  return true;
}

port::Result SimHost::GetVariable(const char* name, port::Value* value, port::TextSink* text) {
  if (port::Result r = Enter("Editor::GetVariable")) return r;
  std::string found;
  if (!ReadVariableOf(CurrentDoc(), Upper(name ? name : ""), *value, found)) {
    *value = port::Value();
    return Fail(port::kInvalidArgument, std::string("Unknown variable ") + (name ? name : "") + ".");
  }
  if (value->type == port::kValueString) Give(text, found);
  return port::kOk;
}

port::Result SimHost::SetVariable(const char* name, const port::Value* value) {
  if (port::Result r = Enter("Editor::SetVariable")) return r;
  const std::string key = Upper(name ? name : "");
  SimDocument* d = CurrentDoc();
  if (d && key == "CVPORT") {
    d->content.cvport = static_cast<int>(value->integer);
  } else if (d && key == "TILEMODE") {
    SetTilemode(*d, value->integer != 0);
  } else if (key == "DBMOD" || key == "CMDNAMES" || key == "DWGNAME") {
    return Fail(port::kAccessDenied, "The variable " + key + " is read-only.");
  } else {
    Variable v{*value, value->type == port::kValueString && value->text ? value->text : ""};
    v.value.text = nullptr;
    variables_[key] = v;
  }
  ForEditor([&](port::EditorEvents* r) { r->SysVarChanged(key.c_str(), true); });
  return port::kOk;
}

port::Result SimHost::Print(const char* text) {
  if (port::Result r = Enter("Editor::Print")) return r;
  transcript_ += text ? text : "";
  return port::kOk;
}

port::Result SimHost::GetString(bool, const char* prompt, port::TextSink* answer, long* status) {
  if (port::Result r = Enter("Editor::GetString")) return r;
  transcript_ += prompt ? prompt : "";
  if (stringAnswers_.empty()) {
    *status = port::kRtCancel;
    transcript_ += "*Cancel*\n";
    return port::kOk;
  }
  auto [code, text] = stringAnswers_.front();
  stringAnswers_.pop_front();
  *status = code;
  if (code == port::kRtNormal) {
    Give(answer, text);
    transcript_ += text + "\n";
  } else {
    transcript_ += "*Cancel*\n";
  }
  return port::kOk;
}

port::Result SimHost::ModelessOperationStart(const char* name) {
  if (port::Result r = Enter("Editor::ModelessOperationStart")) return r;
  notices_.push_back(std::string("start ") + (name ? name : ""));
  return port::kOk;
}

port::Result SimHost::ModelessOperationEnded(const char* name) {
  if (port::Result r = Enter("Editor::ModelessOperationEnded")) return r;
  notices_.push_back(std::string("ended ") + (name ? name : ""));
  return port::kOk;
}

port::Result SimHost::PostCommandPrompt() {
  if (port::Result r = Enter("Editor::PostCommandPrompt")) return r;
  transcript_ += "\nCommand: ";
  return port::kOk;
}

port::Result SimHost::GetCurrentColors(port::ColorSettings* colors) {
  if (port::Result r = Enter("Editor::GetCurrentColors")) return r;
  *colors = colors_;
  return port::kOk;
}

port::Result SimHost::AddReactor(port::EditorEvents* events) {
  if (port::Result r = Enter("Editor::AddReactor")) return r;
  editorReactors_.push_back(events);
  return port::kOk;
}

port::Result SimHost::RemoveReactor(port::EditorEvents* events) {
  if (port::Result r = Enter("Editor::RemoveReactor")) return r;
  editorReactors_.erase(std::remove(editorReactors_.begin(), editorReactors_.end(), events), editorReactors_.end());
  return port::kOk;
}

port::Result SimHost::RegisterWatcher(port::WindowMessageWatcher* watcher) {
  if (port::Result r = Enter("Editor::RegisterWatcher")) return r;
  watchers_.push_back(watcher);
  return port::kOk;
}

port::Result SimHost::RemoveWatcher(port::WindowMessageWatcher* watcher) {
  if (port::Result r = Enter("Editor::RemoveWatcher")) return r;
  watchers_.erase(std::remove(watchers_.begin(), watchers_.end(), watcher), watchers_.end());
  return port::kOk;
}

port::Result SimHost::IsQuitting(bool* quitting) {
  if (port::Result r = Enter("Editor::IsQuitting")) return r;
  *quitting = quitting_;
  return port::kOk;
}

port::Result SimHost::AddCommand(const char* group, const char* globalName, const char* localName, long,
                                 port::CommandHandler* handler) {
  if (port::Result r = Enter("Editor::AddCommand")) return r;
  std::string global = globalName ? globalName : "";
  for (const Registered& c : commands_)
    if (c.globalName == global) return Fail(port::kFail, "Duplicate command name " + global + ".");
  commands_.push_back({group ? group : "", global, localName ? localName : "", handler});
  return port::kOk;
}

port::Result SimHost::RemoveGroup(const char* group) {
  if (port::Result r = Enter("Editor::RemoveGroup")) return r;
  std::string g = group ? group : "";
  auto before = commands_.size();
  commands_.erase(std::remove_if(commands_.begin(), commands_.end(), [&](const Registered& c) { return c.group == g; }),
                  commands_.end());
  if (commands_.size() == before) return Fail(port::kFail, "No command group " + g + ".");
  return port::kOk;
}

// ---------------------------------------------------------------- FrameWindows

port::Result SimHost::MainFrame(port::Window* window) {
  if (port::Result r = Enter("FrameWindows::MainFrame")) return r;
  *window = WindowNamed("frame");
  return port::kOk;
}

port::Result SimHost::MdiClient(port::Window* window) {
  if (port::Result r = Enter("FrameWindows::MdiClient")) return r;
  *window = WindowNamed("frame") ? WindowNamed("mdiclient") : nullptr;
  return port::kOk;
}

port::Result SimHost::DockCommandLine(port::Window* window) {
  if (port::Result r = Enter("FrameWindows::DockCommandLine")) return r;
  *window = WindowNamed("cmdline");
  return port::kOk;
}

port::Result SimHost::ParentOf(port::Window child, port::Window* parent) {
  if (port::Result r = Enter("FrameWindows::ParentOf")) return r;
  *parent = nullptr;
  if (!child) return port::kOk;
  if (child == FixedWindow(kCommandLine)) *parent = WindowNamed("cmdhost");
  else if (child == FixedWindow(kCommandHost)) *parent = WindowNamed("cmddock");
  else if (child == FixedWindow(kCommandDock) || child == FixedWindow(kMdiClient)) *parent = WindowNamed("frame");
  else if (SimDocument* d = Find(mdiActive_); d && child == d->view) *parent = WindowNamed("mdiclient");
  return port::kOk;
}

port::Result SimHost::DrawingView(port::Window* window) {
  if (port::Result r = Enter("FrameWindows::DrawingView")) return r;
  SimDocument* d = Find(mdiActive_);
  *window = d ? d->view : nullptr;
  return port::kOk;
}

port::Result SimHost::ClientSize(port::Window window, long* width, long* height) {
  if (port::Result r = Enter("FrameWindows::ClientSize")) return r;
  *width = *height = 0;
  for (const auto& d : documents_) {
    if (!d->closed && d->view == window) {
      *width = viewWidth_;
      *height = viewHeight_;
      return port::kOk;
    }
  }
  return Fail(port::kInvalidArgument, "Not a window of the host.");
}

// ---------------------------------------------------------------- MessageBoxes

port::Result SimHost::Show(const char* text, unsigned long type, long* answer) {
  if (port::Result r = Enter("MessageBoxes::Show")) return r;
  ShownBox shown{text ? text : "", type, 0};
  const unsigned long buttons = type & 0xF;
  long fallback = buttons == port::kBoxYesNo ? port::kAnswerNo
                  : buttons == port::kBoxOk  ? port::kAnswerOk
                                             : port::kAnswerCancel;
  long given = fallback;
  if (!boxAnswers_.empty()) {
    BoxAnswer next = std::move(boxAnswers_.front());
    boxAnswers_.pop_front();
    // The box's modal loop pumps messages: the host's events can run here.
    if (next.insideLoop) next.insideLoop();
    given = next.answer;
  }
  shown.answer = given;
  shownBoxes_.push_back(shown);
  *answer = given;
  return port::kOk;
}

// ---------------------------------------------------------------- HostServices

port::Result SimHost::VersionText(port::TextSink* text) {
  if (port::Result r = Enter("HostServices::VersionText")) return r;
  Give(text, versionText_);
  return port::kOk;
}

port::Result SimHost::RoamableRootFolder(port::TextSink* folder) {
  if (port::Result r = Enter("HostServices::RoamableRootFolder")) return r;
  Give(folder, roamableRoot_);
  return port::kOk;
}

port::Result SimHost::WorkingDatabase(port::Database* db) {
  if (port::Result r = Enter("HostServices::WorkingDatabase")) return r;
  SimDocument* d = CurrentDoc();
  *db = d ? DatabaseOf(*d) : nullptr;
  return port::kOk;
}

port::Result SimHost::ProductKey(port::TextSink* key) {
  if (port::Result r = Enter("HostServices::ProductKey")) return r;
  Give(key, productKey_);
  return port::kOk;
}

port::Result SimHost::ProfileRegistryRoot(const char* profile, port::TextSink* root) {
  if (port::Result r = Enter("HostServices::ProfileRegistryRoot")) return r;
  if (!profile || !*profile) return port::kFalse;
  if (auto known = profileRoots_.find(profile); known != profileRoots_.end()) {
    if (known->second.empty()) return port::kFalse;
    Give(root, known->second);
    return port::kOk;
  }
  Give(root, "HKEY_CURRENT_USER\\" + productKey_ + "\\Profiles\\" + profile);
  return port::kOk;
}

namespace {
std::string PointerText(const void* p) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%p", p);
  return buffer;
}
}  // namespace

port::Result SimHost::RegisterAppMdiAware(void* application) {
  if (port::Result r = Enter("HostServices::RegisterAppMdiAware")) return r;
  linkerCalls_.push_back("registerAppMDIAware " + PointerText(application));
  return port::kOk;
}

port::Result SimHost::UnlockApplication(void* application) {
  if (port::Result r = Enter("HostServices::UnlockApplication")) return r;
  linkerCalls_.push_back("unlockApplication " + PointerText(application));
  return port::kOk;
}

// ---------------------------------------------------------------- automation entry points

port::OleLinkManager* SimHost::OleLinks() {
  std::string description;
  faults_.Enter("HostSession::OleLinks", description);
  return oleLinksMissing_ ? nullptr : this;
}

port::Result SimHost::Application(port::AcadApplication** application) {
  *application = nullptr;
  if (port::Result r = Enter("HostSession::Application")) return r;
  if (applicationMissing_) return Fail(port::kNoInterface, "No such interface supported");
  if (!application_) application_ = NewSimApplication(*this);
  application_->AddRef();
  *application = application_;
  return port::kOk;
}

port::Result SimHost::DocumentObject(port::Database db, port::AcadDocument** document) {
  *document = nullptr;
  if (port::Result r = Enter("OleLinkManager::DocumentObject")) return r;
  SimDocument* d = FindByDatabase(db);
  if (!d || d->closed) return Fail(port::kNoInterface, "No such interface supported");
  SimAutomationDocument* object = AutomationOf(*d);
  object->AddRef();
  *document = object;
  return port::kOk;
}

SimAutomationDocument* SimHost::AutomationOf(SimDocument& d) {
  if (!d.automation) d.automation = NewSimAutomationDocument(*this, d);
  return d.automation;
}

}  // namespace tavlet::sim
