#include "operations/drawing_path.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "text/codepage.h"

namespace tavlet {
namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

// Whether the last character (not the last byte) of `s` is `c`.
bool EndsWithChar(std::string_view s, char c) {
  std::size_t last = std::string_view::npos;
  for (std::size_t pos = 0; pos < s.size(); pos += text::CharLength(s, pos)) last = pos;
  return last != std::string_view::npos && text::CharLength(s, last) == 1 && s[last] == c;
}

bool EndsWithSeparator(std::string_view s) { return EndsWithChar(s, '\\') || EndsWithChar(s, '/'); }

std::string Cut(std::string_view s, std::size_t bufferSize) {
  return std::string(s.substr(0, std::min(s.size(), bufferSize - 1)));
}

std::string Maybe(std::string text, bool doubled) {
  return doubled ? DoubleBackslashes(text) : text;
}

std::string_view Trim(std::string_view s) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f";
  std::size_t first = s.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  std::size_t last = s.find_last_not_of(kBlanks);
  return s.substr(first, last - first + 1);
}

// atoi as the runtime the host was built with does it: blanks, a sign, then digits
// summed in 32 bits with wrap-around (no clamping, and no undefined overflow here).
int RuntimeAtoi(std::string_view s) {
  std::size_t pos = 0;
  while (pos < s.size() && (s[pos] == ' ' || (s[pos] >= '\t' && s[pos] <= '\r'))) ++pos;
  bool negative = false;
  if (pos < s.size() && (s[pos] == '-' || s[pos] == '+')) negative = s[pos++] == '-';
  std::uint32_t total = 0;
  for (; pos < s.size() && s[pos] >= '0' && s[pos] <= '9'; ++pos) {
    total = total * 10u + static_cast<std::uint32_t>(s[pos] - '0');
  }
  if (negative) total = 0u - total;
  return static_cast<int>(total);
}

}  // namespace

PathParts SplitPath(std::string_view path) {
  // The runtime reads a C string: anything after a NUL is not part of the path.
  path = path.substr(0, std::min(path.size(), path.find('\0')));
  PathParts parts;
  if (path.size() >= kMaxDrive - 1 && path[1] == ':') {
    parts.drive = path.substr(0, kMaxDrive - 1);
    path.remove_prefix(kMaxDrive - 1);
  }

  std::size_t afterLastSeparator = std::string_view::npos;
  std::size_t lastDot = std::string_view::npos;
  for (std::size_t pos = 0; pos < path.size(); pos += text::CharLength(path, pos)) {
    if (text::CharLength(path, pos) == 2) continue;
    if (IsSeparator(path[pos])) {
      afterLastSeparator = pos + 1;
    } else if (path[pos] == '.') {
      lastDot = pos;
    }
  }

  if (afterLastSeparator != std::string_view::npos) {
    parts.directory = Cut(path.substr(0, afterLastSeparator), kMaxDirectory);
    path.remove_prefix(afterLastSeparator);
    lastDot = lastDot != std::string_view::npos && lastDot >= afterLastSeparator
                  ? lastDot - afterLastSeparator
                  : std::string_view::npos;
  }

  if (lastDot != std::string_view::npos) {
    parts.name = Cut(path.substr(0, lastDot), kMaxName);
    parts.extension = Cut(path.substr(lastDot), kMaxExtension);
  } else {
    parts.name = Cut(path, kMaxName);
  }
  return parts;
}

std::string DoubleBackslashes(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 8);
  for (std::size_t pos = 0; pos < text.size();) {
    std::size_t length = text::CharLength(text, pos);
    out.append(text, pos, length);
    if (length == 1 && text[pos] == '\\') out += '\\';
    pos += length;
  }
  return out;
}

DrawingPath::DrawingPath(FileSystem& fileSystem) : fileSystem_(&fileSystem) {}

DrawingPath::DrawingPath(std::string_view path, FileSystem& fileSystem) : fileSystem_(&fileSystem) {
  Set(path);
}

void DrawingPath::Set(std::string_view path) {
  Full = std::string(path);
  Exists = false;
  IsFolder = false;
  // A name that ends in a separator is never found: the platform's file search
  // refuses such a pattern, so "C:\\dwg\\" stays a plain name, not a folder.
  if (!Full.empty() && !EndsWithSeparator(Full)) {
    FileInfo info = fileSystem_->Stat(Full);
    Exists = info.exists;
    IsFolder = info.exists && info.isFolder;
  }
  if (IsFolder && !EndsWithChar(Full, '\\')) Full += '\\';

  PathParts parts = SplitPath(Full);
  Drive = std::move(parts.drive);
  Folder = std::move(parts.directory);
  Name = std::move(parts.name);
  Extension = std::move(parts.extension);
}

std::string DrawingPath::GetFull(bool doubled) const { return Maybe(Full, doubled); }
std::string DrawingPath::GetName(bool doubled) const { return Maybe(Name + Extension, doubled); }
std::string DrawingPath::GetExtension(bool doubled) const { return Maybe(Extension, doubled); }
std::string DrawingPath::GetTitle(bool doubled) const { return Maybe(Name, doubled); }
std::string DrawingPath::GetDrive(bool doubled) const { return Maybe(Drive, doubled); }
std::string DrawingPath::GetDirectory(bool doubled) const { return Maybe(Folder, doubled); }

std::string DrawingPath::GetFolder(bool withoutTrailingBackslash, bool doubled) const {
  std::string folder = Drive + Folder;
  if (withoutTrailingBackslash && EndsWithChar(folder, '\\')) folder.pop_back();
  return Maybe(std::move(folder), doubled);
}

DrawingPath ParseRecentEntry(std::string_view text, FileSystem& fileSystem) {
  std::vector<std::string_view> tokens;
  for (std::size_t start = 0;;) {
    std::size_t comma = text.find(',', start);
    tokens.push_back(Trim(text.substr(start, comma == std::string_view::npos ? comma : comma - start)));
    if (comma == std::string_view::npos) break;
    start = comma + 1;
  }
  if (tokens.size() < 2) return DrawingPath(text, fileSystem);

  bool readOnly = RuntimeAtoi(tokens.back()) == 1;
  tokens.pop_back();
  std::string path;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (i > 0) path += ',';
    path += tokens[i];
  }
  DrawingPath result(path, fileSystem);
  result.readOnly = readOnly;
  return result;
}

}  // namespace tavlet
