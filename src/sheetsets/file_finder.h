// The recursive file search of the sheet-set lists and of resource folders: a
// folder and its subfolders, visited in the file system's own order, each file
// whose name matches one of a list of wildcard patterns reported with its path.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace tavlet::sheetsets {

// A file-name wildcard as the platform's file search takes it: '*' any run of
// characters, '?' one character, letters compared ignoring ASCII case, by
// character in code page 936. "*.*" matches every name, with or without a dot.
bool MatchesWildcard(std::string_view name, std::string_view pattern);

// Walks `folder` (with or without its trailing separator): every entry in the
// order the folder lists them; a subfolder is searched where it is met; a file
// that matches one of `patterns` (joined by ',', blanks around each ignored; an
// empty list matches nothing) goes to `found` with the folder's path joined by
// '\\'. An empty or unreadable folder finds nothing. Returns the count found.
std::size_t FindFilesRecursive(FileSystem& files, const std::string& folder, std::string_view patterns,
                               const std::function<void(const std::string& path)>& found);

}  // namespace tavlet::sheetsets
