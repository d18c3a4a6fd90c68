#include "ui/dialog_geometry.h"

namespace tavlet::ui {

bool ApplyMinimumSize(unsigned edge, Rect& rect, std::uint32_t minWidth, std::uint32_t minHeight) {
  const Rect before = rect;
  const bool narrow = static_cast<std::uint32_t>(rect.right - rect.left) < minWidth;
  const bool low = static_cast<std::uint32_t>(rect.bottom - rect.top) < minHeight;
  const bool left = edge == kSizeLeft || edge == kSizeTopLeft || edge == kSizeBottomLeft;
  const bool right = edge == kSizeRight || edge == kSizeTopRight || edge == kSizeBottomRight;
  const bool top = edge == kSizeTop || edge == kSizeTopLeft || edge == kSizeTopRight;
  const bool bottom = edge == kSizeBottom || edge == kSizeBottomLeft || edge == kSizeBottomRight;
  if (narrow && left) rect.left = rect.right - static_cast<long>(minWidth);
  if (narrow && right) rect.right = rect.left + static_cast<long>(minWidth);
  if (low && top) rect.top = rect.bottom - static_cast<long>(minHeight);
  if (low && bottom) rect.bottom = rect.top + static_cast<long>(minHeight);
  return !(rect == before);
}

long MulDiv(long a, long b, long c) {
  if (c == 0) return -1;
  long long product = static_cast<long long>(a) * b;
  const bool negative = (product < 0) != (c < 0);
  if (product < 0) product = -product;
  const long long divisor = c < 0 ? -static_cast<long long>(c) : c;
  const long long result = (product + divisor / 2) / divisor;
  return static_cast<long>(negative ? -result : result);
}

long DialogUnits::ToPixelsX(long n) const {
  const Rect r = MapDialogRect({0, 0, n, n});
  return r.right - r.left;
}

long DialogUnits::ToPixelsY(long n) const {
  const Rect r = MapDialogRect({0, 0, n, n});
  return r.bottom - r.top;
}

Rect FontDialogUnits::MapDialogRect(const Rect& units) const {
  return {MulDiv(units.left, baseX_, 4), MulDiv(units.top, baseY_, 8), MulDiv(units.right, baseX_, 4),
          MulDiv(units.bottom, baseY_, 8)};
}

Rect Deflate(const Rect& rect, long inset) { return Deflate(rect, inset, inset, inset, inset); }

Rect Deflate(const Rect& rect, long left, long top, long right, long bottom) {
  return {rect.left + left, rect.top + top, rect.right - right, rect.bottom - bottom};
}

Rect RowWalker::NextRow() {
  const Rect row{area_.left, top_, area_.right, top_ + rowHeight_};
  top_ += rowHeight_;
  return row;
}

Rect GroupInterior(const Rect& frame) { return Deflate(frame, 8, 18, 8, 0); }

Rect LeftHalf(const Rect& row) { return {row.left, row.top, (row.left + row.right) / 2, row.bottom}; }

Rect RightHalf(const Rect& row) { return {(row.left + row.right) / 2, row.top, row.right, row.bottom}; }

}  // namespace tavlet::ui
