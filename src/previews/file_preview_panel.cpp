#include "previews/file_preview_panel.h"

#include "operations/drawing_path.h"
#include "text/codepage.h"

namespace tavlet {

bool IsDrawingPath(const std::string& path) { return text::Mbsicmp(SplitPath(path).extension, ".dwg") == 0; }

std::vector<PanelBand> LayoutPanel(const std::vector<PreviewPanelItem>& items, const PreviewRect& inner) {
  std::vector<PanelBand> bands;
  const int width = inner.Width();
  long long y = inner.top;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const PreviewPanelItem& item = items[i];
    long long height = 0;
    if (item.kind == PreviewPanelItem::kDrawing) {
      height = width;
    } else if (item.bitmap && item.bitmap->Width() > 0) {
      height = static_cast<long long>(width * (static_cast<double>(item.bitmap->Height()) / item.bitmap->Width()));
    }
    // A file the shell gave nothing for takes no room at all.
    if (item.kind == PreviewPanelItem::kDrawing || item.bitmap) {
      bands.push_back({i, {inner.left, static_cast<int>(y), inner.right, static_cast<int>(y + height)}});
    }
    y += height;
    if (y > inner.bottom) break;
  }
  return bands;
}

void FilePreviewPanel::SetFiles(const std::vector<std::string>& paths, int clientWidth) {
  items_.clear();
  for (const std::string& path : paths) {
    PreviewPanelItem item;
    item.path = path;
    if (IsDrawingPath(path)) {
      item.kind = PreviewPanelItem::kDrawing;
      item.thumbnail = std::make_unique<DwgThumbnail>(fs_);
      item.thumbnail->SetInitialBackground(0);
      item.thumbnail->SetRecolor(true);
      item.thumbnail->Load(path, true);
    } else {
      item.kind = PreviewPanelItem::kOther;
      item.bitmap = shell_.Extract(path, clientWidth, clientWidth);
    }
    items_.push_back(std::move(item));
  }
}

void FilePreviewPanel::Paint(PanelCanvas& canvas, const PreviewRect& client) {
  canvas.Draw3dRect(client);
  PreviewRect inner{client.left + 2, client.top + 2, client.right - 2, client.bottom - 2};
  canvas.FillFace(inner);
  for (const PanelBand& band : LayoutPanel(items_, inner)) {
    PreviewPanelItem& item = items_[band.item];
    if (item.kind == PreviewPanelItem::kDrawing) {
      item.thumbnail->Paint(canvas, band.rect);
    } else {
      canvas.DrawImage(*item.bitmap, band.rect);
    }
  }
}

}  // namespace tavlet
