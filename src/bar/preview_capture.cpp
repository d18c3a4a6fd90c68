#include "bar/preview_capture.h"

namespace tavlet::bar {

void UpdatePreview(BarModel&, const StripLayout&, DocEntry*) {}

}  // namespace tavlet::bar
