#include "platform/win32/bar/tab_strip_win32.h"

#include <commctrl.h>

#include <string>
#include <utility>
#include <vector>

#include "bar/docking.h"
#include "platform/win32/handles.h"
#include "platform/win32/port_handles.h"
#include "platform/win32/bar/bar_tips_win32.h"
#include "platform/win32/raster_gdi.h"
#include "platform/win32/ui/themed_tab_ctrl.h"
#include "previews/raster/raster.h"
#include "ui/tab_paint.h"
#include "platform/win32/window.h"
#include "platform/win32/window_hook.h"

namespace tavlet::win32 {

namespace {

std::string ItemText(HWND tabs, int index) {
  char text[512] = {};
  TCITEMA item{};
  item.mask = TCIF_TEXT;
  item.pszText = text;
  item.cchTextMax = sizeof text;
  SendMessageA(tabs, TCM_GETITEMA, index, reinterpret_cast<LPARAM>(&item));
  return text;
}

// Lives as long as the tab control: keeps its font, mirrors the model before a
// paint, and hands double clicks to the bar.
class TabStripHook final : public WindowHook {
 public:
  TabStripHook(bar::BarModel& bar, HFONT font) : bar_(bar), font_(font) {}

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
    switch (message) {
      case WM_PAINT:
        SyncTabControl(Hooked(), bar_.Tabs());
        // A tab added, gone, renamed or moved gets its tip tools anew.
        if (BarTips* tips = BarTips::Of(bar_)) tips->UpdateTabTools();
        break;
      case WM_LBUTTONDBLCLK: {
        POINT point{static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam))};
        HWND parent = GetParent(Hooked());
        MapWindowPoints(Hooked(), parent, &point, 1);
        return SendMessageA(parent, WM_LBUTTONDBLCLK, wParam, MAKELPARAM(point.x, point.y));
      }
      case WM_DESTROY: {
        const LRESULT result = Default();
        Detach();
        delete this;
        return result;
      }
    }
    return Default();
  }

 private:
  bar::BarModel& bar_;
  GdiObject<HFONT> font_;
};

}  // namespace

bool SyncTabControl(HWND tabs, const bar::TabOrder& order) {
  const std::vector<bar::TabItem>& model = order.Tabs();
  const int count = static_cast<int>(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0));
  bool same = count == static_cast<int>(model.size());
  for (int i = 0; same && i < count; ++i) same = ItemText(tabs, i) == model[static_cast<std::size_t>(i)].text;
  if (!same) {
    SendMessageA(tabs, TCM_DELETEALLITEMS, 0, 0);
    for (std::size_t i = 0; i < model.size(); ++i) {
      TCITEMA item{};
      item.mask = TCIF_TEXT | TCIF_PARAM;
      item.pszText = const_cast<char*>(model[i].text.c_str());
      item.lParam = reinterpret_cast<LPARAM>(model[i].document);
      SendMessageA(tabs, TCM_INSERTITEMA, i, reinterpret_cast<LPARAM>(&item));
    }
  }
  const bool selectionMoved = SendMessageA(tabs, TCM_GETCURSEL, 0, 0) != order.Selected();
  if (selectionMoved) SendMessageA(tabs, TCM_SETCURSEL, order.Selected(), 0);
  return !same || selectionMoved;
}

void DrawTab(const DRAWITEMSTRUCT& item) {
  HWND tabs = item.hwndItem;
  const int width = item.rcItem.right - item.rcItem.left, height = item.rcItem.bottom - item.rcItem.top;
  if (width <= 0 || height <= 0) return;
  const int orientation = ui::OrientationOf(static_cast<unsigned long>(GetWindowLongPtrA(tabs, GWL_STYLE)));
  const int turns = ui::OwnerDrawTurns(orientation);
  // Side tabs are drawn upright, then turned.
  const int w = turns ? height : width, h = turns ? width : height;

  char text[64] = {};
  TCITEMA tab{};
  tab.mask = TCIF_TEXT;
  tab.pszText = text;
  tab.cchTextMax = sizeof text;
  SendMessageA(tabs, TCM_GETITEMA, item.itemID, reinterpret_cast<LPARAM>(&tab));

  MemoryDc memory(CreateCompatibleDC(item.hDC));
  GdiObject<HBITMAP> bitmap(CreateCompatibleBitmap(item.hDC, w, h));
  if (!memory.valid() || !bitmap.valid()) return;
  {
    SelectedObject selectedBitmap(memory.get(), bitmap.get());
    RECT all{0, 0, w, h};
    FillRect(memory.get(), &all, GetSysColorBrush(COLOR_BTNFACE));
    SelectedObject font(memory.get(), reinterpret_cast<HFONT>(SendMessageA(tabs, WM_GETFONT, 0, 0)));
    SetBkMode(memory.get(), TRANSPARENT);
    SetTextColor(memory.get(), GetSysColor(COLOR_BTNTEXT));
    DrawTextA(memory.get(), text, -1, &all, ui::OwnerDrawFormat((item.itemState & ODS_SELECTED) != 0, orientation));
    if (!turns) {
      BitBlt(item.hDC, item.rcItem.left, item.rcItem.top, width, height, memory.get(), 0, 0, SRCCOPY);
      return;
    }
  }
  std::vector<unsigned char> rgb(static_cast<std::size_t>(w) * h * 3);
  if (!IS40_HBITMAPToRGB(bitmap.get(), item.hDC, nullptr, rgb.data())) return;
  int iw = w, ih = h;
  for (int i = 0; i < turns; ++i) {
    IS40_QuickRotateImageInPlace(rgb.data(), iw, ih, 0, 3, 0);
    std::swap(iw, ih);
  }
  IS40_DrawRGB(item.hDC, rgb.data(), width, height, h * 3, item.rcItem.left, item.rcItem.top, nullptr);
}

HWND CreateTabStrip(bar::BarModel& bar, const host::WindowCreation& c) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_TAB_CLASSES};
  InitCommonControlsEx(&controls);
  HWND tabs = CreateWindowExA(0, WC_TABCONTROLA, c.text,
                              c.style | TCS_MULTILINE | TCS_RAGGEDRIGHT | TCS_HOTTRACK | TCS_OWNERDRAWFIXED,
                              static_cast<int>(c.rect.left), static_cast<int>(c.rect.top),
                              static_cast<int>(c.rect.Width()), static_cast<int>(c.rect.Height()), H(c.parent),
                              reinterpret_cast<HMENU>(static_cast<INT_PTR>(c.id)), CurrentResourceInstance(), nullptr);
  if (!tabs) return nullptr;
  const LOGFONTA logFont = ToLogFont(bar.Settings().TabFont);
  HFONT font = CreateFontIndirectA(&logFont);
  SendMessageA(tabs, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  ThemedTabCtrl::Attach(tabs);
  auto* hook = new TabStripHook(bar, font);
  if (!hook->Attach(tabs)) delete hook;

  bar.tabRowCount = [&bar, tabs] {
    SyncTabControl(tabs, bar.Tabs());
    return static_cast<int>(SendMessageA(tabs, TCM_GETROWCOUNT, 0, 0));
  };
  bar.selectedTabThickness = [&bar, tabs](const host::WindowRect* rect) -> long {
    SyncTabControl(tabs, bar.Tabs());
    const int selected = static_cast<int>(SendMessageA(tabs, TCM_GETCURSEL, 0, 0));
    // The rows depend on the width the control is about to get: it is moved
    // there for the count, without repainting, and back.
    RECT before{};
    GetWindowRect(tabs, &before);
    MapWindowPoints(nullptr, GetParent(tabs), reinterpret_cast<POINT*>(&before), 2);
    if (rect)
      MoveWindow(tabs, static_cast<int>(rect->left), static_cast<int>(rect->top), static_cast<int>(rect->Width()),
                 static_cast<int>(rect->Height()), FALSE);
    const int rows = static_cast<int>(SendMessageA(tabs, TCM_GETROWCOUNT, 0, 0));
    RECT item{};
    const bool hasItem =
        selected >= 0 && SendMessageA(tabs, TCM_GETITEMRECT, selected, reinterpret_cast<LPARAM>(&item)) != 0;
    if (rect)
      MoveWindow(tabs, before.left, before.top, before.right - before.left, before.bottom - before.top, FALSE);
    if (!hasItem) return GetSystemMetrics(SM_CYCAPTION);
    return bar::TabRowsThickness(bar.DockSide(), rows, {item.left, item.top, item.right, item.bottom});
  };
  return tabs;
}

}  // namespace tavlet::win32
