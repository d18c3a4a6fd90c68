// The bar's docking arithmetic: how a frame hook carves the bar's strip off a
// proposed WM_WINDOWPOSCHANGING rectangle, the bar's children per side, the grip
// that sizes it by the mouse, the tab control's style and thickness per side, and
// the floating frame's first place. Pure functions of sizes and settings; the
// hook and the windows apply what they return.
//
// Stored values are used as they stand: a negative Size carves a negative strip
// (the drawing area grows and the bar gets an empty rectangle), and a DockSide
// that names no side is still an area side up to 59422 and a command side above
// it, where the carving cuts nothing and the bar is given the whole rectangle.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "bar/bar_model.h"
#include "host/window_system.h"

namespace tavlet::bar {

// ---------------------------------------------------------------- the frame hooks

// The proposed rectangle of a WINDOWPOS: (x, y, x + cx, y + cy).
host::WindowRect ProposedRect(const host::WindowPos& pos);

// One carving: the window's new proposal and where the bar goes (in the same
// parent's coordinates). moveBar false: the bar is left where it is.
struct Carving {
  host::WindowPos pos;
  host::WindowRect bar;
  bool moveBar = false;
};

// The hook passes the message through untouched (steps before any carving):
// not a WM_WINDOWPOSCHANGING of one of the two windows, the module Off,
// HideOnSingle with one drawing, or a zero cx or cy (a frame being minimised).
// `drawingCount` is asked only when HideOnSingle is set.
bool HookPassesThrough(bool windowPosChanging, bool hookedWindow, bool on, int hideOnSingle,
                       const std::function<long()>& drawingCount, const host::WindowPos& pos);

// The command host's proposal with the bar beside the command line: 59424 takes
// `width` off the left, 59425 off the right; any other command side cuts nothing
// and the bar gets the whole rectangle. The caller tests that the side is a
// command side and the bar docked, and passes CommandWidth().
Carving CarveCommandHost(const host::WindowPos& proposed, int dockSide, long width);

// The MDI client's proposal with the bar on an area side: `thickness` off the
// top, left, right or bottom; an unknown area side cuts nothing and the bar gets
// the whole rectangle. The caller passes TabThickness or PreviewThickness, as
// UsesTabThickness chooses.
Carving CarveDrawingArea(const host::WindowPos& proposed, int dockSide, long thickness);

// Tabs decide the area-side thickness with no drawing open or in tab mode;
// otherwise the previews' Size does.
bool UsesTabThickness(long drawingCount, bool tabMode);

// The whole of FrameAreaHook's arithmetic for one message on one of the two
// windows, with the bar's model asked for the thickness, the width and the count
// only where the algorithm does. Stores the command host's or MDI client's rect
// on `bar`. `layOutStrip` tells the caller to lay the strip out again (floating
// or on a command side, the drawing area's proportions may have changed).
struct HookOutcome {
  Carving carving;
  bool layOutStrip = false;
};
HookOutcome CarveForHook(BarModel& bar, bool onCommandHost, const host::WindowPos& proposed);

// ---------------------------------------------------------------- the bar's children

// WM_SIZE of the bar: where the tab control and the preview strip go in the
// bar's client rectangle `client`.
struct ChildRects {
  host::WindowRect tabs;
  host::WindowRect strip;
};
ChildRects BarChildRects(int dockSide, bool floating, const host::WindowRect& client);

// Tab control styles (TCS_*), with the platform's values.
inline constexpr unsigned long kTcsBottom = 0x0002;
inline constexpr unsigned long kTcsRight = 0x0002;
inline constexpr unsigned long kTcsVertical = 0x0080;
// The tab control's style for a side, from its present style.
unsigned long TabStyleForSide(int dockSide, unsigned long style);
// rows x row size + margin, the row size taken from the selected tab's item
// rectangle: its height on the top and bottom, its width on the left and right.
long TabRowsThickness(int dockSide, int rows, const host::WindowRect& selectedItem);

// ---------------------------------------------------------------- sizing by the grip

enum class GripCursor { Arrow, SizeWe, SizeNs };

// The grip: a zone along the side facing the drawing area, `frameWidth`
// (SM_CXFRAME) to both sides of the edge, in the bar's client coordinates.
// None for a side that has no such edge.
struct Grip {
  host::WindowRect zone;
  GripCursor cursor = GripCursor::Arrow;
};
std::optional<Grip> GripFor(int dockSide, long clientWidth, long clientHeight, long frameWidth);

// WM_SETCURSOR applies (else the base class): docked, not LockSize, and either
// not in tab mode or on a command side.
bool GripApplies(const BarSettings& settings, bool tabMode);

// The grip's drag state (MvTavlet's Sizing) and its three messages.
class GripSizing {
 public:
  struct CursorAnswer {
    GripCursor cursor = GripCursor::Arrow;
    bool takeCapture = false;  // the drag starts: SetCapture
  };
  // WM_SETCURSOR with the pointer at (x, y) in client coordinates;
  // `buttonDown` when the triggering mouse message is WM_LBUTTONDOWN. Returns
  // nullopt when the base class handles it; otherwise the window sets the cursor
  // and answers 1.
  std::optional<CursorAnswer> OnSetCursor(const BarSettings& settings, bool tabMode, long x, long y,
                                          long clientWidth, long clientHeight, long frameWidth,
                                          bool buttonDown);
  // WM_MOUSEMOVE while sizing: the new thickness, written to WidthOnCmdWnd on a
  // command side and to Size otherwise, unclamped. nullopt when not sizing.
  std::optional<long> OnMouseMove(BarSettings& settings, long x, long y, long clientWidth,
                                  long clientHeight);
  // WM_LBUTTONUP (the window releases the capture first): at the end of a drag,
  // stores Size (and runs `refreshAll` on an area side) or WidthOnCmdWnd on a
  // command side, then nudges the frame. False when no drag was under way.
  bool OnLButtonUp(BarModel& bar, const std::function<void()>& refreshAll);

  bool Sizing() const { return sizing_; }

 private:
  bool sizing_ = false;
};

// The thickness a drag to (x, y) gives on `dockSide`; nullopt on a side with no grip.
std::optional<long> DragThickness(int dockSide, long x, long y, long clientWidth,
                                  long clientHeight);

// ---------------------------------------------------------------- floating and hiding

// The floating frame's place when no FloatPosition is stored: the MDI client's
// last rectangle mapped to the screen, its top left corner, 300 by 100.
host::WindowRect DefaultFloatRect(const host::WindowRect& mdiClientOnScreen);
inline constexpr long kFloatWidth = 300;
inline constexpr long kFloatHeight = 100;
// FloatFrame's initialisation: the stored FloatPosition (a placement of the
// wrong shape counts as restored and moves nothing), else DefaultFloatRect.
void PlaceFloatFrame(const SettingsStore& store, WindowPort& frame,
                     const host::WindowRect& mdiClientOnScreen);

// HideOnSingle with exactly one drawing: the hooks pass sizes through and the
// thicknesses are 0.
bool HidesForSingle(int hideOnSingle, long drawingCount);
// After a drawing opens: the second drawing needs back the space that one gave.
bool NeedsSpaceBack(int hideOnSingle, long drawingCount, bool floating);

// ---------------------------------------------------------------- double clicks

// WM_LBUTTONDBLCLK on the bar (also forwarded from the strip and the tabs):
// with Ctrl the last workset, without it the newest recent file.
enum class BarDoubleClick { LastWorkset, LastDrawing };
BarDoubleClick OnBarDoubleClick(unsigned flags);

}  // namespace tavlet::bar
