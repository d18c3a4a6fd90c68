// The database side of the simulated host: tables built on the fly from the
// drawing's description, in the order the host's tables keep.
#include <string>
#include <vector>

#include "sim/sim_host.h"

namespace tavlet::sim {

namespace {

void Give(port::TextSink* sink, const std::string& s) {
  if (sink) sink->Assign(s.data(), static_cast<long>(s.size()));
}

// Block table order: model space, the layouts' blocks in tab order, external
// references, named blocks.
struct BlockRef {
  enum class Kind { Model, Layout, Xref, Named } kind;
  std::size_t index = 0;  // into layouts, xrefs or blocks
};

std::vector<BlockRef> Blocks(const DrawingDescription& c) {
  std::vector<BlockRef> out{{BlockRef::Kind::Model, 0}};
  for (std::size_t i = 0; i < c.layouts.size(); ++i) out.push_back({BlockRef::Kind::Layout, i});
  for (std::size_t i = 0; i < c.xrefs.size(); ++i) out.push_back({BlockRef::Kind::Xref, i});
  for (std::size_t i = 0; i < c.blocks.size(); ++i) out.push_back({BlockRef::Kind::Named, i});
  return out;
}

std::string LayoutOf(const DrawingDescription& c, const BlockRef& b) {
  return b.kind == BlockRef::Kind::Model ? "Model" : c.layouts[b.index];
}

// Entities of a layout's block: the described ones, then its viewports.
struct EntityRef {
  const EntityDesc* entity = nullptr;
  const ViewportDesc* viewport = nullptr;
};

std::vector<EntityRef> Entities(const DrawingDescription& c, const BlockRef& b) {
  std::vector<EntityRef> out;
  if (b.kind != BlockRef::Kind::Model && b.kind != BlockRef::Kind::Layout) return out;
  std::string layout = LayoutOf(c, b);
  for (const EntityDesc& e : c.entities)
    if (e.layout == layout) out.push_back({&e, nullptr});
  if (b.kind == BlockRef::Kind::Layout)
    for (const ViewportDesc& v : c.viewports)
      if (v.layout == layout) out.push_back({nullptr, &v});
  return out;
}

}  // namespace

#define SIM_DATABASE(call)                                             \
  if (port::Result r = Enter(call)) return r;                          \
  SimDocument* d = FindByDatabase(db);                                 \
  if (!d || d->closed) return Fail(port::kInvalidArgument, "eNullObjectId"); \
  const DrawingDescription& c = d->content

#define SIM_BLOCK()                                                  \
  std::vector<BlockRef> blocks = Blocks(c);                          \
  if (block < 0 || block >= static_cast<long>(blocks.size()))        \
    return Fail(port::kBadIndex, "eInvalidIndex");                   \
  const BlockRef& b = blocks[static_cast<std::size_t>(block)]

#define SIM_ENTITY()                                                 \
  SIM_BLOCK();                                                       \
  std::vector<EntityRef> entities = Entities(c, b);                  \
  if (entity < 0 || entity >= static_cast<long>(entities.size()))    \
    return Fail(port::kBadIndex, "eInvalidIndex");                   \
  const EntityRef& e = entities[static_cast<std::size_t>(entity)]

port::Result SimHost::Tilemode(port::Database db, bool* tilemode) {
  SIM_DATABASE("DrawingDatabase::Tilemode");
  *tilemode = c.activeLayout == "Model";
  return port::kOk;
}

port::Result SimHost::BlockRecordCount(port::Database db, long* count) {
  SIM_DATABASE("DrawingDatabase::BlockRecordCount");
  *count = static_cast<long>(Blocks(c).size());
  return port::kOk;
}

port::Result SimHost::BlockRecord(port::Database db, long block, port::BlockRecordInfo* info, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::BlockRecord");
  SIM_BLOCK();
  *info = port::BlockRecordInfo();
  switch (b.kind) {
    case BlockRef::Kind::Model:
      info->isLayout = info->isModelSpace = true;
      Give(name, "*Model_Space");
      break;
    case BlockRef::Kind::Layout:
      info->isLayout = true;
      Give(name, b.index == 0 ? std::string("*Paper_Space") : "*Paper_Space" + std::to_string(b.index - 1));
      break;
    case BlockRef::Kind::Xref:
      info->fromExternalReference = true;
      info->hasXrefDatabase = c.xrefs[b.index].resolved;
      Give(name, c.xrefs[b.index].block);
      break;
    case BlockRef::Kind::Named:
      Give(name, c.blocks[b.index].name);
      break;
  }
  return port::kOk;
}

port::Result SimHost::XrefFileName(port::Database db, long block, port::TextSink* path, bool* present) {
  SIM_DATABASE("DrawingDatabase::XrefFileName");
  SIM_BLOCK();
  *present = false;
  if (b.kind != BlockRef::Kind::Xref || !c.xrefs[b.index].resolved) return port::kOk;
  *present = true;
  Give(path, c.xrefs[b.index].path);
  return port::kOk;
}

port::Result SimHost::LayoutName(port::Database db, long block, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::LayoutName");
  SIM_BLOCK();
  if (b.kind != BlockRef::Kind::Model && b.kind != BlockRef::Kind::Layout)
    return Fail(port::kInvalidArgument, "eNotApplicable");
  Give(name, LayoutOf(c, b));
  return port::kOk;
}

port::Result SimHost::LayoutTabOrder(port::Database db, long block, long* tabOrder) {
  SIM_DATABASE("DrawingDatabase::LayoutTabOrder");
  SIM_BLOCK();
  if (b.kind == BlockRef::Kind::Model) *tabOrder = 0;
  else if (b.kind == BlockRef::Kind::Layout) *tabOrder = static_cast<long>(b.index) + 1;
  else return Fail(port::kInvalidArgument, "eNotApplicable");
  return port::kOk;
}

port::Result SimHost::ActiveLayoutName(port::Database db, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::ActiveLayoutName");
  Give(name, c.activeLayout);
  return port::kOk;
}

port::Result SimHost::CurrentSpaceBlock(port::Database db, long* block) {
  SIM_DATABASE("DrawingDatabase::CurrentSpaceBlock");
  *block = 0;
  for (std::size_t i = 0; i < c.layouts.size(); ++i)
    if (c.layouts[i] == c.activeLayout) *block = static_cast<long>(i) + 1;
  return port::kOk;
}

port::Result SimHost::EntityCount(port::Database db, long block, long* count) {
  SIM_DATABASE("DrawingDatabase::EntityCount");
  SIM_BLOCK();
  *count = static_cast<long>(Entities(c, b).size());
  return port::kOk;
}

port::Result SimHost::Entity(port::Database db, long block, long entity, port::EntityInfo* info) {
  SIM_DATABASE("DrawingDatabase::Entity");
  SIM_ENTITY();
  *info = port::EntityInfo();
  if (e.viewport) {
    info->kind = port::kEntityViewport;
    info->renderMode = e.viewport->renderMode;
    info->viewportNumber = e.viewport->number;
  } else {
    info->erased = e.entity->erased;
    if (e.entity->kind == EntityDesc::Kind::Image) info->kind = port::kEntityRasterImage;
    if (e.entity->kind == EntityDesc::Kind::Ole) {
      info->kind = port::kEntityOle2Frame;
      info->oleType = e.entity->linked ? port::kOleLinked : 2;
    }
  }
  return port::kOk;
}

port::Result SimHost::ImageFileName(port::Database db, long block, long entity, port::TextSink* path,
                                    bool* present) {
  SIM_DATABASE("DrawingDatabase::ImageFileName");
  SIM_ENTITY();
  *present = false;
  if (!e.entity || e.entity->kind != EntityDesc::Kind::Image) return Fail(port::kNoInterface, "eNotThatKindOfClass");
  *present = !e.entity->path.empty();
  Give(path, e.entity->path);
  return port::kOk;
}

port::Result SimHost::OleLinkPath(port::Database db, long block, long entity, port::TextSink* path, bool* present) {
  SIM_DATABASE("DrawingDatabase::OleLinkPath");
  SIM_ENTITY();
  *present = false;
  if (!e.entity || e.entity->kind != EntityDesc::Kind::Ole) return Fail(port::kNoInterface, "eNotThatKindOfClass");
  if (!e.entity->linked || e.entity->path.empty()) return port::kOk;
  *present = true;
  // The host copies the link into a buffer of 260 bytes.
  Give(path, e.entity->path.substr(0, 259));
  return port::kOk;
}

namespace {
const std::vector<std::string>* HyperlinksOf(const DrawingDescription& c, const BlockRef& b,
                                             const std::vector<EntityRef>& entities, long entity) {
  static const std::vector<std::string> none;
  if (entity < 0) return b.kind == BlockRef::Kind::Named ? &c.blocks[b.index].hyperlinks : &none;
  if (entity >= static_cast<long>(entities.size())) return nullptr;
  const EntityRef& e = entities[static_cast<std::size_t>(entity)];
  return e.entity ? &e.entity->hyperlinks : &none;
}
}  // namespace

port::Result SimHost::HasHyperlink(port::Database db, long block, long entity, bool* has) {
  SIM_DATABASE("DrawingDatabase::HasHyperlink");
  SIM_BLOCK();
  const std::vector<std::string>* links = HyperlinksOf(c, b, Entities(c, b), entity);
  if (!links) return Fail(port::kBadIndex, "eInvalidIndex");
  *has = !links->empty();
  return port::kOk;
}

port::Result SimHost::HyperlinkCount(port::Database db, long block, long entity, long* count) {
  SIM_DATABASE("DrawingDatabase::HyperlinkCount");
  SIM_BLOCK();
  const std::vector<std::string>* links = HyperlinksOf(c, b, Entities(c, b), entity);
  if (!links) return Fail(port::kBadIndex, "eInvalidIndex");
  *count = static_cast<long>(links->size());
  return port::kOk;
}

port::Result SimHost::Hyperlink(port::Database db, long block, long entity, long index, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::Hyperlink");
  SIM_BLOCK();
  const std::vector<std::string>* links = HyperlinksOf(c, b, Entities(c, b), entity);
  if (!links || index < 0 || index >= static_cast<long>(links->size())) return Fail(port::kBadIndex, "eInvalidIndex");
  Give(name, (*links)[static_cast<std::size_t>(index)]);
  return port::kOk;
}

port::Result SimHost::HasLayerStateManager(port::Database db, bool* exists) {
  SIM_DATABASE("DrawingDatabase::HasLayerStateManager");
  *exists = c.hasLayerStateManager;
  return port::kOk;
}

port::Result SimHost::LayerStateCount(port::Database db, long* count) {
  SIM_DATABASE("DrawingDatabase::LayerStateCount");
  if (!c.hasLayerStateManager) return Fail(port::kFail, "eNullObjectId");
  *count = static_cast<long>(c.layerStates.size());
  return port::kOk;
}

port::Result SimHost::LayerStateName(port::Database db, long index, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::LayerStateName");
  if (index < 0 || index >= static_cast<long>(c.layerStates.size())) return Fail(port::kBadIndex, "eInvalidIndex");
  Give(name, c.layerStates[static_cast<std::size_t>(index)]);
  return port::kOk;
}

port::Result SimHost::RestoreLayerState(port::Database db, const char* name, long* acadStatus) {
  SIM_DATABASE("DrawingDatabase::RestoreLayerState");
  *acadStatus = 3;  // eInvalidInput
  for (const std::string& s : c.layerStates)
    if (s == (name ? name : "")) *acadStatus = port::kAcadOk;
  if (*acadStatus == port::kAcadOk) {
    if (!IsLocked(HandleOf(*d))) *acadStatus = 71;  // eNotOpenForWrite: the bar must lock first
    else d->actions.push_back(std::string("layer state ") + name);
  }
  return port::kOk;
}

port::Result SimHost::ViewCount(port::Database db, long* count) {
  SIM_DATABASE("DrawingDatabase::ViewCount");
  *count = static_cast<long>(c.views.size());
  return port::kOk;
}

port::Result SimHost::ViewAt(port::Database db, long index, port::ViewRecordInfo* info, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::ViewAt");
  if (index < 0 || index >= static_cast<long>(c.views.size())) return Fail(port::kBadIndex, "eInvalidIndex");
  const NamedViewDesc& v = c.views[static_cast<std::size_t>(index)];
  info->paperSpace = v.paperSpace;
  info->dependent = v.dependent;
  info->centerX = v.centerX;
  info->centerY = v.centerY;
  Give(name, v.name);
  return port::kOk;
}

namespace {
NamedViewDesc* FindView(SimDocument& d, const char* name) {
  for (NamedViewDesc& v : d.content.views)
    if (v.name == (name ? name : "")) return &v;
  return nullptr;
}

// The items of one application: its 1001 entry and what follows up to the next.
std::vector<std::pair<long, std::string>> XDataOf(const NamedViewDesc& v, const std::string& application) {
  std::vector<std::pair<long, std::string>> out;
  bool inside = false;
  for (const auto& item : v.xdata) {
    if (item.first == 1001) inside = item.second == application;
    if (inside) out.push_back(item);
  }
  return out;
}
}  // namespace

port::Result SimHost::ViewXDataCount(port::Database db, const char* view, const char* application, long* count) {
  SIM_DATABASE("DrawingDatabase::ViewXDataCount");
  (void)c;
  NamedViewDesc* v = FindView(*d, view);
  if (!v) return Fail(port::kInvalidArgument, "eKeyNotFound");
  *count = static_cast<long>(XDataOf(*v, application ? application : "").size());
  return port::kOk;
}

port::Result SimHost::ViewXDataItem(port::Database db, const char* view, const char* application, long index,
                                    long* groupCode, port::TextSink* text) {
  SIM_DATABASE("DrawingDatabase::ViewXDataItem");
  (void)c;
  NamedViewDesc* v = FindView(*d, view);
  if (!v) return Fail(port::kInvalidArgument, "eKeyNotFound");
  auto items = XDataOf(*v, application ? application : "");
  if (index < 0 || index >= static_cast<long>(items.size())) return Fail(port::kBadIndex, "eInvalidIndex");
  *groupCode = items[static_cast<std::size_t>(index)].first;
  Give(text, items[static_cast<std::size_t>(index)].second);
  return port::kOk;
}

port::Result SimHost::SetViewPaperSpace(port::Database db, const char* view, bool paperSpace) {
  SIM_DATABASE("DrawingDatabase::SetViewPaperSpace");
  (void)c;
  NamedViewDesc* v = FindView(*d, view);
  if (!v) return Fail(port::kInvalidArgument, "eKeyNotFound");
  if (!IsLocked(HandleOf(*d))) return Fail(port::kAccessDenied, "eLockViolation");
  v->paperSpace = paperSpace;
  ++d->dbmod;
  return port::kOk;
}

port::Result SimHost::SetViewXData(port::Database db, const char* view, const port::XDataItem* items, long count) {
  SIM_DATABASE("DrawingDatabase::SetViewXData");
  NamedViewDesc* v = FindView(*d, view);
  if (!v) return Fail(port::kInvalidArgument, "eKeyNotFound");
  if (!IsLocked(HandleOf(*d))) return Fail(port::kAccessDenied, "eLockViolation");
  if (count < 1 || items[0].groupCode != 1001) return Fail(port::kInvalidArgument, "eBadDxfSequence");
  bool known = false;
  for (const std::string& a : c.regApps) known = known || a == (items[0].text ? items[0].text : "");
  if (!known) return Fail(port::kInvalidArgument, "eRegappIdNotFound");
  // setXData replaces the data of the applications it names and keeps the others.
  std::vector<std::pair<long, std::string>> kept;
  bool replaced = false;
  for (const auto& item : v->xdata) {
    if (item.first == 1001) replaced = item.second == items[0].text;
    if (!replaced) kept.push_back(item);
  }
  for (long i = 0; i < count; ++i) kept.push_back({items[i].groupCode, items[i].text ? items[i].text : ""});
  v->xdata = kept;
  ++d->dbmod;
  return port::kOk;
}

port::Result SimHost::AddRegApp(port::Database db, const char* application, long* acadStatus) {
  SIM_DATABASE("DrawingDatabase::AddRegApp");
  (void)c;
  std::string name = application ? application : "";
  for (const std::string& a : d->content.regApps)
    if (a == name) return *acadStatus = port::kAcadDuplicateRecordName, port::kOk;
  if (!IsLocked(HandleOf(*d))) return *acadStatus = 83, port::kOk;  // eLockViolation
  d->content.regApps.push_back(name);
  *acadStatus = port::kAcadOk;
  return port::kOk;
}

port::Result SimHost::ErrorStatusText(long acadStatus, port::TextSink* text) {
  if (port::Result r = Enter("DrawingDatabase::ErrorStatusText")) return r;
  const char* name = acadStatus == 0    ? "eOk"
                     : acadStatus == 3  ? "eInvalidInput"
                     : acadStatus == 71 ? "eNotOpenForWrite"
                     : acadStatus == 83 ? "eLockViolation"
                     : acadStatus == 95 ? "eDuplicateRecordName"
                                        : "eUnknown";
  Give(text, name);
  return port::kOk;
}

port::Result SimHost::HasSummaryInfo(port::Database db, bool* present) {
  SIM_DATABASE("DrawingDatabase::HasSummaryInfo");
  (void)c;
  *present = true;
  return port::kOk;
}

port::Result SimHost::SummaryText(port::Database db, long field, port::TextSink* value, long* acadStatus) {
  SIM_DATABASE("DrawingDatabase::SummaryText");
  if (field < 0 || field > 7) return *acadStatus = 3, port::kOk;
  *acadStatus = port::kAcadOk;
  Give(value, c.summary[field]);
  return port::kOk;
}

port::Result SimHost::CustomSummaryCount(port::Database db, long* count) {
  SIM_DATABASE("DrawingDatabase::CustomSummaryCount");
  *count = static_cast<long>(c.custom.size());
  return port::kOk;
}

port::Result SimHost::CustomSummary(port::Database db, long index, port::TextSink* key, port::TextSink* value,
                                    long* acadStatus) {
  SIM_DATABASE("DrawingDatabase::CustomSummary");
  if (index < 0 || index >= static_cast<long>(c.custom.size())) return *acadStatus = 3, port::kOk;
  *acadStatus = port::kAcadOk;
  Give(key, c.custom[static_cast<std::size_t>(index)].first);
  Give(value, c.custom[static_cast<std::size_t>(index)].second);
  return port::kOk;
}

#undef SIM_ENTITY
#undef SIM_BLOCK
#undef SIM_DATABASE

}  // namespace tavlet::sim
