#include "bar/bar_model.h"

#include "host/reactors.h"

namespace tavlet::bar {

BarModel::BarModel(BarServices services)
    : services_(std::move(services)),
      list_(*services_.session.Documents(), services_.files, *this, listSettings_),
      tabOrder_(*services_.session.Documents(), services_.files, listSettings_.SortBy),
      recentFiles_(services_.settings, services_.files) {
  LoadPreviewStripSettings(services_.settings, services_.display, settings_);
  LoadBarSettings(services_.settings, services_.display, services_.worksets, settings_);
  listSettings_.SortBy = settings_.SortBy;
  listSettings_.AutoUpdatePreviews = settings_.AutoUpdatePreviews;
  // The reactors listen from here on, before the window exists; the document
  // operations ignore them until Created.
  editorReactor_ = std::make_unique<host::BarEditorReactor>(this);
  docReactor_ = std::make_unique<host::BarDocManagerReactor>(this);
}

BarModel::~BarModel() {
  docReactor_.reset();
  editorReactor_.reset();
}

void BarModel::SetSortBy(int sortBy) {
  settings_.SortBy = sortBy;
  listSettings_.SortBy = sortBy;
}

void BarModel::SetAutoUpdatePreviews(int autoUpdate) {
  settings_.AutoUpdatePreviews = autoUpdate;
  listSettings_.AutoUpdatePreviews = autoUpdate;
}

long BarModel::DrawingCount() const {
  if (!services_.application) host::RaiseComError(port::kPointer);
  return services_.application.Documents().Count();
}

void BarModel::CreateBar() {
  host::WindowSystem& windows = services_.windows;
  const FrameHandles& frame = services_.frame;
  const bool onFrame = settings_.Floating || IsAreaSide(settings_.DockSide);
  window_ = windows.NewWindow({onFrame ? frame.frame : frame.commandDock, "MvTavlet", "Morvane Tavlet Wnd",
                                  host::kWsChild | host::kWsVisible, kBarId, {}});
  strip_ = windows.NewWindow({window_, "PreviewStrip", "Morvane Doc 选项板", host::kWsChild, kPreviewStripId,
                                 {0, 0, 10, 10}});
  ReloadBackgroundColors();
  LoadWindowSettings(services_.settings, services_.display, settings_);
  tabs_ = windows.NewWindow({window_, "TabStrip", "", host::kWsChild, kTabStripId, {}});
  floatFrame_ = windows.NewWindow({frame.frame, "FloatFrame", "Tavlet", 0, 0, {}});
  created_ = true;
  SetTabMode(settings_.TabMode > 0, false);
  if (settings_.Floating) SetFloating(true, false);
  SetDockSide(settings_.DockSide, false);
  port::DocManager& documents = *services_.session.Documents();
  long count = 0;
  if (port::Succeeded(documents.DocumentCount(&count))) {
    for (long i = 0; i < count; ++i) {
      port::Document doc = nullptr;
      if (port::Succeeded(documents.DocumentAt(i, &doc)) && doc) OnDocumentCreated(doc);
    }
  }
  windows.RecalcFrameLayout(frame.frame);
}

void BarModel::DestroyBar() {
  if (window_ && services_.windows.IsWindow(window_)) {
    // The floating frame is the bar's to destroy first, as its WM_DESTROY does.
    if (floatFrame_ && services_.windows.IsWindow(floatFrame_)) services_.windows.DestroyWindow(floatFrame_);
    services_.windows.DestroyWindow(window_);
  }
  created_ = false;
}

// ---------------------------------------------------------------- documents

void BarModel::OnDocumentCreated(port::Document doc) {
  if (!created_) return;
  list_.AddDocument(doc);
  tabOrder_.AddTab(doc);
  if (onDocumentEvent) onDocumentEvent(DocumentEvent::Created, doc);
  const long count = DrawingCount();
  if (count == 1) {
    ShowModeChild();
  } else if (settings_.HideOnSingle && count == 2 && !Floating()) {
    // The second drawing needs the space that one drawing gave back.
    NudgeFrame();
    RedrawFrame();
  }
  const int rows = RowCount();
  if (tabMode_ && rows != TabRows) RepositionDrawingArea();
  TabRows = rows;
}

void BarModel::OnDocumentToBeDestroyed(port::Document doc) {
  if (!created_) return;
  list_.RemoveDocument(doc);
  tabOrder_.RemoveTab(doc);
  if (onDocumentEvent) onDocumentEvent(DocumentEvent::ToBeDestroyed, doc);
  // The closing drawing is still counted here.
  if (DrawingCount() == 1) {
    currentView_ = nullptr;
    services_.windows.ShowWindow(tabs_, host::kSwHide);
    services_.windows.ShowWindow(strip_, host::kSwHide);
    return;
  }
  TabRows = RowCount();
  RepositionDrawingArea();
}

void BarModel::ActivateDocument(port::Document doc) {
  if (!created_) return;
  list_.OnDocumentActivated(doc);
  port::Window view = nullptr;
  if (port::Failed(services_.session.Frame()->DrawingView(&view))) view = nullptr;
  currentView_ = view;
  if (!TabChanging) tabOrder_.SelectTab(doc);
  if (onDocumentEvent) onDocumentEvent(DocumentEvent::Activated, doc);
}

void BarModel::RenameDocument(port::Document doc, const std::string& path) {
  if (!created_) return;
  list_.RenameDocument(doc, DrawingPath(path, services_.files));
  tabOrder_.RenameTab(doc, path);
}

void BarModel::SetModified(port::Document doc, bool modified) {
  if (!created_) return;
  list_.SetDocumentModified(doc, modified);
  tabOrder_.SetTabModified(doc, modified);
}

void BarModel::TogglePreviewLock(port::Document doc) {
  if (tabMode_ || !doc) return;
  DocEntry* entry = list_.FindEntry(doc);
  if (!entry) return;
  entry->SetPreviewLocked(!entry->previewLocked);
  RedrawRect(entry->itemRect);
}

void BarModel::HideBar() {
  if (Floating()) {
    services_.windows.ShowWindow(floatFrame_, host::kSwHide);
    return;
  }
  services_.windows.ShowWindow(window_, host::kSwHide);
  NudgeFrame();
}

void BarModel::ShowBar() {
  if (Floating()) {
    services_.windows.ShowWindow(floatFrame_, host::kSwShow);
    return;
  }
  services_.windows.ShowWindow(window_, host::kSwShow);
  NudgeFrame();
}

// ---------------------------------------------------------------- modes

void BarModel::ShowModeChild() {
  services_.windows.ShowWindow(tabMode_ ? tabs_ : strip_, host::kSwShow);
}

void BarModel::SetTabMode(bool mode, bool apply) {
  tabMode_ = mode;
  host::WindowSystem& windows = services_.windows;
  const long count = DrawingCount();
  if (mode) {
    if (count > 0) windows.ShowWindow(tabs_, host::kSwShow);
    windows.ShowWindow(strip_, host::kSwHide);
  } else {
    windows.ShowWindow(tabs_, host::kSwHide);
    if (count > 0) windows.ShowWindow(strip_, host::kSwShow);
  }
  if (apply && !Floating()) {
    if (IsAreaSide(settings_.DockSide)) RepositionDrawingArea();
    else RepositionCommandArea();
  }
}

void BarModel::SetFloating(bool floating, bool apply) {
  settings_.Floating = floating ? 1 : 0;
  host::WindowSystem& windows = services_.windows;
  if (!floating) {
    windows.ShowWindow(floatFrame_, host::kSwHide);
    SetDockSide(settings_.DockSide, apply);
    return;
  }
  windows.SetParent(window_, floatFrame_);
  windows.ShowWindow(floatFrame_, host::kSwShow);
  if (!apply) return;
  // The space the bar leaves is given back where it was docked.
  if (IsAreaSide(settings_.DockSide))
    RepositionDrawingArea();
  else
    RepositionCommandArea();
}

void BarModel::SetDockSide(int side, bool apply) {
  const bool changed = settings_.DockSide != side;
  settings_.DockSide = side;
  if (changed) LayOut();
  if (!apply || Floating()) return;
  host::WindowSystem& windows = services_.windows;
  const FrameHandles& frame = services_.frame;
  if (IsAreaSide(side)) {
    if (windows.GetParent(window_) != frame.frame) windows.SetParent(window_, frame.frame);
    RepositionDrawingArea();
  } else if (windows.GetParent(window_) != frame.commandDock) {
    windows.SetParent(window_, frame.commandDock);
    RepositionCommandArea();
  }
  windows.ShowWindow(tabMode_ ? strip_ : tabs_, host::kSwHide);
  windows.ShowWindow(tabMode_ ? tabs_ : strip_, host::kSwShow);
}

long BarModel::PreviewThickness() const {
  if (settings_.HideOnSingle && DrawingCount() == 1) return 0;
  return settings_.Size;
}

long BarModel::CommandWidth() {
  if (settings_.HideOnSingle && DrawingCount() == 1) return 0;
  if (settings_.WidthOnCmdWnd == 0)
    settings_.WidthOnCmdWnd = ReadInt(services_.settings, keys::WidthOnCmdWnd, commandHostRect.Width() / 2);
  return settings_.WidthOnCmdWnd;
}

long BarModel::TabThickness(const host::WindowRect* rect) const {
  if (settings_.HideOnSingle && DrawingCount() == 1) return 0;
  // With no tab selected, which is the case with no drawing open, the caption height.
  if (tabOrder_.Selected() < 0 || !selectedTabThickness) return services_.windows.CaptionHeight();
  return selectedTabThickness(rect);
}

void BarModel::RepositionDrawingArea() { services_.windows.RecalcFrameLayout(services_.frame.frame); }

void BarModel::RepositionCommandArea() {
  services_.windows.MoveWindow(services_.frame.commandHost, commandHostRect, false);
}

void BarModel::NudgeFrame() { host::NudgeFrame(services_.windows, services_.frame.frame); }

void BarModel::RedrawFrame() { services_.windows.RedrawWindow(services_.frame.frame, nullptr, host::kRedrawNow); }

void BarModel::ReloadBackgroundColors() {
  port::ColorSettings colors;
  if (port::Succeeded(services_.session.EditorService()->GetCurrentColors(&colors))) colors_ = colors;
  ++colorReloads_;
}

void BarModel::AddRecentFile(const std::string& path) { recentFiles_.AddRecentFile(path); }

// ---------------------------------------------------------------- the strip's window side

void BarModel::LayOut() {
  ++stripLayouts_;
  if (onStripLayout) onStripLayout();
}

void BarModel::Redraw() { services_.windows.RedrawWindow(strip_, nullptr, host::kRedrawNow); }

void BarModel::RedrawRect(const host::WindowRect& rect) {
  services_.windows.RedrawWindow(strip_, &rect, host::kRedrawNow);
}

void BarModel::StartTimer(unsigned id, unsigned milliseconds) { services_.windows.SetTimer(strip_, id, milliseconds); }

}  // namespace tavlet::bar
