// Real drawings written by the host and by other programs, checked against what an
// independent reader found in them (INDEX.tsv beside the files).
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "previews/dwg_thumbnail.h"
#include "previews/dwg_version.h"
#include "support/test_paths.h"

namespace tavlet {
namespace {

struct IndexRow {
  std::string file;
  std::string version;
  std::uint32_t imageOffset = 0;
  bool sentinel = false;
  std::vector<int> codes;
  int bmpWidth = 0;
  int bmpHeight = 0;
  bool truncated = false;
};

std::vector<std::string> SplitTabs(const std::string& line, char separator = '\t') {
  std::vector<std::string> fields;
  std::stringstream in(line);
  std::string field;
  while (std::getline(in, field, separator)) fields.push_back(field);
  return fields;
}

std::vector<IndexRow> ReadIndex(const std::string& path) {
  std::ifstream in(path);
  std::string line;
  std::getline(in, line);  // column names
  std::vector<IndexRow> rows;
  while (std::getline(in, line)) {
    auto f = SplitTabs(line);
    if (f.size() < 12) continue;
    IndexRow row;
    row.file = f[0];
    row.version = f[2];
    row.imageOffset = static_cast<std::uint32_t>(std::stoul(f[3], nullptr, 16));
    row.sentinel = f[4] == "y";
    for (const std::string& code : SplitTabs(f[5], ',')) row.codes.push_back(std::stoi(code));
    if (!f[6].empty()) std::sscanf(f[6].c_str(), "%dx%d", &row.bmpWidth, &row.bmpHeight);
    row.truncated = f[11].find("beyond_eof") != std::string::npos;
    rows.push_back(row);
  }
  return rows;
}

TEST(DwgRealFiles, LoadAgreesWithTheIndex) {
  const std::string index = testing::SharedDrawing("INDEX.tsv");
  if (index.empty() || !std::ifstream(index)) GTEST_SKIP() << "shared drawings not present";
  auto rows = ReadIndex(index);
  ASSERT_GE(rows.size(), 10u);
  int pictures = 0;
  for (const IndexRow& row : rows) {
    SCOPED_TRACE(row.file);
    const std::string path = testing::SharedDrawing(row.file);
    EXPECT_EQ(ReadDrawingVersion(path), DrawingVersionCode(row.version));
    DwgThumbnail thumbnail;
    bool ok = thumbnail.Load(path, true);
    EXPECT_EQ(thumbnail.imageOffset(), row.imageOffset);
    if (row.truncated) {
      EXPECT_FALSE(ok);
      EXPECT_EQ(thumbnail.errorText(), "文件错误\n 文件的末端");
      continue;
    }
    ASSERT_TRUE(ok);
    std::vector<int> codes;
    for (const ThumbnailEntry& e : thumbnail.entries()) codes.push_back(e.code);
    EXPECT_EQ(codes, row.codes);
    if (row.bmpWidth != 0) {
      ++pictures;
      ASSERT_TRUE(thumbnail.HasDib());
      EXPECT_EQ(thumbnail.imageWidth(), row.bmpWidth);
      EXPECT_EQ(thumbnail.imageHeight(), row.bmpHeight);
      EXPECT_EQ(thumbnail.statusText(), "载入...");
    } else {
      // Newer files keep a PNG (code 6), which the bar does not draw.
      EXPECT_FALSE(thumbnail.HasDib());
      EXPECT_EQ(thumbnail.statusText(), "没有预览");
    }
  }
  EXPECT_GE(pictures, 5);
}

}  // namespace
}  // namespace tavlet
