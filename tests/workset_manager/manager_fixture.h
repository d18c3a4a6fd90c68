// The workset manager over the simulated host, with its controls held in memory:
// a sorted combo box, a list of rows with a selection, and a preview that keeps
// what it was last given.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "text/codepage.h"
#include "worksets/workset_fixture.h"
#include "worksets/workset_manager.h"

namespace tavlet {

class MemoryManagerView final : public WorksetManagerView {
 public:
  void ResetCombo() override {
    names.clear();
    selection = -1;
    comboText.clear();
  }
  int AddComboName(const std::string& name) override {
    // CBS_SORT: case does not order, as the control compares.
    auto at = std::upper_bound(names.begin(), names.end(), name, [](const std::string& a, const std::string& b) {
      return text::Mbsicmp(a, b) < 0;
    });
    const auto index = at - names.begin();
    names.insert(at, name);
    return static_cast<int>(index);
  }
  int FindComboExact(const std::string& name) override {
    for (std::size_t i = 0; i < names.size(); ++i)
      if (text::Mbsicmp(names[i], name) == 0) return static_cast<int>(i);
    return -1;
  }
  void SelectComboIndex(int index) override {
    selection = index;
    if (index >= 0) comboText = names.at(static_cast<std::size_t>(index));
  }
  int ComboSelection() override { return selection; }
  std::string ComboItem(int index) override { return names.at(static_cast<std::size_t>(index)); }
  std::string ComboText() override { return comboText; }
  void SetComboText(const std::string& text) override { comboText = text; }
  void SelectComboTextAndFocus() override { ++comboFocused; }
  void EnableCreate(bool enable) override { createEnabled = enable; }

  void SetListEmptyText(const std::string& text) override { emptyText = text; }
  void DeleteAllRows() override {
    rows.clear();
    selected.clear();
  }
  void AddRow(const std::string& path, const std::string& mark) override { rows.push_back({path, mark}); }
  int RowCount() override { return static_cast<int>(rows.size()); }
  std::string RowText(int row, int column) override {
    return rows.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(column));
  }
  std::vector<int> SelectedRows() override { return selected; }
  void SelectNoRow() override { selected.clear(); }
  void SetRowText(int row, int column, const std::string& text) override {
    if (row >= 0 && row < RowCount()) rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = text;
  }
  void ClearPreview() override { preview.clear(); }
  void ShowPreview(const std::vector<std::string>& paths) override { preview = paths; }
  int TrackSheetSetMenu(const menus::MenuEntry& menu) override {
    shownMenu = menus::DescribeMenu(menu);
    return menuChoice;
  }
  BrowseOutcome BrowseFiles() override { return browse; }

  // "path|mark" a row.
  Lines RowLines() const {
    Lines out;
    for (const auto& row : rows) out.push_back(row[0] + "|" + row[1]);
    return out;
  }
  // As the user types a name: the edit's text and CBN_EDITCHANGE.
  void Type(WorksetManager& manager, const std::string& text) {
    selection = -1;
    comboText = text;
    manager.OnEditChange(text);
  }
  // As the user picks a name in the drop-down.
  void Pick(WorksetManager& manager, const std::string& name) {
    SelectComboIndex(FindComboExact(name));
    manager.OnSelectionChange();
  }

  Lines names;
  int selection = -1;
  std::string comboText;
  int comboFocused = 0;
  bool createEnabled = false;
  std::string emptyText;
  std::vector<std::vector<std::string>> rows;
  std::vector<int> selected;
  Lines preview{"<untouched>"};
  std::string shownMenu;
  int menuChoice = 0;
  BrowseOutcome browse;
};

struct ManagerWorld : WorksetWorld {
  // The manager takes the file's path when it is made: a test sets the file first.
  WorksetManager& Manager(bool recordOpens = false) {
    if (!manager) {
      worksets = std::make_unique<WorksetStore>(Services(recordOpens));
      WorksetManagerServices services{*worksets, *host.Boxes(), files, store,
                                      host::GetAcadApplication(host), nullptr, 0, nullptr, nullptr, {}};
      services.openFile = Services(recordOpens).openFile;
      services.chooseReferences = [this](std::vector<std::string>& paths) {
        paths = references;
        return referencesOk;
      };
      manager = std::make_unique<WorksetManager>(services, view);
      manager->OnInitDialog();
    }
    return *manager;
  }
  Lines Boxes() const { return BoxTexts(); }

  MemoryManagerView view;
  Lines references;
  bool referencesOk = true;
  std::unique_ptr<WorksetStore> worksets;
  std::unique_ptr<WorksetManager> manager;
};

}  // namespace tavlet
