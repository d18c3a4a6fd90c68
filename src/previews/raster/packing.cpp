// IS40_RGBToDIB, and the reverse conversion used by IS40_HBITMAPToRGB.
#include <cstring>

#include "previews/dib.h"
#include "previews/raster/dib_pixels.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_checks.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace raster {
namespace {

// Where a mask's field lands when it is moved to the top of a byte.
struct MaskField {
  std::uint32_t mask = 0;
  int shift = 0;  // right shift to bring the field's low bit to bit 0
  int width = 0;  // bits in the field

  explicit MaskField(std::uint32_t m) : mask(m) {
    if (m == 0) return;
    while (((m >> shift) & 1u) == 0) ++shift;
    while (shift + width < 32 && ((m >> (shift + width)) & 1u) != 0) ++width;
  }
  std::uint8_t Extract(std::uint32_t pixel) const {
    if (width == 0) return 0;
    const std::uint32_t field = (pixel & mask) >> shift;
    return static_cast<std::uint8_t>(width <= 8 ? field << (8 - width) : field >> (width - 8));
  }
};

std::uint32_t ReadLe32(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

}  // namespace

std::int32_t DibToRgb(const void* dib, std::size_t blockBytes, unsigned char* rgbOut) {
  if (dib == nullptr || rgbOut == nullptr || blockBytes < kDibInfoHeaderSize) return kBadArgument;
  const DibInfoHeader header = ReadDibInfoHeader(dib);
  if (header.size != kDibInfoHeaderSize || header.width <= 0 || header.height == 0 ||
      header.height == INT32_MIN) {
    return kBadArgument;
  }
  const int bits = header.bitCount;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) {
    return kUnsupportedDepth;
  }
  const bool masks = header.compression == kDibBitfields;
  if (header.compression != 0 && !(masks && (bits == 16 || bits == 32))) {
    return kUnsupportedCompression;
  }

  std::uint64_t tableEntries;
  if (bits <= 8) {
    tableEntries = header.clrUsed != 0 ? header.clrUsed : (1u << bits);
  } else {
    tableEntries = static_cast<std::uint64_t>(header.clrUsed) + (masks ? 3 : 0);
  }
  const std::uint64_t width = static_cast<std::uint64_t>(header.width);
  const std::uint64_t height = static_cast<std::uint64_t>(header.height < 0 ? -static_cast<std::int64_t>(header.height) : header.height);
  const std::uint64_t stride = DibStride(header.width, bits);
  const std::uint64_t bitsOffset = kDibInfoHeaderSize + tableEntries * 4;
  if (bitsOffset + stride * height > blockBytes) return kBadArgument;

  const auto* block = static_cast<const std::uint8_t*>(dib);
  const std::uint8_t* table = block + kDibInfoHeaderSize;
  const std::uint8_t* pixels = block + bitsOffset;
  const std::uint32_t colours = bits <= 8 ? static_cast<std::uint32_t>(tableEntries) : 0;

  // Bitfields masks sit where the colour table would begin; 5-5-5 is the default.
  MaskField red(0x7C00), green(0x03E0), blue(0x001F);
  if (masks) {
    red = MaskField(ReadLe32(table));
    green = MaskField(ReadLe32(table + 4));
    blue = MaskField(ReadLe32(table + 8));
  }

  for (std::uint64_t y = 0; y < height; ++y) {
    const std::uint64_t sourceRow = header.height > 0 ? height - 1 - y : y;
    const std::uint8_t* in = pixels + sourceRow * stride;
    std::uint8_t* out = rgbOut + y * width * 3;
    for (std::uint64_t x = 0; x < width; ++x, out += 3) {
      switch (bits) {
        case 1: case 4: case 8: {
          const unsigned perByte = 8 / bits;
          const unsigned shift = static_cast<unsigned>(8 - bits - (x % perByte) * bits);
          const std::uint32_t index = (in[x / perByte] >> shift) & ((1u << bits) - 1);
          if (index < colours) {
            const std::uint8_t* entry = table + index * 4;
            out[0] = entry[2];
            out[1] = entry[1];
            out[2] = entry[0];
          } else {
            out[0] = out[1] = out[2] = 0;
          }
          break;
        }
        case 16: {
          const std::uint32_t v = static_cast<std::uint32_t>(in[x * 2] | in[x * 2 + 1] << 8);
          if (masks) {
            out[0] = red.Extract(v);
            out[1] = green.Extract(v);
            out[2] = blue.Extract(v);
          } else {
            out[0] = static_cast<std::uint8_t>(((v >> 10) & 31) * 255 / 31);
            out[1] = static_cast<std::uint8_t>(((v >> 5) & 31) * 255 / 31);
            out[2] = static_cast<std::uint8_t>((v & 31) * 255 / 31);
          }
          break;
        }
        case 24:
          out[0] = in[x * 3 + 2];
          out[1] = in[x * 3 + 1];
          out[2] = in[x * 3];
          break;
        default:  // 32: bytes 2, 1, 0; the fourth is dropped
          out[0] = in[x * 4 + 2];
          out[1] = in[x * 4 + 1];
          out[2] = in[x * 4];
          break;
      }
    }
  }
  return kOk;
}

}  // namespace raster

void* IS40_RGBToDIB(const unsigned char* rgb, std::int32_t width, std::int32_t height,
                    std::int32_t stride, void* dibOut, std::uint32_t flags) {
  using namespace raster;
  RasterCall call("IS40_RGBToDIB");
  if (!IsPixelBuffer(rgb, width, height, 3, stride)) {
    call.Finish(kBadArgument);
    return nullptr;
  }
  const std::uint64_t rowBytes = DibStride(width, 24);
  const std::uint64_t blockBytes = rowBytes * static_cast<std::uint64_t>(height) + kDibInfoHeaderSize;
  void* block = dibOut;
  if (block == nullptr) {
    if (blockBytes >= kMaxDibBlock) {
      call.Finish(kOutOfMemory);
      return nullptr;
    }
    block = DibAllocate(static_cast<std::size_t>(blockBytes));
    if (block == nullptr) {
      call.Finish(kOutOfMemory);
      return nullptr;
    }
  }

  DibInfoHeader header;
  header.width = width;
  header.height = height;
  header.bitCount = 24;
  header.sizeImage = static_cast<std::uint32_t>(rowBytes * static_cast<std::uint64_t>(height));
  WriteDibInfoHeader(block, header);

  const bool swap = (flags & kDibKeepChannelOrder) == 0;
  const bool flip = (flags & kDibKeepRowOrder) == 0;
  std::uint8_t* rows = static_cast<std::uint8_t*>(block) + kDibInfoHeaderSize;
  for (std::int32_t y = 0; y < height; ++y) {
    const std::uint8_t* in = rgb + static_cast<std::size_t>(y) * stride;
    std::uint8_t* out = rows + static_cast<std::size_t>(flip ? height - 1 - y : y) * rowBytes;
    if (swap) {
      for (std::int32_t x = 0; x < width; ++x, in += 3, out += 3) {
        out[0] = in[2];
        out[1] = in[1];
        out[2] = in[0];
      }
    } else {
      std::memcpy(out, in, static_cast<std::size_t>(width) * 3);
    }
  }
  call.Finish(kOk);
  return block;
}

}  // namespace tavlet
