// The simulated sheet-set component: .dst files are sheet-set descriptions.
#include <memory>
#include <string>
#include <vector>

#include "sim/sim_automation.h"
#include "sim/sim_host.h"

namespace tavlet::sim {

namespace {

void Give(port::TextSink* sink, const std::string& s) {
  if (sink) sink->Assign(s.data(), static_cast<long>(s.size()));
}

using SheetSetPtr = std::shared_ptr<SheetSetDescription>;

class SimFileReference final : public SimCounted<port::SheetSetFileReference> {
 public:
  SimFileReference(SimHost& host, std::string path) : host_(host), path_(std::move(path)) {}
  port::Result TAVLET_PORT_CALL FileName(port::TextSink* path) override {
    if (port::Result r = host_.Enter("SheetSetFileReference::FileName")) return r;
    Give(path, path_);
    return port::kOk;
  }

 private:
  SimHost& host_;
  std::string path_;
};

class SimFileReferences final : public SimCounted<port::SheetSetFileReferences> {
 public:
  SimFileReferences(SimHost& host, SheetSetPtr set) : host_(host), set_(std::move(set)) {}
  port::Result TAVLET_PORT_CALL Next(port::SheetSetFileReference** reference) override {
    *reference = nullptr;
    if (port::Result r = host_.Enter("SheetSetFileReferences::Next")) return r;
    if (next_ >= set_->resourceFolders.size()) return port::kFalse;
    *reference = new SimFileReference(host_, set_->resourceFolders[next_++]);
    return port::kOk;
  }

 private:
  SimHost& host_;
  SheetSetPtr set_;
  std::size_t next_ = 0;
};

// A component addresses its data by position, so that a rename stays in the set.
class SimComponent final : public SimCounted<port::SheetSetComponent> {
 public:
  enum class Kind { SheetSet, Subset, Sheet };
  SimComponent(SimHost& host, SheetSetPtr set, Kind kind, int subset, int sheet)
      : host_(host), set_(std::move(set)), kind_(kind), subset_(subset), sheet_(sheet) {}

  port::Result TAVLET_PORT_CALL TypeName(port::TextSink* name) override {
    if (port::Result r = host_.Enter("SheetSetComponent::TypeName")) return r;
    Give(name, kind_ == Kind::SheetSet ? "AcSmSheetSet" : kind_ == Kind::Subset ? "AcSmSubset" : "AcSmSheet");
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Name(port::TextSink* name) override {
    if (port::Result r = host_.Enter("SheetSetComponent::Name")) return r;
    Give(name, *NameSlot());
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Description(port::TextSink* text) override {
    if (port::Result r = host_.Enter("SheetSetComponent::Description")) return r;
    Give(text, kind_ == Kind::SheetSet ? set_->description
               : kind_ == Kind::Subset ? set_->subsets[subset_].description
                                       : Sheet().description);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL SetName(const char* name) override {
    if (port::Result r = host_.Enter("SheetSetComponent::SetName")) return r;
    *NameSlot() = name ? name : "";
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Sheets(port::SheetSetComponents** members) override;
  port::Result TAVLET_PORT_CALL Resources(port::SheetSetFileReferences** folders) override {
    *folders = nullptr;
    if (port::Result r = host_.Enter("SheetSetComponent::Resources")) return r;
    if (kind_ != Kind::SheetSet) return host_.Fail(port::kNoInterface, "No such interface supported");
    *folders = new SimFileReferences(host_, set_);
    return port::kOk;
  }
  port::Result TAVLET_PORT_CALL Number(port::TextSink* number) override {
    return SheetText("SheetSetComponent::Number", number, &SheetDesc::number);
  }
  port::Result TAVLET_PORT_CALL Title(port::TextSink* title) override {
    return SheetText("SheetSetComponent::Title", title, &SheetDesc::title);
  }
  port::Result TAVLET_PORT_CALL Layout(port::SheetSetFileReference** layout) override {
    *layout = nullptr;
    if (port::Result r = host_.Enter("SheetSetComponent::Layout")) return r;
    if (kind_ != Kind::Sheet) return host_.Fail(port::kNoInterface, "No such interface supported");
    *layout = new SimFileReference(host_, Sheet().file);
    return port::kOk;
  }

 private:
  SheetDesc& Sheet() const {
    return subset_ < 0 ? set_->sheets[static_cast<std::size_t>(sheet_)]
                       : set_->subsets[static_cast<std::size_t>(subset_)].sheets[static_cast<std::size_t>(sheet_)];
  }
  std::string* NameSlot() const {
    if (kind_ == Kind::SheetSet) return &set_->name;
    if (kind_ == Kind::Subset) return &set_->subsets[static_cast<std::size_t>(subset_)].name;
    return &Sheet().name;
  }
  port::Result SheetText(const char* call, port::TextSink* sink, std::string SheetDesc::*field) {
    if (port::Result r = host_.Enter(call)) return r;
    if (kind_ != Kind::Sheet) return host_.Fail(port::kNoInterface, "No such interface supported");
    Give(sink, Sheet().*field);
    return port::kOk;
  }

  SimHost& host_;
  SheetSetPtr set_;
  Kind kind_;
  int subset_, sheet_;
};

// Members of a sheet set (its sheets, then its subsets, in the file's order) or
// of a subset (its sheets).
class SimComponents final : public SimCounted<port::SheetSetComponents> {
 public:
  SimComponents(SimHost& host, SheetSetPtr set, int subset) : host_(host), set_(std::move(set)), subset_(subset) {}
  port::Result TAVLET_PORT_CALL Next(port::SheetSetComponent** component) override {
    *component = nullptr;
    if (port::Result r = host_.Enter("SheetSetComponents::Next")) return r;
    const std::size_t sheets =
        subset_ < 0 ? set_->sheets.size() : set_->subsets[static_cast<std::size_t>(subset_)].sheets.size();
    const std::size_t subsets = subset_ < 0 ? set_->subsets.size() : 0;
    if (next_ < sheets) {
      *component = new SimComponent(host_, set_, SimComponent::Kind::Sheet, subset_, static_cast<int>(next_++));
      return port::kOk;
    }
    if (next_ < sheets + subsets) {
      int index = static_cast<int>(next_++ - sheets);
      *component = new SimComponent(host_, set_, SimComponent::Kind::Subset, index, -1);
      return port::kOk;
    }
    return port::kFalse;
  }

 private:
  SimHost& host_;
  SheetSetPtr set_;
  int subset_;
  std::size_t next_ = 0;
};

port::Result SimComponent::Sheets(port::SheetSetComponents** members) {
  *members = nullptr;
  if (port::Result r = host_.Enter("SheetSetComponent::Sheets")) return r;
  if (kind_ == Kind::Sheet) return host_.Fail(port::kNoInterface, "No such interface supported");
  *members = new SimComponents(host_, set_, kind_ == Kind::Subset ? subset_ : -1);
  return port::kOk;
}

class SimSheetSetDatabase final : public SimCounted<port::SheetSetDatabase> {
 public:
  SimSheetSetDatabase(SimHost& host, SheetSetPtr set) : host_(host), set_(std::move(set)) {}
  port::Result TAVLET_PORT_CALL SheetSet(port::SheetSetComponent** sheetSet) override {
    *sheetSet = nullptr;
    if (port::Result r = host_.Enter("SheetSetDatabase::SheetSet")) return r;
    *sheetSet = new SimComponent(host_, set_, SimComponent::Kind::SheetSet, -1, -1);
    return port::kOk;
  }

 private:
  SimHost& host_;
  SheetSetPtr set_;
};

class SimSheetSetManager final : public SimCounted<port::SheetSetManager> {
 public:
  explicit SimSheetSetManager(SimHost& host) : host_(host) {}
  port::Result TAVLET_PORT_CALL OpenDatabase(const char* path, bool, port::SheetSetDatabase** database) override {
    *database = nullptr;
    if (port::Result r = host_.Enter("SheetSetManager::OpenDatabase")) return r;
    std::string name = path ? path : "";
    std::string bytes;
    if (host_.Files().ReadFile(name, bytes) != FileError::None)
      return host_.Fail(port::kFail, "Cannot open the sheet set " + name + ".");
    auto set = std::make_shared<SheetSetDescription>();
    ParseResult parsed = ParseSheetSetDescription(bytes, name, *set);
    if (!parsed.ok) return host_.Fail(port::kFail, parsed.message);
    *database = new SimSheetSetDatabase(host_, set);
    return port::kOk;
  }

 private:
  SimHost& host_;
};

}  // namespace

port::Result SimHost::CreateSheetSetManager(port::SheetSetManager** manager) {
  *manager = nullptr;
  if (port::Result r = Enter("HostSession::CreateSheetSetManager")) return r;
  if (sheetSetsMissing_) return Fail(port::MakeResult(0x80040154u), "Class not registered");  // REGDB_E_CLASSNOTREG
  *manager = new SimSheetSetManager(*this);
  return port::kOk;
}

}  // namespace tavlet::sim
