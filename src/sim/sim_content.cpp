#include "sim/sim_content.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <tuple>

#include "sim/sim_automation.h"
#include "sim/sim_host.h"
#include "text/codepage.h"

namespace tavlet::sim {

namespace {

void Give(port::TextSink* sink, const std::string& s) {
  if (sink) sink->Assign(s.data(), static_cast<long>(s.size()));
}

constexpr const char* kErased = "eWasErased";

// Counts itself open from its making to its last Release.
template <class Interface>
class SimObject : public SimCounted<Interface> {
 public:
  SimObject(SimHost& host, SimDocument& doc) : host_(host), doc_(doc) {
    ++host_.OpenDatabaseObjects();
  }
  ~SimObject() override { --host_.OpenDatabaseObjects(); }

 protected:
  // Counts the call and applies a planned fault; a drawing closed meanwhile
  // fails every call, as an object of a destroyed database would.
  port::Result Enter(const char* call) {
    if (port::Result r = host_.Enter(call)) return r;
    if (doc_.closed) return host_.Fail(port::kUnexpected, kErased);
    return port::kOk;
  }
  const DrawingDescription& Content() const { return doc_.content; }

  SimHost& host_;
  SimDocument& doc_;
};

class SimHyperlinks final : public SimObject<port::HyperlinkCollection> {
 public:
  SimHyperlinks(SimHost& host, SimDocument& doc, const std::vector<std::string>& links)
      : SimObject(host, doc), links_(links) {}
  port::Result TAVLET_PORT_CALL Count(long* count) override {
    if (port::Result r = Enter("HyperlinkCollection::Count")) return r;
    *count = static_cast<long>(links_.size());
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Name(long index, port::TextSink* name) override {
    if (port::Result r = Enter("HyperlinkCollection::Name")) return r;
    if (index < 0 || index >= static_cast<long>(links_.size()))
      return host_.Fail(port::kBadIndex, "eInvalidIndex");
    Give(name, links_[static_cast<std::size_t>(index)]);
    return port::kOk;
  }

 private:
  const std::vector<std::string>& links_;
};

// The hyperlink protocol extension's two questions, for entities and records.
template <class Interface>
class SimHolder : public SimObject<Interface> {
 public:
  SimHolder(SimHost& host, SimDocument& doc, const char* hasCall, const char* getCall,
            const std::vector<std::string>& links)
      : SimObject<Interface>(host, doc), hasCall_(hasCall), getCall_(getCall), links_(links) {}
  port::Result TAVLET_PORT_CALL HasHyperlink(bool* has) override {
    if (port::Result r = this->Enter(hasCall_)) return r;
    *has = !links_.empty();
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Hyperlinks(port::HyperlinkCollection** links) override {
    *links = nullptr;
    if (port::Result r = this->Enter(getCall_)) return r;
    *links = new SimHyperlinks(this->host_, this->doc_, links_);
    return port::kOk;
  }

 private:
  const char* hasCall_;
  const char* getCall_;
  const std::vector<std::string>& links_;
};

const std::vector<std::string>& NoLinks() {
  static const std::vector<std::string> none;
  return none;
}

class SimEntity final : public SimHolder<port::Entity> {
 public:
  SimEntity(SimHost& host, SimDocument& doc, const EntityDesc* entity)
      : SimHolder(host, doc, "Entity::HasHyperlink", "Entity::Hyperlinks",
                  entity ? entity->hyperlinks : NoLinks()),
        entity_(entity) {}

  port::Result TAVLET_PORT_CALL ImageFileName(port::TextSink* path, bool* present) override {
    *present = false;
    if (port::Result r = Enter("Entity::ImageFileName")) return r;
    if (!entity_ || entity_->kind != EntityDesc::Kind::Image)
      return host_.Fail(port::kNoInterface, "eNotThatKindOfClass");
    *present = !entity_->path.empty();
    Give(path, entity_->path);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL OleLinkPath(char* buffer, long size, bool* present) override {
    *present = false;
    if (port::Result r = Enter("Entity::OleLinkPath")) return r;
    if (!buffer || size <= 0) return host_.Fail(port::kInvalidArgument, "eInvalidInput");
    buffer[0] = 0;
    if (!entity_ || entity_->kind != EntityDesc::Kind::Ole)
      return host_.Fail(port::kNoInterface, "eNotThatKindOfClass");
    if (!entity_->linked || entity_->path.empty()) return port::kOk;
    // The frame copies what fits, as lstrcpyn does, cut at the byte.
    std::size_t n = std::min(entity_->path.size(), static_cast<std::size_t>(size - 1));
    std::memcpy(buffer, entity_->path.data(), n);
    buffer[n] = 0;
    *present = true;
    return port::kOk;
  }

 private:
  const EntityDesc* entity_;  // null for a viewport
};

}  // namespace

// The entities of each block, erased ones left out, so that a walk over a
// block doesn't search all of the drawing's entities. Made again when the
// entities are replaced (a test may set a drawing's content after opening it).
struct SimEntityIndex {
  const EntityDesc* data = nullptr;
  std::size_t size = 0;
  std::map<std::string, std::vector<const EntityDesc*>> ofLayout, ofBlock;
};

namespace {

// The index, held for the walk, and the block's list in it (null for none).
std::pair<std::shared_ptr<SimEntityIndex>, const std::vector<const EntityDesc*>*> EntitiesOf(
    SimDocument& doc, const SimBlock& block) {
  const DrawingDescription& c = doc.content;
  if (!doc.entityIndex || doc.entityIndex->data != c.entities.data() ||
      doc.entityIndex->size != c.entities.size()) {
    auto index = std::make_shared<SimEntityIndex>();
    index->data = c.entities.data();
    index->size = c.entities.size();
    for (const EntityDesc& e : c.entities)
      if (!e.erased)
        (e.block.empty() ? index->ofLayout[e.layout] : index->ofBlock[e.block]).push_back(&e);
    doc.entityIndex = std::move(index);
  }
  const auto& map =
      block.kind == SimBlock::Kind::Named ? doc.entityIndex->ofBlock : doc.entityIndex->ofLayout;
  const std::string* owner = block.kind == SimBlock::Kind::Model    ? nullptr
                             : block.kind == SimBlock::Kind::Layout ? &c.layouts[block.index]
                             : block.kind == SimBlock::Kind::Named  ? &c.blocks[block.index].name
                                                                    : &c.xrefs[block.index].block;
  if (block.kind == SimBlock::Kind::Xref) return {doc.entityIndex, nullptr};
  auto it = map.find(owner ? *owner : std::string("Model"));
  return {doc.entityIndex, it == map.end() ? nullptr : &it->second};
}

class SimEntityIterator final : public SimObject<port::EntityIterator> {
 public:
  SimEntityIterator(SimHost& host, SimDocument& doc, const SimBlock& block) : SimObject(host, doc) {
    std::tie(index_, entities_) = EntitiesOf(doc, block);
    if (block.kind == SimBlock::Kind::Layout)
      for (const ViewportDesc& v : Content().viewports)
        if (v.layout == Content().layouts[block.index]) viewports_.push_back(&v);
  }

  port::Result TAVLET_PORT_CALL Next(port::Entity** entity, port::EntityInfo* info) override {
    *entity = nullptr;
    *info = port::EntityInfo();
    if (port::Result r = Enter("EntityIterator::Next")) return r;
    std::size_t count = entities_ ? entities_->size() : 0;
    if (next_ < count) {
      const EntityDesc& e = *(*entities_)[next_++];
      if (e.kind == EntityDesc::Kind::Image) info->kind = port::kEntityRasterImage;
      if (e.kind == EntityDesc::Kind::Ole) {
        info->kind = port::kEntityOle2Frame;
        info->oleType = e.linked ? port::kOleLinked : 2;
      }
      *entity = new SimEntity(host_, doc_, &e);
      return port::kOk;
    }
    std::size_t v = next_ - count;
    if (v >= viewports_.size()) return port::kFalse;
    ++next_;
    info->kind = port::kEntityViewport;
    info->renderMode = viewports_[v]->renderMode;
    info->viewportNumber = viewports_[v]->number;
    *entity = new SimEntity(host_, doc_, nullptr);
    return port::kOk;
  }

 private:
  std::shared_ptr<SimEntityIndex> index_;
  const std::vector<const EntityDesc*>* entities_ = nullptr;
  std::vector<const ViewportDesc*> viewports_;
  std::size_t next_ = 0;
};

class SimBlockRecord final : public SimHolder<port::BlockRecord> {
 public:
  SimBlockRecord(SimHost& host, SimDocument& doc, const SimBlock& block)
      : SimHolder(host, doc, "BlockRecord::HasHyperlink", "BlockRecord::Hyperlinks",
                  block.kind == SimBlock::Kind::Named ? doc.content.blocks[block.index].hyperlinks
                                                      : NoLinks()),
        block_(block) {}

  port::Result TAVLET_PORT_CALL Info(port::BlockRecordInfo* info, port::TextSink* name) override {
    *info = port::BlockRecordInfo();
    if (port::Result r = Enter("BlockRecord::Info")) return r;
    const DrawingDescription& c = Content();
    switch (block_.kind) {
      case SimBlock::Kind::Model:
        info->isLayout = info->isModelSpace = true;
        Give(name, "*Model_Space");
        break;
      case SimBlock::Kind::Layout:
        info->isLayout = true;
        Give(name, block_.index == 0 ? std::string("*Paper_Space")
                                     : "*Paper_Space" + std::to_string(block_.index - 1));
        break;
      case SimBlock::Kind::Xref:
        info->fromExternalReference = true;
        Give(name, c.xrefs[block_.index].block);
        break;
      case SimBlock::Kind::Named: {
        const std::string& n = c.blocks[block_.index].name;
        // The host names anonymous blocks "*U1", "*D2", ... and blocks that
        // come from a reference "XREF|NAME".
        info->isAnonymous = !n.empty() && n[0] == '*';
        info->isDependent = n.find('|') != std::string::npos;
        Give(name, n);
        break;
      }
    }
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL XrefFileName(port::TextSink* path, bool* present) override {
    *present = false;
    if (port::Result r = Enter("BlockRecord::XrefFileName")) return r;
    if (block_.kind != SimBlock::Kind::Xref) return port::kOk;
    const XrefDesc& x = Content().xrefs[block_.index];
    if (!x.resolved) return port::kOk;
    *present = true;
    Give(path, x.path);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Layout(port::TextSink* name, long* tabOrder) override {
    *tabOrder = 0;
    if (port::Result r = Enter("BlockRecord::Layout")) return r;
    if (block_.kind == SimBlock::Kind::Model) {
      Give(name, "Model");
    } else if (block_.kind == SimBlock::Kind::Layout) {
      Give(name, Content().layouts[block_.index]);
      *tabOrder = static_cast<long>(block_.index) + 1;
    } else {
      return host_.Fail(port::kInvalidArgument, "eNullObjectId");
    }
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL NewIterator(port::EntityIterator** entities) override {
    *entities = nullptr;
    if (port::Result r = Enter("BlockRecord::NewIterator")) return r;
    *entities = new SimEntityIterator(host_, doc_, block_);
    return port::kOk;
  }

 private:
  SimBlock block_;
};

class SimIdIterator final : public SimObject<port::SymbolTableIterator> {
 public:
  SimIdIterator(SimHost& host, SimDocument& doc, std::vector<port::ObjectId> ids)
      : SimObject(host, doc), ids_(std::move(ids)) {}
  port::Result TAVLET_PORT_CALL Next(port::ObjectId* record) override {
    *record = port::kNullObjectId;
    if (port::Result r = Enter("SymbolTableIterator::Next")) return r;
    if (next_ >= ids_.size()) return port::kFalse;
    *record = ids_[next_++];
    return port::kOk;
  }

 private:
  std::vector<port::ObjectId> ids_;
  std::size_t next_ = 0;
};

class SimBlockTable final : public SimObject<port::SymbolTable> {
 public:
  using SimObject::SimObject;
  port::Result TAVLET_PORT_CALL NewIterator(port::SymbolTableIterator** records) override {
    *records = nullptr;
    if (port::Result r = Enter("BlockTable::NewIterator")) return r;
    std::vector<port::ObjectId> ids;
    std::size_t n = SimBlocksOf(Content()).size();
    for (std::size_t i = 0; i < n; ++i)
      ids.push_back(MakeSimObjectId(doc_, SimObjectKind::BlockRecord, i));
    *records = new SimIdIterator(host_, doc_, std::move(ids));
    return port::kOk;
  }
};

class SimViewRecord final : public SimObject<port::ViewRecord> {
 public:
  SimViewRecord(SimHost& host, SimDocument& doc, std::size_t view, bool forWrite)
      : SimObject(host, doc), view_(view), forWrite_(forWrite) {}

  port::Result TAVLET_PORT_CALL Info(port::ViewRecordInfo* info, port::TextSink* name) override {
    *info = port::ViewRecordInfo();
    if (port::Result r = Enter("ViewRecord::Info")) return r;
    const NamedViewDesc& v = View();
    info->paperSpace = v.paperSpace;
    info->dependent = v.dependent;
    info->centerX = v.centerX;
    info->centerY = v.centerY;
    Give(name, v.name);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL XData(const char* application, port::XDataSink* items) override {
    if (port::Result r = Enter("ViewRecord::XData")) return r;
    std::string wanted = application ? application : "";
    bool inside = false;
    for (const auto& [code, text] : View().xdata) {
      if (code == 1001) inside = text == wanted;
      if (inside) items->Item(code, text.c_str(), static_cast<long>(text.size()));
    }
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL SetPaperSpace(bool paperSpace) override {
    if (port::Result r = Writable("ViewRecord::SetPaperSpace")) return r;
    View().paperSpace = paperSpace;
    ++doc_.dbmod;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL SetXData(const port::XDataItem* items, long count) override {
    if (port::Result r = Writable("ViewRecord::SetXData")) return r;
    if (!items || count < 1 || items[0].groupCode != 1001 || !items[0].text)
      return host_.Fail(port::kInvalidArgument, "eBadDxfSequence");
    bool known = false;
    for (const std::string& a : Content().regApps) known = known || a == items[0].text;
    if (!known) return host_.Fail(port::kInvalidArgument, "eRegappIdNotFound");
    // setXData replaces the data of the application it names and keeps the others.
    std::vector<std::pair<long, std::string>> kept;
    bool replaced = false;
    for (const auto& item : View().xdata) {
      if (item.first == 1001) replaced = item.second == items[0].text;
      if (!replaced) kept.push_back(item);
    }
    for (long i = 0; i < count; ++i)
      kept.push_back({items[i].groupCode, items[i].text ? items[i].text : ""});
    View().xdata = std::move(kept);
    ++doc_.dbmod;
    return port::kOk;
  }

 private:
  NamedViewDesc& View() { return doc_.content.views[view_]; }
  port::Result Writable(const char* call) {
    if (port::Result r = Enter(call)) return r;
    if (!forWrite_) return host_.Fail(port::kAccessDenied, "eNotOpenForWrite");
    if (!host_.IsLocked(host_.HandleOf(doc_)))
      return host_.Fail(port::kAccessDenied, "eLockViolation");
    return port::kOk;
  }

  std::size_t view_;
  bool forWrite_;
};

class SimViewTable final : public SimObject<port::ViewTable> {
 public:
  using SimObject::SimObject;
  port::Result TAVLET_PORT_CALL NewIterator(port::SymbolTableIterator** records) override {
    *records = nullptr;
    if (port::Result r = Enter("ViewTable::NewIterator")) return r;
    std::vector<port::ObjectId> ids;
    for (std::size_t i = 0; i < Content().views.size(); ++i)
      ids.push_back(MakeSimObjectId(doc_, SimObjectKind::ViewRecord, i));
    *records = new SimIdIterator(host_, doc_, std::move(ids));
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL GetAt(const char* name, bool forWrite,
                                      port::ViewRecord** record) override {
    *record = nullptr;
    if (port::Result r = Enter("ViewTable::GetAt")) return r;
    // Symbol table names compare without regard to case.
    const std::vector<NamedViewDesc>& views = Content().views;
    for (std::size_t i = 0; i < views.size(); ++i)
      if (text::Mbsicmp(views[i].name, name ? name : "") == 0) {
        *record = new SimViewRecord(host_, doc_, i, forWrite);
        return port::kOk;
      }
    return port::kFalse;
  }
};

class SimDictionaryIterator final : public SimObject<port::DictionaryIterator> {
 public:
  using SimObject::SimObject;
  port::Result TAVLET_PORT_CALL Next(port::TextSink* name) override {
    if (port::Result r = Enter("DictionaryIterator::Next")) return r;
    if (next_ >= Content().layerStates.size()) return port::kFalse;
    Give(name, Content().layerStates[next_++]);
    return port::kOk;
  }

 private:
  std::size_t next_ = 0;
};

class SimLayerStates final : public SimObject<port::Dictionary> {
 public:
  using SimObject::SimObject;
  port::Result TAVLET_PORT_CALL NewIterator(port::DictionaryIterator** entries) override {
    *entries = nullptr;
    if (port::Result r = Enter("Dictionary::NewIterator")) return r;
    *entries = new SimDictionaryIterator(host_, doc_);
    return port::kOk;
  }
};

constexpr int kSerialShift = 44;
constexpr int kKindShift = 40;
constexpr port::ObjectId kIndexMask = (port::ObjectId(1) << kKindShift) - 1;

}  // namespace

std::vector<SimBlock> SimBlocksOf(const DrawingDescription& c) {
  std::vector<SimBlock> out{{SimBlock::Kind::Model, 0}};
  for (std::size_t i = 0; i < c.layouts.size(); ++i) out.push_back({SimBlock::Kind::Layout, i});
  for (std::size_t i = 0; i < c.xrefs.size(); ++i) out.push_back({SimBlock::Kind::Xref, i});
  for (std::size_t i = 0; i < c.blocks.size(); ++i) out.push_back({SimBlock::Kind::Named, i});
  return out;
}

port::ObjectId MakeSimObjectId(const SimDocument& doc, SimObjectKind kind, std::size_t index) {
  return (static_cast<port::ObjectId>(doc.serial) << kSerialShift) |
         (static_cast<port::ObjectId>(kind) << kKindShift) |
         (static_cast<port::ObjectId>(index) & kIndexMask);
}

SimDocument* SimObjectOf(SimHost& host, port::ObjectId id, SimObjectKind kind, std::size_t* index) {
  if (((id >> kKindShift) & 0xF) != static_cast<port::ObjectId>(kind)) return nullptr;
  int serial = static_cast<int>(id >> kSerialShift);
  *index = static_cast<std::size_t>(id & kIndexMask);
  for (port::Document doc : host.OpenDocuments()) {
    SimDocument* d = host.Find(doc);
    if (d && d->serial == serial) return d;
  }
  return nullptr;
}

port::SymbolTable* NewSimBlockTable(SimHost& host, SimDocument& doc) {
  return new SimBlockTable(host, doc);
}
port::ViewTable* NewSimViewTable(SimHost& host, SimDocument& doc) {
  return new SimViewTable(host, doc);
}
port::BlockRecord* NewSimBlockRecord(SimHost& host, SimDocument& doc, std::size_t block) {
  return new SimBlockRecord(host, doc, SimBlocksOf(doc.content)[block]);
}
port::ViewRecord* NewSimViewRecord(SimHost& host, SimDocument& doc, std::size_t view,
                                   bool forWrite) {
  return new SimViewRecord(host, doc, view, forWrite);
}
port::Dictionary* NewSimLayerStates(SimHost& host, SimDocument& doc) {
  return new SimLayerStates(host, doc);
}

}  // namespace tavlet::sim
