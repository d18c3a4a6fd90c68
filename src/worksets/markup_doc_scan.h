// The scanners under MarkupDoc: the node scanner that the parse and GetContent run,
// the word scanner that reads inside a tag, name matching, and entity decoding and
// encoding. All of them step through the text by code-page 936 character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "text/codepage.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tavlet::markup {

// Token kinds of the node scanner.
inline constexpr int kEndOfDocument = -2;
inline constexpr int kTokenError = -1;
inline constexpr int kEndTag = 0;
inline constexpr int kStartTag = 1;
inline constexpr int kText = 2;
inline constexpr int kWhiteSpace = 4;
inline constexpr int kCdataSection = 8;
inline constexpr int kProcessingInstruction = 16;
inline constexpr int kComment = 32;
inline constexpr int kDocumentType = 64;
// A declaration ("<!ELEMENT", "<!ATTLIST", "<!NOTATION") met outside a document
// type: no error, the node is skipped.
inline constexpr int kDeclaration = -3;

// NodeFrame::flags of a start tag ending in "/>".
inline constexpr int kSelfClosing = 0x10000;

// The state of a scan: the last token found (`end` inclusive, empty when below
// `start`) and where the next scan starts.
struct ParseToken {
  std::ptrdiff_t start = 0;
  std::ptrdiff_t end = -1;
  std::size_t next = 0;
  std::string_view text;
  bool quoted = false;

  std::size_t Length() const { return end >= start ? static_cast<std::size_t>(end - start + 1) : 0; }
  std::string_view View() const { return text.substr(static_cast<std::size_t>(start), Length()); }
};

// One open element during a parse, or the node just scanned.
struct NodeFrame {
  int type = 0;
  std::size_t start = 0;
  std::size_t length = 0;
  int flags = 0;
  // The name of a start tag or processing instruction, in place in the text, so
  // that a parse copies no names.
  std::string_view tagName;
  std::string error;  // when `type` is kTokenError
};

inline bool IsSpace(unsigned char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// The length of the character at `i` of `p[0..n)`, as text::CharLength counts it;
// inline because the parse asks it for every character.
inline std::size_t Step(const char* p, std::size_t i, std::size_t n) {
  return (i + 1 < n && text::IsLeadByte(static_cast<unsigned char>(p[i])) && p[i + 1] != '\0') ? 2 : 1;
}

#if defined(__SSE2__)
// The trail bytes of the sixteen-byte block at `i` (a character boundary), as a bit
// mask, from the mask `high` of its bytes of 0x80 and above; `advance` is where
// the next block starts (17 when the last character runs past this one).
inline unsigned TrailMask(const char* p, std::size_t i, std::size_t n, unsigned high, std::size_t& advance) {
  unsigned trails = 0;
  advance = 16;
  while (high) {
    const unsigned bit = static_cast<unsigned>(__builtin_ctz(high));
    high &= high - 1;
    if (Step(p, i + bit, n) == 1) continue;
    if (bit == 15) {
      advance = 17;
      break;
    }
    trails |= 1u << (bit + 1);
    high &= ~(1u << (bit + 1));
  }
  return trails;
}
#endif

// The first of `a`, `b` or `c` at or behind `i` that is a character of its own
// when the text is walked by character from `i` (a trail byte is never one).
// Sixteen bytes at a time where SSE2 is there.
inline std::size_t FindStandalone(const char* p, std::size_t i, std::size_t n, char a, char b, char c) {
#if defined(__SSE2__)
  const __m128i va = _mm_set1_epi8(a);
  const __m128i vb = _mm_set1_epi8(b);
  const __m128i vc = _mm_set1_epi8(c);
  while (i + 16 <= n) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    unsigned hits = static_cast<unsigned>(_mm_movemask_epi8(
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(x, va), _mm_cmpeq_epi8(x, vb)), _mm_cmpeq_epi8(x, vc))));
    std::size_t advance = 16;
    if (const unsigned high = static_cast<unsigned>(_mm_movemask_epi8(x))) {
      hits &= ~TrailMask(p, i, n, high, advance);
    }
    if (hits) return i + static_cast<std::size_t>(__builtin_ctz(hits));
    i += advance;
  }
#endif
  while (i < n) {
    const char ch = p[i];
    if (ch == a || ch == b || ch == c) return i;
    i += Step(p, i, n);
  }
  return n;
}

inline std::size_t FindStandalone(const char* p, std::size_t i, std::size_t n, char c) {
  return FindStandalone(p, i, n, c, c, c);
}

// In a tag whose name has been read, the first ">" at or behind `i` (a character
// boundary) outside quotes, a quote opening a value that only the same quote
// closes; n when the tag doesn't end. The parse's form of the node scanner's own
// search, for a tag that starts with no quote open: each block's quotes and ">" are
// taken from their masks without reading the bytes again, a value in one step.
inline std::size_t FindTagEnd(const char* p, std::size_t i, std::size_t n) {
  // 0 outside quotes, 1 inside double quotes, 2 inside single quotes.
  unsigned inside = 0;
#if defined(__SSE2__)
  const __m128i doubleQuote = _mm_set1_epi8('"');
  const __m128i singleQuote = _mm_set1_epi8('\'');
  const __m128i greater = _mm_set1_epi8('>');
  while (i + 16 <= n) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    unsigned doubles = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, doubleQuote)));
    unsigned singles = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, singleQuote)));
    unsigned ends = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, greater)));
    std::size_t advance = 16;
    if (const unsigned high = static_cast<unsigned>(_mm_movemask_epi8(x))) {
      const unsigned standalone = ~TrailMask(p, i, n, high, advance);
      doubles &= standalone;
      singles &= standalone;
      ends &= standalone;
    }
    unsigned live = 0xFFFF;
    if (inside) {
      const unsigned closing = inside == 1 ? doubles : singles;
      if (!closing) {
        i += advance;
        continue;
      }
      live = ~(((closing & (0u - closing)) << 1) - 1);
      inside = 0;
    }
    for (;;) {
      const unsigned events = (doubles | singles | ends) & live;
      if (!events) break;
      const unsigned first = events & (0u - events);
      if (ends & first) return i + static_cast<std::size_t>(__builtin_ctz(first));
      // A quote: the value runs to the same quote, here or in a later block.
      const bool isDouble = (doubles & first) != 0;
      const unsigned closing = (isDouble ? doubles : singles) & ~((first << 1) - 1);
      if (!closing) {
        inside = isDouble ? 1 : 2;
        break;
      }
      live = ~(((closing & (0u - closing)) << 1) - 1);
    }
    i += advance;
  }
#endif
  char quote = inside == 1 ? '"' : inside == 2 ? '\'' : 0;
  while (i < n) {
    const char c = p[i];
    if (static_cast<unsigned char>(c) & 0x80) {
      i += Step(p, i, n);
      continue;
    }
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '>') {
      return i;
    } else if (c == '"' || c == '\'') {
      quote = c;
    }
    ++i;
  }
  return n;
}

// The byte is tested as the runtime did, sign-extended and then compared unsigned,
// so every byte from 0x80 up (a lead byte too) may open a tag name.
inline bool StartsTagName(unsigned char c) {
  return c > 0x60 || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}

// Scans one node of token.text from token.next; fills `frame` (and, for an end
// tag, the name's extent in `token`) and moves token.next behind it.
int ScanNode(ParseToken& token, NodeFrame& frame);

// Reads one word inside a tag from token.next; false at the end of the text.
bool ScanWord(ParseToken& token);

// True when `token` equals the first bytes of `name` and the name ends there or
// goes on with " ", "=", "/" or "[".
inline bool NameMatches(std::string_view token, std::string_view name) {
  if (token.size() > name.size()) return false;
  for (std::size_t i = 0; i < token.size(); ++i) {
    if (token[i] != name[i]) return false;
  }
  if (token.size() == name.size()) return true;
  const char next = name[token.size()];
  return next == ' ' || next == '=' || next == '/' || next == '[';
}

// The name of a tag whose "<" is at `lt`: up to a space, tab, LF, CR, "/" or ">".
std::string_view TagNameAt(std::string_view text, std::size_t lt);

// Where an attribute's name and its quoted value lie in the text.
struct AttributeSpot {
  std::size_t nameStart = 0;
  std::size_t nameLength = 0;
  std::size_t valueStart = 0;
  std::size_t valueLength = 0;
};

// Searches the tag whose name starts at `from` for the attribute `name` (the first
// attribute when `name` is empty). Only a value in quotes is found.
bool FindAttribute(std::string_view text, std::size_t from, std::string_view name,
                   AttributeSpot& spot);
// The name of the attribute at zero-based `index`, empty beyond the last.
std::string_view AttributeNameAt(std::string_view text, std::size_t from, int index);

// Appends `stretch` with its character and entity references decoded.
void AppendDecoded(std::string& out, std::string_view stretch);

// Replaces "<", "&" and ">" (and in an attribute value "'" and the double quote)
// by their entities.
std::string Encode(std::string_view text, bool attributeValue);

// A CDATA section holding `text`, each "]]>" inside split across two sections.
std::string CdataSection(std::string_view text);

// True when the last character of `text` is a lead byte with no trail byte: spliced
// into a document, it would take the byte after it.
bool EndsInsideCharacter(std::string_view text);

// printf into a std::string.
std::string Format(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

}  // namespace tavlet::markup
