// Plain transcriptions of the raster formulas, one pixel at a time, with no
// shortcuts: the reference that the library's fast paths must match byte for byte.
#pragma once

#include <cstdint>
#include <random>
#include <vector>

namespace tavlet::oracle {

struct Buffer {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t bytes = 3;
  std::int32_t stride = 0;
  std::vector<std::uint8_t> pixels;

  Buffer() = default;
  Buffer(std::int32_t w, std::int32_t h, std::int32_t b, std::int32_t padding = 0, std::uint8_t fill = 0)
      : width(w), height(h), bytes(b), stride(w * b + padding),
        pixels(static_cast<std::size_t>(stride) * h, fill) {}

  std::uint8_t* Row(std::int32_t y) { return pixels.data() + static_cast<std::size_t>(y) * stride; }
  const std::uint8_t* Row(std::int32_t y) const { return pixels.data() + static_cast<std::size_t>(y) * stride; }
  std::uint8_t& At(std::int32_t x, std::int32_t y, std::int32_t c) { return Row(y)[x * bytes + c]; }
  std::uint8_t At(std::int32_t x, std::int32_t y, std::int32_t c) const { return Row(y)[x * bytes + c]; }
};

Buffer RandomBuffer(std::mt19937& random, std::int32_t w, std::int32_t h, std::int32_t bytes,
                    std::int32_t padding);

// True when the pixels (not the padding) of the two buffers are equal.
bool SamePixels(const Buffer& a, const Buffer& b);

// Mode 15 of IS40_ResizeImage: box mean or area average, by the rules as written.
void Resize(const Buffer& source, Buffer& destination);
// IS40_SharpenImage with the 3 x 3 block summed in full at every pixel.
void Sharpen(const Buffer& source, Buffer& destination, std::int32_t level);
// Entry i of the gamma table.
std::uint8_t GammaEntry(int i, double gamma);

}  // namespace tavlet::oracle
