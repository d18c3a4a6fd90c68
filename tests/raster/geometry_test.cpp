#include <gtest/gtest.h>

#include <random>
#include <string>

#include "oracle.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using oracle::Buffer;

// A 3 x 2 image whose pixels are numbered 1..6 in reading order.
Buffer Numbered(int bytes) {
  Buffer image(3, 2, bytes);
  for (int i = 0; i < 6; ++i) {
    for (int c = 0; c < bytes; ++c) image.pixels[i * bytes + c] = static_cast<std::uint8_t>(i + 1 + 10 * c);
  }
  return image;
}

std::string FirstChannel(const std::vector<std::uint8_t>& pixels, int bytes) {
  std::string s;
  for (std::size_t i = 0; i < pixels.size(); i += bytes) s += static_cast<char>('0' + pixels[i]);
  return s;
}

TEST(QuickRotateImageInPlace, TurnsAsDescribed) {
  // 1 2 3        mode 0 (clockwise): 4 1    mode 2: 3 6    mode 1: 6 5 4
  // 4 5 6                            5 2            2 5            3 2 1
  //                                  6 3            1 4
  struct Case {
    int mode;
    const char* expected;
  };
  for (const Case& c : {Case{0, "415263"}, Case{2, "362514"}, Case{1, "654321"}}) {
    for (int bytes : {1, 3, 4}) {
      Buffer image = Numbered(bytes);
      ASSERT_NE(IS40_QuickRotateImageInPlace(image.pixels.data(), 3, 2, c.mode, bytes, 0), 0);
      EXPECT_EQ(FirstChannel(image.pixels, bytes), c.expected) << "mode " << c.mode;
      // The other channels travel with their pixel.
      EXPECT_EQ(image.pixels[bytes - 1], image.pixels[0] + 10 * (bytes - 1));
    }
  }
}

TEST(QuickRotateImageInPlace, OppositeTurnsAndTwoHalfTurnsGiveTheImageBack) {
  std::mt19937 random(8);
  const Buffer original = oracle::RandomBuffer(random, 13, 7, 3, 0);
  struct Case {
    int first, second;
  };
  for (const Case& c : {Case{0, 2}, Case{2, 0}, Case{1, 1}}) {
    Buffer image = original;
    ASSERT_NE(IS40_QuickRotateImageInPlace(image.pixels.data(), 13, 7, c.first, 3, 0), 0);
    const bool swapped = c.first != 1;
    ASSERT_NE(IS40_QuickRotateImageInPlace(image.pixels.data(), swapped ? 7 : 13, swapped ? 13 : 7,
                                           c.second, 3, 0),
              0);
    EXPECT_EQ(image.pixels, original.pixels) << c.first << " then " << c.second;
  }
}

TEST(QuickRotateImageInPlace, RefusesBadArguments) {
  Buffer image = Numbered(3);
  const auto before = image.pixels;
  struct Case {
    const char* what;
    std::uint8_t* pixels;
    int w, h, mode, bytes;
  };
  std::uint8_t* p = image.pixels.data();
  const Case cases[] = {
      {"mode 3", p, 3, 2, 3, 3},      {"mode -1", p, 3, 2, -1, 3},    {"null image", nullptr, 3, 2, 0, 3},
      {"zero width", p, 0, 2, 0, 3},  {"negative height", p, 3, -2, 0, 3}, {"zero bytes", p, 3, 2, 0, 0},
      {"overflowing row", p, 0x40000000, 2, 0, 4},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IS40_QuickRotateImageInPlace(c.pixels, c.w, c.h, c.mode, c.bytes, 0), 0) << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument) << c.what;
  }
  EXPECT_EQ(image.pixels, before);
}

// The filled pixels of a 8 x 6 image as a picture, one text row per image row.
std::string Picture(const Buffer& image) {
  std::string s;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) s += image.At(x, y, 0) == 0 ? '.' : '#';
    s += '\n';
  }
  return s;
}

TEST(FillSolidRect, RightEdgeCountsAndBottomEdgeDoesNot) {
  struct Case {
    RasterRect rect;
    const char* picture;
  };
  const Case cases[] = {
      {{2, 2, 2, 5}, "........\n........\n..#.....\n..#.....\n..#.....\n........\n"},
      {{2, 2, 5, 2}, "........\n........\n........\n........\n........\n........\n"},
      {{1, 0, 3, 2}, ".###....\n.###....\n........\n........\n........\n........\n"},
      {{0, 0, 8, 6}, "########\n########\n########\n########\n########\n########\n"},
      {{-3, 4, 0, 9}, "........\n........\n........\n........\n#.......\n#.......\n"},
      {{7, -1, 20, 1}, ".......#\n........\n........\n........\n........\n........\n"},
      {{9, 0, 12, 6}, "........\n........\n........\n........\n........\n........\n"},
      {{3, 3, 1, 5}, "........\n........\n........\n........\n........\n........\n"},
  };
  for (const Case& c : cases) {
    Buffer image(8, 6, 3, 4, 0);
    ASSERT_NE(IS40_FillSolidRect(image.pixels.data(), 8, 6, 3, image.stride, &c.rect, 0x0000FF, 0), 0);
    EXPECT_EQ(Picture(image), c.picture)
        << c.rect.left << "," << c.rect.top << "," << c.rect.right << "," << c.rect.bottom;
    for (int y = 0; y < 6; ++y) {
      for (int k = 24; k < image.stride; ++k) ASSERT_EQ(image.Row(y)[k], 0) << "padding";
    }
  }
}

TEST(FillSolidRect, WritesTheColourLowByteFirst) {
  const RasterRect rect{0, 0, 1, 1};
  struct Case {
    int bytes;
    std::uint32_t color;
    std::vector<std::uint8_t> pixel;
  };
  const Case cases[] = {
      {3, 0x00332211, {0x11, 0x22, 0x33}}, {4, 0x44332211, {0x11, 0x22, 0x33, 0x44}},
      {1, 0x00332211, {0x11}},             {3, 0x00C0C0C0, {0xC0, 0xC0, 0xC0}},
      {4, 0x7F7F7F7F, {0x7F, 0x7F, 0x7F, 0x7F}}, {4, 0x00C0C0C0, {0xC0, 0xC0, 0xC0, 0x00}},
  };
  for (const Case& c : cases) {
    Buffer image(3, 2, c.bytes, 0, 0xEE);
    ASSERT_NE(IS40_FillSolidRect(image.pixels.data(), 3, 2, c.bytes, image.stride, &rect, c.color, 0), 0);
    for (int x = 0; x < 3; ++x) {
      for (int c2 = 0; c2 < c.bytes; ++c2) {
        EXPECT_EQ(image.At(x, 0, c2), x < 2 ? c.pixel[c2] : 0xEE) << c.bytes << " " << std::hex << c.color;
        EXPECT_EQ(image.At(x, 1, c2), 0xEE);
      }
    }
  }
}

TEST(FillSolidRect, RefusesBadArguments) {
  Buffer image(4, 4, 3, 0, 1);
  const RasterRect rect{0, 0, 3, 3};
  std::uint8_t* p = image.pixels.data();
  struct Case {
    const char* what;
    std::uint8_t* pixels;
    int w, h, bytes, stride;
    const RasterRect* rect;
  };
  const Case cases[] = {
      {"two bytes a pixel", p, 4, 4, 2, 12, &rect}, {"null image", nullptr, 4, 4, 3, 12, &rect},
      {"null rectangle", p, 4, 4, 3, 12, nullptr},  {"short stride", p, 4, 4, 3, 11, &rect},
      {"zero height", p, 4, 0, 3, 12, &rect},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IS40_FillSolidRect(c.pixels, c.w, c.h, c.bytes, c.stride, c.rect, 0xFFFFFF, 0), 0) << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument) << c.what;
  }
  for (std::uint8_t v : image.pixels) ASSERT_EQ(v, 1);
}

}  // namespace
}  // namespace tavlet
