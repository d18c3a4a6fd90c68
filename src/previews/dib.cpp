#include "previews/dib.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace tavlet {
namespace {

std::uint32_t Read32(const std::uint8_t* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}
std::uint16_t Read16(const std::uint8_t* p) {
  return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}
void Write32(std::uint8_t* p, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) p[i] = static_cast<std::uint8_t>(v >> (8 * i));
}
void Write16(std::uint8_t* p, std::uint16_t v) {
  p[0] = static_cast<std::uint8_t>(v);
  p[1] = static_cast<std::uint8_t>(v >> 8);
}

const std::uint8_t* Bytes(const void* dib) { return static_cast<const std::uint8_t*>(dib); }
bool IsLong(const void* dib) { return Read32(Bytes(dib)) == kDibInfoHeaderSize; }

// bcBitCount sits after bcSize, bcWidth, bcHeight and bcPlanes.
std::uint16_t BitCount(const void* dib) {
  return IsLong(dib) ? Read16(Bytes(dib) + 14) : Read16(Bytes(dib) + 10);
}

void* CallocBlock(std::size_t bytes) { return std::calloc(bytes == 0 ? 1 : bytes, 1); }
void FreeBlock(void* block) { std::free(block); }

std::atomic<void* (*)(std::size_t)> allocateBlock{&CallocBlock};
std::atomic<void (*)(void*)> releaseBlock{&FreeBlock};

}  // namespace

DibInfoHeader ReadDibInfoHeader(const void* dib) {
  const std::uint8_t* p = Bytes(dib);
  DibInfoHeader h;
  h.size = Read32(p);
  h.width = static_cast<std::int32_t>(Read32(p + 4));
  h.height = static_cast<std::int32_t>(Read32(p + 8));
  h.planes = Read16(p + 12);
  h.bitCount = Read16(p + 14);
  h.compression = Read32(p + 16);
  h.sizeImage = Read32(p + 20);
  h.xPelsPerMeter = static_cast<std::int32_t>(Read32(p + 24));
  h.yPelsPerMeter = static_cast<std::int32_t>(Read32(p + 28));
  h.clrUsed = Read32(p + 32);
  h.clrImportant = Read32(p + 36);
  return h;
}

void WriteDibInfoHeader(void* dib, const DibInfoHeader& h) {
  auto* p = static_cast<std::uint8_t*>(dib);
  Write32(p, h.size);
  Write32(p + 4, static_cast<std::uint32_t>(h.width));
  Write32(p + 8, static_cast<std::uint32_t>(h.height));
  Write16(p + 12, h.planes);
  Write16(p + 14, h.bitCount);
  Write32(p + 16, h.compression);
  Write32(p + 20, h.sizeImage);
  Write32(p + 24, static_cast<std::uint32_t>(h.xPelsPerMeter));
  Write32(p + 28, static_cast<std::uint32_t>(h.yPelsPerMeter));
  Write32(p + 32, h.clrUsed);
  Write32(p + 36, h.clrImportant);
}

std::int32_t DibWidth(const void* dib) {
  return IsLong(dib) ? static_cast<std::int32_t>(Read32(Bytes(dib) + 4)) : Read16(Bytes(dib) + 4);
}

std::int32_t DibHeight(const void* dib) {
  return IsLong(dib) ? static_cast<std::int32_t>(Read32(Bytes(dib) + 8)) : Read16(Bytes(dib) + 6);
}

std::uint32_t DibColorCount(const void* dib) {
  if (IsLong(dib)) {
    const std::uint32_t used = Read32(Bytes(dib) + 32);
    if (used != 0) return used;
  }
  switch (BitCount(dib)) {
    case 1: return 2;
    case 4: return 16;
    case 8: return 256;
    default: return 0;
  }
}

std::uint16_t DibPaletteSize(const void* dib) {
  return static_cast<std::uint16_t>(DibColorCount(dib) * (IsLong(dib) ? 4u : 3u));
}

const std::uint8_t* DibBits(const void* dib) {
  return Bytes(dib) + Read32(Bytes(dib)) + DibPaletteSize(dib);
}

std::uint8_t* DibBits(void* dib) {
  return const_cast<std::uint8_t*>(DibBits(static_cast<const void*>(dib)));
}

std::uint32_t GetDibColor(const void* dib, std::uint32_t index) {
  if (dib == nullptr || index >= DibColorCount(dib)) return 0;
  const bool isLong = IsLong(dib);
  const std::uint8_t* entry = Bytes(dib) + Read32(Bytes(dib)) + static_cast<std::size_t>(index) * (isLong ? 4u : 3u);
  return static_cast<std::uint32_t>(entry[2]) | static_cast<std::uint32_t>(entry[1]) << 8 |
         static_cast<std::uint32_t>(entry[0]) << 16;
}

bool SetDibColor(void* dib, std::uint32_t index, std::uint32_t color) {
  if (dib == nullptr || index >= DibColorCount(dib)) return false;
  const bool isLong = IsLong(dib);
  std::uint8_t* entry = static_cast<std::uint8_t*>(dib) + Read32(Bytes(dib)) + static_cast<std::size_t>(index) * (isLong ? 4u : 3u);
  entry[0] = static_cast<std::uint8_t>(color >> 16);
  entry[1] = static_cast<std::uint8_t>(color >> 8);
  entry[2] = static_cast<std::uint8_t>(color);
  if (isLong) entry[3] = 0;
  return true;
}

DibMemory SetDibMemory(DibMemory memory) {
  DibMemory previous{allocateBlock.exchange(memory.allocate), releaseBlock.exchange(memory.release)};
  return previous;
}

void* DibAllocate(std::size_t bytes) { return allocateBlock.load()(bytes); }

void DibFree(void* block) {
  if (block != nullptr) releaseBlock.load()(block);
}

}  // namespace tavlet
