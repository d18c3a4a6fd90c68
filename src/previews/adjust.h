// The fixed sequence that makes a readable thumbnail of a captured drawing area:
// reduce, correct gamma, sharpen, pack. Dark and light backgrounds have their own
// settings ("BlackBack", "WhiteBack"), read from the store at every run so that a
// changed value takes effect at the next capture.
#pragma once

#include <cstdint>

namespace tavlet {

class SettingsStore;

struct AdjustSettings {
  double brightness = 0;  // read, and deliberately not applied
  double contrast = 0;    // read, and deliberately not applied
  double gamma = 0;       // 0: no gamma step
  int sharpness = 20;     // 0 or less: no sharpen step
};

// Reads Brightness, Contrast, Gamma and Sharpness, in this order, from "BlackBack"
// when `darkBackground` is set and from "WhiteBack" when it is not.
AdjustSettings ReadAdjustSettings(const SettingsStore& store, bool darkBackground);

// What a DocEntry keeps: previewDib (free it with DibFree), previewWidth,
// previewHeight. `dib` is null when packing failed; the size is written anyway.
struct AdjustedPreview {
  void* dib = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

// The reduction never scales up: when the target is larger than the raw image in
// either direction the picture is a flat fill of the background (black on a dark
// background, white on a light one), never uninitialised memory.
constexpr std::uint8_t kDarkFill = 0;
constexpr std::uint8_t kLightFill = 255;

// A raw picture of 3 bytes a pixel, rows top-down. Reduction, gamma and
// sharpening treat the channels alike, so a picture that comes blue first is
// worked on as it is and only packed the other way round.
struct PixelSource {
  const std::uint8_t* pixels = nullptr;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t stride = 0;
  bool blueFirst = false;
};

AdjustedPreview AdjustPreview(const PixelSource& raw, std::int32_t targetWidth, std::int32_t targetHeight,
                              bool darkBackground, const AdjustSettings& settings);
AdjustedPreview AdjustPreview(const PixelSource& raw, std::int32_t targetWidth, std::int32_t targetHeight,
                              bool darkBackground, const SettingsStore& store);

// `raw` is 3 bytes a pixel, red first, top-down, stride rawWidth x 3.
AdjustedPreview AdjustPreview(const std::uint8_t* raw, std::int32_t rawWidth,
                              std::int32_t rawHeight, std::int32_t targetWidth,
                              std::int32_t targetHeight, bool darkBackground,
                              const AdjustSettings& settings);

AdjustedPreview AdjustPreview(const std::uint8_t* raw, std::int32_t rawWidth,
                              std::int32_t rawHeight, std::int32_t targetWidth,
                              std::int32_t targetHeight, bool darkBackground,
                              const SettingsStore& store);

}  // namespace tavlet
