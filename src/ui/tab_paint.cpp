#include "ui/tab_paint.h"

#include <utility>

namespace tavlet::ui {

int OrientationOf(unsigned long style) {
  const int farBit = (style & kTcsBottom) ? 1 : 0;
  return (style & kTcsVertical) ? 2 + farBit : farBit;
}

unsigned BaseFlags(int orientation) {
  unsigned flags = 0;
  if (orientation % 2 == 1) flags += kTabPartFarSide;
  if (orientation == kTabLeft || orientation == kTabRight) flags += kTabPartOnSide;
  return flags;
}

bool UseThemedDrawing(bool themedDrawing, bool isWindow, unsigned long systemVersion, bool themeActive) {
  return themedDrawing && isWindow && systemVersion >= 0x50001 && themeActive;
}

WindowRect PageRect(const WindowRect& client, const WindowRect& adjusted, int orientation) {
  WindowRect page = client;
  switch (orientation) {
    case kTabTop:
      page.top = adjusted.top - 2;
      break;
    case kTabBottom:
      page.bottom = adjusted.bottom + 3;
      break;
    case kTabLeft:
      page.left = adjusted.left - 1;
      break;
    default:
      page.right = adjusted.right + 3;
      break;
  }
  return page;
}

WindowRect SelectedTabRect(WindowRect item, int orientation, int rows, unsigned long style, long pageBottom) {
  if (item.left > item.right) std::swap(item.left, item.right);
  if (item.top > item.bottom) std::swap(item.top, item.bottom);
  item = {item.left - 2, item.top - 2, item.right + 2, item.bottom + 2};
  if (orientation == kTabTop) item.bottom -= 1;
  if (rows > 1 && (style & kTcsMultiline) && item.bottom > pageBottom - 2) item.bottom = pageBottom - 2;
  return item;
}

TabContentPlace PlaceTabContent(unsigned flags, bool hasImage) {
  const bool farSide = flags & kTabPartFarSide, selected = flags & kTabPartSelected;
  TabContentPlace place;
  const long left = farSide ? 3 : 6;
  long top = 2 + (farSide ? 1 : 0) + (selected ? 1 : 0);
  if (!selected && !farSide) top = 3;
  place.imageX = left + (selected ? 2 : 0);
  place.imageY = top - (selected ? 0 : 2);
  place.textLeft = hasImage ? left + 19 : left - 2;
  place.textTop = top;
  return place;
}

unsigned OwnerDrawFormat(bool selected, int orientation) {
  // DT_CENTER | DT_BOTTOM | DT_SINGLELINE, or DT_CENTER | DT_VCENTER | DT_SINGLELINE.
  return !selected && orientation != kTabBottom ? 0x29u : 0x25u;
}

int OwnerDrawTurns(int orientation) {
  return orientation == kTabLeft ? 3 : orientation == kTabRight ? 1 : 0;
}

}  // namespace tavlet::ui
