// The host's frame windows, boxes, and the application services.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

// The frame's windows. Real host: acedGetAcadFrame()->m_hWnd,
// FindWindowExA(frame, NULL, "MDIClient", ""), acedGetAcadDockCmdLine()->m_hWnd,
// GetParent, and acedGetAcadDwgView() of the active drawing (null with none).
// Simulation: fixed handles with a parent chain frame > dock > host > command
// line; each drawing has a view handle of its own. Any of them can be made null.
class FrameWindows {
 public:
  virtual Result TAVLET_PORT_CALL MainFrame(Window* window) = 0;
  virtual Result TAVLET_PORT_CALL MdiClient(Window* window) = 0;
  virtual Result TAVLET_PORT_CALL DockCommandLine(Window* window) = 0;
  virtual Result TAVLET_PORT_CALL ParentOf(Window child, Window* parent) = 0;
  virtual Result TAVLET_PORT_CALL DrawingView(Window* window) = 0;
  // Client size of a window, for the capture's size.
  virtual Result TAVLET_PORT_CALL ClientSize(Window window, long* width, long* height) = 0;

 protected:
  ~FrameWindows() = default;
};

// Modal message boxes with the module's fixed texts and no caption of its own.
// Real host: AfxMessageBox(text, type). Simulation: every box recorded, answered
// from a queue; a queued callback runs inside the box's modal loop, where the
// host's events may arrive.
class MessageBoxes {
 public:
  virtual Result TAVLET_PORT_CALL Show(const char* text, unsigned long type, long* answer) = 0;

 protected:
  ~MessageBoxes() = default;
};

// Services of the host application.
// Real host: acdbHostApplicationServices() (the release string of its version,
// the roamable root folder, workingDatabase), acrxProductKey(),
// AcApProfileManager's registry root of a profile (the text the binding frees),
// and the dynamic linker found under "DynamicLinker" in acrxSysRegistry()
// (registerAppMDIAware, unlockApplication with the entry's pkt).
// Simulation: settable texts; the working database is the current drawing's; the
// linker calls are recorded.
class HostServices {
 public:
  virtual Result TAVLET_PORT_CALL VersionText(TextSink* text) = 0;
  // With a trailing separator; empty when the host gives none.
  virtual Result TAVLET_PORT_CALL RoamableRootFolder(TextSink* folder) = 0;
  virtual Result TAVLET_PORT_CALL WorkingDatabase(Database* db) = 0;
  virtual Result TAVLET_PORT_CALL ProductKey(TextSink* key) = 0;
  // For example "HKEY_CURRENT_USER\Software\...\Profiles\<name>"; kFalse when none.
  virtual Result TAVLET_PORT_CALL ProfileRegistryRoot(const char* profile, TextSink* root) = 0;
  // The module's pkt of its load message.
  virtual Result TAVLET_PORT_CALL RegisterAppMdiAware(void* application) = 0;
  virtual Result TAVLET_PORT_CALL UnlockApplication(void* application) = 0;

 protected:
  ~HostServices() = default;
};

}  // namespace tavlet::port
