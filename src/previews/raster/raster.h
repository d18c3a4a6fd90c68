// The IS40_ raster library: ten operations on caller-owned pixel buffers that
// thumbnails, rotated labels and drawn buttons rest on. A pixel buffer is
// interleaved, `bytes` a pixel, rows top-down, with an explicit stride; in a 3-byte
// pixel byte 0 is red. A colour argument writes its low byte to byte 0, so a
// 0x00BBGGRR value gives a correct RGB pixel.
//
// Every operation returns 0 (or null) on failure and records its code in the
// calling thread's context (raster_context.h). The three that need a device
// (IS40_HBITMAPToRGB, IS40_DIBToHBITMAP, IS40_DrawRGB) live in
// platform/win32/raster_gdi.h; the glyphs of IS40_DrawSmoothTextOnRGB2 come from a
// TextMaskPort (text_mask.h).
#pragma once

#include <cstdint>

namespace tavlet {

// Same layout as the Win32 RECT.
struct RasterRect {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;
};

struct LogFontA;  // settings/settings_store.h: the bytes of a LOGFONTA

namespace raster {

// The codes that these operations record.
enum Code : std::int32_t {
  kOk = 0,
  kOutOfMemory = 1,
  kBadArgument = 5,
  kUnsupportedCompression = 7,
  kNoDeviceContext = 10,
  kStoppedByCallback = 14,
  kBitfieldsNotUsable = 17,
  kNoFont = 18,
  kReadBitsFailed = 25,
  kNoBitmapTransfer = 26,
  kUnsupportedDepth = 28,
  kCreateBitmapFailed = 35,
  kCreateDibSectionFailed = 40,
};

// The only mode of IS40_ResizeImage: reduction by averaging.
constexpr std::int32_t kResizeReduce = 15;

// The box mean refuses a box of more source pixels than a 32-bit sum of bytes can hold.
constexpr double kMaxBoxProduct = 16843009.0;  // 0xFFFFFFFF / 255

// Blocks of this size or larger are refused by IS40_RGBToDIB.
constexpr std::uint64_t kMaxDibBlock = 0x7FFDEFFF;

// Flags of IS40_RGBToDIB.
constexpr std::uint32_t kDibKeepChannelOrder = 0x1;
constexpr std::uint32_t kDibKeepRowOrder = 0x2;

// Flag of IS40_AdjustGamma: correct the fourth channel of a 4-byte pixel as well.
constexpr std::uint32_t kGammaIncludeAlpha = 0x1;

// Flag of IS40_SharpenImage for 16-bit channels, which this library does not offer.
constexpr std::uint32_t kSharpen16Bit = 0x200;

// Flags of IS40_DrawSmoothTextOnRGB2.
constexpr std::uint32_t kTextFlipVertical = 0x2;
constexpr std::uint32_t kTextWide = 0x4;

// The area average of 3-byte pixels runs vectorised where the processor allows;
// false keeps it on the plain path, so that tests can hold both to the same
// results. Returns whether the vector path was allowed before.
bool AllowVectorAreaPath(bool allow);

}  // namespace raster

// A packed bitmap (40-byte header, rows bottom-up BGR padded to 4 bytes) of the
// image, in a block from DibAllocate when `dibOut` is null (free it with DibFree),
// or written into `dibOut`. Null on failure.
void* IS40_RGBToDIB(const unsigned char* rgb, std::int32_t width, std::int32_t height,
                    std::int32_t stride, void* dibOut, std::uint32_t flags);

// Modes: 0 clockwise, 1 half turn, 2 counter-clockwise. The image must be tightly
// packed; after modes 0 and 2 it is height wide and width high.
int IS40_QuickRotateImageInPlace(unsigned char* image, std::int32_t width, std::int32_t height,
                                 std::int32_t mode, std::int32_t bytes, std::uint32_t flags);

// `text` is a char string (or a char16_t string with raster::kTextWide); `format`
// is DrawTextEx's.
int IS40_DrawSmoothTextOnRGB2(unsigned char* rgb, std::int32_t width, std::int32_t height,
                              std::int32_t stride, const void* text, const LogFontA* font,
                              std::int32_t factor, const RasterRect* rect, std::uint32_t format,
                              std::uint32_t flags, std::uint32_t color);

// The right edge of `rect` is filled, the bottom edge is not.
int IS40_FillSolidRect(unsigned char* image, std::int32_t width, std::int32_t height,
                       std::int32_t bytes, std::int32_t stride, const RasterRect* rect,
                       std::uint32_t color, std::uint32_t flags);

int IS40_SharpenImage(const unsigned char* source, std::int32_t width, std::int32_t height,
                      std::int32_t bytes, std::int32_t sourceStride, unsigned char* destination,
                      std::int32_t destinationStride, std::int32_t level, std::uint32_t flags);

int IS40_AdjustGamma(unsigned char* image, std::int32_t width, std::int32_t height,
                     std::int32_t bytes, std::int32_t stride, double gamma, std::uint32_t flags);

int IS40_ResizeImage(const unsigned char* source, std::int32_t width, std::int32_t height,
                     std::int32_t sourceStride, unsigned char* destination,
                     std::int32_t destinationWidth, std::int32_t destinationHeight,
                     std::int32_t destinationStride, std::int32_t bytes, std::int32_t mode,
                     std::uint32_t flags);

}  // namespace tavlet
