// Registration end to end in the demo host: the first load records the module
// under the host's product key and prints its banners; with loading on command
// chosen, a later start leaves it unloaded until one of its commands is typed.
#include <windows.h>

#include <gtest/gtest.h>

#include <ctime>
#include <memory>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "host/arx_module.h"
#include "host/com_error.h"

namespace tavlet::demo {
namespace {

std::string WinePath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

std::string Value(const std::string& key, const char* name) {
  char data[MAX_PATH] = {};
  DWORD size = sizeof data - 1;
  DWORD type = 0;
  if (RegGetValueA(HKEY_CURRENT_USER, key.c_str(), name, RRF_RT_REG_SZ, &type, data, &size) != ERROR_SUCCESS)
    return "<none>";
  return data;
}

// The banner as the host's command line shows it, with this year's notice.
std::string Banner(const std::string& title, char frame) {
  std::time_t now = std::time(nullptr);
  const std::string notice =
      " Copyright (C) 2004-" + std::to_string(std::localtime(&now)->tm_year + 1900) + " Morvane. All rights reserved. ";
  auto line = [&](const std::string& body) { return frame + body + frame + "\n"; };
  return "\n" + line(std::string(78, frame)) + line(host::PadBannerLine(title, ' ', host::kAlignCentre)) +
         line(host::PadBannerLine(notice, ' ', host::kAlignCentre)) + line(std::string(78, frame));
}

// A closed frame posts WM_QUIT, as the host's own does; left in the queue it
// would end the next modal loop of this thread, in another test.
void DropQuit() {
  MSG message;
  while (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
  }
}

class RegistrationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    DemoHost probe(modulePath_, false);
    host::StringSink key;
    probe.Session().Services()->ProductKey(&key);
    appKey_ = key.text + "\\Applications\\MorvaneTavlet";
    RegDeleteTreeA(HKEY_CURRENT_USER, appKey_.c_str());
    ASSERT_TRUE(WriteSetting("", "LoadOnCommand", 0));
  }
  void TearDown() override {
    DropQuit();
    // The other suites and the demo load the module at start, as the default does.
    WriteSetting("", "LoadOnCommand", 0);
    RegDeleteTreeA(HKEY_CURRENT_USER, appKey_.c_str());
  }
  std::unique_ptr<DemoHost> StartHost() {
    auto demo = std::make_unique<DemoHost>(modulePath_, false);
    EXPECT_TRUE(demo->CreateFrame(900, 650));
    std::string error;
    EXPECT_TRUE(demo->Start(error)) << error;
    return demo;
  }
  DWORD LoadCtrls() {
    DWORD value = 0, size = sizeof value;
    RegGetValueA(HKEY_CURRENT_USER, appKey_.c_str(), "LOADCTRLS", RRF_RT_REG_DWORD, nullptr, &value, &size);
    return value;
  }

  std::string modulePath_ = WinePath(TAVLET_ARX_PATH);
  std::string appKey_;
};

TEST_F(RegistrationTest, FirstLoadRegistersAndLoadOnCommandDefersTheNextStartToTheFirstCommand) {
  const std::string loaded = Banner(" Morvane Tavlet (build 2.0.7) LOADED ", '+');
  const std::string unloaded = Banner(" Morvane Tavlet (build 2.0.7) UNLOADED ", '-');
  {
    std::unique_ptr<DemoHost> demo = StartHost();
    ASSERT_TRUE(demo->ModuleLoaded());
    EXPECT_FALSE(demo->DemandLoading());
    EXPECT_EQ(demo->Host().Transcript().rfind(loaded, 0), 0u) << demo->Host().Transcript();
    EXPECT_EQ(LoadCtrls(), 2u);
    EXPECT_EQ(Value(appKey_, "LOADER"), modulePath_);
    EXPECT_EQ(Value(appKey_, "DESCRIPTION"), "Tavlet");
    EXPECT_EQ(Value(appKey_ + "\\Groups", "MVTL"), "MVTL");
    for (const char* command : {"TLOPTIONS", "TLABOUT", "TLOFF", "TLON", "TLCENTER", "TLCMDCENTER"})
      EXPECT_EQ(Value(appKey_ + "\\Commands", command), command);
    demo->UnloadModule();
    const std::string& transcript = demo->Host().Transcript();
    ASSERT_GE(transcript.size(), unloaded.size());
    EXPECT_EQ(transcript.substr(transcript.size() - unloaded.size()), unloaded);
  }
  // The entries stay behind the unload; the preferences' choice is written at the next load.
  EXPECT_EQ(LoadCtrls(), 2u);
  ASSERT_TRUE(WriteSetting("", "LoadOnCommand", 1));
  {
    std::unique_ptr<DemoHost> demo = StartHost();
    EXPECT_TRUE(demo->ModuleLoaded());
    demo->UnloadModule();
  }
  DropQuit();
  EXPECT_EQ(LoadCtrls(), 4u);
  {
    std::unique_ptr<DemoHost> demo = StartHost();
    EXPECT_TRUE(demo->DemandLoading());
    EXPECT_FALSE(demo->ModuleLoaded());
    EXPECT_EQ(demo->Host().Transcript().find("LOADED"), std::string::npos);
    demo->Execute("TLOFF");
    ASSERT_TRUE(demo->ModuleLoaded());
    const std::string& transcript = demo->Host().Transcript();
    EXPECT_EQ(transcript.find("Command: TLOFF\n" + loaded), 0u) << transcript;
    demo->UnloadModule();
  }
  DropQuit();
}

}  // namespace
}  // namespace tavlet::demo
