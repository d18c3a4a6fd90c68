#include "bar/preview_layout.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "bar/bar_model.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bar {
namespace {

using host::WindowRect;

std::string Text(const WindowRect& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
         "," + std::to_string(r.bottom);
}

std::string Text(const std::vector<WindowRect>& rects, std::size_t count = SIZE_MAX) {
  std::string out;
  for (std::size_t i = 0; i < rects.size() && i < count; ++i)
    out += (i ? " " : "") + Text(rects[i]);
  return out;
}

class SilentView final : public PreviewStripView {
 public:
  void LayOut() override {}
  void Redraw() override {}
  void RedrawRect(const WindowRect&) override {}
  void StartTimer(unsigned, unsigned) override {}
};

// A strip of drawings 0 .. n-1 over a 400 by 200 drawing area (aspect 2),
// labels 15 high as after the first paint. Wide is a 300 by 50 run, tall 80 by 300.
const WindowRect kWide{0, 0, 302, 52}, kTall{0, 0, 82, 302};

class StripTest : public ::testing::Test {
 protected:
  void Reset(int n) {
    listPtr = std::make_unique<DocList>(*host.Documents(), files, view, listSettings);
    docs.clear();
    layout = StripLayout();
    layout.titleHeight = 15;
    for (int i = 0; i < n; ++i) Add(i);
  }
  void Add(int i) {
    const std::string path = "C:\\d\\" + std::to_string(i) + ".dwg";
    files.AddFile(path, "AC1018" + std::string(32, '\0'));
    docs.push_back(host.OpenDrawing(path));
    list().AddDocument(docs.back());
  }
  DocList& list() { return *listPtr; }
  StripLayoutResult LayOut(int side, WindowRect client, bool floating = false) {
    layout.SetDockSide(side);
    return layout.Layout(list(), settings, {client, {0, 0, 400, 200}, floating});
  }
  // '.' a full cell, '#' a collapsed one.
  std::string Flags() const {
    std::string out;
    for (const auto& e : listPtr->Entries()) out += e->collapsed ? '#' : '.';
    return out;
  }

  MemoryFileSystem files;
  sim::SimHost host{files};
  SilentView view;
  DocListSettings listSettings;
  std::unique_ptr<DocList> listPtr;
  BarSettings settings;
  StripLayout layout;
  std::vector<port::Document> docs;
};

TEST(StripGeometry, CellSizeTruncatesTowardZeroPerOrientation) {
  struct Case {
    int side;
    bool floating;
    long cw, ch;
    int showName;
    bool collapsed;
    long extent;
    CellExtent expected;
  };
  // Aspect 1.5, titles 15. Floating, the client decides; an unknown side is horizontal.
  const Case cases[] = {
      {kDockTop, false, 0, 0, 1, false, 60, {67, 45}},  // 45 x 1.5 = 67.5
      {kDockTop, false, 0, 0, 0, false, 60, {90, 60}},
      {kDockRight, false, 0, 0, 1, true, 61, {61, 15}},
      {kDockTop, true, 100, 100, 1, false, 61, {61, 40}},  // no label share across a vertical strip
      {59999, false, 0, 0, 1, false, 60, {67, 45}},
      {kDockLeft, false, 0, 0, 1, false, -2, {-2, -1}},  // -1.33 cut to -1, not -2
  };
  for (const Case& c : cases) {
    StripLayout layout;
    layout.SetDockSide(c.side);
    layout.floating = c.floating;
    layout.clientWidth = c.cw;
    layout.clientHeight = c.ch;
    layout.viewAspect = 1.5;
    layout.titleHeight = 15;
    layout.previewExtent = c.extent;
    BarSettings settings;
    settings.ShowDwgName = c.showName;
    DocEntry entry(nullptr, DrawingPath());
    entry.collapsed = c.collapsed;
    EXPECT_EQ(layout.CellSize(&entry, settings), c.expected) << c.side << " " << c.extent;
    if (!c.collapsed) {
      EXPECT_EQ(layout.CellSize(nullptr, settings), c.expected);
    }
  }
}

TEST_F(StripTest, CollapsesTheSurplusAndStacksItAtTheFarEnd) {
  struct Case {
    int side;
    WindowRect client;
    int showName, firstFull, n;
    const char* flags;
    int lastFull;
    const char* cells;
  };
  const Case cases[] = {
      {kDockTop, kWide, 1, 0, 5, "....#", 3,  // cells 70 by 35 and a label
       "1,1,71,51 72,1,142,51 143,1,213,51 214,1,284,51 286,1,301,51"},
      {kDockTop, kWide, 0, 0, 5, "..###", 1,  // without labels 100 by 50
       "1,1,101,51 102,1,202,51 256,1,271,51 271,1,286,51 286,1,301,51"},
      {kDockTop, kWide, 1, 2, 5, "##...", 4,  // before firstFull: title strips
       "1,1,16,51 17,1,32,51 33,1,103,51 104,1,174,51 175,1,245,51"},
      {kDockLeft, kTall, 1, 0, 6, ".....#", 4,  // 80 by 40 and a label
       "1,1,81,56 1,57,81,112 1,113,81,168 1,169,81,224 1,225,81,280 1,286,81,301"},
      {kDockLeft, kTall, 1, 2, 5, "##...", 4,  // a collapsed cell is painted without its label
       "1,1,81,16 1,17,81,32 1,33,81,88 1,89,81,144 1,145,81,200"},
      {kDockCommandRight, kWide, 1, 0, 5, "....#", 3,
       "1,1,71,51 72,1,142,51 143,1,213,51 214,1,284,51 286,1,301,51"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.cells);
    settings.ShowDwgName = c.showName;
    Reset(c.n);
    layout.firstFull = c.firstFull;
    StripLayoutResult r = LayOut(c.side, c.client);
    EXPECT_EQ(Flags(), c.flags);
    EXPECT_EQ(layout.lastFull, c.lastFull);
    EXPECT_EQ(r.scrollBar, StripScrollBar::None);
    EXPECT_EQ(Text(layout.PlaceCells(list(), settings)), c.cells);
    // One tip per entry, id index + 1, over the place of the previous paint.
    ASSERT_EQ(r.tips.size(), static_cast<std::size_t>(c.n));
    EXPECT_EQ(r.tips.back().id, static_cast<unsigned>(c.n));
    EXPECT_EQ(r.tips.back().rect, WindowRect{});
    EXPECT_EQ(list().Entries().back()->index, c.n - 1);
  }
}

TEST_F(StripTest, AStripShorterThanTheFirstCellKeepsTheLastLayoutsLastFull) {
  Reset(5);
  LayOut(kDockTop, {0, 0, 502, 52});
  LayOut(kDockTop, {0, 0, 62, 52});
  EXPECT_EQ(layout.lastFull, 4);
  EXPECT_EQ(Flags(), ".....");
  // A new strip starts from lastFull 0: the first cell stays full and overruns.
  Reset(5);
  LayOut(kDockTop, {0, 0, 62, 52});
  EXPECT_EQ(Flags(), ".####");
  EXPECT_EQ(Text(layout.PlaceCells(list(), settings), 1), "1,1,71,51");
  EXPECT_EQ(layout.stripArea.right, 61);
}

TEST_F(StripTest, ClicksSwitchOrBringACollapsedCellIntoView) {
  struct Case {
    long x;
    unsigned flags;
    int firstFull;
    StripClickAction action;
    int switchTo;  // index of the drawing, -1 none
    int firstFullAfter;
    const char* flagsAfter;
  };
  // Cells 0..3 full, 4 stacked at 286..301 (firstFull 0).
  const Case cases[] = {
      {290, 0, 0, StripClickAction::Expanded, -1, 1, "#...."},  // past the end: by 4 - lastFull
      {290, kMkControl, 0, StripClickAction::Switch, 4, 0, "....#"},
      {71, 0, 0, StripClickAction::None, -1, 0, "....#"},  // the pixel between two cells
      {100, 0, 0, StripClickAction::Switch, 1, 0, "....#"},
      {5, 0, 1, StripClickAction::Expanded, -1, 0, "....#"},  // before firstFull: back to it
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.x);
    Reset(5);
    layout.firstFull = c.firstFull;
    LayOut(kDockTop, kWide);
    layout.PlaceCells(list(), settings);
    const StripClick click = layout.OnLButtonDown(list(), c.flags, c.x, 20);
    EXPECT_EQ(click.action, c.action);
    EXPECT_EQ(click.document,
              c.switchTo < 0 ? nullptr : docs[static_cast<std::size_t>(c.switchTo)]);
    EXPECT_EQ(layout.firstFull, c.firstFullAfter);
    LayOut(kDockTop, kWide);
    EXPECT_EQ(Flags(), c.flagsAfter);
  }
}

TEST_F(StripTest, HitTestPrefersTheLaterOfTwoOverlappingCells) {
  Reset(2);
  list().Entries()[0]->itemRect = {0, 0, 50, 50};
  list().Entries()[1]->itemRect = {40, 0, 90, 50};
  EXPECT_EQ(layout.DocumentAt(list(), 45, 10), docs[1]);
  EXPECT_EQ(layout.DocumentAt(list(), 39, 10), docs[0]);
  EXPECT_EQ(layout.DocumentAt(list(), 90, 10), nullptr);
}

TEST_F(StripTest, ScrollingPlacesTheBarBySideAndShiftsTheCells) {
  struct Case {
    int side;
    WindowRect client;
    bool floating;
    int n;
    long posBefore;
    const char* bar;   // kind, band, strip area
    const char* info;  // mask min max page pos
    long posAfter;
    const char* cells;  // the first two
  };
  // Horizontal: 5 x 70 = 350 in 300. Vertical: 6 x (40 + 1 + 15) = 336 counted, 330 used.
  const Case cases[] = {
      {kDockTop, kWide, false, 5, 0, "H 1,1,301,13 1,13,301,51", "11 0 350 300 0", 0,
       "1,13,71,51 72,13,142,51"},
      {kDockTop, kWide, false, 5, 100, "H 1,1,301,13 1,13,301,51", "15 0 350 300 50", 50,
       "-49,13,21,51 22,13,92,51"},
      {kDockBottom, kWide, false, 5, 0, "H 1,39,301,51 1,1,301,39", "11 0 350 300 0", 0,
       "1,1,71,39 72,1,142,39"},
      {kDockCommandLeft, kWide, false, 5, 0, "H 1,39,301,51 1,1,301,39", "11 0 350 300 0", 0,
       "1,1,71,39 72,1,142,39"},
      {kDockLeft, kTall, false, 6, 30, "V 1,1,13,301 13,1,81,301", "11 0 336 300 30", 30,
       "13,-29,81,26 13,27,81,82"},
      {kDockRight, kTall, false, 6, 0, "V 69,1,81,301 1,1,69,301", "11 0 336 300 0", 0,
       "1,1,69,56 1,57,69,112"},
      // 5 x 56 = 280 counted with the gaps, 275 used: no bar, the position reset.
      {kDockLeft, kTall, false, 5, 20, "- 1,1,81,301", "", 0, "1,1,81,56 1,57,81,112"},
      // Floating wide yet docked left: a horizontal bar in the left band.
      {kDockLeft, kWide, true, 5, 0, "H 1,1,13,51 13,1,301,51", "11 0 350 300 0", 0,
       "13,1,83,51 84,1,154,51"},
      {kDockTop, kWide, false, 0, 0, "- 1,1,301,51", "", 0, ""},
  };
  settings.ScrollOverflow = 1;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.bar);
    Reset(c.n);
    layout.scrollPos = c.posBefore;
    StripLayoutResult r = LayOut(c.side, c.client, c.floating);
    std::string bar = r.scrollBar == StripScrollBar::None         ? "-"
                      : r.scrollBar == StripScrollBar::Horizontal ? "H " + Text(r.scrollBarRect)
                                                                  : "V " + Text(r.scrollBarRect);
    EXPECT_EQ(bar + " " + Text(layout.stripArea), c.bar);
    if (r.scrollBar != StripScrollBar::None) {
      const StripScrollInfo& i = r.scrollInfo;
      EXPECT_EQ(std::to_string(i.mask) + " " + std::to_string(i.min) + " " + std::to_string(i.max) +
                    " " + std::to_string(i.page) + " " + std::to_string(i.pos),
                c.info);
    }
    EXPECT_EQ(layout.scrollPos, c.posAfter);
    EXPECT_EQ(Flags(), std::string(static_cast<std::size_t>(c.n), '.'));
    EXPECT_EQ(Text(layout.PlaceCells(list(), settings), 2), c.cells);
  }
}

TEST_F(StripTest, ScrollCodesKeepTheHorizontalArrowsReversed) {
  struct Case {
    int side, n;
    long start;
    int code;
    long thumb, expected;
  };
  const Case cases[] = {
      // Horizontal, cells 70 wide: 10 cells, limit 700 - 300 = 400.
      {kDockTop, 10, 100, kSbLineUp, 0, 170},
      {kDockTop, 10, 100, kSbLineDown, 0, 30},
      {kDockTop, 10, 0, kSbLineDown, 0, 0},
      {kDockTop, 10, 100, kSbPageUp, 0, 0},
      {kDockTop, 10, 200, kSbPageDown, 0, 400},
      {kDockTop, 10, 100, kSbThumbTrack, 123, 123},
      {kDockTop, 10, 100, kSbThumbPosition, 999, 400},
      {kDockTop, 10, 100, 8, 0, 100},  // SB_ENDSCROLL only clamps
      // Vertical, cells 40 high: 10 cells, limit 560 - 300 = 260.
      {kDockLeft, 10, 100, kSbLineUp, 0, 60},
      {kDockLeft, 10, 100, kSbLineDown, 0, 140},
      {kDockLeft, 10, 100, kSbPageDown, 0, 260},
      // All fit (210 in 300): the limit is -90 and wins over any position not itself negative.
      {kDockTop, 3, 0, kSbLineUp, 0, -90},
      {kDockTop, 3, 0, kSbLineDown, 0, 0},
      {kDockTop, 3, 0, 8, 0, -90},
  };
  settings.ScrollOverflow = 1;
  for (const Case& c : cases) {
    Reset(c.n);
    LayOut(c.side, c.side == kDockLeft ? kTall : kWide);
    layout.scrollPos = c.start;
    EXPECT_EQ(layout.OnScroll(c.code, c.thumb, settings), c.expected)
        << c.side << " code " << c.code << " from " << c.start;
    EXPECT_EQ(layout.scrollPos, c.expected);
  }
}

TEST_F(StripTest, OutOfRangeSizesStayInsideTheCoordinateRange) {
  Reset(3);
  // A negative Size gives the strip a negative client: nothing collapses, nothing breaks.
  LayOut(kDockTop, {0, 0, 300, -40});
  EXPECT_EQ(layout.previewExtent, -42);
  EXPECT_EQ(Flags(), "...");
  // A drawing area of extreme proportions and an absurd scroll bar thickness.
  settings.ScrollOverflow = 1;
  settings.ScrollBarSize = INT_MAX;
  StripLayoutResult r = layout.Layout(list(), settings, {kWide, {0, 0, 2000000000, 1}, false});
  EXPECT_EQ(layout.CellSize(nullptr, settings).width, INT_MAX);
  EXPECT_EQ(layout.totalLength, INT_MAX);
  EXPECT_EQ(r.scrollBar, StripScrollBar::Horizontal);
  EXPECT_EQ(r.scrollBarRect.bottom, INT_MAX);
  EXPECT_EQ(layout.OnScroll(kSbPageDown, 0, settings), 300);
}

}  // namespace
}  // namespace tavlet::bar
