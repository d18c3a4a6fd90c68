#include "oracle.h"

#include <algorithm>
#include <cmath>

namespace tavlet::oracle {

Buffer RandomBuffer(std::mt19937& random, std::int32_t w, std::int32_t h, std::int32_t bytes,
                    std::int32_t padding) {
  Buffer buffer(w, h, bytes, padding);
  std::uniform_int_distribution<int> value(0, 255);
  for (auto& b : buffer.pixels) b = static_cast<std::uint8_t>(value(random));
  return buffer;
}

bool SamePixels(const Buffer& a, const Buffer& b) {
  if (a.width != b.width || a.height != b.height || a.bytes != b.bytes) return false;
  for (std::int32_t y = 0; y < a.height; ++y) {
    if (!std::equal(a.Row(y), a.Row(y) + a.width * a.bytes, b.Row(y))) return false;
  }
  return true;
}

void Resize(const Buffer& source, Buffer& destination) {
  const std::int32_t w = source.width, h = source.height;
  const std::int32_t dw = destination.width, dh = destination.height;
  const double xr = static_cast<double>(w) / dw;
  const double yr = static_cast<double>(h) / dh;
  if (w % dw == 0 && h % dh == 0) {
    const int n = std::min(static_cast<int>(xr), static_cast<int>(yr));
    for (int y = 0; y < dh; ++y) {
      for (int x = 0; x < dw; ++x) {
        const int left = static_cast<int>(x * xr);
        const int top = static_cast<int>(y * yr);
        for (int c = 0; c < source.bytes; ++c) {
          std::uint32_t sum = 0;
          for (int j = 0; j < n; ++j) {
            for (int i = 0; i < n; ++i) sum += source.At(left + i, top + j, c);
          }
          destination.At(x, y, c) = static_cast<std::uint8_t>(sum / static_cast<std::uint32_t>(n * n));
        }
      }
    }
    return;
  }
  for (int y = 0; y < dh; ++y) {
    const double ta = y * yr;
    const double tb = ta + yr;
    const int top = static_cast<int>(ta);
    const int bottomEnd = std::min(static_cast<int>(tb + 0.99999999999), h);
    const double topWeight = 1.0 - (ta - top);
    double bottomWeight = tb - static_cast<int>(tb);
    if (bottomWeight == 0.0) bottomWeight = 1.0;
    const double rowSum = (bottomEnd - top - 2) + bottomWeight + topWeight;
    for (int x = 0; x < dw; ++x) {
      const double a = x * xr;
      const double b = a + xr;
      const int left = static_cast<int>(a);
      const int rightEnd = std::min(static_cast<int>(b + 0.99999999999), w);
      const double leftWeight = 1.0 - (a - left);
      double rightWeight = b - static_cast<int>(b);
      if (rightWeight == 0.0) rightWeight = 1.0;
      const double columnSum = (rightEnd - left - 2) + rightWeight + leftWeight;
      for (int c = 0; c < source.bytes; ++c) {
        double sum = 0;
        for (int j = top; j < bottomEnd; ++j) {
          const double rowWeight = j == top ? topWeight : j == bottomEnd - 1 ? bottomWeight : 1.0;
          for (int i = left; i < rightEnd; ++i) {
            const double columnWeight = i == left ? leftWeight : i == rightEnd - 1 ? rightWeight : 1.0;
            sum += source.At(i, j, c) * (rowWeight * columnWeight);
          }
        }
        const int value = static_cast<int>(sum / (columnSum * rowSum));
        destination.At(x, y, c) = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
      }
    }
  }
}

void Sharpen(const Buffer& source, Buffer& destination, std::int32_t level) {
  const int strength = std::clamp(level, 0, 100) * 5;
  for (int y = 0; y < source.height; ++y) {
    for (int x = 0; x < source.width; ++x) {
      for (int c = 0; c < source.bytes; ++c) {
        int sum = 0;
        for (int dy = -1; dy <= 1; ++dy) {
          for (int dx = -1; dx <= 1; ++dx) {
            const int sx = std::clamp(x + dx, 0, source.width - 1);
            const int sy = std::clamp(y + dy, 0, source.height - 1);
            sum += source.At(sx, sy, c);
          }
        }
        const int centre = source.At(x, y, c);
        const int value = centre - (((sum - 9 * centre) * strength) >> 10);
        destination.At(x, y, c) = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
      }
    }
  }
}

std::uint8_t GammaEntry(int i, double gamma) {
  const double exponent = gamma == 0.0 ? 1.0 : 1.0 / gamma;
  return static_cast<std::uint8_t>(std::pow(i * 0.00390625, exponent) * 256.0);
}

}  // namespace tavlet::oracle
