#include "previews/dwg_dib.h"

#include <cstdlib>

#include "previews/dib.h"

namespace tavlet {
namespace {

std::uint32_t U32(const std::uint8_t* p) {
  return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}
std::uint16_t U16(const std::uint8_t* p) { return static_cast<std::uint16_t>(p[0] | (p[1] << 8)); }

constexpr std::uint32_t kLongHeader = 40;
constexpr std::uint32_t kShortHeader = 12;

}  // namespace

std::optional<DwgDibLayout> CheckDwgDib(const std::uint8_t* data, std::size_t size) {
  if (data == nullptr || size < 4) return std::nullopt;
  DwgDibLayout layout;
  std::uint32_t headerWord = U32(data);
  std::uint64_t clrUsed = 0;
  if (headerWord == kLongHeader) {
    if (size < kLongHeader) return std::nullopt;
    std::int32_t width = static_cast<std::int32_t>(U32(data + 4));
    std::int32_t height = static_cast<std::int32_t>(U32(data + 8));
    std::uint32_t compression = U32(data + 16);
    if (compression != 0 || width <= 0 || height == 0 || height == INT32_MIN) return std::nullopt;
    layout.width = width;
    layout.height = height;
    layout.bitCount = U16(data + 14);
    clrUsed = U32(data + 32);
    layout.headerSize = kLongHeader;
    layout.paletteEntrySize = 4;
  } else if (headerWord == kShortHeader) {
    if (size < kShortHeader) return std::nullopt;
    layout.longHeader = false;
    layout.width = U16(data + 4);
    layout.height = U16(data + 6);
    layout.bitCount = U16(data + 10);
    if (layout.width == 0 || layout.height == 0) return std::nullopt;
    layout.headerSize = kShortHeader;
    layout.paletteEntrySize = 3;
  } else {
    return std::nullopt;
  }
  switch (layout.bitCount) {
    case 1: layout.colorCount = 2; break;
    case 4: layout.colorCount = 16; break;
    case 8: layout.colorCount = 256; break;
    case 16: case 24: case 32: layout.colorCount = 0; break;
    default: return std::nullopt;
  }
  if (clrUsed != 0) {
    // The bitmap's rows are found past the colour table by a 16-bit offset, so a
    // table that pushes them beyond 64 KiB can't be drawn as stored.
    if (clrUsed > 0x4000) return std::nullopt;
    layout.colorCount = static_cast<std::uint32_t>(clrUsed);
  }
  std::uint64_t bitsOffset = layout.headerSize + std::uint64_t{layout.colorCount} * layout.paletteEntrySize;
  std::uint64_t stride = ((std::uint64_t(layout.width) * layout.bitCount + 31) / 32) * 4;
  std::uint64_t rows = static_cast<std::uint64_t>(std::llabs(layout.height));
  std::uint64_t imageBytes = stride * rows;
  if (bitsOffset > 0xFFFF || bitsOffset > size || imageBytes > size - bitsOffset) return std::nullopt;
  layout.bitsOffset = static_cast<std::size_t>(bitsOffset);
  layout.imageBytes = static_cast<std::size_t>(imageBytes);
  return layout;
}

// Once the layout is checked the shared palette helpers are safe to use.
std::uint32_t DwgDibColor(const std::uint8_t* data, const DwgDibLayout& layout, int index) {
  if (data == nullptr || index < 0 || static_cast<std::uint32_t>(index) >= layout.colorCount) return 0;
  return GetDibColor(data, static_cast<std::uint32_t>(index));
}

bool SetDwgDibColor(std::uint8_t* data, const DwgDibLayout& layout, int index, std::uint32_t color) {
  if (data == nullptr || index < 0 || static_cast<std::uint32_t>(index) >= layout.colorCount) return false;
  return SetDibColor(data, static_cast<std::uint32_t>(index), color);
}

}  // namespace tavlet
