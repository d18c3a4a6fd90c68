#include "previews/adjust.h"

#include <cstring>
#include <memory>
#include <new>

#include "previews/raster/raster.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"

namespace tavlet {

AdjustSettings ReadAdjustSettings(const SettingsStore& store, bool darkBackground) {
  AdjustSettings settings;
  if (darkBackground) {
    settings.brightness = ReadDouble(store, keys::BlackBack::Brightness);
    settings.contrast = ReadDouble(store, keys::BlackBack::Contrast);
    settings.gamma = ReadDouble(store, keys::BlackBack::Gamma);
    settings.sharpness = ReadInt(store, keys::BlackBack::Sharpness);
  } else {
    settings.brightness = ReadDouble(store, keys::WhiteBack::Brightness);
    settings.contrast = ReadDouble(store, keys::WhiteBack::Contrast);
    settings.gamma = ReadDouble(store, keys::WhiteBack::Gamma);
    settings.sharpness = ReadInt(store, keys::WhiteBack::Sharpness);
  }
  return settings;
}

AdjustedPreview AdjustPreview(const PixelSource& raw, std::int32_t targetWidth, std::int32_t targetHeight,
                              bool darkBackground, const AdjustSettings& settings) {
  AdjustedPreview preview;
  preview.width = targetWidth;
  preview.height = targetHeight;
  if (targetWidth <= 0 || targetHeight <= 0 || targetWidth > INT32_MAX / 3) return preview;

  const std::int32_t stride = targetWidth * 3;
  const std::size_t bytes = static_cast<std::size_t>(stride) * static_cast<std::size_t>(targetHeight);
  std::unique_ptr<std::uint8_t[]> work(new (std::nothrow) std::uint8_t[bytes]);
  if (!work) return preview;

  // Reduce first: gamma and sharpening then cost per thumbnail pixel, not per
  // screen pixel.
  if (IS40_ResizeImage(raw.pixels, raw.width, raw.height, raw.stride, work.get(), targetWidth,
                       targetHeight, stride, 3, raster::kResizeReduce, 0) == 0) {
    std::memset(work.get(), darkBackground ? kDarkFill : kLightFill, bytes);
  }

  if (settings.gamma != 0.0) {
    IS40_AdjustGamma(work.get(), targetWidth, targetHeight, 3, stride, settings.gamma, 0);
  }

  if (settings.sharpness > 0) {
    std::unique_ptr<std::uint8_t[]> sharp(new (std::nothrow) std::uint8_t[bytes]);
    if (sharp && IS40_SharpenImage(work.get(), targetWidth, targetHeight, 3, stride, sharp.get(),
                                   stride, settings.sharpness, 7) != 0) {
      work = std::move(sharp);
    }
  }

  preview.dib = IS40_RGBToDIB(work.get(), targetWidth, targetHeight, stride, nullptr,
                              raw.blueFirst ? raster::kDibKeepChannelOrder : 0);
  return preview;
}

AdjustedPreview AdjustPreview(const std::uint8_t* raw, std::int32_t rawWidth,
                              std::int32_t rawHeight, std::int32_t targetWidth,
                              std::int32_t targetHeight, bool darkBackground,
                              const AdjustSettings& settings) {
  const std::int32_t stride = rawWidth > 0 && rawWidth <= INT32_MAX / 3 ? rawWidth * 3 : 0;
  return AdjustPreview(PixelSource{raw, rawWidth, rawHeight, stride, false}, targetWidth, targetHeight,
                       darkBackground, settings);
}

AdjustedPreview AdjustPreview(const PixelSource& raw, std::int32_t targetWidth, std::int32_t targetHeight,
                              bool darkBackground, const SettingsStore& store) {
  return AdjustPreview(raw, targetWidth, targetHeight, darkBackground, ReadAdjustSettings(store, darkBackground));
}

AdjustedPreview AdjustPreview(const std::uint8_t* raw, std::int32_t rawWidth,
                              std::int32_t rawHeight, std::int32_t targetWidth,
                              std::int32_t targetHeight, bool darkBackground,
                              const SettingsStore& store) {
  return AdjustPreview(raw, rawWidth, rawHeight, targetWidth, targetHeight, darkBackground,
                       ReadAdjustSettings(store, darkBackground));
}

}  // namespace tavlet
