#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <tuple>
#include <vector>

#include "platform/win32/dib_paint.h"
#include "platform/win32/raster_gdi.h"
#include "previews/dib.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A DIB section with the given table (or masks) and stored rows, bottom row first.
HBITMAP MakeSection(int width, int height, int bits, DWORD compression,
                    const std::vector<std::uint32_t>& table, const Bytes& rows) {
  Bytes info(sizeof(BITMAPINFOHEADER) + 4 * (table.size() + 3), 0);
  const BITMAPINFOHEADER header{sizeof header, width, height, 1, WORD(bits), compression, 0, 0, 0,
                                bits <= 8 ? DWORD(table.size()) : 0, 0};
  std::memcpy(info.data(), &header, sizeof header);
  std::memcpy(info.data() + sizeof header, table.data(), 4 * table.size());
  void* pixels = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(info.data()),
                                    DIB_RGB_COLORS, &pixels, nullptr, 0);
  if (bitmap != nullptr) std::memcpy(pixels, rows.data(), rows.size());
  return bitmap;
}

Bytes ReadBack(HBITMAP bitmap, int pixels) {
  HDC screen = GetDC(nullptr);
  Bytes out(pixels * 3, 0xEE);
  EXPECT_NE(IS40_HBITMAPToRGB(bitmap, screen, nullptr, out.data()), 0)
      << raster::CurrentRasterContext().lastError;
  ReleaseDC(nullptr, screen);
  return out;
}

Bytes RandomImage(int seed, int pixels) {
  std::mt19937 random(seed);
  Bytes image(pixels * 3);
  for (auto& v : image) v = static_cast<std::uint8_t>(random());
  return image;
}

TEST(HBITMAPToRGB, EachDepthConvertsToKnownPixels) {
  std::vector<std::uint32_t> sixteen(16, 0x102030), gray(256);
  sixteen[0xA] = 0x0000FF;
  sixteen[0x5] = 0x00FF00;
  for (std::uint32_t i = 0; i < 256; ++i) gray[i] = i * 0x010101;
  const struct {
    int width, height, bits;
    DWORD compression;
    std::vector<std::uint32_t> table;
    Bytes rows, expected;  // expected top row first
  } cases[] = {
      {2, 2, 1, BI_RGB, {0x000000, 0xFF8000}, {0x40, 0, 0, 0, 0x80, 0, 0, 0},
       {255, 128, 0, 0, 0, 0, 0, 0, 0, 255, 128, 0}},
      {2, 2, 4, BI_RGB, sixteen, {0xA5, 0, 0, 0, 0x5A, 0, 0, 0}, {0, 255, 0, 0, 0, 255, 0, 0, 255, 0, 255, 0}},
      {2, 2, 8, BI_RGB, gray, {1, 2, 0, 0, 200, 255, 0, 0}, {200, 200, 200, 255, 255, 255, 1, 1, 1, 2, 2, 2}},
      // 5-5-5: white, and red 16 / green 1 / blue 31 -> 131, 8, 255.
      {2, 1, 16, BI_RGB, {}, {0xFF, 0x7F, 0x3F, 0x40}, {255, 255, 255, 131, 8, 255}},
      {2, 1, 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}, {0xFF, 0xFF, 0x41, 0x08}, {248, 252, 248, 8, 8, 8}},
      {2, 2, 24, BI_RGB, {}, {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0},
       {9, 8, 7, 12, 11, 10, 3, 2, 1, 6, 5, 4}},
      {2, 1, 32, BI_RGB, {}, {1, 2, 3, 0, 4, 5, 6, 0}, {3, 2, 1, 6, 5, 4}},
  };
  for (const auto& c : cases) {
    HBITMAP bitmap = MakeSection(c.width, c.height, c.bits, c.compression, c.table, c.rows);
    ASSERT_NE(bitmap, nullptr) << c.bits;
    EXPECT_EQ(ReadBack(bitmap, c.width * c.height), c.expected) << c.bits << " bits";
    DeleteObject(bitmap);
  }
}

TEST(RasterGdi, RefusesMissingArguments) {
  HDC screen = GetDC(nullptr);
  HBITMAP bitmap = MakeSection(1, 1, 24, BI_RGB, {}, {1, 2, 3, 0});
  std::uint8_t out[3] = {7, 7, 7};
  Bytes core(16, 0);
  core[0] = 12;
  const std::pair<const char*, std::function<bool()>> cases[] = {
      {"no context", [&] { return IS40_HBITMAPToRGB(bitmap, nullptr, nullptr, out) != 0; }},
      {"no bitmap", [&] { return IS40_HBITMAPToRGB(nullptr, screen, nullptr, out) != 0; }},
      {"no output", [&] { return IS40_HBITMAPToRGB(bitmap, screen, nullptr, nullptr) != 0; }},
      {"draw without context", [&] { return IS40_DrawRGB(nullptr, out, 1, 1, 3, 0, 0, nullptr) != 0; }},
      {"draw without pixels", [&] { return IS40_DrawRGB(screen, nullptr, 1, 1, 3, 0, 0, nullptr) != 0; }},
      {"draw short stride", [&] { return IS40_DrawRGB(screen, out, 1, 1, 2, 0, 0, nullptr) != 0; }},
      {"core header", [&] { return IS40_DIBToHBITMAP(core.data(), nullptr, nullptr) != nullptr; }},
      {"no block", [&] { return IS40_DIBToHBITMAP(nullptr, nullptr, nullptr) != nullptr; }},
  };
  for (const auto& [what, call] : cases) {
    EXPECT_FALSE(call()) << what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument) << what;
  }
  EXPECT_EQ(out[0], 7);
  DeleteObject(bitmap);
  ReleaseDC(nullptr, screen);
}

TEST(DrawRGB, DrawnPixelsReadBackUnchanged) {
  const Bytes image = RandomImage(11, 7 * 5);
  for (int depth : {24, 32}) {
    HBITMAP target = MakeSection(20, 10, depth, BI_RGB, {}, Bytes(DibStride(20, depth) * 10, 0x11));
    HDC memory = CreateCompatibleDC(nullptr);
    HGDIOBJ previous = SelectObject(memory, target);
    EXPECT_NE(IS40_DrawRGB(memory, image.data(), 7, 5, 21, 3, 2, nullptr), 0);
    SelectObject(memory, previous);
    DeleteDC(memory);
    const Bytes back = ReadBack(target, 200);
    for (int k = 0; k < 600; ++k) {
      const int x = k / 3 % 20, y = k / 60;
      const bool inside = x >= 3 && x < 10 && y >= 2 && y < 7;
      ASSERT_EQ(back[k], inside ? image[((y - 2) * 7 + x - 3) * 3 + k % 3] : 0x11) << depth << " " << x << "," << y;
    }
    DeleteObject(target);
  }
}

TEST(DIBToHBITMAP, RoundTripThroughEachKindOfBitmap) {
  const Bytes image = RandomImage(12, 9 * 4);
  void* dib = IS40_RGBToDIB(image.data(), 9, 4, 27, nullptr, 0);
  ASSERT_NE(dib, nullptr);
  for (int sections : {0, 1}) {
    raster::CurrentRasterContext().useDibSections = sections;
    HBITMAP bitmap = IS40_DIBToHBITMAP(dib, nullptr, nullptr);
    ASSERT_NE(bitmap, nullptr) << raster::CurrentRasterContext().lastError;
    DIBSECTION section{};
    EXPECT_EQ(GetObjectA(bitmap, sizeof section, &section) == sizeof section, sections == 1);
    EXPECT_EQ(ReadBack(bitmap, 36), image) << "sections " << sections;
    DeleteObject(bitmap);
  }
  raster::CurrentRasterContext().useDibSections = 0;
  DibFree(dib);
  // A 1-bit bitmap stays 1-bit without a context: 8 x 1, alternating, table black then white.
  Bytes mono(40 + 8 + 4, 0);
  WriteDibInfoHeader(mono.data(), {.width = 8, .height = 1, .bitCount = 1});
  mono[44] = mono[45] = mono[46] = 255;
  mono[48] = 0x55;
  HBITMAP bitmap = IS40_DIBToHBITMAP(mono.data(), nullptr, nullptr);
  ASSERT_NE(bitmap, nullptr);
  BITMAP shape{};
  GetObjectA(bitmap, sizeof shape, &shape);
  EXPECT_EQ(shape.bmBitsPixel, 1);
  const Bytes back = ReadBack(bitmap, 8);
  for (int x = 0; x < 8; ++x) EXPECT_EQ(back[x * 3], x % 2 ? 255 : 0) << x;
  DeleteObject(bitmap);
}

TEST(GdiTextMask, MasksAndSmoothTextThroughGdi) {
  win32::GdiTextMaskPort port;
  LogFontA font{.lfHeight = -40, .lfWeight = FW_BOLD};
  std::strcpy(font.lfFaceName, "Tahoma");
  MonoMask mask;
  ASSERT_EQ(port.DrawMask("WM", false, font, 120, 48, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS, mask), 0);
  EXPECT_EQ(std::tuple(mask.width, mask.height, mask.rowBytes), std::tuple(120, 48, 16));
  int ink = 0;
  for (int k = 0; k < 120 * 48; ++k) ink += mask.Ink(k % 120, k / 120);
  EXPECT_GT(ink, 100);
  EXPECT_LT(ink, 120 * 48 / 2);
  ASSERT_EQ(port.DrawMask("", false, font, 16, 16, 0, mask), 0);
  EXPECT_EQ(std::count(mask.bits.begin(), mask.bits.end(), 0), std::ptrdiff_t(mask.bits.size()));

  win32::InstallGdiTextMask();
  Bytes image(40 * 16 * 3, 0);
  font.lfHeight = -12;
  const RasterRect rect{4, 2, 36, 14};
  ASSERT_NE(IS40_DrawSmoothTextOnRGB2(image.data(), 40, 16, 120, "Wx", &font, 4, &rect, 0x8024, 0,
                                      0xFFFFFF), 0) << raster::CurrentRasterContext().lastError;
  int lit = 0, partial = 0;
  for (int k = 0; k < 40 * 16 * 3; k += 3) {
    const int x = k / 3 % 40, y = k / 120;
    if (x < 4 || x >= 36 || y < 2 || y >= 14) {
      ASSERT_EQ(image[k], 0) << x << "," << y;
    }
    lit += image[k] != 0;
    partial += image[k] != 0 && image[k] != 255;
  }
  EXPECT_GT(lit, 5);
  EXPECT_GT(partial, 0) << "oversampling gives levels between";
  SetTextMaskPort(nullptr);
}

TEST(DibMemory, GlobalBlocksWhenInstalled) {
  const DibMemory previous = SetDibMemory({nullptr, nullptr});
  win32::UseGlobalMemoryForDibs();
  const std::uint8_t pixel[3] = {1, 2, 3};
  void* dib = IS40_RGBToDIB(pixel, 1, 1, 3, nullptr, 0);
  ASSERT_NE(dib, nullptr);
  EXPECT_GE(GlobalSize(dib), 44u);
  EXPECT_EQ(static_cast<std::uint8_t*>(dib)[43], 0) << "padding zeroed";
  DibFree(dib);
  SetDibMemory(previous);
}

}  // namespace
}  // namespace tavlet
