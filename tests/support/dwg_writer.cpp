#include "support/dwg_writer.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace tavlet::testing {
namespace {

void PutLE(std::string& out, std::uint32_t v, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>((v >> (8 * i)) & 0xFF));
}
void PutBE(std::string& out, std::uint32_t v) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<char>((v >> shift) & 0xFF));
}

std::uint32_t Crc32(const std::string& bytes) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char c : bytes) {
    crc ^= c;
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
  }
  return crc ^ 0xFFFFFFFFu;
}

void PngChunk(std::string& out, const char* type, const std::string& data) {
  PutBE(out, static_cast<std::uint32_t>(data.size()));
  std::string body = std::string(type, 4) + data;
  out += body;
  PutBE(out, Crc32(body));
}

constexpr std::string_view kSentinel("\x1F\x25\x6D\x07\xD4\x36\x28\x28\x9D\x57\xCA\x3F\x9D\x44\x10\x2B", 16);

}  // namespace

std::uint32_t PaletteColor(int index) {
  return static_cast<std::uint32_t>(index) | (static_cast<std::uint32_t>(255 - index) << 8) |
         (static_cast<std::uint32_t>((index * 7) & 0xFF) << 16);
}

std::string MakeDib(const DibShape& shape) {
  std::string out;
  const int field = shape.shortHeader ? 2 : 4;
  PutLE(out, shape.shortHeader ? 12 : 40, 4);
  PutLE(out, static_cast<std::uint32_t>(shape.width), field);
  PutLE(out, static_cast<std::uint32_t>(shape.height), field);
  PutLE(out, 1, 2);
  PutLE(out, static_cast<std::uint32_t>(shape.bitCount), 2);
  if (!shape.shortHeader) {
    PutLE(out, shape.compression, 4);
    out.append(12, '\0');  // image size and resolution
    PutLE(out, shape.clrUsed, 4);
    out.append(4, '\0');
  }
  std::uint32_t colors = shape.clrUsed;
  if (colors == 0 && shape.bitCount <= 8) colors = 1u << shape.bitCount;
  // A table far larger than any real one is declared but not written.
  for (std::uint32_t i = 0; i < std::min<std::uint32_t>(colors, 4096); ++i) {
    std::uint32_t c = i < shape.palette.size() ? shape.palette[i] : PaletteColor(static_cast<int>(i & 0xFF));
    PutLE(out, ((c >> 16) & 0xFF) | (c & 0xFF00) | ((c & 0xFF) << 16), shape.shortHeader ? 3 : 4);
  }
  std::size_t stride = ((static_cast<std::size_t>(shape.width) * shape.bitCount + 31) / 32) * 4;
  out.append(stride * static_cast<std::size_t>(std::abs(shape.height)), static_cast<char>(shape.pixel));
  out.resize(out.size() - std::min(shape.cutRows, out.size()));
  return out;
}

std::string MakePng(int width, int height) {
  std::string out("\x89PNG\r\n\x1a\n", 8), header, raw;
  PutBE(header, static_cast<std::uint32_t>(width));
  PutBE(header, static_cast<std::uint32_t>(height));
  header += std::string("\x08\x00\x00\x00\x00", 5);  // 8-bit grey
  PngChunk(out, "IHDR", header);
  for (int y = 0; y < height; ++y) raw += '\0' + std::string(static_cast<std::size_t>(width), '\x80');
  // One stored (uncompressed) deflate block, then the Adler-32: enough for the small pictures of tests.
  std::string z("\x78\x01\x01", 3);
  PutLE(z, static_cast<std::uint32_t>(raw.size() | (~raw.size() << 16)), 4);
  z += raw;
  std::uint32_t a = 1, b = 0;
  for (unsigned char c : raw) {
    a = (a + c) % 65521;
    b = (b + a) % 65521;
  }
  PutBE(z, (b << 16) | a);
  PngChunk(out, "IDAT", z);
  PngChunk(out, "IEND", "");
  return out;
}

DwgEntryLayout Entry(int code, std::string data, std::optional<std::uint32_t> start,
                     std::optional<std::uint32_t> size) {
  return DwgEntryLayout{code, std::move(data), start, size};
}

std::string MakeDwg(const DwgLayout& layout) {
  const std::uint32_t imageOffset = layout.imageOffset.value_or(0x40);
  std::string out = layout.version.substr(0, 7);
  out.resize(0x0D, '\0');
  PutLE(out, imageOffset, 4);
  out.push_back(static_cast<char>(layout.formatByte));
  // An offset inside the head or far away is a broken file: no block is written.
  if (imageOffset >= out.size() && imageOffset < (1u << 24)) {
    out.resize(imageOffset, '\0');
    std::string table, data;
    const std::size_t dataAt = imageOffset + 21 + 9 * layout.entries.size();
    for (const DwgEntryLayout& entry : layout.entries) {
      table.push_back(static_cast<char>(entry.code));
      PutLE(table, entry.start.value_or(static_cast<std::uint32_t>(dataAt + data.size())), 4);
      PutLE(table, entry.size.value_or(static_cast<std::uint32_t>(entry.data.size())), 4);
      data += entry.data;
    }
    out += kSentinel;
    if (layout.breakSentinel) out.back() = static_cast<char>(out.back() ^ 0xFF);
    PutLE(out, static_cast<std::uint32_t>(21 + table.size() + data.size()), 4);
    out.push_back(static_cast<char>(layout.entryCount.value_or(static_cast<int>(layout.entries.size()))));
    out += table + data;
  }
  if (out.size() < layout.padTo) out.resize(layout.padTo, '\0');
  if (layout.truncateTo && *layout.truncateTo < out.size()) out.resize(*layout.truncateTo);
  return out;
}

std::string MakeDwgWithBitmap(const std::string& version, const DibShape& dib, std::uint8_t formatByte) {
  DwgLayout layout;
  layout.version = version;
  layout.formatByte = formatByte;
  if (version == "AC1021") layout.entries.push_back(Entry(1, std::string(80, '\0')));
  layout.entries.push_back(Entry(2, MakeDib(dib)));
  return MakeDwg(layout);
}

}  // namespace tavlet::testing
