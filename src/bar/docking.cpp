#include "bar/docking.h"

#include "bar/coordinates.h"

namespace tavlet::bar {

// ---------------------------------------------------------------- the frame hooks

host::WindowRect ProposedRect(const host::WindowPos& pos) {
  return {pos.x, pos.y, Plus(pos.x, pos.cx), Plus(pos.y, pos.cy)};
}

bool HookPassesThrough(bool windowPosChanging, bool hookedWindow, bool on, int hideOnSingle,
                       const std::function<long()>& drawingCount, const host::WindowPos& pos) {
  if (!windowPosChanging || !on || !hookedWindow) return true;
  if (hideOnSingle && drawingCount && drawingCount() == 1) return true;
  return pos.cx == 0 || pos.cy == 0;
}

Carving CarveCommandHost(const host::WindowPos& proposed, int dockSide, long width) {
  Carving c{proposed, ProposedRect(proposed), true};
  if (dockSide == kDockCommandLeft) {
    c.pos.x = Plus(c.pos.x, width);
    c.bar.right = c.pos.x;
    c.pos.cx = Minus(c.pos.cx, width);
  } else if (dockSide == kDockCommandRight) {
    c.bar.left = Minus(Plus(c.pos.x, c.pos.cx), width);
    c.pos.cx = Minus(c.pos.cx, width);
  }
  return c;
}

Carving CarveDrawingArea(const host::WindowPos& proposed, int dockSide, long thickness) {
  Carving c{proposed, ProposedRect(proposed), true};
  switch (dockSide) {
    case kDockTop:
      c.pos.y = Plus(c.pos.y, thickness);
      c.bar.bottom = c.pos.y;
      c.pos.cy = Minus(c.pos.cy, thickness);
      break;
    case kDockLeft:
      c.pos.x = Plus(c.pos.x, thickness);
      c.bar.right = c.pos.x;
      c.pos.cx = Minus(c.pos.cx, thickness);
      break;
    case kDockRight:
      c.bar.left = Minus(Plus(c.pos.x, c.pos.cx), thickness);
      c.pos.cx = Minus(c.pos.cx, thickness);
      break;
    case kDockBottom:
      c.bar.top = Minus(Plus(c.pos.y, c.pos.cy), thickness);
      c.pos.cy = Minus(c.pos.cy, thickness);
      break;
    default:
      break;
  }
  return c;
}

bool UsesTabThickness(long drawingCount, bool tabMode) { return drawingCount < 1 || tabMode; }

HookOutcome CarveForHook(BarModel& bar, bool onCommandHost, const host::WindowPos& proposed) {
  HookOutcome outcome{{proposed, ProposedRect(proposed), false}, false};
  const int side = bar.DockSide();
  const bool floating = bar.Floating();
  const host::WindowRect rect = ProposedRect(proposed);
  if (onCommandHost) {
    bar.commandHostRect = rect;
    if (!IsAreaSide(side) && !floating)
      outcome.carving = CarveCommandHost(proposed, side, bar.CommandWidth());
  } else {
    // Kept twice by the bar: for the floating frame's first place and for the
    // previews' proportions; one member serves both here.
    bar.mdiClientRect = rect;
    if (IsAreaSide(side) && !floating) {
      const long thickness = UsesTabThickness(bar.DrawingCount(), bar.TabMode())
                                 ? bar.TabThickness(&rect)
                                 : bar.PreviewThickness();
      outcome.carving = CarveDrawingArea(proposed, side, thickness);
    }
  }
  outcome.layOutStrip = floating || !IsAreaSide(side);
  return outcome;
}

// ---------------------------------------------------------------- the bar's children

ChildRects BarChildRects(int dockSide, bool floating, const host::WindowRect& client) {
  ChildRects rects{client, client};
  if (floating) return rects;
  switch (dockSide) {
    case kDockTop:
      rects.tabs.top = Plus(client.top, 1);
      break;
    case kDockLeft:
      rects.tabs.left = Plus(client.left, 2);
      break;
    case kDockRight:
      rects.tabs.right = Minus(client.right, 1);
      break;
    default:
      if (!IsAreaSide(dockSide))
        rects.strip = {Plus(client.left, 1), Plus(client.top, 1), Minus(client.right, 1),
                       Minus(client.bottom, 3)};
      break;
  }
  return rects;
}

unsigned long TabStyleForSide(int dockSide, unsigned long style) {
  switch (dockSide) {
    case kDockLeft:
      return (style & ~kTcsRight) | kTcsVertical;
    case kDockRight:
      return style | kTcsVertical | kTcsRight;
    case kDockBottom:
      return (style & ~kTcsVertical) | kTcsBottom;
    default:
      return style & ~(kTcsVertical | kTcsBottom);
  }
}

long TabRowsThickness(int dockSide, int rows, const host::WindowRect& selectedItem) {
  long rowSize = selectedItem.Height();
  long margin = 6;  // any other side has the top's style
  switch (dockSide) {
    case kDockLeft:
      rowSize = selectedItem.Width();
      margin = 8;
      break;
    case kDockRight:
      rowSize = selectedItem.Width();
      margin = 5;
      break;
    case kDockBottom:
      margin = 4;
      break;
    default:
      break;
  }
  return Clamp32(static_cast<long long>(rows) * rowSize + margin);
}

// ---------------------------------------------------------------- sizing by the grip

std::optional<Grip> GripFor(int dockSide, long clientWidth, long clientHeight, long frameWidth) {
  const long w = clientWidth, h = clientHeight, f = frameWidth;
  switch (dockSide) {
    case kDockLeft:
    case kDockCommandLeft:
      return Grip{{Minus(w, f), 0, Plus(w, f), h}, GripCursor::SizeWe};
    case kDockRight:
    case kDockCommandRight:
      return Grip{{Minus(0, f), 0, f, h}, GripCursor::SizeWe};
    case kDockBottom:
      return Grip{{0, Minus(0, f), w, f}, GripCursor::SizeNs};
    case kDockTop:
      return Grip{{0, Minus(h, f), w, Plus(h, f)}, GripCursor::SizeNs};
    default:
      return std::nullopt;
  }
}

bool GripApplies(const BarSettings& settings, bool tabMode) {
  // On an area side in tab mode the rows decide the thickness: no grip there.
  return !settings.Floating && !settings.LockSize && (!tabMode || !IsAreaSide(settings.DockSide));
}

std::optional<long> DragThickness(int dockSide, long x, long y, long clientWidth,
                                  long clientHeight) {
  switch (dockSide) {
    case kDockLeft:
    case kDockCommandLeft:
      return x;
    case kDockRight:
    case kDockCommandRight:
      return Minus(clientWidth, x);
    case kDockBottom:
      return Minus(clientHeight, y);
    case kDockTop:
      return y;
    default:
      return std::nullopt;
  }
}

std::optional<GripSizing::CursorAnswer> GripSizing::OnSetCursor(const BarSettings& settings,
                                                                bool tabMode, long x, long y,
                                                                long clientWidth, long clientHeight,
                                                                long frameWidth, bool buttonDown) {
  if (!GripApplies(settings, tabMode)) return std::nullopt;
  const std::optional<Grip> grip =
      GripFor(settings.DockSide, clientWidth, clientHeight, frameWidth);
  if (!grip || !Contains(grip->zone, x, y)) {
    sizing_ = false;
    return CursorAnswer{GripCursor::Arrow, false};
  }
  if (buttonDown) sizing_ = true;
  return CursorAnswer{grip->cursor, buttonDown};
}

std::optional<long> GripSizing::OnMouseMove(BarSettings& settings, long x, long y, long clientWidth,
                                            long clientHeight) {
  if (!sizing_) return std::nullopt;
  const std::optional<long> value =
      DragThickness(settings.DockSide, x, y, clientWidth, clientHeight);
  if (!value) return std::nullopt;
  if (IsAreaSide(settings.DockSide))
    settings.Size = static_cast<int>(*value);
  else
    settings.WidthOnCmdWnd = static_cast<int>(*value);
  return value;
}

bool GripSizing::OnLButtonUp(BarModel& bar, const std::function<void()>& refreshAll) {
  if (!sizing_) return false;
  sizing_ = false;
  BarSettings& settings = bar.Settings();
  if (IsAreaSide(settings.DockSide)) {
    WriteInt(bar.Store(), keys::Size, settings.Size);
    if (refreshAll) refreshAll();
  } else {
    WriteInt(bar.Store(), keys::WidthOnCmdWnd, settings.WidthOnCmdWnd);
  }
  bar.NudgeFrame();
  return true;
}

// ---------------------------------------------------------------- floating and hiding

host::WindowRect DefaultFloatRect(const host::WindowRect& mdiClientOnScreen) {
  return {mdiClientOnScreen.left, mdiClientOnScreen.top, Plus(mdiClientOnScreen.left, kFloatWidth),
          Plus(mdiClientOnScreen.top, kFloatHeight)};
}

void PlaceFloatFrame(const SettingsStore& store, WindowPort& frame,
                     const host::WindowRect& mdiClientOnScreen) {
  if (store.RestoreWindowPlacement(keys::FloatPosition.section, keys::FloatPosition.key, frame))
    return;
  const host::WindowRect r = DefaultFloatRect(mdiClientOnScreen);
  frame.SetWindowPos(static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.Width()),
                     static_cast<int>(r.Height()));
}

bool HidesForSingle(int hideOnSingle, long drawingCount) {
  return hideOnSingle && drawingCount == 1;
}

bool NeedsSpaceBack(int hideOnSingle, long drawingCount, bool floating) {
  return hideOnSingle && drawingCount == 2 && !floating;
}

// ---------------------------------------------------------------- double clicks

BarDoubleClick OnBarDoubleClick(unsigned flags) {
  return (flags & 0x0008) ? BarDoubleClick::LastWorkset
                          : BarDoubleClick::LastDrawing;  // MK_CONTROL
}

}  // namespace tavlet::bar
