// TCP sockets for the file-transfer client, behind one interface so that the
// protocol logic runs over POSIX sockets natively and over Winsock on Windows.
// Every wait is bounded by the socket's timeout; nothing here blocks forever.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace tavlet {

enum class NetError {
  None,
  HostNotFound,
  Refused,
  TimedOut,
  Reset,  // the peer dropped the connection
  Unreachable,
  Unsupported,  // no socket layer (Winsock could not be loaded) or a wrong address family
  Other,
};

// A short English phrase for messages ("connection refused").
const char* NetErrorText(NetError error);

// A numeric address ("127.0.0.1", "::1") and a port.
struct NetAddress {
  std::string host;
  std::uint16_t port = 0;
  bool IsV6() const { return host.find(':') != std::string::npos; }
};

class Socket {
 public:
  virtual ~Socket() = default;

  // Sends every byte; fails when the peer stops taking them for a whole timeout.
  virtual NetError Send(const char* data, std::size_t size) = 0;
  // Takes what has arrived, up to `capacity` bytes, waiting for at least one.
  // `received` 0 with NetError::None means the peer closed its side.
  virtual NetError Receive(char* buffer, std::size_t capacity, std::size_t& received) = 0;
  // On a listening socket: the first connection made to it.
  virtual NetError Accept(std::unique_ptr<Socket>& peer) = 0;

  virtual void SetTimeout(int milliseconds) = 0;
  virtual NetAddress LocalAddress() const = 0;
  virtual NetAddress PeerAddress() const = 0;
};

class Network {
 public:
  virtual ~Network() = default;

  // `host` is a name or a numeric address.
  virtual NetError Connect(const std::string& host, std::uint16_t port, int timeoutMilliseconds,
                           std::unique_ptr<Socket>& socket) = 0;
  // A socket listening on the numeric address `localHost`, on a port the system
  // picks (read it back with LocalAddress).
  virtual NetError Listen(const std::string& localHost, int timeoutMilliseconds,
                          std::unique_ptr<Socket>& socket) = 0;
};

// The process's real sockets (POSIX or Winsock build).
Network& NativeNetwork();

}  // namespace tavlet
