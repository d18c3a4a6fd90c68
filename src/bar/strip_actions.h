// What a click on the strip or on a tab does to the host, the preview refresh
// that walks every drawing, and the strip's two one-shot timers. These act on the
// host through the port and on the bar's model; the windows call them from their
// message handlers.
#pragma once

#include <functional>

#include "bar/bar_model.h"

namespace tavlet::bar {

// The box of a switch refused while a command runs.
inline constexpr char kSwitchWhileBusyText[] = "请结束活动的绘图命令";

// With SwitchOnBusy off and the host's current document inside a command: the
// box, and no switch. Otherwise activateDocument(doc, false). True when it
// asked the host to switch.
bool SwitchToDocument(port::HostSession& session, const BarSettings& settings, port::Document doc);

// TCN_SELCHANGING of the tab control. True vetoes the change (the window
// answers 1): SwitchOnBusy off and the MDI-active document, not the current one
// as the strip asks, inside a command; the same box is shown.
bool TabSelChanging(port::HostSession& session, const BarSettings& settings);

// TCN_SELCHANGE: `selected` is the control's new selection (TCM_GETCURSEL).
// Under TabChanging, makes that tab's drawing current and active
// (setCurDocument with no lock), selects it in the tab model and redraws the tab
// control. False when no tab is at `selected`.
bool TabSelChange(BarModel& bar, int selected);

// Captures every drawing's preview by activating each in turn, then activates
// the current one again. Nothing with AutoUpdatePreviews off; a redraw of the
// strip alone with one drawing. `updatePreview` is the capture of the entry
// (UpdatePreview); entries the walk does not find are skipped.
void RefreshAllPreviews(BarModel& bar, const std::function<void(DocEntry&)>& updatePreview);

// WM_TIMER of the strip: the timer is killed first (both are one-shot); 100
// redraws the strip, 101 marks the MDI-active drawing's preview stale. False
// for any other id, which the window passes on.
bool OnStripTimer(BarModel& bar, unsigned id);

}  // namespace tavlet::bar
