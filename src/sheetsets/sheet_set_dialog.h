// The sheet-selection dialog (dialog 501, "选择图纸集"): the tree of one sheet set;
// OK collects the drawings of the ticked items into selectedFiles.
#pragma once

#include <string>
#include <vector>

#include "sheetsets/sheet_set_tree.h"
#include "ui/resizable_dialog.h"

namespace tavlet::sheetsets {

inline constexpr int kSheetSetDialogId = 501;
inline constexpr int kSheetSetTreeId = 2036;
inline constexpr int kOkId = 1;
inline constexpr int kCancelId = 2;
inline constexpr const char kSheetSetDialogTitle[] = "选择图纸集";
inline constexpr const char kSheetSetDialogSection[] = "SheetSetDialog";
// The smallest the user can drag it to, in dialog units.
inline constexpr long kSheetSetDialogMinWidth = 150;
inline constexpr long kSheetSetDialogMinHeight = 200;

struct SheetSetDialogLayout {
  ui::Rect tree, ok, cancel;
};

// WM_SIZE: the client shrunk by 2 pixels; the tree fills it but for a bottom strip
// of 15 units, where Cancel takes the last 50 units and OK the 51 before them.
SheetSetDialogLayout LayOutSheetSetDialog(const ui::Rect& client, const ui::DialogUnits& units);

class SheetSetDialog {
 public:
  // `settingsRoot` empty: the placement isn't kept.
  SheetSetDialog(SheetSetTreeServices services, std::string path, std::string settingsRoot);

  // WM_INITDIALOG: the minimum size and the tree.
  void OnInitDialog(const ui::DialogUnits& units);
  // OK: the ticked drawings in tree order (possibly none); the dialog then closes.
  void OnOK();

  std::string path;
  std::vector<std::string> selectedFiles;
  SheetSetTree tree;
  ui::ResizableDialogState state;
};

}  // namespace tavlet::sheetsets
