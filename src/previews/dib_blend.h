// The software half of FillAlphaRect: a constant-opacity blend of two 24-bit
// buffers, as the fallback has always done it when AlphaBlend can't be loaded.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tavlet {

// out := (source x alpha + destination x (255 - alpha)) >> 8, byte by byte. A shift,
// not a division by 255: at alpha 255 a value of 255 comes out as 254, and that
// slight darkening is how the fallback looks. False (nothing written) for an
// alpha outside 0..255.
bool BlendShift8(const std::uint8_t* source, const std::uint8_t* destination, std::uint8_t* out,
                 std::size_t count, int alpha);

}  // namespace tavlet
