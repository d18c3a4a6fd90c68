// Layouts and layer states of a drawing, for the menu's "布局" and layer-state
// lists, and the restore of a layer state under the document lock.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "content/id_map.h"
#include "host/port/host_session.h"

namespace tavlet::content {

// What is known of one layout's block record.
struct LayoutInfo {
  port::ObjectId blockId = port::kNullObjectId;
  std::string blockName;
  std::string layoutName;
  long tabOrder = 0;
  bool isActive = false;
  bool isModelSpace = false;
};

// The layouts in block-table order (not tab order), model space included; a
// record that won't open or read is left out. False when the table won't open.
bool ListLayouts(port::DrawingDatabase& database, port::Database db,
                 std::vector<LayoutInfo>& layouts);

// Each collector clears its map; a null database gives the one "没有找到"
// entry, and so does `fill` for a list that stays empty.
void CollectLayouts(int& nextId, IdMap<std::string>& layouts, port::DrawingDatabase& database,
                    port::Database db, bool fill);
// In the order of the layer states' dictionary.
void CollectLayerStates(int& nextId, IdMap<std::string>& states, port::DrawingDatabase& database,
                        port::Database db, bool fill);

// restoreLayerState on `db` with `lockDocument` locked for write around it.
// The Acad::ErrorStatus; nothing, and no lock taken, when the database has no
// layer state manager or the host can't be asked.
std::optional<long> RestoreLayerState(port::HostSession& session, port::Document lockDocument,
                                      port::Database db, const std::string& name);

}  // namespace tavlet::content
