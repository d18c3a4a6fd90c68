// The host frame's layout of its control bars, in the framework's own protocol:
// each child bar of the frame answers WM_SIZEPARENT by taking its strip off the
// rectangle it is given (and, outside query mode, by moving itself there); what
// remains goes to the window with the left-over id, the MDI client.
#pragma once

#include <windows.h>

namespace tavlet::win32 {

inline constexpr UINT kWmSizeParent = 0x0361;  // WM_SIZEPARENT
inline constexpr UINT kMdiClientId = 0xE900;   // AFX_IDW_PANE_FIRST

// AFX_SIZEPARENTPARAMS, field for field.
struct SizeParentParams {
  HDWP deferred;  // null in query mode
  RECT rect;      // what is left; each bar cuts its part off
  SIZE sizeTotal;
  BOOL stretch;
};

// Lays out the frame's bars with ids from `first` to `last` over `client` (the
// frame's client rectangle when null) and returns the rectangle left for the
// window with id `leftOver`. In query mode nothing moves.
RECT RepositionBars(HWND frame, UINT first, UINT last, UINT leftOver, bool query, const RECT* client = nullptr);

// The frame's query-mode layout: the MDI client is moved, without repaint, to
// the place the bars leave it, and its hooks carve from there.
void RepositionDrawingArea(HWND frame, HWND mdiClient);

}  // namespace tavlet::win32
