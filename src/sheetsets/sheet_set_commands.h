// The sheet sets of the context menu: the lists of known sheet sets (the host's
// recent list and a search of a folder), opening one (in the host's own sheet-set
// manager, or through the sheet-selection dialog), and the two settings entries.
//
//   SheetSetCommands sheetSets(services);
//   int nextId = 5000;
//   sheetSets.FillSheetSetLists(nextId, true);
//   sheetSets.OpenSheetSet(sheetSets.recentSheetSets.begin()->second.Full);
#pragma once

#include <string>
#include <vector>

#include "content/id_map.h"
#include "host/automation.h"
#include "host/port/host_session.h"
#include "operations/drawing_path.h"
#include "operations/operation_shell.h"
#include "settings/settings_store.h"
#include "worksets/workset_store.h"

namespace tavlet::sheetsets {

namespace command_texts {
inline constexpr const char kOpenSheetSetCommand[] = "-OPENSHEETSET \"%s\"\n";
inline constexpr const char kSearchPathTitle[] = "选择新的图纸集文件夹搜索路径";
inline constexpr const char kAutoOpenVariable[] = "SSMAUTOOPEN";
inline constexpr const char kSheetSetPattern[] = "*.dst";
}  // namespace command_texts

// Runs the sheet-selection dialog modally under the module's resources: true on
// OK, with the dialog's selectedFiles.
class SheetSetDialogRunner {
 public:
  virtual ~SheetSetDialogRunner() = default;
  virtual bool Run(const std::string& path, std::vector<std::string>& selectedFiles) = 0;
};

// The host's sheet-set manager (CoCreateInstance, all contexts); null when the
// component can't be created.
host::PortPtr<port::SheetSetManager> CreateSheetSetManager(port::HostSession& session);

struct SheetSetServices {
  port::HostSession& session;
  host::AcadApplicationPtr application;  // the active document's SendCommand
  FileSystem& files;
  const SettingsStore& settings;
  operations::OperationShell& shell;     // the folder browser
  OpenFileFunction openFile;
  SheetSetDialogRunner* dialog = nullptr;
  port::Window owner = nullptr;
  double hostVersion = 0;
};

class SheetSetCommands {
 public:
  // Reads OpenSheetSetInSSM; the search path starts empty whatever SsSearchPath
  // holds, since that setting is written only.
  explicit SheetSetCommands(SheetSetServices services);

  // Empties both lists, then: the host's recent sheet sets, each under the next id;
  // every "*.dst" below sheetSetSearchPath in the order found. With `placeholders`,
  // an empty list gets one id for "没有找到".
  void FillSheetSetLists(int& nextId, bool placeholders);
  void OpenSheetSet(const std::string& path);
  void ToggleOpenInManager();
  void ChooseSearchPath();

  content::IdMap<DrawingPath> recentSheetSets;
  content::IdMap<DrawingPath> foundSheetSets;
  std::string sheetSetSearchPath;
  int OpenSheetSetInSSM = 0;

 private:
  SheetSetServices services_;
};

}  // namespace tavlet::sheetsets
