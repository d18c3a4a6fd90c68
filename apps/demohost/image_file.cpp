#include "image_file.h"

#include <array>
#include <cstdio>
#include <memory>

#include "platform/win32/handles.h"

namespace tavlet::demo {

namespace {

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

void Put32(std::vector<std::uint8_t>& out, std::uint32_t v) {
  out.push_back(static_cast<std::uint8_t>(v >> 24));
  out.push_back(static_cast<std::uint8_t>(v >> 16));
  out.push_back(static_cast<std::uint8_t>(v >> 8));
  out.push_back(static_cast<std::uint8_t>(v));
}

std::uint32_t Crc32(const std::uint8_t* data, std::size_t size, std::uint32_t crc = 0) {
  static const auto table = [] {
    std::array<std::uint32_t, 256> t{};
    for (std::uint32_t n = 0; n < 256; ++n) {
      std::uint32_t c = n;
      for (int k = 0; k < 8; ++k) c = c & 1 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
      t[n] = c;
    }
    return t;
  }();
  crc = ~crc;
  for (std::size_t i = 0; i < size; ++i) crc = table[(crc ^ data[i]) & 0xFF] ^ (crc >> 8);
  return ~crc;
}

void Chunk(std::vector<std::uint8_t>& png, const char* type, const std::vector<std::uint8_t>& data) {
  Put32(png, static_cast<std::uint32_t>(data.size()));
  const std::size_t start = png.size();
  png.insert(png.end(), type, type + 4);
  png.insert(png.end(), data.begin(), data.end());
  Put32(png, Crc32(png.data() + start, png.size() - start));
}

// A zlib stream of stored (uncompressed) blocks: screenshots stay exact and
// the writer needs no compression library.
std::vector<std::uint8_t> StoredZlib(const std::vector<std::uint8_t>& raw) {
  std::vector<std::uint8_t> out{0x78, 0x01};
  std::size_t offset = 0;
  do {
    const std::size_t size = std::min<std::size_t>(65535, raw.size() - offset);
    const bool last = offset + size == raw.size();
    out.push_back(last ? 1 : 0);
    out.push_back(static_cast<std::uint8_t>(size));
    out.push_back(static_cast<std::uint8_t>(size >> 8));
    out.push_back(static_cast<std::uint8_t>(~size));
    out.push_back(static_cast<std::uint8_t>(~size >> 8));
    out.insert(out.end(), raw.begin() + static_cast<std::ptrdiff_t>(offset),
               raw.begin() + static_cast<std::ptrdiff_t>(offset + size));
    offset += size;
  } while (offset < raw.size());
  std::uint32_t a = 1, b = 0;
  for (std::uint8_t byte : raw) {
    a = (a + byte) % 65521;
    b = (b + a) % 65521;
  }
  Put32(out, (b << 16) | a);
  return out;
}

bool EndsWith(const std::string& text, const char* suffix) {
  const std::string s(suffix);
  if (text.size() < s.size()) return false;
  for (std::size_t i = 0; i < s.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(text[text.size() - s.size() + i])) != s[i]) return false;
  return true;
}

}  // namespace

std::uint32_t Picture::At(int x, int y) const {
  if (x < 0 || y < 0 || x >= width || y >= height) return 0;
  const std::uint8_t* p = &rgb[(static_cast<std::size_t>(y) * width + x) * 3];
  return (std::uint32_t{p[0]} << 16) | (std::uint32_t{p[1]} << 8) | p[2];
}

Picture CaptureWindow(HWND window) {
  RECT r{};
  if (!GetWindowRect(window, &r)) return {};
  return CaptureRect(r);
}

Picture CaptureRect(const RECT& r) {
  Picture picture;
  const int width = r.right - r.left, height = r.bottom - r.top;
  if (width <= 0 || height <= 0) return picture;
  win32::ScreenDc screen;
  win32::MemoryDc memory(CreateCompatibleDC(screen.get()));
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  win32::GdiObject<HBITMAP> bitmap(CreateDIBSection(screen.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!bitmap.valid() || !bits) return picture;
  {
    win32::SelectedObject selected(memory.get(), bitmap.get());
    BitBlt(memory.get(), 0, 0, width, height, screen.get(), r.left, r.top, SRCCOPY);
  }
  GdiFlush();
  picture.width = width;
  picture.height = height;
  picture.rgb.resize(static_cast<std::size_t>(width) * height * 3);
  const auto* source = static_cast<const std::uint8_t*>(bits);
  for (std::size_t i = 0; i < static_cast<std::size_t>(width) * height; ++i) {
    picture.rgb[i * 3] = source[i * 4 + 2];
    picture.rgb[i * 3 + 1] = source[i * 4 + 1];
    picture.rgb[i * 3 + 2] = source[i * 4];
  }
  return picture;
}

bool WritePicture(const Picture& picture, const std::string& path, std::string& error) {
  if (picture.width <= 0 || picture.height <= 0) {
    error = "nothing was captured";
    return false;
  }
  std::vector<std::uint8_t> out;
  const std::size_t w = static_cast<std::size_t>(picture.width), h = static_cast<std::size_t>(picture.height);
  if (EndsWith(path, ".png")) {
    out = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<std::uint8_t> header;
    Put32(header, static_cast<std::uint32_t>(w));
    Put32(header, static_cast<std::uint32_t>(h));
    header.insert(header.end(), {8, 2, 0, 0, 0});  // 8-bit RGB
    Chunk(out, "IHDR", header);
    std::vector<std::uint8_t> raw;
    raw.reserve(h * (w * 3 + 1));
    for (std::size_t y = 0; y < h; ++y) {
      raw.push_back(0);
      raw.insert(raw.end(), picture.rgb.begin() + static_cast<std::ptrdiff_t>(y * w * 3),
                 picture.rgb.begin() + static_cast<std::ptrdiff_t>((y + 1) * w * 3));
    }
    Chunk(out, "IDAT", StoredZlib(raw));
    Chunk(out, "IEND", {});
  } else if (EndsWith(path, ".bmp")) {
    const std::size_t stride = (w * 3 + 3) & ~std::size_t{3};
    BITMAPFILEHEADER file{};
    BITMAPINFOHEADER info{};
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof file + sizeof info;
    file.bfSize = static_cast<DWORD>(file.bfOffBits + stride * h);
    info.biSize = sizeof info;
    info.biWidth = static_cast<LONG>(w);
    info.biHeight = static_cast<LONG>(h);
    info.biPlanes = 1;
    info.biBitCount = 24;
    info.biCompression = BI_RGB;
    const auto* f = reinterpret_cast<const std::uint8_t*>(&file);
    const auto* i = reinterpret_cast<const std::uint8_t*>(&info);
    out.insert(out.end(), f, f + sizeof file);
    out.insert(out.end(), i, i + sizeof info);
    for (std::size_t y = h; y-- > 0;) {
      for (std::size_t x = 0; x < w; ++x) {
        const std::uint8_t* p = &picture.rgb[(y * w + x) * 3];
        out.insert(out.end(), {p[2], p[1], p[0]});
      }
      out.resize(out.size() + stride - w * 3, 0);
    }
  } else {
    error = "a screenshot must be named .png or .bmp: " + path;
    return false;
  }
  File file(std::fopen(path.c_str(), "wb"));
  if (!file || std::fwrite(out.data(), 1, out.size(), file.get()) != out.size()) {
    error = "cannot write " + path;
    return false;
  }
  return true;
}

bool ReadBmp(const std::string& path, Picture& picture) {
  File file(std::fopen(path.c_str(), "rb"));
  if (!file) return false;
  BITMAPFILEHEADER header{};
  BITMAPINFOHEADER info{};
  if (std::fread(&header, sizeof header, 1, file.get()) != 1 || std::fread(&info, sizeof info, 1, file.get()) != 1 ||
      header.bfType != 0x4D42 || info.biBitCount != 24 || info.biWidth <= 0 || info.biHeight <= 0)
    return false;
  const std::size_t w = static_cast<std::size_t>(info.biWidth), h = static_cast<std::size_t>(info.biHeight);
  const std::size_t stride = (w * 3 + 3) & ~std::size_t{3};
  std::vector<std::uint8_t> row(stride);
  picture.width = info.biWidth;
  picture.height = info.biHeight;
  picture.rgb.assign(w * h * 3, 0);
  std::fseek(file.get(), static_cast<long>(header.bfOffBits), SEEK_SET);
  for (std::size_t y = h; y-- > 0;) {
    if (std::fread(row.data(), 1, stride, file.get()) != stride) return false;
    for (std::size_t x = 0; x < w; ++x) {
      std::uint8_t* p = &picture.rgb[(y * w + x) * 3];
      p[0] = row[x * 3 + 2];
      p[1] = row[x * 3 + 1];
      p[2] = row[x * 3];
    }
  }
  return true;
}

}  // namespace tavlet::demo
