// Two painting effects of the bar and its buttons, and the Win32 side of packed
// bitmap memory.
#pragma once

#include <windows.h>

namespace tavlet::win32 {

// AlphaBlend of msimg32.dll, looked up at run time: once at module load, freed at
// unload. FillAlphaRect loads it itself if nobody has.
void LoadAlphaBlend();
void UnloadAlphaBlend();
bool AlphaBlendAvailable();
// For tests: blend in software even where AlphaBlend is there.
void ForceAlphaBlendFallback(bool force);

// Covers `rect` with `color` at constant opacity `alpha` (0..255). Alpha 0 leaves the
// destination as it is on both paths. False when nothing could be painted or alpha
// is out of range.
bool FillAlphaRect(HDC dc, const RECT& rect, COLORREF color, int alpha);

// Covers `rect` with a checker of `color`, the other pixels left as they were.
bool HatchRect(HDC dc, const RECT& rect, COLORREF color);

// Packed bitmaps of the library go to global memory (GlobalAlloc, zeroed), so that
// they can be handed to anything that takes an HGLOBAL. Call once at start, before
// any bitmap is made.
void UseGlobalMemoryForDibs();

}  // namespace tavlet::win32
