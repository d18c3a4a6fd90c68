// Fuzzes the drawing thumbnail reader: the input is a whole drawing file. Each run
// loads it with recolouring, recolours for other backgrounds, paints it through a
// canvas that reads every byte of the rows a real draw would read, and fits the
// picture into a few rectangles.
#include <cstddef>
#include <cstdint>
#include <string>

#include "previews/dwg_thumbnail.h"
#include "sim/memory_file_system.h"

namespace {

using namespace tavlet;

class TouchingCanvas : public ThumbnailCanvas {
 public:
  std::uint32_t sum = 0;
  void SaveState() override {}
  void RestoreState() override {}
  void FillRect(const PreviewRect&, std::uint32_t) override {}
  int TextHeight(std::string_view) override { return 13; }
  void DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t, std::uint32_t) override {
    sum += static_cast<std::uint32_t>(band.top) + static_cast<std::uint32_t>(line.size());
  }
  void DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode) override {
    sum += static_cast<std::uint32_t>(dest.left + dest.right);
    for (std::size_t i = 0; i < dib.size; ++i) sum += dib.data[i];
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\f\\a.dwg", std::string(reinterpret_cast<const char*>(data), size));
  DwgThumbnail thumbnail(fs);
  thumbnail.SetRecolor(true);
  thumbnail.Load("C:\\f\\a.dwg", true);
  thumbnail.SetBackground(0xFFFFFF);
  thumbnail.SetBackground(0x808080);
  TouchingCanvas canvas;
  const int w = 1 + static_cast<int>(size % 397);
  const int h = 1 + static_cast<int>((size / 3) % 211);
  thumbnail.Paint(canvas, {0, 0, w, h});
  thumbnail.Paint(canvas, {5, 5, 5, 5});
  if (thumbnail.HasDib()) {
    volatile int sink = 0;
    for (const PreviewRect& r : {PreviewRect{0, 0, 1, 1000}, PreviewRect{0, 0, 1000, 1}, PreviewRect{-3, -3, 3, 3}}) {
      PreviewRect fit = FitIntoRect(r, thumbnail.imageWidth(), thumbnail.imageHeight());
      sink = sink + fit.left + fit.bottom;
    }
    for (int i = 0; i < 256; ++i) sink = sink + static_cast<int>(thumbnail.DibColor(i) & 1);
  }
  // A second load without clearing reuses the object as the paint does.
  thumbnail.Load("C:\\f\\a.dwg", false);
  return 0;
}
