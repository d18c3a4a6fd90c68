// The Win32 half of DwgThumbnail: painting with GDI (DrawDibDraw when a draw-DIB
// handle is given, StretchDIBits otherwise), the bitmap handle, and the background
// load on an idle-priority thread that repaints the notify window when done.
#pragma once

#include <windows.h>
#include <vfw.h>

#include "platform/win32/handles.h"
#include "previews/dwg_thumbnail.h"

namespace tavlet {

// Carries out a thumbnail's paint on a device context.
class GdiThumbnailCanvas : public ThumbnailCanvas {
 public:
  GdiThumbnailCanvas(HDC dc, HDRAWDIB drawDib) : dc_(dc), drawDib_(drawDib) {}
  void SaveState() override;
  void RestoreState() override;
  void FillRect(const PreviewRect& rect, std::uint32_t color) override;
  int TextHeight(std::string_view text) override;
  void DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t textColor,
                    std::uint32_t backColor) override;
  void DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode mode) override;

  HDC dc() const { return dc_; }

 private:
  HDC dc_;
  HDRAWDIB drawDib_;
  win32::SavedDcState savedState_;
};

PreviewRect ToPreviewRect(const RECT& rect);

// Paint(dc, rect, drawDib): `drawDib` from DrawDibOpen, or 0.
void PaintThumbnail(DwgThumbnail& thumbnail, HDC dc, const RECT& rect, HDRAWDIB drawDib);

// A device-dependent bitmap of the picture for `dc` (a screen context when null);
// 0 without a picture. The caller deletes it.
HBITMAP ThumbnailToBitmap(const DwgThumbnail& thumbnail, HDC dc);

// Makes the thumbnail load on its own thread when first painted, and repaint
// `itemRect` of `notifyWindow` (when it is still a window) once the load ends.
void SetBackgroundLoad(DwgThumbnail& thumbnail, HWND notifyWindow, const RECT& itemRect);

// Runs each load on a new thread at idle priority.
class ThreadLoadRunner : public ThumbnailLoadRunner {
 public:
  ~ThreadLoadRunner() override;
  bool Start(std::function<void()> work) override;
  void Join() override;

 private:
  static DWORD WINAPI ThreadMain(LPVOID parameter);
  win32::KernelHandle thread_;
};

}  // namespace tavlet
