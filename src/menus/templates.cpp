#include "menus/templates.h"

#include <vector>

#include "sheetsets/file_finder.h"
#include "text/codepage.h"

namespace tavlet::menus {

namespace {

// By character: a trail byte 0x5C is no separator.
bool EndsWithSeparator(const std::string& path) {
  bool last = false;
  for (std::size_t i = 0; i < path.size(); i += text::CharLength(path, i))
    last = path[i] == '\\' || path[i] == '/';
  return last;
}

}  // namespace

void ListTemplates(int& nextId, content::IdMap<DrawingPath>& templates, const std::string& folder,
                   FileSystem& files) {
  templates.clear();
  std::vector<std::string> names;
  if (!folder.empty() && files.ListFolder(folder, names) == FileError::None) {
    std::string prefix = folder;
    if (!EndsWithSeparator(prefix)) prefix += '\\';
    for (const std::string& name : names) {
      if (!sheetsets::MatchesWildcard(name, "*.dwt")) continue;
      const std::string path = prefix + name;
      if (files.Stat(path).isFolder) continue;
      templates.emplace(nextId++, DrawingPath(path, files));
    }
  }
  if (templates.empty()) templates.emplace(nextId++, DrawingPath(content::kNotFound, files));
}

}  // namespace tavlet::menus
