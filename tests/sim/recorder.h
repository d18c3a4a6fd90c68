// Records every reactor event of the simulated host as one line of text, with
// the state the bar would see at that moment where it matters.
#pragma once

#include <string>
#include <vector>

#include "host/com_error.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

class EventRecorder final : public port::DocManagerEvents, public port::EditorEvents {
 public:
  explicit EventRecorder(SimHost& host) : host_(host) {
    host.Documents()->AddReactor(static_cast<port::DocManagerEvents*>(this));
    host.EditorService()->AddReactor(static_cast<port::EditorEvents*>(this));
  }
  ~EventRecorder() {
    host_.Documents()->RemoveReactor(static_cast<port::DocManagerEvents*>(this));
    host_.EditorService()->RemoveReactor(static_cast<port::EditorEvents*>(this));
  }

  std::string NameOf(port::Document doc) {
    host::StringSink name;
    host_.Documents()->FileName(doc, &name);
    return name.text;
  }
  long Dbmod() {
    port::Value v;
    host_.EditorService()->GetVariable("DBMOD", &v, nullptr);
    return v.integer;
  }

  void TAVLET_PORT_CALL DocumentCreated(port::Document doc) override { Add("created " + NameOf(doc)); }
  void TAVLET_PORT_CALL DocumentToBeDestroyed(port::Document doc) override { Add("toBeDestroyed " + NameOf(doc)); }
  void TAVLET_PORT_CALL DocumentDestroyed(const char* fileName) override {
    long count = -1;
    host_.Documents()->DocumentCount(&count);
    Add(std::string("destroyed ") + fileName + " count " + std::to_string(count));
  }
  void TAVLET_PORT_CALL DocumentLockModeChanged(port::Document, const char*) override {}
  void TAVLET_PORT_CALL DocumentActivated(port::Document doc) override { Add("activated " + NameOf(doc)); }
  void TAVLET_PORT_CALL SaveComplete(port::Database db, const char* actualName) override {
    port::Document doc = nullptr;
    host_.Documents()->DocumentOfDatabase(db, &doc);
    Add(std::string("saveComplete ") + actualName + " of " + NameOf(doc) + " dbmod " + std::to_string(Dbmod()));
  }
  void TAVLET_PORT_CALL CommandWillStart(const char* command) override { Add(std::string("willStart ") + command); }
  void TAVLET_PORT_CALL CommandEnded(const char* command) override {
    Add(std::string("ended ") + command + " dbmod " + std::to_string(Dbmod()));
  }
  void TAVLET_PORT_CALL CommandCancelled(const char* command) override { Add(std::string("cancelled ") + command); }
  void TAVLET_PORT_CALL CommandFailed(const char* command) override { Add(std::string("failed ") + command); }
  void TAVLET_PORT_CALL LispWillStart(const char* firstLine) override { Add(std::string("lispWillStart ") + firstLine); }
  void TAVLET_PORT_CALL LispEnded() override { Add("lispEnded"); }
  void TAVLET_PORT_CALL LispCancelled() override { Add("lispCancelled"); }
  void TAVLET_PORT_CALL EndDwgOpen(const char* fileName) override { Add(std::string("endDwgOpen ") + fileName); }
  void TAVLET_PORT_CALL SysVarChanged(const char* name, bool) override { Add(std::string("sysVarChanged ") + name); }

  std::vector<std::string> Take() {
    std::vector<std::string> out;
    out.swap(events_);
    return out;
  }

 private:
  void Add(std::string line) { events_.push_back(std::move(line)); }
  SimHost& host_;
  std::vector<std::string> events_;
};

// A minimal drawing description with the given extra lines.
inline std::string Description(const std::string& path, const std::string& extra = "") {
  return "tavlet-drawing 1\npath \"" + path + "\"\n" + extra + "picture 4 3 background 0x000000\n";
}

}  // namespace tavlet::sim
