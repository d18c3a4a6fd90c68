#include "ui/tree_model.h"

namespace tavlet::ui {

TreeItem TreeModel::Insert(TreeItem parent, std::string text, std::string data) {
  TreeNode node;
  node.parent = Contains(parent) ? parent : kNoItem;
  node.text = std::move(text);
  node.data = std::move(data);
  nodes_.push_back(std::move(node));
  const TreeItem item = static_cast<TreeItem>(nodes_.size());
  if (nodes_.back().parent == kNoItem)
    roots_.push_back(item);
  else
    Node(nodes_.back().parent).children.push_back(item);
  return item;
}

void TreeModel::Walk(const std::function<void(TreeItem)>& visit) const {
  // An explicit stack: a deep tree can't run the call stack out.
  std::vector<TreeItem> stack(roots_.rbegin(), roots_.rend());
  while (!stack.empty()) {
    const TreeItem item = stack.back();
    stack.pop_back();
    visit(item);
    const std::vector<TreeItem>& children = Node(item).children;
    stack.insert(stack.end(), children.rbegin(), children.rend());
  }
}

std::string TreeModel::Outline() const {
  std::string out;
  Walk([&](TreeItem item) {
    int depth = 0;
    for (TreeItem p = Node(item).parent; p != kNoItem; p = Node(p).parent) ++depth;
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
    if (Node(item).checked) out += "[x] ";
    out += Node(item).text;
    out += '\n';
  });
  return out;
}

}  // namespace tavlet::ui
