// The about box: the product's name, this build, where the module was loaded
// from and when it was built, and a check for a newer build against the
// configured endpoint. The check runs on a worker thread; its verdict comes back
// to the dialog as a posted message, and closing the dialog cancels it.
#pragma once

#include <windows.h>

#include <mutex>
#include <optional>
#include <string>

#include "host/update_check.h"
#include "platform/win32/transfer/http_get_win32.h"

namespace tavlet::win32 {

struct AboutInfo {
  std::string productName;
  std::string version;
  std::string modulePath;
  std::string buildDate;  // YYYY-MM-DD
  std::string endpoint;   // the update check's address; may be empty
};

// This module's facts and the endpoint of its running settings.
AboutInfo CurrentAboutInfo();
// "Nov 23 2026" (the compiler's __DATE__) as "2026-11-23"; unknown text as is.
std::string IsoBuildDate(const char* compilerDate);

class AboutBox {
 public:
  // Posted to the dialog when a verdict has arrived.
  static constexpr UINT kVerdictArrived = WM_APP + 0x118;

  explicit AboutBox(AboutInfo info, int timeout = 10000);
  ~AboutBox();
  AboutBox(const AboutBox&) = delete;
  AboutBox& operator=(const AboutBox&) = delete;

  // Modal, from the template in `instance`'s resources.
  INT_PTR DoModal(HINSTANCE instance, HWND owner);
  // Modeless, for a caller that runs its own message loop; null on failure.
  HWND Create(HINSTANCE instance, HWND owner);
  HWND hwnd() const { return hwnd_; }
  bool Checking() const { return check_.Running(); }

 private:
  static INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
  INT_PTR OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
  void OnInitDialog();
  void StartCheck();
  void ShowVerdict(const host::UpdateVerdict& verdict);
  void Close(INT_PTR result);

  AboutInfo info_;
  int timeout_;
  HWND hwnd_ = nullptr;
  bool modal_ = false;
  std::string link_;
  UpdateCheck check_;
  // Filled on the worker thread, taken on the dialog's.
  std::mutex lock_;
  std::optional<host::UpdateVerdict> arrived_;
};

// TLABOUT and the menu's entry: the about box, modal, from the module's resources.
void ShowAboutBox(HWND owner);

}  // namespace tavlet::win32
