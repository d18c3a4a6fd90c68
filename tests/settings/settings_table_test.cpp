#include "settings/settings_table.h"

#include <gtest/gtest.h>

#include <set>

#include "settings/data_folder.h"
#include "settings/memory_registry.h"
#include "sim/memory_file_system.h"

namespace tavlet {
namespace {

constexpr const char* kRoot = "Software\\Morvane\\Tavlet\\2.0 - R16";

class FixedPath : public WorksetsPathSource {
 public:
  std::string ComputeWorksetsPath() override { return "C:\\Data\\user.worksets"; }
};

class FakeEnvironment : public UserEnvironment {
 public:
  bool hasAppData = true;
  bool hasUser = true;
  bool AppDataFolder(std::string& folder) override {
    folder = "C:\\Users\\wu\\AppData";
    return hasAppData;
  }
  std::string ModuleFolder() override { return "C:\\Cad\\"; }
  bool UserName(std::string& name) override {
    name = "wu";
    return hasUser;
  }
};

class SettingsTableTest : public ::testing::Test {
 protected:
  MemoryRegistry registry;
  SettingsStore store{registry, kRoot};
  FixedDisplayDefaults display;
  FixedPath worksets;
};

TEST(SettingsTable, EveryKeyIsListedOnceAndFoundByName) {
  std::set<std::string> seen;
  for (const SettingKey& setting : AllSettings()) {
    const std::string id = std::string(setting.section) + "|" + std::string(setting.key);
    EXPECT_TRUE(seen.insert(id).second) << id;
    EXPECT_EQ(FindSetting(setting.section, setting.key), &setting) << id;
  }
  EXPECT_EQ(FindSetting("blackback", "GAMMA")->realDefault, 2.5);
  EXPECT_EQ(FindSetting("WhiteBack", "Gamma")->realDefault, 0);
  EXPECT_EQ(FindSetting("", "NoSuchKey"), nullptr);
}

// On a clean hive every read gives the table's default, and the defaults that follow
// the machine are asked for at the moment of reading.
TEST_F(SettingsTableTest, CleanHiveGivesEveryDefault) {
  const std::pair<const SettingKey*, int> ints[] = {
      {&keys::On, 1},           {&keys::LoadOnCommand, 0},     {&keys::ShowTips, 1},
      {&keys::TipWidth, 300},   {&keys::TipDelay, 3000},       {&keys::TipRemain, 10000},
      {&keys::SortBy, 0},       {&keys::NumSheetSets, 15},     {&keys::ZoomExtentsOnSave, 1},
      {&keys::SwitchOnBusy, 1}, {&keys::DockSide, 59420},      {&keys::Size, 100},
      {&keys::MRUCount, 10},    {&keys::MinSize, 26},          {&keys::TabMode, 0},
      {&keys::ScrollBarSize, 12}, {&keys::AutoUpdatePreviews, 1}, {&keys::ShowDwgName, 1},
      {&keys::BlackBack::Sharpness, 20}, {&keys::WhiteBack::Sharpness, 20}, {&keys::LastTab, 0},
  };
  for (auto [setting, expected] : ints) EXPECT_EQ(ReadInt(store, *setting), expected) << setting->key;
  EXPECT_DOUBLE_EQ(ReadDouble(store, keys::BlackBack::Gamma), 2.5);
  EXPECT_DOUBLE_EQ(ReadDouble(store, keys::WhiteBack::Gamma), 0);
  EXPECT_EQ(ReadString(store, keys::SaveCommand), "_.QSAVE\n");
  EXPECT_EQ(ReadString(store, keys::UpdateEndpoint), "");
  EXPECT_EQ(ReadColor(store, keys::ReadOnly, display), 172u);
  EXPECT_EQ(ReadColor(store, keys::Modified, display), 364328u);
  EXPECT_EQ(ReadColor(store, keys::Background, display), display.SysColor(15));
  EXPECT_EQ(ReadColor(store, keys::TitleText, display), display.SysColor(18));
  EXPECT_EQ(ReadFont(store, keys::LabelFont, display), display.DefaultGuiFont());
  struct Dark : FixedDisplayDefaults {
    std::uint32_t SysColor(int) override { return 0x00202020; }
  } dark;
  EXPECT_EQ(ReadColor(store, keys::TitleBack, dark), 0x00202020u);
  WriteInt(store, keys::TitleBack, 0x123456);
  EXPECT_EQ(ReadColor(store, keys::TitleBack, dark), 0x123456u);
}

TEST_F(SettingsTableTest, LoadSettingsOnACleanHiveWritesOnlyTheWorksetsPath) {
  display.commandWindowWidth = 640;
  const BarSettings s = LoadSettings(store, display, worksets);
  EXPECT_EQ(s.TipRemain, 10000);
  EXPECT_EQ(s.DockSide, 59420);
  EXPECT_EQ(s.WidthOnCmdWnd, 320);
  EXPECT_EQ(s.NumSheetSets, 15);
  EXPECT_EQ(s.ScrollBarSize, 12);
  EXPECT_EQ(s.Background, display.SysColor(15));
  EXPECT_EQ(s.Modified, 364328u);
  EXPECT_EQ(s.LabelFont, display.DefaultGuiFont());
  EXPECT_EQ(s.WorksetsPath, "C:\\Data\\user.worksets");
  // The keys a first run leaves behind: the root, its three subkeys and "路径".
  for (const char* sub : {"", "Colors", "Previews", "工作集"})
    EXPECT_TRUE(registry.KeyExists(std::string(kRoot) + "\\" + sub)) << sub;
  EXPECT_EQ(store.GetString("工作集", "路径", ""), "C:\\Data\\user.worksets");
  EXPECT_EQ(registry.WriteLog(), std::vector<std::string>{std::string(kRoot) + "\\工作集|路径"});
}

TEST_F(SettingsTableTest, TheWorksetsPathIsDecidedOnce) {
  MemoryFileSystem files;
  FakeEnvironment environment;
  WorksetsPathRule rule("C:\\Users\\wu\\AppData\\Morvane\\Tavlet\\", environment, files);
  const std::string decided = "C:\\Users\\wu\\AppData\\Morvane\\Tavlet\\wu.worksets";
  EXPECT_EQ(LoadSettings(store, display, rule).WorksetsPath, decided);
  files.AddFile("C:\\Cad\\Company.worksets", "[Office]\r\n");
  EXPECT_EQ(LoadSettings(store, display, rule).WorksetsPath, decided);
}

TEST(SettingsTable, WorksetsPathPrecedence) {
  const struct {
    const char *what, *stored;
    bool company, besideModule, hasUser;
    const char* expected;
  } cases[] = {
      {"stored wins", "D:\\x.worksets", true, true, true, "D:\\x.worksets"},
      {"company file", "", true, true, true, "C:\\Cad\\Company.worksets"},
      {"no user name", "", false, true, false, "C:\\Cad\\Company.worksets"},
      {"user file beside module", "", false, true, true, "C:\\Cad\\wu.worksets"},
      {"data folder", "", false, false, true, "C:\\Data\\wu.worksets"},
  };
  for (const auto& c : cases) {
    MemoryFileSystem files;
    if (c.company) files.AddFile("C:\\Cad\\Company.worksets", "");
    if (c.besideModule) files.AddFile("C:\\Cad\\WU.worksets", "");
    FakeEnvironment environment;
    environment.hasUser = c.hasUser;
    EXPECT_EQ(DecideWorksetsPath(c.stored, "C:\\Data\\", environment, files), c.expected) << c.what;
  }
}

TEST(SettingsTable, DataFolderIsCreatedBelowAppDataElseTheModuleFolder) {
  MemoryFileSystem files;
  FakeEnvironment environment;
  EXPECT_EQ(DecideDataFolder(environment, files), "C:\\Users\\wu\\AppData\\Morvane\\Tavlet\\");
  EXPECT_TRUE(files.Stat("C:\\Users\\wu\\AppData\\Morvane\\Tavlet").isFolder);
  environment.hasAppData = false;
  EXPECT_EQ(DecideDataFolder(environment, files), "C:\\Cad\\");
}

TEST_F(SettingsTableTest, SaveSettingsWritesInOrderFloatingTwiceLockSizeNever) {
  store.SetInt("", "LockSize", 1);
  registry.ClearWriteLog();
  BarSettings s;
  s.LockSize = 0;
  s.Floating = 1;
  SaveSettings(store, s);
  std::vector<std::string> written;
  for (const std::string& entry : registry.WriteLog()) written.push_back(entry.substr(std::string(kRoot).size()));
  const std::vector<std::string> expected = {
      "\\|ShowTips", "\\|TipWidth", "\\|TipDelay", "\\|TipRemain", "\\|LoadOnCommand",
      "\\|Floating", "\\|HideOnSingle", "\\|SwitchOnBusy", "\\|ZoomExtentsOnSave",
      "\\|ShowFullPathInTips", "\\|ShowDwgPropsInTips", "\\|ShowFullPathInRefs",
      "\\|ShowFullPathInSheetSets", "\\|SortWorksets", "\\|NumSheetSets", "\\|SortBy",
      "\\Colors|Background", "\\Colors|TitleBack", "\\Colors|TitleText", "\\Colors|ReadOnly",
      "\\Colors|Modified", "\\Previews|AutoUpdatePreviews", "\\Previews|ScrollBarSize",
      "\\Previews|ScrollOverflow", "\\Previews|ShowDwgName", "\\Previews|DwgNameAbove",
      "\\|TabMode", "\\|DockSide", "\\|Floating"};
  EXPECT_EQ(written, expected);
  // The session's LockSize is not saved: the old value comes back at the next start.
  EXPECT_EQ(LoadSettings(store, display, worksets).LockSize, 1);
}

TEST_F(SettingsTableTest, SavedSettingsLoadBack) {
  BarSettings s;
  s.TipWidth = 450;
  s.SortBy = 2;
  s.TabMode = -1;
  s.Background = 0x00ABCDEF;
  s.DwgNameAbove = 1;
  s.DockSide = 59425;
  s.Floating = 1;
  SaveSettings(store, s);
  const BarSettings back = LoadSettings(store, display, worksets);
  EXPECT_EQ(back.TipWidth, 450);
  EXPECT_EQ(back.SortBy, 2);
  EXPECT_EQ(back.TabMode, -1);
  EXPECT_EQ(back.Background, 0x00ABCDEFu);
  EXPECT_EQ(back.DwgNameAbove, 1);
  EXPECT_EQ(back.DockSide, 59425);
  EXPECT_EQ(back.Floating, 1);
}

}  // namespace
}  // namespace tavlet
