// Save all and close all in the demo host's real frame, driven by the demo's
// script through the real popup menu and answered from it, against the same
// script played on the simulated host alone: the transcripts, the drawings'
// states and the questions must be the same, line for line.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "support/script_replay.h"
#include "support/test_paths.h"

namespace tavlet::demo {
namespace {

// The lines of `a` and `b` from the first that differs, for a readable failure.
std::string FirstDifference(const std::string& a, const std::string& b) {
  std::istringstream left(a), right(b);
  std::string l, r;
  for (int line = 1;; ++line) {
    const bool moreLeft = static_cast<bool>(std::getline(left, l));
    const bool moreRight = static_cast<bool>(std::getline(right, r));
    if (!moreLeft && !moreRight) return "no difference";
    if (!moreLeft || !moreRight || l != r)
      return "line " + std::to_string(line) + ":\n  demo host: " + (moreLeft ? l : "<end>") +
             "\n  simulated: " + (moreRight ? r : "<end>");
  }
}

TEST(SaveCloseSession, TheDemoHostsTranscriptIsTheSimulatedHostsAlone) {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  const std::string scriptPath = testing::WinePath(TAVLET_SOURCE_DIR "/apps/demohost/save-close.script");
  std::string error;
  testing::ScriptReplay replay;
  ASSERT_TRUE(replay.Play(scriptPath, error)) << error;
  const std::string simulated = replay.Record();

  std::string onScreen;
  {
    DemoHost demo(testing::WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
    testing::CreatedDocuments created(demo.Host());
    ASSERT_TRUE(demo.LoadModule(error, true)) << error;
    demo.Pump(100);
    demo.Host().ClearTranscript();
    Script script;
    ASSERT_TRUE(script.Load(scriptPath, error)) << error;
    std::ostringstream log;
    ScriptRunner runner(demo, script, log, testing::MakeTempFolder("session"));
    ASSERT_TRUE(runner.Run(error)) << error << "\n" << log.str();
    onScreen = testing::SessionRecord(demo.Host(), created.All(), testing::FolderOf(scriptPath));
  }
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  EXPECT_EQ(FirstDifference(onScreen, simulated), "no difference");

  // And the record the native suite holds its own run to, so that the Windows
  // build and the native one agree as well.
  std::ifstream in(testing::WinePath(TAVLET_SOURCE_DIR "/apps/demohost/save-close.transcript"), std::ios::binary);
  ASSERT_TRUE(in);
  std::ostringstream kept;
  kept << in.rdbuf();
  EXPECT_EQ(FirstDifference(onScreen, kept.str()), "no difference");
}

}  // namespace
}  // namespace tavlet::demo
