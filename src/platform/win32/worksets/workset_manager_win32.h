// The workset manager's window (dialog 500) and the file selector (dialog 502)
// on real controls. The manager is modeless on the host's frame and deletes
// itself when its window goes; every action is the portable WorksetManager's.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/win32/file_preview_panel_win32.h"
#include "platform/win32/ui/resizable_dialog_win32.h"
#include "platform/win32/ui/sortable_list_ctrl.h"
#include "worksets/workset_file_selection.h"
#include "worksets/workset_manager.h"

namespace tavlet::win32 {

// A row's texts, kept beside the list so that the compare function can read them
// whatever order the control holds its rows in.
struct ListRowTexts {
  std::vector<std::string> cells;
};
// The list's compare function over ListRowTexts item data: the sort column's
// texts ignoring case, turned round when descending.
int CompareRowTexts(std::intptr_t first, std::intptr_t second, const ui::SortState* state);

// A bitmap resource with its 0xC0C0C0 made the dialog face's colour; null when
// the resource is missing.
HBITMAP LoadButtonBitmap(HINSTANCE instance, int id);

// The path column edits as text, the read-only column from the list "" or "X".
// The Delete key removes the selected files from the workset, file and list
// together, rather than only the rows.
class WorksetFileList final : public SortableListCtrl {
 public:
  using SortableListCtrl::SortableListCtrl;
  void CellOptions(int, int column, std::vector<std::string>& options) override {
    if (column == 1) options = {"", manager_texts::kReadOnlyMark};
  }
  bool CanDeleteRows() override {
    if (onDelete) onDelete();
    return false;
  }
  std::function<void()> onDelete;
};

class WorksetManagerWindow final : public ResizableDialog, private WorksetManagerView {
 public:
  // `settings` holds the placement ("WorkSetDlg") and the list's columns.
  WorksetManagerWindow(const SettingsStore& settings, WorksetManagerServices services);
  // The sheet-selection dialog the manager's sheet-set button runs, kept as long
  // as the manager.
  void AdoptSheetSetDialog(std::unique_ptr<sheetsets::SheetSetDialogRunner> runner);
  ~WorksetManagerWindow() override;

  // Makes `window` (made with new) from the module's resources and shows it at
  // once; the object is then the window's, and deleted with it. Null (and the
  // object deleted) on failure.
  static WorksetManagerWindow* Show(WorksetManagerWindow* window, HWND owner);

  WorksetManager& Logic() { return *logic_; }
  SortableListCtrl& List() { return list_; }
  FilePreviewPanelWindow& Preview() { return preview_; }
  const std::string& ListEmptyText() const { return emptyText_; }
  bool EditingInPlace() const { return list_.Editor() != nullptr; }

 protected:
  bool OnInitDialog() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnOK() override {}
  void OnCancel() override { DestroyWindow(hwnd()); }
  bool OnCommand(WPARAM wParam, LPARAM lParam) override;
  bool OnNotify(NMHDR& header, LRESULT& result) override;
  void OnDestroy() override;
  void OnFinalMessage() override;

 private:
  // WorksetManagerView
  void ResetCombo() override;
  int AddComboName(const std::string& name) override;
  int FindComboExact(const std::string& name) override;
  void SelectComboIndex(int index) override;
  int ComboSelection() override;
  std::string ComboItem(int index) override;
  std::string ComboText() override;
  void SetComboText(const std::string& text) override;
  void SelectComboTextAndFocus() override;
  void EnableCreate(bool enable) override;
  void SetListEmptyText(const std::string& text) override;
  void DeleteAllRows() override;
  void AddRow(const std::string& path, const std::string& readOnlyMark) override;
  int RowCount() override;
  std::string RowText(int row, int column) override;
  std::vector<int> SelectedRows() override;
  void SelectNoRow() override;
  void SetRowText(int row, int column, const std::string& text) override;
  void ClearPreview() override;
  void ShowPreview(const std::vector<std::string>& paths) override;
  int TrackSheetSetMenu(const menus::MenuEntry& menu) override;
  BrowseOutcome BrowseFiles() override;

  static LRESULT CALLBACK ListSubclass(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                       DWORD_PTR self) noexcept;
  void LoadButtonImages();
  HWND Combo() const { return GetDlgItem(hwnd(), manager_ids::kCombo); }

  const SettingsStore& settings_;
  WorksetManagerServices services_;
  std::unique_ptr<sheetsets::SheetSetDialogRunner> sheetSetRunner_;
  std::unique_ptr<WorksetManager> logic_;
  WorksetFileList list_;
  FilePreviewPanelWindow preview_;
  std::deque<ListRowTexts> rows_;
  std::vector<HBITMAP> bitmaps_;
  std::string emptyText_;
  bool ownedByWindow_ = false;
  bool selecting_ = false;  // the logic itself changes the selection
};

// The file selector, run modally; true on OK with the ticked files.
class SelectWsFilesDialog final : public ResizableDialog {
 public:
  SelectWsFilesDialog(const SettingsStore& settings, port::MessageBoxes& boxes, FileSystem& files,
                      std::string worksetsPath, std::string name);
  std::vector<DrawingPath> ticked;
  SortableListCtrl& List() { return list_; }

 protected:
  bool OnInitDialog() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnOK() override;

 private:
  port::MessageBoxes& boxes_;
  FileSystem& files_;
  std::string worksetsPath_;
  std::string name_;
  SortableListCtrl list_;
  std::vector<SelectorRow> rows_;
  std::deque<ListRowTexts> texts_;
};

// SelectAndOpenWorkset's selector: the dialog under the module's resources.
class WorksetFileSelectorWin32 final : public WorksetFileSelector {
 public:
  WorksetFileSelectorWin32(const SettingsStore& settings, port::MessageBoxes& boxes, FileSystem& files, HWND owner)
      : settings_(settings), boxes_(boxes), files_(files), owner_(owner) {}
  bool SelectFiles(const std::string& worksetsPath, const std::string& name,
                   std::vector<DrawingPath>& ticked) override;

 private:
  const SettingsStore& settings_;
  port::MessageBoxes& boxes_;
  FileSystem& files_;
  HWND owner_;
};

// The selector the module's menu uses: the dialog over the running module's
// settings and boxes, owned by the host's frame.
class RunningModuleFileSelector final : public WorksetFileSelector {
 public:
  bool SelectFiles(const std::string& worksetsPath, const std::string& name,
                   std::vector<DrawingPath>& ticked) override;
};

// The "管理..." entry: a new manager over the running module, on `owner`.
void ShowWorksetManager(HWND owner);
// Before the module goes: every open manager is closed (its placement kept).
void CloseWorksetManagers();

}  // namespace tavlet::win32
