#include "menus/menu_entry.h"

namespace tavlet::menus {

const MenuEntry* EntryAt(const MenuEntry& top, const MenuPath& path) {
  const MenuEntry* entry = &top;
  for (std::size_t index : path) {
    if (index >= entry->children.size()) return nullptr;
    entry = &entry->children[index];
  }
  return entry;
}

namespace {

void Describe(const MenuEntry& menu, int depth, std::string& out) {
  for (const MenuEntry& entry : menu.children) {
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
    if (entry.IsSeparator()) {
      out += "-\n";
      continue;
    }
    out += entry.IsPopup() ? std::string(">") : std::to_string(entry.id);
    out += ' ';
    out += entry.text;
    if (entry.flags & kGrayed) out += " (grayed)";
    if (entry.flags & kChecked) out += " (checked)";
    out += '\n';
    if (entry.IsPopup()) Describe(entry, depth + 1, out);
  }
}

}  // namespace

std::string DescribeMenu(const MenuEntry& top) {
  std::string out;
  Describe(top, 0, out);
  return out;
}

}  // namespace tavlet::menus
