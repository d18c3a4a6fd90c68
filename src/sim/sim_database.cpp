// The database service of the simulated host: the calls that open tables and
// objects (their operations are in sim_content.cpp), the layer states, the
// applications' table and the summary information.
#include <string>
#include <vector>

#include "sim/sim_content.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

namespace {

void Give(port::TextSink* sink, const std::string& s) {
  if (sink) sink->Assign(s.data(), static_cast<long>(s.size()));
}

}  // namespace

#define SIM_DATABASE(call)                                                   \
  if (port::Result r = Enter(call)) return r;                                \
  SimDocument* d = FindByDatabase(db);                                       \
  if (!d || d->closed) return Fail(port::kInvalidArgument, "eNullObjectId"); \
  const DrawingDescription& c = d->content

port::Result SimHost::Tilemode(port::Database db, bool* tilemode) {
  SIM_DATABASE("DrawingDatabase::Tilemode");
  *tilemode = c.activeLayout == "Model";
  return port::kOk;
}

port::Result SimHost::ActiveLayoutName(port::Database db, port::TextSink* name) {
  SIM_DATABASE("DrawingDatabase::ActiveLayoutName");
  Give(name, c.activeLayout);
  return port::kOk;
}

port::Result SimHost::CurrentSpaceId(port::Database db, port::ObjectId* block) {
  *block = port::kNullObjectId;
  SIM_DATABASE("DrawingDatabase::CurrentSpaceId");
  std::size_t index = 0;
  for (std::size_t i = 0; i < c.layouts.size(); ++i)
    if (c.layouts[i] == c.activeLayout) index = i + 1;
  *block = MakeSimObjectId(*d, SimObjectKind::BlockRecord, index);
  return port::kOk;
}

port::Result SimHost::OpenBlockTable(port::Database db, port::SymbolTable** table) {
  *table = nullptr;
  SIM_DATABASE("DrawingDatabase::OpenBlockTable");
  (void)c;
  *table = NewSimBlockTable(*this, *d);
  return port::kOk;
}

port::Result SimHost::OpenViewTable(port::Database db, port::ViewTable** table) {
  *table = nullptr;
  SIM_DATABASE("DrawingDatabase::OpenViewTable");
  (void)c;
  *table = NewSimViewTable(*this, *d);
  return port::kOk;
}

port::Result SimHost::OpenBlockRecord(port::ObjectId id, port::BlockRecord** record) {
  *record = nullptr;
  if (port::Result r = Enter("DrawingDatabase::OpenBlockRecord")) return r;
  std::size_t index = 0;
  SimDocument* d = SimObjectOf(*this, id, SimObjectKind::BlockRecord, &index);
  if (!d || index >= SimBlocksOf(d->content).size())
    return Fail(port::kInvalidArgument, "eNotThatKindOfClass");
  *record = NewSimBlockRecord(*this, *d, index);
  return port::kOk;
}

port::Result SimHost::OpenViewRecord(port::ObjectId id, port::ViewRecord** record) {
  *record = nullptr;
  if (port::Result r = Enter("DrawingDatabase::OpenViewRecord")) return r;
  std::size_t index = 0;
  SimDocument* d = SimObjectOf(*this, id, SimObjectKind::ViewRecord, &index);
  if (!d || index >= d->content.views.size())
    return Fail(port::kInvalidArgument, "eNotThatKindOfClass");
  *record = NewSimViewRecord(*this, *d, index, false);
  return port::kOk;
}

port::Result SimHost::HasLayerStateManager(port::Database db, bool* exists) {
  *exists = false;
  SIM_DATABASE("DrawingDatabase::HasLayerStateManager");
  *exists = c.hasLayerStateManager;
  return port::kOk;
}

port::Result SimHost::LayerStatesDictionary(port::Database db, port::ObjectId* dictionary) {
  *dictionary = port::kNullObjectId;
  SIM_DATABASE("DrawingDatabase::LayerStatesDictionary");
  // Without a manager, or with one that never saved a state, there is no
  // dictionary, and the call does not create one.
  if (!c.hasLayerStateManager || c.layerStates.empty()) return port::kFalse;
  *dictionary = MakeSimObjectId(*d, SimObjectKind::LayerStates, 0);
  return port::kOk;
}

port::Result SimHost::OpenDictionary(port::ObjectId id, port::Dictionary** dictionary) {
  *dictionary = nullptr;
  if (port::Result r = Enter("DrawingDatabase::OpenDictionary")) return r;
  std::size_t index = 0;
  SimDocument* d = SimObjectOf(*this, id, SimObjectKind::LayerStates, &index);
  if (!d) return Fail(port::kInvalidArgument, "eNotThatKindOfClass");
  *dictionary = NewSimLayerStates(*this, *d);
  return port::kOk;
}

port::Result SimHost::RestoreLayerState(port::Database db, const char* name, long* acadStatus) {
  SIM_DATABASE("DrawingDatabase::RestoreLayerState");
  if (!c.hasLayerStateManager) return Fail(port::kPointer, "No layer state manager.");
  *acadStatus = 3;  // eInvalidInput
  for (const std::string& s : c.layerStates)
    if (s == (name ? name : "")) *acadStatus = port::kAcadOk;
  if (*acadStatus == port::kAcadOk) {
    if (!IsLocked(HandleOf(*d)))
      *acadStatus = 83;  // eLockViolation: the bar must lock first
    else
      d->actions.push_back(std::string("layer state ") + name);
  }
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
  ++d->dbmod;
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

port::Result SimHost::SummaryText(port::Database db, long field, port::TextSink* value,
                                  long* acadStatus) {
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

port::Result SimHost::CustomSummary(port::Database db, long index, port::TextSink* key,
                                    port::TextSink* value, long* acadStatus) {
  SIM_DATABASE("DrawingDatabase::CustomSummary");
  if (index < 0 || index >= static_cast<long>(c.custom.size())) return *acadStatus = 3, port::kOk;
  *acadStatus = port::kAcadOk;
  Give(key, c.custom[static_cast<std::size_t>(index)].first);
  Give(value, c.custom[static_cast<std::size_t>(index)].second);
  return port::kOk;
}

#undef SIM_DATABASE

}  // namespace tavlet::sim
