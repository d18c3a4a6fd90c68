// The portable half of the bar (MvTavlet): its settings, the drawing list and the
// tabs, its two reactors, and the document operations that start-up and the
// reactors call. Its windows are made and moved through the window-system port;
// painting, layout and docking geometry belong to the window side.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "bar/doc_list.h"
#include "bar/tab_order.h"
#include "host/automation.h"
#include "host/port/host_session.h"
#include "host/window_system.h"
#include "settings/settings_table.h"
#include "worksets/recent_files.h"

namespace tavlet::host {
class BarEditorReactor;
class BarDocManagerReactor;
}  // namespace tavlet::host

namespace tavlet::bar {

// The host windows the module looked up at start-up.
struct FrameHandles {
  port::Window frame = nullptr;
  port::Window mdiClient = nullptr;
  port::Window commandHost = nullptr;
  port::Window commandDock = nullptr;
};

// Dock sides: the frame's own dock-bar identifiers and two of the bar's.
inline constexpr int kDockTop = 59419;
inline constexpr int kDockLeft = 59420;
inline constexpr int kDockRight = 59421;
inline constexpr int kDockBottom = 59422;
inline constexpr int kDockCommandLeft = 59424;
inline constexpr int kDockCommandRight = 59425;
constexpr bool IsAreaSide(int side) { return side <= kDockBottom; }

inline constexpr int kBarId = 11265;
inline constexpr int kPreviewStripId = 1001;
inline constexpr int kTabStripId = 1003;

struct BarServices {
  port::HostSession& session;
  host::WindowSystem& windows;
  const SettingsStore& settings;
  FileSystem& files;
  DisplayDefaults& display;
  WorksetsPathSource& worksets;
  host::AcadApplicationPtr application;
  FrameHandles frame;
  const bool& on;  // the module's On
};

class BarModel : private PreviewStripView {
 public:
  // Reads the settings and makes the two reactors, which start listening at once;
  // the document operations ignore them until CreateBar has run.
  explicit BarModel(BarServices services);
  ~BarModel() override;
  BarModel(const BarModel&) = delete;
  BarModel& operator=(const BarModel&) = delete;

  // The creation operation: the bar's window and its children, then every drawing
  // open now.
  void CreateBar();
  // Destroys the window if it still exists.
  void DestroyBar();

  // ---- document operations ----
  void OnDocumentCreated(port::Document doc);
  void OnDocumentToBeDestroyed(port::Document doc);
  void ActivateDocument(port::Document doc);
  void RenameDocument(port::Document doc, const std::string& path);
  void SetModified(port::Document doc, bool modified);
  void HideBar();
  void ShowBar();

  void SetTabMode(bool mode, bool apply);
  void SetFloating(bool floating, bool apply);
  void SetDockSide(int side, bool apply);
  void RepositionDrawingArea();
  // The strip's thickness on an area side: 0 while one drawing hides the bar.
  long PreviewThickness() const;
  // The width on a command side; a zero width is read again from the settings.
  long CommandWidth();
  // The tabs' thickness for a bar about to get `rect` (may be null).
  long TabThickness(const host::WindowRect* rect) const;
  void LayOutStrip() { LayOut(); }
  void RepositionCommandArea();
  void NudgeFrame();
  // The drawing count: Documents.Count of the application, read afresh. Raises ComError.
  long DrawingCount() const;
  // acedGetCurrentColors: the backgrounds that decide a thumbnail's darkness. At
  // the strip's creation and after the host's options in preview mode.
  void ReloadBackgroundColors();
  void AddRecentFile(const std::string& path);
  // The menu's lock of one drawing's thumbnail: preview mode only, and only for a
  // drawing the strip lists. Unlocking makes the picture stale; the cell repaints.
  void TogglePreviewLock(port::Document doc);

  // ---- state ----
  bool Created() const { return created_; }
  bool On() const { return services_.on; }
  BarSettings& Settings() { return settings_; }
  bool TabMode() const { return tabMode_; }
  bool Floating() const { return settings_.Floating != 0; }
  int DockSide() const { return settings_.DockSide; }
  void SetSortBy(int sortBy);
  // The list keeps its own copy, so a change must come through here, as SortBy's does.
  void SetAutoUpdatePreviews(int autoUpdate);
  bool TabChanging = false;
  // The last sizes the frame hooks saw, in the parents' coordinates.
  host::WindowRect commandHostRect;
  host::WindowRect mdiClientRect;
  int TabRows = 1;
  // The tab control's row count; one row until the window side says otherwise.
  std::function<int()> tabRowCount;
  // Rows times row size plus margin of the tab control with a selected tab; the
  // caption height stands until the window side gives it.
  std::function<long(const host::WindowRect* rect)> selectedTabThickness;
  // Runs at each lay-out of the strip (the window side's layout).
  std::function<void()> onStripLayout;
  // Told of each drawing the bar adds, removes or sees activated, after the bar.
  enum class DocumentEvent { Created, ToBeDestroyed, Activated };
  std::function<void(DocumentEvent, port::Document)> onDocumentEvent;
  // Told of each picture a capture stored in an entry.
  std::function<void(const DocEntry&)> onPreviewCaptured;

  port::Window Window() const { return window_; }
  port::Window StripWindow() const { return strip_; }
  port::Window TabWindow() const { return tabs_; }
  port::Window FloatFrameWindow() const { return floatFrame_; }
  port::Window CurrentDrawingView() const { return currentView_; }
  const FrameHandles& Frame() const { return services_.frame; }
  port::HostSession& Session() const { return services_.session; }
  host::WindowSystem& Windows() const { return services_.windows; }
  const SettingsStore& Store() const { return services_.settings; }
  FileSystem& Files() const { return services_.files; }

  DocList& Strip() { return list_; }
  TabOrder& Tabs() { return tabOrder_; }
  RecentFileList& RecentFiles() { return recentFiles_; }
  const port::ColorSettings& Colors() const { return colors_; }
  int ColorReloads() const { return colorReloads_; }
  int StripLayouts() const { return stripLayouts_; }
  host::BarEditorReactor& EditorReactor() { return *editorReactor_; }
  host::BarDocManagerReactor& DocReactor() { return *docReactor_; }

 private:
  // PreviewStripView
  void LayOut() override;
  void Redraw() override;
  void RedrawRect(const host::WindowRect& rect) override;
  void StartTimer(unsigned id, unsigned milliseconds) override;

  int RowCount() const { return tabRowCount ? tabRowCount() : 1; }
  void ShowModeChild();
  void RedrawFrame();

  BarServices services_;
  BarSettings settings_;
  DocListSettings listSettings_;
  DocList list_;
  TabOrder tabOrder_;
  RecentFileList recentFiles_;
  port::ColorSettings colors_;
  int colorReloads_ = 0;
  int stripLayouts_ = 0;
  bool created_ = false;
  bool tabMode_ = false;
  port::Window window_ = nullptr;
  port::Window strip_ = nullptr;
  port::Window tabs_ = nullptr;
  port::Window floatFrame_ = nullptr;
  port::Window currentView_ = nullptr;
  std::unique_ptr<host::BarEditorReactor> editorReactor_;
  std::unique_ptr<host::BarDocManagerReactor> docReactor_;
};

}  // namespace tavlet::bar
