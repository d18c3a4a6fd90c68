#include "settings/file_hive.h"

#include <cstdio>
#include <vector>

#include "text/codepage.h"

namespace tavlet {
namespace {

constexpr std::string_view kHeader = "TavletHive 1";
constexpr std::string_view kFooter = "# end";

bool IsTrailByte(unsigned char c) { return c >= 0x40 && c <= 0xFE && c != 0x7F; }

void AppendHex(std::string& out, unsigned char c, char mark) {
  static const char digits[] = "0123456789abcdef";
  out += mark;
  if (mark == '\\') out += 'x';
  out += digits[c >> 4];
  out += digits[c & 15];
}

// Escapes by character: a lead byte with a proper trail byte stays as it is, so that
// code-page 936 text reads naturally and its trail bytes never look like escapes.
// Key paths keep their "\" between levels and escape with "%" instead.
std::string Escape(std::string_view s, bool keyPath) {
  const char mark = keyPath ? '%' : '\\';
  std::string out;
  for (std::size_t i = 0; i < s.size(); ++i) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (text::IsLeadByte(c) && i + 1 < s.size() && IsTrailByte(static_cast<unsigned char>(s[i + 1]))) {
      out += s.substr(i, 2);
      ++i;
    } else if (c < 0x20 || c == 0x7F || c >= 0x80 || (keyPath && c == '%')) {
      if (!keyPath && c == '\n') {
        out += "\\n";
      } else if (!keyPath && c == '\t') {
        out += "\\t";
      } else {
        AppendHex(out, c, mark);
      }
    } else if (!keyPath && (c == '"' || c == '\\')) {
      out += '\\';
      out += static_cast<char>(c);
    } else {
      out += static_cast<char>(c);
    }
  }
  return out;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

bool ReadHexPair(std::string_view s, std::size_t pos, unsigned char& out) {
  if (pos + 2 > s.size()) return false;
  const int hi = HexDigit(s[pos]);
  const int lo = HexDigit(s[pos + 1]);
  if (hi < 0 || lo < 0) return false;
  out = static_cast<unsigned char>(hi * 16 + lo);
  return true;
}

bool UnescapeKeyPath(std::string_view s, std::string& out) {
  out.clear();
  for (std::size_t i = 0; i < s.size();) {
    const std::size_t len = text::CharLength(s, i);
    if (len == 1 && s[i] == '%') {
      unsigned char c;
      if (!ReadHexPair(s, i + 1, c)) return false;
      out += static_cast<char>(c);
      i += 3;
    } else {
      out += s.substr(i, len);
      i += len;
    }
  }
  return true;
}

// Reads a quoted string starting at `pos` (on the opening quote); `pos` ends after
// the closing quote.
bool ReadQuoted(std::string_view s, std::size_t& pos, std::string& out) {
  out.clear();
  if (pos >= s.size() || s[pos] != '"') return false;
  ++pos;
  while (pos < s.size()) {
    const std::size_t len = text::CharLength(s, pos);
    if (len == 2) {
      out += s.substr(pos, 2);
      pos += 2;
      continue;
    }
    const char c = s[pos];
    if (c == '"') {
      ++pos;
      return true;
    }
    if (c != '\\') {
      out += c;
      ++pos;
      continue;
    }
    if (pos + 1 >= s.size()) return false;
    const char e = s[pos + 1];
    pos += 2;
    unsigned char byte;
    switch (e) {
      case 'n': out += '\n'; break;
      case 't': out += '\t'; break;
      case '"': out += '"'; break;
      case '\\': out += '\\'; break;
      case 'x':
        if (!ReadHexPair(s, pos, byte)) return false;
        out += static_cast<char>(byte);
        pos += 2;
        break;
      default: return false;
    }
  }
  return false;
}

std::string FormatValue(const RegValue& value) {
  char buffer[32];
  const std::string& b = value.bytes;
  if (value.type == kRegDword && b.size() == 4) {
    std::uint32_t v = 0;
    for (int i = 3; i >= 0; --i) v = (v << 8) | static_cast<unsigned char>(b[i]);
    std::snprintf(buffer, sizeof buffer, "dword:%08x", static_cast<unsigned>(v));
    return buffer;
  }
  if (value.type == kRegSz && !b.empty() && b.find('\0') == b.size() - 1) {
    std::string out = "sz:\"";
    out += Escape(std::string_view(b).substr(0, b.size() - 1), false);
    out += '"';
    return out;
  }
  std::snprintf(buffer, sizeof buffer, "hex(%u):", static_cast<unsigned>(value.type));
  std::string out = buffer;
  for (std::size_t i = 0; i < b.size(); ++i) {
    if (i) out += ',';
    std::snprintf(buffer, sizeof buffer, "%02x", static_cast<unsigned char>(b[i]));
    out += buffer;
  }
  return out;
}

bool ParseValue(std::string_view s, RegValue& value) {
  value = RegValue{};
  if (s.starts_with("dword:")) {
    s.remove_prefix(6);
    if (s.size() != 8) return false;
    unsigned char bytes[4];
    for (int i = 0; i < 4; ++i)
      if (!ReadHexPair(s, 2 * i, bytes[3 - i])) return false;
    value.type = kRegDword;
    value.bytes.assign(reinterpret_cast<const char*>(bytes), 4);
    return true;
  }
  if (s.starts_with("sz:")) {
    std::size_t pos = 3;
    std::string textValue;
    if (!ReadQuoted(s, pos, textValue) || pos != s.size()) return false;
    value.type = kRegSz;
    value.bytes = textValue + '\0';
    return true;
  }
  if (s.starts_with("hex(")) {
    const std::size_t close = s.find("):");
    if (close == std::string_view::npos || close == 4 || close > 14) return false;
    std::uint64_t type = 0;
    for (std::size_t i = 4; i < close; ++i) {
      if (s[i] < '0' || s[i] > '9') return false;
      type = type * 10 + static_cast<unsigned>(s[i] - '0');
    }
    if (type > 0xFFFFFFFFu) return false;
    value.type = static_cast<std::uint32_t>(type);
    std::string_view data = s.substr(close + 2);
    for (std::size_t pos = 0; pos < data.size();) {
      unsigned char byte;
      if (!ReadHexPair(data, pos, byte)) return false;
      value.bytes += static_cast<char>(byte);
      pos += 2;
      if (pos < data.size() && data[pos++] != ',') return false;
      if (pos == data.size() && data.back() == ',') return false;
    }
    return true;
  }
  return false;
}

void FormatKey(const RegistryTree::Key& key, const std::string& path, std::string& out) {
  if (!path.empty() || !key.values.empty()) {
    out += '[';
    out += Escape(path, true);
    out += "]\n";
    for (const auto& [folded, value] : key.values) {
      const std::string& name = key.valueNames.at(folded);
      if (name.empty()) {
        out += '@';
      } else {
        out += '"';
        out += Escape(name, false);
        out += '"';
      }
      out += '=';
      out += FormatValue(value);
      out += '\n';
    }
  }
  for (const auto& [folded, sub] : key.subkeys)
    FormatKey(*sub, path.empty() ? sub->name : path + "\\" + sub->name, out);
}

std::string ParentFolder(const std::string& path) {
  std::size_t last = std::string::npos;
  for (std::size_t i = 0; i < path.size(); i += text::CharLength(path, i))
    if (path[i] == '\\' || path[i] == '/') last = i;
  return last == std::string::npos ? std::string() : path.substr(0, last);
}

}  // namespace

std::string FormatHive(const RegistryTree& tree) {
  std::string out(kHeader);
  out += '\n';
  FormatKey(tree.Root(), "", out);
  out += kFooter;
  out += '\n';
  return out;
}

bool ParseHive(std::string_view textIn, RegistryTree& tree, std::string& problem) {
  tree.Clear();
  std::vector<std::string_view> lines;
  for (std::size_t start = 0; start < textIn.size();) {
    std::size_t end = textIn.find('\n', start);
    if (end == std::string_view::npos) end = textIn.size();
    std::string_view line = textIn.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    lines.push_back(line);
    start = end + 1;
  }
  auto fail = [&](std::size_t index, const char* what) {
    problem = "line " + std::to_string(index + 1) + ": " + what;
    tree.Clear();
    return false;
  };
  if (lines.empty() || lines[0] != kHeader) return fail(0, "not a settings hive");
  std::size_t last = lines.size();
  while (last > 1 && lines[last - 1].empty()) --last;
  if (last < 2 || lines[last - 1] != kFooter) return fail(last, "hive is cut short");
  std::string keyPath;
  bool inKey = false;
  for (std::size_t i = 1; i + 1 < last; ++i) {
    std::string_view line = lines[i];
    if (line.empty() || line[0] == ';') continue;
    if (line[0] == '[') {
      if (line.size() < 2 || line.back() != ']') return fail(i, "bad key line");
      if (!UnescapeKeyPath(line.substr(1, line.size() - 2), keyPath))
        return fail(i, "bad key name");
      tree.Find(keyPath, true);
      inKey = true;
      continue;
    }
    if (!inKey) return fail(i, "value outside a key");
    std::string name;
    std::size_t pos = 0;
    if (line[0] == '@') {
      pos = 1;
    } else if (!ReadQuoted(line, pos, name)) {
      return fail(i, "bad value name");
    }
    if (pos >= line.size() || line[pos] != '=') return fail(i, "missing '='");
    RegValue value;
    if (!ParseValue(line.substr(pos + 1), value)) return fail(i, "bad value data");
    tree.Set(keyPath, name, value.type, value.bytes);
  }
  problem.clear();
  return true;
}

FileHive::FileHive(FileSystem& files, std::string path)
    : files_(files), path_(std::move(path)) {}

void FileHive::Load() {
  if (loaded_) return;
  loaded_ = true;
  std::string bytes;
  const FileError error = files_.ReadFile(path_, bytes);
  if (error == FileError::NotFound) return;
  if (error != FileError::None) {
    loadProblem_ = "the settings file can't be read";
    mustKeepAside_ = true;
    return;
  }
  if (!ParseHive(bytes, tree_, loadProblem_)) {
    mustKeepAside_ = true;
    return;
  }
  savedText_ = std::move(bytes);
}

bool FileHive::Save() {
  if (mustKeepAside_) {
    for (int n = 1; n < 1000; ++n) {
      std::string aside = path_ + ".corrupt-" + std::to_string(n);
      if (files_.Stat(aside).exists) continue;
      const FileError error = files_.Rename(path_, aside);
      if (error == FileError::None) {
        keptAside_ = aside;
        mustKeepAside_ = false;
      } else if (!files_.Stat(path_).exists) {
        mustKeepAside_ = false;
      }
      break;
    }
    if (mustKeepAside_) return false;
  }
  std::string text = FormatHive(tree_);
  FileError error = files_.WriteFileAtomic(path_, text);
  if (error == FileError::NotFound) {
    const std::string parent = ParentFolder(path_);
    if (!parent.empty() && files_.CreateFolders(parent) == FileError::None)
      error = files_.WriteFileAtomic(path_, text);
  }
  if (error != FileError::None) return false;
  savedText_ = std::move(text);
  return true;
}

// A change that can't be saved is taken back, so memory never runs ahead of disk.
bool FileHive::Commit() {
  if (Save()) return true;
  std::string ignored;
  if (savedText_.empty() || !ParseHive(savedText_, tree_, ignored)) tree_.Clear();
  return false;
}

bool FileHive::OpenOrCreateKey(std::string_view path) {
  Load();
  bool created = false;
  tree_.Find(path, true, &created);
  return !created || Commit();
}

bool FileHive::KeyExists(std::string_view path) {
  Load();
  return tree_.Find(path, false) != nullptr;
}

bool FileHive::QueryValue(std::string_view path, std::string_view name, RegValue& value) {
  Load();
  return tree_.Query(path, name, value);
}

bool FileHive::SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                        std::string_view bytes) {
  Load();
  tree_.Set(path, name, type, bytes);
  return Commit();
}

bool FileHive::DeleteValue(std::string_view path, std::string_view name) {
  Load();
  if (!tree_.Delete(path, name)) return false;
  return Commit();
}

}  // namespace tavlet
