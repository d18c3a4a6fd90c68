#include "platform/win32/ui/about_box_win32.h"

#include <shellapi.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "about_box.rh"
#include "host/module.h"
#include "platform/win32/window.h"
#include "settings/settings_table.h"
#include "tavlet_version.h"

namespace tavlet::win32 {
namespace {

// The endpoint's notes are UTF-8; the dialog shows code-page 936 text.
std::string Utf8ToSystem(const std::string& text) {
  if (text.empty()) return text;
  const int wide = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  if (wide <= 0) return {};
  std::vector<wchar_t> buffer(static_cast<std::size_t>(wide));
  MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), buffer.data(), wide);
  const int narrow = WideCharToMultiByte(936, 0, buffer.data(), wide, nullptr, 0, nullptr, nullptr);
  if (narrow <= 0) return {};
  std::string out(static_cast<std::size_t>(narrow), '\0');
  WideCharToMultiByte(936, 0, buffer.data(), wide, out.data(), narrow, nullptr, nullptr);
  return out;
}

std::string VerdictText(const host::UpdateVerdict& verdict) {
  using host::UpdateStatus;
  switch (verdict.status) {
    case UpdateStatus::UpToDate:
      return "已是最新版本 (服务器上的最新版本为 " + verdict.version + ")。";
    case UpdateStatus::NewerBuild: {
      std::string text = "有新版本: " + verdict.version + "。";
      if (!verdict.notes.empty()) text += "\r\n" + Utf8ToSystem(verdict.notes);
      return text;
    }
    case UpdateStatus::NoEndpoint:
      return "未设置检查更新的地址 (设置 UpdateEndpoint)。";
    case UpdateStatus::NoNetwork:
      return "无法连接更新服务器: " + verdict.detail;
    case UpdateStatus::TimedOut:
      return "更新服务器没有及时回答。";
    case UpdateStatus::HttpError:
      return "更新服务器出错: " + verdict.detail;
    case UpdateStatus::BadAnswer:
      return "更新服务器的回答无效: " + verdict.detail;
    case UpdateStatus::TooLarge:
      return "更新服务器的回答过大: " + verdict.detail;
    case UpdateStatus::Cancelled:
      break;
  }
  return {};
}

std::string ModuleFileName() {
  char path[MAX_PATH] = {};
  const DWORD n = GetModuleFileNameA(ModuleInstance(), path, MAX_PATH);
  return std::string(path, n < MAX_PATH ? n : 0);
}

}  // namespace

std::string IsoBuildDate(const char* compilerDate) {
  static const char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
  char month[4] = {};
  int day = 0;
  int year = 0;
  if (std::sscanf(compilerDate, "%3s %d %d", month, &day, &year) != 3) return compilerDate;
  const char* found = std::strstr(kMonths, month);
  if (!found || (found - kMonths) % 3 != 0) return compilerDate;
  char text[16];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, static_cast<int>((found - kMonths) / 3 + 1), day);
  return text;
}

AboutInfo CurrentAboutInfo() {
  AboutInfo info;
  info.productName = "Morvane Tavlet";
  info.version = TAVLET_VERSION;
  info.modulePath = ModuleFileName();
  info.buildDate = IsoBuildDate(__DATE__);
  if (host::TavletModule* running = host::CurrentModule())
    info.endpoint = ReadString(running->Store(), keys::UpdateEndpoint);
  return info;
}

AboutBox::AboutBox(AboutInfo info, int timeout) : info_(std::move(info)), timeout_(timeout) {}

AboutBox::~AboutBox() {
  if (hwnd_) DestroyWindow(hwnd_);
  check_.Cancel();
}

INT_PTR AboutBox::DoModal(HINSTANCE instance, HWND owner) {
  modal_ = true;
  return DialogBoxParamA(instance, MAKEINTRESOURCEA(IDD_ABOUT_BOX), owner, &AboutBox::Procedure,
                         reinterpret_cast<LPARAM>(this));
}

HWND AboutBox::Create(HINSTANCE instance, HWND owner) {
  modal_ = false;
  return CreateDialogParamA(instance, MAKEINTRESOURCEA(IDD_ABOUT_BOX), owner, &AboutBox::Procedure,
                            reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK AboutBox::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  AboutBox* self = nullptr;
  if (message == WM_INITDIALOG) {
    self = reinterpret_cast<AboutBox*>(lParam);
    SetWindowLongPtrA(dialog, DWLP_USER, lParam);
    self->hwnd_ = dialog;
  } else {
    self = reinterpret_cast<AboutBox*>(GetWindowLongPtrA(dialog, DWLP_USER));
  }
  if (!self) return FALSE;
  const INT_PTR result = self->OnMessage(message, wParam, lParam);
  if (message == WM_NCDESTROY) {
    SetWindowLongPtrA(dialog, DWLP_USER, 0);
    self->hwnd_ = nullptr;
  }
  return result;
}

void AboutBox::OnInitDialog() {
  SetDlgItemTextA(hwnd_, IDC_ABOUT_NAME, info_.productName.c_str());
  SetDlgItemTextA(hwnd_, IDC_ABOUT_VERSION, ("版本 " + info_.version).c_str());
  SetDlgItemTextA(hwnd_, IDC_ABOUT_DATE, ("生成日期 " + info_.buildDate).c_str());
  SetDlgItemTextA(hwnd_, IDC_ABOUT_PATH, info_.modulePath.c_str());
}

void AboutBox::StartCheck() {
  if (check_.Running()) return;
  link_.clear();
  EnableWindow(GetDlgItem(hwnd_, IDC_ABOUT_OPEN), FALSE);
  EnableWindow(GetDlgItem(hwnd_, IDC_ABOUT_CHECK), FALSE);
  SetDlgItemTextA(hwnd_, IDC_ABOUT_STATUS, "正在检查更新...");
  const HWND dialog = hwnd_;
  // The worker only stores the verdict and posts a note: the dialog's thread
  // shows it. Closing the dialog cancels the check before the window goes, so
  // no note is posted to a window that no longer exists.
  check_.Start(info_.endpoint, info_.version,
               [this, dialog](const host::UpdateVerdict& verdict) {
                 {
                   std::lock_guard<std::mutex> guard(lock_);
                   arrived_ = verdict;
                 }
                 PostMessageA(dialog, kVerdictArrived, 0, 0);
               },
               timeout_);
}

void AboutBox::ShowVerdict(const host::UpdateVerdict& verdict) {
  if (verdict.status == host::UpdateStatus::Cancelled) return;
  SetDlgItemTextA(hwnd_, IDC_ABOUT_STATUS, VerdictText(verdict).c_str());
  EnableWindow(GetDlgItem(hwnd_, IDC_ABOUT_CHECK), TRUE);
  if (verdict.status == host::UpdateStatus::NewerBuild) {
    link_ = verdict.url;
    EnableWindow(GetDlgItem(hwnd_, IDC_ABOUT_OPEN), TRUE);
  }
}

void AboutBox::Close(INT_PTR result) {
  check_.Cancel();
  if (modal_) EndDialog(hwnd_, result);
  else DestroyWindow(hwnd_);
}

INT_PTR AboutBox::OnMessage(UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      OnInitDialog();
      return TRUE;
    case WM_COMMAND:
      switch (LOWORD(wParam)) {
        case IDOK:
        case IDCANCEL:
          Close(LOWORD(wParam));
          return TRUE;
        case IDC_ABOUT_CHECK:
          StartCheck();
          return TRUE;
        case IDC_ABOUT_OPEN:
          // Only a link the check accepted (http or https) reaches the shell.
          if (!link_.empty()) ShellExecuteA(hwnd_, "open", link_.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
          return TRUE;
      }
      return FALSE;
    case kVerdictArrived: {
      std::optional<host::UpdateVerdict> verdict;
      {
        std::lock_guard<std::mutex> guard(lock_);
        verdict.swap(arrived_);
      }
      if (verdict) ShowVerdict(*verdict);
      return TRUE;
    }
    case WM_DESTROY:
      check_.Cancel();
      return FALSE;
  }
  return FALSE;
}

void ShowAboutBox(HWND owner) {
  ResourceScope resources;
  AboutBox box(CurrentAboutInfo());
  box.DoModal(ModuleInstance(), owner);
}

}  // namespace tavlet::win32
