// The handlers of the context menu's lower block: one walk over all drawings,
// from the last opened to the first, with a different step per handler.
#include "host/window_system.h"
#include "operations/batch_helpers.h"
#include "operations/drawing_operations_impl.h"

namespace tavlet::operations {

namespace {
constexpr const char* kDiscardQuestion = "放弃任何改动?";
}  // namespace

void DrawingOperations::OnSaveAll() {
  Guarded(lines::SaveAll, [&] {
    ModelessNotice(*services_.session.EditorService(), "TL_SaveAll");
    host::AcadDocumentPtr active = services_.application.ActiveDocument();
    Walk([&](const host::AcadDocumentPtr& document) {
      SaveDrawing(document);
      return true;
    });
    active.Activate();
  });
  // Also after a failure: the saves that went through changed what the bar shows.
  services_.windows.RedrawWindow(services_.bar, nullptr, host::kRedrawNow);
}

void DrawingOperations::OnCloseAll() {
  Guarded(lines::CloseAll, [&] {
    ModelessNotice(*services_.session.EditorService(), "TL_CloseAll");
    Walk([&](const host::AcadDocumentPtr& document) { return CloseDrawing(document); });
  });
}

void DrawingOperations::OnCloseOthers(port::Document keep) {
  Guarded(lines::CloseOthers, [&] {
    ModelessNotice(*services_.session.EditorService(), "TL_CloseOthers");
    Walk([&](const host::AcadDocumentPtr& document) {
      return DocumentFromAutomation(document) == keep || CloseDrawing(document);
    });
  });
}

void DrawingOperations::SaveAndCloseAll(const char* notice, const char* line, bool quit) {
  Guarded(line, [&] {
    ModelessNotice(*services_.session.EditorService(), notice);
    Walk([&](const host::AcadDocumentPtr& document) {
      SaveDrawing(document);
      // Both arguments missing: what happens to changes a failed save left is
      // the host's own question.
      document.Close(port::kMissingFlag, nullptr);
      return true;
    });
    if (quit) services_.application.Quit();
  });
}

void DrawingOperations::OnSaveAndCloseAll() {
  SaveAndCloseAll("TL_SaveAndCloseAll", lines::SaveAndCloseAll, false);
}

void DrawingOperations::OnExitSaveAll() {
  SaveAndCloseAll("TL_ExitSaveAll", lines::ExitSaveAll, true);
}

void DrawingOperations::CloseAllNoSave(bool exit) {
  Guarded(lines::CloseAllNoSave, [&] {
    if (exit) ModelessNotice(*services_.session.EditorService(), "TL_ExitNoSave");
    if (Ask(kDiscardQuestion, port::kBoxYesNo) != port::kAnswerYes) return;
    if (exit) {
      // The user need not watch the drawings fall away. Nothing shows the frame
      // again: the host is about to quit, and a failure's box comes up without it.
      port::Window frame = nullptr;
      host::ThrowIfFailed(services_.session.Frame()->MainFrame(&frame));
      services_.windows.ShowWindow(frame, host::kSwHide);
    }
    Walk([&](const host::AcadDocumentPtr& document) {
      document.Close(0, nullptr);
      return true;
    });
    if (exit) services_.application.Quit();
  });
}

void DrawingOperations::OnCloseAllNoSave() { CloseAllNoSave(false); }

void DrawingOperations::OnExitNoSave() { CloseAllNoSave(true); }

void DrawingOperations::QuickPlotDrawing(host::AcadDocumentPtr document) {
  Guarded(lines::Close, [&] {
    host::AcadLayoutPtr layout = document.ActiveLayout();
    // The layout's device and paper are read anew before it plots with its own settings.
    layout.RefreshPlotDeviceInfo();
    document.Plot().PlotToDevice(nullptr);
  });
}

void DrawingOperations::OnQuickPlotAll() {
  try {
    ModelessNotice(*services_.session.EditorService(), "TL_QuickPlotAll");
    port::Editor& editor = *services_.session.EditorService();
    SystemVariableGuard backgroundPlot(editor, "BACKGROUNDPLOT", true);
    // In the foreground the plots run one after the other. A value that could
    // not be read could not be given back either, so it is left as it is.
    if (backgroundPlot.Read()) {
      port::Value foreground;
      foreground.type = port::kValueShort;
      foreground.integer = 0;
      host::ThrowIfFailed(editor.SetVariable("BACKGROUNDPLOT", &foreground));
    }
    Walk([&](const host::AcadDocumentPtr& document) {
      QuickPlotDrawing(document);
      return true;
    });
  } catch (...) {
  }
}

void DrawingOperations::OnPlotAll() {
  try {
    ModelessNotice(*services_.session.EditorService(), "TL_PlotAll");
    bool ok = false;
    {
      host::ModuleResourceScope resources(services_.windows);
      ok = services_.shell.RunPlotDialog(services_.bar);
    }
    if (!ok) return;
    Walk([&](const host::AcadDocumentPtr& document) {
      QuickPlotDrawing(document);
      return true;
    });
  } catch (...) {
  }
}

void DrawingOperations::OnPlotSetup() {
  if (!contextDocument) return;
  host::ModuleResourceScope resources(services_.windows);
  services_.shell.RunPlotDialog(services_.bar);
}

void DrawingOperations::OnPlot() {
  if (!services_.session.OleLinks() || !contextDocument) return;
  Guarded(lines::Close, [&] { QuickPlotDrawing(AutomationObjectOf(contextDocument)); });
}

}  // namespace tavlet::operations
