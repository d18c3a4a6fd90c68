// The twelve lists of the context menu in the order the id counter runs through
// them, and the range test that turns a chosen id back into its list.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "content/id_map.h"
#include "content/references.h"
#include "content/views.h"
#include "operations/drawing_path.h"

namespace tavlet::menus {

enum class MenuList {
  RecentFiles,
  Worksets,
  RecentSheetSets,
  FoundSheetSets,
  Templates,
  Layouts,
  ExternalReferences,
  Images,
  OleLinks,
  Hyperlinks,
  LayerStates,
  Views,
  None,
};
inline constexpr std::size_t kListCount = 12;

// The lists the menu owns; the sheet sets' two lists stay with the sheet-set
// commands, which fill them.
struct MenuLists {
  content::IdMap<DrawingPath> worksets;
  content::IdMap<DrawingPath> templates;
  content::IdMap<std::string> layouts;
  content::ReferenceSet references;
  content::IdMap<std::string> layerStates;
  content::IdMap<content::ViewEntry> views;

  void Clear();
};

// The first key of each list in counter order; nothing for an empty list. The
// recent files have no map: their list starts at kFirstListId.
using FirstKeys = std::array<std::optional<int>, kListCount>;

template <class Map>
std::optional<int> FirstKey(const Map& map) {
  if (map.empty()) return std::nullopt;
  return map.begin()->first;
}

// The list of `id`: at or above its list's first key and below the first key of
// the next list. An empty list owns no range, so the one before it runs on to
// the next list that has entries (a build cut short leaves its later lists empty).
// The last list, views, has no upper limit. None below kFirstListId.
MenuList ListOf(int id, const FirstKeys& keys);

}  // namespace tavlet::menus
