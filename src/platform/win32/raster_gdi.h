// The three IS40_ operations that need the window system, on GDI; and the GDI
// source of the 1-bit text masks of IS40_DrawSmoothTextOnRGB2.
#pragma once

#include <windows.h>

#include <cstdint>

#include "previews/raster/text_mask.h"

namespace tavlet {

// The pixels of `bitmap` as width x height x 3 bytes, red first, top-down.
// `rgbOut` must hold that much.
int IS40_HBITMAPToRGB(HBITMAP bitmap, HDC dc, HPALETTE palette, unsigned char* rgbOut);

// A bitmap for the packed bitmap `dib` (long header), device-dependent unless the
// thread context asks for DIB sections. Null on failure.
HBITMAP IS40_DIBToHBITMAP(const void* dib, HPALETTE palette, HDC dc);

// `stride` is taken as given; one that doesn't fit `width` shears the picture.
int IS40_DrawRGB(HDC dc, const unsigned char* rgb, std::int32_t width, std::int32_t height,
                 std::int32_t stride, std::int32_t x, std::int32_t y, HPALETTE palette);

namespace win32 {

// Draws with DrawTextExA (DrawTextExW for wide text) in white on a black 1-bit
// bitmap.
class GdiTextMaskPort : public TextMaskPort {
 public:
  std::int32_t DrawMask(const void* text, bool wide, const LogFontA& font, std::int32_t width,
                        std::int32_t height, std::uint32_t format, MonoMask& mask) override;
};

// Makes the GDI port the process's text mask port (at module start).
void InstallGdiTextMask();

LOGFONTA ToLogFont(const LogFontA& font);
LogFontA FromLogFont(const LOGFONTA& font);

}  // namespace win32
}  // namespace tavlet
