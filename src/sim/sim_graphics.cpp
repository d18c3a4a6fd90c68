// Screen shots of the simulated host: the drawing's picture rendered at the
// view's size, blue-green-red as the host's screen shot gives its pixels.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "sim/sim_automation.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

namespace {

// The drawing's picture rendered at the view's size, blue-green-red.
class Rendering {
 public:
  Rendering(const Picture& picture, long width, long height)
      : width_(width), height_(height), bgr_(static_cast<std::size_t>(std::max(width, 0L)) * std::max(height, 0L) * 3) {
    Fill(0, 0, width - 1, height - 1, picture.background);
    if (picture.width <= 0 || picture.height <= 0) return;
    auto sx = [&](int x) { return static_cast<long>(static_cast<long long>(x) * width / picture.width); };
    auto sy = [&](int y) { return static_cast<long>(static_cast<long long>(y) * height / picture.height); };
    for (const PictureItem& item : picture.items) {
      long x0 = sx(item.x0), y0 = sy(item.y0), x1 = sx(item.x1), y1 = sy(item.y1);
      switch (item.kind) {
        case PictureItem::Kind::Fill:
          // A one-unit fill covers the whole scaled cell, so thumbnails enlarge without gaps.
          Fill(x0, y0, std::max(x1, sx(item.x1 + 1) - 1), std::max(y1, sy(item.y1 + 1) - 1), item.color);
          break;
        case PictureItem::Kind::Rect:
          Line(x0, y0, x1, y0, item.color);
          Line(x1, y0, x1, y1, item.color);
          Line(x1, y1, x0, y1, item.color);
          Line(x0, y1, x0, y0, item.color);
          break;
        case PictureItem::Kind::Line:
          Line(x0, y0, x1, y1, item.color);
          break;
      }
    }
  }

  const std::vector<unsigned char>& Pixels() const { return bgr_; }

 private:
  void Put(long x, long y, std::uint32_t rgb) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    unsigned char* p = &bgr_[(static_cast<std::size_t>(y) * width_ + x) * 3];
    p[0] = static_cast<unsigned char>(rgb & 0xFF);
    p[1] = static_cast<unsigned char>((rgb >> 8) & 0xFF);
    p[2] = static_cast<unsigned char>((rgb >> 16) & 0xFF);
  }
  void Fill(long x0, long y0, long x1, long y1, std::uint32_t rgb) {
    for (long y = std::min(y0, y1); y <= std::max(y0, y1); ++y)
      for (long x = std::min(x0, x1); x <= std::max(x0, x1); ++x) Put(x, y, rgb);
  }
  void Line(long x0, long y0, long x1, long y1, std::uint32_t rgb) {
    long dx = std::labs(x1 - x0), dy = -std::labs(y1 - y0);
    long stepX = x0 < x1 ? 1 : -1, stepY = y0 < y1 ? 1 : -1;
    long error = dx + dy;
    for (;;) {
      Put(x0, y0, rgb);
      if (x0 == x1 && y0 == y1) return;
      long twice = 2 * error;
      if (twice >= dy) {
        error += dy;
        x0 += stepX;
      }
      if (twice <= dx) {
        error += dx;
        y0 += stepY;
      }
    }
  }

  long width_, height_;
  std::vector<unsigned char> bgr_;
};

bool SamePicture(const Picture& a, const Picture& b) {
  if (a.width != b.width || a.height != b.height || a.background != b.background ||
      a.items.size() != b.items.size())
    return false;
  for (std::size_t i = 0; i < a.items.size(); ++i) {
    const PictureItem &p = a.items[i], &q = b.items[i];
    if (p.kind != q.kind || p.x0 != q.x0 || p.y0 != q.y0 || p.x1 != q.x1 || p.y1 != q.y1 || p.color != q.color)
      return false;
  }
  return true;
}

// The last rendering is kept: a screen shot of an unchanged view costs what the
// host's own costs, nothing, and the capture's benchmarks measure the capture.
std::shared_ptr<const std::vector<unsigned char>> Render(const Picture& picture, long width, long height) {
  struct Last {
    Picture picture;
    long width = -1, height = -1;
    std::shared_ptr<const std::vector<unsigned char>> bgr;
  };
  static Last last;
  if (!last.bgr || last.width != width || last.height != height || !SamePicture(last.picture, picture)) {
    last.bgr = std::make_shared<const std::vector<unsigned char>>(Rendering(picture, width, height).Pixels());
    last.picture = picture;
    last.width = width;
    last.height = height;
  }
  return last.bgr;
}

class SimImage final : public SimCounted<port::ScreenImage> {
 public:
  SimImage(const Picture& picture, long width, long height)
      : width_(width), height_(height), bgr_(Render(picture, width, height)) {}

  port::Result TAVLET_PORT_CALL Size(long* width, long* height, long* depth) override {
    *width = width_;
    *height = height_;
    *depth = 24;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL PixelAddress(long x, long y, const unsigned char** bgr) override {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return port::kInvalidArgument;
    *bgr = &(*bgr_)[(static_cast<std::size_t>(y) * width_ + x) * 3];
    return port::kOk;
  }

 private:
  long width_, height_;
  std::shared_ptr<const std::vector<unsigned char>> bgr_;
};

}  // namespace

port::Result SimHost::HasGsView(long viewportNumber, bool* exists) {
  if (port::Result r = Enter("Graphics::HasGsView")) return r;
  *exists = false;
  SimDocument* d = Find(current_);
  if (!d) return port::kOk;
  for (const ViewportDesc& v : d->content.viewports)
    if (v.number == viewportNumber && v.layout == d->content.activeLayout && v.renderMode != 0) *exists = true;
  return port::kOk;
}

port::Result SimHost::TakeScreenShot(port::ScreenImage** image) {
  *image = nullptr;
  if (port::Result r = Enter("Graphics::TakeScreenShot")) return r;
  SimDocument* d = Find(mdiActive_);
  if (!d || screenShotUnavailable_) return port::kFalse;
  *image = new SimImage(d->content.picture, viewWidth_, viewHeight_);
  return port::kOk;
}

port::Result SimHost::CopyViewWindow(port::Window view, port::ScreenImage** image) {
  *image = nullptr;
  if (port::Result r = Enter("Graphics::CopyViewWindow")) return r;
  for (const auto& d : documents_) {
    if (!d->closed && d->view == view) {
      *image = new SimImage(d->content.picture, viewWidth_, viewHeight_);
      return port::kOk;
    }
  }
  return Fail(port::kInvalidArgument, "Not a drawing view.");
}

}  // namespace tavlet::sim
