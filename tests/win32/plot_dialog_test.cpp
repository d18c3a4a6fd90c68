// The plot dialog of the module's resources, and its modal run through the shell.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "operations/operation_shell.h"
#include "platform/win32/operations/shell_win32.h"

namespace tavlet {
namespace {

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  return static_cast<INT_PTR>(win32::PlotDialogProcedure(dialog, message, wParam, lParam));
}

// The module DLL, where the build puts every resource script of the Win32 layer,
// loaded for its resources only.
class ModuleResources {
 public:
  ModuleResources()
      : module_(LoadLibraryExA((std::string("Z:") + TAVLET_ARX_PATH).c_str(), nullptr,
                               LOAD_LIBRARY_AS_DATAFILE)) {}
  ~ModuleResources() {
    if (module_) FreeLibrary(module_);
  }
  HMODULE get() const { return module_; }

 private:
  HMODULE module_;
};

std::wstring TextOf(HWND window) {
  wchar_t text[128] = {};
  GetWindowTextW(window, text, 128);
  return text;
}

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  return name;
}

TEST(PlotDialog, HoldsItsGroupsListsFileFieldsAndButtons) {
  ModuleResources module;
  ASSERT_NE(module.get(), nullptr) << TAVLET_ARX_PATH;
  HWND dialog = CreateDialogParamA(module.get(), MAKEINTRESOURCEA(operations::kPlotDialogId),
                                   nullptr, Procedure, 0);
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(TextOf(dialog), L"打印设置");
  struct Control {
    int id;
    const wchar_t* className;
    const wchar_t* text;
  };
  const Control controls[] = {
      {operations::kPageSetupList, L"ListBox", L""},
      {operations::kPlotDeviceList, L"ListBox", L""},
      {operations::kPlotToFileCheck, L"Button", L"打印到文件"},
      {operations::kPlotFileEdit, L"Edit", L""},
      {IDOK, L"Button", L"确定"},
      {IDCANCEL, L"Button", L"取消"},
  };
  for (const Control& c : controls) {
    SCOPED_TRACE(c.id);
    HWND item = GetDlgItem(dialog, c.id);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(_wcsicmp(ClassOf(item).c_str(), c.className), 0);
    EXPECT_EQ(TextOf(item), c.text);
  }
  EXPECT_EQ(
      GetWindowLongW(GetDlgItem(dialog, operations::kPlotToFileCheck), GWL_STYLE) & BS_TYPEMASK,
      BS_AUTOCHECKBOX);
  // Nothing fills the lists.
  EXPECT_EQ(SendDlgItemMessageW(dialog, operations::kPageSetupList, LB_GETCOUNT, 0, 0), 0);
  EXPECT_EQ(SendDlgItemMessageW(dialog, operations::kPlotDeviceList, LB_GETCOUNT, 0, 0), 0);
  // The two groups, by their texts.
  int groups = 0;
  for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    std::wstring text = TextOf(child);
    if (text == L"页面设置" || text == L"打印设备") ++groups;
  }
  EXPECT_EQ(groups, 2);
  DestroyWindow(dialog);
}

// Answers the modal dialog from a timer of the test's thread.
WPARAM answer = IDOK;
void CALLBACK AnswerDialog(HWND, UINT, UINT_PTR timer, DWORD) {
  HWND dialog = FindWindowW(L"#32770", L"打印设置");
  if (!dialog) return;
  KillTimer(nullptr, timer);
  PostMessageW(dialog, WM_COMMAND, answer, 0);
}

TEST(PlotDialog, RunsModallyAndTellsOkFromCancel) {
  ModuleResources module;
  ASSERT_NE(module.get(), nullptr) << TAVLET_ARX_PATH;
  std::unique_ptr<operations::OperationShell> shell =
      win32::CreateWin32OperationShell(module.get());
  for (WPARAM given : {WPARAM{IDOK}, WPARAM{IDCANCEL}}) {
    answer = given;
    SetTimer(nullptr, 0, 20, AnswerDialog);
    EXPECT_EQ(shell->RunPlotDialog(nullptr), given == IDOK);
  }
}

}  // namespace
}  // namespace tavlet
