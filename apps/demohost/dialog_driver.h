// The script steps that reach the module's dialogs and the worksets file:
//
//   dialog TITLE type ID TEXT     types TEXT into the control (a combo box's edit too)
//   dialog TITLE select ID TEXT   picks TEXT in a combo box's list
//   dialog TITLE click ID         presses a button
//   dialog TITLE header ID N      clicks the header of list ID over its column N (from 0)
//   dialog TITLE size W H         drags the bottom-right corner to W by H (the minimum applies)
//   dialog TITLE screenshot PATH  the dialog's pixels as .png or .bmp
//   dialog TITLE close            closes it as its close box does
//   worksets new NAME [FROM]      points the worksets file at NAME in the output folder, holding
//                                 what FROM (beside the script) holds, or nothing
//   worksets check EXPECTED       compares the worksets file byte for byte with EXPECTED
//
// TITLE is the dialog's caption; every dialog of this process is looked at.
#pragma once

#include <functional>
#include <ostream>
#include <string>

#include "demo_host.h"
#include "script.h"

namespace tavlet::demo {

struct DialogStepContext {
  DemoHost& demo;
  std::function<std::string(const std::string&)> resolve;  // a path beside the script
  std::string outputFolder;
  std::ostream& log;
};

bool RunDialogStep(const DialogStepContext& context, const ScriptStep& step, std::string& error);
bool RunWorksetsStep(const DialogStepContext& context, const ScriptStep& step, std::string& error);

// A top-level dialog of this process with that caption (code page 936), or null.
HWND FindDialog(const std::string& title);

}  // namespace tavlet::demo
