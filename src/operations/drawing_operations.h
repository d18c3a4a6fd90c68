// The bar's operations on drawings: open, save and close one drawing, the walks
// over all drawings, saved views and the template folder. They are the bar's
// (MvTavlet's) command handlers; this class holds what they need so that they run
// on the simulated host as they do in the real one.
//
// A drawing is acted on through automation, synchronously: Activate on its
// document object, then SendCommand or the property it needs. Every handler has
// one guarded block: a ComError ends in the box "错误 [0x%08X]\n%s", anything else
// in the handler's line on the command line.
//
// Example:
//   operations::DrawingOperations ops(services);
//   ops.contextDocument = doc;
//   ops.OnSaveAll();
#pragma once

#include <string>

#include "host/automation.h"
#include "host/port/host_session.h"
#include "host/window_system.h"
#include "operations/drawing_path.h"
#include "operations/operation_shell.h"
#include "settings/settings_store.h"
#include "worksets/recent_files.h"

namespace tavlet::operations {

struct OperationServices {
  port::HostSession& session;
  host::AcadApplicationPtr application;  // acadApplication; null after a failed start-up
  host::WindowSystem& windows;
  const SettingsStore& settings;  // its backend is HKEY_CURRENT_USER for the profile's keys
  FileSystem& files;
  RecentFileList& recentFiles;
  OperationShell& shell;
  ViewLayoutWriter* viewLayouts = nullptr;  // none: the view's own extended data
  port::Window bar = nullptr;               // repainted after save all
};

// The lines of the clause for anything else; several name another handler than
// the one that prints them, and stay that way.
namespace lines {
inline constexpr const char* SaveAll = "未知的错误在 MvTavlet::OnSaveAll()!\n";
inline constexpr const char* CloseDrawing = "未知的错误在 MvTavlet::CloseDrawing()!\n";
inline constexpr const char* CloseAll = "未知的错误在 MvTavlet::OnCloseAll()!\n";
inline constexpr const char* Close = "未知的错误在 MvTavlet::OnClose()!\n";
inline constexpr const char* SaveAndCloseAll = "未知的错误在 MvTavlet::OnSaveAndCloseAll()!\n";
inline constexpr const char* CloseAllNoSave = "未知的错误在 MvTavlet::OnCloseAllNoSave()!\n";
inline constexpr const char* ExitSaveAll = "未知的错误在 MvTavlet::OnExitSaveAll()!\n";
inline constexpr const char* SaveView = "未知的错误在 MvTavlet::OnSaveView()!\n";
inline constexpr const char* RefreshPreview = "未知的错误在 MvTavlet::OnRefreshPreview()!\n";
inline constexpr const char* OpenFile = "未知的错误在 MvTavlet::OpenFile()!\n";
inline constexpr const char* CloseOthers = "未知的错误在 Tavlet 关闭其他图纸时!\n";
}  // namespace lines

// "错误 [0x%08X]\n%s" of a caught automation failure.
std::string ErrorBoxText(const host::ComError& error);

// The release number of the host (16.1), from the version text of its services
// with strtod; 0 when the host gives none.
double ReadHostVersion(port::HostSession& session);

// The current profile's "\General" key below HKEY_CURRENT_USER (from CPROFILE and
// the profile manager); empty when the profile has no registry root.
std::string TemplatePathKey(port::HostSession& session);
// The TemplatePath text under that key; empty when there is none.
std::string ReadTemplatePath(const std::string& key, const SettingsStore& settings);

class DrawingOperations {
 public:
  // Reads ZoomExtentsOnSave and the host's version.
  explicit DrawingOperations(OperationServices services);

  // ---- one drawing ----
  void SaveDrawing(host::AcadDocumentPtr document);
  // True when the drawing was closed.
  bool CloseDrawing(host::AcadDocumentPtr document);
  void OnClose();
  void OpenFile(const DrawingPath& path, bool complain, bool restoreDbmod);
  bool IsAlreadyOpen(const std::string& path, bool complain);
  void OpenLastDrawing();
  void OnNewDrawing() { NewDrawingFrom(""); }
  // A new drawing from a template (empty: the default one).
  void NewDrawingFrom(const std::string& templateName);

  // The bridges: from automation to the document manager (a walk over all
  // drawings, no cache; null when none matches), and back (null without an OLE
  // link manager). Both raise ComError.
  port::Document DocumentFromAutomation(const host::AcadDocumentPtr& document);
  host::AcadDocumentPtr AutomationObjectOf(port::Document document);

  // ---- all drawings ----
  void OnSaveAll();
  void OnCloseAll();
  void OnSaveAndCloseAll();
  void OnCloseAllNoSave();
  // Close all but `keep`: the questions of the close, and Cancel stops the walk.
  void OnCloseOthers(port::Document keep);
  void OnExitSaveAll();
  void OnExitNoSave();
  void OnQuickPlotAll();
  void OnPlotAll();
  void OnPlotSetup();
  void OnPlot();
  void QuickPlotDrawing(host::AcadDocumentPtr document);

  // ---- views and templates ----
  void OnSaveView();
  void OnChangeTemplatePath();

  // ---- the bar's fields ----
  port::Document contextDocument = nullptr;  // under the last right click
  double hostVersion = 0;
  int ZoomExtentsOnSave = 1;

 private:
  template <class Body>
  bool Guarded(const char* line, Body body);
  // Index from Count-1 down to 0, Documents and Item taken anew each round; a
  // step returning false ends the walk.
  template <class Step>
  void Walk(Step step);
  bool SaveDrawingChecked(const host::AcadDocumentPtr& document);
  void SaveAndCloseAll(const char* notice, const char* line, bool quit);
  void CloseAllNoSave(bool exit);
  long Ask(const std::string& text, unsigned long type);
  void ShowBox(const std::string& text);
  void Print(const std::string& text);
  std::string NameInQuestion(port::Document document);
  void ReportOpenFailure(const std::string& path);

  OperationServices services_;
};

}  // namespace tavlet::operations
