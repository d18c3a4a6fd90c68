// The paint's canvas on a GDI device context, and the strip's mask glyphs.
#pragma once

#include <windows.h>
#include <vfw.h>

#include "bar/strip_paint.h"
#include "platform/win32/handles.h"

namespace tavlet::win32 {

// The four glyph bitmaps of the strip, from the module's resources. A glyph that
// can't be loaded is not drawn.
class StripGlyphs {
 public:
  StripGlyphs();
  HBITMAP Get(bar::Glyph glyph) const;

 private:
  GdiObject<HBITMAP> modified_, lock_, modifiedTurned_, lockTurned_;
};

class GdiCanvas final : public bar::Canvas {
 public:
  // Draws on `dc` with the font selected there; `glyphs` and `drawDib` may be null.
  GdiCanvas(HDC dc, const StripGlyphs* glyphs, HDRAWDIB drawDib) : dc_(dc), glyphs_(glyphs), drawDib_(drawDib) {}

  void FillRect(const bar::WindowRect& r, std::uint32_t color) override;
  void Draw3dRect(const bar::WindowRect& r, std::uint32_t topLeft, std::uint32_t bottomRight) override;
  void DrawLabel(std::string_view text, const bar::WindowRect& box, std::uint32_t format, std::uint32_t color,
                std::uint32_t back) override;
  void DrawDib(const std::vector<unsigned char>& dib, int width, int height, const bar::WindowRect& to) override;
  void DrawGlyph(bar::Glyph glyph, long x, long y, std::uint32_t color) override;
  void FillAlpha(const bar::WindowRect& r, std::uint32_t color, int alpha) override;
  void DrawRgb(const unsigned char* rgb, int width, int height, int stride, long x, long y) override;
  std::uint32_t SysColor(int index) override { return GetSysColor(index); }
  bar::TextExtent MeasureText(std::string_view text) override;
  long TextHeight() override;

 private:
  HDC dc_;
  const StripGlyphs* glyphs_;
  HDRAWDIB drawDib_;
};

}  // namespace tavlet::win32
