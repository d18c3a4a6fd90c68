// Window coordinates are 32-bit on the platform. The bar's arithmetic takes
// stored values as they stand (a huge Size, a hand-edited ScrollBarSize), so
// sums and products are taken wide and brought back into that range instead of
// overflowing.
#pragma once

#include <cstdint>
#include <limits>

#include "host/window_system.h"

namespace tavlet::bar {

inline long Clamp32(long long value) {
  constexpr long long lo = std::numeric_limits<std::int32_t>::min();
  constexpr long long hi = std::numeric_limits<std::int32_t>::max();
  return static_cast<long>(value < lo ? lo : value > hi ? hi : value);
}

inline long Plus(long a, long long b) { return Clamp32(static_cast<long long>(a) + b); }
inline long Minus(long a, long long b) { return Clamp32(static_cast<long long>(a) - b); }

// PtInRect: the right and bottom edges are outside.
inline bool Contains(const host::WindowRect& r, long x, long y) {
  return x >= r.left && x < r.right && y >= r.top && y < r.bottom;
}

}  // namespace tavlet::bar
