#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <utility>

#include "platform/win32/dwg_thumbnail_win32.h"
#include "platform/win32/file_preview_panel_win32.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet {
namespace {

// A 24-bit DIB section of one colour selected into a memory context, read back by pixel.
class MemoryCanvas {
 public:
  MemoryCanvas(int width, int height, COLORREF colour = RGB(128, 128, 128)) : dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    old_ = SelectObject(dc_, bitmap_);
    RECT all{0, 0, width, height};
    HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc_, &all, brush);
    DeleteObject(brush);
  }
  ~MemoryCanvas() {
    SelectObject(dc_, old_);
    if (bitmap_) DeleteObject(bitmap_);
    DeleteDC(dc_);
  }
  HDC dc() const { return dc_; }
  HBITMAP Release() { return std::exchange(bitmap_, nullptr); }
  COLORREF Pixel(int x, int y) const { return GetPixel(dc_, x, y); }
  int CountInRows(int top, int bottom, int width, COLORREF colour) const {
    int n = 0;
    for (int y = top; y < bottom; ++y) {
      for (int x = 0; x < width; ++x) n += Pixel(x, y) == colour ? 1 : 0;
    }
    return n;
  }

 private:
  HDC dc_;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ old_ = nullptr;
};

// A drawing whose every pixel has the given colour.
std::string SolidDrawing(COLORREF colour, int width, int height) {
  testing::DibShape dib;
  dib.width = width;
  dib.height = height;
  dib.palette.assign(256, 0);
  dib.palette[7] = colour;
  dib.pixel = 7;
  return testing::MakeDwgWithBitmap("AC1018", dib);
}

TEST(DwgThumbnailPaint, PicturesAreCentredOnTheBackgroundByBothPathsEachWithItsPalette) {
  const COLORREF kFirst = RGB(80, 160, 48), kSecond = RGB(102, 85, 68);
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", SolidDrawing(kFirst, 4, 2));
  fs.AddFile("C:\\d\\b.dwg", SolidDrawing(kSecond, 4, 2));
  HDRAWDIB drawDib = DrawDibOpen();
  ASSERT_NE(drawDib, nullptr);
  for (HDRAWDIB path : {static_cast<HDRAWDIB>(nullptr), drawDib}) {
    SCOPED_TRACE(path == nullptr ? "StretchDIBits" : "DrawDibDraw");
    DwgThumbnail a(fs), b(fs);
    ASSERT_TRUE(a.Load("C:\\d\\a.dwg", true));
    ASSERT_TRUE(b.Load("C:\\d\\b.dwg", true));
    MemoryCanvas canvas(40, 80);
    PaintThumbnail(a, canvas.dc(), RECT{0, 0, 40, 40}, path);
    PaintThumbnail(b, canvas.dc(), RECT{0, 40, 40, 80}, path);
    // 4x2 in 40x40: rows 10 to 29 hold the picture, the rest is the black background.
    EXPECT_EQ(canvas.CountInRows(0, 10, 40, 0), 400);
    EXPECT_EQ(canvas.CountInRows(10, 30, 40, kFirst), 800);
    EXPECT_EQ(canvas.CountInRows(30, 50, 40, 0), 800);
    EXPECT_EQ(canvas.CountInRows(50, 70, 40, kSecond), 800);
    EXPECT_EQ(canvas.CountInRows(70, 80, 40, 0), 400);
  }
  DrawDibClose(drawDib);
}

TEST(DwgThumbnailPaint, StatusTextIsRedOnTheBackgroundInTheMiddleAndToBitmapNeedsAPicture) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\none.dwg", testing::MakeDwg(testing::DwgLayout{}));
  fs.AddFile("C:\\d\\wide.dwg", SolidDrawing(RGB(1, 2, 3), 4, 2));
  DwgThumbnail none(fs), wide(fs);
  none.SetInitialBackground(RGB(255, 255, 255));
  ASSERT_TRUE(none.Load("C:\\d\\none.dwg", true));
  MemoryCanvas canvas(120, 120);
  PaintThumbnail(none, canvas.dc(), RECT{0, 0, 120, 120}, nullptr);
  EXPECT_GT(canvas.CountInRows(40, 80, 120, RGB(255, 0, 0)), 10);
  EXPECT_EQ(canvas.CountInRows(0, 40, 120, RGB(255, 255, 255)), 120 * 40);
  EXPECT_EQ(canvas.CountInRows(80, 120, 120, RGB(255, 255, 255)), 120 * 40);

  EXPECT_EQ(ThumbnailToBitmap(none, nullptr), nullptr);
  ASSERT_TRUE(wide.Load("C:\\d\\wide.dwg", true));
  HBITMAP bitmap = ThumbnailToBitmap(wide, nullptr);
  ASSERT_NE(bitmap, nullptr);
  BITMAP info{};
  GetObjectA(bitmap, sizeof info, &info);
  EXPECT_EQ(info.bmWidth, 4);
  EXPECT_EQ(info.bmHeight, 2);
  DeleteObject(bitmap);
}

int paints = 0;
LRESULT CALLBACK CountPaints(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_PAINT) ++paints;
  return DefWindowProcA(hwnd, message, wParam, lParam);  // validates what was painted
}

void DispatchPending() {
  MSG message;
  while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

TEST(DwgThumbnailPaint, BackgroundLoadRunsOnItsThreadAndRepaintsTheNotifyWindow) {
  WNDCLASSA windowClass{0, &CountPaints, 0, 0, GetModuleHandleA(nullptr), nullptr, nullptr, nullptr, nullptr,
                        "TavletDwgNotifyTest"};
  RegisterClassA(&windowClass);
  HWND notify = CreateWindowExA(0, windowClass.lpszClassName, "", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr,
                                nullptr, windowClass.hInstance, nullptr);
  ASSERT_NE(notify, nullptr);
  DispatchPending();
  paints = 0;
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\wide.dwg", SolidDrawing(RGB(96, 80, 64), 4, 2));
  DwgThumbnail thumbnail(fs);
  thumbnail.SetPath("C:\\d\\wide.dwg");
  SetBackgroundLoad(thumbnail, notify, RECT{0, 0, 20, 20});
  MemoryCanvas canvas(20, 20);
  PaintThumbnail(thumbnail, canvas.dc(), RECT{0, 0, 20, 20}, nullptr);
  // Wait for the loader, answering the repaint it sends.
  for (int i = 0; i < 500 && thumbnail.loading(); ++i) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    DispatchPending();
  }
  ASSERT_FALSE(thumbnail.loading());
  DispatchPending();
  EXPECT_GE(paints, 1);
  PaintThumbnail(thumbnail, canvas.dc(), RECT{0, 0, 20, 20}, nullptr);
  EXPECT_EQ(canvas.Pixel(10, 10), RGB(96, 80, 64));
  DestroyWindow(notify);
}

// Gives a solid bitmap of a set size for chosen paths, nothing for the rest.
struct SolidBitmapShell : ShellImageSource {
  std::map<std::string, std::pair<SIZE, COLORREF>> images;
  std::unique_ptr<PanelImage> Extract(const std::string& path, int, int) override {
    auto it = images.find(path);
    if (it == images.end()) return nullptr;
    MemoryCanvas image(it->second.first.cx, it->second.first.cy, it->second.second);
    return std::make_unique<GdiPanelImage>(image.Release());
  }
};

class PanelWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    parent_ = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 200, 400, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(parent_, nullptr);
  }
  void TearDown() override { DestroyWindow(parent_); }
  // Paints the panel and reads the column in its middle.
  static std::vector<COLORREF> PaintedColumn(FilePreviewPanelWindow& window, int width, int height) {
    MemoryCanvas canvas(width, height);
    window.PaintTo(canvas.dc());
    std::vector<COLORREF> column;
    for (int y = 0; y < height; ++y) column.push_back(canvas.Pixel(width / 2, y));
    return column;
  }
  HWND parent_ = nullptr;
};

TEST_F(PanelWindowTest, StacksTwoDrawingsAndAnotherFileWithoutGaps) {
  const COLORREF kFirst = RGB(200, 30, 30), kSecond = RGB(30, 200, 30), kOther = RGB(30, 30, 200);
  MemoryFileSystem fs;
  fs.AddFile("C:\\w\\one.dwg", SolidDrawing(kFirst, 2, 2));
  fs.AddFile("C:\\w\\TWO.DWG", SolidDrawing(kSecond, 2, 2));
  SolidBitmapShell shell;
  shell.images["C:\\w\\plan.png"] = {SIZE{60, 30}, kOther};
  FilePreviewPanelWindow window(fs, &shell);
  ASSERT_TRUE(window.Create(parent_, RECT{0, 0, 64, 300}, 100));
  window.SetFiles({"C:\\w\\one.dwg", "C:\\w\\note.txt", "C:\\w\\TWO.DWG", "C:\\w\\plan.png"});
  auto column = PaintedColumn(window, 64, 300);
  // Inner area: x 2..62, y 2..298, width 60. Bands: 2..62, (note.txt: none), 62..122, 122..152.
  EXPECT_EQ(column[0], GetSysColor(COLOR_3DSHADOW));
  EXPECT_EQ(column[299], GetSysColor(COLOR_3DLIGHT));
  for (int y = 2; y < 298; ++y) {
    const COLORREF expected = y < 62 ? kFirst : y < 122 ? kSecond : y < 152 ? kOther : GetSysColor(COLOR_3DFACE);
    ASSERT_EQ(column[y], expected) << y;
  }
}

TEST_F(PanelWindowTest, ShellFileWithoutImageLeavesNoGapAndNoText) {
  char folder[MAX_PATH];
  GetTempPathA(MAX_PATH, folder);
  const std::string note = std::string(folder) + "tavlet_panel_note.zzq";
  const std::string drawing = std::string(folder) + "tavlet_panel_one.dwg";
  std::ofstream(note, std::ios::binary) << "note";
  std::ofstream(drawing, std::ios::binary) << SolidDrawing(RGB(10, 20, 250), 2, 2);
  CoInitialize(nullptr);
  {
    FilePreviewPanelWindow window;  // the real shell and file system
    ASSERT_TRUE(window.Create(parent_, RECT{0, 0, 44, 200}, 101));
    window.SetFiles({note, drawing});
    ASSERT_EQ(window.panel().items().size(), 2u);
    auto column = PaintedColumn(window, 44, 200);
    // Where the shell gives nothing for the unknown file, the drawing's band starts at the top.
    const PanelImage* image = window.panel().items()[0].bitmap.get();
    const int top = 2 + (image ? image->Height() * 40 / image->Width() : 0);
    for (int y = top; y < 198; ++y) {
      ASSERT_EQ(column[y], y < top + 40 ? RGB(10, 20, 250) : GetSysColor(COLOR_3DFACE)) << y;
    }
  }
  CoUninitialize();
  DeleteFileA(note.c_str());
  DeleteFileA(drawing.c_str());
}

}  // namespace
}  // namespace tavlet
