// The sortable list's logic (SortableListCtrl): columns whose widths, sort and
// order are kept under a registry key, sorting on a header click, the decisions of
// in-place editing, the Delete key, cell tips, and the list as comma-separated
// text for the clipboard. The rows are held here; the Win32 list control shows
// them and forwards its notifications.
//
//   SortableList list(registry, "Software\\Morvane\\Tavlet\\2.0 - R16\\WorkSetDlg\\FileList");
//   list.InsertColumn(0, "路径", kPathColumn, kFormatLeft, 300);
//   list.AddRow({"C:\\a.dwg", ""});
//   list.Initialize(&CompareText);   // the stored sort, then sorts
//   list.OnHeaderClick(0);           // flips the direction, stores "Sort"
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "settings/settings_store.h"

namespace tavlet::ui {

// How a column's cells are edited: seven byte flags, copied whole from the
// caller's description at each InsertColumn.
struct ColumnEditMode {
  std::uint8_t editable = 0;    // the cell can be edited at all
  std::uint8_t text = 0;        // in a text box
  std::uint8_t browse = 0;      // with a browse button for a file
  std::uint8_t number = 0;      // digits only
  std::uint8_t folder = 0;      // with a browse button for a folder
  std::uint8_t showOnly = 0;    // the editor only shows the text (ES_READONLY)
  std::uint8_t fixedList = 0;   // a combo box with a fixed list
  bool HasList() const { return fixedList != 0; }
  friend bool operator==(const ColumnEditMode&, const ColumnEditMode&) = default;
};
static_assert(sizeof(ColumnEditMode) == 7, "seven byte flags");

inline constexpr int kFormatLeft = 0;    // LVCFMT_LEFT
inline constexpr int kFormatRight = 1;   // LVCFMT_RIGHT
inline constexpr int kFormatCenter = 2;  // LVCFMT_CENTER

// What the compare function reads through its third argument; the fields and
// their order are the control's own.
class SortableList;
struct SortState {
  std::int32_t sortColumn = -1;
  std::int32_t lastClickColumn = -1;
  bool sortAscending = true;
  const SortableList* sortParam = nullptr;
};
// Like LVM_SORTITEMS's callback: negative, 0 or positive for the two rows' data.
using CompareFunction = int (*)(std::intptr_t first, std::intptr_t second, const SortState* state);

enum class HeaderMark { None, Up, Down };

// The header marks, 7 by 7 pixels, in COLOR_3DFACE with a filled triangle in
// COLOR_3DSHADOW through these points.
inline constexpr std::array<std::array<int, 2>, 3> kUpMarkPoints{{{3, 1}, {4, 6}, {0, 4}}};
inline constexpr std::array<std::array<int, 2>, 3> kDownMarkPoints{{{3, 5}, {2, 0}, {6, 2}}};
inline constexpr int kMarkSize = 7;

inline constexpr std::uint32_t kHeaderDragDrop = 0x10;  // LVS_EX_HEADERDRAGDROP
// EnableColumnReorder(false) combines the style with this by a bitwise or, as the
// control always has: the bit stays and every other bit is set.
inline constexpr std::uint32_t kReorderOffMask = 0xFFFFFFEF;
std::uint32_t ReorderStyle(std::uint32_t extendedStyle, bool enable);

// "Sort": 0 none; n ascending on column n-1; -n descending on column n-1.
int EncodeSort(int column, bool ascending);
void DecodeSort(int stored, std::int32_t& column, bool& ascending);

// A click on a row, as LVM_SUBITEMHITTEST found it.
struct ListHit {
  int row = -1;  // -1: no row
  int column = 0;
  bool onStateIcon = false;  // the check box of column 0
  bool onLabel = false;
};
enum class ClickAction { System, ToggleCheck, StartEdit };
struct ClickPolicy {
  bool editLabels = false;  // LVS_EDITLABELS
  bool editEnabled = false;
  bool editOnFirstClick = false;
  bool checkboxColumnToggles = false;
};
// The decision for a left click on a row (a click on nothing is OnEmptyClick's).
ClickAction DecideClick(const ClickPolicy& policy, const ListHit& hit, bool rowSelected);
// OnEmptyClick's isBelowLastRow: no row hit and the list empty, or the click above
// twice the last row's bottom less its top.
bool IsBelowLastRow(bool rowHit, int rowCount, long clickY, long lastRowTop, long lastRowBottom);

// Where the in-place editor's left edge goes, from the cell's left edge.
long EditorLeftOffset(int column, bool hasList, bool ntAboveFour);
// The editor's window style: WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, ES_READONLY for
// a column that only shows its text.
std::uint32_t EditorStyle(const ColumnEditMode& mode);
inline constexpr int kEditorControlId = 1003;
inline constexpr unsigned kEditorEndNotification = 8;

// The clipboard's text of `rows` cut or padded to `columns` cells: each cell
// followed by ',', the last ',' of a row dropped and '\n' added, the last '\n'
// dropped. Nothing is quoted or escaped.
std::string JoinAsCsv(const std::vector<std::vector<std::string>>& rows, std::size_t columns);

struct ListColumn {
  std::string heading;
  ColumnEditMode mode;
  int format = kFormatLeft;
  int width = 0;
};

struct ListRow {
  std::vector<std::string> cells;
  std::intptr_t data = 0;  // handed to the compare function
  bool checked = false;
  bool selected = false;
};

class SortableList {
 public:
  // `registryKey` below HKEY_CURRENT_USER; empty: nothing is kept.
  SortableList(RegistryBackend& registry, std::string registryKey);
  virtual ~SortableList() = default;

  // The stored width "Col<column+1>" replaces `width`.
  void InsertColumn(int column, std::string heading, const ColumnEditMode& mode, int format, int width);
  // The end of a header drag: with HDI_WIDTH in the mask, the width is stored.
  void OnEndTrack(int column, int newWidth, bool maskHasWidth);
  // Reads "Sort", keeps the compare function and sorts.
  void Initialize(CompareFunction compare);
  void OnHeaderClick(int column);
  HeaderMark MarkOf(int column) const;

  // The column order to apply when reordering is enabled ("Order" read), or empty.
  std::vector<int> StoredOrder() const;
  // WM_DESTROY with reordering on: the order the header shows.
  void SaveOrder(const std::vector<int>& order) const;

  std::size_t AddRow(std::vector<std::string> cells, std::intptr_t data = 0);
  void Sort();
  // Delete: the selected rows, from the last upward, when CanDeleteRows agrees;
  // returns how many went.
  std::size_t OnDeleteKey();
  // An editable cell: a valid column wider than 4 pixels. The mode is the
  // column's, as the owner's CellEditMode changes it for the cell.
  bool CanEditCell(int row, int column, ColumnEditMode& mode) const;
  // TTN_NEEDTEXT: the owner's tip, else the cell's own text.
  std::string CellTip(int row, int column) const;
  // One line a row, cells joined by ',', lines by '\n', no trailing '\n'; nothing
  // quoted or escaped.
  std::string ClipboardText() const;

  const std::vector<ListColumn>& Columns() const { return columns_; }
  std::vector<ListRow>& Rows() { return rows_; }
  const std::vector<ListRow>& Rows() const { return rows_; }
  const SortState& State() const { return state_; }
  CompareFunction Compare() const { return compare_; }
  const std::string& RegistryKey() const { return registryKey_; }

  // The owner's virtuals.
  virtual bool CanDeleteRows() { return true; }
  virtual void GetCellTip(int row, int column, std::string& text) const;
  virtual void CellEditMode(int row, int column, ColumnEditMode& mode) const;
  virtual bool OnEmptyClick(int& row, int& column, bool isBelowLastRow);

 private:
  SettingsStore Store() const;

  RegistryBackend& registry_;
  std::string registryKey_;
  std::vector<ListColumn> columns_;
  std::vector<ListRow> rows_;
  SortState state_;
  CompareFunction compare_ = nullptr;
};

}  // namespace tavlet::ui
