// Read and write access to a drawing database, cut down to the walks the bar
// makes. Every operation names the database; block records, entities and views
// are addressed by their position in the table walk, so nothing is opened or
// closed across the port.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

struct BlockRecordInfo {
  bool fromExternalReference = false;
  bool hasXrefDatabase = false;  // false for an unresolved external reference
  bool isLayout = false;         // model space included
  bool isModelSpace = false;
  bool isAnonymous = false;
  bool isDependent = false;
};

enum EntityKind : long {
  kEntityOther = 0,
  kEntityRasterImage = 1,
  kEntityOle2Frame = 2,
  kEntityViewport = 3,
};

inline constexpr long kOleLinked = 1;  // AcDbOle2Frame::getType of a link

struct EntityInfo {
  long kind = kEntityOther;
  bool erased = false;
  long oleType = 0;      // kEntityOle2Frame
  long renderMode = 0;   // kEntityViewport: 0 is plain 2D wireframe
  long viewportNumber = 0;  // kEntityViewport: its CVPORT number, 1 for the paper-space one
};

struct ViewRecordInfo {
  bool paperSpace = false;
  bool dependent = false;
  double centerX = 0, centerY = 0;
};

struct XDataItem {
  long groupCode = 0;  // 1001 application, 1000 string
  const char* text = nullptr;
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

// Acad::ErrorStatus values the bar looks at.
inline constexpr long kAcadOk = 0;
inline constexpr long kAcadDuplicateRecordName = 95;

// Drawing-database content.
// Real host: AcDbBlockTable and its iterators (isFromExternalReference,
// xrefDatabase()->originalFileName(), isLayout, getLayoutId, getLayoutName),
// AcDbBlockTableRecordIterator over entities opened for read (AcDbRasterImage
// with its AcDbRasterImageDef's file, AcDbOle2Frame getType and getLinkPath,
// AcDbViewport renderMode and number), AcDbEntityHyperlinkPE, the layer state
// manager and its dictionary, AcDbViewTable with xData/setXData,
// AcDbRegAppTable::add, acdbGetSummaryInfo, tilemode, currentSpaceId,
// acadErrorStatusText.
// Simulation: the content of the drawing's description file; failures of any
// table or record by fault injection on the operation's name.
class DrawingDatabase {
 public:
  virtual Result TAVLET_PORT_CALL Tilemode(Database db, bool* tilemode) = 0;

  // The block table, in table order. Failing here is the table not opening.
  virtual Result TAVLET_PORT_CALL BlockRecordCount(Database db, long* count) = 0;
  virtual Result TAVLET_PORT_CALL BlockRecord(Database db, long block, BlockRecordInfo* info, TextSink* name) = 0;
  // originalFileName of the reference's database; `present` false when null.
  virtual Result TAVLET_PORT_CALL XrefFileName(Database db, long block, TextSink* path, bool* present) = 0;
  virtual Result TAVLET_PORT_CALL LayoutName(Database db, long block, TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL LayoutTabOrder(Database db, long block, long* tabOrder) = 0;
  virtual Result TAVLET_PORT_CALL ActiveLayoutName(Database db, TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL CurrentSpaceBlock(Database db, long* block) = 0;

  // Entities of one block, deleted ones included (flagged).
  virtual Result TAVLET_PORT_CALL EntityCount(Database db, long block, long* count) = 0;
  virtual Result TAVLET_PORT_CALL Entity(Database db, long block, long entity, EntityInfo* info) = 0;
  // The image definition's file; `present` false when it has none.
  virtual Result TAVLET_PORT_CALL ImageFileName(Database db, long block, long entity, TextSink* path,
                                                bool* present) = 0;
  // getLinkPath into 260 bytes; `present` false when it gives no path.
  virtual Result TAVLET_PORT_CALL OleLinkPath(Database db, long block, long entity, TextSink* path,
                                              bool* present) = 0;

  // Hyperlinks of an entity, or with entity -1 of the block record itself.
  // The count is that of getHyperlinkCollection(oneOnly off, block definitions ignored).
  virtual Result TAVLET_PORT_CALL HasHyperlink(Database db, long block, long entity, bool* has) = 0;
  virtual Result TAVLET_PORT_CALL HyperlinkCount(Database db, long block, long entity, long* count) = 0;
  virtual Result TAVLET_PORT_CALL Hyperlink(Database db, long block, long entity, long index, TextSink* name) = 0;

  // Layer states. `exists` false when the database has no layer state manager;
  // LayerStateCount fails when the states' dictionary does not open.
  virtual Result TAVLET_PORT_CALL HasLayerStateManager(Database db, bool* exists) = 0;
  virtual Result TAVLET_PORT_CALL LayerStateCount(Database db, long* count) = 0;
  virtual Result TAVLET_PORT_CALL LayerStateName(Database db, long index, TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL RestoreLayerState(Database db, const char* name, long* acadStatus) = 0;

  // The view table in table order; ViewAt fails for a record that won't open.
  virtual Result TAVLET_PORT_CALL ViewCount(Database db, long* count) = 0;
  virtual Result TAVLET_PORT_CALL ViewAt(Database db, long index, ViewRecordInfo* info, TextSink* name) = 0;
  // The record's extended data for one application, as a list of items; the
  // list is empty when the record has none.
  virtual Result TAVLET_PORT_CALL ViewXDataCount(Database db, const char* view, const char* application,
                                                 long* count) = 0;
  virtual Result TAVLET_PORT_CALL ViewXDataItem(Database db, const char* view, const char* application, long index,
                                                long* groupCode, TextSink* text) = 0;
  virtual Result TAVLET_PORT_CALL SetViewPaperSpace(Database db, const char* view, bool paperSpace) = 0;
  virtual Result TAVLET_PORT_CALL SetViewXData(Database db, const char* view, const XDataItem* items, long count) = 0;
  // `acadStatus` kAcadOk, kAcadDuplicateRecordName or another failure.
  virtual Result TAVLET_PORT_CALL AddRegApp(Database db, const char* application, long* acadStatus) = 0;
  virtual Result TAVLET_PORT_CALL ErrorStatusText(long acadStatus, TextSink* text) = 0;

  // acdbGetSummaryInfo: `present` false when it gives no object.
  virtual Result TAVLET_PORT_CALL HasSummaryInfo(Database db, bool* present) = 0;
  virtual Result TAVLET_PORT_CALL SummaryText(Database db, long field, TextSink* value, long* acadStatus) = 0;
  virtual Result TAVLET_PORT_CALL CustomSummaryCount(Database db, long* count) = 0;
  virtual Result TAVLET_PORT_CALL CustomSummary(Database db, long index, TextSink* key, TextSink* value,
                                                long* acadStatus) = 0;

 protected:
  ~DrawingDatabase() = default;
};

}  // namespace tavlet::port
