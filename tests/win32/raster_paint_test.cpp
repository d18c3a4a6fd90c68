#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>

#include "platform/win32/dib_paint.h"

namespace tavlet::win32 {
namespace {

// A top-down 24-bit section of one grey level, selected into a memory context.
struct Canvas {
  BITMAPINFO info{{sizeof(BITMAPINFOHEADER), 0, 0, 1, 24, BI_RGB, 0, 0, 0, 0, 0}, {}};
  void* bits = nullptr;
  HBITMAP bitmap;
  HDC dc = CreateCompatibleDC(nullptr);
  HGDIOBJ previous;
  int stride;

  Canvas(int width, int height, std::uint8_t fill) : stride(((width * 24 + 31) / 32) * 4) {
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    std::memset(bits, fill, static_cast<std::size_t>(stride) * height);
    previous = SelectObject(dc, bitmap);
  }
  ~Canvas() {
    SelectObject(dc, previous);
    DeleteDC(dc);
    DeleteObject(bitmap);
  }
  // Channel c (0 blue, 1 green, 2 red) of pixel (x, y).
  int At(int x, int y, int c = 0) {
    GdiFlush();
    return static_cast<std::uint8_t*>(bits)[y * stride + x * 3 + c];
  }
};

TEST(FillAlphaRect, BothPathsGiveTheirNumbers) {
  EXPECT_TRUE(AlphaBlendAvailable());  // looked up in msimg32 at run time
  const struct {
    std::uint8_t fill, colour;
    int alpha, withAlphaBlend, slack, fallback;
  } cases[] = {
      {255, 0, 0, 255, 0, 255},  // alpha 0 leaves the destination on both paths
      {255, 255, 255, 255, 0, 254},  // the fallback shifts by 8 instead of dividing by 255
      {100, 200, 128, 150, 1, 149},  // (200 x 128 + 100 x 127) >> 8 in the fallback
  };
  for (bool fallback : {false, true}) {
    ForceAlphaBlendFallback(fallback);
    for (const auto& c : cases) {
      Canvas canvas(6, 4, c.fill);
      const COLORREF colour = RGB(c.colour, c.colour, c.colour);
      EXPECT_TRUE(FillAlphaRect(canvas.dc, RECT{1, 1, 5, 3}, colour, c.alpha));
      for (int k = 0; k < 6 * 4 * 3; ++k) {
        const int x = k / 3 % 6, y = k / 18;
        const bool inside = x >= 1 && x < 5 && y >= 1 && y < 3;
        // AlphaBlend may round a mix either way.
        EXPECT_NEAR(canvas.At(x, y, k % 3), !inside ? c.fill : fallback ? c.fallback : c.withAlphaBlend,
                    inside && !fallback ? c.slack : 0) << (fallback ? "fallback " : "AlphaBlend ") << c.alpha;
      }
    }
    Canvas canvas(2, 2, 10);
    EXPECT_FALSE(FillAlphaRect(canvas.dc, RECT{0, 0, 2, 2}, RGB(255, 255, 255), 256));
    EXPECT_FALSE(FillAlphaRect(canvas.dc, RECT{0, 0, 2, 2}, RGB(255, 255, 255), -1));
    EXPECT_EQ(canvas.At(0, 0), 10);
  }
  ForceAlphaBlendFallback(false);
}

TEST(HatchRect, CheckerOfTheColourOverWhatWasThere) {
  Canvas canvas(10, 6, 0x40);
  EXPECT_TRUE(HatchRect(canvas.dc, RECT{0, 0, 8, 4}, RGB(0xCD, 0xCD, 0xCD)));
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 10; ++x) {
      ASSERT_EQ(canvas.At(x, y, 1), x < 8 && y < 4 && (x + y) % 2 == 0 ? 0xCD : 0x40) << x << "," << y;
    }
  }
}

}  // namespace
}  // namespace tavlet::win32
