#include "platform/win32/content/references_dialog_win32.h"

#include "platform/win32/content/references_dialog.rh"
#include "platform/win32/window.h"
#include "settings/settings_table.h"
#include "worksets/workset_file_selection.h"

namespace tavlet::win32 {

static_assert(IDD_REFERENCES_DIALOG == kReferencesDialogId);
static_assert(IDC_REFERENCES_TREE == kReferencesTreeId);

namespace {

// Posted after a click, once the tree has done its own toggling of the box.
constexpr UINT kApplyChecks = WM_APP + 17;

ui::ResizableDialogState ReferencesState(const SettingsStore& settings) {
  ui::ResizableDialogState state;
  state.settingsRoot = settings.Root();
  state.settingsSection = std::string(sections::ReferencesDialog);
  return state;
}

}  // namespace

ReferencesDialog::ReferencesDialog(const SettingsStore& settings, port::HostSession& session, FileSystem& files)
    : ResizableDialog(settings.Backend(), ReferencesState(settings)), session_(session), files_(files) {}

HTREEITEM ReferencesDialog::ItemOf(const content::ReferenceNode& node) const {
  for (const auto& [handle, item] : items_)
    if (item == &node) return handle;
  return nullptr;
}

bool ReferencesDialog::OnInitDialog() {
  ResizableDialog::OnInitDialog();
  State().SetMinimumDialogUnits(MappedDialogUnits(hwnd()), kReferencesMinWidth, kReferencesMinHeight);
  HWND tree = GetDlgItem(hwnd(), kReferencesTreeId);
  // Check boxes are set after the control exists, or they don't take.
  SetWindowLongPtrA(tree, GWL_STYLE, GetWindowLongPtrA(tree, GWL_STYLE) | TVS_CHECKBOXES);
  tree_ = content::BuildReferenceTree(session_, files_);
  std::vector<std::pair<content::ReferenceNode*, HTREEITEM>> pending;
  for (content::ReferenceNode& root : tree_) pending.emplace_back(&root, TVI_ROOT);
  while (!pending.empty()) {
    auto [node, parent] = pending.front();
    pending.erase(pending.begin());
    TVINSERTSTRUCTA insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = const_cast<char*>(node->text.c_str());
    auto handle = reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
    if (!handle) continue;
    items_[handle] = node;
    for (content::ReferenceNode& child : node->children) pending.emplace_back(&child, handle);
  }
  for (const auto& [handle, node] : items_) SendMessageA(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(handle));
  RECT client;
  GetClientRect(hwnd(), &client);
  OnSize(SIZE_RESTORED, client.right, client.bottom);
  return true;
}

void ReferencesDialog::OnSize(UINT, int cx, int cy) {
  if (!hwnd() || !IsWindow(hwnd())) return;
  // The file selector's pattern: the tree over a strip of two buttons at the right.
  const SelectorLayout layout = LayOutSelector({0, 0, cx, cy}, MappedDialogUnits(hwnd()));
  MoveChild(kReferencesTreeId, layout.list, 0);
  MoveChild(IDOK, layout.ok, 1);
  MoveChild(IDCANCEL, layout.cancel, 1);
  InvalidateRect(hwnd(), nullptr, TRUE);
}

void ReferencesDialog::ShowChecks() {
  HWND tree = GetDlgItem(hwnd(), kReferencesTreeId);
  for (const auto& [handle, node] : items_) {
    TVITEMA item{};
    item.mask = TVIF_STATE;
    item.hItem = handle;
    item.stateMask = TVIS_STATEIMAGEMASK;
    item.state = INDEXTOSTATEIMAGEMASK(node->checked ? 2 : 1);
    SendMessageA(tree, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
  }
}

bool ReferencesDialog::OnNotify(NMHDR& header, LRESULT& result) {
  if (header.idFrom != static_cast<UINT_PTR>(kReferencesTreeId) || header.code != NM_CLICK) return false;
  TVHITTESTINFO hit{};
  GetCursorPos(&hit.pt);
  ScreenToClient(header.hwndFrom, &hit.pt);
  auto handle = reinterpret_cast<HTREEITEM>(SendMessageA(header.hwndFrom, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
  auto it = items_.find(handle);
  if (it != items_.end() && (hit.flags & TVHT_ONITEM)) {
    content::ToggleCheck(*it->second);
    PostMessageA(hwnd(), WM_COMMAND, MAKEWPARAM(kApplyChecks, 0), 0);
  }
  result = 0;
  return true;
}

bool ReferencesDialog::OnCommand(WPARAM wParam, LPARAM) {
  if (LOWORD(wParam) != kApplyChecks) return false;
  ShowChecks();
  return true;
}

void ReferencesDialog::OnOK() {
  paths = content::TickedPaths(tree_);
  EndDialog(IDOK);
}

bool ChooseReferences(const SettingsStore& settings, port::HostSession& session, FileSystem& files, HWND owner,
                      std::vector<std::string>& paths) {
  ResourceScope resources;
  ReferencesDialog dialog(settings, session, files);
  if (dialog.DoModal(ModuleInstance(), kReferencesDialogId, owner) != IDOK) return false;
  paths = dialog.paths;
  return true;
}

}  // namespace tavlet::win32
