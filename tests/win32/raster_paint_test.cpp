#include <gtest/gtest.h>

#include <windows.h>

#include <cstring>
#include <vector>

#include "platform/win32/dib_paint.h"

namespace tavlet::win32 {
namespace {

// A top-down 24-bit section of one grey level in a memory context.
class Canvas {
 public:
  Canvas(int width, int height, std::uint8_t fill) : width_(width), height_(height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bits_ = static_cast<std::uint8_t*>(bits);
    stride_ = ((width * 24 + 31) / 32) * 4;
    std::memset(bits_, fill, static_cast<std::size_t>(stride_) * height);
    dc_ = CreateCompatibleDC(nullptr);
    previous_ = SelectObject(dc_, bitmap_);
  }
  ~Canvas() {
    SelectObject(dc_, previous_);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
  }
  HDC dc() const { return dc_; }
  // Channel c (0 blue, 1 green, 2 red) of pixel (x, y).
  int At(int x, int y, int c = 0) {
    GdiFlush();
    return bits_[y * stride_ + x * 3 + c];
  }
  int width() const { return width_; }
  int height() const { return height_; }

 private:
  int width_, height_, stride_;
  HBITMAP bitmap_;
  std::uint8_t* bits_;
  HDC dc_;
  HGDIOBJ previous_;
};

class FillAlpha : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override { ForceAlphaBlendFallback(GetParam()); }
  void TearDown() override { ForceAlphaBlendFallback(false); }
  bool fallback() const { return GetParam(); }
};

TEST_P(FillAlpha, AlphaZeroLeavesTheDestination) {
  Canvas canvas(6, 4, 255);
  EXPECT_TRUE(FillAlphaRect(canvas.dc(), RECT{1, 1, 5, 3}, RGB(0, 0, 0), 0));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 6; ++x) ASSERT_EQ(canvas.At(x, y), 255) << x << "," << y;
  }
}

TEST_P(FillAlpha, FullOpacityCoversOnlyTheRectangle) {
  Canvas canvas(6, 4, 255);
  EXPECT_TRUE(FillAlphaRect(canvas.dc(), RECT{1, 1, 5, 3}, RGB(255, 255, 255), 255));
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 6; ++x) {
      const bool inside = x >= 1 && x < 5 && y >= 1 && y < 3;
      // The software blend shifts by 8 instead of dividing by 255: 255 becomes 254.
      const int expected = inside && fallback() ? 254 : 255;
      for (int c = 0; c < 3; ++c) ASSERT_EQ(canvas.At(x, y, c), expected) << x << "," << y;
    }
  }
}

TEST_P(FillAlpha, HalfOpacityMixesSourceAndDestination) {
  Canvas canvas(4, 4, 100);
  EXPECT_TRUE(FillAlphaRect(canvas.dc(), RECT{0, 0, 4, 4}, RGB(200, 200, 200), 128));
  if (fallback()) {
    EXPECT_EQ(canvas.At(2, 2), 149);  // (200 x 128 + 100 x 127) >> 8
  } else {
    EXPECT_NEAR(canvas.At(2, 2), 150, 1);  // 200 x 128/255 + 100 x 127/255
  }
}

TEST_P(FillAlpha, RefusesAnAlphaOutOfRange) {
  Canvas canvas(2, 2, 10);
  EXPECT_FALSE(FillAlphaRect(canvas.dc(), RECT{0, 0, 2, 2}, RGB(255, 255, 255), 256));
  EXPECT_FALSE(FillAlphaRect(canvas.dc(), RECT{0, 0, 2, 2}, RGB(255, 255, 255), -1));
  EXPECT_EQ(canvas.At(0, 0), 10);
}

INSTANTIATE_TEST_SUITE_P(BothPaths, FillAlpha, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Fallback" : "AlphaBlend"; });

TEST(FillAlphaRect, AlphaBlendIsFoundInMsimg32) { EXPECT_TRUE(AlphaBlendAvailable()); }

TEST(HatchRect, CheckerOfTheColourOverWhatWasThere) {
  Canvas canvas(10, 6, 0x40);
  EXPECT_TRUE(HatchRect(canvas.dc(), RECT{0, 0, 8, 4}, RGB(0xCD, 0xCD, 0xCD)));
  int coloured = 0;
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 10; ++x) {
      const bool inside = x < 8 && y < 4;
      const int expected = inside && (x + y) % 2 == 0 ? 0xCD : 0x40;
      ASSERT_EQ(canvas.At(x, y, 1), expected) << x << "," << y;
      coloured += expected == 0xCD;
    }
  }
  EXPECT_EQ(coloured, 16);
}

}  // namespace
}  // namespace tavlet::win32
