#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "oracle.h"
#include "previews/dib.h"
#include "previews/raster/dib_pixels.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using oracle::Buffer;

std::uint32_t Le32(const std::uint8_t* p) {
  return p[0] | p[1] << 8 | p[2] << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

struct DibBlock {
  void* block;
  ~DibBlock() { DibFree(block); }
  const std::uint8_t* bytes() const { return static_cast<const std::uint8_t*>(block); }
};

TEST(RGBToDIB, HeaderAndBottomUpBgrRows) {
  // 3 x 2: a row of 3 pixels is 9 bytes, padded to 12.
  Buffer image(3, 2, 3, 2);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 3; ++x) {
      image.At(x, y, 0) = static_cast<std::uint8_t>(10 * y + x);  // red
      image.At(x, y, 1) = 100;
      image.At(x, y, 2) = static_cast<std::uint8_t>(200 + x);     // blue
    }
  }
  DibBlock dib{IS40_RGBToDIB(image.pixels.data(), 3, 2, image.stride, nullptr, 0)};
  ASSERT_NE(dib.block, nullptr);
  const std::uint8_t* b = dib.bytes();
  const std::uint32_t expectedHeader[10] = {40, 3, 2, 0x00180001, 0, 24, 0, 0, 0, 0};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(Le32(b + 4 * i), expectedHeader[i]) << "field " << i;
  // The first stored row is the image's last; blue comes first; padding stays zero.
  const std::uint8_t rows[24] = {200, 100, 10, 201, 100, 11, 202, 100, 12, 0, 0, 0,
                                 200, 100, 0,  201, 100, 1,  202, 100, 2,  0, 0, 0};
  EXPECT_EQ(std::memcmp(b + 40, rows, 24), 0);
}

TEST(RGBToDIB, FlagsKeepChannelOrRowOrder) {
  Buffer image(1, 2, 3);
  image.pixels = {1, 2, 3, 4, 5, 6};
  struct Case {
    std::uint32_t flags;
    std::uint8_t rows[8];
  };
  const Case cases[] = {
      {0, {6, 5, 4, 0, 3, 2, 1, 0}},
      {raster::kDibKeepChannelOrder, {4, 5, 6, 0, 1, 2, 3, 0}},
      {raster::kDibKeepRowOrder, {3, 2, 1, 0, 6, 5, 4, 0}},
      {raster::kDibKeepChannelOrder | raster::kDibKeepRowOrder, {1, 2, 3, 0, 4, 5, 6, 0}},
  };
  for (const Case& c : cases) {
    DibBlock dib{IS40_RGBToDIB(image.pixels.data(), 1, 2, 3, nullptr, c.flags)};
    ASSERT_NE(dib.block, nullptr);
    EXPECT_EQ(std::memcmp(dib.bytes() + 40, c.rows, 8), 0) << "flags " << c.flags;
  }
}

TEST(RGBToDIB, WritesIntoAGivenBlock) {
  Buffer image(2, 1, 3);
  image.pixels = {1, 2, 3, 4, 5, 6};
  std::vector<std::uint8_t> block(48, 0xCC);
  EXPECT_EQ(IS40_RGBToDIB(image.pixels.data(), 2, 1, 6, block.data(), 0), block.data());
  EXPECT_EQ(Le32(block.data() + 20), 8u);  // biSizeImage
  const std::uint8_t row[8] = {3, 2, 1, 6, 5, 4, 0xCC, 0xCC};  // padding as it was
  EXPECT_EQ(std::memcmp(block.data() + 40, row, 8), 0);
}

TEST(RGBToDIB, Refusals) {
  std::uint8_t pixel[3] = {};
  struct Case {
    const char* what;
    const std::uint8_t* rgb;
    int w, h, stride;
    int code;
  };
  const Case cases[] = {
      {"null image", nullptr, 1, 1, 3, raster::kBadArgument},
      {"zero width", pixel, 0, 1, 3, raster::kBadArgument},
      {"negative height", pixel, 1, -1, 3, raster::kBadArgument},
      {"short stride", pixel, 1, 1, 2, raster::kBadArgument},
      // 0x7FFDEFFF bytes or more are refused before any allocation: 30000 x 30000 x 3.
      {"block too large", pixel, 30000, 30000, 90000, raster::kOutOfMemory},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(IS40_RGBToDIB(c.rgb, c.w, c.h, c.stride, nullptr, 0), nullptr) << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, c.code) << c.what;
  }
}

TEST(RGBToDIB, FailedAllocationIsCode1) {
  const DibMemory failing{[](std::size_t) -> void* { return nullptr; }, [](void*) {}};
  const DibMemory previous = SetDibMemory(failing);
  std::uint8_t pixel[3] = {};
  EXPECT_EQ(IS40_RGBToDIB(pixel, 1, 1, 3, nullptr, 0), nullptr);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kOutOfMemory);
  SetDibMemory(previous);
}

// A packed bitmap built field by field for the reader.
std::vector<std::uint8_t> MakeDib(int width, int height, int bits, std::uint32_t compression,
                                  const std::vector<std::uint32_t>& table,
                                  const std::vector<std::uint8_t>& rows, std::uint32_t clrUsed = 0) {
  std::vector<std::uint8_t> block(40 + table.size() * 4 + rows.size());
  DibInfoHeader header;
  header.width = width;
  header.height = height;
  header.bitCount = static_cast<std::uint16_t>(bits);
  header.compression = compression;
  header.clrUsed = clrUsed;
  WriteDibInfoHeader(block.data(), header);
  for (std::size_t i = 0; i < table.size(); ++i) {
    for (int k = 0; k < 4; ++k) block[40 + i * 4 + k] = static_cast<std::uint8_t>(table[i] >> (8 * k));
  }
  std::copy(rows.begin(), rows.end(), block.begin() + 40 + table.size() * 4);
  return block;
}

std::vector<std::uint8_t> ToRgb(const std::vector<std::uint8_t>& dib, int pixels, std::int32_t expectCode = 0) {
  std::vector<std::uint8_t> rgb(pixels * 3, 0xEE);
  EXPECT_EQ(raster::DibToRgb(dib.data(), dib.size(), rgb.data()), expectCode);
  return rgb;
}

using Rgb = std::vector<std::uint8_t>;

TEST(DibToRgb, EachDepthGivesKnownPixels) {
  // Table entries are blue, green, red, reserved: 0x00RRGGBB read as a 32-bit value.
  struct Case {
    const char* what;
    std::vector<std::uint8_t> dib;
    Rgb expected;  // 2 x 2, top row first
  };
  const std::vector<std::uint32_t> two = {0x000000, 0xFF8000};
  const std::vector<std::uint32_t> sixteen(16, 0x102030);
  std::vector<std::uint32_t> four = sixteen;
  four[0xA] = 0x0000FF;
  four[0x5] = 0x00FF00;
  const Case cases[] = {
      // Bottom-up: the first stored row is the lower one.
      {"1 bit", MakeDib(2, 2, 1, 0, two, {0x40, 0, 0, 0, 0x80, 0, 0, 0}),
       {255, 128, 0, 0, 0, 0, 0, 0, 0, 255, 128, 0}},
      {"4 bits", MakeDib(2, 2, 4, 0, four, {0xA5, 0, 0, 0, 0x5A, 0, 0, 0}),
       {0, 255, 0, 0, 0, 255, 0, 0, 255, 0, 255, 0}},
      {"8 bits, two colours used", MakeDib(2, 2, 8, 0, {0x112233, 0x445566}, {1, 0, 0, 0, 0, 1, 0, 0}, 2),
       {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x44, 0x55, 0x66, 0x11, 0x22, 0x33}},
      {"8 bits, index past the table", MakeDib(2, 2, 8, 0, {0x112233, 0x445566}, {7, 0, 0, 0, 0, 1, 0, 0}, 2),
       {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0, 0, 0, 0x11, 0x22, 0x33}},
      // 5-5-5: 0x7FFF white; red field 16 -> 16 x 255 / 31 = 131; green 1 -> 8; blue 31 -> 255.
      {"16 bits", MakeDib(2, 2, 16, 0, {}, {0xFF, 0x7F, 0x00, 0x00, 0x3F, 0x40, 0x00, 0x00}),
       {131, 8, 255, 0, 0, 0, 255, 255, 255, 0, 0, 0}},
      // 5-6-5 masks: each field moved to the top of a byte.
      {"16 bits with masks", MakeDib(2, 1, 16, 3, {0xF800, 0x07E0, 0x001F}, {0xFF, 0xFF, 0x41, 0x08}),
       {248, 252, 248, 8, 8, 8}},
      {"24 bits", MakeDib(2, 1, 24, 0, {}, {1, 2, 3, 4, 5, 6, 0, 0}), {3, 2, 1, 6, 5, 4}},
      {"32 bits", MakeDib(2, 1, 32, 0, {}, {1, 2, 3, 99, 4, 5, 6, 99}), {3, 2, 1, 6, 5, 4}},
      // A negative height is stored top-down.
      {"24 bits top-down", MakeDib(1, -2, 24, 0, {}, {1, 2, 3, 0, 4, 5, 6, 0}), {3, 2, 1, 6, 5, 4}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ToRgb(c.dib, static_cast<int>(c.expected.size() / 3)), c.expected) << c.what;
  }
}

TEST(DibToRgb, RefusesWhatItCannotRead) {
  struct Case {
    const char* what;
    std::vector<std::uint8_t> dib;
    std::int32_t code;
  };
  std::vector<std::uint8_t> shortHeader = MakeDib(1, 1, 24, 0, {}, {1, 2, 3, 0});
  shortHeader[0] = 12;
  const Case cases[] = {
      {"RLE8", MakeDib(1, 1, 8, 1, std::vector<std::uint32_t>(256), {0, 0, 0, 0}), raster::kUnsupportedCompression},
      {"masks on 24 bits", MakeDib(1, 1, 24, 3, {1, 2, 4}, {0, 0, 0, 0}), raster::kUnsupportedCompression},
      {"2 bits", MakeDib(1, 1, 2, 0, {0, 0, 0, 0}, {0, 0, 0, 0}), raster::kUnsupportedDepth},
      {"rows missing", MakeDib(4, 4, 24, 0, {}, {1, 2, 3}), raster::kBadArgument},
      {"table missing", MakeDib(1, 1, 8, 0, {}, {0, 0, 0, 0}), raster::kBadArgument},
      {"not a long header", shortHeader, raster::kBadArgument},
  };
  for (const Case& c : cases) {
    std::uint8_t out[48] = {};
    EXPECT_EQ(raster::DibToRgb(c.dib.data(), c.dib.size(), out), c.code) << c.what;
  }
}

TEST(DibToRgb, ReadsBackWhatRGBToDIBPacked) {
  std::mt19937 random(9);
  for (auto [w, h] : {std::pair{1, 1}, std::pair{5, 3}, std::pair{33, 17}}) {
    const Buffer image = oracle::RandomBuffer(random, w, h, 3, 7);
    DibBlock dib{IS40_RGBToDIB(image.pixels.data(), w, h, image.stride, nullptr, 0)};
    ASSERT_NE(dib.block, nullptr);
    const std::size_t size = 40 + DibStride(w, 24) * h;
    Buffer back(w, h, 3);
    ASSERT_EQ(raster::DibToRgb(dib.block, size, back.pixels.data()), 0);
    EXPECT_TRUE(oracle::SamePixels(image, back)) << w << "x" << h;
  }
}

// A core header: size 12, 16-bit width and height, planes, bit count; 3-byte entries.
std::vector<std::uint8_t> CoreDib(int width, int height, int bits) {
  std::vector<std::uint8_t> block(12 + 3 * 256 + 64, 0);
  block[0] = 12;
  block[4] = static_cast<std::uint8_t>(width);
  block[5] = static_cast<std::uint8_t>(width >> 8);
  block[6] = static_cast<std::uint8_t>(height);
  block[8] = 1;
  block[10] = static_cast<std::uint8_t>(bits);
  return block;
}

TEST(DibUtilities, SizesAndColourCountsOfBothHeaders) {
  struct Case {
    const char* what;
    std::vector<std::uint8_t> dib;
    int width, height;
    std::uint32_t colours;
    int paletteSize;
    std::ptrdiff_t bitsOffset;
  };
  const Case cases[] = {
      {"8-bit long, none used", MakeDib(7, 5, 8, 0, std::vector<std::uint32_t>(256), {}), 7, 5, 256, 1024, 1064},
      {"8-bit long, 3 used", MakeDib(7, -5, 8, 0, {1, 2, 3}, {}, 3), 7, -5, 3, 12, 52},
      {"1-bit long", MakeDib(9, 2, 1, 0, {0, 0}, {}), 9, 2, 2, 8, 48},
      {"4-bit long", MakeDib(9, 2, 4, 0, std::vector<std::uint32_t>(16), {}), 9, 2, 16, 64, 104},
      {"24-bit long", MakeDib(9, 2, 24, 0, {}, {}), 9, 2, 0, 0, 40},
      {"16-bit long with 2 used", MakeDib(9, 2, 16, 0, {0, 0}, {}, 2), 9, 2, 2, 8, 48},
      {"1-bit core", CoreDib(300, 20, 1), 300, 20, 2, 6, 18},
      {"4-bit core", CoreDib(3, 2, 4), 3, 2, 16, 48, 60},
      {"8-bit core", CoreDib(3, 2, 8), 3, 2, 256, 768, 780},
      {"24-bit core", CoreDib(3, 2, 24), 3, 2, 0, 0, 12},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(DibWidth(c.dib.data()), c.width) << c.what;
    EXPECT_EQ(DibHeight(c.dib.data()), c.height) << c.what;
    EXPECT_EQ(DibColorCount(c.dib.data()), c.colours) << c.what;
    EXPECT_EQ(DibPaletteSize(c.dib.data()), c.paletteSize) << c.what;
    EXPECT_EQ(DibBits(c.dib.data()) - c.dib.data(), c.bitsOffset) << c.what;
  }
}

TEST(DibUtilities, PaletteEntriesAsColourValues) {
  auto longDib = MakeDib(1, 1, 4, 0, std::vector<std::uint32_t>(16), {0, 0, 0, 0});
  auto coreDib = CoreDib(1, 1, 8);
  for (auto* dib : {&longDib, &coreDib}) {
    const std::size_t entry = (*dib)[0] == 40 ? 4 : 3;
    EXPECT_TRUE(SetDibColor(dib->data(), 2, 0x00112233));
    // Stored blue, green, red.
    EXPECT_EQ((*dib)[(*dib)[0] + 2 * entry + 0], 0x11);
    EXPECT_EQ((*dib)[(*dib)[0] + 2 * entry + 2], 0x33);
    EXPECT_EQ(GetDibColor(dib->data(), 2), 0x00112233u);
    EXPECT_EQ(GetDibColor(dib->data(), 1), 0u);
  }
  // Out of range, no palette, or no block at all.
  EXPECT_FALSE(SetDibColor(longDib.data(), 16, 0xFFFFFF));
  EXPECT_EQ(GetDibColor(longDib.data(), 16), 0u);
  auto trueColour = MakeDib(1, 1, 24, 0, {}, {1, 2, 3, 0});
  EXPECT_FALSE(SetDibColor(trueColour.data(), 0, 0xFFFFFF));
  EXPECT_EQ(trueColour[40], 1);
  EXPECT_EQ(DibBits(trueColour.data()), trueColour.data() + 40);
  EXPECT_FALSE(SetDibColor(nullptr, 0, 0));
  EXPECT_EQ(GetDibColor(nullptr, 0), 0u);
}

}  // namespace
}  // namespace tavlet

#include "previews/dib_blend.h"

namespace tavlet {
namespace {

TEST(BlendShift8, ShiftsInsteadOfDividing) {
  struct Case {
    int source, destination, alpha, expected;
  };
  const Case cases[] = {
      {255, 0, 255, 254},  // the fallback's darkening
      {0, 255, 0, 254},
      {200, 100, 128, 149},  // (25600 + 12700) >> 8
      {0, 0, 77, 0},
      {255, 255, 128, 254},
      {10, 250, 1, 248},     // (10 + 63500) >> 8
  };
  for (const Case& c : cases) {
    const std::uint8_t s = static_cast<std::uint8_t>(c.source), d = static_cast<std::uint8_t>(c.destination);
    std::uint8_t out = 0;
    ASSERT_TRUE(BlendShift8(&s, &d, &out, 1, c.alpha));
    EXPECT_EQ(out, c.expected) << c.source << " over " << c.destination << " at " << c.alpha;
  }
  std::uint8_t s = 1, d = 2, out = 99;
  EXPECT_FALSE(BlendShift8(&s, &d, &out, 1, 256));
  EXPECT_FALSE(BlendShift8(&s, &d, &out, 1, -1));
  EXPECT_EQ(out, 99);
}

}  // namespace
}  // namespace tavlet
