#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "oracle.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"
#include "previews/raster/text_mask.h"

namespace tavlet {
namespace {

using oracle::Buffer;

// Masks drawn by a function of (x, y), with a record of what was asked.
class FakeMaskPort : public TextMaskPort {
 public:
  std::function<bool(int, int)> ink = [](int, int) { return true; };
  std::int32_t result = raster::kOk;
  std::int32_t askedWidth = 0, askedHeight = 0, askedFontHeight = 0;
  std::uint32_t askedFormat = 0;
  bool askedWide = false;
  std::string askedText;

  std::int32_t DrawMask(const void* text, bool wide, const LogFontA& font, std::int32_t width,
                        std::int32_t height, std::uint32_t format, MonoMask& mask) override {
    askedText = wide ? "" : static_cast<const char*>(text);
    askedWide = wide;
    askedWidth = width;
    askedHeight = height;
    askedFontHeight = font.lfHeight;
    askedFormat = format;
    if (result != raster::kOk) return result;
    mask.width = width;
    mask.height = height;
    mask.rowBytes = ((width + 31) / 32) * 4;
    mask.bits.assign(static_cast<std::size_t>(mask.rowBytes) * height, 0);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        if (ink(x, y)) mask.bits[y * mask.rowBytes + x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
      }
    }
    return raster::kOk;
  }
};

class SmoothText : public ::testing::Test {
 protected:
  void SetUp() override { previous_ = SetTextMaskPort(&port_); }
  void TearDown() override {
    SetTextMaskPort(previous_);
    raster::CurrentRasterContext().textOpacity = 1.0;
  }

  int Draw(Buffer& image, RasterRect rect, std::uint32_t color, const char* text = "Ab",
           std::uint32_t flags = 0) {
    return IS40_DrawSmoothTextOnRGB2(image.pixels.data(), image.width, image.height, image.stride,
                                     text, &font_, 4, &rect, 0x8024, flags, color);
  }

  FakeMaskPort port_;
  TextMaskPort* previous_ = nullptr;
  LogFontA font_{.lfHeight = -11};
};

std::uint8_t Blended(std::uint8_t k, std::uint8_t p, std::uint8_t m) {
  const std::uint8_t* table = raster::BlendTable();
  return static_cast<std::uint8_t>(table[k * 256 + m] + table[p * 256 + 255 - m]);
}

TEST_F(SmoothText, AsksForAMaskFourTimesTheRectangleWithTheFontScaled) {
  Buffer image(20, 10, 3, 1, 0);
  ASSERT_NE(Draw(image, {2, 1, 12, 8}, 0xFFFFFF, "标签"), 0);
  EXPECT_EQ(port_.askedWidth, 40);
  EXPECT_EQ(port_.askedHeight, 28);
  EXPECT_EQ(port_.askedFontHeight, -44);
  EXPECT_EQ(port_.askedFormat, 0x8024u);
  EXPECT_EQ(port_.askedText, "标签");
  EXPECT_FALSE(port_.askedWide);
}

TEST_F(SmoothText, FullCoverageTakesTheColourInsideTheRectangleOnly) {
  Buffer image(8, 6, 3, 2, 40);
  ASSERT_NE(Draw(image, {2, 1, 5, 4}, 0x00C08010), 0);
  for (int y = 0; y < 6; ++y) {
    for (int x = 0; x < 8; ++x) {
      const bool inside = x >= 2 && x < 5 && y >= 1 && y < 4;
      EXPECT_EQ(image.At(x, y, 0), inside ? 0x10 : 40) << x << "," << y;
      EXPECT_EQ(image.At(x, y, 1), inside ? 0x80 : 40);
      EXPECT_EQ(image.At(x, y, 2), inside ? 0xC0 : 40);
    }
    for (int k = 24; k < image.stride; ++k) EXPECT_EQ(image.Row(y)[k], 40) << "padding";
  }
}

TEST_F(SmoothText, CoverageHasSeventeenLevels) {
  // Pixel x of a 17-pixel row gets x of its 16 samples inked (first x in reading order).
  port_.ink = [](int x, int y) { return (y % 4) * 4 + (x % 4) < x / 4; };
  Buffer image(17, 1, 3, 0, 200);
  ASSERT_NE(Draw(image, {0, 0, 17, 1}, 0x000000), 0);
  for (int x = 0; x < 17; ++x) {
    const auto m = static_cast<std::uint8_t>(255 * x / 16);  // mean of x samples of 255 and 16 - x of 0
    EXPECT_EQ(image.At(x, 0, 0), Blended(0, 200, m)) << x;
  }
  EXPECT_EQ(image.At(0, 0, 0), 200);
  EXPECT_EQ(image.At(16, 0, 0), 0);
}

TEST_F(SmoothText, OpacityScalesTheMask) {
  raster::CurrentRasterContext().textOpacity = 0.5;
  Buffer image(2, 2, 3, 0, 0);
  ASSERT_NE(Draw(image, {0, 0, 2, 2}, 0xFFFFFF), 0);
  EXPECT_EQ(image.At(0, 0, 0), Blended(255, 0, 127));
  EXPECT_EQ(image.At(1, 1, 2), 127);
}

TEST_F(SmoothText, FlipFlagTurnsTheMaskUpsideDown) {
  port_.ink = [](int, int y) { return y < 4; };  // the top pixel row only
  for (std::uint32_t flags : {0u, raster::kTextFlipVertical}) {
    Buffer image(1, 3, 3, 0, 0);
    ASSERT_NE(Draw(image, {0, 0, 1, 3}, 0xFFFFFF, "x", flags), 0);
    EXPECT_EQ(image.At(0, 0, 0), flags ? 0 : 255);
    EXPECT_EQ(image.At(0, 2, 0), flags ? 255 : 0);
  }
}

TEST_F(SmoothText, ClipsARectangleThatLeavesTheImage) {
  port_.ink = [](int x, int) { return x / 4 % 2 == 0; };  // every other pixel column
  Buffer image(4, 2, 3, 0, 0);
  ASSERT_NE(Draw(image, {-3, -1, 3, 1}, 0xFFFFFF), 0);
  // Rectangle columns 0..5 land on image columns -3..2: inked rectangle columns 0, 2, 4.
  const int expected[4] = {0, 255, 0, 0};
  for (int x = 0; x < 4; ++x) {
    EXPECT_EQ(image.At(x, 0, 0), expected[x]) << x;
    EXPECT_EQ(image.At(x, 1, 0), 0) << x;
  }
}

TEST_F(SmoothText, NothingToDrawSucceedsWithoutAskingForAMask) {
  Buffer image(4, 4, 3, 0, 9);
  EXPECT_NE(Draw(image, {1, 1, 1, 3}, 0xFFFFFF), 0);
  EXPECT_NE(Draw(image, {1, 1, 3, 1}, 0xFFFFFF), 0);
  EXPECT_NE(Draw(image, {3, 3, 1, 1}, 0xFFFFFF), 0);
  const RasterRect rect{0, 0, 4, 4};
  EXPECT_NE(IS40_DrawSmoothTextOnRGB2(image.pixels.data(), 4, 4, 12, nullptr, &font_, 4, &rect, 0, 0, 0), 0);
  EXPECT_EQ(port_.askedWidth, 0);
  for (std::uint8_t v : image.pixels) ASSERT_EQ(v, 9);
}

TEST_F(SmoothText, FailuresGiveTheirCodes) {
  Buffer image(4, 4, 3, 0, 9);
  const RasterRect rect{0, 0, 4, 4};
  std::uint8_t* p = image.pixels.data();
  struct Case {
    const char* what;
    std::uint8_t* pixels;
    int w, h, stride, factor;
    const LogFontA* font;
    const RasterRect* rect;
    std::int32_t portResult;
    std::int32_t code;
  };
  const Case cases[] = {
      {"null image", nullptr, 4, 4, 12, 4, &font_, &rect, 0, raster::kBadArgument},
      {"null font", p, 4, 4, 12, 4, nullptr, &rect, 0, raster::kBadArgument},
      {"null rectangle", p, 4, 4, 12, 4, &font_, nullptr, 0, raster::kBadArgument},
      {"short stride", p, 4, 4, 11, 4, &font_, &rect, 0, raster::kBadArgument},
      {"zero factor", p, 4, 4, 12, 0, &font_, &rect, 0, raster::kBadArgument},
      {"factor past the box limit", p, 4, 4, 12, 5000, &font_, &rect, 0, raster::kBadArgument},
      {"no font from the port", p, 4, 4, 12, 4, &font_, &rect, raster::kNoFont, raster::kNoFont},
      {"no context from the port", p, 4, 4, 12, 4, &font_, &rect, raster::kNoDeviceContext,
       raster::kNoDeviceContext},
  };
  for (const Case& c : cases) {
    port_.result = c.portResult;
    EXPECT_EQ(IS40_DrawSmoothTextOnRGB2(c.pixels, c.w, c.h, c.stride, "x", c.font, c.factor, c.rect, 0, 0, 0), 0)
        << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, c.code) << c.what;
  }
  SetTextMaskPort(nullptr);
  port_.result = raster::kOk;
  EXPECT_EQ(Draw(image, rect, 0), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kNoDeviceContext);
  for (std::uint8_t v : image.pixels) ASSERT_EQ(v, 9);
}

// A port that hands back a mask of the wrong size must not make the library read
// past it.
class ShortMaskPort : public TextMaskPort {
 public:
  std::int32_t DrawMask(const void*, bool, const LogFontA&, std::int32_t width, std::int32_t height,
                        std::uint32_t, MonoMask& mask) override {
    mask.width = width;
    mask.height = height;
    mask.rowBytes = 1;
    mask.bits.assign(4, 0xFF);
    return raster::kOk;
  }
};

TEST(SmoothTextPort, MaskOfTheWrongSizeIsRefused) {
  ShortMaskPort port;
  TextMaskPort* previous = SetTextMaskPort(&port);
  Buffer image(8, 8, 3, 0, 9);
  const RasterRect rect{0, 0, 8, 8};
  const LogFontA font{};
  EXPECT_EQ(IS40_DrawSmoothTextOnRGB2(image.pixels.data(), 8, 8, 24, "x", &font, 4, &rect, 0, 0, 0), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kNoDeviceContext);
  SetTextMaskPort(previous);
}

}  // namespace
}  // namespace tavlet
