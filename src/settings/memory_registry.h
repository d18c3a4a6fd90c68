// Registry backends without a registry: a tree of keys and values in memory, and a
// wrapper that fails chosen calls, for tests of the failure rules.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings_store.h"

namespace tavlet {

// Keys and values with the registry's naming rules: levels split at "\", empty
// levels ignored, names compared ignoring ASCII case (never folding a trail byte),
// each keeping the spelling it was created with. The file hive stores one of these.
class RegistryTree {
 public:
  struct Key {
    std::string name;                                  // spelling as created
    std::map<std::string, std::string> valueNames;     // folded -> spelling
    std::map<std::string, RegValue> values;            // folded -> value
    std::map<std::string, std::unique_ptr<Key>> subkeys;  // folded -> key
  };

  RegistryTree();

  // Null when missing (and `create` is false).
  Key* Find(std::string_view path, bool create, bool* created = nullptr);
  bool Query(std::string_view path, std::string_view name, RegValue& value);
  void Set(std::string_view path, std::string_view name, std::uint32_t type,
           std::string_view bytes);
  bool Delete(std::string_view path, std::string_view name);

  Key& Root() { return *root_; }
  const Key& Root() const { return *root_; }
  void Clear();

  // Every key's path, in folded-name order, depth first ("" is the root).
  std::vector<std::string> KeyPaths() const;

  static std::string Fold(std::string_view name);

 private:
  std::unique_ptr<Key> root_;
};

class MemoryRegistry : public RegistryBackend {
 public:
  bool OpenOrCreateKey(std::string_view path) override;
  bool KeyExists(std::string_view path) override;
  bool QueryValue(std::string_view path, std::string_view name, RegValue& value) override;
  bool SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                std::string_view bytes) override;
  bool DeleteValue(std::string_view path, std::string_view name) override;

  RegistryTree& Tree() { return tree_; }
  // Every SetValue, in order, as "path|name" (for checks of write order).
  const std::vector<std::string>& WriteLog() const { return writeLog_; }
  void ClearWriteLog() { writeLog_.clear(); }

 private:
  RegistryTree tree_;
  std::vector<std::string> writeLog_;
};

// Passes calls to `inner` until told to fail: every call, only writes, or the n-th
// call from now.
class FailingRegistry : public RegistryBackend {
 public:
  explicit FailingRegistry(RegistryBackend& inner) : inner_(inner) {}

  void FailAll(bool fail) { failAll_ = fail; }
  void FailWrites(bool fail) { failWrites_ = fail; }
  void FailNthCall(int n) { countdown_ = n; }

  bool OpenOrCreateKey(std::string_view path) override;
  bool KeyExists(std::string_view path) override;
  bool QueryValue(std::string_view path, std::string_view name, RegValue& value) override;
  bool SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                std::string_view bytes) override;
  bool DeleteValue(std::string_view path, std::string_view name) override;

 private:
  bool Fails(bool isWrite);
  RegistryBackend& inner_;
  bool failAll_ = false;
  bool failWrites_ = false;
  int countdown_ = 0;
};

}  // namespace tavlet
