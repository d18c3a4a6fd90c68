// Packed device-independent bitmaps: a header, a colour table, then the rows, in
// one block. The first 32-bit word tells the header: 40 is the long
// BITMAPINFOHEADER, anything else is read as the 12-byte BITMAPCOREHEADER, which is
// how thumbnails of old drawings come. All fields are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tavlet {

constexpr std::uint32_t kDibInfoHeaderSize = 40;
constexpr std::uint32_t kDibCoreHeaderSize = 12;
constexpr std::uint32_t kDibBitfields = 3;  // biCompression of 16/32-bit masks

// The fields of a long header, read field by field.
struct DibInfoHeader {
  std::uint32_t size = kDibInfoHeaderSize;
  std::int32_t width = 0;
  std::int32_t height = 0;  // positive: rows bottom-up
  std::uint16_t planes = 1;
  std::uint16_t bitCount = 0;
  std::uint32_t compression = 0;
  std::uint32_t sizeImage = 0;
  std::int32_t xPelsPerMeter = 0;
  std::int32_t yPelsPerMeter = 0;
  std::uint32_t clrUsed = 0;
  std::uint32_t clrImportant = 0;
};

DibInfoHeader ReadDibInfoHeader(const void* dib);
void WriteDibInfoHeader(void* dib, const DibInfoHeader& header);

// Bytes of one row: ((width x bits + 31) / 32) x 4.
constexpr std::uint64_t DibStride(std::int64_t width, std::int64_t bitCount) {
  return static_cast<std::uint64_t>((width * bitCount + 31) / 32) * 4;
}

std::int32_t DibWidth(const void* dib);
std::int32_t DibHeight(const void* dib);
std::uint32_t DibColorCount(const void* dib);
// Colour table bytes, kept in 16 bits as the bitmap code always has.
std::uint16_t DibPaletteSize(const void* dib);
const std::uint8_t* DibBits(const void* dib);
std::uint8_t* DibBits(void* dib);

// A palette entry as 0x00BBGGRR; 0 for a null block, no palette or an index out of range.
std::uint32_t GetDibColor(const void* dib, std::uint32_t index);
bool SetDibColor(void* dib, std::uint32_t index, std::uint32_t color);

// Memory of packed bitmaps. Blocks are zeroed. The Win32 layer swaps in global
// memory at start-up (before any bitmap is made), so that a block can go wherever
// an HGLOBAL is expected; everything else frees through DibFree.
struct DibMemory {
  void* (*allocate)(std::size_t bytes);  // zeroed block or null
  void (*release)(void* block);
};
DibMemory SetDibMemory(DibMemory memory);  // returns the previous pair
void* DibAllocate(std::size_t bytes);
void DibFree(void* block);

}  // namespace tavlet
