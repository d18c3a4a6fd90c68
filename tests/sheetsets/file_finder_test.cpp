#include <gtest/gtest.h>

#include "sheetsets/file_finder.h"
#include "sim/memory_file_system.h"

namespace tavlet::sheetsets {
namespace {

using Lines = std::vector<std::string>;

TEST(FileFinder, WildcardsMatchByCharacterIgnoringCase) {
  struct Case {
    const char* name;
    const char* pattern;
    bool matches;
  } cases[] = {
      {"a.dst", "*.dst", true},        {"A.DST", "*.dst", true},         {"a.dst.bak", "*.dst", false},
      {"readme", "*.*", true},         {"a.dwg", "?.dwg", true},         {"ab.dwg", "?.dwg", false},
      {"图.dwg", "?.dwg", true},        {"图纸.dwg", "图*", true},          {".dst", "*.dst", true},
      {"\x81" "A.dwg", "\x81" "a.dwg", false},  // a trail byte is never folded
      {"x", "", false},                {"", "*", true},                  {"abc", "a*c*", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " ~ " + c.pattern);
    EXPECT_EQ(MatchesWildcard(c.name, c.pattern), c.matches);
  }
}

TEST(FileFinder, SearchesSubfoldersWhereTheyAreMet) {
  MemoryFileSystem files;
  files.AddFile("D:\\s\\b.dst", "");
  files.AddFile("D:\\s\\a\\x.dst", "");
  files.AddFile("D:\\s\\a\\y.txt", "");
  files.AddFile("D:\\s\\c\\d\\e.DWG", "");
  // A folder whose name ends in a character with the trail byte 0x5C.
  files.AddFile("D:\\s\\表\\z.dst", "");
  Lines found;
  auto collect = [&](const std::string& path) { found.push_back(path); };
  EXPECT_EQ(FindFilesRecursive(files, "D:\\s\\", "*.dst", collect), 3u);
  EXPECT_EQ(found, (Lines{"D:\\s\\a\\x.dst", "D:\\s\\b.dst", "D:\\s\\表\\z.dst"}));
  found.clear();
  EXPECT_EQ(FindFilesRecursive(files, "D:\\s\\表", "*.dst", collect), 1u);
  found.clear();
  EXPECT_EQ(FindFilesRecursive(files, "D:\\s", " *.dwg , *.txt ,", collect), 2u);
  EXPECT_EQ(found, (Lines{"D:\\s\\a\\y.txt", "D:\\s\\c\\d\\e.DWG"}));
  found.clear();
  EXPECT_EQ(FindFilesRecursive(files, "", "*.*", collect), 0u);
  EXPECT_EQ(FindFilesRecursive(files, "D:\\nowhere", "*.*", collect), 0u);
  EXPECT_EQ(FindFilesRecursive(files, "D:\\s", "", collect), 0u);
  EXPECT_TRUE(found.empty());
}

}  // namespace
}  // namespace tavlet::sheetsets
