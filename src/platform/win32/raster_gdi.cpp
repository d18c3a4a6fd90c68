#include "platform/win32/raster_gdi.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32/handles.h"
#include "previews/dib.h"
#include "previews/raster/dib_pixels.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using namespace raster;
using win32::GdiObject;
using win32::MemoryDc;
using win32::SelectedObject;

static_assert(sizeof(LOGFONTA) == sizeof(LogFontA), "LogFontA mirrors LOGFONTA");

// A BITMAPINFO with room for a full colour table or three masks.
struct InfoWithTable {
  BITMAPINFOHEADER header;
  RGBQUAD colors[256 + 3];
};

// A palette selected and realised for the length of a call; deleted afterwards
// when it was made here.
class PaletteScope {
 public:
  PaletteScope(HDC dc, HPALETTE palette, bool owned) : dc_(dc), palette_(palette), owned_(owned) {
    if (palette_ != nullptr) {
      previous_ = SelectPalette(dc_, palette_, FALSE);
      RealizePalette(dc_);
    }
  }
  ~PaletteScope() {
    if (previous_ != nullptr) SelectPalette(dc_, previous_, FALSE);
    if (owned_ && palette_ != nullptr) DeleteObject(palette_);
  }
  PaletteScope(const PaletteScope&) = delete;
  PaletteScope& operator=(const PaletteScope&) = delete;

 private:
  HDC dc_;
  HPALETTE palette_;
  bool owned_;
  HPALETTE previous_ = nullptr;
};

bool IsPaletteDevice(HDC dc) { return (GetDeviceCaps(dc, RASTERCAPS) & RC_PALETTE) != 0; }

HPALETTE PaletteFromEntries(const PALETTEENTRY* entries, int count) {
  std::vector<std::uint8_t> storage(sizeof(LOGPALETTE) + sizeof(PALETTEENTRY) * count);
  auto* palette = reinterpret_cast<LOGPALETTE*>(storage.data());
  palette->palVersion = 0x300;
  palette->palNumEntries = static_cast<WORD>(count);
  std::memcpy(palette->palPalEntry, entries, sizeof(PALETTEENTRY) * count);
  return CreatePalette(palette);
}

std::int32_t BitmapToRgb(HBITMAP bitmap, HDC dc, HPALETTE palette, unsigned char* rgbOut) {
  if (dc == nullptr || bitmap == nullptr || rgbOut == nullptr) return kBadArgument;
  if ((GetDeviceCaps(dc, RASTERCAPS) & RC_DI_BITMAP) == 0) return kNoBitmapTransfer;

  HPALETTE made = nullptr;
  if (palette == nullptr && IsPaletteDevice(dc)) {
    PALETTEENTRY entries[255];
    if (GetSystemPaletteEntries(dc, 0, 255, entries) != 0) made = PaletteFromEntries(entries, 255);
  }
  PaletteScope paletteScope(dc, palette != nullptr ? palette : made, made != nullptr);

  BITMAP shape{};
  if (GetObjectA(bitmap, sizeof shape, &shape) == 0 || shape.bmWidth <= 0 || shape.bmHeight <= 0) {
    return kReadBitsFailed;
  }
  InfoWithTable info{};
  info.header.biSize = sizeof(BITMAPINFOHEADER);
  // Asked with a bit count of 0, GetDIBits tells the bitmap's own format, masks included.
  if (GetDIBits(dc, bitmap, 0, 0, nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS) == 0) {
    return kReadBitsFailed;
  }
  int bits = shape.bmBitsPixel * shape.bmPlanes;
  if (bits == 15) bits = 16;
  if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return kUnsupportedDepth;
  bool masks = bits == 16 && info.header.biCompression == BI_BITFIELDS;

  std::memset(&info, 0, sizeof info);
  info.header.biSize = sizeof(BITMAPINFOHEADER);
  info.header.biWidth = shape.bmWidth;
  info.header.biHeight = shape.bmHeight;
  info.header.biPlanes = 1;
  info.header.biBitCount = static_cast<WORD>(bits);
  info.header.biCompression = masks ? BI_BITFIELDS : BI_RGB;
  if (masks) {
    // Fills the three masks.
    if (GetDIBits(dc, bitmap, 0, 0, nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS) == 0) {
      return kReadBitsFailed;
    }
    info.header.biHeight = shape.bmHeight;
    // Masks of plain 5-5-5 say nothing that the uncompressed format doesn't; the
    // bits are then read uncompressed, and each field scaled by 255 / 31.
    DWORD fields[3];
    std::memcpy(fields, info.colors, sizeof fields);
    if (fields[0] == 0x7C00 && fields[1] == 0x03E0 && fields[2] == 0x001F) {
      masks = false;
      info.header.biCompression = BI_RGB;
      std::memset(info.colors, 0, sizeof fields);
    }
  }

  const std::size_t tableBytes = bits <= 8 ? (std::size_t{1} << bits) * 4 : masks ? 12 : 0;
  const std::size_t stride = static_cast<std::size_t>(DibStride(shape.bmWidth, bits));
  const std::size_t imageBytes = stride * static_cast<std::size_t>(shape.bmHeight);
  std::vector<std::uint8_t> block;
  try {
    block.resize(40 + tableBytes + imageBytes);
  } catch (const std::bad_alloc&) {
    return kOutOfMemory;
  }
  std::uint8_t* pixels = block.data() + 40 + tableBytes;
  if (GetDIBits(dc, bitmap, 0, static_cast<UINT>(shape.bmHeight), pixels,
                reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS) == 0) {
    return kReadBitsFailed;
  }
  // The packed copy is read with a full colour table whatever GetDIBits put in biClrUsed.
  info.header.biClrUsed = 0;
  info.header.biSizeImage = static_cast<DWORD>(imageBytes);
  std::memcpy(block.data(), &info.header, 40);
  std::memcpy(block.data() + 40, info.colors, tableBytes);
  return DibToRgb(block.data(), block.size(), rgbOut);
}

std::int32_t DibToBitmap(const void* dib, HPALETTE palette, HDC dc, const RasterContext& context,
                         HBITMAP& result) {
  if (dib == nullptr) return kBadArgument;
  const DibInfoHeader header = ReadDibInfoHeader(dib);
  if (header.size != kDibInfoHeaderSize) return kBadArgument;

  std::uint64_t colours;
  if (header.bitCount <= 8) {
    colours = header.clrUsed != 0 ? header.clrUsed : (std::uint64_t{1} << header.bitCount);
  } else {
    colours = static_cast<std::uint64_t>(header.clrUsed) + (header.compression == BI_BITFIELDS ? 3 : 0);
  }
  const auto* info = static_cast<const BITMAPINFO*>(dib);
  const auto* table = static_cast<const std::uint8_t*>(dib) + kDibInfoHeaderSize;
  const std::uint8_t* bits = table + colours * 4;

  HDC use = dc;
  std::optional<win32::ScreenDc> screen;
  MemoryDc memory;
  if (use == nullptr) {
    // A screen context would make a 1-bit bitmap in colour; a memory one keeps it 1-bit.
    if (header.bitCount == 1) {
      memory = MemoryDc(CreateCompatibleDC(nullptr));
      use = memory.get();
    } else {
      use = screen.emplace().get();
    }
    if (use == nullptr) return kNoDeviceContext;
  }

  HPALETTE made = nullptr;
  if (palette == nullptr && IsPaletteDevice(use) && header.bitCount <= 8) {
    const int count = static_cast<int>(colours > 256 ? 256 : colours);
    std::vector<PALETTEENTRY> entries(count);
    for (int i = 0; i < count; ++i) {
      entries[i] = {table[i * 4 + 2], table[i * 4 + 1], table[i * 4], 0};
    }
    made = PaletteFromEntries(entries.data(), count);
  }
  std::int32_t code = kOk;
  {
    PaletteScope paletteScope(use, palette != nullptr ? palette : made, made != nullptr);
    if (context.useDibSections != 0) {
      void* sectionBits = nullptr;
      result = CreateDIBSection(use, info, DIB_RGB_COLORS, &sectionBits, nullptr, 0);
      if (result == nullptr || sectionBits == nullptr) {
        code = kCreateDibSectionFailed;
      } else {
        const std::int64_t rows = header.height < 0 ? -static_cast<std::int64_t>(header.height) : header.height;
        std::memcpy(sectionBits, bits, DibStride(header.width, header.bitCount) * rows);
      }
    } else {
      result = CreateDIBitmap(use, &info->bmiHeader, CBM_INIT, bits, info, DIB_RGB_COLORS);
      if (result == nullptr) code = kCreateBitmapFailed;
    }
  }
  return code;
}

std::int32_t DrawPixels(HDC dc, const unsigned char* rgb, std::int32_t width, std::int32_t height,
                        std::int32_t stride, std::int32_t x, std::int32_t y, HPALETTE palette) {
  if (dc == nullptr || rgb == nullptr || width <= 0 || height <= 0 ||
      static_cast<std::int64_t>(width) * 3 > stride) {
    return kBadArgument;
  }
  void* dib = IS40_RGBToDIB(rgb, width, height, stride, nullptr, 0);
  if (dib == nullptr) return kOutOfMemory;
  GdiObject<HBITMAP> bitmap(IS40_DIBToHBITMAP(dib, palette, dc));
  DibFree(dib);
  if (!bitmap.valid()) return kCreateBitmapFailed;
  MemoryDc memory(CreateCompatibleDC(dc));
  if (!memory.valid()) return kNoDeviceContext;
  SelectedObject selected(memory.get(), bitmap.get());
  return BitBlt(dc, x, y, width, height, memory.get(), 0, 0, SRCCOPY) ? kOk : kNoBitmapTransfer;
}

}  // namespace

int IS40_HBITMAPToRGB(HBITMAP bitmap, HDC dc, HPALETTE palette, unsigned char* rgbOut) {
  RasterCall call("IS40_HBITMAPToRGB");
  return call.Finish(BitmapToRgb(bitmap, dc, palette, rgbOut));
}

HBITMAP IS40_DIBToHBITMAP(const void* dib, HPALETTE palette, HDC dc) {
  RasterCall call("IS40_DIBToHBITMAP");
  HBITMAP result = nullptr;
  const std::int32_t code = DibToBitmap(dib, palette, dc, call.Context(), result);
  if (code != kOk && result != nullptr) {
    DeleteObject(result);
    result = nullptr;
  }
  call.Finish(code);
  return result;
}

int IS40_DrawRGB(HDC dc, const unsigned char* rgb, std::int32_t width, std::int32_t height,
                 std::int32_t stride, std::int32_t x, std::int32_t y, HPALETTE palette) {
  RasterCall call("IS40_DrawRGB");
  return call.Finish(DrawPixels(dc, rgb, width, height, stride, x, y, palette));
}

namespace win32 {

LOGFONTA ToLogFont(const LogFontA& font) {
  LOGFONTA out;
  std::memcpy(&out, &font, sizeof out);
  return out;
}

LogFontA FromLogFont(const LOGFONTA& font) {
  LogFontA out;
  std::memcpy(static_cast<void*>(&out), &font, sizeof out);
  return out;
}

std::int32_t GdiTextMaskPort::DrawMask(const void* text, bool wide, const LogFontA& font,
                                       std::int32_t width, std::int32_t height, std::uint32_t format,
                                       MonoMask& mask) {
  MemoryDc memory(CreateCompatibleDC(nullptr));
  if (!memory.valid()) return kNoDeviceContext;

  // A top-down 1-bit section with black at 0 and white at 1: ink reads back as set bits.
  struct {
    BITMAPINFOHEADER header;
    RGBQUAD colors[2];
  } info{};
  info.header.biSize = sizeof(BITMAPINFOHEADER);
  info.header.biWidth = width;
  info.header.biHeight = -height;
  info.header.biPlanes = 1;
  info.header.biBitCount = 1;
  info.colors[1] = {255, 255, 255, 0};
  void* bits = nullptr;
  GdiObject<HBITMAP> bitmap(CreateDIBSection(
      memory.get(), reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap.valid() || bits == nullptr) return kNoDeviceContext;
  const LOGFONTA logFont = ToLogFont(font);
  GdiObject<HFONT> fontHandle(CreateFontIndirectA(&logFont));
  if (!fontHandle.valid()) return kNoFont;

  SelectedObject selectedBitmap(memory.get(), bitmap.get());
  SelectedObject selectedFont(memory.get(), fontHandle.get());
  PatBlt(memory.get(), 0, 0, width, height, BLACKNESS);
  SetTextColor(memory.get(), RGB(255, 255, 255));
  SetBkMode(memory.get(), TRANSPARENT);
  RECT area{0, 0, width, height};
  if (wide) {
    std::wstring copy(static_cast<const wchar_t*>(text));
    DrawTextExW(memory.get(), copy.data(), -1, &area, format, nullptr);
  } else {
    // DrawTextEx may write into its text with some formats; it gets a copy.
    std::string copy(static_cast<const char*>(text));
    DrawTextExA(memory.get(), copy.data(), -1, &area, format, nullptr);
  }
  GdiFlush();
  mask.width = width;
  mask.height = height;
  mask.rowBytes = static_cast<std::int32_t>(DibStride(width, 1));
  const auto* begin = static_cast<const std::uint8_t*>(bits);
  mask.bits.assign(begin, begin + static_cast<std::size_t>(mask.rowBytes) * height);
  return kOk;
}

void InstallGdiTextMask() {
  static GdiTextMaskPort port;
  SetTextMaskPort(&port);
}

}  // namespace win32
}  // namespace tavlet
