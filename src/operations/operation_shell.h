// What the drawing operations need of the desktop beyond the host: handing a file
// to the program Windows binds to its type, the folder browser, and the plot
// dialog. The Win32 side (platform/win32/operations/shell_win32.h) calls the
// shell and shows the dialog resource; the simulation (sim/sim_shell.h) records
// the calls and answers from queues.
#pragma once

#include <string>

#include "host/port/port_types.h"

namespace tavlet::operations {

// The plot dialog's control ids, shared by the resource script and its tests.
inline constexpr int kPlotDialogId = 2043;
inline constexpr int kPlotToFileCheck = 2044;
inline constexpr int kPlotFileEdit = 2045;
inline constexpr int kPlotDeviceList = 2046;
inline constexpr int kPageSetupList = 2047;

class OperationShell {
 public:
  virtual ~OperationShell() = default;

  // ShellExecuteA with no verb, no parameters and SW_SHOW; nobody looks at the result.
  virtual void OpenWithShell(const std::string& path) = 0;
  // SHBrowseForFolderA on `owner` with BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE,
  // starting at `start`. False when the user cancels or the choice has no path.
  virtual bool BrowseForFolder(port::Window owner, const std::string& title,
                               const std::string& start, std::string& chosen) = 0;
  // The modal plot dialog (a shell: nothing fills it, nothing is read from it).
  // True on OK.
  virtual bool RunPlotDialog(port::Window owner) = 0;
  // Text on the clipboard, owned by `owner`. False when the clipboard is busy.
  virtual bool CopyToClipboard(port::Window owner, const std::string& text) = 0;
  // The shell's folder window with the file selected ("/select," of the explorer).
  virtual void ShowInFolder(const std::string& path) = 0;
};

// Records which layout a paper-space view was saved from. Without one the
// operations write the drawing-content record (content::WriteViewLayout, the
// view's extended data); a caller may put another in its place.
class ViewLayoutWriter {
 public:
  virtual void WriteViewLayout(const std::string& view, const std::string& layout,
                               port::Document document) = 0;

 protected:
  ~ViewLayoutWriter() = default;
};

}  // namespace tavlet::operations
