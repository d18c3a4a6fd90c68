// The file operations the portable code needs, behind one interface so that the
// same logic runs on POSIX, on Win32 (through the ANSI calls, so code-page 936
// names reach the disk unchanged) and in memory for tests. Paths are code-page
// 936 strings; either separator is accepted.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavlet {

// Why an operation failed; the readers map these to their own user-facing texts.
enum class FileError {
  None,
  NotFound,
  AccessDenied,
  SharingViolation,
  EndOfFile,
  BadSeek,
  TooLarge,
  Other,
};

struct FileInfo {
  bool exists = false;
  bool isFolder = false;
  bool readOnly = false;
  std::uint64_t size = 0;
};

class FileSystem {
 public:
  virtual ~FileSystem() = default;

  virtual FileInfo Stat(const std::string& path) = 0;

  // Reads at most `maxBytes` (the whole file when it is smaller).
  virtual FileError ReadFile(const std::string& path, std::string& bytes,
                             std::uint64_t maxBytes = UINT64_MAX) = 0;
  // Reads exactly `count` bytes at `offset`; a short read is EndOfFile.
  virtual FileError ReadAt(const std::string& path, std::uint64_t offset, std::size_t count,
                           std::string& bytes) = 0;

  // Writes a temporary file beside `path`, then renames it over `path`, so that a
  // failed write leaves the old file whole. Where the platform refuses to replace a
  // file that another process holds open (Win32), the file is rewritten in place
  // instead, and the temporary file stays beside it, whole, until that is done.
  virtual FileError WriteFileAtomic(const std::string& path, std::string_view bytes) = 0;

  virtual FileError Remove(const std::string& path) = 0;
  virtual FileError Rename(const std::string& from, const std::string& to) = 0;  // replaces `to`
  virtual FileError CreateFolders(const std::string& path) = 0;  // every missing level

  // A new, empty, uniquely named file in the temporary folder, named from `prefix`
  // (GetTempFileNameA's rules on Windows). Empty on failure.
  virtual std::string CreateTempFile(std::string_view prefix) = 0;

  // Names (not paths) of the entries of a folder, "." and ".." left out.
  virtual FileError ListFolder(const std::string& path, std::vector<std::string>& names) = 0;

  // The folder where a profile file named without a folder lives: GetWindowsDirectoryA
  // on Win32. POSIX has none unless the port is made with one; "" then.
  virtual std::string WindowsFolder() = 0;
};

// The process's real file system (POSIX or Win32 build).
FileSystem& NativeFileSystem();
// The real file system with another Windows folder, for tests of the rules that
// depend on it.
std::unique_ptr<FileSystem> MakeNativeFileSystem(std::string windowsFolder);

}  // namespace tavlet
