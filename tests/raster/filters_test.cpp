#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "oracle.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using oracle::Buffer;

// Every value 0..255 once in a 256 x 1 image of one byte a pixel.
Buffer Ramp() {
  Buffer ramp(256, 1, 1);
  for (int i = 0; i < 256; ++i) ramp.pixels[i] = static_cast<std::uint8_t>(i);
  return ramp;
}

std::uint8_t Gamma(double gamma, std::uint8_t value) {
  Buffer ramp = Ramp();
  EXPECT_NE(IS40_AdjustGamma(ramp.pixels.data(), 256, 1, 1, 256, gamma, 0), 0);
  return ramp.pixels[value];
}

TEST(AdjustGamma, WorkedValues) {
  struct Case {
    double gamma;
    int in, out;
  };
  const Case cases[] = {
      {2.5, 0, 0},     {2.5, 1, 27},    {2.5, 64, 147},  {2.5, 128, 194}, {2.5, 255, 255},
      {0.5, 255, 254}, {0.5, 128, 64},  {0.5, 16, 1},    {2.0, 64, 128},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Gamma(c.gamma, static_cast<std::uint8_t>(c.in)), c.out)
        << "gamma " << c.gamma << " of " << c.in;
  }
}

TEST(AdjustGamma, ZeroAndOneLeaveEveryValue) {
  for (double gamma : {0.0, 1.0}) {
    Buffer ramp = Ramp();
    ASSERT_NE(IS40_AdjustGamma(ramp.pixels.data(), 256, 1, 1, 256, gamma, 0), 0);
    EXPECT_TRUE(oracle::SamePixels(ramp, Ramp())) << gamma;
  }
}

TEST(AdjustGamma, TableMatchesTheFormulaForManyExponents) {
  for (double gamma : {0.1, 0.3, 0.7, 1.3, 1.8, 2.2, 2.5, 3.0, 7.5, 1000.0}) {
    Buffer ramp = Ramp();
    ASSERT_NE(IS40_AdjustGamma(ramp.pixels.data(), 256, 1, 1, 256, gamma, 0), 0);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(ramp.pixels[i], oracle::GammaEntry(i, gamma)) << gamma << " " << i;
  }
}

TEST(AdjustGamma, FourthChannelOnlyWithFlag) {
  for (std::uint32_t flags : {0u, 1u}) {
    Buffer image(3, 2, 4, 4, 64);
    ASSERT_NE(IS40_AdjustGamma(image.pixels.data(), 3, 2, 4, image.stride, 2.5, flags), 0);
    for (int y = 0; y < 2; ++y) {
      for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(image.At(x, y, 0), 147);
        EXPECT_EQ(image.At(x, y, 2), 147);
        EXPECT_EQ(image.At(x, y, 3), flags ? 147 : 64);
      }
      for (int k = 12; k < image.stride; ++k) EXPECT_EQ(image.Row(y)[k], 64) << "padding";
    }
  }
}

TEST(AdjustGamma, RefusesBadArgumentsAndChangesNothing) {
  Buffer image(4, 4, 3, 0, 100);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  struct Case {
    const char* what;
    std::uint8_t* pixels;
    int w, h, bytes, stride;
    double gamma;
  };
  std::uint8_t* p = image.pixels.data();
  const Case cases[] = {
      {"negative gamma", p, 4, 4, 3, 12, -1.0}, {"NaN gamma", p, 4, 4, 3, 12, nan},
      {"infinite gamma", p, 4, 4, 3, 12, inf},  {"null image", nullptr, 4, 4, 3, 12, 2.5},
      {"zero width", p, 0, 4, 3, 12, 2.5},      {"negative height", p, 4, -4, 3, 12, 2.5},
      {"short stride", p, 4, 4, 3, 11, 2.5},    {"zero bytes", p, 4, 4, 0, 12, 2.5},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IS40_AdjustGamma(c.pixels, c.w, c.h, c.bytes, c.stride, c.gamma, 0), 0) << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument) << c.what;
  }
  for (std::uint8_t v : image.pixels) ASSERT_EQ(v, 100);
}

int SharpenFast(const Buffer& source, Buffer& destination, int level) {
  return IS40_SharpenImage(source.pixels.data(), source.width, source.height, source.bytes,
                           source.stride, destination.pixels.data(), destination.stride, level, 7);
}

TEST(SharpenImage, FlatImageIsUnchangedAtAnyLevel) {
  for (int level : {-5, 0, 1, 20, 100, 200}) {
    Buffer source(7, 5, 3, 0, 173);
    Buffer destination(7, 5, 3, 0, 0);
    ASSERT_NE(SharpenFast(source, destination, level), 0);
    EXPECT_TRUE(oracle::SamePixels(source, destination)) << level;
  }
}

TEST(SharpenImage, LevelsAboveOneHundredActAsOneHundred) {
  std::mt19937 random(5);
  const Buffer source = oracle::RandomBuffer(random, 23, 17, 3, 2);
  Buffer at100(23, 17, 3), at200(23, 17, 3), at20(23, 17, 3);
  ASSERT_NE(SharpenFast(source, at100, 100), 0);
  ASSERT_NE(SharpenFast(source, at200, 200), 0);
  ASSERT_NE(SharpenFast(source, at20, 20), 0);
  EXPECT_TRUE(oracle::SamePixels(at100, at200));
  EXPECT_FALSE(oracle::SamePixels(at100, at20));
}

TEST(SharpenImage, ThinWhiteLineOnBlackClampsBothWays) {
  Buffer source(9, 6, 3, 0, 0);
  for (int y = 0; y < 6; ++y) {
    for (int c = 0; c < 3; ++c) source.At(4, y, c) = 255;
  }
  Buffer destination(9, 6, 3, 0, 77);
  ASSERT_NE(SharpenFast(source, destination, 20), 0);
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 9; ++x) {
      // Line: 255 - ((765 - 2295) x 100 >> 10) = 255 + 150 -> 255; neighbours: 0 - 74 -> 0.
      EXPECT_EQ(destination.At(x, y, 1), x == 4 ? 255 : 0) << x << "," << y;
    }
  }
}

TEST(SharpenImage, NegativeDifferencesShiftTowardMinusInfinity) {
  // One pixel of 10 on 0, level 20: the centre gets 10 - ((-80 x 100) >> 10) = 10 + 8 = 18,
  // a neighbour 0 - ((10 x 100) >> 10) = 0 - 0 = 0.
  Buffer source(3, 3, 1, 0, 0);
  source.At(1, 1, 0) = 10;
  Buffer destination(3, 3, 1);
  ASSERT_NE(SharpenFast(source, destination, 20), 0);
  EXPECT_EQ(destination.At(1, 1, 0), 18);
  EXPECT_EQ(destination.At(0, 0, 0), 0);
  // On 200, a dip of 10 below gives 190 - ((80 x 100) >> 10) = 190 - 7 = 183 at the centre
  // and 200 - ((-10 x 100) >> 10) = 200 + 1 = 201 around it: -1000 >> 10 is -1.
  Buffer dip(3, 3, 1, 0, 200);
  dip.At(1, 1, 0) = 190;
  ASSERT_NE(SharpenFast(dip, destination, 20), 0);
  EXPECT_EQ(destination.At(1, 1, 0), 183);
  EXPECT_EQ(destination.At(0, 1, 0), 201);
}

TEST(SharpenImage, LeavesTheSourceAlone) {
  std::mt19937 random(6);
  const Buffer source = oracle::RandomBuffer(random, 11, 9, 3, 1);
  const Buffer copy = source;
  Buffer destination(11, 9, 3);
  ASSERT_NE(SharpenFast(source, destination, 60), 0);
  EXPECT_EQ(source.pixels, copy.pixels);
}

TEST(SharpenImage, MatchesThePlainFormulaByteForByte) {
  std::mt19937 random(7);
  const std::pair<int, int> sizes[] = {{2, 2}, {2, 9}, {9, 2}, {3, 3}, {31, 17}, {97, 61}, {160, 90}};
  for (auto [w, h] : sizes) {
    for (int bytes : {1, 3, 4, 8}) {
      for (int level : {1, 20, 57, 100}) {
        const Buffer source = oracle::RandomBuffer(random, w, h, bytes, 5);
        Buffer fast(w, h, bytes, 3), expected(w, h, bytes, 3);
        ASSERT_NE(SharpenFast(source, fast, level), 0);
        oracle::Sharpen(source, expected, level);
        EXPECT_TRUE(oracle::SamePixels(fast, expected))
            << w << "x" << h << ", " << bytes << " bytes, level " << level;
      }
    }
  }
}

TEST(SharpenImage, RefusesBadArguments) {
  Buffer source(4, 4, 3, 0, 9);
  Buffer destination(4, 4, 3, 0, 0x33);
  const std::uint8_t* s = source.pixels.data();
  std::uint8_t* d = destination.pixels.data();
  struct Case {
    const char* what;
    const std::uint8_t* source;
    std::uint8_t* destination;
    int w, h, bytes, sstride, dstride;
    std::uint32_t flags;
  };
  const Case cases[] = {
      {"null source", nullptr, d, 4, 4, 3, 12, 12, 7},
      {"null destination", s, nullptr, 4, 4, 3, 12, 12, 7},
      {"same buffer", d, d, 4, 4, 3, 12, 12, 7},
      {"nine bytes a pixel", s, d, 1, 4, 9, 12, 12, 7},
      {"one pixel wide", s, d, 1, 4, 3, 12, 12, 7},
      {"one pixel high", s, d, 4, 1, 3, 12, 12, 7},
      {"negative width", s, d, -4, 4, 3, 12, 12, 7},
      {"short source stride", s, d, 4, 4, 3, 11, 12, 7},
      {"short destination stride", s, d, 4, 4, 3, 12, 10, 7},
      {"16-bit variant", s, d, 4, 4, 3, 12, 12, 0x207},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IS40_SharpenImage(c.source, c.w, c.h, c.bytes, c.sstride, c.destination, c.dstride,
                                20, c.flags),
              0)
        << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument) << c.what;
  }
  for (std::uint8_t v : destination.pixels) ASSERT_EQ(v, 0x33);
}

}  // namespace
}  // namespace tavlet
