// FtpClient: a small FTP client over the socket port. It logs on, switches to
// binary, and moves files in passive (EPSV where the server offers it, else PASV)
// or active (PORT, EPRT for IPv6) mode, a block at a time. Every reply code is
// checked; anything unexpected ends the call with an FtpError that says what was
// asked, what came back and why it is wrong.
//
// Names, remote and local, are code-page 936 text as everywhere in the system.
// When the server announces UTF8 the remote names travel as UTF-8 and listings
// are turned back; local names go to the C runtime unchanged.
//
// A download is written to "<local>.part" and renamed over the local file only
// when the server has confirmed the whole transfer: a failed download removes the
// part file and leaves any older local file as it was.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/socket.h"
#include "transfer/ftp_reply.h"
#include "transfer/local_files.h"

namespace tavlet::transfer {

enum class FtpErrorKind {
  None,
  Network,  // could not connect, or the connection failed
  TimedOut,
  Closed,       // the server closed the connection
  BadReply,     // a reply that is not FTP, or not one this command can get
  Refused,      // the server answered with a 4xx or 5xx code
  LogonFailed,  // user name or password refused
  LocalFile,    // the local file could not be read or written
  Incomplete,   // the data connection ended before the announced size
  Cancelled,
  NotConnected,
  BadArgument,  // a name with a line break, which would end the command early
};

struct FtpError {
  FtpErrorKind kind = FtpErrorKind::None;
  int replyCode = 0;    // the server's code, when a reply is the cause
  std::string message;  // one line, English, for a console or a log
  explicit operator bool() const { return kind != FtpErrorKind::None; }
};

enum class TransferMode { Passive, Active };

struct FtpOptions {
  TransferMode mode = TransferMode::Passive;
  bool useEpsv = true;  // when the server lists it in FEAT
  int timeoutMilliseconds = 30000;
  std::size_t blockSize = 256 * 1024;
};

class FtpClient {
 public:
  explicit FtpClient(Network& network = NativeNetwork(), LocalFiles& files = NativeLocalFiles());
  ~FtpClient();
  FtpClient(const FtpClient&) = delete;
  FtpClient& operator=(const FtpClient&) = delete;

  FtpOptions options;
  // Called after each block with the bytes moved so far; returning false cancels.
  std::function<bool(std::uint64_t done)> onProgress;

  FtpError Connect(const std::string& host, std::uint16_t port = 21);
  // USER, PASS when asked for, FEAT, OPTS UTF8 ON when offered, TYPE I.
  FtpError Logon(const std::string& user, const std::string& password);
  FtpError ChangeFolder(const std::string& remote);
  FtpError CurrentFolder(std::string& remote);
  // LIST (long form) or NLST (names only) of `remote` ("" for the current folder).
  FtpError List(const std::string& remote, bool namesOnly, std::string& listing);
  FtpError Download(const std::string& remote, const std::string& local);
  FtpError Upload(const std::string& local, const std::string& remote);
  FtpError Delete(const std::string& remote);
  // The size the server reports (SIZE); Refused when it has none.
  FtpError Size(const std::string& remote, std::uint64_t& size);
  // QUIT, then the connection is closed whatever the answer.
  FtpError Quit();

  bool Connected() const { return control_ != nullptr; }
  bool ServerOffers(const std::string& feature) const;
  // The last reply read, for tools that show it.
  const FtpReply& LastReply() const { return last_; }

 private:
  FtpError SendCommand(const std::string& verb, const std::string& argument = {});
  FtpError ReadReply(FtpReply& reply);
  // Sends and reads the reply, which must be of class `expected` (2 or 3).
  FtpError Command(const std::string& verb, const std::string& argument, int expectedClass,
                   FtpReply* reply = nullptr);
  FtpError Unexpected(const std::string& verb, const FtpReply& reply);
  FtpError Fail(FtpErrorKind kind, std::string message, int code = 0);
  FtpError NetFailure(NetError error, const std::string& during);

  class DataChannel;
  // Opens the data channel as the mode says and sends `verb`; on success the
  // preliminary reply has been read and `data` is connected.
  FtpError StartTransfer(const std::string& verb, const std::string& argument,
                         std::unique_ptr<Socket>& data);
  FtpError OpenPassive(std::unique_ptr<Socket>& data);
  FtpError FinishTransfer(const std::string& verb);
  std::string Wire(const std::string& name) const;
  std::string FromWire(const std::string& text) const;
  void Drop();

  Network& network_;
  LocalFiles& files_;
  std::unique_ptr<Socket> control_;
  FtpReplyParser parser_;
  FtpReply last_;
  std::vector<std::string> features_;
  bool utf8_ = false;
  std::vector<char> block_;
};

// Addresses in 227 and 229 replies; false when the text holds none.
bool ParsePasvReply(const std::string& text, std::string& host, std::uint16_t& port);
bool ParseEpsvReply(const std::string& text, std::uint16_t& port);
// The argument of PORT or EPRT for an address.
std::string PortArgument(const NetAddress& address);
std::string EprtArgument(const NetAddress& address);
// The folder of a 257 reply: the first quoted text, doubled quotes undone.
bool ParsePwdReply(const std::string& text, std::string& folder);

}  // namespace tavlet::transfer
