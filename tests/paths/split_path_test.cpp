#include <gtest/gtest.h>

#include <string>

#include "operations/drawing_path.h"

namespace tavlet {
namespace {

const std::string kTrailBackslash = "\x81\x5C";  // one character whose trail byte is '\'
const std::string kTrailDot = "\x81\x2E";        // lead before '.': the runtime takes the pair

std::string Joined(const PathParts& parts) {
  return parts.drive + "|" + parts.directory + "|" + parts.name + "|" + parts.extension;
}

// Under Wine the runtime's own _splitpath checks the plain cases; here stay a few of
// them and those it is not asked about.
TEST(SplitPathTest, SplitsAsTheRuntimeDoes) {
  const struct {
    std::string path;
    std::string parts;  // drive|directory|name|extension
  } cases[] = {
      {"C:\\a\\b.dwg", "C:|\\a\\|b|.dwg"},
      {"\\\\server\\share\\x.dwg", "|\\\\server\\share\\|x|.dwg"},
      {"C:x", "C:||x|"},
      {".hidden", "|||.hidden"},
      {"C:\\d\\.hidden", "C:|\\d\\||.hidden"},
      {"..", "||.|."},
      {"C:\\a\\b\\\\", "C:|\\a\\b\\\\||"},
      {"/usr/x.y", "|/usr/|x|.y"},
      {std::string("C:\\a\0\\b", 7), "C:|\\|a|"},
      // Code page 936: a trail byte 0x5C is part of its character, not a separator.
      {kTrailBackslash, "||" + kTrailBackslash + "|"},
      {"C:\\" + kTrailBackslash + "\\x.dwg", "C:|\\" + kTrailBackslash + "\\|x|.dwg"},
      {"C:\\a\\" + kTrailBackslash + ".dwg", "C:|\\a\\|" + kTrailBackslash + "|.dwg"},
      {"C:\\a\\" + kTrailBackslash + "x", "C:|\\a\\|" + kTrailBackslash + "x|"},
      {"a" + kTrailDot + "b", "||a" + kTrailDot + "b|"},
      {"C:\\图纸\\平面图.dwg", "C:|\\图纸\\|平面图|.dwg"},
  };
  for (const auto& c : cases) EXPECT_EQ(Joined(SplitPath(c.path)), c.parts) << c.path;
}

TEST(SplitPathTest, CutsEachPieceToItsBufferSize) {
  const std::string longDir = "\\" + std::string(300, 'd') + "\\";
  const std::string longName(300, 'n');
  const std::string longExt = "." + std::string(300, 'e');
  PathParts parts = SplitPath("C:" + longDir + longName + longExt);
  EXPECT_EQ(parts.drive, "C:");
  EXPECT_EQ(parts.directory, longDir.substr(0, kMaxDirectory - 1));
  EXPECT_EQ(parts.name, longName.substr(0, kMaxName - 1));
  EXPECT_EQ(parts.extension, longExt.substr(0, kMaxExtension - 1));
  // Exactly at the limits nothing is lost.
  parts = SplitPath("\\" + std::string(257, 'd') + "\\" + std::string(255, 'n') + "." + std::string(254, 'e'));
  EXPECT_EQ(parts.directory.size(), 259u);
  EXPECT_EQ(parts.name.size(), 255u);
  EXPECT_EQ(parts.extension.size(), 255u);
}

TEST(SplitPathTest, DoublesBackslashCharactersOnly) {
  const struct {
    std::string in, out;
  } cases[] = {
      {"C:\\a\\b.dwg", "C:\\\\a\\\\b.dwg"},
      {"\\\\server\\x", "\\\\\\\\server\\\\x"},
      {"no/slash", "no/slash"},
      {"", ""},
      {"C:\\" + kTrailBackslash + "\\", "C:\\\\" + kTrailBackslash + "\\\\"},
      {kTrailBackslash, kTrailBackslash},
  };
  for (const auto& c : cases) EXPECT_EQ(DoubleBackslashes(c.in), c.out) << c.in;
}

}  // namespace
}  // namespace tavlet
