// The worksets: named lists of files kept as sections of one private-profile
// file, each entry "文件%i=%s,%i" (path, read-only mark). Nothing is kept in
// memory between two operations: each one opens the file, reads or writes what it
// needs and lets it go, so the manager, the menu and a second host sharing the
// file always see what the file holds.
//
//   WorksetStore store(services);
//   store.OpenWorkset("Site plans");          // every entry, then LastWorkset
//   ProfileFile file(fs, store.GetWorksetsPath(), true);
//   std::vector<DrawingPath> added = {...};
//   store.AddFiles(file, "Site plans", added);  // skips those already in
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "content/id_map.h"
#include "host/port/frame.h"
#include "operations/drawing_path.h"
#include "settings/data_folder.h"
#include "settings/profile_file.h"
#include "settings/settings_store.h"

namespace tavlet {

namespace workset_texts {
inline constexpr const char kNoFiles[] = "在工作集中没有文件!";
inline constexpr const char kAlreadyIn[] = "%i 文件已经在选定的工作集中";
inline constexpr const char kNoneOpenedYet[] = "还没有打开工作!";
inline constexpr const char kSelectMarker[] = "<选择>";
inline constexpr const char kKeyFormat[] = "文件%i";
}  // namespace workset_texts

// The modal selector of a workset's files (dialog 502): true on OK, with the
// ticked files in the dialog's order.
class WorksetFileSelector {
 public:
  virtual ~WorksetFileSelector() = default;
  virtual bool SelectFiles(const std::string& worksetsPath, const std::string& name,
                           std::vector<DrawingPath>& ticked) = 0;
};

// OpenFile(file, complain, restoreDbmod) of the drawing operations.
using OpenFileFunction = std::function<void(const DrawingPath& file, bool complain, bool restoreDbmod)>;

struct WorksetServices {
  FileSystem& files;
  const SettingsStore& settings;
  port::MessageBoxes& boxes;
  UserEnvironment& environment;
  std::string dataFolder;  // with its trailing separator
  OpenFileFunction openFile;
  WorksetFileSelector* selector = nullptr;  // none: the selection opens nothing
};

// "path,flag" as the worksets file holds it: the last part after a ',' is the flag
// (read-only when atoi gives exactly 1), the rest joined again is the path; a value
// without ',' is all path. Nothing is trimmed.
DrawingPath ParseWorksetValue(std::string_view value, FileSystem& files);

// The members the manager lists: only entries whose key begins with the four bytes
// "File". The writer's keys "文件%i" are four bytes too and never match, so the
// manager shows none of the entries this program writes itself; that difference
// between reader and writer is kept as it stands. Appends; returns the count added.
std::size_t ReadWorkset(ProfileFile& file, std::string_view name, std::vector<DrawingPath>& list,
                        FileSystem& files);
// Section names in file order; appends, returns the count added.
std::size_t ListWorksets(ProfileFile& file, std::vector<std::string>& list);

class WorksetStore {
 public:
  explicit WorksetStore(WorksetServices services);

  // "路径" of "工作集" when set; otherwise the path decided once per user
  // (settings/data_folder.h), which is then entered in the settings.
  std::string GetWorksetsPath();

  // Every entry of the section in file order, whatever its key; then LastWorkset.
  void OpenWorkset(const std::string& name);
  // The selection dialog; what it ticked, in its order. LastWorkset stays.
  void SelectAndOpenWorkset(const std::string& name);
  // The menu's "last workset" command.
  void OpenLastWorkset();

  // Drops from `list` every file already in the workset (by ReadWorkset's view,
  // compared with _mbsicmp), says how many, then writes the rest numbered on from
  // the section's key count. Returns the count written.
  std::size_t AddFiles(ProfileFile& file, std::string_view name, std::vector<DrawingPath>& list);
  // The manager's rewrite after an edit: the keys are numbered again from 1.
  std::size_t RewriteWorkset(ProfileFile& file, std::string_view name, std::vector<DrawingPath> list);

  // Two ids a workset: its name (open all), then "<选择>" and its name (select).
  // Sorted as the open drawings are when `sortWorksets`; with `placeholder` and no
  // workset, one id for "没有找到".
  void ListWorksetsForMenu(int& nextId, content::IdMap<DrawingPath>& list, bool placeholder,
                           bool sortWorksets);

 private:
  void ShowBox(const std::string& text);

  WorksetServices services_;
};

}  // namespace tavlet
