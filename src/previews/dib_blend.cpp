#include "previews/dib_blend.h"

namespace tavlet {

bool BlendShift8(const std::uint8_t* source, const std::uint8_t* destination, std::uint8_t* out,
                 std::size_t count, int alpha) {
  if (alpha < 0 || alpha > 255) return false;
  const unsigned a = static_cast<unsigned>(alpha);
  const unsigned rest = 255u - a;
  for (std::size_t i = 0; i < count; ++i) {
    out[i] = static_cast<std::uint8_t>((source[i] * a + destination[i] * rest) >> 8);
  }
  return true;
}

}  // namespace tavlet
