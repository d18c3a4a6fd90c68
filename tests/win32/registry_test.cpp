// The settings store over the real registry: the same read and write rules as over
// the in-memory tree, under a throw-away branch of HKEY_CURRENT_USER.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_table.h"

namespace tavlet {
namespace {

class RegistryTest : public ::testing::Test {
 protected:
  void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, branch_.c_str()); }
  void TearDown() override { RegDeleteTreeA(HKEY_CURRENT_USER, branch_.c_str()); }
  bool Exists(const std::string& path) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
    RegCloseKey(key);
    return true;
  }
  const std::string branch_ = "Software\\TavletTest\\" + std::to_string(GetCurrentProcessId());
  const std::string root_ = branch_ + "\\2.0 - R16";
  Win32Registry registry_;
  SettingsStore store_{registry_, root_};
};

TEST_F(RegistryTest, ValuesKeepTheirRegistryForms) {
  ASSERT_TRUE(store_.SetInt("Colors", "ReadOnly", 172));
  ASSERT_TRUE(store_.SetString("", "SaveCommand", "_.QSAVE\n"));
  ASSERT_TRUE(store_.SetDouble("BlackBack", "Gamma", 2.5));
  LogFontA font;
  font.lfHeight = -12;
  std::strcpy(font.lfFaceName, "宋体");
  ASSERT_TRUE(store_.SaveFont("", "LabelFont", font));

  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, (root_ + "\\Colors").c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
  DWORD type = 0, value = 0, size = sizeof value;
  EXPECT_EQ(RegQueryValueExA(key, "ReadOnly", nullptr, &type, reinterpret_cast<BYTE*>(&value), &size), ERROR_SUCCESS);
  RegCloseKey(key);
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(value, 172u);
  EXPECT_EQ(store_.GetString("", "SaveCommand", ""), "_.QSAVE\n");
  EXPECT_DOUBLE_EQ(store_.GetDouble("BlackBack", "Gamma", 0), 2.5);
  LogFontA back;
  ASSERT_TRUE(store_.RestoreFont("", "LabelFont", back));
  EXPECT_EQ(back, font);
}

TEST_F(RegistryTest, OddValuesFollowTheReadRules) {
  registry_.SetValue(root_, "Short", REG_SZ, std::string("ab\0", 3));
  registry_.SetValue(root_, "Nul", REG_SZ, std::string("abc\0def\0", 8));
  registry_.SetValue(root_, "Big", REG_BINARY, std::string(8, '\1'));
  registry_.SetValue(root_, "Bin", REG_SZ, std::string("1234", 4));
  EXPECT_EQ(store_.GetInt("", "Short", 0x11223344), 0x11006261);
  EXPECT_EQ(store_.GetString("", "Nul", ""), "abc");
  EXPECT_EQ(store_.GetInt("", "Big", 9), 9);
  char buffer[4] = {'x', 'x', 'x', 'x'};
  EXPECT_FALSE(store_.GetBinary("", "Bin", buffer, 4));
  EXPECT_EQ(std::string(buffer, 4), "xxxx");
  EXPECT_TRUE(registry_.DeleteValue(root_, "Short"));
  EXPECT_EQ(store_.GetInt("", "Short", 5), 5);
}

// A first run reads every default and leaves the listed keys, created by the reads.
TEST_F(RegistryTest, CleanRunLeavesTheListedKeys) {
  EXPECT_FALSE(Exists(root_));
  Win32DisplayDefaults display(640);
  struct : WorksetsPathSource {
    std::string ComputeWorksetsPath() override { return "C:\\Data\\wu.worksets"; }
  } worksets;
  const BarSettings s = LoadSettings(store_, display, worksets);
  EXPECT_EQ(s.TipDelay, 3000);
  EXPECT_EQ(s.WidthOnCmdWnd, 320);
  EXPECT_EQ(s.Background, GetSysColor(15));
  LOGFONTA stock{};
  GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof stock, &stock);
  EXPECT_EQ(std::memcmp(&s.LabelFont, &stock, 60), 0);
  for (const char* sub : {"", "\\Colors", "\\Previews", "\\工作集"}) EXPECT_TRUE(Exists(root_ + sub)) << sub;
  EXPECT_TRUE(registry_.KeyExists(root_ + "\\"));
  EXPECT_EQ(store_.GetString("工作集", "路径", ""), "C:\\Data\\wu.worksets");
}

TEST(Win32UserEnvironment, FoldersAndUserName) {
  Win32UserEnvironment environment;
  std::string folder, user;
  EXPECT_TRUE(environment.AppDataFolder(folder) && !folder.empty());
  EXPECT_TRUE(environment.UserName(user) && !user.empty());
  const std::string module = environment.ModuleFolder();
  ASSERT_FALSE(module.empty());
  EXPECT_EQ(module.back(), '\\');
}

}  // namespace
}  // namespace tavlet
