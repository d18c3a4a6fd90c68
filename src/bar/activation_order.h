// The open drawings in the order they were last active, kept from the document
// events the bar already receives, and the switcher popup's keys over it.
#pragma once

#include <vector>

#include "host/port/documents.h"

namespace tavlet::bar {

class ActivationOrder {
 public:
  // A drawing that has not been active yet goes behind all others.
  void Added(port::Document doc);
  // To the front; an unknown drawing is added there.
  void Activated(port::Document doc);
  void Removed(port::Document doc);
  // Most recently active first.
  const std::vector<port::Document>& Order() const { return order_; }

 private:
  std::vector<port::Document> order_;
};

enum class SwitcherKey { Tab, ShiftTab, Enter, ReleaseCtrl, Escape };

// The popup's state: a snapshot of the order, and the drawing picked in it.
class Switcher {
 public:
  // The previous drawing is preselected; with one drawing, that one. False (and
  // nothing shown) with none.
  bool Open(const std::vector<port::Document>& order);
  // Tab and Shift+Tab move round the list; Enter and the release of Ctrl give
  // the picked drawing and close; Escape closes and gives null. Null also while
  // the popup stays open or is closed.
  port::Document Press(SwitcherKey key);
  // A click on an item: it is picked and given; null outside the list.
  port::Document Click(int index);

  bool IsOpen() const { return open_; }
  int Selected() const { return selected_; }
  const std::vector<port::Document>& Items() const { return items_; }

 private:
  port::Document Close(bool take);

  std::vector<port::Document> items_;
  int selected_ = -1;
  bool open_ = false;
};

}  // namespace tavlet::bar
