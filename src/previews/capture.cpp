#include "previews/capture.h"

#include <cstdint>
#include <cstring>
#include <new>

namespace tavlet {
namespace {

long CurrentViewportNumber(port::HostSession& session) {
  port::Value value;
  if (port::Failed(session.EditorService()->GetVariable("CVPORT", &value, nullptr))) return 0;
  return value.integer;
}

// The viewport entities of the working database's current space.
bool AnyViewportShaded(port::HostSession& session) {
  port::Database db = nullptr;
  if (port::Failed(session.Services()->WorkingDatabase(&db)) || !db) return false;
  port::DrawingDatabase& databases = *session.Databases();
  port::ObjectId space = 0;
  if (port::Failed(databases.CurrentSpaceId(db, &space))) return false;
  host::PortPtr<port::BlockRecord> block;
  if (port::Failed(databases.OpenBlockRecord(space, block.Receive())) || !block) return false;
  host::PortPtr<port::EntityIterator> entities;
  if (port::Failed(block->NewIterator(entities.Receive())) || !entities) return false;
  for (;;) {
    host::PortPtr<port::Entity> entity;
    port::EntityInfo info;
    const port::Result r = entities->Next(entity.Receive(), &info);
    if (port::Failed(r) || r == port::kFalse || !entity) return false;
    if (info.kind == port::kEntityViewport && info.renderMode != 0) return true;
  }
}

// Reads the host's image where it lies when its rows are evenly spaced and each
// row's pixels follow one another; otherwise copies it pixel by pixel.
bool TakePixels(host::PortPtr<port::ScreenImage> image, RawPicture& picture) {
  long width = 0, height = 0, depth = 0;
  if (port::Failed(image->Size(&width, &height, &depth)) || width <= 0 || height <= 0) return false;
  if (width > INT32_MAX / 3 || height > INT32_MAX) return false;
  const unsigned char* first = nullptr;
  const unsigned char* second = nullptr;
  const unsigned char* rowEnd = nullptr;
  if (port::Failed(image->PixelAddress(0, 0, &first)) || !first) return false;
  if (port::Failed(image->PixelAddress(width - 1, 0, &rowEnd)) || !rowEnd) return false;
  std::int64_t stride = static_cast<std::int64_t>(width) * 3;
  if (height > 1 && (port::Failed(image->PixelAddress(0, 1, &second)) || !second)) return false;
  if (height > 1) stride = second - first;
  bool regular = rowEnd - first == static_cast<std::int64_t>(width - 1) * 3 && stride >= width * 3;
  for (long y = 2; regular && y < height; ++y) {
    const unsigned char* row = nullptr;
    regular = port::Succeeded(image->PixelAddress(0, y, &row)) && row == first + y * stride;
  }
  regular = regular && stride <= INT32_MAX;
  PixelSource& source = picture.source;
  source.width = static_cast<std::int32_t>(width);
  source.height = static_cast<std::int32_t>(height);
  source.blueFirst = true;
  if (regular) {
    source.pixels = first;
    source.stride = static_cast<std::int32_t>(stride);
    picture.image = std::move(image);
    return true;
  }
  try {
    picture.copy.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3, 0);
  } catch (const std::bad_alloc&) {
    return false;
  }
  std::uint8_t* out = picture.copy.data();
  for (long y = 0; y < height; ++y) {
    for (long x = 0; x < width; ++x, out += 3) {
      const unsigned char* p = nullptr;
      if (port::Failed(image->PixelAddress(x, y, &p)) || !p) continue;
      std::memcpy(out, p, 3);
    }
  }
  source.pixels = picture.copy.data();
  source.stride = static_cast<std::int32_t>(width * 3);
  return true;
}

}  // namespace

bool IsShadedView(port::HostSession& session, bool paperSpace) {
  const long viewport = CurrentViewportNumber(session);
  if (paperSpace && viewport == 1) return AnyViewportShaded(session);
  bool exists = false;
  if (port::Failed(session.GraphicsService()->HasGsView(viewport, &exists))) return false;
  return exists;
}

bool CaptureDrawingImage(port::HostSession& session, bool paperSpace, bool& capturedFromScreen,
                         RawPicture& picture) {
  port::Graphics& graphics = *session.GraphicsService();
  host::PortPtr<port::ScreenImage> image;
  if (IsShadedView(session, paperSpace)) {
    capturedFromScreen = true;
    port::Window view = nullptr;
    if (port::Failed(session.Frame()->DrawingView(&view)) || !view) return false;
    if (port::Failed(graphics.CopyViewWindow(view, image.Receive()))) return false;
  } else {
    capturedFromScreen = false;
    if (port::Failed(graphics.TakeScreenShot(image.Receive()))) return false;
  }
  if (!image) return false;
  return TakePixels(std::move(image), picture);
}

}  // namespace tavlet
