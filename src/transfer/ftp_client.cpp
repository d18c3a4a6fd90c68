#include "transfer/ftp_client.h"

#include <algorithm>
#include <utility>

#include "text/codepage.h"

namespace tavlet::transfer {
namespace {

constexpr std::size_t kMaxListing = 64u * 1024 * 1024;

std::string Upper(std::string text) {
  for (char& c : text) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return text;
}

// What a command looks like in a message: never the password.
std::string Shown(const std::string& verb, const std::string& argument) {
  if (verb == "PASS") return "PASS ****";
  return argument.empty() ? verb : verb + " " + argument;
}

}  // namespace

FtpClient::FtpClient(Network& network, LocalFiles& files) : network_(network), files_(files) {}

FtpClient::~FtpClient() = default;

FtpError FtpClient::Fail(FtpErrorKind kind, std::string message, int code) {
  return FtpError{kind, code, std::move(message)};
}

void FtpClient::Drop() {
  control_.reset();
  parser_ = FtpReplyParser();
  features_.clear();
  utf8_ = false;
}

FtpError FtpClient::NetFailure(NetError error, const std::string& during) {
  const FtpErrorKind kind = error == NetError::TimedOut ? FtpErrorKind::TimedOut
                            : error == NetError::Reset  ? FtpErrorKind::Closed
                                                        : FtpErrorKind::Network;
  return Fail(kind, during + ": " + NetErrorText(error));
}

FtpError FtpClient::SendCommand(const std::string& verb, const std::string& argument) {
  if (!control_) return Fail(FtpErrorKind::NotConnected, verb + ": not connected");
  if (argument.find_first_of("\r\n") != std::string::npos) {
    return Fail(FtpErrorKind::BadArgument, verb + ": a name must not hold a line break");
  }
  const std::string line = (argument.empty() ? verb : verb + " " + argument) + "\r\n";
  if (NetError e = control_->Send(line.data(), line.size()); e != NetError::None) {
    FtpError error = NetFailure(e, "sending " + Shown(verb, argument));
    Drop();
    return error;
  }
  return {};
}

FtpError FtpClient::ReadReply(FtpReply& reply) {
  if (!control_) return Fail(FtpErrorKind::NotConnected, "not connected");
  char buffer[4096];
  for (;;) {
    switch (parser_.Next(reply)) {
      case FtpReplyParser::Result::Reply:
        last_ = reply;
        return {};
      case FtpReplyParser::Result::Malformed: {
        FtpError error =
            Fail(FtpErrorKind::BadReply, "malformed reply from the server: " + parser_.error());
        Drop();
        return error;
      }
      case FtpReplyParser::Result::NeedMore:
        break;
    }
    std::size_t got = 0;
    if (NetError e = control_->Receive(buffer, sizeof buffer, got); e != NetError::None) {
      FtpError error = NetFailure(e, "waiting for the server's reply");
      Drop();
      return error;
    }
    if (got == 0) {
      FtpError error =
          Fail(FtpErrorKind::Closed,
               parser_.MidReply() ? "the server closed the connection in the middle of a reply"
                                  : "the server closed the connection");
      Drop();
      return error;
    }
    parser_.Feed(std::string_view(buffer, got));
  }
}

FtpError FtpClient::Unexpected(const std::string& verb, const FtpReply& reply) {
  const std::string what = verb + ": " + std::to_string(reply.code) + " " + FromWire(reply.Text());
  if (reply.Class() == 4 || reply.Class() == 5)
    return Fail(FtpErrorKind::Refused, "refused: " + what, reply.code);
  return Fail(FtpErrorKind::BadReply, "unexpected reply to " + what, reply.code);
}

FtpError FtpClient::Command(const std::string& verb, const std::string& argument, int expectedClass,
                            FtpReply* out) {
  if (FtpError e = SendCommand(verb, argument)) return e;
  FtpReply reply;
  if (FtpError e = ReadReply(reply)) return e;
  if (out != nullptr) *out = reply;
  if (reply.Class() != expectedClass) return Unexpected(verb, reply);
  return {};
}

std::string FtpClient::Wire(const std::string& name) const {
  return utf8_ ? text::ToUtf8(name) : name;
}

std::string FtpClient::FromWire(const std::string& text) const {
  return utf8_ ? text::FromUtf8(text) : text;
}

bool FtpClient::ServerOffers(const std::string& feature) const {
  return std::find(features_.begin(), features_.end(), Upper(feature)) != features_.end();
}

FtpError FtpClient::Connect(const std::string& host, std::uint16_t port) {
  Drop();
  std::unique_ptr<Socket> socket;
  if (NetError e = network_.Connect(host, port, options.timeoutMilliseconds, socket);
      e != NetError::None) {
    return NetFailure(e, "connecting to " + host + ":" + std::to_string(port));
  }
  control_ = std::move(socket);
  // 120 asks to wait for the 220 that follows it.
  for (;;) {
    FtpReply reply;
    if (FtpError e = ReadReply(reply)) return e;
    if (reply.code == 120) continue;
    if (reply.code == 220) return {};
    FtpError error = Unexpected("connect", reply);
    Drop();
    return error;
  }
}

FtpError FtpClient::Logon(const std::string& user, const std::string& password) {
  FtpReply reply;
  if (FtpError e = SendCommand("USER", user)) return e;
  if (FtpError e = ReadReply(reply)) return e;
  if (reply.code == 331) {
    if (FtpError e = SendCommand("PASS", password)) return e;
    if (FtpError e = ReadReply(reply)) return e;
  }
  if (reply.code == 332) {
    return Fail(FtpErrorKind::LogonFailed,
                "logon: the server asks for an account, which is not supported", 332);
  }
  if (reply.Class() == 4 || reply.Class() == 5) {
    return Fail(FtpErrorKind::LogonFailed,
                "logon refused: " + std::to_string(reply.code) + " " + reply.Text(), reply.code);
  }
  if (reply.Class() != 2) return Unexpected("logon", reply);

  // FEAT is optional: a server without it simply offers nothing extra.
  if (FtpError e = SendCommand("FEAT")) return e;
  if (FtpError e = ReadReply(reply)) return e;
  features_.clear();
  if (reply.code == 211) {
    for (std::size_t i = 1; i + 1 < reply.lines.size(); ++i) {
      const std::string& line = reply.lines[i];
      const std::size_t start = line.find_first_not_of(' ');
      if (start == std::string::npos) continue;
      const std::size_t end = line.find(' ', start);
      features_.push_back(
          Upper(line.substr(start, end == std::string::npos ? std::string::npos : end - start)));
    }
  }
  // A server that lists UTF8 takes UTF-8 names whether or not it answers OPTS.
  if (ServerOffers("UTF8")) {
    if (FtpError e = SendCommand("OPTS", "UTF8 ON")) return e;
    if (FtpError e = ReadReply(reply)) return e;
    utf8_ = true;
  }
  return Command("TYPE", "I", 2);
}

FtpError FtpClient::ChangeFolder(const std::string& remote) {
  return Command("CWD", Wire(remote), 2);
}

FtpError FtpClient::CurrentFolder(std::string& remote) {
  FtpReply reply;
  if (FtpError e = Command("PWD", {}, 2, &reply)) return e;
  std::string folder;
  if (reply.code != 257 || !ParsePwdReply(reply.Text(), folder)) {
    return Fail(FtpErrorKind::BadReply, "PWD: no quoted folder in \"" + reply.Text() + "\"",
                reply.code);
  }
  remote = FromWire(folder);
  return {};
}

FtpError FtpClient::Delete(const std::string& remote) { return Command("DELE", Wire(remote), 2); }

FtpError FtpClient::Size(const std::string& remote, std::uint64_t& size) {
  FtpReply reply;
  if (FtpError e = Command("SIZE", Wire(remote), 2, &reply)) return e;
  const std::string text = reply.Text();
  std::uint64_t value = 0;
  std::size_t digits = 0;
  for (char c : text) {
    if (c < '0' || c > '9' || digits == 19) break;
    value = value * 10 + static_cast<std::uint64_t>(c - '0');
    ++digits;
  }
  if (reply.code != 213 || digits == 0 || digits != text.size()) {
    return Fail(FtpErrorKind::BadReply, "SIZE: not a size: \"" + text + "\"", reply.code);
  }
  size = value;
  return {};
}

FtpError FtpClient::Quit() {
  if (!control_) return {};
  FtpError error = Command("QUIT", {}, 2);
  Drop();
  return error;
}

FtpError FtpClient::OpenPassive(std::unique_ptr<Socket>& data) {
  FtpReply reply;
  // The data connection goes to the host of the control connection whatever the
  // reply names, so that a server cannot send the client elsewhere.
  const std::string host = control_->PeerAddress().host;
  std::uint16_t port = 0;
  bool extended = options.useEpsv && (ServerOffers("EPSV") || control_->PeerAddress().IsV6());
  if (extended) {
    if (FtpError e = SendCommand("EPSV")) return e;
    if (FtpError e = ReadReply(reply)) return e;
    if (reply.code == 229) {
      if (!ParseEpsvReply(reply.Text(), port)) {
        return Fail(FtpErrorKind::BadReply, "EPSV: no port in \"" + reply.Text() + "\"",
                    reply.code);
      }
    } else if (reply.Class() == 5 && !control_->PeerAddress().IsV6()) {
      extended = false;
    } else {
      return Unexpected("EPSV", reply);
    }
  }
  if (!extended) {
    if (FtpError e = Command("PASV", {}, 2, &reply)) return e;
    std::string named;
    if (reply.code != 227 || !ParsePasvReply(reply.Text(), named, port)) {
      return Fail(FtpErrorKind::BadReply, "PASV: no address in \"" + reply.Text() + "\"",
                  reply.code);
    }
  }
  if (NetError e = network_.Connect(host, port, options.timeoutMilliseconds, data);
      e != NetError::None) {
    return NetFailure(e, "opening the data connection to " + host + ":" + std::to_string(port));
  }
  return {};
}

FtpError FtpClient::StartTransfer(const std::string& verb, const std::string& argument,
                                  std::unique_ptr<Socket>& data) {
  data.reset();
  if (!control_) return Fail(FtpErrorKind::NotConnected, verb + ": not connected");
  std::unique_ptr<Socket> listener;
  if (options.mode == TransferMode::Passive) {
    if (FtpError e = OpenPassive(data)) return e;
  } else {
    const NetAddress local = control_->LocalAddress();
    if (NetError e = network_.Listen(local.host, options.timeoutMilliseconds, listener);
        e != NetError::None) {
      return NetFailure(e, "listening for the data connection on " + local.host);
    }
    const NetAddress address{local.host, listener->LocalAddress().port};
    if (address.IsV6()) {
      if (FtpError e = Command("EPRT", EprtArgument(address), 2)) return e;
    } else {
      if (FtpError e = Command("PORT", PortArgument(address), 2)) return e;
    }
  }
  FtpReply reply;
  if (FtpError e = SendCommand(verb, argument)) return e;
  if (FtpError e = ReadReply(reply)) return e;
  if (reply.Class() != 1) {
    data.reset();
    return Unexpected(Shown(verb, FromWire(argument)), reply);
  }
  if (listener) {
    // The server has taken the command and will answer it once more; a session
    // left here would read that answer as the reply to its next command.
    if (NetError e = listener->Accept(data); e != NetError::None) {
      FtpError error = NetFailure(e, verb + ": waiting for the server's data connection");
      Drop();
      return error;
    }
    const std::string from = data->PeerAddress().host;
    if (from != control_->PeerAddress().host) {
      data.reset();
      Drop();
      return Fail(FtpErrorKind::Network,
                  verb + ": the data connection came from " + from + ", not from the server");
    }
  }
  return {};
}

FtpError FtpClient::FinishTransfer(const std::string& verb) {
  FtpReply reply;
  if (FtpError e = ReadReply(reply)) {
    e.message = verb + ": " + e.message + " before confirming the transfer";
    return e;
  }
  if (reply.Class() != 2) return Unexpected(verb, reply);
  return {};
}

FtpError FtpClient::List(const std::string& remote, bool namesOnly, std::string& listing) {
  listing.clear();
  const std::string verb = namesOnly ? "NLST" : "LIST";
  std::unique_ptr<Socket> data;
  if (FtpError e = StartTransfer(verb, Wire(remote), data)) return e;
  std::string received;
  block_.resize(std::max<std::size_t>(options.blockSize, 4096));
  for (;;) {
    std::size_t got = 0;
    if (NetError e = data->Receive(block_.data(), block_.size(), got); e != NetError::None) {
      data.reset();
      FtpError error = NetFailure(e, verb + ": reading the listing");
      FinishTransfer(verb);
      return error;
    }
    if (got == 0) break;
    received.append(block_.data(), got);
    if (received.size() > kMaxListing) {
      data.reset();
      FinishTransfer(verb);
      return Fail(FtpErrorKind::BadReply, verb + ": the listing is larger than 64 MB");
    }
  }
  data.reset();
  if (FtpError e = FinishTransfer(verb)) return e;
  listing = FromWire(received);
  return {};
}

FtpError FtpClient::Download(const std::string& remote, const std::string& local) {
  if (!control_) return Fail(FtpErrorKind::NotConnected, "RETR: not connected");
  std::uint64_t expected = 0;
  bool sized = false;
  // The size lets a transfer cut short be told from a whole one even when the
  // server never says so; without SIZE the final reply alone decides.
  if (ServerOffers("SIZE")) {
    if (FtpError e = Size(remote, expected); !e) {
      sized = true;
    } else if (!Connected()) {
      return e;
    }
  }
  const std::string part = local + ".part";
  std::unique_ptr<LocalFile> file = files_.Create(part);
  if (!file) return Fail(FtpErrorKind::LocalFile, "cannot create the local file " + part);
  auto discard = [&](FtpError error) {
    file.reset();
    files_.Remove(part);
    return error;
  };

  std::unique_ptr<Socket> data;
  if (FtpError e = StartTransfer("RETR", Wire(remote), data)) return discard(e);
  block_.resize(std::max<std::size_t>(options.blockSize, 4096));
  std::uint64_t done = 0;
  FtpError failure;
  for (;;) {
    std::size_t got = 0;
    if (NetError e = data->Receive(block_.data(), block_.size(), got); e != NetError::None) {
      failure = NetFailure(e, "RETR " + remote + ": data connection failed after " +
                                  std::to_string(done) + " bytes");
      break;
    }
    if (got == 0) break;
    if (!file->Write(block_.data(), got)) {
      failure = Fail(FtpErrorKind::LocalFile, "cannot write the local file " + part);
      break;
    }
    done += got;
    if (onProgress && !onProgress(done)) {
      failure = Fail(FtpErrorKind::Cancelled, "RETR " + remote + ": cancelled");
      break;
    }
  }
  data.reset();
  FtpError finish = Connected() ? FinishTransfer("RETR " + remote) : FtpError{};
  if (failure) return discard(failure);
  if (finish) {
    finish.message += " (" + std::to_string(done) + " bytes received)";
    return discard(finish);
  }
  if (sized && done != expected) {
    return discard(Fail(FtpErrorKind::Incomplete, "RETR " + remote + ": received " +
                                                      std::to_string(done) + " of " +
                                                      std::to_string(expected) + " bytes"));
  }
  if (!file->Close())
    return discard(Fail(FtpErrorKind::LocalFile, "cannot write the local file " + part));
  file.reset();
  if (!files_.Rename(part, local)) {
    return discard(Fail(FtpErrorKind::LocalFile, "cannot rename " + part + " to " + local));
  }
  return {};
}

FtpError FtpClient::Upload(const std::string& local, const std::string& remote) {
  if (!control_) return Fail(FtpErrorKind::NotConnected, "STOR: not connected");
  std::unique_ptr<LocalFile> file = files_.OpenRead(local);
  if (!file) return Fail(FtpErrorKind::LocalFile, "cannot open the local file " + local);
  std::unique_ptr<Socket> data;
  if (FtpError e = StartTransfer("STOR", Wire(remote), data)) return e;
  block_.resize(std::max<std::size_t>(options.blockSize, 4096));
  std::uint64_t done = 0;
  FtpError failure;
  for (;;) {
    std::size_t got = 0;
    if (!file->Read(block_.data(), block_.size(), got)) {
      failure = Fail(FtpErrorKind::LocalFile, "cannot read the local file " + local);
      break;
    }
    if (got == 0) break;
    if (NetError e = data->Send(block_.data(), got); e != NetError::None) {
      failure = NetFailure(e, "STOR " + remote + ": data connection failed after " +
                                  std::to_string(done) + " bytes");
      break;
    }
    done += got;
    if (onProgress && !onProgress(done)) {
      failure = Fail(FtpErrorKind::Cancelled, "STOR " + remote + ": cancelled");
      break;
    }
  }
  // Closing the data connection is what tells the server the file is complete.
  data.reset();
  FtpError finish = Connected() ? FinishTransfer("STOR " + remote) : FtpError{};
  if (failure) return failure;
  if (finish) finish.message += " (" + std::to_string(done) + " bytes sent)";
  return finish;
}

}  // namespace tavlet::transfer
