// The file preview panel of the workset manager: thumbnails of the selected files
// stacked from the top, drawings from the picture in their file, other files from
// the shell's image extraction. No scrolling, no input.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "previews/dwg_paint.h"
#include "previews/dwg_thumbnail.h"

namespace tavlet {

// An extracted image (a bitmap handle on Win32).
class PanelImage {
 public:
  virtual ~PanelImage() = default;
  virtual int Width() const = 0;
  virtual int Height() const = 0;
};

// The shell's image extraction: null when it has nothing for the file or fails.
class ShellImageSource {
 public:
  virtual ~ShellImageSource() = default;
  virtual std::unique_ptr<PanelImage> Extract(const std::string& path, int width, int height) = 0;
};

class PanelCanvas : public ThumbnailCanvas {
 public:
  // A sunken frame: shadow colour top-left, light colour bottom-right.
  virtual void Draw3dRect(const PreviewRect& rect) = 0;
  virtual void FillFace(const PreviewRect& rect) = 0;
  virtual void DrawImage(const PanelImage& image, const PreviewRect& dest) = 0;
};

struct PreviewPanelItem {
  enum Kind : int { kDrawing = 0, kOther = 1 };
  int kind = kDrawing;
  std::string path;
  std::unique_ptr<PanelImage> bitmap;        // kOther
  std::unique_ptr<DwgThumbnail> thumbnail;   // kDrawing
};

struct PanelBand {
  std::size_t item;
  PreviewRect rect;
};

// Where each item is painted inside `inner`: a drawing takes a square band, another
// file the height of its image at the panel's width (nothing at all without one);
// the walk stops once a band ends below the bottom.
std::vector<PanelBand> LayoutPanel(const std::vector<PreviewPanelItem>& items, const PreviewRect& inner);

// A path whose extension is ".dwg" in any case.
bool IsDrawingPath(const std::string& path);

class FilePreviewPanel {
 public:
  FilePreviewPanel(FileSystem& fs, ShellImageSource& shell) : fs_(fs), shell_(shell) {}

  // Replaces the items with one per path, in order; drawings are read at once.
  // `clientWidth` is the panel's width, the size asked of the shell.
  void SetFiles(const std::vector<std::string>& paths, int clientWidth);
  void Paint(PanelCanvas& canvas, const PreviewRect& client);

  const std::vector<PreviewPanelItem>& items() const { return items_; }

 private:
  FileSystem& fs_;
  ShellImageSource& shell_;
  std::vector<PreviewPanelItem> items_;
};

}  // namespace tavlet
