#include "worksets/workset_file_selection.h"

#include "text/codepage.h"

namespace tavlet {

std::vector<SelectorRow> ReadSelectorRows(ProfileFile& file, const std::string& name, FileSystem& files) {
  std::vector<std::string> keys;
  file.GetSectionKeys(name, keys);
  std::vector<SelectorRow> rows;
  for (const std::string& key : keys) {
    const DrawingPath path = ParseRecentEntry(file.GetString(name, key, ""), files);
    rows.push_back({path.Full, path.readOnly ? "X" : "", false});
  }
  return rows;
}

bool CollectTicked(const std::vector<SelectorRow>& rows, port::MessageBoxes& boxes, FileSystem& files,
                   std::vector<DrawingPath>& ticked) {
  ticked.clear();
  for (const SelectorRow& row : rows) {
    if (!row.checked) continue;
    DrawingPath path(row.path, files);
    path.readOnly = text::Mbsicmp(row.readOnlyMark, "X") == 0;
    ticked.push_back(std::move(path));
  }
  if (!ticked.empty()) return true;
  long answer = 0;
  boxes.Show(selector_texts::kNothingTicked, port::kBoxOk, &answer);
  return false;
}

SelectorLayout LayOutSelector(const ui::Rect& client, const ui::DialogUnits& units) {
  const ui::Rect area = ui::Deflate(client, 3);
  const long strip = units.ToPixelsY(15);
  const long button = units.ToPixelsX(35);
  SelectorLayout l;
  l.list = {area.left, area.top, area.right, area.bottom - strip};
  l.cancel = {area.right - button, area.bottom - strip, area.right, area.bottom};
  l.ok = {l.cancel.left - button, l.cancel.top, l.cancel.left, area.bottom};
  return l;
}

}  // namespace tavlet
