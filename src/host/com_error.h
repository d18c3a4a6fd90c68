// The error that automation failures travel as. The bar's guarded blocks catch
// it where they would catch _com_error: an HRESULT and a description, nothing
// derived from std::exception, so that a catch of "anything else" stays apart.
#pragma once

#include <string>

#include "host/port/host_session.h"

namespace tavlet::host {

class ComError {
 public:
  ComError(port::Result error, std::string description) : error_(error), description_(std::move(description)) {}

  port::Result Error() const { return error_; }
  // The 32 bits as "0x%08X" shows them.
  unsigned int Bits() const { return port::ResultBits(error_); }
  const std::string& Description() const { return description_; }

 private:
  port::Result error_;
  std::string description_;
};

// What a call that failed with port::kHostException raises: not a ComError, so
// that it reaches a handler's clause for anything else, as a structured exception
// inside the host reaches catch(...).
class HostException {
 public:
  explicit HostException(port::Result error) : error_(error) {}
  port::Result Error() const { return error_; }

 private:
  port::Result error_;
};

// The session whose last error description a raised ComError carries. The module
// sets it at start-up and clears it at unload; tests set it around a sim.
void SetCurrentSession(port::HostSession* session);
port::HostSession* CurrentSession();

class ScopedSession {
 public:
  explicit ScopedSession(port::HostSession* session) : previous_(CurrentSession()) { SetCurrentSession(session); }
  ~ScopedSession() { SetCurrentSession(previous_); }
  ScopedSession(const ScopedSession&) = delete;
  ScopedSession& operator=(const ScopedSession&) = delete;

 private:
  port::HostSession* previous_;
};

// Raises a ComError with the session's description of the failure; a
// port::kHostException raises a HostException instead.
[[noreturn]] void RaiseComError(port::Result error);
inline void ThrowIfFailed(port::Result result) {
  if (port::Failed(result)) RaiseComError(result);
}

// Collects text from the host into a std::string.
class StringSink final : public port::TextSink {
 public:
  void TAVLET_PORT_CALL Assign(const char* bytes, long length) override {
    text.assign(bytes ? bytes : "", bytes && length > 0 ? static_cast<std::size_t>(length) : 0);
  }
  std::string text;
};

}  // namespace tavlet::host
