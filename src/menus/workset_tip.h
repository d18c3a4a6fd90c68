// What MenuTip shows while the pointer rests on a workset's entry of the open
// menu (OnMenuSelect): the workset's members, one a line, and where the tip
// goes beside the entry. The window side asks the tip control for its bubble
// and the system for its largest window, and applies the result.
#pragma once

#include <string>

#include "content/id_map.h"
#include "host/window_system.h"
#include "menus/menu_lists.h"
#include "operations/drawing_path.h"
#include "worksets/workset_store.h"

namespace tavlet::menus {

// The tip's text for menu item `id`: empty unless the id lies in the worksets'
// range (at or above its first key, below the recent sheet sets' first key,
// both lists holding entries) and its entry names a workset (not empty, not
// "没有找到", not a "<选择>" twin). Each member whose value holds a token before
// a ',' gives that path, in full or by name and extension, one a line.
std::string WorksetTipText(int id, const FirstKeys& keys,
                           const content::IdMap<DrawingPath>& worksets, WorksetStore& store,
                           FileSystem& files, bool fullPath);

struct TipPosition {
  long x = 0, y = 0;
};

// Right of the item, one pixel off; left of it when the bubble would pass the
// largest window's width. At the item's top, or raised to end at the largest
// window's height.
TipPosition PlaceMenuTip(const host::WindowRect& item, long bubbleWidth, long bubbleHeight,
                         long maxTrackWidth, long maxTrackHeight);

}  // namespace tavlet::menus
