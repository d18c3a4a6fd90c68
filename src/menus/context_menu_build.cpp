// The build of the context menu (OnContextMenu): the recent files, worksets,
// sheet sets and templates first, since the id counter runs through their lists
// in that order, then the block of the drawing under the pointer, the lists to
// open things from, the all-drawings block and the last two entries.
#include <utility>

#include "content/layouts.h"
#include "menus/context_menu.h"
#include "menus/menu_ids.h"
#include "menus/menu_text.h"
#include "settings/extra_settings.h"
#include "menus/templates.h"
#include "menus/workset_tip.h"
#include "settings/settings_table.h"

namespace tavlet::menus {

bool ListEntryChecked(const std::string& activeName, int id) {
  return activeName.size() == 1 &&
         static_cast<unsigned char>(activeName[0]) == static_cast<unsigned char>(id & 0xFF);
}

ContextMenu::ContextMenu(MenuServices services) : services_(std::move(services)) {
  MapFixedCommands();
}

FirstKeys ContextMenu::Keys() const {
  const sheetsets::SheetSetCommands& sheetSets = services_.sheetSets;
  const content::ReferenceSet& refs = lists_.references;
  return {kFirstListId,
          FirstKey(lists_.worksets),
          FirstKey(sheetSets.recentSheetSets),
          FirstKey(sheetSets.foundSheetSets),
          FirstKey(lists_.templates),
          FirstKey(lists_.layouts),
          FirstKey(refs.externalReferences),
          FirstKey(refs.images),
          FirstKey(refs.oleLinks),
          FirstKey(refs.hyperlinks),
          FirstKey(lists_.layerStates),
          FirstKey(lists_.views)};
}

std::string ContextMenu::WorksetTip(int id) {
  return WorksetTipText(id, Keys(), lists_.worksets, services_.worksets, services_.files,
                        services_.bar.Settings().ShowFullPathInRefs != 0);
}

std::string ContextMenu::ListText(const DrawingPath& path, bool fullPath) const {
  return fullPath ? path.Full : path.Name;
}

MenuEntry ContextMenu::Build(port::Document document) {
  long docCount = 0;
  try {
    docCount = services_.bar.DrawingCount();
  } catch (...) {
    docCount = 0;
  }
  services_.operations.contextDocument = document;
  // Every list is emptied before anything is handed out, so that a build cut
  // short leaves no ids of the last one behind for the range test.
  lists_.Clear();
  services_.sheetSets.recentSheetSets.clear();
  services_.sheetSets.foundSheetSets.clear();
  worksetSubmenus_.clear();

  MenuEntry top;
  bool worksetsShown = false;
  try {
    int nextId = kFirstListId;
    MenuEntry recent;
    BuildRecentFiles(recent, nextId);
    MenuEntry worksets;
    BuildWorksets(worksets, nextId);
    bool sheetSetsBuilt = false;
    MenuEntry sheetSets = BuildSheetSets(nextId, sheetSetsBuilt);
    MenuEntry newDrawing = BuildNewDrawing(nextId);

    if (!document) {
      if (!services_.bar.TabMode() && services_.bar.Settings().AutoUpdatePreviews == 0)
        top.Append(ids::RefreshAllPreviews, texts::RefreshPreview);
      // The lists are filled though no submenu shows them: the range test needs
      // each of them to hold at least its "没有找到".
      FillContentLists(nextId, nullptr);
    } else {
      BuildDrawingBlock(top, nextId);
    }

    top.AppendPopup(texts::RecentFiles, std::move(recent));
    const std::size_t worksetsIndex = top.children.size();
    top.AppendPopup(texts::Worksets, std::move(worksets));
    for (auto& [id, path] : worksetSubmenus_) path.insert(path.begin(), worksetsIndex);
    worksetsShown = true;
    if (sheetSetsBuilt)
      top.AppendPopup(texts::SheetSets, std::move(sheetSets));
    else
      top.Append(0, texts::SheetSets, kGrayed);
    if (ReadInt(services_.settings, keys::DisableNewMenu) == 0)
      top.AppendPopup(texts::NewMenu, std::move(newDrawing));
    top.AppendSeparator();

    if (docCount > 0) {
      top.Append(ids::QuickPlotAll, texts::QuickPlotAll);
      top.Append(ids::SaveAll, texts::SaveAll);
      top.Append(ids::CloseAll, texts::CloseAll);
      top.Append(ids::SaveAndCloseAll, texts::SaveAndCloseAll);
      top.Append(ids::CloseAllNoSave, texts::CloseAllNoSave);
      top.Append(ids::ExitSaveAll, texts::ExitSaveAll);
      top.Append(ids::ExitNoSave, texts::ExitNoSave);
      top.AppendSeparator();
    }
  } catch (...) {
    // The menu ends here; the last two entries are always there.
    if (!worksetsShown) worksetSubmenus_.clear();
  }
  top.Append(ids::Options, texts::Options);
  top.Append(ids::About, texts::About);
  return top;
}

void ContextMenu::BuildRecentFiles(MenuEntry& recent, int& nextId) {
  RecentFileList& files = services_.bar.RecentFiles();
  files.LoadRecentFiles();
  // "空" shares its id with the first workset entry: the counter stays.
  if (files.Count() == 0) {
    recent.Append(nextId, texts::NoRecentFiles);
    return;
  }
  for (std::size_t i = 0; i < files.Count(); ++i) recent.Append(nextId++, files.At(i));
}

void ContextMenu::BuildWorksets(MenuEntry& worksets, int& nextId) {
  worksets.Append(ids::ManageWorksets, texts::ManageWorksets);
  services_.worksets.ListWorksetsForMenu(nextId, lists_.worksets, true,
                                         services_.bar.Settings().SortWorksets != 0);
  if (lists_.worksets.size() == 1) {
    const auto& [id, path] = *lists_.worksets.begin();
    worksets.Append(id, path.Name);
    return;
  }
  // Two entries a workset: its name (all), then its "<选择>" twin (select).
  for (auto it = lists_.worksets.begin(); it != lists_.worksets.end(); ++it) {
    MenuEntry submenu;
    submenu.Append(it->first, texts::WorksetAll);
    submenu.Append(it->first + 1, texts::WorksetSelect);
    worksetSubmenus_[it->first] = MenuPath{worksets.children.size()};
    worksets.AppendPopup(it->second.Name, std::move(submenu));
    if (++it == lists_.worksets.end()) break;
  }
}

MenuEntry ContextMenu::BuildSheetSets(int& nextId, bool& built) {
  sheetsets::SheetSetCommands& sheetSets = services_.sheetSets;
  sheetSets.FillSheetSetLists(nextId, true);
  MenuEntry menu;
  built = services_.operations.hostVersion > 16.0;
  if (!built) return menu;
  const BarSettings& settings = services_.bar.Settings();
  const bool fullPath = settings.ShowFullPathInSheetSets != 0;
  menu.Append(ids::SheetSetSearchPath, texts::SheetSetSearchPath);
  menu.Append(ids::OpenSheetSetInManager, texts::OpenSheetSetInManager,
              sheetSets.OpenSheetSetInSSM != 0 ? kChecked : kEnabled);
  MenuEntry recent;
  int shown = 0;
  for (const auto& [id, path] : sheetSets.recentSheetSets) {
    if (shown++ >= settings.NumSheetSets) break;
    recent.Append(id, ListText(path, fullPath));
  }
  menu.AppendPopup(texts::RecentSheetSets, std::move(recent));
  MenuEntry found;
  for (const auto& [id, path] : sheetSets.foundSheetSets)
    found.Append(id, ListText(path, fullPath));
  menu.AppendPopup(texts::FoundSheetSets, std::move(found));
  return menu;
}

MenuEntry ContextMenu::BuildNewDrawing(int& nextId) {
  MenuEntry menu;
  menu.Append(ids::ChangeTemplatePath, texts::ChangeTemplatePath);
  menu.Append(ids::NewDrawing, texts::NewDrawing);
  const std::string folder = operations::ReadTemplatePath(
      operations::TemplatePathKey(services_.session), services_.settings);
  ListTemplates(nextId, lists_.templates, folder, services_.files);
  for (const auto& [id, path] : lists_.templates) menu.Append(id, path.Name);
  return menu;
}

void ContextMenu::FillContentLists(int& nextId, port::Database db) {
  port::DrawingDatabase& database = *services_.session.Databases();
  content::CollectLayouts(nextId, lists_.layouts, database, db, true);
  content::CollectReferences(nextId, lists_.references, database, db, true, services_.files);
  content::CollectLayerStates(nextId, lists_.layerStates, database, db, true);
  content::CollectViews(nextId, lists_.views, database, db, true);
}

void ContextMenu::BuildDrawingBlock(MenuEntry& top, int& nextId) {
  const port::Document document = services_.operations.contextDocument;
  port::DocManager& documents = *services_.session.Documents();

  top.Append(ids::Close,
             FormatText(texts::Close, {DocumentNamePart(documents, document, services_.files)}));
  top.Append(ids::OpenFolder, texts::OpenFolder);
  if (ReadExtra(services_.settings, keys::ExtraDrawingCommands) != 0) {
    top.Append(ids::CloseOthers, texts::CloseOthers);
    top.Append(ids::CopyFullPath, texts::CopyFullPath);
    top.Append(ids::ShowInFolder, texts::ShowInFolder);
  }
  if (!services_.bar.TabMode()) {
    if (const bar::DocEntry* entry = services_.bar.Strip().FindEntry(document)) {
      if (services_.bar.Settings().AutoUpdatePreviews == 0)
        top.Append(ids::RefreshPreview, texts::RefreshPreview);
      else
        top.Append(ids::LockPreview, texts::LockPreview,
                   entry->previewLocked ? kChecked : kEnabled);
    }
  }

  port::Database db = nullptr;
  if (port::Failed(documents.DatabaseOf(document, &db))) db = nullptr;
  port::DrawingDatabase& database = *services_.session.Databases();

  content::CollectLayouts(nextId, lists_.layouts, database, db, true);
  // A failing bridge or ActiveLayout raises here and cuts the menu short.
  const std::string activeLayout =
      services_.operations.AutomationObjectOf(document).ActiveLayout().Name();
  MenuEntry layouts;
  for (const auto& [id, name] : lists_.layouts)
    layouts.Append(id, name, ListEntryChecked(activeLayout, id) ? kChecked : kEnabled);
  top.AppendPopup(texts::Layouts, std::move(layouts));

  top.AppendPopup(texts::References, BuildReferences(nextId, db));

  content::CollectLayerStates(nextId, lists_.layerStates, database, db, true);
  MenuEntry states;
  for (const auto& [id, name] : lists_.layerStates)
    states.Append(id, name, ListEntryChecked(std::string(), id) ? kChecked : kEnabled);
  top.AppendPopup(texts::LayerStates, std::move(states));

  content::CollectViews(nextId, lists_.views, database, db, true);
  MenuEntry views;
  port::Document active = nullptr;
  host::ThrowIfFailed(documents.MdiActiveDocument(&active));
  if (document == active) views.Append(ids::SaveView, texts::SaveView);
  for (const auto& [id, view] : lists_.views) views.Append(id, view.name);
  top.AppendPopup(texts::Views, std::move(views));
  top.AppendSeparator();
}

MenuEntry ContextMenu::BuildReferences(int& nextId, port::Database db) {
  content::ReferenceSet& refs = lists_.references;
  content::CollectReferences(nextId, refs, *services_.session.Databases(), db, true,
                             services_.files);
  // A block table that won't open leaves all four lists empty; each still gets
  // its "没有找到", in order, so that no list loses its range.
  for (content::IdMap<DrawingPath>* list :
       {&refs.externalReferences, &refs.images, &refs.oleLinks, &refs.hyperlinks}) {
    if (list->empty()) list->emplace(nextId++, DrawingPath(content::kNotFound, services_.files));
  }
  const bool fullPath = services_.bar.Settings().ShowFullPathInRefs != 0;
  MenuEntry menu;
  const std::pair<const char*, const content::IdMap<DrawingPath>*> kinds[] = {
      {texts::ExternalReferences, &refs.externalReferences},
      {texts::Images, &refs.images},
      {texts::OleLinks, &refs.oleLinks},
      {texts::Hyperlinks, &refs.hyperlinks}};
  for (const auto& [title, list] : kinds) {
    MenuEntry submenu;
    for (const auto& [id, path] : *list) submenu.Append(id, fullPath ? path.Full : path.GetName());
    const bool nothing = list->begin()->second.Full == content::kNotFound;
    menu.AppendPopup(title, std::move(submenu), nothing ? kGrayed : kEnabled);
  }
  return menu;
}

}  // namespace tavlet::menus
