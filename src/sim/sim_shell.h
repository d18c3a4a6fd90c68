// The desktop shell as the drawing operations see it on the simulated host: every
// call recorded, the folder browser and the plot dialog answered from queues.
//
// Example:
//   SimShell shell;
//   shell.QueueFolderAnswer("D:\\模板");   // the next browse picks this folder
//   ops.OnChangeTemplatePath();
//   shell.Calls();  // {"browse 选择新的模板路径 from C:\\old\\"}
#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "operations/operation_shell.h"

namespace tavlet::sim {

class SimShell final : public operations::OperationShell {
 public:
  // A folder the next browse returns; std::nullopt is Cancel. An empty queue cancels.
  void QueueFolderAnswer(std::optional<std::string> folder) {
    folders_.push_back(std::move(folder));
  }
  // OK (true) or Cancel for the next plot dialog. An empty queue cancels.
  void QueuePlotDialogAnswer(bool ok) { plotAnswers_.push_back(ok); }

  // "shell PATH", "browse TITLE from START", "plot dialog", "clipboard TEXT",
  // "select PATH", in order.
  const std::vector<std::string>& Calls() const { return calls_; }
  void ClearCalls() { calls_.clear(); }
  port::Window LastOwner() const { return lastOwner_; }

  void OpenWithShell(const std::string& path) override;
  bool BrowseForFolder(port::Window owner, const std::string& title, const std::string& start,
                       std::string& chosen) override;
  bool RunPlotDialog(port::Window owner) override;
  bool CopyToClipboard(port::Window owner, const std::string& text) override;
  void ShowInFolder(const std::string& path) override;

 private:
  std::deque<std::optional<std::string>> folders_;
  std::deque<bool> plotAnswers_;
  std::vector<std::string> calls_;
  port::Window lastOwner_ = nullptr;
};

}  // namespace tavlet::sim
