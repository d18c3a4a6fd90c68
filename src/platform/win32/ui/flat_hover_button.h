// FlatHoverButton: a dialog's push button drawn flat, with a frame only while
// the mouse is over it. A 10 ms timer watches the pointer, since no message
// says that it left. Example, in a dialog's WM_INITDIALOG:
//   FlatHoverButton* add = FlatHoverButton::Attach(dialog, IDC_ADD);
//   add->SetIcon(LoadIconA(instance, MAKEINTRESOURCEA(IDI_ADD)), true);
//   add->SetTip("添加");
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "platform/win32/window_hook.h"

namespace tavlet::win32 {

class FlatHoverButton final : public WindowHook {
 public:
  // Makes the button `id` of `dialog` owner-drawn and takes it over; the object
  // goes with the button's window. Null when there is no such button.
  static FlatHoverButton* Attach(HWND dialog, int id);

  // Bitmaps shown centred; `deleteOld` deletes the ones they replace.
  void SetBitmaps(HBITMAP normal, HBITMAP disabled, bool deleteOld);
  // An icon in place of the bitmaps, destroyed with the button when `destroy`.
  void SetIcon(HICON icon, bool destroy);
  // A tip over the whole button; empty text takes it away.
  void SetTip(const std::string& text);

  bool alphaHover = false;
  COLORREF backColor = GetSysColor(COLOR_BTNFACE);

  bool Hot() const { return hot_; }
  bool Pressed() const { return pressed_; }

 protected:
  LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

 private:
  class ParentHook;
  FlatHoverButton() = default;
  ~FlatHoverButton() override;

  void OnTimer();
  void DrawItem(const DRAWITEMSTRUCT& item);
  // 0 normal, 1 hover (up and left), 2 pressed (down and right), 3 disabled.
  void DrawContent(HDC dc, const RECT& client, int state);
  void ReleaseImages();

  bool pressed_ = false;
  bool hot_ = false;
  HBITMAP bitmap_ = nullptr;
  HBITMAP disabledBitmap_ = nullptr;
  HICON icon_ = nullptr;
  bool ownsIcon_ = false;
  HWND tip_ = nullptr;
  std::unique_ptr<ParentHook> parent_;
};

}  // namespace tavlet::win32
