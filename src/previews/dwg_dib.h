// Checked access to the packed bitmap of a drawing's thumbnail. The data comes from
// a file anyone may have written, so a bitmap is accepted only when its header,
// colour table and rows all lie inside the bytes read; after that the palette and
// the rows can be used without further checks through the shared packed-bitmap
// helpers (previews/dib.h), which trust their input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tavlet {

struct DwgDibLayout {
  bool longHeader = true;      // 40-byte BITMAPINFOHEADER, else 12-byte BITMAPCOREHEADER
  int width = 0;
  int height = 0;              // as stored; negative for rows top-down
  int bitCount = 0;
  std::uint32_t colorCount = 0;
  std::size_t headerSize = 0;
  std::size_t paletteEntrySize = 0;  // 4 for a long header, 3 for a short one
  std::size_t bitsOffset = 0;        // header + colour table
  std::size_t imageBytes = 0;        // rows, each padded to 4 bytes
};

// The layout when the bitmap is uncompressed and fits in `size` bytes; nothing
// otherwise.
std::optional<DwgDibLayout> CheckDwgDib(const std::uint8_t* data, std::size_t size);

// Palette entry as 0x00BBGGRR; 0 when `index` is not below the colour count.
std::uint32_t DwgDibColor(const std::uint8_t* data, const DwgDibLayout& layout, int index);
// Writes a palette entry; false when `index` is not below the colour count.
bool SetDwgDibColor(std::uint8_t* data, const DwgDibLayout& layout, int index, std::uint32_t color);

}  // namespace tavlet
