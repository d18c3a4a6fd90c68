#include "platform/win32/host/frame_layout.h"

#include <vector>

namespace tavlet::win32 {

RECT RepositionBars(HWND frame, UINT first, UINT last, UINT leftOver, bool query, const RECT* client) {
  SizeParentParams layout{};
  if (client) layout.rect = *client;
  else GetClientRect(frame, &layout.rect);
  layout.stretch = TRUE;
  if (!query) layout.deferred = BeginDeferWindowPos(8);

  std::vector<HWND> children;
  for (HWND child = GetWindow(frame, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) children.push_back(child);
  HWND leftOverWindow = nullptr;
  for (HWND child : children) {
    const UINT id = static_cast<UINT>(GetDlgCtrlID(child));
    if (id == leftOver) leftOverWindow = child;
    else if (id >= first && id <= last) SendMessageA(child, kWmSizeParent, 0, reinterpret_cast<LPARAM>(&layout));
  }
  if (!query) {
    if (leftOverWindow) {
      const RECT& r = layout.rect;
      layout.deferred = DeferWindowPos(layout.deferred, leftOverWindow, nullptr, r.left, r.top, r.right - r.left,
                                       r.bottom - r.top, SWP_NOACTIVATE | SWP_NOZORDER);
    }
    if (layout.deferred) EndDeferWindowPos(layout.deferred);
  }
  return layout.rect;
}

void RepositionDrawingArea(HWND frame, HWND mdiClient) {
  if (!frame || !mdiClient) return;
  RECT client{};
  GetClientRect(frame, &client);
  const RECT r = RepositionBars(frame, 0, 0xFFFF, static_cast<UINT>(GetDlgCtrlID(mdiClient)), true, &client);
  MoveWindow(mdiClient, r.left, r.top, r.right - r.left, r.bottom - r.top, FALSE);
}

}  // namespace tavlet::win32
