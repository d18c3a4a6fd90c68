#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <sstream>

#include "previews/dwg_thumbnail.h"
#include "previews/dwg_version.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"
#include "support/test_paths.h"

// Inside the writer's namespace, so that its names need no qualification.
namespace tavlet::testing {
namespace {

const std::string kLoading = "载入...";
const std::string kNoPreview = "没有预览";
const std::string kNotFound = "文件错误\n 文件没有找到";
const std::string kDenied = "文件错误\n 拒绝访问";
const std::string kEndOfFile = "文件错误\n 文件的末端";
const std::string kBadSeek = "文件错误\n 错误查找";

DibShape Shape(int width, int height, const std::function<void(DibShape&)>& edit = nullptr) {
  DibShape shape;
  shape.width = width;
  shape.height = height;
  if (edit) edit(shape);
  return shape;
}

DwgEntryLayout Bitmap(int width, int height) { return Entry(2, MakeDib(Shape(width, height))); }

std::string Dwg(const std::string& version, std::vector<DwgEntryLayout> entries,
                const std::function<void(DwgLayout&)>& edit = nullptr) {
  DwgLayout layout;
  layout.version = version;
  layout.entries = std::move(entries);
  if (edit) edit(layout);
  return MakeDwg(layout);
}

std::string WithDib(const char* version, int width, int height, const std::function<void(DibShape&)>& edit) {
  return MakeDwgWithBitmap(version, Shape(width, height, edit));
}

// Counts the bytes a reader takes from the files.
class CountingFileSystem : public MemoryFileSystem {
 public:
  std::uint64_t bytesRead = 0;
  FileError ReadFile(const std::string& path, std::string& bytes, std::uint64_t maxBytes) override {
    FileError e = MemoryFileSystem::ReadFile(path, bytes, maxBytes);
    bytesRead += bytes.size();
    return e;
  }
  FileError ReadAt(const std::string& path, std::uint64_t offset, std::size_t count, std::string& bytes) override {
    FileError e = MemoryFileSystem::ReadAt(path, offset, count, bytes);
    bytesRead += bytes.size();
    return e;
  }
};

TEST(DrawingVersion, TableGivesNameAndCodeForEachKindOfRow) {
  const std::tuple<const char*, const char*, int> cases[] = {
      {"AC1021", "AutoCAD 2007", 17},  {"AC1018", "AutoCAD 2004", 16},     {"AC402b", "Internal: 2004 Late", 16},
      {"AC1015", "AutoCAD 2000", 15},  {"AC1500", "Release T", 15},        {"AC1014", "Release 14", 14},
      {"AC1012", "Release 13", 13},    {"AC1011", "Internal: Late 13", 13},  // no string has code 11
      {"AC1009", "Release 11/12", 12}, {"AC1008", "Internal: Late Z", 12}, {"AC1006", "Release 10", 10},
      {"AC1004", "Release 9", 9},      {"AC1003", "Version 2.60", 0},      {"AC2.22", "Version 2.22 (MS-DOS)", 0},
      {"AC1.2", "Version 1.2", 0},     {"MC0.0", "Version 1.0", 0},        {"AC1024", "Unknown", 0},
      {"AC1032", "Unknown", 0},        {"", "Unknown", 0},                 {"ac1018", "Unknown", 0},
  };
  for (const auto& [version, name, code] : cases) {
    EXPECT_EQ(DrawingReleaseName(version), name) << version;
    EXPECT_EQ(DrawingVersionCode(version), code) << version;
  }
}

TEST(DrawingVersion, ReadFromFileOfEachShape) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\2000.dwg", std::string("AC1015\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20));
  fs.AddFile("C:\\d\\old.dwg", std::string("AC1.2\0X", 7));  // NUL ends the string early
  fs.AddFile("C:\\d\\short.dwg", "AC10");
  fs.AddFile("C:\\d\\empty.dwg", "");
  fs.AddFile("C:\\d\\eight.dwg", "AC1018XY");  // the seventh byte belongs to the string
  fs.AddFile("C:\\d\\locked.dwg", "AC1018");
  fs.FailPath("C:\\d\\locked.dwg", FileError::SharingViolation);
  fs.AddFolder("C:\\d\\folder.dwg");
  // A name of nullptr: the file does not open.
  const std::tuple<const char*, int, const char*> cases[] = {
      {"2000", 15, "AutoCAD 2000"}, {"old", 0, "Version 1.2"}, {"short", 0, "Unknown"}, {"empty", 0, "Unknown"},
      {"eight", 0, "Unknown"},      {"missing", 0, nullptr},   {"folder", 0, nullptr},  {"locked", 0, nullptr},
  };
  for (const auto& [file, code, name] : cases) {
    const std::string path = "C:\\d\\" + std::string(file) + ".dwg";
    EXPECT_EQ(ReadDrawingVersion(fs, path), code) << file;
    std::string read = "unchanged";
    EXPECT_EQ(ReadDrawingReleaseName(fs, path, read), name != nullptr) << file;
    EXPECT_EQ(read, name ? name : "unchanged") << file;
  }
}

TEST(DwgThumbnailLoad, EdgeCasesGiveTheirResultTextAndPicture) {
  // The table is cut inside its second record; the picture of the first lies before the block.
  const std::string dib52 = MakeDib(Shape(5, 2));
  std::string tableCut = Dwg("AC1018", {Entry(2, dib52, 0x20u)}, [](DwgLayout& l) {
    l.entryCount = 3;
    l.imageOffset = 0x800;
    l.truncateTo = 0x800 + 21 + 9 + 4;
  });
  tableCut.replace(0x20, dib52.size(), dib52);
  const std::string plain = MakeDwgWithBitmap("AC1018", Shape(4, 3));
  const std::string dib43 = MakeDib(Shape(4, 3));
  struct Case {
    const char* name;
    std::string file;
    bool result;
    std::string error;
    std::string picture;  // "WxH"; "": none, and then a successful load says there is no preview
  } cases[] = {
      {"empty file", "", false, kEndOfFile, ""},
      {"partial version", "AC10", false, kEndOfFile, ""},
      {"head cut before format byte", std::string("AC1018\0\0\0\0\0\0\0\0\0\0\0", 17), false, kEndOfFile, ""},
      {"block beyond end", Dwg("AC1018", {}, [](DwgLayout& l) { l.imageOffset = 0x2000000; }), false, kEndOfFile, ""},
      {"negative block offset", Dwg("AC1018", {}, [](DwgLayout& l) { l.imageOffset = 0x80000000u; }), false, kBadSeek, ""},
      {"cut inside sentinel", plain.substr(0, 0x40 + 8), false, kEndOfFile, ""},
      {"cut before entry count", plain.substr(0, 0x40 + 18), false, kEndOfFile, ""},
      {"wrong sentinel", Dwg("AC1018", {Bitmap(4, 3)}, [](DwgLayout& l) { l.breakSentinel = true; }), false, "", ""},
      {"plain bitmap", plain, true, "", "4x3"},
      {"AC1021 with header entry first", MakeDwgWithBitmap("AC1021", Shape(9, 4)), true, "", "9x4"},
      {"AC1021 single bitmap at index 0", Dwg("AC1021", {Bitmap(4, 3)}), true, "", ""},
      {"AC1021 two bitmaps takes the second", Dwg("AC1021", {Bitmap(4, 3), Bitmap(6, 5)}), true, "", "6x5"},
      {"older file, second bitmap replaces first", Dwg("AC1015", {Bitmap(4, 3), Bitmap(6, 5)}), true, "", "6x5"},
      {"metafile only", Dwg("AC1015", {Entry(3, std::string(200, 'm'))}), true, "", ""},
      {"zero entries", Dwg("AC1018", {}), true, "", ""},
      {"negative entry count", Dwg("AC1018", {Bitmap(4, 3)}, [](DwgLayout& l) { l.entryCount = -1; }), true, "", ""},
      {"unknown version with valid block", MakeDwgWithBitmap("AC1032", Shape(8, 2)), true, "", "8x2"},
      {"unused entries anywhere", Dwg("AC1018", {Entry(3, "", 0x7FFFFFF0u, ~0u), Bitmap(4, 3)}), true, "", "4x3"},
      {"bitmap past end of file", Dwg("AC1018", {Entry(2, dib43, {}, 5000u)}), false, kEndOfFile, ""},
      {"bitmap at negative offset", Dwg("AC1018", {Entry(2, dib43, 0x80000010u)}), false, kBadSeek, ""},
      {"bitmap above 32 MiB is not read", Dwg("AC1018", {Entry(2, dib43, {}, 0xFFFFFFF0u)}), true, "", ""},
      {"table cut after a picture keeps it", tableCut, false, kEndOfFile, "5x2"},
      {"rows do not fit", WithDib("AC1018", 16, 16, [](DibShape& s) { s.cutRows = 1; }), true, "", ""},
      {"compressed bitmap", WithDib("AC1018", 4, 3, [](DibShape& s) { s.compression = 1; }), true, "", ""},
      {"palette too large", WithDib("AC1018", 4, 3, [](DibShape& s) { s.clrUsed = 0x7FFFFFFF; }), true, "", ""},
      {"bit count not drawable", WithDib("AC1018", 3, 3, [](DibShape& s) { s.bitCount = 3; }), true, "", ""},
      {"core header", WithDib("AC1014", 7, 2, [](DibShape& s) { s.shortHeader = true; }), true, "", "7x2"},
      {"24-bit bitmap", WithDib("AC1015", 3, 3, [](DibShape& s) { s.bitCount = 24; }), true, "", "3x3"},
      {"empty bitmap entry", Dwg("AC1018", {Entry(2, "")}), true, "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", c.file);
    DwgThumbnail thumbnail(fs);
    EXPECT_EQ(thumbnail.Load("C:\\d\\a.dwg", true), c.result);
    EXPECT_EQ(thumbnail.statusText(), c.result && c.picture.empty() ? kNoPreview : kLoading);
    EXPECT_EQ(thumbnail.errorText(), c.error);
    EXPECT_TRUE(thumbnail.loaded());
    ASSERT_EQ(thumbnail.HasDib(), !c.picture.empty());
    if (thumbnail.HasDib()) {
      EXPECT_EQ(std::to_string(thumbnail.imageWidth()) + "x" + std::to_string(thumbnail.imageHeight()), c.picture);
      EXPECT_EQ(thumbnail.dib().back(), 0);  // kept with one zero byte after its data
    }
  }
}

TEST(DwgThumbnailLoad, FileErrorsShowTheTextOfTheirCause) {
  // The file, the error its block read fails with, the text shown.
  const std::tuple<const char*, FileError, std::string> cases[] = {
      {"a", FileError::NotFound, kNotFound},      {"a", FileError::AccessDenied, kDenied},
      {"a", FileError::EndOfFile, kEndOfFile},    {"a", FileError::SharingViolation, "文件错误 \n共享违规"},
      {"a", FileError::BadSeek, kBadSeek},        {"a", FileError::Other, "文件错误\n 一般的"},
      {"none", FileError::None, kNotFound},       {"folder", FileError::None, kDenied},
  };
  for (const auto& [file, error, text] : cases) {
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", Shape(4, 3)));
    fs.AddFolder("C:\\d\\folder.dwg");
    if (error != FileError::None) fs.FailOn(MemoryFileSystem::Op::ReadAt, 2, error);  // after the head
    DwgThumbnail thumbnail(fs);
    EXPECT_FALSE(thumbnail.Load("C:\\d\\" + std::string(file) + ".dwg", true));
    EXPECT_EQ(thumbnail.errorText(), text) << file;
    EXPECT_FALSE(thumbnail.HasDib());
  }
  // The causes no file system here gives keep their odd spacing and English rows.
  const std::pair<int, const char*> others[] = {
      {3, "文件错误 \n错误路径"},   {4, "文件错误\n 过多打开文件"}, {6, "文件错误 \n无效文件"},
      {7, "文件错误 \n删除当前目录"}, {8, "文件错误 \n目录满"},      {10, "File Error\nhardIO"},
      {12, "文件错误\n 锁定违规"},  {13, "File Error\ndiskFull"},   {0, "未知错误\n载入预览"},
      {15, "未知错误\n载入预览"},   {-1, "未知错误\n载入预览"},
  };
  for (const auto& [cause, text] : others) EXPECT_EQ(ThumbnailErrorText(cause), text) << cause;
}

TEST(DwgThumbnailLoad, HeadFieldsAndEntriesAreKeptAndReloadClearsOrKeepsRecordsAsAsked) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg",
             Dwg("AC1021", {Entry(1, std::string(80, 'h')), Bitmap(4, 3), Entry(6, MakePng(3, 2))}, [](DwgLayout& l) {
               l.formatByte = 0x1B;
               l.imageOffset = 0x123;
             }));
  fs.AddFile("C:\\d\\bad.dwg", "AC10");
  DwgThumbnail thumbnail(fs);
  EXPECT_FALSE(thumbnail.Load("", true));
  EXPECT_FALSE(thumbnail.loaded());
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  EXPECT_EQ(thumbnail.fileCode(), 17);
  EXPECT_EQ(thumbnail.formatByte(), 0x1B);
  EXPECT_EQ(thumbnail.imageOffset(), 0x123u);
  ASSERT_EQ(thumbnail.entries().size(), 3u);
  EXPECT_EQ(thumbnail.entries()[0], (ThumbnailEntry{1, 0x123 + 21 + 27, 80}));
  std::string png;
  EXPECT_EQ(ReadThumbnailEntryData(fs, "C:\\d\\a.dwg", thumbnail.entries()[2], png), FileErrorCause::None);
  EXPECT_EQ(png, MakePng(3, 2));

  ASSERT_FALSE(thumbnail.Load("C:\\d\\bad.dwg", true));
  // Without keepRecords only the old data goes: the error text and path stay.
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", false));
  EXPECT_TRUE(thumbnail.HasDib());
  EXPECT_EQ(thumbnail.errorText(), kEndOfFile);
  EXPECT_EQ(thumbnail.path(), "C:\\d\\bad.dwg");
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  EXPECT_TRUE(thumbnail.errorText().empty());
  EXPECT_EQ(thumbnail.path(), "C:\\d\\a.dwg");
  ASSERT_FALSE(thumbnail.Load("C:\\d\\bad.dwg", false));
  EXPECT_FALSE(thumbnail.HasDib());
  EXPECT_TRUE(thumbnail.entries().empty());
}

TEST(DwgThumbnailLoad, ReadsOnlyHeadBlockAndTheUsedEntry) {
  CountingFileSystem fs;
  fs.AddFile("C:\\d\\big.dwg",
             Dwg("AC1021", {Bitmap(40, 30), Bitmap(16, 8), Entry(3, std::string(5000, 'w')), Entry(6, "png")},
                 [](DwgLayout& l) { l.padTo = 1 << 20; }));
  DwgThumbnail thumbnail(fs);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\big.dwg", true));
  ASSERT_EQ(thumbnail.imageWidth(), 16);
  const std::uint64_t head = 0x12, blockHead = 21, table = 4 * 9;
  EXPECT_EQ(fs.bytesRead, head + blockHead + table + MakeDib(Shape(16, 8)).size());
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::ReadAt) + fs.CallCount(MemoryFileSystem::Op::ReadFile), 4);
}

TEST(DwgThumbnailLoad, PaletteGivesFileBackgroundAndFormatByteGivesReleaseCode) {
  // Version, format byte, release code, the palette entry of the file's background.
  const std::tuple<const char*, std::uint8_t, int, int> cases[] = {
      {"AC1014", 0x1B, 14, 245}, {"AC1009", 0x19, 12, 245}, {"AC1032", 0x19, 0, 245}, {"AC1015", 0x17, 15, 225},
      {"AC1018", 0x19, 16, 225}, {"AC1021", 0x1B, 17, 225}, {"AC1018", 0x1B, 17, 225}, {"AC1021", 0x00, 15, 225},
  };
  for (const auto& [version, formatByte, releaseCode, backgroundEntry] : cases) {
    SCOPED_TRACE(std::string(version) + " " + std::to_string(formatByte));
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap(version, Shape(4, 3), formatByte));
    DwgThumbnail thumbnail(fs);
    ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
    EXPECT_EQ(thumbnail.releaseCode(), releaseCode);
    EXPECT_EQ(thumbnail.fileBackground(), PaletteColor(backgroundEntry));
  }
}

// Real drawings written by the host and by other programs, checked against what an
// independent reader found in them (INDEX.tsv beside the files).
TEST(DwgRealFiles, LoadAgreesWithTheIndex) {
  std::ifstream index(SharedDrawing("INDEX.tsv"));
  if (!index) GTEST_SKIP() << "shared drawings not present";
  int files = 0, pictures = 0;
  for (std::string line; std::getline(index, line);) {
    std::vector<std::string> f;
    std::stringstream fields(line);
    for (std::string field; std::getline(fields, field, '\t');) f.push_back(field);
    if (f.size() < 12 || f[0] == "filename") continue;
    SCOPED_TRACE(f[0]);
    ++files;
    const std::string path = SharedDrawing(f[0]);
    EXPECT_EQ(ReadDrawingVersion(path), DrawingVersionCode(f[2]));
    DwgThumbnail thumbnail;
    const bool ok = thumbnail.Load(path, true);
    EXPECT_EQ(thumbnail.imageOffset(), std::stoul(f[3], nullptr, 16));
    if (f[11].find("beyond_eof") != std::string::npos) {
      EXPECT_FALSE(ok);
      EXPECT_EQ(thumbnail.errorText(), kEndOfFile);
      continue;
    }
    ASSERT_TRUE(ok);
    std::string codes;
    for (const ThumbnailEntry& e : thumbnail.entries()) codes += (codes.empty() ? "" : ",") + std::to_string(e.code);
    EXPECT_EQ(codes, f[5]);
    int width = 0, height = 0;
    std::sscanf(f[6].c_str(), "%dx%d", &width, &height);
    // Newer files keep only a PNG (code 6), which the bar does not draw.
    EXPECT_EQ(thumbnail.statusText(), width != 0 ? kLoading : kNoPreview);
    EXPECT_EQ(thumbnail.imageWidth(), width);
    EXPECT_EQ(thumbnail.imageHeight(), height);
    pictures += thumbnail.HasDib() ? 1 : 0;
  }
  EXPECT_GE(files, 10);
  EXPECT_GE(pictures, 5);
}

}  // namespace
}  // namespace tavlet::testing
