// Scripts drive the preferences dialog while it is up. TLOPTIONS runs the
// dialog's modal loop inside the command, so, as with the popup menu, a thread
// timer that the loop dispatches does the steps, one a tick, through the same
// messages a user's clicks and typing send: BM_CLICK on a check box, radio or
// button, WM_SETTEXT on an edit, TCN_SELCHANGE of the tab control, and in the
// system's font chooser the face and size picked from its lists, in its colour
// chooser the red, green and blue typed, then OK.
//
// Steps, separated by ";":
//   tab N            the page N (0 "常规", 1 "显示方式")
//   click ID         a check box, a radio or a button of either page
//   type ID TEXT     an edit's text
//   font FACE SIZE   the font button, then FACE at SIZE points in the chooser
//   color ID R G B   a colour button, then that colour typed in the chooser
//   shot PATH        the dialog's picture (.png or .bmp)
//   ok | cancel      closes the dialog (the last step)
#pragma once

#include <windows.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace tavlet::demo {

struct PreferencesStep {
  std::string verb;
  std::vector<std::string> args;
};

// Splits and checks the steps; false with the reason in `error`.
bool ParsePreferencesSteps(const std::string& text, std::vector<PreferencesStep>& steps, std::string& error);

// Runs `open` (which types TLOPTIONS) while a timer does `steps` in the dialog
// it opens. Relative shot paths go below `outputFolder`. False when the dialog
// did not open, a step failed, or the dialog did not close by the last step.
bool DrivePreferences(const std::vector<PreferencesStep>& steps, const std::function<void()>& open,
                      const std::string& outputFolder, std::ostream& log, std::string& error);

// The bar's tab control in the last screenshot `shot` (taken of `frame` at
// `shotOrigin`): it is shown, draws its tabs (more than two colours in its
// rectangle: faces, text, the selected tab), and the bar is on `side` ("left", "right", "top", "bottom") of the
// drawing area `mdiClient`. With `side` "none": the bar takes no place, the
// drawing area covering its rectangle.
struct Picture;
bool CheckTabs(const Picture& shot, POINT shotOrigin, HWND frame, HWND mdiClient, const std::string& side,
               std::ostream& log, std::string& error);

// The stored setting [SECTION/]KEY: an integer equal to `expected`, or, for a
// font, the face name `expected`.
bool CheckSetting(const std::string& name, const std::string& expected, std::ostream& log, std::string& error);

}  // namespace tavlet::demo
