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

  ui::SortableList model_;
  HWND list_ = nullptr;
  HBITMAP upArrow_ = nullptr;
  HBITMAP downArrow_ = nullptr;
};

}  // namespace tavlet::win32
