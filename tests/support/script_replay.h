// A demo host script played on the simulated host alone: the whole module loaded
// through its entry as the demo host loads it, the fake window system in place of
// real windows, and the steps done as the demo host does them, down to the lines
// it writes in the transcript. What it leaves is what the demo host's session of
// the same script must leave, so the two can be compared.
//
// The steps it plays: open, activate, command, answer, menu cell N "A > B",
// wait (nothing to wait for) and quit.
//
//   ScriptReplay replay;
//   ASSERT_TRUE(replay.Play(path, error)) << error;
//   EXPECT_EQ(SessionRecord(demo.Host(), demoDocs), replay.Record());
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/port/documents.h"
#include "sim/sim_host.h"

namespace tavlet::testing {

// Every document the host creates, in order, so that a closed one can still be
// looked at.
class CreatedDocuments final : public port::DocManagerEvents {
 public:
  explicit CreatedDocuments(sim::SimHost& host);
  ~CreatedDocuments();
  CreatedDocuments(const CreatedDocuments&) = delete;
  CreatedDocuments& operator=(const CreatedDocuments&) = delete;
  const std::vector<port::Document>& All() const { return docs_; }

 private:
  void TAVLET_PORT_CALL DocumentCreated(port::Document doc) override { docs_.push_back(doc); }
  void TAVLET_PORT_CALL DocumentToBeDestroyed(port::Document) override {}
  void TAVLET_PORT_CALL DocumentDestroyed(const char*) override {}
  void TAVLET_PORT_CALL DocumentLockModeChanged(port::Document, const char*) override {}
  void TAVLET_PORT_CALL DocumentActivated(port::Document) override {}

  sim::SimHost& host_;
  std::vector<port::Document> docs_;
};

// A session's end as text: the transcript with `folder` (the script's own) cut
// out of it, then each drawing of `docs` with its state and what automation did
// to it, then the active drawing and the modeless notices.
std::string SessionRecord(const sim::SimHost& host, const std::vector<port::Document>& docs,
                          const std::string& folder);

// The folder part of a path, separator included; empty for a bare name.
std::string FolderOf(const std::string& path);

class ScriptReplay {
 public:
  ScriptReplay();
  ~ScriptReplay();
  ScriptReplay(const ScriptReplay&) = delete;
  ScriptReplay& operator=(const ScriptReplay&) = delete;

  // Loads the module, clears the transcript and plays the script; false with
  // "LINE: what went wrong" in `error`.
  bool Play(const std::string& scriptPath, std::string& error);
  std::string Record() const;

 private:
  struct World;
  std::unique_ptr<World> world_;
  std::string folder_;
};

}  // namespace tavlet::testing
