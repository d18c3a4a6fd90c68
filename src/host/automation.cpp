#include "host/automation.h"

namespace tavlet::host {

namespace {

// A null smart pointer raises E_POINTER with no error info of a call behind it,
// so its description is empty, not the last failed call's.
template <class T>
T* NotNull(const PortPtr<T>& p) {
  if (!p) throw ComError(port::kPointer, "");
  return p.Get();
}

template <class Wrapper, class T, class Call>
Wrapper Fetch(Call call) {
  PortPtr<T> out;
  ThrowIfFailed(call(out.Receive()));
  return Wrapper(std::move(out));
}

template <class Call>
std::string FetchText(Call call) {
  StringSink sink;
  ThrowIfFailed(call(&sink));
  return std::move(sink.text);
}

template <class V, class Call>
V FetchValue(Call call) {
  V value{};
  ThrowIfFailed(call(&value));
  return value;
}

}  // namespace

port::AcadLayout* AcadLayoutPtr::Checked() const { return NotNull(p_); }
std::string AcadLayoutPtr::Name() const {
  return FetchText([&](port::TextSink* s) { return Checked()->Name(s); });
}
void AcadLayoutPtr::RefreshPlotDeviceInfo() const { ThrowIfFailed(Checked()->RefreshPlotDeviceInfo()); }

port::AcadLayouts* AcadLayoutsPtr::Checked() const { return NotNull(p_); }
long AcadLayoutsPtr::Count() const {
  return FetchValue<long>([&](long* v) { return Checked()->Count(v); });
}
AcadLayoutPtr AcadLayoutsPtr::Item(const std::string& name) const {
  return Fetch<AcadLayoutPtr, port::AcadLayout>(
      [&](port::AcadLayout** out) { return Checked()->Item(name.c_str(), out); });
}

port::AcadView* AcadViewPtr::Checked() const { return NotNull(p_); }
std::string AcadViewPtr::Name() const {
  return FetchText([&](port::TextSink* s) { return Checked()->Name(s); });
}
port::Point AcadViewPtr::Center() const {
  return FetchValue<port::Point>([&](port::Point* v) { return Checked()->Center(v); });
}
void AcadViewPtr::PutCenter(const port::Point& center) const { ThrowIfFailed(Checked()->PutCenter(&center)); }
port::Point AcadViewPtr::Direction() const {
  return FetchValue<port::Point>([&](port::Point* v) { return Checked()->Direction(v); });
}
void AcadViewPtr::PutDirection(const port::Point& direction) const {
  ThrowIfFailed(Checked()->PutDirection(&direction));
}
port::Point AcadViewPtr::Target() const {
  return FetchValue<port::Point>([&](port::Point* v) { return Checked()->Target(v); });
}
void AcadViewPtr::PutTarget(const port::Point& target) const { ThrowIfFailed(Checked()->PutTarget(&target)); }
double AcadViewPtr::Height() const {
  return FetchValue<double>([&](double* v) { return Checked()->Height(v); });
}
void AcadViewPtr::PutHeight(double height) const { ThrowIfFailed(Checked()->PutHeight(height)); }
double AcadViewPtr::Width() const {
  return FetchValue<double>([&](double* v) { return Checked()->Width(v); });
}
void AcadViewPtr::PutWidth(double width) const { ThrowIfFailed(Checked()->PutWidth(width)); }

port::AcadViews* AcadViewsPtr::Checked() const { return NotNull(p_); }
AcadViewPtr AcadViewsPtr::Add(const std::string& name) const {
  return Fetch<AcadViewPtr, port::AcadView>([&](port::AcadView** out) { return Checked()->Add(name.c_str(), out); });
}
AcadViewPtr AcadViewsPtr::Item(const std::string& name) const {
  return Fetch<AcadViewPtr, port::AcadView>(
      [&](port::AcadView** out) { return Checked()->Item(name.c_str(), out); });
}

port::AcadViewport* AcadViewportPtr::Checked() const { return NotNull(p_); }
port::Point AcadViewportPtr::Center() const {
  return FetchValue<port::Point>([&](port::Point* v) { return Checked()->Center(v); });
}
port::Point AcadViewportPtr::Direction() const {
  return FetchValue<port::Point>([&](port::Point* v) { return Checked()->Direction(v); });
}
port::Point AcadViewportPtr::Target() const {
  return FetchValue<port::Point>([&](port::Point* v) { return Checked()->Target(v); });
}
double AcadViewportPtr::Height() const {
  return FetchValue<double>([&](double* v) { return Checked()->Height(v); });
}
double AcadViewportPtr::Width() const {
  return FetchValue<double>([&](double* v) { return Checked()->Width(v); });
}
void AcadViewportPtr::SetView(const AcadViewPtr& view) const { ThrowIfFailed(Checked()->SetView(view.Get())); }

port::AcadPlot* AcadPlotPtr::Checked() const { return NotNull(p_); }
bool AcadPlotPtr::PlotToDevice(const char* configuration) const {
  bool plotted = false;
  ThrowIfFailed(Checked()->PlotToDevice(configuration, &plotted));
  return plotted;
}

port::AcadDocument* AcadDocumentPtr::Checked() const { return NotNull(p_); }
const void* AcadDocumentPtr::Identity() const { return p_ ? p_->Identity() : nullptr; }
void AcadDocumentPtr::Activate() const { ThrowIfFailed(Checked()->Activate()); }
bool AcadDocumentPtr::ReadOnly() const {
  return FetchValue<bool>([&](bool* v) { return Checked()->ReadOnly(v); });
}
std::string AcadDocumentPtr::FullName() const {
  return FetchText([&](port::TextSink* s) { return Checked()->FullName(s); });
}
std::string AcadDocumentPtr::Name() const {
  return FetchText([&](port::TextSink* s) { return Checked()->Name(s); });
}
long AcadDocumentPtr::ActiveSpace() const {
  return FetchValue<long>([&](long* v) { return Checked()->ActiveSpace(v); });
}
void AcadDocumentPtr::PutActiveSpace(long space) const { ThrowIfFailed(Checked()->PutActiveSpace(space)); }
port::Value AcadDocumentPtr::GetVariable(const std::string& name, std::string* text) const {
  port::Value value;
  StringSink sink;
  ThrowIfFailed(Checked()->GetVariable(name.c_str(), &value, &sink));
  if (text) *text = std::move(sink.text);
  return value;
}
short AcadDocumentPtr::GetVariableShort(const std::string& name) const {
  port::Value value = GetVariable(name);
  switch (value.type) {
    case port::kValueShort:
    case port::kValueLong:
      return static_cast<short>(value.integer);
    case port::kValueReal:
      return static_cast<short>(value.real);
    default:
      // A variant that doesn't convert to VT_I2.
      RaiseComError(port::MakeResult(0x80020005u));  // DISP_E_TYPEMISMATCH
  }
}
void AcadDocumentPtr::SendCommand(const std::string& command) const {
  ThrowIfFailed(Checked()->SendCommand(command.c_str()));
}
void AcadDocumentPtr::Close(long saveChanges, const char* fileName) const {
  ThrowIfFailed(Checked()->Close(saveChanges, fileName));
}
AcadLayoutPtr AcadDocumentPtr::ActiveLayout() const {
  return Fetch<AcadLayoutPtr, port::AcadLayout>([&](port::AcadLayout** out) { return Checked()->ActiveLayout(out); });
}
void AcadDocumentPtr::PutActiveLayout(const AcadLayoutPtr& layout) const {
  ThrowIfFailed(Checked()->PutActiveLayout(layout.Get()));
}
AcadLayoutsPtr AcadDocumentPtr::Layouts() const {
  return Fetch<AcadLayoutsPtr, port::AcadLayouts>([&](port::AcadLayouts** out) { return Checked()->Layouts(out); });
}
AcadViewsPtr AcadDocumentPtr::Views() const {
  return Fetch<AcadViewsPtr, port::AcadViews>([&](port::AcadViews** out) { return Checked()->Views(out); });
}
AcadViewportPtr AcadDocumentPtr::ActiveViewport() const {
  return Fetch<AcadViewportPtr, port::AcadViewport>(
      [&](port::AcadViewport** out) { return Checked()->ActiveViewport(out); });
}
void AcadDocumentPtr::PutActiveViewport(const AcadViewportPtr& viewport) const {
  ThrowIfFailed(Checked()->PutActiveViewport(viewport.Get()));
}
AcadViewportPtr AcadDocumentPtr::ActivePViewport() const {
  return Fetch<AcadViewportPtr, port::AcadViewport>(
      [&](port::AcadViewport** out) { return Checked()->ActivePViewport(out); });
}
void AcadDocumentPtr::Regen(long which) const { ThrowIfFailed(Checked()->Regen(which)); }
AcadPlotPtr AcadDocumentPtr::Plot() const {
  return Fetch<AcadPlotPtr, port::AcadPlot>([&](port::AcadPlot** out) { return Checked()->Plot(out); });
}

port::AcadDocuments* AcadDocumentsPtr::Checked() const { return NotNull(p_); }
long AcadDocumentsPtr::Count() const {
  return FetchValue<long>([&](long* v) { return Checked()->Count(v); });
}
AcadDocumentPtr AcadDocumentsPtr::Item(long index) const {
  return Fetch<AcadDocumentPtr, port::AcadDocument>(
      [&](port::AcadDocument** out) { return Checked()->Item(index, out); });
}
AcadDocumentPtr AcadDocumentsPtr::Add(const std::string& templateName) const {
  return Fetch<AcadDocumentPtr, port::AcadDocument>(
      [&](port::AcadDocument** out) { return Checked()->Add(templateName.c_str(), out); });
}
AcadDocumentPtr AcadDocumentsPtr::Open(const std::string& name, bool readOnly) const {
  return Fetch<AcadDocumentPtr, port::AcadDocument>(
      [&](port::AcadDocument** out) { return Checked()->Open(name.c_str(), readOnly, out); });
}

port::AcadApplication* AcadApplicationPtr::Checked() const { return NotNull(p_); }
AcadDocumentsPtr AcadApplicationPtr::Documents() const {
  return Fetch<AcadDocumentsPtr, port::AcadDocuments>(
      [&](port::AcadDocuments** out) { return Checked()->Documents(out); });
}
AcadDocumentPtr AcadApplicationPtr::ActiveDocument() const {
  return Fetch<AcadDocumentPtr, port::AcadDocument>(
      [&](port::AcadDocument** out) { return Checked()->ActiveDocument(out); });
}
void AcadApplicationPtr::ZoomExtents() const { ThrowIfFailed(Checked()->ZoomExtents()); }
void AcadApplicationPtr::ZoomAll() const { ThrowIfFailed(Checked()->ZoomAll()); }
void AcadApplicationPtr::ZoomWindow(const port::Point& lowerLeft, const port::Point& upperRight) const {
  ThrowIfFailed(Checked()->ZoomWindow(&lowerLeft, &upperRight));
}
void AcadApplicationPtr::Quit() const { ThrowIfFailed(Checked()->Quit()); }

AcadApplicationPtr GetAcadApplication(port::HostSession& session) {
  PortPtr<port::AcadApplication> out;
  port::Result r = session.Application(out.Receive());
  if (r == port::kNoInterface) return AcadApplicationPtr();
  ThrowIfFailed(r);
  return AcadApplicationPtr(std::move(out));
}

AcadDocumentPtr DocumentObjectOf(port::HostSession& session, port::Database db) {
  port::OleLinkManager* links = session.OleLinks();
  if (!links) return AcadDocumentPtr();
  PortPtr<port::AcadDocument> out;
  port::Result r = links->DocumentObject(db, out.Receive());
  if (r == port::kNoInterface) return AcadDocumentPtr();
  ThrowIfFailed(r);
  return AcadDocumentPtr(std::move(out));
}

}  // namespace tavlet::host
