// TabStrip's window: a multi-line ThemedTabCtrl, owner-drawn, holding
// one item per tab of the bar's TabOrder model. The control is brought in line
// with the model before it paints and before its rows are counted.
#pragma once

#include <windows.h>

#include "bar/bar_model.h"

namespace tavlet::win32 {

// The tab control of the bar, with TabFont; the control keeps a hook that
// mirrors the model and forwards double clicks to the bar. Null on failure.
HWND CreateTabStrip(bar::BarModel& bar, const host::WindowCreation& creation);

// Makes the control's items and selection those of `order`; true when it changed anything.
bool SyncTabControl(HWND tabs, const bar::TabOrder& order);

// WM_DRAWITEM of one tab, as the bar reflects it: the text drawn upright in a
// memory bitmap, then turned for a side by the raster operations.
void DrawTab(const DRAWITEMSTRUCT& item);

}  // namespace tavlet::win32
