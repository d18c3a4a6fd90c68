#include "support/script_replay.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "bar/bar_model.h"
#include "host/module.h"
#include "menus/context_menu.h"
#include "sim/module_harness.h"
#include "text/codepage.h"
#include "text/words.h"

namespace tavlet::testing {

namespace {

// The session the demo host gives the module: the simulated host, with every
// box also written in the transcript as "[box] TEXT".
class TranscribedSession final : public port::HostSession, private port::MessageBoxes {
 public:
  explicit TranscribedSession(sim::SimHost& host) : host_(host) {}

  port::DocManager* TAVLET_PORT_CALL Documents() override { return host_.Documents(); }
  port::Editor* TAVLET_PORT_CALL EditorService() override { return host_.EditorService(); }
  port::DrawingDatabase* TAVLET_PORT_CALL Databases() override { return host_.Databases(); }
  port::Graphics* TAVLET_PORT_CALL GraphicsService() override { return host_.GraphicsService(); }
  port::FrameWindows* TAVLET_PORT_CALL Frame() override { return host_.Frame(); }
  port::MessageBoxes* TAVLET_PORT_CALL Boxes() override { return this; }
  port::HostServices* TAVLET_PORT_CALL Services() override { return host_.Services(); }
  port::OleLinkManager* TAVLET_PORT_CALL OleLinks() override { return host_.OleLinks(); }
  port::Result TAVLET_PORT_CALL Application(port::AcadApplication** application) override {
    return host_.Application(application);
  }
  port::Result TAVLET_PORT_CALL CreateSheetSetManager(port::SheetSetManager** manager) override {
    return host_.CreateSheetSetManager(manager);
  }
  port::Result TAVLET_PORT_CALL LastErrorDescription(port::TextSink* description) override {
    return host_.LastErrorDescription(description);
  }

 private:
  port::Result TAVLET_PORT_CALL Show(const char* text, unsigned long type, long* answer) override {
    host_.TranscriptRef() += std::string("[box] ") + (text ? text : "") + "\n";
    return host_.Boxes()->Show(text, type, answer);
  }

  sim::SimHost& host_;
};

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return {};
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

std::string Upper(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

const menus::MenuEntry* FindEntry(const menus::MenuEntry& top, const std::vector<std::string>& path) {
  const menus::MenuEntry* at = &top;
  for (const std::string& text : path) {
    const menus::MenuEntry* next = nullptr;
    for (const menus::MenuEntry& child : at->children)
      if (!child.IsSeparator() && child.text == text) {
        next = &child;
        break;
      }
    if (!next) return nullptr;
    at = next;
  }
  return at;
}

}  // namespace

CreatedDocuments::CreatedDocuments(sim::SimHost& host) : host_(host) { host_.Documents()->AddReactor(this); }

CreatedDocuments::~CreatedDocuments() { host_.Documents()->RemoveReactor(this); }

std::string FolderOf(const std::string& path) {
  const auto slash = path.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

std::string SessionRecord(const sim::SimHost& host, const std::vector<port::Document>& docs,
                          const std::string& folder) {
  std::string transcript = host.Transcript();
  if (!folder.empty())
    for (auto at = transcript.find(folder); at != std::string::npos; at = transcript.find(folder, at))
      transcript.erase(at, folder.size());
  std::ostringstream out;
  out << transcript << "---- drawings ----\n";
  for (port::Document doc : docs) {
    const sim::SimDocument* d = host.Find(doc);
    if (!d) continue;
    out << d->fileName << (d->closed ? " closed" : " open") << (d->readOnly ? " read-only" : "")
        << " dbmod " << d->dbmod << ":";
    for (const std::string& action : d->actions) out << " [" << action << "]";
    out << "\n";
  }
  const sim::SimDocument* active = host.Find(host.MdiActive());
  out << "active: " << (active && !active->closed ? active->fileName : "none") << "\n";
  for (const std::string& notice : host.Notices()) out << "notice " << notice << "\n";
  for (const sim::ShownBox& box : host.ShownBoxes()) out << "box answered " << box.answer << ": " << box.text << "\n";
  return out.str();
}

struct ScriptReplay::World {
  sim::ModuleHarness harness;
  TranscribedSession session{harness.host};
  CreatedDocuments created{harness.host};

  ~World() {
    if (host::CurrentModule()) TavletEntry(host::kUnloadAppMsg, nullptr, &session);
  }
};

ScriptReplay::ScriptReplay() : world_(std::make_unique<World>()) {}

ScriptReplay::~ScriptReplay() = default;

bool ScriptReplay::Play(const std::string& scriptPath, std::string& error) {
  const std::string script = ReadFile(scriptPath);
  if (script.empty()) {
    error = scriptPath + ": cannot read the script";
    return false;
  }
  folder_ = FolderOf(scriptPath);
  sim::ModuleHarness& h = world_->harness;
  sim::SimHost& host = h.host;
  sim::AddSimHostWindows(h.windows, host);
  host::SetModuleServices(h.services);
  TavletEntry(host::kInitAppMsg, sim::ModuleHarness::kPkt, &world_->session);
  host::TavletModule* module = host::CurrentModule();
  if (!module || !module->Bar() || !module->Menu()) {
    error = "the module did not load with its bar";
    return false;
  }
  host.ClearTranscript();

  std::istringstream lines(script);
  std::string raw;
  int number = 0;
  while (std::getline(lines, raw)) {
    ++number;
    if (!raw.empty() && raw.back() == '\r') raw.pop_back();
    const std::vector<std::string> tokens = text::SplitWords(raw);
    if (tokens.empty() || tokens[0][0] == '#') continue;
    const std::string& verb = tokens[0];
    const std::string where = std::to_string(number) + ": ";
    if (verb == "wait") continue;
    if (verb == "quit") break;
    if (verb == "open" && tokens.size() == 2) {
      // The demo host looks the drawing up beside the script.
      const std::string path = folder_ + tokens[1];
      std::string onDisk = path;
#ifndef _WIN32
      for (char& c : onDisk)
        if (c == '\\') c = '/';
#endif
      const std::string content = ReadFile(onDisk);
      if (content.empty()) {
        error = where + "open: no such file '" + tokens[1] + "'";
        return false;
      }
      h.files.AddFile(path, content);
      host.TranscriptRef() += "Command: OPEN " + path + "\n";
      if (!host.OpenDrawing(path)) host.TranscriptRef() += "Cannot open " + path + ": " + host.LastOpenError() + "\n";
    } else if (verb == "activate" && tokens.size() == 2) {
      const std::vector<port::Document> open = host.OpenDocuments();
      const long index = std::strtol(tokens[1].c_str(), nullptr, 10);
      if (index < 1 || index > static_cast<long>(open.size())) {
        error = where + "activate: no open drawing '" + tokens[1] + "'";
        return false;
      }
      host.Activate(open[static_cast<std::size_t>(index - 1)]);
    } else if (verb == "command" && tokens.size() >= 2) {
      const std::string command = Upper(tokens[1]);
      host.TranscriptRef() += "Command: " + raw.substr(raw.find(tokens[1])) + "\n";
      if (!host.RunRegisteredCommand(command))
        host.RunCommand(command, command != "ZOOM" && command != "REDRAW", tokens.size() > 2 ? tokens.back() : "");
    } else if (verb == "answer" && tokens.size() == 2) {
      const std::string& a = tokens[1];
      host.QueueBoxAnswer(a == "ok" ? port::kAnswerOk : a == "cancel" ? port::kAnswerCancel
                                                    : a == "yes"    ? port::kAnswerYes
                                                                    : port::kAnswerNo);
    } else if (verb == "menu" && tokens.size() == 4 && tokens[1] == "cell") {
      const auto& entries = module->Bar()->Strip().Entries();
      const long cell = std::strtol(tokens[2].c_str(), nullptr, 10);
      if (cell < 1 || cell > static_cast<long>(entries.size())) {
        error = where + "menu: the bar shows no cell " + tokens[2];
        return false;
      }
      std::vector<std::string> path;
      for (std::size_t start = 0;;) {
        const std::size_t at = tokens[3].find(" > ", start);
        path.push_back(text::FromUtf8(tokens[3].substr(start, at == std::string::npos ? std::string::npos : at - start)));
        if (at == std::string::npos) break;
        start = at + 3;
      }
      menus::ContextMenu& menu = module->Menu()->Menu();
      const menus::MenuEntry top = menu.Build(entries[static_cast<std::size_t>(cell - 1)]->document);
      const menus::MenuEntry* chosen = FindEntry(top, path);
      menu.EndTracking();
      if (!chosen || chosen->IsPopup() || (chosen->flags & menus::kGrayed)) {
        error = where + "menu: no command '" + tokens[3] + "' in the popup";
        return false;
      }
      menu.OnCommand(chosen->id);
    } else {
      error = where + "'" + verb + "' is not played without windows";
      return false;
    }
  }
  return true;
}

std::string ScriptReplay::Record() const {
  return SessionRecord(world_->harness.host, world_->created.All(), folder_);
}

}  // namespace tavlet::testing
