// What the bar's right click and double click act through, assembled once the
// bar exists: the drawing operations, the workset store, the sheet-set commands
// and the context menu over them. The module owns it beside the bar; the window
// side reaches it through the running module.
#pragma once

#include <memory>

#include "bar/bar_model.h"
#include "content/views.h"
#include "host/automation.h"
#include "host/port/host_session.h"
#include "menus/context_menu.h"
#include "operations/drawing_operations.h"
#include "operations/operation_shell.h"
#include "settings/data_folder.h"
#include "sheetsets/sheet_set_commands.h"
#include "worksets/workset_store.h"

namespace tavlet::menus {

// The desktop's parts; a null one is replaced by one that does nothing (the
// shell, the layout question) or reads the environment (the user).
struct BarMenuServices {
  port::HostSession& session;
  host::AcadApplicationPtr application;
  host::WindowSystem& windows;
  const SettingsStore& settings;
  FileSystem& files;
  bar::BarModel& bar;
  operations::OperationShell* shell = nullptr;
  UserEnvironment* user = nullptr;
  content::LayoutChooser* layoutChooser = nullptr;
  sheetsets::SheetSetDialogRunner* sheetSetDialog = nullptr;
  MenuDialogs dialogs;
  WorksetFileSelector* worksetSelector = nullptr;  // none: "<选择>" opens nothing
};

class BarMenu {
 public:
  explicit BarMenu(BarMenuServices services);
  ~BarMenu();
  BarMenu(const BarMenu&) = delete;
  BarMenu& operator=(const BarMenu&) = delete;

  ContextMenu& Menu() { return *menu_; }
  operations::DrawingOperations& Operations() { return *operations_; }
  WorksetStore& Worksets() { return *worksets_; }
  sheetsets::SheetSetCommands& SheetSets() { return *sheetSets_; }
  // The per-user data folder, with its trailing separator.
  const std::string& DataFolder() const { return dataFolder_; }

  // WM_LBUTTONDBLCLK on the bar: with Ctrl the last workset, else the newest
  // recent file.
  void OnDoubleClick(unsigned flags);

 private:
  struct Fallbacks;
  std::unique_ptr<Fallbacks> fallbacks_;
  std::string dataFolder_;
  std::unique_ptr<operations::DrawingOperations> operations_;
  std::unique_ptr<WorksetStore> worksets_;
  std::unique_ptr<sheetsets::SheetSetCommands> sheetSets_;
  std::unique_ptr<ContextMenu> menu_;
};

}  // namespace tavlet::menus
