// The strip that the paint benchmarks draw: 30 open drawings on a bar docked
// on the left, 160 by 90 thumbnails, one modified, one read-only, one locked.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bar/bar_model.h"
#include "bar/doc_list.h"
#include "bar/preview_layout.h"
#include "bar/strip_paint.h"
#include "previews/dib.h"
#include "previews/raster/raster.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bench {

class QuietView final : public bar::PreviewStripView {
 public:
  void LayOut() override {}
  void Redraw() override {}
  void RedrawRect(const host::WindowRect&) override {}
  void StartTimer(unsigned, unsigned) override {}
};

struct PaintScene {
  static constexpr int kCells = 30;

  PaintScene() {
    for (int i = 0; i < kCells; ++i) {
      const std::string path = "C:\\drawings\\sheet-" + std::to_string(100 + i) + ".dwg";
      files.AddFile(path, "AC1018" + std::string(32, '\0'));
      list.AddDocument(host.OpenDrawing(path, i == 3));
    }
    std::vector<unsigned char> rgb(160 * 90 * 3, 0x80);
    void* dib = IS40_RGBToDIB(rgb.data(), 160, 90, 160 * 3, nullptr, 0);
    const auto* bytes = static_cast<const unsigned char*>(dib);
    const std::vector<unsigned char> packed(bytes, bytes + 40 + ((160 * 3 + 3) & ~3) * 90);
    DibFree(dib);
    for (const auto& entry : list.Entries()) {
      entry->previewDib = packed;
      entry->previewWidth = 160;
      entry->previewHeight = 90;
      entry->previewDirty = false;
    }
    list.Entries()[1]->modified = true;
    list.Entries()[2]->SetPreviewLocked(true);
    layout.SetDockSide(bar::kDockLeft);
    layout.titleHeight = 15;
    // 30 cells of 100 by 56 + label take 2,130 pixels: all of them fit, none collapses.
    layout.Layout(list, settings, {client, {0, 0, 1600, 900}, false});
  }

  bar::StripPaintInputs Inputs() { return {client, settings, colors, *host.Documents(), LogFontA{}}; }

  host::WindowRect client{0, 0, 102, 2200};
  MemoryFileSystem files;
  sim::SimHost host{files};
  QuietView view;
  bar::DocListSettings listSettings;
  bar::DocList list{*host.Documents(), files, view, listSettings};
  BarSettings settings;
  port::ColorSettings colors;
  bar::StripLayout layout;
};

}  // namespace tavlet::bench
