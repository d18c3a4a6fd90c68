// A sheet set as read through the host's sheet-set component: the sheets directly
// under it, its subsets (one level: subsets inside subsets aren't walked) with
// their sheets, and its resource folders. Each record keeps the component it was
// read from, so that a rename in the tree reaches the sheet set itself.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/com_error.h"
#include "host/port/sheet_sets.h"
#include "host/port_ptr.h"

namespace tavlet::sheetsets {

struct SheetInfo {
  host::PortPtr<port::SheetSetComponent> sheet;
  std::string file;  // the drawing that holds the sheet's layout
  std::string name, number, title, description;
};

struct SubsetInfo {
  host::PortPtr<port::SheetSetComponent> subset;
  std::vector<SheetInfo> sheets;
  std::string description;
  std::string name;
};

struct ResourceFolderInfo {
  host::PortPtr<port::SheetSetFileReference> reference;
  std::string folder;
};

struct SheetSetInfo {
  host::PortPtr<port::SheetSetComponent> sheetSet;
  std::vector<ResourceFolderInfo> resourceFolders;
  std::vector<SubsetInfo> subsets;
  std::vector<SheetInfo> sheets;
  std::string name;
};

// OpenDatabase(path, false), then the sheet set; raises host::ComError for a
// failed call (E_POINTER for a null object given with success).
host::PortPtr<port::SheetSetComponent> OpenSheetSetComponent(port::SheetSetManager& manager,
                                                            const std::string& path);

// Reads the whole model. Members are told apart by their type name, compared
// exactly with "AcSmSubset" and "AcSmSheet"; any other type is skipped. Raises
// host::ComError at the first failed call; `info` then holds what was read.
void ReadSheetSetModel(const host::PortPtr<port::SheetSetComponent>& sheetSet, SheetSetInfo& info);

}  // namespace tavlet::sheetsets
