#include "platform/win32/bar/gdi_canvas.h"

#include <cstring>

#include "platform/win32/dib_paint.h"
#include "platform/win32/port_handles.h"
#include "platform/win32/raster_gdi.h"
#include "platform/win32/window.h"

namespace tavlet::win32 {
namespace {

HBITMAP LoadGlyph(bar::Glyph glyph) {
  return LoadBitmapA(CurrentResourceInstance(), MAKEINTRESOURCEA(static_cast<int>(glyph)));
}

// A solid fill without a brush object: an opaque empty text run.
void Solid(HDC dc, int x, int y, int cx, int cy, COLORREF color) {
  const RECT r{x, y, x + cx, y + cy};
  const COLORREF old = SetBkColor(dc, color);
  ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &r, nullptr, 0, nullptr);
  SetBkColor(dc, old);
}

}  // namespace

StripGlyphs::StripGlyphs()
    : modified_(LoadGlyph(bar::Glyph::Modified)),
      lock_(LoadGlyph(bar::Glyph::Lock)),
      modifiedTurned_(LoadGlyph(bar::Glyph::ModifiedTurned)),
      lockTurned_(LoadGlyph(bar::Glyph::LockTurned)) {}

HBITMAP StripGlyphs::Get(bar::Glyph glyph) const {
  switch (glyph) {
    case bar::Glyph::Modified:
      return modified_.get();
    case bar::Glyph::Lock:
      return lock_.get();
    case bar::Glyph::ModifiedTurned:
      return modifiedTurned_.get();
    case bar::Glyph::LockTurned:
      return lockTurned_.get();
  }
  return nullptr;
}

void GdiCanvas::FillRect(const bar::WindowRect& r, std::uint32_t color) {
  const RECT rect = ToRect(r);
  if (rect.right <= rect.left || rect.bottom <= rect.top) return;
  Solid(dc_, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, color);
}

void GdiCanvas::Draw3dRect(const bar::WindowRect& r, std::uint32_t topLeft, std::uint32_t bottomRight) {
  const int x = static_cast<int>(r.left), y = static_cast<int>(r.top);
  const int cx = static_cast<int>(r.Width()), cy = static_cast<int>(r.Height());
  if (cx <= 0 || cy <= 0) return;
  Solid(dc_, x, y, cx - 1, 1, topLeft);
  Solid(dc_, x, y, 1, cy - 1, topLeft);
  Solid(dc_, x + cx - 1, y, 1, cy, bottomRight);
  Solid(dc_, x, y + cy - 1, cx, 1, bottomRight);
}

void GdiCanvas::DrawLabel(std::string_view text, const bar::WindowRect& box, std::uint32_t format,
                         std::uint32_t color, std::uint32_t back) {
  RECT r = ToRect(box);
  const COLORREF oldBack = SetBkColor(dc_, back);
  const COLORREF oldText = SetTextColor(dc_, color);
  DrawTextA(dc_, text.data(), static_cast<int>(text.size()), &r, format);
  SetTextColor(dc_, oldText);
  SetBkColor(dc_, oldBack);
}

void GdiCanvas::DrawDib(const std::vector<unsigned char>& dib, int width, int height, const bar::WindowRect& to) {
  if (!drawDib_ || dib.size() < sizeof(BITMAPINFOHEADER)) return;
  BITMAPINFOHEADER header{};
  std::memcpy(&header, dib.data(), sizeof header);
  std::size_t colors = header.biClrUsed;
  if (colors == 0 && header.biBitCount <= 8) colors = std::size_t{1} << header.biBitCount;
  const std::size_t bitsAt = header.biSize + colors * sizeof(RGBQUAD);
  const std::size_t stride = ((static_cast<std::size_t>(header.biWidth > 0 ? header.biWidth : 0) *
                                   header.biBitCount + 31) / 32) * 4;
  const std::size_t rows = static_cast<std::size_t>(header.biHeight < 0 ? -static_cast<long long>(header.biHeight)
                                                                        : header.biHeight);
  if (header.biSize < sizeof header || bitsAt > dib.size() || stride * rows > dib.size() - bitsAt) return;
  auto* info = reinterpret_cast<BITMAPINFOHEADER*>(const_cast<unsigned char*>(dib.data()));
  unsigned char* bits = const_cast<unsigned char*>(dib.data()) + bitsAt;
  const int x = static_cast<int>(to.left), y = static_cast<int>(to.top);
  const int w = static_cast<int>(to.Width()), h = static_cast<int>(to.Height());
  // DDF_SAME_HDC keeps what the last call set up; a DrawDib that last drew into
  // another context (a screenshot's memory context) may refuse it, and then the
  // call is made again letting it set the context up.
  if (!DrawDibDraw(drawDib_, dc_, x, y, w, h, info, bits, 0, 0, width, height, DDF_SAME_HDC))
    DrawDibDraw(drawDib_, dc_, x, y, w, h, info, bits, 0, 0, width, height, 0);
}

void GdiCanvas::DrawGlyph(bar::Glyph glyph, long x, long y, std::uint32_t color) {
  HBITMAP bitmap = glyphs_ ? glyphs_->Get(glyph) : nullptr;
  if (!bitmap) return;
  GdiObject<HBRUSH> brush(CreateSolidBrush(color));
  DrawStateA(dc_, brush.get(), nullptr, reinterpret_cast<LPARAM>(bitmap), 0, static_cast<int>(x), static_cast<int>(y),
             0, 0, DST_BITMAP | DSS_MONO);
}

void GdiCanvas::FillAlpha(const bar::WindowRect& r, std::uint32_t color, int alpha) {
  FillAlphaRect(dc_, ToRect(r), color, alpha);
}

void GdiCanvas::DrawRgb(const unsigned char* rgb, int width, int height, int stride, long x, long y) {
  IS40_DrawRGB(dc_, rgb, width, height, stride, static_cast<std::int32_t>(x), static_cast<std::int32_t>(y), nullptr);
}

bar::TextExtent GdiCanvas::MeasureText(std::string_view text) {
  SIZE size{};
  GetTextExtentPoint32A(dc_, text.data(), static_cast<int>(text.size()), &size);
  return {size.cx, size.cy};
}

long GdiCanvas::TextHeight() {
  TEXTMETRICA metrics{};
  GetTextMetricsA(dc_, &metrics);
  return metrics.tmHeight;
}

}  // namespace tavlet::win32
