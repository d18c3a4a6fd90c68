// The simulated host's database objects: tables, records, entities, the layer
// states' dictionary and hyperlink collections over a drawing's description.
// Each object counts itself in SimHost::OpenDatabaseObjects from its making to
// its last Release, and each of its operations fails on demand by the name
// "Interface::Operation" (for instance "EntityIterator::Next").
#pragma once

#include <cstddef>
#include <vector>

#include "host/port/database.h"

namespace tavlet::sim {

class SimHost;
struct SimDocument;
struct DrawingDescription;

// The block table's order: model space, the layouts in tab order, external
// references, named blocks.
struct SimBlock {
  enum class Kind { Model, Layout, Xref, Named };
  Kind kind = Kind::Model;
  std::size_t index = 0;  // into layouts, xrefs or blocks
};
std::vector<SimBlock> SimBlocksOf(const DrawingDescription& content);

// An object id holds the drawing's serial, what the object is and its index
// (into SimBlocksOf, the views, or 0 for the layer states' dictionary).
enum class SimObjectKind : unsigned { BlockRecord = 1, ViewRecord = 2, LayerStates = 3 };
port::ObjectId MakeSimObjectId(const SimDocument& doc, SimObjectKind kind, std::size_t index);
// Null when the id names no object of an open drawing.
SimDocument* SimObjectOf(SimHost& host, port::ObjectId id, SimObjectKind kind, std::size_t* index);

port::SymbolTable* NewSimBlockTable(SimHost& host, SimDocument& doc);
port::ViewTable* NewSimViewTable(SimHost& host, SimDocument& doc);
port::BlockRecord* NewSimBlockRecord(SimHost& host, SimDocument& doc, std::size_t block);
port::ViewRecord* NewSimViewRecord(SimHost& host, SimDocument& doc, std::size_t view,
                                   bool forWrite);
port::Dictionary* NewSimLayerStates(SimHost& host, SimDocument& doc);

}  // namespace tavlet::sim
