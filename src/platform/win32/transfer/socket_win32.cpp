// The socket port on Winsock. ws2_32.dll is looked up at run time, as the layer
// does with its other optional libraries, so a module that never transfers a
// file never loads it. Sockets are non-blocking; each wait is a select() on the
// one socket, read back from the sets by hand (FD_ISSET is a ws2_32 import).
#include <windows.h>
#include <winsock2.h>
#include <ws2tcpip.h>

#include <mutex>
#include <string>
#include <utility>

#include "platform/socket.h"
#include "platform/win32/transfer/library_function.h"

namespace tavlet {
namespace {

using win32::FindFunction;

struct Winsock {
  decltype(&::WSAStartup) startup = nullptr;
  decltype(&::WSAGetLastError) lastError = nullptr;
  decltype(&::socket) socket = nullptr;
  decltype(&::closesocket) close = nullptr;
  decltype(&::connect) connect = nullptr;
  decltype(&::bind) bind = nullptr;
  decltype(&::listen) listen = nullptr;
  decltype(&::accept) accept = nullptr;
  decltype(&::send) send = nullptr;
  decltype(&::recv) recv = nullptr;
  decltype(&::select) select = nullptr;
  decltype(&::ioctlsocket) ioctl = nullptr;
  decltype(&::getsockopt) getsockopt = nullptr;
  decltype(&::setsockopt) setsockopt = nullptr;
  decltype(&::getsockname) getsockname = nullptr;
  decltype(&::getpeername) getpeername = nullptr;
  decltype(&::getaddrinfo) getaddrinfo = nullptr;
  decltype(&::freeaddrinfo) freeaddrinfo = nullptr;
  decltype(&::getnameinfo) getnameinfo = nullptr;
  bool ready = false;
};

// Loaded and started once for the process; the library stays loaded until exit.
const Winsock& Api() {
  static Winsock api;
  static std::once_flag once;
  std::call_once(once, [] {
    HMODULE library = LoadLibraryA("ws2_32.dll");
    if (library == nullptr) return;
    Winsock w;
    bool found =
        FindFunction(library, "WSAStartup", w.startup) &&
        FindFunction(library, "WSAGetLastError", w.lastError) &&
        FindFunction(library, "socket", w.socket) &&
        FindFunction(library, "closesocket", w.close) &&
        FindFunction(library, "connect", w.connect) && FindFunction(library, "bind", w.bind) &&
        FindFunction(library, "listen", w.listen) && FindFunction(library, "accept", w.accept) &&
        FindFunction(library, "send", w.send) && FindFunction(library, "recv", w.recv) &&
        FindFunction(library, "select", w.select) &&
        FindFunction(library, "ioctlsocket", w.ioctl) &&
        FindFunction(library, "getsockopt", w.getsockopt) &&
        FindFunction(library, "setsockopt", w.setsockopt) &&
        FindFunction(library, "getsockname", w.getsockname) &&
        FindFunction(library, "getpeername", w.getpeername) &&
        FindFunction(library, "getaddrinfo", w.getaddrinfo) &&
        FindFunction(library, "freeaddrinfo", w.freeaddrinfo) &&
        FindFunction(library, "getnameinfo", w.getnameinfo);
    WSADATA data{};
    if (!found || w.startup(MAKEWORD(2, 2), &data) != 0) return;
    w.ready = true;
    api = w;
  });
  return api;
}

NetError FromWsa(int error) {
  switch (error) {
    case WSAECONNREFUSED:
      return NetError::Refused;
    case WSAETIMEDOUT:
      return NetError::TimedOut;
    case WSAECONNRESET:
    case WSAECONNABORTED:
    case WSAENOTCONN:
    case WSAESHUTDOWN:
    case WSAENETRESET:
      return NetError::Reset;
    case WSAENETUNREACH:
    case WSAEHOSTUNREACH:
    case WSAENETDOWN:
      return NetError::Unreachable;
    case WSAEAFNOSUPPORT:
    case WSAEPROTONOSUPPORT:
      return NetError::Unsupported;
    default:
      return NetError::Other;
  }
}

NetError LastError() { return FromWsa(Api().lastError()); }

enum class Ready { Read, Write, Connect };

NetError Wait(SOCKET s, Ready what, int timeout) {
  fd_set read{}, write{}, failed{};
  read.fd_count = write.fd_count = failed.fd_count = 1;
  read.fd_array[0] = write.fd_array[0] = failed.fd_array[0] = s;
  timeval limit{timeout / 1000, (timeout % 1000) * 1000};
  // A failed connect shows in the exception set only.
  const int count =
      Api().select(0, what == Ready::Read ? &read : nullptr, what == Ready::Read ? nullptr : &write,
                   what == Ready::Connect ? &failed : nullptr, timeout < 0 ? nullptr : &limit);
  if (count == 0) return NetError::TimedOut;
  if (count == SOCKET_ERROR) return LastError();
  if (what == Ready::Connect && failed.fd_count > 0) {
    int error = 0;
    int length = sizeof error;
    Api().getsockopt(s, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &length);
    return error != 0 ? FromWsa(error) : NetError::Refused;
  }
  return NetError::None;
}

NetAddress FromSockaddr(const sockaddr_storage& storage, int length) {
  char host[NI_MAXHOST] = {};
  char service[NI_MAXSERV] = {};
  NetAddress address;
  if (Api().getnameinfo(reinterpret_cast<const sockaddr*>(&storage), length, host, sizeof host,
                        service, sizeof service, NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
    return address;
  }
  address.host = host;
  address.port = static_cast<std::uint16_t>(std::stoul(service));
  return address;
}

bool MakeNonBlocking(SOCKET s) {
  u_long on = 1;
  return Api().ioctl(s, FIONBIO, &on) == 0;
}

class WinsockSocket final : public Socket {
 public:
  WinsockSocket(SOCKET s, int timeout) : socket_(s), timeout_(timeout) {}
  ~WinsockSocket() override { Api().close(socket_); }
  WinsockSocket(const WinsockSocket&) = delete;
  WinsockSocket& operator=(const WinsockSocket&) = delete;

  NetError Send(const char* data, std::size_t size) override {
    while (size > 0) {
      const int chunk = static_cast<int>(size < 0x40000000u ? size : 0x40000000u);
      const int sent = Api().send(socket_, data, chunk, 0);
      if (sent != SOCKET_ERROR) {
        data += sent;
        size -= static_cast<std::size_t>(sent);
        continue;
      }
      const int error = Api().lastError();
      if (error != WSAEWOULDBLOCK) return FromWsa(error);
      if (NetError e = Wait(socket_, Ready::Write, timeout_); e != NetError::None) return e;
    }
    return NetError::None;
  }

  NetError Receive(char* buffer, std::size_t capacity, std::size_t& received) override {
    received = 0;
    const int want = static_cast<int>(capacity < 0x40000000u ? capacity : 0x40000000u);
    for (;;) {
      const int got = Api().recv(socket_, buffer, want, 0);
      if (got != SOCKET_ERROR) {
        received = static_cast<std::size_t>(got);
        return NetError::None;
      }
      const int error = Api().lastError();
      if (error != WSAEWOULDBLOCK) return FromWsa(error);
      if (NetError e = Wait(socket_, Ready::Read, timeout_); e != NetError::None) return e;
    }
  }

  NetError Accept(std::unique_ptr<Socket>& peer) override {
    for (;;) {
      SOCKET s = Api().accept(socket_, nullptr, nullptr);
      if (s != INVALID_SOCKET) {
        // An accepted socket takes the listener's mode, but say it anyway.
        MakeNonBlocking(s);
        peer = std::make_unique<WinsockSocket>(s, timeout_);
        return NetError::None;
      }
      const int error = Api().lastError();
      if (error == WSAECONNRESET) continue;
      if (error != WSAEWOULDBLOCK) return FromWsa(error);
      if (NetError e = Wait(socket_, Ready::Read, timeout_); e != NetError::None) return e;
    }
  }

  void SetTimeout(int milliseconds) override { timeout_ = milliseconds; }

  NetAddress LocalAddress() const override {
    sockaddr_storage storage{};
    int length = sizeof storage;
    if (Api().getsockname(socket_, reinterpret_cast<sockaddr*>(&storage), &length) != 0) return {};
    return FromSockaddr(storage, length);
  }

  NetAddress PeerAddress() const override {
    sockaddr_storage storage{};
    int length = sizeof storage;
    if (Api().getpeername(socket_, reinterpret_cast<sockaddr*>(&storage), &length) != 0) return {};
    return FromSockaddr(storage, length);
  }

 private:
  SOCKET socket_;
  int timeout_;
};

NetError ConnectOne(const addrinfo& info, int timeout, std::unique_ptr<Socket>& socket) {
  SOCKET s = Api().socket(info.ai_family, SOCK_STREAM, IPPROTO_TCP);
  if (s == INVALID_SOCKET) return LastError();
  auto guard = std::make_unique<WinsockSocket>(s, timeout);
  if (!MakeNonBlocking(s)) return LastError();
  if (Api().connect(s, info.ai_addr, static_cast<int>(info.ai_addrlen)) == SOCKET_ERROR) {
    const int error = Api().lastError();
    if (error != WSAEWOULDBLOCK) return FromWsa(error);
    if (NetError e = Wait(s, Ready::Connect, timeout); e != NetError::None) return e;
  }
  BOOL on = TRUE;
  Api().setsockopt(s, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  socket = std::move(guard);
  return NetError::None;
}

class WinsockNetwork final : public Network {
 public:
  NetError Connect(const std::string& host, std::uint16_t port, int timeout,
                   std::unique_ptr<Socket>& socket) override {
    socket.reset();
    if (!Api().ready) return NetError::Unsupported;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const std::string service = std::to_string(port);
    if (Api().getaddrinfo(host.c_str(), service.c_str(), &hints, &found) != 0 || found == nullptr) {
      return NetError::HostNotFound;
    }
    NetError last = NetError::HostNotFound;
    for (const addrinfo* info = found; info != nullptr; info = info->ai_next) {
      last = ConnectOne(*info, timeout, socket);
      if (last == NetError::None) break;
    }
    Api().freeaddrinfo(found);
    return last;
  }

  NetError Listen(const std::string& localHost, int timeout,
                  std::unique_ptr<Socket>& socket) override {
    socket.reset();
    if (!Api().ready) return NetError::Unsupported;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICHOST | AI_PASSIVE;
    addrinfo* found = nullptr;
    if (Api().getaddrinfo(localHost.c_str(), "0", &hints, &found) != 0 || found == nullptr) {
      return NetError::HostNotFound;
    }
    NetError result = NetError::None;
    SOCKET s = Api().socket(found->ai_family, SOCK_STREAM, IPPROTO_TCP);
    if (s == INVALID_SOCKET) {
      result = LastError();
    } else {
      auto guard = std::make_unique<WinsockSocket>(s, timeout);
      if (!MakeNonBlocking(s) ||
          Api().bind(s, found->ai_addr, static_cast<int>(found->ai_addrlen)) != 0 ||
          Api().listen(s, 1) != 0) {
        result = LastError();
      } else {
        socket = std::move(guard);
      }
    }
    Api().freeaddrinfo(found);
    return result;
  }
};

}  // namespace

Network& NativeNetwork() {
  static WinsockNetwork network;
  return network;
}

}  // namespace tavlet
