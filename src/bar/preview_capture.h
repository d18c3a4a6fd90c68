// The live thumbnail of the active drawing: taken from the host's view inside
// the strip's paint, reduced by the adjustment pipeline and stored in the
// drawing's entry.
#pragma once

#include "bar/bar_model.h"
#include "bar/preview_layout.h"

namespace tavlet::bar {

// Captures `entry` (null: the MDI-active drawing's entry) when it is the active
// drawing's, unlocked and stale, with `layout` giving previewExtent, titleHeight,
// viewAspect and the strip's direction as the last layout and paint left them.
void UpdatePreview(BarModel& bar, const StripLayout& layout, DocEntry* entry);

}  // namespace tavlet::bar
