#include "content/db/objects.h"

#include "host/com_error.h"

namespace tavlet::content::db {

namespace {

// The text a call gives, or nothing when it fails.
template <class Call>
std::optional<std::string> TextOf(Call call) {
  host::StringSink sink;
  if (port::Failed(call(&sink))) return std::nullopt;
  return std::move(sink.text);
}

// The object a call hands out, or none when the call fails.
template <class T, class Call>
host::PortPtr<T> Received(Call call) {
  host::PortPtr<T> object;
  if (port::Failed(call(object.Receive()))) return {};
  return object;
}

class XDataCollector final : public port::XDataSink {
 public:
  void TAVLET_PORT_CALL Item(long groupCode, const char* text, long length) override {
    items.emplace_back(groupCode, std::string(text ? text : "", text && length > 0 ? length : 0));
  }
  XDataList items;
};

}  // namespace

std::vector<std::string> HyperlinkNames(port::HyperlinkHolder& holder) {
  std::vector<std::string> names;
  host::PortPtr<port::HyperlinkCollection> links;
  if (port::Failed(holder.Hyperlinks(links.Receive())) || !links) return names;
  long count = 0;
  if (port::Failed(links->Count(&count))) return names;
  for (long i = 0; i < count; ++i)
    if (auto name = TextOf([&](port::TextSink* s) { return links->Name(i, s); }))
      names.push_back(std::move(*name));
  return names;
}

bool HasHyperlink(port::HyperlinkHolder& holder) {
  bool has = false;
  return port::Succeeded(holder.HasHyperlink(&has)) && has;
}

std::optional<std::string> Entity::ImageFile() const {
  if (!p_) return std::nullopt;
  bool present = false;
  auto path = TextOf([&](port::TextSink* s) { return p_->ImageFileName(s, &present); });
  if (!path || !present) return std::nullopt;
  return path;
}

std::optional<std::string> Entity::OleLink(long bufferSize) const {
  if (!p_ || bufferSize <= 0) return std::nullopt;
  std::string buffer(static_cast<std::size_t>(bufferSize), '\0');
  bool present = false;
  if (port::Failed(p_->OleLinkPath(buffer.data(), bufferSize, &present)) || !present)
    return std::nullopt;
  buffer.resize(buffer.find('\0') == std::string::npos ? buffer.size() : buffer.find('\0'));
  return buffer;
}

std::vector<std::string> Entity::Hyperlinks() const {
  if (!p_) return {};
  return HyperlinkNames(*p_.Get());
}

bool EntityWalk::Next(Entity& entity) {
  entity = Entity();
  if (!p_) return false;
  port::Result r = p_->Next(entity.p_.Receive(), &entity.info_);
  if (r == port::kOk && entity.p_) return true;
  entity = Entity();
  p_ = {};
  return false;
}

bool RecordWalk::Next(port::ObjectId& id) {
  id = port::kNullObjectId;
  if (!p_) return false;
  if (p_->Next(&id) == port::kOk) return true;
  p_ = {};
  return false;
}

BlockRecord BlockRecord::Open(port::DrawingDatabase& database, port::ObjectId id) {
  BlockRecord record;
  record.p_ = Received<port::BlockRecord>(
      [&](port::BlockRecord** out) { return database.OpenBlockRecord(id, out); });
  return record;
}

bool BlockRecord::Info(port::BlockRecordInfo& info, std::string* name) const {
  if (!p_) return false;
  host::StringSink sink;
  if (port::Failed(p_->Info(&info, &sink))) return false;
  if (name) *name = std::move(sink.text);
  return true;
}

std::optional<std::string> BlockRecord::XrefFile() const {
  if (!p_) return std::nullopt;
  bool present = false;
  auto path = TextOf([&](port::TextSink* s) { return p_->XrefFileName(s, &present); });
  if (!path || !present) return std::nullopt;
  return path;
}

std::optional<std::string> BlockRecord::LayoutName(long* tabOrder) const {
  if (!p_) return std::nullopt;
  long order = 0;
  auto name = TextOf([&](port::TextSink* s) { return p_->Layout(s, &order); });
  if (name && tabOrder) *tabOrder = order;
  return name;
}

EntityWalk BlockRecord::Entities() const {
  if (!p_) return EntityWalk();
  return EntityWalk(Received<port::EntityIterator>(
      [&](port::EntityIterator** out) { return p_->NewIterator(out); }));
}

std::vector<std::string> BlockRecord::Hyperlinks() const {
  if (!p_) return {};
  return HyperlinkNames(*p_.Get());
}

BlockTable BlockTable::Open(port::DrawingDatabase& database, port::Database db) {
  BlockTable table;
  table.p_ = Received<port::SymbolTable>(
      [&](port::SymbolTable** out) { return database.OpenBlockTable(db, out); });
  return table;
}

RecordWalk RecordsOf(port::SymbolTable* table) {
  if (!table) return RecordWalk();
  return RecordWalk(Received<port::SymbolTableIterator>(
      [&](port::SymbolTableIterator** out) { return table->NewIterator(out); }));
}

RecordWalk BlockTable::Records() const { return RecordsOf(p_.Get()); }

ViewRecord ViewRecord::Open(port::DrawingDatabase& database, port::ObjectId id) {
  return ViewRecord(Received<port::ViewRecord>(
      [&](port::ViewRecord** out) { return database.OpenViewRecord(id, out); }));
}

bool ViewRecord::Info(port::ViewRecordInfo& info, std::string& name) const {
  if (!p_) return false;
  host::StringSink sink;
  if (port::Failed(p_->Info(&info, &sink))) return false;
  name = std::move(sink.text);
  return true;
}

XDataList ViewRecord::XData(const char* application) const {
  XDataCollector collector;
  if (!p_ || port::Failed(p_->XData(application, &collector))) return {};
  return std::move(collector.items);
}

bool ViewRecord::SetPaperSpace(bool paperSpace) const {
  return p_ && port::Succeeded(p_->SetPaperSpace(paperSpace));
}

bool ViewRecord::SetXData(const XDataList& items) const {
  if (!p_) return false;
  std::vector<port::XDataItem> list;
  for (const auto& [code, text] : items) list.push_back({code, text.c_str()});
  return port::Succeeded(p_->SetXData(list.data(), static_cast<long>(list.size())));
}

ViewTable ViewTable::Open(port::DrawingDatabase& database, port::Database db) {
  ViewTable table;
  table.p_ = Received<port::ViewTable>(
      [&](port::ViewTable** out) { return database.OpenViewTable(db, out); });
  return table;
}

RecordWalk ViewTable::Records() const { return RecordsOf(p_.Get()); }

ViewRecord ViewTable::GetAt(const std::string& name, bool forWrite) const {
  host::PortPtr<port::ViewRecord> record;
  if (!p_ || p_->GetAt(name.c_str(), forWrite, record.Receive()) != port::kOk) return ViewRecord();
  return ViewRecord(std::move(record));
}

bool EntryWalk::Next(std::string& name) {
  if (!p_) return false;
  host::StringSink sink;
  if (p_->Next(&sink) == port::kOk) {
    name = std::move(sink.text);
    return true;
  }
  p_ = {};
  return false;
}

Dictionary Dictionary::Open(port::DrawingDatabase& database, port::ObjectId id) {
  Dictionary dictionary;
  dictionary.p_ = Received<port::Dictionary>(
      [&](port::Dictionary** out) { return database.OpenDictionary(id, out); });
  return dictionary;
}

EntryWalk Dictionary::Entries() const {
  if (!p_) return EntryWalk();
  return EntryWalk(Received<port::DictionaryIterator>(
      [&](port::DictionaryIterator** out) { return p_->NewIterator(out); }));
}

}  // namespace tavlet::content::db
