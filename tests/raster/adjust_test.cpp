#include <gtest/gtest.h>

#include <random>
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
class RecordingRegistry : public RegistryBackend {
 public:
  MemoryRegistry inner;
  std::vector<std::string> reads;

  bool OpenOrCreateKey(std::string_view path) override { return inner.OpenOrCreateKey(path); }
  bool KeyExists(std::string_view path) override { return inner.KeyExists(path); }
  bool QueryValue(std::string_view path, std::string_view name, RegValue& value) override {
    reads.push_back(std::string(path.substr(path.rfind('\\') + 1)) + "." + std::string(name));
    return inner.QueryValue(path, name, value);
  }
  bool SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                std::string_view bytes) override {
    return inner.SetValue(path, name, type, bytes);
  }
  bool DeleteValue(std::string_view path, std::string_view name) override {
    return inner.DeleteValue(path, name);
  }
};

class AdjustPipeline : public ::testing::Test {
 protected:
  AdjustPipeline() : store_(registry_, DefaultSettingsRoot()) {}

  // The thumbnail as top-down RGB, read back out of its packed bitmap.
  Buffer Run(const Buffer& raw, int width, int height, bool dark) {
    AdjustedPreview preview = AdjustPreview(raw.pixels.data(), raw.width, raw.height, width, height, dark, store_);
    EXPECT_EQ(preview.width, width);
    EXPECT_EQ(preview.height, height);
    Buffer out(width, height, 3);
    EXPECT_NE(preview.dib, nullptr);
    if (preview.dib != nullptr) {
      EXPECT_EQ(DibWidth(preview.dib), width);
      EXPECT_EQ(DibHeight(preview.dib), height);
      EXPECT_EQ(raster::DibToRgb(preview.dib, 40 + DibStride(width, 24) * height, out.pixels.data()), 0);
      DibFree(preview.dib);
    }
    return out;
  }

  // What the steps give when written out one by one from the formulas.
  static Buffer Expected(const Buffer& raw, int width, int height, double gamma, int sharpness) {
    Buffer reduced(width, height, 3);
    oracle::Resize(raw, reduced);
    if (gamma != 0.0) {
      for (auto& v : reduced.pixels) v = oracle::GammaEntry(v, gamma);
    }
    if (sharpness <= 0) return reduced;
    Buffer sharp(width, height, 3);
    oracle::Sharpen(reduced, sharp, sharpness);
    return sharp;
  }

  RecordingRegistry registry_;
  SettingsStore store_;
  std::mt19937 random_{10};
};

TEST_F(AdjustPipeline, ReadsFourSettingsInOrderFromTheBackgroundsGroup) {
  for (bool dark : {false, true}) {
    registry_.reads.clear();
    const AdjustSettings settings = ReadAdjustSettings(store_, dark);
    const std::string group = dark ? "BlackBack." : "WhiteBack.";
    const std::vector<std::string> expected = {group + "Brightness", group + "Contrast", group + "Gamma",
                                               group + "Sharpness"};
    EXPECT_EQ(registry_.reads, expected);
    EXPECT_EQ(settings.gamma, dark ? 2.5 : 0.0);
    EXPECT_EQ(settings.sharpness, 20);
    EXPECT_EQ(settings.brightness, 0.0);
    EXPECT_EQ(settings.contrast, 0.0);
  }
}

TEST_F(AdjustPipeline, DefaultsFollowTheStepsForEachBackground) {
  const Buffer raw = oracle::RandomBuffer(random_, 1200, 800, 3, 0);
  // 1200 / 60 and 800 / 40 are whole: a 20 x 20 box mean, then gamma (dark only), then strength 20.
  EXPECT_TRUE(oracle::SamePixels(Run(raw, 60, 40, false), Expected(raw, 60, 40, 0.0, 20)));
  EXPECT_TRUE(oracle::SamePixels(Run(raw, 60, 40, true), Expected(raw, 60, 40, 2.5, 20)));
  // An area-path size as well.
  EXPECT_TRUE(oracle::SamePixels(Run(raw, 71, 43, true), Expected(raw, 71, 43, 2.5, 20)));
}

TEST_F(AdjustPipeline, GammaZeroAndSharpnessZeroGiveTheAveragedPixels) {
  store_.SetInt("WhiteBack", "Sharpness", 0);
  const Buffer raw = oracle::RandomBuffer(random_, 99, 66, 3, 0);
  Buffer averaged(33, 22, 3);
  oracle::Resize(raw, averaged);
  EXPECT_TRUE(oracle::SamePixels(Run(raw, 33, 22, false), averaged));
}

TEST_F(AdjustPipeline, AChangedSettingTakesEffectAtTheNextRun) {
  const Buffer raw = oracle::RandomBuffer(random_, 90, 60, 3, 0);
  const Buffer first = Run(raw, 30, 20, true);
  store_.SetDouble("BlackBack", "Gamma", 1.0);
  store_.SetInt("BlackBack", "Sharpness", -3);
  Buffer averaged(30, 20, 3);
  oracle::Resize(raw, averaged);
  EXPECT_TRUE(oracle::SamePixels(Run(raw, 30, 20, true), averaged));
  EXPECT_FALSE(oracle::SamePixels(first, averaged));
}

TEST_F(AdjustPipeline, SettingsAtTheirEdges) {
  const Buffer raw = oracle::RandomBuffer(random_, 80, 80, 3, 0);
  struct Case {
    const char* what;
    double gamma;
    int sharpness;
    double brightness, contrast;
    double expectGamma;
    int expectSharpness;
  };
  const Case cases[] = {
      {"negative gamma is refused, image goes on", -2.0, 0, 0, 0, 0.0, 0},
      {"sharpness above 100 is 100", 0.0, 500, 0, 0, 0.0, 100},
      {"gamma 0.5", 0.5, 0, 0, 0, 0.5, 0},
      {"brightness and contrast are not applied", 0.0, 20, 80.0, -50.0, 0.0, 20},
  };
  for (const Case& c : cases) {
    store_.SetDouble("WhiteBack", "Gamma", c.gamma);
    store_.SetInt("WhiteBack", "Sharpness", c.sharpness);
    store_.SetDouble("WhiteBack", "Brightness", c.brightness);
    store_.SetDouble("WhiteBack", "Contrast", c.contrast);
    EXPECT_TRUE(oracle::SamePixels(Run(raw, 20, 16, false), Expected(raw, 20, 16, c.expectGamma, c.expectSharpness)))
        << c.what;
  }
}

TEST_F(AdjustPipeline, TargetLargerThanTheCaptureIsAFlatFillOfTheBackground) {
  const Buffer raw = oracle::RandomBuffer(random_, 40, 30, 3, 0);
  for (bool dark : {false, true}) {
    for (auto size : {std::pair{41, 30}, std::pair{40, 31}, std::pair{200, 100}}) {
      const Buffer out = Run(raw, size.first, size.second, dark);
      for (std::uint8_t v : out.pixels) ASSERT_EQ(v, dark ? kDarkFill : kLightFill);
    }
  }
}

TEST_F(AdjustPipeline, OneRowThumbnailSkipsSharpeningAndStillPacks) {
  store_.SetInt("WhiteBack", "Sharpness", 50);
  const Buffer raw = oracle::RandomBuffer(random_, 64, 8, 3, 0);
  Buffer averaged(16, 1, 3);
  oracle::Resize(raw, averaged);
  EXPECT_TRUE(oracle::SamePixels(Run(raw, 16, 1, false), averaged));
}

TEST_F(AdjustPipeline, EmptyTargetHasNoPictureButKeepsItsSize) {
  const Buffer raw = oracle::RandomBuffer(random_, 8, 8, 3, 0);
  for (auto size : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, -1}}) {
    const AdjustedPreview preview = AdjustPreview(raw.pixels.data(), 8, 8, size.first, size.second, false, store_);
    EXPECT_EQ(preview.dib, nullptr);
    EXPECT_EQ(preview.width, size.first);
    EXPECT_EQ(preview.height, size.second);
  }
}

}  // namespace
}  // namespace tavlet
