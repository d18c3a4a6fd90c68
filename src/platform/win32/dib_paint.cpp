#include "platform/win32/dib_paint.h"

#include <atomic>
#include <cstdint>
#include <mutex>

#include "platform/win32/handles.h"
#include "previews/dib.h"
#include "previews/dib_blend.h"

namespace tavlet::win32 {
namespace {

using AlphaBlendFunction = BOOL(WINAPI*)(HDC, int, int, int, int, HDC, int, int, int, int, BLENDFUNCTION);

std::mutex alphaLock;
// A plain handle rather than a Module: its destructor would run among the static
// destructors, under the loader lock, where FreeLibrary must not be called.
HMODULE alphaModule = nullptr;
std::atomic<AlphaBlendFunction> alphaBlend{nullptr};
std::atomic<bool> alphaLookedUp{false};
std::atomic<bool> forceFallback{false};

// A 24-bit top-down DIB section selected into a memory context of its own.
struct Section {
  MemoryDc dc{CreateCompatibleDC(nullptr)};
  std::uint8_t* bits = nullptr;  // before `bitmap`, which fills it
  GdiObject<HBITMAP> bitmap;
  SelectedObject selected;

  Section(int width, int height)
      : bitmap(Make(width, height, bits)), selected(dc.get(), bitmap.get()) {}
  bool ok() const { return bitmap.valid() && dc.valid() && bits != nullptr; }

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

  MemoryDc source(CreateCompatibleDC(dc));
  GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(dc, width, height));
  if (!source.valid() || !bitmap.valid()) return false;
  SelectedObject selected(source.get(), bitmap.get());
  {
    GdiObject<HBRUSH> brush(CreateSolidBrush(color));
    RECT area{0, 0, width, height};
    FillRect(source.get(), &area, brush.get());
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
  GdiObject<HBITMAP> pattern(CreateBitmap(8, 8, 1, 1, rows));
  if (!pattern.valid()) return false;
  GdiObject<HBRUSH> brush(CreatePatternBrush(pattern.get()));
  if (!brush.valid()) return false;

  SelectedObject selectedBrush(dc, brush.get());
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
  return true;
}

void UseGlobalMemoryForDibs() { SetDibMemory({&GlobalBlock, &FreeGlobalBlock}); }

}  // namespace tavlet::win32
