#include "worksets/markup_doc_scan.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <array>
#include <cstdint>


namespace tavlet::markup {

namespace {

// Node scanner state bits.
constexpr unsigned kSawOpen = 1;          // "<"
constexpr unsigned kSawBang = 2;          // "<!"
constexpr unsigned kSawBangDash = 4;      // "<!-"
constexpr unsigned kSawBangBracket = 8;   // "<!["
constexpr unsigned kInDocumentType = 32;
constexpr unsigned kInSingleQuotes = 64;
constexpr unsigned kInDoubleQuotes = 128;
// A kind not chosen yet; an unterminated node of this kind is reported as "tag".
constexpr int kNoKind = 100;

// Byte classes for the parse's inner loops.
constexpr unsigned char kClassLead = 1;     // 0x81-0xFE
constexpr unsigned char kClassNameEnd = 4;  // white space, "/" or ">"

constexpr std::array<unsigned char, 256> MakeClasses() {
  std::array<unsigned char, 256> classes{};
  for (int c = 0x81; c <= 0xFE; ++c) classes[c] |= kClassLead;
  for (unsigned char c : {' ', '\t', '\n', '\r', '/', '>'}) classes[c] |= kClassNameEnd;
  return classes;
}
constexpr std::array<unsigned char, 256> kClasses = MakeClasses();

inline unsigned char ClassOf(char c) { return kClasses[static_cast<unsigned char>(c)]; }

// In a tag, the first ">" at or behind `i` outside quotes, walking by character;
// a quote opens a value that only the same quote closes. `state` carries the
// quote bits in and out. Blocks of sixteen single-byte characters are taken whole,
// their quotes and ">" found by mask.
std::size_t FindTagClose(const char* p, std::size_t i, std::size_t n, unsigned& state) {
  char quote = (state & kInDoubleQuotes) ? '"' : (state & kInSingleQuotes) ? '\'' : 0;
  const auto close = [&](std::size_t at) {
    state = (state & ~(kInSingleQuotes | kInDoubleQuotes)) |
            (quote == '"' ? kInDoubleQuotes : quote == '\'' ? kInSingleQuotes : 0);
    return at;
  };
  // One character by the rules; true when it is the closing ">".
  const auto take = [&](char c) {
    if (quote) {
      if (c == quote) quote = 0;
    } else if (c == '>') {
      return true;
    } else if (c == '"' || c == '\'') {
      quote = c;
    }
    return false;
  };
#if defined(__SSE2__)
  const __m128i doubleQuote = _mm_set1_epi8('"');
  const __m128i singleQuote = _mm_set1_epi8('\'');
  const __m128i greater = _mm_set1_epi8('>');
  while (i + 16 <= n) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    unsigned events = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(
        _mm_or_si128(_mm_cmpeq_epi8(x, doubleQuote), _mm_cmpeq_epi8(x, singleQuote)), _mm_cmpeq_epi8(x, greater))));
    std::size_t advance = 16;
    if (const unsigned high = static_cast<unsigned>(_mm_movemask_epi8(x))) {
      events &= ~TrailMask(p, i, n, high, advance);
    }
    while (events) {
      const unsigned bit = static_cast<unsigned>(__builtin_ctz(events));
      events &= events - 1;
      if (take(p[i + bit])) return close(i + bit);
    }
    i += advance;
  }
#endif
  while (i < n) {
    if (static_cast<unsigned char>(p[i]) & 0x80) {
      i += Step(p, i, n);
    } else if (take(p[i])) {
      return close(i);
    } else {
      ++i;
    }
  }
  return close(n);
}

bool EndsTagName(unsigned char c) { return IsSpace(c) || c == '/' || c == '>'; }

bool EndsWord(unsigned char c) {
  switch (c) {
    case ' ': case '\t': case '\n': case '\r': case '<': case '>': case '=': case '\\':
    case '/': case '?': case '!':
      return true;
    default:
      return false;
  }
}

int Fail(NodeFrame& frame, const char* what) {
  frame.type = kTokenError;
  frame.error = Format("错误的 %s 上偏移 %d", what, static_cast<int>(frame.start));
  return kTokenError;
}

int Unterminated(NodeFrame& frame, unsigned state, int kind) {
  const char* what = "tag";
  if (state & kInDocumentType) {
    what = "Doctype";
  } else {
    switch (kind) {
      case kStartTag: what = "单元码标记"; break;
      case kEndTag: what = "单元码末端标记"; break;
      case kCdataSection: what = "CDATA 区域"; break;
      case kProcessingInstruction: what = "配置指令"; break;
      case kComment: what = "Comment"; break;
      default: break;
    }
  }
  frame.type = kTokenError;
  frame.error = Format("%s 上偏移 %d 无端接的", what, static_cast<int>(frame.start));
  return kTokenError;
}

// wctomb for code page 936: false when the character has no multibyte form.
bool WideToMultibyte(unsigned code, std::string& out) {
  if (code < 0x80) {
    out.assign(1, static_cast<char>(code));
    return true;
  }
  if (code >= 0xD800 && code <= 0xDFFF) return false;
  std::string utf8;
  if (code < 0x800) {
    utf8 += static_cast<char>(0xC0 | (code >> 6));
  } else {
    utf8 += static_cast<char>(0xE0 | (code >> 12));
    utf8 += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
  }
  utf8 += static_cast<char>(0x80 | (code & 0x3F));
  std::string bytes = text::FromUtf8(utf8);
  // An unmapped character comes back as "?", which doesn't convert back.
  if (bytes.empty() || text::ToUtf8(bytes) != utf8) return false;
  out = std::move(bytes);
  return true;
}

// Decodes the reference at s[i] == '&' into `out`; the bytes it took, 0 for none.
std::size_t DecodeReference(std::string_view s, std::size_t i, std::string& out) {
  const std::size_t n = s.size();
  if (i + 1 < n && s[i + 1] == '#') {
    std::size_t digits = i + 2;
    int base = 10;
    if (digits < n && s[digits] == 'x') {
      base = 16;
      ++digits;
    }
    std::size_t semicolon = digits;
    while (semicolon < n && semicolon - digits <= 7 && s[semicolon] != ';') ++semicolon;
    if (semicolon >= n || semicolon - digits > 7 || s[semicolon] != ';') return 0;
    char buffer[9] = {};
    std::memcpy(buffer, s.data() + digits, semicolon - digits);
    long number = std::strtol(buffer, nullptr, base);
    std::string bytes;
    if (!WideToMultibyte(static_cast<unsigned>(number) & 0xFFFF, bytes)) number = 0;
    if (number == 0) return 0;
    out += bytes;
    return semicolon + 1 - i;
  }
  struct Entity {
    const char* name;
    std::size_t length;
    char value;
  };
  static constexpr Entity kEntities[] = {
      {"lt;", 3, '<'}, {"amp;", 4, '&'}, {"gt;", 3, '>'}, {"apos;", 5, '\''}, {"quot;", 5, '"'},
  };
  for (const Entity& entity : kEntities) {
    if (i + 1 + entity.length <= n && std::memcmp(s.data() + i + 1, entity.name, entity.length) == 0) {
      out += entity.value;
      return 1 + entity.length;
    }
  }
  return 0;
}

}  // namespace

std::string Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  va_list copy;
  va_copy(copy, args);
  char small[256];
  const int needed = std::vsnprintf(small, sizeof small, format, args);
  va_end(args);
  std::string out;
  if (needed < 0) {
    va_end(copy);
    return out;
  }
  if (static_cast<std::size_t>(needed) < sizeof small) {
    out.assign(small, static_cast<std::size_t>(needed));
  } else {
    out.resize(static_cast<std::size_t>(needed) + 1);
    std::vsnprintf(out.data(), out.size(), format, copy);
    out.resize(static_cast<std::size_t>(needed));
  }
  va_end(copy);
  return out;
}

int ScanNode(ParseToken& token, NodeFrame& frame) {
  const char* p = token.text.data();
  const std::size_t n = token.text.size();
  std::size_t i = token.next;
  frame.flags = 0;
  frame.start = i;
  if (i >= n) {
    frame.type = kEndOfDocument;
    frame.length = 0;
    return kEndOfDocument;
  }
  const auto finish = [&](int kind, std::size_t end) {
    frame.type = kind;
    frame.length = end - frame.start;
    token.next = end;
    return kind;
  };

  unsigned char c = static_cast<unsigned char>(p[i]);
  if (c != '<') {
    // Leading white space stays a white-space token up to a "<" or the end; any
    // other character turns it into text, which runs to the next "<".
    if (IsSpace(c)) {
      do ++i;
      while (i < n && IsSpace(static_cast<unsigned char>(p[i])));
      if (i >= n || p[i] == '<') return finish(kWhiteSpace, i);
    }
    return finish(kText, FindStandalone(p, i, n, '<'));
  }

  unsigned state = kSawOpen;
  int kind = kNoKind;
  ++i;
  for (;;) {
    // Here i is behind a "<": at the top, or inside a document type.
    if (i >= n) return Unterminated(frame, state, kNoKind);
    c = static_cast<unsigned char>(p[i]);
    const char* mark = ">";
    std::size_t nameStart = 0;
    bool named = false;
    bool body = true;
    if (StartsTagName(c)) {
      kind = kStartTag;
      nameStart = i;
      named = true;
    } else if (c == '/') {
      kind = kEndTag;
      nameStart = ++i;
      named = true;
    } else if (c == '?') {
      kind = kProcessingInstruction;
      mark = "?>";
      nameStart = ++i;
      named = true;
    } else if (c == '!') {
      state |= kSawBang;
      if (++i >= n) return Unterminated(frame, state, kNoKind);
      c = static_cast<unsigned char>(p[i]);
      if (c == '-') {
        state |= kSawBangDash;
        if (++i >= n) return Unterminated(frame, state, kNoKind);
        if (p[i] != '-') return Fail(frame, "注释标记");
        kind = kComment;
        mark = "-->";
        ++i;
      } else if (c == '[' && !(state & kInDocumentType)) {
        state |= kSawBangBracket;
        if (++i >= n) return Unterminated(frame, state, kNoKind);
        if (p[i] != 'C') return Fail(frame, "tag");
        kind = kCdataSection;
        mark = "]]>";
        ++i;
      } else if (c == 'D' && !(state & kInDocumentType)) {
        state = kInDocumentType;
        ++i;
        body = false;
      } else if (c == 'E' || c == 'A' || c == 'N') {
        kind = kDeclaration;
        ++i;
      } else {
        return Fail(frame, "! tag");
      }
    } else {
      return Fail(frame, "标记名称性质");
    }

    if (body) {
      const std::size_t markLength = std::strlen(mark);
      // Quotes matter in tags and declarations; in comments and CDATA they are text.
      const bool quotes = kind == kStartTag || kind == kEndTag || kind == kProcessingInstruction ||
                          kind == kDeclaration;
      // The name is read first; the search for the end goes on from behind it unless
      // the name holds a quote, which opens a value like any other.
      std::size_t nameEnd = i;
      if (named) {
        bool quoteInName = false;
        while (nameEnd < n) {
          const char b = p[nameEnd];
          const unsigned char cls = ClassOf(b);
          if (cls & kClassNameEnd) break;
          quoteInName |= b == '"' || b == '\'';
          nameEnd += (cls & kClassLead) ? Step(p, nameEnd, n) : 1;
        }
        if (!quoteInName) i = nameEnd;
      }
      bool ended = false;
      while (i < n) {
        if (p[i] != '>' || (state & (kInSingleQuotes | kInDoubleQuotes))) {
          i = quotes ? FindTagClose(p, i, n, state) : FindStandalone(p, i, n, '>');
          if (i >= n) break;
        }
        if (markLength > 1 && !(p[i - 1] == mark[markLength - 2] && (markLength < 3 || p[i - 2] == mark[0]))) {
          ++i;
          continue;
        }
        if (kind == kStartTag && p[i - 1] == '/') frame.flags |= kSelfClosing;
        ++i;
        ended = true;
        break;
      }
      if (!ended) return Unterminated(frame, state, kind);
      if (!(state & kInDocumentType)) {
        if (named) {
          if (kind == kEndTag) {
            token.start = static_cast<std::ptrdiff_t>(nameStart);
            token.end = static_cast<std::ptrdiff_t>(nameEnd) - 1;
          } else {
            frame.tagName = std::string_view(p + nameStart, nameEnd - nameStart);
          }
        }
        return finish(kind, i);
      }
      // An inner node of a document type ended: the document type goes on.
      state = kInDocumentType;
    }

    // Inside a document type: "<" opens an inner node, ">" ends the whole.
    for (;;) {
      if (i >= n) return Unterminated(frame, state, kind);
      c = static_cast<unsigned char>(p[i]);
      if (c == '<') {
        state |= kSawOpen;
        ++i;
        break;
      }
      if (c == '>') return finish(kDocumentType, i + 1);
      i += Step(p, i, n);
    }
  }
}

bool ScanWord(ParseToken& token) {
  const char* p = token.text.data();
  const std::size_t n = token.text.size();
  std::size_t i = token.next;
  while (i < n && IsSpace(static_cast<unsigned char>(p[i]))) ++i;
  token.quoted = false;
  if (i >= n) {
    token.start = static_cast<std::ptrdiff_t>(i);
    token.end = token.start - 1;
    token.next = i;
    return false;
  }
  const char c = p[i];
  if (c == '"' || c == '\'') {
    token.start = static_cast<std::ptrdiff_t>(++i);
    while (i < n && p[i] != c) i += Step(p, i, n);
    token.end = static_cast<std::ptrdiff_t>(i) - 1;
    token.next = i < n ? i + 1 : n;
    token.quoted = true;
    return true;
  }
  token.start = static_cast<std::ptrdiff_t>(i);
  if (EndsWord(static_cast<unsigned char>(c))) {
    ++i;
  } else {
    while (i < n && !EndsWord(static_cast<unsigned char>(p[i]))) i += Step(p, i, n);
  }
  token.end = static_cast<std::ptrdiff_t>(i) - 1;
  token.next = i;
  return true;
}

std::string_view TagNameAt(std::string_view text, std::size_t lt) {
  const char* p = text.data();
  const std::size_t n = text.size();
  const std::size_t start = lt + 1;
  std::size_t end = start;
  while (end < n && !EndsTagName(static_cast<unsigned char>(p[end]))) end += Step(p, end, n);
  return start <= n ? text.substr(start, end - start) : std::string_view();
}

bool FindAttribute(std::string_view text, std::size_t from, std::string_view name, AttributeSpot& spot) {
  ParseToken token;
  token.text = text;
  token.next = from;
  int count = 0;
  int matchedAt = -1;
  while (ScanWord(token)) {
    if (!token.quoted) {
      const char c = text[static_cast<std::size_t>(token.start)];
      if (c == '>' || c == '/' || c == '?') return false;
      if (c != '=' && count > 0 && (name.empty() || NameMatches(token.View(), name))) {
        // With no name the first attribute is the answer, with or without a value.
        if (name.empty() && matchedAt >= 0) return false;
        matchedAt = count;
        spot.nameStart = static_cast<std::size_t>(token.start);
        spot.nameLength = token.Length();
      }
    } else if (matchedAt >= 0 && count == matchedAt + 2) {
      spot.valueStart = static_cast<std::size_t>(token.start);
      spot.valueLength = token.Length();
      return true;
    }
    ++count;
  }
  return false;
}

std::string_view AttributeNameAt(std::string_view text, std::size_t from, int index) {
  ParseToken token;
  token.text = text;
  token.next = from;
  int count = 0;
  int found = 0;
  while (ScanWord(token)) {
    if (!token.quoted) {
      const char c = text[static_cast<std::size_t>(token.start)];
      if (c == '>' || c == '/' || c == '?') break;
      if (c != '=' && count > 0 && found++ == index) return token.View();
    }
    ++count;
  }
  return {};
}

void AppendDecoded(std::string& out, std::string_view stretch) {
  const char* p = stretch.data();
  const std::size_t n = stretch.size();
  std::size_t i = 0;
  std::size_t run = 0;
  while (i < n) {
    if (p[i] != '&') {
      i += Step(p, i, n);
      continue;
    }
    out.append(p + run, i - run);
    std::size_t used = DecodeReference(stretch, i, out);
    if (used == 0) {
      out += '&';
      used = 1;
    }
    i += used;
    run = i;
  }
  out.append(p + run, n - run);
}

std::string Encode(std::string_view text, bool attributeValue) {
  std::string out;
  out.reserve(text.size() + text.size() / 10 + 7);
  const char* p = text.data();
  const std::size_t n = text.size();
  std::size_t run = 0;
  for (std::size_t i = 0; i < n;) {
    const std::size_t length = Step(p, i, n);
    const char* entity = nullptr;
    if (length == 1) {
      switch (p[i]) {
        case '<': entity = "&lt;"; break;
        case '&': entity = "&amp;"; break;
        case '>': entity = "&gt;"; break;
        case '\'': entity = attributeValue ? "&apos;" : nullptr; break;
        case '"': entity = attributeValue ? "&quot;" : nullptr; break;
        default: break;
      }
    }
    if (entity) {
      out.append(p + run, i - run);
      out += entity;
      run = i + 1;
    }
    i += length;
  }
  out.append(p + run, n - run);
  return out;
}

std::string CdataSection(std::string_view text) {
  // The split is found byte by byte, as the scanner finds the end of a section by
  // the bytes before its ">"; a "]" trail byte can therefore never end it early.
  std::string out = "<![CDATA[";
  std::size_t from = 0;
  for (std::size_t at = text.find("]]>"); at != std::string_view::npos; at = text.find("]]>", from)) {
    out.append(text.substr(from, at - from));
    out += "]]]]><![CDATA[>";
    from = at + 3;
  }
  out.append(text.substr(from));
  out += "]]>";
  return out;
}

bool EndsInsideCharacter(std::string_view text) {
  const char* p = text.data();
  const std::size_t n = text.size();
  std::size_t i = 0;
  std::size_t last = 0;
  while (i < n) {
    last = i;
    i += Step(p, i, n);
  }
  return n > 0 && last == n - 1 && text::IsLeadByte(static_cast<unsigned char>(p[last]));
}

}  // namespace tavlet::markup
