// Where the glyphs of IS40_DrawSmoothTextOnRGB2 come from: a 1-bit mask of the
// text, drawn by the platform (GDI's DrawTextExA on a 1-bit bitmap on Windows, see
// platform/win32/raster_text_gdi.h). Native tests install masks of their own.
#pragma once

#include <cstdint>
#include <vector>

#include "settings/settings_store.h"

namespace tavlet {

// Rows top first, `rowBytes` apart; the most significant bit of a byte is the
// leftmost pixel; a set bit is ink (the text's white on the black bitmap).
struct MonoMask {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t rowBytes = 0;
  std::vector<std::uint8_t> bits;

  bool Ink(std::int32_t x, std::int32_t y) const {
    return (bits[static_cast<std::size_t>(y) * rowBytes + x / 8] >> (7 - x % 8)) & 1u;
  }
};

class TextMaskPort {
 public:
  virtual ~TextMaskPort() = default;
  // Draws `text` (char, or char16_t when `wide`) in `font` with DrawTextEx's
  // `format` into a width x height mask, background clear. Returns raster::kOk,
  // kNoDeviceContext when no context or bitmap could be made, kNoFont.
  virtual std::int32_t DrawMask(const void* text, bool wide, const LogFontA& font,
                                std::int32_t width, std::int32_t height, std::uint32_t format,
                                MonoMask& mask) = 0;
};

// The process-wide port; null until the platform installs one. Returns the previous.
TextMaskPort* SetTextMaskPort(TextMaskPort* port);
TextMaskPort* CurrentTextMaskPort();

}  // namespace tavlet
