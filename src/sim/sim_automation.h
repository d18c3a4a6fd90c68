// The simulated host's automation objects.
#pragma once

#include "host/port/automation.h"

namespace tavlet::sim {

class SimHost;
struct SimDocument;

// Reference counting for the simulated objects.
template <class Interface>
class SimCounted : public Interface {
 public:
  unsigned long TAVLET_PORT_CALL AddRef() override { return ++refs_; }
  unsigned long TAVLET_PORT_CALL Release() override {
    unsigned long left = --refs_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~SimCounted() = default;

 private:
  unsigned long refs_ = 1;
};

// The one automation object of a drawing. The drawing holds a reference until it
// closes; after that every call fails, as on a released drawing.
class SimAutomationDocument : public SimCounted<port::AcadDocument> {
 public:
  virtual void Detach() = 0;
};

port::AcadApplication* NewSimApplication(SimHost& host);
SimAutomationDocument* NewSimAutomationDocument(SimHost& host, SimDocument& doc);

}  // namespace tavlet::sim
