#include "sheetsets/sheet_set_commands.h"

#include <string_view>

#include "operations/drawing_operations.h"
#include "settings/extra_settings.h"
#include "settings/settings_table.h"
#include "sheetsets/file_finder.h"
#include "text/codepage.h"
#include "worksets/host_sheet_sets.h"

namespace tavlet::sheetsets {
namespace {

bool EndsWithBackslash(const std::string& path) {
  std::size_t pos = 0, last = std::string::npos;
  while (pos < path.size()) {
    last = pos;
    pos += text::CharLength(path, pos);
  }
  return last != std::string::npos && path[last] == '\\';
}

}  // namespace

host::PortPtr<port::SheetSetManager> CreateSheetSetManager(port::HostSession& session) {
  host::PortPtr<port::SheetSetManager> manager;
  if (port::Failed(session.CreateSheetSetManager(manager.Receive()))) return {};
  return manager;
}

SheetSetCommands::SheetSetCommands(SheetSetServices services) : services_(std::move(services)) {
  OpenSheetSetInSSM = ReadInt(services_.settings, keys::OpenSheetSetInSSM);
}

void SheetSetCommands::FillSheetSetLists(int& nextId, bool placeholders) {
  recentSheetSets.clear();
  foundSheetSets.clear();

  host::StringSink root;
  services_.session.Services()->RoamableRootFolder(&root);
  std::vector<std::string> recent;
  // Read at each fill, so that the preferences take effect at the next menu.
  ReadHostSheetSetList(recent, root.text, services_.files,
                       ReadExtra(services_.settings, keys::SheetSetListByEncoding) != 0);
  for (const std::string& path : recent) recentSheetSets.emplace(nextId++, DrawingPath(path, services_.files));
  if (recentSheetSets.empty() && placeholders)
    recentSheetSets.emplace(nextId++, DrawingPath(content::kNotFound, services_.files));

  FindFilesRecursive(services_.files, sheetSetSearchPath, command_texts::kSheetSetPattern,
                     [&](const std::string& path) { foundSheetSets.emplace(nextId++, DrawingPath(path, services_.files)); });
  if (foundSheetSets.empty() && placeholders)
    foundSheetSets.emplace(nextId++, DrawingPath(content::kNotFound, services_.files));
}

void SheetSetCommands::OpenSheetSet(const std::string& path) {
  if (OpenSheetSetInSSM) {
    // The path is quoted as it is: a quote inside it isn't escaped.
    const std::string_view format = command_texts::kOpenSheetSetCommand;
    const std::size_t at = format.find("%s");
    std::string command(format.substr(0, at));
    command += path;
    command += format.substr(at + 2);
    try {
      services_.application.ActiveDocument().SendCommand(command);
    } catch (const host::ComError& error) {
      long answer = 0;
      services_.session.Boxes()->Show(operations::ErrorBoxText(error).c_str(), port::kBoxOk, &answer);
    } catch (...) {
      // No drawing to send it to: the menu entry does nothing.
    }
    return;
  }
  if (!services_.dialog) return;
  std::vector<std::string> selectedFiles;
  if (!services_.dialog->Run(path, selectedFiles)) return;
  for (const std::string& file : selectedFiles) {
    if (services_.openFile) services_.openFile(ParseRecentEntry(file, services_.files), false, false);
  }
}

void SheetSetCommands::ToggleOpenInManager() {
  OpenSheetSetInSSM = OpenSheetSetInSSM ? 0 : 1;
  WriteBool(services_.settings, keys::OpenSheetSetInSSM, OpenSheetSetInSSM != 0);
  if (services_.hostVersion > 16.0) {
    port::Value value;
    value.type = port::kValueShort;
    value.integer = OpenSheetSetInSSM;
    services_.session.EditorService()->SetVariable(command_texts::kAutoOpenVariable, &value);
  }
}

void SheetSetCommands::ChooseSearchPath() {
  std::string chosen;
  if (!services_.shell.BrowseForFolder(services_.owner, command_texts::kSearchPathTitle, sheetSetSearchPath, chosen))
    return;
  if (!EndsWithBackslash(chosen)) chosen += '\\';
  sheetSetSearchPath = chosen;
  WriteString(services_.settings, keys::SsSearchPath, chosen);
}

}  // namespace tavlet::sheetsets
