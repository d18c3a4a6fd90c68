#include "worksets/workset_manager.h"

#include <algorithm>
#include <cstdio>

#include "host/com_error.h"
#include "settings/settings_table.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

std::string Format(const char* format, const std::string& argument) {
  std::string out(std::snprintf(nullptr, 0, format, argument.c_str()) + 1, '\0');
  std::snprintf(out.data(), out.size(), format, argument.c_str());
  out.pop_back();
  return out;
}

void AppendList(menus::MenuEntry& menu, const char* title, const content::IdMap<DrawingPath>& list) {
  menus::MenuEntry sub;
  for (const auto& [id, path] : list)
    sub.Append(id, path.Full, path.Full == content::kNotFound ? menus::kGrayed : menus::kEnabled);
  menu.AppendPopup(title, std::move(sub));
}

}  // namespace

WorksetManagerLayout LayOutWorksetManager(const ui::Rect& client, const ui::DialogUnits& units) {
  using ui::Rect;
  const Rect area = ui::Deflate(client, 2);
  const long row = units.ToPixelsY(16);
  const long square = units.ToPixelsX(16);
  WorksetManagerLayout l;
  const long comboRight = area.right - units.ToPixelsX(32);
  l.label = {area.left, area.top, area.left + units.ToPixelsX(40), area.top + row};
  l.combo = {l.label.right, area.top, comboRight, area.top + row};
  l.create = {comboRight, area.top, comboRight + square, area.top + row};
  l.remove = {l.create.right, area.top, l.create.right + square, area.top + row};
  l.group = {area.left, area.top + row, area.right, area.bottom};
  const Rect inner{l.group.left + units.ToPixelsX(4), l.group.top + units.ToPixelsY(10),
                   l.group.right - units.ToPixelsX(4), l.group.bottom - units.ToPixelsY(4)};
  long x = inner.left;
  auto next = [&](long gapBefore) {
    x += gapBefore;
    const Rect r{x, inner.top, x + square, inner.top + row};
    x = r.right;
    return r;
  };
  l.open = next(0);
  l.removeFiles = next(0);
  l.browse = next(units.ToPixelsX(24));
  l.addReferences = next(0);
  l.addOpen = next(0);
  l.addSheetSet = next(0);
  const long listTop = inner.top + row + 2;
  const long split = inner.right - units.ToPixelsX(70);
  l.list = {inner.left, listTop, split, inner.bottom};
  l.preview = {split, listTop, inner.right, inner.bottom};
  return l;
}

WorksetManager::WorksetManager(WorksetManagerServices services, WorksetManagerView& view)
    : services_(std::move(services)),
      view_(view),
      profile_(services_.files, services_.store.GetWorksetsPath(), true) {}

int WorksetManager::Ask(const std::string& text, unsigned long type) {
  long answer = 0;
  services_.boxes.Show(text.c_str(), type, &answer);
  return static_cast<int>(answer);
}

void WorksetManager::OnInitDialog() {
  FillCombo();
  const std::string last = ReadString(services_.settings, keys::RecentWorkset);
  if (last.empty()) return;
  const int index = view_.FindComboExact(last);
  if (index < 0) return;
  view_.SelectComboIndex(index);
  ListWorkset(last);
}

void WorksetManager::FillCombo() {
  view_.ResetCombo();
  std::vector<std::string> names;
  ListWorksets(profile_, names);
  for (const std::string& name : names) view_.AddComboName(name);
  view_.SetComboText(names.empty() ? manager_texts::kTypeAName : manager_texts::kChooseOne);
  view_.SetListEmptyText(names.empty() ? manager_texts::kEmptyCreateAbove : manager_texts::kEmptyChooseAbove);
  view_.ClearPreview();
  view_.DeleteAllRows();
}

bool WorksetManager::GetSelectedWorkset(std::string& name) {
  const int selected = view_.ComboSelection();
  if (selected >= 0) {
    name = view_.ComboItem(selected);
    return true;
  }
  if (typedName_.empty()) {
    Box(manager_texts::kNoWorksetChosen);
    FillCombo();
  } else {
    Box(Format(manager_texts::kTypedNotCreated, typedName_));
  }
  return false;
}

std::string WorksetManager::ValidateNewName() {
  const std::string name = view_.ComboText();
  const char* problem = nullptr;
  if (name.empty() || name == manager_texts::kTypeAName || name == manager_texts::kChooseOne) {
    problem = manager_texts::kNeedsAName;
  } else {
    std::vector<std::string> names;
    ListWorksets(profile_, names);
    for (const std::string& existing : names)
      if (text::Mbsicmp(existing, name) == 0) problem = manager_texts::kNameInUse;
  }
  if (!problem) return name;
  Box(problem);
  view_.SelectComboTextAndFocus();
  return {};
}

void WorksetManager::ListWorkset(const std::string& name) {
  view_.DeleteAllRows();
  std::vector<DrawingPath> members;
  ReadWorkset(profile_, name, members, services_.files);
  for (const DrawingPath& member : members)
    view_.AddRow(member.Full, member.readOnly ? manager_texts::kReadOnlyMark : "");
  view_.SelectNoRow();
  view_.ClearPreview();
}

void WorksetManager::OnEditChange(const std::string& text) {
  typedName_ = text;
  view_.EnableCreate(true);
}

void WorksetManager::OnSelectionChange() {
  const int selected = view_.ComboSelection();
  if (selected < 0) return;
  const std::string name = view_.ComboItem(selected);
  view_.SetListEmptyText(manager_texts::kEmptyNoFilesYet);
  ListWorkset(name);
  WriteString(services_.settings, keys::RecentWorkset, name);
  view_.ClearPreview();
}

void WorksetManager::OnCreate() {
  const std::string name = ValidateNewName();
  if (name.empty()) return;
  view_.SelectComboIndex(view_.AddComboName(name));
  profile_.EnsureSection(name);
  ListWorkset(name);
}

void WorksetManager::OnDelete() {
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  if (Ask(Format(manager_texts::kRemoveQuestion, name), port::kBoxYesNo) != port::kAnswerYes) return;
  profile_.DeleteSection(name);
  FillCombo();
}

std::vector<int> WorksetManager::AllRows() {
  std::vector<int> rows;
  for (int row = 0, count = view_.RowCount(); row < count; ++row) rows.push_back(row);
  return rows;
}

std::vector<DrawingPath> WorksetManager::RowsAsPaths(const std::vector<int>& rows) {
  std::vector<DrawingPath> paths;
  for (int row : rows) {
    DrawingPath path(view_.RowText(row, 0), services_.files);
    path.readOnly = text::Mbscmp(view_.RowText(row, 1), manager_texts::kReadOnlyMark) == 0;
    paths.push_back(std::move(path));
  }
  return paths;
}

std::vector<DrawingPath> WorksetManager::FromPaths(const std::vector<std::string>& paths) {
  std::vector<DrawingPath> out;
  for (const std::string& path : paths) out.emplace_back(path, services_.files);
  return out;
}

void WorksetManager::AddAndList(const std::string& name, std::vector<DrawingPath> files) {
  services_.store.AddFiles(profile_, name, files);
  ListWorkset(name);
}

// A file that can't be written keeps its section whole; the list then shows it
// again as it stands, rather than reporting its members as duplicates.
void WorksetManager::ClearAndAdd(const std::string& name, std::vector<DrawingPath> files) {
  if (!profile_.ClearSection(name)) {
    ListWorkset(name);
    return;
  }
  AddAndList(name, std::move(files));
}

void WorksetManager::RewriteWorkset(const std::string& name) {
  std::vector<DrawingPath> rows = RowsAsPaths(AllRows());
  ClearAndAdd(name, std::move(rows));
}

void WorksetManager::OnEndLabelEdit(int row, int column, const char* text) {
  if (column != 0 && column != 1) return;
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  // The rows as they stood before the edit are what goes to the file.
  RewriteWorkset(name);
  if (text) view_.SetRowText(row, column, text);
}

void WorksetManager::OnAddOpenDrawings() {
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  std::vector<DrawingPath> open;
  if (services_.application) {
    try {
      const host::AcadDocumentsPtr documents = services_.application.Documents();
      for (long i = 0, count = documents.Count(); i < count; ++i) {
        const host::AcadDocumentPtr document = documents.Item(i);
        if (!document) continue;
        DrawingPath path(document.FullName(), services_.files);
        // The automation's true is VARIANT_TRUE (-1), and the test is for exactly
        // 1, so drawings go in unmarked; the test is kept as it has always been.
        const short readOnly = document.ReadOnly() ? -1 : 0;
        path.readOnly = readOnly == 1;
        open.push_back(std::move(path));
      }
    } catch (const host::ComError&) {
      // The drawings read so far still go in.
    }
  }
  AddAndList(name, std::move(open));
}

void WorksetManager::OnAddFromSheetSet() {
  if (!(services_.hostVersion > 16.0)) {
    Box(manager_texts::kNeedsSheetSets);
    return;
  }
  std::string name;
  if (!GetSelectedWorkset(name) || !services_.sheetSets) return;
  sheetsets::SheetSetCommands& sheetSets = *services_.sheetSets;
  int nextId = manager_ids::kFirstSheetSetId;
  sheetSets.FillSheetSetLists(nextId, true);
  menus::MenuEntry menu;
  AppendList(menu, manager_texts::kRecentMenu, sheetSets.recentSheetSets);
  AppendList(menu, manager_texts::kFoundMenu, sheetSets.foundSheetSets);
  const int chosen = view_.TrackSheetSetMenu(menu);
  auto found = sheetSets.recentSheetSets.find(chosen);
  if (found == sheetSets.recentSheetSets.end()) {
    found = sheetSets.foundSheetSets.find(chosen);
    if (found == sheetSets.foundSheetSets.end()) return;
  }
  std::vector<std::string> drawings;
  if (!services_.sheetSetDialog || !services_.sheetSetDialog->Run(found->second.Full, drawings)) return;
  AddAndList(name, FromPaths(drawings));
}

void WorksetManager::OnBrowse() {
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  const BrowseOutcome outcome = view_.BrowseFiles();
  if (!outcome.ok) {
    if (outcome.extendedError == kBrowseBufferTooSmall) Box(manager_texts::kTooManyFiles);
    return;
  }
  if (outcome.paths.empty()) {
    Box(manager_texts::kNoFileChosen);
    return;
  }
  AddAndList(name, FromPaths(outcome.paths));
}

void WorksetManager::OnRemoveSelected() {
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  const std::vector<int> selected = view_.SelectedRows();
  if (selected.empty()) {
    Box(manager_texts::kNothingSelected);
    return;
  }
  std::vector<int> kept;
  for (int row : AllRows())
    if (std::find(selected.begin(), selected.end(), row) == selected.end()) kept.push_back(row);
  ClearAndAdd(name, RowsAsPaths(kept));
}

void WorksetManager::OnAddReferences() {
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  std::vector<std::string> paths;
  if (!services_.chooseReferences || !services_.chooseReferences(paths)) return;
  AddAndList(name, FromPaths(paths));
}

void WorksetManager::OnOpenSelected() {
  std::string name;
  if (!GetSelectedWorkset(name)) return;
  const std::vector<int> selected = view_.SelectedRows();
  if (selected.empty()) {
    Box(manager_texts::kNothingSelected);
    return;
  }
  for (const DrawingPath& path : RowsAsPaths(selected))
    if (services_.openFile) services_.openFile(path, true, true);
}

void WorksetManager::OnRowSelectionChanged() {
  std::vector<std::string> paths;
  for (int row : view_.SelectedRows()) paths.push_back(view_.RowText(row, 0));
  view_.ShowPreview(paths);
}

}  // namespace tavlet
