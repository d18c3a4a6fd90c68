#include "support/dwg_writer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavlet::testing {
namespace {

void Put16(std::string& out, std::uint16_t v) {
  out.push_back(static_cast<char>(v & 0xFF));
  out.push_back(static_cast<char>(v >> 8));
}
void Put32(std::string& out, std::uint32_t v) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<char>((v >> shift) & 0xFF));
}
void Set32(std::string& out, std::size_t at, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) out[at + i] = static_cast<char>((v >> (8 * i)) & 0xFF);
}
void Put32BE(std::string& out, std::uint32_t v) {
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
  Put32BE(out, static_cast<std::uint32_t>(data.size()));
  std::string body = std::string(type, 4) + data;
  out += body;
  Put32BE(out, Crc32(body));
}

std::uint32_t Adler32(const std::string& bytes) {
  std::uint32_t a = 1, b = 0;
  for (unsigned char c : bytes) {
    a = (a + c) % 65521;
    b = (b + a) % 65521;
  }
  return (b << 16) | a;
}

constexpr std::array<std::uint8_t, 16> kSentinel = {0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28,
                                                    0x9D, 0x57, 0xCA, 0x3F, 0x9D, 0x44, 0x10, 0x2B};

}  // namespace

std::uint32_t DibSpecColor(int index) {
  return static_cast<std::uint32_t>(index) | (static_cast<std::uint32_t>(255 - index) << 8) |
         (static_cast<std::uint32_t>((index * 7) & 0xFF) << 16);
}

std::string MakeDib(const DibSpec& spec) {
  std::string out;
  std::uint32_t colors = spec.clrUsed;
  if (colors == 0 && spec.bitCount <= 8) colors = 1u << spec.bitCount;
  if (spec.shortHeader) {
    Put32(out, 12);
    Put16(out, static_cast<std::uint16_t>(spec.width));
    Put16(out, static_cast<std::uint16_t>(spec.height));
    Put16(out, 1);
    Put16(out, static_cast<std::uint16_t>(spec.bitCount));
  } else {
    Put32(out, 40);
    Put32(out, static_cast<std::uint32_t>(spec.width));
    Put32(out, static_cast<std::uint32_t>(spec.height));
    Put16(out, 1);
    Put16(out, static_cast<std::uint16_t>(spec.bitCount));
    Put32(out, spec.compression);
    Put32(out, 0);  // image size
    Put32(out, 0);
    Put32(out, 0);
    Put32(out, spec.clrUsed);
    Put32(out, 0);
  }
  // A table far larger than any real one is declared but not written.
  std::uint32_t written = std::min<std::uint32_t>(colors, 4096);
  for (std::uint32_t i = 0; i < written; ++i) {
    std::uint32_t c = i < spec.palette.size() ? spec.palette[i] : DibSpecColor(static_cast<int>(i & 0xFF));
    out.push_back(static_cast<char>((c >> 16) & 0xFF));
    out.push_back(static_cast<char>((c >> 8) & 0xFF));
    out.push_back(static_cast<char>(c & 0xFF));
    if (!spec.shortHeader) out.push_back(0);
  }
  std::size_t stride = ((static_cast<std::size_t>(spec.width) * spec.bitCount + 31) / 32) * 4;
  std::size_t rows = static_cast<std::size_t>(spec.height < 0 ? -spec.height : spec.height);
  out.append(stride * rows, static_cast<char>(spec.pixel));
  out.resize(out.size() - std::min(spec.cutRows, out.size()));
  return out;
}

std::string MakePng(int width, int height) {
  std::string out("\x89PNG\r\n\x1a\n", 8);
  std::string ihdr;
  Put32BE(ihdr, static_cast<std::uint32_t>(width));
  Put32BE(ihdr, static_cast<std::uint32_t>(height));
  ihdr += std::string("\x08\x00\x00\x00\x00", 5);  // 8-bit grey
  PngChunk(out, "IHDR", ihdr);
  std::string raw;
  for (int y = 0; y < height; ++y) {
    raw.push_back(0);  // filter: none
    raw.append(static_cast<std::size_t>(width), static_cast<char>(0x80));
  }
  // Stored (uncompressed) deflate blocks of up to 65535 bytes.
  std::string z("\x78\x01", 2);
  for (std::size_t pos = 0; pos < raw.size() || pos == 0;) {
    std::size_t n = std::min<std::size_t>(65535, raw.size() - pos);
    bool last = pos + n >= raw.size();
    z.push_back(last ? 1 : 0);
    Put16(z, static_cast<std::uint16_t>(n));
    Put16(z, static_cast<std::uint16_t>(~n));
    z.append(raw, pos, n);
    pos += n;
    if (last) break;
  }
  Put32BE(z, Adler32(raw));
  PngChunk(out, "IDAT", z);
  PngChunk(out, "IEND", "");
  return out;
}

DwgEntrySpec Entry(int code, std::string data) {
  DwgEntrySpec entry;
  entry.code = code;
  entry.data = std::move(data);
  return entry;
}

std::string MakeDwg(const DwgSpec& spec) {
  std::uint32_t imageOffset = spec.imageOffset.value_or(0x40);
  std::string out(0x12, '\0');
  std::copy_n(spec.version.begin(), std::min<std::size_t>(spec.version.size(), 7), out.begin());
  Set32(out, 0x0D, imageOffset);
  out[0x11] = static_cast<char>(spec.formatByte);
  // An offset inside the head or far away is a broken file: no block is written.
  bool writeBlock = imageOffset >= out.size() && imageOffset < (1u << 24);
  if (writeBlock) out.resize(imageOffset, '\0');

  std::string block(kSentinel.begin(), kSentinel.end());
  if (spec.breakSentinel) block[15] = static_cast<char>(block[15] ^ 0xFF);
  Put32(block, 0);  // overall size, filled in below
  int count = spec.entryCount.value_or(static_cast<int>(spec.entries.size()));
  block.push_back(static_cast<char>(static_cast<signed char>(count)));
  std::size_t dataAt = imageOffset + block.size() + 9 * spec.entries.size();
  for (const DwgEntrySpec& entry : spec.entries) {
    block.push_back(static_cast<char>(entry.code));
    Put32(block, entry.start.value_or(static_cast<std::uint32_t>(dataAt)));
    Put32(block, entry.size.value_or(static_cast<std::uint32_t>(entry.data.size())));
    dataAt += entry.data.size();
  }
  for (const DwgEntrySpec& entry : spec.entries) block += entry.data;
  Set32(block, 16, static_cast<std::uint32_t>(block.size()));

  if (writeBlock) out += block;
  if (out.size() < spec.padTo) out.resize(spec.padTo, '\0');
  if (spec.truncateTo && *spec.truncateTo < out.size()) out.resize(*spec.truncateTo);
  return out;
}

std::string MakeDwgWithBitmap(const std::string& version, const DibSpec& dib, std::uint8_t formatByte) {
  DwgSpec spec;
  spec.version = version;
  spec.formatByte = formatByte;
  if (version == "AC1021") spec.entries.push_back(Entry(1, std::string(80, '\0')));
  spec.entries.push_back(Entry(2, MakeDib(dib)));
  return MakeDwg(spec);
}

}  // namespace tavlet::testing
