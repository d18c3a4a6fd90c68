// The drawing operations' desktop services over the Windows shell: ShellExecuteA,
// SHBrowseForFolderA and the plot dialog of the module's resources.
#pragma once

#include <memory>

#include "operations/operation_shell.h"

namespace tavlet::win32 {

// `instance` holds the plot dialog's resource (null: the process's module).
std::unique_ptr<operations::OperationShell> CreateWin32OperationShell(void* instance);

// The plot dialog's procedure, for tests that create the dialog modeless: OK and
// Cancel end it with their id.
long long __stdcall PlotDialogProcedure(void* dialog, unsigned message, unsigned long long wParam,
                                        long long lParam);

}  // namespace tavlet::win32
