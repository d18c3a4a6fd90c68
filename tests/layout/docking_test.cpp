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

WindowRect RectOf(const WindowPos& p) { return {p.x, p.y, p.x + p.cx, p.y + p.cy}; }

TEST(Carving, EachSideCutsItsStripOffTheProposal) {
  struct Case {
    const char* what;
    bool commandHost;
    int side;
    long amount;
    WindowRect window, bar;
  };
  // The MDI client proposed at (0,60)-(1024,640), the command host at (0,4)-(1024,100).
  const Case cases[] = {
      {"top", false, kDockTop, 100, {0, 160, 1024, 640}, {0, 60, 1024, 160}},
      {"left", false, kDockLeft, 100, {100, 60, 1024, 640}, {0, 60, 100, 640}},
      {"right", false, kDockRight, 100, {0, 60, 924, 640}, {924, 60, 1024, 640}},
      {"bottom", false, kDockBottom, 100, {0, 60, 1024, 540}, {0, 540, 1024, 640}},
      {"zero thickness: an empty bar", false, kDockTop, 0, {0, 60, 1024, 640}, {0, 60, 1024, 60}},
      {"negative Size: the area grows",
       false,
       kDockLeft,
       -30,
       {-30, 60, 1024, 640},
       {0, 60, -30, 640}},
      {"an area side naming no side cuts nothing",
       false,
       7,
       100,
       {0, 60, 1024, 640},
       {0, 60, 1024, 640}},
      {"left of the command line",
       true,
       kDockCommandLeft,
       300,
       {300, 4, 1024, 100},
       {0, 4, 300, 100}},
      {"right of the command line",
       true,
       kDockCommandRight,
       300,
       {0, 4, 724, 100},
       {724, 4, 1024, 100}},
      {"a command side naming no side", true, 59423, 300, {0, 4, 1024, 100}, {0, 4, 1024, 100}},
  };
  for (const Case& c : cases) {
    const WindowPos proposed =
        c.commandHost ? WindowPos{0, 4, 1024, 96} : WindowPos{0, 60, 1024, 580};
    const Carving carving = c.commandHost ? CarveCommandHost(proposed, c.side, c.amount)
                                          : CarveDrawingArea(proposed, c.side, c.amount);
    EXPECT_EQ(RectOf(carving.pos), c.window) << c.what;
    EXPECT_EQ(carving.bar, c.bar) << c.what;
    EXPECT_TRUE(carving.moveBar) << c.what;
  }
  // A thickness at the end of the range saturates instead of overflowing.
  const Carving huge = CarveDrawingArea({0, 60, 1024, 580}, kDockTop, INT_MAX);
  EXPECT_EQ(huge.pos.y, INT_MAX);
  EXPECT_EQ(huge.pos.cy, 580L - INT_MAX);
}

TEST(Carving, TheHookPassesThroughBeforeAnyCut) {
  struct Case {
    bool posChanging, hooked, on;
    int hideOnSingle;
    long count;
    WindowPos pos;
    bool passes;
  };
  const WindowPos normal{0, 60, 1024, 580};
  const Case cases[] = {
      {true, true, true, 0, 1, normal, false},
      {false, true, true, 0, 1, normal, true},  // another message
      {true, false, true, 0, 1, normal, true},  // another window
      {true, true, false, 0, 1, normal, true},  // TLOFF
      {true, true, true, 1, 1, normal, true},   // one drawing gives the space back
      {true, true, true, 1, 2, normal, false},
      {true, true, true, 1, 0, normal, false},
      {true, true, true, 0, 1, {0, 60, 0, 580}, true},  // minimised
      {true, true, true, 0, 1, {0, 60, 1024, 0}, true},
  };
  for (const Case& c : cases) {
    int asked = 0;
    const bool passes = HookPassesThrough(
        c.posChanging, c.hooked, c.on, c.hideOnSingle,
        [&] {
          ++asked;
          return c.count;
        },
        c.pos);
    EXPECT_EQ(passes, c.passes) << c.posChanging << c.hooked << c.on << c.hideOnSingle << " count "
                                << c.count;
    // The count is an automation call: asked only for HideOnSingle.
    if (!c.hideOnSingle) {
      EXPECT_EQ(asked, 0);
    }
  }
}

// The module on the simulated frame: the MDI client is proposed its place
// again and the hook carves it; rectangles on the screen.
TEST(FrameHook, TheDrawingAreaShrinksByTheBarAndTheBarFillsTheStrip) {
  struct Case {
    const char* what;
    int side, size, hideOnSingle, drawings, floating;
    bool off;
    WindowRect mdi, bar;
  };
  const WindowRect full{0, 60, 1024, 640}, untouched{};
  const Case cases[] = {
      {"left", kDockLeft, 100, 0, 2, 0, false, {100, 60, 1024, 640}, {0, 60, 100, 640}},
      {"top", kDockTop, 80, 0, 2, 0, false, {0, 140, 1024, 640}, {0, 60, 1024, 140}},
      {"right", kDockRight, 100, 0, 2, 0, false, {0, 60, 924, 640}, {924, 60, 1024, 640}},
      {"bottom", kDockBottom, 100, 0, 2, 0, false, {0, 60, 1024, 540}, {0, 540, 1024, 640}},
      {"HideOnSingle, one drawing", kDockLeft, 100, 1, 1, 0, false, full, untouched},
      {"HideOnSingle, two drawings",
       kDockLeft,
       100,
       1,
       2,
       0,
       false,
       {100, 60, 1024, 640},
       {0, 60, 100, 640}},
      {"no drawing: the caption's height",
       kDockLeft,
       100,
       0,
       0,
       0,
       false,
       {18, 60, 1024, 640},
       {0, 60, 18, 640}},
      {"negative Size", kDockLeft, -20, 0, 2, 0, false, {-20, 60, 1024, 640}, {0, 60, -20, 640}},
      {"unknown DockSide", 7, 100, 0, 2, 0, false, full, full},
      {"floating", kDockLeft, 100, 0, 2, 1, false, full, untouched},
      {"beside the command line",
       kDockCommandLeft,
       100,
       0,
       2,
       0,
       false,
       full,
       {0, 640, 0, 640}},  // in the dock
      {"off", kDockLeft, 100, 0, 2, 0, true, full, untouched},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::ModuleHarness h;
    h.SetSetting(keys::DockSide, c.side);
    h.SetSetting(keys::Size, c.size);
    h.SetSetting(keys::HideOnSingle, c.hideOnSingle);
    h.SetSetting(keys::Floating, c.floating);
    for (int i = 0; i < c.drawings; ++i) h.OpenDrawing("C:\\d\\" + std::to_string(i) + ".dwg");
    ASSERT_EQ(h.Load(), 0);
    if (c.off) {
      ASSERT_TRUE(h.host.RunRegisteredCommand("TLOFF"));
    }
    h.windows.MoveWindow(h.host.WindowNamed("mdiclient"), full, false);
    WindowRect mdi, bar;
    h.windows.GetWindowRect(h.host.WindowNamed("mdiclient"), mdi);
    h.windows.GetWindowRect(h.Bar()->Window(), bar);
    EXPECT_EQ(mdi, c.mdi);
    EXPECT_EQ(bar, c.bar);
    // The rectangle is kept only past the pass-through tests.
    const bool passedThrough = c.off || (c.hideOnSingle && c.drawings == 1);
    EXPECT_EQ(h.Bar()->mdiClientRect, passedThrough ? WindowRect{} : full);
  }
}

TEST(FrameHook, BesideTheCommandLineTheCommandHostGivesItsSideAndTheStripIsLaidOut) {
  struct Case {
    int side;
    WindowRect host, bar;
  };
  // The dock is at (0,640); the command host proposed at (0,4)-(1024,100) in it.
  const Case cases[] = {
      {kDockCommandLeft, {300, 644, 1024, 740}, {0, 644, 300, 740}},
      {kDockCommandRight, {0, 644, 724, 740}, {724, 644, 1024, 740}},
      {59423, {0, 644, 1024, 740}, {0, 644, 1024, 740}},
  };
  for (const Case& c : cases) {
    sim::ModuleHarness h;
    h.SetSetting(keys::DockSide, c.side);
    h.SetSetting(keys::WidthOnCmdWnd, 300);
    h.OpenDrawing("C:\\d\\a.dwg");
    h.OpenDrawing("C:\\d\\b.dwg");
    ASSERT_EQ(h.Load(), 0);
    const int layouts = h.Bar()->StripLayouts();
    h.windows.MoveWindow(h.host.WindowNamed("cmdhost"), {0, 4, 1024, 100}, false);
    WindowRect hostRect, bar;
    h.windows.GetWindowRect(h.host.WindowNamed("cmdhost"), hostRect);
    h.windows.GetWindowRect(h.Bar()->Window(), bar);
    EXPECT_EQ(hostRect, c.host) << c.side;
    EXPECT_EQ(bar, c.bar) << c.side;
    EXPECT_EQ(h.Bar()->commandHostRect, (WindowRect{0, 4, 1024, 100}));
    EXPECT_EQ(h.Bar()->StripLayouts(), layouts + 1);
  }
}

TEST(BarChildren, TabsAndStripPerSide) {
  struct Case {
    int side;
    bool floating;
    WindowRect tabs, strip;
  };
  const WindowRect r{0, 0, 100, 60};
  const Case cases[] = {
      {kDockTop, false, {0, 1, 100, 60}, r},
      {kDockLeft, false, {2, 0, 100, 60}, r},
      {kDockRight, false, {0, 0, 99, 60}, r},
      {kDockBottom, false, r, r},
      {kDockCommandLeft, false, r, {1, 1, 99, 57}},
      {kDockCommandRight, false, r, {1, 1, 99, 57}},
      {kDockTop, true, r, r},
      {7, false, r, r},
  };
  for (const Case& c : cases) {
    const ChildRects rects = BarChildRects(c.side, c.floating, r);
    EXPECT_EQ(rects.tabs, c.tabs) << c.side << " floating " << c.floating;
    EXPECT_EQ(rects.strip, c.strip) << c.side << " floating " << c.floating;
  }
}

TEST(TabControl, StyleAndRowThicknessPerSide) {
  struct Case {
    int side;
    unsigned long before, after;
    long thickness;  // two rows of a 60 by 20 tab
  };
  const unsigned long base = 0x50000000ul;
  const Case cases[] = {
      {kDockLeft, base | kTcsRight, base | kTcsVertical, 2 * 60 + 8},
      {kDockRight, base, base | kTcsVertical | kTcsRight, 2 * 60 + 5},
      {kDockBottom, base | kTcsVertical, base | kTcsBottom, 2 * 20 + 4},
      {kDockTop, base | kTcsVertical | kTcsBottom, base, 2 * 20 + 6},
      {kDockCommandLeft, base | kTcsVertical, base, 2 * 20 + 6},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(TabStyleForSide(c.side, c.before), c.after) << c.side;
    EXPECT_EQ(TabRowsThickness(c.side, 2, {10, 0, 70, 20}), c.thickness) << c.side;
  }
}

TEST(Grip, ZoneFacesTheDrawingAreaAndTheDragIsNotClamped) {
  struct Case {
    int side;
    std::optional<WindowRect> zone;
    GripCursor cursor;
    long x, y;
    std::optional<long> drag;
  };
  // A bar 100 by 60, SM_CXFRAME 4.
  const Case cases[] = {
      {kDockLeft, WindowRect{96, 0, 104, 60}, GripCursor::SizeWe, 130, 0, 130},
      {kDockCommandLeft, WindowRect{96, 0, 104, 60}, GripCursor::SizeWe, -10, 0, -10},
      {kDockRight, WindowRect{-4, 0, 4, 60}, GripCursor::SizeWe, -50, 0, 150},
      {kDockCommandRight, WindowRect{-4, 0, 4, 60}, GripCursor::SizeWe, 120, 0, -20},
      {kDockBottom, WindowRect{0, -4, 100, 4}, GripCursor::SizeNs, 0, 80, -20},
      {kDockTop, WindowRect{0, 56, 100, 64}, GripCursor::SizeNs, 0, 45, 45},
      {7, std::nullopt, GripCursor::Arrow, 0, 0, std::nullopt},
  };
  for (const Case& c : cases) {
    const std::optional<Grip> grip = GripFor(c.side, 100, 60, 4);
    ASSERT_EQ(grip.has_value(), c.zone.has_value()) << c.side;
    if (grip) {
      EXPECT_EQ(grip->zone, *c.zone) << c.side;
      EXPECT_EQ(grip->cursor, c.cursor) << c.side;
    }
    EXPECT_EQ(DragThickness(c.side, c.x, c.y, 100, 60), c.drag) << c.side;
  }
}

TEST(Grip, AppliesOnlyDockedUnlockedAndWithoutAreaTabs) {
  struct Case {
    int side, floating, lockSize;
    bool tabMode, applies;
  };
  const Case cases[] = {
      {kDockLeft, 0, 0, false, true},       {kDockLeft, 1, 0, false, false},
      {kDockLeft, 0, 1, false, false},      {kDockLeft, 0, 0, true, false},
      {kDockCommandLeft, 0, 0, true, true}, {kDockCommandRight, 0, 1, true, false},
  };
  for (const Case& c : cases) {
    BarSettings s;
    s.DockSide = c.side;
    s.Floating = c.floating;
    s.LockSize = c.lockSize;
    EXPECT_EQ(GripApplies(s, c.tabMode), c.applies)
        << c.side << c.floating << c.lockSize << c.tabMode;
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
    const std::optional<Grip> grip = GripFor(c.side, 100, 60, 4);
    ASSERT_TRUE(grip);
    const long inX = grip->zone.left + 1, inY = grip->zone.top + 1;
    GripSizing sizing;
    // Hovering shows the cursor; only a button press starts the drag.
    auto hover = sizing.OnSetCursor(bar.Settings(), false, inX, inY, 100, 60, 4, false);
    ASSERT_TRUE(hover);
    EXPECT_EQ(hover->cursor, grip->cursor);
    EXPECT_FALSE(hover->takeCapture);
    EXPECT_FALSE(sizing.OnMouseMove(bar.Settings(), c.x, c.y, 100, 60));
    auto away = sizing.OnSetCursor(bar.Settings(), false, 50, 200, 100, 60, 4, true);
    EXPECT_EQ(away->cursor, GripCursor::Arrow);
    EXPECT_FALSE(sizing.Sizing());
    auto press = sizing.OnSetCursor(bar.Settings(), false, inX, inY, 100, 60, 4, true);
    EXPECT_TRUE(press->takeCapture);
    EXPECT_TRUE(sizing.Sizing());
    EXPECT_EQ(sizing.OnMouseMove(bar.Settings(), c.x, c.y, 100, 60), c.value);
    // Nothing is stored before the button goes up.
    EXPECT_EQ(ReadInt(h.store, *c.written, 12345), 12345);
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
    calls.push_back(std::to_string(x) + "," + std::to_string(y) + " " + std::to_string(w) + "x" +
                    std::to_string(h));
  }
  std::vector<std::string> calls;
};

TEST(FloatFrame, FirstPlaceIsTheStoredOneElse300By100AtTheDrawingArea) {
  struct Case {
    const char* stored;  // null: nothing stored
    std::vector<std::string> calls;
  };
  const Case cases[] = {
      {nullptr, {"40,90 300x100"}},
      {"10:20:410:220:NORMAL", {"10,20 400x200"}},
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
