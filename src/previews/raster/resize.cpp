// IS40_ResizeImage, mode 15: reduction by averaging, the box mean when the sizes
// divide evenly and the exact area average otherwise.
#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

#if defined(__GNUC__) && defined(__x86_64__)
#include <immintrin.h>
#endif

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

#if defined(__GNUC__) && defined(__x86_64__)
#define TAVLET_AREA_AVX2 1

bool vectorAllowed = true;

bool HasAvx2() {
  static const bool has = __builtin_cpu_supports("avx2") != 0;
  return has && vectorAllowed;
}

// Lanes 0..2 are the pixel's channels; lane 3 takes the next byte and is never read.
// A byte v below the bits of 2^52 makes the double 2^52 + v exactly, and taking
// 2^52 away leaves v: fewer shuffles than the conversion instruction needs.
__attribute__((target("avx2"))) inline __m256d LoadPixel(const std::uint8_t* p) {
  const __m256i magic = _mm256_set1_epi64x(0x4330000000000000LL);
  const __m256i biased = _mm256_or_si256(_mm256_cvtepu8_epi64(_mm_loadu_si32(p)), magic);
  return _mm256_sub_pd(_mm256_castsi256_pd(biased), _mm256_castsi256_pd(magic));
}

// One source row's terms of a destination column: the first source pixel with
// its weight, `middle` pixels of weight 1 (times the row's weight), and the last
// pixel with its weight when the span has two or more.
struct ColumnTerms {
  std::size_t offset;  // of the first pixel in the row
  std::int32_t middle;
  bool hasLast;
  double firstWeight, lastWeight;  // times the row's weight
};

// Adds the terms of up to eight destination columns into their sums, side by
// side but each in the plain loop's order: first, middle, last. Interior pixels
// of an interior row have the weight 1.0 exactly, and p x 1.0 is p, so there
// they are only added. Only multiplications and additions, no fused
// multiply-add, which would round differently: the function is built for AVX2
// without FMA. `common` is the fewest middle pixels of any column.
template <int kLanes, bool kUnitRow>
__attribute__((target("avx2"))) inline void AddTerms(const std::uint8_t* row, const ColumnTerms* terms,
                                                     std::int32_t common, double rowWeight, double* sums) {
  __m256d s[kLanes];
  const std::uint8_t* first[kLanes];
  for (int q = 0; q < kLanes; ++q) {
    first[q] = row + terms[q].offset;
    s[q] = _mm256_add_pd(_mm256_loadu_pd(sums + 4 * q),
                         _mm256_mul_pd(LoadPixel(first[q]), _mm256_set1_pd(terms[q].firstWeight)));
  }
  const __m256d weight = _mm256_set1_pd(rowWeight);
  for (std::int32_t k = 1; k <= common; ++k) {
    for (int q = 0; q < kLanes; ++q) {
      const __m256d v = LoadPixel(first[q] + 3 * k);
      s[q] = _mm256_add_pd(s[q], kUnitRow ? v : _mm256_mul_pd(v, weight));
    }
  }
  for (int q = 0; q < kLanes; ++q) {
    for (std::int32_t k = common + 1; k <= terms[q].middle; ++k) {
      const __m256d v = LoadPixel(first[q] + 3 * k);
      s[q] = _mm256_add_pd(s[q], kUnitRow ? v : _mm256_mul_pd(v, weight));
    }
    if (terms[q].hasLast) {
      const __m256d v = LoadPixel(first[q] + 3 * (terms[q].middle + 1));
      s[q] = _mm256_add_pd(s[q], _mm256_mul_pd(v, _mm256_set1_pd(terms[q].lastWeight)));
    }
    _mm256_storeu_pd(sums + 4 * q, s[q]);
  }
}

template <bool kUnitRow>
__attribute__((target("avx2"))) void AddRow(const std::uint8_t* row, const std::vector<ColumnTerms>& terms,
                                            std::int32_t common, double rowWeight, double* sums) {
  const std::size_t count = terms.size();
  std::size_t x = 0;
  // Eight sums grow side by side, so that the latency of each addition is hidden.
  for (; x + 8 <= count; x += 8) AddTerms<8, kUnitRow>(row, &terms[x], common, rowWeight, sums + 4 * x);
  for (; x < count; ++x) AddTerms<1, kUnitRow>(row, &terms[x], common, rowWeight, sums + 4 * x);
}

std::int32_t AreaAverageAvx2(const RasterCall& call, const Image& source, const Target& target,
                             const std::vector<Span>& columns, double yr) {
  std::vector<ColumnTerms> terms, scaled;
  std::vector<double> sums;
  std::vector<std::uint8_t> lastRow;
  try {
    terms.reserve(columns.size());
    for (const Span& span : columns) {
      terms.push_back({static_cast<std::size_t>(span.first) * 3, std::max(span.count - 2, 0), span.count > 1,
                       span.firstWeight, span.lastWeight});
    }
    scaled = terms;
    sums.resize(columns.size() * 4);
    // Each pixel is read as 4 bytes; the bottom row gets a copy with room for the
    // byte past its end.
    lastRow.resize(static_cast<std::size_t>(source.width) * 3 + 1);
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
  std::int32_t common = terms.front().middle;
  for (const ColumnTerms& t : terms) common = std::min(common, t.middle);
  const std::uint8_t* bottom = source.pixels + static_cast<std::size_t>(source.height - 1) * source.stride;
  std::memcpy(lastRow.data(), bottom, static_cast<std::size_t>(source.width) * 3);

  for (std::int32_t y = 0; y < target.height; ++y) {
    const Span rows = MakeSpan(y, yr, source.height);
    std::fill(sums.begin(), sums.end(), 0.0);
    for (std::int32_t j = 0; j < rows.count; ++j) {
      const double rowWeight = j == 0 ? rows.firstWeight : j == rows.count - 1 ? rows.lastWeight : 1.0;
      const std::int32_t index = rows.first + j;
      const std::uint8_t* row = index == source.height - 1
                                    ? lastRow.data()
                                    : source.pixels + static_cast<std::size_t>(index) * source.stride;
      if (rowWeight == 1.0) {
        AddRow<true>(row, terms, common, rowWeight, sums.data());
        continue;
      }
      // The plain loop's weight of each pixel is (row weight x column weight).
      for (std::size_t x = 0; x < terms.size(); ++x) {
        scaled[x].firstWeight = rowWeight * terms[x].firstWeight;
        scaled[x].lastWeight = rowWeight * terms[x].lastWeight;
      }
      AddRow<false>(row, scaled, common, rowWeight, sums.data());
    }
    std::uint8_t* out = target.pixels + static_cast<std::size_t>(y) * target.stride;
    for (std::int32_t x = 0; x < target.width; ++x, out += 3) {
      const double area = columns[static_cast<std::size_t>(x)].sum * rows.sum;
      const double* sum = &sums[static_cast<std::size_t>(x) * 4];
      for (std::int32_t c = 0; c < 3; ++c) out[c] = ClampToByte(static_cast<std::int32_t>(sum[c] / area));
    }
    if (!call.Continue(y, target.height)) return kStoppedByCallback;
  }
  return kOk;
}
#endif


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

#ifdef TAVLET_AREA_AVX2
  if (bytes == 3 && HasAvx2()) return AreaAverageAvx2(call, source, target, columns, yr);
#endif
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

bool AllowVectorAreaPath(bool allow) {
#ifdef TAVLET_AREA_AVX2
  return std::exchange(vectorAllowed, allow);
#else
  (void)allow;
  return false;
#endif
}

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
