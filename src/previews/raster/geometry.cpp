// IS40_QuickRotateImageInPlace and IS40_FillSolidRect.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>

#include "previews/raster/raster.h"
#include "previews/raster/raster_checks.h"
#include "previews/raster/raster_context.h"

namespace tavlet {

int IS40_QuickRotateImageInPlace(unsigned char* image, std::int32_t width, std::int32_t height,
                                 std::int32_t mode, std::int32_t bytes, std::uint32_t /*flags*/) {
  using namespace raster;
  RasterCall call("IS40_QuickRotateImageInPlace");
  if (mode < 0 || mode > 2 || bytes <= 0 || bytes > 0x7FFFFFFF / std::max(width, 1) ||
      !IsPixelBuffer(image, width, height, bytes, width * bytes)) {
    return call.Finish(kBadArgument);
  }
  const std::size_t pixel = static_cast<std::size_t>(bytes);
  const std::uint64_t size = static_cast<std::uint64_t>(width) * height * pixel;
  if (size > SIZE_MAX) return call.Finish(kOutOfMemory);
  const auto total = static_cast<std::size_t>(size);
  std::unique_ptr<std::uint8_t[]> turned(new (std::nothrow) std::uint8_t[total]);
  if (!turned) return call.Finish(kOutOfMemory);

  const std::size_t w = static_cast<std::size_t>(width);
  const std::size_t h = static_cast<std::size_t>(height);
  for (std::size_t r = 0; r < h; ++r) {
    const std::uint8_t* from = image + r * w * pixel;
    for (std::size_t c = 0; c < w; ++c, from += pixel) {
      std::size_t to;
      if (mode == 0) {
        to = c * h + (h - 1 - r);           // row c, column height-1-r, h pixels a row
      } else if (mode == 2) {
        to = (w - 1 - c) * h + r;           // row width-1-c, column r
      } else {
        to = (h - 1 - r) * w + (w - 1 - c);  // flipped and mirrored
      }
      std::memcpy(turned.get() + to * pixel, from, pixel);
    }
  }
  std::memcpy(image, turned.get(), total);
  return call.Finish(kOk);
}

int IS40_FillSolidRect(unsigned char* image, std::int32_t width, std::int32_t height,
                       std::int32_t bytes, std::int32_t stride, const RasterRect* rect,
                       std::uint32_t color, std::uint32_t /*flags*/) {
  using namespace raster;
  RasterCall call("IS40_FillSolidRect");
  if ((bytes != 1 && bytes != 3 && bytes != 4) || rect == nullptr ||
      !IsPixelBuffer(image, width, height, bytes, stride)) {
    return call.Finish(kBadArgument);
  }
  // The right edge is inside the rectangle and the bottom edge is not; callers
  // depend on that, and the extra column of (0, 0, w, h) falls to the clipping.
  const std::int64_t fillWidth = static_cast<std::int64_t>(rect->right) - rect->left + 1;
  const std::int64_t fillHeight = static_cast<std::int64_t>(rect->bottom) - rect->top;
  if (fillWidth <= 0 || fillHeight <= 0) return call.Finish(kOk);

  const std::int64_t x0 = std::max<std::int64_t>(rect->left, 0);
  const std::int64_t x1 = std::min<std::int64_t>(rect->left + fillWidth, width);
  const std::int64_t y0 = std::max<std::int64_t>(rect->top, 0);
  const std::int64_t y1 = std::min<std::int64_t>(rect->bottom, height);
  if (x0 >= x1 || y0 >= y1) return call.Finish(kOk);

  std::uint8_t colour[4];
  for (int i = 0; i < 4; ++i) colour[i] = static_cast<std::uint8_t>(color >> (8 * i));
  const bool uniform = std::all_of(colour, colour + bytes, [&](std::uint8_t b) { return b == colour[0]; });
  const std::size_t runBytes = static_cast<std::size_t>(x1 - x0) * bytes;
  for (std::int64_t y = y0; y < y1; ++y) {
    std::uint8_t* p = image + static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x0) * bytes;
    if (uniform) {
      std::memset(p, colour[0], runBytes);
    } else {
      for (std::size_t i = 0; i < runBytes; i += bytes) std::memcpy(p + i, colour, bytes);
    }
  }
  return call.Finish(kOk);
}

}  // namespace tavlet
