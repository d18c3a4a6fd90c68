#include "text/codepage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tavlet::text {
namespace {

// Double-byte characters whose trail byte looks like ASCII: the runtime never takes
// such a trail for the ASCII character it equals.
const std::string kTrailBackslash = "\x81\x5C";  // U+4E57, trail is '\'
const std::string kTrailUpperA = "\x81\x41";     // U+4E04, trail is 'A'
const std::string kTrailLowerA = "\x81\x61";     // U+4E64, trail is 'a'
const std::string kFullwidthA = "\xA3\xC1";      // U+FF21, FULLWIDTH LATIN CAPITAL A

int SignOf(int v) { return (v > 0) - (v < 0); }

TEST(CodePageTest, QuotedTextsAreCodePage936BytesAtRunTime) {
  EXPECT_EQ(std::string("没有找到"), "\xC3\xBB\xD3\xD0\xD5\xD2\xB5\xBD");
}

TEST(CodePageTest, CharacterLengthTakesTheTrailWithTheLead) {
  struct Case {
    std::string text;
    std::size_t pos;
    std::size_t length;
  } cases[] = {
      {"abc", 0, 1},
      {kTrailBackslash, 0, 2},
      {"a" + kTrailBackslash, 1, 2},
      {"\x81", 0, 1},                        // lead at the end
      {std::string("\x81\0x", 3), 0, 1},      // lead before NUL
      {"\x80" "a", 0, 1},                      // 0x80 is a single byte (euro)
      {"\xFF" "a", 0, 1},
      {"\xFE\xFE", 0, 2},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CharLength(c.text, c.pos), c.length) << c.text;
  }
  EXPECT_EQ(Mbclen("a"), 1);
  EXPECT_EQ(Mbclen(kTrailBackslash.c_str()), 2);
  EXPECT_EQ(Mbclen("\x80"), 1);
  EXPECT_EQ(Mbclen("\xFF"), 1);
}

struct CompareCase {
  std::string a;
  std::string b;
  int expected;  // sign
};

TEST(CodePageTest, MbscmpComparesCharacterValuesNotBytes) {
  const CompareCase cases[] = {
      {"abc", "abc", 0},
      {"abc", "abd", -1},
      {"abc", "ab", 1},
      {"", "", 0},
      {"ABC", "abc", -1},
      // 0xFF is one character of value 0xFF, below every double-byte character.
      {"\xFF", "\x81\x40", -1},
      {"\x80", "\x81\x40", -1},
      {kTrailBackslash, "\x81\x5D", -1},
      // A lead byte with nothing after it ends the text.
      {"ab\x81", "ab", 0},
      {std::string("ab\0c", 4), "ab", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(SignOf(Mbscmp(c.a, c.b)), c.expected) << c.a << " vs " << c.b;
    EXPECT_EQ(SignOf(Mbscmp(c.b, c.a)), -c.expected) << c.b << " vs " << c.a;
  }
}

TEST(CodePageTest, MbsicmpFoldsOnlyAsciiLettersToLowerCase) {
  const CompareCase cases[] = {
      {"ABC", "abc", 0},
      {"C:\\DWG\\Plan.DWG", "c:\\dwg\\plan.dwg", 0},
      {"abc", "ABD", -1},
      {"_", "A", -1},  // folded to 'a' (0x61), above '_' (0x5F)
      {"[", "a", -1},
      {kTrailUpperA, kTrailLowerA, -1},  // trail letters are not folded
      {kFullwidthA, "\xA3\xE1", -1},      // nor are full-width letters
      {"表X", "表x", 0},
      {"ab\x81", "AB", 0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(SignOf(Mbsicmp(c.a, c.b)), c.expected) << c.a << " vs " << c.b;
    EXPECT_EQ(SignOf(Mbsicmp(c.b, c.a)), -c.expected) << c.b << " vs " << c.a;
  }
}

TEST(CodePageTest, MbsicollSortsAsciiFoldedThenByCodePageOrder) {
  std::vector<std::string> names = {"\xB0\xA2", "b", "Z", "_x", "A", "\xB0\xA1", "a1", "\xFF", "ab", "\x81\x40"};
  std::stable_sort(names.begin(), names.end(),
                   [](const std::string& l, const std::string& r) { return Mbsicoll(l, r) < 0; });
  const std::vector<std::string> expected = {"_x", "A", "a1", "ab", "b", "Z", "\xFF", "\x81\x40", "\xB0\xA1", "\xB0\xA2"};
  EXPECT_EQ(names, expected);
  EXPECT_EQ(Mbsicoll("Plan", "PLAN"), 0);
}

TEST(CodePageTest, MbsstrMatchesOnlyAtCharacterStarts) {
  struct Case {
    std::string hay;
    std::string needle;
    std::size_t expected;
  } cases[] = {
      {"C:\\dwg\\a.dwg", "\\", 2},
      {"C:\\dwg\\a.dwg", ".dwg", 8},
      {"C:\\dwg\\a.dwg", "", 0},
      {"abc", "abcd", std::string::npos},
      {kTrailBackslash + "x", "\\", std::string::npos},
      {kTrailBackslash + "\\", "\\", 2},
      {kTrailUpperA, "A", std::string::npos},
      {"a" + kTrailUpperA + "A", "A", 3},
      {"x" + kTrailBackslash, kTrailBackslash, 1},
      {std::string("ab\0cd", 5), "cd", std::string::npos},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Mbsstr(c.hay, c.needle), c.expected) << c.hay << " / " << c.needle;
  }
}

TEST(CodePageTest, MbschrFindsWholeCharacters) {
  struct Case {
    std::string text;
    unsigned character;
    std::size_t expected;
  } cases[] = {
      {"a\\b", '\\', 1},
      {kTrailBackslash, '\\', std::string::npos},
      {kTrailBackslash + "\\", '\\', 2},
      {"x" + kTrailBackslash, 0x815C, 1},
      {"<" + kTrailUpperA, 'A', std::string::npos},
      {"abc", 0, 3},  // the terminator is found
      {"ab\x81", 0, std::string::npos},
      {"ab\x81", 'b', 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Mbschr(c.text, c.character), c.expected) << c.text;
  }
}

TEST(CodePageTest, MbslwrLowersSingleByteLettersOnly) {
  EXPECT_EQ(Mbslwr("C:\\DWG\\PLAN.DWG"), "c:\\dwg\\plan.dwg");
  EXPECT_EQ(Mbslwr("AB" + kTrailUpperA + "CD"), "ab" + kTrailUpperA + "cd");
  EXPECT_EQ(Mbslwr(kFullwidthA + "Q"), kFullwidthA + "q");
  EXPECT_EQ(Mbslwr(std::string("A\0B", 3)), std::string("a\0B", 3));
  EXPECT_EQ(Mbslwr("X\x81"), "x\x81");
}

TEST(CodePageTest, MbsncmpCountsCharactersAndMbsnbcmpBytes) {
  struct Case {
    std::string a;
    std::string b;
    std::size_t count;
    int chars;  // expected sign of Mbsncmp
    int bytes;  // expected sign of Mbsnbcmp
  } cases[] = {
      {"abcX", "abcY", 3, 0, 0},
      {"abcX", "abcY", 4, -1, -1},
      {"表X", "表Y", 2, -1, 0},  // two characters, but only the two bytes of 表
      {"表X", "表Y", 3, -1, -1},
      {"a表", "a衣", 2, -1, 0},  // the lead byte at the cut counts as the end
      {"a\xB1\xED", "a\xB1\xEE", 2, -1, 0},
      {"a\xB1\xED", "ab", 2, 1, -1},  // cut lead against 'b': end sorts first
      {"abc", "abd", 0, 0, 0},
      {"ab", "abc", 5, -1, -1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(SignOf(Mbsncmp(c.a, c.b, c.count)), c.chars) << c.a << " vs " << c.b << " n=" << c.count;
    EXPECT_EQ(SignOf(Mbsnbcmp(c.a, c.b, c.count)), c.bytes) << c.a << " vs " << c.b << " n=" << c.count;
  }
}

TEST(CodePageTest, MbccpyCopiesOneWholeCharacter) {
  char out[4] = {'.', '.', '.', '.'};
  EXPECT_EQ(Mbccpy(out, (kTrailBackslash + "z").c_str()), 2u);
  EXPECT_EQ(std::string(out, 3), kTrailBackslash + ".");
  EXPECT_EQ(Mbccpy(out, "qz"), 1u);
  EXPECT_EQ(std::string(out, 2), "q\x5C");
}

TEST(CodePageTest, ToUtf8ReplacesWhatIsNotCodePage936) {
  struct Case {
    std::string cp936;
    std::string utf8;
  } cases[] = {
      {"plain", "plain"},
      {"没有找到", "\xE6\xB2\xA1\xE6\x9C\x89\xE6\x89\xBE\xE5\x88\xB0"},
      {"\x80", "\xE2\x82\xAC"},                // euro on the single byte
      {kTrailBackslash, "\xE4\xB9\x97"},       // U+4E57
      {"\xAA\xA1", "\xEE\x80\x80"},            // first user-defined code: U+E000
      {"\xA2\xE3", "\xEE\x9D\xAC"},            // undefined in GBK: U+E76C
      {"\xFF", "\xEF\xBF\xBD"},
      {"a\x81", "a\xEF\xBF\xBD"},              // lead at the end
      {"\x81\x30", "\xEF\xBF\xBD" "0"},        // lead before a byte that is no trail
      {"\x81\x7F", "\xEF\xBF\xBD\x7F"},
      {std::string("a\0b", 3), std::string("a\0b", 3)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ToUtf8(c.cp936), c.utf8) << c.utf8;
  }
}

TEST(CodePageTest, FromUtf8ReplacesWhatCodePage936Lacks) {
  struct Case {
    std::string utf8;
    std::string cp936;
  } cases[] = {
      {"plain", "plain"},
      {"\xE2\x82\xAC", "\x80"},
      {"\xC3\xA9", "\xA8\xA6"},                // e acute is in the code page
      {"\xC4\x80", "?"},                       // A with macron is not
      {"\xF0\x9F\x98\x80", "?"},               // nor anything above the BMP
      {"\xFF" "a", "?a"},                      // broken UTF-8
      {"\xC0\x80", "??"},                      // overlong NUL
      {"\xED\xA0\x80", "???"},                 // a surrogate
      {"\xE6\xB2", "??"},                      // cut sequence
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FromUtf8(c.utf8), c.cp936) << c.utf8;
  }
}

TEST(CodePageTest, EveryDoubleByteCodeRoundTripsThroughUtf8) {
  std::vector<bool> seen(0x10000, false);
  int codes = 0;
  for (int lead = 0x81; lead <= 0xFE; ++lead) {
    for (int trail = 0x40; trail <= 0xFE; ++trail) {
      if (trail == 0x7F) continue;
      const std::string code{static_cast<char>(lead), static_cast<char>(trail)};
      const std::string utf8 = ToUtf8(code);
      // Every code maps into the BMP above U+007F: two or three UTF-8 bytes.
      ASSERT_TRUE(utf8.size() == 2 || utf8.size() == 3) << std::hex << lead << trail;
      unsigned u = utf8.size() == 2 ? ((utf8[0] & 0x1F) << 6) | (utf8[1] & 0x3F)
                                    : ((utf8[0] & 0x0F) << 12) | ((utf8[1] & 0x3F) << 6) | (utf8[2] & 0x3F);
      ASSERT_NE(u, 0xFFFDu) << std::hex << lead << trail;
      ASSERT_FALSE(seen[u]) << "two codes give U+" << std::hex << u;
      seen[u] = true;
      ASSERT_EQ(FromUtf8(utf8), code) << std::hex << lead << trail;
      ++codes;
    }
  }
  EXPECT_EQ(codes, 126 * 190);
  for (int byte = 0; byte < 0x80; ++byte) {
    const std::string single(1, static_cast<char>(byte));
    EXPECT_EQ(FromUtf8(ToUtf8(single)), single);
  }
}

}  // namespace
}  // namespace tavlet::text
