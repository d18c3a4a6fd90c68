#include <algorithm>

#include "worksets/workset_fixture.h"

namespace tavlet {
namespace {

class WorksetsPathTest : public ::testing::Test, public WorksetWorld {};

// The precedence itself is the settings' rule; the store asks it once and enters
// the answer in the settings, where it holds from then on.
TEST_F(WorksetsPathTest, TheStoreDecidesOnceAndAStoredPathWins) {
  for (const char* stored : {"", "E:\\Shared\\team.worksets"}) {
    SCOPED_TRACE(stored);
    WorksetWorld world;
    WriteString(world.store, keys::WorksetsPath, stored);
    world.files.AddFile("C:\\Module\\mei.worksets", "");
    const std::string expected = *stored ? stored : "C:\\Module\\mei.worksets";
    WorksetStore worksets(world.Services(true));
    EXPECT_EQ(worksets.GetWorksetsPath(), expected);
    EXPECT_EQ(ReadString(world.store, keys::WorksetsPath), expected);
    world.files.AddFile("C:\\Module\\Company.worksets", "");
    EXPECT_EQ(worksets.GetWorksetsPath(), expected);
  }
}

TEST_F(WorksetsPathTest, TheFirstWriteCreatesTheDataFolderFile) {
  WorksetStore worksets(Services(true));
  ProfileFile file(files, worksets.GetWorksetsPath(), true);
  EXPECT_FALSE(files.Contents(kUserFile).has_value());
  std::vector<DrawingPath> add = {DrawingPath("C:\\a.dwg", files)};
  worksets.AddFiles(file, "New", add);
  EXPECT_EQ(FileText(), "[New]\r\n文件1=C:\\a.dwg,0\r\n");
}

class WorksetMenuTest : public ::testing::Test, public WorksetWorld {
 protected:
  Lines Menu(bool placeholder, bool sort, int& nextId) {
    WorksetStore worksets(Services(true));
    content::IdMap<DrawingPath> list;
    worksets.ListWorksetsForMenu(nextId, list, placeholder, sort);
    Lines out;
    for (const auto& [id, path] : list) out.push_back(std::to_string(id) + " " + path.Full);
    return out;
  }
};

TEST_F(WorksetMenuTest, TwoIdsAWorksetInFileOrderOrSorted) {
  UseFile("[beta]\r\n[Alpha]\r\n文件1=C:\\a.dwg,0\r\n[工作]\r\n[alpha2]\r\n");
  int nextId = 5000;
  EXPECT_EQ(Menu(true, false, nextId),
            (Lines{"5000 beta", "5001 <选择>beta", "5002 Alpha", "5003 <选择>Alpha", "5004 工作", "5005 <选择>工作",
                   "5006 alpha2", "5007 <选择>alpha2"}));
  EXPECT_EQ(nextId, 5008);
  EXPECT_EQ(Menu(true, true, nextId),
            (Lines{"5008 Alpha", "5009 <选择>Alpha", "5010 alpha2", "5011 <选择>alpha2", "5012 beta",
                   "5013 <选择>beta", "5014 工作", "5015 <选择>工作"}));
}

TEST_F(WorksetMenuTest, NoWorksetGivesThePlaceholderOnlyWhenAsked) {
  int nextId = 7;
  EXPECT_EQ(Menu(false, false, nextId), Lines{});
  EXPECT_EQ(nextId, 7);
  EXPECT_EQ(Menu(true, true, nextId), (Lines{"7 没有找到"}));
  EXPECT_EQ(nextId, 8);
}

// Whatever a damaged file holds, the store reads what the profile rules read
// from it, and no read ever writes it.
TEST_F(WorksetMenuTest, DamagedFilesReadAsTheProfileRulesGiveAndAreNeverRewritten) {
  std::string garbage;
  for (int i = 0; i < 4096; ++i) garbage += static_cast<char>((i * 131 + 7) % 256);
  // One 10 MB line between two small sections: the buffers cut it as the platform would.
  const std::string large = "[Big]\r\n文件1=C:\\" + std::string(10u * 1024 * 1024, 'x') + ",1\r\n[After]\r\n";
  const std::string nuls = std::string("[A\0B]\r\n文件1=C:\\x\0y.dwg,1\r\n[C]\r\n", 33);
  struct Case {
    const char* name;
    std::string bytes;
  } cases[] = {{"binary garbage", garbage}, {"10 MB", large}, {"NUL bytes", nuls}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WorksetWorld world;
    world.UseFile(c.bytes);
    const int writesBefore = world.files.CallCount(MemoryFileSystem::Op::WriteFileAtomic);

    Lines expectedNames;
    {
      ProfileFile direct(world.files, kUserFile, true);
      direct.GetSectionNames(expectedNames);
    }
    WorksetStore worksets(world.Services(true));
    int nextId = 1;
    content::IdMap<DrawingPath> list;
    worksets.ListWorksetsForMenu(nextId, list, true, true);
    Lines menuNames;
    for (const auto& [id, path] : list)
      if (path.Full.rfind("<选择>", 0) != 0) menuNames.push_back(path.Full);
    Lines sortedExpected = expectedNames;
    std::stable_sort(sortedExpected.begin(), sortedExpected.end(),
                     [](const std::string& a, const std::string& b) { return text::Mbsicoll(a, b) < 0; });
    if (sortedExpected.empty()) sortedExpected.push_back("没有找到");
    EXPECT_EQ(menuNames, sortedExpected);

    // A few sections are enough: each read parses the whole file again.
    for (std::size_t i = 0; i < expectedNames.size() && i < 3; ++i) {
      const std::string& name = expectedNames[i];
      ProfileFile file(world.files, kUserFile, true);
      std::vector<DrawingPath> members;
      ReadWorkset(file, name, members, world.files);
      worksets.OpenWorkset(name);
    }
    worksets.OpenLastWorkset();
    EXPECT_EQ(world.FileText(), c.bytes);
    EXPECT_EQ(world.files.CallCount(MemoryFileSystem::Op::WriteFileAtomic), writesBefore);
  }
}

}  // namespace
}  // namespace tavlet
