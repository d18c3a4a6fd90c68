// The sheet-set tree (CSheetSetTreeCtrl): a sheet set's model shown with check
// boxes, so that the user can pick drawings. Beside the items it keeps four maps
// from item: to the item's kind, and to the sheet set, subset or sheet it shows.
// The window side fills a tree control from Items() and forwards its
// notifications here.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/port/frame.h"
#include "host/port/sheet_sets.h"
#include "platform/file_system.h"
#include "sheetsets/sheet_set_model.h"
#include "ui/tree_model.h"

namespace tavlet::sheetsets {

enum ItemKind : int { kNoKind = 0, kSheetSetItem = 1, kSubsetItem = 2, kSheetItem = 3, kResourceDrawingItem = 4 };

namespace tree_texts {
inline constexpr const char kNoComponent[] = "不能加载 COM 界面";
inline constexpr const char kUnknownError[] = "未知的错误在 CSheetSetTreeCtrl::Load()!";
inline constexpr const char kResourceFolders[] = "资源文件夹";
inline constexpr const char kResourcesSection[] = "RESOURCES";
}  // namespace tree_texts

struct SheetSetTreeServices {
  port::SheetSetManager* manager = nullptr;  // null: the component couldn't be created
  FileSystem& files;
  port::MessageBoxes& boxes;
  std::string modulePath;  // the module's own file; its side ".ini" filters resources
};

// The module's path without its extension, plus ".ini".
std::string SideIniPath(const std::string& modulePath);

class SheetSetTree {
 public:
  explicit SheetSetTree(SheetSetTreeServices services);
  ~SheetSetTree();
  SheetSetTree(const SheetSetTree&) = delete;
  SheetSetTree& operator=(const SheetSetTree&) = delete;

  // Reads the sheet set at `path` and fills the items. A failed call shows its
  // text in a box and leaves the items built so far.
  void Load(const std::string& path);

  // The end of a label edit: renames the sheet set, subset or sheet; true keeps the text.
  bool OnEndLabelEdit(ui::TreeItem item, const char* text);
  // A right click on a sheet set, subset or sheet tracks an (empty) popup menu.
  bool WantsContextMenu(ui::TreeItem item) const;
  // The drawings of the ticked sheets and resource drawings, in tree order.
  std::vector<std::string> CollectCheckedFiles() const;

  const ui::TreeModel& Items() const { return tree_; }
  ui::TreeModel& Items() { return tree_; }
  int KindOf(ui::TreeItem item) const;
  const SheetInfo* SheetOf(ui::TreeItem item) const;
  bool Modified() const { return modified_; }

 private:
  void LoadModel(const std::string& path);
  void InsertResourceFolder(ui::TreeItem parent, const ResourceFolderInfo& folder);
  ui::TreeItem Insert(ui::TreeItem parent, const std::string& text, int kind, std::string data = {});
  void Release();

  SheetSetTreeServices services_;
  ui::TreeModel tree_;
  std::map<ui::TreeItem, int> kinds_;
  std::map<ui::TreeItem, SheetSetInfo*> sheetSets_;
  std::map<ui::TreeItem, SubsetInfo*> subsets_;
  std::map<ui::TreeItem, SheetInfo*> sheets_;
  std::vector<std::unique_ptr<SheetSetInfo>> models_;
  bool modified_ = false;
};

}  // namespace tavlet::sheetsets
