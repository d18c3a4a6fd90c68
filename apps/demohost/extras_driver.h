// Script steps for the bar's additions:
//   ctrl-tab TABS SHOT [NAME]   Ctrl+Tab in the frame, TABS more Tabs with Ctrl
//                               held, the picture of the frame and the switcher
//                               popup, then Ctrl released; NAME: the drawing
//                               that must be active after
//   check-clipboard N           the clipboard's text is drawing N's full path
//   check-open NAME...          exactly these drawings are open (any order)
//   crash                       ends the process at once, as a crash would
#pragma once

#include <string>

#include "dialog_driver.h"
#include "script.h"

namespace tavlet::demo {

bool IsExtrasVerb(const std::string& verb);
bool RunExtrasStep(const DialogStepContext& context, const ScriptStep& step, std::string& error);

}  // namespace tavlet::demo
