// The module's entry, start-up and shutdown: what happens from the host's load
// message to a running bar and back, the six commands and the window-message
// watcher. The host's binding forwards its entry point to TavletEntry; the demo
// host and the tests call it the same way.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "bar/bar_model.h"
#include "host/arx_module.h"
#include "host/automation.h"
#include "host/module_extras.h"
#include "host/module_hooks.h"
#include "host/port/host_session.h"
#include "host/port_ptr.h"
#include "host/window_system.h"
#include "menus/bar_menu.h"
#include "platform/file_system.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"

namespace tavlet::host {

inline constexpr long kInitAppMsg = 1;
inline constexpr long kUnloadAppMsg = 2;
inline constexpr char kCommandGroup[] = "MVTL";

// The platform's side of the module, set before the load message: the real
// window system and registry in the host, fakes in tests.
struct ModuleServices {
  WindowSystem* windows = nullptr;
  RegistryBackend* registry = nullptr;
  FileSystem* files = nullptr;
  DisplayDefaults* display = nullptr;
  WorksetsPathSource* worksets = nullptr;
  std::string modulePath;
  std::string settingsRoot = DefaultSettingsRoot();
  // TLOPTIONS and TLABOUT: the dialogs, when the window side provides them.
  std::function<void()> preferencesDialog;
  std::function<void()> aboutBox;
  // The menu's "管理...": the workset manager, when the window side provides it.
  std::function<void()> worksetManager;
  // SelectAndOpenWorkset's file selector; none: the selection opens nothing.
  WorksetFileSelector* worksetSelector = nullptr;
  // The right-click menu's desktop parts; none: the menu does without them.
  operations::OperationShell* shell = nullptr;
  UserEnvironment* user = nullptr;
  content::LayoutChooser* layoutChooser = nullptr;
  sheetsets::SheetSetDialogRunner* sheetSetDialog = nullptr;
  // TLSWITCH's popup; none: the switch goes to the previous drawing.
  SwitcherPopup switcherPopup;
};

// Copied; must be set before the load message.
void SetModuleServices(const ModuleServices& services);

class TavletModule final : private port::WindowMessageWatcher {
 public:
  TavletModule(port::HostSession& session, const ModuleServices& services);
  ~TavletModule();
  TavletModule(const TavletModule&) = delete;
  TavletModule& operator=(const TavletModule&) = delete;

  void Init(void* pkt);
  void Unload();

  // The six commands.
  void OnOptions();
  void OnAbout();
  void OnOff();
  void OnOn();
  void OnCenter();
  void OnCommandCenter();
  // The context menu's "管理...".
  void OnManageWorksets();

  bool On() const { return on_; }
  bar::BarModel* Bar() const { return bar_.get(); }
  // The bar's menu and the operations behind it; null without a bar.
  menus::BarMenu* Menu() const { return menu_.get(); }
  // The switcher and the session list; null without a bar.
  ModuleExtras* Extras() const { return extras_.get(); }
  void OnSwitch();
  void OnRestore();
  ArxModule& Arx() { return arx_; }
  const SettingsStore& Store() const { return store_; }
  const bar::FrameHandles& Frame() const { return frame_; }
  const FrameAreaHook* MdiClientHook() const { return mdiHook_.get(); }
  const FrameAreaHook* CommandHostHook() const { return commandHook_.get(); }
  bool HasApplication() const { return static_cast<bool>(application_); }
  bool HasSheetSetManager() const { return static_cast<bool>(sheetSets_); }
  port::SheetSetManager* SheetSetManager() const { return sheetSets_.Get(); }

 private:
  void TAVLET_PORT_CALL Message(port::Window window, unsigned int message, unsigned long long wParam,
                                long long lParam) override;
  void FindWindows();
  bool Quitting();

  port::HostSession& session_;
  ModuleServices services_;
  SettingsStore store_;
  ArxModule arx_;
  AcadApplicationPtr application_;
  bar::FrameHandles frame_;
  std::unique_ptr<bar::BarModel> bar_;
  std::unique_ptr<menus::BarMenu> menu_;
  std::unique_ptr<ModuleExtras> extras_;
  std::unique_ptr<FrameAreaHook> mdiHook_;
  std::unique_ptr<FrameAreaHook> commandHook_;
  PortPtr<port::SheetSetManager> sheetSets_;
  bool watching_ = false;
  bool on_ = true;
};

// The running module, null outside load and unload.
TavletModule* CurrentModule();

}  // namespace tavlet::host

// The one entry of the core module: messages 1 (load, `pkt` the module's id) and
// 2 (unload). Every message gives 0, so no failure of start-up reaches the host
// as a refused load.
extern "C" long TavletEntry(long msg, void* pkt, tavlet::port::HostSession* session);
