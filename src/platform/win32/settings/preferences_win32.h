// The preferences dialog's windows: a resizable dialog holding a tab control
// and the pages (505 "常规", 506 "显示方式", 507 "扩展功能") as child dialogs. Each click
// and each typed text goes to the portable PreferencesDialog, and the windows
// show what it says; the font and colour choosers are the system's.
#pragma once

#include <windows.h>

#include <string>

#include "platform/win32/ui/resizable_dialog_win32.h"
#include "ui/preferences_apply.h"

namespace tavlet::win32 {

class PreferencesWindow final : public ResizableDialog {
 public:
  PreferencesWindow(RegistryBackend& registry, std::string settingsRoot, ui::PreferencesDialog& model,
                    ui::PreferencesTarget& target);

  // Modal over `owner`, from the templates in `resources`; true for OK.
  bool Run(HWND owner, HINSTANCE resources);
  HWND Page(int index) const { return index >= 0 && index < 3 ? pages_[index] : nullptr; }

 protected:
  bool OnInitDialog() override;
  void OnSize(UINT type, int cx, int cy) override;
  void OnOK() override;
  bool OnNotify(NMHDR& header, LRESULT& result) override;

 private:
  static INT_PTR CALLBACK PageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
  INT_PTR OnPageMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam);
  void OnPageClick(HWND page, int id);
  void ChooseFontFor();
  void ChooseColorFor(HWND page, int id);
  void DrawColorButton(const DRAWITEMSTRUCT& item);
  // The windows brought in line with the model.
  void Sync();
  void ShowPage(int index);
  void LayOutPages();

  ui::PreferencesDialog& model_;
  ui::PreferencesTarget& target_;
  HINSTANCE resources_ = nullptr;
  HWND tabs_ = nullptr;
  HWND pages_[3] = {};
  bool syncing_ = false;
};

// TLOPTIONS on Win32: the dialog over the running bar, modal on `owner`, and
// on OK the changes applied to the bar and saved.
void ShowPreferences(HWND owner, RegistryBackend& registry, DisplayDefaults& display);

// The bar's window-side actions the preferences call.
ui::BarWindowActions PreferencesWindowActions(bar::BarModel& bar);

}  // namespace tavlet::win32
