// The file selector of a workset ("选择要打开的工作集文件", dialog 502): one row
// a member with a check box, whatever the entry's key, and OK giving the ticked
// files in the dialog's order.
#pragma once

#include <string>
#include <vector>

#include "host/port/frame.h"
#include "operations/drawing_path.h"
#include "settings/profile_file.h"
#include "ui/dialog_geometry.h"

namespace tavlet {

namespace selector_ids {
inline constexpr int kDialog = 502;
inline constexpr int kList = 2012;
inline constexpr int kOk = 1;
inline constexpr int kCancel = 2;
}  // namespace selector_ids

namespace selector_texts {
inline constexpr const char kTitle[] = "选择要打开的工作集文件";
inline constexpr const char kNothingTicked[] = "请检查要打开的文件!";
// These two column titles have always been in English.
inline constexpr const char kFileColumn[] = "File";
inline constexpr const char kReadOnlyColumn[] = "Read-only";
}  // namespace selector_texts

struct SelectorRow {
  std::string path;
  std::string readOnlyMark;  // "X" or ""
  bool checked = false;
};

// Every entry of the section by GetSectionKeys, each value read by its key and
// parsed as a recent-file entry.
std::vector<SelectorRow> ReadSelectorRows(ProfileFile& file, const std::string& name, FileSystem& files);

// OK over the rows in the dialog's order: the ticked ones, read-only when column 1
// is "X" in any case. None ticked: the box, and false (the dialog stays).
bool CollectTicked(const std::vector<SelectorRow>& rows, port::MessageBoxes& boxes, FileSystem& files,
                   std::vector<DrawingPath>& ticked);

struct SelectorLayout {
  ui::Rect list, ok, cancel;
};
// The client less 3 pixels a side; the list above a bottom strip of 15 units,
// where Cancel takes the last 35 units and OK the 35 before them.
SelectorLayout LayOutSelector(const ui::Rect& client, const ui::DialogUnits& units);

}  // namespace tavlet
