#include <gtest/gtest.h>

#include "content/layouts.h"
#include "content/views.h"
#include "content_fixture.h"

namespace tavlet::content {
namespace {

struct ViewLine {
  bool model;
  std::string name, layout;
  double cx, cy;
  bool operator==(const ViewLine&) const = default;
};

std::vector<ViewLine> Views(SimDrawing& d, bool fill = true) {
  int id = 100;
  IdMap<ViewEntry> views;
  CollectViews(id, views, d.Database(), d.db, fill);
  std::vector<ViewLine> out;
  for (const auto& [key, v] : views)
    out.push_back(
        {v.isModelView, text::ToUtf8(v.name), text::ToUtf8(v.layout), v.centerX, v.centerY});
  return out;
}

TEST(CollectViews, ListsByByteOrderOfNamesWithSpaceLayoutAndCentre) {
  SimDrawing d(
      "layout \"A1\"\n"
      "view \"front\" model 1 2 10 10\n"
      "view \"Sheet\" paper 3 4 10 10 layout \"A1\"\n"
      "view \"Old\" paper 5 6 10 10\n"
      "view \"Other\" paper 7 8 10 10 xdata \"ACME\" \"A1\"\n"
      "view \"Site|Plan\" model 9 10 10 10 dependent\n"
      "view \"Back\" model 0 0 10 10\n");
  const std::vector<ViewLine> want = {
      {true, "Back", "", 0, 0},     {false, "Old", "", 5, 6},       {false, "Other", "", 7, 8},
      {false, "Sheet", "A1", 3, 4}, {true, "Site|Plan", "", 9, 10}, {true, "front", "", 1, 2},
  };
  EXPECT_EQ(Views(d), want);
  EXPECT_EQ(d.OpenObjects(), 0);
}

TEST(CollectViews, EmptyAndNullGiveOneModelNotFoundEntryByTheFillRule) {
  SimDrawing d("");
  const std::vector<ViewLine> none = {{true, kNone, "", 0, 0}};
  EXPECT_EQ(Views(d, true), none);
  EXPECT_EQ(Views(d, false), std::vector<ViewLine>{});
  d.db = nullptr;
  EXPECT_EQ(Views(d, false), none);
}

TEST(CollectViews, AViewThatWontOpenTakesNoId) {
  SimDrawing d("view \"A\" model 0 0 1 1\nview \"B\" model 0 0 1 1\nview \"C\" model 0 0 1 1\n");
  // Three opens to list the names, then one per view: fail the second of those.
  d.host.Faults().Fail("DrawingDatabase::OpenViewRecord", 5, port::kFail, "eWasErased");
  int id = 10;
  IdMap<ViewEntry> views;
  CollectViews(id, views, d.Database(), d.db, true);
  EXPECT_EQ(Ids(views), (std::vector<int>{10, 11}));
  EXPECT_EQ(text::ToUtf8(views.at(11).name), "C");
  EXPECT_EQ(id, 12);
}

TEST(ViewLayout, WriteThenReadRoundTripsAndASecondWriteMeetsTheKnownApplication) {
  SimDrawing d("layout \"A1\"\nlayout \"A2\"\nview \"V\" model 0 0 1 1\n");
  EXPECT_EQ(ReadViewLayout("V", d.Database(), d.db), "");
  WriteViewLayout("V", "A1", d.host, d.doc);
  EXPECT_EQ(ReadViewLayout("V", d.Database(), d.db), "A1");
  EXPECT_EQ(Views(d), (std::vector<ViewLine>{{false, "V", "A1", 0, 0}}));
  // The application is known now: the registration answers
  // eDuplicateRecordName, and the write goes on.
  WriteViewLayout("V", "A2", d.host, d.doc);
  EXPECT_EQ(ReadViewLayout("V", d.Database(), d.db), "A2");
  EXPECT_EQ(d.host.Find(d.doc)->content.regApps, std::vector<std::string>{"MRVN_TAVLET"});
  EXPECT_EQ(d.host.Transcript(), "");
  EXPECT_FALSE(d.host.IsLocked(d.doc));
  EXPECT_EQ(d.host.Faults().Count("DocManager::LockDocument"), 2);
  EXPECT_EQ(d.host.Faults().Count("DocManager::UnlockDocument"), 2);
  EXPECT_EQ(d.OpenObjects(), 0);
}

TEST(ViewLayout, OtherApplicationsDataIsKeptAndNotRead) {
  SimDrawing d("regapp \"ACME\"\nview \"V\" paper 0 0 1 1 xdata \"ACME\" \"keep\"\n");
  EXPECT_EQ(ReadViewLayout("V", d.Database(), d.db), "");
  WriteViewLayout("V", "L", d.host, d.doc);
  EXPECT_EQ(ReadViewLayout("V", d.Database(), d.db), "L");
  const auto& xdata = d.host.Find(d.doc)->content.views[0].xdata;
  ASSERT_EQ(xdata.size(), 4u);
  EXPECT_EQ(xdata[1].second, "keep");
}

TEST(ViewLayout, ARegistrationRefusedIsPrintedAndNothingIsWritten) {
  SimDrawing d("view \"V\" model 0 0 1 1\n");
  // Without the lock the table of applications refuses the new record.
  d.host.Faults().Fail("DocManager::LockDocument", 1, port::kFail, "busy");
  WriteViewLayout("V", "L", d.host, d.doc);
  EXPECT_EQ(text::ToUtf8(d.host.Transcript()),
            Utf8(u8"无法注册 MRVN_TAVLET appid - eLockViolation"));
  EXPECT_FALSE(d.host.Find(d.doc)->content.views[0].paperSpace);
  EXPECT_EQ(d.host.Faults().Count("DocManager::UnlockDocument"), 0);
}

TEST(AssignViewLayout, AsksOnlyAmongSeveralLayoutsAndOnlyOnce) {
  struct Case {
    const char* what;
    std::string layouts;
    std::vector<std::string> answer;
    std::string result;
    size_t questions;
  };
  const std::vector<Case> cases = {
      {"one layout: taken without a question", "layout \"Only\"\n", {}, "Only", 0},
      {"several: the first selected", "layout \"A1\"\nlayout \"A2\"\n", {"A2", "A1"}, "A2", 1},
      {"several, declined", "layout \"A1\"\nlayout \"A2\"\n", {}, "", 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SimDrawing d(c.layouts + Utf8(u8"view \"图1\" paper 0 0 1 1\n"));
    ScriptedChooser chooser;
    chooser.answer = c.answer;
    const std::string view = text::FromUtf8(Utf8(u8"图1"));
    EXPECT_EQ(AssignViewLayout(view, d.host, d.doc, chooser), c.result);
    ASSERT_EQ(chooser.titles.size(), c.questions);
    if (c.questions) {
      EXPECT_EQ(chooser.titles[0], Utf8(u8"给 '图1' 选择布局"));
      EXPECT_EQ(chooser.shown[0], (std::vector<std::string>{"A1", "A2"}));
    }
    // From now on the list knows the layout and no question is needed.
    EXPECT_EQ(Views(d)[0].layout, c.result);
    EXPECT_FALSE(d.host.IsLocked(d.doc));
    EXPECT_EQ(d.OpenObjects(), 0);
  }
}

TEST(CollectLayouts, BlockTableOrderWithModelSpaceAndTheFillRule) {
  SimDrawing d(Utf8(
      u8"layout \"布局1\"\nlayout \"Layout2\"\nxref \"X\" \"C:\\x.dwg\" resolved\nblock \"B\"\n"));
  int id = 0;
  IdMap<std::string> layouts;
  CollectLayouts(id, layouts, d.Database(), d.db, true);
  EXPECT_EQ(Texts(layouts), (std::vector<std::string>{"Model", Utf8(u8"布局1"), "Layout2"}));
  CollectLayouts(id, layouts, d.Database(), nullptr, false);
  EXPECT_EQ(Texts(layouts), std::vector<std::string>{kNone});
  d.host.Faults().Fail("DrawingDatabase::OpenBlockTable", 1, port::kFail, "");
  CollectLayouts(id, layouts, d.Database(), d.db, false);
  EXPECT_TRUE(layouts.empty());
  EXPECT_EQ(id, 4);
}

TEST(CollectLayerStates, DictionaryOrderOrOneNotFound) {
  struct Case {
    const char* what;
    std::string body;
    bool fill;
    std::vector<std::string> want;
  };
  const std::vector<Case> cases = {
      {"states in the dictionary's order",
       Utf8(u8"layer-state \"墙体关闭\"\nlayer-state \"Print\"\n"),
       true,
       {Utf8(u8"墙体关闭"), "Print"}},
      {"no layer states", "", true, {kNone}},
      {"no layer states, dialog", "", false, {}},
      {"no layer state manager", "layer-state \"P\"\nno-layer-state-manager\n", true, {kNone}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SimDrawing d(c.body);
    int id = 0;
    IdMap<std::string> states;
    CollectLayerStates(id, states, d.Database(), d.db, c.fill);
    EXPECT_EQ(Texts(states), c.want);
    EXPECT_EQ(d.OpenObjects(), 0);
  }
}

TEST(RestoreLayerState, RunsUnderTheLockAndLeavesTheDrawingUnlocked) {
  SimDrawing d("layer-state \"P\"\n");
  EXPECT_EQ(RestoreLayerState(d.host, d.doc, d.db, "P"), std::optional<long>(port::kAcadOk));
  EXPECT_EQ(d.host.Find(d.doc)->actions, std::vector<std::string>{"layer state P"});
  EXPECT_EQ(RestoreLayerState(d.host, d.doc, d.db, "missing"), std::optional<long>(3));
  d.host.Faults().Fail("DrawingDatabase::RestoreLayerState", 1, port::kFail, "");
  EXPECT_EQ(RestoreLayerState(d.host, d.doc, d.db, "P"), std::nullopt);
  EXPECT_FALSE(d.host.IsLocked(d.doc));
  EXPECT_EQ(d.host.Faults().Count("DocManager::LockDocument"), 3);
  EXPECT_EQ(d.host.Faults().Count("DocManager::UnlockDocument"), 3);
}

TEST(RestoreLayerState, WithoutAManagerNothingIsLockedOrAsked) {
  SimDrawing d("layer-state \"P\"\nno-layer-state-manager\n");
  EXPECT_EQ(RestoreLayerState(d.host, d.doc, d.db, "P"), std::nullopt);
  EXPECT_EQ(RestoreLayerState(d.host, d.doc, nullptr, "P"), std::nullopt);
  EXPECT_EQ(d.host.Faults().Count("DocManager::LockDocument"), 0);
  EXPECT_EQ(d.host.Faults().Count("DrawingDatabase::RestoreLayerState"), 0);
}

}  // namespace
}  // namespace tavlet::content
