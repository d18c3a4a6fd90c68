#include "previews/dwg_paint.h"

#include <cmath>

#include "text/codepage.h"

namespace tavlet {
namespace {

// A float cast to int is undefined outside int's range; a hostile bitmap can make
// the proportions extreme, so the conversion saturates instead.
int TruncToInt(float value) {
  if (std::isnan(value)) return 0;
  if (value >= 2147483520.0f) return INT32_MAX;
  if (value <= -2147483648.0f) return INT32_MIN;
  return static_cast<int>(value);
}

}  // namespace

StretchMode StretchModeFor(std::uint32_t backgroundColor) {
  if (backgroundColor == 0) return StretchMode::WhiteOnBlack;
  if (backgroundColor == 0xFFFFFF) return StretchMode::BlackOnWhite;
  return StretchMode::ColorOnColor;
}

PreviewRect FitIntoRect(const PreviewRect& rect, int imageWidth, int imageHeight) {
  float rectWidth = static_cast<float>(rect.Width());
  float rectHeight = static_cast<float>(rect.Height());
  float r = rectWidth / rectHeight;
  float i = static_cast<float>(imageWidth) / static_cast<float>(imageHeight);
  PreviewRect out = rect;
  if (r > i) {
    int width = TruncToInt(rectHeight * i);
    out.left = rect.left + static_cast<int>((static_cast<long long>(rect.Width()) - width) / 2);
    out.right = static_cast<int>(static_cast<long long>(out.left) + width);
  } else {
    int height = TruncToInt(rectWidth / i);
    out.top = rect.top + static_cast<int>((static_cast<long long>(rect.Height()) - height) / 2);
    out.bottom = static_cast<int>(static_cast<long long>(out.top) + height);
  }
  return out;
}

std::vector<TextBand> LayoutTextLines(const PreviewRect& rect, std::string_view text, int textHeight) {
  std::vector<std::string> lines(1);
  for (std::size_t pos = 0; pos < text.size();) {
    std::size_t length = text::CharLength(text, pos);
    if (length == 1 && text[pos] == '\n') {
      lines.emplace_back();
    } else {
      lines.back().append(text.substr(pos, length));
    }
    pos += length;
  }
  int lineHeight = textHeight + 3;
  int count = static_cast<int>(lines.size());
  int top = rect.top + (rect.Height() - count * lineHeight) / 2;
  std::vector<TextBand> bands;
  bands.reserve(lines.size());
  for (auto& line : lines) {
    bands.push_back({{rect.left, top, rect.right, top + lineHeight}, std::move(line)});
    top += lineHeight;
  }
  return bands;
}

}  // namespace tavlet
