// The sheet-selection dialog's window: a tree control with check boxes filled
// from the sheet-set tree's items, the layout of the portable side on WM_SIZE,
// and OK reading the check marks back before the logic collects the files.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <map>
#include <string>
#include <vector>

#include "platform/win32/ui/resizable_dialog_win32.h"
#include "sheetsets/sheet_set_commands.h"
#include "sheetsets/sheet_set_dialog.h"

namespace tavlet::win32 {

class SheetSetDialogWindow final : public ResizableDialog {
 public:
  // `settingsRoot`: the settings branch; the placement goes below it in "SheetSetDialog".
  SheetSetDialogWindow(RegistryBackend& registry, sheetsets::SheetSetTreeServices services, std::string path,
                       std::string settingsRoot);

  sheetsets::SheetSetDialog& Logic() { return logic_; }
  // The tree control's item of a model item, for tests that tick by messages.
  HTREEITEM ItemOf(ui::TreeItem item) const;

 protected:
  bool OnInitDialog() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnOK() override;
  bool OnNotify(NMHDR& header, LRESULT& result) override;

 private:
  void FillTree();

  sheetsets::SheetSetDialog logic_;
  std::map<HTREEITEM, ui::TreeItem> items_;
};

// OpenSheetSet's dialog: modal, made from the module's resources.
class SheetSetDialogRunnerWin32 final : public sheetsets::SheetSetDialogRunner {
 public:
  SheetSetDialogRunnerWin32(RegistryBackend& registry, sheetsets::SheetSetTreeServices services, std::string settingsRoot,
                            HWND owner)
      : registry_(registry), services_(std::move(services)), settingsRoot_(std::move(settingsRoot)), owner_(owner) {}
  bool Run(const std::string& path, std::vector<std::string>& selectedFiles) override;

 private:
  RegistryBackend& registry_;
  sheetsets::SheetSetTreeServices services_;
  std::string settingsRoot_;
  HWND owner_;
};

}  // namespace tavlet::win32
