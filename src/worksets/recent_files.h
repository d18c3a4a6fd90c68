// RecentFileList: the files opened or saved most recently, most recent first, kept
// in the settings section "MRU" under "路径_1" up to "路径_<MRUCount>". The settings
// are the master: the list is read back each time the context menu is built.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

namespace tavlet {

class FileSystem;
class SettingsStore;

class RecentFileList {
 public:
  // Both must outlive the list.
  RecentFileList(const SettingsStore& settings, FileSystem& files);

  // Replaces the list by the stored entries that still exist on disk. A gap in the
  // numbering doesn't stop the reading.
  void LoadRecentFiles();
  // Makes `path` the first entry (dropping an exact, case-sensitive duplicate) and
  // saves. The list isn't cut here; it may grow past MRUCount until the next load.
  void AddRecentFile(const std::string& path);
  // Writes the first MRUCount entries; slots behind them keep what they held.
  void SaveRecentFiles();

  std::size_t Count() const { return files_.size(); }
  const std::string& At(std::size_t index) const { return files_.at(index); }

 private:
  const SettingsStore& settings_;
  FileSystem& fileSystem_;
  std::deque<std::string> files_;
};

}  // namespace tavlet
