// The sortable list on a real list-view control: the control is subclassed, so
// that its header's clicks and drags, the Delete key and its destruction reach
// the portable model (ui::SortableList), which keeps widths, sort and order in
// the registry. The rows live in the control; each row's item data is what the
// owner's compare function receives.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

#include "ui/sortable_list.h"

namespace tavlet::win32 {

// The registered clipboard format of the list's text.
inline constexpr const char kCsvClipboardFormat[] = "Csv";

class SortableListCtrl {
 public:
  SortableListCtrl(RegistryBackend& registry, std::string registryKey);
  virtual ~SortableListCtrl();
  SortableListCtrl(const SortableListCtrl&) = delete;
  SortableListCtrl& operator=(const SortableListCtrl&) = delete;

  // Takes over a report-style list-view control (a dialog's child, say).
  bool Attach(HWND list);
  HWND hwnd() const { return list_; }
  ui::SortableList& Model() { return model_; }

  // Adds the column, then gives it its stored width.
  int InsertColumn(int column, const char* heading, const ui::ColumnEditMode& mode, int format, int width,
                   int subItem = -1);
  int AddRow(const std::vector<std::string>& cells, LPARAM data);
  std::string CellText(int row, int column) const;
  int RowCount() const;

  // Reads the stored sort, keeps the function and sorts.
  void Initialize(ui::CompareFunction compare);
  void EnableColumnReorder(bool enable);
  // Puts the rows on the clipboard as comma-separated text, under "Csv" and as
  // plain text. False when the clipboard can't be opened.
  bool CopyToClipboard();

  virtual bool CanDeleteRows() { return true; }
  // The owner's say on a cell's edit mode, and on a click below the rows (true:
  // edit the row and column it gives).
  virtual void CellEditMode(int, int, ui::ColumnEditMode&) {}
  virtual bool OnEmptyClick(int&, int&, bool) { return false; }
  // The choices of a cell whose column edits with a list.
  virtual void CellOptions(int, int, std::vector<std::string>&) {}

  // Editing in place (a list with LVS_EDITLABELS): a text box, or a combo box for a
  // column with a list, over the cell. It commits on Enter or when it loses the
  // focus, by LVN_ENDLABELEDIT to the list's parent (a non-zero answer takes the
  // text into the cell), and cancels on Escape.
  bool StartEdit(int row, int column);
  HWND Editor() const { return editor_; }
  void EnableEditing(bool enable, bool onFirstClick = false, bool checkboxToggles = false);

 private:
  static LRESULT CALLBACK Subclass(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                   DWORD_PTR self) noexcept;
  static int CALLBACK CompareTrampoline(LPARAM first, LPARAM second, LPARAM state) noexcept;
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnHeaderNotify(const NMHEADERA& header);
  void SortRows();
  void UpdateMarks();
  void DeleteSelectedRows();
  HWND Header() const;
  void OnLeftClick(WPARAM wParam, LPARAM lParam);
  void EndEdit(bool commit);
  static LRESULT CALLBACK EditorSubclass(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                         DWORD_PTR self) noexcept;

  ui::SortableList model_;
  HWND list_ = nullptr;
  HBITMAP upArrow_ = nullptr;
  HBITMAP downArrow_ = nullptr;
  HWND editor_ = nullptr;
  int editRow_ = -1;
  int editColumn_ = -1;
  bool ending_ = false;
  ui::ClickPolicy policy_;
};

}  // namespace tavlet::win32
