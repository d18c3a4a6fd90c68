// The host's automation objects, as far as the bar uses them. Every operation
// that fails leaves a description for HostSession::LastErrorDescription, as a
// COM call leaves its IErrorInfo.
//
// Real host: the type library's IAcadXxx interfaces, each operation one property
// get or put or one method, with BSTRs converted from and to code page 936 and
// variants made from the plain arguments (a missing argument is a VT_ERROR
// DISP_E_PARAMNOTFOUND variant).
// Simulation: objects over SimHost's documents; a call on a document that was
// closed fails with kDispatchException, as a released drawing's object does.
#pragma once

#include "host/port/port_types.h"

namespace tavlet::port {

class AcadDocument;

// IAcadPlot.
class AcadPlot : public Counted {
 public:
  // `configuration` null means missing: the layout plots with its own settings.
  virtual Result TAVLET_PORT_CALL PlotToDevice(const char* configuration, bool* plotted) = 0;
};

// IAcadLayout, with the plot configuration it derives from.
class AcadLayout : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Name(TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL RefreshPlotDeviceInfo() = 0;
};

// IAcadLayouts.
class AcadLayouts : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Count(long* count) = 0;
  // By name; an unknown name fails with kInvalidArgument.
  virtual Result TAVLET_PORT_CALL Item(const char* name, AcadLayout** layout) = 0;
};

// IAcadView.
class AcadView : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Name(TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL Center(Point* center) = 0;
  // Wants three coordinates; a two-dimensional point fails with kInvalidArgument.
  virtual Result TAVLET_PORT_CALL PutCenter(const Point* center) = 0;
  virtual Result TAVLET_PORT_CALL Direction(Point* direction) = 0;
  virtual Result TAVLET_PORT_CALL PutDirection(const Point* direction) = 0;
  virtual Result TAVLET_PORT_CALL Target(Point* target) = 0;
  virtual Result TAVLET_PORT_CALL PutTarget(const Point* target) = 0;
  virtual Result TAVLET_PORT_CALL Height(double* height) = 0;
  virtual Result TAVLET_PORT_CALL PutHeight(double height) = 0;
  virtual Result TAVLET_PORT_CALL Width(double* width) = 0;
  virtual Result TAVLET_PORT_CALL PutWidth(double width) = 0;
};

// IAcadViews.
class AcadViews : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Add(const char* name, AcadView** view) = 0;
  virtual Result TAVLET_PORT_CALL Item(const char* name, AcadView** view) = 0;
};

// IAcadViewport (model space) and IAcadPViewport (paper space) share this shape.
// Center is two-dimensional, as the real property is.
class AcadViewport : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Center(Point* center) = 0;
  virtual Result TAVLET_PORT_CALL Direction(Point* direction) = 0;
  virtual Result TAVLET_PORT_CALL Target(Point* target) = 0;
  virtual Result TAVLET_PORT_CALL Height(double* height) = 0;
  virtual Result TAVLET_PORT_CALL Width(double* width) = 0;
  // Takes effect when the viewport is put back as the active one.
  virtual Result TAVLET_PORT_CALL SetView(AcadView* view) = 0;
};

inline constexpr long kPaperSpace = 0;  // AcActiveSpace
inline constexpr long kModelSpace = 1;
inline constexpr long kRegenAllViewports = 1;

// IAcadDocument.
class AcadDocument : public Counted {
 public:
  // The same address for every object of one drawing (IUnknown identity).
  virtual const void* TAVLET_PORT_CALL Identity() = 0;
  virtual Result TAVLET_PORT_CALL Activate() = 0;
  virtual Result TAVLET_PORT_CALL ReadOnly(bool* readOnly) = 0;
  virtual Result TAVLET_PORT_CALL FullName(TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL Name(TextSink* name) = 0;
  virtual Result TAVLET_PORT_CALL ActiveSpace(long* space) = 0;
  virtual Result TAVLET_PORT_CALL PutActiveSpace(long space) = 0;
  virtual Result TAVLET_PORT_CALL GetVariable(const char* name, Value* value, TextSink* text) = 0;
  // Returns when the command has been run or handed over.
  virtual Result TAVLET_PORT_CALL SendCommand(const char* command) = 0;
  // saveChanges: 0, 1 or kMissingFlag; fileName null means missing.
  virtual Result TAVLET_PORT_CALL Close(long saveChanges, const char* fileName) = 0;
  virtual Result TAVLET_PORT_CALL ActiveLayout(AcadLayout** layout) = 0;
  virtual Result TAVLET_PORT_CALL PutActiveLayout(AcadLayout* layout) = 0;
  virtual Result TAVLET_PORT_CALL Layouts(AcadLayouts** layouts) = 0;
  virtual Result TAVLET_PORT_CALL Views(AcadViews** views) = 0;
  // Model space: fails with kDispatchException while paper space is active.
  virtual Result TAVLET_PORT_CALL ActiveViewport(AcadViewport** viewport) = 0;
  virtual Result TAVLET_PORT_CALL PutActiveViewport(AcadViewport* viewport) = 0;
  // Paper space: fails with kDispatchException while model space is active.
  virtual Result TAVLET_PORT_CALL ActivePViewport(AcadViewport** viewport) = 0;
  virtual Result TAVLET_PORT_CALL Regen(long which) = 0;
  virtual Result TAVLET_PORT_CALL Plot(AcadPlot** plot) = 0;
};

// IAcadDocuments.
class AcadDocuments : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Count(long* count) = 0;
  // Index from 0 as a VT_I4 variant; out of range fails with kBadIndex.
  virtual Result TAVLET_PORT_CALL Item(long index, AcadDocument** document) = 0;
  // `document` may be null when the caller releases the result at once.
  virtual Result TAVLET_PORT_CALL Add(const char* templateName, AcadDocument** document) = 0;
  // The password is always missing.
  virtual Result TAVLET_PORT_CALL Open(const char* name, bool readOnly, AcadDocument** document) = 0;
};

// IAcadApplication.
class AcadApplication : public Counted {
 public:
  virtual Result TAVLET_PORT_CALL Documents(AcadDocuments** documents) = 0;
  // Null with kOk when no drawing is open.
  virtual Result TAVLET_PORT_CALL ActiveDocument(AcadDocument** document) = 0;
  virtual Result TAVLET_PORT_CALL ZoomExtents() = 0;
  virtual Result TAVLET_PORT_CALL ZoomAll() = 0;
  virtual Result TAVLET_PORT_CALL ZoomWindow(const Point* lowerLeft, const Point* upperRight) = 0;
  virtual Result TAVLET_PORT_CALL Quit() = 0;
};

// The bridge from a drawing database to its automation object.
// Real host: AcAxGetOleLinkManager()->GetDocIDispatch(db) and a QueryInterface
// for IAcadDocument (E_NOINTERFACE gives a null object and kOk).
// Simulation: the drawing's one automation object; absent when the session is
// told to run without an OLE link manager.
class OleLinkManager {
 public:
  virtual Result TAVLET_PORT_CALL DocumentObject(Database db, AcadDocument** document) = 0;

 protected:
  ~OleLinkManager() = default;
};

}  // namespace tavlet::port
