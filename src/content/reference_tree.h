// The tree of the references dialog ("图纸参照"): one root per open drawing,
// under it one node per kind of reference the drawing has, under that one item
// per file with its path. The user ticks items; OK takes the ticked paths for a
// workset. The window shows this model and forwards clicks to it.
#pragma once

#include <string>
#include <vector>

#include "host/port/host_session.h"
#include "platform/file_system.h"

namespace tavlet::content {

// The kinds' titles. The first is cut after the first byte of a double-byte
// character ("外部参照" cut short) and stays so: the menu shows it the same way.
inline constexpr const char kExternalReferencesTitle[] =
    "外部"
    "\xB2";
inline constexpr const char kImagesTitle[] = "图像";
inline constexpr const char kOleLinksTitle[] = "OLE 连接";
inline constexpr const char kHyperlinksTitle[] = "超链接";

struct ReferenceNode {
  std::string text;  // what the tree shows
  std::string path;  // an item's full path; empty for roots and kinds
  bool checked = false;
  std::vector<ReferenceNode> children;
};

// One root per open drawing, in the document manager's walk order, named by
// the name and extension of its file name; kinds without entries are left out.
std::vector<ReferenceNode> BuildReferenceTree(port::HostSession& session,
                                              FileSystem& files = NativeFileSystem());

// A click on an item: its check mark flips, and so does every mark below it.
void ToggleCheck(ReferenceNode& node);

// OK: the ticked items' paths in tree order, each file once by the lower-case
// comparison of the reference lists, in the spelling met first.
std::vector<std::string> TickedPaths(const std::vector<ReferenceNode>& tree);

}  // namespace tavlet::content
