#include "sim/memory_file_system.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavlet {
namespace {

using Op = MemoryFileSystem::Op;

TEST(MemoryFileSystemTest, MatchesNamesLikeWindows) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\Dwg\\Plan.DWG", "x");
  EXPECT_TRUE(fs.Stat("c:/dwg/plan.dwg").exists);
  EXPECT_TRUE(fs.Stat("C:\\DWG\\").isFolder);
  EXPECT_TRUE(fs.Stat("C:").isFolder);
  // Trail bytes are neither folded nor taken for separators.
  fs.AddFile("C:\\\x81\x41", "upper");
  EXPECT_FALSE(fs.Stat("C:\\\x81\x61").exists);
  fs.AddFile("C:\\a\x81\x5C", "trail");
  EXPECT_FALSE(fs.Stat("C:\\a\x81").exists);
  EXPECT_EQ(fs.Contents("C:\\A\x81\x5C"), "trail");
  std::vector<std::string> names;
  EXPECT_EQ(fs.ListFolder("c:\\", names), FileError::None);
  EXPECT_EQ(names, (std::vector<std::string>{"Dwg", "Temp", "a\x81\x5C", "\x81\x41"}));
}

TEST(MemoryFileSystemTest, InjectedFailuresHitTheChosenCallOrPathOnly) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\s.ini", "v0");
  fs.FailOn(Op::WriteFileAtomic, 2, FileError::SharingViolation);
  EXPECT_EQ(fs.WriteFileAtomic("C:\\s.ini", "v1"), FileError::None);
  EXPECT_EQ(fs.Stat("C:\\s.ini").size, 2u);  // other operations don't count
  EXPECT_EQ(fs.WriteFileAtomic("C:\\s.ini", "v2"), FileError::SharingViolation);
  EXPECT_EQ(fs.WriteFileAtomic("C:\\s.ini", "v3"), FileError::None);
  EXPECT_EQ(fs.Contents("C:\\s.ini"), "v3");
  EXPECT_EQ(fs.CallCount(Op::WriteFileAtomic), 3);

  fs.AddFile("C:\\b.ini", "b");
  fs.FailPath("c:/S.INI", FileError::AccessDenied);
  std::string bytes;
  EXPECT_EQ(fs.ReadFile("C:\\s.ini", bytes), FileError::AccessDenied);
  EXPECT_EQ(fs.Rename("C:\\b.ini", "C:\\s.ini"), FileError::AccessDenied);
  EXPECT_EQ(fs.ReadFile("C:\\b.ini", bytes), FileError::None);
  fs.ClearFailures();
  EXPECT_EQ(fs.ReadFile("C:\\s.ini", bytes), FileError::None);
}

TEST(MemoryFileSystemTest, RenamingAFolderMovesWhatIsInIt) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\old\\x\\1.dwg", "1");
  fs.AddFile("C:\\older.txt", "keep");
  EXPECT_EQ(fs.Rename("C:\\old", "C:\\new"), FileError::None);
  EXPECT_EQ(fs.Contents("C:\\new\\x\\1.dwg"), "1");
  EXPECT_EQ(fs.Contents("C:\\older.txt"), "keep");
  EXPECT_FALSE(fs.Stat("C:\\old").exists);
}

}  // namespace
}  // namespace tavlet
