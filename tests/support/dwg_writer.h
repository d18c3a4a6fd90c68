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

struct DibSpec {
  int width = 4;
  int height = 3;
  int bitCount = 8;
  bool shortHeader = false;          // 12-byte core header, 3-byte palette entries
  std::uint32_t clrUsed = 0;         // written as is; 0 = the bit count's full table
  std::uint32_t compression = 0;
  // Palette as 0x00BBGGRR; when empty, entry k is DibSpecColor(k).
  std::vector<std::uint32_t> palette;
  std::uint8_t pixel = 7;            // every pixel byte
  std::size_t cutRows = 0;           // bytes taken off the end, so the rows no longer fit
};

// A distinct colour per palette index, so recolouring shows which entries moved.
std::uint32_t DibSpecColor(int index);
std::string MakeDib(const DibSpec& spec);
// A small but well-formed PNG of the given size (one grey row repeated).
std::string MakePng(int width, int height);

struct DwgEntrySpec {
  int code = 2;
  std::string data;
  std::optional<std::uint32_t> start;  // default: where the writer put the data
  std::optional<std::uint32_t> size;   // default: data.size()
};

DwgEntrySpec Entry(int code, std::string data);

struct DwgSpec {
  std::string version = "AC1018";      // up to 7 bytes are written
  std::uint8_t formatByte = 0x19;
  std::optional<std::uint32_t> imageOffset;  // default: 0x40, after the head
  bool breakSentinel = false;
  std::optional<int> entryCount;       // default: entries.size(); written as a signed byte
  std::vector<DwgEntrySpec> entries;
  std::size_t padTo = 0;               // zero bytes appended up to this size
  std::optional<std::size_t> truncateTo;
};

std::string MakeDwg(const DwgSpec& spec);

// A drawing with one bitmap entry as the given release writes it: "AC1021" files
// get a header entry (code 1) first, as real ones have.
std::string MakeDwgWithBitmap(const std::string& version, const DibSpec& dib, std::uint8_t formatByte = 0x19);

}  // namespace tavlet::testing
