// The references dialog ("图纸参照"): a tree with check boxes of every open
// drawing's references by kind; OK gives the ticked files for a workset.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <map>
#include <string>
#include <vector>

#include "content/reference_tree.h"
#include "platform/win32/ui/resizable_dialog_win32.h"

namespace tavlet::win32 {

inline constexpr int kReferencesDialogId = 503;
inline constexpr int kReferencesTreeId = 2041;
// The smallest the user can drag it to, in dialog units.
inline constexpr long kReferencesMinWidth = 200;
inline constexpr long kReferencesMinHeight = 150;

class ReferencesDialog final : public ResizableDialog {
 public:
  // The placement is kept below `settings` in "ReferencesDialog".
  ReferencesDialog(const SettingsStore& settings, port::HostSession& session, FileSystem& files);

  std::vector<std::string> paths;  // on OK
  std::vector<content::ReferenceNode>& Tree() { return tree_; }
  HTREEITEM ItemOf(const content::ReferenceNode& node) const;

 protected:
  bool OnInitDialog() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnOK() override;
  bool OnNotify(NMHDR& header, LRESULT& result) override;
  bool OnCommand(WPARAM wParam, LPARAM lParam) override;

 private:
  void ShowChecks();

  port::HostSession& session_;
  FileSystem& files_;
  std::vector<content::ReferenceNode> tree_;
  std::map<HTREEITEM, content::ReferenceNode*> items_;
};

// Modal, from the module's resources; true on OK with the ticked paths.
bool ChooseReferences(const SettingsStore& settings, port::HostSession& session, FileSystem& files, HWND owner,
                      std::vector<std::string>& paths);

}  // namespace tavlet::win32
