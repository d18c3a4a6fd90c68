#include "sim/sim_shell.h"

namespace tavlet::sim {

void SimShell::OpenWithShell(const std::string& path) { calls_.push_back("shell " + path); }

bool SimShell::BrowseForFolder(port::Window owner, const std::string& title,
                               const std::string& start, std::string& chosen) {
  calls_.push_back("browse " + title + " from " + start);
  lastOwner_ = owner;
  if (folders_.empty()) return false;
  std::optional<std::string> answer = std::move(folders_.front());
  folders_.pop_front();
  if (!answer) return false;
  chosen = *answer;
  return true;
}

bool SimShell::RunPlotDialog(port::Window owner) {
  calls_.push_back("plot dialog");
  lastOwner_ = owner;
  if (plotAnswers_.empty()) return false;
  bool ok = plotAnswers_.front();
  plotAnswers_.pop_front();
  return ok;
}

bool SimShell::CopyToClipboard(port::Window owner, const std::string& text) {
  lastOwner_ = owner;
  calls_.push_back("clipboard " + text);
  return true;
}

void SimShell::ShowInFolder(const std::string& path) { calls_.push_back("select " + path); }

}  // namespace tavlet::sim
