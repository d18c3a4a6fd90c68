#include "platform/win32/ui/sortable_list_ctrl.h"

#include <cstring>

namespace tavlet::win32 {
namespace {

constexpr int XOf(LPARAM l) { return static_cast<short>(LOWORD(l)); }
constexpr int YOf(LPARAM l) { return static_cast<short>(HIWORD(l)); }

constexpr UINT_PTR kSubclassId = 0x534C;  // any id unique to this subclass
constexpr UINT_PTR kEditorSubclassId = 0x5345;

bool WindowsNtAboveFour() {
  OSVERSIONINFOA version{};
  version.dwOSVersionInfoSize = sizeof version;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  if (!GetVersionExA(&version)) return true;
#pragma GCC diagnostic pop
  return version.dwPlatformId == VER_PLATFORM_WIN32_NT && version.dwMajorVersion > 4;
}

// A 7 by 7 mark: the face colour with a filled triangle in the shadow colour.
HBITMAP MakeMark(const std::array<std::array<int, 2>, 3>& points) {
  HDC screen = GetDC(nullptr);
  HDC dc = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, ui::kMarkSize, ui::kMarkSize);
  ReleaseDC(nullptr, screen);
  if (!dc || !bitmap) {
    if (dc) DeleteDC(dc);
    if (bitmap) DeleteObject(bitmap);
    return nullptr;
  }
  HGDIOBJ oldBitmap = SelectObject(dc, bitmap);
  RECT all{0, 0, ui::kMarkSize, ui::kMarkSize};
  FillRect(dc, &all, GetSysColorBrush(COLOR_3DFACE));
  HPEN pen = CreatePen(PS_SOLID, 1, GetSysColor(COLOR_3DSHADOW));
  HGDIOBJ oldPen = SelectObject(dc, pen);
  HGDIOBJ oldBrush = SelectObject(dc, GetSysColorBrush(COLOR_3DSHADOW));
  POINT corners[3];
  for (int i = 0; i < 3; ++i) corners[i] = {points[static_cast<std::size_t>(i)][0], points[static_cast<std::size_t>(i)][1]};
  Polygon(dc, corners, 3);
  SelectObject(dc, oldBrush);
  SelectObject(dc, oldPen);
  DeleteObject(pen);
  SelectObject(dc, oldBitmap);
  DeleteDC(dc);
  return bitmap;
}

bool PutOnClipboard(UINT format, const std::string& text) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, text.size() + 1);
  if (!memory) return false;
  if (void* bytes = GlobalLock(memory)) {
    std::memcpy(bytes, text.data(), text.size());
    GlobalUnlock(memory);
  }
  if (SetClipboardData(format, memory)) return true;
  GlobalFree(memory);
  return false;
}

}  // namespace

SortableListCtrl::SortableListCtrl(RegistryBackend& registry, std::string registryKey)
    : model_(registry, std::move(registryKey)) {}

SortableListCtrl::~SortableListCtrl() {
  if (editor_ && IsWindow(editor_)) {
    RemoveWindowSubclass(editor_, EditorSubclass, kEditorSubclassId);
    DestroyWindow(editor_);
  }
  if (list_) RemoveWindowSubclass(list_, Subclass, kSubclassId);
  if (upArrow_) DeleteObject(upArrow_);
  if (downArrow_) DeleteObject(downArrow_);
}

bool SortableListCtrl::Attach(HWND list) {
  if (!list || !SetWindowSubclass(list, Subclass, kSubclassId, reinterpret_cast<DWORD_PTR>(this))) return false;
  list_ = list;
  return true;
}

HWND SortableListCtrl::Header() const {
  return list_ ? reinterpret_cast<HWND>(SendMessageA(list_, LVM_GETHEADER, 0, 0)) : nullptr;
}

int SortableListCtrl::InsertColumn(int column, const char* heading, const ui::ColumnEditMode& mode, int format,
                                   int width, int subItem) {
  LVCOLUMNA description{};
  description.mask = LVCF_TEXT | LVCF_FMT | LVCF_WIDTH | (subItem >= 0 ? LVCF_SUBITEM : 0);
  description.fmt = format;
  description.cx = width;
  description.pszText = const_cast<char*>(heading);
  description.iSubItem = subItem;
  const int at = static_cast<int>(SendMessageA(list_, LVM_INSERTCOLUMNA, column, reinterpret_cast<LPARAM>(&description)));
  if (at < 0) return at;
  model_.InsertColumn(at, heading, mode, format, width);
  SendMessageA(list_, LVM_SETCOLUMNWIDTH, at, model_.Columns()[static_cast<std::size_t>(at)].width);
  return at;
}

int SortableListCtrl::AddRow(const std::vector<std::string>& cells, LPARAM data) {
  LVITEMA item{};
  item.mask = LVIF_TEXT | LVIF_PARAM;
  item.iItem = RowCount();
  item.pszText = const_cast<char*>(cells.empty() ? "" : cells[0].c_str());
  item.lParam = data;
  const int row = static_cast<int>(SendMessageA(list_, LVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&item)));
  for (std::size_t c = 1; row >= 0 && c < cells.size(); ++c) {
    LVITEMA sub{};
    sub.iSubItem = static_cast<int>(c);
    sub.pszText = const_cast<char*>(cells[c].c_str());
    SendMessageA(list_, LVM_SETITEMTEXTA, row, reinterpret_cast<LPARAM>(&sub));
  }
  return row;
}

std::string SortableListCtrl::CellText(int row, int column) const {
  char buffer[1024] = {};
  LVITEMA item{};
  item.iSubItem = column;
  item.pszText = buffer;
  item.cchTextMax = sizeof buffer;
  SendMessageA(list_, LVM_GETITEMTEXTA, row, reinterpret_cast<LPARAM>(&item));
  return buffer;
}

int SortableListCtrl::RowCount() const {
  return list_ ? static_cast<int>(SendMessageA(list_, LVM_GETITEMCOUNT, 0, 0)) : 0;
}

void SortableListCtrl::Initialize(ui::CompareFunction compare) {
  model_.Initialize(compare);
  SortRows();
}

int CALLBACK SortableListCtrl::CompareTrampoline(LPARAM first, LPARAM second, LPARAM state) noexcept {
  const auto* sort = reinterpret_cast<const ui::SortState*>(state);
  ui::CompareFunction compare = sort && sort->sortParam ? sort->sortParam->Compare() : nullptr;
  if (!compare) return 0;
  try {
    return compare(first, second, sort);
  } catch (...) {
    return 0;
  }
}

void SortableListCtrl::SortRows() {
  if (!model_.Compare() || !list_) return;
  UpdateMarks();
  SendMessageA(list_, LVM_SORTITEMS, reinterpret_cast<WPARAM>(&model_.State()),
               reinterpret_cast<LPARAM>(&CompareTrampoline));
}

void SortableListCtrl::UpdateMarks() {
  if (!upArrow_) upArrow_ = MakeMark(ui::kUpMarkPoints);
  if (!downArrow_) downArrow_ = MakeMark(ui::kDownMarkPoints);
  HWND header = Header();
  if (!header) return;
  const int count = static_cast<int>(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0));
  for (int i = 0; i < count; ++i) {
    HDITEMA item{};
    item.mask = HDI_FORMAT;
    SendMessageA(header, HDM_GETITEMA, i, reinterpret_cast<LPARAM>(&item));
    const ui::HeaderMark mark = model_.MarkOf(i);
    if (mark == ui::HeaderMark::None) {
      item.fmt &= ~(HDF_BITMAP | HDF_BITMAP_ON_RIGHT);
    } else {
      item.mask |= HDI_BITMAP;
      item.fmt |= HDF_BITMAP | HDF_BITMAP_ON_RIGHT;
      item.hbm = mark == ui::HeaderMark::Up ? upArrow_ : downArrow_;
    }
    SendMessageA(header, HDM_SETITEMA, i, reinterpret_cast<LPARAM>(&item));
  }
}

void SortableListCtrl::EnableColumnReorder(bool enable) {
  const auto style = static_cast<std::uint32_t>(SendMessageA(list_, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
  if (!enable && !(style & ui::kHeaderDragDrop)) return;
  SendMessageA(list_, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(ui::ReorderStyle(style, enable)));
  if (!enable || !Header()) return;
  std::vector<int> order = model_.StoredOrder();
  if (!order.empty())
    SendMessageA(list_, LVM_SETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
}

bool SortableListCtrl::CopyToClipboard() {
  std::vector<std::vector<std::string>> rows;
  const std::size_t columns = model_.Columns().size();
  for (int r = 0; r < RowCount(); ++r) {
    std::vector<std::string> cells;
    for (std::size_t c = 0; c < columns; ++c) cells.push_back(CellText(r, static_cast<int>(c)));
    rows.push_back(std::move(cells));
  }
  const std::string text = ui::JoinAsCsv(rows, columns);
  if (!OpenClipboard(list_)) return false;
  EmptyClipboard();
  const bool csv = PutOnClipboard(RegisterClipboardFormatA(kCsvClipboardFormat), text);
  PutOnClipboard(CF_TEXT, text);
  CloseClipboard();
  return csv;
}

void SortableListCtrl::DeleteSelectedRows() {
  if (!CanDeleteRows()) return;
  std::vector<int> selected;
  for (int row = -1; (row = static_cast<int>(SendMessageA(list_, LVM_GETNEXTITEM, row, LVNI_SELECTED))) >= 0;)
    selected.push_back(row);
  for (auto it = selected.rbegin(); it != selected.rend(); ++it) SendMessageA(list_, LVM_DELETEITEM, *it, 0);
}

void SortableListCtrl::EnableEditing(bool enable, bool onFirstClick, bool checkboxToggles) {
  policy_.editEnabled = enable;
  policy_.editOnFirstClick = onFirstClick;
  policy_.checkboxColumnToggles = checkboxToggles;
}

void SortableListCtrl::OnLeftClick(WPARAM wParam, LPARAM lParam) {
  policy_.editLabels = true;
  LVHITTESTINFO hit{};
  hit.pt = {XOf(lParam), YOf(lParam)};
  SendMessageA(list_, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit));
  if (hit.iItem >= 0) {
    const bool selected = SendMessageA(list_, LVM_GETITEMSTATE, hit.iItem, LVIS_SELECTED) != 0;
    ui::ListHit listHit{hit.iItem, hit.iSubItem, (hit.flags & LVHT_ONITEMSTATEICON) != 0,
                        (hit.flags & LVHT_ONITEMLABEL) != 0};
    switch (ui::DecideClick(policy_, listHit, selected)) {
      case ui::ClickAction::ToggleCheck: {
        const UINT state = static_cast<UINT>(SendMessageA(list_, LVM_GETITEMSTATE, hit.iItem, LVIS_STATEIMAGEMASK));
        LVITEMA change{};
        change.stateMask = LVIS_STATEIMAGEMASK;
        change.state = INDEXTOSTATEIMAGEMASK((state >> 12) == 2 ? 1 : 2);
        SendMessageA(list_, LVM_SETITEMSTATE, hit.iItem, reinterpret_cast<LPARAM>(&change));
        return;
      }
      case ui::ClickAction::StartEdit:
        StartEdit(hit.iItem, hit.iSubItem);
        return;
      case ui::ClickAction::System:
        DefSubclassProc(list_, WM_LBUTTONDOWN, wParam, lParam);
        return;
    }
  }
  DefSubclassProc(list_, WM_LBUTTONDOWN, wParam, lParam);
  LVHITTESTINFO row{};
  row.pt = hit.pt;
  const int hitRow = static_cast<int>(SendMessageA(list_, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&row)));
  const int count = RowCount();
  RECT last{};
  if (count > 0) {
    last.left = LVIR_BOUNDS;
    SendMessageA(list_, LVM_GETITEMRECT, count - 1, reinterpret_cast<LPARAM>(&last));
  }
  int editRow = hitRow, editColumn = 0;
  if (OnEmptyClick(editRow, editColumn, ui::IsBelowLastRow(hitRow >= 0, count, hit.pt.y, last.top, last.bottom)))
    StartEdit(editRow, editColumn);
}

bool SortableListCtrl::StartEdit(int row, int column) {
  if (column < 0 || static_cast<std::size_t>(column) >= model_.Columns().size() || row < 0 || row >= RowCount())
    return false;
  if (SendMessageA(list_, LVM_GETCOLUMNWIDTH, column, 0) <= 4) return false;
  ui::ColumnEditMode mode = model_.Columns()[static_cast<std::size_t>(column)].mode;
  CellEditMode(row, column, mode);
  if (editor_) EndEdit(true);

  LVITEMA none{};
  none.stateMask = LVIS_SELECTED;
  SendMessageA(list_, LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&none));
  LVITEMA only{};
  only.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
  only.state = LVIS_SELECTED | LVIS_FOCUSED;
  SendMessageA(list_, LVM_SETITEMSTATE, row, reinterpret_cast<LPARAM>(&only));
  SendMessageA(list_, LVM_ENSUREVISIBLE, row, FALSE);

  RECT cell{};
  cell.top = column;
  cell.left = LVIR_LABEL;
  SendMessageA(list_, LVM_GETSUBITEMRECT, row, reinterpret_cast<LPARAM>(&cell));
  if (column > 0) {
    // LVIR_LABEL of a subitem is its whole cell; of column 0 the label beside the icon.
    cell.right = cell.left + static_cast<LONG>(SendMessageA(list_, LVM_GETCOLUMNWIDTH, column, 0));
  }
  const bool hasList = mode.HasList();
  const long left = cell.left + ui::EditorLeftOffset(column, hasList, WindowsNtAboveFour());
  const long right = cell.right - 1;
  DWORD style = ui::EditorStyle(mode);
  const int format = model_.Columns()[static_cast<std::size_t>(column)].format;
  if (hasList) {
    style = WS_CHILD | WS_VISIBLE | WS_VSCROLL | CBS_DROPDOWNLIST;
  } else {
    style |= format == ui::kFormatRight ? ES_RIGHT : format == ui::kFormatCenter ? ES_CENTER : ES_LEFT;
  }
  const std::string text = CellText(row, column);
  editor_ = CreateWindowExA(0, hasList ? "COMBOBOX" : "EDIT", hasList ? "" : text.c_str(), style, left, cell.top,
                            right - left, hasList ? 200 : cell.bottom - cell.top, list_,
                            reinterpret_cast<HMENU>(static_cast<INT_PTR>(ui::kEditorControlId)), nullptr, nullptr);
  if (!editor_) return false;
  SendMessageA(editor_, WM_SETFONT, SendMessageA(list_, WM_GETFONT, 0, 0), FALSE);
  if (hasList) {
    std::vector<std::string> options;
    CellOptions(row, column, options);
    for (const std::string& option : options)
      SendMessageA(editor_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(option.c_str()));
    SendMessageA(editor_, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
  } else {
    SendMessageA(editor_, EM_SETSEL, 0, -1);
  }
  editRow_ = row;
  editColumn_ = column;
  SetWindowSubclass(editor_, EditorSubclass, kEditorSubclassId, reinterpret_cast<DWORD_PTR>(this));
  SetFocus(editor_);
  return true;
}

void SortableListCtrl::EndEdit(bool commit) {
  if (!editor_ || ending_) return;
  ending_ = true;
  HWND editor = editor_;
  editor_ = nullptr;
  std::string text(static_cast<std::size_t>(GetWindowTextLengthA(editor)) + 1, '\0');
  text.resize(static_cast<std::size_t>(GetWindowTextA(editor, text.data(), static_cast<int>(text.size()))));
  RemoveWindowSubclass(editor, EditorSubclass, kEditorSubclassId);
  DestroyWindow(editor);
  if (commit) {
    NMLVDISPINFOA info{};
    info.hdr = {list_, static_cast<UINT_PTR>(GetDlgCtrlID(list_)), LVN_ENDLABELEDITA};
    info.item.mask = LVIF_TEXT;
    info.item.iItem = editRow_;
    info.item.iSubItem = editColumn_;
    info.item.pszText = text.data();
    HWND parent = GetParent(list_);
    if (parent && SendMessageA(parent, WM_NOTIFY, info.hdr.idFrom, reinterpret_cast<LPARAM>(&info))) {
      LVITEMA cell{};
      cell.iSubItem = editColumn_;
      cell.pszText = text.data();
      SendMessageA(list_, LVM_SETITEMTEXTA, editRow_, reinterpret_cast<LPARAM>(&cell));
    }
  }
  editRow_ = editColumn_ = -1;
  ending_ = false;
}

LRESULT CALLBACK SortableListCtrl::EditorSubclass(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                                  DWORD_PTR self) noexcept {
  auto* list = reinterpret_cast<SortableListCtrl*>(self);
  try {
    if (list && list->editor_ == hwnd) {
      if (message == WM_KEYDOWN && (wParam == VK_RETURN || wParam == VK_ESCAPE)) {
        list->EndEdit(wParam == VK_RETURN);
        return 0;
      }
      if (message == WM_GETDLGCODE) return DLGC_WANTALLKEYS;
      if (message == WM_KILLFOCUS) {
        const LRESULT result = DefSubclassProc(hwnd, message, wParam, lParam);
        list->EndEdit(true);
        return result;
      }
    }
  } catch (...) {
    // Nothing may unwind through the editor's window procedure.
  }
  return DefSubclassProc(hwnd, message, wParam, lParam);
}

void SortableListCtrl::OnHeaderNotify(const NMHEADERA& header) {
  switch (header.hdr.code) {
    case HDN_ITEMCLICKA:
    case HDN_ITEMCLICKW:
      model_.OnHeaderClick(header.iItem);
      SortRows();
      break;
    case HDN_ENDTRACKA:
    case HDN_ENDTRACKW:
      // The control takes the new width only after this notification: it is the
      // one the notification carries.
      if (header.pitem && (header.pitem->mask & HDI_WIDTH)) {
        model_.OnEndTrack(header.iItem, header.pitem->cxy, true);
        if (RowCount() == 0) InvalidateRect(list_, nullptr, TRUE);
      }
      break;
    default:
      break;
  }
}

LRESULT SortableListCtrl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_NOTIFY: {
      const auto* header = reinterpret_cast<const NMHEADERA*>(lParam);
      if (header && header->hdr.hwndFrom == Header()) OnHeaderNotify(*header);
      break;
    }
    case WM_KEYUP:
      if (wParam == VK_DELETE) DeleteSelectedRows();
      break;
    case WM_LBUTTONDOWN:
      if (GetWindowLongPtrA(list_, GWL_STYLE) & LVS_EDITLABELS) {
        OnLeftClick(wParam, lParam);
        return 0;
      }
      break;
    case WM_COMMAND:
      if (LOWORD(wParam) == ui::kEditorControlId && HIWORD(wParam) == ui::kEditorEndNotification) {
        EndEdit(true);
        return 0;
      }
      break;
    case WM_DESTROY: {
      const auto style = static_cast<std::uint32_t>(SendMessageA(list_, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
      if (style & ui::kHeaderDragDrop) {
        std::vector<int> order(model_.Columns().size());
        if (!order.empty() &&
            SendMessageA(list_, LVM_GETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data())))
          model_.SaveOrder(order);
      }
      break;
    }
    default:
      break;
  }
  return DefSubclassProc(list_, message, wParam, lParam);
}

LRESULT CALLBACK SortableListCtrl::Subclass(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                            DWORD_PTR self) noexcept {
  auto* list = reinterpret_cast<SortableListCtrl*>(self);
  try {
    if (list && list->list_ == hwnd) {
      const LRESULT result = list->OnMessage(message, wParam, lParam);
      if (message == WM_NCDESTROY) {
        RemoveWindowSubclass(hwnd, Subclass, kSubclassId);
        list->list_ = nullptr;
      }
      return result;
    }
  } catch (...) {
    // Nothing may unwind through the control's window procedure.
  }
  return DefSubclassProc(hwnd, message, wParam, lParam);
}

}  // namespace tavlet::win32
