// Documents and their manager, and the manager's events.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

// Events of the document manager. The module implements it; the host calls it.
// Real host: an AcApDocManagerReactor added with acDocManagerPtr()->addReactor,
// whose overrides forward here with the AcApDocument* as a Document.
// Simulation: called in the orders the host documents (open: created, end of
// open on the editor events, activated; close: to be destroyed, destroyed, then
// activated for the drawing that takes over).
class DocManagerEvents {
 public:
  virtual void TAVLET_PORT_CALL DocumentCreated(Document doc) = 0;
  virtual void TAVLET_PORT_CALL DocumentToBeDestroyed(Document doc) = 0;
  // The document is already gone from the manager's count and walk.
  virtual void TAVLET_PORT_CALL DocumentDestroyed(const char* fileName) = 0;
  virtual void TAVLET_PORT_CALL DocumentLockModeChanged(Document doc, const char* globalCommandName) = 0;
  virtual void TAVLET_PORT_CALL DocumentActivated(Document doc) = 0;

 protected:
  ~DocManagerEvents() = default;
};

inline constexpr long kLockNone = 0x00;   // AcAp::kNone
inline constexpr long kLockWrite = 0x01;  // AcAp::kWrite

// The document manager, and the few questions asked of one document.
// Real host: acDocManagerPtr() (mdiActiveDocument, curDocument, documentCount,
// newAcApDocumentIterator, activateDocument, appContextNewDocument, lockDocument,
// unlockDocument, document(db), add/removeReactor, setCurDocument) and on an AcApDocument
// cDoc()->GetPathName(), cDoc()->IsModified(), fileName(), isReadOnly(),
// isQuiescent(), database(), popDbmod().
// Simulation: SimHost's document list; the walk follows its iteration order,
// which tests may set apart from the order of creation.
class DocManager {
 public:
  // Null (with kOk) when there is no such document.
  virtual Result TAVLET_PORT_CALL MdiActiveDocument(Document* doc) = 0;
  virtual Result TAVLET_PORT_CALL CurrentDocument(Document* doc) = 0;
  virtual Result TAVLET_PORT_CALL DocumentCount(long* count) = 0;
  // The walk of newAcApDocumentIterator, index 0 first. A bad index gives kBadIndex.
  virtual Result TAVLET_PORT_CALL DocumentAt(long index, Document* doc) = 0;
  // acDocManager->document(db); null when no open document holds it.
  virtual Result TAVLET_PORT_CALL DocumentOfDatabase(Database db, Document* doc) = 0;
  virtual Result TAVLET_PORT_CALL ActivateDocument(Document doc, bool passScript) = 0;
  virtual Result TAVLET_PORT_CALL AppContextNewDocument(const char* templateName) = 0;
  virtual Result TAVLET_PORT_CALL LockDocument(Document doc, long lockMode) = 0;
  virtual Result TAVLET_PORT_CALL UnlockDocument(Document doc) = 0;
  virtual Result TAVLET_PORT_CALL AddReactor(DocManagerEvents* events) = 0;
  virtual Result TAVLET_PORT_CALL RemoveReactor(DocManagerEvents* events) = 0;

  // The saved path of the document's CDocument; empty for a drawing never saved.
  virtual Result TAVLET_PORT_CALL PathName(Document doc, TextSink* path) = 0;
  // AcApDocument::fileName: the name the host shows, also for an unnamed drawing.
  virtual Result TAVLET_PORT_CALL FileName(Document doc, TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL IsReadOnly(Document doc, bool* readOnly) = 0;
  virtual Result TAVLET_PORT_CALL IsQuiescent(Document doc, bool* quiescent) = 0;
  virtual Result TAVLET_PORT_CALL IsModified(Document doc, bool* modified) = 0;
  virtual Result TAVLET_PORT_CALL DatabaseOf(Document doc, Database* db) = 0;
  virtual Result TAVLET_PORT_CALL PopDbmod(Document doc) = 0;
  // setCurDocument(doc, lockMode, activate): the document becomes current, and
  // with `activate` the MDI-active one too. kLockNone asks for no lock.
  virtual Result TAVLET_PORT_CALL SetCurrentDocument(Document doc, long lockMode, bool activate) = 0;

 protected:
  ~DocManager() = default;
};

}  // namespace tavlet::port
