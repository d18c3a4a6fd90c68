// Writes drawing files for tests: the head, the image block, bitmap and PNG
// entries, and a switch to break each field, so that every reader rule can be
// shown on a file made for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavlet::testing {

struct DibShape {
  int width = 4;
  int height = 3;
  int bitCount = 8;
  bool shortHeader = false;       // 12-byte core header, 3-byte palette entries
  std::uint32_t clrUsed = 0;      // written as is; 0 = the bit count's full table
  std::uint32_t compression = 0;
  std::vector<std::uint32_t> palette;  // 0x00BBGGRR; entries not given are PaletteColor(k)
  std::uint8_t pixel = 7;         // every pixel byte
  std::size_t cutRows = 0;        // bytes taken off the end, so the rows no longer fit
};

// A distinct colour per palette index, so recolouring shows which entries moved.
std::uint32_t PaletteColor(int index);
std::string MakeDib(const DibShape& shape);
// A small but well-formed PNG of the given size (grey, under 64 KiB of pixels).
std::string MakePng(int width, int height);

struct DwgEntryLayout {
  int code = 2;
  std::string data;
  std::optional<std::uint32_t> start;  // default: where the writer put the data
  std::optional<std::uint32_t> size;   // default: data.size()
};

DwgEntryLayout Entry(int code, std::string data, std::optional<std::uint32_t> start = {},
                     std::optional<std::uint32_t> size = {});

struct DwgLayout {
  std::string version = "AC1018";  // up to 7 bytes are written
  std::vector<DwgEntryLayout> entries;
  std::uint8_t formatByte = 0x19;
  std::optional<std::uint32_t> imageOffset;  // default: 0x40, after the head
  bool breakSentinel = false;
  std::optional<int> entryCount;   // default: entries.size(); written as a signed byte
  std::size_t padTo = 0;           // zero bytes appended up to this size
  std::optional<std::size_t> truncateTo;
};

std::string MakeDwg(const DwgLayout& layout);

// A drawing with one bitmap entry as the given release writes it: "AC1021" files
// get a header entry (code 1) first, as real ones have.
std::string MakeDwgWithBitmap(const std::string& version, const DibShape& dib, std::uint8_t formatByte = 0x19);

}  // namespace tavlet::testing
