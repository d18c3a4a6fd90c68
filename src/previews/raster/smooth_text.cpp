// IS40_DrawSmoothTextOnRGB2: antialiased text by oversampling a 1-bit mask, with
// no font smoothing of the system's own.
#include <algorithm>
#include <atomic>
#include <new>
#include <vector>

#include "previews/raster/raster.h"
#include "previews/raster/raster_checks.h"
#include "previews/raster/raster_context.h"
#include "previews/raster/text_mask.h"

namespace tavlet {
namespace {

std::atomic<TextMaskPort*> currentPort{nullptr};

// Masks larger than this are refused rather than attempted.
constexpr std::int64_t kMaxMaskPixels = std::int64_t{1} << 28;

std::int32_t DrawSmoothText(unsigned char* rgb, std::int32_t width, std::int32_t height,
                            std::int32_t stride, std::int32_t bytes, const void* text,
                            const LogFontA* font, std::int32_t factor, const RasterRect* rect,
                            std::uint32_t format, std::uint32_t flags, std::uint32_t color,
                            const raster::RasterContext& context) {
  using namespace raster;
  if (font == nullptr || rect == nullptr || (bytes != 3 && bytes != 4) ||
      !IsPixelBuffer(rgb, width, height, bytes, stride) || factor <= 0 ||
      static_cast<double>(factor) * factor > kMaxBoxProduct) {
    return kBadArgument;
  }
  if (text == nullptr) return kOk;
  const std::int64_t rw = static_cast<std::int64_t>(rect->right) - rect->left;
  const std::int64_t rh = static_cast<std::int64_t>(rect->bottom) - rect->top;
  if (rw <= 0 || rh <= 0) return kOk;
  const std::int64_t maskWidth = rw * factor;
  const std::int64_t maskHeight = rh * factor;
  const std::int64_t scaledHeight = static_cast<std::int64_t>(font->lfHeight) * factor;
  if (maskWidth > INT32_MAX || maskHeight > INT32_MAX || scaledHeight > INT32_MAX ||
      scaledHeight < INT32_MIN) {
    return kBadArgument;
  }
  if (maskWidth * maskHeight > kMaxMaskPixels) return kOutOfMemory;

  TextMaskPort* port = currentPort.load();
  if (port == nullptr) return kNoDeviceContext;
  LogFontA scaled = *font;
  scaled.lfHeight = static_cast<std::int32_t>(scaledHeight);
  const auto mw = static_cast<std::int32_t>(maskWidth);
  const auto mh = static_cast<std::int32_t>(maskHeight);
  MonoMask mono;
  const std::int32_t drawn =
      port->DrawMask(text, (flags & kTextWide) != 0, scaled, mw, mh, format, mono);
  if (drawn != kOk) return drawn;
  if (mono.width != mw || mono.height != mh || mono.rowBytes < (mw + 7) / 8 ||
      mono.bits.size() < static_cast<std::size_t>(mono.rowBytes) * mh) {
    return kNoDeviceContext;
  }

  std::vector<std::uint8_t> samples;
  std::vector<std::uint8_t> coverage;
  try {
    samples.resize(static_cast<std::size_t>(mw) * mh);
    coverage.resize(static_cast<std::size_t>(rw) * rh);
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
  const auto ink = static_cast<std::uint8_t>(std::clamp(context.textOpacity, 0.0, 1.0) * 255.0);
  const bool flip = (flags & kTextFlipVertical) != 0;
  for (std::int32_t y = 0; y < mh; ++y) {
    std::uint8_t* out = samples.data() + static_cast<std::size_t>(y) * mw;
    const std::int32_t from = flip ? mh - 1 - y : y;
    for (std::int32_t x = 0; x < mw; ++x) out[x] = mono.Ink(x, from) ? ink : 0;
  }
  // factor x factor samples a pixel: 17 levels of coverage at factor 4.
  if (IS40_ResizeImage(samples.data(), mw, mh, mw, coverage.data(), static_cast<std::int32_t>(rw),
                       static_cast<std::int32_t>(rh), static_cast<std::int32_t>(rw), 1,
                       kResizeReduce, 0) == 0) {
    return kOutOfMemory;
  }

  std::uint8_t colour[3];
  for (int c = 0; c < 3; ++c) colour[c] = static_cast<std::uint8_t>(color >> (8 * c));
  const std::uint8_t* table = BlendTable();
  const std::int64_t y0 = std::max<std::int64_t>(rect->top, 0);
  const std::int64_t y1 = std::min<std::int64_t>(rect->top + rh, height);
  const std::int64_t x0 = std::max<std::int64_t>(rect->left, 0);
  const std::int64_t x1 = std::min<std::int64_t>(rect->left + rw, width);
  for (std::int64_t y = y0; y < y1; ++y) {
    const std::uint8_t* m = coverage.data() + (y - rect->top) * rw + (x0 - rect->left);
    std::uint8_t* p = rgb + y * stride + x0 * bytes;
    for (std::int64_t x = x0; x < x1; ++x, ++m, p += bytes) {
      const unsigned level = *m;
      for (int c = 0; c < 3; ++c) {
        p[c] = static_cast<std::uint8_t>(table[colour[c] * 256 + level] +
                                         table[p[c] * 256 + (255 - level)]);
      }
    }
  }
  return kOk;
}

}  // namespace

TextMaskPort* SetTextMaskPort(TextMaskPort* port) { return currentPort.exchange(port); }
TextMaskPort* CurrentTextMaskPort() { return currentPort.load(); }

int IS40_DrawSmoothTextOnRGB2(unsigned char* rgb, std::int32_t width, std::int32_t height,
                              std::int32_t stride, const void* text, const LogFontA* font,
                              std::int32_t factor, const RasterRect* rect, std::uint32_t format,
                              std::uint32_t flags, std::uint32_t color) {
  raster::RasterCall call("IS40_DrawSmoothTextOnRGB2");
  return call.Finish(DrawSmoothText(rgb, width, height, stride, 3, text, font, factor, rect, format,
                                    flags, color, call.Context()));
}

}  // namespace tavlet
