#include "bar/preview_capture.h"

#include <cmath>
#include <memory>

#include "previews/adjust.h"
#include "previews/capture.h"
#include "previews/dib.h"

namespace tavlet::bar {
namespace {

long Truncated(double value) {
  // An aspect of 0 or one the host never gave must not reach the cast.
  if (!std::isfinite(value) || value <= 0 || value >= 2147483647.0) return 0;
  return static_cast<long>(value);
}

port::Document MdiActive(port::HostSession& session) {
  port::Document doc = nullptr;
  if (port::Failed(session.Documents()->MdiActiveDocument(&doc))) return nullptr;
  return doc;
}

// paperSpace keeps its old value when there is no working database to ask.
void ReadSpace(port::HostSession& session, DocEntry& entry) {
  port::Database db = nullptr;
  if (port::Failed(session.Services()->WorkingDatabase(&db)) || !db) return;
  bool tilemode = true;
  if (port::Succeeded(session.Databases()->Tilemode(db, &tilemode))) entry.paperSpace = !tilemode;
}

void StorePicture(DocEntry& entry, const AdjustedPreview& preview) {
  entry.previewWidth = preview.width;
  entry.previewHeight = preview.height;
  if (!preview.dib) return;
  const std::size_t bytes =
      kDibInfoHeaderSize + static_cast<std::size_t>(DibStride(preview.width, 24)) * static_cast<std::size_t>(preview.height);
  const auto* block = static_cast<const unsigned char*>(preview.dib);
  entry.previewDib.assign(block, block + bytes);
}

}  // namespace

CellExtent PreviewTargetSize(const StripLayout& layout, const BarSettings& settings) {
  CellExtent size;
  if (layout.IsHorizontal()) {
    size.height = layout.previewExtent - (settings.ShowDwgName ? layout.titleHeight : 0);
    size.width = size.height > 0 ? Truncated(size.height * layout.viewAspect) : 0;
  } else {
    size.width = layout.previewExtent;
    size.height = size.width > 0 ? Truncated(size.width / layout.viewAspect) : 0;
  }
  return size;
}

void UpdatePreview(BarModel& bar, const StripLayout& layout, DocEntry* entry) {
  if (layout.previewExtent <= 0) return;
  port::HostSession& session = bar.Session();
  const port::Document active = MdiActive(session);
  if (!entry) entry = active ? bar.Strip().FindEntry(active) : nullptr;
  if (!entry || !active) return;
  // Only the active drawing can be captured, and a locked picture is never replaced.
  if (entry->document != active || entry->previewLocked || !entry->previewDirty) return;

  ReadSpace(session, *entry);
  RawPicture raw;
  if (!CaptureDrawingImage(session, entry->paperSpace, entry->capturedFromScreen, raw)) return;
  entry->previewDirty = false;

  const port::ColorSettings& colors = bar.Colors();
  entry->darkBackground =
      IsDarkBackground(static_cast<std::uint32_t>(entry->paperSpace ? colors.layoutBackground : colors.modelBackground));
  // From here on a failure leaves the entry without a picture, and not stale.
  entry->previewDib.clear();
  try {
    const CellExtent target = PreviewTargetSize(layout, bar.Settings());
    if (target.width <= 0 || target.height <= 0) return;
    const AdjustedPreview preview = AdjustPreview(raw.source, static_cast<std::int32_t>(target.width),
                                                  static_cast<std::int32_t>(target.height), entry->darkBackground,
                                                  bar.Store());
    const std::unique_ptr<void, void (*)(void*)> owner(preview.dib, DibFree);
    StorePicture(*entry, preview);
    if (bar.onPreviewCaptured && !entry->previewDib.empty()) bar.onPreviewCaptured(*entry);
  } catch (...) {
    // A capture runs inside paint: nothing of it may reach the user.
  }
}

std::function<void(DocEntry&)> PreviewCapture(BarModel& bar, const StripLayout& layout) {
  return [&bar, &layout](DocEntry& entry) { UpdatePreview(bar, layout, &entry); };
}

}  // namespace tavlet::bar
