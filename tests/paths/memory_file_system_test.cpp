#include "sim/memory_file_system.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavlet {
namespace {

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
