#include "sim/memory_file_system.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "text/codepage.h"

namespace tavlet {
namespace {

// The spelling with '/' made '\\' and trailing separators dropped; separators are
// found by character, so a trail byte 0x5C stays part of its character.
std::string Normalize(const std::string& path) {
  std::string out;
  out.reserve(path.size());
  for (std::size_t pos = 0; pos < path.size();) {
    std::size_t length = text::CharLength(path, pos);
    if (length == 1 && path[pos] == '/') {
      out += '\\';
    } else {
      out.append(path, pos, length);
    }
    pos += length;
  }
  while (!out.empty() && out.back() == '\\') {
    // Only drop the byte when it is a character of its own.
    std::size_t last = 0;
    for (std::size_t pos = 0; pos < out.size(); pos += text::CharLength(out, pos)) last = pos;
    if (last != out.size() - 1) break;
    out.pop_back();
  }
  return out;
}

std::size_t LastSeparator(const std::string& s) {
  std::size_t found = std::string::npos;
  for (std::size_t pos = 0; pos < s.size(); pos += text::CharLength(s, pos)) {
    if (text::CharLength(s, pos) == 1 && s[pos] == '\\') found = pos;
  }
  return found;
}

}  // namespace

MemoryFileSystem::MemoryFileSystem(std::string tempFolder, std::string windowsFolder)
    : tempFolder_(Normalize(tempFolder)), windowsFolder_(std::move(windowsFolder)) {
  AddFolder(tempFolder_);
}

std::string MemoryFileSystem::Key(const std::string& path) { return text::Mbslwr(Normalize(path)); }

std::string MemoryFileSystem::Parent(const std::string& key) {
  std::size_t separator = LastSeparator(key);
  return separator == std::string::npos ? std::string() : key.substr(0, separator);
}

MemoryFileSystem::Node* MemoryFileSystem::Find(const std::string& path) {
  auto it = nodes_.find(Key(path));
  return it == nodes_.end() ? nullptr : &it->second;
}

const MemoryFileSystem::Node* MemoryFileSystem::Find(const std::string& path) const {
  auto it = nodes_.find(Key(path));
  return it == nodes_.end() ? nullptr : &it->second;
}

bool MemoryFileSystem::ParentIsFolder(const std::string& path) const {
  std::string parent = Parent(Key(path));
  if (parent.empty()) return true;
  auto it = nodes_.find(parent);
  return it != nodes_.end() && it->second.isFolder;
}

void MemoryFileSystem::AddFolder(const std::string& path) {
  std::string spelling = Normalize(path);
  if (spelling.empty()) return;
  std::string key = text::Mbslwr(spelling);
  std::string parent = Parent(key);
  if (!parent.empty() && nodes_.find(parent) == nodes_.end()) {
    AddFolder(spelling.substr(0, parent.size()));
  }
  Node& node = nodes_[key];
  if (node.spelling.empty()) node.spelling = spelling;
  node.isFolder = true;
  node.bytes.clear();
}

void MemoryFileSystem::AddFile(const std::string& path, std::string bytes, bool readOnly) {
  std::string spelling = Normalize(path);
  std::string parent = Parent(text::Mbslwr(spelling));
  if (!parent.empty()) AddFolder(spelling.substr(0, parent.size()));
  Node& node = nodes_[text::Mbslwr(spelling)];
  node.spelling = spelling;
  node.isFolder = false;
  node.readOnly = readOnly;
  node.bytes = std::move(bytes);
}

void MemoryFileSystem::SetReadOnly(const std::string& path, bool readOnly) {
  if (Node* node = Find(path)) node->readOnly = readOnly;
}

std::optional<std::string> MemoryFileSystem::Contents(const std::string& path) const {
  const Node* node = Find(path);
  if (node == nullptr || node->isFolder) return std::nullopt;
  return node->bytes;
}

std::vector<std::string> MemoryFileSystem::AllPaths() const {
  std::vector<std::string> paths;
  for (const auto& [key, node] : nodes_) paths.push_back(node.spelling);
  std::sort(paths.begin(), paths.end());
  return paths;
}

void MemoryFileSystem::FailOn(Op op, int occurrence, FileError error) {
  pending_.push_back({op, std::max(occurrence, 1), error});
}

void MemoryFileSystem::FailPath(const std::string& path, FileError error) {
  failingPaths_[Key(path)] = error;
}

void MemoryFileSystem::ClearFailures() {
  pending_.clear();
  failingPaths_.clear();
}

int MemoryFileSystem::CallCount(Op op) const {
  auto it = calls_.find(op);
  return it == calls_.end() ? 0 : it->second;
}

std::optional<FileError> MemoryFileSystem::Injected(Op op, const std::string& path,
                                                    const std::string* secondPath) {
  ++calls_[op];
  std::optional<FileError> result;
  for (auto it = pending_.begin(); it != pending_.end();) {
    if (it->op == op && --it->remaining == 0) {
      if (!result) result = it->error;
      it = pending_.erase(it);
    } else {
      ++it;
    }
  }
  if (result) return result;
  for (const std::string* p : {&path, secondPath}) {
    if (p == nullptr) continue;
    auto failing = failingPaths_.find(Key(*p));
    if (failing != failingPaths_.end()) return failing->second;
  }
  return std::nullopt;
}

FileInfo MemoryFileSystem::Stat(const std::string& path) {
  FileInfo info;
  if (Injected(Op::Stat, path)) return info;
  const Node* node = Find(path);
  if (node == nullptr) return info;
  info.exists = true;
  info.isFolder = node->isFolder;
  info.readOnly = node->readOnly;
  info.size = node->bytes.size();
  return info;
}

FileError MemoryFileSystem::ReadFile(const std::string& path, std::string& bytes, std::uint64_t maxBytes) {
  bytes.clear();
  if (auto error = Injected(Op::ReadFile, path)) return *error;
  const Node* node = Find(path);
  if (node == nullptr) return FileError::NotFound;
  if (node->isFolder) return FileError::AccessDenied;
  bytes = node->bytes.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(maxBytes, node->bytes.size())));
  return FileError::None;
}

FileError MemoryFileSystem::ReadAt(const std::string& path, std::uint64_t offset, std::size_t count,
                                   std::string& bytes) {
  bytes.clear();
  if (auto error = Injected(Op::ReadAt, path)) return *error;
  const Node* node = Find(path);
  if (node == nullptr) return FileError::NotFound;
  if (node->isFolder) return FileError::AccessDenied;
  if (offset > node->bytes.size()) return FileError::EndOfFile;
  bytes = node->bytes.substr(static_cast<std::size_t>(offset), count);
  return bytes.size() == count ? FileError::None : FileError::EndOfFile;
}

FileError MemoryFileSystem::WriteFileAtomic(const std::string& path, std::string_view bytes) {
  if (auto error = Injected(Op::WriteFileAtomic, path)) return *error;
  if (Normalize(path).empty() || !ParentIsFolder(path)) return FileError::NotFound;
  if (Node* node = Find(path)) {
    if (node->isFolder || node->readOnly) return FileError::AccessDenied;
    node->bytes = std::string(bytes);
    return FileError::None;
  }
  AddFile(path, std::string(bytes));
  return FileError::None;
}

FileError MemoryFileSystem::Remove(const std::string& path) {
  if (auto error = Injected(Op::Remove, path)) return *error;
  Node* node = Find(path);
  if (node == nullptr) return FileError::NotFound;
  if (node->isFolder || node->readOnly) return FileError::AccessDenied;
  nodes_.erase(Key(path));
  return FileError::None;
}

FileError MemoryFileSystem::Rename(const std::string& from, const std::string& to) {
  if (auto error = Injected(Op::Rename, from, &to)) return *error;
  std::string fromKey = Key(from);
  std::string toKey = Key(to);
  auto source = nodes_.find(fromKey);
  if (source == nodes_.end()) return FileError::NotFound;
  if (toKey.empty() || !ParentIsFolder(to)) return FileError::NotFound;
  if (fromKey == toKey) return FileError::None;
  auto target = nodes_.find(toKey);
  if (target != nodes_.end()) {
    if (target->second.isFolder || source->second.isFolder || target->second.readOnly) {
      return FileError::AccessDenied;
    }
    nodes_.erase(target);
  }
  // A folder takes everything below it along.
  std::string toSpelling = Normalize(to);
  std::vector<std::pair<std::string, Node>> moved;
  for (auto it = nodes_.begin(); it != nodes_.end();) {
    const std::string& key = it->first;
    bool below = key.size() > fromKey.size() && key.compare(0, fromKey.size(), fromKey) == 0 &&
                 key[fromKey.size()] == '\\';
    if (key == fromKey || below) {
      Node node = it->second;
      node.spelling = toSpelling + node.spelling.substr(fromKey.size());
      moved.emplace_back(toKey + key.substr(fromKey.size()), std::move(node));
      it = nodes_.erase(it);
    } else {
      ++it;
    }
  }
  for (auto& [key, node] : moved) nodes_[key] = std::move(node);
  return FileError::None;
}

FileError MemoryFileSystem::CreateFolders(const std::string& path) {
  if (auto error = Injected(Op::CreateFolders, path)) return *error;
  std::string spelling = Normalize(path);
  // Every level must be a folder or absent; a file in the way stops the creation.
  for (std::string key = text::Mbslwr(spelling); !key.empty(); key = Parent(key)) {
    auto it = nodes_.find(key);
    if (it != nodes_.end() && !it->second.isFolder) return FileError::AccessDenied;
  }
  AddFolder(spelling);
  return FileError::None;
}

std::string MemoryFileSystem::CreateTempFile(std::string_view prefix) {
  std::string shortPrefix(prefix.substr(0, 3));
  if (Injected(Op::CreateTempFile, tempFolder_ + "\\" + shortPrefix)) return {};
  for (;;) {
    char unique[8];
    std::snprintf(unique, sizeof unique, "%X", ++tempCounter_ & 0xFFFF);
    std::string path = tempFolder_ + "\\" + shortPrefix + unique + ".tmp";
    if (Find(path) == nullptr) {
      AddFile(path, {});
      return path;
    }
  }
}

FileError MemoryFileSystem::ListFolder(const std::string& path, std::vector<std::string>& names) {
  names.clear();
  if (auto error = Injected(Op::ListFolder, path)) return *error;
  std::string key = Key(path);
  if (!key.empty()) {
    auto it = nodes_.find(key);
    if (it == nodes_.end()) return FileError::NotFound;
    if (!it->second.isFolder) return FileError::Other;
  }
  for (const auto& [childKey, node] : nodes_) {
    if (Parent(childKey) != key) continue;
    std::size_t separator = LastSeparator(node.spelling);
    names.push_back(separator == std::string::npos ? node.spelling : node.spelling.substr(separator + 1));
  }
  std::sort(names.begin(), names.end());
  return FileError::None;
}

}  // namespace tavlet
