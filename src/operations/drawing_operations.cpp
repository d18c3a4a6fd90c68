#include "operations/drawing_operations.h"

#include <cstdio>
#include <cstdlib>

#include "operations/drawing_operations_impl.h"
#include "previews/dwg_version.h"
#include "settings/settings_table.h"
#include "text/codepage.h"

namespace tavlet::operations {

namespace {

std::string Format(const char* format, const std::string& text) {
  int size = std::snprintf(nullptr, 0, format, text.c_str());
  std::string out(static_cast<std::size_t>(size > 0 ? size : 0), '\0');
  std::snprintf(out.data(), out.size() + 1, format, text.c_str());
  return out;
}

}  // namespace

std::string ErrorBoxText(const host::ComError& error) {
  char code[32];
  std::snprintf(code, sizeof code, "错误 [0x%08X]\n", error.Bits());
  return code + error.Description();
}

double ReadHostVersion(port::HostSession& session) {
  host::StringSink text;
  if (port::Failed(session.Services()->VersionText(&text))) return 0;
  return std::strtod(text.text.c_str(), nullptr);
}

DrawingOperations::DrawingOperations(OperationServices services) : services_(std::move(services)) {
  ZoomExtentsOnSave = ReadInt(services_.settings, keys::ZoomExtentsOnSave);
  hostVersion = ReadHostVersion(services_.session);
}

// ---------------------------------------------------------------- host services

void DrawingOperations::ShowBox(const std::string& text) {
  long answer = 0;
  services_.session.Boxes()->Show(text.c_str(), port::kBoxOk, &answer);
}

long DrawingOperations::Ask(const std::string& text, unsigned long type) {
  long answer = 0;
  host::ThrowIfFailed(services_.session.Boxes()->Show(text.c_str(), type, &answer));
  return answer;
}

void DrawingOperations::Print(const std::string& text) {
  services_.session.EditorService()->Print(text.c_str());
}

// ---------------------------------------------------------------- bridges

port::Document DrawingOperations::DocumentFromAutomation(const host::AcadDocumentPtr& document) {
  if (!document) return nullptr;
  const void* wanted = document.Identity();
  port::DocManager& manager = *services_.session.Documents();
  long count = 0;
  host::ThrowIfFailed(manager.DocumentCount(&count));
  for (long i = 0; i < count; ++i) {
    port::Document candidate = nullptr;
    host::ThrowIfFailed(manager.DocumentAt(i, &candidate));
    if (!candidate) continue;
    port::Database db = nullptr;
    host::ThrowIfFailed(manager.DatabaseOf(candidate, &db));
    if (host::DocumentObjectOf(services_.session, db).Identity() == wanted) return candidate;
  }
  return nullptr;
}

host::AcadDocumentPtr DrawingOperations::AutomationObjectOf(port::Document document) {
  if (!document) return host::AcadDocumentPtr();
  port::Database db = nullptr;
  host::ThrowIfFailed(services_.session.Documents()->DatabaseOf(document, &db));
  return host::DocumentObjectOf(services_.session, db);
}

// ---------------------------------------------------------------- save and close

void DrawingOperations::SaveDrawing(host::AcadDocumentPtr document) {
  SaveDrawingChecked(document);
}

bool DrawingOperations::SaveDrawingChecked(const host::AcadDocumentPtr& document) {
  return Guarded(lines::SaveAll, [&] {
    if (document.ReadOnly()) return;
    // Read at every save, so that a changed setting counts at once.
    const std::string command = ReadString(services_.settings, keys::SaveCommand);
    document.Activate();
    if (ZoomExtentsOnSave) {
      if (document.ActiveSpace() == port::kModelSpace) {
        services_.application.ZoomExtents();
      } else {
        port::Value cvport;
        host::ThrowIfFailed(
            services_.session.EditorService()->GetVariable("CVPORT", &cvport, nullptr));
        // A floating viewport is active: the sheet is zoomed, not the model in it.
        if (cvport.integer != 1) document.SendCommand("_.PSPACE\n");
        services_.application.ZoomAll();
      }
    }
    document.SendCommand(command);
  });
}

std::string DrawingOperations::NameInQuestion(port::Document document) {
  port::DocManager& manager = *services_.session.Documents();
  host::StringSink path;
  host::ThrowIfFailed(manager.PathName(document, &path));
  DrawingPath name(path.text, services_.files);
  if (name.Name.empty()) {
    host::StringSink fileName;
    host::ThrowIfFailed(manager.FileName(document, &fileName));
    name = DrawingPath(fileName.text, services_.files);
  }
  return name.Name;
}

bool DrawingOperations::CloseDrawing(host::AcadDocumentPtr document) {
  if (!document) return false;
  bool closed = false;
  Guarded(lines::CloseDrawing, [&] {
    if (!document.ReadOnly()) {
      port::Document owner = DocumentFromAutomation(document);
      if (!owner) return;
      if (document.GetVariableShort("DBMOD") > 0) {
        const long answer =
            Ask("Save changes to " + NameInQuestion(owner) + "?", port::kBoxYesNoCancel);
        if (answer != port::kAnswerYes && answer != port::kAnswerNo) return;
        // A save that failed has shown its box; closing without saving now would
        // throw the changes away, so the drawing stays open.
        if (answer == port::kAnswerYes && !SaveDrawingChecked(document)) return;
      }
    }
    // The save, if any, is done: Close must never ask a question of its own.
    document.Close(0, nullptr);
    closed = true;
  });
  return closed;
}

void DrawingOperations::OnClose() {
  if (!services_.session.OleLinks() || !contextDocument) return;
  Guarded(lines::Close, [&] { CloseDrawing(AutomationObjectOf(contextDocument)); });
}

// ---------------------------------------------------------------- open and new

bool DrawingOperations::IsAlreadyOpen(const std::string& path, bool complain) {
  try {
    host::AcadDocumentsPtr documents = services_.application.Documents();
    for (long index = documents.Count() - 1; index >= 0; --index) {
      host::AcadDocumentPtr document = documents.Item(index);
      if (text::Mbsicmp(document.FullName(), path) != 0) continue;
      document.Activate();
      if (complain) ShowBox(Format("%s 已经打开!\n", path));
      return true;
    }
  } catch (...) {
    // The open goes on and the host decides.
  }
  return false;
}

void DrawingOperations::OpenFile(const DrawingPath& path, bool complain, bool restoreDbmod) {
  const std::string full = path.Full;
  if (!services_.files.Stat(full).exists) {
    if (complain) ShowBox(Format("指定路径的文件不存在 -\n%s", full));
    return;
  }
  try {
    if (text::Mbsicmp(path.Extension, ".dwg") != 0) {
      services_.shell.OpenWithShell(full);
      return;
    }
    if (IsAlreadyOpen(full, complain)) return;
    services_.application.Documents().Open(full, path.readOnly);
    if (restoreDbmod) {
      port::Document current = nullptr;
      host::ThrowIfFailed(services_.session.Documents()->CurrentDocument(&current));
      if (current) host::ThrowIfFailed(services_.session.Documents()->PopDbmod(current));
    }
    services_.recentFiles.AddRecentFile(full);
  } catch (const host::ComError& error) {
    const std::string text = ErrorBoxText(error);
    Print(text + "\n");
    ShowBox(text);
  } catch (...) {
    ReportOpenFailure(full);
  }
}

// The host itself failed on the file; a drawing of a later release is the one
// cause worth naming. The version is looked at only now, never before an open.
void DrawingOperations::ReportOpenFailure(const std::string& path) {
  if (ReadDrawingVersion(services_.files, path) > hostVersion) {
    std::string release;
    if (ReadDrawingReleaseName(services_.files, path, release))
      Print(Format("用这个版本的AutoCAD不能打开 %s 图形文件!\n", release));
    return;
  }
  Print(lines::OpenFile);
}

void DrawingOperations::OpenLastDrawing() {
  RecentFileList& recent = services_.recentFiles;
  recent.LoadRecentFiles();
  if (recent.Count() == 0) {
    ShowBox("最近文件使用列表中没有文件!");
    return;
  }
  const std::string first = recent.At(0);
  if (!services_.files.Stat(first).exists) {
    ShowBox(Format("Unable to find last opened drawing -\n%s", first));
    return;
  }
  OpenFile(ParseRecentEntry(first, services_.files), true, true);
}

void DrawingOperations::NewDrawingFrom(const std::string& templateName) {
  // A refused new drawing simply doesn't appear.
  try {
    long count = 0;
    host::ThrowIfFailed(services_.session.Documents()->DocumentCount(&count));
    // With no drawing open automation has no document to run in.
    if (count == 0)
      host::ThrowIfFailed(
          services_.session.Documents()->AppContextNewDocument(templateName.c_str()));
    else
      services_.application.Documents().Add(templateName);
  } catch (...) {
  }
}

}  // namespace tavlet::operations
