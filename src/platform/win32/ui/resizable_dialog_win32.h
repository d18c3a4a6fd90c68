// The resizable dialog in raw Win32: a dialog procedure that finds its object and
// forwards to On... handlers, with the portable rules of ui::ResizableDialogState
// (the minimum size of WM_SIZING, the placement kept in the settings), one
// tooltip control, accelerator tables per child window, and short operations on
// children by their id. Each derived dialog lays its children out in OnSize from
// the client rectangle and dialog units.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "settings/settings_store.h"
#include "ui/resizable_dialog.h"

namespace tavlet::win32 {

// The placement's window calls on a real window.
class HwndWindowPort final : public WindowPort {
 public:
  explicit HwndWindowPort(HWND hwnd) : hwnd_(hwnd) {}
  bool IsWindow() override;
  bool GetWindowRect(ScreenRect& rect) override;
  bool IsZoomed() override;
  void ShowWindow(int command) override;
  void SetWindowPos(int x, int y, int width, int height) override;

 private:
  HWND hwnd_;
};

// Dialog units of one dialog, through MapDialogRect.
class MappedDialogUnits final : public ui::DialogUnits {
 public:
  explicit MappedDialogUnits(HWND dialog) : dialog_(dialog) {}
  ui::Rect MapDialogRect(const ui::Rect& units) const override;

 private:
  HWND dialog_;
};

class ResizableDialog {
 public:
  ResizableDialog(RegistryBackend& registry, ui::ResizableDialogState state);
  virtual ~ResizableDialog();
  ResizableDialog(const ResizableDialog&) = delete;
  ResizableDialog& operator=(const ResizableDialog&) = delete;

  // Runs the dialog template `templateId` of `instance` modally; the result of
  // EndDialog, or -1 when the dialog couldn't be made.
  INT_PTR DoModal(HINSTANCE instance, int templateId, HWND parent);
  // The same from a template in memory.
  INT_PTR DoModalIndirect(HINSTANCE instance, const DLGTEMPLATE* dialogTemplate, HWND parent);
  // A modeless dialog from the template; null when it couldn't be made. It runs in
  // its owner's message loop, so its tips watch the mouse by subclassing.
  HWND Create(HINSTANCE instance, int templateId, HWND parent);

  HWND hwnd() const { return hwnd_; }
  ui::ResizableDialogState& State() { return state_; }

  // Children by id; each does nothing when there is no such child.
  void EnableChild(int id, bool enable);
  void ShowChild(int id, int show);
  void FocusChild(int id);
  void MoveChild(int id, long left, long top, long right, long bottom, long inset);
  void MoveChild(int id, const ui::Rect& rect, long inset) { MoveChild(id, rect.left, rect.top, rect.right, rect.bottom, inset); }
  bool GetChildRect(int id, RECT& rect, bool toClient);
  void SetChildText(int id, const std::string& text);
  bool SelectComboString(int id, const std::string& text);
  bool GetChildText(std::string& text, int id);

  long DluToPixelsX(long n) const;
  long DluToPixelsY(long n) const;

  // `subclass`: the tip watches the child itself (TTF_SUBCLASS), for a dialog
  // whose messages never pass through PreTranslateMessage.
  void AddTool(int id, const char* text, bool subclass = false);
  void AddAccelerators(HWND window, HACCEL table);
  // The tooltip sees the message first; then each accelerator table in turn.
  // True when a table took it.
  bool PreTranslateMessage(MSG& message);

 protected:
  virtual bool OnInitDialog();
  virtual void OnSize(UINT, int, int) {}
  virtual void OnOK() { EndDialog(IDOK); }
  virtual void OnCancel() { EndDialog(IDCANCEL); }
  virtual void OnDestroy() {}
  // After WM_NCDESTROY, the last call the window makes: a modeless dialog may
  // delete itself here.
  virtual void OnFinalMessage() {}
  // WM_NOTIFY: true when handled, with the value for DWLP_MSGRESULT.
  virtual bool OnNotify(NMHDR&, LRESULT&) { return false; }
  // Any other WM_COMMAND; true when handled.
  virtual bool OnCommand(WPARAM, LPARAM) { return false; }
  void EndDialog(INT_PTR result);

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  static LRESULT CALLBACK MessageFilter(int code, WPARAM wParam, LPARAM lParam) noexcept;
  INT_PTR Dispatch(UINT message, WPARAM wParam, LPARAM lParam);
  HWND Child(int id) const { return hwnd_ ? GetDlgItem(hwnd_, id) : nullptr; }

  RegistryBackend& registry_;
  ui::ResizableDialogState state_;
  HWND hwnd_ = nullptr;
  HWND toolTip_ = nullptr;
  std::map<HWND, HACCEL> accelerators_;  // ordered by window, as they are tried
  ResizableDialog* outerModal_ = nullptr;  // the modal dialog this one runs inside
};

}  // namespace tavlet::win32
