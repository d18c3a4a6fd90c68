#include "menus/bar_menu.h"

#include "bar/docking.h"

namespace tavlet::menus {

namespace {

class NoShell final : public operations::OperationShell {
 public:
  void OpenWithShell(const std::string&) override {}
  bool BrowseForFolder(port::Window, const std::string&, const std::string&, std::string&) override {
    return false;
  }
  bool RunPlotDialog(port::Window) override { return false; }
  bool CopyToClipboard(port::Window, const std::string&) override { return false; }
  void ShowInFolder(const std::string&) override {}
};

// Without a dialog to ask, a paper-space view with no layout is declined.
class DecliningChooser final : public content::LayoutChooser {
 public:
  std::vector<std::string> Choose(const std::string&, const std::vector<std::string>&) override { return {}; }
};

}  // namespace

struct BarMenu::Fallbacks {
  NoShell shell;
  DecliningChooser chooser;
  VariablesUserEnvironment user{""};
};

BarMenu::BarMenu(BarMenuServices s) : fallbacks_(std::make_unique<Fallbacks>()) {
  operations::OperationShell& shell = s.shell ? *s.shell : fallbacks_->shell;
  UserEnvironment& user = s.user ? *s.user : fallbacks_->user;
  content::LayoutChooser& chooser = s.layoutChooser ? *s.layoutChooser : fallbacks_->chooser;
  operations_ = std::make_unique<operations::DrawingOperations>(operations::OperationServices{
      s.session, s.application, s.windows, s.settings, s.files, s.bar.RecentFiles(), shell, nullptr, s.bar.Window()});
  auto open = [ops = operations_.get()](const DrawingPath& path, bool complain, bool restoreDbmod) {
    ops->OpenFile(path, complain, restoreDbmod);
  };
  dataFolder_ = DecideDataFolder(user, s.files);
  worksets_ = std::make_unique<WorksetStore>(WorksetServices{s.files, s.settings, *s.session.Boxes(), user,
                                                             dataFolder_, open, s.worksetSelector});
  sheetSets_ = std::make_unique<sheetsets::SheetSetCommands>(
      sheetsets::SheetSetServices{s.session, s.application, s.files, s.settings, shell, open, s.sheetSetDialog,
                                  s.bar.Window(), operations_->hostVersion});
  menu_ = std::make_unique<ContextMenu>(MenuServices{s.session, s.application, s.settings, s.files, s.bar,
                                                     *operations_, shell, *worksets_, *sheetSets_, chooser,
                                                     std::move(s.dialogs)});
}

BarMenu::~BarMenu() = default;

void BarMenu::OnDoubleClick(unsigned flags) {
  if (bar::OnBarDoubleClick(flags) == bar::BarDoubleClick::LastWorkset) worksets_->OpenLastWorkset();
  else operations_->OpenLastDrawing();
}

}  // namespace tavlet::menus
