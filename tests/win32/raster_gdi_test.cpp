#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <random>
#include <vector>

#include "platform/win32/dib_paint.h"
#include "platform/win32/raster_gdi.h"
#include "previews/dib.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using Rgb = std::vector<std::uint8_t>;

struct ScreenDc {
  HDC dc = GetDC(nullptr);
  ~ScreenDc() { ReleaseDC(nullptr, dc); }
};

// A bottom-up DIB section with the given table (or masks) and stored rows.
HBITMAP MakeSection(int width, int height, int bits, DWORD compression,
                    const std::vector<std::uint32_t>& table, const std::vector<std::uint8_t>& rows) {
  std::vector<std::uint8_t> info(sizeof(BITMAPINFOHEADER) + 4 * (table.size() + 3), 0);
  auto* header = reinterpret_cast<BITMAPINFOHEADER*>(info.data());
  header->biSize = sizeof(BITMAPINFOHEADER);
  header->biWidth = width;
  header->biHeight = height;
  header->biPlanes = 1;
  header->biBitCount = static_cast<WORD>(bits);
  header->biCompression = compression;
  header->biClrUsed = bits <= 8 ? static_cast<DWORD>(table.size()) : 0;
  std::memcpy(info.data() + sizeof(BITMAPINFOHEADER), table.data(), 4 * table.size());
  void* pixels = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(info.data()), DIB_RGB_COLORS,
                                    &pixels, nullptr, 0);
  if (bitmap != nullptr) std::memcpy(pixels, rows.data(), rows.size());
  return bitmap;
}

Rgb ReadBack(HBITMAP bitmap, int pixels) {
  ScreenDc screen;
  Rgb out(pixels * 3, 0xEE);
  EXPECT_NE(IS40_HBITMAPToRGB(bitmap, screen.dc, nullptr, out.data()), 0)
      << raster::CurrentRasterContext().lastError;
  return out;
}

TEST(HBITMAPToRGB, EachDepthConvertsToKnownPixels) {
  struct Case {
    const char* what;
    int width, height, bits;
    DWORD compression;
    std::vector<std::uint32_t> table;
    std::vector<std::uint8_t> rows;  // bottom row first
    Rgb expected;                     // top row first
  };
  std::vector<std::uint32_t> sixteen(16, 0x102030);
  sixteen[0xA] = 0x0000FF;
  sixteen[0x5] = 0x00FF00;
  std::vector<std::uint32_t> gray(256);
  for (std::uint32_t i = 0; i < 256; ++i) gray[i] = i * 0x010101;
  const Case cases[] = {
      {"1 bit", 2, 2, 1, BI_RGB, {0x000000, 0xFF8000}, {0x40, 0, 0, 0, 0x80, 0, 0, 0},
       {255, 128, 0, 0, 0, 0, 0, 0, 0, 255, 128, 0}},
      {"4 bits", 2, 2, 4, BI_RGB, sixteen, {0xA5, 0, 0, 0, 0x5A, 0, 0, 0},
       {0, 255, 0, 0, 0, 255, 0, 0, 255, 0, 255, 0}},
      {"8 bits", 2, 2, 8, BI_RGB, gray, {1, 2, 0, 0, 200, 255, 0, 0},
       {200, 200, 200, 255, 255, 255, 1, 1, 1, 2, 2, 2}},
      // 5-5-5: white, and red 16 / green 1 / blue 31 -> 131, 8, 255.
      {"16 bits", 2, 1, 16, BI_RGB, {}, {0xFF, 0x7F, 0x3F, 0x40}, {255, 255, 255, 131, 8, 255}},
      {"16 bits with 5-6-5 masks", 2, 1, 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}, {0xFF, 0xFF, 0x41, 0x08},
       {248, 252, 248, 8, 8, 8}},
      {"24 bits", 2, 2, 24, BI_RGB, {}, {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0},
       {9, 8, 7, 12, 11, 10, 3, 2, 1, 6, 5, 4}},
      {"32 bits", 2, 1, 32, BI_RGB, {}, {1, 2, 3, 0, 4, 5, 6, 0}, {3, 2, 1, 6, 5, 4}},
  };
  for (const Case& c : cases) {
    HBITMAP bitmap = MakeSection(c.width, c.height, c.bits, c.compression, c.table, c.rows);
    ASSERT_NE(bitmap, nullptr) << c.what;
    EXPECT_EQ(ReadBack(bitmap, c.width * c.height), c.expected) << c.what;
    DeleteObject(bitmap);
  }
}

TEST(HBITMAPToRGB, RefusesMissingArguments) {
  ScreenDc screen;
  HBITMAP bitmap = MakeSection(1, 1, 24, BI_RGB, {}, {1, 2, 3, 0});
  std::uint8_t out[3] = {7, 7, 7};
  EXPECT_EQ(IS40_HBITMAPToRGB(bitmap, nullptr, nullptr, out), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument);
  EXPECT_EQ(IS40_HBITMAPToRGB(nullptr, screen.dc, nullptr, out), 0);
  EXPECT_EQ(IS40_HBITMAPToRGB(bitmap, screen.dc, nullptr, nullptr), 0);
  EXPECT_EQ(out[0], 7);
  DeleteObject(bitmap);
}

Rgb RandomImage(std::mt19937& random, int width, int height) {
  Rgb image(width * height * 3);
  std::uniform_int_distribution<int> value(0, 255);
  for (auto& v : image) v = static_cast<std::uint8_t>(value(random));
  return image;
}

TEST(DrawRGB, DrawnPixelsReadBackUnchanged) {
  std::mt19937 random(11);
  const Rgb image = RandomImage(random, 7, 5);
  for (int depth : {24, 32}) {
    std::vector<std::uint8_t> rows(static_cast<std::size_t>(DibStride(20, depth)) * 10, 0x11);
    HBITMAP target = MakeSection(20, 10, depth, BI_RGB, {}, rows);
    ASSERT_NE(target, nullptr);
    HDC memory = CreateCompatibleDC(nullptr);
    HGDIOBJ previous = SelectObject(memory, target);
    EXPECT_NE(IS40_DrawRGB(memory, image.data(), 7, 5, 21, 3, 2, nullptr), 0)
        << raster::CurrentRasterContext().lastError;
    SelectObject(memory, previous);
    DeleteDC(memory);

    const Rgb back = ReadBack(target, 200);
    for (int y = 0; y < 10; ++y) {
      for (int x = 0; x < 20; ++x) {
        const bool inside = x >= 3 && x < 10 && y >= 2 && y < 7;
        for (int c = 0; c < 3; ++c) {
          const int expected = inside ? image[((y - 2) * 7 + (x - 3)) * 3 + c] : 0x11;
          ASSERT_EQ(back[(y * 20 + x) * 3 + c], expected) << depth << " bits, " << x << "," << y;
        }
      }
    }
    DeleteObject(target);
  }
}

TEST(DrawRGB, RefusesBadArguments) {
  std::uint8_t pixel[3] = {};
  ScreenDc screen;
  EXPECT_EQ(IS40_DrawRGB(nullptr, pixel, 1, 1, 3, 0, 0, nullptr), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument);
  EXPECT_EQ(IS40_DrawRGB(screen.dc, nullptr, 1, 1, 3, 0, 0, nullptr), 0);
  EXPECT_EQ(IS40_DrawRGB(screen.dc, pixel, 1, 1, 2, 0, 0, nullptr), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument);
}

TEST(DIBToHBITMAP, RoundTripThroughEachKindOfBitmap) {
  std::mt19937 random(12);
  const Rgb image = RandomImage(random, 9, 4);
  void* dib = IS40_RGBToDIB(image.data(), 9, 4, 27, nullptr, 0);
  ASSERT_NE(dib, nullptr);
  for (int sections : {0, 1}) {
    raster::CurrentRasterContext().useDibSections = sections;
    HBITMAP bitmap = IS40_DIBToHBITMAP(dib, nullptr, nullptr);
    ASSERT_NE(bitmap, nullptr) << raster::CurrentRasterContext().lastError;
    DIBSECTION section{};
    const int size = GetObjectA(bitmap, sizeof section, &section);
    EXPECT_EQ(size == sizeof section, sections == 1) << "a DIB section only when asked";
    EXPECT_EQ(ReadBack(bitmap, 36), image) << "sections " << sections;
    DeleteObject(bitmap);
  }
  raster::CurrentRasterContext().useDibSections = 0;
  DibFree(dib);
}

TEST(DIBToHBITMAP, OneBitBitmapStaysOneBitWithoutAContext) {
  // 8 x 1, black and white alternating, table black then white.
  std::vector<std::uint8_t> dib(40 + 8 + 4, 0);
  DibInfoHeader header;
  header.width = 8;
  header.height = 1;
  header.bitCount = 1;
  WriteDibInfoHeader(dib.data(), header);
  dib[40 + 4] = dib[40 + 5] = dib[40 + 6] = 255;
  dib[48] = 0x55;
  HBITMAP bitmap = IS40_DIBToHBITMAP(dib.data(), nullptr, nullptr);
  ASSERT_NE(bitmap, nullptr);
  BITMAP shape{};
  GetObjectA(bitmap, sizeof shape, &shape);
  EXPECT_EQ(shape.bmBitsPixel, 1);
  const Rgb back = ReadBack(bitmap, 8);
  for (int x = 0; x < 8; ++x) EXPECT_EQ(back[x * 3], x % 2 ? 255 : 0) << x;
  DeleteObject(bitmap);
}

TEST(DIBToHBITMAP, RefusesWhatIsNotALongHeader) {
  std::vector<std::uint8_t> core(12 + 4, 0);
  core[0] = 12;
  EXPECT_EQ(IS40_DIBToHBITMAP(core.data(), nullptr, nullptr), nullptr);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument);
  EXPECT_EQ(IS40_DIBToHBITMAP(nullptr, nullptr, nullptr), nullptr);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kBadArgument);
}

TEST(GdiTextMask, InkFallsInsideTheMaskAndNothingForEmptyText) {
  win32::GdiTextMaskPort port;
  LogFontA font{};
  font.lfHeight = -40;
  font.lfWeight = FW_BOLD;
  std::strcpy(font.lfFaceName, "Tahoma");
  MonoMask mask;
  ASSERT_EQ(port.DrawMask("WM", false, font, 120, 48, DT_SINGLELINE | DT_VCENTER | DT_END_ELLIPSIS, mask), 0);
  EXPECT_EQ(mask.width, 120);
  EXPECT_EQ(mask.height, 48);
  EXPECT_EQ(mask.rowBytes, 16);
  int ink = 0;
  for (int y = 0; y < 48; ++y) {
    for (int x = 0; x < 120; ++x) ink += mask.Ink(x, y);
  }
  EXPECT_GT(ink, 100);
  EXPECT_LT(ink, 120 * 48 / 2);

  ASSERT_EQ(port.DrawMask("", false, font, 16, 16, 0, mask), 0);
  int none = 0;
  for (std::uint8_t b : mask.bits) none += b != 0;
  EXPECT_EQ(none, 0);
}

TEST(GdiTextMask, SmoothTextBlendsInsideItsRectangle) {
  win32::InstallGdiTextMask();
  const int w = 40, h = 16;
  Rgb image(w * h * 3, 0);
  LogFontA font{};
  font.lfHeight = -12;
  std::strcpy(font.lfFaceName, "Tahoma");
  const RasterRect rect{4, 2, 36, 14};
  ASSERT_NE(IS40_DrawSmoothTextOnRGB2(image.data(), w, h, w * 3, "Wx", &font, 4, &rect, 0x8024, 0, 0xFFFFFF), 0)
      << raster::CurrentRasterContext().lastError;
  int lit = 0, partial = 0;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const std::uint8_t v = image[(y * w + x) * 3];
      const bool inside = x >= 4 && x < 36 && y >= 2 && y < 14;
      if (!inside) {
        ASSERT_EQ(v, 0) << x << "," << y;
      }
      lit += v != 0;
      partial += v != 0 && v != 255;
    }
  }
  EXPECT_GT(lit, 5);
  EXPECT_GT(partial, 0) << "oversampling gives levels between";
  SetTextMaskPort(nullptr);
}

TEST(DibMemory, GlobalBlocksWhenInstalled) {
  const DibMemory previous = SetDibMemory({nullptr, nullptr});
  win32::UseGlobalMemoryForDibs();
  std::uint8_t pixel[3] = {1, 2, 3};
  void* dib = IS40_RGBToDIB(pixel, 1, 1, 3, nullptr, 0);
  ASSERT_NE(dib, nullptr);
  EXPECT_GE(GlobalSize(dib), 44u);
  EXPECT_EQ(static_cast<std::uint8_t*>(dib)[43], 0) << "padding zeroed";
  DibFree(dib);
  SetDibMemory(previous);
}

}  // namespace
}  // namespace tavlet
