#include "sheetsets/sheet_set_dialog.h"

namespace tavlet::sheetsets {

SheetSetDialogLayout LayOutSheetSetDialog(const ui::Rect& client, const ui::DialogUnits& units) {
  const ui::Rect area = ui::Deflate(client, 2);
  const long strip = units.ToPixelsY(15);
  const long cancelLeft = area.right - units.ToPixelsX(50);
  const long okLeft = area.right - units.ToPixelsX(101);
  SheetSetDialogLayout layout;
  layout.tree = {area.left, area.top, area.right, area.bottom - strip};
  layout.ok = ui::ChildRect(okLeft, area.bottom - strip, cancelLeft, area.bottom, 1);
  layout.cancel = ui::ChildRect(cancelLeft, area.bottom - strip, area.right, area.bottom, 1);
  return layout;
}

SheetSetDialog::SheetSetDialog(SheetSetTreeServices services, std::string path_, std::string settingsRoot)
    : path(std::move(path_)), tree(std::move(services)) {
  state.settingsRoot = std::move(settingsRoot);
  state.settingsSection = kSheetSetDialogSection;
}

void SheetSetDialog::OnInitDialog(const ui::DialogUnits& units) {
  state.SetMinimumDialogUnits(units, kSheetSetDialogMinWidth, kSheetSetDialogMinHeight);
  tree.Load(path);
}

void SheetSetDialog::OnOK() { selectedFiles = tree.CollectCheckedFiles(); }

}  // namespace tavlet::sheetsets
