#include "bar/strip_actions.h"

namespace tavlet::bar {
namespace {

// A failing host call reads as "not busy": the user's click is not swallowed by
// a question the host could not answer.
bool InsideCommand(port::DocManager& documents, port::Document doc) {
  if (!doc) return false;
  bool quiescent = true;
  if (port::Failed(documents.IsQuiescent(doc, &quiescent))) return false;
  return !quiescent;
}

void ShowBusyBox(port::HostSession& session) {
  long answer = 0;
  session.Boxes()->Show(kSwitchWhileBusyText, port::kBoxOk, &answer);
}

}  // namespace

bool SwitchToDocument(port::HostSession& session, const BarSettings& settings, port::Document doc) {
  port::DocManager& documents = *session.Documents();
  if (!settings.SwitchOnBusy) {
    port::Document current = nullptr;
    if (port::Failed(documents.CurrentDocument(&current))) current = nullptr;
    if (InsideCommand(documents, current)) {
      ShowBusyBox(session);
      return false;
    }
  }
  documents.ActivateDocument(doc, false);
  return true;
}

bool TabSelChanging(port::HostSession& session, const BarSettings& settings) {
  port::DocManager& documents = *session.Documents();
  port::Document active = nullptr;
  if (port::Failed(documents.MdiActiveDocument(&active))) active = nullptr;
  if (!active || settings.SwitchOnBusy || !InsideCommand(documents, active)) return false;
  ShowBusyBox(session);
  return true;
}

bool TabSelChange(BarModel& bar, int selected) {
  const auto& tabs = bar.Tabs().Tabs();
  if (selected < 0 || static_cast<std::size_t>(selected) >= tabs.size()) return false;
  const port::Document doc = tabs[static_cast<std::size_t>(selected)].document;
  // The activation this causes comes back through ActivateDocument, which must
  // not select a tab while the control is changing its own selection.
  bar.TabChanging = true;
  bar.Tabs().SelectTab(doc);
  bar.Session().Documents()->SetCurrentDocument(doc, port::kLockNone, true);
  bar.Windows().RedrawWindow(bar.TabWindow(), nullptr, host::kRedrawNow);
  bar.TabChanging = false;
  return true;
}

void RefreshAllPreviews(BarModel& bar, const std::function<void(DocEntry&)>& updatePreview) {
  if (!bar.Settings().AutoUpdatePreviews) return;
  host::WindowSystem& windows = bar.Windows();
  if (bar.DrawingCount() == 1) {
    windows.RedrawWindow(bar.StripWindow(), nullptr, host::kRedrawNow);
    return;
  }
  port::DocManager& documents = *bar.Session().Documents();
  port::Document remembered = nullptr;
  if (port::Failed(documents.CurrentDocument(&remembered))) remembered = nullptr;
  long count = 0;
  if (port::Failed(documents.DocumentCount(&count))) count = 0;
  for (long i = 0; i < count; ++i) {
    port::Document doc = nullptr;
    if (port::Failed(documents.DocumentAt(i, &doc)) || !doc) continue;
    documents.ActivateDocument(doc, false);
    if (DocEntry* entry = bar.Strip().FindEntry(doc); entry && updatePreview) updatePreview(*entry);
  }
  if (remembered) documents.ActivateDocument(remembered, false);
}

bool OnStripTimer(BarModel& bar, unsigned id) {
  if (id != kActivationTimer && id != kZoomTimer) return false;
  host::WindowSystem& windows = bar.Windows();
  windows.KillTimer(bar.StripWindow(), id);
  if (id == kActivationTimer) {
    windows.RedrawWindow(bar.StripWindow(), nullptr, host::kRedrawNow);
    return true;
  }
  port::Document active = nullptr;
  if (port::Failed(bar.Session().Documents()->MdiActiveDocument(&active))) active = nullptr;
  if (active) bar.Strip().MarkPreviewDirty(active, false);
  return true;
}

}  // namespace tavlet::bar
