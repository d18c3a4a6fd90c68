#include <gtest/gtest.h>

#include <windows.h>

#include <map>

#include "platform/win32/file_preview_panel_win32.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet {
namespace {

// Gives a solid bitmap of a set size for chosen paths, nothing for the rest.
class SolidBitmapShell : public ShellImageSource {
 public:
  std::map<std::string, std::pair<SIZE, COLORREF>> images;
  std::unique_ptr<PanelImage> Extract(const std::string& path, int, int) override {
    auto it = images.find(path);
    if (it == images.end()) return nullptr;
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, it->second.first.cx, it->second.first.cy);
    HDC dc = CreateCompatibleDC(screen);
    HGDIOBJ old = SelectObject(dc, bitmap);
    RECT all{0, 0, it->second.first.cx, it->second.first.cy};
    HBRUSH brush = CreateSolidBrush(it->second.second);
    FillRect(dc, &all, brush);
    DeleteObject(brush);
    SelectObject(dc, old);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
    return std::make_unique<GdiPanelImage>(bitmap);
  }
};

std::string Drawing(COLORREF colour) {
  testing::DibSpec dib;
  dib.width = 2;
  dib.height = 2;
  dib.palette.assign(256, 0);
  dib.palette[7] = colour;
  dib.pixel = 7;
  return testing::MakeDwgWithBitmap("AC1018", dib);
}

// Paints the panel into a 24-bit memory bitmap and reads the column in its middle.
std::vector<COLORREF> PaintedColumn(FilePreviewPanelWindow& window, int width, int height) {
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
  HGDIOBJ old = SelectObject(dc, bitmap);
  window.PaintTo(dc);
  std::vector<COLORREF> column;
  for (int y = 0; y < height; ++y) column.push_back(GetPixel(dc, width / 2, y));
  SelectObject(dc, old);
  DeleteObject(bitmap);
  DeleteDC(dc);
  ReleaseDC(nullptr, screen);
  return column;
}

class PanelWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    parent_ = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 200, 400, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(parent_, nullptr);
  }
  void TearDown() override { DestroyWindow(parent_); }
  HWND parent_ = nullptr;
};

TEST_F(PanelWindowTest, StacksTwoDrawingsAndAnotherFileWithoutGaps) {
  const COLORREF kFirst = RGB(200, 30, 30), kSecond = RGB(30, 200, 30), kOther = RGB(30, 30, 200);
  MemoryFileSystem fs;
  fs.AddFile("C:\\w\\one.dwg", Drawing(kFirst));
  fs.AddFile("C:\\w\\TWO.DWG", Drawing(kSecond));
  SolidBitmapShell shell;
  shell.images["C:\\w\\plan.png"] = {SIZE{60, 30}, kOther};
  FilePreviewPanelWindow window(fs, &shell);
  ASSERT_TRUE(window.Create(parent_, RECT{0, 0, 64, 300}, 100));
  window.SetFiles({"C:\\w\\one.dwg", "C:\\w\\note.txt", "C:\\w\\TWO.DWG", "C:\\w\\plan.png"});

  auto column = PaintedColumn(window, 64, 300);
  // Inner area: x 2..62, y 2..298, width 60. Bands: 2..62, (note.txt: none), 62..122, 122..152.
  const COLORREF face = GetSysColor(COLOR_3DFACE);
  EXPECT_EQ(column[0], GetSysColor(COLOR_3DSHADOW));
  EXPECT_EQ(column[299], GetSysColor(COLOR_3DLIGHT));
  for (int y = 2; y < 62; ++y) ASSERT_EQ(column[y], kFirst) << y;
  for (int y = 62; y < 122; ++y) ASSERT_EQ(column[y], kSecond) << y;
  for (int y = 122; y < 152; ++y) ASSERT_EQ(column[y], kOther) << y;
  for (int y = 152; y < 298; ++y) ASSERT_EQ(column[y], face) << y;
}

TEST_F(PanelWindowTest, ShellFileWithoutImageLeavesNoGapAndNoText) {
  wchar_t folder[MAX_PATH];
  GetTempPathW(MAX_PATH, folder);
  char tempFolder[MAX_PATH];
  GetTempPathA(MAX_PATH, tempFolder);
  const std::string textFile = std::string(tempFolder) + "tavlet_panel_note.zzq";
  HANDLE file = CreateFileA(textFile.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  DWORD written = 0;
  WriteFile(file, "note", 4, &written, nullptr);
  CloseHandle(file);
  const std::string drawing = std::string(tempFolder) + "tavlet_panel_one.dwg";
  std::string bytes = Drawing(RGB(10, 20, 250));
  file = CreateFileA(drawing.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
  CloseHandle(file);

  CoInitialize(nullptr);
  {
    FilePreviewPanelWindow window;  // the real shell and file system
    ASSERT_TRUE(window.Create(parent_, RECT{0, 0, 44, 200}, 101));
    window.SetFiles({textFile, drawing});
    ASSERT_EQ(window.panel().items().size(), 2u);
    auto column = PaintedColumn(window, 44, 200);
    if (window.panel().items()[0].bitmap == nullptr) {
      // Nothing for the unknown file: the drawing's band starts at the top.
      for (int y = 2; y < 42; ++y) ASSERT_EQ(column[y], RGB(10, 20, 250)) << y;
      for (int y = 42; y < 198; ++y) ASSERT_EQ(column[y], GetSysColor(COLOR_3DFACE)) << y;
    } else {
      const int height = window.panel().items()[0].bitmap->Height() * 40 / window.panel().items()[0].bitmap->Width();
      EXPECT_EQ(column[2 + height + 20], RGB(10, 20, 250));
    }
  }
  CoUninitialize();
  DeleteFileA(textFile.c_str());
  DeleteFileA(drawing.c_str());
}

}  // namespace
}  // namespace tavlet
