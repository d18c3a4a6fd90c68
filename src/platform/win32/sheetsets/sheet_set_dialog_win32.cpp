#include "platform/win32/sheetsets/sheet_set_dialog_win32.h"

#include "platform/win32/sheetsets/sheet_set_dialog.rh"
#include "platform/win32/window.h"

namespace tavlet::win32 {

static_assert(IDD_SHEET_SET_DIALOG == sheetsets::kSheetSetDialogId);
static_assert(IDC_SHEET_SET_TREE == sheetsets::kSheetSetTreeId);

namespace {

// The state image of a check-box tree: 1 unticked, 2 ticked.
bool IsChecked(HWND tree, HTREEITEM item) {
  const UINT state = static_cast<UINT>(SendMessageA(tree, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item),
                                                    TVIS_STATEIMAGEMASK));
  return (state >> 12) == 2;
}

}  // namespace

SheetSetDialogWindow::SheetSetDialogWindow(RegistryBackend& registry, sheetsets::SheetSetTreeServices services,
                                           std::string path, std::string settingsRoot)
    : ResizableDialog(registry, {}), logic_(std::move(services), std::move(path), std::move(settingsRoot)) {
  State() = logic_.state;
}

HTREEITEM SheetSetDialogWindow::ItemOf(ui::TreeItem item) const {
  for (const auto& [handle, model] : items_)
    if (model == item) return handle;
  return nullptr;
}

bool SheetSetDialogWindow::OnInitDialog() {
  ResizableDialog::OnInitDialog();
  const MappedDialogUnits units(hwnd());
  logic_.OnInitDialog(units);
  State().minWidth = logic_.state.minWidth;
  State().minHeight = logic_.state.minHeight;
  // Check boxes are set after the control exists, or they don't take.
  if (HWND tree = GetDlgItem(hwnd(), sheetsets::kSheetSetTreeId))
    SetWindowLongPtrA(tree, GWL_STYLE, GetWindowLongPtrA(tree, GWL_STYLE) | TVS_CHECKBOXES);
  FillTree();
  RECT client;
  GetClientRect(hwnd(), &client);
  OnSize(SIZE_RESTORED, client.right, client.bottom);
  return true;
}

void SheetSetDialogWindow::FillTree() {
  HWND tree = GetDlgItem(hwnd(), sheetsets::kSheetSetTreeId);
  if (!tree) return;
  SendMessageA(tree, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
  items_.clear();
  std::map<ui::TreeItem, HTREEITEM> handles;
  const ui::TreeModel& model = logic_.tree.Items();
  model.Walk([&](ui::TreeItem item) {
    const ui::TreeNode& node = model.Node(item);
    TVINSERTSTRUCTA insert{};
    insert.hParent = node.parent == ui::kNoItem ? TVI_ROOT : handles[node.parent];
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM;
    insert.item.pszText = const_cast<char*>(node.text.c_str());
    insert.item.lParam = item;
    auto handle = reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
    handles[item] = handle;
    if (handle) items_[handle] = item;
  });
  for (const auto& [item, handle] : handles)
    if (handle && model.Node(item).expanded) SendMessageA(tree, TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(handle));
}

void SheetSetDialogWindow::OnSize(UINT, int cx, int cy) {
  if (!hwnd() || !IsWindow(hwnd())) return;
  const sheetsets::SheetSetDialogLayout layout =
      sheetsets::LayOutSheetSetDialog({0, 0, cx, cy}, MappedDialogUnits(hwnd()));
  MoveChild(sheetsets::kSheetSetTreeId, layout.tree, 0);
  MoveChild(sheetsets::kOkId, layout.ok, 0);
  MoveChild(sheetsets::kCancelId, layout.cancel, 0);
  InvalidateRect(hwnd(), nullptr, TRUE);
}

void SheetSetDialogWindow::OnOK() {
  HWND tree = GetDlgItem(hwnd(), sheetsets::kSheetSetTreeId);
  for (const auto& [handle, item] : items_) logic_.tree.Items().SetChecked(item, tree && IsChecked(tree, handle));
  logic_.OnOK();
  EndDialog(IDOK);
}

bool SheetSetDialogWindow::OnNotify(NMHDR& header, LRESULT& result) {
  if (header.idFrom != static_cast<UINT_PTR>(sheetsets::kSheetSetTreeId)) return false;
  switch (header.code) {
    case TVN_ENDLABELEDITA: {
      auto& edit = reinterpret_cast<NMTVDISPINFOA&>(header);
      auto it = items_.find(edit.item.hItem);
      result = it != items_.end() && logic_.tree.OnEndLabelEdit(it->second, edit.item.pszText) ? TRUE : FALSE;
      return true;
    }
    case NM_RCLICK: {
      POINT cursor;
      GetCursorPos(&cursor);
      TVHITTESTINFO hit{};
      hit.pt = cursor;
      ScreenToClient(header.hwndFrom, &hit.pt);
      auto handle = reinterpret_cast<HTREEITEM>(SendMessageA(header.hwndFrom, TVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
      auto it = items_.find(handle);
      if (it != items_.end() && logic_.tree.WantsContextMenu(it->second)) {
        // The menu has no entries yet; it is tracked all the same.
        if (HMENU menu = CreatePopupMenu()) {
          TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_RIGHTBUTTON, cursor.x, cursor.y, 0, hwnd(), nullptr);
          DestroyMenu(menu);
        }
      }
      result = 0;
      return true;
    }
    case TVN_GETINFOTIPA:
      result = 0;
      return true;
    default:
      return false;
  }
}

bool SheetSetDialogRunnerWin32::Run(const std::string& path, std::vector<std::string>& selectedFiles) {
  ResourceScope resources;
  SheetSetDialogWindow dialog(registry_, services_, path, settingsRoot_);
  if (dialog.DoModal(ModuleInstance(), sheetsets::kSheetSetDialogId, owner_) != IDOK) return false;
  selectedFiles = dialog.Logic().selectedFiles;
  return true;
}

}  // namespace tavlet::win32
