#include "content/references.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "content/db/objects.h"
#include "text/codepage.h"

namespace tavlet::content {

namespace {

// What _mbscmp compares of a text: up to its first NUL, without a lead byte
// that has no trail byte after it.
std::string_view ComparedPart(std::string_view s) {
  std::size_t i = 0;
  while (i < s.size() && s[i] != '\0') {
    if (!text::IsLeadByte(static_cast<unsigned char>(s[i]))) {
      ++i;
    } else if (i + 1 < s.size() && s[i + 1] != '\0') {
      i += 2;
    } else {
      break;
    }
  }
  return s.substr(0, i);
}

// One list and what it already holds, by ReferenceKey. Two texts are equal for
// _mbscmp exactly when their compared parts are equal byte for byte, so a hash
// set of keys answers as a search of a vector with _mbscmp would, without its
// quadratic cost on drawings with thousands of hyperlinks.
class ReferenceList {
 public:
  ReferenceList(IdMap<DrawingPath>& map, int& nextId, FileSystem& files)
      : map_(map), nextId_(nextId), files_(files) {}

  void Add(const std::string& path) {
    if (!seen_.insert(ReferenceKey(path)).second) return;
    map_.emplace(nextId_++, DrawingPath(path, files_));
  }
  void Finish(bool fill) {
    if (fill && map_.empty()) map_.emplace(nextId_++, DrawingPath(kNotFound, files_));
  }

 private:
  IdMap<DrawingPath>& map_;
  int& nextId_;
  FileSystem& files_;
  std::unordered_set<std::string> seen_;
};

// The ids of the records that pass `keep`, each record opened and closed in turn.
template <class Keep>
std::vector<port::ObjectId> RecordsWhere(port::DrawingDatabase& database,
                                         const db::BlockTable& table, Keep keep) {
  std::vector<port::ObjectId> ids;
  db::RecordWalk walk = table.Records();
  port::ObjectId id = port::kNullObjectId;
  while (walk.Next(id)) {
    port::BlockRecordInfo info;
    if (db::BlockRecord::Open(database, id).Info(info) && keep(info)) ids.push_back(id);
  }
  return ids;
}

// Every entity of every layout's block, in the order of the layouts.
template <class Visit>
void ForEachLayoutEntity(port::DrawingDatabase& database,
                         const std::vector<port::ObjectId>& layouts, Visit visit) {
  for (port::ObjectId id : layouts) {
    db::BlockRecord record = db::BlockRecord::Open(database, id);
    db::EntityWalk walk = record.Entities();
    db::Entity entity;
    while (walk.Next(entity)) visit(entity);
  }
}

}  // namespace

std::string ReferenceKey(std::string_view path) {
  return std::string(ComparedPart(text::Mbslwr(path)));
}

void CollectReferences(int& nextId, ReferenceSet& sets, port::DrawingDatabase& database,
                       port::Database db, bool fill, FileSystem& files) {
  sets.externalReferences.clear();
  sets.images.clear();
  sets.oleLinks.clear();
  sets.hyperlinks.clear();
  ReferenceList xrefs(sets.externalReferences, nextId, files);
  ReferenceList images(sets.images, nextId, files);
  ReferenceList oles(sets.oleLinks, nextId, files);
  ReferenceList links(sets.hyperlinks, nextId, files);
  if (!db) {
    for (ReferenceList* list : {&xrefs, &images, &oles, &links}) list->Finish(true);
    return;
  }
  db::BlockTable table = db::BlockTable::Open(database, db);
  if (!table) return;

  for (port::ObjectId id : RecordsWhere(
           database, table, [](const port::BlockRecordInfo& i) { return i.fromExternalReference; }))
    if (auto path = db::BlockRecord::Open(database, id).XrefFile()) xrefs.Add(*path);
  xrefs.Finish(fill);

  // Model space is a layout too. Images, OLE links and hyperlinks inside block
  // definitions are not looked for; only the definitions' own hyperlinks are.
  const std::vector<port::ObjectId> layouts =
      RecordsWhere(database, table, [](const port::BlockRecordInfo& i) { return i.isLayout; });

  ForEachLayoutEntity(database, layouts, [&](const db::Entity& e) {
    if (e.Info().kind != port::kEntityRasterImage) return;
    if (auto path = e.ImageFile()) images.Add(*path);
  });
  images.Finish(fill);

  ForEachLayoutEntity(database, layouts, [&](const db::Entity& e) {
    if (e.Info().kind != port::kEntityOle2Frame || e.Info().oleType != port::kOleLinked) return;
    if (auto path = e.OleLink(kOleLinkBuffer)) oles.Add(*path);
  });
  oles.Finish(fill);

  ForEachLayoutEntity(database, layouts, [&](const db::Entity& e) {
    if (!e.HasHyperlink()) return;
    for (const std::string& name : e.Hyperlinks()) links.Add(name);
  });
  auto plainNamedBlock = [](const port::BlockRecordInfo& i) {
    return !i.isAnonymous && !i.fromExternalReference && !i.isLayout && !i.isModelSpace &&
           !i.isDependent;
  };
  for (port::ObjectId id : RecordsWhere(database, table, plainNamedBlock))
    for (const std::string& name : db::BlockRecord::Open(database, id).Hyperlinks())
      links.Add(name);
  links.Finish(fill);
}

}  // namespace tavlet::content
