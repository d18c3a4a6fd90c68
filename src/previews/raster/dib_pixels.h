// Reading the rows of a packed bitmap as RGB pixels: the portable half of
// IS40_HBITMAPToRGB, which fetches the bits with GetDIBits and hands them here.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tavlet::raster {

// Converts the packed bitmap `dib` (long header, `blockBytes` in all) into
// width x height x 3 bytes at `rgbOut`, red first, rows top-down whatever the
// bitmap's direction. Depths 1, 4, 8 (colour table), 16 (5-5-5, or masks with
// compression 3), 24 and 32. Returns kOk, kBadArgument for a header or block that
// doesn't hold what it claims, kUnsupportedCompression or kUnsupportedDepth.
std::int32_t DibToRgb(const void* dib, std::size_t blockBytes, unsigned char* rgbOut);

}  // namespace tavlet::raster
