// RecentFileList over the settings store: reading through gaps, MRUCount, exact
// de-duplication, a queue that outgrows the count until the next load, and stale
// slots that bring a returning file back.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "settings/settings_store.h"
#include "sim/memory_file_system.h"
#include "worksets/recent_files.h"

namespace tavlet {
namespace {

std::string Slot(int i) { return "路径_" + std::to_string(i); }

class RecentFilesTest : public ::testing::Test {
 protected:
  void Store(const std::map<int, std::string>& slots) {
    for (const auto& [slot, path] : slots) store.SetString("MRU", Slot(slot), path);
  }
  void Exist(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) fs.AddFile(path, "AC1015");
  }
  std::vector<std::string> Listed() const {
    std::vector<std::string> out;
    for (std::size_t i = 0; i < list.Count(); ++i) out.push_back(list.At(i));
    return out;
  }
  std::string Stored(int slot) const { return store.GetString("MRU", Slot(slot), "<none>"); }

  MemoryRegistry registry;
  SettingsStore store{registry, DefaultSettingsRoot()};
  MemoryFileSystem fs;
  RecentFileList list{store, fs};
};

struct LoadCase {
  const char* name;
  int mruCount;  // -1: not stored, the default 10 applies
  std::map<int, std::string> slots;
  std::vector<std::string> existing;
  std::vector<std::string> expected;
};

TEST_F(RecentFilesTest, LoadReadsExistingEntriesInSlotOrder) {
  const std::vector<LoadCase> cases = {
      {"three in order", -1, {{1, "C:\\a.dwg"}, {2, "C:\\b.dwg"}, {3, "C:\\c.dwg"}},
       {"C:\\a.dwg", "C:\\b.dwg", "C:\\c.dwg"}, {"C:\\a.dwg", "C:\\b.dwg", "C:\\c.dwg"}},
      {"a gap doesn't stop the reading", -1, {{3, "C:\\c.dwg"}}, {"C:\\c.dwg"}, {"C:\\c.dwg"}},
      {"a file gone is left out", -1, {{1, "C:\\a.dwg"}, {2, "C:\\gone.dwg"}, {3, "C:\\c.dwg"}},
       {"C:\\a.dwg", "C:\\c.dwg"}, {"C:\\a.dwg", "C:\\c.dwg"}},
      {"MRUCount 0", 0, {{1, "C:\\a.dwg"}}, {"C:\\a.dwg"}, {}},
      {"MRUCount cuts", 2, {{1, "C:\\a.dwg"}, {2, "C:\\b.dwg"}, {3, "C:\\c.dwg"}},
       {"C:\\a.dwg", "C:\\b.dwg", "C:\\c.dwg"}, {"C:\\a.dwg", "C:\\b.dwg"}},
      {"slot 11 is behind the default count", -1, {{10, "C:\\j.dwg"}, {11, "C:\\k.dwg"}},
       {"C:\\j.dwg", "C:\\k.dwg"}, {"C:\\j.dwg"}},
      {"empty value skipped", -1, {{1, ""}, {2, "C:\\b.dwg"}}, {"C:\\b.dwg"}, {"C:\\b.dwg"}},
      {"code-page 936 path", -1, {{1, "D:\\图纸\\总图.dwg"}}, {"D:\\图纸\\总图.dwg"}, {"D:\\图纸\\总图.dwg"}},
  };
  for (const LoadCase& c : cases) {
    SCOPED_TRACE(c.name);
    registry.Tree().Clear();
    fs = MemoryFileSystem();
    if (c.mruCount >= 0) store.SetInt("", "MRUCount", c.mruCount);
    Store(c.slots);
    Exist(c.existing);
    list.LoadRecentFiles();
    list.LoadRecentFiles();  // replaces, never appends
    EXPECT_EQ(Listed(), c.expected);
  }
}

TEST_F(RecentFilesTest, AddIsCaseSensitiveAndMovesToFront) {
  list.AddRecentFile("C:\\a.dwg");
  list.AddRecentFile("C:\\A.dwg");
  list.AddRecentFile("C:\\b.dwg");
  EXPECT_EQ(Listed(), (std::vector<std::string>{"C:\\b.dwg", "C:\\A.dwg", "C:\\a.dwg"}));
  list.AddRecentFile("C:\\a.dwg");
  EXPECT_EQ(Listed(), (std::vector<std::string>{"C:\\a.dwg", "C:\\b.dwg", "C:\\A.dwg"}));
  EXPECT_EQ(Stored(1), "C:\\a.dwg");
  EXPECT_EQ(Stored(2), "C:\\b.dwg");
  EXPECT_EQ(Stored(3), "C:\\A.dwg");
  EXPECT_EQ(Stored(4), "<none>");
}

TEST_F(RecentFilesTest, QueueOutgrowsTheCountUntilTheNextLoad) {
  for (int i = 1; i <= 11; ++i) {
    const std::string path = "C:\\f" + std::to_string(i) + ".dwg";
    fs.AddFile(path, "x");
    list.AddRecentFile(path);
  }
  EXPECT_EQ(list.Count(), 11u);
  EXPECT_EQ(Stored(1), "C:\\f11.dwg");
  EXPECT_EQ(Stored(10), "C:\\f2.dwg");
  EXPECT_EQ(Stored(11), "<none>");
  list.LoadRecentFiles();
  EXPECT_EQ(list.Count(), 10u);
  EXPECT_EQ(list.At(9), "C:\\f2.dwg");
}

TEST_F(RecentFilesTest, MruCountZeroSavesNothing) {
  store.SetInt("", "MRUCount", 0);
  registry.ClearWriteLog();
  list.AddRecentFile("C:\\a.dwg");
  EXPECT_TRUE(registry.WriteLog().empty());
  EXPECT_EQ(list.Count(), 1u);
}

TEST_F(RecentFilesTest, StaleSlotsBringAReturningFileBack) {
  Store({{1, "C:\\a.dwg"}, {2, "C:\\b.dwg"}, {3, "C:\\c.dwg"}});
  Exist({"C:\\a.dwg", "C:\\b.dwg"});
  list.LoadRecentFiles();
  ASSERT_EQ(list.Count(), 2u);
  list.SaveRecentFiles();
  EXPECT_EQ(Stored(3), "C:\\c.dwg") << "slots behind the last written one stay";
  Exist({"C:\\c.dwg"});
  list.LoadRecentFiles();
  EXPECT_EQ(Listed(), (std::vector<std::string>{"C:\\a.dwg", "C:\\b.dwg", "C:\\c.dwg"}));
}

TEST_F(RecentFilesTest, FailedWritesAreIgnored) {
  FailingRegistry failing(registry);
  SettingsStore failingStore(failing, DefaultSettingsRoot());
  RecentFileList failingList(failingStore, fs);
  failing.FailWrites(true);
  failingList.AddRecentFile("C:\\a.dwg");
  EXPECT_EQ(failingList.Count(), 1u);
  EXPECT_EQ(Stored(1), "<none>");
}

}  // namespace
}  // namespace tavlet
