// Owners of the database objects the content walks open. Each wrapper holds one
// open object and closes it when it goes (the port's Release); a failed open
// gives an empty wrapper, and every read reports failure instead of raising, so
// that a walk skips what won't open and ends where its iterator fails.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/port/database.h"
#include "host/port_ptr.h"

namespace tavlet::content::db {

using XDataList = std::vector<std::pair<long, std::string>>;

// The names of a hyperlink collection, read in full before the collection is
// deleted; an item that can't be read is left out.
std::vector<std::string> HyperlinkNames(port::HyperlinkHolder& holder);
// False also when the question fails.
bool HasHyperlink(port::HyperlinkHolder& holder);

class Entity {
 public:
  Entity() = default;
  explicit operator bool() const { return static_cast<bool>(p_); }
  const port::EntityInfo& Info() const { return info_; }
  // The raster image's file; nothing when it has none or the read fails.
  std::optional<std::string> ImageFile() const;
  // A linked OLE frame's source, read into a buffer of `bufferSize` bytes.
  std::optional<std::string> OleLink(long bufferSize) const;
  bool HasHyperlink() const { return p_ && db::HasHyperlink(*p_.Get()); }
  std::vector<std::string> Hyperlinks() const;

 private:
  friend class EntityWalk;
  host::PortPtr<port::Entity> p_;
  port::EntityInfo info_;
};

// The entities of one block, deleted ones skipped. Ends at the end of the block
// or at the first failure of the iterator.
class EntityWalk {
 public:
  EntityWalk() = default;
  explicit EntityWalk(host::PortPtr<port::EntityIterator> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  // Opens the next entity into `entity`, closing the one it held.
  bool Next(Entity& entity);

 private:
  host::PortPtr<port::EntityIterator> p_;
};

// The record ids of a symbol table, in table order; ends as EntityWalk does.
class RecordWalk {
 public:
  RecordWalk() = default;
  explicit RecordWalk(host::PortPtr<port::SymbolTableIterator> p) : p_(std::move(p)) {}
  bool Next(port::ObjectId& id);

 private:
  host::PortPtr<port::SymbolTableIterator> p_;
};

// A new walk over a symbol table's records; an empty walk when none can be made.
RecordWalk RecordsOf(port::SymbolTable* table);

class BlockRecord {
 public:
  static BlockRecord Open(port::DrawingDatabase& database, port::ObjectId id);
  explicit operator bool() const { return static_cast<bool>(p_); }
  bool Info(port::BlockRecordInfo& info, std::string* name = nullptr) const;
  // The path the reference's database was opened with; nothing when the
  // reference is unresolved or the read fails.
  std::optional<std::string> XrefFile() const;
  std::optional<std::string> LayoutName(long* tabOrder = nullptr) const;
  EntityWalk Entities() const;
  std::vector<std::string> Hyperlinks() const;

 private:
  host::PortPtr<port::BlockRecord> p_;
};

class BlockTable {
 public:
  static BlockTable Open(port::DrawingDatabase& database, port::Database db);
  explicit operator bool() const { return static_cast<bool>(p_); }
  // A new walk from the first record; an empty walk when none can be made.
  RecordWalk Records() const;

 private:
  host::PortPtr<port::SymbolTable> p_;
};

class ViewRecord {
 public:
  static ViewRecord Open(port::DrawingDatabase& database, port::ObjectId id);
  explicit ViewRecord(host::PortPtr<port::ViewRecord> p = {}) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  bool Info(port::ViewRecordInfo& info, std::string& name) const;
  // The application's items, its 1001 entry first; empty on failure.
  XDataList XData(const char* application) const;
  bool SetPaperSpace(bool paperSpace) const;
  bool SetXData(const XDataList& items) const;

 private:
  host::PortPtr<port::ViewRecord> p_;
};

class ViewTable {
 public:
  static ViewTable Open(port::DrawingDatabase& database, port::Database db);
  explicit operator bool() const { return static_cast<bool>(p_); }
  RecordWalk Records() const;
  ViewRecord GetAt(const std::string& name, bool forWrite) const;
  void Close() { p_ = {}; }

 private:
  host::PortPtr<port::ViewTable> p_;
};

// The names of a dictionary's entries, in the dictionary's order.
class EntryWalk {
 public:
  explicit EntryWalk(host::PortPtr<port::DictionaryIterator> p = {}) : p_(std::move(p)) {}
  bool Next(std::string& name);

 private:
  host::PortPtr<port::DictionaryIterator> p_;
};

class Dictionary {
 public:
  static Dictionary Open(port::DrawingDatabase& database, port::ObjectId id);
  explicit operator bool() const { return static_cast<bool>(p_); }
  EntryWalk Entries() const;

 private:
  host::PortPtr<port::Dictionary> p_;
};

}  // namespace tavlet::content::db
