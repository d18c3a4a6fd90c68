// What a drawing points at: external references, raster images, linked OLE
// objects and hyperlinks, for the menu's "参照" lists and the references dialog.
#pragma once

#include <string>
#include <string_view>

#include "content/id_map.h"
#include "host/port/database.h"
#include "operations/drawing_path.h"

namespace tavlet::content {

struct ReferenceSet {
  IdMap<DrawingPath> externalReferences;
  IdMap<DrawingPath> images;
  IdMap<DrawingPath> oleLinks;
  IdMap<DrawingPath> hyperlinks;
};

// The OLE frame's link path is read into a buffer of this size.
inline constexpr long kOleLinkBuffer = 260;

// Walks the database once per kind and fills the four lists, each entry with
// the next id of `nextId`. A file is listed once however the case of its
// mentions differs, with the spelling met first. `fill` puts one "没有找到" in
// each list that stays empty; a null database gives that entry in all four
// whatever `fill` says. When the block table won't open the lists stay empty.
// What the duplicate test compares of a path: its lower-cased text, as _mbscmp
// sees it (up to a NUL, without a lead byte that lost its trail byte).
std::string ReferenceKey(std::string_view path);

void CollectReferences(int& nextId, ReferenceSet& sets, port::DrawingDatabase& database,
                       port::Database db, bool fill, FileSystem& files = NativeFileSystem());

}  // namespace tavlet::content
