// A drawing of a later release than the host's, opened from the bar's recent
// files in the demo host's frame: the host refuses it, and the command line
// names the drawing's release.
#include <windows.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"
#include "support/test_paths.h"

namespace tavlet::demo {
namespace {

TEST(NewerReleaseOnFrame, ARecentDrawingTheHostRefusesIsNamedByItsRelease) {
  const std::string drawing = testing::WinePath(TAVLET_SHARED_DIR "/testdata/dwg/acs_sample_AC1021.dwg");
  if (GetFileAttributesA(drawing.c_str()) == INVALID_FILE_ATTRIBUTES)
    GTEST_SKIP() << "shared drawings not found";
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  {
    Win32Registry registry;
    SettingsStore(registry, DefaultSettingsRoot()).SetString("MRU", "路径_1", drawing);
  }
  DemoHost demo(testing::WinePath(TAVLET_ARX_PATH), false);
  ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
  ASSERT_TRUE(demo.Open(testing::SamplesDir() + "\\plan.tdd"));
  std::string error;
  ASSERT_TRUE(demo.LoadModule(error, true)) << error;
  demo.Pump(100);
  demo.Host().ClearTranscript();

  Script script;
  // The recent files show their full paths.
  ASSERT_TRUE(script.Parse("menu cell 1 \"最近打开文件 > " + drawing + "\"\nwait 100\n", error)) << error;
  std::ostringstream log;
  ScriptRunner runner(demo, script, log, testing::MakeTempFolder("release"));
  ASSERT_TRUE(runner.Run(error)) << error << "\n" << log.str();
  EXPECT_EQ(demo.Host().Transcript(), "用这个版本的AutoCAD不能打开 AutoCAD 2007 图形文件!\n");
  EXPECT_EQ(demo.Host().OpenDocuments().size(), 1u);
  EXPECT_TRUE(demo.Host().ShownBoxes().empty());
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
}

}  // namespace
}  // namespace tavlet::demo
