#include "transfer/local_files.h"

#include <cstdio>

#include "platform/file_system.h"

namespace tavlet::transfer {
namespace {

class StdioFile final : public LocalFile {
 public:
  explicit StdioFile(std::FILE* file) : file_(file) {}
  ~StdioFile() override {
    if (file_ != nullptr) std::fclose(file_);
  }
  StdioFile(const StdioFile&) = delete;
  StdioFile& operator=(const StdioFile&) = delete;

  bool Read(char* buffer, std::size_t capacity, std::size_t& got) override {
    got = std::fread(buffer, 1, capacity, file_);
    return got > 0 || !std::ferror(file_);
  }
  bool Write(const char* data, std::size_t size) override {
    return std::fwrite(data, 1, size, file_) == size;
  }
  bool Close() override {
    const bool ok = std::fflush(file_) == 0 && !std::ferror(file_);
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    return ok && closed;
  }

 private:
  std::FILE* file_;
};

class NativeFiles final : public LocalFiles {
 public:
  std::unique_ptr<LocalFile> OpenRead(const std::string& path) override { return Open(path, "rb"); }
  std::unique_ptr<LocalFile> Create(const std::string& path) override { return Open(path, "wb"); }
  bool Exists(const std::string& path) override { return NativeFileSystem().Stat(path).exists; }
  bool Remove(const std::string& path) override {
    return NativeFileSystem().Remove(path) == FileError::None;
  }
  bool Rename(const std::string& from, const std::string& to) override {
    return NativeFileSystem().Rename(from, to) == FileError::None;
  }

 private:
  static std::unique_ptr<LocalFile> Open(const std::string& path, const char* mode) {
    std::FILE* file = std::fopen(path.c_str(), mode);
    if (file == nullptr) return nullptr;
    // The client hands over whole blocks; the runtime's own buffer would only copy them.
    std::setvbuf(file, nullptr, _IONBF, 0);
    return std::make_unique<StdioFile>(file);
  }
};

}  // namespace

LocalFiles& NativeLocalFiles() {
  static NativeFiles files;
  return files;
}

}  // namespace tavlet::transfer
