#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "sim/drawing_description.h"

namespace tavlet::sim {
namespace {

// The samples sit two folders above this file, in the checkout.
std::string ReadSample(const std::string& name) {
  std::string root = __FILE__;
  root.erase(root.size() - std::string("tests/sim/samples_test.cpp").size());
  std::ifstream in(root + "samples/" + name, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST(Samples, EverySampleOfTheProjectParses) {
  for (const char* name : {"plan.tdd", "section.tdd"}) {
    SCOPED_TRACE(name);
    std::string text = ReadSample(name);
    if (text.empty()) GTEST_SKIP() << "samples folder not found";
    DrawingDescription d;
    ParseResult r = ParseDrawingDescription(text, name, d);
    EXPECT_TRUE(r.ok) << r.message;
    EXPECT_TRUE(d.hasPicture);
  }
  SheetSetDescription s;
  ParseResult r = ParseSheetSetDescription(ReadSample("project.dst"), "project.dst", s);
  EXPECT_TRUE(r.ok) << r.message;
  EXPECT_EQ(s.subsets.size(), 1u);
}

}  // namespace
}  // namespace tavlet::sim
