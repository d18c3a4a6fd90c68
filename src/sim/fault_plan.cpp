#include "sim/fault_plan.h"

namespace tavlet::sim {

void FaultPlan::Fail(const std::string& call, int occurrence, port::Result error, std::string description) {
  Fault f;
  f.atCount = occurrence <= 0 ? 0 : Count(call) + occurrence;
  f.error = error;
  f.description = std::move(description);
  faults_[call].push_back(std::move(f));
}

port::Result FaultPlan::Enter(const std::string& call, std::string& description) {
  int n = ++counts_[call];
  log_.push_back(call);
  auto it = faults_.find(call);
  if (it == faults_.end()) return port::kOk;
  for (const Fault& f : it->second) {
    if (f.atCount == 0 || f.atCount == n) {
      description = f.description;
      return f.error;
    }
  }
  return port::kOk;
}

int FaultPlan::Count(const std::string& call) const {
  auto it = counts_.find(call);
  return it == counts_.end() ? 0 : it->second;
}

}  // namespace tavlet::sim
