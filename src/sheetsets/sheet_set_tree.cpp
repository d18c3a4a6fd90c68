#include "sheetsets/sheet_set_tree.h"

#include <cstdio>

#include "operations/drawing_path.h"
#include "settings/profile_file.h"
#include "sheetsets/file_finder.h"

namespace tavlet::sheetsets {
namespace {

std::string ErrorText(const host::ComError& error) {
  if (!error.Description().empty()) return error.Description();
  char text[48];
  std::snprintf(text, sizeof text, "错误 [0x%08X]", error.Bits());
  return text;
}

std::string NameOf(const std::string& path) {
  PathParts parts = SplitPath(path);
  return parts.name + parts.extension;
}

}  // namespace

std::string SideIniPath(const std::string& modulePath) {
  PathParts parts = SplitPath(modulePath);
  return parts.drive + parts.directory + parts.name + ".ini";
}

SheetSetTree::SheetSetTree(SheetSetTreeServices services) : services_(std::move(services)) {}

SheetSetTree::~SheetSetTree() { Release(); }

// The maps go in the reverse order of their declaration, then the models, each
// releasing its component references.
void SheetSetTree::Release() {
  sheets_.clear();
  subsets_.clear();
  sheetSets_.clear();
  kinds_.clear();
  while (!models_.empty()) models_.pop_back();
}

ui::TreeItem SheetSetTree::Insert(ui::TreeItem parent, const std::string& text, int kind, std::string data) {
  const ui::TreeItem item = tree_.Insert(parent, text, std::move(data));
  if (kind != kNoKind) kinds_[item] = kind;
  return item;
}

void SheetSetTree::Load(const std::string& path) {
  Release();
  tree_.Clear();
  modified_ = false;
  if (!services_.manager) {
    tree_.Insert(ui::kNoItem, tree_texts::kNoComponent);
    return;
  }
  long answer = 0;
  try {
    LoadModel(path);
  } catch (const host::ComError& error) {
    services_.boxes.Show(ErrorText(error).c_str(), port::kBoxOk, &answer);
  } catch (...) {
    services_.boxes.Show(tree_texts::kUnknownError, port::kBoxOk, &answer);
  }
}

void SheetSetTree::LoadModel(const std::string& path) {
  host::PortPtr<port::SheetSetComponent> component = OpenSheetSetComponent(*services_.manager, path);
  models_.push_back(std::make_unique<SheetSetInfo>());
  SheetSetInfo& info = *models_.back();
  ReadSheetSetModel(component, info);

  const ui::TreeItem root = Insert(ui::kNoItem, info.name, kSheetSetItem);
  sheetSets_[root] = &info;
  for (SheetInfo& sheet : info.sheets) sheets_[Insert(root, sheet.name, kSheetItem)] = &sheet;
  for (SubsetInfo& subset : info.subsets) {
    const ui::TreeItem item = Insert(root, subset.name, kSubsetItem);
    subsets_[item] = &subset;
    for (SheetInfo& sheet : subset.sheets) sheets_[Insert(item, sheet.name, kSheetItem)] = &sheet;
  }
  const ui::TreeItem resources = Insert(root, tree_texts::kResourceFolders, kNoKind);
  for (const ResourceFolderInfo& folder : info.resourceFolders) InsertResourceFolder(resources, folder);
  tree_.Expand(root);
}

void SheetSetTree::InsertResourceFolder(ui::TreeItem parent, const ResourceFolderInfo& folder) {
  std::vector<std::string> patterns;
  {
    ProfileFile side(services_.files, SideIniPath(services_.modulePath));
    side.GetSectionKeys(tree_texts::kResourcesSection, patterns);
  }
  std::string joined;
  for (const std::string& pattern : patterns) joined += (joined.empty() ? "" : ",") + pattern;
  if (patterns.empty()) joined = "*.*";

  const ui::TreeItem item = Insert(parent, folder.folder, kNoKind);
  FindFilesRecursive(services_.files, folder.folder, joined, [&](const std::string& path) {
    Insert(item, NameOf(path), kResourceDrawingItem, path);
  });
}

int SheetSetTree::KindOf(ui::TreeItem item) const {
  auto it = kinds_.find(item);
  return it == kinds_.end() ? kNoKind : it->second;
}

const SheetInfo* SheetSetTree::SheetOf(ui::TreeItem item) const {
  auto it = sheets_.find(item);
  return it == sheets_.end() ? nullptr : it->second;
}

bool SheetSetTree::OnEndLabelEdit(ui::TreeItem item, const char* text) {
  if (!text || !tree_.Contains(item)) return false;
  port::SheetSetComponent* component = nullptr;
  switch (KindOf(item)) {
    case kSheetSetItem:
      if (auto it = sheetSets_.find(item); it != sheetSets_.end()) component = it->second->sheetSet.Get();
      break;
    case kSubsetItem:
      if (auto it = subsets_.find(item); it != subsets_.end()) component = it->second->subset.Get();
      break;
    case kSheetItem:
      if (auto it = sheets_.find(item); it != sheets_.end()) component = it->second->sheet.Get();
      break;
    default:
      break;
  }
  if (!component) return false;
  try {
    host::ThrowIfFailed(component->SetName(text));
  } catch (const host::ComError& error) {
    long answer = 0;
    services_.boxes.Show(ErrorText(error).c_str(), port::kBoxOk, &answer);
    return false;
  } catch (...) {
    return false;
  }
  modified_ = true;
  tree_.Node(item).text = text;
  return true;
}

bool SheetSetTree::WantsContextMenu(ui::TreeItem item) const {
  const int kind = KindOf(item);
  return kind == kSheetSetItem || kind == kSubsetItem || kind == kSheetItem;
}

std::vector<std::string> SheetSetTree::CollectCheckedFiles() const {
  std::vector<std::string> files;
  tree_.Walk([&](ui::TreeItem item) {
    const ui::TreeNode& node = tree_.Node(item);
    if (!node.checked) return;
    const int kind = KindOf(item);
    if (kind == kSheetItem) {
      if (const SheetInfo* sheet = SheetOf(item)) files.push_back(sheet->file);
    } else if (kind == kResourceDrawingItem && !node.data.empty()) {
      files.push_back(node.data);
    }
  });
  return files;
}

}  // namespace tavlet::sheetsets
