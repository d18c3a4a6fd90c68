#include "menus/workset_tip.h"

#include <cstring>
#include <vector>

#include "settings/profile_file.h"

namespace tavlet::menus {

namespace {

// strtok's first token of `value` at ',': leading commas skipped; empty when none.
std::string FirstToken(const std::string& value) {
  const std::size_t start = value.find_first_not_of(',');
  if (start == std::string::npos) return {};
  const std::size_t end = value.find(',', start);
  return value.substr(start, end == std::string::npos ? std::string::npos : end - start);
}

}  // namespace

std::string WorksetTipText(int id, const FirstKeys& keys,
                           const content::IdMap<DrawingPath>& worksets, WorksetStore& store,
                           FileSystem& files, bool fullPath) {
  const std::optional<int>& first = keys[static_cast<std::size_t>(MenuList::Worksets)];
  const std::optional<int>& next = keys[static_cast<std::size_t>(MenuList::RecentSheetSets)];
  if (!first || !next || id < *first || id >= *next) return {};
  const auto entry = worksets.find(id);
  if (entry == worksets.end()) return {};
  const std::string& name = entry->second.Full;
  if (name.empty() || name == content::kNotFound ||
      std::strncmp(name.c_str(), workset_texts::kSelectMarker, 8) == 0)
    return {};

  std::vector<std::string> lines;
  {
    ProfileFile file(files, store.GetWorksetsPath(), true);
    file.GetSectionLines(name, lines);
  }
  std::string tip;
  for (const std::string& line : lines) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos) continue;
    const std::string token = FirstToken(line.substr(equals + 1));
    if (token.empty()) continue;
    const DrawingPath path(token, files);
    tip += fullPath ? path.Full : path.GetName();
    tip += '\n';
  }
  if (!tip.empty()) tip.pop_back();
  return tip;
}

TipPosition PlaceMenuTip(const host::WindowRect& item, long bubbleWidth, long bubbleHeight,
                         long maxTrackWidth, long maxTrackHeight) {
  TipPosition at{item.right + 1, item.top};
  if (at.x + bubbleWidth > maxTrackWidth) at.x = item.left - bubbleWidth - 1;
  if (at.y + bubbleHeight > maxTrackHeight) at.y = maxTrackHeight - bubbleHeight;
  return at;
}

}  // namespace tavlet::menus
