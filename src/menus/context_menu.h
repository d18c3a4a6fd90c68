// The bar's right-click menu (MvTavlet's OnContextMenu and OnCommand) as portable
// logic: Build makes the whole menu afresh as a tree and fills the lists whose
// ids it hands out; OnCommand turns a chosen id back into its action. The window
// side hit-tests the click, shows the tree as a popup and sends the choice back.
//
//   ContextMenu menu(services);
//   MenuEntry top = menu.Build(documentUnderPointer);
//   ... TrackPopupMenu over `top` ...
//   menu.EndTracking();
//   menu.OnCommand(chosenId);
#pragma once

#include <functional>
#include <map>
#include <string>

#include "bar/bar_model.h"
#include "content/views.h"
#include "host/automation.h"
#include "host/port/host_session.h"
#include "menus/menu_entry.h"
#include "menus/menu_lists.h"
#include "operations/drawing_operations.h"
#include "sheetsets/sheet_set_commands.h"
#include "worksets/workset_store.h"

namespace tavlet::menus {

// The dialogs the window side owns; an empty one does nothing.
struct MenuDialogs {
  std::function<void()> about;           // the about box on the host's frame
  std::function<void()> options;         // the preferences dialog
  std::function<void()> manageWorksets;  // the workset manager
};

struct MenuServices {
  port::HostSession& session;
  host::AcadApplicationPtr application;
  const SettingsStore& settings;
  FileSystem& files;
  bar::BarModel& bar;                         // tab mode, settings, drawing list, recent files
  operations::DrawingOperations& operations;  // contextDocument, hostVersion, the handlers
  operations::OperationShell& shell;
  WorksetStore& worksets;
  sheetsets::SheetSetCommands& sheetSets;
  content::LayoutChooser& layoutChooser;
  MenuDialogs dialogs;
};

// The check-mark test of the layout and layer-state lists, as the bar makes it:
// a one-byte name equal to the low byte of the id. No real name passes it.
bool ListEntryChecked(const std::string& activeName, int id);

class ContextMenu {
 public:
  explicit ContextMenu(MenuServices services);
  ContextMenu(const ContextMenu&) = delete;  // the message map holds `this`
  ContextMenu& operator=(const ContextMenu&) = delete;

  // The menu for a right click on `document` (null: empty bar). Sets
  // contextDocument, refills every list, and always ends with "选项..." and the
  // about entry, however early a failure cut the rest short.
  MenuEntry Build(port::Document document);
  // After the popup has gone: the workset submenus are forgotten. The lists stay
  // for the choice that follows.
  void EndTracking() { worksetSubmenus_.clear(); }

  // WM_COMMAND: true when the command was taken.
  bool OnCommand(int id);

  // The fixed handlers of this subsystem.
  void OnOpenFolder();
  void OnRefreshPreview();
  void OnRefreshAllPreviews();
  void TogglePreviewLock();
  // The additions behind ExtraDrawingCommands.
  void OnCopyFullPath();
  void OnShowInFolder();

  // OnMenuSelect: the members of the workset whose entry `id` is, for MenuTip;
  // empty when the item names no workset.
  std::string WorksetTip(int id);

  const MenuLists& Lists() const { return lists_; }
  FirstKeys Keys() const;
  // Each workset's "All" id and the place of its submenu, while the popup is up.
  const std::map<int, MenuPath>& WorksetSubmenus() const { return worksetSubmenus_; }

 private:
  void MapFixedCommands();
  // The message map: false when no handler has the id.
  bool RunFixedCommand(int id);
  bool RunExtraCommand(int id);
  std::string ContextDocumentPath();
  // The dynamic id's action; true when it returns 1 of its own.
  bool RunListCommand(int id);
  bool OpenWorksetEntry(const DrawingPath& entry);
  void RestoreLayout(const std::string& name);
  bool RestoreLayerState(const std::string& name);
  bool RestoreView(const content::ViewEntry& view);

  void BuildRecentFiles(MenuEntry& recent, int& nextId);
  void BuildWorksets(MenuEntry& worksets, int& nextId);
  MenuEntry BuildSheetSets(int& nextId, bool& built);
  MenuEntry BuildNewDrawing(int& nextId);
  void BuildDrawingBlock(MenuEntry& top, int& nextId);
  MenuEntry BuildReferences(int& nextId, port::Database db);
  std::string ListText(const DrawingPath& path, bool fullPath) const;
  void FillContentLists(int& nextId, port::Database db);

  void ShowBox(const std::string& text);
  void Print(const std::string& text);
  port::Document CurrentDocument();
  template <class Body>
  void Guarded(const char* line, Body body);

  MenuServices services_;
  std::map<int, std::function<void()>> messageMap_;
  MenuLists lists_;
  std::map<int, MenuPath> worksetSubmenus_;
};

}  // namespace tavlet::menus
