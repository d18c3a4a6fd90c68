// The socket port on POSIX: non-blocking sockets, each wait done by poll() so
// that the timeout holds for connect, accept, send and receive alike.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/socket.h"

namespace tavlet {
namespace {

NetError FromErrno(int error) {
  switch (error) {
    case ECONNREFUSED:
      return NetError::Refused;
    case ETIMEDOUT:
      return NetError::TimedOut;
    case ECONNRESET:
    case EPIPE:
    case ECONNABORTED:
    case ENOTCONN:
      return NetError::Reset;
    case ENETUNREACH:
    case EHOSTUNREACH:
    case ENETDOWN:
      return NetError::Unreachable;
    case EAFNOSUPPORT:
    case EPROTONOSUPPORT:
      return NetError::Unsupported;
    default:
      return NetError::Other;
  }
}

// Waits until `fd` is ready for `events`; TimedOut when the time runs out first.
NetError Wait(int fd, short events, int timeout) {
  pollfd entry{fd, events, 0};
  for (;;) {
    int ready = ::poll(&entry, 1, timeout < 0 ? -1 : timeout);
    if (ready > 0) return NetError::None;
    if (ready == 0) return NetError::TimedOut;
    if (errno != EINTR) return FromErrno(errno);
  }
}

NetAddress FromSockaddr(const sockaddr_storage& storage) {
  NetAddress address;
  char text[INET6_ADDRSTRLEN] = {};
  if (storage.ss_family == AF_INET) {
    const auto& v4 = reinterpret_cast<const sockaddr_in&>(storage);
    ::inet_ntop(AF_INET, &v4.sin_addr, text, sizeof text);
    address.port = ntohs(v4.sin_port);
  } else if (storage.ss_family == AF_INET6) {
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(storage);
    ::inet_ntop(AF_INET6, &v6.sin6_addr, text, sizeof text);
    address.port = ntohs(v6.sin6_port);
  }
  address.host = text;
  return address;
}

int NewSocket(int family) {
  int fd = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (fd >= 0 && family == AF_INET6) {
    int on = 1;
    ::setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
  }
  return fd;
}

class PosixSocket final : public Socket {
 public:
  PosixSocket(int fd, int timeout) : fd_(fd), timeout_(timeout) {}
  ~PosixSocket() override { ::close(fd_); }
  PosixSocket(const PosixSocket&) = delete;
  PosixSocket& operator=(const PosixSocket&) = delete;

  NetError Send(const char* data, std::size_t size) override {
    while (size > 0) {
      // MSG_NOSIGNAL: a peer that has gone must give an error here, not SIGPIPE.
      ssize_t sent = ::send(fd_, data, size, MSG_NOSIGNAL);
      if (sent >= 0) {
        data += sent;
        size -= static_cast<std::size_t>(sent);
        continue;
      }
      if (errno == EINTR) continue;
      if (errno != EAGAIN && errno != EWOULDBLOCK) return FromErrno(errno);
      if (NetError e = Wait(fd_, POLLOUT, timeout_); e != NetError::None) return e;
    }
    return NetError::None;
  }

  NetError Receive(char* buffer, std::size_t capacity, std::size_t& received) override {
    received = 0;
    for (;;) {
      ssize_t got = ::recv(fd_, buffer, capacity, 0);
      if (got >= 0) {
        received = static_cast<std::size_t>(got);
        return NetError::None;
      }
      if (errno == EINTR) continue;
      if (errno != EAGAIN && errno != EWOULDBLOCK) return FromErrno(errno);
      if (NetError e = Wait(fd_, POLLIN, timeout_); e != NetError::None) return e;
    }
  }

  NetError Accept(std::unique_ptr<Socket>& peer) override {
    for (;;) {
      int fd = ::accept4(fd_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
      if (fd >= 0) {
        peer = std::make_unique<PosixSocket>(fd, timeout_);
        return NetError::None;
      }
      if (errno == EINTR || errno == ECONNABORTED) continue;
      if (errno != EAGAIN && errno != EWOULDBLOCK) return FromErrno(errno);
      if (NetError e = Wait(fd_, POLLIN, timeout_); e != NetError::None) return e;
    }
  }

  void SetTimeout(int milliseconds) override { timeout_ = milliseconds; }

  NetAddress LocalAddress() const override {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    if (::getsockname(fd_, reinterpret_cast<sockaddr*>(&storage), &length) != 0) return {};
    return FromSockaddr(storage);
  }

  NetAddress PeerAddress() const override {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    if (::getpeername(fd_, reinterpret_cast<sockaddr*>(&storage), &length) != 0) return {};
    return FromSockaddr(storage);
  }

 private:
  int fd_;
  int timeout_;
};

NetError ConnectOne(const addrinfo& info, int timeout, std::unique_ptr<Socket>& socket) {
  int fd = NewSocket(info.ai_family);
  if (fd < 0) return FromErrno(errno);
  auto guard = std::make_unique<PosixSocket>(fd, timeout);
  if (::connect(fd, info.ai_addr, info.ai_addrlen) != 0) {
    if (errno != EINPROGRESS && errno != EINTR) return FromErrno(errno);
    if (NetError e = Wait(fd, POLLOUT, timeout); e != NetError::None) return e;
    int error = 0;
    socklen_t length = sizeof error;
    if (::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &length) != 0) return FromErrno(errno);
    if (error != 0) return FromErrno(error);
  }
  int on = 1;
  ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  socket = std::move(guard);
  return NetError::None;
}

class PosixNetwork final : public Network {
 public:
  NetError Connect(const std::string& host, std::uint16_t port, int timeout,
                   std::unique_ptr<Socket>& socket) override {
    socket.reset();
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const std::string service = std::to_string(port);
    if (::getaddrinfo(host.c_str(), service.c_str(), &hints, &found) != 0 || found == nullptr) {
      return NetError::HostNotFound;
    }
    NetError last = NetError::HostNotFound;
    for (const addrinfo* info = found; info != nullptr; info = info->ai_next) {
      last = ConnectOne(*info, timeout, socket);
      if (last == NetError::None) break;
    }
    ::freeaddrinfo(found);
    return last;
  }

  NetError Listen(const std::string& localHost, int timeout,
                  std::unique_ptr<Socket>& socket) override {
    socket.reset();
    sockaddr_storage storage{};
    socklen_t length = 0;
    auto& v4 = reinterpret_cast<sockaddr_in&>(storage);
    auto& v6 = reinterpret_cast<sockaddr_in6&>(storage);
    if (::inet_pton(AF_INET, localHost.c_str(), &v4.sin_addr) == 1) {
      v4.sin_family = AF_INET;
      length = sizeof v4;
    } else if (::inet_pton(AF_INET6, localHost.c_str(), &v6.sin6_addr) == 1) {
      v6.sin6_family = AF_INET6;
      length = sizeof v6;
    } else {
      return NetError::HostNotFound;
    }
    int fd = NewSocket(storage.ss_family);
    if (fd < 0) return FromErrno(errno);
    auto guard = std::make_unique<PosixSocket>(fd, timeout);
    if (::bind(fd, reinterpret_cast<sockaddr*>(&storage), length) != 0) return FromErrno(errno);
    if (::listen(fd, 1) != 0) return FromErrno(errno);
    socket = std::move(guard);
    return NetError::None;
  }
};

}  // namespace

Network& NativeNetwork() {
  static PosixNetwork network;
  return network;
}

}  // namespace tavlet
