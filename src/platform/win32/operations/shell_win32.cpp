#include "platform/win32/operations/shell_win32.h"

#include <windows.h>
// The shell's headers need windows.h first.
#include <shellapi.h>
#include <shlobj.h>

#include <cstring>
#include <string>

#include "platform/win32/operations/plot_dialog.rh"

namespace tavlet::win32 {

static_assert(IDD_PLOT_SETUP == operations::kPlotDialogId);
static_assert(IDC_PLOT_TO_FILE == operations::kPlotToFileCheck);
static_assert(IDC_PLOT_FILE_NAME == operations::kPlotFileEdit);
static_assert(IDC_PLOT_DEVICES == operations::kPlotDeviceList);
static_assert(IDC_PAGE_SETUPS == operations::kPageSetupList);

namespace {

// Starts the browser on the present folder once its window exists.
int CALLBACK BrowseCallback(HWND window, UINT message, LPARAM, LPARAM start) {
  const char* folder = reinterpret_cast<const char*>(start);
  if (message == BFFM_INITIALIZED && folder && *folder)
    SendMessageA(window, BFFM_SETSELECTIONA, TRUE, reinterpret_cast<LPARAM>(folder));
  return 0;
}

INT_PTR CALLBACK PlotDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return static_cast<INT_PTR>(PlotDialogProcedure(dialog, message, wParam, lParam));
}

// The clipboard owns the memory once SetClipboardData takes it.
bool PutClipboardText(UINT format, const void* data, std::size_t bytes) {
  HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
  if (!memory) return false;
  void* target = GlobalLock(memory);
  if (!target) {
    GlobalFree(memory);
    return false;
  }
  memcpy(target, data, bytes);
  GlobalUnlock(memory);
  if (SetClipboardData(format, memory)) return true;
  GlobalFree(memory);
  return false;
}

class Win32OperationShell final : public operations::OperationShell {
 public:
  explicit Win32OperationShell(HINSTANCE instance)
      : instance_(instance ? instance : GetModuleHandleA(nullptr)) {}

  void OpenWithShell(const std::string& path) override {
    ShellExecuteA(nullptr, nullptr, path.c_str(), nullptr, nullptr, SW_SHOW);
  }

  bool BrowseForFolder(port::Window owner, const std::string& title, const std::string& start,
                       std::string& chosen) override {
    char display[MAX_PATH] = {};
    BROWSEINFOA info{};
    info.hwndOwner = reinterpret_cast<HWND>(owner);
    info.pszDisplayName = display;
    info.lpszTitle = title.c_str();
    // The new dialog style needs OLE on the calling thread, which the host's main
    // thread has initialised.
    info.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
    info.lpfn = BrowseCallback;
    info.lParam = reinterpret_cast<LPARAM>(start.c_str());
    PIDLIST_ABSOLUTE list = SHBrowseForFolderA(&info);
    if (!list) return false;
    char path[MAX_PATH] = {};
    const bool found = SHGetPathFromIDListA(list, path) != FALSE;
    CoTaskMemFree(list);
    if (!found) return false;
    chosen = path;
    return true;
  }

  bool RunPlotDialog(port::Window owner) override {
    return DialogBoxParamA(instance_, MAKEINTRESOURCEA(IDD_PLOT_SETUP),
                           reinterpret_cast<HWND>(owner), PlotDialogProc, 0) == IDOK;
  }

  bool CopyToClipboard(port::Window owner, const std::string& text) override {
    if (!OpenClipboard(reinterpret_cast<HWND>(owner))) return false;
    EmptyClipboard();
    // The text in both forms, so that a program reading Unicode gets it whatever
    // the system's code page is.
    const bool ansi = PutClipboardText(CF_TEXT, text.c_str(), text.size() + 1);
    const int units = MultiByteToWideChar(936, 0, text.c_str(), static_cast<int>(text.size()) + 1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(units > 0 ? units : 0), L'\0');
    if (units > 0) MultiByteToWideChar(936, 0, text.c_str(), static_cast<int>(text.size()) + 1, wide.data(), units);
    const bool unicode = units > 0 && PutClipboardText(CF_UNICODETEXT, wide.c_str(), wide.size() * sizeof(wchar_t));
    CloseClipboard();
    return ansi || unicode;
  }

  void ShowInFolder(const std::string& path) override {
    const std::string parameters = "/select,\"" + path + "\"";
    ShellExecuteA(nullptr, "open", "explorer.exe", parameters.c_str(), nullptr, SW_SHOWNORMAL);
  }

 private:
  HINSTANCE instance_;
};

}  // namespace

long long __stdcall PlotDialogProcedure(void* dialog, unsigned message, unsigned long long wParam,
                                        long long) {
  switch (message) {
    case WM_INITDIALOG:
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL) {
        EndDialog(static_cast<HWND>(dialog), LOWORD(wParam));
        return TRUE;
      }
      break;
    default:
      break;
  }
  return FALSE;
}

std::unique_ptr<operations::OperationShell> CreateWin32OperationShell(void* instance) {
  return std::make_unique<Win32OperationShell>(static_cast<HINSTANCE>(instance));
}

}  // namespace tavlet::win32
