// The file preview panel as a Win32 child window: GDI painting of the portable
// panel, a draw-DIB handle for its lifetime, and the shell's image extraction for
// files that are not drawings.
#pragma once

#include <windows.h>
#include <vfw.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/win32/dwg_thumbnail_win32.h"
#include "platform/win32/handles.h"
#include "previews/file_preview_panel.h"

namespace tavlet {

// A bitmap handle, owned.
class GdiPanelImage : public PanelImage {
 public:
  explicit GdiPanelImage(HBITMAP bitmap);
  int Width() const override { return width_; }
  int Height() const override { return height_; }
  HBITMAP handle() const { return bitmap_.get(); }

 private:
  win32::GdiObject<HBITMAP> bitmap_;
  int width_ = 0;
  int height_ = 0;
};

// IExtractImage through the desktop folder. Gives nothing when any step fails,
// which is the usual answer on systems without a thumbnail service.
class ShellImageExtractor : public ShellImageSource {
 public:
  explicit ShellImageExtractor(HWND owner) : owner_(owner) {}
  std::unique_ptr<PanelImage> Extract(const std::string& path, int width, int height) override;

 private:
  HWND owner_;
};

class GdiPanelCanvas : public PanelCanvas {
 public:
  GdiPanelCanvas(HDC dc, HDRAWDIB drawDib) : thumbnail_(dc, drawDib), dc_(dc) {}
  void Draw3dRect(const PreviewRect& rect) override;
  void FillFace(const PreviewRect& rect) override;
  void DrawImage(const PanelImage& image, const PreviewRect& dest) override;
  void SaveState() override { thumbnail_.SaveState(); }
  void RestoreState() override { thumbnail_.RestoreState(); }
  void FillRect(const PreviewRect& rect, std::uint32_t color) override { thumbnail_.FillRect(rect, color); }
  int TextHeight(std::string_view text) override { return thumbnail_.TextHeight(text); }
  void DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t textColor,
                    std::uint32_t backColor) override {
    thumbnail_.DrawTextLine(band, line, textColor, backColor);
  }
  void DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode mode) override {
    thumbnail_.DrawDib(dest, dib, mode);
  }

 private:
  GdiThumbnailCanvas thumbnail_;
  HDC dc_;
};

// The panel's window class is registered under the process's instance with the
// procedure of the module that made the first panel: a module that goes away
// takes it down after its last panel, so that no class points into freed code.
void UnregisterPreviewPanelClass();

class FilePreviewPanelWindow {
 public:
  // `shell` replaces the shell's extraction (tests); null uses the shell.
  explicit FilePreviewPanelWindow(FileSystem& fs = NativeFileSystem(), ShellImageSource* shell = nullptr);
  ~FilePreviewPanelWindow();
  FilePreviewPanelWindow(const FilePreviewPanelWindow&) = delete;
  FilePreviewPanelWindow& operator=(const FilePreviewPanelWindow&) = delete;

  bool Create(HWND parent, const RECT& rect, int id);
  HWND hwnd() const { return hwnd_; }

  void SetFiles(const std::vector<std::string>& paths);
  // The whole paint, into any device context (the window's, or a memory one).
  void PaintTo(HDC dc);

  const FilePreviewPanel& panel() const { return panel_; }

 private:
  static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

  std::unique_ptr<ShellImageExtractor> ownShell_;
  ShellImageSource* shell_;
  FilePreviewPanel panel_;
  HWND hwnd_ = nullptr;
  HDRAWDIB drawDib_ = nullptr;
};

}  // namespace tavlet
