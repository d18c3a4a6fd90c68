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
constexpr std::size_t npos = std::string::npos;

int SignOf(int v) { return (v > 0) - (v < 0); }

TEST(CodePageTest, QuotedTextsAreCodePage936BytesAtRunTime) {
  EXPECT_EQ(std::string("没有找到"), "\xC3\xBB\xD3\xD0\xD5\xD2\xB5\xBD");
}

TEST(CodePageTest, CharacterLengthTakesTheTrailWithTheLead) {
  const struct {
    std::string text;
    std::size_t pos, length;
  } cases[] = {
      {"abc", 0, 1},      {kTrailBackslash, 0, 2}, {"a" + kTrailBackslash, 1, 2}, {"\x81", 0, 1},  // lead at the end
      {std::string("\x81\0x", 3), 0, 1}, {"\x80" "a", 0, 1}, {"\xFF" "a", 0, 1}, {"\xFE\xFE", 0, 2},
  };
  for (const auto& c : cases) EXPECT_EQ(CharLength(c.text, c.pos), c.length) << c.text;
  for (const char* single : {"a", "\x80", "\xFF"}) EXPECT_EQ(Mbclen(single), 1) << single;
  EXPECT_EQ(Mbclen(kTrailBackslash.c_str()), 2);
}

// Each comparison is checked both ways round. Under Wine the runtime itself compares
// many more pairs; a few stay here for the native build, with the cases where Wine's
// runtime parts from Microsoft's.
TEST(CodePageTest, ComparisonsTakeWholeCharactersAndFoldOnlyAsciiLetters) {
  using Compare = int (*)(std::string_view, std::string_view);
  const struct {
    const char* function;
    Compare compare;
    std::string a, b;
    int expected;
  } cases[] = {
      {"Mbscmp", Mbscmp, "abc", "abd", -1},
      {"Mbscmp", Mbscmp, "abc", "ab", 1},
      // 0xFF is one character, below every double-byte character.
      {"Mbscmp", Mbscmp, "\xFF", "\x81\x40", -1},
      {"Mbscmp", Mbscmp, kTrailBackslash, "\x81\x5D", -1},
      // A lead byte with nothing after it ends the text.
      {"Mbscmp", Mbscmp, "ab\x81", "ab", 0},
      {"Mbscmp", Mbscmp, std::string("ab\0c", 4), "ab", 0},
      {"Mbsicmp", Mbsicmp, "C:\\DWG\\Plan.DWG", "c:\\dwg\\plan.dwg", 0},
      {"Mbsicmp", Mbsicmp, "_", "A", -1},  // folded to 'a' (0x61), above '_' (0x5F)
      {"Mbsicmp", Mbsicmp, kTrailUpperA, kTrailLowerA, -1},  // trail letters are not folded
      {"Mbsicmp", Mbsicmp, kFullwidthA, "\xA3\xE1", -1},      // nor are full-width letters
      {"Mbsicmp", Mbsicmp, "表X", "表x", 0},
      {"Mbsicmp", Mbsicmp, "ab\x81", "AB", 0},
      {"Mbsicoll", Mbsicoll, "Plan", "PLAN", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.function) + " " + c.a + " vs " + c.b);
    EXPECT_EQ(SignOf(c.compare(c.a, c.b)), c.expected);
    EXPECT_EQ(SignOf(c.compare(c.b, c.a)), -c.expected);
  }
}

TEST(CodePageTest, MbsicollSortsAsciiFoldedThenByCodePageOrder) {
  std::vector<std::string> names = {"\xB0\xA2", "b", "Z", "_x", "A", "\xB0\xA1", "a1", "\xFF", "ab", "\x81\x40"};
  std::stable_sort(names.begin(), names.end(),
                   [](const std::string& l, const std::string& r) { return Mbsicoll(l, r) < 0; });
  const std::vector<std::string> expected = {"_x", "A", "a1", "ab", "b", "Z", "\xFF", "\x81\x40", "\xB0\xA1", "\xB0\xA2"};
  EXPECT_EQ(names, expected);
}

TEST(CodePageTest, MbsncmpCountsCharactersAndMbsnbcmpBytes) {
  const struct {
    std::string a, b;
    std::size_t count;
    int chars, bytes;  // expected signs of Mbsncmp and Mbsnbcmp
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
    SCOPED_TRACE(c.a + " vs " + c.b + " n=" + std::to_string(c.count));
    EXPECT_EQ(SignOf(Mbsncmp(c.a, c.b, c.count)), c.chars);
    EXPECT_EQ(SignOf(Mbsnbcmp(c.a, c.b, c.count)), c.bytes);
  }
}

TEST(CodePageTest, SearchesMatchOnlyAtCharacterStarts) {
  const struct {
    std::string hay, needle;
    std::size_t expected;
  } strings[] = {
      {"C:\\dwg\\a.dwg", "\\", 2},        {"C:\\dwg\\a.dwg", ".dwg", 8},
      {"C:\\dwg\\a.dwg", "", 0},          {"abc", "abcd", npos},
      {kTrailBackslash + "x", "\\", npos}, {kTrailBackslash + "\\", "\\", 2},
      {kTrailUpperA, "A", npos},          {"a" + kTrailUpperA + "A", "A", 3},
      {"x" + kTrailBackslash, kTrailBackslash, 1}, {std::string("ab\0cd", 5), "cd", npos},
  };
  for (const auto& c : strings) EXPECT_EQ(Mbsstr(c.hay, c.needle), c.expected) << c.hay << " / " << c.needle;
  const struct {
    std::string text;
    unsigned character;
    std::size_t expected;
  } characters[] = {
      {"a\\b", '\\', 1},       {kTrailBackslash, '\\', npos}, {kTrailBackslash + "\\", '\\', 2},
      {"x" + kTrailBackslash, 0x815C, 1}, {"<" + kTrailUpperA, 'A', npos},
      {"abc", 0, 3},  // the terminator is found
      {"ab\x81", 0, npos},     {"ab\x81", 'b', 1},
  };
  for (const auto& c : characters) EXPECT_EQ(Mbschr(c.text, c.character), c.expected) << c.text;
}

TEST(CodePageTest, MbslwrAndMbccpyKeepDoubleByteCharactersWhole) {
  EXPECT_EQ(Mbslwr("C:\\DWG\\PLAN.DWG"), "c:\\dwg\\plan.dwg");
  EXPECT_EQ(Mbslwr("AB" + kTrailUpperA + "CD"), "ab" + kTrailUpperA + "cd");
  EXPECT_EQ(Mbslwr(kFullwidthA + "Q"), kFullwidthA + "q");
  EXPECT_EQ(Mbslwr(std::string("A\0B", 3)), std::string("a\0B", 3));
  EXPECT_EQ(Mbslwr("X\x81"), "x\x81");
  char out[4] = {'.', '.', '.', '.'};
  EXPECT_EQ(Mbccpy(out, (kTrailBackslash + "z").c_str()), 2u);
  EXPECT_EQ(std::string(out, 3), kTrailBackslash + ".");
  EXPECT_EQ(Mbccpy(out, "qz"), 1u);
  EXPECT_EQ(std::string(out, 2), "q\x5C");
}

TEST(CodePageTest, ConversionsReplaceWhatTheOtherSideLacks) {
  const struct {
    std::string cp936, utf8;
  } toUtf8[] = {
      {"没有找到", "\xE6\xB2\xA1\xE6\x9C\x89\xE6\x89\xBE\xE5\x88\xB0"},
      {"\x80", "\xE2\x82\xAC"},           // euro on the single byte
      {"\xA2\xE3", "\xEE\x9D\xAC"},       // undefined in GBK: U+E76C
      {"\xFF", "\xEF\xBF\xBD"},
      {"a\x81", "a\xEF\xBF\xBD"},          // lead at the end
      {"\x81\x30", "\xEF\xBF\xBD" "0"},    // lead before a byte that is no trail
      {"\x81\x7F", "\xEF\xBF\xBD\x7F"},
      {std::string("a\0b", 3), std::string("a\0b", 3)},
  };
  for (const auto& c : toUtf8) EXPECT_EQ(ToUtf8(c.cp936), c.utf8) << c.utf8;
  const struct {
    std::string utf8, cp936;
  } fromUtf8[] = {
      {"\xE2\x82\xAC", "\x80"},
      {"\xC4\x80", "?"},          // A with macron is not
      {"\xF0\x9F\x98\x80", "?"},  // nor anything above the BMP
      {"\xFF" "a", "?a"},         // broken UTF-8
      {"\xC0\x80", "??"},         // overlong NUL
      {"\xED\xA0\x80", "???"},    // a surrogate
      {"\xE6\xB2", "??"},         // cut sequence
  };
  for (const auto& c : fromUtf8) EXPECT_EQ(FromUtf8(c.utf8), c.cp936) << c.utf8;
}

TEST(CodePageTest, Utf16LeConversionsAgreeWithUtf8) {
  const std::string samples[] = {"没有找到", "\x80", "\xA2\xE3", "a\x81", "\x81\x30", std::string("a\0b", 3)};
  for (const std::string& cp936 : samples) {
    const std::string utf16 = ToUtf16Le(cp936);
    ASSERT_EQ(utf16.size() % 2, 0u);
    EXPECT_EQ(FromUtf16Le(utf16), FromUtf8(ToUtf8(cp936))) << ToUtf8(cp936);
  }
  EXPECT_EQ(ToUtf16Le("中a"), std::string("\x2D\x4E" "a\0", 4));
  const struct {
    std::string utf16, cp936;
  } fromUtf16[] = {
      {std::string("\x3D\xD8\x00\xDE", 4), "?"},  // a pair above the BMP
      {std::string("\x3D\xD8" "a\0", 4), "?a"},   // a lone high surrogate
      {std::string("\x00\xDE", 2), "?"},           // a lone low one
      {std::string("a\0b", 3), "a"},                // an odd last byte
  };
  for (const auto& c : fromUtf16) EXPECT_EQ(FromUtf16Le(c.utf16), c.cp936) << c.cp936;
}

// A round trip of every code also proves no two codes share a character, none
// decodes to ASCII and none to the replacement character (which has no code).
TEST(CodePageTest, EveryCodeRoundTripsThroughUtf8) {
  for (int lead = 0x81; lead <= 0xFE; ++lead) {
    for (int trail = 0x40; trail <= 0xFE; ++trail) {
      if (trail == 0x7F) continue;
      const std::string code{static_cast<char>(lead), static_cast<char>(trail)};
      ASSERT_EQ(FromUtf8(ToUtf8(code)), code) << std::hex << lead << trail;
    }
  }
  for (int byte = 0; byte < 0x80; ++byte) {
    const std::string single(1, static_cast<char>(byte));
    EXPECT_EQ(FromUtf8(ToUtf8(single)), single);
  }
}

}  // namespace
}  // namespace tavlet::text
