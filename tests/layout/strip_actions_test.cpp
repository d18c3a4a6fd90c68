#include "bar/strip_actions.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/module_harness.h"

namespace tavlet::bar {
namespace {

// The module loaded over drawings a, b and c; c is active.
class StripActionsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    a = h.OpenDrawing("C:\\d\\a.dwg");
    b = h.OpenDrawing("C:\\d\\b.dwg");
    c = h.OpenDrawing("C:\\d\\c.dwg");
    ASSERT_EQ(h.Load(), 0);
    bar = h.Bar();
    h.windows.ClearLog();
  }
  std::vector<std::string> Boxes() const {
    std::vector<std::string> out;
    for (const auto& box : h.host.ShownBoxes()) out.push_back(box.text);
    return out;
  }

  sim::ModuleHarness h;
  port::Document a = nullptr, b = nullptr, c = nullptr;
  BarModel* bar = nullptr;
};

TEST_F(StripActionsTest, SwitchOnBusyDecidesAClickDuringACommand) {
  struct Case {
    const char* what;
    int switchOnBusy;
    bool inCommand;
    bool currentIsIdle;  // inside the command, another drawing is made current
    bool stripSwitches, tabVetoes;
  };
  const Case cases[] = {
      {"idle", 0, false, false, true, false},
      {"in a command, SwitchOnBusy on", 1, true, false, true, false},
      {"in a command, SwitchOnBusy off", 0, true, false, false, true},
      // The strip asks the current drawing, the tabs the MDI-active one.
      {"busy MDI-active, idle current", 0, true, true, true, true},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    h.host.Activate(c);
    bar->Settings().SwitchOnBusy = k.switchOnBusy;
    const std::size_t boxesBefore = h.host.ShownBoxes().size();
    bool switched = false, vetoed = false;
    auto click = [&] {
      if (k.currentIsIdle) h.host.SetCurrent(b);
      vetoed = TabSelChanging(h.host, bar->Settings());
      switched = SwitchToDocument(h.host, bar->Settings(), a);
    };
    if (k.inCommand)
      h.host.RunCommandDuring("LINE", click);
    else
      click();
    EXPECT_EQ(switched, k.stripSwitches);
    EXPECT_EQ(vetoed, k.tabVetoes);
    EXPECT_EQ(h.host.MdiActive(), k.stripSwitches ? a : c);
    const std::size_t boxes = (k.stripSwitches ? 0 : 1) + (k.tabVetoes ? 1 : 0);
    ASSERT_EQ(h.host.ShownBoxes().size(), boxesBefore + boxes);
    if (boxes) {
      EXPECT_EQ(Boxes().back(), "请结束活动的绘图命令");
    }
  }
}

// Records the bar's TabChanging when the host announces an activation.
class ActivationWatch final : public port::DocManagerEvents {
 public:
  explicit ActivationWatch(const BarModel& bar) : bar_(bar) {}
  void TAVLET_PORT_CALL DocumentCreated(port::Document) override {}
  void TAVLET_PORT_CALL DocumentToBeDestroyed(port::Document) override {}
  void TAVLET_PORT_CALL DocumentDestroyed(const char*) override {}
  void TAVLET_PORT_CALL DocumentLockModeChanged(port::Document, const char*) override {}
  void TAVLET_PORT_CALL DocumentActivated(port::Document) override {
    changing.push_back(bar_.TabChanging);
  }
  std::vector<bool> changing;

 private:
  const BarModel& bar_;
};

TEST_F(StripActionsTest, TabSelectionMakesItsDrawingCurrentUnderTabChanging) {
  const int at = bar->Tabs().Find(a);
  ASSERT_GE(at, 0);
  ActivationWatch watch(*bar);
  h.host.Documents()->AddReactor(&watch);
  EXPECT_TRUE(TabSelChange(*bar, at));
  h.host.Documents()->RemoveReactor(&watch);
  EXPECT_EQ(watch.changing, (std::vector<bool>{true}));
  EXPECT_FALSE(bar->TabChanging);
  EXPECT_EQ(h.host.MdiActive(), a);
  EXPECT_EQ(h.host.Current(), a);
  EXPECT_EQ(bar->Tabs().Selected(), at);
  EXPECT_EQ(h.windows.LogOf("RedrawWindow TabStrip"),
            (std::vector<std::string>{"RedrawWindow TabStrip 0x105"}));

  h.windows.ClearLog();
  EXPECT_FALSE(TabSelChange(*bar, 3));
  EXPECT_FALSE(TabSelChange(*bar, -1));
  EXPECT_EQ(h.host.MdiActive(), a);
  EXPECT_TRUE(h.windows.Log().empty());
}

TEST_F(StripActionsTest, RefreshAllPreviewsVisitsEveryDrawingActiveAndComesBack) {
  h.host.SetIterationOrder({b, c, a});
  std::vector<std::string> captured;
  auto capture = [&](DocEntry& entry) {
    // The capture runs with its drawing active.
    EXPECT_EQ(h.host.MdiActive(), entry.document);
    captured.push_back(entry.path.Name);
  };
  RefreshAllPreviews(*bar, capture);
  EXPECT_EQ(captured, (std::vector<std::string>{"b", "c", "a"}));
  EXPECT_EQ(h.host.MdiActive(), c);

  bar->Settings().AutoUpdatePreviews = 0;
  captured.clear();
  h.host.Activate(a);
  RefreshAllPreviews(*bar, capture);
  EXPECT_TRUE(captured.empty());
  EXPECT_EQ(h.host.MdiActive(), a);

  // With one drawing the strip is only redrawn.
  bar->Settings().AutoUpdatePreviews = 1;
  h.host.CloseDrawing(b);
  h.host.CloseDrawing(c);
  h.windows.ClearLog();
  RefreshAllPreviews(*bar, capture);
  EXPECT_TRUE(captured.empty());
  EXPECT_EQ(h.windows.Log(), (std::vector<std::string>{"RedrawWindow PreviewStrip 0x105"}));
}

TEST_F(StripActionsTest, TimersAreKilledFirstThenRedrawOrMarkStale) {
  struct Case {
    unsigned id;
    bool handled;
    std::vector<std::string> log;
    bool activeStale;
  };
  const Case cases[] = {
      {100, true, {"KillTimer PreviewStrip 100", "RedrawWindow PreviewStrip 0x105"}, false},
      {101, true, {"KillTimer PreviewStrip 101", "RedrawWindow PreviewStrip 0,0,0,0 0x105"}, true},
      {7, false, {}, false},
  };
  for (const Case& k : cases) {
    for (const auto& e : bar->Strip().Entries()) e->previewDirty = false;
    h.windows.ClearLog();
    EXPECT_EQ(OnStripTimer(*bar, k.id), k.handled) << k.id;
    EXPECT_EQ(h.windows.Log(), k.log) << k.id;
    EXPECT_EQ(bar->Strip().FindEntry(c)->previewDirty, k.activeStale) << k.id;
    EXPECT_FALSE(bar->Strip().FindEntry(a)->previewDirty) << k.id;
  }
}

}  // namespace
}  // namespace tavlet::bar
