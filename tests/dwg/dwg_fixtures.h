// Shared by the drawing tests: a file system that counts what is read through
// it, and a canvas that records what a paint asked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "previews/dwg_paint.h"

namespace tavlet::testing {

class CountingFileSystem : public FileSystem {
 public:
  explicit CountingFileSystem(FileSystem& inner) : inner_(inner) {}
  std::uint64_t bytesRead = 0;
  int readCalls = 0;

  FileInfo Stat(const std::string& path) override { return inner_.Stat(path); }
  FileError ReadFile(const std::string& path, std::string& bytes, std::uint64_t maxBytes) override {
    FileError e = inner_.ReadFile(path, bytes, maxBytes);
    bytesRead += bytes.size();
    ++readCalls;
    return e;
  }
  FileError ReadAt(const std::string& path, std::uint64_t offset, std::size_t count, std::string& bytes) override {
    FileError e = inner_.ReadAt(path, offset, count, bytes);
    bytesRead += bytes.size();
    ++readCalls;
    return e;
  }
  FileError WriteFileAtomic(const std::string& path, std::string_view bytes) override {
    return inner_.WriteFileAtomic(path, bytes);
  }
  FileError Remove(const std::string& path) override { return inner_.Remove(path); }
  FileError Rename(const std::string& from, const std::string& to) override { return inner_.Rename(from, to); }
  FileError CreateFolders(const std::string& path) override { return inner_.CreateFolders(path); }
  std::string CreateTempFile(std::string_view prefix) override { return inner_.CreateTempFile(prefix); }
  FileError ListFolder(const std::string& path, std::vector<std::string>& names) override {
    return inner_.ListFolder(path, names);
  }

 private:
  FileSystem& inner_;
};

struct CanvasCall {
  std::string what;  // "save", "restore", "fill", "text", "dib"
  PreviewRect rect;
  std::uint32_t color = 0;
  std::uint32_t backColor = 0;
  std::string text;
  StretchMode mode = StretchMode::ColorOnColor;
  int imageWidth = 0;
  int imageHeight = 0;
};

inline CanvasCall Call(const char* what, const PreviewRect& rect = {}) {
  CanvasCall c;
  c.what = what;
  c.rect = rect;
  return c;
}

class RecordingCanvas : public ThumbnailCanvas {
 public:
  int textHeight = 12;
  std::vector<CanvasCall> calls;

  void SaveState() override { calls.push_back(Call("save")); }
  void RestoreState() override { calls.push_back(Call("restore")); }
  void FillRect(const PreviewRect& rect, std::uint32_t color) override {
    CanvasCall c = Call("fill", rect);
    c.color = color;
    calls.push_back(c);
  }
  int TextHeight(std::string_view) override { return textHeight; }
  void DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t textColor,
                    std::uint32_t backColor) override {
    CanvasCall c = Call("text", band);
    c.color = textColor;
    c.backColor = backColor;
    c.text = std::string(line);
    calls.push_back(c);
  }
  void DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode mode) override {
    CanvasCall c = Call("dib", dest);
    c.mode = mode;
    c.imageWidth = dib.width;
    c.imageHeight = dib.height;
    calls.push_back(c);
  }

  std::vector<CanvasCall> Of(const std::string& what) const {
    std::vector<CanvasCall> out;
    for (const CanvasCall& c : calls) {
      if (c.what == what) out.push_back(c);
    }
    return out;
  }
};

}  // namespace tavlet::testing
