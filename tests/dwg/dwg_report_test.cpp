#include <gtest/gtest.h>

#include "previews/dwg_report.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet::testing {
namespace {

const char kPath[] = "C:\\dwg\\a.dwg";
constexpr std::uint32_t kTable = 0x40 + 21;  // first entry record in MakeDwg's files

std::string Hex(std::size_t value) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "0x%zX", value);
  return buffer;
}

DwgLayout Layout(std::vector<DwgEntryLayout> entries, std::optional<std::size_t> truncateTo = {},
                 std::optional<std::uint32_t> imageOffset = {}) {
  DwgLayout layout;
  layout.entries = std::move(entries);
  layout.truncateTo = truncateTo;
  layout.imageOffset = imageOffset;
  return layout;
}

TEST(DrawingReport, ADamagedDrawingShowsWhatWasReadAndFlagsTheDamage) {
  const std::string dib = MakeDib(DibShape{});
  const std::string head =
      "C:\\dwg\\a.dwg\n"
      "  version      AC1018 (AutoCAD 2004)\n"
      "  code         16\n"
      "  releaseCode  - (set only with a picture)\n";
  const std::string sound = "  formatByte   0x19\n  imageOffset  0x40\n";
  const std::size_t twoEntriesData = kTable + 2 * 9;
  struct Case {
    const char* name;
    DwgLayout layout;
    std::string text;
    std::string error;
  };
  const Case cases[] = {
      {"thumbnail runs past the end",
       Layout({Entry(1, "abc"), Entry(2, dib)}, twoEntriesData + 3 + 10),
       head + sound +
           "  image block  2 entries declared\n"
           "  entries      2\n"
           "    code 1  offset " +
           Hex(twoEntriesData) +
           "  size 3\n"
           "    code 2  offset " +
           Hex(twoEntriesData + 3) + "  size " + std::to_string(dib.size()) +
           "  DAMAGED: its data runs past the end of the file (" +
           std::to_string(twoEntriesData + 13) +
           " bytes)\n"
           "  picture      none (the reader stopped at the damage)\n",
       "unexpected end of file"},
      {"entry table cut", Layout({Entry(1, "abc"), Entry(2, dib), Entry(6, "png")}, kTable + 9 + 4),
       head + sound +
           "  image block  3 entries declared\n"
           "  entries      1 read\n"
           "    code 1  offset " +
           Hex(kTable + 27) + "  size 3" + "  DAMAGED: its data runs past the end of the file (" +
           std::to_string(kTable + 13) +
           " bytes)\n"
           "    entry 2      DAMAGED: its record is cut off by the end of the file\n"
           "  picture      none (the reader stopped at the damage)\n",
       "unexpected end of file"},
      {"offset out of range", Layout({Entry(2, dib, 0x80000000u)}),
       head + sound +
           "  image block  1 entries declared\n"
           "  entries      1\n"
           "    code 2  offset 0x80000000  size " +
           std::to_string(dib.size()) +
           "  DAMAGED: its offset is out of range\n"
           "  picture      none (the reader stopped at the damage)\n",
       "bad seek"},
      {"block head cut", Layout({Entry(2, dib)}, 0x40 + 18),
       head + sound + "  image block  cut off before its entry count\n", "unexpected end of file"},
      {"image offset past the end", Layout({Entry(2, dib)}, 0x800, 0x1000),
       head + "  formatByte   0x19\n  imageOffset  0x1000\n" +
           "  image block  - (not in the file, which is 2048 bytes)\n",
       "unexpected end of file"},
      {"head cut", Layout({}, 9),
       head + "  formatByte   - (the file ends at byte 9, before it)\n  imageOffset  - (the file "
              "ends before it)\n",
       "unexpected end of file"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MemoryFileSystem fs;
    fs.AddFile(kPath, MakeDwg(c.layout));
    const DrawingReport report = ReportDrawing(fs, kPath);
    EXPECT_FALSE(report.ok);
    EXPECT_EQ(report.text, c.text);
    EXPECT_EQ(report.error.rfind(std::string(kPath) + ": damaged: " + c.error, 0), 0u)
        << report.error;
  }
}

TEST(DrawingReport, SoundAndUnreadableFilesKeepTheirReports) {
  MemoryFileSystem fs;
  const std::string dib = MakeDib(DibShape{});
  fs.AddFile(kPath, MakeDwg(Layout({Entry(2, dib)})));
  DrawingReport report = ReportDrawing(fs, kPath);
  EXPECT_TRUE(report.ok);
  EXPECT_EQ(report.error, "");
  EXPECT_EQ(report.text,
            "C:\\dwg\\a.dwg\n"
            "  version      AC1018 (AutoCAD 2004)\n"
            "  code         16\n"
            "  releaseCode  16\n"
            "  formatByte   0x19\n"
            "  imageOffset  0x40\n"
            "  entries      1\n"
            "    code 2  offset " +
                Hex(kTable + 9) + "  size " + std::to_string(dib.size()) +
                "\n"
                "  picture      4x3 bitmap\n");

  DwgLayout broken = Layout({Entry(2, dib)});
  broken.breakSentinel = true;
  fs.AddFile(kPath, MakeDwg(broken));
  report = ReportDrawing(fs, kPath);
  EXPECT_TRUE(report.ok);
  EXPECT_NE(report.text.find("  image block  none (no sentinel at the image offset)\n"),
            std::string::npos);

  // A PNG entry cut short does not stop the reader, which skips it, but is damage all the same.
  fs.AddFile(kPath,
             MakeDwg(Layout({Entry(2, dib), Entry(6, "png-data")}, kTable + 18 + dib.size() + 4)));
  report = ReportDrawing(fs, kPath);
  EXPECT_FALSE(report.ok);
  EXPECT_NE(report.text.find("    code 6  offset " + Hex(kTable + 18 + dib.size()) +
                             "  size 8  DAMAGED: its data runs past the end of the file"),
            std::string::npos)
      << report.text;
  EXPECT_NE(report.text.find("  picture      4x3 bitmap\n"), std::string::npos);
  EXPECT_EQ(report.error,
            std::string(kPath) +
                ": damaged: entry 2 lies outside the file, though the bar does not read it");

  report = ReportDrawing(fs, "C:\\dwg\\missing.dwg");
  EXPECT_FALSE(report.ok);
  EXPECT_EQ(report.text, "");
  EXPECT_EQ(report.error.rfind("C:\\dwg\\missing.dwg: cannot read: file not found", 0), 0u)
      << report.error;
}

}  // namespace
}  // namespace tavlet::testing
