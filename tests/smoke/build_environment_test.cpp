// Checks the build itself: the system's texts must reach run time as code-page
// 936 bytes on every platform, or every quoted message of the bar is wrong.
#include <gtest/gtest.h>

#include <string>

namespace {

TEST(BuildEnvironment, LiteralsAreCodePage936) {
  const std::string notFound = "没有找到";
  EXPECT_EQ(notFound, "\xC3\xBB\xD3\xD0\xD5\xD2\xB5\xBD");
}

}  // namespace
