#include "worksets/recent_files.h"

#include <algorithm>

#include "platform/file_system.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"

namespace tavlet {

namespace {

std::string SlotKey(int slot) { return "路径_" + std::to_string(slot); }

}  // namespace

RecentFileList::RecentFileList(const SettingsStore& settings, FileSystem& files)
    : settings_(settings), fileSystem_(files) {}

void RecentFileList::LoadRecentFiles() {
  files_.clear();
  const int count = ReadInt(settings_, keys::MRUCount);
  for (int slot = 1; slot <= count; ++slot) {
    std::string path = settings_.GetString(sections::Mru, SlotKey(slot), "");
    if (!path.empty() && fileSystem_.Stat(path).exists) files_.push_back(std::move(path));
  }
}

void RecentFileList::AddRecentFile(const std::string& path) {
  const auto same = std::find(files_.begin(), files_.end(), path);
  if (same != files_.end()) files_.erase(same);
  files_.push_front(path);
  SaveRecentFiles();
}

void RecentFileList::SaveRecentFiles() {
  const int count = ReadInt(settings_, keys::MRUCount);
  int slot = 1;
  for (auto it = files_.begin(); slot <= count && it != files_.end(); ++it, ++slot) {
    settings_.SetString(sections::Mru, SlotKey(slot), *it);
  }
}

}  // namespace tavlet
