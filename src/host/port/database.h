// Read and write access to a drawing database, cut down to the walks the bar
// makes. A table, record, entity, dictionary or hyperlink collection crosses
// the port as a counted object: handing it out is the open (always for read,
// unless a call says otherwise) and its last Release is the close, so an owner
// that releases at once keeps every object open only as long as it is read.
// Each walk is an iterator whose Next gives kFalse at the end.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

// AcDbObjectId: the identity of a database object, valid while its drawing is
// open. 0 is the null id.
using ObjectId = unsigned long long;
inline constexpr ObjectId kNullObjectId = 0;

// Acad::ErrorStatus values the bar looks at.
inline constexpr long kAcadOk = 0;
inline constexpr long kAcadDuplicateRecordName = 95;

// Receives extended data, item by item, in the order of the resbuf list.
class XDataSink {
 public:
  virtual void TAVLET_PORT_CALL Item(long groupCode, const char* text, long length) = 0;

 protected:
  ~XDataSink() = default;
};

struct XDataItem {
  long groupCode = 0;  // 1001 application, 1000 string
  const char* text = nullptr;
};

// AcDbHyperlinkCollection, from AcDbEntityHyperlinkPE::getHyperlinkCollection
// with oneOnly off and block definitions ignored. Release deletes it.
class HyperlinkCollection : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Count(long* count) = 0;
  // AcDbHyperlinkCollection::item(index)->name().
  virtual Result TAVLET_PORT_CALL Name(long index, TextSink* name) = 0;
};

// An open object that may carry hyperlinks: an entity or a block table record,
// through its AcDbEntityHyperlinkPE (AcRxObject::x).
class HyperlinkHolder : public Counted {
 public:
  // hasHyperlink with block definitions not ignored.
  virtual Result TAVLET_PORT_CALL HasHyperlink(bool* has) = 0;
  virtual Result TAVLET_PORT_CALL Hyperlinks(HyperlinkCollection** links) = 0;
};

enum EntityKind : long {
  kEntityOther = 0,
  kEntityRasterImage = 1,
  kEntityOle2Frame = 2,
  kEntityViewport = 3,
};

inline constexpr long kOleLinked = 1;  // AcDbOle2Frame::getType of a link

// What an entity is, as the cast to its class tells.
struct EntityInfo {
  long kind = kEntityOther;
  long oleType = 0;         // kEntityOle2Frame: getType
  long renderMode = 0;      // kEntityViewport: 0 is plain 2D wireframe
  long viewportNumber = 0;  // kEntityViewport: its CVPORT number, 1 for the paper-space one
};

// An AcDbEntity open for read.
class Entity : public HyperlinkHolder {
 public:
  // AcDbRasterImage: opens imageDefId as AcDbRasterImageDef, takes its file
  // name and closes it. `present` false when the definition has no file.
  virtual Result TAVLET_PORT_CALL ImageFileName(TextSink* path, bool* present) = 0;
  // AcDbOle2Frame::getLinkPath(buffer, size): at most size - 1 bytes and a
  // terminating zero. `present` false when the frame has no link path.
  virtual Result TAVLET_PORT_CALL OleLinkPath(char* buffer, long size, bool* present) = 0;
};

// AcDbBlockTableRecordIterator from newIterator(atBeginning, skipDeleted): the
// entities of one block, deleted ones skipped.
class EntityIterator : public Counted {
 public:
  // done, getEntity for read, step; the entity's class with it. Null with kFalse
  // at the end.
  virtual Result TAVLET_PORT_CALL Next(Entity** entity, EntityInfo* info) = 0;
};

struct BlockRecordInfo {
  bool fromExternalReference = false;  // isFromExternalReference
  bool isLayout = false;               // model space included
  bool isModelSpace = false;           // the record named *Model_Space
  bool isAnonymous = false;
  bool isDependent = false;
};

// An AcDbBlockTableRecord open for read.
class BlockRecord : public HyperlinkHolder {
 public:
  virtual Result TAVLET_PORT_CALL Info(BlockRecordInfo* info, TextSink* name) = 0;
  // xrefDatabase()->originalFileName(); `present` false when either is null
  // (an unresolved reference has no database).
  virtual Result TAVLET_PORT_CALL XrefFileName(TextSink* path, bool* present) = 0;
  // getLayoutId opened as AcDbLayout: getLayoutName and getTabOrder. Fails for
  // a block that is not a layout.
  virtual Result TAVLET_PORT_CALL Layout(TextSink* name, long* tabOrder) = 0;
  virtual Result TAVLET_PORT_CALL NewIterator(EntityIterator** entities) = 0;
};

// AcDbSymbolTableIterator: done, getRecordId, step. 0 with kFalse at the end.
class SymbolTableIterator : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Next(ObjectId* record) = 0;
};

// AcDbBlockTable or AcDbViewTable open for read.
class SymbolTable : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL NewIterator(SymbolTableIterator** records) = 0;
};

struct ViewRecordInfo {
  bool paperSpace = false;          // isPaperspaceView
  bool dependent = false;           // isDependent
  double centerX = 0, centerY = 0;  // AcDbAbstractViewTableRecord::centerPoint
};

// An AcDbViewTableRecord, open for read or (from GetAt) for write.
class ViewRecord : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Info(ViewRecordInfo* info, TextSink* name) = 0;
  // xData(application): the sink gets each item of the list; nothing when the
  // record has no data for the application. The list is freed (acutRelRb).
  virtual Result TAVLET_PORT_CALL XData(const char* application, XDataSink* items) = 0;
  // Open for write only.
  virtual Result TAVLET_PORT_CALL SetPaperSpace(bool paperSpace) = 0;
  // setXData with the list acutBuildList makes of the items, RTNONE ended.
  virtual Result TAVLET_PORT_CALL SetXData(const XDataItem* items, long count) = 0;
};

class ViewTable : public SymbolTable {
 public:
  // getAt(name, record, forWrite ? kForWrite : kForRead); kFalse and null when
  // the table has no such view.
  virtual Result TAVLET_PORT_CALL GetAt(const char* name, bool forWrite, ViewRecord** record) = 0;
};

// AcDbDictionaryIterator: done, name, next. kFalse at the end.
class DictionaryIterator : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Next(TextSink* name) = 0;
};

// An AcDbDictionary open for read.
class Dictionary : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL NewIterator(DictionaryIterator** entries) = 0;
};

enum SummaryField : long {
  kSummaryAuthor = 0,
  kSummaryTitle,
  kSummarySubject,
  kSummaryKeywords,
  kSummaryComments,
  kSummaryLastSavedBy,
  kSummaryRevisionNumber,
  kSummaryHyperlinkBase,
};

// Drawing-database content.
// Real host: AcDbDatabase::getSymbolTable (AcDbBlockTable, AcDbViewTable) for
// read, acdbOpenAcDbObject for read, tilemode, currentSpaceId, the layout
// manager's active layout, getLayerStateManager with layerStatesDictionaryId
// and restoreLayerState, AcDbRegAppTable::add, acdbGetSummaryInfo and
// acadErrorStatusText.
// Simulation: the content of the drawing's description file; every operation,
// of this service and of the objects it hands out, fails on demand by its
// name; the objects open at any moment are counted.
class DrawingDatabase {
 public:
  virtual Result TAVLET_PORT_CALL Tilemode(Database db, bool* tilemode) = 0;
  virtual Result TAVLET_PORT_CALL ActiveLayoutName(Database db, TextSink* name) = 0;
  // The block record of the space being drawn in.
  virtual Result TAVLET_PORT_CALL CurrentSpaceId(Database db, ObjectId* block) = 0;

  virtual Result TAVLET_PORT_CALL OpenBlockTable(Database db, SymbolTable** table) = 0;
  virtual Result TAVLET_PORT_CALL OpenViewTable(Database db, ViewTable** table) = 0;
  virtual Result TAVLET_PORT_CALL OpenBlockRecord(ObjectId id, BlockRecord** record) = 0;
  virtual Result TAVLET_PORT_CALL OpenViewRecord(ObjectId id, ViewRecord** record) = 0;

  // getLayerStateManager: `exists` false when the database gives none.
  virtual Result TAVLET_PORT_CALL HasLayerStateManager(Database db, bool* exists) = 0;
  // getLayerStateManager()->layerStatesDictionaryId(false); 0 with kFalse when
  // the database has no manager or the manager no dictionary.
  virtual Result TAVLET_PORT_CALL LayerStatesDictionary(Database db, ObjectId* dictionary) = 0;
  virtual Result TAVLET_PORT_CALL OpenDictionary(ObjectId id, Dictionary** dictionary) = 0;
  // restoreLayerState(name); the document must be locked for write. Fails
  // (kPointer) on a database without a layer state manager.
  virtual Result TAVLET_PORT_CALL RestoreLayerState(Database db, const char* name,
                                                    long* acadStatus) = 0;

  // The table of applications opened for write, a new AcDbRegAppTableRecord
  // with setName, add (the record deleted when refused, closed otherwise), the
  // table closed. `acadStatus` kAcadOk, kAcadDuplicateRecordName or another.
  virtual Result TAVLET_PORT_CALL AddRegApp(Database db, const char* application,
                                            long* acadStatus) = 0;
  virtual Result TAVLET_PORT_CALL ErrorStatusText(long acadStatus, TextSink* text) = 0;

  // acdbGetSummaryInfo: `present` false when it gives no object.
  virtual Result TAVLET_PORT_CALL HasSummaryInfo(Database db, bool* present) = 0;
  virtual Result TAVLET_PORT_CALL SummaryText(Database db, long field, TextSink* value,
                                              long* acadStatus) = 0;
  virtual Result TAVLET_PORT_CALL CustomSummaryCount(Database db, long* count) = 0;
  virtual Result TAVLET_PORT_CALL CustomSummary(Database db, long index, TextSink* key,
                                                TextSink* value, long* acadStatus) = 0;

 protected:
  ~DrawingDatabase() = default;
};

}  // namespace tavlet::port
