#include <gtest/gtest.h>

#include <regex>
#include <thread>

#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using raster::CurrentRasterContext;
using raster::RasterContext;

void ClearLog() {
  RasterContext& context = CurrentRasterContext();
  context.errorLog.clear();
  context.lastError = 0;
}

TEST(RasterContext, ErrorTextFormats) {
  struct Case {
    const char* function;
    const char* note;
    const char* expected;
  };
  const Case cases[] = {
      {"IS40_ResizeImage", nullptr, "Error 5 in IS40_ResizeImage (09:05:01)"},
      {nullptr, nullptr, "Error 5 in (unspecified function) (09:05:01)"},
      {"IS40_AdjustGamma", "gamma", "Error 5 in IS40_AdjustGamma (09:05:01) [gamma]"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(raster::FormatRasterError(5, c.function, "09:05:01", c.note), c.expected);
  }
  const std::string longNote(2000, 'x');
  EXPECT_EQ(raster::FormatRasterError(1, "f", "00:00:00", longNote.c_str()).size(), raster::kErrorTextLimit);
}

TEST(RasterContext, AFailedCallIsLoggedWithItsNameAndTheClock) {
  ClearLog();
  EXPECT_EQ(IS40_AdjustGamma(nullptr, 1, 1, 3, 3, 1.0, 0), 0);
  const RasterContext& context = CurrentRasterContext();
  ASSERT_EQ(context.errorLog.size(), 1u);
  EXPECT_EQ(context.errorLog.back().code, 5);
  EXPECT_EQ(context.lastError, 5);
  EXPECT_TRUE(std::regex_match(context.errorLog.back().text,
                               std::regex(R"(Error 5 in IS40_AdjustGamma \(\d\d:\d\d:\d\d\))")))
      << context.errorLog.back().text;
}

TEST(RasterContext, SuccessClearsTheLastErrorAndLogsNothing) {
  ClearLog();
  std::uint8_t pixel[3] = {1, 2, 3};
  EXPECT_EQ(IS40_AdjustGamma(nullptr, 1, 1, 3, 3, 1.0, 0), 0);
  EXPECT_NE(IS40_AdjustGamma(pixel, 1, 1, 3, 3, 1.0, 0), 0);
  EXPECT_EQ(CurrentRasterContext().lastError, 0);
  EXPECT_EQ(CurrentRasterContext().errorLog.size(), 1u);
}

TEST(RasterContext, LogKeepsTheFiftyNewest) {
  ClearLog();
  std::uint8_t pixel[3] = {};
  for (int i = 0; i < 60; ++i) {
    // Alternate two operations so that the survivors can be told apart.
    if (i < 10) {
      IS40_AdjustGamma(pixel, 1, 1, 3, 3, -1.0, 0);
    } else {
      IS40_FillSolidRect(pixel, 1, 1, 2, 3, nullptr, 0, 0);
    }
  }
  const RasterContext& context = CurrentRasterContext();
  ASSERT_EQ(context.errorLog.size(), raster::kErrorLogSize);
  for (const auto& record : context.errorLog) {
    EXPECT_NE(record.text.find("IS40_FillSolidRect"), std::string::npos) << record.text;
  }
}

TEST(RasterContext, NestedCallsAreNotLoggedAgain) {
  ClearLog();
  {
    raster::RasterCall outer("outer");
    EXPECT_EQ(IS40_AdjustGamma(nullptr, 1, 1, 3, 3, 1.0, 0), 0);
    EXPECT_EQ(CurrentRasterContext().nestingDepth, 1);
    outer.Finish(raster::kNoFont);
  }
  const RasterContext& context = CurrentRasterContext();
  EXPECT_EQ(context.nestingDepth, 0);
  ASSERT_EQ(context.errorLog.size(), 1u);
  EXPECT_EQ(context.errorLog.front().code, raster::kNoFont);
  EXPECT_EQ(context.lastError, raster::kNoFont);
}

TEST(RasterContext, EachThreadHasItsOwn) {
  ClearLog();
  IS40_AdjustGamma(nullptr, 1, 1, 3, 3, 1.0, 0);
  const RasterContext* mine = &CurrentRasterContext();
  const RasterContext* theirs = nullptr;
  std::size_t theirLog = 99;
  std::thread([&] {
    theirs = &CurrentRasterContext();
    theirLog = theirs->errorLog.size();
    EXPECT_EQ(&CurrentRasterContext(), theirs);
  }).join();
  EXPECT_NE(mine, theirs);
  EXPECT_EQ(theirLog, 0u);
  EXPECT_EQ(CurrentRasterContext().errorLog.size(), 1u);
}

TEST(BlendTable, EntriesAreValueTimesLevelOver255TruncatedInFloatingPoint) {
  const std::uint8_t* table = raster::BlendTable();
  EXPECT_EQ(table, raster::BlendTable());  // built once
  struct Case {
    int value, level, expected;
  };
  const Case cases[] = {{0, 255, 0}, {255, 0, 0}, {255, 255, 255}, {200, 255, 200},
                        {200, 128, 100}, {100, 51, 20}, {1, 254, 0}, {255, 1, 1}, {128, 128, 64},
                        // 17 x 45 / 255 is exactly 3, but the product in floating point
                        // falls just short and is cut to 2.
                        {17, 45, 2}, {34, 90, 11}};
  for (const Case& c : cases) {
    EXPECT_EQ(table[c.value * 256 + c.level], c.expected) << c.value << " at " << c.level;
  }
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const int exact = a * b / 255;
      ASSERT_TRUE(table[a * 256 + b] == exact || table[a * 256 + b] == exact - 1) << a << "," << b;
    }
  }
}

}  // namespace
}  // namespace tavlet
