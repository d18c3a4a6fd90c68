#include "content/layouts.h"

#include "content/db/document_lock.h"
#include "content/db/objects.h"
#include "host/com_error.h"

namespace tavlet::content {

bool ListLayouts(port::DrawingDatabase& database, port::Database db,
                 std::vector<LayoutInfo>& layouts) {
  layouts.clear();
  db::BlockTable table = db::BlockTable::Open(database, db);
  if (!table) return false;
  host::StringSink active;
  database.ActiveLayoutName(db, &active);
  db::RecordWalk walk = table.Records();
  port::ObjectId id = port::kNullObjectId;
  while (walk.Next(id)) {
    db::BlockRecord record = db::BlockRecord::Open(database, id);
    port::BlockRecordInfo info;
    LayoutInfo layout;
    if (!record.Info(info, &layout.blockName) || !info.isLayout) continue;
    std::optional<std::string> name = record.LayoutName(&layout.tabOrder);
    if (!name) continue;
    layout.blockId = id;
    layout.layoutName = std::move(*name);
    layout.isActive = layout.layoutName == active.text;
    layout.isModelSpace = info.isModelSpace;
    layouts.push_back(std::move(layout));
  }
  return true;
}

void CollectLayouts(int& nextId, IdMap<std::string>& layouts, port::DrawingDatabase& database,
                    port::Database db, bool fill) {
  layouts.clear();
  std::vector<LayoutInfo> found;
  if (db && ListLayouts(database, db, found))
    for (LayoutInfo& layout : found) layouts.emplace(nextId++, std::move(layout.layoutName));
  if ((!db || fill) && layouts.empty()) layouts.emplace(nextId++, kNotFound);
}

void CollectLayerStates(int& nextId, IdMap<std::string>& states, port::DrawingDatabase& database,
                        port::Database db, bool fill) {
  states.clear();
  port::ObjectId id = port::kNullObjectId;
  if (db && database.LayerStatesDictionary(db, &id) == port::kOk && id != port::kNullObjectId) {
    db::Dictionary dictionary = db::Dictionary::Open(database, id);
    db::EntryWalk walk = dictionary.Entries();
    std::string name;
    while (walk.Next(name)) states.emplace(nextId++, name);
  }
  if ((!db || fill) && states.empty()) states.emplace(nextId++, kNotFound);
}

std::optional<long> RestoreLayerState(port::HostSession& session, port::Document lockDocument,
                                      port::Database db, const std::string& name) {
  bool hasManager = false;
  if (!db || port::Failed(session.Databases()->HasLayerStateManager(db, &hasManager)) ||
      !hasManager)
    return std::nullopt;
  db::DocumentLock lock(*session.Documents(), lockDocument);
  long status = port::kAcadOk;
  if (port::Failed(session.Databases()->RestoreLayerState(db, name.c_str(), &status)))
    return std::nullopt;
  return status;
}

}  // namespace tavlet::content
