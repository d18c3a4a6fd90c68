// Argument checks shared by the IS40_ operations.
#pragma once

#include <cstdint>

namespace tavlet::raster {

// A buffer of `height` rows of `width` pixels, each row inside `stride` bytes.
inline bool IsPixelBuffer(const void* pixels, std::int32_t width, std::int32_t height,
                          std::int32_t bytes, std::int32_t stride) {
  return pixels != nullptr && width > 0 && height > 0 && bytes > 0 &&
         static_cast<std::int64_t>(width) * bytes <= stride;
}

inline std::uint8_t ClampToByte(std::int32_t value) {
  return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

}  // namespace tavlet::raster
