// Replies of an FTP server, read from the control connection's byte stream. A
// reply is one line "ddd text" or several, from "ddd-text" to the first line that
// starts with the same three digits and a space. The server may be hostile: lines
// and replies have size limits, and anything else is a malformed reply.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tavlet::transfer {

inline constexpr std::size_t kMaxReplyLine = 8 * 1024;
inline constexpr std::size_t kMaxReplyLines = 1000;

struct FtpReply {
  int code = 0;
  std::vector<std::string> lines;  // as received, without their line ends
  // The text after the code on the first line, or on the last for a multi-line reply.
  std::string Text() const;
  int Class() const { return code / 100; }
};

class FtpReplyParser {
 public:
  enum class Result { NeedMore, Reply, Malformed };

  // Takes bytes received on the control connection.
  void Feed(std::string_view bytes) { buffer_.append(bytes); }
  // The next whole reply; Malformed leaves the reason in error().
  Result Next(FtpReply& reply);
  const std::string& error() const { return error_; }
  // Whether bytes of a reply not yet complete have been fed.
  bool MidReply() const { return inReply_ || buffer_.size() > consumed_; }

 private:
  bool TakeLine(std::string& line, Result& result);
  Result Fail(std::string message);

  std::string buffer_;
  std::size_t consumed_ = 0;
  FtpReply partial_;
  bool inReply_ = false;
  std::string error_;
};

}  // namespace tavlet::transfer
