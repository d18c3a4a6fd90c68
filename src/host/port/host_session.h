// The root of the host port: what the module is given at its entry.
#pragma once

#include "host/port/automation.h"
#include "host/port/database.h"
#include "host/port/documents.h"
#include "host/port/editor.h"
#include "host/port/frame.h"
#include "host/port/graphics.h"
#include "host/port/port_types.h"
#include "host/port/sheet_sets.h"

namespace tavlet::port {

// One running host. The service objects live as long as the session; the
// objects it creates are counted.
// Real host: the binding's singleton over the ObjectARX globals;
// Application is acedGetAcadWinApp()->GetIDispatch(TRUE) queried for
// IAcadApplication (E_NOINTERFACE: null and kNoInterface, any other failure as
// it came); OleLinks is AcAxGetOleLinkManager (null when it gives none);
// CreateSheetSetManager is CoCreateInstance; LastErrorDescription is
// GetErrorInfo's description of the last failed call on this thread.
// Simulation: SimHost, which records every call by name for fault injection.
class HostSession {
 public:
  virtual DocManager* TAVLET_PORT_CALL Documents() = 0;
  virtual Editor* TAVLET_PORT_CALL EditorService() = 0;
  virtual DrawingDatabase* TAVLET_PORT_CALL Databases() = 0;
  virtual Graphics* TAVLET_PORT_CALL GraphicsService() = 0;
  virtual FrameWindows* TAVLET_PORT_CALL Frame() = 0;
  virtual MessageBoxes* TAVLET_PORT_CALL Boxes() = 0;
  virtual HostServices* TAVLET_PORT_CALL Services() = 0;
  virtual OleLinkManager* TAVLET_PORT_CALL OleLinks() = 0;

  virtual Result TAVLET_PORT_CALL Application(AcadApplication** application) = 0;
  virtual Result TAVLET_PORT_CALL CreateSheetSetManager(SheetSetManager** manager) = 0;
  // Cleared by every successful call that can fail.
  virtual Result TAVLET_PORT_CALL LastErrorDescription(TextSink* description) = 0;

 protected:
  ~HostSession() = default;
};

}  // namespace tavlet::port
