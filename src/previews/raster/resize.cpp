// IS40_ResizeImage, mode 15: reduction by averaging, the box mean when the sizes
// divide evenly and the exact area average otherwise.
#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "previews/raster/raster.h"
#include "previews/raster/raster_checks.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace raster {
namespace {

struct Image {
  const std::uint8_t* pixels;
  std::int32_t width, height, stride;
};

struct Target {
  std::uint8_t* pixels;
  std::int32_t width, height, stride;
};

// The n rows of a box row are first added column by column (a loop the compiler
// vectorises), then every destination pixel adds n of those column sums.
template <typename ColumnSum>
std::int32_t BoxMeanWith(const RasterCall& call, const Image& source, const Target& target,
                         std::int32_t bytes, std::int32_t xStep, std::int32_t yStep, std::int32_t n) {
  const std::uint32_t divisor = static_cast<std::uint32_t>(n) * static_cast<std::uint32_t>(n);
  // Only the first n pixels of each xStep-wide cell are in a box.
  const std::size_t usedBytes =
      (static_cast<std::size_t>(target.width - 1) * xStep + n) * static_cast<std::size_t>(bytes);
  std::vector<ColumnSum> columns;
  try {
    columns.resize(usedBytes);
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }

  for (std::int32_t y = 0; y < target.height; ++y) {
    const std::uint8_t* top = source.pixels + static_cast<std::size_t>(y) * yStep * source.stride;
    ColumnSum* sum = columns.data();
    for (std::size_t k = 0; k < usedBytes; ++k) sum[k] = top[k];
    for (std::int32_t j = 1; j < n; ++j) {
      const std::uint8_t* row = top + static_cast<std::size_t>(j) * source.stride;
      for (std::size_t k = 0; k < usedBytes; ++k) sum[k] = static_cast<ColumnSum>(sum[k] + row[k]);
    }

    std::uint8_t* out = target.pixels + static_cast<std::size_t>(y) * target.stride;
    const std::size_t cell = static_cast<std::size_t>(xStep) * bytes;
    if (bytes == 3) {
      for (std::int32_t x = 0; x < target.width; ++x, out += 3) {
        const ColumnSum* p = sum + x * cell;
        std::uint32_t s0 = 0, s1 = 0, s2 = 0;
        for (std::int32_t i = 0; i < n; ++i, p += 3) {
          s0 += p[0];
          s1 += p[1];
          s2 += p[2];
        }
        out[0] = static_cast<std::uint8_t>(s0 / divisor);
        out[1] = static_cast<std::uint8_t>(s1 / divisor);
        out[2] = static_cast<std::uint8_t>(s2 / divisor);
      }
    } else {
      for (std::int32_t x = 0; x < target.width; ++x) {
        for (std::int32_t c = 0; c < bytes; ++c) {
          const ColumnSum* p = sum + x * cell + c;
          std::uint32_t total = 0;
          for (std::int32_t i = 0; i < n; ++i, p += bytes) total += *p;
          *out++ = static_cast<std::uint8_t>(total / divisor);
        }
      }
    }
    if (!call.Continue(y, target.height)) return kStoppedByCallback;
  }
  return kOk;
}

// Destination pixel (x, y) is the mean of the n x n source pixels from
// (x * xr, y * yr). When xr and yr differ the square box covers only part of the
// destination pixel's area; that is how this mode has always behaved.
std::int32_t BoxMean(const RasterCall& call, const Image& source, const Target& target,
                     std::int32_t bytes) {
  const double xr = static_cast<double>(source.width) / target.width;
  const double yr = static_cast<double>(source.height) / target.height;
  if (xr * yr > kMaxBoxProduct) return kBadArgument;

  if (source.width == target.width && source.height == target.height) {
    const std::size_t rowBytes = static_cast<std::size_t>(source.width) * bytes;
    for (std::int32_t y = 0; y < target.height; ++y) {
      std::memcpy(target.pixels + static_cast<std::size_t>(y) * target.stride,
                  source.pixels + static_cast<std::size_t>(y) * source.stride, rowBytes);
      if (!call.Continue(y, target.height)) return kStoppedByCallback;
    }
    return kOk;
  }

  // The sizes divide evenly, so the ratios are whole and the corners integral.
  const std::int32_t xStep = source.width / target.width;
  const std::int32_t yStep = source.height / target.height;
  const std::int32_t n = std::min(xStep, yStep);
  // Up to 257 rows of bytes fit a 16-bit column sum; the box limit allows more.
  if (n <= 257) return BoxMeanWith<std::uint16_t>(call, source, target, bytes, xStep, yStep, n);
  return BoxMeanWith<std::uint32_t>(call, source, target, bytes, xStep, yStep, n);
}

// The source columns (or rows) that one destination column covers, with the
// weights of the first and the last and the sum of all of them.
struct Span {
  std::int32_t first;
  std::int32_t count;
  double firstWeight;
  double lastWeight;
  double sum;
};

Span MakeSpan(std::int32_t index, double ratio, std::int32_t sourceSize) {
  const double a = index * ratio;
  const double b = a + ratio;
  const auto left = static_cast<std::int32_t>(a);
  auto rightEnd = static_cast<std::int32_t>(b + 0.99999999999);
  const double leftWeight = 1.0 - (a - left);
  double rightWeight = b - static_cast<std::int32_t>(b);
  if (rightWeight == 0.0) rightWeight = 1.0;
  // On very large images b can come out a hair above the source size, which would
  // reach one column past the edge; the last column then counts whole.
  if (rightEnd > sourceSize) {
    rightEnd = sourceSize;
    rightWeight = 1.0;
  }
  const double sum = (rightEnd - left - 2) + rightWeight + leftWeight;
  return {left, rightEnd - left, leftWeight, rightWeight, sum};
}

// Every source pixel counts with (row weight x column weight); the sum of each
// destination pixel is built row by row, column by column, in the same order as a
// plain per-pixel loop, so that the truncated results agree to the bit.
std::int32_t AreaAverage(const RasterCall& call, const Image& source, const Target& target,
                         std::int32_t bytes) {
  const double xr = static_cast<double>(source.width) / target.width;
  const double yr = static_cast<double>(source.height) / target.height;

  std::vector<Span> columns;
  std::vector<double> columnWeights;  // flat, in the order of the spans
  std::vector<std::int32_t> weightStart;
  std::vector<double> rowWeights;
  std::vector<double> sums;
  try {
    columns.reserve(target.width);
    weightStart.reserve(target.width);
    // Each destination column covers its share of the source plus at most two
    // shared border columns.
    columnWeights.reserve(static_cast<std::size_t>(source.width) + 2 * static_cast<std::size_t>(target.width));
    for (std::int32_t x = 0; x < target.width; ++x) {
      const Span span = MakeSpan(x, xr, source.width);
      columns.push_back(span);
      weightStart.push_back(static_cast<std::int32_t>(columnWeights.size()));
      for (std::int32_t k = 0; k < span.count; ++k) {
        columnWeights.push_back(k == 0                ? span.firstWeight
                                : k == span.count - 1 ? span.lastWeight
                                                      : 1.0);
      }
    }
    rowWeights.resize(columnWeights.size());
    sums.resize(static_cast<std::size_t>(target.width) * bytes);
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }

  for (std::int32_t y = 0; y < target.height; ++y) {
    const Span rows = MakeSpan(y, yr, source.height);
    std::fill(sums.begin(), sums.end(), 0.0);
    for (std::int32_t j = 0; j < rows.count; ++j) {
      const double rowWeight = j == 0                ? rows.firstWeight
                               : j == rows.count - 1 ? rows.lastWeight
                                                     : 1.0;
      // A weight of 1.0 leaves the column weights as they are, bit for bit.
      const double* weights = columnWeights.data();
      if (rowWeight != 1.0) {
        for (std::size_t k = 0; k < columnWeights.size(); ++k) rowWeights[k] = rowWeight * columnWeights[k];
        weights = rowWeights.data();
      }
      const std::uint8_t* row =
          source.pixels + static_cast<std::size_t>(rows.first + j) * source.stride;
      double* sum = sums.data();
      if (bytes == 3) {
        for (std::int32_t x = 0; x < target.width; ++x, sum += 3) {
          const Span& span = columns[x];
          const double* w = weights + weightStart[x];
          const std::uint8_t* p = row + static_cast<std::size_t>(span.first) * 3;
          double s0 = sum[0], s1 = sum[1], s2 = sum[2];
          for (std::int32_t i = 0; i < span.count; ++i, p += 3) {
            s0 += p[0] * w[i];
            s1 += p[1] * w[i];
            s2 += p[2] * w[i];
          }
          sum[0] = s0;
          sum[1] = s1;
          sum[2] = s2;
        }
      } else {
        for (std::int32_t x = 0; x < target.width; ++x, sum += bytes) {
          const Span& span = columns[x];
          const double* w = weights + weightStart[x];
          const std::uint8_t* p = row + static_cast<std::size_t>(span.first) * bytes;
          for (std::int32_t i = 0; i < span.count; ++i) {
            for (std::int32_t c = 0; c < bytes; ++c) sum[c] += *p++ * w[i];
          }
        }
      }
    }
    std::uint8_t* out = target.pixels + static_cast<std::size_t>(y) * target.stride;
    const double* sum = sums.data();
    for (std::int32_t x = 0; x < target.width; ++x) {
      const double area = columns[x].sum * rows.sum;
      for (std::int32_t c = 0; c < bytes; ++c, ++sum) {
        *out++ = ClampToByte(static_cast<std::int32_t>(*sum / area));
      }
    }
    if (!call.Continue(y, target.height)) return kStoppedByCallback;
  }
  return kOk;
}

}  // namespace
}  // namespace raster

int IS40_ResizeImage(const unsigned char* source, std::int32_t width, std::int32_t height,
                     std::int32_t sourceStride, unsigned char* destination,
                     std::int32_t destinationWidth, std::int32_t destinationHeight,
                     std::int32_t destinationStride, std::int32_t bytes, std::int32_t mode,
                     std::uint32_t /*flags*/) {
  using namespace raster;
  RasterCall call("IS40_ResizeImage");
  if (mode != kResizeReduce ||
      !IsPixelBuffer(source, width, height, bytes, sourceStride) ||
      !IsPixelBuffer(destination, destinationWidth, destinationHeight, bytes, destinationStride) ||
      destinationWidth > width || destinationHeight > height) {
    return call.Finish(kBadArgument);
  }
  const Image image{source, width, height, sourceStride};
  const Target target{destination, destinationWidth, destinationHeight, destinationStride};
  if (width % destinationWidth == 0 && height % destinationHeight == 0) {
    return call.Finish(BoxMean(call, image, target, bytes));
  }
  return call.Finish(AreaAverage(call, image, target, bytes));
}

}  // namespace tavlet
