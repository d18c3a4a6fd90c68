// The new-drawing submenu's list: the drawing templates of the host's template
// folder, read afresh at each right click.
#pragma once

#include <string>

#include "content/id_map.h"
#include "operations/drawing_path.h"
#include "platform/file_system.h"

namespace tavlet::menus {

// Every "*.dwt" file of `folder` (no subfolders) in the order the folder lists
// them, each under the next id with its full path; "没有找到" when none is found
// or the folder can't be read. Clears `templates` first.
void ListTemplates(int& nextId, content::IdMap<DrawingPath>& templates, const std::string& folder,
                   FileSystem& files);

}  // namespace tavlet::menus
