#include "host/com_error.h"

namespace tavlet::host {

namespace {
// The real module has one host per process, reached from the main thread only.
port::HostSession* currentSession = nullptr;
}  // namespace

void SetCurrentSession(port::HostSession* session) { currentSession = session; }
port::HostSession* CurrentSession() { return currentSession; }

void RaiseComError(port::Result error) {
  if (error == port::kHostException) throw HostException(error);
  StringSink description;
  if (currentSession) currentSession->LastErrorDescription(&description);
  throw ComError(error, std::move(description.text));
}

}  // namespace tavlet::host
