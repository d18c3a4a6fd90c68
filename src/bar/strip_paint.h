// How the bar is drawn: the preview strip's cells (picture, label, marks, the
// active drawing's tint), the collapsed cells with their turned names, and the
// bar's own notice while no drawing is open. The drawing goes through a small
// Canvas that Win32 maps to GDI and that tests and the benchmark record.
//
// Example, the strip's WM_PAINT:
//   GdiCanvas canvas(dc, labelFont);
//   PaintStrip(canvas, {client, bar.Settings(), bar.Colors(), documents, logFont},
//              bar.Strip(), layout, hooks);
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "bar/doc_list.h"
#include "bar/preview_layout.h"
#include "host/port/documents.h"
#include "host/port/editor.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"

namespace tavlet::bar {

using host::WindowRect;

// System colour indices, with the platform's values.
inline constexpr int kColorActiveCaption = 2;
inline constexpr int kColorBtnFace = 15;
inline constexpr int kColorBtnShadow = 16;
inline constexpr int kColorBtnText = 18;
inline constexpr int kColorBtnHighlight = 20;

// DrawText formats of the labels.
inline constexpr std::uint32_t kLabelFormat = 0x8028;           // single line, bottom, end ellipsis
inline constexpr std::uint32_t kCollapsedLabelFormat = 0x802C;  // the same, centred vertically
inline constexpr std::uint32_t kTurnedLabelFormat = 0x8024;     // for the smooth text of a turned label
inline constexpr std::uint32_t kNoticeFormat = 0;

inline constexpr int kActiveTintAlpha = 68;
inline constexpr int kNoticeTintAlpha = 102;
inline constexpr long kMinTitleHeight = 15;

inline constexpr char kNoDrawingNotice[] = "Tavlet 2.0 - 没有图纸文件载入";

// The 7 by 11 marks; their resource ids.
enum class Glyph { Modified = 5102, Lock = 5095, ModifiedTurned = 5101, LockTurned = 5094 };

struct TextExtent {
  long width = 0;
  long height = 0;
};

// What painting asks of a device. Colours are 0x00BBGGRR.
class Canvas {
 public:
  virtual ~Canvas() = default;
  virtual void FillRect(const WindowRect& r, std::uint32_t color) = 0;
  virtual void Draw3dRect(const WindowRect& r, std::uint32_t topLeft, std::uint32_t bottomRight) = 0;
  // One line in the selected font, opaque on `back`.
  virtual void DrawLabel(std::string_view text, const WindowRect& box, std::uint32_t format,
                        std::uint32_t color, std::uint32_t back) = 0;
  // The whole packed bitmap (0, 0, width, height) stretched to `to`.
  virtual void DrawDib(const std::vector<unsigned char>& dib, int width, int height, const WindowRect& to) = 0;
  // A mask glyph with its top-left at (x, y), in `color`.
  virtual void DrawGlyph(Glyph glyph, long x, long y, std::uint32_t color) = 0;
  virtual void FillAlpha(const WindowRect& r, std::uint32_t color, int alpha) = 0;
  // An RGB image as IS40_DrawRGB takes it, stride included.
  virtual void DrawRgb(const unsigned char* rgb, int width, int height, int stride, long x, long y) = 0;
  virtual std::uint32_t SysColor(int index) = 0;
  // Of the selected font: the text's size, and the font's text height.
  virtual TextExtent MeasureText(std::string_view text) = 0;
  virtual long TextHeight() = 0;
};

// A raised frame when `raised`, else a sunken one.
void DrawFrame(Canvas& canvas, const WindowRect& r, bool raised);

// Colour settings as painting uses them. A value with bits above 0xFFFFFF is no
// plain colour (a palette index to GDI, or a hand-edit): the key's default then.
struct PaintColors {
  std::uint32_t background = 0, titleBack = 0, titleText = 0, readOnly = 0, modified = 0;
};
PaintColors ResolveColors(const BarSettings& settings, Canvas& canvas);

// One cell as the paint sees it.
struct CellPaint {
  bool horizontal = false;  // the strip runs across
  bool readOnly = false;    // the host's isReadOnly of the drawing
  bool active = false;      // the MDI-active drawing
  long titleHeight = kMinTitleHeight;
};

struct StripPaintInputs {
  WindowRect client;
  const BarSettings& settings;
  const port::ColorSettings& colors;
  port::DocManager& documents;
  LogFontA labelFont;  // the font the turned labels are drawn in
};

void DrawCell(Canvas& canvas, const StripPaintInputs& in, const PaintColors& colors, const DocEntry& entry,
              const WindowRect& cell, const CellPaint& state);

// The window's part of a paint: `capture` runs for a stale entry before it is
// drawn, `tip` after (SetToolRect and UpdateTipText).
struct StripPaintHooks {
  std::function<void(DocEntry&)> capture;
  std::function<void(const DocEntry&)> tip;
};

// Frame, background, titleHeight (stored in `layout`), then every cell in turn,
// stopping when the list turns Busy. Returns the number of cells drawn.
int PaintStrip(Canvas& canvas, const StripPaintInputs& in, DocList& list, StripLayout& layout,
               const StripPaintHooks& hooks);

// The bar's own paint: the face colour over `client`, and with no drawing open
// the notice, turned to read upwards on the left side and downwards on the right.
void PaintBar(Canvas& canvas, const WindowRect& client, long drawingCount, int dockSide, const LogFontA& tabFont);

// A recording of draw calls, one text line per call, for tests and benchmarks.
// Turned images are kept so that a test can look at their pixels.
class RecordingCanvas final : public Canvas {
 public:
  struct Image {
    int width = 0, height = 0, stride = 0;
    long x = 0, y = 0;
    std::vector<unsigned char> pixels;  // stride x height bytes as given
  };

  void FillRect(const WindowRect& r, std::uint32_t color) override;
  void Draw3dRect(const WindowRect& r, std::uint32_t topLeft, std::uint32_t bottomRight) override;
  void DrawLabel(std::string_view text, const WindowRect& box, std::uint32_t format, std::uint32_t color,
                std::uint32_t back) override;
  void DrawDib(const std::vector<unsigned char>& dib, int width, int height, const WindowRect& to) override;
  void DrawGlyph(Glyph glyph, long x, long y, std::uint32_t color) override;
  void FillAlpha(const WindowRect& r, std::uint32_t color, int alpha) override;
  void DrawRgb(const unsigned char* rgb, int width, int height, int stride, long x, long y) override;
  std::uint32_t SysColor(int index) override;
  TextExtent MeasureText(std::string_view text) override;
  long TextHeight() override { return textHeight; }

  // Recording nothing, for timing the paint's own work.
  bool quiet = false;
  // Each character 6 wide; the font's height.
  long textHeight = 13;
  std::vector<std::string> calls;
  std::vector<Image> images;
};

std::string RectText(const WindowRect& r);

}  // namespace tavlet::bar
