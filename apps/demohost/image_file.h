// Screen pictures of the demo: a window's pixels as they are on the screen,
// written as BMP or PNG.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tavlet::demo {

// Rows top-down, 3 bytes a pixel, red first.
struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;
  // 0x00RRGGBB of (x, y); 0 outside.
  std::uint32_t At(int x, int y) const;
};

// The pixels of the window's whole rectangle, read from the screen.
Picture CaptureWindow(HWND window);
// The pixels of a rectangle of the screen.
Picture CaptureRect(const RECT& area);
// By the extension: ".png" or ".bmp" (any other is refused). False with the reason in `error`.
bool WritePicture(const Picture& picture, const std::string& path, std::string& error);
// For tests: reads back a 24-bit BMP that WritePicture wrote.
bool ReadBmp(const std::string& path, Picture& picture);

}  // namespace tavlet::demo
