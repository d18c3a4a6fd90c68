#include "sim/sim_automation.h"

#include <cstdio>
#include <string>

#include "sim/sim_host.h"
#include "text/codepage.h"

namespace tavlet::sim {

namespace {

void Give(port::TextSink* sink, const std::string& s) {
  if (sink) sink->Assign(s.data(), static_cast<long>(s.size()));
}

port::Point MakePoint(double x, double y, double z, long dimensions) {
  port::Point p;
  p.x = x;
  p.y = y;
  p.z = z;
  p.dimensions = dimensions;
  return p;
}

constexpr const char* kClosed = "The drawing has been closed.";

class SimLayout final : public SimCounted<port::AcadLayout> {
 public:
  SimLayout(SimHost& host, SimDocument& doc, std::string name) : host_(host), doc_(doc), name_(std::move(name)) {}
  const std::string& LayoutName() const { return name_; }
  SimDocument& Owner() const { return doc_; }

  port::Result TAVLET_PORT_CALL Name(port::TextSink* name) override {
    if (port::Result r = host_.Enter("AcadLayout::Name")) return r;
    Give(name, name_);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL RefreshPlotDeviceInfo() override {
    if (port::Result r = host_.Enter("AcadLayout::RefreshPlotDeviceInfo")) return r;
    if (doc_.closed) return host_.Fail(port::kDispatchException, kClosed);
    doc_.actions.push_back("refresh " + name_);
    return port::kOk;
  }

 private:
  SimHost& host_;
  SimDocument& doc_;
  std::string name_;
};

class SimLayouts final : public SimCounted<port::AcadLayouts> {
 public:
  SimLayouts(SimHost& host, SimDocument& doc) : host_(host), doc_(doc) {}
  port::Result TAVLET_PORT_CALL Count(long* count) override {
    if (port::Result r = host_.Enter("AcadLayouts::Count")) return r;
    *count = static_cast<long>(doc_.content.layouts.size()) + 1;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Item(const char* name, port::AcadLayout** layout) override {
    *layout = nullptr;
    if (port::Result r = host_.Enter("AcadLayouts::Item")) return r;
    if (doc_.closed) return host_.Fail(port::kDispatchException, kClosed);
    std::string wanted = name ? name : "";
    bool known = text::Mbsicmp(wanted, "Model") == 0;
    for (const std::string& l : doc_.content.layouts)
      if (text::Mbsicmp(l, wanted) == 0) {
        wanted = l;
        known = true;
      }
    if (!known) return host_.Fail(port::kInvalidArgument, "Key not found");
    *layout = new SimLayout(host_, doc_, wanted);
    return port::kOk;
  }

 private:
  SimHost& host_;
  SimDocument& doc_;
};

class SimView final : public SimCounted<port::AcadView> {
 public:
  SimView(SimHost& host, SimDocument& doc, std::string name) : host_(host), doc_(doc), name_(std::move(name)) {}
  const std::string& ViewName() const { return name_; }

  port::Result TAVLET_PORT_CALL Name(port::TextSink* name) override {
    if (port::Result r = host_.Enter("AcadView::Name")) return r;
    Give(name, name_);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Center(port::Point* center) override {
    return Get("AcadView::Center", [&](NamedViewDesc& v) { *center = MakePoint(v.centerX, v.centerY, 0, 3); });
  }
  port::Result TAVLET_PORT_CALL PutCenter(const port::Point* center) override {
    if (center->dimensions != 3) {
      if (port::Result r = host_.Enter("AcadView::PutCenter")) return r;
      return host_.Fail(port::kInvalidArgument, "Invalid argument Center in Center");
    }
    return Put("AcadView::PutCenter", [&](NamedViewDesc& v) {
      v.centerX = center->x;
      v.centerY = center->y;
    });
  }
  port::Result TAVLET_PORT_CALL Direction(port::Point* direction) override {
    return Get("AcadView::Direction", [&](NamedViewDesc& v) {
      *direction = MakePoint(v.direction[0], v.direction[1], v.direction[2], 3);
    });
  }
  port::Result TAVLET_PORT_CALL PutDirection(const port::Point* direction) override {
    return Put("AcadView::PutDirection", [&](NamedViewDesc& v) {
      v.direction[0] = direction->x;
      v.direction[1] = direction->y;
      v.direction[2] = direction->z;
    });
  }
  port::Result TAVLET_PORT_CALL Target(port::Point* target) override {
    return Get("AcadView::Target",
               [&](NamedViewDesc& v) { *target = MakePoint(v.target[0], v.target[1], v.target[2], 3); });
  }
  port::Result TAVLET_PORT_CALL PutTarget(const port::Point* target) override {
    return Put("AcadView::PutTarget", [&](NamedViewDesc& v) {
      v.target[0] = target->x;
      v.target[1] = target->y;
      v.target[2] = target->z;
    });
  }
  port::Result TAVLET_PORT_CALL Height(double* height) override {
    return Get("AcadView::Height", [&](NamedViewDesc& v) { *height = v.height; });
  }
  port::Result TAVLET_PORT_CALL PutHeight(double height) override {
    return Put("AcadView::PutHeight", [&](NamedViewDesc& v) { v.height = height; });
  }
  port::Result TAVLET_PORT_CALL Width(double* width) override {
    return Get("AcadView::Width", [&](NamedViewDesc& v) { *width = v.width; });
  }
  port::Result TAVLET_PORT_CALL PutWidth(double width) override {
    return Put("AcadView::PutWidth", [&](NamedViewDesc& v) { v.width = width; });
  }

 private:
  NamedViewDesc* Record() {
    for (NamedViewDesc& v : doc_.content.views)
      if (v.name == name_) return &v;
    return nullptr;
  }
  template <class F>
  port::Result Get(const char* call, F f) {
    if (port::Result r = host_.Enter(call)) return r;
    NamedViewDesc* v = Record();
    if (doc_.closed || !v) return host_.Fail(port::kDispatchException, "Object was erased");
    f(*v);
    return port::kOk;
  }
  template <class F>
  port::Result Put(const char* call, F f) {
    port::Result r = Get(call, f);
    if (port::Succeeded(r)) ++doc_.dbmod;
    return r;
  }

  SimHost& host_;
  SimDocument& doc_;
  std::string name_;
};

class SimViews final : public SimCounted<port::AcadViews> {
 public:
  SimViews(SimHost& host, SimDocument& doc) : host_(host), doc_(doc) {}
  port::Result TAVLET_PORT_CALL Add(const char* name, port::AcadView** view) override {
    *view = nullptr;
    if (port::Result r = host_.Enter("AcadViews::Add")) return r;
    if (doc_.closed) return host_.Fail(port::kDispatchException, kClosed);
    std::string wanted = name ? name : "";
    if (wanted.empty() || wanted.find_first_of("<>/\\\":;?*|,=`") != std::string::npos)
      return host_.Fail(port::kInvalidArgument, "Invalid input");
    NamedViewDesc* existing = nullptr;
    for (NamedViewDesc& v : doc_.content.views)
      if (text::Mbsicmp(v.name, wanted) == 0) existing = &v;
    if (!existing) {
      NamedViewDesc v;
      v.name = wanted;
      doc_.content.views.push_back(v);
    }
    ++doc_.dbmod;
    *view = new SimView(host_, doc_, existing ? existing->name : wanted);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Item(const char* name, port::AcadView** view) override {
    *view = nullptr;
    if (port::Result r = host_.Enter("AcadViews::Item")) return r;
    if (doc_.closed) return host_.Fail(port::kDispatchException, kClosed);
    for (NamedViewDesc& v : doc_.content.views) {
      if (text::Mbsicmp(v.name, name ? name : "") == 0) {
        *view = new SimView(host_, doc_, v.name);
        return port::kOk;
      }
    }
    return host_.Fail(port::kInvalidArgument, "Key not found");
  }

 private:
  SimHost& host_;
  SimDocument& doc_;
};

// The drawing's present view. The sim keeps no zoom state of its own: a viewport
// shows the whole picture.
class SimViewport final : public SimCounted<port::AcadViewport> {
 public:
  SimViewport(SimHost& host, SimDocument& doc, bool paper) : host_(host), doc_(doc), paper_(paper) {}
  const std::string& PendingView() const { return pendingView_; }
  SimDocument& Owner() const { return doc_; }
  bool Paper() const { return paper_; }

  port::Result TAVLET_PORT_CALL Center(port::Point* center) override {
    if (port::Result r = Check("AcadViewport::Center")) return r;
    *center = MakePoint(doc_.content.picture.width / 2.0, doc_.content.picture.height / 2.0, 0, 2);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Direction(port::Point* direction) override {
    if (port::Result r = Check("AcadViewport::Direction")) return r;
    *direction = MakePoint(0, 0, 1, 3);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Target(port::Point* target) override {
    if (port::Result r = Check("AcadViewport::Target")) return r;
    *target = MakePoint(0, 0, 0, 3);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Height(double* height) override {
    if (port::Result r = Check("AcadViewport::Height")) return r;
    *height = doc_.content.picture.height;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Width(double* width) override {
    if (port::Result r = Check("AcadViewport::Width")) return r;
    *width = doc_.content.picture.width;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL SetView(port::AcadView* view) override {
    if (port::Result r = Check("AcadViewport::SetView")) return r;
    if (!view) return host_.Fail(port::kPointer, "Invalid pointer");
    pendingView_ = static_cast<SimView*>(view)->ViewName();
    return port::kOk;
  }

 private:
  port::Result Check(const char* call) {
    if (port::Result r = host_.Enter(call)) return r;
    if (doc_.closed) return host_.Fail(port::kDispatchException, kClosed);
    return port::kOk;
  }
  SimHost& host_;
  SimDocument& doc_;
  bool paper_;
  std::string pendingView_;
};

class SimPlot final : public SimCounted<port::AcadPlot> {
 public:
  SimPlot(SimHost& host, SimDocument& doc) : host_(host), doc_(doc) {}
  port::Result TAVLET_PORT_CALL PlotToDevice(const char* configuration, bool* plotted) override {
    *plotted = false;
    if (port::Result r = host_.Enter("AcadPlot::PlotToDevice")) return r;
    if (doc_.closed) return host_.Fail(port::kDispatchException, kClosed);
    doc_.actions.push_back("plot " + doc_.content.activeLayout + (configuration ? std::string(" ") + configuration : ""));
    host_.RecordPlot(doc_);
    *plotted = true;
    return port::kOk;
  }

 private:
  SimHost& host_;
  SimDocument& doc_;
};

class SimDocumentObject final : public SimAutomationDocument {
 public:
  SimDocumentObject(SimHost& host, SimDocument& doc) : host_(host), doc_(&doc) {}
  void Detach() override { doc_ = nullptr; }

  const void* TAVLET_PORT_CALL Identity() override { return this; }

  port::Result TAVLET_PORT_CALL Activate() override {
    if (port::Result r = Check("AcadDocument::Activate")) return r;
    host_.ActivateInternal(host_.HandleOf(*doc_));
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL ReadOnly(bool* readOnly) override {
    if (port::Result r = Check("AcadDocument::ReadOnly")) return r;
    *readOnly = doc_->readOnly;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL FullName(port::TextSink* name) override {
    if (port::Result r = Check("AcadDocument::FullName")) return r;
    Give(name, doc_->path);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Name(port::TextSink* name) override {
    if (port::Result r = Check("AcadDocument::Name")) return r;
    const std::string& f = doc_->fileName;
    std::size_t cut = 0;
    for (std::size_t i = 0; i < f.size(); i += text::CharLength(f, i))
      if (f[i] == '\\' || f[i] == '/') cut = i + 1;
    Give(name, f.substr(cut));
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL ActiveSpace(long* space) override {
    if (port::Result r = Check("AcadDocument::ActiveSpace")) return r;
    *space = doc_->content.activeLayout == "Model" ? port::kModelSpace : port::kPaperSpace;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL PutActiveSpace(long space) override {
    if (port::Result r = Check("AcadDocument::PutActiveSpace")) return r;
    if (space != port::kModelSpace && doc_->content.layouts.empty())
      return host_.Fail(port::kDispatchException, "The drawing has no layout.");
    host_.SetTilemode(*doc_, space == port::kModelSpace);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL GetVariable(const char* name, port::Value* value, port::TextSink* text) override {
    if (port::Result r = Check("AcadDocument::GetVariable")) return r;
    std::string upper = name ? name : "";
    for (char& c : upper)
      if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    std::string found;
    if (!host_.ReadVariableOf(doc_, upper, *value, found))
      return host_.Fail(port::kInvalidArgument, "Error getting system variable");
    if (value->type == port::kValueString) Give(text, found);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL SendCommand(const char* command) override {
    if (port::Result r = Check("AcadDocument::SendCommand")) return r;
    host_.ExecuteScript(*doc_, command ? command : "");
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Close(long saveChanges, const char* fileName) override {
    if (port::Result r = Check("AcadDocument::Close")) return r;
    SimDocument& d = *doc_;
    bool save = saveChanges == 1;
    if (saveChanges == port::kMissingFlag && d.dbmod > 0) {
      // The host asks on its own when it is told nothing.
      long answer = 0;
      std::string question = "Save changes to " + d.fileName + "?";
      host_.Boxes()->Show(question.c_str(), port::kBoxYesNoCancel, &answer);
      if (answer == port::kAnswerCancel) return host_.Fail(port::kFail, "Close cancelled");
      save = answer == port::kAnswerYes;
    }
    if (save) {
      if (d.readOnly && !fileName) return host_.Fail(port::kFail, "The drawing is read-only.");
      if (d.path.empty() && !fileName) return host_.Fail(port::kFail, "The drawing has no name.");
      host_.SaveDocument(d, fileName ? fileName : "");
    }
    host_.Close(d);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL ActiveLayout(port::AcadLayout** layout) override {
    *layout = nullptr;
    if (port::Result r = Check("AcadDocument::ActiveLayout")) return r;
    *layout = new SimLayout(host_, *doc_, doc_->content.activeLayout);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL PutActiveLayout(port::AcadLayout* layout) override {
    if (port::Result r = Check("AcadDocument::PutActiveLayout")) return r;
    auto* l = static_cast<SimLayout*>(layout);
    if (!l || &l->Owner() != doc_) return host_.Fail(port::kInvalidArgument, "Invalid argument");
    doc_->content.activeLayout = l->LayoutName();
    doc_->content.cvport = l->LayoutName() == "Model" ? 2 : 1;
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Layouts(port::AcadLayouts** layouts) override {
    *layouts = nullptr;
    if (port::Result r = Check("AcadDocument::Layouts")) return r;
    *layouts = new SimLayouts(host_, *doc_);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Views(port::AcadViews** views) override {
    *views = nullptr;
    if (port::Result r = Check("AcadDocument::Views")) return r;
    *views = new SimViews(host_, *doc_);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL ActiveViewport(port::AcadViewport** viewport) override {
    *viewport = nullptr;
    if (port::Result r = Check("AcadDocument::ActiveViewport")) return r;
    if (doc_->content.activeLayout != "Model") return host_.Fail(port::kDispatchException, "Invalid in paper space");
    *viewport = new SimViewport(host_, *doc_, false);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL PutActiveViewport(port::AcadViewport* viewport) override {
    if (port::Result r = Check("AcadDocument::PutActiveViewport")) return r;
    auto* v = static_cast<SimViewport*>(viewport);
    if (!v || &v->Owner() != doc_ || v->Paper()) return host_.Fail(port::kInvalidArgument, "Invalid argument");
    if (!v->PendingView().empty()) doc_->actions.push_back("view " + v->PendingView());
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL ActivePViewport(port::AcadViewport** viewport) override {
    *viewport = nullptr;
    if (port::Result r = Check("AcadDocument::ActivePViewport")) return r;
    if (doc_->content.activeLayout == "Model") return host_.Fail(port::kDispatchException, "Invalid in model space");
    *viewport = new SimViewport(host_, *doc_, true);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Regen(long which) override {
    if (port::Result r = Check("AcadDocument::Regen")) return r;
    doc_->actions.push_back(which == port::kRegenAllViewports ? "regen all" : "regen");
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Plot(port::AcadPlot** plot) override {
    *plot = nullptr;
    if (port::Result r = Check("AcadDocument::Plot")) return r;
    *plot = new SimPlot(host_, *doc_);
    return port::kOk;
  }

 private:
  port::Result Check(const char* call) {
    if (port::Result r = host_.Enter(call)) return r;
    if (!doc_ || doc_->closed) return host_.Fail(port::kDispatchException, kClosed);
    return port::kOk;
  }
  SimHost& host_;
  SimDocument* doc_;
};

port::Result GiveDocument(SimHost& host, port::Document doc, port::AcadDocument** document) {
  SimDocument* d = host.Find(doc);
  if (!d) return host.Fail(port::kFail, "No document.");
  SimAutomationDocument* object = host.AutomationOf(*d);
  object->AddRef();
  *document = object;
  return port::kOk;
}

class SimDocuments final : public SimCounted<port::AcadDocuments> {
 public:
  explicit SimDocuments(SimHost& host) : host_(host) {}
  port::Result TAVLET_PORT_CALL Count(long* count) override {
    if (port::Result r = host_.Enter("AcadDocuments::Count")) return r;
    *count = static_cast<long>(host_.OpenDocuments().size());
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Item(long index, port::AcadDocument** document) override {
    *document = nullptr;
    if (port::Result r = host_.Enter("AcadDocuments::Item")) return r;
    std::vector<port::Document> open = host_.OpenDocuments();
    if (index < 0 || index >= static_cast<long>(open.size()))
      return host_.Fail(port::kBadIndex, "Invalid index");
    return GiveDocument(host_, open[static_cast<std::size_t>(index)], document);
  }
  port::Result TAVLET_PORT_CALL Add(const char* templateName, port::AcadDocument** document) override {
    if (document) *document = nullptr;
    if (port::Result r = host_.Enter("AcadDocuments::Add")) return r;
    port::Document doc = nullptr;
    if (port::Result r = host_.NewThroughAutomation(templateName ? templateName : "", &doc); port::Failed(r)) return r;
    return document ? GiveDocument(host_, doc, document) : port::kOk;
  }
  port::Result TAVLET_PORT_CALL Open(const char* name, bool readOnly, port::AcadDocument** document) override {
    if (document) *document = nullptr;
    if (port::Result r = host_.Enter("AcadDocuments::Open")) return r;
    port::Document doc = nullptr;
    if (port::Result r = host_.OpenThroughAutomation(name ? name : "", readOnly, &doc); port::Failed(r)) return r;
    return document ? GiveDocument(host_, doc, document) : port::kOk;
  }

 private:
  SimHost& host_;
};

class SimApplication final : public SimCounted<port::AcadApplication> {
 public:
  explicit SimApplication(SimHost& host) : host_(host) {}
  port::Result TAVLET_PORT_CALL Documents(port::AcadDocuments** documents) override {
    *documents = nullptr;
    if (port::Result r = host_.Enter("AcadApplication::Documents")) return r;
    *documents = new SimDocuments(host_);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL ActiveDocument(port::AcadDocument** document) override {
    *document = nullptr;
    if (port::Result r = host_.Enter("AcadApplication::ActiveDocument")) return r;
    if (!host_.MdiActive()) return host_.Fail(port::kDispatchException, "No document is active.");
    return GiveDocument(host_, host_.MdiActive(), document);
  }
  port::Result TAVLET_PORT_CALL ZoomExtents() override { return Zoom("AcadApplication::ZoomExtents", "zoom extents"); }
  port::Result TAVLET_PORT_CALL ZoomAll() override { return Zoom("AcadApplication::ZoomAll", "zoom all"); }
  port::Result TAVLET_PORT_CALL ZoomWindow(const port::Point* lowerLeft, const port::Point* upperRight) override {
    char text[160];
    std::snprintf(text, sizeof text, "zoom window %g,%g %g,%g", lowerLeft->x, lowerLeft->y, upperRight->x,
                  upperRight->y);
    return Zoom("AcadApplication::ZoomWindow", text);
  }
  port::Result TAVLET_PORT_CALL Quit() override {
    if (port::Result r = host_.Enter("AcadApplication::Quit")) return r;
    host_.Quit();
    return port::kOk;
  }

 private:
  port::Result Zoom(const char* call, const std::string& action) {
    if (port::Result r = host_.Enter(call)) return r;
    SimDocument* d = host_.Find(host_.MdiActive());
    if (!d) return host_.Fail(port::kDispatchException, "No document is active.");
    d->actions.push_back(action);
    return port::kOk;
  }
  SimHost& host_;
};

}  // namespace

port::AcadApplication* NewSimApplication(SimHost& host) { return new SimApplication(host); }

SimAutomationDocument* NewSimAutomationDocument(SimHost& host, SimDocument& doc) {
  return new SimDocumentObject(host, doc);
}

}  // namespace tavlet::sim
