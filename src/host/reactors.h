// The bar's two reactors. Each host event becomes one call on the bar; what is
// particular is when the model is refreshed: never while a command runs, always
// at its end, by asking the active drawing's DBMOD.
//
// The host calls these through the port, so nothing may leave them by an
// exception: a failure (a COM error of the poll, say) ends the event quietly, as
// the host's own handling would, with the reactor's state as it stood.
#pragma once

#include <string>

#include "host/port/host_session.h"

namespace tavlet::bar {
class BarModel;
}

namespace tavlet::host {

class BarDocManagerReactor final : public port::DocManagerEvents {
 public:
  // Adds itself to the document manager; the destructor removes it.
  explicit BarDocManagerReactor(bar::BarModel* bar);
  ~BarDocManagerReactor();
  BarDocManagerReactor(const BarDocManagerReactor&) = delete;
  BarDocManagerReactor& operator=(const BarDocManagerReactor&) = delete;

  void TAVLET_PORT_CALL DocumentCreated(port::Document doc) override;
  void TAVLET_PORT_CALL DocumentToBeDestroyed(port::Document doc) override;
  void TAVLET_PORT_CALL DocumentDestroyed(const char* fileName) override;
  void TAVLET_PORT_CALL DocumentLockModeChanged(port::Document doc, const char* globalCommandName) override;
  void TAVLET_PORT_CALL DocumentActivated(port::Document doc) override;

  bar::BarModel* Bar;

 private:
  port::DocManager* manager_;
};

class BarEditorReactor final : public port::EditorEvents {
 public:
  // Reads AvoidSaveasInLisp once and adds itself to the editor; the destructor
  // removes it.
  explicit BarEditorReactor(bar::BarModel* bar);
  ~BarEditorReactor();
  BarEditorReactor(const BarEditorReactor&) = delete;
  BarEditorReactor& operator=(const BarEditorReactor&) = delete;

  void TAVLET_PORT_CALL SaveComplete(port::Database db, const char* actualName) override;
  void TAVLET_PORT_CALL CommandWillStart(const char* command) override;
  void TAVLET_PORT_CALL CommandEnded(const char* command) override;
  void TAVLET_PORT_CALL CommandCancelled(const char* command) override;
  void TAVLET_PORT_CALL CommandFailed(const char* command) override;
  void TAVLET_PORT_CALL LispWillStart(const char* firstLine) override;
  void TAVLET_PORT_CALL LispEnded() override;
  void TAVLET_PORT_CALL LispCancelled() override;
  void TAVLET_PORT_CALL EndDwgOpen(const char* fileName) override;
  void TAVLET_PORT_CALL SysVarChanged(const char* name, bool succeeded) override;

  // Refreshes the active drawing's modified state at the end of a command or of a
  // LISP expression. Raises ComError when the host's automation fails.
  void PollDrawingState(const std::string& name);

  bar::BarModel* Bar;
  std::string currentCommand;
  bool lispActive = false;
  bool AvoidSaveasInLisp = false;

 private:
  port::Editor* editor_;
};

}  // namespace tavlet::host
