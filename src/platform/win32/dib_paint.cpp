#include "platform/win32/dib_paint.h"

#include <atomic>
#include <cstdint>
#include <mutex>

#include "previews/dib.h"
#include "previews/dib_blend.h"

namespace tavlet::win32 {
namespace {

using AlphaBlendFunction = BOOL(WINAPI*)(HDC, int, int, int, int, HDC, int, int, int, int, BLENDFUNCTION);

std::mutex alphaLock;
HMODULE alphaModule = nullptr;
std::atomic<AlphaBlendFunction> alphaBlend{nullptr};
std::atomic<bool> alphaLookedUp{false};
std::atomic<bool> forceFallback{false};

class MemoryDc {
 public:
  explicit MemoryDc(HDC compatibleWith) : dc_(CreateCompatibleDC(compatibleWith)) {}
  ~MemoryDc() {
    if (previous_ != nullptr) SelectObject(dc_, previous_);
    if (dc_ != nullptr) DeleteDC(dc_);
  }
  MemoryDc(const MemoryDc&) = delete;
  MemoryDc& operator=(const MemoryDc&) = delete;

  HDC get() const { return dc_; }
  void Select(HGDIOBJ object) {
    HGDIOBJ old = SelectObject(dc_, object);
    if (previous_ == nullptr) previous_ = old;
  }

 private:
  HDC dc_;
  HGDIOBJ previous_ = nullptr;
};

class GdiObject {
 public:
  explicit GdiObject(HGDIOBJ object) : object_(object) {}
  ~GdiObject() {
    if (object_ != nullptr) DeleteObject(object_);
  }
  GdiObject(const GdiObject&) = delete;
  GdiObject& operator=(const GdiObject&) = delete;
  HGDIOBJ get() const { return object_; }

 private:
  HGDIOBJ object_;
};

// A 24-bit top-down DIB section in a memory context of its own.
struct Section {
  MemoryDc dc{nullptr};
  std::uint8_t* bits = nullptr;  // before `bitmap`, which fills it
  GdiObject bitmap;

  Section(int width, int height) : bitmap(Make(width, height, bits)) {
    if (bitmap.get() != nullptr && dc.get() != nullptr) dc.Select(bitmap.get());
  }
  bool ok() const { return bitmap.get() != nullptr && dc.get() != nullptr && bits != nullptr; }

  static HBITMAP Make(int width, int height, std::uint8_t*& bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    void* pixels = nullptr;
    HBITMAP made = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    bits = static_cast<std::uint8_t*>(pixels);
    return made;
  }
};

bool SameShape(const DIBSECTION& a, const DIBSECTION& b) {
  return a.dsBm.bmWidth == b.dsBm.bmWidth && a.dsBm.bmHeight == b.dsBm.bmHeight &&
         a.dsBm.bmPlanes == 1 && b.dsBm.bmPlanes == 1 && a.dsBm.bmBitsPixel == 24 &&
         b.dsBm.bmBitsPixel == 24;
}

bool BlendInSoftware(HDC dc, const RECT& rect, HDC source, int alpha) {
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  Section front(width, height), back(width, height), result(width, height);
  if (!front.ok() || !back.ok() || !result.ok()) return false;

  SetStretchBltMode(front.dc.get(), COLORONCOLOR);
  SetStretchBltMode(back.dc.get(), COLORONCOLOR);
  StretchBlt(front.dc.get(), 0, 0, width, height, source, 0, 0, width, height, SRCCOPY);
  StretchBlt(back.dc.get(), 0, 0, width, height, dc, rect.left, rect.top, width, height, SRCCOPY);
  GdiFlush();

  DIBSECTION a{}, b{}, c{};
  if (GetObjectA(front.bitmap.get(), sizeof a, &a) != sizeof a ||
      GetObjectA(back.bitmap.get(), sizeof b, &b) != sizeof b ||
      GetObjectA(result.bitmap.get(), sizeof c, &c) != sizeof c || !SameShape(a, b) ||
      !SameShape(a, c)) {
    return false;
  }
  const std::size_t bytes = static_cast<std::size_t>(a.dsBm.bmWidthBytes) * height;
  if (!BlendShift8(front.bits, back.bits, result.bits, bytes, alpha)) return false;
  return BitBlt(dc, rect.left, rect.top, width, height, result.dc.get(), 0, 0, SRCCOPY) != FALSE;
}

void* GlobalBlock(std::size_t bytes) { return GlobalAlloc(GPTR, bytes == 0 ? 1 : bytes); }
void FreeGlobalBlock(void* block) { GlobalFree(block); }

}  // namespace

void LoadAlphaBlend() {
  std::lock_guard<std::mutex> guard(alphaLock);
  if (alphaLookedUp.load()) return;
  alphaModule = LoadLibraryA("msimg32.dll");
  if (alphaModule != nullptr) {
    alphaBlend.store(reinterpret_cast<AlphaBlendFunction>(
        reinterpret_cast<void*>(GetProcAddress(alphaModule, "AlphaBlend"))));
  }
  alphaLookedUp.store(true);
}

void UnloadAlphaBlend() {
  std::lock_guard<std::mutex> guard(alphaLock);
  alphaBlend.store(nullptr);
  if (alphaModule != nullptr) FreeLibrary(alphaModule);
  alphaModule = nullptr;
  alphaLookedUp.store(false);
}

bool AlphaBlendAvailable() {
  if (!alphaLookedUp.load()) LoadAlphaBlend();
  return alphaBlend.load() != nullptr;
}

void ForceAlphaBlendFallback(bool force) { forceFallback.store(force); }

bool FillAlphaRect(HDC dc, const RECT& rect, COLORREF color, int alpha) {
  if (dc == nullptr || alpha < 0 || alpha > 255) return false;
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  if (width <= 0 || height <= 0) return false;
  // Nothing shows through at 0; the software formula would still darken by 1/256.
  if (alpha == 0) return true;

  MemoryDc source(dc);
  GdiObject bitmap(CreateCompatibleBitmap(dc, width, height));
  if (source.get() == nullptr || bitmap.get() == nullptr) return false;
  source.Select(bitmap.get());
  {
    GdiObject brush(CreateSolidBrush(color));
    RECT area{0, 0, width, height};
    FillRect(source.get(), &area, static_cast<HBRUSH>(brush.get()));
  }

  AlphaBlendFunction blend = AlphaBlendAvailable() ? alphaBlend.load() : nullptr;
  if (blend != nullptr && !forceFallback.load()) {
    const BLENDFUNCTION function{AC_SRC_OVER, 0, static_cast<BYTE>(alpha), 0};
    return blend(dc, rect.left, rect.top, width, height, source.get(), 0, 0, width, height, function) != FALSE;
  }
  return BlendInSoftware(dc, rect, source.get(), alpha);
}

bool HatchRect(HDC dc, const RECT& rect, COLORREF color) {
  if (dc == nullptr) return false;
  static const WORD rows[8] = {0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA};
  GdiObject pattern(CreateBitmap(8, 8, 1, 1, rows));
  if (pattern.get() == nullptr) return false;
  GdiObject brush(CreatePatternBrush(static_cast<HBITMAP>(pattern.get())));
  if (brush.get() == nullptr) return false;

  HGDIOBJ previousBrush = SelectObject(dc, brush.get());
  const COLORREF previousBack = SetBkColor(dc, RGB(255, 255, 255));
  const COLORREF previousText = SetTextColor(dc, RGB(0, 0, 0));
  const int width = rect.right - rect.left;
  const int height = rect.bottom - rect.top;
  // Clear the pattern's 0 pixels to black (dest AND pattern), then lay the colour
  // on them (dest OR pattern); the 1 pixels pass through both unchanged.
  PatBlt(dc, rect.left, rect.top, width, height, 0xA000C9);
  SetBkColor(dc, RGB(0, 0, 0));
  SetTextColor(dc, color);
  PatBlt(dc, rect.left, rect.top, width, height, 0xFA0089);
  SetTextColor(dc, previousText);
  SetBkColor(dc, previousBack);
  SelectObject(dc, previousBrush);
  return true;
}

void UseGlobalMemoryForDibs() { SetDibMemory({&GlobalBlock, &FreeGlobalBlock}); }

}  // namespace tavlet::win32
