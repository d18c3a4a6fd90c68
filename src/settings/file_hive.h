// The native settings backend: the whole registry branch in one human-readable text
// file, read once and rewritten whole (atomically) after each change.
//
//   TavletHive 1
//   [Software\Morvane\Tavlet\2.0 - R16]
//   "TipWidth"=dword:0000012c
//   "SaveCommand"=sz:"_.QSAVE\n"
//   "LabelFont"=hex(3):f4,ff,ff,ff,...
//   @=sz:"default value of the key"
//   # end
//
// A file that can't be read or parsed, or lacks its last line, yields an empty
// hive; before anything is written over it, it is renamed to "<path>.corrupt-N"
// (the first N free). If that rename fails, nothing is written.
#pragma once

#include <string>

#include "platform/file_system.h"
#include "settings/memory_registry.h"
#include "settings/settings_store.h"

namespace tavlet {

class FileHive : public RegistryBackend {
 public:
  FileHive(FileSystem& files, std::string path);

  bool OpenOrCreateKey(std::string_view path) override;
  bool KeyExists(std::string_view path) override;
  bool QueryValue(std::string_view path, std::string_view name, RegValue& value) override;
  bool SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                std::string_view bytes) override;
  bool DeleteValue(std::string_view path, std::string_view name) override;

  // Why the file was set aside, when it was; empty otherwise.
  const std::string& LoadProblem() const { return loadProblem_; }
  // The name the bad file was kept under, once it has been.
  const std::string& KeptAsidePath() const { return keptAside_; }

 private:
  void Load();
  bool Save();
  bool Commit();

  FileSystem& files_;
  std::string path_;
  RegistryTree tree_;
  bool loaded_ = false;
  bool mustKeepAside_ = false;
  std::string loadProblem_;
  std::string keptAside_;
  std::string savedText_;  // the file as last read or written
};

// The text form, for the hive and for tests. Parse returns false with a message
// naming the line when the text isn't a whole hive.
std::string FormatHive(const RegistryTree& tree);
bool ParseHive(std::string_view text, RegistryTree& tree, std::string& problem);

}  // namespace tavlet
