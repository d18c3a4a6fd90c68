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
    fs.AddFile("C:\\dwg\\locked.dwg", "AC1018");
    fs.FailPath("C:\\dwg\\locked.dwg");
    fs.AddFolder("C:\\dwg\\sub");
    fs.AddFile("C:\\x" + kTrailBackslash + "\\b.dwg", "");
  }
  MemoryFileSystem fs;
};

TEST_F(DrawingPathTest, SettingLooksTheNameUpAndMarksFolders) {
  const struct {
    std::string path;
    bool exists, isFolder;
    std::string full;
  } cases[] = {
      {"C:\\dwg\\plan.dwg", true, false, "C:\\dwg\\plan.dwg"},
      {"c:/DWG/PLAN.dwg", true, false, "c:/DWG/PLAN.dwg"},
      {"C:\\dwg\\missing.dwg", false, false, "C:\\dwg\\missing.dwg"},
      {"C:\\dwg\\locked.dwg", false, false, "C:\\dwg\\locked.dwg"},  // a failing lookup is a missing file
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
    SCOPED_TRACE(c.path);
    DrawingPath path(c.path, fs);
    EXPECT_EQ(path.Exists, c.exists);
    EXPECT_EQ(path.IsFolder, c.isFolder);
    EXPECT_EQ(path.Full, c.full);
    EXPECT_FALSE(path.readOnly);
  }
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

TEST_F(DrawingPathTest, ReadsGiveEachPieceAndDoubleBackslashesOnRequest) {
  const DrawingPath path("C:\\dwg\\plan.dwg", fs);
  const DrawingPath folder("C:\\x" + kTrailBackslash, fs);
  const DrawingPath file("C:\\x" + kTrailBackslash + "\\b.dwg", fs);
  // A folder that ends in the trail byte has no backslash to drop.
  const DrawingPath bare("C:" + kTrailBackslash, fs);
  const struct {
    const char* what;
    std::string plain, doubled, expected;
  } reads[] = {
      {"full", path.GetFull(), path.GetFull(true), "C:\\dwg\\plan.dwg"},
      {"name", path.GetName(), path.GetName(true), "plan.dwg"},
      {"extension", path.GetExtension(), path.GetExtension(true), ".dwg"},
      {"title", path.GetTitle(), path.GetTitle(true), "plan"},
      {"drive", path.GetDrive(), path.GetDrive(true), "C:"},
      {"directory", path.GetDirectory(), path.GetDirectory(true), "\\dwg\\"},
      {"folder", path.GetFolder(), path.GetFolder(false, true), "C:\\dwg\\"},
      {"folder without backslash", path.GetFolder(true), path.GetFolder(true, true), "C:\\dwg"},
      {"trail folder", folder.GetFolder(), folder.GetFolder(false, true), "C:\\x" + kTrailBackslash + "\\"},
      {"trail folder without backslash", folder.GetFolder(true), folder.GetFolder(true, true), "C:\\x" + kTrailBackslash},
      {"trail folder name", folder.GetName(), folder.GetName(true), ""},
      {"file in trail folder", file.GetDirectory(), file.GetDirectory(true), "\\x" + kTrailBackslash + "\\"},
      {"bare trail folder", bare.GetFolder(true), bare.GetFolder(true, true), "C:"},
      {"bare trail name", bare.GetName(), bare.GetName(true), kTrailBackslash},
  };
  for (const auto& r : reads) {
    EXPECT_EQ(r.plain, r.expected) << r.what;
    EXPECT_EQ(r.doubled, DoubleBackslashes(r.expected)) << r.what;
  }
}

TEST_F(DrawingPathTest, ParseRecentEntrySplitsPathAndFlag) {
  const struct {
    std::string text, full;
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
      {"C:\\dwg\\sub , 0", "C:\\dwg\\sub\\", false},  // looked up: a folder gets its backslash
  };
  for (const auto& c : cases) {
    const DrawingPath path = ParseRecentEntry(c.text, fs);
    EXPECT_EQ(path.Full, c.full) << c.text;
    EXPECT_EQ(path.readOnly, c.readOnly) << c.text;
  }
}

}  // namespace
}  // namespace tavlet
