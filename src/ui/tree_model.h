// A tree view's items as data: text, check mark, expansion and a text of the
// item's own, under a parent. The Win32 tree control is filled from it at the
// last moment; tests read it directly. Items are numbered from 1 in order of
// insertion; 0 is no item (the parent of a root).
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tavlet::ui {

using TreeItem = int;
inline constexpr TreeItem kNoItem = 0;

struct TreeNode {
  TreeItem parent = kNoItem;
  std::string text;
  std::string data;  // the item's own text, as a path kept beside the label
  bool checked = false;
  bool expanded = false;
  std::vector<TreeItem> children;
};

class TreeModel {
 public:
  // Appends under `parent` (kNoItem: a root).
  TreeItem Insert(TreeItem parent, std::string text, std::string data = {});
  void Clear() { nodes_.clear(); roots_.clear(); }

  bool Contains(TreeItem item) const { return item > 0 && static_cast<std::size_t>(item) <= nodes_.size(); }
  const TreeNode& Node(TreeItem item) const { return nodes_.at(static_cast<std::size_t>(item) - 1); }
  TreeNode& Node(TreeItem item) { return nodes_.at(static_cast<std::size_t>(item) - 1); }
  const std::vector<TreeItem>& Roots() const { return roots_; }
  std::size_t Size() const { return nodes_.size(); }

  void SetChecked(TreeItem item, bool checked) { Node(item).checked = checked; }
  void Expand(TreeItem item) { Node(item).expanded = true; }

  // Every item, parents before children, siblings in order: the order the user sees.
  void Walk(const std::function<void(TreeItem)>& visit) const;
  // "text" lines indented by two spaces a level, "[x] " before a checked item: for tests.
  std::string Outline() const;

 private:
  std::vector<TreeNode> nodes_;
  std::vector<TreeItem> roots_;
};

}  // namespace tavlet::ui
