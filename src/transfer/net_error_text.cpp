#include "platform/socket.h"

namespace tavlet {

const char* NetErrorText(NetError error) {
  switch (error) {
    case NetError::None:
      return "no error";
    case NetError::HostNotFound:
      return "host not found";
    case NetError::Refused:
      return "connection refused";
    case NetError::TimedOut:
      return "timed out";
    case NetError::Reset:
      return "connection dropped by the other side";
    case NetError::Unreachable:
      return "network unreachable";
    case NetError::Unsupported:
      return "no network support";
    case NetError::Other:
      break;
  }
  return "network error";
}

}  // namespace tavlet
