#include "bar/strip_paint.h"

#include <algorithm>
#include <cstdio>

#include "bar/bar_model.h"
#include "bar/coordinates.h"
#include "previews/raster/raster.h"

namespace tavlet::bar {
namespace {

WindowRect Deflated(const WindowRect& r, long by) {
  return {Plus(r.left, by), Plus(r.top, by), Minus(r.right, by), Minus(r.bottom, by)};
}

// Larger images than this are not made for a label: a bar is never that big.
constexpr long long kMaxLabelPixels = 8LL * 1024 * 1024;

std::uint32_t PlainOr(std::uint32_t value, std::uint32_t fallback) {
  return value > 0xFFFFFF ? fallback : value;
}

// The name of a collapsed cell on a horizontal strip, along its length: drawn
// across in an image th wide and tw high, turned to read upwards, and drawn at
// T's top-left with the stride of the image before it was turned. That stride
// is how the label has always been drawn; the buffer is made long enough for
// every row it makes the draw read, the part past the image in the label's colour.
void DrawTurnedLabel(Canvas& canvas, const std::string& name, const WindowRect& t, const LogFontA& font,
                     const PaintColors& colors) {
  const long th = t.Height(), tw = t.Width();
  if (th <= 0 || tw <= 0 || static_cast<long long>(th) * std::max(th, tw) > kMaxLabelPixels) return;
  const std::size_t image = static_cast<std::size_t>(th) * tw * 3;
  const std::size_t read = static_cast<std::size_t>(th) * th * 3;
  std::vector<unsigned char> rgb(std::max(image, read));
  const auto w = static_cast<std::int32_t>(th), h = static_cast<std::int32_t>(tw);
  const RasterRect whole{0, 0, w, h};
  IS40_FillSolidRect(rgb.data(), w, h, 3, w * 3, &whole, colors.titleBack, 0);
  for (std::size_t i = image; i + 2 < rgb.size(); i += 3) {
    rgb[i] = static_cast<unsigned char>(colors.titleBack);
    rgb[i + 1] = static_cast<unsigned char>(colors.titleBack >> 8);
    rgb[i + 2] = static_cast<unsigned char>(colors.titleBack >> 16);
  }
  IS40_DrawSmoothTextOnRGB2(rgb.data(), w, h, w * 3, name.c_str(), &font, 4, &whole, kTurnedLabelFormat, 0,
                            colors.titleText);
  IS40_QuickRotateImageInPlace(rgb.data(), w, h, 2, 3, 0);
  canvas.DrawRgb(rgb.data(), h, w, w * 3, t.left, t.top);
}

}  // namespace

void DrawFrame(Canvas& canvas, const WindowRect& r, bool raised) {
  const std::uint32_t light = canvas.SysColor(kColorBtnHighlight), dark = canvas.SysColor(kColorBtnShadow);
  canvas.Draw3dRect(r, raised ? light : dark, raised ? dark : light);
}

PaintColors ResolveColors(const BarSettings& s, Canvas& canvas) {
  const std::uint32_t face = canvas.SysColor(kColorBtnFace);
  return {PlainOr(s.Background, face), PlainOr(s.TitleBack, face),
          PlainOr(s.TitleText, canvas.SysColor(kColorBtnText)),
          PlainOr(s.ReadOnly, static_cast<std::uint32_t>(keys::ReadOnly.intDefault)),
          PlainOr(s.Modified, static_cast<std::uint32_t>(keys::Modified.intDefault))};
}

void DrawCell(Canvas& canvas, const StripPaintInputs& in, const PaintColors& colors, const DocEntry& entry,
              const WindowRect& cell, const CellPaint& state) {
  const BarSettings& s = in.settings;
  WindowRect c = cell;
  WindowRect picture = Deflated(c, 1);
  WindowRect label = c;
  const std::string& name = entry.path.Name;

  if (!entry.collapsed) {
    if (s.ShowDwgName) {
      if (!s.DwgNameAbove) {
        label.top = Minus(label.bottom, state.titleHeight);
        picture.bottom = label.top;
      } else {
        label.bottom = Plus(label.top, state.titleHeight);
        picture.top = label.bottom;
      }
    }
    if (!entry.previewDib.empty())
      canvas.DrawDib(entry.previewDib, entry.previewWidth, entry.previewHeight, picture);
    if (!s.ShowDwgName) {
      if (state.readOnly || entry.modified) {
        const long left = Plus(label.left, 2), bottom = Minus(label.bottom, 2);
        canvas.FillRect({left, Minus(bottom, 13), Plus(left, 9), bottom}, colors.background);
      }
    } else {
      canvas.FillRect(label, colors.titleBack);
      DrawFrame(canvas, label, true);
      const WindowRect box{Plus(label.left, 12), Plus(label.top, 1), Minus(label.right, 1), Minus(label.bottom, 1)};
      canvas.DrawLabel(name, box, kLabelFormat, colors.titleText, colors.titleBack);
    }
  } else {
    canvas.FillRect(c, colors.titleBack);
    DrawFrame(canvas, c, true);
    label = Deflated(label, 1);
    if (!state.horizontal) {
      const WindowRect box{Plus(label.left, 12), label.top, label.right, label.bottom};
      canvas.DrawLabel(name, box, kCollapsedLabelFormat, colors.titleText, colors.titleBack);
    } else {
      const WindowRect t{label.left, label.top, label.right, Minus(label.bottom, 15)};
      DrawTurnedLabel(canvas, name, t, in.labelFont, colors);
    }
  }

  if (entry.previewLocked && !entry.collapsed) {
    // The plate takes the view's background and the glyph the crosshair's, so
    // the lock shows against the picture of model or paper space alike.
    const std::uint32_t plate = static_cast<std::uint32_t>(
        entry.paperSpace ? in.colors.layoutBackground : in.colors.modelBackground);
    const std::uint32_t ink =
        static_cast<std::uint32_t>(entry.paperSpace ? in.colors.layoutCrosshair : in.colors.modelCrosshair);
    canvas.FillRect({Minus(picture.right, 11), Plus(picture.top, 1), Minus(picture.right, 2), Plus(picture.top, 14)},
                    plate & 0xFFFFFF);
    canvas.DrawGlyph(Glyph::Lock, Minus(picture.right, 10), Plus(picture.top, 2), ink & 0xFFFFFF);
  }

  const long y = Minus(label.bottom, entry.collapsed ? 13 : 14);
  const long x = entry.collapsed && state.horizontal ? Plus(label.left, (label.Width() - 7) / 2) : Plus(label.left, 3);
  if (state.readOnly)
    canvas.DrawGlyph(Glyph::Lock, x, y, colors.readOnly);
  else if (entry.modified)
    canvas.DrawGlyph(Glyph::Modified, x, y, colors.modified);

  if (state.active) {
    const std::uint32_t highlight = canvas.SysColor(kColorActiveCaption);
    canvas.FillAlpha(c, highlight, kActiveTintAlpha);
    canvas.Draw3dRect(c, highlight, highlight);
    c = Deflated(c, 1);
    canvas.Draw3dRect(c, highlight, highlight);
  }
}

int PaintStrip(Canvas& canvas, const StripPaintInputs& in, DocList& list, StripLayout& layout,
               const StripPaintHooks& hooks) {
  const PaintColors colors = ResolveColors(in.settings, canvas);
  DrawFrame(canvas, in.client, false);
  canvas.FillRect(layout.stripArea, colors.background);
  layout.titleHeight = TitleHeightFor(canvas.TextHeight());

  port::Document active = nullptr;
  if (port::Failed(in.documents.MdiActiveDocument(&active))) active = nullptr;
  CellPaint state;
  state.horizontal = layout.IsHorizontal();
  state.titleHeight = layout.titleHeight;

  const auto& entries = list.Entries();
  CellCursor cursor = layout.Cells(in.settings, static_cast<int>(entries.size()));
  int drawn = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (list.Busy()) break;
    DocEntry& entry = *entries[i];
    entry.itemRect = cursor.Place(static_cast<int>(i), entry);
    if (entry.previewDirty && hooks.capture) hooks.capture(entry);
    // The capture may end in host calls that change the list under the loop.
    if (list.Busy() || i >= entries.size() || entries[i].get() != &entry) break;
    bool readOnly = false;
    if (port::Failed(in.documents.IsReadOnly(entry.document, &readOnly))) readOnly = false;
    state.readOnly = readOnly;
    state.active = active != nullptr && entry.document == active;
    DrawCell(canvas, in, colors, entry, entry.itemRect, state);
    if (hooks.tip) hooks.tip(entry);
    ++drawn;
  }
  return drawn;
}

void PaintBar(Canvas& canvas, const WindowRect& client, long drawingCount, int dockSide, const LogFontA& tabFont) {
  const std::uint32_t face = canvas.SysColor(kColorBtnFace);
  canvas.FillRect(client, face);
  if (drawingCount >= 1) return;

  const WindowRect r = Deflated(client, 2);
  const std::uint32_t shadow = canvas.SysColor(kColorBtnShadow);
  canvas.Draw3dRect(r, shadow, shadow);

  const TextExtent extent = canvas.MeasureText(kNoDrawingNotice);
  const long w = Plus(extent.width, 8), h = extent.height;
  if (w > 0 && h > 0 && static_cast<long long>(w) * h <= kMaxLabelPixels) {
    std::vector<unsigned char> rgb(static_cast<std::size_t>(w) * h * 3);
    const auto iw = static_cast<std::int32_t>(w), ih = static_cast<std::int32_t>(h);
    const RasterRect whole{0, 0, iw, ih};
    IS40_FillSolidRect(rgb.data(), iw, ih, 3, iw * 3, &whole, face, 0);
    IS40_DrawSmoothTextOnRGB2(rgb.data(), iw, ih, iw * 3, kNoDrawingNotice, &tabFont, 4, &whole, kNoticeFormat, 0,
                              canvas.SysColor(kColorBtnText));
    const bool side = dockSide == kDockLeft || dockSide == kDockRight;
    if (side) {
      IS40_QuickRotateImageInPlace(rgb.data(), iw, ih, dockSide == kDockLeft ? 2 : 0, 3, 0);
      const long o = (r.Width() - h) / 2;
      canvas.DrawRgb(rgb.data(), ih, iw, ih * 3, Plus(r.left, o), Plus(r.top, o));
    } else {
      const long o = (r.Height() - h) / 2;
      canvas.DrawRgb(rgb.data(), iw, ih, iw * 3, Plus(r.left, o), Plus(r.top, o));
    }
  }
  canvas.FillAlpha(r, canvas.SysColor(kColorActiveCaption), kNoticeTintAlpha);
}

// ---------------------------------------------------------------- recording

std::string RectText(const WindowRect& r) {
  char text[64];
  std::snprintf(text, sizeof text, "%ld,%ld,%ld,%ld", r.left, r.top, r.right, r.bottom);
  return text;
}

namespace {

std::string Hex(std::uint32_t value) {
  char text[16];
  std::snprintf(text, sizeof text, "%06X", value);
  return text;
}

}  // namespace

void RecordingCanvas::FillRect(const WindowRect& r, std::uint32_t color) {
  if (!quiet) calls.push_back("fill " + RectText(r) + " " + Hex(color));
}

void RecordingCanvas::Draw3dRect(const WindowRect& r, std::uint32_t topLeft, std::uint32_t bottomRight) {
  if (!quiet) calls.push_back("frame " + RectText(r) + " " + Hex(topLeft) + " " + Hex(bottomRight));
}

void RecordingCanvas::DrawLabel(std::string_view text, const WindowRect& box, std::uint32_t format,
                               std::uint32_t color, std::uint32_t back) {
  if (quiet) return;
  char f[16];
  std::snprintf(f, sizeof f, "%X", format);
  calls.push_back("text " + RectText(box) + " " + f + " " + Hex(color) + " " + Hex(back) + " " + std::string(text));
}

void RecordingCanvas::DrawDib(const std::vector<unsigned char>&, int width, int height, const WindowRect& to) {
  if (!quiet) calls.push_back("dib " + std::to_string(width) + "x" + std::to_string(height) + " " + RectText(to));
}

void RecordingCanvas::DrawGlyph(Glyph glyph, long x, long y, std::uint32_t color) {
  if (quiet) return;
  const char* name = glyph == Glyph::Lock ? "lock" : glyph == Glyph::Modified ? "modified" : "turned";
  calls.push_back(std::string("glyph ") + name + " " + std::to_string(x) + "," + std::to_string(y) + " " + Hex(color));
}

void RecordingCanvas::FillAlpha(const WindowRect& r, std::uint32_t color, int alpha) {
  if (!quiet) calls.push_back("alpha " + RectText(r) + " " + Hex(color) + " " + std::to_string(alpha));
}

void RecordingCanvas::DrawRgb(const unsigned char* rgb, int width, int height, int stride, long x, long y) {
  if (quiet) return;
  calls.push_back("rgb " + std::to_string(width) + "x" + std::to_string(height) + " stride " + std::to_string(stride) +
                  " at " + std::to_string(x) + "," + std::to_string(y));
  Image image{width, height, stride, x, y, {}};
  if (rgb && stride > 0 && height > 0) image.pixels.assign(rgb, rgb + static_cast<std::size_t>(stride) * height);
  images.push_back(std::move(image));
}

std::uint32_t RecordingCanvas::SysColor(int index) {
  switch (index) {
    case kColorActiveCaption:
      return 0xE35400;
    case kColorBtnFace:
      return 0xF0F0F0;
    case kColorBtnShadow:
      return 0xA0A0A0;
    case kColorBtnText:
      return 0x000000;
    case kColorBtnHighlight:
      return 0xFFFFFF;
    default:
      return 0x808080;
  }
}

TextExtent RecordingCanvas::MeasureText(std::string_view text) {
  return {static_cast<long>(text.size()) * 6, textHeight};
}

}  // namespace tavlet::bar
