#include "platform/win32/settings/preferences_win32.h"

#include <commctrl.h>
#include <commdlg.h>

#include <iterator>

#include "bar/preview_capture.h"
#include "host/module.h"
#include "platform/win32/bar/bar_tips_win32.h"
#include "platform/win32/bar/mv_tavlet_win32.h"
#include "platform/win32/bar/preview_strip_win32.h"
#include "platform/win32/handles.h"
#include "platform/win32/raster_gdi.h"
#include "platform/win32/window.h"
#include "preferences.rh"

namespace tavlet::win32 {
namespace {

using ui::kPageIds;
constexpr int kPageCount = static_cast<int>(std::size(kPageIds));
// The font dialog's flags: screen fonts, no script choice.
constexpr DWORD kFontDialogFlags = 0x800001;

HWND AsHwnd(port::Window window) { return reinterpret_cast<HWND>(window); }

const ui::PreferenceControl* ControlOf(int id) {
  for (int page : kPageIds)
    for (const ui::PreferenceControl& control : ui::PageControls(page))
      if (control.id == id) return &control;
  return nullptr;
}

std::string WindowText(HWND window) {
  const int length = GetWindowTextLengthA(window);
  std::string text(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
  const int got = GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<std::size_t>(got > 0 ? got : 0));
  return text;
}

}  // namespace

PreferencesWindow::PreferencesWindow(RegistryBackend& registry, std::string settingsRoot,
                                     ui::PreferencesDialog& model, ui::PreferencesTarget& target)
    : ResizableDialog(registry, {}), model_(model), target_(target) {
  State().settingsRoot = std::move(settingsRoot);
  State().settingsSection = std::string(sections::PreferencesDlg);
}

bool PreferencesWindow::Run(HWND owner, HINSTANCE resources) {
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_TAB_CLASSES};
  InitCommonControlsEx(&controls);
  resources_ = resources;
  return DoModal(resources, IDD_PREFERENCES, owner) == IDOK;
}

bool PreferencesWindow::OnInitDialog() {
  ResizableDialog::OnInitDialog();
  if (HMENU system = GetSystemMenu(hwnd(), FALSE)) {
    DeleteMenu(system, 0x3021, MF_BYCOMMAND);
    DeleteMenu(system, 9, MF_BYCOMMAND);
  }
  tabs_ = GetDlgItem(hwnd(), IDC_PREFERENCES_TABS);
  const char* titles[kPageCount] = {ui::kGeneralPageTitle, ui::kDisplayPageTitle, ui::kExtrasPageTitle};
  for (int i = 0; i < kPageCount; ++i) {
    TCITEMA item{};
    item.mask = TCIF_TEXT;
    item.pszText = const_cast<char*>(titles[i]);
    SendMessageA(tabs_, TCM_INSERTITEMA, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    // Every page is made now: OK reads a page the user never opened all the same.
    pages_[i] = CreateDialogParamA(resources_, MAKEINTRESOURCEA(kPageIds[i]), hwnd(), PageProcedure,
                                   reinterpret_cast<LPARAM>(this));
    if (pages_[i]) SetWindowPos(pages_[i], HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }
  State().SetMinimumDialogUnits(MappedDialogUnits(hwnd()), 300, 340);
  Sync();
  RECT client{};
  GetClientRect(hwnd(), &client);
  OnSize(SIZE_RESTORED, client.right, client.bottom);
  ShowPage(model_.currentTab > 0 && model_.currentTab < kPageCount ? model_.currentTab : 0);
  return true;
}

void PreferencesWindow::OnSize(UINT, int cx, int cy) {
  if (!tabs_) return;
  const ui::Rect r = ui::Deflate({0, 0, cx, cy}, 3);
  const long strip = DluToPixelsY(16);
  MoveChild(IDC_PREFERENCES_TABS, r.left, r.top, r.right, r.bottom - strip, 0);
  const long cancel = r.right - DluToPixelsX(50);
  const long ok = cancel - DluToPixelsX(51);
  MoveChild(IDCANCEL, cancel, r.bottom - strip, r.right, r.bottom, 2);
  MoveChild(IDOK, ok, r.bottom - strip, cancel, r.bottom, 2);
  LayOutPages();
  InvalidateRect(hwnd(), nullptr, TRUE);
}

void PreferencesWindow::LayOutPages() {
  RECT area{};
  GetWindowRect(tabs_, &area);
  MapWindowPoints(nullptr, hwnd(), reinterpret_cast<POINT*>(&area), 2);
  SendMessageA(tabs_, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
  const long margin = DluToPixelsX(7);
  for (int i = 0; i < kPageCount; ++i) {
    if (!pages_[i]) continue;
    MoveWindow(pages_[i], area.left, area.top, area.right - area.left, area.bottom - area.top, TRUE);
    // The group boxes follow the page's width; everything else stays where the resource put it.
    for (const ui::PreferenceControl& control : ui::PageControls(kPageIds[i])) {
      if (control.kind != ui::ControlKind::Group) continue;
      HWND group = GetDlgItem(pages_[i], control.id);
      RECT r{};
      if (!group || !GetWindowRect(group, &r)) continue;
      MapWindowPoints(nullptr, pages_[i], reinterpret_cast<POINT*>(&r), 2);
      const long width = (area.right - area.left) - margin - r.left;
      if (width > 0) MoveWindow(group, r.left, r.top, width, r.bottom - r.top, TRUE);
    }
  }
}

void PreferencesWindow::ShowPage(int index) {
  model_.currentTab = index;
  SendMessageA(tabs_, TCM_SETCURSEL, static_cast<WPARAM>(index), 0);
  for (int i = 0; i < kPageCount; ++i)
    if (pages_[i]) ShowWindow(pages_[i], i == index ? SW_SHOW : SW_HIDE);
}

bool PreferencesWindow::OnNotify(NMHDR& header, LRESULT& result) {
  if (header.hwndFrom != tabs_ || header.code != static_cast<UINT>(TCN_SELCHANGE)) return false;
  ShowPage(static_cast<int>(SendMessageA(tabs_, TCM_GETCURSEL, 0, 0)));
  result = 0;
  return true;
}

void PreferencesWindow::OnOK() {
  const ui::PreferencesOkResult result = model_.Ok(target_);
  if (result.ok) {
    EndDialog(IDOK);
    return;
  }
  // As the platform's data exchange does: the page with the refused number
  // comes forward, the box, then the number selected for typing again.
  const int index = result.page == ui::kDisplayPageId ? 1 : 0;
  ShowPage(index);
  MessageBoxA(hwnd(), ui::kEnterIntegerText, "Tavlet", MB_OK | MB_ICONEXCLAMATION);
  if (HWND edit = GetDlgItem(pages_[index], result.control)) {
    SetFocus(edit);
    SendMessageA(edit, EM_SETSEL, 0, -1);
  }
}

INT_PTR CALLBACK PreferencesWindow::PageProcedure(HWND page, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(page, DWLP_USER, lParam);
    return TRUE;
  }
  auto* self = reinterpret_cast<PreferencesWindow*>(GetWindowLongPtrA(page, DWLP_USER));
  if (!self) return FALSE;
  try {
    return self->OnPageMessage(page, message, wParam, lParam);
  } catch (...) {
    // Nothing may unwind through the dialog manager.
    return FALSE;
  }
}

INT_PTR PreferencesWindow::OnPageMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_COMMAND: {
      const int id = LOWORD(wParam);
      const int code = HIWORD(wParam);
      const ui::PreferenceControl* control = ControlOf(id);
      if (!control) return FALSE;
      if (code == EN_CHANGE && control->kind == ui::ControlKind::Edit) {
        if (!syncing_) model_.Type(id, WindowText(reinterpret_cast<HWND>(lParam)));
        return TRUE;
      }
      if (code == BN_CLICKED) {
        OnPageClick(page, id);
        return TRUE;
      }
      return FALSE;
    }
    case WM_DRAWITEM:
      if (lParam) DrawColorButton(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    default:
      return FALSE;
  }
}

void PreferencesWindow::OnPageClick(HWND page, int id) {
  if (id == ui::pref::kChooseFont) {
    ChooseFontFor();
  } else if (ControlOf(id)->kind == ui::ControlKind::ColorButton) {
    ChooseColorFor(page, id);
  } else {
    model_.Click(id);
  }
  Sync();
}

void PreferencesWindow::ChooseFontFor() {
  LOGFONTA font = ToLogFont(model_.FontForChooser());
  CHOOSEFONTA choose{};
  choose.lStructSize = sizeof choose;
  choose.hwndOwner = hwnd();
  choose.lpLogFont = &font;
  // Starting on the copy is what the initial font asks of the system's dialog.
  choose.Flags = kFontDialogFlags | CF_INITTOLOGFONTSTRUCT;
  if (ChooseFontA(&choose)) model_.TakeChosenFont(FromLogFont(font));
}

void PreferencesWindow::ChooseColorFor(HWND, int id) {
  static COLORREF custom[16] = {};
  CHOOSECOLORA choose{};
  choose.lStructSize = sizeof choose;
  choose.hwndOwner = hwnd();
  choose.rgbResult = model_.Color(id);
  choose.lpCustColors = custom;
  choose.Flags = CC_RGBINIT | CC_FULLOPEN;
  if (ChooseColorA(&choose)) model_.SetColor(id, choose.rgbResult);
}

void PreferencesWindow::DrawColorButton(const DRAWITEMSTRUCT& item) {
  RECT r = item.rcItem;
  const bool pressed = (item.itemState & ODS_SELECTED) != 0;
  DrawEdge(item.hDC, &r, pressed ? EDGE_SUNKEN : EDGE_RAISED, BF_RECT | BF_ADJUST);
  InflateRect(&r, -1, -1);
  const bool enabled = model_.Enabled(static_cast<int>(item.CtlID));
  GdiObject<HBRUSH> fill(CreateSolidBrush(enabled ? model_.Color(static_cast<int>(item.CtlID)) : GetSysColor(COLOR_BTNFACE)));
  FillRect(item.hDC, &r, fill.get());
  if (!enabled) FrameRect(item.hDC, &r, GetSysColorBrush(COLOR_GRAYTEXT));
  if (item.itemState & ODS_FOCUS) {
    InflateRect(&r, -1, -1);
    DrawFocusRect(item.hDC, &r);
  }
}

void PreferencesWindow::Sync() {
  syncing_ = true;
  for (int i = 0; i < kPageCount; ++i) {
    if (!pages_[i]) continue;
    for (const ui::PreferenceControl& control : ui::PageControls(kPageIds[i])) {
      HWND child = GetDlgItem(pages_[i], control.id);
      if (!child) continue;
      const bool enabled = model_.Enabled(control.id);
      if ((IsWindowEnabled(child) != FALSE) != enabled) EnableWindow(child, enabled ? TRUE : FALSE);
      switch (control.kind) {
        case ui::ControlKind::Check:
        case ui::ControlKind::Radio:
          SendMessageA(child, BM_SETCHECK, model_.Checked(control.id) ? BST_CHECKED : BST_UNCHECKED, 0);
          break;
        case ui::ControlKind::Edit:
        case ui::ControlKind::Label: {
          const std::string text = model_.Text(control.id);
          if (WindowText(child) != text) SetWindowTextA(child, text.c_str());
          break;
        }
        case ui::ControlKind::ColorButton:
          InvalidateRect(child, nullptr, FALSE);
          break;
        default:
          break;
      }
    }
  }
  syncing_ = false;
}

// ---------------------------------------------------------------- the bar's side

ui::BarWindowActions PreferencesWindowActions(bar::BarModel& bar) {
  ui::BarWindowActions actions;
  actions.setTabFont = [&bar](const LogFontA& font) {
    // Kept for as long as the tab control may use it: until the next change.
    static GdiObject<HFONT> tabFont;
    const LOGFONTA logFont = ToLogFont(font);
    GdiObject<HFONT> made(CreateFontIndirectA(&logFont));
    if (!made.get()) return;
    SendMessageA(AsHwnd(bar.TabWindow()), WM_SETFONT, reinterpret_cast<WPARAM>(made.get()), TRUE);
    if (auto* window = dynamic_cast<MvTavletWindow*>(Window::FromHandle(AsHwnd(bar.Window())))) window->SetNoticeFont(font);
    tabFont = std::move(made);
  };
  actions.applyTipSettings = [&bar] { ApplyTipSettings(bar); };
  auto strip = [&bar] { return dynamic_cast<PreviewStripWindow*>(Window::FromHandle(AsHwnd(bar.StripWindow()))); };
  actions.setLabelFont = [strip](const LogFontA& font) {
    if (PreviewStripWindow* window = strip()) window->SetLabelFont(font);
  };
  actions.resetStripScroll = [strip] {
    if (PreviewStripWindow* window = strip()) window->ResetScroll();
  };
  actions.updatePreview = [&bar, strip](bar::DocEntry& entry) {
    if (PreviewStripWindow* window = strip()) bar::UpdatePreview(bar, window->Geometry(), &entry);
  };
  return actions;
}

void ShowPreferences(HWND owner, RegistryBackend& registry, DisplayDefaults& display) {
  host::TavletModule* module = host::CurrentModule();
  if (!module || !module->Bar()) return;
  int logPixelsY = 96;
  {
    ScreenDc screen;
    if (screen.get()) logPixelsY = GetDeviceCaps(screen.get(), LOGPIXELSY);
  }
  ui::RunPreferences(module->Bar(), module->Arx(), module->Store(), display, logPixelsY,
                     PreferencesWindowActions(*module->Bar()),
                     [&](ui::PreferencesDialog& model, ui::PreferencesTarget& target) {
                       PreferencesWindow window(registry, module->Store().Root(), model, target);
                       return window.Run(owner, ModuleInstance());
                     });
}

}  // namespace tavlet::win32
