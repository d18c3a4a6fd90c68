// The decisions of a thumbnail's paint, free of any drawing system: where the
// picture goes, which stretch mode it gets, where each line of a message sits.
// A canvas carries them out; the Win32 one maps them to GDI, tests record them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavlet {

struct PreviewRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
  bool operator==(const PreviewRect&) const = default;
};

// Values as the platform's SetStretchBltMode takes them.
enum class StretchMode : int { BlackOnWhite = 1, WhiteOnBlack = 2, ColorOnColor = 3 };

constexpr std::uint32_t kThumbnailTextColor = 0x0000FF;  // pure red, 0x00BBGGRR

StretchMode StretchModeFor(std::uint32_t backgroundColor);

// Fits an image of the given size into `rect`, keeping its proportions and
// centring it, computed in 32-bit floats with truncation as the bar always has.
PreviewRect FitIntoRect(const PreviewRect& rect, int imageWidth, int imageHeight);

struct TextBand {
  PreviewRect band;
  std::string line;
};

// Splits `text` at each "\n" and stacks the lines, each in a band of
// `textHeight` + 3, the block centred vertically in `rect`.
std::vector<TextBand> LayoutTextLines(const PreviewRect& rect, std::string_view text, int textHeight);

// A packed bitmap ready to draw: the block starts with its header.
struct DibView {
  const std::uint8_t* data = nullptr;
  std::size_t size = 0;
  std::size_t bitsOffset = 0;
  int width = 0;
  int height = 0;
};

class ThumbnailCanvas {
 public:
  virtual ~ThumbnailCanvas() = default;
  virtual void SaveState() = 0;
  virtual void RestoreState() = 0;
  virtual void FillRect(const PreviewRect& rect, std::uint32_t color) = 0;
  // Height of `text` in the current font.
  virtual int TextHeight(std::string_view text) = 0;
  // One line, centred horizontally and vertically in `band`, on one line.
  virtual void DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t textColor,
                            std::uint32_t backColor) = 0;
  // Stretches the whole bitmap into `dest`.
  virtual void DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode mode) = 0;
};

}  // namespace tavlet
