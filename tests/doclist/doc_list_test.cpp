#include "bar/doc_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bar {
namespace {

class RecordingView final : public PreviewStripView {
 public:
  void LayOut() override { calls.push_back("layout"); }
  void Redraw() override { calls.push_back("redraw"); }
  void RedrawRect(const host::WindowRect& r) override {
    calls.push_back("redraw " + std::to_string(r.left) + "," + std::to_string(r.top));
  }
  void StartTimer(unsigned id, unsigned ms) override {
    calls.push_back("timer " + std::to_string(id) + " " + std::to_string(ms));
  }
  std::vector<std::string> calls;
};

class DocListTest : public ::testing::Test {
 protected:
  port::Document Open(const std::string& path) {
    files.AddFile(path, "AC1018" + std::string(32, '\0'));
    return host.OpenDrawing(path);
  }
  std::vector<std::string> Fulls() const {
    std::vector<std::string> out;
    for (const auto& e : list.Entries()) out.push_back(e->path.Full);
    return out;
  }

  MemoryFileSystem files;
  sim::SimHost host{files};
  RecordingView view;
  DocListSettings settings;
  DocList list{*host.Documents(), files, view, settings};
};

TEST_F(DocListTest, SecondAddMakesSecondEntryAndRemoveTakesTheFirstOnly) {
  port::Document a = Open("C:\\d\\a.dwg");
  list.AddDocument(a);
  list.AddDocument(a);
  list.AddDocument(nullptr);
  ASSERT_EQ(list.Entries().size(), 2u);
  DocEntry* second = list.Entries()[1].get();
  EXPECT_EQ(view.calls, (std::vector<std::string>{"layout", "layout"}));
  list.RemoveDocument(a);
  ASSERT_EQ(list.Entries().size(), 1u);
  EXPECT_EQ(list.Entries()[0].get(), second);
  list.RemoveDocument(a);
  list.RemoveDocument(a);  // nothing left to remove: no lay-out
  EXPECT_TRUE(list.Entries().empty());
  EXPECT_EQ(view.calls.size(), 4u);
  EXPECT_EQ(list.ActiveIndex(), -1);
  EXPECT_FALSE(list.Busy());
}

TEST_F(DocListTest, NewEntryStartsStaleWithTheRecordsInitialValues) {
  port::Document unnamed = host.NewDrawing();
  list.AddDocument(unnamed);
  const DocEntry& e = *list.Entries().front();
  EXPECT_EQ(e.path.Full, "Drawing1.dwg");  // from fileName: no saved path yet
  EXPECT_EQ(e.path.Name, "Drawing1");
  EXPECT_TRUE(e.previewDirty);
  EXPECT_FALSE(e.modified);
  EXPECT_EQ(e.index, -1);
  EXPECT_EQ(e.noImageText, "NO IMAGE\nAVAILABLE");
  EXPECT_EQ(e.previewWidth, 1);
  EXPECT_TRUE(e.previewDib.empty());
}

TEST_F(DocListTest, OrderFollowsSortBy) {
  struct Case {
    int sortBy;
    std::vector<std::string> expected;
  } cases[] = {
      {0, {"C:\\z\\B.dwg", "C:\\a\\c.dwg", "C:\\m\\a.dwg"}},  // arrival
      {1, {"C:\\m\\a.dwg", "C:\\z\\B.dwg", "C:\\a\\c.dwg"}},  // name, case ignored
      {2, {"C:\\a\\c.dwg", "C:\\m\\a.dwg", "C:\\z\\B.dwg"}},  // path
      {7, {"C:\\a\\c.dwg", "C:\\m\\a.dwg", "C:\\z\\B.dwg"}},  // any other value is path
  };
  std::vector<port::Document> docs = {Open("C:\\z\\B.dwg"), Open("C:\\a\\c.dwg"), Open("C:\\m\\a.dwg")};
  for (const Case& c : cases) {
    DocList fresh(*host.Documents(), files, view, settings);
    settings.SortBy = c.sortBy;
    for (port::Document d : docs) fresh.AddDocument(d);
    std::vector<std::string> got;
    for (const auto& e : fresh.Entries()) got.push_back(e->path.Full);
    EXPECT_EQ(got, c.expected) << "SortBy " << c.sortBy;
  }
}

TEST_F(DocListTest, SameNameInTwoFoldersIsAdjacentByName) {
  settings.SortBy = 1;
  for (const char* p : {"C:\\x\\plan.dwg", "C:\\a\\zone.dwg", "C:\\y\\plan.dwg", "C:\\b\\alpha.dwg"})
    list.AddDocument(Open(p));
  std::vector<std::string> names;
  for (const auto& e : list.Entries()) names.push_back(e->path.Name);
  EXPECT_EQ(names, (std::vector<std::string>{"alpha", "plan", "plan", "zone"}));
}

TEST_F(DocListTest, RenameUnderPathOrderMovesAndRenumbers) {
  settings.SortBy = 2;
  port::Document b = Open("C:\\d\\b.dwg"), c = Open("C:\\d\\c.dwg"), d = Open("C:\\d\\d.dwg");
  for (port::Document doc : {b, c, d}) list.AddDocument(doc);
  list.RenameDocument(c, DrawingPath("C:\\d\\a.dwg", files));
  EXPECT_EQ(Fulls(), (std::vector<std::string>{"C:\\d\\a.dwg", "C:\\d\\b.dwg", "C:\\d\\d.dwg"}));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(list.Entries()[static_cast<std::size_t>(i)]->index, i);
  EXPECT_EQ(list.Entries()[0]->document, c);

  settings.SortBy = 0;  // arrival order: the name changes, the place stays
  list.RenameDocument(d, DrawingPath("C:\\d\\0.dwg", files));
  EXPECT_EQ(Fulls(), (std::vector<std::string>{"C:\\d\\a.dwg", "C:\\d\\b.dwg", "C:\\d\\0.dwg"}));
}

TEST_F(DocListTest, ModifiedActsOnTheActiveDrawingOnly) {
  struct Case {
    bool active;
    int autoUpdate;
    bool modified;
    bool expectModified, expectDirty, expectRedraw;
  } cases[] = {
      {true, 1, true, true, true, true},   {true, 0, true, true, false, true},
      {true, 1, false, false, false, true}, {false, 1, true, false, false, false},
  };
  port::Document a = Open("C:\\d\\a.dwg"), b = Open("C:\\d\\b.dwg");  // b is active
  for (const Case& c : cases) {
    DocList fresh(*host.Documents(), files, view, settings);
    settings.AutoUpdatePreviews = c.autoUpdate;
    fresh.AddDocument(a);
    fresh.AddDocument(b);
    port::Document target = c.active ? b : a;
    DocEntry* e = fresh.FindEntry(target);
    e->previewDirty = false;
    view.calls.clear();
    fresh.SetDocumentModified(target, c.modified);
    EXPECT_EQ(e->modified, c.expectModified);
    EXPECT_EQ(e->previewDirty, c.expectDirty);
    EXPECT_EQ(view.calls == std::vector<std::string>{"redraw"}, c.expectRedraw);
  }
}

TEST_F(DocListTest, ActivationRedrawsAndWaitsForTheViewWhenCapturedFromScreen) {
  port::Document a = Open("C:\\d\\a.dwg");
  list.AddDocument(a);
  DocEntry* e = list.FindEntry(nullptr);  // null is the MDI-active drawing
  ASSERT_NE(e, nullptr);
  e->previewDirty = false;
  list.OnDocumentActivated(a);
  EXPECT_TRUE(e->previewDirty);
  EXPECT_EQ(view.calls.back(), "redraw");

  e->capturedFromScreen = true;
  e->previewDirty = false;
  view.calls.clear();
  list.OnDocumentActivated(a);
  EXPECT_EQ(view.calls, (std::vector<std::string>{"redraw", "timer 100 800"}));
  EXPECT_TRUE(e->previewDirty);

  settings.AutoUpdatePreviews = 0;
  e->previewDirty = false;
  list.OnDocumentActivated(a);
  EXPECT_FALSE(e->previewDirty);
  list.OnDocumentActivated(reinterpret_cast<port::Document>(0x77));  // no entry: nothing
  EXPECT_EQ(view.calls.size(), 4u);
}

TEST_F(DocListTest, MarkPreviewDirtyRedrawsTheCellAloneUnlessAutoUpdateIsOffAndNotForced) {
  port::Document a = Open("C:\\d\\a.dwg");
  list.AddDocument(a);
  DocEntry* e = list.FindEntry(a);
  e->itemRect = {4, 8, 90, 120};
  e->previewDirty = false;
  settings.AutoUpdatePreviews = 0;
  list.MarkPreviewDirty(a, false);
  EXPECT_FALSE(e->previewDirty);
  list.MarkPreviewDirty(a, true);
  EXPECT_TRUE(e->previewDirty);
  EXPECT_EQ(view.calls.back(), "redraw 4,8");
}

TEST_F(DocListTest, ResortWithoutSortFollowsTheHostsWalk) {
  port::Document a = Open("C:\\d\\a.dwg"), b = Open("C:\\d\\b.dwg"), c = Open("C:\\d\\c.dwg");
  list.AddDocument(a);
  list.AddDocument(c);  // b has no entry and gets none
  host.SetIterationOrder({c, b, a});
  list.ResortEntries();
  EXPECT_EQ(Fulls(), (std::vector<std::string>{"C:\\d\\c.dwg", "C:\\d\\a.dwg"}));
  settings.SortBy = 2;
  list.ResortEntries();
  EXPECT_EQ(Fulls(), (std::vector<std::string>{"C:\\d\\a.dwg", "C:\\d\\c.dwg"}));
  EXPECT_EQ(list.ActiveIndex(), 1);  // c was opened last
}

TEST_F(DocListTest, UnlockingAFrozenPreviewMakesItStale) {
  DocEntry e(nullptr, DrawingPath(files));
  e.previewDirty = false;
  e.SetPreviewLocked(true);
  EXPECT_FALSE(e.previewDirty);
  e.SetPreviewLocked(false);
  EXPECT_TRUE(e.previewDirty);
}

TEST(EntryBefore, NullIsNeverBefore) {
  MemoryFileSystem files;
  DocEntry a(nullptr, DrawingPath("C:\\a.dwg", files));
  EXPECT_FALSE(EntryBefore(nullptr, &a, 2));
  EXPECT_FALSE(EntryBefore(&a, nullptr, 2));
  EXPECT_FALSE(EntryBefore(&a, &a, 2));
}

}  // namespace
}  // namespace tavlet::bar
