// Packed bitmaps: writing them from RGB, reading them back, their header utilities,
// and the software blend of the alpha fill.
#include <gtest/gtest.h>

#include <algorithm>

#include "oracle.h"
#include "previews/dib.h"
#include "previews/dib_blend.h"
#include "previews/raster/dib_pixels.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct DibBlock {
  void* block;
  ~DibBlock() { DibFree(block); }
  Bytes Range(std::size_t from, std::size_t count) const {
    const auto* b = static_cast<const std::uint8_t*>(block) + from;
    return Bytes(b, b + count);
  }
};

TEST(RGBToDIB, HeaderAndBottomUpBgrRowsWithTheFlags) {
  oracle::Buffer image(3, 2, 3, 2);  // a row of 9 bytes, stored in 12
  for (int k = 0; k < 18; ++k) image.At(k / 3 % 3, k / 9, k % 3) = std::uint8_t(10 * (k / 9) + k % 9);
  DibBlock dib{IS40_RGBToDIB(image.data(), 3, 2, image.stride, nullptr, 0)};
  ASSERT_NE(dib.block, nullptr);
  const std::uint32_t header[10] = {40, 3, 2, 0x00180001, 0, 24, 0, 0, 0, 0};
  EXPECT_EQ(dib.Range(0, 40), Bytes(reinterpret_cast<const std::uint8_t*>(header),
                                    reinterpret_cast<const std::uint8_t*>(header) + 40));
  // The image's last row is stored first, blue first, padding zero.
  EXPECT_EQ(dib.Range(40, 24), (Bytes{12, 11, 10, 15, 14, 13, 18, 17, 16, 0, 0, 0,  //
                                      2, 1, 0, 5, 4, 3, 8, 7, 6, 0, 0, 0}));
  const std::uint8_t pixels[6] = {1, 2, 3, 4, 5, 6};  // 1 x 2
  const std::pair<std::uint32_t, Bytes> flags[] = {
      {0, {6, 5, 4, 0, 3, 2, 1, 0}},
      {raster::kDibKeepChannelOrder, {4, 5, 6, 0, 1, 2, 3, 0}},
      {raster::kDibKeepRowOrder, {3, 2, 1, 0, 6, 5, 4, 0}},
      {raster::kDibKeepChannelOrder | raster::kDibKeepRowOrder, {1, 2, 3, 0, 4, 5, 6, 0}},
  };
  for (const auto& [flag, rows] : flags) {
    DibBlock flagged{IS40_RGBToDIB(pixels, 1, 2, 3, nullptr, flag)};
    ASSERT_NE(flagged.block, nullptr);
    EXPECT_EQ(flagged.Range(40, 8), rows) << "flags " << flag;
  }
  // Into a block of the caller's: the padding is left as it was.
  Bytes block(48, 0xCC);
  EXPECT_EQ(IS40_RGBToDIB(pixels, 2, 1, 6, block.data(), 0), block.data());
  EXPECT_EQ(block[20], 8);  // biSizeImage
  EXPECT_EQ(Bytes(block.begin() + 40, block.end()), (Bytes{3, 2, 1, 6, 5, 4, 0xCC, 0xCC}));
  // A failed allocation is code 1.
  const DibMemory previous = SetDibMemory({[](std::size_t) -> void* { return nullptr; }, [](void*) {}});
  EXPECT_EQ(IS40_RGBToDIB(pixels, 1, 1, 3, nullptr, 0), nullptr);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kOutOfMemory);
  SetDibMemory(previous);
}

// A packed bitmap with a long header, a table (entries 0x00RRGGBB) and stored rows.
Bytes MakeDib(int width, int height, int bits, std::uint32_t compression,
              const std::vector<std::uint32_t>& table, const Bytes& rows, std::uint32_t clrUsed = 0) {
  Bytes block(40 + table.size() * 4);
  WriteDibInfoHeader(block.data(), {.width = width, .height = height,
                                    .bitCount = std::uint16_t(bits), .compression = compression,
                                    .clrUsed = clrUsed});
  std::copy_n(reinterpret_cast<const std::uint8_t*>(table.data()), table.size() * 4, block.data() + 40);
  block.insert(block.end(), rows.begin(), rows.end());
  return block;
}

// Each depth through real bitmaps is in the Win32 tests; here the cases only a packed
// block can make, and a round trip.
TEST(DibToRgb, PalettePastItsColoursTopDownRowsAndRoundTrip) {
  const std::pair<Bytes, Bytes> cases[] = {
      {MakeDib(2, 2, 8, 0, {0x112233, 0x445566}, {7, 0, 0, 0, 0, 1, 0, 0}, 2),  // index 7 of 2
       {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0, 0, 0, 0x11, 0x22, 0x33}},
      {MakeDib(1, -2, 24, 0, {}, {1, 2, 3, 0, 4, 5, 6, 0}), {3, 2, 1, 6, 5, 4}},
  };
  for (const auto& [dib, expected] : cases) {
    Bytes rgb(expected.size(), 0xEE);
    EXPECT_EQ(raster::DibToRgb(dib.data(), dib.size(), rgb.data()), 0);
    EXPECT_EQ(rgb, expected);
  }
  // Round trip of what IS40_RGBToDIB packed, padded source rows included.
  std::mt19937 random(9);
  for (auto [w, h] : {std::pair{1, 1}, std::pair{5, 3}, std::pair{33, 17}}) {
    const oracle::Buffer image = oracle::RandomBuffer(random, w, h, 3, 7);
    DibBlock dib{IS40_RGBToDIB(image.data(), w, h, image.stride, nullptr, 0)};
    Bytes back(w * h * 3);
    ASSERT_EQ(raster::DibToRgb(dib.block, 40 + DibStride(w, 24) * h, back.data()), 0);
    for (int y = 0; y < h; ++y) {
      EXPECT_TRUE(std::equal(back.begin() + y * w * 3, back.begin() + (y + 1) * w * 3,
                             image.data() + y * image.stride)) << w << "x" << h << " row " << y;
    }
  }
}

TEST(DibToRgb, RefusesWhatItCannotRead) {
  Bytes shortHeader = MakeDib(1, 1, 24, 0, {}, {1, 2, 3, 0});
  shortHeader[0] = 12;
  const std::pair<Bytes, std::int32_t> cases[] = {
      {MakeDib(1, 1, 8, 1, std::vector<std::uint32_t>(256), {0, 0, 0, 0}), raster::kUnsupportedCompression},
      {MakeDib(1, 1, 24, 3, {1, 2, 4}, {0, 0, 0, 0}), raster::kUnsupportedCompression},
      {MakeDib(1, 1, 2, 0, {0, 0, 0, 0}, {0, 0, 0, 0}), raster::kUnsupportedDepth},
      {MakeDib(4, 4, 24, 0, {}, {1, 2, 3}), raster::kBadArgument},  // rows missing
      {MakeDib(1, 1, 8, 0, {}, {0, 0, 0, 0}), raster::kBadArgument},  // table missing
      {shortHeader, raster::kBadArgument},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    std::uint8_t out[48] = {};
    EXPECT_EQ(raster::DibToRgb(cases[i].first.data(), cases[i].first.size(), out), cases[i].second)
        << "case " << i;
  }
}

// A core header: size 12, 16-bit width and height, planes, bit count; 3-byte entries.
Bytes CoreDib(int width, int height, int bits) {
  Bytes block = {12, 0, 0, 0, std::uint8_t(width), std::uint8_t(width >> 8), std::uint8_t(height), 0, 1, 0,
                 std::uint8_t(bits), 0};
  block.resize(12 + 3 * 256 + 64);
  return block;
}

TEST(DibUtilities, SizesColourCountsAndPalettesOfBothHeaders) {
  const struct {
    Bytes dib;
    int width, height;
    std::uint32_t colours;
    int paletteSize, bitsOffset;
  } cases[] = {
      {MakeDib(7, 5, 8, 0, std::vector<std::uint32_t>(256), {}), 7, 5, 256, 1024, 1064},
      {MakeDib(7, -5, 8, 0, {1, 2, 3}, {}, 3), 7, -5, 3, 12, 52},
      {MakeDib(9, 2, 1, 0, {0, 0}, {}), 9, 2, 2, 8, 48},
      {MakeDib(9, 2, 4, 0, std::vector<std::uint32_t>(16), {}), 9, 2, 16, 64, 104},
      {MakeDib(9, 2, 24, 0, {}, {}), 9, 2, 0, 0, 40},
      {MakeDib(9, 2, 16, 0, {0, 0}, {}, 2), 9, 2, 2, 8, 48},
      {CoreDib(300, 20, 1), 300, 20, 2, 6, 18},
      {CoreDib(3, 2, 4), 3, 2, 16, 48, 60},
      {CoreDib(3, 2, 8), 3, 2, 256, 768, 780},
      {CoreDib(3, 2, 24), 3, 2, 0, 0, 12},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    EXPECT_EQ(DibWidth(c.dib.data()), c.width);
    EXPECT_EQ(DibHeight(c.dib.data()), c.height);
    EXPECT_EQ(DibColorCount(c.dib.data()), c.colours);
    EXPECT_EQ(DibPaletteSize(c.dib.data()), c.paletteSize);
    EXPECT_EQ(DibBits(c.dib.data()) - c.dib.data(), c.bitsOffset);
  }
  Bytes longDib = MakeDib(1, 1, 4, 0, std::vector<std::uint32_t>(16), {0, 0, 0, 0});
  Bytes coreDib = CoreDib(1, 1, 8);
  for (Bytes* dib : {&longDib, &coreDib}) {
    const std::size_t entry = (*dib)[0] + 2 * ((*dib)[0] == 40 ? 4 : 3);
    EXPECT_TRUE(SetDibColor(dib->data(), 2, 0x00112233));
    EXPECT_EQ((*dib)[entry], 0x11);  // stored blue, green, red
    EXPECT_EQ((*dib)[entry + 2], 0x33);
    EXPECT_EQ(GetDibColor(dib->data(), 2), 0x00112233u);
    EXPECT_EQ(GetDibColor(dib->data(), 1), 0u);
  }
  // Out of range, no palette, or no block at all.
  EXPECT_FALSE(SetDibColor(longDib.data(), 16, 0xFFFFFF));
  EXPECT_EQ(GetDibColor(longDib.data(), 16), 0u);
  Bytes trueColour = MakeDib(1, 1, 24, 0, {}, {1, 2, 3, 0});
  EXPECT_FALSE(SetDibColor(trueColour.data(), 0, 0xFFFFFF));
  EXPECT_EQ(trueColour[40], 1);
  EXPECT_FALSE(SetDibColor(nullptr, 0, 0));
  EXPECT_EQ(GetDibColor(nullptr, 0), 0u);
}

// The results through FillAlphaRect are in the Win32 tests.
TEST(BlendShift8, ShiftsInsteadOfDividingAndRefusesAnAlphaOutOfRange) {
  const std::uint8_t source[] = {255, 0, 200, 10}, destination[] = {0, 255, 100, 250};
  std::uint8_t out[4] = {};
  ASSERT_TRUE(BlendShift8(source, destination, out, 4, 1));  // 10 + 250 x 254 = 63510 >> 8
  EXPECT_EQ(Bytes(out, out + 4), (Bytes{0, 253, 100, 248}));
  ASSERT_TRUE(BlendShift8(source, destination, out, 4, 255));
  EXPECT_EQ(Bytes(out, out + 4), (Bytes{254, 0, 199, 9}));
  EXPECT_FALSE(BlendShift8(source, destination, out, 4, 256));
  EXPECT_FALSE(BlendShift8(source, destination, out, 4, -1));
  EXPECT_EQ(out[0], 254);
}

}  // namespace
}  // namespace tavlet
