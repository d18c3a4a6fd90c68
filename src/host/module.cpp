#include "host/module.h"

#include "bar/strip_actions.h"
#include "host/com_error.h"
#include "text/codepage.h"

namespace tavlet::host {

namespace {

std::optional<ModuleServices>& Services() {
  static std::optional<ModuleServices> services;
  return services;
}

TavletModule*& Running() {
  static TavletModule* module = nullptr;
  return module;
}

class NoWorksetsPath final : public WorksetsPathSource {
 public:
  std::string ComputeWorksetsPath() override { return ""; }
};

FixedDisplayDefaults& FallbackDisplay() {
  static FixedDisplayDefaults display;
  return display;
}

NoWorksetsPath& FallbackWorksets() {
  static NoWorksetsPath worksets;
  return worksets;
}

constexpr char kNoApplication[] = "Tavlet 初始化错误 - 得不到应用对象!";
constexpr char kWindowsMissing[] = "Tavlet 初始化错误 - 没有找到全部窗口!";
constexpr char kOnlyFloating[] = "仅适用在屏幕上浮动 Tavlet!\n";

}  // namespace

void SetModuleServices(const ModuleServices& services) { Services() = services; }

TavletModule* CurrentModule() { return Running(); }

TavletModule::TavletModule(port::HostSession& session, const ModuleServices& services)
    : session_(session),
      services_(services),
      store_(*services.registry, services.settingsRoot),
      arx_(session, *services.windows, *services.registry, services.modulePath) {
  if (!services_.files) services_.files = &NativeFileSystem();
  if (!services_.display) services_.display = &FallbackDisplay();
  if (!services_.worksets) services_.worksets = &FallbackWorksets();
  SetCurrentSession(&session_);
}

TavletModule::~TavletModule() {
  // Whatever Unload did not reach goes here, in the same order.
  sheetSets_ = {};
  if (watching_) session_.EditorService()->RemoveWatcher(this);
  mdiHook_.reset();
  commandHook_.reset();
  menu_.reset();
  bar_.reset();
  application_ = {};
  SetCurrentSession(nullptr);
}

bool TavletModule::Quitting() {
  bool quitting = false;
  if (port::Failed(session_.EditorService()->IsQuitting(&quitting))) return false;
  return quitting;
}

void TavletModule::FindWindows() {
  port::FrameWindows& frames = *session_.Frame();
  auto found = [](port::Result r, port::Window* w) {
    if (port::Failed(r)) *w = nullptr;
    return *w;
  };
  port::Window commandLine = nullptr;
  found(frames.MainFrame(&frame_.frame), &frame_.frame);
  if (frame_.frame) found(frames.MdiClient(&frame_.mdiClient), &frame_.mdiClient);
  // The command line's parent is the command host, and its parent the dock; a
  // null stops the look-ups behind it.
  found(frames.DockCommandLine(&commandLine), &commandLine);
  if (commandLine) found(frames.ParentOf(commandLine, &frame_.commandHost), &frame_.commandHost);
  if (frame_.commandHost) found(frames.ParentOf(frame_.commandHost, &frame_.commandDock), &frame_.commandDock);
}

void TavletModule::Init(void* pkt) {
  WindowSystem& windows = *services_.windows;
  arx_.InitInstance();
  arx_.QueueCommand(true, [this] { OnOptions(); }, kCommandGroup, "TLOPTIONS",
                    "Displays the Tavlet Preferences Dialog", 0, -1);
  arx_.QueueCommand(true, [this] { OnAbout(); }, kCommandGroup, "TLABOUT", "Displays the Tavlet 'About' Dialog", 0,
                    -1);
  arx_.QueueCommand(true, [this] { OnOff(); }, kCommandGroup, "TLOFF", "Turns the Tavlet off", 0, -1);
  arx_.QueueCommand(true, [this] { OnOn(); }, kCommandGroup, "TLON", "Turns the Tavlet on", 0, -1);
  arx_.QueueCommand(true, [this] { OnCenter(); }, kCommandGroup, "TLCENTER",
                    "Centers the Tavlet in the screen when floating", 0, -1);
  arx_.QueueCommand(true, [this] { OnCommandCenter(); }, kCommandGroup, "TLCMDCENTER", "No description", 0, -1);
  // Without a description, so that the load banner stays as it was.
  arx_.QueueCommand(true, [this] { OnSwitch(); }, kCommandGroup, "TLSWITCH", "", 0, -1);
  arx_.QueueCommand(true, [this] { OnRestore(); }, kCommandGroup, "TLRESTORE", "", 0, -1);
  arx_.Register(ReadInt(store_, keys::LoadOnCommand) == 0 ? 2 : 4, pkt);

  application_ = GetAcadApplication(session_);
  FindWindows();
  if (!application_ || !frame_.frame || !frame_.mdiClient || !frame_.commandHost || !frame_.commandDock) {
    // The commands stay; the module runs without a bar until it is loaded again.
    long answer = 0;
    session_.Boxes()->Show(application_ ? kWindowsMissing : kNoApplication, port::kBoxOk, &answer);
  } else {
    windows.SetStyle(frame_.commandDock, windows.GetStyle(frame_.commandDock) | kWsClipChildren);
    {
      ModuleResourceScope resources(windows);
      bar_ = std::make_unique<bar::BarModel>(bar::BarServices{session_, windows, store_, *services_.files,
                                                              *services_.display, *services_.worksets,
                                                              application_, frame_, on_});
      bar_->CreateBar();
      menu_ = std::make_unique<menus::BarMenu>(menus::BarMenuServices{
          session_, application_, windows, store_, *services_.files, *bar_, services_.shell, services_.user,
          services_.layoutChooser, services_.sheetSetDialog,
          menus::MenuDialogs{[this] { OnAbout(); }, [this] { OnOptions(); }, [this] { OnManageWorksets(); }},
          services_.worksetSelector});
      extras_ = std::make_unique<ModuleExtras>(
          ExtrasServices{session_, store_, *services_.files, menu_->DataFolder(), services_.switcherPopup}, *bar_);
      mdiHook_ = std::make_unique<FrameAreaHook>(windows, *bar_, on_);
      mdiHook_->Attach(frame_.mdiClient);
      commandHook_ = std::make_unique<FrameAreaHook>(windows, *bar_, on_);
      commandHook_->Attach(frame_.commandHost);
      port::SheetSetManager* manager = nullptr;
      if (port::Succeeded(session_.CreateSheetSetManager(&manager))) sheetSets_ = PortPtr<port::SheetSetManager>::Adopt(manager);
      watching_ = port::Succeeded(session_.EditorService()->RegisterWatcher(this));
      // On starts true, so a stored 1 changes nothing and a stored 0 hides the bar.
      if (ReadBool(store_, keys::On)) OnOn();
      else OnOff();
      port::Document active = nullptr;
      if (port::Succeeded(session_.Documents()->MdiActiveDocument(&active))) bar_->ActivateDocument(active);
      extras_->OfferRestore(menu_->Operations());
    }
  }

  // Loaded by hand into a running host, the bar needs its place at once; at
  // start-up the frame's first layout gives it.
  port::Value value;
  StringSink commandNames;
  if (port::Succeeded(session_.EditorService()->GetVariable("CMDNAMES", &value, &commandNames)) &&
      text::Mbscmp(commandNames.text, "APPLOAD") == 0)
    NudgeFrame(windows, frame_.frame);
}

void TavletModule::Unload() {
  WindowSystem& windows = *services_.windows;
  // On is written only here: a crash of the host loses a change made since the load.
  WriteBool(store_, keys::On, on_);
  sheetSets_ = {};
  if (watching_) session_.EditorService()->RemoveWatcher(this);
  watching_ = false;
  // While the host quits its windows are going away: their procedures are left alone.
  const bool quitting = Quitting();
  for (std::unique_ptr<FrameAreaHook>* hook : {&mdiHook_, &commandHook_}) {
    if (!*hook) continue;
    if (!quitting) (*hook)->Detach();
    hook->reset();
  }
  extras_.reset();
  menu_.reset();
  if (bar_) {
    bar_->DestroyBar();
    if (!quitting) NudgeFrame(windows, frame_.frame);
    bar_.reset();
  }
  application_ = {};
  arx_.Unregister();
  arx_.ExitInstance();
}

// ---------------------------------------------------------------- commands

void TavletModule::OnSwitch() {
  if (!extras_ || !bar_) return;
  extras_->OnSwitch([this](port::Document doc) { return bar::SwitchToDocument(session_, bar_->Settings(), doc); });
}

void TavletModule::OnRestore() {
  if (extras_ && menu_) extras_->OnRestore(menu_->Operations());
}

void TavletModule::OnOptions() {
  ModuleResourceScope resources(*services_.windows);
  if (services_.preferencesDialog) services_.preferencesDialog();
}

void TavletModule::OnManageWorksets() {
  ModuleResourceScope resources(*services_.windows);
  if (services_.worksetManager) services_.worksetManager();
}

void TavletModule::OnAbout() {
  ModuleResourceScope resources(*services_.windows);
  if (services_.aboutBox) services_.aboutBox();
}

void TavletModule::OnOff() {
  if (!on_) return;
  on_ = false;
  if (bar_) bar_->HideBar();
}

void TavletModule::OnOn() {
  if (on_) return;
  on_ = true;
  if (bar_) bar_->ShowBar();
}

void TavletModule::OnCenter() {
  if (bar_ && bar_->Floating()) {
    services_.windows->CenterWindow(bar_->FloatFrameWindow());
    return;
  }
  session_.EditorService()->Print(kOnlyFloating);
}

void TavletModule::OnCommandCenter() {
  if (!bar_) return;
  // Not written to the settings here; the preferences' OK or a drag does that.
  bar_->Settings().WidthOnCmdWnd = static_cast<int>(bar_->commandHostRect.Width() / 2);
  NudgeFrame(*services_.windows, frame_.frame);
}

// ---------------------------------------------------------------- watcher

void TavletModule::Message(port::Window window, unsigned int message, unsigned long long, long long) {
  if (message != kWmMButtonUp && message != kWmMouseWheel) return;
  // With no drawing open the view is null, and no window is that.
  if (!bar_ || !window || window != bar_->CurrentDrawingView()) return;
  services_.windows->SetTimer(bar_->StripWindow(), bar::kZoomTimer, bar::kCaptureDelay);
}

}  // namespace tavlet::host

extern "C" long TavletEntry(long msg, void* pkt, tavlet::port::HostSession* session) {
  using namespace tavlet::host;
  if (!session) return 0;
  try {
    if (msg == kInitAppMsg) {
      const auto& services = Services();
      if (Running() || !services || !services->windows || !services->registry) return 0;
      session->Services()->RegisterAppMdiAware(pkt);
      Running() = new TavletModule(*session, *services);
      try {
        Running()->Init(pkt);
      } catch (...) {
        // Start-up stops where it failed; the module stays loaded as far as it came.
      }
      session->Services()->UnlockApplication(pkt);
    } else if (msg == kUnloadAppMsg) {
      TavletModule* module = Running();
      if (!module) return 0;
      try {
        module->Unload();
      } catch (...) {
      }
      Running() = nullptr;
      delete module;
    }
  } catch (...) {
  }
  return 0;
}
