#include "demo_host.h"

#include <commctrl.h>
#include <commdlg.h>

#include <algorithm>
#include <cctype>
#include <vector>

#include "host/com_error.h"
#include "platform/win32/host/frame_layout.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_table.h"

namespace tavlet::demo {

namespace {

constexpr char kFrameClass[] = "TavletDemoFrame";
constexpr char kDrawingClass[] = "TavletDemoDrawing";
constexpr char kDockClass[] = "TavletDemoCommandDock";
constexpr char kCommandHostClass[] = "TavletDemoCommandHost";
constexpr char kCommandLineClass[] = "TavletDemoCommandLine";

enum MenuId : UINT {
  kMenuOpen = 100,
  kMenuClose,
  kMenuUnload,
  kMenuReload,
  kMenuExit,
  kMenuCascade = 110,
  kMenuTile,
  kFirstChild = 1000,
};

constexpr UINT_PTR kTranscriptTimer = 1;
// Like the framework's delayed re-layout: the frame lays out its bars once the
// events of an open or a close are over.
constexpr UINT kDelayedLayout = WM_APP + 1;
constexpr int kInputHeight = 22;

port::Window W(HWND h) { return reinterpret_cast<port::Window>(h); }
HWND H(port::Window w) { return reinterpret_cast<HWND>(w); }

DemoHost* HostOf(HWND hwnd) {
  // Every window of the demo keeps the host in its class's window data.
  HWND top = hwnd;
  while (GetParent(top) && (GetWindowLongPtrA(top, GWL_STYLE) & WS_CHILD)) top = GetParent(top);
  return reinterpret_cast<DemoHost*>(GetPropA(top, "TavletDemoHost"));
}

std::string ToUpper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string Trim(const std::string& text) {
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return "";
  const auto last = text.find_last_not_of(" \t\r\n");
  return text.substr(first, last - first + 1);
}

LRESULT CALLBACK DockProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case win32::kWmSizeParent: {
      // A bar of the frame's bottom: its height off the bottom of what is left.
      auto* layout = reinterpret_cast<win32::SizeParentParams*>(lParam);
      RECT r = layout->rect;
      r.top = std::max(r.top, r.bottom - kCommandDockHeight);
      layout->rect.bottom = r.top;
      if (layout->deferred)
        layout->deferred = DeferWindowPos(layout->deferred, hwnd, nullptr, r.left, r.top, r.right - r.left,
                                          r.bottom - r.top, SWP_NOZORDER | SWP_NOACTIVATE);
      return 0;
    }
    case WM_SIZE:
      if (HWND host = GetWindow(hwnd, GW_CHILD)) {
        // The command host is the first child; a docked bar comes after it.
        char name[64] = {};
        for (HWND child = host; child; child = GetWindow(child, GW_HWNDNEXT)) {
          GetClassNameA(child, name, sizeof name);
          if (lstrcmpA(name, kCommandHostClass) == 0) {
            MoveWindow(child, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
            break;
          }
        }
      }
      return 0;
    default:
      return DefWindowProcA(hwnd, message, wParam, lParam);
  }
}

LRESULT CALLBACK CommandHostProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE) {
    if (HWND line = GetWindow(hwnd, GW_CHILD)) MoveWindow(line, 0, 0, LOWORD(lParam), HIWORD(lParam), TRUE);
    return 0;
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

LRESULT CALLBACK InputProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  auto* demo = reinterpret_cast<DemoHost*>(data);
  if (message == WM_CHAR && (wParam == '\r' || wParam == '\n')) return 0;
  if (message == WM_KEYDOWN && wParam == VK_RETURN) {
    char text[1024] = {};
    GetWindowTextA(hwnd, text, sizeof text);
    SetWindowTextA(hwnd, "");
    demo->Execute(text);
    return 0;
  }
  return DefSubclassProc(hwnd, message, wParam, lParam);
}

bool RegisterClasses(HINSTANCE instance) {
  static bool done = false;
  if (done) return true;
  struct Kind {
    const char* name;
    WNDPROC procedure;
    int background;
    UINT style;
  };
  const Kind kinds[] = {
      {kFrameClass, FrameProcedure, COLOR_APPWORKSPACE + 1, 0},
      {kDrawingClass, DrawingProcedure, 0, CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS},
      {kDockClass, DockProcedure, COLOR_3DFACE + 1, 0},
      {kCommandHostClass, CommandHostProcedure, COLOR_3DFACE + 1, 0},
      {kCommandLineClass, CommandLineProcedure, COLOR_3DFACE + 1, 0},
  };
  for (const Kind& kind : kinds) {
    WNDCLASSA windowClass{};
    windowClass.style = kind.style;
    windowClass.lpfnWndProc = kind.procedure;
    windowClass.hInstance = instance;
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = kind.background ? reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(kind.background))
                                                : nullptr;
    windowClass.lpszClassName = kind.name;
    if (!RegisterClassA(&windowClass)) return false;
  }
  done = true;
  return true;
}

}  // namespace

// ---------------------------------------------------------------- settings

bool WriteSetting(const std::string& section, const std::string& key, int value) {
  Win32Registry registry;
  SettingsStore store(registry, DefaultSettingsRoot());
  return store.SetInt(section, key, value);
}

// ---------------------------------------------------------------- the session's frame windows

port::Result DemoSession::MainFrame(port::Window* window) {
  *window = W(demo_.Frame());
  return port::kOk;
}

port::Result DemoSession::MdiClient(port::Window* window) {
  *window = W(demo_.MdiClient());
  return port::kOk;
}

port::Result DemoSession::DockCommandLine(port::Window* window) {
  *window = W(demo_.CommandLine());
  return port::kOk;
}

port::Result DemoSession::ParentOf(port::Window child, port::Window* parent) {
  *parent = W(GetParent(H(child)));
  return port::kOk;
}

port::Result DemoSession::DrawingView(port::Window* window) {
  *window = W(demo_.ViewOf(host_.MdiActive()));
  return port::kOk;
}

// The module asks for the window it was given, the real one; the simulated host
// knows each drawing by its own view handle.
port::Result DemoSession::CopyViewWindow(port::Window view, port::ScreenImage** image) {
  for (port::Document doc : host_.OpenDocuments()) {
    if (W(demo_.ViewOf(doc)) == view) return host_.GraphicsService()->CopyViewWindow(host_.Find(doc)->view, image);
  }
  return host_.GraphicsService()->CopyViewWindow(view, image);
}

port::Result DemoSession::ClientSize(port::Window window, long* width, long* height) {
  RECT r{};
  if (!GetClientRect(H(window), &r)) return port::kInvalidArgument;
  *width = r.right;
  *height = r.bottom;
  return port::kOk;
}

port::Result DemoSession::Show(const char* text, unsigned long type, long* answer) {
  host_.TranscriptRef() += std::string("[box] ") + (text ? text : "") + "\n";
  if (demo_.Interactive()) {
    *answer = MessageBoxA(demo_.Frame(), text, "", static_cast<UINT>(type));
    return port::kOk;
  }
  return host_.Boxes()->Show(text, type, answer);
}

// ---------------------------------------------------------------- the host

DemoHost::DemoHost(std::string modulePath, bool interactive)
    : modulePath_(std::move(modulePath)), interactive_(interactive) {
  host_.Documents()->AddReactor(this);
}

DemoHost::~DemoHost() {
  UnloadModule();
  host_.Documents()->RemoveReactor(this);
  if (frame_ && IsWindow(frame_)) {
    DestroyWindow(frame_);
    // The frame's end posts WM_QUIT for a session's loop; a host taken down by its
    // owner has no loop left, and the message would end the thread's next modal one.
    MSG quit;
    while (PeekMessageA(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
    }
  }
}

HWND DemoHost::ViewOf(port::Document doc) const {
  auto found = views_.find(doc);
  return found == views_.end() ? nullptr : found->second;
}

port::Document DemoHost::DocumentOf(HWND view) const {
  for (const auto& [doc, hwnd] : views_)
    if (hwnd == view) return doc;
  return nullptr;
}

double DemoHost::ZoomOf(HWND view) const {
  auto found = zoom_.find(view);
  return found == zoom_.end() ? 1.0 : found->second;
}

bool DemoHost::CreateFrame(int width, int height) {
  HINSTANCE instance = GetModuleHandleA(nullptr);
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
  if (!RegisterClasses(instance)) return false;

  HMENU menu = CreateMenu();
  HMENU file = CreatePopupMenu();
  AppendMenuA(file, MF_STRING, kMenuOpen, "&Open...");
  AppendMenuA(file, MF_STRING, kMenuClose, "&Close");
  AppendMenuA(file, MF_SEPARATOR, 0, nullptr);
  AppendMenuA(file, MF_STRING, kMenuUnload, "&Unload Tavlet");
  AppendMenuA(file, MF_STRING, kMenuReload, "&Reload Tavlet");
  AppendMenuA(file, MF_SEPARATOR, 0, nullptr);
  AppendMenuA(file, MF_STRING, kMenuExit, "E&xit");
  AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(file), "&File");
  HMENU windowMenu = CreatePopupMenu();
  AppendMenuA(windowMenu, MF_STRING, kMenuCascade, "&Cascade");
  AppendMenuA(windowMenu, MF_STRING, kMenuTile, "&Tile");
  AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(windowMenu), "&Window");

  frame_ = CreateWindowExA(0, kFrameClass, "Tavlet demo host", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0, width,
                           height, nullptr, menu, instance, this);
  if (!frame_) return false;
  CLIENTCREATESTRUCT client{windowMenu, kFirstChild};
  mdiClient_ = CreateWindowExA(WS_EX_CLIENTEDGE, "MDICLIENT", "",
                               WS_CHILD | WS_CLIPCHILDREN | WS_VISIBLE | WS_VSCROLL | WS_HSCROLL, 0, 0, 0, 0, frame_,
                               reinterpret_cast<HMENU>(static_cast<INT_PTR>(win32::kMdiClientId)), instance, &client);
  commandDock_ = CreateWindowExA(0, kDockClass, "", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, frame_,
                                 reinterpret_cast<HMENU>(static_cast<INT_PTR>(kCommandDockId)), instance, nullptr);
  commandHost_ = CreateWindowExA(0, kCommandHostClass, "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0,
                                 commandDock_, nullptr, instance, nullptr);
  commandLine_ = CreateWindowExA(0, kCommandLineClass, "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0,
                                 commandHost_, nullptr, instance, nullptr);
  HFONT font = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
  transcriptEdit_ = CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "",
                                    WS_CHILD | WS_VISIBLE | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL,
                                    0, 0, 0, 0, commandLine_, nullptr, instance, nullptr);
  inputEdit_ = CreateWindowExA(WS_EX_CLIENTEDGE, "EDIT", "", WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, 0, 0, 0, 0,
                               commandLine_, nullptr, instance, nullptr);
  if (!mdiClient_ || !commandDock_ || !commandHost_ || !commandLine_ || !transcriptEdit_ || !inputEdit_) return false;
  SendMessageA(transcriptEdit_, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  SendMessageA(inputEdit_, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  SetWindowSubclass(inputEdit_, InputProcedure, 1, reinterpret_cast<DWORD_PTR>(this));
  SetTimer(frame_, kTranscriptTimer, 150, nullptr);
  ShowWindow(frame_, SW_SHOW);
  UpdateWindow(frame_);
  SetFocus(inputEdit_);
  Pump();
  return true;
}

bool DemoHost::LoadModule(std::string& error, bool atStartup) {
  if (module_) return true;
  module_ = LoadLibraryA(modulePath_.c_str());
  if (!module_) {
    error = "cannot load the module " + modulePath_ + " (error " + std::to_string(GetLastError()) + ")";
    return false;
  }
  entry_ = reinterpret_cast<TavletArxEntryFunction>(
      reinterpret_cast<void*>(GetProcAddress(module_, TAVLET_ARX_ENTRY_NAME)));
  if (!entry_) {
    FreeLibrary(module_);
    module_ = nullptr;
    error = modulePath_ + " exports no " TAVLET_ARX_ENTRY_NAME;
    return false;
  }
  static char pkt;
  // With no drawing open the host runs no command: the load is then like one at start-up.
  if (atStartup || !host_.Current()) {
    entry_(1, &pkt, &session_);
    LayOutFrame();
  } else {
    host_.RunCommandDuring("APPLOAD", [this] { entry_(1, &pkt, &session_); });
  }
  RefreshTranscript();
  Pump();
  return true;
}

DemoHost::Registration DemoHost::ReadRegistration() {
  Registration registration;
  host::StringSink productKey;
  if (port::Failed(session_.Services()->ProductKey(&productKey))) return registration;
  const std::string path = productKey.text + "\\Applications\\MorvaneTavlet";
  HKEY key = nullptr;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return registration;
  registration.found = true;
  DWORD size = sizeof registration.loadCtrls;
  RegQueryValueExA(key, "LOADCTRLS", nullptr, nullptr, reinterpret_cast<BYTE*>(&registration.loadCtrls), &size);
  char loader[MAX_PATH] = {};
  size = sizeof loader - 1;
  if (RegQueryValueExA(key, "LOADER", nullptr, nullptr, reinterpret_cast<BYTE*>(loader), &size) == ERROR_SUCCESS)
    registration.loader = loader;
  RegCloseKey(key);
  if (RegOpenKeyExA(HKEY_CURRENT_USER, (path + "\\Commands").c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
    return registration;
  for (DWORD i = 0;; ++i) {
    char name[256];
    DWORD length = sizeof name;
    if (RegEnumValueA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    registration.commands.push_back(ToUpper(std::string(name, length)));
  }
  RegCloseKey(key);
  return registration;
}

bool DemoHost::Start(std::string& error) {
  const Registration registration = ReadRegistration();
  if (registration.loadCtrls == 4 && !registration.loader.empty() && !registration.commands.empty()) {
    modulePath_ = registration.loader;
    demandCommands_ = registration.commands;
    return true;
  }
  return LoadModule(error, true);
}

void DemoHost::UnloadModule() {
  if (!module_) return;
  entry_(2, nullptr, &session_);
  FreeLibrary(module_);
  module_ = nullptr;
  entry_ = nullptr;
  Pump();
}

port::Document DemoHost::Open(const std::string& path) {
  host_.TranscriptRef() += "Command: OPEN " + path + "\n";
  port::Document doc = host_.OpenDrawing(path);
  if (!doc) host_.TranscriptRef() += "Cannot open " + path + ": " + host_.LastOpenError() + "\n";
  RefreshTranscript();
  return doc;
}

void DemoHost::Execute(const std::string& typed) {
  const std::string line = Trim(typed);
  if (line.empty()) return;
  const auto space = line.find_first_of(" \t");
  const std::string command = ToUpper(line.substr(0, space));
  const std::string argument = space == std::string::npos ? "" : Trim(line.substr(space));
  if (command == "OPEN") {
    if (argument.empty()) OpenByDialog();
    else Open(argument);
    RefreshTranscript();
    return;
  }
  host_.TranscriptRef() += "Command: " + line + "\n";
  if (!module_ && std::find(demandCommands_.begin(), demandCommands_.end(), command) != demandCommands_.end()) {
    // Demand loading: the module first, then the command it registered.
    std::string error;
    if (!LoadModule(error, true)) host_.TranscriptRef() += error + "\n";
  }
  if (command == "CLOSE") {
    if (port::Document doc = host_.MdiActive()) host_.CloseDrawing(doc);
  } else if (!host_.RunRegisteredCommand(command)) {
    host_.RunCommand(command, command != "ZOOM" && command != "REDRAW", argument);
  }
  RefreshTranscript();
}

void DemoHost::RefreshTranscript() {
  const std::string& transcript = host_.Transcript();
  if (!transcriptEdit_ || transcript.size() == shownTranscript_) return;
  shownTranscript_ = transcript.size();
  std::string shown;
  shown.reserve(transcript.size() + transcript.size() / 16);
  for (char c : transcript) {
    if (c == '\n') shown += '\r';
    shown += c;
  }
  SetWindowTextA(transcriptEdit_, shown.c_str());
  SendMessageA(transcriptEdit_, EM_SETSEL, shown.size(), shown.size());
  SendMessageA(transcriptEdit_, EM_SCROLLCARET, 0, 0);
}

void DemoHost::LayOutFrame() {
  if (!frame_ || !mdiClient_) return;
  win32::RepositionBars(frame_, 0, 0xFFFF, win32::kMdiClientId, false);
  // The dock places its command host even when its own size stayed, as a
  // control bar's layout does.
  RECT dock{};
  GetClientRect(commandDock_, &dock);
  MoveWindow(commandHost_, 0, 0, dock.right, dock.bottom, TRUE);
}

void DemoHost::Dispatch(MSG& message) {
  // The host's main loop shows every message to the module's watcher.
  host_.PostWindowMessage(W(message.hwnd), message.message);
  if (mdiClient_ && TranslateMDISysAccel(mdiClient_, &message)) return;
  TranslateMessage(&message);
  DispatchMessageA(&message);
}

void DemoHost::Pump(int milliseconds) {
  const DWORD deadline = GetTickCount() + static_cast<DWORD>(std::max(0, milliseconds));
  for (;;) {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      if (message.message == WM_QUIT) {
        quit_ = true;
        return;
      }
      Dispatch(message);
    }
    const DWORD now = GetTickCount();
    if (static_cast<int>(deadline - now) <= 0) return;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, deadline - now, QS_ALLINPUT);
  }
}

int DemoHost::Run() {
  MSG message;
  while (!quit_ && GetMessageA(&message, nullptr, 0, 0) > 0) Dispatch(message);
  return 0;
}

void DemoHost::OpenByDialog() {
  char path[MAX_PATH] = {};
  OPENFILENAMEA dialog{};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = frame_;
  dialog.lpstrFilter = "Drawings (*.dwg;*.tdd)\0*.dwg;*.tdd\0All files\0*.*\0";
  dialog.lpstrFile = path;
  dialog.nMaxFile = MAX_PATH;
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;
  if (GetOpenFileNameA(&dialog)) Open(path);
}

void DemoHost::OnMenu(UINT id) {
  std::string error;
  switch (id) {
    case kMenuOpen:
      OpenByDialog();
      break;
    case kMenuClose:
      Execute("CLOSE");
      break;
    case kMenuUnload:
      UnloadModule();
      break;
    case kMenuReload:
      UnloadModule();
      if (!LoadModule(error)) MessageBoxA(frame_, error.c_str(), "Tavlet demo host", MB_OK);
      break;
    case kMenuExit:
      DestroyWindow(frame_);
      break;
    case kMenuCascade:
      SendMessageA(mdiClient_, WM_MDICASCADE, 0, 0);
      break;
    case kMenuTile:
      SendMessageA(mdiClient_, WM_MDITILE, MDITILE_VERTICAL, 0);
      break;
  }
}

// ---------------------------------------------------------------- documents

void DemoHost::DocumentCreated(port::Document doc) {
  const sim::SimDocument* d = host_.Find(doc);
  const std::string title = d ? d->fileName : "Drawing";
  MDICREATESTRUCTA create{};
  create.szClass = kDrawingClass;
  create.szTitle = title.c_str();
  create.hOwner = GetModuleHandleA(nullptr);
  create.x = create.y = create.cx = create.cy = CW_USEDEFAULT;
  create.style = WS_MAXIMIZE;
  create.lParam = reinterpret_cast<LPARAM>(doc);
  ++followingHost_;
  HWND child = reinterpret_cast<HWND>(SendMessageA(mdiClient_, WM_MDICREATE, 0, reinterpret_cast<LPARAM>(&create)));
  --followingHost_;
  if (child) views_[doc] = child;
  PostMessageA(frame_, kDelayedLayout, 0, 0);
}

void DemoHost::DocumentDestroyed(const char*) { PostMessageA(frame_, kDelayedLayout, 0, 0); }

void DemoHost::DocumentToBeDestroyed(port::Document doc) {
  HWND view = ViewOf(doc);
  if (!view) return;
  views_.erase(doc);
  zoom_.erase(view);
  ++followingHost_;
  SendMessageA(mdiClient_, WM_MDIDESTROY, reinterpret_cast<WPARAM>(view), 0);
  --followingHost_;
}

void DemoHost::DocumentActivated(port::Document doc) {
  HWND view = ViewOf(doc);
  if (!view) return;
  ++followingHost_;
  SendMessageA(mdiClient_, WM_MDIACTIVATE, reinterpret_cast<WPARAM>(view), 0);
  --followingHost_;
}

// ---------------------------------------------------------------- window procedures

LRESULT CALLBACK FrameProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    SetPropA(hwnd, "TavletDemoHost", reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams);
  }
  DemoHost* demo = reinterpret_cast<DemoHost*>(GetPropA(hwnd, "TavletDemoHost"));
  if (!demo) return DefWindowProcA(hwnd, message, wParam, lParam);
  return demo->OnFrameMessage(hwnd, message, wParam, lParam);
}

LRESULT DemoHost::OnFrameMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      if (wParam != SIZE_MINIMIZED && mdiClient_) LayOutFrame();
      return 0;
    case WM_COMMAND:
      if (LOWORD(wParam) < kFirstChild) {
        OnMenu(LOWORD(wParam));
        return 0;
      }
      break;
    case WM_TIMER:
      if (wParam == kTranscriptTimer) RefreshTranscript();
      return 0;
    case kDelayedLayout:
      LayOutFrame();
      return 0;
    case WM_DESTROY:
      KillTimer(hwnd, kTranscriptTimer);
      // The module goes before the windows it hooks.
      UnloadModule();
      RemovePropA(hwnd, "TavletDemoHost");
      frame_ = nullptr;
      quit_ = true;
      PostQuitMessage(0);
      return 0;
  }
  return DefFrameProcA(hwnd, mdiClient_, message, wParam, lParam);
}

LRESULT CALLBACK DrawingProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  DemoHost* demo = HostOf(GetParent(hwnd));
  if (!demo) return DefMDIChildProcA(hwnd, message, wParam, lParam);
  return demo->OnDrawingMessage(hwnd, message, wParam, lParam);
}

LRESULT DemoHost::OnDrawingMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_MDIACTIVATE:
      if (reinterpret_cast<HWND>(lParam) == hwnd && !followingHost_) {
        port::Document doc = DocumentOf(hwnd);
        // The user picked this child: the host makes its drawing the active one.
        if (doc && host_.MdiActive() != doc) host_.Activate(doc);
      }
      break;
    case WM_LBUTTONDOWN:
      SetFocus(hwnd);
      return 0;
    case WM_MOUSEWHEEL: {
      const short delta = static_cast<short>(HIWORD(wParam));
      double& zoom = zoom_.try_emplace(hwnd, 1.0).first->second;
      zoom = std::clamp(delta > 0 ? zoom * 1.25 : zoom / 1.25, 0.2, 20.0);
      InvalidateRect(hwnd, nullptr, FALSE);
      return 0;
    }
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT: {
      PAINTSTRUCT paint{};
      HDC dc = BeginPaint(hwnd, &paint);
      PaintDrawing(hwnd, dc);
      EndPaint(hwnd, &paint);
      return 0;
    }
  }
  return DefMDIChildProcA(hwnd, message, wParam, lParam);
}

void DemoHost::PaintDrawing(HWND hwnd, HDC dc) {
  RECT client{};
  GetClientRect(hwnd, &client);
  const int width = client.right, height = client.bottom;
  sim::SimDocument* d = host_.Find(DocumentOf(hwnd));
  port::ScreenImage* image = nullptr;
  if (width > 0 && height > 0 && d) {
    // The host renders the drawing at the view's size, as its graphics system would.
    host_.SetViewSize(width, height);
    host_.GraphicsService()->CopyViewWindow(d->view, &image);
  }
  if (!image) {
    FillRect(dc, &client, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    return;
  }
  const int stride = (width * 3 + 3) & ~3;
  std::vector<unsigned char> bits(static_cast<std::size_t>(stride) * height);
  for (int y = 0; y < height; ++y) {
    const unsigned char* row = nullptr;
    if (port::Succeeded(image->PixelAddress(0, y, &row)) && row)
      std::copy(row, row + width * 3, bits.begin() + static_cast<std::ptrdiff_t>(y) * stride);
  }
  image->Release();
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  // The wheel zooms about the middle of the view.
  const double zoom = ZoomOf(hwnd);
  const int sourceWidth = std::max(1, static_cast<int>(width / zoom));
  const int sourceHeight = std::max(1, static_cast<int>(height / zoom));
  const int sourceX = (width - sourceWidth) / 2;
  const int sourceY = (height - sourceHeight) / 2;
  SetStretchBltMode(dc, COLORONCOLOR);
  // A top-down DIB's source rectangle counts its rows from the bottom.
  StretchDIBits(dc, 0, 0, width, height, sourceX, height - sourceY - sourceHeight, sourceWidth, sourceHeight,
                bits.data(), &info, DIB_RGB_COLORS, SRCCOPY);
}

LRESULT CALLBACK CommandLineProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE) {
    const int width = LOWORD(lParam), height = HIWORD(lParam);
    HWND transcript = GetWindow(hwnd, GW_CHILD);
    HWND input = transcript ? GetWindow(transcript, GW_HWNDNEXT) : nullptr;
    if (transcript) MoveWindow(transcript, 0, 0, width, std::max(0, height - kInputHeight), TRUE);
    if (input) MoveWindow(input, 0, std::max(0, height - kInputHeight), width, kInputHeight, TRUE);
    return 0;
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

}  // namespace tavlet::demo
