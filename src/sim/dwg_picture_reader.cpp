#include "sim/dwg_picture_reader.h"

#include "previews/dwg_thumbnail.h"
#include "previews/raster/dib_pixels.h"
#include "previews/raster/raster.h"

namespace tavlet::sim {

bool ReadDwgPicture(FileSystem& fs, const std::string& path, ThumbnailPixels& out) {
  DwgThumbnail thumbnail(fs);
  thumbnail.Load(path, true);
  if (!thumbnail.HasDib()) return false;
  const DibView dib = thumbnail.Dib();
  if (dib.width <= 0 || dib.height <= 0) return false;
  std::vector<unsigned char> rgb(static_cast<std::size_t>(dib.width) * static_cast<std::size_t>(dib.height) * 3);
  if (raster::DibToRgb(dib.data, dib.size, rgb.data()) != raster::kOk) return false;
  out.width = dib.width;
  out.height = dib.height;
  out.rgb = std::move(rgb);
  return true;
}

}  // namespace tavlet::sim
