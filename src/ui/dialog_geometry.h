// The rules of the resizable dialogs that hold without a window system: the
// minimum size kept while the user drags an edge (WM_SIZING), dialog units, and
// the rectangles of the layout pattern the dialogs follow. Each dialog works out
// its own child rectangles from these on every WM_SIZE; there is no layout engine.
#pragma once

#include <cstdint>

#include "host/window_system.h"

namespace tavlet::ui {

using Rect = host::WindowRect;

// The edge being dragged, as WM_SIZING's wParam gives it (WMSZ_*).
enum SizingEdge : unsigned {
  kSizeLeft = 1,
  kSizeRight = 2,
  kSizeTop = 3,
  kSizeTopLeft = 4,
  kSizeTopRight = 5,
  kSizeBottom = 6,
  kSizeBottomLeft = 7,
  kSizeBottomRight = 8,
};

// Moves the dragged edge (both, for a corner) back so that the proposed rectangle
// is at least minWidth by minHeight; the opposite edge never moves. Width and
// height are compared as unsigned numbers, so 0 is no limit and a rectangle turned
// inside out is left alone. True when `rect` changed.
bool ApplyMinimumSize(unsigned edge, Rect& rect, std::uint32_t minWidth, std::uint32_t minHeight);

// Dialog units of a dialog font, as MapDialogRect converts them: x * baseX / 4 and
// y * baseY / 8, rounded as MulDiv rounds.
class DialogUnits {
 public:
  virtual ~DialogUnits() = default;
  virtual Rect MapDialogRect(const Rect& units) const = 0;
  // (0, 0, n, n) mapped: right less left, bottom less top.
  long ToPixelsX(long n) const;
  long ToPixelsY(long n) const;
};

class FontDialogUnits final : public DialogUnits {
 public:
  // The average character width and the height of the dialog's font; 6 by 13 is
  // the stock dialog font at 96 dots an inch.
  FontDialogUnits(long baseX = 6, long baseY = 13) : baseX_(baseX), baseY_(baseY) {}
  Rect MapDialogRect(const Rect& units) const override;

 private:
  long baseX_, baseY_;
};

// MulDiv: a * b / c rounded half away from zero; -1 when c is 0.
long MulDiv(long a, long b, long c);

// Shrinks by `inset` on every side (a negative inset grows).
Rect Deflate(const Rect& rect, long inset);
Rect Deflate(const Rect& rect, long left, long top, long right, long bottom);

// The layout pattern: rows of a fixed height walked down from the top.
class RowWalker {
 public:
  RowWalker(const Rect& area, long rowHeight) : area_(area), rowHeight_(rowHeight), top_(area.top) {}
  // The next row, full width; the running rectangle moves down by one row.
  Rect NextRow();
  long Top() const { return top_; }
  // What is left below the rows taken.
  Rect Rest() const { return {area_.left, top_, area_.right, area_.bottom}; }

 private:
  Rect area_;
  long rowHeight_;
  long top_;
};

// The inside of a group frame: 8 pixels off left and right, 18 off the top.
Rect GroupInterior(const Rect& frame);
// Two controls that share a row: split at its middle.
Rect LeftHalf(const Rect& row);
Rect RightHalf(const Rect& row);

}  // namespace tavlet::ui
