#include "text/codepage.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace tavlet::text {
namespace {

#include "text/cp936_table.inc"

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kEuro = 0x20AC;  // code page 936 puts it on the single byte 0x80

constexpr bool IsTrailByte(unsigned char c) { return c >= 0x40 && c <= 0xFE && c != 0x7F; }

constexpr int TrailIndex(unsigned char trail) { return trail < 0x7F ? trail - 0x40 : trail - 0x41; }

constexpr unsigned char FoldAscii(unsigned char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
}

// Walks a text the way the runtime walks a C string: the text ends at its end or at
// its first NUL, and a lead byte whose next byte is the end ends the text too.
class CharReader {
 public:
  explicit CharReader(std::string_view s) : s_(s) {}

  std::size_t Position() const { return pos_; }

  // The next character's value (lead << 8 | trail, or the byte), 0 at the end.
  unsigned Next() {
    unsigned char c = Byte(pos_);
    if (c == 0) return 0;
    if (IsLeadByte(c)) {
      unsigned char trail = Byte(pos_ + 1);
      if (trail == 0) return 0;
      pos_ += 2;
      return (unsigned{c} << 8) | trail;
    }
    ++pos_;
    return c;
  }

  unsigned NextFolded() {
    unsigned ch = Next();
    return ch < 0x100 ? FoldAscii(static_cast<unsigned char>(ch)) : ch;
  }

 private:
  unsigned char Byte(std::size_t at) const {
    return at < s_.size() ? static_cast<unsigned char>(s_[at]) : 0;
  }
  std::string_view s_;
  std::size_t pos_ = 0;
};

int Sign(unsigned a, unsigned b) { return a == b ? 0 : (a > b ? 1 : -1); }

template <typename NextFn>
int CompareChars(std::string_view a, std::string_view b, std::size_t limit, NextFn next) {
  CharReader ra(a);
  CharReader rb(b);
  for (std::size_t i = 0; i < limit; ++i) {
    unsigned ca = next(ra);
    unsigned cb = next(rb);
    if (ca != cb) return Sign(ca, cb);
    if (ca == 0) return 0;
  }
  return 0;
}

void AppendUtf8(std::string& out, char32_t u) {
  if (u < 0x80) {
    out += static_cast<char>(u);
  } else if (u < 0x800) {
    out += static_cast<char>(0xC0 | (u >> 6));
    out += static_cast<char>(0x80 | (u & 0x3F));
  } else if (u < 0x10000) {
    out += static_cast<char>(0xE0 | (u >> 12));
    out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (u & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (u >> 18));
    out += static_cast<char>(0x80 | ((u >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (u & 0x3F));
  }
}

// Decodes one UTF-8 sequence at `pos`; malformed, overlong and surrogate forms give
// U+FFFD and consume one byte, so that a broken text still converts.
char32_t DecodeUtf8(std::string_view s, std::size_t& pos) {
  auto byte = [&](std::size_t at) { return static_cast<unsigned char>(s[at]); };
  unsigned char c = byte(pos);
  if (c < 0x80) {
    ++pos;
    return c;
  }
  int extra = 0;
  char32_t u = 0;
  char32_t minimum = 0;
  if ((c & 0xE0) == 0xC0) {
    extra = 1, u = c & 0x1F, minimum = 0x80;
  } else if ((c & 0xF0) == 0xE0) {
    extra = 2, u = c & 0x0F, minimum = 0x800;
  } else if ((c & 0xF8) == 0xF0) {
    extra = 3, u = c & 0x07, minimum = 0x10000;
  } else {
    ++pos;
    return kReplacement;
  }
  if (pos + extra >= s.size()) {
    ++pos;
    return kReplacement;
  }
  for (int i = 1; i <= extra; ++i) {
    unsigned char next = byte(pos + i);
    if ((next & 0xC0) != 0x80) {
      ++pos;
      return kReplacement;
    }
    u = (u << 6) | (next & 0x3F);
  }
  if (u < minimum || u > 0x10FFFF || (u >= 0xD800 && u <= 0xDFFF)) {
    ++pos;
    return kReplacement;
  }
  pos += extra + 1;
  return u;
}

// Unicode -> code page 936 bytes (lead << 8 | trail, or one byte); 0 when absent.
const std::array<std::uint16_t, 0x10000>& ReverseTable() {
  static const auto* table = [] {
    auto* t = new std::array<std::uint16_t, 0x10000>{};
    for (unsigned lead = 0x81; lead <= 0xFE; ++lead) {
      for (unsigned trail = 0x40; trail <= 0xFE; ++trail) {
        if (trail == 0x7F) continue;
        std::uint16_t u = kDoubleByteUnicode[(lead - 0x81) * 190 + TrailIndex(static_cast<unsigned char>(trail))];
        (*t)[u] = static_cast<std::uint16_t>((lead << 8) | trail);
      }
    }
    (*t)[kEuro] = 0x80;
    return t;
  }();
  return *table;
}

}  // namespace

std::size_t CharLength(std::string_view s, std::size_t pos) {
  if (pos + 1 < s.size() && IsLeadByte(static_cast<unsigned char>(s[pos])) && s[pos + 1] != '\0') {
    return 2;
  }
  return 1;
}

int Mbclen(const char* c) { return IsLeadByte(static_cast<unsigned char>(*c)) ? 2 : 1; }

int Mbscmp(std::string_view a, std::string_view b) {
  return CompareChars(a, b, SIZE_MAX, [](CharReader& r) { return r.Next(); });
}

int Mbsicmp(std::string_view a, std::string_view b) {
  return CompareChars(a, b, SIZE_MAX, [](CharReader& r) { return r.NextFolded(); });
}

// Collation is kept to what the bar needs: ASCII letters folded, then the order of
// the code page, which for code page 936 sorts GB2312 characters by reading.
int Mbsicoll(std::string_view a, std::string_view b) { return Mbsicmp(a, b); }

int Mbsncmp(std::string_view a, std::string_view b, std::size_t chars) {
  return CompareChars(a, b, chars, [](CharReader& r) { return r.Next(); });
}

int Mbsnbcmp(std::string_view a, std::string_view b, std::size_t bytes) {
  auto at = [](std::string_view s, std::size_t i) {
    return i < s.size() ? static_cast<unsigned char>(s[i]) : 0u;
  };
  std::size_t ia = 0;
  std::size_t ib = 0;
  std::size_t n = bytes;
  while (n-- > 0) {
    unsigned ca = at(a, ia++);
    unsigned cb = 0;
    // A lead byte in the last counted byte is cut off: it compares as the end of the
    // text, and the other text's byte there counts only if it is no lead.
    if (IsLeadByte(static_cast<unsigned char>(ca))) {
      if (n == 0) {
        unsigned other = at(b, ib);
        ca = 0;
        cb = IsLeadByte(static_cast<unsigned char>(other)) ? 0 : other;
        if (ca != cb) return Sign(ca, cb);
        return 0;
      }
      unsigned trail = at(a, ia);
      ca = trail == 0 ? 0 : ((ca << 8) | trail);
      if (trail != 0) ++ia;
    }
    cb = at(b, ib++);
    if (IsLeadByte(static_cast<unsigned char>(cb))) {
      if (n == 0) {
        cb = 0;
      } else {
        --n;
        unsigned trail = at(b, ib);
        cb = trail == 0 ? 0 : ((cb << 8) | trail);
        if (trail != 0) ++ib;
      }
    }
    if (ca != cb) return Sign(ca, cb);
    if (ca == 0) return 0;
  }
  return 0;
}

std::size_t Mbsstr(std::string_view hay, std::string_view needle) {
  std::size_t needleLength = needle.find('\0');
  if (needleLength == std::string_view::npos) needleLength = needle.size();
  std::size_t hayLength = hay.find('\0');
  if (hayLength == std::string_view::npos) hayLength = hay.size();
  if (needleLength == 0) return 0;
  for (std::size_t pos = 0; pos + needleLength <= hayLength; pos += CharLength(hay.substr(0, hayLength), pos)) {
    if (hay.compare(pos, needleLength, needle.substr(0, needleLength)) == 0) return pos;
  }
  return std::string_view::npos;
}

std::size_t Mbschr(std::string_view s, unsigned int character) {
  std::size_t pos = 0;
  while (true) {
    unsigned char c = pos < s.size() ? static_cast<unsigned char>(s[pos]) : 0;
    if (c == 0) return character == 0 ? pos : std::string_view::npos;
    if (IsLeadByte(c)) {
      unsigned char trail = pos + 1 < s.size() ? static_cast<unsigned char>(s[pos + 1]) : 0;
      // A lead byte with nothing after it is an error for the runtime, not a match.
      if (trail == 0) return std::string_view::npos;
      if (character == ((unsigned{c} << 8) | trail)) return pos;
      pos += 2;
    } else {
      if (character == c) return pos;
      ++pos;
    }
  }
}

std::string Mbslwr(std::string_view s) {
  std::string out(s);
  for (std::size_t pos = 0; pos < out.size() && out[pos] != '\0'; pos += CharLength(out, pos)) {
    out[pos] = static_cast<char>(FoldAscii(static_cast<unsigned char>(out[pos])));
  }
  return out;
}

std::size_t Mbccpy(char* dest, const char* src) {
  dest[0] = src[0];
  if (!IsLeadByte(static_cast<unsigned char>(src[0]))) return 1;
  dest[1] = src[1];
  return 2;
}

namespace {

// The next character of code-page 936 text as a code point. 0xFF, a lead byte at the
// end, or a lead byte before a byte that can't be a trail: the lead alone is replaced
// and the next byte is read on its own.
char32_t NextCodePoint(std::string_view cp936, std::size_t& pos) {
  auto c = static_cast<unsigned char>(cp936[pos]);
  if (c < 0x80) {
    ++pos;
    return c;
  }
  if (c == 0x80) {
    ++pos;
    return kEuro;
  }
  if (IsLeadByte(c) && pos + 1 < cp936.size() && IsTrailByte(static_cast<unsigned char>(cp936[pos + 1]))) {
    auto trail = static_cast<unsigned char>(cp936[pos + 1]);
    pos += 2;
    return kDoubleByteUnicode[(c - 0x81) * 190 + TrailIndex(trail)];
  }
  ++pos;
  return kReplacement;
}

void AppendCp936(std::string& out, char32_t u) {
  if (u < 0x80) {
    out += static_cast<char>(u);
    return;
  }
  std::uint16_t code = u < 0x10000 ? ReverseTable()[u] : 0;
  if (code == 0) {
    out += '?';
  } else if (code < 0x100) {
    out += static_cast<char>(code);
  } else {
    out += static_cast<char>(code >> 8);
    out += static_cast<char>(code & 0xFF);
  }
}

}  // namespace

std::string ToUtf8(std::string_view cp936) {
  std::string out;
  out.reserve(cp936.size() * 3 / 2);
  for (std::size_t pos = 0; pos < cp936.size();) AppendUtf8(out, NextCodePoint(cp936, pos));
  return out;
}

std::string FromUtf8(std::string_view utf8) {
  std::string out;
  out.reserve(utf8.size());
  for (std::size_t pos = 0; pos < utf8.size();) AppendCp936(out, DecodeUtf8(utf8, pos));
  return out;
}

bool IsValidUtf8(std::string_view s) {
  for (std::size_t pos = 0; pos < s.size();) {
    const std::size_t start = pos;
    DecodeUtf8(s, pos);
    // A malformed sequence is the only thing that decodes a high byte alone.
    if (static_cast<unsigned char>(s[start]) >= 0x80 && pos == start + 1) return false;
  }
  return true;
}

std::string ToUtf16Le(std::string_view cp936) {
  std::string out;
  out.reserve(cp936.size() * 2);
  for (std::size_t pos = 0; pos < cp936.size();) {
    // Every code point of the table is in the basic plane: one unit each.
    const char32_t u = NextCodePoint(cp936, pos);
    out += static_cast<char>(u & 0xFF);
    out += static_cast<char>(u >> 8);
  }
  return out;
}

std::string FromUtf16Le(std::string_view utf16le) {
  auto unitAt = [&utf16le](std::size_t i) {
    return static_cast<char32_t>(static_cast<unsigned char>(utf16le[i]) |
                                 (static_cast<unsigned char>(utf16le[i + 1]) << 8));
  };
  std::string out;
  out.reserve(utf16le.size() / 2);
  for (std::size_t i = 0; i + 1 < utf16le.size(); i += 2) {
    char32_t u = unitAt(i);
    if (u >= 0xD800 && u <= 0xDBFF && i + 3 < utf16le.size() && unitAt(i + 2) >= 0xDC00 &&
        unitAt(i + 2) <= 0xDFFF) {
      u = 0x10000 + ((u - 0xD800) << 10) + (unitAt(i + 2) - 0xDC00);
      i += 2;
    }
    AppendCp936(out, u);  // a lone surrogate has no code-page 936 form either: "?"
  }
  return out;
}

}  // namespace tavlet::text
