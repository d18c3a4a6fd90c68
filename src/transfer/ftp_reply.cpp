#include "transfer/ftp_reply.h"

namespace tavlet::transfer {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The code of a line that starts with three digits, the first 1-5; -1 otherwise.
int CodeOf(std::string_view line) {
  if (line.size() < 3 || !IsDigit(line[0]) || !IsDigit(line[1]) || !IsDigit(line[2])) return -1;
  if (line[0] < '1' || line[0] > '5') return -1;
  return (line[0] - '0') * 100 + (line[1] - '0') * 10 + (line[2] - '0');
}

std::string Printable(std::string_view line) {
  std::string out;
  for (char c : line.substr(0, 40)) {
    unsigned char u = static_cast<unsigned char>(c);
    if (u >= 0x20 && u < 0x7F) {
      out += c;
    } else {
      static const char kHex[] = "0123456789ABCDEF";
      out += "\\x";
      out += kHex[u >> 4];
      out += kHex[u & 15];
    }
  }
  return out;
}

}  // namespace

std::string FtpReply::Text() const {
  if (lines.empty()) return {};
  const std::string& line = lines.size() == 1 ? lines.front() : lines.back();
  // A multi-line reply's last line is often the bare code; its first line then says more.
  std::string text = line.size() > 4 ? line.substr(4) : std::string();
  if (text.empty() && lines.size() > 1 && lines.front().size() > 4) text = lines.front().substr(4);
  return text;
}

FtpReplyParser::Result FtpReplyParser::Fail(std::string message) {
  error_ = std::move(message);
  return Result::Malformed;
}

// Lines end in CRLF; a bare LF is taken too, as many servers send it.
bool FtpReplyParser::TakeLine(std::string& line, Result& result) {
  const std::size_t end = buffer_.find('\n', consumed_);
  if (end == std::string::npos) {
    if (buffer_.size() - consumed_ > kMaxReplyLine + 1) {
      result = Fail("reply line longer than " + std::to_string(kMaxReplyLine) + " bytes");
    } else {
      result = Result::NeedMore;
    }
    return false;
  }
  std::size_t length = end - consumed_;
  if (length > 0 && buffer_[end - 1] == '\r') --length;
  if (length > kMaxReplyLine) {
    result = Fail("reply line longer than " + std::to_string(kMaxReplyLine) + " bytes");
    return false;
  }
  line.assign(buffer_, consumed_, length);
  consumed_ = end + 1;
  // Keep the buffer from growing with every reply of a long session.
  if (consumed_ > 64 * 1024 && consumed_ * 2 > buffer_.size()) {
    buffer_.erase(0, consumed_);
    consumed_ = 0;
  }
  return true;
}

FtpReplyParser::Result FtpReplyParser::Next(FtpReply& reply) {
  if (!error_.empty()) return Result::Malformed;
  std::string line;
  Result result = Result::NeedMore;
  while (TakeLine(line, result)) {
    if (!inReply_) {
      const int code = CodeOf(line);
      const char mark = line.size() > 3 ? line[3] : ' ';
      if (code < 0 || (mark != ' ' && mark != '-'))
        return Fail("not an FTP reply: \"" + Printable(line) + "\"");
      partial_ = FtpReply{code, {std::move(line)}};
      if (mark == ' ') {
        reply = std::move(partial_);
        return Result::Reply;
      }
      inReply_ = true;
      continue;
    }
    if (partial_.lines.size() >= kMaxReplyLines) {
      return Fail("multi-line reply longer than " + std::to_string(kMaxReplyLines) + " lines");
    }
    // Only the same code followed by a space (or nothing) ends it; other lines,
    // even ones that start with digits, are its text.
    const bool last = CodeOf(line) == partial_.code && (line.size() == 3 || line[3] == ' ');
    partial_.lines.push_back(std::move(line));
    if (last) {
      inReply_ = false;
      reply = std::move(partial_);
      return Result::Reply;
    }
  }
  return result;
}

}  // namespace tavlet::transfer
