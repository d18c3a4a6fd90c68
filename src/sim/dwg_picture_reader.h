// The simulated host's picture of a real drawing file: the thumbnail the file
// carries, read by the bar's own reader, as plain pixels.
#pragma once

#include <string>

#include "platform/file_system.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

// False when the file has no bitmap thumbnail the reader can show.
bool ReadDwgPicture(FileSystem& fs, const std::string& path, ThumbnailPixels& out);

}  // namespace tavlet::sim
