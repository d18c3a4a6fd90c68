// IS40_SharpenImage and IS40_AdjustGamma: the two per-pixel steps of a thumbnail.
#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "previews/raster/raster.h"
#include "previews/raster/raster_checks.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace raster {
namespace {

inline std::uint8_t Sharpened(std::int32_t centre, std::int32_t blockSum, std::int32_t strength) {
  // An arithmetic shift, not a division: negative differences round toward minus infinity.
  return ClampToByte(centre - (((blockSum - 9 * centre) * strength) >> 10));
}

// One row of the 3 x 3 unsharp mask. The rows above, at and below come with the
// image's edge already extended. Each pixel's column sum (three values) is worked
// out once and then shared by the three block sums it belongs to; columns are
// extended at both ends.
void SharpenRow(const std::uint8_t* up, const std::uint8_t* at, const std::uint8_t* down,
                std::int32_t width, std::int32_t bytes, std::int32_t strength, std::int32_t* columns,
                std::uint8_t* out) {
  const std::size_t count = static_cast<std::size_t>(width) * bytes;
  for (std::size_t k = 0; k < count; ++k) columns[k] = up[k] + at[k] + down[k];
  const std::size_t last = count - bytes;
  for (std::int32_t c = 0; c < bytes; ++c) {
    out[c] = Sharpened(at[c], 2 * columns[c] + columns[c + bytes], strength);
    out[last + c] = Sharpened(at[last + c], columns[last + c - bytes] + 2 * columns[last + c], strength);
  }
  for (std::size_t k = bytes; k < last; ++k) {
    out[k] = Sharpened(at[k], columns[k - bytes] + columns[k] + columns[k + bytes], strength);
  }
}

}  // namespace
}  // namespace raster

int IS40_SharpenImage(const unsigned char* source, std::int32_t width, std::int32_t height,
                      std::int32_t bytes, std::int32_t sourceStride, unsigned char* destination,
                      std::int32_t destinationStride, std::int32_t level, std::uint32_t flags) {
  using namespace raster;
  RasterCall call("IS40_SharpenImage");
  if (source == destination || bytes > 8 || (flags & kSharpen16Bit) != 0 ||
      !IsPixelBuffer(source, width, height, bytes, sourceStride) ||
      !IsPixelBuffer(destination, width, height, bytes, destinationStride) || width < 2 ||
      height < 2) {
    return call.Finish(kBadArgument);
  }
  const std::int32_t strength = std::clamp(level, 0, 100) * 5;
  std::vector<std::int32_t> columns;
  try {
    columns.resize(static_cast<std::size_t>(width) * bytes);
  } catch (const std::bad_alloc&) {
    return call.Finish(kOutOfMemory);
  }
  for (std::int32_t y = 0; y < height; ++y) {
    const std::uint8_t* up = source + static_cast<std::size_t>(std::max(y - 1, 0)) * sourceStride;
    const std::uint8_t* at = source + static_cast<std::size_t>(y) * sourceStride;
    const std::uint8_t* down =
        source + static_cast<std::size_t>(std::min(y + 1, height - 1)) * sourceStride;
    std::uint8_t* out = destination + static_cast<std::size_t>(y) * destinationStride;
    SharpenRow(up, at, down, width, bytes, strength, columns.data(), out);
    if (!call.Continue(y, height)) return call.Finish(kStoppedByCallback);
  }
  return call.Finish(kOk);
}

int IS40_AdjustGamma(unsigned char* image, std::int32_t width, std::int32_t height,
                     std::int32_t bytes, std::int32_t stride, double gamma, std::uint32_t flags) {
  using namespace raster;
  RasterCall call("IS40_AdjustGamma");
  // NaN and infinity are refused with the negative values: neither gives a table of bytes.
  if (!(gamma >= 0.0) || !std::isfinite(gamma) ||
      !IsPixelBuffer(image, width, height, bytes, stride)) {
    return call.Finish(kBadArgument);
  }
  const double exponent = gamma == 0.0 ? 1.0 : 1.0 / gamma;
  std::uint8_t table[256];
  for (int i = 0; i < 256; ++i) {
    // The scale is 256, so entry 255 stays inside a byte; only a gamma so large that
    // the power rounds to 1.0 could reach 256.
    const double value = std::pow(i * 0.00390625, exponent) * 256.0;
    table[i] = static_cast<std::uint8_t>(std::min(value, 255.0));
  }
  const bool skipFourth = bytes == 4 && (flags & kGammaIncludeAlpha) == 0;
  for (std::int32_t y = 0; y < height; ++y) {
    std::uint8_t* p = image + static_cast<std::size_t>(y) * stride;
    if (skipFourth) {
      for (std::int32_t x = 0; x < width; ++x, p += 4) {
        p[0] = table[p[0]];
        p[1] = table[p[1]];
        p[2] = table[p[2]];
      }
    } else {
      const std::size_t count = static_cast<std::size_t>(width) * bytes;
      for (std::size_t i = 0; i < count; ++i) p[i] = table[p[i]];
    }
    if (!call.Continue(y, height)) return call.Finish(kStoppedByCallback);
  }
  return call.Finish(kOk);
}

}  // namespace tavlet
