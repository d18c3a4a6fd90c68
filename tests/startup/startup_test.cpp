#include "host/module.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/module_harness.h"

namespace tavlet::host {
namespace {

using sim::ModuleHarness;

const char kNoApplication[] = "Tavlet 初始化错误 - 得不到应用对象!";
const char kWindowsMissing[] = "Tavlet 初始化错误 - 没有找到全部窗口!";

std::vector<std::string> NudgeOf(const std::string& w, const std::string& rect, const std::string& smaller) {
  return {"GetWindowRect " + w, "MapWindowPoints desktop desktop", "MoveWindow " + w + " " + smaller + " 0",
          "MoveWindow " + w + " " + rect + " 1", "RedrawWindow " + w + " 0x185"};
}

TEST(NudgeFrame, ShrinksByTenAndComesBackThenRedrawsAll) {
  ModuleHarness h;
  sim::AddSimHostWindows(h.windows, h.host);
  NudgeFrame(h.windows, h.host.WindowNamed("frame"));
  EXPECT_EQ(h.windows.Log(), NudgeOf("frame", "0,0,1024,768", "10,10,1014,758"));
  h.windows.ClearLog();
  // A child's rectangle is taken in its parent's coordinates.
  NudgeFrame(h.windows, h.host.WindowNamed("cmdhost"));
  EXPECT_EQ(h.windows.Log()[2], "MoveWindow cmdhost 10,14,1014,90 0");
  EXPECT_EQ(h.windows.Log()[3], "MoveWindow cmdhost 0,4,1024,100 1");
}

TEST(Startup, BuildsTheBarInOrderAndAnswersZero) {
  ModuleHarness h;
  h.OpenDrawing("C:\\dwg\\a.dwg");
  EXPECT_EQ(h.Load(), 0);
  ASSERT_NE(h.Bar(), nullptr);
  EXPECT_EQ(h.host.LinkerCalls().size(), 2u);
  EXPECT_EQ(h.host.LinkerCalls()[0].rfind("registerAppMDIAware", 0), 0u);
  EXPECT_EQ(h.host.LinkerCalls()[1].rfind("unlockApplication", 0), 0u);
  std::vector<std::string> names;
  for (const auto& [group, name] : h.host.RegisteredCommands()) {
    EXPECT_EQ(group, "MVTL");
    names.push_back(name);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"TLOPTIONS", "TLABOUT", "TLOFF", "TLON", "TLCENTER", "TLCMDCENTER",
                                             "TLSWITCH", "TLRESTORE"}));
  EXPECT_NE(h.host.Transcript().find("LOADED"), std::string::npos);
  EXPECT_TRUE(h.host.ShownBoxes().empty());

  // The dock clips its children; the bar's windows are made with the module's
  // resources; then the hooks go on the MDI client and the command host.
  EXPECT_TRUE(h.windows.GetStyle(h.host.WindowNamed("cmddock")) & kWsClipChildren);
  std::vector<std::string> order;
  for (const std::string& e : h.windows.Log())
    if (e.rfind("CreateWindow", 0) == 0 || e.rfind("AttachHook", 0) == 0) order.push_back(e);
  EXPECT_EQ(order, (std::vector<std::string>{
                       "CreateWindow MvTavlet in frame id 11265 with module resources",
                       "CreateWindow PreviewStrip in MvTavlet id 1001 with module resources",
                       "CreateWindow TabStrip in MvTavlet id 1003 with module resources",
                       "CreateWindow FloatFrame in frame id 0 with module resources",
                       "AttachHook mdiclient", "AttachHook cmdhost"}));
  EXPECT_FALSE(h.windows.ModuleResourcesCurrent());
  EXPECT_TRUE(h.Module()->HasSheetSetManager());
  ASSERT_EQ(h.Bar()->Strip().Entries().size(), 1u);  // the drawing open before the load
  EXPECT_EQ(h.Bar()->CurrentDrawingView(), h.host.Find(h.host.MdiActive())->view);
  EXPECT_TRUE(h.windows.LogOf("MoveWindow frame").empty());  // no nudge at start-up
  EXPECT_EQ(TavletEntry(3, nullptr, &h.host), 0);
  EXPECT_EQ(TavletEntry(99, nullptr, &h.host), 0);
}

TEST(Startup, WithoutAnApplicationObjectOnlyTheCommandsRemain) {
  ModuleHarness h;
  h.host.SetApplicationMissing(true);
  EXPECT_EQ(h.Load(), 0);
  ASSERT_EQ(h.host.ShownBoxes().size(), 1u);
  EXPECT_EQ(h.host.ShownBoxes()[0].text, kNoApplication);
  EXPECT_EQ(h.Bar(), nullptr);
  EXPECT_EQ(h.host.RegisteredCommands().size(), 8u);
  h.windows.ClearLog();
  for (const char* c : {"TLOFF", "TLON", "TLCMDCENTER", "TLOFF"}) EXPECT_TRUE(h.host.RunRegisteredCommand(c));
  EXPECT_FALSE(h.Module()->On());
  EXPECT_TRUE(h.windows.Log().empty());
  EXPECT_EQ(h.Unload(), 0);
  EXPECT_EQ(ReadInt(h.store, keys::On), 0);
}

TEST(Startup, AnyMissingWindowStopsTheBar) {
  for (const char* missing : {"frame", "mdiclient", "cmdline", "cmdhost", "cmddock"}) {
    ModuleHarness h;
    h.SetWindowMissing(missing);
    EXPECT_EQ(h.Load(), 0);
    ASSERT_EQ(h.host.ShownBoxes().size(), 1u) << missing;
    EXPECT_EQ(h.host.ShownBoxes()[0].text, kWindowsMissing) << missing;
    EXPECT_EQ(h.Bar(), nullptr) << missing;
    EXPECT_TRUE(h.windows.LogOf("CreateWindow").empty()) << missing;
    EXPECT_TRUE(h.windows.LogOf("AttachHook").empty()) << missing;
    EXPECT_EQ(h.host.RegisteredCommands().size(), 8u) << missing;
  }
}

TEST(Startup, StoredOffBuildsTheBarHiddenAndTlonShowsIt) {
  ModuleHarness h;
  h.SetSetting(keys::On, 0);
  h.OpenDrawing("C:\\dwg\\a.dwg");
  h.Load();
  ASSERT_NE(h.Bar(), nullptr);
  EXPECT_FALSE(h.Module()->On());
  EXPECT_FALSE(h.windows.Find(h.Bar()->Window())->visible);
  // The reactors run while it is hidden: the list is up to date.
  h.OpenDrawing("C:\\dwg\\b.dwg");
  EXPECT_EQ(h.Bar()->Strip().Entries().size(), 2u);
  h.windows.ClearLog();
  h.host.RunRegisteredCommand("TLON");
  EXPECT_TRUE(h.windows.Find(h.Bar()->Window())->visible);
  EXPECT_EQ(h.windows.Log().front(), "ShowWindow MvTavlet 5");
  EXPECT_EQ(h.windows.LogOf("MoveWindow frame").size(), 2u);  // the nudge
  // On is written at unload only.
  EXPECT_EQ(ReadInt(h.store, keys::On), 0);
  h.Unload();
  EXPECT_EQ(ReadInt(h.store, keys::On), 1);
}

TEST(Startup, TlonAndTloffTwiceTouchNothing) {
  ModuleHarness h;
  h.Load();
  h.windows.ClearLog();
  h.host.RunRegisteredCommand("TLON");  // already on
  EXPECT_TRUE(h.windows.Log().empty());
  h.host.RunRegisteredCommand("TLOFF");
  EXPECT_FALSE(h.windows.Log().empty());
  h.windows.ClearLog();
  h.host.RunRegisteredCommand("TLOFF");  // already off
  EXPECT_TRUE(h.windows.Log().empty());
  EXPECT_FALSE(h.Module()->On());
}

TEST(Startup, HooksPassSizesThroughWhileOff) {
  ModuleHarness h;
  h.SetSetting(keys::Size, 120);
  h.OpenDrawing("C:\\dwg\\a.dwg");
  h.Load();
  port::Window mdi = h.host.WindowNamed("mdiclient");
  h.windows.MoveWindow(mdi, {0, 60, 1024, 640}, false);
  EXPECT_EQ(h.windows.Find(mdi)->rect, (WindowRect{120, 60, 1024, 640}));  // left side: the bar's 120 cut off
  EXPECT_EQ(h.windows.Find(h.Bar()->Window())->rect, (WindowRect{0, 60, 120, 640}));
  h.host.RunRegisteredCommand("TLOFF");
  h.windows.MoveWindow(mdi, {0, 60, 1024, 640}, false);
  EXPECT_EQ(h.windows.Find(mdi)->rect, (WindowRect{0, 60, 1024, 640}));
}

TEST(Startup, TlcenterPrintsWhenDockedAndCentresTheFloatingFrame) {
  {
    ModuleHarness h;
    h.Load();
    h.host.ClearTranscript();
    h.host.RunRegisteredCommand("TLCENTER");
    EXPECT_EQ(h.host.Transcript(), "仅适用在屏幕上浮动 Tavlet!\n");
    EXPECT_TRUE(h.windows.LogOf("CenterWindow").empty());
  }
  {
    ModuleHarness h;
    h.SetSetting(keys::Floating, 1);
    h.Load();
    h.host.ClearTranscript();
    h.host.RunRegisteredCommand("TLCENTER");
    EXPECT_EQ(h.host.Transcript(), "");
    EXPECT_EQ(h.windows.LogOf("CenterWindow"), (std::vector<std::string>{"CenterWindow FloatFrame"}));
  }
}

TEST(Startup, TlcmdcenterTakesHalfTheCommandHostAndNudges) {
  ModuleHarness h;
  h.SetSetting(keys::WidthOnCmdWnd, 100);
  h.Load();
  // The hook keeps the command host's last proposed size: 801 wide.
  h.windows.MoveWindow(h.host.WindowNamed("cmdhost"), {0, 4, 801, 100}, false);
  h.windows.ClearLog();
  h.host.RunRegisteredCommand("TLCMDCENTER");
  EXPECT_EQ(h.Bar()->Settings().WidthOnCmdWnd, 400);
  EXPECT_EQ(h.windows.Log(), NudgeOf("frame", "0,0,1024,768", "10,10,1014,758"));
  EXPECT_EQ(ReadInt(h.store, keys::WidthOnCmdWnd, 0), 100);  // not written here
}

TEST(Startup, ApploadNudgesTheFrameAndAStartupLoadDoesNot) {
  ModuleHarness h;
  h.OpenDrawing("C:\\dwg\\a.dwg");
  h.host.RunCommandDuring("APPLOAD", [&] { h.Load(); });
  ASSERT_NE(h.Bar(), nullptr);
  EXPECT_EQ(h.windows.LogOf("MoveWindow frame").size(), 2u);
  EXPECT_EQ(h.windows.LogOf("RedrawWindow frame"), (std::vector<std::string>{"RedrawWindow frame 0x185"}));
  h.Unload();

  ModuleHarness other;
  other.OpenDrawing("C:\\dwg\\a.dwg");
  other.host.RunCommandDuring("APPLOADX", [&] { other.Load(); });
  EXPECT_TRUE(other.windows.LogOf("MoveWindow frame").empty());
}

TEST(Unload, ReverseOrderDetachesHooksAndGivesTheSpaceBack) {
  ModuleHarness h;
  h.Load();
  h.windows.ClearLog();
  h.host.ClearTranscript();
  EXPECT_EQ(h.Unload(), 0);
  EXPECT_EQ(h.Module(), nullptr);
  std::vector<std::string> order;
  for (const std::string& e : h.windows.Log())
    if (e.rfind("DetachHook", 0) == 0 || e.rfind("DestroyWindow", 0) == 0 || e.rfind("MoveWindow frame", 0) == 0)
      order.push_back(e);
  EXPECT_EQ(order, (std::vector<std::string>{"DetachHook mdiclient", "DetachHook cmdhost",
                                              "DestroyWindow FloatFrame", "DestroyWindow MvTavlet",
                                              "DestroyWindow PreviewStrip", "DestroyWindow TabStrip",
                                              "MoveWindow frame 10,10,1014,758 0", "MoveWindow frame 0,0,1024,768 1"}));
  EXPECT_TRUE(h.host.RegisteredCommands().empty());
  EXPECT_NE(h.host.Transcript().find("UNLOADED"), std::string::npos);
  EXPECT_EQ(h.host.Faults().Count("Editor::RemoveWatcher"), 1);
  EXPECT_EQ(ReadInt(h.store, keys::On), 1);
  h.host.PostWindowMessage(h.host.WindowNamed("frame"), kWmMouseWheel);  // nobody listens any more
}

TEST(Unload, WhileQuittingLeavesWindowProceduresAlone) {
  ModuleHarness h;
  h.Load();
  h.host.SetQuitting(true);
  h.windows.ClearLog();
  h.Unload();
  EXPECT_TRUE(h.windows.LogOf("DetachHook").empty());
  EXPECT_TRUE(h.windows.LogOf("MoveWindow").empty());
  EXPECT_FALSE(h.windows.LogOf("DestroyWindow MvTavlet").empty());
  EXPECT_TRUE(h.host.RegisteredCommands().empty());
}

TEST(Watcher, WheelOrMiddleButtonOverTheViewRestartsTimer101) {
  ModuleHarness h;
  h.Load();
  port::Window none = nullptr;
  h.host.PostWindowMessage(none, kWmMouseWheel);  // no drawing: the view is null and matches nothing
  EXPECT_TRUE(h.windows.LogOf("SetTimer").empty());
  h.OpenDrawing("C:\\dwg\\a.dwg");
  port::Window view = h.host.Find(h.host.MdiActive())->view;
  h.windows.ClearLog();
  struct Case {
    port::Window window;
    unsigned message;
    bool timer;
  } cases[] = {
      {view, kWmMouseWheel, true},
      {view, kWmMButtonUp, true},
      {view, 0x0201, false},  // WM_LBUTTONDOWN
      {h.host.WindowNamed("mdiclient"), kWmMouseWheel, false},
  };
  for (const Case& c : cases) {
    h.windows.ClearLog();
    h.host.PostWindowMessage(c.window, c.message);
    EXPECT_EQ(h.windows.LogOf("SetTimer"),
              c.timer ? std::vector<std::string>{"SetTimer PreviewStrip 101 800"} : std::vector<std::string>{})
        << c.message;
  }
}

}  // namespace
}  // namespace tavlet::host
