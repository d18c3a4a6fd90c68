#include "bar/activation_order.h"

#include <algorithm>

namespace tavlet::bar {

void ActivationOrder::Added(port::Document doc) {
  if (std::find(order_.begin(), order_.end(), doc) == order_.end()) order_.push_back(doc);
}

void ActivationOrder::Activated(port::Document doc) {
  if (!doc) return;
  Removed(doc);
  order_.insert(order_.begin(), doc);
}

void ActivationOrder::Removed(port::Document doc) { std::erase(order_, doc); }

bool Switcher::Open(const std::vector<port::Document>& order) {
  items_ = order;
  open_ = !items_.empty();
  selected_ = items_.size() > 1 ? 1 : (open_ ? 0 : -1);
  return open_;
}

port::Document Switcher::Press(SwitcherKey key) {
  if (!open_) return nullptr;
  const int count = static_cast<int>(items_.size());
  switch (key) {
    case SwitcherKey::Tab:
      selected_ = (selected_ + 1) % count;
      return nullptr;
    case SwitcherKey::ShiftTab:
      selected_ = (selected_ + count - 1) % count;
      return nullptr;
    case SwitcherKey::Enter:
    case SwitcherKey::ReleaseCtrl:
      return Close(true);
    case SwitcherKey::Escape:
      return Close(false);
  }
  return nullptr;
}

port::Document Switcher::Click(int index) {
  if (!open_ || index < 0 || index >= static_cast<int>(items_.size())) return nullptr;
  selected_ = index;
  return Close(true);
}

port::Document Switcher::Close(bool take) {
  port::Document picked = take ? items_[static_cast<std::size_t>(selected_)] : nullptr;
  open_ = false;
  items_.clear();
  selected_ = -1;
  return picked;
}

}  // namespace tavlet::bar
