// Editor services: system variables, the command line, commands, editor events.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

// Events of the editor. The module implements it; the host calls it.
// Real host: an AcEditorReactor added to the "AcEditor" service of
// acrxSysRegistry(); saveComplete's AcDbDatabase* arrives as a Database.
// Simulation: fired by SimHost's commands, saves, LISP and opens in the host's
// documented orders (QSAVE: will start, save complete, ended).
class EditorEvents {
 public:
  virtual void TAVLET_PORT_CALL SaveComplete(Database db, const char* actualName) = 0;
  virtual void TAVLET_PORT_CALL CommandWillStart(const char* command) = 0;
  virtual void TAVLET_PORT_CALL CommandEnded(const char* command) = 0;
  virtual void TAVLET_PORT_CALL CommandCancelled(const char* command) = 0;
  virtual void TAVLET_PORT_CALL CommandFailed(const char* command) = 0;
  virtual void TAVLET_PORT_CALL LispWillStart(const char* firstLine) = 0;
  virtual void TAVLET_PORT_CALL LispEnded() = 0;
  virtual void TAVLET_PORT_CALL LispCancelled() = 0;
  virtual void TAVLET_PORT_CALL EndDwgOpen(const char* fileName) = 0;
  virtual void TAVLET_PORT_CALL SysVarChanged(const char* name, bool succeeded) = 0;

 protected:
  ~EditorEvents() = default;
};

// A command of the module. Real host: the binding gives addCommand one static
// thunk per registered command, which calls Run. Simulation: run by
// SimHost::RunRegisteredCommand.
class CommandHandler {
 public:
  virtual void TAVLET_PORT_CALL Run() = 0;

 protected:
  ~CommandHandler() = default;
};

// Sees every message of the host's main loop. Real host: the function given to
// acedRegisterWatchWinMsg, with the MSG's fields. Simulation: called by
// SimHost::PostWindowMessage.
class WindowMessageWatcher {
 public:
  virtual void TAVLET_PORT_CALL Message(Window window, unsigned int message, unsigned long long wParam,
                                        long long lParam) = 0;

 protected:
  ~WindowMessageWatcher() = default;
};

// The first words of AcColorSettings, in its order.
struct ColorSettings {
  unsigned long modelBackground = 0;
  unsigned long layoutBackground = 0;
  unsigned long parallelBackground = 0;
  unsigned long blockEditorBackground = 0;
  unsigned long commandLineBackground = 0;
  unsigned long plotPreviewBackground = 0;
  unsigned long modelCrosshair = 0;
  unsigned long layoutCrosshair = 0;
};

// Editor services of the current document.
// Real host: acedGetVar, acedSetVar (resbuf converted from Value), acutPrintf
// with "%s", acedGetString, acedSendModelessOperationStart/Ended,
// acedPostCommandPrompt, acedGetCurrentColors, acedRegisterWatchWinMsg,
// acedRemoveWatchWinMsg, the "AcEditor" reactor list, AcadIsQuitting, and the
// ACAD_REGISTERED_COMMANDS command stack's addCommand and removeGroup.
// Simulation: variables of the current drawing and of the session; the
// command-line transcript; acedGetString answered from a queue; notices recorded;
// commands kept by group so tests can run them.
class Editor {
 public:
  // A string variable's text goes to `text` (may be null); other types fill `value`.
  // An unknown variable fails with kInvalidArgument and sets `value->type` to kValueNone.
  virtual Result TAVLET_PORT_CALL GetVariable(const char* name, Value* value, TextSink* text) = 0;
  virtual Result TAVLET_PORT_CALL SetVariable(const char* name, const Value* value) = 0;
  // Text as it stands: the binding passes it through "%s", never as a format.
  virtual Result TAVLET_PORT_CALL Print(const char* text) = 0;
  // `status` receives kRtNormal, kRtCancel or kRtError.
  virtual Result TAVLET_PORT_CALL GetString(bool allowBlanks, const char* prompt, TextSink* answer, long* status) = 0;
  virtual Result TAVLET_PORT_CALL ModelessOperationStart(const char* name) = 0;
  virtual Result TAVLET_PORT_CALL ModelessOperationEnded(const char* name) = 0;
  virtual Result TAVLET_PORT_CALL PostCommandPrompt() = 0;
  virtual Result TAVLET_PORT_CALL GetCurrentColors(ColorSettings* colors) = 0;
  virtual Result TAVLET_PORT_CALL AddReactor(EditorEvents* events) = 0;
  virtual Result TAVLET_PORT_CALL RemoveReactor(EditorEvents* events) = 0;
  virtual Result TAVLET_PORT_CALL RegisterWatcher(WindowMessageWatcher* watcher) = 0;
  virtual Result TAVLET_PORT_CALL RemoveWatcher(WindowMessageWatcher* watcher) = 0;
  virtual Result TAVLET_PORT_CALL IsQuitting(bool* quitting) = 0;
  // The handler must live until RemoveGroup.
  virtual Result TAVLET_PORT_CALL AddCommand(const char* group, const char* globalName, const char* localName,
                                             long flags, CommandHandler* handler) = 0;
  virtual Result TAVLET_PORT_CALL RemoveGroup(const char* group) = 0;

 protected:
  ~Editor() = default;
};

}  // namespace tavlet::port
