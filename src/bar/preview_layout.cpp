#include "bar/preview_layout.h"

#include "bar/bar_model.h"

namespace tavlet::bar {

long TitleHeightFor(long textHeight) { return textHeight + 2 < 15 ? 15 : textHeight + 2; }

bool IsHorizontal(int dockSide, bool floating, long clientWidth, long clientHeight) {
  if (floating) return clientWidth > clientHeight;
  return dockSide != kDockLeft && dockSide != kDockRight;
}

CellCursor::CellCursor(const StripLayout& layout, const BarSettings& settings, int count)
    : layout_(layout), settings_(settings), count_(count), cell_(layout.stripArea) {}

host::WindowRect CellCursor::Place(int, const DocEntry&) { return cell_; }

bool StripLayout::SetDockSide(int side) {
  const bool changed = dockSide != side;
  dockSide = side;
  return changed;
}

bool StripLayout::IsHorizontal() const { return bar::IsHorizontal(dockSide, floating, clientWidth, clientHeight); }

CellExtent StripLayout::CellSize(const DocEntry*, const BarSettings&) const { return {}; }

StripLayoutResult StripLayout::Layout(DocList&, const BarSettings&, const StripFrame&) { return {}; }

std::vector<host::WindowRect> StripLayout::PlaceCells(DocList&, const BarSettings&) { return {}; }

DocEntry* StripLayout::HitTest(DocList&, long, long) const { return nullptr; }

port::Document StripLayout::DocumentAt(DocList& list, long x, long y) const {
  DocEntry* entry = HitTest(list, x, y);
  return entry ? entry->document : nullptr;
}

StripClick StripLayout::OnLButtonDown(DocList&, unsigned, long, long) { return {}; }

long StripLayout::OnScroll(int, long, const BarSettings&) { return scrollPos; }

}  // namespace tavlet::bar
