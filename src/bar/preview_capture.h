// The live thumbnail of the active drawing: taken from the host's view inside
// the strip's paint, reduced by the adjustment pipeline and stored in the
// drawing's entry.
#pragma once

#include <cstdint>
#include <functional>

#include "bar/bar_model.h"
#include "bar/preview_layout.h"

namespace tavlet::bar {

// Captures `entry` (null: the MDI-active drawing's entry) when it is the active
// drawing's, unlocked and stale, with `layout` giving previewExtent, titleHeight,
// viewAspect and the strip's direction as the last layout and paint left them.
void UpdatePreview(BarModel& bar, const StripLayout& layout, DocEntry* entry);

// The capture as RefreshAllPreviews takes it; `layout` must outlive the call.
std::function<void(DocEntry&)> PreviewCapture(BarModel& bar, const StripLayout& layout);

// A background (0x00BBGGRR) is dark when none of its three bytes reaches 64:
// the largest decides, so pure red is light.
constexpr bool IsDarkBackground(std::uint32_t color) {
  const std::uint32_t r = color & 0xFF, g = (color >> 8) & 0xFF, b = (color >> 16) & 0xFF;
  return (r > g ? (r > b ? r : b) : (g > b ? g : b)) < 0x40;
}

// The thumbnail's size in the strip: across a horizontal strip the label, when
// shown, takes its height from the picture; down a vertical one it lies outside.
// Truncated; zero or less means no picture.
CellExtent PreviewTargetSize(const StripLayout& layout, const BarSettings& settings);

}  // namespace tavlet::bar
