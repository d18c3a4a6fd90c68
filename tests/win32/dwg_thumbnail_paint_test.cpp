#include <gtest/gtest.h>

#include <windows.h>

#include "platform/win32/dwg_thumbnail_win32.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet {
namespace {

// A 24-bit top-down DIB section selected into a memory context, read back by pixel.
class MemoryCanvas {
 public:
  MemoryCanvas(int width, int height) : width_(width), height_(height) {
    dc_ = CreateCompatibleDC(nullptr);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, reinterpret_cast<void**>(&bits_), nullptr, 0);
    old_ = SelectObject(dc_, bitmap_);
    RECT all{0, 0, width, height};
    HBRUSH grey = CreateSolidBrush(0x00808080);
    FillRect(dc_, &all, grey);
    DeleteObject(grey);
  }
  ~MemoryCanvas() {
    SelectObject(dc_, old_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  HDC dc() const { return dc_; }
  // 0x00BBGGRR, like COLORREF.
  std::uint32_t Pixel(int x, int y) const {
    GdiFlush();
    const std::uint8_t* p = bits_ + y * (((width_ * 3) + 3) & ~3) + x * 3;
    return p[2] | (p[1] << 8) | (p[0] << 16);
  }
  int CountInRows(int top, int bottom, std::uint32_t color) const {
    int n = 0;
    for (int y = top; y < bottom; ++y) {
      for (int x = 0; x < width_; ++x) n += Pixel(x, y) == color ? 1 : 0;
    }
    return n;
  }

 private:
  int width_, height_;
  HDC dc_ = nullptr;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ old_ = nullptr;
  std::uint8_t* bits_ = nullptr;
};

std::string WideDrawing(std::uint32_t colour) {
  testing::DibSpec dib;
  dib.width = 4;
  dib.height = 2;
  dib.palette.assign(256, 0);
  dib.palette[7] = colour;
  dib.pixel = 7;
  return testing::MakeDwgWithBitmap("AC1018", dib);
}

TEST(DwgThumbnailPaint, PictureIsCentredOnTheBackgroundByBothPaths) {
  const std::uint32_t kPicture = 0x0030A050;
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\wide.dwg", WideDrawing(kPicture));
  HDRAWDIB drawDib = DrawDibOpen();
  ASSERT_NE(drawDib, nullptr);
  for (HDRAWDIB path : {static_cast<HDRAWDIB>(nullptr), drawDib}) {
    SCOPED_TRACE(path == nullptr ? "StretchDIBits" : "DrawDibDraw");
    DwgThumbnail thumbnail(fs);
    ASSERT_TRUE(thumbnail.Load("C:\\d\\wide.dwg", true));
    MemoryCanvas canvas(40, 40);
    PaintThumbnail(thumbnail, canvas.dc(), RECT{0, 0, 40, 40}, path);
    // 4x2 in 40x40: rows 10 to 29 hold the picture, the rest is the black background.
    EXPECT_EQ(canvas.CountInRows(0, 10, 0), 400);
    EXPECT_EQ(canvas.CountInRows(10, 30, kPicture), 800);
    EXPECT_EQ(canvas.CountInRows(30, 40, 0), 400);
  }
  DrawDibClose(drawDib);
}

TEST(DwgThumbnailPaint, StatusTextIsRedOnTheBackgroundInTheMiddle) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\none.dwg", testing::MakeDwg(testing::DwgSpec{}));
  DwgThumbnail thumbnail(fs);
  thumbnail.SetInitialBackground(0x00FFFFFF);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\none.dwg", true));
  MemoryCanvas canvas(120, 120);
  PaintThumbnail(thumbnail, canvas.dc(), RECT{0, 0, 120, 120}, nullptr);
  const std::uint32_t kRed = 0x000000FF, kWhite = 0x00FFFFFF;
  EXPECT_GT(canvas.CountInRows(40, 80, kRed), 10);
  EXPECT_EQ(canvas.CountInRows(0, 40, kWhite), 120 * 40);
  EXPECT_EQ(canvas.CountInRows(80, 120, kWhite), 120 * 40);
}

TEST(DwgThumbnailPaint, ToBitmapGivesThePictureOrNothing) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\wide.dwg", WideDrawing(0x00102030));
  DwgThumbnail empty(fs), thumbnail(fs);
  EXPECT_EQ(ThumbnailToBitmap(empty, nullptr), nullptr);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\wide.dwg", true));
  HBITMAP bitmap = ThumbnailToBitmap(thumbnail, nullptr);
  ASSERT_NE(bitmap, nullptr);
  BITMAP info{};
  GetObjectA(bitmap, sizeof info, &info);
  EXPECT_EQ(info.bmWidth, 4);
  EXPECT_EQ(info.bmHeight, 2);
  DeleteObject(bitmap);
}

LRESULT CALLBACK CountPaints(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT) {
    PAINTSTRUCT ps;
    BeginPaint(hwnd, &ps);
    EndPaint(hwnd, &ps);
    SetWindowLongPtrA(hwnd, GWLP_USERDATA, GetWindowLongPtrA(hwnd, GWLP_USERDATA) + 1);
    return 0;
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

TEST(DwgThumbnailPaint, BackgroundLoadRunsOnItsThreadAndRepaintsTheNotifyWindow) {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = &CountPaints;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.lpszClassName = "TavletDwgNotifyTest";
  RegisterClassA(&windowClass);
  HWND notify = CreateWindowExA(0, "TavletDwgNotifyTest", "", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                windowClass.hInstance, nullptr);
  ASSERT_NE(notify, nullptr);
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
  SetWindowLongPtrA(notify, GWLP_USERDATA, 0);

  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\wide.dwg", WideDrawing(0x00405060));
  DwgThumbnail thumbnail(fs);
  thumbnail.SetPath("C:\\d\\wide.dwg");
  SetBackgroundLoad(thumbnail, notify, RECT{0, 0, 20, 20});
  MemoryCanvas canvas(20, 20);
  PaintThumbnail(thumbnail, canvas.dc(), RECT{0, 0, 20, 20}, nullptr);
  // Wait for the loader, answering the repaint it sends.
  for (int i = 0; i < 500 && thumbnail.loading(); ++i) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
  }
  ASSERT_FALSE(thumbnail.loading());
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
  EXPECT_GE(GetWindowLongPtrA(notify, GWLP_USERDATA), 1);
  PaintThumbnail(thumbnail, canvas.dc(), RECT{0, 0, 20, 20}, nullptr);
  EXPECT_TRUE(thumbnail.HasDib());
  EXPECT_EQ(canvas.Pixel(10, 10), 0x00405060u);
  DestroyWindow(notify);
}

TEST(DwgThumbnailPaint, OneDrawDibHandleDrawsEachPictureWithItsOwnPalette) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", WideDrawing(0x00112233));
  fs.AddFile("C:\\d\\b.dwg", WideDrawing(0x00445566));
  HDRAWDIB drawDib = DrawDibOpen();
  DwgThumbnail a(fs), b(fs);
  ASSERT_TRUE(a.Load("C:\\d\\a.dwg", true));
  ASSERT_TRUE(b.Load("C:\\d\\b.dwg", true));
  MemoryCanvas canvas(40, 40);
  PaintThumbnail(a, canvas.dc(), RECT{0, 0, 40, 20}, drawDib);
  PaintThumbnail(b, canvas.dc(), RECT{0, 20, 40, 40}, drawDib);
  EXPECT_EQ(canvas.Pixel(20, 10), 0x00112233u);
  EXPECT_EQ(canvas.Pixel(20, 30), 0x00445566u);
  DrawDibClose(drawDib);
}

}  // namespace
}  // namespace tavlet
