#include "settings/memory_registry.h"

#include "text/codepage.h"

namespace tavlet {
namespace {

// Splits at "\" by character, so that a trail byte 0x5C never separates; empty
// levels are dropped.
std::vector<std::string_view> SplitKeyPath(std::string_view path) {
  std::vector<std::string_view> levels;
  std::size_t start = 0;
  std::size_t pos = 0;
  while (pos < path.size()) {
    if (path[pos] == '\\') {
      if (pos > start) levels.push_back(path.substr(start, pos - start));
      start = ++pos;
    } else {
      pos += text::CharLength(path, pos);
    }
  }
  if (path.size() > start) levels.push_back(path.substr(start));
  return levels;
}

void CollectPaths(const RegistryTree::Key& key, const std::string& path,
                  std::vector<std::string>& out) {
  out.push_back(path);
  for (const auto& [folded, sub] : key.subkeys)
    CollectPaths(*sub, path.empty() ? sub->name : path + "\\" + sub->name, out);
}

}  // namespace

RegistryTree::RegistryTree() : root_(std::make_unique<Key>()) {}

std::string RegistryTree::Fold(std::string_view name) { return text::Mbslwr(name); }

void RegistryTree::Clear() { root_ = std::make_unique<Key>(); }

RegistryTree::Key* RegistryTree::Find(std::string_view path, bool create, bool* created) {
  if (created) *created = false;
  Key* key = root_.get();
  for (std::string_view level : SplitKeyPath(path)) {
    auto& slot = key->subkeys[Fold(level)];
    if (!slot) {
      if (!create) {
        key->subkeys.erase(Fold(level));
        return nullptr;
      }
      slot = std::make_unique<Key>();
      slot->name = std::string(level);
      if (created) *created = true;
    }
    key = slot.get();
  }
  return key;
}

bool RegistryTree::Query(std::string_view path, std::string_view name, RegValue& value) {
  Key* key = Find(path, false);
  if (!key) return false;
  auto it = key->values.find(Fold(name));
  if (it == key->values.end()) return false;
  value = it->second;
  return true;
}

void RegistryTree::Set(std::string_view path, std::string_view name, std::uint32_t type,
                       std::string_view bytes) {
  Key* key = Find(path, true);
  const std::string folded = Fold(name);
  key->valueNames.try_emplace(folded, std::string(name));
  key->values[folded] = RegValue{type, std::string(bytes)};
}

bool RegistryTree::Delete(std::string_view path, std::string_view name) {
  Key* key = Find(path, false);
  if (!key) return false;
  const std::string folded = Fold(name);
  key->valueNames.erase(folded);
  return key->values.erase(folded) != 0;
}

std::vector<std::string> RegistryTree::KeyPaths() const {
  std::vector<std::string> out;
  CollectPaths(*root_, "", out);
  return out;
}

bool MemoryRegistry::OpenOrCreateKey(std::string_view path) {
  tree_.Find(path, true);
  return true;
}

bool MemoryRegistry::KeyExists(std::string_view path) { return tree_.Find(path, false); }

bool MemoryRegistry::QueryValue(std::string_view path, std::string_view name, RegValue& value) {
  return tree_.Query(path, name, value);
}

bool MemoryRegistry::SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                              std::string_view bytes) {
  tree_.Set(path, name, type, bytes);
  writeLog_.push_back(std::string(path) + "|" + std::string(name));
  return true;
}

bool MemoryRegistry::DeleteValue(std::string_view path, std::string_view name) {
  return tree_.Delete(path, name);
}

bool FailingRegistry::Fails(bool isWrite) {
  if (failAll_ || (isWrite && failWrites_)) return true;
  if (countdown_ > 0 && --countdown_ == 0) return true;
  return false;
}

bool FailingRegistry::OpenOrCreateKey(std::string_view path) {
  return !Fails(false) && inner_.OpenOrCreateKey(path);
}

bool FailingRegistry::KeyExists(std::string_view path) {
  return !Fails(false) && inner_.KeyExists(path);
}

bool FailingRegistry::QueryValue(std::string_view path, std::string_view name,
                                 RegValue& value) {
  return !Fails(false) && inner_.QueryValue(path, name, value);
}

bool FailingRegistry::SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                               std::string_view bytes) {
  return !Fails(true) && inner_.SetValue(path, name, type, bytes);
}

bool FailingRegistry::DeleteValue(std::string_view path, std::string_view name) {
  return !Fails(true) && inner_.DeleteValue(path, name);
}

}  // namespace tavlet
