// The picture of the active drawing's view, as the host gives it: its graphics
// system's screen shot, or a copy of the view window when the screen shot would
// show nothing useful (a shaded or 3D view).
#pragma once

#include <cstdint>
#include <vector>

#include "host/port/host_session.h"
#include "host/port_ptr.h"
#include "previews/adjust.h"

namespace tavlet {

// 3 bytes a pixel, rows top-down. The host's pixels come blue first; reduction,
// gamma and sharpening treat the channels alike, so they are read where the host
// keeps them and only the packing puts red first. A copy is made only when the
// host's rows are not evenly spaced.
struct RawPicture {
  PixelSource source;
  std::vector<std::uint8_t> copy;
  host::PortPtr<port::ScreenImage> image;  // keeps the host's pixels alive

  RawPicture() = default;
  RawPicture(const RawPicture&) = delete;
  RawPicture& operator=(const RawPicture&) = delete;
};

// True when the host's own screen shot would be useless. In a layout with its
// paper-space viewport current (CVPORT 1), any viewport entity of the current
// space with a render mode other than 2D wireframe decides; otherwise the
// current viewport's graphics view does. A host call that fails counts as "no".
bool IsShadedView(port::HostSession& session, bool paperSpace);

// Takes the picture. `capturedFromScreen` is written before the attempt, so it
// tells the path even when the attempt fails. False when the host gave no
// picture, or one without pixels: the caller keeps what it had.
bool CaptureDrawingImage(port::HostSession& session, bool paperSpace, bool& capturedFromScreen,
                         RawPicture& picture);

}  // namespace tavlet
