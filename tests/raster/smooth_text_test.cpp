// IS40_DrawSmoothTextOnRGB2 with masks supplied by the test.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>

#include "oracle.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"
#include "previews/raster/text_mask.h"

namespace tavlet {
namespace {

using oracle::Buffer;

constexpr std::int32_t kWrongSizeMask = -1;

// Masks drawn by a function of (x, y), with a record of what was asked.
class FakeMaskPort : public TextMaskPort {
 public:
  std::function<bool(int, int)> ink = [](int, int) { return true; };
  std::int32_t result = raster::kOk;
  std::int32_t width = 0, height = 0, fontHeight = 0;
  std::uint32_t format = 0;
  std::string text;

  std::int32_t DrawMask(const void* t, bool wide, const LogFontA& font, std::int32_t w,
                        std::int32_t h, std::uint32_t f, MonoMask& mask) override {
    text = wide ? "(wide)" : static_cast<const char*>(t);
    std::tie(width, height, fontHeight, format) = std::tuple(w, h, font.lfHeight, f);
    if (result > 0) return result;
    mask = {w, h, ((w + 31) / 32) * 4, {}};
    // A port that hands back too few bytes must not make the library read past them.
    if (result == kWrongSizeMask) mask.rowBytes = 1;
    mask.bits.assign(result == kWrongSizeMask ? 4 : std::size_t(mask.rowBytes) * h, 0);
    for (int k = 0; result == raster::kOk && k < w * h; ++k) {
      if (ink(k % w, k / w)) mask.bits[k / w * mask.rowBytes + k % w / 8] |= 0x80 >> (k % w % 8);
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
    return IS40_DrawSmoothTextOnRGB2(image.data(), image.width, image.height, image.stride, text,
                                     &font_, 4, &rect, 0x8024, flags, color);
  }

  FakeMaskPort port_;
  TextMaskPort* previous_ = nullptr;
  LogFontA font_{.lfHeight = -11};
};

std::uint8_t Blended(int colour, int pixel, int level) {
  return std::uint8_t(raster::Blend(std::uint8_t(colour), std::uint8_t(level)) +
                      raster::Blend(std::uint8_t(pixel), std::uint8_t(255 - level)));
}

TEST_F(SmoothText, FourTimesTheRectangleAndFullCoverageTakesTheColourThereOnly) {
  Buffer image(8, 6, 3, 2, 40);
  ASSERT_NE(Draw(image, {2, 1, 5, 5}, 0x00C08010, "标签"), 0);
  EXPECT_EQ(std::tuple(port_.width, port_.height, port_.fontHeight, port_.format),
            std::tuple(12, 16, -44, 0x8024u));
  EXPECT_EQ(port_.text, "标签");
  for (int k = 0; k < image.stride * 6; ++k) {
    const int x = k % image.stride / 3, y = k / image.stride;
    const bool inside = x >= 2 && x < 5 && y >= 1 && y < 5 && k % image.stride < 24;
    EXPECT_EQ(image.pixels[k], inside ? (0xC08010 >> 8 * (k % image.stride % 3)) & 0xFF : 40)
        << x << "," << y;
  }
}

TEST_F(SmoothText, CoverageHasSeventeenLevelsScaledByTheOpacity) {
  // Pixel x of a 17-pixel row gets x of its 16 samples inked.
  port_.ink = [](int x, int y) { return (y % 4) * 4 + (x % 4) < x / 4; };
  for (double opacity : {1.0, 0.5}) {
    raster::CurrentRasterContext().textOpacity = opacity;
    const int ink = int(255 * opacity);
    Buffer image(17, 1, 3, 0, 200);
    ASSERT_NE(Draw(image, {0, 0, 17, 1}, 0x000000), 0);
    for (int x = 0; x < 17; ++x) {
      EXPECT_EQ(image.At(x, 0, 0), Blended(0, 200, ink * x / 16)) << x << " " << opacity;
    }
    EXPECT_EQ(image.At(0, 0, 0), 200);
    EXPECT_EQ(image.At(16, 0, 0), opacity == 1.0 ? 0 : 100);
  }
}

TEST_F(SmoothText, FlipsAndClips) {
  port_.ink = [](int, int y) { return y < 4; };  // the top pixel row only
  for (std::uint32_t flags : {0u, raster::kTextFlipVertical}) {
    Buffer image(1, 3, 3, 0, 0);
    ASSERT_NE(Draw(image, {0, 0, 1, 3}, 0xFFFFFF, "x", flags), 0);
    EXPECT_EQ(image.At(0, 0, 0), flags ? 0 : 255);
    EXPECT_EQ(image.At(0, 2, 0), flags ? 255 : 0);
  }
  // Rectangle columns 0..5 land on image columns -3..2; columns 0, 2 and 4 are inked.
  port_.ink = [](int x, int) { return x / 4 % 2 == 0; };
  Buffer image(4, 2, 3, 0, 0);
  ASSERT_NE(Draw(image, {-3, -1, 3, 1}, 0xFFFFFF), 0);
  for (int x = 0; x < 4; ++x) {
    EXPECT_EQ(image.At(x, 0, 0), x == 1 ? 255 : 0) << x;
    EXPECT_EQ(image.At(x, 1, 0), 0) << x;
  }
}

TEST_F(SmoothText, NothingToDrawSucceedsWithoutAMaskAndFailuresGiveTheirCodes) {
  Buffer image(4, 4, 3, 0, 9);
  std::uint8_t* p = image.data();
  const RasterRect rect{0, 0, 4, 4};
  for (RasterRect empty : {RasterRect{1, 1, 1, 3}, RasterRect{1, 1, 3, 1}, RasterRect{3, 3, 1, 1}}) {
    EXPECT_NE(Draw(image, empty, 0xFFFFFF), 0);
  }
  EXPECT_NE(IS40_DrawSmoothTextOnRGB2(p, 4, 4, 12, nullptr, &font_, 4, &rect, 0, 0, 0), 0);
  EXPECT_EQ(port_.width, 0);
  const struct {
    const char* what;
    std::uint8_t* pixels;
    int stride, factor;
    const LogFontA* font;
    const RasterRect* rect;
    std::int32_t portResult, code;
  } cases[] = {
      {"null image", nullptr, 12, 4, &font_, &rect, 0, raster::kBadArgument},
      {"null font", p, 12, 4, nullptr, &rect, 0, raster::kBadArgument},
      {"null rectangle", p, 12, 4, &font_, nullptr, 0, raster::kBadArgument},
      {"short stride", p, 11, 4, &font_, &rect, 0, raster::kBadArgument},
      {"zero factor", p, 12, 0, &font_, &rect, 0, raster::kBadArgument},
      {"factor past the box limit", p, 12, 5000, &font_, &rect, 0, raster::kBadArgument},
      {"no font", p, 12, 4, &font_, &rect, raster::kNoFont, raster::kNoFont},
      {"no context", p, 12, 4, &font_, &rect, raster::kNoDeviceContext, raster::kNoDeviceContext},
      {"mask of the wrong size", p, 12, 4, &font_, &rect, kWrongSizeMask, raster::kNoDeviceContext},
  };
  for (const auto& c : cases) {
    port_.result = c.portResult;
    EXPECT_EQ(IS40_DrawSmoothTextOnRGB2(c.pixels, 4, 4, c.stride, "x", c.font, c.factor, c.rect,
                                        0, 0, 0), 0) << c.what;
    EXPECT_EQ(raster::CurrentRasterContext().lastError, c.code) << c.what;
  }
  SetTextMaskPort(nullptr);
  port_.result = raster::kOk;
  EXPECT_EQ(Draw(image, rect, 0), 0);
  EXPECT_EQ(raster::CurrentRasterContext().lastError, raster::kNoDeviceContext);
  for (std::uint8_t v : image.pixels) ASSERT_EQ(v, 9);
}

}  // namespace
}  // namespace tavlet
