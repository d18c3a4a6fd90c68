#include "settings/file_hive.h"

#include <gtest/gtest.h>

#include "settings/settings_table.h"
#include "sim/memory_file_system.h"

namespace tavlet {
namespace {

constexpr const char* kHive = "C:\\Data\\settings.hive";
constexpr const char* kRoot = "Software\\Morvane\\Tavlet\\2.0 - R16";

TEST(FileHive, TextFormRoundTripsEveryKindOfValue) {
  RegistryTree tree;
  const std::string key = std::string(kRoot) + "\\工作集";
  const std::string awkward("C:\\表\\\"q\"\n\t;%\0", 15);
  tree.Set(key, "路径", kRegSz, awkward);
  tree.Set(key, "", kRegSz, std::string("default\0", 8));
  tree.Set(kRoot, "TipWidth", kRegDword, std::string("\x2C\x01\0\0", 4));
  tree.Set(kRoot, "LabelFont", kRegBinary, std::string(60, '\xF4'));
  tree.Set(kRoot, "Odd", 7, "");
  tree.Set(kRoot, "SzWithNuls", kRegSz, std::string("a\0b\0", 4));
  tree.Set(kRoot, "\x81", kRegSz, std::string("\x81\0", 2));  // a lone lead byte
  tree.Set(std::string(kRoot) + "\\Key]%", "n", kRegDword, std::string(4, '\0'));
  tree.Find(std::string(kRoot) + "\\Empty", true);

  const std::string text = FormatHive(tree);
  EXPECT_NE(text.find("\"TipWidth\"=dword:0000012c\n"), std::string::npos) << text;
  EXPECT_NE(text.find("[Software\\Morvane\\Tavlet\\2.0 - R16\\工作集]\n"), std::string::npos);
  RegistryTree back;
  std::string problem;
  ASSERT_TRUE(ParseHive(text, back, problem)) << problem << "\n" << text;
  EXPECT_EQ(FormatHive(back), text);
  EXPECT_NE(back.Find(std::string(kRoot) + "\\empty", false), nullptr);
  RegValue v;
  ASSERT_TRUE(back.Query(key, "路径", v));
  EXPECT_EQ(v.bytes, awkward);
  ASSERT_TRUE(back.Query(kRoot, "SzWithNuls", v));
  EXPECT_EQ(v.type, kRegSz);
  EXPECT_EQ(v.bytes, std::string("a\0b\0", 4));
  EXPECT_TRUE(back.Query(std::string(kRoot) + "\\KEY]%", "N", v));
}

// Damaged files yield an empty hive, and the file is kept aside before a new one goes
// in its place.
TEST(FileHive, DamagedFileGivesDefaultsAndIsKeptAside) {
  const std::string good = "TavletHive 1\n[Software\\M]\n\"A\"=dword:00000005\n# end\n";
  const std::string cases[] = {
      good.substr(0, good.size() - 6),         // cut before the end line
      good.substr(0, 40),                      // cut inside a value
      "\x89PNG\r\n\x1a\n garbage \0\xff",      // not a hive at all
      "TavletHive 1\n\"A\"=dword:1\n# end\n",  // value outside a key
      "TavletHive 1\n[Software\\M]\n\"A\"=dword:0000000g\n# end\n",
      "TavletHive 1\n[Software\\M]\n\"A=sz:\"x\"\n# end\n",
      "TavletHive 2\n# end\n",
      "",
  };
  for (const std::string& damaged : cases) {
    SCOPED_TRACE(damaged);
    MemoryFileSystem files;
    files.AddFile(kHive, damaged);
    FileHive hive(files, kHive);
    SettingsStore store(hive, "Software\\M");
    EXPECT_EQ(store.GetInt("", "A", 77), 77);
    EXPECT_FALSE(hive.LoadProblem().empty());
    // The read created the key, so the hive was written, after the old file went aside.
    EXPECT_EQ(hive.KeptAsidePath(), std::string(kHive) + ".corrupt-1");
    EXPECT_EQ(files.Contents(std::string(kHive) + ".corrupt-1"), damaged);
    EXPECT_TRUE(store.SetInt("", "A", 6));
    FileHive reread(files, kHive);
    EXPECT_EQ(SettingsStore(reread, "Software\\M").GetInt("", "A", 77), 6);
    EXPECT_TRUE(reread.LoadProblem().empty());
  }
  MemoryFileSystem files;
  files.AddFile(std::string(kHive) + ".corrupt-1", "first");
  files.AddFile(kHive, "second");
  FileHive hive(files, kHive);
  EXPECT_TRUE(hive.SetValue("K", "v", kRegSz, std::string("x\0", 2)));
  EXPECT_EQ(files.Contents(std::string(kHive) + ".corrupt-1"), "first");  // earlier ones are not overwritten
  EXPECT_EQ(files.Contents(std::string(kHive) + ".corrupt-2"), "second");
}

TEST(FileHive, WritesThatCannotBeMadeChangeNothing) {
  MemoryFileSystem files;
  const std::string locked = "TavletHive 1\n[S]\n\"A\"=dword:00000005\n# end\n";
  files.AddFile("C:\\Data\\locked.hive", locked);
  files.FailPath("C:\\Data\\locked.hive", FileError::SharingViolation);
  FileHive unreadable(files, "C:\\Data\\locked.hive");
  SettingsStore lockedStore(unreadable, "S");
  EXPECT_EQ(lockedStore.GetInt("", "A", 1), 1);
  EXPECT_FALSE(lockedStore.SetInt("", "A", 2));  // what can't be read is never overwritten
  files.ClearFailures();
  EXPECT_EQ(files.Contents("C:\\Data\\locked.hive"), locked);

  MemoryFileSystem fresh;
  FileHive hive(fresh, kHive);
  SettingsStore store(hive, kRoot);
  ASSERT_TRUE(store.SetInt("", "TipWidth", 400));  // creates C:\Data on the way
  const auto before = fresh.Contents(kHive);
  ASSERT_TRUE(before.has_value());
  fresh.FailOn(MemoryFileSystem::Op::WriteFileAtomic);
  EXPECT_FALSE(store.SetInt("", "TipWidth", 500));
  EXPECT_EQ(fresh.Contents(kHive), before);
  EXPECT_EQ(store.GetInt("", "TipWidth", 0), 400);
  fresh.FailOn(MemoryFileSystem::Op::WriteFileAtomic);
  EXPECT_EQ(store.GetInt("NewSection", "X", 3), 3);  // the key can't be kept: a default
  EXPECT_FALSE(hive.KeyExists(std::string(kRoot) + "\\NewSection"));
  EXPECT_EQ(fresh.Contents(kHive), before);
}

TEST(FileHive, CleanHiveLeavesTheListedKeysInTheFile) {
  MemoryFileSystem files;
  {
    FileHive hive(files, kHive);
    SettingsStore store(hive, kRoot);
    FixedDisplayDefaults display;
    struct : WorksetsPathSource {
      std::string ComputeWorksetsPath() override { return "C:\\Data\\wu.worksets"; }
    } worksets;
    LoadSettings(store, display, worksets);
  }
  FileHive reread(files, kHive);
  for (const char* sub : {"", "\\Colors", "\\Previews", "\\工作集"})
    EXPECT_TRUE(reread.KeyExists(std::string(kRoot) + sub)) << sub;
  EXPECT_EQ(SettingsStore(reread, kRoot).GetString("工作集", "路径", ""), "C:\\Data\\wu.worksets");
}

}  // namespace
}  // namespace tavlet
