// The host's sheet-set component: a manager that opens .dst files into a
// database whose sheet set is a tree of components.
//
// Real host: the component's COM interfaces, created with CoCreateInstance of
// the manager's class (all contexts), each operation one method of the interface
// the bar's table names; a component that lacks an interface (a subset asked for
// its number) answers kNoInterface, as its QueryInterface would.
// Simulation: sheet sets from the description format; any operation can be made
// to fail by its name, and the component can be made impossible to create.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

class SheetSetFileReference : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL FileName(TextSink* path) = 0;
};

class SheetSetFileReferences : public Counted {
 public:
  // Null with kFalse at the end.
  virtual Result TAVLET_PORT_CALL Next(SheetSetFileReference** reference) = 0;
};

class SheetSetComponents;

// A sheet set, subset or sheet.
class SheetSetComponent : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL TypeName(TextSink* name) = 0;  // "AcSmSheetSet", "AcSmSubset", "AcSmSheet"
  virtual Result TAVLET_PORT_CALL Name(TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL Description(TextSink* text) = 0;
  virtual Result TAVLET_PORT_CALL SetName(const char* name) = 0;
  // Sheet set and subset.
  virtual Result TAVLET_PORT_CALL Sheets(SheetSetComponents** members) = 0;
  // Sheet set.
  virtual Result TAVLET_PORT_CALL Resources(SheetSetFileReferences** folders) = 0;
  // Sheet.
  virtual Result TAVLET_PORT_CALL Number(TextSink* number) = 0;
  virtual Result TAVLET_PORT_CALL Title(TextSink* title) = 0;
  virtual Result TAVLET_PORT_CALL Layout(SheetSetFileReference** layout) = 0;
};

class SheetSetComponents : public Counted {
 public:
  // Null with kFalse at the end.
  virtual Result TAVLET_PORT_CALL Next(SheetSetComponent** component) = 0;
};

class SheetSetDatabase : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL SheetSet(SheetSetComponent** sheetSet) = 0;
};

class SheetSetManager : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL OpenDatabase(const char* path, bool failIfAlreadyOpen,
                                               SheetSetDatabase** database) = 0;
};

}  // namespace tavlet::port
