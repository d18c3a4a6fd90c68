#include "platform/win32/worksets/workset_manager_win32.h"

#include <commdlg.h>
#include <shellapi.h>

#include <cstring>
#include <set>

#include "host/com_error.h"
#include "host/module.h"
#include "platform/win32/content/references_dialog_win32.h"
#include "platform/win32/menus/context_menu_win32.h"
#include "platform/win32/sheetsets/sheet_set_dialog_win32.h"
#include "platform/win32/window.h"
#include "platform/win32/worksets/workset_manager.rh"
#include "settings/settings_table.h"
#include "text/codepage.h"

namespace tavlet::win32 {

static_assert(IDD_WORKSET_MANAGER == manager_ids::kDialog && IDD_SELECT_WS_FILES == selector_ids::kDialog);
static_assert(IDC_WS_COMBO == manager_ids::kCombo && IDC_WS_LIST == manager_ids::kList);
static_assert(IDC_WS_CREATE == manager_ids::kCreate && IDC_WS_DELETE == manager_ids::kDelete);
static_assert(IDC_WS_PREVIEW == manager_ids::kPreview && IDC_WS_FILE_LIST == selector_ids::kList);
static_assert(IDC_WS_OPEN == manager_ids::kOpenSelected && IDC_WS_REMOVE_FILES == manager_ids::kRemoveSelected);
static_assert(IDC_WS_BROWSE == manager_ids::kBrowse && IDC_WS_ADD_SHEET_SET == manager_ids::kAddFromSheetSet);
static_assert(IDC_WS_ADD_OPEN == manager_ids::kAddOpenDrawings && IDC_WS_ADD_REFERENCES == manager_ids::kAddReferences);

namespace {

constexpr UINT_PTR kEmptyTextSubclassId = 0x5745;

// The managers open now: nothing stops the user from opening a second one, and
// all of them go before the module that they work through.
std::set<WorksetManagerWindow*>& OpenManagers() {
  static std::set<WorksetManagerWindow*> open;
  return open;
}

// The host's message loop knows nothing of these modeless dialogs: a hook on it
// gives them their keyboard (Tab, arrows, Enter, Escape) as a dialog has it.
HHOOK dialogKeysHook = nullptr;

LRESULT CALLBACK DialogKeys(int code, WPARAM wParam, LPARAM lParam) noexcept {
  if (code == HC_ACTION && wParam == PM_REMOVE && lParam) {
    MSG& message = *reinterpret_cast<MSG*>(lParam);
    if (message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST) {
      for (WorksetManagerWindow* window : OpenManagers()) {
        HWND dialog = window->hwnd();
        // The in-place editor takes Enter and Escape itself.
        if (!dialog || window->EditingInPlace()) continue;
        if ((message.hwnd == dialog || IsChild(dialog, message.hwnd)) && IsDialogMessageA(dialog, &message)) {
          message.message = WM_NULL;
          break;
        }
      }
    }
  }
  return CallNextHookEx(dialogKeysHook, code, wParam, lParam);
}

void WatchDialogKeys(bool any) {
  if (any && !dialogKeysHook) dialogKeysHook = SetWindowsHookExA(WH_GETMESSAGE, DialogKeys, nullptr, GetCurrentThreadId());
  if (!any && dialogKeysHook) {
    UnhookWindowsHookEx(dialogKeysHook);
    dialogKeysHook = nullptr;
  }
}
// The manager's smallest size, in dialog units: the top row and the button row
// stay usable.
constexpr long kManagerMinWidth = 200;
constexpr long kManagerMinHeight = 120;

ui::ResizableDialogState StateFor(const SettingsStore& settings, std::string_view section) {
  ui::ResizableDialogState state;
  state.settingsRoot = settings.Root();
  state.settingsSection = std::string(section);
  return state;
}

std::string ListKey(const SettingsStore& settings, std::string_view section) {
  return settings.Root() + "\\" + std::string(section) + "\\FileList";
}

constexpr ui::ColumnEditMode kPathMode{1, 1, 1, 0, 0, 0, 0};
constexpr ui::ColumnEditMode kReadOnlyMode{1, 0, 0, 0, 0, 0, 1};

int SmallIconOf(const std::string& path) {
  SHFILEINFOA info{};
  if (!SHGetFileInfoA(path.c_str(), FILE_ATTRIBUTE_NORMAL, &info, sizeof info,
                      SHGFI_SYSICONINDEX | SHGFI_SMALLICON | SHGFI_USEFILEATTRIBUTES))
    return 0;
  return info.iIcon;
}

// The open-file dialog's result: one full path, or a folder and names after it.
std::vector<std::string> SplitChoice(const char* buffer, std::size_t fileOffset) {
  std::vector<std::string> paths;
  const std::string first = buffer;
  if (first.empty()) return paths;
  if (fileOffset == 0 || fileOffset <= first.size()) {
    paths.push_back(first);
    return paths;
  }
  const std::string folder = first.back() == '\\' ? first : first + "\\";
  for (const char* name = buffer + first.size() + 1; *name; name += std::strlen(name) + 1) paths.push_back(folder + name);
  return paths;
}

}  // namespace

int CompareRowTexts(std::intptr_t first, std::intptr_t second, const ui::SortState* state) {
  const auto* a = reinterpret_cast<const ListRowTexts*>(first);
  const auto* b = reinterpret_cast<const ListRowTexts*>(second);
  if (!a || !b || !state || state->sortColumn < 0) return 0;
  const auto column = static_cast<std::size_t>(state->sortColumn);
  const std::string none;
  const int order = text::Mbsicmp(column < a->cells.size() ? a->cells[column] : none,
                                  column < b->cells.size() ? b->cells[column] : none);
  return state->sortAscending ? order : -order;
}

HBITMAP LoadButtonBitmap(HINSTANCE instance, int id) {
  auto bitmap = static_cast<HBITMAP>(LoadImageA(instance, MAKEINTRESOURCEA(id), IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION));
  if (!bitmap) return nullptr;
  DIBSECTION dib{};
  if (GetObjectA(bitmap, sizeof dib, &dib) != sizeof dib || dib.dsBm.bmBitsPixel != 24 || !dib.dsBm.bmBits)
    return bitmap;
  const COLORREF face = GetSysColor(COLOR_3DFACE);
  auto* bits = static_cast<BYTE*>(dib.dsBm.bmBits);
  for (int y = 0; y < dib.dsBm.bmHeight; ++y) {
    BYTE* pixel = bits + static_cast<std::ptrdiff_t>(y) * dib.dsBm.bmWidthBytes;
    for (int x = 0; x < dib.dsBm.bmWidth; ++x, pixel += 3) {
      if (pixel[0] == 0xC0 && pixel[1] == 0xC0 && pixel[2] == 0xC0) {
        pixel[0] = GetBValue(face);
        pixel[1] = GetGValue(face);
        pixel[2] = GetRValue(face);
      }
    }
  }
  return bitmap;
}

// ---------------------------------------------------------------- the manager

WorksetManagerWindow::WorksetManagerWindow(const SettingsStore& settings, WorksetManagerServices services)
    : ResizableDialog(settings.Backend(), StateFor(settings, sections::WorkSetDlg)),
      settings_(settings),
      services_(std::move(services)),
      list_(settings.Backend(), ListKey(settings, sections::WorkSetDlg)),
      preview_(services_.files) {}

WorksetManagerWindow::~WorksetManagerWindow() {
  for (HBITMAP bitmap : bitmaps_)
    if (bitmap) DeleteObject(bitmap);
}

WorksetManagerWindow* WorksetManagerWindow::Show(WorksetManagerWindow* window, HWND owner) {
  ResourceScope resources;
  if (!window->Create(ModuleInstance(), manager_ids::kDialog, owner)) {
    delete window;
    return nullptr;
  }
  window->ownedByWindow_ = true;
  OpenManagers().insert(window);
  WatchDialogKeys(true);
  ShowWindow(window->hwnd(), SW_SHOW);
  return window;
}

void WorksetManagerWindow::AdoptSheetSetDialog(std::unique_ptr<sheetsets::SheetSetDialogRunner> runner) {
  sheetSetRunner_ = std::move(runner);
  services_.sheetSetDialog = sheetSetRunner_.get();
}

void WorksetManagerWindow::OnFinalMessage() {
  OpenManagers().erase(this);
  WatchDialogKeys(!OpenManagers().empty());
  if (ownedByWindow_) delete this;
}

void CloseWorksetManagers() {
  const std::set<WorksetManagerWindow*> open = OpenManagers();
  for (WorksetManagerWindow* window : open)
    if (window->hwnd()) DestroyWindow(window->hwnd());
}

bool WorksetManagerWindow::OnInitDialog() {
  ResizableDialog::OnInitDialog();
  State().SetMinimumDialogUnits(MappedDialogUnits(hwnd()), kManagerMinWidth, kManagerMinHeight);
  HWND list = GetDlgItem(hwnd(), manager_ids::kList);
  list_.Attach(list);
  SendMessageA(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0,
               LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT | LVS_EX_INFOTIP);
  list_.InsertColumn(0, manager_texts::kPathColumn, kPathMode, LVCFMT_LEFT, 300);
  list_.InsertColumn(1, manager_texts::kReadOnlyColumn, kReadOnlyMode, LVCFMT_LEFT, 50);
  list_.EnableEditing(true);
  list_.onDelete = [this] {
    if (logic_) logic_->OnRemoveSelected();
  };
  list_.Initialize(&CompareRowTexts);
  SetWindowSubclass(list, ListSubclass, kEmptyTextSubclassId, reinterpret_cast<DWORD_PTR>(this));

  // The picture frame marks the panel's place; the panel takes its id.
  RECT frame{};
  GetChildRect(manager_ids::kPreview, frame, true);
  if (HWND placeholder = GetDlgItem(hwnd(), manager_ids::kPreview)) DestroyWindow(placeholder);
  preview_.Create(hwnd(), frame, manager_ids::kPreview);

  LoadButtonImages();
  // The system's small icons, shared: the list must not destroy them (LVS_SHAREIMAGELISTS).
  SHFILEINFOA info{};
  auto images = reinterpret_cast<HIMAGELIST>(
      SHGetFileInfoA("C:\\", 0, &info, sizeof info, SHGFI_SYSICONINDEX | SHGFI_SMALLICON));
  if (images) SendMessageA(list, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));

  WorksetManagerView& view = *this;
  logic_ = std::make_unique<WorksetManager>(services_, view);
  logic_->OnInitDialog();  // the names, then the workset shown last
  // The placement is looked for a second time under the root given twice, where
  // nothing is ever kept; the layout below runs in any case.
  ui::ResizableDialogState twice = State();
  twice.settingsSection = settings_.Root() + "\\" + std::string(sections::WorkSetDlg);
  HwndWindowPort window(hwnd());
  twice.RestorePlacement(settings_.Backend(), window);
  RECT client;
  GetClientRect(hwnd(), &client);
  OnSize(SIZE_RESTORED, client.right, client.bottom);
  return true;
}

void WorksetManagerWindow::LoadButtonImages() {
  auto instance = reinterpret_cast<HINSTANCE>(GetWindowLongPtrA(hwnd(), GWLP_HINSTANCE));
  for (const ManagerButton& button : kManagerButtons) {
    HBITMAP image = LoadButtonBitmap(instance, button.image);
    bitmaps_.push_back(image);
    if (image) SendDlgItemMessageA(hwnd(), button.id, BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(image));
    AddTool(button.id, button.tip, true);
  }
}

void WorksetManagerWindow::OnSize(UINT, int cx, int cy) {
  if (!hwnd() || !IsWindow(hwnd())) return;
  const WorksetManagerLayout l = LayOutWorksetManager({0, 0, cx, cy}, MappedDialogUnits(hwnd()));
  const std::pair<int, ui::Rect> children[] = {
      {manager_ids::kLabel, l.label},         {manager_ids::kCombo, l.combo},
      {manager_ids::kCreate, l.create},       {manager_ids::kDelete, l.remove},
      {manager_ids::kFilesGroup, l.group},    {manager_ids::kOpenSelected, l.open},
      {manager_ids::kRemoveSelected, l.removeFiles}, {manager_ids::kBrowse, l.browse},
      {manager_ids::kAddReferences, l.addReferences}, {manager_ids::kAddOpenDrawings, l.addOpen},
      {manager_ids::kAddFromSheetSet, l.addSheetSet}, {manager_ids::kList, l.list},
      {manager_ids::kPreview, l.preview},
  };
  for (const auto& [id, rect] : children) MoveChild(id, rect, 0);
  InvalidateRect(hwnd(), nullptr, TRUE);
}

bool WorksetManagerWindow::OnCommand(WPARAM wParam, LPARAM) {
  if (!logic_) return false;
  const int id = LOWORD(wParam);
  const int code = HIWORD(wParam);
  if (id == manager_ids::kCombo) {
    if (code == CBN_EDITCHANGE) logic_->OnEditChange(ComboText());
    else if (code == CBN_SELCHANGE) logic_->OnSelectionChange();
    else return false;
    return true;
  }
  if (code != BN_CLICKED) return false;
  switch (id) {
    case manager_ids::kCreate: logic_->OnCreate(); break;
    case manager_ids::kDelete: logic_->OnDelete(); break;
    case manager_ids::kOpenSelected: logic_->OnOpenSelected(); break;
    case manager_ids::kRemoveSelected: logic_->OnRemoveSelected(); break;
    case manager_ids::kBrowse: logic_->OnBrowse(); break;
    case manager_ids::kAddFromSheetSet: logic_->OnAddFromSheetSet(); break;
    case manager_ids::kAddOpenDrawings: logic_->OnAddOpenDrawings(); break;
    case manager_ids::kAddReferences: logic_->OnAddReferences(); break;
    default: return false;
  }
  return true;
}

bool WorksetManagerWindow::OnNotify(NMHDR& header, LRESULT& result) {
  if (!logic_ || header.idFrom != static_cast<UINT_PTR>(manager_ids::kList)) return false;
  switch (header.code) {
    case LVN_ENDLABELEDITA: {
      auto& edit = reinterpret_cast<NMLVDISPINFOA&>(header);
      logic_->OnEndLabelEdit(edit.item.iItem, edit.item.iSubItem, edit.item.pszText);
      result = 0;
      return true;
    }
    case LVN_ITEMCHANGED: {
      const auto& change = reinterpret_cast<NMLISTVIEW&>(header);
      if (!selecting_ && (change.uChanged & LVIF_STATE) && ((change.uOldState ^ change.uNewState) & LVIS_SELECTED))
        logic_->OnRowSelectionChanged();
      result = 0;
      return true;
    }
    case LVN_ODSTATECHANGED:
      if (!selecting_) logic_->OnRowSelectionChanged();
      result = 0;
      return true;
    case LVN_DELETEITEM:
    case LVN_DELETEALLITEMS:
      result = 0;
      return false;
    default:
      return false;
  }
}

void WorksetManagerWindow::OnDestroy() {
  RemoveWindowSubclass(GetDlgItem(hwnd(), manager_ids::kList), ListSubclass, kEmptyTextSubclassId);
}

// An empty list shows the hint of the moment, where its first row would be.
LRESULT CALLBACK WorksetManagerWindow::ListSubclass(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                                    DWORD_PTR self) noexcept {
  const LRESULT result = DefSubclassProc(list, message, wParam, lParam);
  if (message != WM_PAINT) return result;
  try {
    auto* window = reinterpret_cast<WorksetManagerWindow*>(self);
    if (SendMessageA(list, LVM_GETITEMCOUNT, 0, 0) != 0 || window->emptyText_.empty()) return result;
    HDC dc = GetDC(list);
    RECT area;
    GetClientRect(list, &area);
    if (HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0))) {
      RECT h;
      GetWindowRect(header, &h);
      area.top += h.bottom - h.top + 4;
    }
    HGDIOBJ font = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(list, WM_GETFONT, 0, 0)));
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, GetSysColor(COLOR_GRAYTEXT));
    DrawTextA(dc, window->emptyText_.c_str(), -1, &area, DT_CENTER | DT_TOP | DT_SINGLELINE | DT_NOPREFIX);
    SelectObject(dc, font);
    ReleaseDC(list, dc);
  } catch (...) {
    // Painting a hint must not take the list down.
  }
  return result;
}

void WorksetManagerWindow::ResetCombo() { SendMessageA(Combo(), CB_RESETCONTENT, 0, 0); }

int WorksetManagerWindow::AddComboName(const std::string& name) {
  return static_cast<int>(SendMessageA(Combo(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str())));
}

int WorksetManagerWindow::FindComboExact(const std::string& name) {
  return static_cast<int>(
      SendMessageA(Combo(), CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name.c_str())));
}

void WorksetManagerWindow::SelectComboIndex(int index) { SendMessageA(Combo(), CB_SETCURSEL, index, 0); }

int WorksetManagerWindow::ComboSelection() { return static_cast<int>(SendMessageA(Combo(), CB_GETCURSEL, 0, 0)); }

std::string WorksetManagerWindow::ComboItem(int index) {
  const LRESULT length = SendMessageA(Combo(), CB_GETLBTEXTLEN, index, 0);
  if (length == CB_ERR) return {};
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  const LRESULT got = SendMessageA(Combo(), CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
  text.resize(got == CB_ERR ? 0 : static_cast<std::size_t>(got));
  return text;
}

std::string WorksetManagerWindow::ComboText() {
  std::string text;
  GetChildText(text, manager_ids::kCombo);
  return text;
}

void WorksetManagerWindow::SetComboText(const std::string& text) { SetChildText(manager_ids::kCombo, text); }

void WorksetManagerWindow::SelectComboTextAndFocus() {
  SendMessageA(Combo(), CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
  FocusChild(manager_ids::kCombo);
}

void WorksetManagerWindow::EnableCreate(bool enable) { EnableChild(manager_ids::kCreate, enable); }

void WorksetManagerWindow::SetListEmptyText(const std::string& text) {
  emptyText_ = text;
  InvalidateRect(list_.hwnd(), nullptr, TRUE);
}

void WorksetManagerWindow::DeleteAllRows() {
  SendMessageA(list_.hwnd(), LVM_DELETEALLITEMS, 0, 0);
  rows_.clear();
}

void WorksetManagerWindow::AddRow(const std::string& path, const std::string& readOnlyMark) {
  rows_.push_back({{path, readOnlyMark}});
  const int row = list_.AddRow(rows_.back().cells, reinterpret_cast<LPARAM>(&rows_.back()));
  if (row < 0) return;
  LVITEMA item{};
  item.mask = LVIF_IMAGE;
  item.iItem = row;
  item.iImage = SmallIconOf(path);
  SendMessageA(list_.hwnd(), LVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
}

int WorksetManagerWindow::RowCount() { return list_.RowCount(); }

std::string WorksetManagerWindow::RowText(int row, int column) { return list_.CellText(row, column); }

std::vector<int> WorksetManagerWindow::SelectedRows() {
  std::vector<int> rows;
  for (int row = -1;;) {
    row = static_cast<int>(SendMessageA(list_.hwnd(), LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED));
    if (row < 0) break;
    rows.push_back(row);
  }
  return rows;
}

void WorksetManagerWindow::SelectNoRow() {
  selecting_ = true;
  LVITEMA item{};
  item.stateMask = LVIS_SELECTED;
  SendMessageA(list_.hwnd(), LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
  selecting_ = false;
}

void WorksetManagerWindow::SetRowText(int row, int column, const std::string& text) {
  if (row < 0 || row >= list_.RowCount()) return;
  LVITEMA item{};
  item.iSubItem = column;
  item.pszText = const_cast<char*>(text.c_str());
  SendMessageA(list_.hwnd(), LVM_SETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  LVITEMA data{};
  data.mask = LVIF_PARAM;
  data.iItem = row;
  if (SendMessageA(list_.hwnd(), LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&data)) && data.lParam) {
    auto* texts = reinterpret_cast<ListRowTexts*>(data.lParam);
    if (static_cast<std::size_t>(column) < texts->cells.size()) texts->cells[static_cast<std::size_t>(column)] = text;
  }
}

void WorksetManagerWindow::ClearPreview() {
  if (preview_.hwnd()) SetWindowTextA(preview_.hwnd(), "");
  preview_.SetFiles({});
}

void WorksetManagerWindow::ShowPreview(const std::vector<std::string>& paths) { preview_.SetFiles(paths); }

int WorksetManagerWindow::TrackSheetSetMenu(const menus::MenuEntry& menu) {
  HMENU popup = RealiseMenu(menu, nullptr);
  if (!popup) return 0;
  RECT button{};
  GetWindowRect(GetDlgItem(hwnd(), manager_ids::kAddFromSheetSet), &button);
  const int chosen = static_cast<int>(
      TrackPopupMenu(popup, TPM_RETURNCMD | TPM_LEFTALIGN | TPM_RIGHTBUTTON, button.right, button.top, 0, hwnd(), nullptr));
  DestroyMenu(popup);
  return chosen;
}

BrowseOutcome WorksetManagerWindow::BrowseFiles() {
  std::string filter = manager_texts::kBrowseFilter;
  for (char& c : filter)
    if (c == '|') c = '\0';
  std::vector<char> buffer(kBrowseBufferSize, '\0');
  OPENFILENAMEA open{};
  open.lStructSize = sizeof open;
  open.hwndOwner = hwnd();
  open.lpstrFilter = filter.c_str();
  open.nFilterIndex = 1;
  open.lpstrFile = buffer.data();
  open.nMaxFile = static_cast<DWORD>(buffer.size());
  // The framework's dialog adds OFN_HIDEREADONLY to the flags it is given.
  open.Flags = kBrowseFlags | OFN_HIDEREADONLY;
  BrowseOutcome outcome;
  if (GetOpenFileNameA(&open)) {
    outcome.ok = true;
    buffer.back() = '\0';
    outcome.paths = SplitChoice(buffer.data(), open.nFileOffset);
  } else {
    outcome.extendedError = CommDlgExtendedError();
  }
  return outcome;
}

// ---------------------------------------------------------------- the file selector

SelectWsFilesDialog::SelectWsFilesDialog(const SettingsStore& settings, port::MessageBoxes& boxes, FileSystem& files,
                                         std::string worksetsPath, std::string name)
    : ResizableDialog(settings.Backend(), StateFor(settings, sections::SelectWsFilesDlg)),
      boxes_(boxes),
      files_(files),
      worksetsPath_(std::move(worksetsPath)),
      name_(std::move(name)),
      list_(settings.Backend(), ListKey(settings, sections::SelectWsFilesDlg)) {}

bool SelectWsFilesDialog::OnInitDialog() {
  ResizableDialog::OnInitDialog();
  HWND list = GetDlgItem(hwnd(), selector_ids::kList);
  list_.Attach(list);
  SendMessageA(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
  list_.InsertColumn(0, selector_texts::kFileColumn, ui::ColumnEditMode{}, LVCFMT_LEFT, 300);
  list_.InsertColumn(1, selector_texts::kReadOnlyColumn, kReadOnlyMode, LVCFMT_LEFT, 60);
  {
    ProfileFile file(files_, worksetsPath_, true);
    rows_ = ReadSelectorRows(file, name_, files_);
  }
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    texts_.push_back({{rows_[i].path, rows_[i].readOnlyMark}});
    list_.AddRow(texts_.back().cells, reinterpret_cast<LPARAM>(&texts_.back()));
  }
  list_.Initialize(&CompareRowTexts);
  RECT client;
  GetClientRect(hwnd(), &client);
  OnSize(SIZE_RESTORED, client.right, client.bottom);
  return true;
}

void SelectWsFilesDialog::OnSize(UINT, int cx, int cy) {
  if (!hwnd() || !IsWindow(hwnd())) return;
  const SelectorLayout l = LayOutSelector({0, 0, cx, cy}, MappedDialogUnits(hwnd()));
  MoveChild(selector_ids::kList, l.list, 0);
  MoveChild(selector_ids::kOk, l.ok, 1);
  MoveChild(selector_ids::kCancel, l.cancel, 1);
  InvalidateRect(hwnd(), nullptr, TRUE);
}

void SelectWsFilesDialog::OnOK() {
  // The rows as the dialog shows them, top down, with their ticks.
  std::vector<SelectorRow> shown;
  for (int row = 0, count = list_.RowCount(); row < count; ++row) {
    const UINT state = static_cast<UINT>(SendMessageA(list_.hwnd(), LVM_GETITEMSTATE, row, LVIS_STATEIMAGEMASK));
    shown.push_back({list_.CellText(row, 0), list_.CellText(row, 1), (state >> 12) == 2});
  }
  if (!CollectTicked(shown, boxes_, files_, ticked)) return;
  EndDialog(IDOK);
}

bool WorksetFileSelectorWin32::SelectFiles(const std::string& worksetsPath, const std::string& name,
                                           std::vector<DrawingPath>& ticked) {
  ResourceScope resources;
  SelectWsFilesDialog dialog(settings_, boxes_, files_, worksetsPath, name);
  if (dialog.DoModal(ModuleInstance(), selector_ids::kDialog, owner_) != IDOK) return false;
  ticked = dialog.ticked;
  return true;
}

// ---------------------------------------------------------------- the menu's entry

bool RunningModuleFileSelector::SelectFiles(const std::string& worksetsPath, const std::string& name,
                                            std::vector<DrawingPath>& ticked) {
  host::TavletModule* running = host::CurrentModule();
  port::HostSession* session = host::CurrentSession();
  if (!running || !session) return false;
  WorksetFileSelectorWin32 selector(running->Store(), *session->Boxes(), NativeFileSystem(),
                                    reinterpret_cast<HWND>(running->Frame().frame));
  return selector.SelectFiles(worksetsPath, name, ticked);
}

void ShowWorksetManager(HWND owner) {
  host::TavletModule* running = host::CurrentModule();
  port::HostSession* session = host::CurrentSession();
  if (!running || !session || !running->Menu()) return;
  menus::BarMenu& menu = *running->Menu();
  FileSystem& files = NativeFileSystem();
  const SettingsStore& settings = running->Store();
  operations::DrawingOperations& operations = menu.Operations();
  WorksetManagerServices services{menu.Worksets(), *session->Boxes(), files, settings,
                                  host::GetAcadApplication(*session),
                                  [&operations](const DrawingPath& path, bool complain, bool restoreDbmod) {
                                    operations.OpenFile(path, complain, restoreDbmod);
                                  },
                                  operations.hostVersion, &menu.SheetSets(), nullptr, {}};
  services.chooseReferences = [&settings, session, &files, owner](std::vector<std::string>& paths) {
    return ChooseReferences(settings, *session, files, GetActiveWindow() ? GetActiveWindow() : owner, paths);
  };
  WorksetManagerWindow* window = new WorksetManagerWindow(settings, std::move(services));
  // The module's own sheet-set component, which outlives every manager.
  char modulePath[MAX_PATH] = {};
  GetModuleFileNameA(ModuleInstance(), modulePath, MAX_PATH);
  window->AdoptSheetSetDialog(std::make_unique<SheetSetDialogRunnerWin32>(
      settings.Backend(),
      sheetsets::SheetSetTreeServices{running->SheetSetManager(), files, *session->Boxes(), modulePath},
      settings.Root(), owner));
  WorksetManagerWindow::Show(window, owner);
}

}  // namespace tavlet::win32
