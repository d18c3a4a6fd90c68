// The pixel operations against worked numbers and against the plain formulas.
#include <gtest/gtest.h>

#include <string>

#include "oracle.h"
#include "previews/raster/raster.h"

namespace tavlet {
namespace {

using oracle::Buffer;

int ResizeFast(const Buffer& source, Buffer& destination) {
  return IS40_ResizeImage(source.data(), source.width, source.height, source.stride,
                          destination.data(), destination.width, destination.height,
                          destination.stride, source.bytes, raster::kResizeReduce, 0);
}

int SharpenFast(const Buffer& source, Buffer& destination, int level) {
  return IS40_SharpenImage(source.data(), source.width, source.height, source.bytes,
                           source.stride, destination.data(), destination.stride, level, 7);
}

TEST(ResizeImage, WorkedNumbers) {
  std::mt19937 random(2);
  const Buffer source = oracle::RandomBuffer(random, 100, 50, 3, 5);
  // 100 x 50 to itself is a copy; to 50 x 50 (n = 1) it takes every second pixel.
  for (int step : {1, 2}) {
    Buffer destination(100 / step, 50, 3, 2);
    ASSERT_NE(ResizeFast(source, destination), 0);
    for (int y = 0; y < 50; ++y) {
      for (int k = 0; k < 3 * 100 / step; ++k) {
        ASSERT_EQ(destination.At(k / 3, y, k % 3), source.At(step * (k / 3), y, k % 3)) << step;
      }
    }
  }
  // The area path truncates: a flat 200 comes out at 199 or 200, and some at 199.
  Buffer flat(100, 100, 3, 0, 200), small(33, 33, 3);
  ASSERT_NE(ResizeFast(flat, small), 0);
  int low = 0;
  for (std::uint8_t v : small.pixels) {
    ASSERT_TRUE(v == 199 || v == 200) << int(v);
    low += v == 199;
  }
  EXPECT_GT(low, 0);
  // Box sums of 7 and 41 are cut: 7 / 4 = 1. Area weights: (0 + 100 x 0.5) / 1.5 = 33.
  Buffer box(4, 2, 1), boxOut(2, 1, 1), area(3, 1, 1), areaOut(2, 1, 1);
  box.pixels = {1, 2, 10, 10, 2, 2, 10, 11};
  area.pixels = {0, 100, 200};
  ASSERT_NE(ResizeFast(box, boxOut) * ResizeFast(area, areaOut), 0);
  EXPECT_EQ(boxOut.pixels, (std::vector<std::uint8_t>{1, 10}));
  EXPECT_EQ(areaOut.pixels, (std::vector<std::uint8_t>{33, 166}));
}

// Whole ratios (the box path, equal and unequal), fractional ones (the area path),
// odd widths, padded strides and 1, 3 and 4 bytes a pixel; the padding stays as it was.
TEST(ResizeImage, MatchesThePlainFormulaByteForByte) {
  const int sizes[][4] = {
      {97, 61, 97, 61}, {99, 63, 33, 21}, {120, 90, 12, 9},   {100, 50, 50, 50}, {90, 60, 30, 60},
      {97, 61, 13, 7},  {101, 77, 50, 38}, {64, 48, 63, 47},  {211, 127, 29, 17}, {37, 5, 36, 2},
      {7, 7, 1, 1},     {255, 3, 2, 2},    {1, 9, 1, 4},      {33, 1, 10, 1},
  };
  std::mt19937 random(3);
  for (const auto& s : sizes) {
    for (int bytes : {1, 3, 4}) {
      for (int padding : {0, 3, 17}) {
        const Buffer source = oracle::RandomBuffer(random, s[0], s[1], bytes, padding);
        Buffer fast(s[2], s[3], bytes, padding + 1, 0xAB), expected = fast;
        ASSERT_NE(ResizeFast(source, fast), 0);
        oracle::Resize(source, expected);
        EXPECT_EQ(fast.pixels, expected.pixels) << s[0] << "x" << s[1] << " -> " << s[2] << "x"
                                                << s[3] << ", " << bytes << " bytes, pad " << padding;
      }
    }
  }
}

std::vector<std::uint8_t> GammaRamp(double gamma, int bytes = 1, std::uint32_t flags = 0) {
  Buffer ramp(256 / bytes, 1, bytes, 0);
  for (int i = 0; i < 256; ++i) ramp.pixels[i] = static_cast<std::uint8_t>(i);
  EXPECT_NE(IS40_AdjustGamma(ramp.data(), 256 / bytes, 1, bytes, 256, gamma, flags), 0);
  return ramp.pixels;
}

TEST(AdjustGamma, WorkedNumbersAndTheFormulaForEveryEntry) {
  const double worked[][3] = {{2.5, 1, 27},    {2.5, 64, 147}, {2.5, 128, 194}, {2.5, 255, 255},
                              {0.5, 255, 254}, {0.5, 128, 64}, {2.0, 64, 128}};  // gamma, in, out
  for (const auto& c : worked) EXPECT_EQ(GammaRamp(c[0])[int(c[1])], c[2]) << c[0] << " " << c[1];
  // 0 and 1 leave every value as it is.
  for (double gamma : {0.0, 1.0, 0.1, 0.3, 0.7, 1.3, 1.8, 2.2, 3.0, 7.5, 1000.0}) {
    const auto ramp = GammaRamp(gamma);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(ramp[i], oracle::GammaEntry(i, gamma)) << gamma << " " << i;
  }
  // The fourth channel of a 4-byte pixel only with the flag.
  for (std::uint32_t flags : {0u, raster::kGammaIncludeAlpha}) {
    const auto ramp = GammaRamp(2.5, 4, flags);
    for (int i = 0; i < 256; ++i) {
      ASSERT_EQ(ramp[i], i % 4 == 3 && !flags ? i : oracle::GammaEntry(i, 2.5)) << flags << " " << i;
    }
  }
}

TEST(SharpenImage, WorkedNumbers) {
  // Background, then a pixel (line 0) or a column (line 1) of another value, at level 20
  // (strength 100); then the results at the centre and beside it. The shift rounds toward
  // minus infinity: -1000 >> 10 is -1, so 200 around a dip becomes 201. Lines clamp.
  const int cases[][5] = {{0, 10, 0, 18, 0}, {200, 190, 0, 183, 201}, {0, 255, 1, 255, 0}, {255, 0, 1, 0, 255}};
  for (const auto& c : cases) {
    Buffer source(3, 3, 1, 0, std::uint8_t(c[0])), out(3, 3, 1);
    for (int y = 1 - c[2]; y <= 1 + c[2]; ++y) source.At(1, y, 0) = std::uint8_t(c[1]);
    ASSERT_NE(SharpenFast(source, out, 20), 0);
    EXPECT_EQ(out.At(1, 1, 0), c[3]) << c[0] << "/" << c[1];
    EXPECT_EQ(out.At(0, 1, 0), c[4]) << c[0] << "/" << c[1];
  }
  // A flat image stays flat; levels above 100 act as 100.
  std::mt19937 random(5);
  const Buffer flat(7, 5, 3, 0, 173), image = oracle::RandomBuffer(random, 23, 17, 3, 2);
  Buffer flatOut(7, 5, 3), at100(23, 17, 3), at200(23, 17, 3), at20(23, 17, 3);
  ASSERT_NE(SharpenFast(flat, flatOut, 100), 0);
  EXPECT_EQ(flatOut.pixels, flat.pixels);
  ASSERT_NE(SharpenFast(image, at100, 100) * SharpenFast(image, at200, 200) * SharpenFast(image, at20, 20), 0);
  EXPECT_EQ(at100.pixels, at200.pixels);
  EXPECT_NE(at100.pixels, at20.pixels);
}

TEST(SharpenImage, MatchesThePlainFormulaByteForByte) {
  std::mt19937 random(7);
  const std::pair<int, int> sizes[] = {{2, 2}, {2, 9}, {9, 2}, {3, 3}, {31, 17}, {97, 61}};
  for (auto [w, h] : sizes) {
    for (int bytes : {1, 3, 4, 8}) {
      for (int level : {-5, 1, 20, 57, 100, 200}) {
        const Buffer source = oracle::RandomBuffer(random, w, h, bytes, 5);
        Buffer fast(w, h, bytes, 3, 0xAB), expected = fast;
        ASSERT_NE(SharpenFast(source, fast, level), 0);
        oracle::Sharpen(source, expected, level);
        EXPECT_EQ(fast.pixels, expected.pixels) << w << "x" << h << ", " << bytes << " bytes, " << level;
      }
    }
  }
}

// The first channel of each pixel as a digit.
std::string Digits(const Buffer& image) {
  std::string s;
  for (std::size_t i = 0; i < image.pixels.size(); i += image.bytes) s += char('0' + image.pixels[i]);
  return s;
}

TEST(QuickRotateImageInPlace, TurnsAsDescribedAndBack) {
  // 1 2 3   mode 0 (clockwise): 4 1 / 5 2 / 6 3; mode 2: 3 6 / 2 5 / 1 4; mode 1: 6 5 4 / 3 2 1.
  const std::pair<int, const char*> turns[] = {{0, "415263"}, {2, "362514"}, {1, "654321"}};
  for (auto [mode, expected] : turns) {
    for (int bytes : {1, 3, 4}) {
      Buffer image(3, 2, bytes);
      for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        image.pixels[i] = static_cast<std::uint8_t>(i / bytes + 1 + 10 * (i % bytes));
      }
      ASSERT_NE(IS40_QuickRotateImageInPlace(image.data(), 3, 2, mode, bytes, 0), 0);
      EXPECT_EQ(Digits(image), expected) << "mode " << mode;
      EXPECT_EQ(image.pixels[bytes - 1], image.pixels[0] + 10 * (bytes - 1)) << "channels travel";
    }
  }
  std::mt19937 random(8);
  const Buffer original = oracle::RandomBuffer(random, 13, 7, 3, 0);
  for (auto [first, second] : {std::pair{0, 2}, std::pair{2, 0}, std::pair{1, 1}}) {
    Buffer image = original;
    const bool swapped = first != 1;
    ASSERT_NE(IS40_QuickRotateImageInPlace(image.data(), 13, 7, first, 3, 0), 0);
    ASSERT_NE(IS40_QuickRotateImageInPlace(image.data(), swapped ? 7 : 13, swapped ? 13 : 7,
                                           second, 3, 0), 0);
    EXPECT_EQ(image.pixels, original.pixels) << first << " then " << second;
  }
}

TEST(FillSolidRect, RightEdgeCountsAndBottomEdgeDoesNot) {
  const std::pair<RasterRect, const char*> cases[] = {
      {{2, 2, 2, 5}, "........|........|..#.....|..#.....|..#.....|........|"},
      {{2, 2, 5, 2}, "........|........|........|........|........|........|"},
      {{1, 0, 3, 2}, ".###....|.###....|........|........|........|........|"},
      {{0, 0, 8, 6}, "########|########|########|########|########|########|"},
      {{-3, 4, 0, 9}, "........|........|........|........|#.......|#.......|"},
      {{7, -1, 20, 1}, ".......#|........|........|........|........|........|"},
      {{9, 0, 12, 6}, "........|........|........|........|........|........|"},
      {{3, 3, 1, 5}, "........|........|........|........|........|........|"},
  };
  for (const auto& [rect, picture] : cases) {
    Buffer image(8, 6, 3, 4, 0);
    ASSERT_NE(IS40_FillSolidRect(image.data(), 8, 6, 3, image.stride, &rect, 0x0000FF, 0), 0);
    std::string drawn;
    for (int k = 0; k < image.stride * 6; ++k) {
      const int column = k % image.stride;
      if (column < 24 && column % 3 == 0) drawn += image.pixels[k] ? '#' : '.';
      if (column >= 24) {
        ASSERT_EQ(image.pixels[k], 0) << "padding";
      }
      if (column == 24) drawn += '|';
    }
    EXPECT_EQ(drawn, picture) << rect.left << "," << rect.top << "," << rect.right << "," << rect.bottom;
  }
  // The colour's low byte goes first; colours of equal bytes take the whole-row fill.
  const std::pair<int, std::uint32_t> colours[] = {{3, 0x00332211}, {4, 0x44332211}, {1, 0x00332211},
                                                   {3, 0x00C0C0C0}, {4, 0x7F7F7F7F}, {4, 0x00C0C0C0}};
  const RasterRect rect{0, 0, 1, 1};
  for (auto [bytes, colour] : colours) {
    Buffer image(3, 2, bytes, 0, 0xEE);
    ASSERT_NE(IS40_FillSolidRect(image.data(), 3, 2, bytes, image.stride, &rect, colour, 0), 0);
    for (int k = 0; k < image.stride * 2; ++k) {
      const int expected = k < 2 * bytes ? (colour >> 8 * (k % bytes)) & 0xFF : 0xEE;
      EXPECT_EQ(image.pixels[k], expected) << bytes << " " << std::hex << colour << " " << k;
    }
  }
}

}  // namespace
}  // namespace tavlet
