// One paint of the preview strip with 30 cells on real GDI, into a memory bitmap
// the size of the strip: the recording benchmark's scene through the GdiCanvas
// (fills, frames, labels, DrawDibDraw stretches of 160x90 thumbnails, the
// translucent tint). A plain program, for Wine, where Google Benchmark isn't built.
// The glyph bitmaps live in the module's resources, not in this program: the
// marks are left out here.
#include <windows.h>
#include <vfw.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "paint_scene.h"
#include "platform/win32/bar/gdi_canvas.h"

namespace {

constexpr int kPaints = 200;
constexpr int kRounds = 5;

double Milliseconds(const LARGE_INTEGER& from, const LARGE_INTEGER& to) {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return 1000.0 * static_cast<double>(to.QuadPart - from.QuadPart) / static_cast<double>(frequency.QuadPart);
}

}  // namespace

int main() {
  using namespace tavlet;
  bench::PaintScene scene;
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, scene.client.Width(), scene.client.Height());
  ReleaseDC(nullptr, screen);
  HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
  HGDIOBJ oldFont = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
  HDRAWDIB drawDib = DrawDibOpen();
  win32::GdiCanvas canvas(dc, nullptr, drawDib);
  const bar::StripPaintInputs inputs = scene.Inputs();

  std::vector<double> perPaint;
  for (int round = 0; round < kRounds; ++round) {
    LARGE_INTEGER start, end;
    QueryPerformanceCounter(&start);
    for (int i = 0; i < kPaints; ++i) bar::PaintStrip(canvas, inputs, scene.list, scene.layout, {});
    GdiFlush();
    QueryPerformanceCounter(&end);
    perPaint.push_back(Milliseconds(start, end) / kPaints);
  }
  std::sort(perPaint.begin(), perPaint.end());
  std::printf("paint of %d cells on GDI (memory bitmap %ldx%ld): median %.3f ms, best %.3f ms a paint\n",
              bench::PaintScene::kCells, scene.client.Width(), scene.client.Height(), perPaint[perPaint.size() / 2],
              perPaint.front());

  DrawDibClose(drawDib);
  SelectObject(dc, oldFont);
  SelectObject(dc, oldBitmap);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return 0;
}
