// The dispatch of a chosen entry (OnCommand): fixed ids through the message map,
// dynamic ids back to the list that the last build filled, and the small
// handlers that belong to the menu.
#include <cstring>

#include "content/layouts.h"
#include "menus/context_menu.h"
#include "menus/menu_ids.h"
#include "menus/menu_text.h"
#include "settings/extra_settings.h"
#include "text/codepage.h"
#include "operations/drawing_operations.h"

namespace tavlet::menus {

namespace {

// strncmp over 8 bytes against the 6-byte marker: only a text that is the
// marker alone passes, so "Select..." of a named workset opens it by the twin's
// whole text. Settled as it stands.
constexpr std::size_t kSelectCompareLength = 8;

}  // namespace

void ContextMenu::ShowBox(const std::string& text) {
  long answer = 0;
  services_.session.Boxes()->Show(text.c_str(), port::kBoxOk, &answer);
}

void ContextMenu::Print(const std::string& text) {
  services_.session.EditorService()->Print(text.c_str());
}

port::Document ContextMenu::CurrentDocument() {
  port::Document current = nullptr;
  host::ThrowIfFailed(services_.session.Documents()->CurrentDocument(&current));
  return current;
}

template <class Body>
void ContextMenu::Guarded(const char* line, Body body) {
  try {
    body();
  } catch (const host::ComError& error) {
    ShowBox(operations::ErrorBoxText(error));
  } catch (...) {
    Print(line);
  }
}

bool ContextMenu::OnCommand(int id) {
  if (id < kFirstListId) return RunFixedCommand(id) || RunExtraCommand(id);
  try {
    if (!services_.session.OleLinks()) throw std::string(texts::OleLinkManagerMissing);
    if (RunListCommand(id)) return true;
  } catch (const host::ComError& error) {
    ShowBox(error.Description());
  } catch (const std::string& text) {
    ShowBox(text);
  } catch (...) {
    Print(texts::UnknownError);
  }
  return RunFixedCommand(id);
}

// The message map of the bar's fixed ids.
void ContextMenu::MapFixedCommands() {
  operations::DrawingOperations& ops = services_.operations;
  sheetsets::SheetSetCommands& sheetSets = services_.sheetSets;
  const MenuDialogs& dialogs = services_.dialogs;
  auto show = [](const std::function<void()>& dialog) {
    return [&dialog] {
      if (dialog) dialog();
    };
  };
  messageMap_ = {
      {ids::SaveAll, [&ops] { ops.OnSaveAll(); }},
      {ids::CloseAll, [&ops] { ops.OnCloseAll(); }},
      {ids::SaveAndCloseAll, [&ops] { ops.OnSaveAndCloseAll(); }},
      {ids::CloseAllNoSave, [&ops] { ops.OnCloseAllNoSave(); }},
      {ids::Close, [&ops] { ops.OnClose(); }},
      {ids::Plot, [&ops] { ops.OnPlot(); }},
      {ids::QuickPlotAll, [&ops] { ops.OnQuickPlotAll(); }},
      {ids::PlotSetup, [&ops] { ops.OnPlotSetup(); }},
      {ids::PlotAll, [&ops] { ops.OnPlotAll(); }},
      {ids::About, show(dialogs.about)},
      {ids::ChangeTemplatePath, [&ops] { ops.OnChangeTemplatePath(); }},
      {ids::NewDrawing, [&ops] { ops.OnNewDrawing(); }},
      {ids::ManageWorksets, show(dialogs.manageWorksets)},
      {ids::SheetSetSearchPath, [&sheetSets] { sheetSets.ChooseSearchPath(); }},
      {ids::OpenSheetSetInManager, [&sheetSets] { sheetSets.ToggleOpenInManager(); }},
      {ids::ExitSaveAll, [&ops] { ops.OnExitSaveAll(); }},
      {ids::ExitNoSave, [&ops] { ops.OnExitNoSave(); }},
      {ids::LockPreview, [this] { TogglePreviewLock(); }},
      {ids::OpenFolder, [this] { OnOpenFolder(); }},
      {ids::SaveView, [&ops] { ops.OnSaveView(); }},
      {ids::RefreshPreview, [this] { OnRefreshPreview(); }},
      {ids::RefreshAllPreviews, [this] { OnRefreshAllPreviews(); }},
      // Asks for the current document and drops the answer.
      {ids::CurrentDocumentOnly,
       [this] {
         port::Document ignored = nullptr;
         services_.session.Documents()->CurrentDocument(&ignored);
       }},
      {ids::Options, show(dialogs.options)},
  };
}

// Read at each choice, as the menu reads it at each build: with the setting off
// the ids mean nothing, like any id no handler has.
bool ContextMenu::RunExtraCommand(int id) {
  if (ReadExtra(services_.settings, keys::ExtraDrawingCommands) == 0) return false;
  switch (id) {
    case ids::CloseOthers:
      services_.operations.OnCloseOthers(services_.operations.contextDocument);
      return true;
    case ids::CopyFullPath:
      OnCopyFullPath();
      return true;
    case ids::ShowInFolder:
      OnShowInFolder();
      return true;
    default:
      return false;
  }
}

bool ContextMenu::RunFixedCommand(int id) {
  const auto handler = messageMap_.find(id);
  if (handler == messageMap_.end()) return false;
  handler->second();
  return true;
}

bool ContextMenu::RunListCommand(int id) {
  const port::Document context = services_.operations.contextDocument;
  auto entry = [id](const auto& map) -> const auto& { return map.at(id); };
  switch (ListOf(id, Keys())) {
    case MenuList::RecentFiles: {
      RecentFileList& recent = services_.bar.RecentFiles();
      const std::size_t index = static_cast<std::size_t>(id - kFirstListId);
      if (index < recent.Count())
        services_.operations.OpenFile(ParseRecentEntry(recent.At(index), services_.files), true,
                                      true);
      return false;
    }
    case MenuList::Worksets:
      return OpenWorksetEntry(entry(lists_.worksets));
    case MenuList::RecentSheetSets:
    case MenuList::FoundSheetSets: {
      const sheetsets::SheetSetCommands& sheetSets = services_.sheetSets;
      const DrawingPath& path = ListOf(id, Keys()) == MenuList::RecentSheetSets
                                    ? entry(sheetSets.recentSheetSets)
                                    : entry(sheetSets.foundSheetSets);
      if (path.Full == content::kNotFound) return true;
      services_.sheetSets.OpenSheetSet(path.Full);
      return false;
    }
    case MenuList::Templates:
      // "没有找到" goes to the host too, which refuses it with its error box.
      services_.application.Documents().Add(entry(lists_.templates).Full);
      return false;
    case MenuList::Layouts:
      if (context) RestoreLayout(entry(lists_.layouts));
      return false;
    case MenuList::ExternalReferences:
    case MenuList::Images:
    case MenuList::OleLinks:
    case MenuList::Hyperlinks: {
      const content::ReferenceSet& refs = lists_.references;
      const MenuList list = ListOf(id, Keys());
      const DrawingPath& path = list == MenuList::ExternalReferences
                                    ? entry(refs.externalReferences)
                                : list == MenuList::Images   ? entry(refs.images)
                                : list == MenuList::OleLinks ? entry(refs.oleLinks)
                                                             : entry(refs.hyperlinks);
      services_.operations.OpenFile(ParseRecentEntry(path.Full, services_.files), true, true);
      return false;
    }
    case MenuList::LayerStates:
      return context && RestoreLayerState(entry(lists_.layerStates));
    case MenuList::Views:
      return context && RestoreView(entry(lists_.views));
    case MenuList::None:
      break;
  }
  return false;
}

bool ContextMenu::OpenWorksetEntry(const DrawingPath& entry) {
  const std::string& full = entry.Full;
  if (full == content::kNotFound) return true;
  if (std::strncmp(full.c_str(), workset_texts::kSelectMarker, kSelectCompareLength) == 0) {
    services_.worksets.SelectAndOpenWorkset(
        full.size() > kSelectCompareLength ? full.substr(kSelectCompareLength) : std::string());
  } else {
    services_.worksets.OpenWorkset(full);
  }
  return false;
}

void ContextMenu::RestoreLayout(const std::string& name) {
  const port::Document context = services_.operations.contextDocument;
  host::AcadDocumentPtr document = services_.operations.AutomationObjectOf(context);
  if (!document) return;
  document.Activate();
  host::AcadLayoutPtr layout = document.Layouts().Item(name);
  if (name == document.ActiveLayout().Name()) return;
  document.PutActiveLayout(layout);
  services_.bar.SetModified(context, true);
}

bool ContextMenu::RestoreLayerState(const std::string& name) {
  if (name == content::kNotFound) return true;
  const port::Document context = services_.operations.contextDocument;
  host::AcadDocumentPtr document = services_.operations.AutomationObjectOf(context);
  if (!document) return false;
  document.Activate();
  port::Database db = nullptr;
  if (port::Failed(services_.session.Documents()->DatabaseOf(context, &db))) return false;
  const std::optional<long> status =
      content::RestoreLayerState(services_.session, CurrentDocument(), db, name);
  if (!status) return false;
  if (*status == 0) {
    document.Regen(1);
    port::Document active = nullptr;
    host::ThrowIfFailed(services_.session.Documents()->MdiActiveDocument(&active));
    services_.bar.SetModified(active, true);
    return false;
  }
  host::StringSink text;
  services_.session.Databases()->ErrorStatusText(*status, &text);
  Print(FormatText(texts::LayerStateFailed, {name, text.text}));
  return false;
}

bool ContextMenu::RestoreView(const content::ViewEntry& entry) {
  if (entry.name == content::kNotFound) return true;
  const port::Document context = services_.operations.contextDocument;
  host::AcadDocumentPtr document = services_.operations.AutomationObjectOf(context);
  if (!document) return false;
  document.Activate();
  host::AcadViewPtr view = document.Views().Item(entry.name);
  if (entry.isModelView) {
    if (document.ActiveSpace() != port::kModelSpace) document.PutActiveSpace(port::kModelSpace);
  } else if (document.ActiveSpace() == port::kModelSpace) {
    document.PutActiveSpace(port::kPaperSpace);
  }
  if (document.ActiveSpace() == port::kModelSpace) {
    host::AcadViewportPtr viewport = document.ActiveViewport();
    viewport.SetView(view);
    document.PutActiveViewport(viewport);
  } else {
    // A view in a layout can't be set through a viewport: it is restored as a
    // zoom window on its layout.
    std::string layout = entry.layout;
    if (layout.empty())
      layout = content::AssignViewLayout(entry.name, services_.session, context,
                                         services_.layoutChooser);
    if (layout.empty()) return true;
    document.PutActiveLayout(document.Layouts().Item(layout));
    const double height = view.Height();
    const double width = view.Width();
    services_.application.ZoomWindow({entry.centerX - width / 2, entry.centerY - height / 2, 0, 3},
                                     {entry.centerX + width / 2, entry.centerY + height / 2, 0, 3});
  }
  services_.bar.SetModified(context, true);
  return false;
}

// No guarded block: nothing here raises.
void ContextMenu::OnOpenFolder() {
  const port::Document context = services_.operations.contextDocument;
  if (!context) return;
  port::DocManager& documents = *services_.session.Documents();
  port::Database db = nullptr;
  if (port::Failed(documents.DatabaseOf(context, &db)) || !db) return;
  host::StringSink path;
  if (port::Failed(documents.PathName(context, &path))) path.text.clear();
  // A drawing never saved has an empty folder; the shell is asked all the same.
  services_.shell.OpenWithShell(DrawingPath(path.text, services_.files).GetFolder());
}

std::string ContextMenu::ContextDocumentPath() {
  const port::Document context = services_.operations.contextDocument;
  return context ? bar::DocumentName(*services_.session.Documents(), context) : std::string();
}

void ContextMenu::OnCopyFullPath() {
  const std::string path = ContextDocumentPath();
  if (!path.empty()) services_.shell.CopyToClipboard(services_.bar.Window(), path);
}

void ContextMenu::OnShowInFolder() {
  const std::string path = ContextDocumentPath();
  // A drawing never saved has no file to select.
  if (text::Mbschr(path, '\\') != std::string::npos) services_.shell.ShowInFolder(path);
}

void ContextMenu::OnRefreshPreview() {
  Guarded(operations::lines::RefreshPreview, [&] {
    const port::Document context = services_.operations.contextDocument;
    if (!services_.session.OleLinks() || !context) return;
    host::AcadDocumentPtr active = services_.application.ActiveDocument();
    host::AcadDocumentPtr document = services_.operations.AutomationObjectOf(context);
    const bool isActive = active.Identity() == document.Identity();
    if (!isActive) document.Activate();
    services_.bar.Strip().MarkPreviewDirty(context, true);
    if (!isActive) active.Activate();
  });
}

void ContextMenu::OnRefreshAllPreviews() {
  Guarded(operations::lines::Close, [&] {
    port::DocManager& documents = *services_.session.Documents();
    const port::Document current = CurrentDocument();
    long count = 0;
    host::ThrowIfFailed(documents.DocumentCount(&count));
    for (long i = 0; i < count; ++i) {
      port::Document doc = nullptr;
      host::ThrowIfFailed(documents.DocumentAt(i, &doc));
      if (!doc) continue;
      host::ThrowIfFailed(documents.ActivateDocument(doc, false));
      services_.bar.Strip().MarkPreviewDirty(doc, true);
    }
    host::ThrowIfFailed(documents.ActivateDocument(current, false));
  });
}

void ContextMenu::TogglePreviewLock() {
  services_.bar.TogglePreviewLock(services_.operations.contextDocument);
}

}  // namespace tavlet::menus
