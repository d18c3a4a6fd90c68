// Graphics capture: the two sources of a thumbnail.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

// A picture of the drawing area. Pixels are 3 bytes, blue, green, red.
// Real host: AcGsScreenShot (its first, third and fourth virtual operations) or,
// for a window copy, a 24-bit DIB section filled by BitBlt from the view's DC.
// Simulation: the drawing's picture rendered at the view's size.
class ScreenImage : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Size(long* width, long* height, long* depth) = 0;
  // Address of pixel (x, y), row 0 at the top; kInvalidArgument outside.
  virtual Result TAVLET_PORT_CALL PixelAddress(long x, long y, const unsigned char** bgr) = 0;
};

// The graphics system of the active drawing.
// Real host: acgsGetGsView(number, false), acgsGetScreenShot(0), and the GDI
// copy of acedGetAcadDwgView()'s client area.
// Simulation: a viewport has a graphics view while its render mode is not 2D
// wireframe; the screen shot fails (null) on demand.
class Graphics {
 public:
  virtual Result TAVLET_PORT_CALL HasGsView(long viewportNumber, bool* exists) = 0;
  // Null with kFalse when the host gives no screen shot.
  virtual Result TAVLET_PORT_CALL TakeScreenShot(ScreenImage** image) = 0;
  virtual Result TAVLET_PORT_CALL CopyViewWindow(Window view, ScreenImage** image) = 0;

 protected:
  ~Graphics() = default;
};

}  // namespace tavlet::port
