// Which host calls fail, by name and occurrence. A name is the port's
// "Interface::Operation", as "AcadDocument::SendCommand" or "Editor::GetVariable".
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/port/port_types.h"

namespace tavlet::sim {

class FaultPlan {
 public:
  // The `occurrence`-th call from now (1 is the next one) fails; 0 makes every call fail.
  void Fail(const std::string& call, int occurrence, port::Result error, std::string description);
  void Clear() { faults_.clear(); }

  // Counts the call; a planned failure gives its error and description, else kOk.
  port::Result Enter(const std::string& call, std::string& description);

  int Count(const std::string& call) const;
  // Every call in order, for tests that want to see what the code under test asked.
  const std::vector<std::string>& Log() const { return log_; }
  void ClearLog() { log_.clear(); }

 private:
  struct Fault {
    int atCount = 0;  // the call count at which it fires; 0 for always
    port::Result error = port::kFail;
    std::string description;
  };
  std::map<std::string, std::vector<Fault>> faults_;
  std::map<std::string, int> counts_;
  std::vector<std::string> log_;
};

}  // namespace tavlet::sim
