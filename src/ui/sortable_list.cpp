#include "ui/sortable_list.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tavlet::ui {

std::uint32_t ReorderStyle(std::uint32_t extendedStyle, bool enable) {
  if (enable) return extendedStyle | kHeaderDragDrop;
  if (extendedStyle & kHeaderDragDrop) return extendedStyle | kReorderOffMask;
  return extendedStyle;
}

int EncodeSort(int column, bool ascending) { return ascending ? column + 1 : -(column + 1); }

void DecodeSort(int stored, std::int32_t& column, bool& ascending) {
  if (stored == 0) {
    column = -1;
    return;
  }
  ascending = stored > 0;
  column = (stored > 0 ? stored : -stored) - 1;
}

ClickAction DecideClick(const ClickPolicy& policy, const ListHit& hit, bool rowSelected) {
  if (!policy.editLabels || hit.row < 0) return ClickAction::System;
  if (!policy.editEnabled || !(rowSelected || policy.editOnFirstClick)) return ClickAction::System;
  if (policy.checkboxColumnToggles && hit.column == 0 && hit.onStateIcon && !hit.onLabel)
    return ClickAction::ToggleCheck;
  return ClickAction::StartEdit;
}

bool IsBelowLastRow(bool rowHit, int rowCount, long clickY, long lastRowTop, long lastRowBottom) {
  if (!rowHit && rowCount == 0) return true;
  return clickY < 2 * lastRowBottom - lastRowTop;
}

long EditorLeftOffset(int column, bool hasList, bool ntAboveFour) {
  if (column == 0) return hasList ? -1 : 2;
  if (ntAboveFour) return 6;
  return hasList ? 5 : 8;
}

std::uint32_t EditorStyle(const ColumnEditMode& mode) {
  return 0x50000080u | (mode.showOnly ? 0x800u : 0u);
}

SortableList::SortableList(RegistryBackend& registry, std::string registryKey)
    : registry_(registry), registryKey_(std::move(registryKey)) {
  state_.sortParam = this;
}

SettingsStore SortableList::Store() const { return SettingsStore(registry_, registryKey_); }

namespace {
std::string ColumnValue(int column) {
  char name[24];
  std::snprintf(name, sizeof name, "Col%i", column + 1);
  return name;
}
}  // namespace

void SortableList::InsertColumn(int column, std::string heading, const ColumnEditMode& mode, int format, int width) {
  const std::size_t at = std::clamp<std::size_t>(static_cast<std::size_t>(std::max(column, 0)), 0, columns_.size());
  if (!registryKey_.empty()) width = Store().GetInt("", ColumnValue(static_cast<int>(at)), width);
  columns_.insert(columns_.begin() + static_cast<std::ptrdiff_t>(at), {std::move(heading), mode, format, width});
  for (ListRow& row : rows_)
    if (row.cells.size() >= at) row.cells.insert(row.cells.begin() + static_cast<std::ptrdiff_t>(at), std::string());
}

void SortableList::OnEndTrack(int column, int newWidth, bool maskHasWidth) {
  if (!maskHasWidth || column < 0 || static_cast<std::size_t>(column) >= columns_.size()) return;
  columns_[static_cast<std::size_t>(column)].width = newWidth;
  if (!registryKey_.empty()) Store().SetInt("", ColumnValue(column), newWidth);
}

void SortableList::Initialize(CompareFunction compare) {
  if (!registryKey_.empty()) DecodeSort(Store().GetInt("", "Sort", 0), state_.sortColumn, state_.sortAscending);
  compare_ = compare;
  Sort();
}

void SortableList::OnHeaderClick(int column) {
  if (column == state_.sortColumn)
    state_.sortAscending = !state_.sortAscending;
  else
    state_.sortColumn = column;
  state_.lastClickColumn = -1;
  if (!registryKey_.empty()) Store().SetInt("", "Sort", EncodeSort(state_.sortColumn, state_.sortAscending));
  Sort();
}

HeaderMark SortableList::MarkOf(int column) const {
  if (!compare_ || column != state_.sortColumn) return HeaderMark::None;
  return state_.sortAscending ? HeaderMark::Up : HeaderMark::Down;
}

std::vector<int> SortableList::StoredOrder() const {
  std::vector<int> order;
  if (registryKey_.empty()) return order;
  const std::string text = Store().GetString("", "Order", "");
  if (text.empty()) return order;
  std::size_t start = 0;
  for (;;) {
    const std::size_t comma = text.find(',', start);
    order.push_back(std::atoi(text.substr(start, comma - start).c_str()));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  return order;
}

void SortableList::SaveOrder(const std::vector<int>& order) const {
  if (registryKey_.empty()) return;
  std::string text;
  for (std::size_t i = 0; i < order.size(); ++i) text += (i ? "," : "") + std::to_string(order[i]);
  Store().SetString("", "Order", text);
}

std::size_t SortableList::AddRow(std::vector<std::string> cells, std::intptr_t data) {
  cells.resize(std::max(cells.size(), columns_.size()));
  rows_.push_back({std::move(cells), data, false, false});
  return rows_.size() - 1;
}

void SortableList::Sort() {
  if (!compare_) return;
  std::stable_sort(rows_.begin(), rows_.end(), [this](const ListRow& a, const ListRow& b) {
    return compare_(a.data, b.data, &state_) < 0;
  });
}

std::size_t SortableList::OnDeleteKey() {
  if (!CanDeleteRows()) return 0;
  std::size_t deleted = 0;
  for (std::size_t i = rows_.size(); i-- > 0;) {
    if (!rows_[i].selected) continue;
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(i));
    ++deleted;
  }
  return deleted;
}

bool SortableList::CanEditCell(int row, int column, ColumnEditMode& mode) const {
  if (column < 0 || static_cast<std::size_t>(column) >= columns_.size()) return false;
  if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return false;
  if (columns_[static_cast<std::size_t>(column)].width <= 4) return false;
  mode = columns_[static_cast<std::size_t>(column)].mode;
  CellEditMode(row, column, mode);
  return true;
}

std::string SortableList::CellTip(int row, int column) const {
  std::string text;
  GetCellTip(row, column, text);
  if (!text.empty()) return text;
  if (row < 0 || static_cast<std::size_t>(row) >= rows_.size()) return text;
  const std::vector<std::string>& cells = rows_[static_cast<std::size_t>(row)].cells;
  return column >= 0 && static_cast<std::size_t>(column) < cells.size() ? cells[static_cast<std::size_t>(column)]
                                                                           : text;
}

std::string JoinAsCsv(const std::vector<std::vector<std::string>>& rows, std::size_t columns) {
  std::string text;
  for (const std::vector<std::string>& row : rows) {
    for (std::size_t c = 0; c < columns; ++c) {
      if (c < row.size()) text += row[c];
      text += ',';
    }
    if (!text.empty() && text.back() == ',') text.pop_back();
    text += '\n';
  }
  if (!text.empty()) text.pop_back();
  return text;
}

std::string SortableList::ClipboardText() const {
  std::vector<std::vector<std::string>> cells;
  cells.reserve(rows_.size());
  for (const ListRow& row : rows_) cells.push_back(row.cells);
  return JoinAsCsv(cells, columns_.size());
}

void SortableList::GetCellTip(int, int, std::string&) const {}
void SortableList::CellEditMode(int, int, ColumnEditMode&) const {}
bool SortableList::OnEmptyClick(int&, int&, bool) { return false; }

}  // namespace tavlet::ui
