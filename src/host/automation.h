// Automation as the bar's handlers use it: each wrapper raises ComError on a
// failing call, and a call through a null wrapper raises E_POINTER, so that a
// handler's one guarded block catches every failure as the real smart pointers'
// _com_error.
#pragma once

#include <string>

#include "host/com_error.h"
#include "host/port/host_session.h"
#include "host/port_ptr.h"

namespace tavlet::host {

class AcadLayoutPtr {
 public:
  AcadLayoutPtr() = default;
  explicit AcadLayoutPtr(PortPtr<port::AcadLayout> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  port::AcadLayout* Get() const { return p_.Get(); }
  std::string Name() const;
  void RefreshPlotDeviceInfo() const;

 private:
  port::AcadLayout* Checked() const;
  PortPtr<port::AcadLayout> p_;
};

class AcadLayoutsPtr {
 public:
  AcadLayoutsPtr() = default;
  explicit AcadLayoutsPtr(PortPtr<port::AcadLayouts> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  long Count() const;
  AcadLayoutPtr Item(const std::string& name) const;

 private:
  port::AcadLayouts* Checked() const;
  PortPtr<port::AcadLayouts> p_;
};

class AcadViewPtr {
 public:
  AcadViewPtr() = default;
  explicit AcadViewPtr(PortPtr<port::AcadView> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  port::AcadView* Get() const { return p_.Get(); }
  std::string Name() const;
  port::Point Center() const;
  void PutCenter(const port::Point& center) const;
  port::Point Direction() const;
  void PutDirection(const port::Point& direction) const;
  port::Point Target() const;
  void PutTarget(const port::Point& target) const;
  double Height() const;
  void PutHeight(double height) const;
  double Width() const;
  void PutWidth(double width) const;

 private:
  port::AcadView* Checked() const;
  PortPtr<port::AcadView> p_;
};

class AcadViewsPtr {
 public:
  AcadViewsPtr() = default;
  explicit AcadViewsPtr(PortPtr<port::AcadViews> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  AcadViewPtr Add(const std::string& name) const;
  AcadViewPtr Item(const std::string& name) const;

 private:
  port::AcadViews* Checked() const;
  PortPtr<port::AcadViews> p_;
};

class AcadViewportPtr {
 public:
  AcadViewportPtr() = default;
  explicit AcadViewportPtr(PortPtr<port::AcadViewport> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  port::AcadViewport* Get() const { return p_.Get(); }
  port::Point Center() const;
  port::Point Direction() const;
  port::Point Target() const;
  double Height() const;
  double Width() const;
  void SetView(const AcadViewPtr& view) const;

 private:
  port::AcadViewport* Checked() const;
  PortPtr<port::AcadViewport> p_;
};

class AcadPlotPtr {
 public:
  AcadPlotPtr() = default;
  explicit AcadPlotPtr(PortPtr<port::AcadPlot> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  // A null configuration is the missing argument; the out flag is returned.
  bool PlotToDevice(const char* configuration = nullptr) const;

 private:
  port::AcadPlot* Checked() const;
  PortPtr<port::AcadPlot> p_;
};

class AcadDocumentPtr {
 public:
  AcadDocumentPtr() = default;
  explicit AcadDocumentPtr(PortPtr<port::AcadDocument> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  port::AcadDocument* Get() const { return p_.Get(); }
  // The same for two wrappers of one drawing; null for a null wrapper.
  const void* Identity() const;

  void Activate() const;
  bool ReadOnly() const;
  std::string FullName() const;
  std::string Name() const;
  long ActiveSpace() const;
  void PutActiveSpace(long space) const;
  // A short-typed variable as a 16-bit integer (the variant's conversion).
  short GetVariableShort(const std::string& name) const;
  port::Value GetVariable(const std::string& name, std::string* text = nullptr) const;
  void SendCommand(const std::string& command) const;
  // saveChanges: port::kMissingFlag, 0 or 1; a null fileName is missing.
  void Close(long saveChanges = port::kMissingFlag, const char* fileName = nullptr) const;
  AcadLayoutPtr ActiveLayout() const;
  void PutActiveLayout(const AcadLayoutPtr& layout) const;
  AcadLayoutsPtr Layouts() const;
  AcadViewsPtr Views() const;
  AcadViewportPtr ActiveViewport() const;
  void PutActiveViewport(const AcadViewportPtr& viewport) const;
  AcadViewportPtr ActivePViewport() const;
  void Regen(long which) const;
  AcadPlotPtr Plot() const;

 private:
  port::AcadDocument* Checked() const;
  PortPtr<port::AcadDocument> p_;
};

class AcadDocumentsPtr {
 public:
  AcadDocumentsPtr() = default;
  explicit AcadDocumentsPtr(PortPtr<port::AcadDocuments> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  long Count() const;
  AcadDocumentPtr Item(long index) const;
  AcadDocumentPtr Add(const std::string& templateName) const;
  AcadDocumentPtr Open(const std::string& name, bool readOnly) const;

 private:
  port::AcadDocuments* Checked() const;
  PortPtr<port::AcadDocuments> p_;
};

class AcadApplicationPtr {
 public:
  AcadApplicationPtr() = default;
  explicit AcadApplicationPtr(PortPtr<port::AcadApplication> p) : p_(std::move(p)) {}
  explicit operator bool() const { return static_cast<bool>(p_); }
  port::AcadApplication* Get() const { return p_.Get(); }
  AcadDocumentsPtr Documents() const;
  AcadDocumentPtr ActiveDocument() const;
  void ZoomExtents() const;
  void ZoomAll() const;
  void ZoomWindow(const port::Point& lowerLeft, const port::Point& upperRight) const;
  void Quit() const;

 private:
  port::AcadApplication* Checked() const;
  PortPtr<port::AcadApplication> p_;
};

// The start-up query: E_NOINTERFACE gives a null pointer, any other failure raises.
AcadApplicationPtr GetAcadApplication(port::HostSession& session);

// The bridge from a drawing database to its automation object: null when the
// host has no OLE link manager or the query gives E_NOINTERFACE; raises otherwise.
AcadDocumentPtr DocumentObjectOf(port::HostSession& session, port::Database db);

}  // namespace tavlet::host
