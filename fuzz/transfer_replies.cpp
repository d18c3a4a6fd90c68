// Fuzzes what the file-transfer client and the update check read from a server:
// the input's first byte picks the reader. FTP replies are fed in pieces whose
// sizes come from the input, so that every split of a line is tried; the
// update answer is judged as a whole, and the address and folder parsers get
// each reply's text.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "host/update_check.h"
#include "transfer/ftp_client.h"
#include "transfer/ftp_reply.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (data[0] & 1) {
    const tavlet::host::UpdateVerdict verdict =
        tavlet::host::JudgeUpdateAnswer("2.0.7", 200, input);
    if (verdict.status == tavlet::host::UpdateStatus::NewerBuild &&
        !tavlet::host::IsAcceptableUpdateUrl(verdict.url)) {
      __builtin_trap();
    }
    tavlet::host::BuildVersion::Parse(input);
    return 0;
  }
  tavlet::transfer::FtpReplyParser parser;
  std::size_t pos = 0;
  const std::size_t step = 1 + data[0] / 2;
  while (pos < input.size()) {
    const std::size_t n = std::min(step, input.size() - pos);
    parser.Feed(input.substr(pos, n));
    pos += n;
    tavlet::transfer::FtpReply reply;
    tavlet::transfer::FtpReplyParser::Result result;
    while ((result = parser.Next(reply)) == tavlet::transfer::FtpReplyParser::Result::Reply) {
      if (reply.code < 100 || reply.code > 599 || reply.lines.empty()) __builtin_trap();
      std::string host, folder;
      std::uint16_t port = 0;
      const std::string text = reply.Text();
      tavlet::transfer::ParsePasvReply(text, host, port);
      tavlet::transfer::ParseEpsvReply(text, port);
      tavlet::transfer::ParsePwdReply(text, folder);
    }
    if (result == tavlet::transfer::FtpReplyParser::Result::Malformed) break;
  }
  return 0;
}
