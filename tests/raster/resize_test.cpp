#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "oracle.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using oracle::Buffer;

int ResizeFast(const Buffer& source, Buffer& destination) {
  return IS40_ResizeImage(source.pixels.data(), source.width, source.height, source.stride,
                          destination.pixels.data(), destination.width, destination.height,
                          destination.stride, source.bytes, raster::kResizeReduce, 0);
}

TEST(ResizeImage, EqualSizeIsACopy) {
  std::mt19937 random(1);
  const Buffer source = oracle::RandomBuffer(random, 100, 50, 3, 5);
  Buffer destination(100, 50, 3, 2);
  ASSERT_NE(ResizeFast(source, destination), 0);
  EXPECT_TRUE(oracle::SamePixels(source, destination));
}

TEST(ResizeImage, HalfWidthTakesEverySecondPixelWithoutAveraging) {
  std::mt19937 random(2);
  const Buffer source = oracle::RandomBuffer(random, 100, 50, 3, 0);
  Buffer destination(50, 50, 3);
  ASSERT_NE(ResizeFast(source, destination), 0);
  for (int y = 0; y < 50; ++y) {
    for (int x = 0; x < 50; ++x) {
      for (int c = 0; c < 3; ++c) {
        ASSERT_EQ(destination.At(x, y, c), source.At(2 * x, y, c)) << x << "," << y;
      }
    }
  }
}

TEST(ResizeImage, BoxMeanTruncatesTheSum) {
  // A 2x2 box of 1, 2, 2, 2 sums to 7: 7 / 4 = 1, not 2.
  Buffer source(4, 2, 1);
  const std::uint8_t values[] = {1, 2, 10, 10, 2, 2, 10, 11};
  std::copy(values, values + 8, source.pixels.begin());
  Buffer destination(2, 1, 1);
  ASSERT_NE(ResizeFast(source, destination), 0);
  EXPECT_EQ(destination.At(0, 0, 0), 1);
  EXPECT_EQ(destination.At(1, 0, 0), 10);
}

TEST(ResizeImage, FlatImageThroughTheAreaPathStaysWithinOneStep) {
  Buffer source(100, 100, 3, 0, 200);
  Buffer destination(33, 33, 3);
  ASSERT_NE(ResizeFast(source, destination), 0);
  int low = 0;
  for (std::uint8_t v : destination.pixels) {
    ASSERT_TRUE(v == 199 || v == 200) << int(v);
    low += v == 199;
  }
  // The fractional borders do bring some pixels below 200: the result is truncated.
  EXPECT_GT(low, 0);
}

TEST(ResizeImage, AreaPathWeighsFractionalBorders) {
  // 3 columns into 2: each output takes 1.5 columns, the middle one split.
  Buffer source(3, 1, 1);
  source.pixels = {0, 100, 200};
  Buffer destination(2, 1, 1);
  ASSERT_NE(ResizeFast(source, destination), 0);
  EXPECT_EQ(destination.At(0, 0, 0), 33);   // (0 + 100 x 0.5) / 1.5
  EXPECT_EQ(destination.At(1, 0, 0), 166);  // (100 x 0.5 + 200) / 1.5
}

// Sizes that exercise the box path (whole ratios, equal and unequal) and the area
// path (fractional ratios), odd widths, strides padded past the row, and 1, 3 and 4
// bytes a pixel.
TEST(ResizeImage, MatchesThePlainFormulaByteForByte) {
  struct Case {
    int w, h, dw, dh;
  };
  const Case cases[] = {
      {97, 61, 97, 61}, {99, 63, 33, 21}, {120, 90, 12, 9},  {100, 50, 50, 50}, {90, 60, 30, 60},
      {97, 61, 13, 7},  {101, 77, 50, 38}, {64, 48, 63, 47}, {211, 127, 29, 17}, {37, 5, 36, 2},
      {7, 7, 1, 1},     {255, 3, 2, 2},    {1, 9, 1, 4},     {33, 1, 10, 1},
  };
  std::mt19937 random(3);
  for (const Case& c : cases) {
    for (int bytes : {1, 3, 4}) {
      for (int padding : {0, 3, 17}) {
        const Buffer source = oracle::RandomBuffer(random, c.w, c.h, bytes, padding);
        Buffer fast(c.dw, c.dh, bytes, padding + 1);
        Buffer expected(c.dw, c.dh, bytes, padding + 1);
        ASSERT_NE(ResizeFast(source, fast), 0);
        oracle::Resize(source, expected);
        EXPECT_TRUE(oracle::SamePixels(fast, expected))
            << c.w << "x" << c.h << " -> " << c.dw << "x" << c.dh << ", " << bytes
            << " bytes, padding " << padding;
      }
    }
  }
}

TEST(ResizeImage, LeavesDestinationPaddingAlone) {
  std::mt19937 random(4);
  const Buffer source = oracle::RandomBuffer(random, 50, 40, 3, 0);
  for (auto size : {std::pair{25, 20}, std::pair{17, 13}}) {
    Buffer destination(size.first, size.second, 3, 5, 0xAB);
    ASSERT_NE(ResizeFast(source, destination), 0);
    for (int y = 0; y < destination.height; ++y) {
      for (int k = destination.width * 3; k < destination.stride; ++k) {
        ASSERT_EQ(destination.Row(y)[k], 0xAB);
      }
    }
  }
}

// Each case is refused with code 5 and writes nothing. Run under AddressSanitizer,
// an access outside the buffers would stop the test.
TEST(ResizeImage, RefusesHostileArguments) {
  Buffer source(10, 10, 3);
  Buffer destination(20, 20, 3, 0, 0x5A);
  const std::uint8_t* src = source.pixels.data();
  std::uint8_t* dst = destination.pixels.data();
  struct Case {
    const char* what;
    const std::uint8_t* source;
    int w, h, stride;
    std::uint8_t* destination;
    int dw, dh, dstride, bytes, mode;
  };
  const Case cases[] = {
      {"null source", nullptr, 10, 10, 30, dst, 5, 5, 15, 3, 15},
      {"null destination", src, 10, 10, 30, nullptr, 5, 5, 15, 3, 15},
      {"wider target", src, 10, 10, 30, dst, 20, 10, 60, 3, 15},
      {"taller target", src, 10, 10, 30, dst, 10, 11, 30, 3, 15},
      {"zero target width", src, 10, 10, 30, dst, 0, 5, 15, 3, 15},
      {"zero target height", src, 10, 10, 30, dst, 5, 0, 15, 3, 15},
      {"negative target", src, 10, 10, 30, dst, -5, 5, 15, 3, 15},
      {"zero source", src, 0, 10, 30, dst, 0, 5, 15, 3, 15},
      {"negative source", src, 10, -10, 30, dst, 5, 5, 15, 3, 15},
      {"source stride short of a row", src, 10, 10, 29, dst, 5, 5, 15, 3, 15},
      {"target stride short of a row", src, 10, 10, 30, dst, 5, 5, 14, 3, 15},
      {"negative stride", src, 10, 10, -30, dst, 5, 5, 15, 3, 15},
      {"zero bytes", src, 10, 10, 30, dst, 5, 5, 15, 0, 15},
      {"other mode", src, 10, 10, 30, dst, 5, 5, 15, 3, 14},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IS40_ResizeImage(c.source, c.w, c.h, c.stride, c.destination, c.dw, c.dh, c.dstride,
                               c.bytes, c.mode, 0),
              0)
        << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument) << c.what;
  }
  for (std::uint8_t v : destination.pixels) ASSERT_EQ(v, 0x5A);
}

TEST(ResizeImage, RefusesABoxLargerThanASumOfBytesCanHold) {
  // 4200 x 4100 into one pixel: a box product of 17,220,000 > 16,843,009.
  std::vector<std::uint8_t> source(4200u * 4100u, 255);
  std::uint8_t out = 0x77;
  EXPECT_EQ(IS40_ResizeImage(source.data(), 4200, 4100, 4200, &out, 1, 1, 1, 1, 15, 0), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument);
  EXPECT_EQ(out, 0x77);
  // 4100 x 4100 = 16,810,000 is within bounds, and a flat 255 stays 255.
  EXPECT_NE(IS40_ResizeImage(source.data(), 4100, 4100, 4100, &out, 1, 1, 1, 1, 15, 0), 0);
  EXPECT_EQ(out, 255);
}

TEST(ResizeImage, ProgressCallbackStopsWithCode14) {
  struct Count {
    int rows = 0;
    int stopAt = 0;
  } count;
  auto& context = raster::CurrentRasterContext();
  context.progressUser = &count;
  context.progressCallback = [](std::int32_t, std::int32_t, void* user) {
    auto* c = static_cast<Count*>(user);
    return ++c->rows < c->stopAt ? 1 : 0;
  };
  Buffer source(40, 40, 3, 0, 9);
  for (auto size : {std::pair{10, 10}, std::pair{13, 13}}) {
    count = {0, 3};
    Buffer destination(size.first, size.second, 3, 0, 0);
    EXPECT_EQ(ResizeFast(source, destination), 0);
    EXPECT_EQ(context.lastError, raster::kStoppedByCallback);
    EXPECT_EQ(count.rows, 3);
    EXPECT_GE(destination.At(0, 2, 0), 8);   // the rows before the stop are done
    EXPECT_EQ(destination.At(0, 3, 0), 0);   // and nothing after it
  }
  context.progressCallback = nullptr;
  context.progressUser = nullptr;
}

}  // namespace
}  // namespace tavlet
