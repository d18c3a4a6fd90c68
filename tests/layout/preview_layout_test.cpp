#include "bar/preview_layout.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <vector>

#include "bar/bar_model.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bar {
namespace {

using host::WindowRect;
using Rects = std::vector<WindowRect>;

class SilentView final : public PreviewStripView {
 public:
  void LayOut() override {}
  void Redraw() override {}
  void RedrawRect(const WindowRect&) override {}
  void StartTimer(unsigned, unsigned) override {}
};

// A strip of n drawings over a 400 by 200 drawing area (aspect 2), labels 15
// high as after the first paint.
class StripTest : public ::testing::Test {
 protected:
  // A new list and strip of drawings 0 .. n-1 (opened once in the host).
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
  const Case cases[] = {
      {kDockTop, false, 0, 0, 1, false, 60, {67, 45}},  // 45 x 1.5 = 67.5
      {kDockTop, false, 0, 0, 0, false, 60, {90, 60}},  // no label: the whole extent
      {kDockTop, false, 0, 0, 1, true, 60, {15, 45}},   // collapsed: title wide
      {kDockCommandLeft, false, 0, 0, 1, false, 60, {67, 45}},
      {kDockLeft, false, 0, 0, 1, false, 61, {61, 40}},  // 61 / 1.5 = 40.67; the label is not taken
                                                         // off
      {kDockRight, false, 0, 0, 1, true, 61, {61, 15}},
      {kDockLeft, true, 200, 100, 1, false, 60, {67, 45}},  // floating wide: horizontal whatever
                                                            // the side
      {kDockTop, true, 100, 100, 1, false, 61, {61, 40}},   // floating square: vertical
      {59999, false, 0, 0, 1, false, 60, {67, 45}},         // an unknown side is horizontal
      {kDockTop, false, 0, 0, 1, false, -2, {-25, -17}},    // a bar of negative size: -25.5 cut to
                                                            // -25
      {kDockLeft, false, 0, 0, 1, false, -2, {-2, -1}},     // -1.33 cut to -1, not -2
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
    EXPECT_EQ(layout.CellSize(&entry, settings), c.expected)
        << "side " << c.side << " extent " << c.extent;
    if (!c.collapsed) {
      EXPECT_EQ(layout.CellSize(nullptr, settings), c.expected);
    }
  }
}

TEST_F(StripTest, CollapsesTheSurplusAndStacksItAtTheFarEnd) {
  struct Case {
    const char* what;
    int side;
    WindowRect client;
    int showName, firstFull, n;
    const char* flags;
    int lastFull;
    Rects cells;
  };
  const Case cases[] = {
      {"top, 70-wide cells in 300",
       kDockTop,
       {0, 0, 302, 52},
       1,
       0,
       5,
       "....#",
       3,
       {{1, 1, 71, 51}, {72, 1, 142, 51}, {143, 1, 213, 51}, {214, 1, 284, 51}, {286, 1, 301, 51}}},
      {"no labels: 100-wide cells",
       kDockTop,
       {0, 0, 302, 52},
       0,
       0,
       5,
       "..###",
       1,
       {{1, 1, 101, 51},
        {102, 1, 202, 51},
        {256, 1, 271, 51},
        {271, 1, 286, 51},
        {286, 1, 301, 51}}},
      {"entries before firstFull are title strips",
       kDockTop,
       {0, 0, 302, 52},
       1,
       2,
       5,
       "##...",
       4,
       {{1, 1, 16, 51}, {17, 1, 32, 51}, {33, 1, 103, 51}, {104, 1, 174, 51}, {175, 1, 245, 51}}},
      {"left: 40 high plus label",
       kDockLeft,
       {0, 0, 82, 302},
       1,
       0,
       6,
       ".....#",
       4,
       {{1, 1, 81, 56},
        {1, 57, 81, 112},
        {1, 113, 81, 168},
        {1, 169, 81, 224},
        {1, 225, 81, 280},
        {1, 286, 81, 301}}},
      {"left: a collapsed cell painted without its label's share",
       kDockLeft,
       {0, 0, 82, 302},
       1,
       2,
       5,
       "##...",
       4,
       {{1, 1, 81, 16}, {1, 17, 81, 32}, {1, 33, 81, 88}, {1, 89, 81, 144}, {1, 145, 81, 200}}},
      {"a command side is horizontal",
       kDockCommandRight,
       {0, 0, 302, 52},
       1,
       0,
       5,
       "....#",
       3,
       {{1, 1, 71, 51}, {72, 1, 142, 51}, {143, 1, 213, 51}, {214, 1, 284, 51}, {286, 1, 301, 51}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    settings.ShowDwgName = c.showName;
    Reset(c.n);
    layout.firstFull = c.firstFull;
    StripLayoutResult r = LayOut(c.side, c.client);
    EXPECT_EQ(Flags(), c.flags);
    EXPECT_EQ(layout.lastFull, c.lastFull);
    EXPECT_EQ(r.scrollBar, StripScrollBar::None);
    EXPECT_EQ(layout.PlaceCells(list(), settings), c.cells);
    // Tips: one per entry, id index + 1, over the place of the previous paint.
    ASSERT_EQ(r.tips.size(), static_cast<std::size_t>(c.n));
    EXPECT_EQ(r.tips.back().id, static_cast<unsigned>(c.n));
    EXPECT_EQ(r.tips.back().rect, WindowRect{});
    EXPECT_EQ(list().Entries().back()->index, c.n - 1);
  }
}

TEST_F(StripTest, AStripShorterThanTheFirstCellKeepsTheLastLayoutsLastFull) {
  Reset(5);
  LayOut(kDockTop, {0, 0, 502, 52});
  EXPECT_EQ(layout.lastFull, 4);
  LayOut(kDockTop, {0, 0, 62, 52});
  EXPECT_EQ(layout.lastFull, 4);
  EXPECT_EQ(Flags(), ".....");
  // A new strip starts from lastFull 0: the first cell stays full and overruns.
  layout = StripLayout();
  layout.titleHeight = 15;
  LayOut(kDockTop, {0, 0, 62, 52});
  EXPECT_EQ(Flags(), ".####");
  EXPECT_EQ(layout.PlaceCells(list(), settings).front(), (WindowRect{1, 1, 71, 51}));
  EXPECT_EQ(layout.stripArea.right, 61);
}

TEST_F(StripTest, ClicksSwitchOrBringACollapsedCellIntoView) {
  struct Case {
    const char* what;
    long x;
    unsigned flags;
    int firstFull;
    StripClickAction action;
    int switchTo;  // index of the drawing, -1 none
    int firstFullAfter;
    const char* flagsAfterRelayout;
  };
  // Laid out: cells 0..3 full, 4 stacked at 286..301; firstFull as given.
  const Case cases[] = {
      {"past the end: shifts by index - lastFull", 290, 0, 0, StripClickAction::Expanded, -1, 1,
       "#...."},
      {"Ctrl switches and leaves the layout", 290, kMkControl, 0, StripClickAction::Switch, 4, 0,
       "....#"},
      {"the pixel between two cells", 71, 0, 0, StripClickAction::None, -1, 0, "....#"},
      {"a full cell switches", 100, 0, 0, StripClickAction::Switch, 1, 0, "....#"},
      {"before firstFull: firstFull goes back to it", 5, 0, 1, StripClickAction::Expanded, -1, 0,
       "....#"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Reset(5);
    layout.firstFull = c.firstFull;
    LayOut(kDockTop, {0, 0, 302, 52});
    layout.PlaceCells(list(), settings);
    const StripClick click = layout.OnLButtonDown(list(), c.flags, c.x, 20);
    EXPECT_EQ(click.action, c.action);
    EXPECT_EQ(click.document,
              c.switchTo < 0 ? nullptr : docs[static_cast<std::size_t>(c.switchTo)]);
    EXPECT_EQ(layout.firstFull, c.firstFullAfter);
    LayOut(kDockTop, {0, 0, 302, 52});
    EXPECT_EQ(Flags(), c.flagsAfterRelayout);
  }
}

TEST_F(StripTest, HitTestPrefersTheLaterOfTwoOverlappingCells) {
  Reset(2);
  list().Entries()[0]->itemRect = {0, 0, 50, 50};
  list().Entries()[1]->itemRect = {40, 0, 90, 50};
  EXPECT_EQ(layout.DocumentAt(list(), 45, 10), docs[1]);
  EXPECT_EQ(layout.DocumentAt(list(), 39, 10), docs[0]);
  EXPECT_EQ(layout.DocumentAt(list(), 90, 10), nullptr);  // right and bottom edges are outside
}

TEST_F(StripTest, ScrollingPlacesTheBarBySideAndClampsThePosition) {
  struct Case {
    const char* what;
    int side;
    WindowRect client;
    bool floating;
    int n;
    long posBefore;
    StripScrollBar bar;
    WindowRect barRect, stripArea;
    StripScrollInfo info;
    long posAfter;
  };
  constexpr unsigned kBase = kSifRange | kSifPage | kSifDisableNoHide;
  const Case cases[] = {
      {"top: band at the top",
       kDockTop,
       {0, 0, 302, 52},
       false,
       5,
       0,
       StripScrollBar::Horizontal,
       {1, 1, 301, 13},
       {1, 13, 301, 51},
       {kBase, 0, 350, 300, 0},
       0},
      {"past the limit: SIF_POS",
       kDockTop,
       {0, 0, 302, 52},
       false,
       5,
       100,
       StripScrollBar::Horizontal,
       {1, 1, 301, 13},
       {1, 13, 301, 51},
       {kBase | kSifPos, 0, 350, 300, 50},
       50},
      {"bottom",
       kDockBottom,
       {0, 0, 302, 52},
       false,
       5,
       0,
       StripScrollBar::Horizontal,
       {1, 39, 301, 51},
       {1, 1, 301, 39},
       {kBase, 0, 350, 300, 0},
       0},
      {"a command side takes the bottom band",
       kDockCommandLeft,
       {0, 0, 302, 52},
       false,
       5,
       0,
       StripScrollBar::Horizontal,
       {1, 39, 301, 51},
       {1, 1, 301, 39},
       {kBase, 0, 350, 300, 0},
       0},
      // Vertical: 6 x (40 + 1 + 15) = 336 counted, 6 x 55 = 330 used.
      {"left",
       kDockLeft,
       {0, 0, 82, 302},
       false,
       6,
       0,
       StripScrollBar::Vertical,
       {1, 1, 13, 301},
       {13, 1, 81, 301},
       {kBase, 0, 336, 300, 0},
       0},
      {"right",
       kDockRight,
       {0, 0, 82, 302},
       false,
       6,
       0,
       StripScrollBar::Vertical,
       {69, 1, 81, 301},
       {1, 1, 69, 301},
       {kBase, 0, 336, 300, 0},
       0},
      // 5 x 56 = 280 counted with the gaps, 275 used: no bar, and the position is reset.
      {"left, all fit",
       kDockLeft,
       {0, 0, 82, 302},
       false,
       5,
       20,
       StripScrollBar::None,
       {},
       {1, 1, 81, 301},
       {},
       0},
      {"floating wide, docked left: a horizontal bar in the left band",
       kDockLeft,
       {0, 0, 302, 52},
       true,
       5,
       0,
       StripScrollBar::Horizontal,
       {1, 1, 13, 51},
       {13, 1, 301, 51},
       {kBase, 0, 350, 300, 0},
       0},
      {"empty list",
       kDockTop,
       {0, 0, 302, 52},
       false,
       0,
       0,
       StripScrollBar::None,
       {},
       {1, 1, 301, 51},
       {},
       0},
  };
  settings.ScrollOverflow = 1;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Reset(c.n);
    layout.scrollPos = c.posBefore;
    StripLayoutResult r = LayOut(c.side, c.client, c.floating);
    EXPECT_EQ(r.scrollBar, c.bar);
    EXPECT_EQ(layout.stripArea, c.stripArea);
    EXPECT_EQ(layout.scrollPos, c.posAfter);
    if (c.bar != StripScrollBar::None) {
      EXPECT_EQ(r.scrollBarRect, c.barRect);
      EXPECT_EQ(r.scrollInfo, c.info);
    }
    EXPECT_EQ(Flags(), std::string(static_cast<std::size_t>(c.n), '.'));
  }
}

TEST_F(StripTest, ScrolledCellsStartBeforeTheStripAndKeepTheFullExtent) {
  settings.ScrollOverflow = 1;
  Reset(5);
  layout.scrollPos = 50;
  LayOut(kDockTop, {0, 0, 302, 52});
  EXPECT_EQ(layout.previewExtent, 50);  // not reduced by the bar's band
  Rects cells = layout.PlaceCells(list(), settings);
  EXPECT_EQ(cells[0], (WindowRect{-49, 13, 21, 51}));
  EXPECT_EQ(cells[1], (WindowRect{22, 13, 92, 51}));

  Add(5);
  layout.scrollPos = 30;
  LayOut(kDockLeft, {0, 0, 82, 302});
  cells = layout.PlaceCells(list(), settings);
  EXPECT_EQ(cells[0], (WindowRect{13, -29, 81, 26}));
  EXPECT_EQ(cells[1], (WindowRect{13, 27, 81, 82}));
}

TEST_F(StripTest, ScrollCodesKeepTheHorizontalArrowsReversed) {
  struct Case {
    int side;
    WindowRect client;
    int n;
    long start;
    int code;
    long thumb;
    long expected;
  };
  const WindowRect wide{0, 0, 302, 52}, tall{0, 0, 82, 302};
  const Case cases[] = {
      // Horizontal, cells 70 wide: 10 cells, limit 700 - 300 = 400.
      {kDockTop, wide, 10, 100, kSbLineUp, 0, 170},
      {kDockTop, wide, 10, 100, kSbLineDown, 0, 30},
      {kDockTop, wide, 10, 0, kSbLineDown, 0, 0},
      {kDockTop, wide, 10, 100, kSbPageUp, 0, 0},
      {kDockTop, wide, 10, 200, kSbPageDown, 0, 400},
      {kDockTop, wide, 10, 100, kSbThumbTrack, 123, 123},
      {kDockTop, wide, 10, 100, kSbThumbPosition, 999, 400},
      {kDockTop, wide, 10, 100, 8, 0, 100},  // SB_ENDSCROLL only clamps
      // Vertical, cells 40 high: 10 cells, limit 560 - 300 = 260.
      {kDockLeft, tall, 10, 100, kSbLineUp, 0, 60},
      {kDockLeft, tall, 10, 100, kSbLineDown, 0, 140},
      {kDockLeft, tall, 10, 100, kSbPageDown, 0, 260},
      // All cells fit (210 in 300): the limit is -90 and wins over any position
      // that is not itself negative.
      {kDockTop, wide, 3, 0, kSbLineUp, 0, -90},
      {kDockTop, wide, 3, 0, kSbLineDown, 0, 0},
      {kDockTop, wide, 3, 0, 8, 0, -90},
  };
  settings.ScrollOverflow = 1;
  for (const Case& c : cases) {
    Reset(c.n);
    LayOut(c.side, c.client);
    layout.scrollPos = c.start;
    EXPECT_EQ(layout.OnScroll(c.code, c.thumb, settings), c.expected)
        << "side " << c.side << " code " << c.code << " from " << c.start;
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
  layout.SetDockSide(kDockTop);
  StripLayoutResult r =
      layout.Layout(list(), settings, {{0, 0, 302, 52}, {0, 0, 2000000000, 1}, false});
  EXPECT_EQ(layout.CellSize(nullptr, settings).width, INT_MAX);
  EXPECT_EQ(layout.totalLength, INT_MAX);
  EXPECT_EQ(r.scrollBar, StripScrollBar::Horizontal);
  EXPECT_EQ(r.scrollBarRect.bottom, INT_MAX);
  EXPECT_EQ(layout.OnScroll(kSbPageDown, 0, settings), 300);
}

}  // namespace
}  // namespace tavlet::bar
