// A file name in pieces, as the bar keeps it for every drawing, reference and
// workset member, and the parser of the stored text form "path" or "path,flag".
#pragma once

#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace tavlet {

// _splitpath's pieces, with its size limits (buffers of 3, 260, 256 and 256 bytes,
// so at most 2, 259, 255 and 255 bytes are kept; a longer piece is cut at the byte).
struct PathParts {
  std::string drive;      // "C:" when the second byte is ':'
  std::string directory;  // up to and with the last '\\' or '/', e.g. "\\a\\"
  std::string name;       // between the directory and the last '.'
  std::string extension;  // from the last '.' on, e.g. ".dwg"
};

inline constexpr std::size_t kMaxDrive = 3;
inline constexpr std::size_t kMaxDirectory = 260;
inline constexpr std::size_t kMaxName = 256;
inline constexpr std::size_t kMaxExtension = 256;

// _splitpath for code page 936: a trail byte equal to '\\' or '.' is no separator.
PathParts SplitPath(std::string_view path);

// Doubles every '\\' character (not a trail byte that happens to be 0x5C), for a
// path that goes into a command string.
std::string DoubleBackslashes(std::string_view text);

class DrawingPath {
 public:
  explicit DrawingPath(FileSystem& fileSystem = NativeFileSystem());
  explicit DrawingPath(std::string_view path, FileSystem& fileSystem = NativeFileSystem());

  // Looks the name up on disk (unless it is empty), gives a folder a trailing '\\'
  // and splits the result. `readOnly` is left as it is.
  void Set(std::string_view path);

  // The reads. `doubled` doubles every backslash of the result.
  std::string GetFull(bool doubled = false) const;
  std::string GetName(bool doubled = false) const;       // name and extension: "b.dwg"
  std::string GetExtension(bool doubled = false) const;  // ".dwg"
  std::string GetTitle(bool doubled = false) const;      // name without extension: "b"
  std::string GetDrive(bool doubled = false) const;      // "C:"
  std::string GetDirectory(bool doubled = false) const;  // "\\a\\"
  // Drive and directory: "C:\\a\\", or "C:\\a" without the trailing backslash.
  std::string GetFolder(bool withoutTrailingBackslash = false, bool doubled = false) const;

  bool Exists = false;    // found on disk when it was set
  bool IsFolder = false;  // names a folder; Full then ends in '\\'
  std::string Full;       // the path as given (plus a folder's '\\')
  std::string Drive;
  std::string Folder;     // _splitpath's directory
  std::string Name;       // file name without extension
  std::string Extension;  // with its dot
  bool readOnly = false;  // open read-only; set by ParseRecentEntry

 private:
  FileSystem* fileSystem_;
};

// Turns "path" or "path,flag" into a DrawingPath: the text is cut at every ',' and
// each piece trimmed; with one piece the path is the whole untrimmed text; else the
// last piece is the read-only flag (atoi == 1) and the other pieces, joined with ',',
// are the path.
DrawingPath ParseRecentEntry(std::string_view text, FileSystem& fileSystem = NativeFileSystem());

}  // namespace tavlet
