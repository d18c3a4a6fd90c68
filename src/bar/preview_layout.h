// The preview strip's geometry: how the cells of the open drawings share the
// bar's length, which of them collapse to title strips or how far the strip has
// scrolled, where paint puts each cell, and which cell a point falls on. Every
// operation takes sizes and settings and gives rectangles; the strip's window
// (PreviewStrip on the platform side) only applies them: it shows and places the
// scroll bar, adds the tip tools, paints the cells where this says.
//
// Example, the window's WM_SIZE:
//   StripLayoutResult r = layout.Layout(bar.Strip(), bar.Settings(),
//                                       {client, bar.mdiClientRect, bar.Floating()});
//   hide both bars; delete the tips; add r.tips; if (r.scrollBar != kNone) show, place at
//   r.scrollBarRect and give it r.scrollInfo; redraw.
#pragma once

#include <vector>

#include "bar/doc_list.h"
#include "host/window_system.h"
#include "settings/settings_table.h"

namespace tavlet::bar {

// Before the bar first hands its side over.
inline constexpr int kNoDockSide = -1;

// Mouse-message key flags and scroll codes, with the platform's values.
inline constexpr unsigned kMkControl = 0x0008;
inline constexpr int kSbLineUp = 0;
inline constexpr int kSbLineDown = 1;
inline constexpr int kSbPageUp = 2;
inline constexpr int kSbPageDown = 3;
inline constexpr int kSbThumbPosition = 4;
inline constexpr int kSbThumbTrack = 5;
// SCROLLINFO masks.
inline constexpr unsigned kSifRange = 0x0001;
inline constexpr unsigned kSifPage = 0x0002;
inline constexpr unsigned kSifPos = 0x0004;
inline constexpr unsigned kSifDisableNoHide = 0x0008;

// The picture part of a cell: its width and height.
struct CellExtent {
  long width = 0;
  long height = 0;
  friend bool operator==(const CellExtent&, const CellExtent&) = default;
};

enum class StripScrollBar { None, Vertical, Horizontal };

// What SetScrollInfo is given (fMask, nMin, nMax, nPage, nPos).
struct StripScrollInfo {
  unsigned mask = 0;
  long min = 0;
  long max = 0;
  long page = 0;
  long pos = 0;
  friend bool operator==(const StripScrollInfo&, const StripScrollInfo&) = default;
};

// One tip tool of the strip: id index + 1 over the entry's last painted place.
struct StripTipTool {
  unsigned id = 0;
  host::WindowRect rect;
  DocEntry* entry = nullptr;
};

// What the window passes to each layout.
struct StripFrame {
  host::WindowRect client;       // the strip's client rectangle
  host::WindowRect drawingArea;  // the MDI client's rectangle the frame hook kept
  bool floating = false;         // the bar's Floating
};

// What the window applies after a layout: both scroll bars hidden and the
// strip's tips deleted first, then these tips added, then the one bar (if any)
// shown at scrollBarRect with scrollInfo, then a redraw of the strip.
struct StripLayoutResult {
  StripScrollBar scrollBar = StripScrollBar::None;
  host::WindowRect scrollBarRect;
  StripScrollInfo scrollInfo;  // meaningful only with a bar shown
  std::vector<StripTipTool> tips;
};

// What a left click on the strip asks of the window.
enum class StripClickAction {
  None,      // no cell there: only the base class
  Expanded,  // a collapsed cell was brought into view: lay out again
  Switch,    // SwitchToDocument(document)
};
struct StripClick {
  StripClickAction action = StripClickAction::None;
  port::Document document = nullptr;
};

// Height of a label and of a collapsed strip, from the label font's text height.
long TitleHeightFor(long textHeight);

// Docked: false on the left and right sides, true on every other (the command
// sides among them). Floating: true when the client is wider than high.
bool IsHorizontal(int dockSide, bool floating, long clientWidth, long clientHeight);

class StripLayout;

// A cursor over the cells in paint order: the window's paint asks it for each
// entry's rectangle in turn (stopping when the list is Busy), stores that in
// itemRect, captures and draws there.
class CellCursor {
 public:
  // The rectangle of entry `i` of `count`; advances past it.
  host::WindowRect Place(int i, const DocEntry& entry);

 private:
  friend class StripLayout;
  CellCursor(const StripLayout& layout, const BarSettings& settings, int count);

  const StripLayout& layout_;
  const BarSettings& settings_;
  int count_;
  host::WindowRect cell_;
};

// The strip's layout members. They live as long as the strip's window; firstFull,
// lastFull and scrollPos carry over from one layout to the next.
class StripLayout {
 public:
  // The bar hands its side over; true when it changed, and the window then lays out.
  bool SetDockSide(int side);

  // The strip at the last layout, as IsHorizontal(dockSide, floating, client size).
  bool IsHorizontal() const;
  // The picture part of `entry`'s cell (null counts as a normal cell).
  CellExtent CellSize(const DocEntry* entry, const BarSettings& settings) const;

  // Collapses or scrolls the cells over the strip's length; rewrites each
  // entry's index and collapsed flag. Stops at once when the list is Busy.
  StripLayoutResult Layout(DocList& list, const BarSettings& settings, const StripFrame& frame);

  // Paint-time placement; `titleHeight` must be set first (TitleHeightFor).
  CellCursor Cells(const BarSettings& settings, int count) const {
    return CellCursor(*this, settings, count);
  }
  // Places every entry in turn and stores its itemRect; the rectangles in order.
  std::vector<host::WindowRect> PlaceCells(DocList& list, const BarSettings& settings);

  // The entry whose itemRect holds the point, searched from the last one; null
  // when none does or the list is Busy.
  DocEntry* HitTest(DocList& list, long x, long y) const;
  port::Document DocumentAt(DocList& list, long x, long y) const;

  // WM_LBUTTONDOWN (flags as the message's wParam). A click on a collapsed cell
  // without Ctrl moves firstFull so that it comes into view; the window lays out.
  StripClick OnLButtonDown(DocList& list, unsigned flags, long x, long y);

  // WM_HSCROLL / WM_VSCROLL from the strip's own bar: the new scrollPos, already
  // stored; the window sets it on the bar and redraws. `thumb` is the message's
  // position for the thumb codes.
  long OnScroll(int code, long thumb, const BarSettings& settings);

  int dockSide = kNoDockSide;
  bool floating = false;
  long clientWidth = 0, clientHeight = 0;  // the strip's client at the last layout
  host::WindowRect stripArea;
  double viewAspect = 1.0;
  long previewExtent = 0;
  int firstFull = 0;
  int lastFull = 0;
  long scrollPos = 0;
  long runLength = 0;
  long totalLength = 0;
  long titleHeight = 0;  // set at each paint
};

}  // namespace tavlet::bar
