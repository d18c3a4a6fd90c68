// The area average (sizes that don't divide) against the plain formula, byte for
// byte, on the vector path and on the plain one: screen-sized captures, flat
// pictures whose exact mean is a whole number (where a sum that drifts by one
// rounding step would show), narrow and padded images, the last columns.
#include <gtest/gtest.h>

#include <random>

#include "oracle.h"
#include "previews/raster/raster.h"

namespace tavlet {
namespace {

using oracle::Buffer;

// A drawing: flat background, thin lines of a few colours.
Buffer DrawingLike(int w, int h, std::uint8_t background) {
  Buffer b(w, h, 3, 0, background);
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      if (x % 37 == 0 || y % 29 == 0 || (x + y) % 101 == 0) {
        b.At(x, y, 0) = 255;
        b.At(x, y, 1) = static_cast<std::uint8_t>(x * 7);
        b.At(x, y, 2) = 40;
      }
    }
  }
  return b;
}

class AreaPath : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override { previous_ = raster::AllowVectorAreaPath(GetParam()); }
  void TearDown() override { raster::AllowVectorAreaPath(previous_); }
  bool previous_ = true;
};

TEST_P(AreaPath, EqualsThePlainFormula) {
  struct Case {
    const char* what;
    int w, h, dw, dh, padding;
    int picture;  // 0 random, 1 drawing on white, 2 drawing on black, 3 flat 200
  };
  const Case cases[] = {
      {"2560x1440 to 213x120, drawing on white", 2560, 1440, 213, 120, 0, 1},
      {"1920x1080 to 169x95, drawing on black", 1920, 1080, 169, 95, 0, 2},
      {"1920x1080 to 213x120, random", 1920, 1080, 213, 120, 0, 0},
      {"100x100 to 33x33, flat 200", 100, 100, 33, 33, 0, 3},
      {"1366x768 to 97x55, padded rows", 1366, 768, 97, 55, 5, 1},
      {"same width, rows averaged", 64, 50, 64, 33, 0, 0},
      {"7x5 to 3x2", 7, 5, 3, 2, 0, 0},
      {"to one pixel", 13, 11, 1, 1, 2, 0},
      {"to one column", 301, 7, 1, 3, 0, 0},
      {"ratio just above 1", 100, 40, 99, 39, 0, 0},
  };
  std::mt19937 random(12);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Buffer source = c.picture == 0   ? oracle::RandomBuffer(random, c.w, c.h, 3, c.padding)
                    : c.picture == 3 ? Buffer(c.w, c.h, 3, c.padding, 200)
                                     : DrawingLike(c.w, c.h, c.picture == 1 ? 255 : 0);
    if (c.padding && c.picture != 0) {
      Buffer padded(c.w, c.h, 3, c.padding, 0xAB);
      for (int y = 0; y < c.h; ++y)
        for (int x = 0; x < c.w * 3; ++x) padded.At(0, y, x) = source.At(0, y, x);
      source = padded;
    }
    Buffer expected(c.dw, c.dh, 3, 4, 0x5A), actual(c.dw, c.dh, 3, 4, 0x5A);
    oracle::Resize(source, expected);
    ASSERT_NE(IS40_ResizeImage(source.data(), c.w, c.h, source.stride, actual.data(), c.dw, c.dh, actual.stride,
                               3, raster::kResizeReduce, 0),
              0);
    EXPECT_EQ(actual.pixels, expected.pixels);  // the padding bytes untouched too
  }
}

INSTANTIATE_TEST_SUITE_P(VectorAndPlain, AreaPath, ::testing::Bool());

}  // namespace
}  // namespace tavlet
