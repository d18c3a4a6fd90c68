#include <gtest/gtest.h>

#include "host/update_check.h"

namespace tavlet::host {
namespace {

TEST(BuildVersion, ComparesPartByPartWithMissingPartsAsZero) {
  struct Case {
    const char* a;
    const char* b;
    int order;
  };
  const Case cases[] = {
      {"2.0.7", "2.0.7", 0}, {"2.0.7", "2.0.8", -1},   {"2.0.10", "2.0.9", 1},
      {"2.0", "2.0.0", 0},   {"2", "2.0.0.0", 0},      {"2.1", "2.0.99", 1},
      {"10.0", "9.9.9", 1},  {"02.0.7", "2.0.7", 0},   {"2.0.7.1", "2.0.7", 1},
      {"0", "0.0.1", -1},    {"999999999", "1000", 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.a) + " vs " + c.b);
    const auto a = BuildVersion::Parse(c.a);
    const auto b = BuildVersion::Parse(c.b);
    ASSERT_TRUE(a && b);
    EXPECT_EQ(a->Compare(*b), c.order);
    EXPECT_EQ(b->Compare(*a), -c.order);
  }
  EXPECT_EQ(BuildVersion::Parse("02.0.7")->ToString(), "2.0.7");

  const char* bad[] = {"",         ".",    "2.",      ".2",        "2..0",       "2.0.7.1.5",
                       "2.0-beta", "v2.0", " 2.0",    "2.0 ",      "1000000000", "2,0",
                       "-1",       "+1",   "2.0.7\n", "\xD2\xBB.0"};
  for (const char* text : bad) EXPECT_FALSE(BuildVersion::Parse(text)) << '"' << text << '"';
}

TEST(UpdateUrl, OnlyPlainHttpAndHttpsLinks) {
  const std::pair<std::string, bool> cases[] = {
      {"https://example.invalid/tavlet/2.0.9.zip", true},
      {"http://127.0.0.1:8080/x?y=1#z", true},
      {"https://", false},
      {"https:///path", false},
      {"ftp://example.invalid/a.zip", false},
      {"file:///C:/Windows/notepad.exe", false},
      {"javascript:alert(1)", false},
      {"HTTPS://example.invalid/", false},
      {"https://example.invalid/a b", false},
      {"https://example.invalid/\x7F", false},
      {"https://example.invalid/\xD6\xD0", false},
      {"https://example.invalid/" + std::string(kMaxUpdateUrl, 'a'), false},
      {"https://e/" + std::string(kMaxUpdateUrl - 10, 'a'), true},
  };
  for (const auto& [url, ok] : cases)
    EXPECT_EQ(IsAcceptableUpdateUrl(url), ok) << url.substr(0, 60);
}

TEST(UpdateAnswer, GoodAndHostileAnswers) {
  struct Case {
    const char* name;
    std::string body;
    UpdateStatus status;
    std::string detail;  // the verdict's detail, or the offered version
  };
  const std::string good =
      "tavlet-update 1\nversion 2.0.9\nurl https://example.invalid/tavlet-2.0.9.zip\n";
  const Case cases[] = {
      {"newer", good, UpdateStatus::NewerBuild, "2.0.9"},
      {"same", "tavlet-update 1\nversion 2.0.7\nurl https://e.invalid/a\n", UpdateStatus::UpToDate,
       "2.0.7"},
      {"same, fewer parts", "tavlet-update 1\nversion 2.0.7.0\nurl https://e.invalid/a",
       UpdateStatus::UpToDate, "2.0.7.0"},
      {"older", "tavlet-update 1\nversion 1.9\nurl https://e.invalid/a\n", UpdateStatus::UpToDate,
       "1.9"},
      {"CRLF, BOM, comments, blanks, unknown key",
       "\xEF\xBB\xBF# made by hand\r\n\r\ntavlet-update 1\r\nsha256 abc\r\nversion  2.1 "
       "\r\nurl\thttps://e.invalid/b\r\n",
       UpdateStatus::NewerBuild, "2.1"},
      {"keys in any order", "tavlet-update 1\nurl https://e.invalid/a\nnotes Fixes.\nversion 3\n",
       UpdateStatus::NewerBuild, "3"},
      {"empty", "", UpdateStatus::BadAnswer, "the answer is empty"},
      {"only blanks", "\n\n  \n", UpdateStatus::BadAnswer, "the answer is empty"},
      {"HTML error page", "<html><body>Not here</body></html>", UpdateStatus::BadAnswer,
       "line 1: the answer does not start with \"tavlet-update 1\""},
      {"later format", "tavlet-update 2\nversion 9\n", UpdateStatus::BadAnswer,
       "line 1: answer format \"2\" is not known to this build"},
      {"no version", "tavlet-update 1\nurl https://e.invalid/a\n", UpdateStatus::BadAnswer,
       "the answer names no version"},
      {"no link", "tavlet-update 1\nversion 9\n", UpdateStatus::BadAnswer,
       "the answer gives no link"},
      {"bad version", "tavlet-update 1\nversion 2.0-beta\nurl https://e.invalid/a\n",
       UpdateStatus::BadAnswer, "line 2: \"2.0-beta\" is not a version"},
      {"twice", "tavlet-update 1\nversion 3\nversion 4\nurl https://e.invalid/a\n",
       UpdateStatus::BadAnswer, "line 3: \"version\" given twice"},
      {"file link", "tavlet-update 1\nversion 3\nurl file:///C:/x.exe\n", UpdateStatus::BadAnswer,
       "line 3: the link is not an http or https address"},
      {"no value", "tavlet-update 1\nversion\n", UpdateStatus::BadAnswer,
       "line 2: not a \"key value\" line"},
      {"upper-case key", "tavlet-update 1\nVERSION 3\n", UpdateStatus::BadAnswer,
       "line 2: not a \"key value\" line"},
      {"NUL byte", std::string("tavlet-update 1\nversion 3\0\nurl https://e.invalid/a\n", 42),
       UpdateStatus::BadAnswer, "the answer holds a NUL byte"},
      {"bare CR inside", "tavlet-update 1\nversion 3\rurl https://e.invalid/a\n",
       UpdateStatus::BadAnswer, "line 2: a control character in the line"},
      {"escape sequence", "tavlet-update 1\nnotes \x1B[2J\n", UpdateStatus::BadAnswer,
       "line 2: a control character in the line"},
      {"long notes", "tavlet-update 1\nnotes " + std::string(kMaxUpdateNotes + 1, 'n') + "\n",
       UpdateStatus::BadAnswer, "line 2: the notes are longer than 200 bytes"},
      {"oversized", good + "# " + std::string(kMaxUpdateAnswer, 'x') + "\n", UpdateStatus::TooLarge,
       "the answer is larger than 4096 bytes"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const UpdateVerdict verdict = JudgeUpdateAnswer("2.0.7", 200, c.body);
    EXPECT_EQ(verdict.status, c.status) << verdict.detail;
    if (c.status == UpdateStatus::NewerBuild || c.status == UpdateStatus::UpToDate) {
      EXPECT_EQ(verdict.version, c.detail);
      EXPECT_EQ(verdict.detail, "");
      EXPECT_EQ(verdict.url.empty(), c.status == UpdateStatus::UpToDate);
    } else {
      EXPECT_EQ(verdict.detail, c.detail);
      EXPECT_EQ(verdict.url, "");
    }
  }
}

TEST(UpdateAnswer, TheVerdictCarriesLinkNotesAndHttpFailures) {
  UpdateVerdict verdict = JudgeUpdateAnswer(
      "2.0.7", 200,
      "tavlet-update 1\nversion 2.0.9\nurl https://e.invalid/a.zip\nnotes \xE4\xB8\xAD fixes\n");
  EXPECT_EQ(verdict.status, UpdateStatus::NewerBuild);
  EXPECT_EQ(verdict.url, "https://e.invalid/a.zip");
  EXPECT_EQ(verdict.notes, "中 fixes");  // code page 936, as the dialogs show it

  verdict =
      JudgeUpdateAnswer("2.0.7", 404, "tavlet-update 1\nversion 9\nurl https://e.invalid/a\n");
  EXPECT_EQ(verdict.status, UpdateStatus::HttpError);
  EXPECT_EQ(verdict.detail, "the server answered HTTP 404");
  EXPECT_EQ(verdict.version, "");

  verdict =
      JudgeUpdateAnswer("2.0.7-dev", 200, "tavlet-update 1\nversion 9\nurl https://e.invalid/a\n");
  EXPECT_EQ(verdict.status, UpdateStatus::BadAnswer);
  EXPECT_EQ(verdict.detail, "this build's own version \"2.0.7-dev\" cannot be compared");
}

}  // namespace
}  // namespace tavlet::host
