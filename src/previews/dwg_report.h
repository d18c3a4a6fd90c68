// The text `dwgthumb info` prints for a drawing: what its head and image block
// say, and, for a damaged file, how far the reader got and where it stopped.
#pragma once

#include <string>

#include "platform/file_system.h"

namespace tavlet {

struct DrawingReport {
  std::string text;   // lines for standard output; the path as it was given
  std::string error;  // one line for standard error; empty when the file is sound
  bool ok = false;
};

DrawingReport ReportDrawing(FileSystem& fs, const std::string& path);

class DwgThumbnail;
// Why a load failed, in words for the console, with the bar's own text after it.
std::string ThumbnailFailure(const DwgThumbnail& thumbnail);

}  // namespace tavlet
