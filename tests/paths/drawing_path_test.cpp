#include "operations/drawing_path.h"

#include <gtest/gtest.h>

#include <string>

#include "sim/memory_file_system.h"

namespace tavlet {
namespace {

const std::string kTrailBackslash = "\x81\x5C";  // one character whose trail byte is '\'

class DrawingPathTest : public ::testing::Test {
 protected:
  DrawingPathTest() {
    fs.AddFile("C:\\dwg\\plan.dwg", "AC1018");
    fs.AddFolder("C:\\dwg\\sub");
    fs.AddFolder("C:\\x" + kTrailBackslash);
    fs.AddFile("C:\\x" + kTrailBackslash + "\\b.dwg", "");
  }
  MemoryFileSystem fs;
};

TEST_F(DrawingPathTest, SettingLooksTheNameUpAndMarksFolders) {
  const struct {
    std::string path;
    bool exists;
    bool isFolder;
    std::string full;
  } cases[] = {
      {"C:\\dwg\\plan.dwg", true, false, "C:\\dwg\\plan.dwg"},
      {"c:/DWG/PLAN.dwg", true, false, "c:/DWG/PLAN.dwg"},
      {"C:\\dwg\\missing.dwg", false, false, "C:\\dwg\\missing.dwg"},
      {"C:\\dwg\\sub", true, true, "C:\\dwg\\sub\\"},
      {"C:/dwg/sub", true, true, "C:/dwg/sub\\"},
      // A name that already ends in a separator is not found, as with the
      // platform's file search, so it stays as given.
      {"C:\\dwg\\sub\\", false, false, "C:\\dwg\\sub\\"},
      // A folder whose name ends in a trail byte 0x5C still gets its backslash.
      {"C:\\x" + kTrailBackslash, true, true, "C:\\x" + kTrailBackslash + "\\"},
      {"", false, false, ""},
  };
  for (const auto& c : cases) {
    DrawingPath path(c.path, fs);
    EXPECT_EQ(path.Exists, c.exists) << c.path;
    EXPECT_EQ(path.IsFolder, c.isFolder) << c.path;
    EXPECT_EQ(path.Full, c.full) << c.path;
    EXPECT_FALSE(path.readOnly);
  }
}

TEST_F(DrawingPathTest, LooksUpOnlyNamesTheSearchWouldAccept) {
  DrawingPath path(fs);
  path.Set("");
  path.Set("C:\\dwg\\");
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::Stat), 0);
  path.Set("C:\\x" + kTrailBackslash);  // ends in a trail byte, not a separator
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::Stat), 1);
}

TEST_F(DrawingPathTest, ResettingClearsWhatTheOldNameFound) {
  DrawingPath path("C:\\dwg\\sub", fs);
  path.readOnly = true;
  path.Set("C:\\dwg\\gone.dwg");
  EXPECT_FALSE(path.Exists);
  EXPECT_FALSE(path.IsFolder);
  EXPECT_EQ(path.Folder, "\\dwg\\");
  EXPECT_EQ(path.Name, "gone");
  EXPECT_TRUE(path.readOnly);  // only ParseRecentEntry sets it
}

TEST_F(DrawingPathTest, AFailingLookupIsAMissingFile) {
  fs.FailPath("C:\\dwg\\plan.dwg");
  DrawingPath path("C:\\dwg\\plan.dwg", fs);
  EXPECT_FALSE(path.Exists);
  EXPECT_EQ(path.GetName(), "plan.dwg");
}

TEST_F(DrawingPathTest, ReadsGiveEachPieceAndDoubleBackslashesOnRequest) {
  DrawingPath path("C:\\dwg\\plan.dwg", fs);
  const struct {
    const char* what;
    std::string plain;
    std::string doubled;
  } reads[] = {
      {"full", path.GetFull(), path.GetFull(true)},
      {"name", path.GetName(), path.GetName(true)},
      {"extension", path.GetExtension(), path.GetExtension(true)},
      {"title", path.GetTitle(), path.GetTitle(true)},
      {"drive", path.GetDrive(), path.GetDrive(true)},
      {"directory", path.GetDirectory(), path.GetDirectory(true)},
      {"folder", path.GetFolder(), path.GetFolder(false, true)},
      {"folder without backslash", path.GetFolder(true), path.GetFolder(true, true)},
  };
  const struct {
    std::string plain;
    std::string doubled;
  } expected[] = {
      {"C:\\dwg\\plan.dwg", "C:\\\\dwg\\\\plan.dwg"},
      {"plan.dwg", "plan.dwg"},
      {".dwg", ".dwg"},
      {"plan", "plan"},
      {"C:", "C:"},
      {"\\dwg\\", "\\\\dwg\\\\"},
      {"C:\\dwg\\", "C:\\\\dwg\\\\"},
      {"C:\\dwg", "C:\\\\dwg"},
  };
  static_assert(std::size(reads) == std::size(expected));
  for (std::size_t i = 0; i < std::size(reads); ++i) {
    EXPECT_EQ(reads[i].plain, expected[i].plain) << reads[i].what;
    EXPECT_EQ(reads[i].doubled, expected[i].doubled) << reads[i].what;
  }
  EXPECT_EQ(path.Drive, "C:");
  EXPECT_EQ(path.Folder, "\\dwg\\");
  EXPECT_EQ(path.Name, "plan");
  EXPECT_EQ(path.Extension, ".dwg");
}

TEST_F(DrawingPathTest, ReadsKeepTrailBytesWhole) {
  DrawingPath folder("C:\\x" + kTrailBackslash, fs);
  EXPECT_EQ(folder.GetFolder(), "C:\\x" + kTrailBackslash + "\\");
  EXPECT_EQ(folder.GetFolder(true), "C:\\x" + kTrailBackslash);
  EXPECT_EQ(folder.GetFolder(true, true), "C:\\\\x" + kTrailBackslash);
  EXPECT_EQ(folder.GetName(), "");

  DrawingPath file("C:\\x" + kTrailBackslash + "\\b.dwg", fs);
  EXPECT_TRUE(file.Exists);
  EXPECT_EQ(file.GetDirectory(true), "\\\\x" + kTrailBackslash + "\\\\");
  // A folder that ends in the trail byte has no backslash to drop.
  DrawingPath bare("C:" + kTrailBackslash, fs);
  EXPECT_EQ(bare.GetFolder(true), "C:");
  EXPECT_EQ(bare.GetName(), kTrailBackslash);
}

TEST_F(DrawingPathTest, ParseRecentEntrySplitsPathAndFlag) {
  const struct {
    std::string text;
    std::string full;
    bool readOnly;
  } cases[] = {
      {"C:\\dwg\\plan.dwg", "C:\\dwg\\plan.dwg", false},
      {"C:\\dwg\\plan.dwg,1", "C:\\dwg\\plan.dwg", true},
      {"C:\\dwg\\plan.dwg,0", "C:\\dwg\\plan.dwg", false},
      {"C:\\dwg\\plan.dwg, 1 ", "C:\\dwg\\plan.dwg", true},
      {" C:\\dwg\\plan.dwg ,1", "C:\\dwg\\plan.dwg", true},
      {"\tC:\\dwg\\plan.dwg\t,\t1", "C:\\dwg\\plan.dwg", true},
      {" C:\\dwg\\plan.dwg ", " C:\\dwg\\plan.dwg ", false},  // one piece: kept untrimmed
      {"C:\\a,b.dwg,1", "C:\\a,b.dwg", true},
      {"C:\\a , b.dwg ,0", "C:\\a,b.dwg", false},  // pieces are joined trimmed
      {"C:\\a,b.dwg", "C:\\a", false},  // a comma in a path without flag takes the tail as the flag
      {"C:\\a.dwg,2", "C:\\a.dwg", false},
      {"C:\\a.dwg,-1", "C:\\a.dwg", false},
      {"C:\\a.dwg,1x", "C:\\a.dwg", true},
      {"C:\\a.dwg,+01", "C:\\a.dwg", true},
      {"C:\\a.dwg,", "C:\\a.dwg", false},
      {"a,,1", "a,", true},
      {",1", "", true},
      {"", "", false},
      {"C:\\图纸\\平面图.dwg,1", "C:\\图纸\\平面图.dwg", true},
  };
  for (const auto& c : cases) {
    DrawingPath path = ParseRecentEntry(c.text, fs);
    EXPECT_EQ(path.Full, c.full) << c.text;
    EXPECT_EQ(path.readOnly, c.readOnly) << c.text;
  }
}

TEST_F(DrawingPathTest, ParseRecentEntryLooksThePathUp) {
  DrawingPath file = ParseRecentEntry("C:\\dwg\\plan.dwg,1", fs);
  EXPECT_TRUE(file.Exists);
  EXPECT_EQ(file.GetName(), "plan.dwg");
  DrawingPath folder = ParseRecentEntry("C:\\dwg\\sub , 0", fs);
  EXPECT_TRUE(folder.IsFolder);
  EXPECT_EQ(folder.Full, "C:\\dwg\\sub\\");
}

}  // namespace
}  // namespace tavlet
