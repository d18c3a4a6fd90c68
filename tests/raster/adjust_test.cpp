// The thumbnail pipeline against the steps written out from the plain formulas.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "oracle.h"
#include "previews/adjust.h"
#include "previews/dib.h"
#include "previews/raster/dib_pixels.h"
#include "settings/memory_registry.h"
#include "settings/settings_store.h"

namespace tavlet {
namespace {

using oracle::Buffer;

// Keeps the names of the values read, in order.
class RecordingRegistry : public MemoryRegistry {
 public:
  std::vector<std::string> reads;
  bool QueryValue(std::string_view path, std::string_view name, RegValue& value) override {
    reads.push_back(std::string(path.substr(path.rfind('\\') + 1)) + "." + std::string(name));
    return MemoryRegistry::QueryValue(path, name, value);
  }
};

class AdjustPipeline : public ::testing::Test {
 protected:
  // The thumbnail as top-down RGB, read back out of its packed bitmap.
  Buffer Run(const Buffer& raw, int width, int height, bool dark) {
    const AdjustedPreview preview =
        AdjustPreview(raw.data(), raw.width, raw.height, width, height, dark, store_);
    EXPECT_EQ(std::pair(preview.width, preview.height), std::pair(width, height));
    Buffer out(width, height, 3);
    EXPECT_NE(preview.dib, nullptr);
    if (preview.dib != nullptr) {
      EXPECT_EQ(std::pair(DibWidth(preview.dib), DibHeight(preview.dib)), std::pair(width, height));
      EXPECT_EQ(raster::DibToRgb(preview.dib, 40 + DibStride(width, 24) * height, out.data()), 0);
      DibFree(preview.dib);
    }
    return out;
  }

  RecordingRegistry registry_;
  SettingsStore store_{registry_, DefaultSettingsRoot()};
  std::mt19937 random_{10};
};

TEST_F(AdjustPipeline, ReadsFourSettingsInOrderFromTheBackgroundsGroup) {
  for (bool dark : {false, true}) {
    registry_.reads.clear();
    const AdjustSettings settings = ReadAdjustSettings(store_, dark);
    const std::string group = dark ? "BlackBack." : "WhiteBack.";
    EXPECT_EQ(registry_.reads, (std::vector<std::string>{group + "Brightness", group + "Contrast",
                                                         group + "Gamma", group + "Sharpness"}));
    EXPECT_EQ(settings.gamma, dark ? 2.5 : 0.0);
    EXPECT_EQ(settings.sharpness, 20);
    EXPECT_EQ(std::pair(settings.brightness, settings.contrast), std::pair(0.0, 0.0));
  }
}

// The rows run in order on one store: each changes the settings that the next run
// must pick up. Brightness and contrast, once set, are read and never applied.
TEST_F(AdjustPipeline, ReduceGammaSharpenWithTheSettingsOfEachRun) {
  const Buffer raw = oracle::RandomBuffer(random_, 1200, 800, 3, 0);
  const struct {
    const char* what;
    bool dark, set;
    double gamma;
    int sharpness, width, height;
    double appliedGamma;
    int appliedSharpness;
  } cases[] = {
      {"light defaults, box path", false, false, 0, 0, 60, 40, 0.0, 20},
      {"dark defaults, box path", true, false, 0, 0, 60, 40, 2.5, 20},
      {"dark defaults, area path", true, false, 0, 0, 71, 43, 2.5, 20},
      {"no gamma, no sharpening", false, true, 0.0, 0, 33, 22, 0.0, 0},
      {"dark changed", true, true, 1.0, -3, 30, 20, 0.0, 0},
      {"negative gamma refused, the image goes on", false, true, -2.0, 0, 20, 16, 0.0, 0},
      {"sharpness above 100 is 100", false, true, 0.0, 500, 20, 16, 0.0, 100},
      {"gamma 0.5", false, true, 0.5, 20, 20, 16, 0.5, 20},
      {"one row is not sharpened", false, true, 0.0, 50, 16, 1, 0.0, 0},
  };
  for (const auto& c : cases) {
    const char* group = c.dark ? "BlackBack" : "WhiteBack";
    if (c.set) {
      store_.SetDouble(group, "Gamma", c.gamma);
      store_.SetInt(group, "Sharpness", c.sharpness);
      store_.SetDouble(group, "Brightness", 80.0);
      store_.SetDouble(group, "Contrast", -50.0);
    }
    Buffer expected(c.width, c.height, 3);
    oracle::Resize(raw, expected);
    if (c.appliedGamma != 0.0) {
      for (auto& v : expected.pixels) v = oracle::GammaEntry(v, c.appliedGamma);
    }
    if (c.appliedSharpness > 0) {
      const Buffer reduced = expected;
      oracle::Sharpen(reduced, expected, c.appliedSharpness);
    }
    EXPECT_EQ(Run(raw, c.width, c.height, c.dark).pixels, expected.pixels) << c.what;
  }
}

TEST_F(AdjustPipeline, TargetLargerThanTheCaptureIsAFlatFillAndAnEmptyOneHasNoPicture) {
  const Buffer raw = oracle::RandomBuffer(random_, 40, 30, 3, 0);
  for (bool dark : {false, true}) {
    for (auto [w, h] : {std::pair{41, 30}, std::pair{40, 31}, std::pair{200, 100}}) {
      for (std::uint8_t v : Run(raw, w, h, dark).pixels) ASSERT_EQ(v, dark ? kDarkFill : kLightFill);
    }
  }
  for (auto [w, h] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, -1}}) {
    const AdjustedPreview preview = AdjustPreview(raw.data(), 40, 30, w, h, false, store_);
    EXPECT_EQ(preview.dib, nullptr);
    EXPECT_EQ(std::pair(preview.width, preview.height), std::pair(w, h));
  }
}

}  // namespace
}  // namespace tavlet
