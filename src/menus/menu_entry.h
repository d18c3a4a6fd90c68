// The context menu as data: a tree of entries that tests read and the window
// side turns into popup menus at the last moment. Flags carry the values of the
// platform's MF_ flags, so the realisation passes them on unchanged.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tavlet::menus {

enum MenuFlags : unsigned {
  kEnabled = 0x0000,
  kGrayed = 0x0001,     // MF_GRAYED
  kChecked = 0x0008,    // MF_CHECKED
  kPopup = 0x0010,      // MF_POPUP: the entry opens `children`
  kSeparator = 0x0800,  // MF_SEPARATOR
};

struct MenuEntry {
  int id = 0;        // 0 for a submenu and a separator
  std::string text;  // code page 936 bytes
  unsigned flags = kEnabled;
  std::vector<MenuEntry> children;

  bool IsPopup() const { return (flags & kPopup) != 0; }
  bool IsSeparator() const { return (flags & kSeparator) != 0; }

  MenuEntry& Append(int itemId, std::string itemText, unsigned itemFlags = kEnabled) {
    children.push_back({itemId, std::move(itemText), itemFlags, {}});
    return children.back();
  }
  MenuEntry& AppendSeparator() {
    children.push_back({0, {}, kSeparator, {}});
    return children.back();
  }
  // Moves `submenu`'s entries under a new entry with `itemText`.
  MenuEntry& AppendPopup(std::string itemText, MenuEntry submenu, unsigned itemFlags = kEnabled) {
    children.push_back({0, std::move(itemText), itemFlags | kPopup, std::move(submenu.children)});
    return children.back();
  }
};

// A submenu's place in the tree: the index at each level from the top popup.
using MenuPath = std::vector<std::size_t>;

// The entry at `path`; null when the path leads nowhere.
const MenuEntry* EntryAt(const MenuEntry& top, const MenuPath& path);

// One line per entry, children indented by two blanks: "ID TEXT", "> TEXT" for a
// submenu and "-" for a separator, then " (grayed)" and " (checked)" as set.
// Texts stay bytes; nothing is converted.
std::string DescribeMenu(const MenuEntry& top);

}  // namespace tavlet::menus
