// The large simulated drawing of the benchmarks: 100,000 entities in 10 layouts
// (model space and 9 paper-space layouts) with 1,000 hyperlinks, 200 images, 20
// references and 20 OLE links.
#pragma once

#include <string>

#include "sim/drawing_description.h"

namespace tavlet::bench {

inline constexpr int kEntities = 100000;
inline constexpr int kPaperLayouts = 9;
inline constexpr int kHyperlinks = 1000;
inline constexpr int kImages = 200;

// Built by appending: g++ 12 warns falsely (-Wrestrict) on literal + string.
inline std::string Numbered(const char* prefix, int n, const char* suffix = "") {
  std::string s = prefix;
  s += std::to_string(n);
  s += suffix;
  return s;
}

inline sim::DrawingDescription LargeDrawing() {
  sim::DrawingDescription d;
  for (int i = 0; i < kPaperLayouts; ++i) d.layouts.push_back(Numbered("Layout", i + 1));
  for (int i = 0; i < 20; ++i)
    d.xrefs.push_back({Numbered("X", i), Numbered("C:\\x\\ref", i, ".dwg"), i % 4 != 0});
  d.entities.resize(kEntities);
  for (int i = 0; i < kEntities; ++i) {
    sim::EntityDesc& e = d.entities[static_cast<std::size_t>(i)];
    int layout = i % (kPaperLayouts + 1);
    e.layout = layout == 0 ? "Model" : d.layouts[static_cast<std::size_t>(layout - 1)];
    if (i % (kEntities / kImages) == 1) {
      e.kind = sim::EntityDesc::Kind::Image;
      e.path = Numbered("C:\\images\\photo", i, ".jpg");
    } else if (i % (kEntities / 20) == 2) {
      e.kind = sim::EntityDesc::Kind::Ole;
      e.linked = true;
      e.path = Numbered("C:\\tables\\t", i, ".xls");
    }
    if (i % (kEntities / kHyperlinks) == 3)
      e.hyperlinks.push_back(Numbered("http://example.com/item/", i));
  }
  for (int i = 0; i < 50; ++i) d.blocks.push_back({Numbered("Block", i), {}});
  d.hasPicture = true;
  d.picture.width = d.picture.height = 1;
  return d;
}

}  // namespace tavlet::bench
