// The element parser: one pass over the text that builds the index records. Start
// and end tags, nearly every node of a document, are read right here; anything
// else (comments, CDATA, processing instructions, document types, errors and tags
// at the very end of the text) goes through the node scanner, whose rules these
// fast paths follow exactly.
#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "worksets/markup_doc.h"
#include "worksets/markup_doc_scan.h"

namespace tavlet {

using namespace markup;

namespace {

// What ends the parse's quick reading of a tag name.
constexpr unsigned char kNameEnd = 1;    // white space, "/" or ">"
constexpr unsigned char kNameQuote = 2;  // a quote opens a value, so the scanner takes the tag
constexpr unsigned char kNameHigh = 4;   // 0x80 and above: stepped by character

constexpr std::array<unsigned char, 256> MakeNameClasses() {
  std::array<unsigned char, 256> classes{};
  for (unsigned char c : {' ', '\t', '\n', '\r', '/', '>'}) classes[c] = kNameEnd;
  classes['"'] = classes['\''] = kNameQuote;
  for (int c = 0x80; c <= 0xFF; ++c) classes[c] = kNameHigh;
  return classes;
}
constexpr std::array<unsigned char, 256> kNameClasses = MakeNameClasses();

// The end of the name at `i`, or n when the quick reading gives up on the tag.
inline std::size_t ReadName(const char* p, std::size_t i, std::size_t n) {
#if defined(__SSE2__)
  if (i + 16 <= n) {
    // Every byte that can end a name is below "?", and so is every byte of 0x80 and
    // above read as signed; a name is mostly letters, so the first such byte
    // usually ends it.
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const unsigned low =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_cmplt_epi8(x, _mm_set1_epi8('?'))));
    if (!low) {
      i += 16;
    } else {
      i += static_cast<std::size_t>(__builtin_ctz(low));
      if (kNameClasses[static_cast<unsigned char>(p[i])] == kNameEnd) return i;
    }
  }
#endif
  while (i < n) {
    const unsigned char cls = kNameClasses[static_cast<unsigned char>(p[i])];
    if (!cls) {
      ++i;
    } else if (cls == kNameHigh) {
      i += Step(p, i, n);
    } else {
      return cls == kNameEnd ? i : n;
    }
  }
  return n;
}

// True when `a` and `b` hold the same `size` bytes. Up to eight bytes are compared
// as one word when the text holds eight bytes from both.
inline bool SameBytes(const char* a, const char* b, std::size_t size, const char* textEnd) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  if (size - 1 < 8 && textEnd - a >= 8 && textEnd - b >= 8) {
    std::uint64_t x;
    std::uint64_t y;
    std::memcpy(&x, a, 8);
    std::memcpy(&y, b, 8);
    return ((x ^ y) << (64 - 8 * size)) == 0;
  }
#endif
  return std::memcmp(a, b, size) == 0;
}

// NameMatches for an end tag's name against its start tag's.
inline bool EndNameMatches(std::string_view endName, std::string_view open, const char* textEnd) {
  if (endName.size() == open.size())
    return SameBytes(endName.data(), open.data(), endName.size(), textEnd);
  return NameMatches(endName, open);
}

}  // namespace

std::int64_t MarkupDoc::ParseElements(std::string_view text, std::uint32_t parent) {
  // levels[d] holds the children of the element open at depth d (the parent for
  // d == 0) and, from d == 1, the start tag that opened it. The first child's `prev`
  // is set when the level closes, so linking a new element touches only its
  // predecessor.
  struct Level {
    std::uint32_t first = 0;
    std::uint32_t last = 0;
    std::size_t start = 0;
    std::string_view name;
    // Read by the parse itself: no quote in it.
    bool plainName = false;
  };
  std::vector<Level> levels(16);
  std::size_t depth = 0;
  const char* const p = text.data();
  const std::size_t n = text.size();
  std::uint32_t current = parent;
  std::uint32_t first = 0;
  const std::uint32_t baseLevel = Rec(parent).flags & kLevelMask;
  // The record counters live here during the loop: a record's words are of the same
  // type, so the compiler would otherwise reload the members after every store.
  std::uint32_t nextPos = nextFreePos_;
  std::uint32_t capacity = capacity_;
  const auto leave = [&](std::int64_t result) {
    nextFreePos_ = nextPos;
    return result;
  };

  ParseToken token;
  token.text = text;
  NodeFrame frame;
  std::size_t i = 0;
  for (;;) {
    // The parse has no use for text.
    if (i < n && p[i] != '<') i = FindStandalone(p, i, n, '<');
    int kind = kDeclaration;
    const std::size_t start = i;
    std::size_t length = 0;
    bool selfClosing = false;
    std::string_view name;
    bool plainName = false;
    bool namesMatch = false;
    if (i + 2 < n) {
      const unsigned char c = static_cast<unsigned char>(p[i + 1]);
      // A name read here holds no quote and no ">", so a tag's end is searched for from
      // the name's first character: the two searches don't wait on each other.
      if (c == '/') {
        // Mostly the end tag repeats the open name and ends: a name read here has no
        // quote and never ends inside a character, so reading the end tag's name would
        // walk the same characters to the same ">".
        const Level& open = levels[depth];
        const std::size_t size = open.name.size();
        if (open.plainName && i + 2 + size < n && p[i + 2 + size] == '>' &&
            SameBytes(p + i + 2, open.name.data(), size, p + n)) {
          kind = kEndTag;
          length = size + 3;
          name = std::string_view(p + i + 2, size);
          namesMatch = true;
        } else {
          const std::size_t nameEnd = ReadName(p, i + 2, n);
          const std::size_t close = FindTagEnd(p, i + 2, n);
          if (nameEnd < n && close < n) {
            kind = kEndTag;
            length = close + 1 - i;
            name = std::string_view(p + i + 2, nameEnd - i - 2);
          }
        }
      } else if (StartsTagName(c)) {
        const std::size_t nameEnd = ReadName(p, i + 1, n);
        const std::size_t close = FindTagEnd(p, i + 1, n);
        if (nameEnd < n && close < n) {
          kind = kStartTag;
          length = close + 1 - i;
          selfClosing = p[close - 1] == '/';
          name = std::string_view(p + i + 1, nameEnd - i - 1);
          plainName = true;
        }
      } else if (c == '!' && i + 4 < n &&
                 ((p[i + 2] == '-' && p[i + 3] == '-') || (p[i + 2] == '[' && p[i + 3] == 'C'))) {
        // A comment ends at "-->", a CDATA section at "]]>"; quotes are text in both.
        // The bytes before a ">" are compared as bytes, as the scanner compares them.
        const char mark = p[i + 2] == '-' ? '-' : ']';
        std::size_t close = FindStandalone(p, i + 4, n, '>');
        while (close < n && !(p[close - 1] == mark && p[close - 2] == mark)) {
          close = FindStandalone(p, close + 1, n, '>');
        }
        if (close < n) {
          kind = mark == '-' ? kComment : kCdataSection;
          length = close + 1 - i;
        }
      }
    }
    if (!length) {
      token.next = i;
      kind = ScanNode(token, frame);
      if (kind == kTokenError) {
        error_ = frame.error;
        return leave(-1);
      }
      if (kind == kEndOfDocument) break;
      length = frame.length;
      selfClosing = (frame.flags & kSelfClosing) != 0;
      name = kind == kEndTag ? token.View() : frame.tagName;
    }
    i = start + length;

    if (kind == kStartTag) {
      if (nextPos >= capacity) {
        nextFreePos_ = nextPos;
        GrowIndex(0);
        capacity = capacity_;
      }
      const std::uint32_t pos = nextPos++;
      if (!first) {
        first = pos;
      } else if (depth == 0) {
        error_ = Format("单元码 '%s' 上偏移 %d 是同属根源", std::string(name).c_str(),
                        static_cast<int>(start));
        return leave(-1);
      }
      ElementRecord& r = Rec(pos);
      Level& siblings = levels[depth];
      const std::uint32_t last = siblings.last;
      const std::uint32_t level = (baseLevel + static_cast<std::uint32_t>(depth)) & kLevelMask;
      r.start = static_cast<std::uint32_t>(start);
      // An open element's length is set again by its end tag.
      r.length = static_cast<std::uint32_t>(length);
      r.tagLengths = static_cast<std::uint32_t>(length & 0x3FFFFF);
      r.flags = level | (last ? 0 : kFirstChild) | (length > 0xFFFFF ? kOversizedTags : 0);
      r.parent = current;
      r.child = 0;
      r.next = 0;
      // A first child's `prev` is set when its level closes.
      r.prev = last;
      if (last) {
        Rec(last).next = pos;
      } else {
        Rec(current).child = pos;
        siblings.first = pos;
      }
      siblings.last = pos;
      // The next level is filled whether or not it opens: self-closing or not follows
      // the document, not a pattern a branch could learn.
      current = selfClosing ? current : pos;
      Level& opened = levels[depth + 1];
      opened.first = opened.last = 0;
      opened.start = start;
      opened.name = name;
      opened.plainName = plainName;
      depth += selfClosing ? 0 : 1;
      if (depth + 1 >= levels.size()) levels.resize(levels.size() * 2);
    } else if (kind == kEndTag) {
      if (depth == 0) {
        error_ = Format("没开始标记和末端标记 '%s' 上偏移 %d 个", std::string(name).c_str(),
                        static_cast<int>(start));
        return leave(-1);
      }
      ElementRecord& r = Rec(current);
      r.length = static_cast<std::uint32_t>(start - r.start + length);
      r.tagLengths = (r.tagLengths & 0x3FFFFF) | static_cast<std::uint32_t>(length << kEndTagShift);
      if (length > 0x1FF) r.flags |= kOversizedTags;
      const Level& closed = levels[depth];
      if (closed.first) Rec(closed.first).prev = closed.last;
      --depth;
      if (!namesMatch && !EndNameMatches(name, closed.name, p + n)) {
        error_ = Format("末端标记 '%s' 上偏移 %d 个不符合比开始标记 '%s' 上偏移 %d 个",
                        std::string(name).c_str(), static_cast<int>(name.data() - p),
                        std::string(closed.name).c_str(), static_cast<int>(closed.start));
        return leave(-1);
      }
      current = r.parent;
    }
  }
  if (depth == 0) {
    const Level& top = levels[0];
    if (top.first) Rec(top.first).prev = top.last;
    if (!first) error_ = "根目录没找到";
    return leave(first);
  }
  error_ = Format("单元码 '%s' 上偏移 %d 个没有结束", std::string(levels[depth].name).c_str(),
                  static_cast<int>(levels[depth].start));
  return leave(-1);
}

}  // namespace tavlet
