#include "sheetsets/file_finder.h"

#include <vector>

#include "text/codepage.h"

namespace tavlet::sheetsets {
namespace {

// One character of code page 936 as a number, ASCII letters folded.
unsigned NextChar(std::string_view s, std::size_t& pos) {
  const std::size_t length = text::CharLength(s, pos);
  unsigned c = static_cast<unsigned char>(s[pos]);
  if (length == 2) c = (c << 8) | static_cast<unsigned char>(s[pos + 1]);
  else if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
  pos += length;
  return c;
}

bool Match(std::string_view name, std::size_t n, std::string_view pattern, std::size_t p) {
  while (p < pattern.size()) {
    if (pattern[p] == '*') {
      while (p < pattern.size() && pattern[p] == '*') ++p;
      if (p == pattern.size()) return true;
      for (std::size_t at = n; at <= name.size(); at += at < name.size() ? text::CharLength(name, at) : 1) {
        if (Match(name, at, pattern, p)) return true;
      }
      return false;
    }
    if (n >= name.size()) return false;
    if (pattern[p] == '?') {
      ++p;
      n += text::CharLength(name, n);
      continue;
    }
    if (NextChar(pattern, p) != NextChar(name, n)) return false;
  }
  return n == name.size();
}

std::vector<std::string> SplitPatterns(std::string_view patterns) {
  std::vector<std::string> out;
  std::size_t start = 0;
  while (start <= patterns.size()) {
    std::size_t comma = patterns.find(',', start);
    if (comma == std::string_view::npos) comma = patterns.size();
    std::string_view one = patterns.substr(start, comma - start);
    while (!one.empty() && one.front() == ' ') one.remove_prefix(1);
    while (!one.empty() && one.back() == ' ') one.remove_suffix(1);
    if (!one.empty()) out.emplace_back(one);
    start = comma + 1;
  }
  return out;
}

std::size_t Walk(FileSystem& files, const std::string& folder, const std::vector<std::string>& patterns,
                 const std::function<void(const std::string&)>& found, int depth) {
  // Deeper than any path the platform can name: a link loop ends here.
  if (depth > 128) return 0;
  std::vector<std::string> names;
  if (files.ListFolder(folder, names) != FileError::None) return 0;
  std::size_t count = 0;
  for (const std::string& name : names) {
    const std::string path = folder + "\\" + name;
    const FileInfo info = files.Stat(path);
    if (!info.exists) continue;
    if (info.isFolder) {
      count += Walk(files, path, patterns, found, depth + 1);
      continue;
    }
    for (const std::string& pattern : patterns) {
      if (!MatchesWildcard(name, pattern)) continue;
      found(path);
      ++count;
      break;
    }
  }
  return count;
}

}  // namespace

bool MatchesWildcard(std::string_view name, std::string_view pattern) {
  if (pattern == "*.*") return true;
  return Match(name, 0, pattern, 0);
}

std::size_t FindFilesRecursive(FileSystem& files, const std::string& folder, std::string_view patterns,
                               const std::function<void(const std::string& path)>& found) {
  if (folder.empty()) return 0;
  std::string root = folder;
  while (root.size() > 1 && (root.back() == '\\' || root.back() == '/')) {
    // A trail byte 0x5C is part of a character, not a separator.
    std::size_t pos = 0, last = 0;
    while (pos < root.size()) {
      last = pos;
      pos += text::CharLength(root, pos);
    }
    if (last != root.size() - 1) break;
    root.pop_back();
  }
  return Walk(files, root, SplitPatterns(patterns), found, 0);
}

}  // namespace tavlet::sheetsets
