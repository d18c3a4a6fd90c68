#include "content/views.h"

#include <map>

#include "content/db/document_lock.h"
#include "content/db/objects.h"
#include "content/layouts.h"
#include "host/com_error.h"
#include "text/codepage.h"

namespace tavlet::content {

namespace {

struct MbscmpLess {
  bool operator()(const std::string& a, const std::string& b) const {
    return text::Mbscmp(a, b) < 0;
  }
};

port::Database DatabaseOf(port::HostSession& session, port::Document doc) {
  port::Database db = nullptr;
  if (!doc || port::Failed(session.Documents()->DatabaseOf(doc, &db))) return nullptr;
  return db;
}

}  // namespace

void CollectViews(int& nextId, IdMap<ViewEntry>& views, port::DrawingDatabase& database,
                  port::Database db, bool fill) {
  views.clear();
  std::map<std::string, port::ObjectId, MbscmpLess> byName;
  if (db) {
    db::ViewTable table = db::ViewTable::Open(database, db);
    db::RecordWalk walk = table.Records();
    port::ObjectId id = port::kNullObjectId;
    while (walk.Next(id)) {
      port::ViewRecordInfo info;
      std::string name;
      if (db::ViewRecord::Open(database, id).Info(info, name)) byName.emplace(std::move(name), id);
    }
  }
  for (const auto& [name, id] : byName) {
    db::ViewRecord record = db::ViewRecord::Open(database, id);
    port::ViewRecordInfo info;
    ViewEntry entry;
    if (!record.Info(info, entry.name)) continue;
    entry.isModelView = !info.paperSpace;
    entry.centerX = info.centerX;
    entry.centerY = info.centerY;
    if (info.paperSpace) entry.layout = ReadViewLayout(entry.name, database, db);
    views.emplace(nextId++, std::move(entry));
  }
  if ((!db || fill) && views.empty()) {
    ViewEntry none;
    none.name = kNotFound;
    views.emplace(nextId++, std::move(none));
  }
}

std::string ReadViewLayout(const std::string& view, port::DrawingDatabase& database,
                           port::Database db) {
  if (!db) return {};
  db::ViewTable table = db::ViewTable::Open(database, db);
  db::XDataList items = table.GetAt(view, false).XData(kViewApplication);
  return items.size() >= 2 ? items[1].second : std::string();
}

void WriteViewLayout(const std::string& view, const std::string& layout, port::HostSession& session,
                     port::Document doc) {
  port::Database db = DatabaseOf(session, doc);
  if (!db) return;
  db::DocumentLock lock(*session.Documents(), doc);
  port::DrawingDatabase& database = *session.Databases();
  long status = port::kAcadOk;
  port::Result r = database.AddRegApp(db, kViewApplication, &status);
  if (port::Failed(r) || (status != port::kAcadOk && status != port::kAcadDuplicateRecordName)) {
    host::StringSink text;
    if (port::Failed(r))
      session.LastErrorDescription(&text);
    else
      database.ErrorStatusText(status, &text);
    session.EditorService()->Print(("无法注册 MRVN_TAVLET appid - " + text.text).c_str());
    return;
  }
  db::ViewTable table = db::ViewTable::Open(database, db);
  db::ViewRecord record = table.GetAt(view, true);
  if (!record) return;
  record.SetPaperSpace(true);
  record.SetXData({{1001, kViewApplication}, {1000, layout}});
}

std::string AssignViewLayout(const std::string& view, port::HostSession& session,
                             port::Document doc, LayoutChooser& chooser) {
  port::Database db = DatabaseOf(session, doc);
  if (!db) return {};
  std::vector<LayoutInfo> layouts;
  if (!ListLayouts(*session.Databases(), db, layouts)) return {};
  std::vector<std::string> names;
  for (LayoutInfo& layout : layouts)
    if (!layout.isModelSpace) names.push_back(std::move(layout.layoutName));
  std::string chosen;
  if (names.size() == 1) {
    chosen = names.front();
  } else {
    std::vector<std::string> selected = chooser.Choose("给 '" + view + "' 选择布局", names);
    if (selected.empty()) return {};
    chosen = selected.front();
  }
  WriteViewLayout(view, chosen, session, doc);
  return chosen;
}

}  // namespace tavlet::content
