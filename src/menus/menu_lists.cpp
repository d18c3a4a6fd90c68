#include "menus/menu_lists.h"

#include "menus/menu_ids.h"

namespace tavlet::menus {

void MenuLists::Clear() {
  worksets.clear();
  templates.clear();
  layouts.clear();
  references.externalReferences.clear();
  references.images.clear();
  references.oleLinks.clear();
  references.hyperlinks.clear();
  layerStates.clear();
  views.clear();
}

MenuList ListOf(int id, const FirstKeys& keys) {
  if (id < kFirstListId) return MenuList::None;
  // Keys ascend through the lists, so the owner is the last list that starts at
  // or below the id.
  MenuList owner = MenuList::RecentFiles;
  for (std::size_t n = 1; n < kListCount; ++n) {
    if (keys[n] && *keys[n] <= id) owner = static_cast<MenuList>(n);
  }
  return owner;
}

}  // namespace tavlet::menus
