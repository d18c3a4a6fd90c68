// The file-system port on Win32, through the ANSI calls so that code-page 936 names
// reach the disk byte for byte.
#include <windows.h>

#include <algorithm>
#include <utility>

#include "platform/file_system.h"
#include "platform/win32/handles.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

FileError FromLastError(DWORD error = GetLastError()) {
  switch (error) {
    case ERROR_SUCCESS:
      return FileError::None;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
    case ERROR_FILENAME_EXCED_RANGE:
      return FileError::NotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
      return FileError::AccessDenied;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      return FileError::SharingViolation;
    case ERROR_HANDLE_EOF:
      return FileError::EndOfFile;
    case ERROR_NEGATIVE_SEEK:
    case ERROR_SEEK:
      return FileError::BadSeek;
    case ERROR_FILE_TOO_LARGE:
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return FileError::TooLarge;
    default:
      return FileError::Other;
  }
}

// Offset of the last separator character, by character so that a trail byte 0x5C
// is not taken for one; npos when there is none.
std::size_t LastSeparator(const std::string& path) {
  std::size_t found = std::string::npos;
  for (std::size_t pos = 0; pos < path.size(); pos += text::CharLength(path, pos)) {
    if (text::CharLength(path, pos) == 1 && (path[pos] == '\\' || path[pos] == '/')) found = pos;
  }
  return found;
}

// Delete sharing too: a file that another handle holds with delete-on-close (or any
// holder that asked for DELETE access) is still readable, as the platform reads it.
win32::KernelHandle OpenForReading(const std::string& path) {
  return win32::KernelHandle(CreateFileA(path.c_str(), GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                         nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

FileError WriteAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    DWORD chunk = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1u << 20));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), chunk, &written, nullptr) || written == 0) return FromLastError();
    bytes.remove_prefix(written);
  }
  return FileError::None;
}

// The rewrite in place of a file that can't be replaced because another process holds
// it open (without delete sharing, which a rename over it needs). The platform's own
// profile writes open such a file and rewrite it, so they succeed; so must we. The
// new content is already whole in `temp` beside the file, and that copy stays until
// the rewrite is complete: if the process dies half-way, the file may be part new and
// part old, but never cut short or empty (the old bytes are overwritten from the
// start and the end is cut last), and `temp`, an "MV_*.tmp" beside it, holds the
// whole new content to recover from. Both are flushed, the copy before the file is
// touched and the file before the copy goes, so that this holds across a crash of
// the machine too; the path is rare, its cost doesn't matter.
FileError RewriteInPlace(const std::string& path, const char* temp, std::string_view bytes) {
  win32::KernelHandle file(CreateFileA(path.c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) {
    // Nothing was touched (the holder doesn't share writing, say): the copy is of no use.
    const FileError error = FromLastError();
    DeleteFileA(temp);
    return error;
  }
  {
    win32::KernelHandle copy(CreateFileA(temp, GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!copy.valid() || !FlushFileBuffers(copy.get())) {
      const FileError error = FromLastError();
      DeleteFileA(temp);
      return error;
    }
  }
  FileError error = WriteAll(file.get(), bytes);
  if (error == FileError::None && !SetEndOfFile(file.get())) error = FromLastError();
  if (error == FileError::None && !FlushFileBuffers(file.get())) error = FromLastError();
  if (!file.Close() && error == FileError::None) error = FromLastError();
  if (error == FileError::None) DeleteFileA(temp);
  return error;
}

FileError ReadSome(HANDLE file, std::string& bytes, std::uint64_t wanted) {
  char buffer[65536];
  while (wanted > 0) {
    DWORD chunk = static_cast<DWORD>(std::min<std::uint64_t>(sizeof buffer, wanted));
    DWORD got = 0;
    if (!::ReadFile(file, buffer, chunk, &got, nullptr)) return FromLastError();
    if (got == 0) break;
    bytes.append(buffer, got);
    wanted -= got;
  }
  return FileError::None;
}

class Win32FileSystem final : public FileSystem {
 public:
  // An empty `windowsFolder` is the system's own.
  explicit Win32FileSystem(std::string windowsFolder = "") : windowsFolder_(std::move(windowsFolder)) {}

  std::string WindowsFolder() override {
    if (!windowsFolder_.empty()) return windowsFolder_;
    char folder[MAX_PATH + 1] = {};
    const UINT length = GetWindowsDirectoryA(folder, sizeof folder);
    return length == 0 || length > MAX_PATH ? std::string() : std::string(folder, length);
  }

  FileInfo Stat(const std::string& path) override {
    FileInfo info;
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (path.empty() || !GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return info;
    info.exists = true;
    info.isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    info.readOnly = (data.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
    info.size = info.isFolder ? 0 : (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
    return info;
  }

  FileError ReadFile(const std::string& path, std::string& bytes, std::uint64_t maxBytes) override {
    bytes.clear();
    win32::KernelHandle file = OpenForReading(path);
    if (!file.valid()) return FromLastError();
    FileError error = ReadSome(file.get(), bytes, maxBytes);
    if (error != FileError::None) bytes.clear();
    return error;
  }

  FileError ReadAt(const std::string& path, std::uint64_t offset, std::size_t count, std::string& bytes) override {
    bytes.clear();
    win32::KernelHandle file = OpenForReading(path);
    if (!file.valid()) return FromLastError();
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<LONGLONG>(offset);
    if (offset > static_cast<std::uint64_t>(INT64_MAX) || !SetFilePointerEx(file.get(), distance, nullptr, FILE_BEGIN)) {
      return FileError::BadSeek;
    }
    FileError error = ReadSome(file.get(), bytes, count);
    if (error != FileError::None) {
      bytes.clear();
      return error;
    }
    return bytes.size() == count ? FileError::None : FileError::EndOfFile;
  }

  FileError WriteFileAtomic(const std::string& path, std::string_view bytes) override {
    if (path.empty()) return FileError::NotFound;
    DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY)) != 0) {
      return FileError::AccessDenied;
    }
    std::size_t separator = LastSeparator(path);
    std::string folder = separator == std::string::npos ? std::string(".") : path.substr(0, separator + 1);
    char temp[MAX_PATH + 16] = {};
    if (folder.size() > MAX_PATH - 14 || GetTempFileNameA(folder.c_str(), "MV_", 0, temp) == 0) {
      return FromLastError();
    }

    FileError error = FileError::None;
    {
      win32::KernelHandle file(CreateFileA(temp, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                           FILE_ATTRIBUTE_NORMAL, nullptr));
      error = file.valid() ? WriteAll(file.get(), bytes) : FromLastError();
      // No FlushFileBuffers, for the reason the POSIX version gives.
      if (!file.Close() && error == FileError::None) error = FromLastError();
    }
    if (error == FileError::None &&
        !MoveFileExA(temp, path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
      const DWORD moveError = GetLastError();
      // Held open by someone else: the read-only and folder cases were refused above.
      const bool held = (moveError == ERROR_SHARING_VIOLATION || moveError == ERROR_ACCESS_DENIED) &&
                        attributes != INVALID_FILE_ATTRIBUTES;
      if (held) return RewriteInPlace(path, temp, bytes);
      error = FromLastError(moveError);
    }
    if (error != FileError::None) DeleteFileA(temp);
    return error;
  }

  FileError Remove(const std::string& path) override {
    return DeleteFileA(path.c_str()) ? FileError::None : FromLastError();
  }

  FileError Rename(const std::string& from, const std::string& to) override {
    // Windows refuses to replace a read-only file; Wine does not, so ask first.
    DWORD target = GetFileAttributesA(to.c_str());
    if (target != INVALID_FILE_ATTRIBUTES && (target & FILE_ATTRIBUTE_READONLY) != 0 &&
        GetFileAttributesA(from.c_str()) != INVALID_FILE_ATTRIBUTES) {
      return FileError::AccessDenied;
    }
    return MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) ? FileError::None : FromLastError();
  }

  FileError CreateFolders(const std::string& path) override {
    if (path.empty()) return FileError::NotFound;
    for (std::size_t pos = 0; pos <= path.size(); pos += pos < path.size() ? text::CharLength(path, pos) : 1) {
      bool atSeparator = pos < path.size() && text::CharLength(path, pos) == 1 && (path[pos] == '\\' || path[pos] == '/');
      if (!atSeparator && pos != path.size()) continue;
      std::string level = path.substr(0, pos);
      // Nothing to make for "", "C:" or the "\\server\share" prefix.
      if (level.empty() || level.back() == ':' || level.back() == '\\' || level.back() == '/') continue;
      if (CreateDirectoryA(level.c_str(), nullptr)) continue;
      DWORD error = GetLastError();
      DWORD attributes = GetFileAttributesA(level.c_str());
      if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY)) continue;
      if (pos < path.size() && level.rfind("\\\\", 0) == 0) continue;  // still inside a UNC prefix
      return error == ERROR_ALREADY_EXISTS ? FileError::AccessDenied : FromLastError(error);
    }
    return FileError::None;
  }

  std::string CreateTempFile(std::string_view prefix) override {
    char folder[MAX_PATH + 1] = {};
    DWORD length = GetTempPathA(sizeof folder, folder);
    if (length == 0 || length > MAX_PATH) return {};
    std::string shortPrefix(prefix.substr(0, 3));
    char path[MAX_PATH + 16] = {};
    if (GetTempFileNameA(folder, shortPrefix.c_str(), 0, path) == 0) return {};
    return path;
  }

  FileError ListFolder(const std::string& path, std::vector<std::string>& names) override {
    names.clear();
    std::string pattern = path;
    if (!pattern.empty() && LastSeparator(pattern) + 1 != pattern.size()) pattern += '\\';
    pattern += '*';
    WIN32_FIND_DATAA data{};
    win32::FindHandle find(FindFirstFileA(pattern.c_str(), &data));
    if (!find.valid()) {
      DWORD error = GetLastError();
      // An existing but empty folder still lists "." and ".."; only a drive root can
      // come back with no entry at all.
      return error == ERROR_FILE_NOT_FOUND ? FileError::None : FromLastError(error);
    }
    do {
      std::string name = data.cFileName;
      if (name != "." && name != "..") names.push_back(std::move(name));
    } while (FindNextFileA(find.get(), &data));
    std::sort(names.begin(), names.end());
    return FileError::None;
  }

 private:
  std::string windowsFolder_;
};

}  // namespace

FileSystem& NativeFileSystem() {
  static Win32FileSystem fileSystem;
  return fileSystem;
}

std::unique_ptr<FileSystem> MakeNativeFileSystem(std::string windowsFolder) {
  return std::make_unique<Win32FileSystem>(std::move(windowsFolder));
}

}  // namespace tavlet
