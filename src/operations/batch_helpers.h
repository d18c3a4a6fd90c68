// The two small objects the batches use: the host's modeless-operation notice and
// a system variable kept across a handler.
#pragma once

#include <string>

#include "host/port/host_session.h"

namespace tavlet::operations {

// Starts the named modeless operation on construction and ends it on destruction.
// The batches build it as a temporary in a statement of its own, so the host sees
// start and end back to back before any drawing is touched: the pair only tells
// that the operation runs; it brackets nothing, and must not be kept alive across
// a walk.
class ModelessNotice {
 public:
  ModelessNotice(port::Editor& editor, std::string name);
  ~ModelessNotice();
  ModelessNotice(const ModelessNotice&) = delete;
  ModelessNotice& operator=(const ModelessNotice&) = delete;

 private:
  port::Editor& editor_;
  std::string name_;
};

// Reads a system variable on construction; on destruction writes the copy back
// when asked to. A variable that could not be read is not written back.
class SystemVariableGuard {
 public:
  SystemVariableGuard(port::Editor& editor, std::string name, bool restore);
  ~SystemVariableGuard();
  SystemVariableGuard(const SystemVariableGuard&) = delete;
  SystemVariableGuard& operator=(const SystemVariableGuard&) = delete;

  bool Read() const { return read_; }
  const port::Value& Value() const { return value_; }
  const std::string& Text() const { return text_; }  // a string variable's value

 private:
  port::Editor& editor_;
  std::string name_;
  bool restore_;
  bool read_ = false;
  port::Value value_;
  std::string text_;
};

}  // namespace tavlet::operations
