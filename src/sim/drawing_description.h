// The project's own description of a drawing or a sheet set: a small text format
// that tests and the demo write by hand (see docs/drawing-format.md). Files are
// UTF-8; every text is held in code page 936 once parsed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavlet::sim {

struct PictureItem {
  enum class Kind { Line, Rect, Fill };
  Kind kind = Kind::Line;
  int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
  std::uint32_t color = 0;  // 0xRRGGBB as written
};

// A few primitives on a background, in the picture's own coordinates; the host
// scales them to the size of the drawing view.
struct Picture {
  int width = 0, height = 0;
  std::uint32_t background = 0;  // 0xRRGGBB
  std::vector<PictureItem> items;
};

struct ViewportDesc {
  std::string layout;  // "Model" for a tiled viewport
  int number = 2;      // its CVPORT
  int renderMode = 0;  // 0 is 2D wireframe
};

struct NamedViewDesc {
  std::string name;
  bool paperSpace = false;
  bool dependent = false;
  double centerX = 0, centerY = 0, width = 0, height = 0;
  double direction[3] = {0, 0, 1};
  double target[3] = {0, 0, 0};
  std::vector<std::pair<long, std::string>> xdata;  // group code and text, whole list
};

struct XrefDesc {
  std::string block;
  std::string path;
  bool resolved = true;
};

struct EntityDesc {
  enum class Kind { Plain, Image, Ole };
  Kind kind = Kind::Plain;
  std::string layout;  // "Model" or a layout's name, when `block` is empty
  std::string block;   // the named block whose definition holds it, if any
  std::string path;    // image file or OLE link source
  bool linked = false;
  bool erased = false;
  std::vector<std::string> hyperlinks;
};

// A named block; a name that starts with '*' is anonymous, one with '|' comes
// from an external reference (dependent), as the host names them.
struct BlockDesc {
  std::string name;
  std::vector<std::string> hyperlinks;
};

struct DrawingDescription {
  std::string path;  // the name the host reports; the file's own path when absent
  std::string version = "AC1018";
  bool readOnly = false;
  std::vector<std::string> layouts;  // paper-space layouts in tab order
  std::string activeLayout = "Model";
  int cvport = 2;
  int dbmodOnOpen = 0;
  std::vector<ViewportDesc> viewports;
  std::vector<NamedViewDesc> views;
  std::vector<std::string> layerStates;
  bool hasLayerStateManager = true;
  std::vector<XrefDesc> xrefs;
  std::vector<EntityDesc> entities;
  std::vector<BlockDesc> blocks;
  std::vector<std::string> regApps;
  std::string summary[8];  // in the order of port::SummaryField
  std::vector<std::pair<std::string, std::string>> custom;
  bool hasPicture = false;
  Picture picture;
};

struct SheetDesc {
  std::string name, number, title, description, file;
};

struct SubsetDesc {
  std::string name, description;
  std::vector<SheetDesc> sheets;
};

struct SheetSetDescription {
  std::string name, description;
  std::vector<SheetDesc> sheets;
  std::vector<SubsetDesc> subsets;
  std::vector<std::string> resourceFolders;
};

// Outcome of a parse: on failure `message` reads "<file>:<line>: <what>".
struct ParseResult {
  bool ok = true;
  int line = 0;
  std::string message;
};

// The first line tells the kind: "tavlet-drawing 1" or "tavlet-sheetset 1".
bool LooksLikeDrawingDescription(const std::string& bytes);
bool LooksLikeSheetSetDescription(const std::string& bytes);

ParseResult ParseDrawingDescription(const std::string& utf8, const std::string& fileName, DrawingDescription& out);
ParseResult ParseSheetSetDescription(const std::string& utf8, const std::string& fileName,
                                     SheetSetDescription& out);

}  // namespace tavlet::sim
