#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "sim/drawing_description.h"
#include "support/test_paths.h"

namespace tavlet::sim {
namespace {

std::string ReadSample(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST(Samples, EverySampleOfTheProjectParses) {
  const std::filesystem::path folder = testing::SamplesDir();
  int drawings = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() != ".tdd") continue;
    const std::string name = entry.path().filename().string();
    SCOPED_TRACE(name);
    DrawingDescription d;
    ParseResult r = ParseDrawingDescription(ReadSample(entry.path()), name, d);
    EXPECT_TRUE(r.ok) << r.message;
    EXPECT_TRUE(d.hasPicture);
    ++drawings;
  }
  EXPECT_GE(drawings, 2);
  SheetSetDescription s;
  ParseResult r = ParseSheetSetDescription(ReadSample(folder / "project.dst"), "project.dst", s);
  EXPECT_TRUE(r.ok) << r.message;
  EXPECT_EQ(s.subsets.size(), 1u);
}

}  // namespace
}  // namespace tavlet::sim
