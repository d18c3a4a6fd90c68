#include <gtest/gtest.h>

#include "dwg/dwg_fixtures.h"
#include "previews/dwg_thumbnail.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet {
namespace {

using testing::DibSpec;
using testing::DwgSpec;
using testing::Entry;
using testing::MakeDib;
using testing::MakeDwg;
using testing::MakeDwgWithBitmap;

const std::string kLoading = "载入...";
const std::string kNoPreview = "没有预览";
const std::string kEndOfFile = "文件错误\n 文件的末端";
const std::string kBadSeek = "文件错误\n 错误查找";

DibSpec Dib(int width, int height) {
  DibSpec spec;
  spec.width = width;
  spec.height = height;
  return spec;
}

DwgSpec Spec(const std::string& version, std::vector<testing::DwgEntrySpec> entries) {
  DwgSpec spec;
  spec.version = version;
  spec.entries = std::move(entries);
  return spec;
}

std::string Truncated(std::string bytes, std::size_t size) {
  bytes.resize(size);
  return bytes;
}

struct LoadCase {
  const char* name;
  std::string file;
  bool result;
  std::string status;
  std::string error;
  int width;   // 0: no picture
  int height;
};

TEST(DwgThumbnailLoad, EdgeCasesGiveTheirResultTextAndPicture) {
  DwgSpec unknownSentinel = Spec("AC1018", {Entry(2, MakeDib(Dib(4, 3)))});
  unknownSentinel.breakSentinel = true;
  DwgSpec zeroEntries = Spec("AC1018", {});
  DwgSpec negativeCount = Spec("AC1018", {Entry(2, MakeDib(Dib(4, 3)))});
  negativeCount.entryCount = -1;
  DwgSpec beyondEnd = Spec("AC1018", {});
  beyondEnd.imageOffset = 0x2000000;
  DwgSpec negativeOffset = Spec("AC1018", {});
  negativeOffset.imageOffset = 0x80000000u;
  DwgSpec entryPastEnd = Spec("AC1018", {Entry(2, MakeDib(Dib(4, 3)))});
  entryPastEnd.entries[0].size = 5000;
  DwgSpec entryNegativeStart = Spec("AC1018", {Entry(2, MakeDib(Dib(4, 3)))});
  entryNegativeStart.entries[0].start = 0x80000010u;
  DwgSpec entryHuge = Spec("AC1018", {Entry(2, MakeDib(Dib(4, 3)))});
  entryHuge.entries[0].size = 0xFFFFFFF0u;
  DwgSpec tableCut = Spec("AC1018", {Entry(2, MakeDib(Dib(5, 2)))});
  tableCut.entryCount = 3;
  tableCut.imageOffset = 0x800;
  tableCut.truncateTo = 0x800 + 21 + 9 + 4;  // the first record whole, the second cut
  tableCut.entries[0].start = 0x20;          // the picture lies before the block
  std::string tableCutFile = MakeDwg(tableCut);
  std::string dib52 = MakeDib(Dib(5, 2));
  std::copy(dib52.begin(), dib52.end(), tableCutFile.begin() + 0x20);
  DwgSpec twoOld = Spec("AC1015", {Entry(2, MakeDib(Dib(4, 3))), Entry(2, MakeDib(Dib(6, 5)))});
  DwgSpec twoNew = Spec("AC1021", {Entry(2, MakeDib(Dib(4, 3))), Entry(2, MakeDib(Dib(6, 5)))});
  DibSpec rowsCut = Dib(16, 16);
  rowsCut.cutRows = 1;
  DibSpec rle = Dib(4, 3);
  rle.compression = 1;
  DibSpec hugePalette = Dib(4, 3);
  hugePalette.clrUsed = 0x7FFFFFFF;
  DibSpec core = Dib(7, 2);
  core.shortHeader = true;
  DibSpec bits24 = Dib(3, 3);
  bits24.bitCount = 24;
  DibSpec badBits = Dib(3, 3);
  badBits.bitCount = 3;

  const LoadCase cases[] = {
      {"empty file", "", false, kLoading, kEndOfFile, 0, 0},
      {"partial version", "AC10", false, kLoading, kEndOfFile, 0, 0},
      {"head cut before format byte", std::string("AC1018\0\0\0\0\0\0\0\0\0\0\0", 17), false, kLoading,
       kEndOfFile, 0, 0},
      {"block beyond end", MakeDwg(beyondEnd), false, kLoading, kEndOfFile, 0, 0},
      {"block offset negative", MakeDwg(negativeOffset), false, kLoading, kBadSeek, 0, 0},
      {"cut inside sentinel", Truncated(MakeDwgWithBitmap("AC1018", Dib(4, 3)), 0x40 + 8), false, kLoading,
       kEndOfFile, 0, 0},
      {"cut before entry count", Truncated(MakeDwgWithBitmap("AC1018", Dib(4, 3)), 0x40 + 18), false, kLoading,
       kEndOfFile, 0, 0},
      {"wrong sentinel", MakeDwg(unknownSentinel), false, kLoading, "", 0, 0},
      {"plain bitmap", MakeDwgWithBitmap("AC1018", Dib(4, 3)), true, kLoading, "", 4, 3},
      {"AC1021 with header entry first", MakeDwgWithBitmap("AC1021", Dib(9, 4)), true, kLoading, "", 9, 4},
      {"AC1021 single bitmap at index 0", MakeDwg(Spec("AC1021", {Entry(2, MakeDib(Dib(4, 3)))})), true,
       kNoPreview, "", 0, 0},
      {"AC1021 two bitmaps takes the second", MakeDwg(twoNew), true, kLoading, "", 6, 5},
      {"older file, second bitmap replaces first", MakeDwg(twoOld), true, kLoading, "", 6, 5},
      {"metafile only", MakeDwg(Spec("AC1015", {Entry(3, std::string(200, 'm'))})), true, kNoPreview, "", 0, 0},
      {"zero entries", MakeDwg(zeroEntries), true, kNoPreview, "", 0, 0},
      {"negative entry count", MakeDwg(negativeCount), true, kNoPreview, "", 0, 0},
      {"unknown version with valid block", MakeDwgWithBitmap("AC1032", Dib(8, 2)), true, kLoading, "", 8, 2},
      {"unused entries may point anywhere",
       MakeDwg(Spec("AC1018", {testing::DwgEntrySpec{3, "", 0x7FFFFFF0u, 0xFFFFFFFFu},
                               Entry(2, MakeDib(Dib(4, 3)))})),
       true, kLoading, "", 4, 3},
      {"bitmap entry past end of file", MakeDwg(entryPastEnd), false, kLoading, kEndOfFile, 0, 0},
      {"bitmap entry at negative offset", MakeDwg(entryNegativeStart), false, kLoading, kBadSeek, 0, 0},
      {"bitmap entry above 32 MiB is not read", MakeDwg(entryHuge), true, kNoPreview, "", 0, 0},
      {"table cut after a picture keeps it", tableCutFile, false, kLoading, kEndOfFile, 5, 2},
      {"rows do not fit", MakeDwgWithBitmap("AC1018", rowsCut), true, kNoPreview, "", 0, 0},
      {"compressed bitmap", MakeDwgWithBitmap("AC1018", rle), true, kNoPreview, "", 0, 0},
      {"palette larger than data", MakeDwgWithBitmap("AC1018", hugePalette), true, kNoPreview, "", 0, 0},
      {"bit count not drawable", MakeDwgWithBitmap("AC1018", badBits), true, kNoPreview, "", 0, 0},
      {"core header", MakeDwgWithBitmap("AC1014", core), true, kLoading, "", 7, 2},
      {"24-bit bitmap", MakeDwgWithBitmap("AC1015", bits24), true, kLoading, "", 3, 3},
      {"empty bitmap entry", MakeDwg(Spec("AC1018", {Entry(2, "")})), true, kNoPreview, "", 0, 0},
  };
  for (const LoadCase& c : cases) {
    SCOPED_TRACE(c.name);
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", c.file);
    DwgThumbnail thumbnail(fs);
    EXPECT_EQ(thumbnail.Load("C:\\d\\a.dwg", true), c.result);
    EXPECT_EQ(thumbnail.statusText(), c.status);
    EXPECT_EQ(thumbnail.errorText(), c.error);
    EXPECT_EQ(thumbnail.HasDib(), c.width != 0);
    EXPECT_TRUE(thumbnail.loaded());
    if (c.width != 0) {
      EXPECT_EQ(thumbnail.imageWidth(), c.width);
      EXPECT_EQ(thumbnail.imageHeight(), c.height);
      // The bitmap is kept with one zero byte after its data.
      EXPECT_EQ(thumbnail.dib().back(), 0);
    }
  }
}

TEST(DwgThumbnailLoad, FileErrorsShowTheTextOfTheirCause) {
  struct Case {
    FileError error;
    const char* text;
  } cases[] = {
      {FileError::NotFound, "文件错误\n 文件没有找到"},
      {FileError::AccessDenied, "文件错误\n 拒绝访问"},
      {FileError::SharingViolation, "文件错误 \n共享违规"},
      {FileError::EndOfFile, "文件错误\n 文件的末端"},
      {FileError::BadSeek, "文件错误\n 错误查找"},
      {FileError::Other, "文件错误\n 一般的"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", Dib(4, 3)));
    fs.FailOn(MemoryFileSystem::Op::ReadAt, 2, c.error);  // the block, after the head
    DwgThumbnail thumbnail(fs);
    EXPECT_FALSE(thumbnail.Load("C:\\d\\a.dwg", true));
    EXPECT_EQ(thumbnail.errorText(), c.text);
    EXPECT_FALSE(thumbnail.HasDib());
  }
  MemoryFileSystem fs;
  fs.AddFolder("C:\\d\\folder.dwg");
  DwgThumbnail missing(fs), folder(fs);
  EXPECT_FALSE(missing.Load("C:\\d\\none.dwg", true));
  EXPECT_EQ(missing.errorText(), "文件错误\n 文件没有找到");
  EXPECT_FALSE(folder.Load("C:\\d\\folder.dwg", true));
  EXPECT_EQ(folder.errorText(), "文件错误\n 拒绝访问");
}

TEST(DwgThumbnailLoad, ErrorTextTableKeepsItsOddSpacingAndEnglishRows) {
  EXPECT_EQ(ThumbnailErrorText(3), "文件错误 \n错误路径");
  EXPECT_EQ(ThumbnailErrorText(4), "文件错误\n 过多打开文件");
  EXPECT_EQ(ThumbnailErrorText(6), "文件错误 \n无效文件");
  EXPECT_EQ(ThumbnailErrorText(7), "文件错误 \n删除当前目录");
  EXPECT_EQ(ThumbnailErrorText(8), "文件错误 \n目录满");
  EXPECT_EQ(ThumbnailErrorText(10), "File Error\nhardIO");
  EXPECT_EQ(ThumbnailErrorText(12), "文件错误\n 锁定违规");
  EXPECT_EQ(ThumbnailErrorText(13), "File Error\ndiskFull");
  for (int cause : {0, 15, -1, 1000}) EXPECT_EQ(ThumbnailErrorText(cause), "未知错误\n载入预览");
}

TEST(DwgThumbnailLoad, HeadFieldsAndEntriesAreKept) {
  DwgSpec spec = Spec("AC1021", {Entry(1, std::string(80, 'h')), Entry(2, MakeDib(Dib(4, 3))),
                                 Entry(6, testing::MakePng(3, 2))});
  spec.formatByte = 0x1B;
  spec.imageOffset = 0x123;
  MemoryFileSystem fs;
  std::string file = MakeDwg(spec);
  fs.AddFile("C:\\d\\a.dwg", file);
  DwgThumbnail thumbnail(fs);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  EXPECT_EQ(thumbnail.fileCode(), 17);
  EXPECT_EQ(thumbnail.formatByte(), 0x1B);
  EXPECT_EQ(thumbnail.imageOffset(), 0x123u);
  EXPECT_EQ(thumbnail.path(), "C:\\d\\a.dwg");
  ASSERT_EQ(thumbnail.entries().size(), 3u);
  const std::uint32_t table = 0x123 + 21;
  EXPECT_EQ(thumbnail.entries()[0], (ThumbnailEntry{1, table + 27, 80}));
  EXPECT_EQ(thumbnail.entries()[2].code, 6);
  std::string png;
  EXPECT_EQ(ReadThumbnailEntryData(fs, "C:\\d\\a.dwg", thumbnail.entries()[2], png), FileErrorCause::None);
  EXPECT_EQ(png, testing::MakePng(3, 2));
}

TEST(DwgThumbnailLoad, ReloadClearsOrKeepsRecordsAsAsked) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\good.dwg", MakeDwgWithBitmap("AC1018", Dib(4, 3)));
  fs.AddFile("C:\\d\\bad.dwg", "AC10");
  DwgThumbnail thumbnail(fs);
  EXPECT_FALSE(thumbnail.Load("", true));
  EXPECT_FALSE(thumbnail.loaded());

  ASSERT_FALSE(thumbnail.Load("C:\\d\\bad.dwg", true));
  ASSERT_FALSE(thumbnail.errorText().empty());
  // Without keepRecords only the old data goes: the error text and path stay.
  ASSERT_TRUE(thumbnail.Load("C:\\d\\good.dwg", false));
  EXPECT_TRUE(thumbnail.HasDib());
  EXPECT_FALSE(thumbnail.errorText().empty());
  EXPECT_EQ(thumbnail.path(), "C:\\d\\bad.dwg");
  // With it the object starts afresh.
  ASSERT_TRUE(thumbnail.Load("C:\\d\\good.dwg", true));
  EXPECT_TRUE(thumbnail.errorText().empty());
  EXPECT_EQ(thumbnail.path(), "C:\\d\\good.dwg");
  ASSERT_FALSE(thumbnail.Load("C:\\d\\bad.dwg", false));
  EXPECT_FALSE(thumbnail.HasDib());
  EXPECT_TRUE(thumbnail.entries().empty());
}

TEST(DwgThumbnailLoad, ReadsOnlyHeadBlockAndTheUsedEntry) {
  DwgSpec spec = Spec("AC1021", {Entry(2, MakeDib(Dib(40, 30))), Entry(2, MakeDib(Dib(16, 8))),
                                 Entry(3, std::string(5000, 'w')), Entry(6, std::string(7000, 'p'))});
  spec.padTo = 1 << 20;
  MemoryFileSystem memory;
  memory.AddFile("C:\\d\\big.dwg", MakeDwg(spec));
  testing::CountingFileSystem fs(memory);
  DwgThumbnail thumbnail(fs);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\big.dwg", true));
  ASSERT_EQ(thumbnail.imageWidth(), 16);
  const std::uint64_t head = 0x12, blockHead = 21, table = 4 * 9;
  EXPECT_EQ(fs.bytesRead, head + blockHead + table + MakeDib(Dib(16, 8)).size());
  EXPECT_EQ(fs.readCalls, 4);
}

TEST(DwgThumbnailLoad, PaletteGivesFileBackgroundAndFormatByteGivesReleaseCode) {
  struct Case {
    const char* version;
    std::uint8_t formatByte;
    int releaseCode;
    int backgroundEntry;
  } cases[] = {
      {"AC1014", 0x1B, 14, 245}, {"AC1009", 0x19, 12, 245}, {"AC1032", 0x19, 0, 245},
      {"AC1015", 0x17, 15, 225}, {"AC1018", 0x19, 16, 225}, {"AC1021", 0x1B, 17, 225},
      {"AC1018", 0x1B, 17, 225}, {"AC1021", 0x00, 15, 225},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.version) + " " + std::to_string(c.formatByte));
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap(c.version, Dib(4, 3), c.formatByte));
    DwgThumbnail thumbnail(fs);
    ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
    EXPECT_EQ(thumbnail.releaseCode(), c.releaseCode);
    EXPECT_EQ(thumbnail.fileBackground(), testing::DibSpecColor(c.backgroundEntry));
  }
}

}  // namespace
}  // namespace tavlet
