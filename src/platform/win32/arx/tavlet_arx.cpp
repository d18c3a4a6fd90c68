// The module DLL: its instance, the Win32 services it gives the portable module
// at load, and the one exported entry.
#include "platform/win32/arx/tavlet_arx.h"

#include <windows.h>

#include <memory>
#include <string>

#include "host/module.h"
#include "platform/win32/bar/mv_tavlet_win32.h"
#include "platform/win32/bar/switcher_popup_win32.h"
#include "platform/win32/content/layout_chooser_win32.h"
#include "platform/win32/dib_paint.h"
#include "platform/win32/file_preview_panel_win32.h"
#include "platform/win32/operations/shell_win32.h"
#include "platform/win32/raster_gdi.h"
#include "platform/win32/registry_backend_win32.h"
#include "platform/win32/settings/preferences_win32.h"
#include "platform/win32/sheetsets/sheet_set_dialog_win32.h"
#include "platform/win32/ui/about_box_win32.h"
#include "platform/win32/window.h"
#include "platform/win32/worksets/workset_manager_win32.h"
#include "platform/win32/host/window_system_win32.h"
#include "settings/extra_settings.h"

namespace tavlet::win32 {
namespace {

// The command window's width, for the default of WidthOnCmdWnd.
int CommandWindowWidth(port::HostSession& session) {
  port::Window commandLine = nullptr;
  if (port::Failed(session.Frame()->DockCommandLine(&commandLine)) || !commandLine) return 0;
  RECT r{};
  if (!GetWindowRect(reinterpret_cast<HWND>(commandLine), &r)) return 0;
  return r.right - r.left;
}

std::string ModulePath() {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(ModuleInstance(), path, MAX_PATH);
  return path;
}

HWND HostFrame() {
  host::TavletModule* running = host::CurrentModule();
  return running ? reinterpret_cast<HWND>(running->Frame().frame) : nullptr;
}

// The sheet-selection dialog over the sheet-set component the running module
// holds when it is asked: the component comes after the menu at load.
class ModuleSheetSetDialog final : public sheetsets::SheetSetDialogRunner {
 public:
  ModuleSheetSetDialog(port::HostSession& session, RegistryBackend& registry) : session_(session), registry_(registry) {}
  bool Run(const std::string& path, std::vector<std::string>& selectedFiles) override {
    host::TavletModule* running = host::CurrentModule();
    if (!running) return false;
    SheetSetDialogRunnerWin32 dialog(
        registry_, sheetsets::SheetSetTreeServices{running->SheetSetManager(), NativeFileSystem(), *session_.Boxes(),
                                                   ModulePath()},
        DefaultSettingsRoot(), HostFrame());
    return dialog.Run(path, selectedFiles);
  }

 private:
  port::HostSession& session_;
  RegistryBackend& registry_;
};

// What the module is given at load and takes down at unload.
struct LoadedModule {
  explicit LoadedModule(port::HostSession& session)
      : windows(ModuleInstance()),
        display(CommandWindowWidth(session)),
        shell(CreateWin32OperationShell(ModuleInstance())),
        user(ModuleInstance()),
        layoutChooser(ModuleInstance(), HostFrame),
        sheetSetDialog(session, registry) {}
  Win32WindowSystem windows;
  Win32Registry registry;
  Win32DisplayDefaults display;
  std::unique_ptr<operations::OperationShell> shell;
  Win32UserEnvironment user;
  RunningModuleFileSelector worksetSelector;
  LayoutChooserWin32 layoutChooser;
  ModuleSheetSetDialog sheetSetDialog;
  // Only while CtrlTabSwitcher is on.
  std::unique_ptr<CtrlTabHook> ctrlTab;
};

std::unique_ptr<LoadedModule>& Loaded() {
  static std::unique_ptr<LoadedModule> loaded;
  return loaded;
}

// The Ctrl+Tab hook is there exactly while CtrlTabSwitcher is on: at load and
// after each OK of the preferences.
void FollowCtrlTabSwitcher(LoadedModule& module) {
  host::TavletModule* running = host::CurrentModule();
  const bool on = running && ReadExtra(running->Store(), keys::CtrlTabSwitcher) != 0;
  if (on == static_cast<bool>(module.ctrlTab)) return;
  module.ctrlTab.reset();
  if (!on) return;
  module.ctrlTab = std::make_unique<CtrlTabHook>(
      HostFrame(),
      [] {
        host::TavletModule* now = host::CurrentModule();
        return now && now->Extras() ? now->Extras()->Order().Order().size() : std::size_t{0};
      },
      [] {
        if (host::TavletModule* now = host::CurrentModule()) now->OnSwitch();
      });
}

void Load(void* pkt, port::HostSession& session) {
  if (Loaded()) return;
  Loaded() = std::make_unique<LoadedModule>(session);
  LoadedModule& module = *Loaded();
  // The pixel work's platform parts: bitmaps in global memory as the host's
  // clipboard and drawing calls expect, GDI text masks, AlphaBlend when msimg32 has it.
  UseGlobalMemoryForDibs();
  InstallGdiTextMask();
  LoadAlphaBlend();
  RegisterBarWindows(
      module.windows,
      [] {
        host::TavletModule* running = host::CurrentModule();
        return running ? running->Bar() : nullptr;
      },
      [] {
        host::TavletModule* running = host::CurrentModule();
        return running ? running->Menu() : nullptr;
      });
  host::ModuleServices services;
  services.windows = &module.windows;
  services.registry = &module.registry;
  services.display = &module.display;
  services.shell = module.shell.get();
  services.user = &module.user;
  services.layoutChooser = &module.layoutChooser;
  services.sheetSetDialog = &module.sheetSetDialog;
  services.modulePath = ModulePath();
  services.aboutBox = [] { ShowAboutBox(HostFrame()); };
  services.worksetSelector = &module.worksetSelector;
  services.worksetManager = [] { ShowWorksetManager(HostFrame()); };
  services.preferencesDialog = [] {
    LoadedModule* loaded = Loaded().get();
    if (!host::CurrentModule() || !loaded) return;
    ShowPreferences(HostFrame(), loaded->registry, loaded->display);
    FollowCtrlTabSwitcher(*loaded);
  };
  services.switcherPopup = [](const std::vector<port::Document>& order) {
    host::TavletModule* running = host::CurrentModule();
    return RunSwitcherPopup(HostFrame(), running ? running->Bar() : nullptr, order, CurrentSwitcherRequest());
  };
  host::SetModuleServices(services);
  TavletEntry(host::kInitAppMsg, pkt, &session);
  FollowCtrlTabSwitcher(module);
}

void Unload(port::HostSession& session) {
  if (Loaded()) Loaded()->ctrlTab.reset();
  CloseWorksetManagers();
  UnregisterPreviewPanelClass();
  TavletEntry(host::kUnloadAppMsg, nullptr, &session);
  UnloadAlphaBlend();
  // A class keeps this DLL's window procedure: it must go before the DLL does.
  UnregisterWindowClasses();
  Loaded().reset();
}

}  // namespace
}  // namespace tavlet::win32

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    tavlet::win32::SetModuleInstance(instance);
    DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}

extern "C" __declspec(dllexport) long TAVLET_PORT_CALL TavletArxEntry(long msg, void* pkt,
                                                                      tavlet::port::HostSession* session) {
  if (!session) return 0;
  try {
    if (msg == tavlet::host::kInitAppMsg) tavlet::win32::Load(pkt, *session);
    else if (msg == tavlet::host::kUnloadAppMsg) tavlet::win32::Unload(*session);
  } catch (...) {
    // No failure of the module reaches the host as anything but a loaded module.
  }
  return 0;
}
