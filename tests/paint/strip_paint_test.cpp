// The strip's and the bar's drawing, as recorded draw calls.
#include "bar/strip_paint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bar/bar_model.h"
#include "previews/raster/text_mask.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bar {
namespace {

// Ink where `ink(x, y, width)` says, in mask coordinates.
class InkMask final : public TextMaskPort {
 public:
  std::function<bool(int, int, int)> ink = [](int, int, int) { return false; };
  std::int32_t DrawMask(const void*, bool, const LogFontA&, std::int32_t w, std::int32_t h, std::uint32_t,
                        MonoMask& mask) override {
    mask = {w, h, (w + 7) / 8, {}};
    mask.bits.assign(static_cast<std::size_t>(mask.rowBytes) * h, 0);
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x)
        if (ink(x, y, w)) mask.bits[static_cast<std::size_t>(y) * mask.rowBytes + x / 8] |= 0x80 >> (x % 8);
    return 0;
  }
};

class SilentView final : public PreviewStripView {
 public:
  void LayOut() override {}
  void Redraw() override {}
  void RedrawRect(const WindowRect&) override {}
  void StartTimer(unsigned, unsigned) override {}
};

std::vector<std::string> Matching(const std::vector<std::string>& calls, const std::string& prefix) {
  std::vector<std::string> out;
  for (const auto& c : calls)
    if (c.rfind(prefix, 0) == 0) out.push_back(c);
  return out;
}

// The rows of a drawn image that hold a pixel of `color`, read as the draw reads them.
std::vector<int> InkRows(const RecordingCanvas::Image& image, std::uint32_t color) {
  std::vector<int> rows;
  for (int r = 0; r < image.height; ++r)
    for (int c = 0; c < image.width; ++c) {
      const unsigned char* p = &image.pixels[static_cast<std::size_t>(r) * image.stride + c * 3];
      if ((p[0] | p[1] << 8 | p[2] << 16) == static_cast<int>(color)) {
        rows.push_back(r);
        break;
      }
    }
  return rows;
}

class PaintTest : public ::testing::Test {
 protected:
  void SetUp() override {
    previous_ = SetTextMaskPort(&mask);
    settings.Background = 0x112233;
    settings.TitleBack = 0x445566;
    settings.TitleText = 0x010203;
    colors.modelBackground = 0x000000;
    colors.layoutBackground = 0xFFFFFF;
    colors.modelCrosshair = 0xFFFFFF;
    colors.layoutCrosshair = 0x000000;
  }
  void TearDown() override { SetTextMaskPort(previous_); }

  port::Document Open(const std::string& name, bool readOnly = false) {
    const std::string path = "C:\\d\\" + name + ".dwg";
    files.AddFile(path, "AC1018" + std::string(32, '\0'));
    port::Document doc = host.OpenDrawing(path, readOnly);
    list.AddDocument(doc);
    return doc;
  }
  DocEntry& Entry(std::size_t i) { return *list.Entries()[i]; }
  StripPaintInputs Inputs() { return {{0, 0, 102, 302}, settings, colors, *host.Documents(), LogFontA{}}; }
  std::vector<std::string> Cell(const DocEntry& entry, WindowRect cell, CellPaint state) {
    RecordingCanvas canvas;
    DrawCell(canvas, Inputs(), ResolveColors(settings, canvas), entry, cell, state);
    images = canvas.images;
    return canvas.calls;
  }

  InkMask mask;
  MemoryFileSystem files;
  sim::SimHost host{files};
  SilentView view;
  DocListSettings listSettings;
  DocList list{*host.Documents(), files, view, listSettings};
  BarSettings settings;
  port::ColorSettings colors;
  std::vector<RecordingCanvas::Image> images;

 private:
  TextMaskPort* previous_ = nullptr;
};

TEST_F(PaintTest, MarksFollowTheLabelAndReadOnlyBeatsModified) {
  Open("plan");
  struct Case {
    int showName, above;
    bool readOnly, modified;
    std::vector<std::string> expected;  // fills of the plate, then glyphs
  };
  const WindowRect cell{10, 20, 110, 100};
  const Case cases[] = {
      {1, 0, true, true, {"glyph lock 13,86 0000AC"}},
      {1, 0, false, true, {"glyph modified 13,86 058F28"}},
      {1, 0, false, false, {}},
      {1, 1, false, true, {"glyph modified 13,21 058F28"}},  // the label at the top carries the mark
      {0, 0, true, false, {"fill 12,85,21,98 112233", "glyph lock 13,86 0000AC"}},
      {0, 0, false, true, {"fill 12,85,21,98 112233", "glyph modified 13,86 058F28"}},
      {0, 0, false, false, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.showName << c.above << c.readOnly << c.modified);
    settings.ShowDwgName = c.showName;
    settings.DwgNameAbove = c.above;
    Entry(0).modified = c.modified;
    const auto calls = Cell(Entry(0), cell, {false, c.readOnly, false, 15});
    std::vector<std::string> marks = Matching(calls, "glyph");
    std::vector<std::string> plates = Matching(calls, "fill 12,");
    plates.insert(plates.end(), marks.begin(), marks.end());
    EXPECT_EQ(plates, c.expected);
    EXPECT_EQ(Matching(calls, "text").size(), c.showName ? 1u : 0u);
  }
}

TEST_F(PaintTest, ALabelSitsBelowOrAboveThePictureWithItsTextInset) {
  Open("plan");
  Entry(0).previewDib.assign(64, 0);
  Entry(0).previewWidth = 80;
  Entry(0).previewHeight = 50;
  settings.ShowDwgName = 1;
  settings.DwgNameAbove = 0;
  EXPECT_EQ(Cell(Entry(0), {10, 20, 110, 100}, {false, false, false, 17}),
            (std::vector<std::string>{"dib 80x50 11,21,109,83", "fill 10,83,110,100 445566",
                                      "frame 10,83,110,100 FFFFFF A0A0A0", "text 22,84,109,99 8028 010203 445566 plan"}));
  settings.DwgNameAbove = 1;
  const auto above = Cell(Entry(0), {10, 20, 110, 100}, {false, false, false, 17});
  EXPECT_EQ(above.front(), "dib 80x50 11,37,109,99");
  EXPECT_EQ(above.back(), "text 22,21,109,36 8028 010203 445566 plan");
  settings.ShowDwgName = 0;
  EXPECT_EQ(Cell(Entry(0), {10, 20, 110, 100}, {false, false, false, 17}),
            std::vector<std::string>{"dib 80x50 11,21,109,99"});
}

TEST_F(PaintTest, TheActiveCellIsTintedAndFramedTwice) {
  Open("plan");
  Entry(0).collapsed = true;
  const auto calls = Cell(Entry(0), {0, 0, 50, 15}, {false, false, true, 15});
  const std::vector<std::string> tail(calls.end() - 3, calls.end());
  EXPECT_EQ(tail, (std::vector<std::string>{"alpha 0,0,50,15 E35400 68", "frame 0,0,50,15 E35400 E35400",
                                            "frame 1,1,49,14 E35400 E35400"}));
}

TEST_F(PaintTest, ALockedPictureTakesTheColoursOfItsSpace) {
  Open("plan");
  Entry(0).previewLocked = true;
  for (bool paper : {false, true}) {
    Entry(0).paperSpace = paper;
    const auto calls = Cell(Entry(0), {0, 0, 100, 80}, {false, false, false, 15});
    EXPECT_EQ(Matching(calls, "fill 88,"), std::vector<std::string>{paper ? "fill 88,2,97,15 FFFFFF"
                                                                         : "fill 88,2,97,15 000000"});
    EXPECT_EQ(Matching(calls, "glyph"), std::vector<std::string>{paper ? "glyph lock 89,3 000000"
                                                                      : "glyph lock 89,3 FFFFFF"});
  }
}

TEST_F(PaintTest, CollapsedCellsWriteTheirNameAcrossOrTurnedUpwards) {
  Open("plan");
  Entry(0).collapsed = true;
  Entry(0).modified = true;
  // Vertical strip: the name lies across the thin cell, the mark at its left.
  const auto across = Cell(Entry(0), {0, 0, 100, 15}, {false, false, false, 15});
  EXPECT_EQ(Matching(across, "text"), std::vector<std::string>{"text 13,1,99,14 802C 010203 445566 plan"});
  EXPECT_EQ(Matching(across, "glyph"), std::vector<std::string>{"glyph modified 4,1 058F28"});

  // Horizontal strip: the first quarter of the text is inked; turned upwards, it
  // ends at the bottom of what the draw reads with the stride of the unturned image.
  mask.ink = [](int x, int, int w) { return x < w / 4; };
  const auto turned = Cell(Entry(0), {0, 0, 15, 100}, {true, false, false, 15});
  EXPECT_EQ(Matching(turned, "rgb"), std::vector<std::string>{"rgb 13x83 stride 249 at 1,1"});
  EXPECT_EQ(Matching(turned, "glyph"), std::vector<std::string>{"glyph modified 4,86 058F28"});
  ASSERT_EQ(images.size(), 1u);
  const std::vector<int> rows = InkRows(images[0], 0x010203);
  ASSERT_FALSE(rows.empty());
  EXPECT_GE(rows.front(), 13 / 2);
  EXPECT_LT(rows.back(), 13);
}

TEST_F(PaintTest, ColoursThatAreNoPlainColourFallBackToTheirDefaults) {
  settings.Background = 0x01000005;  // a palette index
  settings.TitleText = 0xFFFFFFFF;
  settings.ReadOnly = 0x02000000;
  settings.Modified = 0xFF;
  RecordingCanvas canvas;
  const PaintColors c = ResolveColors(settings, canvas);
  EXPECT_EQ(c.background, 0xF0F0F0u);
  EXPECT_EQ(c.titleBack, 0x445566u);
  EXPECT_EQ(c.titleText, 0x000000u);
  EXPECT_EQ(c.readOnly, 0xACu);
  EXPECT_EQ(c.modified, 0xFFu);
}

TEST_F(PaintTest, APaintCapturesStaleCellsBeforeDrawingThemAndTintsTheActiveOne) {
  Open("a");
  Open("b", true);
  port::Document c = Open("c");
  host.Activate(c);
  StripLayout layout;
  layout.SetDockSide(kDockLeft);
  layout.titleHeight = 15;
  layout.Layout(list, settings, {{0, 0, 102, 302}, {0, 0, 400, 200}, false});
  Entry(1).previewDirty = false;

  RecordingCanvas canvas;
  canvas.textHeight = 16;
  std::vector<std::string> order;
  StripPaintHooks hooks;
  hooks.capture = [&](DocEntry& e) {
    order.push_back("capture " + e.path.Name + " after " + std::to_string(canvas.calls.size()));
  };
  hooks.tip = [&](const DocEntry& e) { order.push_back("tip " + std::to_string(e.index + 1) + " " + RectText(e.itemRect)); };
  EXPECT_EQ(PaintStrip(canvas, Inputs(), list, layout, hooks), 3);
  EXPECT_EQ(layout.titleHeight, 18);
  EXPECT_EQ(canvas.calls[0], "frame 0,0,102,302 A0A0A0 FFFFFF");
  EXPECT_EQ(canvas.calls[1], "fill 1,1,101,301 112233");
  ASSERT_EQ(order.size(), 5u);
  EXPECT_EQ(order[0], "capture a after 2");
  EXPECT_EQ(order[1].rfind("tip 1 1,1,101,", 0), 0u);
  EXPECT_EQ(order[2].rfind("tip 2 ", 0), 0u);  // b was fresh: no capture
  EXPECT_EQ(order[3].rfind("capture c", 0), 0u);
  EXPECT_EQ(Matching(canvas.calls, "glyph"), std::vector<std::string>{"glyph lock 4," +
                                                                      std::to_string(Entry(1).itemRect.bottom - 14) +
                                                                      " 0000AC"});
  const auto tint = Matching(canvas.calls, "alpha");
  ASSERT_EQ(tint.size(), 1u);
  EXPECT_EQ(tint[0], "alpha " + RectText(Entry(2).itemRect) + " E35400 68");
}

TEST_F(PaintTest, TheNoticeShowsOnlyWithoutDrawingsAndTurnsBySide) {
  mask.ink = [](int x, int, int w) { return x < w / 4; };  // the notice's first quarter
  const WindowRect client{0, 0, 40, 400};
  RecordingCanvas withDrawings;
  PaintBar(withDrawings, client, 1, kDockLeft, LogFontA{});
  EXPECT_EQ(withDrawings.calls, std::vector<std::string>{"fill 0,0,40,400 F0F0F0"});

  struct Case {
    int side;
    WindowRect client;
    std::string draw;
    bool startAtBottom;
  };
  const long w = static_cast<long>(std::string(kNoDrawingNotice).size()) * 6 + 8;  // 6 a character, + 8
  const Case cases[] = {
      {kDockLeft, client, "rgb 13x" + std::to_string(w) + " stride 39 at 13,13", true},
      {kDockRight, client, "rgb 13x" + std::to_string(w) + " stride 39 at 13,13", false},
      {kDockTop, {0, 0, 400, 40}, "rgb " + std::to_string(w) + "x13 stride " + std::to_string(w * 3) + " at 13,13",
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.side);
    RecordingCanvas canvas;
    PaintBar(canvas, c.client, 0, c.side, LogFontA{});
    const WindowRect inner{2, 2, c.client.right - 2, c.client.bottom - 2};
    EXPECT_EQ(canvas.calls.front(), "fill " + RectText(c.client) + " F0F0F0");
    EXPECT_EQ(canvas.calls[1], "frame " + RectText(inner) + " A0A0A0 A0A0A0");
    EXPECT_EQ(canvas.calls[2], c.draw);
    EXPECT_EQ(canvas.calls.back(), "alpha " + RectText(inner) + " E35400 102");
    ASSERT_EQ(canvas.images.size(), 1u);
    if (c.side == kDockTop) continue;
    const std::vector<int> rows = InkRows(canvas.images[0], 0x000000);
    ASSERT_FALSE(rows.empty());
    const int height = canvas.images[0].height;
    if (c.startAtBottom)
      EXPECT_GT(rows.front(), height / 2);
    else
      EXPECT_LT(rows.back(), height / 2);
  }
}

}  // namespace
}  // namespace tavlet::bar
