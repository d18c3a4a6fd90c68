// The demo host's scripts: one step a line, run in order against the real
// windows. The language is described in docs/demo-script.md.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "demo_host.h"
#include "image_file.h"
#include "menu_driver.h"

namespace tavlet::demo {

struct ScriptStep {
  int line = 0;
  std::string verb;
  std::vector<std::string> args;
  std::string rest;  // the text after the verb, as typed (for `command`)
};

// Exit codes of a scripted run.
inline constexpr int kScriptFailed = 1;      // a step could not be done or a check failed
inline constexpr int kScriptMalformed = 2;   // the script itself is wrong

class Script {
 public:
  // Reads and checks the whole script before anything runs. False with
  // "FILE:LINE: what was expected" in `error`.
  bool Load(const std::string& path, std::string& error);
  bool Parse(const std::string& text, std::string& error);
  const std::vector<ScriptStep>& Steps() const { return steps_; }
  const std::string& Path() const { return path_; }

 private:
  std::string path_ = "<script>";
  std::vector<ScriptStep> steps_;
};

class ScriptRunner {
 public:
  // Screenshots with a relative path go below `outputFolder` (empty: the current folder).
  ScriptRunner(DemoHost& demo, const Script& script, std::ostream& log, std::string outputFolder = "")
      : demo_(demo), script_(script), log_(log), outputFolder_(std::move(outputFolder)) {}
  // Runs every step; stops at the first that fails, with "FILE:LINE: ..." in `error`.
  bool Run(std::string& error);
  bool QuitRequested() const { return quit_; }
  // What the last `menu` or `menu-screenshot` step saw (the tip, the entry).
  const MenuRun& LastMenu() const { return lastMenu_; }

 private:
  bool Step(const ScriptStep& step, std::string& error);
  bool Click(const ScriptStep& step, std::string& error);
  // rclick, menu and menu-screenshot: the right click, then the popup driven.
  bool RightClick(const ScriptStep& step, std::string& error);
  bool CheckBar(const ScriptStep& step, std::string& error);
  std::string Resolve(const std::string& path) const;

  DemoHost& demo_;
  const Script& script_;
  std::ostream& log_;
  std::string outputFolder_;
  std::optional<Picture> shot_;
  RECT shotRect_{};
  bool quit_ = false;
  MenuRun lastMenu_;
};

// The strip window of the bar in this process, or null.
HWND FindPreviewStrip();
// Entry `index`'s last painted cell in screen coordinates; false when there is none.
bool CellOnScreen(HWND strip, int index, RECT& cell);

}  // namespace tavlet::demo
