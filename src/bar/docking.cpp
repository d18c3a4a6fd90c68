#include "bar/docking.h"

namespace tavlet::bar {

host::WindowRect ProposedRect(const host::WindowPos& pos) { return {pos.x, pos.y, pos.x + pos.cx, pos.y + pos.cy}; }
bool HookPassesThrough(bool, bool, bool, int, const std::function<long()>&, const host::WindowPos&) { return true; }
Carving CarveCommandHost(const host::WindowPos& proposed, int, long) { return {proposed, ProposedRect(proposed), false}; }
Carving CarveDrawingArea(const host::WindowPos& proposed, int, long) { return {proposed, ProposedRect(proposed), false}; }
bool UsesTabThickness(long drawingCount, bool tabMode) { return drawingCount < 1 || tabMode; }
HookOutcome CarveForHook(BarModel&, bool, const host::WindowPos& proposed) { return {{proposed, {}, false}, false}; }
ChildRects BarChildRects(int, bool, const host::WindowRect& client) { return {client, client}; }
unsigned long TabStyleForSide(int, unsigned long style) { return style; }
long TabRowsThickness(int, int, const host::WindowRect&) { return 0; }
std::optional<Grip> GripFor(int, long, long, long) { return std::nullopt; }
bool GripApplies(const BarSettings&, bool) { return false; }
std::optional<GripSizing::CursorAnswer> GripSizing::OnSetCursor(const BarSettings&, bool, long, long, long, long,
                                                                long, bool) {
  return std::nullopt;
}
std::optional<long> GripSizing::OnMouseMove(BarSettings&, long, long, long, long) { return std::nullopt; }
bool GripSizing::OnLButtonUp(BarModel&, const std::function<void()>&) { return false; }
std::optional<long> DragThickness(int, long, long, long, long) { return std::nullopt; }
host::WindowRect DefaultFloatRect(const host::WindowRect& r) { return {r.left, r.top, r.left + kFloatWidth, r.top + kFloatHeight}; }
bool HidesForSingle(int hideOnSingle, long drawingCount) { return hideOnSingle && drawingCount == 1; }
bool NeedsSpaceBack(int hideOnSingle, long drawingCount, bool floating) { return hideOnSingle && drawingCount == 2 && !floating; }
BarDoubleClick OnBarDoubleClick(unsigned flags) { return flags & 0x0008 ? BarDoubleClick::LastWorkset : BarDoubleClick::LastDrawing; }

}  // namespace tavlet::bar
