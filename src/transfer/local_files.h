// Local files as the transfer client streams them: opened, read or written a
// block at a time, never held whole. Paths are passed to the C runtime as they
// are (code page 936 on Windows); the real implementation removes and renames
// through the file-system port, so a rename replaces its target there too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace tavlet::transfer {

class LocalFile {
 public:
  virtual ~LocalFile() = default;
  // `got` 0 means the end of the file.
  virtual bool Read(char* buffer, std::size_t capacity, std::size_t& got) = 0;
  virtual bool Write(const char* data, std::size_t size) = 0;
  // Flushes and closes; false when the data did not all reach the disk.
  virtual bool Close() = 0;
};

class LocalFiles {
 public:
  virtual ~LocalFiles() = default;
  virtual std::unique_ptr<LocalFile> OpenRead(const std::string& path) = 0;
  // A new file, or the old one emptied.
  virtual std::unique_ptr<LocalFile> Create(const std::string& path) = 0;
  virtual bool Exists(const std::string& path) = 0;
  virtual bool Remove(const std::string& path) = 0;
  virtual bool Rename(const std::string& from, const std::string& to) = 0;  // replaces `to`
};

LocalFiles& NativeLocalFiles();

}  // namespace tavlet::transfer
