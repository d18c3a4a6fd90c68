#include "platform/win32/dwg_thumbnail_win32.h"

#include <cstdlib>
#include <memory>

#include "platform/win32/raster_gdi.h"

namespace tavlet {

PreviewRect ToPreviewRect(const RECT& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

void GdiThumbnailCanvas::SaveState() { savedState_ = win32::SavedDcState(dc_); }

void GdiThumbnailCanvas::RestoreState() { savedState_.Restore(); }

void GdiThumbnailCanvas::FillRect(const PreviewRect& rect, std::uint32_t color) {
  RECT r{rect.left, rect.top, rect.right, rect.bottom};
  win32::GdiObject<HBRUSH> brush(CreateSolidBrush(color));
  ::FillRect(dc_, &r, brush.get());
}

int GdiThumbnailCanvas::TextHeight(std::string_view text) {
  SIZE size{};
  GetTextExtentPoint32A(dc_, text.data(), static_cast<int>(text.size()), &size);
  return size.cy;
}

void GdiThumbnailCanvas::DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t textColor,
                                      std::uint32_t backColor) {
  SetTextColor(dc_, textColor);
  SetBkColor(dc_, backColor);
  RECT r{band.left, band.top, band.right, band.bottom};
  DrawTextA(dc_, line.data(), static_cast<int>(line.size()), &r, DT_CENTER | DT_VCENTER | DT_SINGLELINE);
}

void GdiThumbnailCanvas::DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode mode) {
  SetStretchBltMode(dc_, static_cast<int>(mode));
  const void* bits = dib.data + dib.bitsOffset;
  const int height = std::abs(dib.height);
  const bool longHeader = dib.size >= sizeof(BITMAPINFOHEADER) &&
                          reinterpret_cast<const BITMAPINFOHEADER*>(dib.data)->biSize == sizeof(BITMAPINFOHEADER);
  // DrawDib only knows the long header; an old core-header picture goes the other way.
  if (drawDib_ != nullptr && longHeader) {
    // A draw-DIB handle keeps the colour table of the first picture it drew while
    // the format stays the same; every thumbnail has its own (recoloured) palette,
    // so the handle starts over for each one.
    DrawDibEnd(drawDib_);
    DrawDibDraw(drawDib_, dc_, dest.left, dest.top, dest.Width(), dest.Height(),
                const_cast<BITMAPINFOHEADER*>(reinterpret_cast<const BITMAPINFOHEADER*>(dib.data)),
                const_cast<void*>(bits), 0, 0, dib.width, height, DDF_SAME_HDC);
  } else {
    StretchDIBits(dc_, dest.left, dest.top, dest.Width(), dest.Height(), 0, 0, dib.width, height, bits,
                  reinterpret_cast<const BITMAPINFO*>(dib.data), DIB_RGB_COLORS, SRCCOPY);
  }
}

void PaintThumbnail(DwgThumbnail& thumbnail, HDC dc, const RECT& rect, HDRAWDIB drawDib) {
  GdiThumbnailCanvas canvas(dc, drawDib);
  thumbnail.Paint(canvas, ToPreviewRect(rect));
}

HBITMAP ThumbnailToBitmap(const DwgThumbnail& thumbnail, HDC dc) {
  if (!thumbnail.HasDib()) return nullptr;
  if (dc != nullptr) return IS40_DIBToHBITMAP(thumbnail.Dib().data, nullptr, dc);
  win32::ScreenDc screen;
  return IS40_DIBToHBITMAP(thumbnail.Dib().data, nullptr, screen.get());
}

void SetBackgroundLoad(DwgThumbnail& thumbnail, HWND notifyWindow, const RECT& itemRect) {
  thumbnail.backgroundLoad = true;
  thumbnail.itemRect = ToPreviewRect(itemRect);
  thumbnail.SetLoadRunner(std::make_unique<ThreadLoadRunner>());
  thumbnail.onLoaded = [notifyWindow](const PreviewRect& r) {
    if (notifyWindow != nullptr && IsWindow(notifyWindow)) {
      RECT rect{r.left, r.top, r.right, r.bottom};
      RedrawWindow(notifyWindow, &rect, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    }
  };
}

ThreadLoadRunner::~ThreadLoadRunner() { Join(); }

DWORD WINAPI ThreadLoadRunner::ThreadMain(LPVOID parameter) {
  std::unique_ptr<std::function<void()>> work(static_cast<std::function<void()>*>(parameter));
  try {
    (*work)();
  } catch (...) {
    // A load that runs out of memory leaves the status text; nothing to report.
  }
  return 0;
}

bool ThreadLoadRunner::Start(std::function<void()> work) {
  Join();
  auto* parameter = new std::function<void()>(std::move(work));
  thread_ = win32::KernelHandle(
      CreateThread(nullptr, 0, &ThreadMain, parameter, CREATE_SUSPENDED, nullptr));
  if (!thread_.valid()) {
    delete parameter;
    return false;
  }
  SetThreadPriority(thread_.get(), THREAD_PRIORITY_IDLE);
  ResumeThread(thread_.get());
  return true;
}

void ThreadLoadRunner::Join() {
  if (!thread_.valid()) return;
  HANDLE thread = thread_.get();
  // The loader ends with a repaint that the window's thread must answer; waiting
  // without taking sent messages would leave both threads waiting on each other.
  while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE) ==
         WAIT_OBJECT_0 + 1) {
    MSG message;
    PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }
  thread_.Close();
}

}  // namespace tavlet
