#include <gtest/gtest.h>

#include <set>

#include "previews/dwg_version.h"
#include "sim/memory_file_system.h"

namespace tavlet {
namespace {

TEST(DrawingVersion, TableGivesNameAndCodeForEachKindOfRow) {
  struct Case {
    const char* version;
    const char* name;
    int code;
  } cases[] = {
      {"AC1021", "AutoCAD 2007", 17}, {"AC1018", "AutoCAD 2004", 16},
      {"AC402b", "Internal: 2004 Late", 16}, {"AC1015", "AutoCAD 2000", 15},
      {"AC1500", "Release T", 15}, {"AC1014", "Release 14", 14},
      {"AC1012", "Release 13", 13}, {"AC1009", "Release 11/12", 12},
      {"AC1006", "Release 10", 10}, {"AC1004", "Release 9", 9},
      {"AC1003", "Version 2.60", 0}, {"AC2.22", "Version 2.22 (MS-DOS)", 0},
      {"AC1.2", "Version 1.2", 0}, {"MC0.0", "Version 1.0", 0},
      // Later releases and junk are not in the table.
      {"AC1024", "Unknown", 0}, {"AC1032", "Unknown", 0}, {"", "Unknown", 0}, {"ac1018", "Unknown", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.version);
    EXPECT_EQ(DrawingReleaseName(c.version), c.name);
    EXPECT_EQ(DrawingVersionCode(c.version), c.code);
  }
}

TEST(DrawingVersion, TableHasAllRowsAndNoCodeEleven) {
  auto table = DrawingVersionTable();
  ASSERT_EQ(table.size(), 28u);
  std::set<int> codes;
  std::set<std::string_view> strings;
  for (const DrawingVersion& v : table) {
    codes.insert(v.code);
    strings.insert(v.versionString);
  }
  EXPECT_EQ(codes, (std::set<int>{0, 9, 10, 12, 13, 14, 15, 16, 17}));
  EXPECT_EQ(strings.size(), table.size());
}

TEST(DrawingVersion, ReadFromFileOfEachShape) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\2000.dwg", std::string("AC1015\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20));
  fs.AddFile("C:\\d\\old.dwg", std::string("AC1.2\0X", 7));  // NUL ends the string early
  fs.AddFile("C:\\d\\short.dwg", "AC10");
  fs.AddFile("C:\\d\\empty.dwg", "");
  fs.AddFile("C:\\d\\eight.dwg", "AC1018XY");  // the seventh byte belongs to the string
  fs.AddFolder("C:\\d\\folder.dwg");
  struct Case {
    const char* path;
    int code;
    bool opens;
    const char* name;
  } cases[] = {
      {"C:\\d\\2000.dwg", 15, true, "AutoCAD 2000"},
      {"C:\\d\\old.dwg", 0, true, "Version 1.2"},
      {"C:\\d\\short.dwg", 0, true, "Unknown"},
      {"C:\\d\\empty.dwg", 0, true, "Unknown"},
      {"C:\\d\\eight.dwg", 0, true, "Unknown"},
      {"C:\\d\\missing.dwg", 0, false, ""},
      {"C:\\d\\folder.dwg", 0, false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    EXPECT_EQ(ReadDrawingVersion(fs, c.path), c.code);
    std::string name = "unchanged";
    EXPECT_EQ(ReadDrawingReleaseName(fs, c.path, name), c.opens);
    EXPECT_EQ(name, c.opens ? std::string(c.name) : std::string("unchanged"));
  }
}

TEST(DrawingVersion, UnreadableFileGivesZero) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\locked.dwg", "AC1018");
  fs.FailPath("C:\\d\\locked.dwg", FileError::SharingViolation);
  EXPECT_EQ(ReadDrawingVersion(fs, "C:\\d\\locked.dwg"), 0);
  std::string name;
  EXPECT_FALSE(ReadDrawingReleaseName(fs, "C:\\d\\locked.dwg", name));
}

}  // namespace
}  // namespace tavlet
