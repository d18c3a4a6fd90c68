#include "operations/batch_helpers.h"

#include "host/com_error.h"

namespace tavlet::operations {

// The host answers a notice with a flag nobody acts on, so failures are let go.
ModelessNotice::ModelessNotice(port::Editor& editor, std::string name)
    : editor_(editor), name_(std::move(name)) {
  editor_.ModelessOperationStart(name_.c_str());
}

ModelessNotice::~ModelessNotice() { editor_.ModelessOperationEnded(name_.c_str()); }

SystemVariableGuard::SystemVariableGuard(port::Editor& editor, std::string name, bool restore)
    : editor_(editor), name_(std::move(name)), restore_(restore) {
  host::StringSink text;
  read_ = port::Succeeded(editor_.GetVariable(name_.c_str(), &value_, &text));
  text_ = std::move(text.text);
}

SystemVariableGuard::~SystemVariableGuard() {
  if (!restore_ || !read_) return;
  port::Value copy = value_;
  copy.text = copy.type == port::kValueString ? text_.c_str() : nullptr;
  editor_.SetVariable(name_.c_str(), &copy);
}

}  // namespace tavlet::operations
