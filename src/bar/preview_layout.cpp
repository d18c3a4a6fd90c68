#include "bar/preview_layout.h"

#include <cstdint>
#include <limits>

#include "bar/bar_model.h"
#include "bar/coordinates.h"

namespace tavlet::bar {
namespace {

// Truncation towards zero, as every size of the strip is cut.
long Truncate(double value) {
  if (value != value) return 0;
  if (value <= static_cast<double>(std::numeric_limits<std::int32_t>::min()))
    return std::numeric_limits<std::int32_t>::min();
  if (value >= static_cast<double>(std::numeric_limits<std::int32_t>::max()))
    return std::numeric_limits<std::int32_t>::max();
  return static_cast<long>(value);
}

long LabelShare(const BarSettings& settings, long titleHeight) {
  return settings.ShowDwgName ? titleHeight : 0;
}

}  // namespace

long TitleHeightFor(long textHeight) {
  const long height = Plus(textHeight, 2);
  return height < 15 ? 15 : height;
}

bool IsHorizontal(int dockSide, bool floating, long clientWidth, long clientHeight) {
  if (floating) return clientWidth > clientHeight;
  return dockSide != kDockLeft && dockSide != kDockRight;
}

// ---------------------------------------------------------------- paint-time placement

CellCursor::CellCursor(const StripLayout& layout, const BarSettings& settings, int count)
    : layout_(layout), settings_(settings), count_(count), cell_(layout.stripArea) {
  if (settings_.ScrollOverflow) {
    const long shift = layout_.scrollPos;
    if (layout_.IsHorizontal()) {
      cell_.left = Minus(cell_.left, shift);
      cell_.right = Minus(cell_.right, shift);
    } else {
      cell_.top = Minus(cell_.top, shift);
      cell_.bottom = Minus(cell_.bottom, shift);
    }
  }
}

host::WindowRect CellCursor::Place(int i, const DocEntry& entry) {
  const bool horizontal = layout_.IsHorizontal();
  const CellExtent size = layout_.CellSize(&entry, settings_);
  const long title = layout_.titleHeight;
  const long label = LabelShare(settings_, title);
  host::WindowRect& c = cell_;
  if (settings_.ScrollOverflow) {
    if (horizontal)
      c.right = Plus(c.left, size.width);
    else
      c.bottom = Plus(c.top, static_cast<long long>(size.height) + label);
  } else if (i > layout_.lastFull) {
    // The surplus strips are stacked at the far end, one title apart.
    const long long rest = static_cast<long long>(count_ - i - 1) * title;
    c = layout_.stripArea;
    if (horizontal) {
      c.left = Minus(c.right, title + rest);
      c.right = Minus(c.right, rest);
    } else {
      c.top = Minus(c.bottom, title + rest);
      c.bottom = Minus(c.bottom, rest);
    }
  } else if (horizontal) {
    c.right = Plus(c.left, size.width);
  } else {
    // A collapsed cell shows its title alone, without the label's share.
    c.bottom = Plus(c.top, static_cast<long long>(size.height) + (entry.collapsed ? 0 : label));
  }
  const host::WindowRect placed = c;
  if (horizontal)
    c.left = Plus(c.right, 1);
  else
    c.top = Plus(c.bottom, 1);
  return placed;
}

// ---------------------------------------------------------------- the strip

bool StripLayout::SetDockSide(int side) {
  const bool changed = dockSide != side;
  dockSide = side;
  return changed;
}

bool StripLayout::IsHorizontal() const {
  return bar::IsHorizontal(dockSide, floating, clientWidth, clientHeight);
}

CellExtent StripLayout::CellSize(const DocEntry* entry, const BarSettings& settings) const {
  const bool collapsed = entry && entry->collapsed;
  CellExtent size;
  if (IsHorizontal()) {
    size.height = Minus(previewExtent, LabelShare(settings, titleHeight));
    size.width = collapsed ? titleHeight : Truncate(static_cast<double>(size.height) * viewAspect);
  } else {
    size.width = previewExtent;
    size.height = collapsed ? titleHeight : Truncate(static_cast<double>(size.width) / viewAspect);
  }
  return size;
}

StripLayoutResult StripLayout::Layout(DocList& list, const BarSettings& settings,
                                      const StripFrame& frame) {
  StripLayoutResult result;
  if (frame.drawingArea.Width() > 0 && frame.drawingArea.Height() > 0)
    viewAspect = static_cast<double>(frame.drawingArea.Width()) /
                 static_cast<double>(frame.drawingArea.Height());
  floating = frame.floating;
  clientWidth = frame.client.Width();
  clientHeight = frame.client.Height();
  const bool horizontal = IsHorizontal();

  host::WindowRect r{frame.client.left + 1, frame.client.top + 1, frame.client.right - 1,
                     frame.client.bottom - 1};
  previewExtent = horizontal ? r.Height() : r.Width();
  runLength = horizontal ? r.Width() : r.Height();

  const long label = LabelShare(settings, titleHeight);
  const auto& entries = list.Entries();
  const long long n = static_cast<long long>(entries.size());
  long long used = 0;
  for (long long i = 0; i < n; ++i) {
    if (list.Busy()) break;
    DocEntry& e = *entries[static_cast<std::size_t>(i)];
    e.collapsed = false;
    e.index = static_cast<int>(i);
    result.tips.push_back({static_cast<unsigned>(i + 1), e.itemRect, &e});
    if (i < firstFull) e.collapsed = true;
    const CellExtent size = CellSize(&e, settings);
    // The label's share counts for a collapsed cell too, though paint gives it none.
    const long long d = horizontal ? size.width : static_cast<long long>(size.height) + label;
    if (!settings.ScrollOverflow) {
      if (used + d + (n - i - 1) * titleHeight <= runLength) lastFull = static_cast<int>(i);
      if (lastFull < i) e.collapsed = true;
    }
    used += d;
  }

  if (settings.ScrollOverflow) {
    const CellExtent cell = CellSize(nullptr, settings);
    // Only the vertical run counts the pixel between cells; kept as it always was.
    totalLength = horizontal ? Clamp32(n * cell.width)
                             : Clamp32(n * (static_cast<long long>(cell.height) + 1 + label));
    const long limit = totalLength < runLength ? 0 : Minus(totalLength, runLength);
    StripScrollInfo info{kSifRange | kSifPage | kSifDisableNoHide, 0, totalLength, runLength,
                         scrollPos};
    if (scrollPos > limit) {
      scrollPos = limit;
      info.mask |= kSifPos;
      info.pos = limit;
    }
    const bool overflows = horizontal ? used > r.Width() : used > r.Height();
    if (overflows) {
      result.scrollBar = horizontal ? StripScrollBar::Horizontal : StripScrollBar::Vertical;
      result.scrollInfo = info;
      const long thickness = settings.ScrollBarSize;
      const host::WindowRect s = r;
      host::WindowRect band = s;
      switch (dockSide) {
        case kDockTop:
          band.bottom = Plus(s.top, thickness);
          r.top = band.bottom;
          break;
        case kDockLeft:
          band.right = Plus(s.left, thickness);
          r.left = band.right;
          break;
        case kDockRight:
          band.left = Minus(s.right, thickness);
          r.right = band.left;
          break;
        default:
          band.top = Minus(s.bottom, thickness);
          r.bottom = band.top;
          break;
      }
      result.scrollBarRect = band;
    }
  } else {
    scrollPos = 0;
  }
  stripArea = r;
  return result;
}

std::vector<host::WindowRect> StripLayout::PlaceCells(DocList& list, const BarSettings& settings) {
  std::vector<host::WindowRect> placed;
  const auto& entries = list.Entries();
  CellCursor cursor = Cells(settings, static_cast<int>(entries.size()));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (list.Busy()) break;
    entries[i]->itemRect = cursor.Place(static_cast<int>(i), *entries[i]);
    placed.push_back(entries[i]->itemRect);
  }
  return placed;
}

DocEntry* StripLayout::HitTest(DocList& list, long x, long y) const {
  const auto& entries = list.Entries();
  // From the last entry: stacked strips lie over the cells they touch.
  for (std::size_t i = entries.size(); i-- > 0;) {
    if (list.Busy()) return nullptr;
    if (Contains(entries[i]->itemRect, x, y)) return entries[i].get();
  }
  return nullptr;
}

port::Document StripLayout::DocumentAt(DocList& list, long x, long y) const {
  DocEntry* entry = HitTest(list, x, y);
  return entry ? entry->document : nullptr;
}

StripClick StripLayout::OnLButtonDown(DocList& list, unsigned flags, long x, long y) {
  DocEntry* entry = HitTest(list, x, y);
  if (!entry) return {};
  if (!(flags & kMkControl) && entry->collapsed) {
    // The window of full cells shifts so that this one is in it; a strip past
    // the end moves it by its distance from lastFull.
    if (entry->index < firstFull)
      firstFull = entry->index;
    else
      firstFull =
          static_cast<int>(Plus(firstFull, static_cast<long long>(entry->index) - lastFull));
    return {StripClickAction::Expanded, nullptr};
  }
  return {StripClickAction::Switch, entry->document};
}

long StripLayout::OnScroll(int code, long thumb, const BarSettings& settings) {
  const CellExtent cell = CellSize(nullptr, settings);
  const bool horizontal = IsHorizontal();
  long long pos = scrollPos;
  switch (code) {
    // A horizontal strip's arrows run against a vertical one's; kept as it always was.
    case kSbLineUp:
      pos += horizontal ? cell.width : -static_cast<long long>(cell.height);
      break;
    case kSbLineDown:
      pos += horizontal ? -static_cast<long long>(cell.width) : cell.height;
      break;
    case kSbPageUp:
      pos -= runLength;
      break;
    case kSbPageDown:
      pos += runLength;
      break;
    case kSbThumbPosition:
    case kSbThumbTrack:
      pos = thumb;
      break;
    default:
      break;
  }
  // The upper limit is itself negative when every cell fits, and then wins.
  const long long limit = static_cast<long long>(totalLength) - runLength;
  if (pos < 0)
    pos = 0;
  else if (pos > limit)
    pos = limit;
  scrollPos = Clamp32(pos);
  return scrollPos;
}

}  // namespace tavlet::bar
