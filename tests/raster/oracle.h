// Plain transcriptions of the raster formulas, one pixel at a time, with no
// shortcuts: the reference that the library's fast paths must match byte for byte.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace tavlet::oracle {

struct Buffer {
  std::int32_t width = 0, height = 0, bytes = 3, stride = 0;
  std::vector<std::uint8_t> pixels;

  Buffer(std::int32_t w, std::int32_t h, std::int32_t b, std::int32_t padding = 0,
         std::uint8_t fill = 0)
      : width(w), height(h), bytes(b), stride(w * b + padding),
        pixels(static_cast<std::size_t>(stride) * h, fill) {}

  std::uint8_t* data() { return pixels.data(); }
  const std::uint8_t* data() const { return pixels.data(); }
  std::uint8_t& At(int x, int y, int c) { return pixels[std::size_t(y) * stride + x * bytes + c]; }
  std::uint8_t At(int x, int y, int c) const {
    return pixels[std::size_t(y) * stride + x * bytes + c];
  }
};

inline Buffer RandomBuffer(std::mt19937& random, int w, int h, int bytes, int padding) {
  Buffer buffer(w, h, bytes, padding);
  for (auto& b : buffer.pixels) b = static_cast<std::uint8_t>(random());
  return buffer;
}

// The source columns (or rows) one destination column covers, and their weights.
struct Span {
  int first, end;
  double firstWeight, lastWeight, sum;
  double Weight(int i) const { return i == first ? firstWeight : i == end - 1 ? lastWeight : 1.0; }
};

inline Span SpanOf(int index, double ratio, int size) {
  const double a = index * ratio, b = a + ratio;
  Span s{int(a), std::min(int(b + 0.99999999999), size), 1.0 - (a - int(a)), b - int(b), 0};
  if (s.lastWeight == 0.0) s.lastWeight = 1.0;
  s.sum = (s.end - s.first - 2) + s.lastWeight + s.firstWeight;
  return s;
}

// Mode 15 of IS40_ResizeImage: the n x n box mean when the sizes divide evenly,
// the area average otherwise. Writes the pixels only, never the padding.
inline void Resize(const Buffer& s, Buffer& d) {
  const double xr = double(s.width) / d.width, yr = double(s.height) / d.height;
  const bool box = s.width % d.width == 0 && s.height % d.height == 0;
  const int n = std::min(int(xr), int(yr));
  for (int y = 0; y < d.height; ++y) {
    const Span rows = SpanOf(y, yr, s.height);
    for (int x = 0; x < d.width; ++x) {
      const Span columns = SpanOf(x, xr, s.width);
      for (int c = 0; c < s.bytes; ++c) {
        if (box) {
          std::uint32_t sum = 0;
          for (int j = 0; j < n * n; ++j) sum += s.At(int(x * xr) + j % n, int(y * yr) + j / n, c);
          d.At(x, y, c) = static_cast<std::uint8_t>(sum / std::uint32_t(n * n));
          continue;
        }
        double sum = 0;
        for (int j = rows.first; j < rows.end; ++j) {
          for (int i = columns.first; i < columns.end; ++i) {
            sum += s.At(i, j, c) * (rows.Weight(j) * columns.Weight(i));
          }
        }
        const int value = int(sum / (columns.sum * rows.sum));
        d.At(x, y, c) = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
      }
    }
  }
}

// IS40_SharpenImage with the 3 x 3 block summed in full at every pixel, edges extended.
inline void Sharpen(const Buffer& s, Buffer& d, int level) {
  const int strength = std::clamp(level, 0, 100) * 5;
  for (int y = 0; y < s.height; ++y) {
    for (int x = 0; x < s.width; ++x) {
      for (int c = 0; c < s.bytes; ++c) {
        int sum = 0;
        for (int k = 0; k < 9; ++k) {
          sum += s.At(std::clamp(x + k % 3 - 1, 0, s.width - 1),
                      std::clamp(y + k / 3 - 1, 0, s.height - 1), c);
        }
        const int centre = s.At(x, y, c);
        const int value = centre - (((sum - 9 * centre) * strength) >> 10);
        d.At(x, y, c) = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
      }
    }
  }
}

inline std::uint8_t GammaEntry(int i, double gamma) {
  return static_cast<std::uint8_t>(std::pow(i * 0.00390625, gamma == 0.0 ? 1.0 : 1.0 / gamma) * 256.0);
}

}  // namespace tavlet::oracle
