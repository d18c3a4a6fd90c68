// SelectLayoutDialog: the question of which layout a paper-space view belongs
// to, as a modal dialog from the module's resources on the host's frame.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

#include "content/views.h"

namespace tavlet::win32 {

inline constexpr int kSelectLayoutDialogId = 2110;
inline constexpr int kLayoutListId = 1000;

class LayoutChooserWin32 final : public content::LayoutChooser {
 public:
  // `resources`: where the dialog template is; `owner` gives the window to put
  // the dialog on when it is asked (the host's frame).
  LayoutChooserWin32(HINSTANCE resources, std::function<HWND()> owner)
      : resources_(resources), owner_(std::move(owner)) {}

  // Every selection change collects the selected names, so OK with nothing
  // selected gives none, as Cancel does.
  std::vector<std::string> Choose(const std::string& title, const std::vector<std::string>& names) override;

 private:
  HINSTANCE resources_;
  std::function<HWND()> owner_;
};

}  // namespace tavlet::win32
