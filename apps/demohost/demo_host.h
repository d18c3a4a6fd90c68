// The demo host: a Win32 frame that plays the CAD host on the simulated host,
// so that the module runs in real windows. A main frame with an MDI client and
// one MDI child per open drawing (its picture at the child's size, wheel zoom),
// a command line docked at the bottom (the command line inside a command host
// inside a command dock) that shows the transcript and takes commands, a File
// menu, and the module loaded from its DLL and called through its entry as the
// real host's binding does.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "host/port/host_session.h"
#include "platform/win32/arx/tavlet_arx.h"
#include "sim/sim_host.h"

namespace tavlet::demo {

inline constexpr UINT kCommandDockId = 0xE81E;  // the frame's bottom dock bar
inline constexpr int kCommandDockHeight = 110;

class DemoHost;

LRESULT CALLBACK FrameProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK DrawingProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK CommandLineProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

// The session the module is given: the simulated host, except that its frame
// windows are this program's real ones and its boxes also show on screen when
// nobody scripts the answers; the copy of a view window names the real window.
class DemoSession final : public port::HostSession,
                          private port::FrameWindows,
                          private port::MessageBoxes,
                          private port::Graphics {
 public:
  DemoSession(sim::SimHost& host, DemoHost& demo) : host_(host), demo_(demo) {}

  port::DocManager* TAVLET_PORT_CALL Documents() override { return host_.Documents(); }
  port::Editor* TAVLET_PORT_CALL EditorService() override { return host_.EditorService(); }
  port::DrawingDatabase* TAVLET_PORT_CALL Databases() override { return host_.Databases(); }
  port::Graphics* TAVLET_PORT_CALL GraphicsService() override { return this; }
  port::FrameWindows* TAVLET_PORT_CALL Frame() override { return this; }
  port::MessageBoxes* TAVLET_PORT_CALL Boxes() override { return this; }
  port::HostServices* TAVLET_PORT_CALL Services() override { return host_.Services(); }
  port::OleLinkManager* TAVLET_PORT_CALL OleLinks() override { return host_.OleLinks(); }
  port::Result TAVLET_PORT_CALL Application(port::AcadApplication** application) override {
    return host_.Application(application);
  }
  port::Result TAVLET_PORT_CALL CreateSheetSetManager(port::SheetSetManager** manager) override {
    return host_.CreateSheetSetManager(manager);
  }
  port::Result TAVLET_PORT_CALL LastErrorDescription(port::TextSink* description) override {
    return host_.LastErrorDescription(description);
  }

 private:
  port::Result TAVLET_PORT_CALL MainFrame(port::Window* window) override;
  port::Result TAVLET_PORT_CALL MdiClient(port::Window* window) override;
  port::Result TAVLET_PORT_CALL DockCommandLine(port::Window* window) override;
  port::Result TAVLET_PORT_CALL ParentOf(port::Window child, port::Window* parent) override;
  port::Result TAVLET_PORT_CALL DrawingView(port::Window* window) override;
  port::Result TAVLET_PORT_CALL ClientSize(port::Window window, long* width, long* height) override;
  port::Result TAVLET_PORT_CALL Show(const char* text, unsigned long type, long* answer) override;
  port::Result TAVLET_PORT_CALL HasGsView(long viewportNumber, bool* exists) override {
    return host_.GraphicsService()->HasGsView(viewportNumber, exists);
  }
  port::Result TAVLET_PORT_CALL TakeScreenShot(port::ScreenImage** image) override {
    return host_.GraphicsService()->TakeScreenShot(image);
  }
  port::Result TAVLET_PORT_CALL CopyViewWindow(port::Window view, port::ScreenImage** image) override;

  sim::SimHost& host_;
  DemoHost& demo_;
};

class DemoHost final : private port::DocManagerEvents {
 public:
  // `modulePath` is the module DLL; `interactive` shows boxes on screen.
  DemoHost(std::string modulePath, bool interactive);
  ~DemoHost();
  DemoHost(const DemoHost&) = delete;
  DemoHost& operator=(const DemoHost&) = delete;

  // The frame and its windows, shown at `width` x `height`.
  bool CreateFrame(int width, int height);
  // LoadLibrary and the entry's load message; false with the reason in `error`.
  // At start-up the frame's first layout follows the load; otherwise the load
  // runs inside the APPLOAD command, as a user loads a module by hand.
  bool LoadModule(std::string& error, bool atStartup = false);
  // What the host reads under its product key at start to decide how the
  // module is loaded: the entries the module's registration wrote.
  struct Registration {
    bool found = false;
    DWORD loadCtrls = 0;
    std::string loader;
    std::vector<std::string> commands;  // upper case
  };
  Registration ReadRegistration();
  // Start-up: loads the module now, unless its registration asks for loading on
  // command (LOADCTRLS 4): then the first of its registered commands typed
  // loads it from the registered path, before running.
  bool Start(std::string& error);
  bool DemandLoading() const { return !demandCommands_.empty(); }
  // The entry's unload message and FreeLibrary.
  void UnloadModule();
  bool ModuleLoaded() const { return module_ != nullptr; }

  // Opens a drawing (a description or a real .dwg) as the host's OPEN does.
  port::Document Open(const std::string& path);
  // Types a command line: the command and its argument.
  void Execute(const std::string& line);
  // Runs messages until none is waiting, then for `milliseconds` more.
  void Pump(int milliseconds = 0);
  // The main loop of an interactive session.
  int Run();

  sim::SimHost& Host() { return host_; }
  DemoSession& Session() { return session_; }
  HWND Frame() const { return frame_; }
  HWND MdiClient() const { return mdiClient_; }
  HWND CommandDock() const { return commandDock_; }
  HWND CommandHost() const { return commandHost_; }
  HWND CommandLine() const { return commandLine_; }
  // Where commands are typed.
  HWND CommandInput() const { return inputEdit_; }
  HWND ViewOf(port::Document doc) const;
  port::Document DocumentOf(HWND view) const;
  bool Interactive() const { return interactive_; }
  // Wheel zoom of a view, 1.0 at the start.
  double ZoomOf(HWND view) const;

 private:
  friend LRESULT CALLBACK FrameProcedure(HWND, UINT, WPARAM, LPARAM);
  friend LRESULT CALLBACK DrawingProcedure(HWND, UINT, WPARAM, LPARAM);
  friend LRESULT CALLBACK CommandLineProcedure(HWND, UINT, WPARAM, LPARAM);

  // DocManagerEvents: the MDI children follow the host's documents.
  void TAVLET_PORT_CALL DocumentCreated(port::Document doc) override;
  void TAVLET_PORT_CALL DocumentToBeDestroyed(port::Document doc) override;
  void TAVLET_PORT_CALL DocumentDestroyed(const char*) override;
  void TAVLET_PORT_CALL DocumentLockModeChanged(port::Document, const char*) override {}
  void TAVLET_PORT_CALL DocumentActivated(port::Document doc) override;

  LRESULT OnFrameMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT OnDrawingMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
  void PaintDrawing(HWND hwnd, HDC dc);
  void OnMenu(UINT id);
  void OpenByDialog();
  void RefreshTranscript();
  // The frame's bars and its MDI client, then the command dock's host.
  void LayOutFrame();
  void Dispatch(MSG& message);

  sim::SimHost host_;
  DemoSession session_{host_, *this};
  std::string modulePath_;
  bool interactive_;
  HMODULE module_ = nullptr;
  TavletArxEntryFunction entry_ = nullptr;
  HWND frame_ = nullptr;
  HWND mdiClient_ = nullptr;
  HWND commandDock_ = nullptr;
  HWND commandHost_ = nullptr;
  HWND commandLine_ = nullptr;
  HWND transcriptEdit_ = nullptr;
  HWND inputEdit_ = nullptr;
  std::size_t shownTranscript_ = 0;
  std::vector<std::string> demandCommands_;
  std::map<port::Document, HWND> views_;
  std::map<HWND, double> zoom_;
  // Set while the host's own activation or creation moves the MDI children, so
  // that their activation does not go back to the host.
  int followingHost_ = 0;
  bool quit_ = false;
};

// The module's settings, written as the preferences would (section "" is the
// root): before a load, they are what the bar reads.
bool WriteSetting(const std::string& section, const std::string& key, int value);

}  // namespace tavlet::demo
