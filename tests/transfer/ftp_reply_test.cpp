#include <gtest/gtest.h>

#include "transfer/ftp_client.h"
#include "transfer/ftp_reply.h"

namespace tavlet::transfer {
namespace {

struct ReplyCase {
  const char* name;
  std::string bytes;
  std::vector<int> codes;          // replies expected in order
  std::vector<std::string> texts;  // Text() of each
  FtpReplyParser::Result end;      // what follows the last reply
};

TEST(FtpReplyParser, ReadsRepliesWholeFedAtOnceOrByteByByte) {
  const std::string longLine = "211 " + std::string(kMaxReplyLine - 4, 'a') + "\r\n";
  const std::string tooLong(kMaxReplyLine, 'x');
  constexpr FtpReplyParser::Result more = FtpReplyParser::Result::NeedMore;
  constexpr FtpReplyParser::Result bad = FtpReplyParser::Result::Malformed;
  // clang-format off
  const ReplyCase cases[] = {
      {"single", "220 ready\r\n", {220}, {"ready"}, more},
      {"bare LF", "230 in\n", {230}, {"in"}, more},
      {"code only", "200\r\n", {200}, {""}, more},
      {"two in one read", "331 pass?\r\n230 ok\r\n", {331, 230}, {"pass?", "ok"}, more},
      {"multi-line", "220-Welcome\r\n to the\r\n220 server\r\n", {220}, {"server"}, more},
      // Lines inside that start with other codes, or the same code and '-', do not end it.
      {"inner codes", "211-Features\r\n211-still\r\n226 not the end\r\n211 End\r\n", {211},
       {"End"}, more},
      {"bare last line", "211-Features:\r\n EPSV\r\n211\r\n", {211}, {"Features:"}, more},
      {"longest line", longLine, {211}, {std::string(kMaxReplyLine - 4, 'a')}, more},
      {"unfinished", "150 opening\r\n226 Transfer compl", {150}, {"opening"}, more},
      {"no code", "hello\r\n", {}, {}, bad},
      {"letter in code", "2x0 ok\r\n", {}, {}, bad},
      {"class 6", "650 odd\r\n", {}, {}, bad},
      {"class 0", "099 odd\r\n", {}, {}, bad},
      {"four digits", "2200 ok\r\n", {}, {}, bad},
      {"two digits", "22 ok\r\n", {}, {}, bad},
      {"empty line", "\r\n", {}, {}, bad},
      {"bad after good", "220 hi\r\nSSH-2.0\r\n", {220}, {"hi"}, bad},
      {"line too long", "220 " + tooLong + "\r\n", {}, {}, bad},
      {"line too long, no end yet", "220 " + tooLong + "0123456789", {}, {}, bad},
  };
  // clang-format on
  for (const ReplyCase& c : cases) {
    for (bool byteByByte : {false, true}) {
      SCOPED_TRACE(std::string(c.name) + (byteByByte ? " (byte by byte)" : ""));
      FtpReplyParser parser;
      std::vector<FtpReply> replies;
      FtpReplyParser::Result result = FtpReplyParser::Result::NeedMore;
      auto drain = [&] {
        FtpReply reply;
        while ((result = parser.Next(reply)) == FtpReplyParser::Result::Reply)
          replies.push_back(reply);
      };
      if (byteByByte) {
        for (char ch : c.bytes) {
          parser.Feed(std::string_view(&ch, 1));
          drain();
          if (result == FtpReplyParser::Result::Malformed) break;
        }
      } else {
        parser.Feed(c.bytes);
        drain();
      }
      ASSERT_EQ(replies.size(), c.codes.size());
      for (std::size_t i = 0; i < replies.size(); ++i) {
        EXPECT_EQ(replies[i].code, c.codes[i]);
        EXPECT_EQ(replies[i].Text(), c.texts[i]);
      }
      EXPECT_EQ(result, c.end);
      if (c.end == FtpReplyParser::Result::Malformed) {
        EXPECT_FALSE(parser.error().empty());
      }
    }
  }
}

TEST(FtpReplyParser, RefusesAMultiLineReplyWithoutEnd) {
  FtpReplyParser parser;
  parser.Feed("211-start\r\n");
  FtpReply reply;
  FtpReplyParser::Result result = FtpReplyParser::Result::NeedMore;
  for (std::size_t i = 0; i < kMaxReplyLines + 1 && result == FtpReplyParser::Result::NeedMore;
       ++i) {
    parser.Feed(" feature\r\n");
    result = parser.Next(reply);
  }
  EXPECT_EQ(result, FtpReplyParser::Result::Malformed);
  EXPECT_NE(parser.error().find("1000 lines"), std::string::npos);
  // It stays broken: the stream can no longer be trusted.
  parser.Feed("200 ok\r\n");
  EXPECT_EQ(parser.Next(reply), FtpReplyParser::Result::Malformed);
}

TEST(FtpAddresses, PassiveRepliesGiveAPortOrNothing) {
  struct Case {
    const char* text;
    bool ok;
    const char* host;
    int port;
  };
  const Case cases[] = {
      {"Entering Passive Mode (127,0,0,1,195,80).", true, "127.0.0.1", 195 * 256 + 80},
      {"=127,0,0,1,0,21", true, "127.0.0.1", 21},
      {"Passive 10 times (10,1,2,3,4,5)", true, "10.1.2.3", 4 * 256 + 5},
      {"Entering Passive Mode (127,0,0,1,300,1)", false, "", 0},
      {"Entering Passive Mode (127,0,0,1,1)", false, "", 0},
      {"Entering Passive Mode (127,0,0,1,0,0)", false, "", 0},
      {"Entering Passive Mode (1270,0,0,1,1,1)", false, "", 0},
      {"no address", false, "", 0},
      {"", false, "", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::string host;
    std::uint16_t port = 0;
    ASSERT_EQ(ParsePasvReply(c.text, host, port), c.ok);
    if (!c.ok) continue;
    EXPECT_EQ(host, c.host);
    EXPECT_EQ(port, c.port);
  }

  const Case extended[] = {
      {"Entering extended passive mode (|||6446|)", true, "", 6446},
      {"ok (!!!65535!)", true, "", 65535},
      {"(|||0|)", false, "", 0},
      {"(|||65536|)", false, "", 0},
      {"(|||6446)", false, "", 0},
      {"(||6446|)", false, "", 0},
      {"(1116446|)", false, "", 0},
      {"(|||644x|)", false, "", 0},
      {"no port", false, "", 0},
  };
  for (const Case& c : extended) {
    SCOPED_TRACE(c.text);
    std::uint16_t port = 0;
    ASSERT_EQ(ParseEpsvReply(c.text, port), c.ok);
    if (c.ok) {
      EXPECT_EQ(port, c.port);
    }
  }
}

TEST(FtpAddresses, ActiveArgumentsAndFolders) {
  EXPECT_EQ(PortArgument({"127.0.0.1", 50000}), "127,0,0,1,195,80");
  EXPECT_EQ(PortArgument({"10.0.0.2", 21}), "10,0,0,2,0,21");
  EXPECT_EQ(EprtArgument({"127.0.0.1", 50000}), "|1|127.0.0.1|50000|");
  EXPECT_EQ(EprtArgument({"::1", 21}), "|2|::1|21|");

  struct Case {
    const char* text;
    bool ok;
    const char* folder;
  };
  const Case folders[] = {
      {"\"/\" is the current directory.", true, "/"},
      {"\"/a \"\"quoted\"\" name\" is current", true, "/a \"quoted\" name"},
      {"\"\"", true, ""},
      {"\"/unclosed", false, ""},
      {"no quotes", false, ""},
  };
  for (const Case& c : folders) {
    SCOPED_TRACE(c.text);
    std::string folder;
    ASSERT_EQ(ParsePwdReply(c.text, folder), c.ok);
    if (c.ok) {
      EXPECT_EQ(folder, c.folder);
    }
  }
}

}  // namespace
}  // namespace tavlet::transfer
