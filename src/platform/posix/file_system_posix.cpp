// The file-system port on POSIX. Windows rules are kept where the portable code
// depends on them: '\\' separates too, and a file without write permission can be
// neither replaced nor removed, as a read-only file on Windows.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "platform/file_system.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

std::string ToPosix(const std::string& path) {
  std::string out;
  out.reserve(path.size());
  for (std::size_t pos = 0; pos < path.size();) {
    std::size_t length = text::CharLength(path, pos);
    if (length == 1 && path[pos] == '\\') {
      out += '/';
    } else {
      out.append(path, pos, length);
    }
    pos += length;
  }
  return out;
}

FileError FromErrno(int error) {
  switch (error) {
    case 0:
      return FileError::None;
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
      return FileError::NotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ENOTEMPTY:
    case EEXIST:
      return FileError::AccessDenied;
    case EBUSY:
    case ETXTBSY:
      return FileError::SharingViolation;
    case EFBIG:
    case EOVERFLOW:
      return FileError::TooLarge;
    case ESPIPE:
    case EINVAL:
      return FileError::BadSeek;
    default:
      return FileError::Other;
  }
}

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int get() const { return fd_; }
  int release() { return std::exchange(fd_, -1); }

 private:
  int fd_;
};

bool IsWriteProtected(const struct stat& st) { return (st.st_mode & S_IWUSR) == 0; }

FileError WriteAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t written = ::write(fd, bytes.data(), bytes.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return FromErrno(errno);
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return FileError::None;
}

std::string TempFolder() {
  const char* folder = std::getenv("TMPDIR");
  return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

class PosixFileSystem final : public FileSystem {
 public:
  explicit PosixFileSystem(std::string windowsFolder = "") : windowsFolder_(std::move(windowsFolder)) {}

  std::string WindowsFolder() override { return windowsFolder_; }

  FileInfo Stat(const std::string& path) override {
    FileInfo info;
    struct stat st {};
    if (path.empty() || ::stat(ToPosix(path).c_str(), &st) != 0) return info;
    info.exists = true;
    info.isFolder = S_ISDIR(st.st_mode);
    info.readOnly = IsWriteProtected(st);
    info.size = info.isFolder ? 0 : static_cast<std::uint64_t>(st.st_size);
    return info;
  }

  FileError ReadFile(const std::string& path, std::string& bytes, std::uint64_t maxBytes) override {
    bytes.clear();
    Descriptor fd(::open(ToPosix(path).c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) return FromErrno(errno);
    struct stat st {};
    if (::fstat(fd.get(), &st) != 0) return FromErrno(errno);
    if (S_ISDIR(st.st_mode)) return FileError::AccessDenied;
    char buffer[65536];
    while (bytes.size() < maxBytes) {
      std::size_t want = static_cast<std::size_t>(std::min<std::uint64_t>(sizeof buffer, maxBytes - bytes.size()));
      ssize_t got = ::read(fd.get(), buffer, want);
      if (got < 0) {
        if (errno == EINTR) continue;
        bytes.clear();
        return FromErrno(errno);
      }
      if (got == 0) break;
      bytes.append(buffer, static_cast<std::size_t>(got));
    }
    return FileError::None;
  }

  FileError ReadAt(const std::string& path, std::uint64_t offset, std::size_t count, std::string& bytes) override {
    bytes.clear();
    Descriptor fd(::open(ToPosix(path).c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) return FromErrno(errno);
    if (offset > static_cast<std::uint64_t>(INT64_MAX)) return FileError::BadSeek;
    bytes.resize(count);
    std::size_t done = 0;
    while (done < count) {
      ssize_t got = ::pread(fd.get(), bytes.data() + done, count - done, static_cast<off_t>(offset + done));
      if (got < 0) {
        if (errno == EINTR) continue;
        bytes.clear();
        return FromErrno(errno);
      }
      if (got == 0) break;
      done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return done == count ? FileError::None : FileError::EndOfFile;
  }

  FileError WriteFileAtomic(const std::string& path, std::string_view bytes) override {
    std::string target = ToPosix(path);
    if (target.empty()) return FileError::NotFound;
    struct stat old {};
    bool replacing = ::stat(target.c_str(), &old) == 0;
    if (replacing && (S_ISDIR(old.st_mode) || IsWriteProtected(old))) return FileError::AccessDenied;

    std::size_t slash = target.rfind('/');
    std::string folder = slash == std::string::npos ? std::string(".") : target.substr(0, slash + 1);
    std::string temp = folder + (slash == std::string::npos ? "/" : "") + ".tavlet-XXXXXX";
    Descriptor fd(::mkostemp(temp.data(), O_CLOEXEC));
    if (fd.get() < 0) return FromErrno(errno);

    FileError error = WriteAll(fd.get(), bytes);
    if (error == FileError::None && replacing && ::fchmod(fd.get(), old.st_mode & 07777) != 0) {
      error = FromErrno(errno);
    } else if (error == FileError::None && !replacing) {
      mode_t mask = ::umask(0);
      ::umask(mask);
      ::fchmod(fd.get(), 0666 & ~mask);
    }
    // No fsync: the rename alone keeps the old file whole if the process stops
    // half-way, and flushing every small write (a workset of a thousand files is
    // a thousand writes) would cost seconds; the platform's own profile writes
    // don't flush either.
    if (::close(fd.release()) != 0 && error == FileError::None) error = FromErrno(errno);
    if (error == FileError::None && ::rename(temp.c_str(), target.c_str()) != 0) error = FromErrno(errno);
    if (error != FileError::None) ::unlink(temp.c_str());
    return error;
  }

  FileError Remove(const std::string& path) override {
    std::string target = ToPosix(path);
    struct stat st {};
    if (::lstat(target.c_str(), &st) != 0) return FromErrno(errno);
    if (S_ISDIR(st.st_mode) || IsWriteProtected(st)) return FileError::AccessDenied;
    return ::unlink(target.c_str()) == 0 ? FileError::None : FromErrno(errno);
  }

  FileError Rename(const std::string& from, const std::string& to) override {
    std::string source = ToPosix(from);
    std::string target = ToPosix(to);
    struct stat st {};
    if (::stat(source.c_str(), &st) != 0) return FromErrno(errno);
    if (::stat(target.c_str(), &st) == 0 && (S_ISDIR(st.st_mode) || IsWriteProtected(st)) && source != target) {
      return FileError::AccessDenied;
    }
    return ::rename(source.c_str(), target.c_str()) == 0 ? FileError::None : FromErrno(errno);
  }

  FileError CreateFolders(const std::string& path) override {
    std::string target = ToPosix(path);
    if (target.empty()) return FileError::NotFound;
    for (std::size_t pos = 1; pos <= target.size(); ++pos) {
      if (pos < target.size() && target[pos] != '/') continue;
      std::string level = target.substr(0, pos);
      if (::mkdir(level.c_str(), 0777) == 0) continue;
      if (errno != EEXIST) return FromErrno(errno);
      struct stat st {};
      if (::stat(level.c_str(), &st) != 0) return FromErrno(errno);
      if (!S_ISDIR(st.st_mode)) return FileError::AccessDenied;
    }
    return FileError::None;
  }

  std::string CreateTempFile(std::string_view prefix) override {
    std::string path = TempFolder() + "/" + std::string(prefix.substr(0, 3)) + "XXXXXX.tmp";
    int fd = ::mkostemps(path.data(), 4, O_CLOEXEC);
    if (fd < 0) return {};
    ::close(fd);
    return path;
  }

  FileError ListFolder(const std::string& path, std::vector<std::string>& names) override {
    names.clear();
    DIR* dir = ::opendir(ToPosix(path).c_str());
    if (dir == nullptr) return FromErrno(errno);
    while (const dirent* entry = ::readdir(dir)) {
      std::string name = entry->d_name;
      if (name != "." && name != "..") names.push_back(std::move(name));
    }
    ::closedir(dir);
    std::sort(names.begin(), names.end());
    return FileError::None;
  }

 private:
  std::string windowsFolder_;
};

}  // namespace

FileSystem& NativeFileSystem() {
  static PosixFileSystem fileSystem;
  return fileSystem;
}

std::unique_ptr<FileSystem> MakeNativeFileSystem(std::string windowsFolder) {
  return std::make_unique<PosixFileSystem>(std::move(windowsFolder));
}

}  // namespace tavlet
