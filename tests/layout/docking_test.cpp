#include "bar/docking.h"

#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>
#include <vector>

#include "sim/module_harness.h"

namespace tavlet::bar {
namespace {

using host::WindowPos;
using host::WindowRect;

std::string Text(const WindowRect& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
         "," + std::to_string(r.bottom);
}

TEST(Carving, AThicknessAtTheEndOfTheRangeSaturatesInsteadOfOverflowing) {
  const Carving huge = CarveDrawingArea({0, 60, 1024, 580}, kDockTop, INT_MAX);
  EXPECT_EQ(huge.pos.y, INT_MAX);
  EXPECT_EQ(huge.pos.cy, 580L - INT_MAX);
  EXPECT_EQ(Text(huge.bar), "0,60,1024," + std::to_string(INT_MAX));
}

// The module on the simulated frame (the command dock at y 640): the MDI client
// or the command host is proposed its place again and the hook carves it.
TEST(FrameHook, TheWindowShrinksByTheBarAndTheBarFillsTheStrip) {
  struct Case {
    int side, size, hideOnSingle, drawings, floating;
    bool off;
    const char* expected;    // the window's place | the bar's, on the screen
    bool minimised = false;  // a zero-width proposal
  };
  const Case cases[] = {
      {kDockLeft, 100, 0, 2, 0, false, "100,60,1024,640 | 0,60,100,640"},
      {kDockTop, 80, 0, 2, 0, false, "0,140,1024,640 | 0,60,1024,140"},
      {kDockRight, 100, 0, 2, 0, false, "0,60,924,640 | 924,60,1024,640"},
      {kDockBottom, 100, 0, 2, 0, false, "0,60,1024,540 | 0,540,1024,640"},
      {kDockLeft, 100, 1, 1, 0, false, "0,60,1024,640 | 0,0,0,0"},  // HideOnSingle, one drawing
      {kDockLeft, 100, 1, 2, 0, false, "100,60,1024,640 | 0,60,100,640"},
      {kDockLeft, 100, 0, 0, 0, false, "18,60,1024,640 | 0,60,18,640"},  // none: the caption
      {kDockLeft, -20, 0, 2, 0, false, "-20,60,1024,640 | 0,60,-20,640"},
      {7, 100, 0, 2, 0, false, "0,60,1024,640 | 0,60,1024,640"},
      {kDockLeft, 100, 0, 2, 1, false, "0,60,1024,640 | 0,0,0,0"},  // floating
      {kDockLeft, 100, 0, 2, 0, true, "0,60,1024,640 | 0,0,0,0"},   // TLOFF
      {kDockLeft, 100, 0, 2, 0, false, "0,60,0,640 | 0,0,0,0", true},
      {kDockCommandLeft, 300, 0, 2, 0, false, "300,644,1024,740 | 0,644,300,740"},
      {kDockCommandRight, 300, 0, 2, 0, false, "0,644,724,740 | 724,644,1024,740"},
      {59423, 300, 0, 2, 0, false, "0,644,1024,740 | 0,644,1024,740"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    sim::ModuleHarness h;
    h.SetSetting(keys::DockSide, c.side);
    h.SetSetting(IsAreaSide(c.side) ? keys::Size : keys::WidthOnCmdWnd, c.size);
    h.SetSetting(keys::HideOnSingle, c.hideOnSingle);
    h.SetSetting(keys::Floating, c.floating);
    for (int i = 0; i < c.drawings; ++i) h.OpenDrawing("C:\\d\\" + std::to_string(i) + ".dwg");
    ASSERT_EQ(h.Load(), 0);
    if (c.off) h.host.RunRegisteredCommand("TLOFF");
    const int layouts = h.Bar()->StripLayouts();
    const bool area = IsAreaSide(c.side);
    const port::Window window = h.host.WindowNamed(area ? "mdiclient" : "cmdhost");
    const WindowRect proposed =
        area ? WindowRect{0, 60, c.minimised ? 0 : 1024, 640} : WindowRect{0, 4, 1024, 100};
    h.windows.MoveWindow(window, proposed, false);
    WindowRect placed, bar;
    h.windows.GetWindowRect(window, placed);
    h.windows.GetWindowRect(h.Bar()->Window(), bar);
    EXPECT_EQ(Text(placed) + " | " + Text(bar), c.expected);
    // The rectangle is kept past the pass-through tests; floating or beside the
    // command line the strip is laid out again for the new proportions.
    const bool passed = c.off || c.minimised || (c.hideOnSingle && c.drawings == 1);
    EXPECT_EQ(area ? h.Bar()->mdiClientRect : h.Bar()->commandHostRect,
              passed ? WindowRect{} : proposed);
    EXPECT_EQ(h.Bar()->StripLayouts() - layouts, !passed && (c.floating || !area) ? 1 : 0);
  }
}

// Turning to float gives the strip back to the window it was carved from.
TEST(FrameHook, FloatingGivesTheSpaceBackWhereTheBarWasDocked) {
  for (int side : {kDockLeft, kDockCommandLeft}) {
    SCOPED_TRACE(side);
    const bool area = IsAreaSide(side);
    sim::ModuleHarness h;
    h.SetSetting(keys::DockSide, side);
    h.SetSetting(area ? keys::Size : keys::WidthOnCmdWnd, 300);
    for (int i = 0; i < 2; ++i) h.OpenDrawing("C:\\d\\" + std::to_string(i) + ".dwg");
    ASSERT_EQ(h.Load(), 0);
    const port::Window window = h.host.WindowNamed(area ? "mdiclient" : "cmdhost");
    const WindowRect whole = area ? WindowRect{0, 60, 1024, 640} : WindowRect{0, 4, 1024, 100};
    h.windows.MoveWindow(window, whole, false);
    const size_t layouts = h.windows.LogOf("RecalcFrameLayout").size();
    h.Bar()->SetFloating(true, true);
    // The frame lays out the drawing area again; the command host is moved back.
    EXPECT_EQ(h.windows.LogOf("RecalcFrameLayout").size() - layouts, area ? 1u : 0u);
    if (!area) {
      WindowRect placed;
      h.windows.GetWindowRect(window, placed);
      EXPECT_EQ(Text(placed), "0,644,1024,740");
    }
  }
}

TEST(BarChildren, TabsAndStripPerSideAndTheTabsStyleAndThickness) {
  struct Case {
    int side;
    bool floating;
    const char* rects;  // tabs | strip in a 100 by 60 client
    unsigned long styleBefore, styleAfter;
    long thickness;  // two rows of a 60 by 20 tab
  };
  const unsigned long v = kTcsVertical, r = kTcsRight, b = kTcsBottom;
  const Case cases[] = {
      {kDockTop, false, "0,1,100,60 | 0,0,100,60", v | b, 0, 2 * 20 + 6},
      {kDockLeft, false, "2,0,100,60 | 0,0,100,60", r, v, 2 * 60 + 8},
      {kDockRight, false, "0,0,99,60 | 0,0,100,60", 0, v | r, 2 * 60 + 5},
      {kDockBottom, false, "0,0,100,60 | 0,0,100,60", v, b, 2 * 20 + 4},
      {kDockCommandLeft, false, "0,0,100,60 | 1,1,99,57", v, 0, 2 * 20 + 6},
      {kDockCommandRight, false, "0,0,100,60 | 1,1,99,57", v | r, 0, 2 * 20 + 6},
      {kDockTop, true, "0,0,100,60 | 0,0,100,60", 0, 0, 2 * 20 + 6},
      {7, false, "0,0,100,60 | 0,0,100,60", v, 0, 2 * 20 + 6},
  };
  for (const Case& c : cases) {
    const ChildRects rects = BarChildRects(c.side, c.floating, {0, 0, 100, 60});
    EXPECT_EQ(Text(rects.tabs) + " | " + Text(rects.strip), c.rects) << c.side;
    if (c.floating) continue;
    const unsigned long base = 0x50000000ul;
    EXPECT_EQ(TabStyleForSide(c.side, base | c.styleBefore), base | c.styleAfter) << c.side;
    EXPECT_EQ(TabRowsThickness(c.side, 2, {10, 0, 70, 20}), c.thickness) << c.side;
  }
}

TEST(Grip, ZoneFacesTheDrawingAreaAndTheDragIsNotClamped) {
  struct Case {
    int side;
    const char* zone;  // "" for none
    GripCursor cursor;
    long x, y;
    std::optional<long> drag;
  };
  // A bar 100 by 60, SM_CXFRAME 4.
  const Case cases[] = {
      {kDockLeft, "96,0,104,60", GripCursor::SizeWe, 130, 0, 130},
      {kDockCommandLeft, "96,0,104,60", GripCursor::SizeWe, -10, 0, -10},
      {kDockRight, "-4,0,4,60", GripCursor::SizeWe, -50, 0, 150},
      {kDockCommandRight, "-4,0,4,60", GripCursor::SizeWe, 120, 0, -20},
      {kDockBottom, "0,-4,100,4", GripCursor::SizeNs, 0, 80, -20},
      {kDockTop, "0,56,100,64", GripCursor::SizeNs, 0, 45, 45},
      {7, "", GripCursor::Arrow, 0, 0, std::nullopt},
  };
  for (const Case& c : cases) {
    const std::optional<Grip> grip = GripFor(c.side, 100, 60, 4);
    EXPECT_EQ(grip ? Text(grip->zone) : "", c.zone);
    EXPECT_EQ(grip ? grip->cursor : GripCursor::Arrow, c.cursor);
    EXPECT_EQ(DragThickness(c.side, c.x, c.y, 100, 60), c.drag) << c.side;
  }
  // Docked, unlocked, and not on an area side in tab mode, where the rows decide.
  struct Applies {
    int side, floating, lockSize;
    bool tabMode, applies;
  };
  const Applies applies[] = {
      {kDockLeft, 0, 0, false, true},       {kDockLeft, 1, 0, false, false},
      {kDockLeft, 0, 1, false, false},      {kDockLeft, 0, 0, true, false},
      {kDockCommandLeft, 0, 0, true, true}, {kDockCommandRight, 0, 1, true, false}};
  for (const Applies& a : applies) {
    BarSettings s;
    s.DockSide = a.side;
    s.Floating = a.floating;
    s.LockSize = a.lockSize;
    EXPECT_EQ(GripApplies(s, a.tabMode), a.applies)
        << a.side << a.floating << a.lockSize << a.tabMode;
  }
}

TEST(Grip, ADragStoresTheThicknessAtTheEndAndNudgesTheFrame) {
  struct Case {
    int side;
    long x, y;  // where the button goes up
    const SettingKey* written;
    long value;
    int refreshes;
  };
  const Case cases[] = {
      {kDockLeft, 160, 30, &keys::Size, 160, 1},
      {kDockBottom, 50, 90, &keys::Size, -30, 1},  // past the far edge: stored as it is
      {kDockCommandRight, 20, 30, &keys::WidthOnCmdWnd, 80, 0},
  };
  for (const Case& c : cases) {
    sim::ModuleHarness h;
    h.SetSetting(keys::DockSide, c.side);
    h.OpenDrawing("C:\\d\\a.dwg");
    ASSERT_EQ(h.Load(), 0);
    BarModel& bar = *h.Bar();
    const WindowRect zone = GripFor(c.side, 100, 60, 4)->zone;
    auto setCursor = [&](GripSizing& s, long x, long y, bool down) {
      return *s.OnSetCursor(bar.Settings(), false, x, y, 100, 60, 4, down);
    };
    GripSizing sizing;
    // Hovering shows the cursor; only a button press in the zone starts the drag.
    EXPECT_NE(setCursor(sizing, zone.left, zone.top, false).cursor, GripCursor::Arrow);
    EXPECT_FALSE(sizing.OnMouseMove(bar.Settings(), c.x, c.y, 100, 60));
    EXPECT_EQ(setCursor(sizing, 50, 200, true).cursor, GripCursor::Arrow);
    EXPECT_TRUE(setCursor(sizing, zone.left, zone.top, true).takeCapture);
    EXPECT_EQ(sizing.OnMouseMove(bar.Settings(), c.x, c.y, 100, 60), c.value);
    EXPECT_EQ(ReadInt(h.store, *c.written, 12345), 12345);  // nothing stored during the drag
    h.windows.ClearLog();
    int refreshes = 0;
    EXPECT_TRUE(sizing.OnLButtonUp(bar, [&] { ++refreshes; }));
    EXPECT_EQ(ReadInt(h.store, *c.written, 12345), c.value);
    EXPECT_EQ(refreshes, c.refreshes);
    EXPECT_EQ(h.windows.LogOf("MoveWindow frame").size(), 2u);  // the nudge
    EXPECT_FALSE(sizing.OnLButtonUp(bar, [&] { ++refreshes; }));
  }
}

class RecordingPort final : public WindowPort {
 public:
  bool IsWindow() override { return true; }
  bool GetWindowRect(ScreenRect&) override { return true; }
  bool IsZoomed() override { return false; }
  void ShowWindow(int command) override { calls.push_back("show " + std::to_string(command)); }
  void SetWindowPos(int x, int y, int w, int h) override {
    calls.push_back(Text({x, y, x + w, y + h}));
  }
  std::vector<std::string> calls;
};

TEST(FloatFrame, FirstPlaceIsTheStoredOneElse300By100AtTheDrawingArea) {
  struct Case {
    const char* stored;  // null: nothing stored
    std::vector<std::string> calls;
  };
  const Case cases[] = {
      {nullptr, {"40,90,340,190"}},
      {"10:20:410:220:NORMAL", {"10,20,410,220"}},
      {"1:2:3:4", {}},  // the wrong shape moves nothing and counts as restored
  };
  for (const Case& c : cases) {
    sim::ModuleHarness h;
    if (c.stored) h.store.SetString(keys::FloatPosition.section, keys::FloatPosition.key, c.stored);
    RecordingPort frame;
    PlaceFloatFrame(h.store, frame, {40, 90, 1064, 670});
    EXPECT_EQ(frame.calls, c.calls) << (c.stored ? c.stored : "none");
  }
}

}  // namespace
}  // namespace tavlet::bar
