#include "host/reactors.h"

#include "bar/bar_model.h"
#include "host/automation.h"
#include "host/com_error.h"
#include "settings/settings_table.h"
#include "text/codepage.h"

namespace tavlet::host {

namespace {

// The boundary towards the host: an event ends here whatever went wrong inside.
template <class F>
void Guarded(F&& f) noexcept {
  try {
    f();
  } catch (const ComError&) {
  } catch (...) {
  }
}

std::string Text(const char* s) { return s ? s : ""; }

bool IsOneOf(const std::string& name, std::initializer_list<const char*> names) {
  for (const char* n : names)
    if (text::Mbscmp(name, n) == 0) return true;
  return false;
}

}  // namespace

// ---------------------------------------------------------------- documents

BarDocManagerReactor::BarDocManagerReactor(bar::BarModel* bar)
    : Bar(bar), manager_(bar ? bar->Session().Documents() : nullptr) {
  if (manager_) manager_->AddReactor(this);
}

BarDocManagerReactor::~BarDocManagerReactor() {
  if (manager_) manager_->RemoveReactor(this);
}

void BarDocManagerReactor::DocumentCreated(port::Document doc) {
  Guarded([&] {
    if (Bar) Bar->OnDocumentCreated(doc);
  });
}

void BarDocManagerReactor::DocumentToBeDestroyed(port::Document doc) {
  Guarded([&] {
    if (doc && Bar) Bar->OnDocumentToBeDestroyed(doc);
  });
}

void BarDocManagerReactor::DocumentDestroyed(const char*) {
  Guarded([&] {
    if (!Bar || !Bar->Settings().HideOnSingle) return;
    // The closed drawing is no longer counted: exactly one left means the bar's
    // space goes back to the drawing area.
    if (Bar->DrawingCount() != 1) return;
    Bar->NudgeFrame();
    Bar->Windows().RedrawWindow(Bar->Frame().frame, nullptr, kRedrawNow);
    Bar->Session().EditorService()->PostCommandPrompt();
  });
}

void BarDocManagerReactor::DocumentLockModeChanged(port::Document, const char*) {}

void BarDocManagerReactor::DocumentActivated(port::Document doc) {
  Guarded([&] {
    if (Bar) Bar->ActivateDocument(doc);
  });
}

// ---------------------------------------------------------------- editor

BarEditorReactor::BarEditorReactor(bar::BarModel* bar)
    : Bar(bar), editor_(bar ? bar->Session().EditorService() : nullptr) {
  if (bar) AvoidSaveasInLisp = ReadBool(bar->Store(), keys::AvoidSaveasInLisp);
  if (editor_) editor_->AddReactor(this);
}

BarEditorReactor::~BarEditorReactor() {
  if (editor_) editor_->RemoveReactor(this);
}

void BarEditorReactor::SaveComplete(port::Database db, const char* actualName) {
  Guarded([&] {
    // A save that no tracked command caused leaves the bar as it is.
    if (currentCommand.empty() || lispActive || !Bar) return;
    port::Document doc = nullptr;
    ThrowIfFailed(Bar->Session().Documents()->DocumentOfDatabase(db, &doc));
    const std::string name = Text(actualName);
    if (IsOneOf(currentCommand, {"QSAVE", "SAVE", "SAVEAS"})) {
      Bar->RenameDocument(doc, name);
      Bar->AddRecentFile(name);
    }
    // Automatic saves under other commands clear the mark without renaming.
    Bar->SetModified(doc, false);
  });
}

void BarEditorReactor::CommandWillStart(const char* command) {
  if (!lispActive) currentCommand = Text(command);
}

void BarEditorReactor::CommandEnded(const char* command) {
  Guarded([&] {
    if (!lispActive) PollDrawingState(Text(command));
  });
}

void BarEditorReactor::CommandCancelled(const char*) { currentCommand.clear(); }

void BarEditorReactor::CommandFailed(const char*) { currentCommand.clear(); }

void BarEditorReactor::LispWillStart(const char*) { lispActive = AvoidSaveasInLisp; }

void BarEditorReactor::LispEnded() {
  Guarded([&] {
    if (lispActive) PollDrawingState("lispEnded()");
  });
  lispActive = false;
}

void BarEditorReactor::LispCancelled() { lispActive = false; }

void BarEditorReactor::EndDwgOpen(const char* fileName) {
  Guarded([&] {
    if (Bar) Bar->AddRecentFile(Text(fileName));
  });
}

void BarEditorReactor::SysVarChanged(const char*, bool) {}

void BarEditorReactor::PollDrawingState(const std::string& name) {
  if (name.empty()) return;
  if (Bar && Bar->On()) {
    if (!Bar->TabMode() && IsOneOf(currentCommand, {"CONFIG", "OPTIONS", "PREFERENCES"})) Bar->ReloadBackgroundColors();
    port::HostSession& session = Bar->Session();
    port::DocManager& documents = *session.Documents();
    port::Document doc = nullptr;
    ThrowIfFailed(documents.MdiActiveDocument(&doc));
    if (doc) {
      bool modified = false;
      ThrowIfFailed(documents.IsModified(doc, &modified));
      if (session.OleLinks()) {
        port::Database db = nullptr;
        ThrowIfFailed(documents.DatabaseOf(doc, &db));
        // DBMOD decides whenever automation can read it; IsModified is the fallback.
        if (AcadDocumentPtr object = DocumentObjectOf(session, db))
          modified = object.GetVariableShort("DBMOD") > 0;
      }
      Bar->SetModified(doc, modified);
    }
  }
  currentCommand.clear();
}

}  // namespace tavlet::host
