#include "platform/win32/ui/resizable_dialog_win32.h"

#include <commctrl.h>

namespace tavlet::win32 {
namespace {

// The modal dialog whose loop runs now on this thread, and the message filter
// that gives it its messages before the dialog manager does: a modal loop is the
// system's, so PreTranslateMessage has no other way in.
thread_local ResizableDialog* currentModal = nullptr;
thread_local HHOOK filterHook = nullptr;
thread_local int filterUsers = 0;

}  // namespace

bool HwndWindowPort::IsWindow() { return ::IsWindow(hwnd_) != FALSE; }

bool HwndWindowPort::GetWindowRect(ScreenRect& rect) {
  RECT r;
  if (!::GetWindowRect(hwnd_, &r)) return false;
  rect = {r.left, r.top, r.right, r.bottom};
  return true;
}

bool HwndWindowPort::IsZoomed() { return ::IsZoomed(hwnd_) != FALSE; }

void HwndWindowPort::ShowWindow(int command) { ::ShowWindow(hwnd_, command); }

void HwndWindowPort::SetWindowPos(int x, int y, int width, int height) {
  ::SetWindowPos(hwnd_, nullptr, x, y, width, height, SWP_NOZORDER);
}

ui::Rect MappedDialogUnits::MapDialogRect(const ui::Rect& units) const {
  RECT r{units.left, units.top, units.right, units.bottom};
  ::MapDialogRect(dialog_, &r);
  return {r.left, r.top, r.right, r.bottom};
}

ResizableDialog::ResizableDialog(RegistryBackend& registry, ui::ResizableDialogState state)
    : registry_(registry), state_(std::move(state)) {}

ResizableDialog::~ResizableDialog() {
  if (hwnd_ && IsWindow(hwnd_)) {
    SetWindowLongPtrA(hwnd_, DWLP_USER, 0);
    DestroyWindow(hwnd_);
  }
}

INT_PTR ResizableDialog::DoModal(HINSTANCE instance, int templateId, HWND parent) {
  return DoModalIndirect(instance, reinterpret_cast<const DLGTEMPLATE*>(MAKEINTRESOURCEA(templateId)), parent);
}

INT_PTR ResizableDialog::DoModalIndirect(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND parent) {
  if (filterUsers++ == 0) filterHook = SetWindowsHookExA(WH_MSGFILTER, MessageFilter, nullptr, GetCurrentThreadId());
  outerModal_ = currentModal;
  currentModal = this;
  const bool byId = IS_INTRESOURCE(reinterpret_cast<ULONG_PTR>(dialogTemplate));
  const INT_PTR result =
      byId ? DialogBoxParamA(instance, reinterpret_cast<LPCSTR>(dialogTemplate), parent, Procedure,
                             reinterpret_cast<LPARAM>(this))
           : DialogBoxIndirectParamA(instance, dialogTemplate, parent, Procedure, reinterpret_cast<LPARAM>(this));
  currentModal = outerModal_;
  if (--filterUsers == 0 && filterHook) {
    UnhookWindowsHookEx(filterHook);
    filterHook = nullptr;
  }
  return result;
}

HWND ResizableDialog::Create(HINSTANCE instance, int templateId, HWND parent) {
  return CreateDialogParamA(instance, MAKEINTRESOURCEA(templateId), parent, Procedure, reinterpret_cast<LPARAM>(this));
}

LRESULT CALLBACK ResizableDialog::MessageFilter(int code, WPARAM wParam, LPARAM lParam) noexcept {
  if (code == MSGF_DIALOGBOX && currentModal && lParam) {
    try {
      if (currentModal->PreTranslateMessage(*reinterpret_cast<MSG*>(lParam))) return 1;
    } catch (...) {
      // Nothing may leave a hook: the message goes on to the dialog.
    }
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

INT_PTR CALLBACK ResizableDialog::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  auto* self = reinterpret_cast<ResizableDialog*>(GetWindowLongPtrA(dialog, DWLP_USER));
  if (message == WM_INITDIALOG) {
    self = reinterpret_cast<ResizableDialog*>(lParam);
    SetWindowLongPtrA(dialog, DWLP_USER, lParam);
    if (self) self->hwnd_ = dialog;
  }
  if (!self) return FALSE;
  try {
    const INT_PTR result = self->Dispatch(message, wParam, lParam);
    if (message == WM_NCDESTROY) {
      self->hwnd_ = nullptr;
      SetWindowLongPtrA(dialog, DWLP_USER, 0);
      self->OnFinalMessage();
    }
    return result;
  } catch (...) {
    // An exception must not unwind through the system's dialog manager.
    return FALSE;
  }
}

INT_PTR ResizableDialog::Dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      return OnInitDialog() ? TRUE : FALSE;
    case WM_SIZING: {
      auto* r = reinterpret_cast<RECT*>(lParam);
      ui::Rect rect{r->left, r->top, r->right, r->bottom};
      if (state_.OnSizing(static_cast<unsigned>(wParam), rect)) *r = {rect.left, rect.top, rect.right, rect.bottom};
      return TRUE;
    }
    case WM_SIZE:
      OnSize(static_cast<UINT>(wParam), LOWORD(lParam), HIWORD(lParam));
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK && HIWORD(wParam) == BN_CLICKED) {
        OnOK();
        return TRUE;
      }
      if (LOWORD(wParam) == IDCANCEL) {
        OnCancel();
        return TRUE;
      }
      return OnCommand(wParam, lParam) ? TRUE : FALSE;
    case WM_NOTIFY: {
      LRESULT result = 0;
      if (!lParam || !OnNotify(*reinterpret_cast<NMHDR*>(lParam), result)) return FALSE;
      SetWindowLongPtrA(hwnd_, DWLP_MSGRESULT, result);
      return TRUE;
    }
    case WM_DESTROY: {
      HwndWindowPort window(hwnd_);
      state_.SavePlacement(registry_, window);
      OnDestroy();
      return FALSE;
    }
    default:
      return FALSE;
  }
}

bool ResizableDialog::OnInitDialog() {
  toolTip_ = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP, CW_USEDEFAULT,
                             CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, hwnd_, nullptr, nullptr, nullptr);
  if (toolTip_) {
    SendMessageA(toolTip_, TTM_ACTIVATE, 1, 0);
    SendMessageA(toolTip_, TTM_SETMAXTIPWIDTH, 0, state_.maxTipWidth);
  }
  HwndWindowPort window(hwnd_);
  state_.RestorePlacement(registry_, window);
  return true;
}

void ResizableDialog::EndDialog(INT_PTR result) {
  if (hwnd_) ::EndDialog(hwnd_, result);
}

void ResizableDialog::EnableChild(int id, bool enable) {
  if (HWND child = Child(id)) EnableWindow(child, enable ? TRUE : FALSE);
}

void ResizableDialog::ShowChild(int id, int show) {
  if (HWND child = Child(id)) ShowWindow(child, show);
}

void ResizableDialog::FocusChild(int id) {
  if (HWND child = Child(id)) SetFocus(child);
}

void ResizableDialog::MoveChild(int id, long left, long top, long right, long bottom, long inset) {
  HWND child = Child(id);
  if (!child) return;
  const ui::Rect r = ui::ChildRect(left, top, right, bottom, inset);
  MoveWindow(child, r.left, r.top, r.right - r.left, r.bottom - r.top, FALSE);
}

bool ResizableDialog::GetChildRect(int id, RECT& rect, bool toClient) {
  HWND child = Child(id);
  if (!child || !GetWindowRect(child, &rect)) return false;
  if (toClient) MapWindowPoints(nullptr, hwnd_, reinterpret_cast<POINT*>(&rect), 2);
  return true;
}

void ResizableDialog::SetChildText(int id, const std::string& text) {
  if (HWND child = Child(id)) SetWindowTextA(child, text.c_str());
}

bool ResizableDialog::SelectComboString(int id, const std::string& text) {
  HWND child = Child(id);
  if (!child) return false;
  return SendMessageA(child, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str())) !=
         CB_ERR;
}

bool ResizableDialog::GetChildText(std::string& text, int id) {
  HWND child = Child(id);
  if (!child) return false;
  const int length = GetWindowTextLengthA(child);
  text.assign(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
  const int got = GetWindowTextA(child, text.data(), length + 1);
  text.resize(static_cast<std::size_t>(got > 0 ? got : 0));
  return true;
}

long ResizableDialog::DluToPixelsX(long n) const { return MappedDialogUnits(hwnd_).ToPixelsX(n); }

long ResizableDialog::DluToPixelsY(long n) const { return MappedDialogUnits(hwnd_).ToPixelsY(n); }

void ResizableDialog::AddTool(int id, const char* text, bool subclass) {
  HWND child = Child(id);
  if (!toolTip_ || !child) return;
  TOOLINFOA tool{};
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | (subclass ? TTF_SUBCLASS : 0);
  tool.hwnd = hwnd_;
  tool.uId = reinterpret_cast<UINT_PTR>(child);
  tool.lpszText = const_cast<char*>(text);
  SendMessageA(toolTip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
}

void ResizableDialog::AddAccelerators(HWND window, HACCEL table) {
  accelerators_[window] = table;
}

bool ResizableDialog::PreTranslateMessage(MSG& message) {
  if (toolTip_) SendMessageA(toolTip_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
  for (const auto& [window, table] : accelerators_) {
    if (window && table && TranslateAcceleratorA(window, table, &message)) return true;
  }
  return false;
}

}  // namespace tavlet::win32
