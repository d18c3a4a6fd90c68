// Argument checks of every portable operation, and the per-thread context that
// records their codes. Run under AddressSanitizer, a refused call that still touched
// memory outside its buffers stops the test.
#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <regex>
#include <thread>

#include "oracle.h"
#include "previews/raster/raster.h"
#include "previews/raster/raster_context.h"

namespace tavlet {
namespace {

using raster::CurrentRasterContext;
using raster::RasterContext;

TEST(RasterArguments, HostileArgumentsGetTheirCodeAndTouchNothing) {
  const oracle::Buffer source(10, 10, 3, 0, 0x11);
  oracle::Buffer image(10, 10, 3, 0, 0x5A);
  const std::uint8_t* s = source.data();
  std::uint8_t* d = image.data();
  const RasterRect rect{0, 0, 3, 3};
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  // 4200 x 4100 into one pixel: a box of 17,220,000 bytes, more than a 32-bit sum holds.
  const std::vector<std::uint8_t> large(4200u * 4100u, 255);
  const struct {
    const char* call;
    std::function<int()> run;
    std::int32_t code;
  } cases[] = {
#define REFUSED(call, code) {#call, [&] { return int(call); }, code}
      REFUSED(IS40_ResizeImage(nullptr, 10, 10, 30, d, 5, 5, 15, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, nullptr, 5, 5, 15, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, d, 20, 10, 60, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, d, 10, 11, 30, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, d, 0, 5, 15, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, -10, 30, d, 5, 5, 15, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 29, d, 5, 5, 15, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, d, 5, 5, 14, 3, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, d, 5, 5, 15, 0, 15, 0), 5),
      REFUSED(IS40_ResizeImage(s, 10, 10, 30, d, 5, 5, 15, 3, 14, 0), 5),
      REFUSED(IS40_ResizeImage(large.data(), 4200, 4100, 4200, d, 1, 1, 1, 1, 15, 0), 5),
      REFUSED(IS40_AdjustGamma(d, 4, 4, 3, 12, -1.0, 0), 5),
      REFUSED(IS40_AdjustGamma(d, 4, 4, 3, 12, nan, 0), 5),
      REFUSED(IS40_AdjustGamma(d, 4, 4, 3, 12, inf, 0), 5),
      REFUSED(IS40_AdjustGamma(nullptr, 4, 4, 3, 12, 2.5, 0), 5),
      REFUSED(IS40_AdjustGamma(d, 4, -4, 3, 12, 2.5, 0), 5),
      REFUSED(IS40_AdjustGamma(d, 4, 4, 3, 11, 2.5, 0), 5),
      REFUSED(IS40_SharpenImage(nullptr, 4, 4, 3, 12, d, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 4, 4, 3, 12, nullptr, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(d, 4, 4, 3, 12, d, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 1, 4, 9, 12, d, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 1, 4, 3, 12, d, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 4, 1, 3, 12, d, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 4, 4, 3, 11, d, 12, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 4, 4, 3, 12, d, 10, 20, 7), 5),
      REFUSED(IS40_SharpenImage(s, 4, 4, 3, 12, d, 12, 20, 0x207), 5),
      REFUSED(IS40_QuickRotateImageInPlace(d, 3, 2, 3, 3, 0), 5),
      REFUSED(IS40_QuickRotateImageInPlace(d, 3, 2, -1, 3, 0), 5),
      REFUSED(IS40_QuickRotateImageInPlace(nullptr, 3, 2, 0, 3, 0), 5),
      REFUSED(IS40_QuickRotateImageInPlace(d, 3, -2, 0, 3, 0), 5),
      REFUSED(IS40_QuickRotateImageInPlace(d, 0x40000000, 2, 0, 4, 0), 5),
      REFUSED(IS40_FillSolidRect(d, 4, 4, 2, 12, &rect, 0xFFFFFF, 0), 5),
      REFUSED(IS40_FillSolidRect(nullptr, 4, 4, 3, 12, &rect, 0xFFFFFF, 0), 5),
      REFUSED(IS40_FillSolidRect(d, 4, 4, 3, 12, nullptr, 0xFFFFFF, 0), 5),
      REFUSED(IS40_FillSolidRect(d, 4, 4, 3, 11, &rect, 0xFFFFFF, 0), 5),
      REFUSED(IS40_FillSolidRect(d, 4, 0, 3, 12, &rect, 0xFFFFFF, 0), 5),
      REFUSED(IS40_RGBToDIB(nullptr, 1, 1, 3, nullptr, 0) != nullptr, 5),
      REFUSED(IS40_RGBToDIB(s, 0, 1, 3, nullptr, 0) != nullptr, 5),
      REFUSED(IS40_RGBToDIB(s, 1, 1, 2, nullptr, 0) != nullptr, 5),
      // 0x7FFDEFFF bytes or more are refused before any allocation.
      REFUSED(IS40_RGBToDIB(s, 30000, 30000, 90000, nullptr, 0) != nullptr, 1),
#undef REFUSED
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.run(), 0) << c.call;
    EXPECT_EQ(CurrentRasterContext().lastError, c.code) << c.call;
  }
  for (std::uint8_t v : image.pixels) ASSERT_EQ(v, 0x5A);
  for (std::uint8_t v : source.pixels) ASSERT_EQ(v, 0x11);
  // 4100 x 4100 = 16,810,000 is within the bound, and a flat 255 stays 255.
  EXPECT_NE(IS40_ResizeImage(large.data(), 4100, 4100, 4100, d, 1, 1, 1, 1, 15, 0), 0);
  EXPECT_EQ(d[0], 255);
}

TEST(RasterContext, ErrorTextFormats) {
  EXPECT_EQ(raster::FormatRasterError(5, "IS40_ResizeImage", "09:05:01", nullptr),
            "Error 5 in IS40_ResizeImage (09:05:01)");
  EXPECT_EQ(raster::FormatRasterError(5, nullptr, "09:05:01", nullptr),
            "Error 5 in (unspecified function) (09:05:01)");
  EXPECT_EQ(raster::FormatRasterError(5, "IS40_AdjustGamma", "09:05:01", "gamma"),
            "Error 5 in IS40_AdjustGamma (09:05:01) [gamma]");
  const std::string longNote(2000, 'x');
  EXPECT_EQ(raster::FormatRasterError(1, "f", "00:00:00", longNote.c_str()).size(),
            raster::kErrorTextLimit);
}

RasterContext& ClearedContext() {
  RasterContext& context = CurrentRasterContext();
  context.errorLog.clear();
  context.lastError = 0;
  return context;
}

TEST(RasterContext, LogsFailuresWithNameAndClockKeepingTheFiftyNewest) {
  RasterContext& context = ClearedContext();
  std::uint8_t pixel[3] = {1, 2, 3};
  EXPECT_EQ(IS40_AdjustGamma(nullptr, 1, 1, 3, 3, 1.0, 0), 0);
  ASSERT_EQ(context.errorLog.size(), 1u);
  EXPECT_EQ(context.errorLog.back().code, 5);
  EXPECT_TRUE(std::regex_match(context.errorLog.back().text,
                               std::regex(R"(Error 5 in IS40_AdjustGamma \(\d\d:\d\d:\d\d\))")))
      << context.errorLog.back().text;
  // Success clears the last error and logs nothing.
  EXPECT_NE(IS40_AdjustGamma(pixel, 1, 1, 3, 3, 1.0, 0), 0);
  EXPECT_EQ(context.lastError, 0);
  EXPECT_EQ(context.errorLog.size(), 1u);
  for (int i = 0; i < 59; ++i) IS40_FillSolidRect(pixel, 1, 1, 2, 3, nullptr, 0, 0);
  ASSERT_EQ(context.errorLog.size(), raster::kErrorLogSize);
  EXPECT_NE(context.errorLog.front().text.find("IS40_FillSolidRect"), std::string::npos);
  EXPECT_EQ(context.lastError, 5);
}

TEST(RasterContext, NestedCallsAreNotLoggedAgainAndThreadsHaveTheirOwn) {
  RasterContext& context = ClearedContext();
  {
    raster::RasterCall outer("outer");
    EXPECT_EQ(IS40_AdjustGamma(nullptr, 1, 1, 3, 3, 1.0, 0), 0);
    EXPECT_EQ(context.nestingDepth, 1);
    outer.Finish(raster::kNoFont);
  }
  EXPECT_EQ(context.nestingDepth, 0);
  ASSERT_EQ(context.errorLog.size(), 1u);
  EXPECT_EQ(context.errorLog.front().code, raster::kNoFont);
  EXPECT_EQ(context.lastError, raster::kNoFont);
  const RasterContext* theirs = nullptr;
  std::size_t theirLog = 99;
  std::thread([&] {
    theirs = &CurrentRasterContext();
    theirLog = theirs->errorLog.size();
  }).join();
  EXPECT_NE(&context, theirs);
  EXPECT_EQ(theirLog, 0u);
}

TEST(RasterContext, ProgressCallbackStopsWithCode14) {
  struct Count {
    int rows = 0, stopAt = 0;
  } count;
  RasterContext& context = CurrentRasterContext();
  context.progressUser = &count;
  context.progressCallback = [](std::int32_t, std::int32_t, void* user) {
    auto* c = static_cast<Count*>(user);
    return ++c->rows < c->stopAt ? 1 : 0;
  };
  const oracle::Buffer source(40, 40, 3, 0, 9);
  for (int size : {10, 13}) {  // the box path and the area path
    count = {0, 3};
    oracle::Buffer destination(size, size, 3, 0, 0);
    EXPECT_EQ(IS40_ResizeImage(source.data(), 40, 40, 120, destination.data(), size, size,
                               size * 3, 3, 15, 0), 0);
    EXPECT_EQ(context.lastError, raster::kStoppedByCallback);
    EXPECT_EQ(count.rows, 3);
    EXPECT_GE(destination.At(0, 2, 0), 8);  // the rows before the stop are done
    EXPECT_EQ(destination.At(0, 3, 0), 0);  // and nothing after it
  }
  context.progressCallback = nullptr;
  context.progressUser = nullptr;
}

TEST(BlendTable, EntriesAreValueTimesLevelOver255TruncatedInFloatingPoint) {
  const std::uint8_t* table = raster::BlendTable();
  EXPECT_EQ(table, raster::BlendTable());  // built once
  // 17 x 45 / 255 is exactly 3, but the product in floating point falls short: 2.
  EXPECT_EQ(table[17 * 256 + 45], 2);
  EXPECT_EQ(table[200 * 256 + 128], 100);
  for (int k = 0; k < 65536; ++k) {
    const int value = k / 256, level = k % 256;
    ASSERT_EQ(table[k], std::uint8_t(value * (level * 0.00392156862745098))) << value << " at " << level;
  }
}

}  // namespace
}  // namespace tavlet
