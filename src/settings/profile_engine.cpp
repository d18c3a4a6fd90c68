#include "settings/profile_engine.h"

#include <algorithm>
#include <cstring>

#include "text/codepage.h"

namespace tavlet::profile {
namespace {

constexpr bool IsTrailByte(unsigned char c) { return c >= 0x40 && c <= 0xFE && c != 0x7F; }

// Makes `out` a copy of `bytes` with every lead byte that has no trail byte after it
// turned into "?"; false (and `out` untouched) when there is none.
bool FixLoneLeads(std::string_view bytes, std::string& out) {
  bool fixed = false;
  for (std::size_t pos = 0; pos < bytes.size(); ++pos) {
    if (!text::IsLeadByte(static_cast<unsigned char>(bytes[pos]))) continue;
    if (pos + 1 < bytes.size() && IsTrailByte(static_cast<unsigned char>(bytes[pos + 1]))) {
      ++pos;
      continue;
    }
    if (!fixed) out.assign(bytes);
    fixed = true;
    out[pos] = '?';
  }
  return fixed;
}

// The platform's blank: C white space and the old end-of-file mark, Ctrl-Z.
bool IsBlank(unsigned char c) {
  return c == ' ' || (c >= '\t' && c <= '\r') || c == 0x1A;
}

std::string_view TrimLeft(std::string_view s) {
  while (!s.empty() && IsBlank(static_cast<unsigned char>(s.front()))) s.remove_prefix(1);
  return s;
}

std::string_view TrimRight(std::string_view s) {
  while (!s.empty() && IsBlank(static_cast<unsigned char>(s.back()))) s.remove_suffix(1);
  return s;
}

std::string_view Trim(std::string_view s) { return TrimRight(TrimLeft(s)); }

// A name or text a caller gives, read as the platform reads it: through UTF-16, where
// a lone lead byte becomes "?" as in the file.
class Asked {
 public:
  explicit Asked(std::string_view raw) : view_(FixLoneLeads(raw, fixed_) ? std::string_view(fixed_) : raw) {}
  Asked(const Asked&) = delete;
  Asked& operator=(const Asked&) = delete;
  operator std::string_view() const { return view_; }

 private:
  std::string fixed_;
  std::string_view view_;
};

// TrimRight by character: a blank byte that a lead byte takes is no blank.
std::string_view TrimCharsRight(std::string_view s) {
  std::size_t end = 0;
  for (std::size_t pos = 0; pos < s.size();) {
    const std::size_t length = text::CharLength(s, pos);
    pos += length;
    if (length == 2 || !IsBlank(static_cast<unsigned char>(s[pos - 1]))) end = pos;
  }
  return s.substr(0, end);
}

// Names and values are C strings on the platform: a NUL ends them.
std::string_view CutAtNul(std::string_view s) { return s.substr(0, s.find('\0')); }

bool SameName(std::string_view a, std::string_view b) { return text::Mbsicmp(a, b) == 0; }

// The platform's wide characters: one code per code-page 936 character, 0 for NUL.
using Wide = std::vector<std::uint32_t>;

void AppendWide(Wide& out, std::string_view s) {
  for (std::size_t i = 0; i < s.size();) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (text::IsLeadByte(c) && i + 1 < s.size()) {
      out.push_back((std::uint32_t{c} << 8) | static_cast<unsigned char>(s[i + 1]));
      i += 2;
    } else {
      out.push_back(c);
      ++i;
    }
  }
}

Wide ToWide(std::string_view s) {
  Wide w;
  AppendWide(w, s);
  return w;
}

std::size_t ByteLength(std::uint32_t code) { return code > 0xFF ? 2 : 1; }

// Writes whole characters of `w` into `out` while they fit in `limit` bytes; returns
// the bytes written and whether everything fitted. The platform's conversion stops
// the same way and leaves the rest of the buffer as it was.
std::pair<std::uint32_t, bool> Narrow(const std::uint32_t* w, std::size_t count, char* out,
                                      std::uint32_t limit) {
  std::uint32_t written = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t len = ByteLength(w[i]);
    if (written + len > limit) return {written, false};
    if (len == 2) out[written++] = static_cast<char>(w[i] >> 8);
    out[written++] = static_cast<char>(w[i] & 0xFF);
  }
  return {written, true};
}

// lstrcpynW: at most `size` - 1 characters and a NUL; returns the characters copied.
std::uint32_t CopyN(std::uint32_t* dest, const Wide& src, std::uint32_t size) {
  if (size == 0) return 0;
  std::uint32_t n = 0;
  while (n + 1 < size && n < src.size()) {
    dest[n] = src[n];
    ++n;
  }
  dest[n] = 0;
  return n;
}

// The value copy of the string reads: a value in matching quotes loses them, but the
// closing one only when the whole value fitted (the platform's own test, kept).
std::uint32_t CopyEntry(std::uint32_t* dest, Wide value, std::uint32_t size) {
  bool quoted = false;
  if (!value.empty() && (value[0] == '\'' || value[0] == '"') && value.size() > 1 &&
      value.back() == value[0]) {
    quoted = true;
    value.erase(value.begin());
  }
  std::uint32_t n = CopyN(dest, value, size);
  if (quoted && size >= value.size() && n > 0) dest[--n] = 0;
  return n;
}

const Entry* FindEntry(const Document& document, std::string_view section, std::string_view key) {
  const Section* found = FindSection(document, section);
  if (!found) return nullptr;
  const Asked asked(key);
  const std::string_view wanted = Trim(asked);
  for (const Entry& entry : found->entries)
    if (SameName(entry.name, wanted)) return &entry;
  return nullptr;
}

// The default loses trailing spaces, yet keeps its first character whatever it is.
std::string_view TrimDefault(std::string_view def) {
  while (def.size() > 1 && def.back() == ' ') def.remove_suffix(1);
  return def;
}

// GetPrivateProfileSectionW and the key list of GetPrivateProfileStringW.
// `cut` (when given) tells whether the list ran out of buffer: entries left over, or
// the last one shortened.
std::uint32_t SectionWide(const Document& document, std::string_view name, bool withValues,
                          std::uint32_t* buffer, std::uint32_t size, bool* cut = nullptr) {
  const Asked asked(name);
  const Section* section = nullptr;
  for (const Section& s : document.sections) {
    if (SameName(s.name, asked)) {
      section = &s;
      break;
    }
  }
  if (!section || size <= 2) {
    buffer[0] = 0;
    if (size > 1) buffer[1] = 0;
    return 0;
  }
  auto listed = [withValues](const Entry& entry) {
    if (entry.name.empty() && !entry.value) return false;
    if (!entry.name.empty() && entry.name[0] == ';') return false;
    return withValues || entry.value.has_value();
  };
  std::uint32_t len = size;
  std::uint32_t pos = 0;
  bool stopped = false;
  const std::vector<Entry>& entries = section->entries;
  for (auto it = entries.begin(); it != entries.end(); ++it) {
    const Entry& entry = *it;
    if (len <= 2) {
      stopped = std::any_of(it, entries.end(), listed);
      break;
    }
    if (!listed(entry)) continue;
    std::uint32_t n = CopyN(buffer + pos, ToWide(entry.name), len - 1);
    len -= n + 1;
    pos += n + 1;
    if (len < 2) {
      stopped = true;
      break;
    }
    if (withValues && entry.value) {
      buffer[pos - 1] = '=';
      n = CopyN(buffer + pos, ToWide(*entry.value), len - 1);
      len -= n + 1;
      pos += n + 1;
    }
  }
  buffer[pos] = 0;
  if (cut) *cut = stopped || len <= 1;
  if (len <= 1) {
    buffer[pos - 1] = 0;
    return size - 2;
  }
  return size - len;
}

std::uint32_t NamesWide(const Document& document, std::uint32_t* buffer, std::uint32_t size,
                        bool& cut) {
  if (size == 0) return 0;
  if (size == 1) {
    buffer[0] = 0;
    return 0;
  }
  std::uint32_t left = size - 1;
  std::uint32_t pos = 0;
  for (const Section& section : document.sections) {
    if (section.name.empty()) continue;
    const Wide name = ToWide(section.name);
    const auto needed = static_cast<std::uint32_t>(name.size() + 1);
    if (needed >= left) {
      if (left > 0) {
        for (std::uint32_t i = 0; i + 1 < left; ++i) buffer[pos++] = name[i];
        buffer[pos++] = 0;
      }
      buffer[pos] = 0;
      cut = true;
      return size - 2;
    }
    for (std::uint32_t c : name) buffer[pos++] = c;
    buffer[pos++] = 0;
    left -= needed;
  }
  buffer[pos] = 0;
  return pos;
}

// The A-side conversion of a single string (GetPrivateProfileStringA).
std::uint32_t NarrowString(const Wide& w, std::uint32_t count, char* buffer, std::uint32_t size) {
  if (size == 0) return 0;
  std::uint32_t ret = 0;
  if (count > 0) {
    auto [written, whole] = Narrow(w.data(), count, buffer, size - 1);
    ret = whole ? written : size - 1;
  }
  buffer[ret] = 0;
  return ret;
}

// RtlUnicodeStringToInteger with base 0, as GetPrivateProfileIntW parses.
unsigned ParseProfileInt(const Wide& w) {
  std::size_t i = 0;
  while (i < w.size() && w[i] <= ' ') ++i;
  bool minus = false;
  if (i < w.size() && (w[i] == '+' || w[i] == '-')) minus = w[i++] == '-';
  unsigned base = 10;
  if (i + 1 < w.size() && w[i] == '0') {
    if (w[i + 1] == 'b') {
      base = 2;
      i += 2;
    } else if (w[i + 1] == 'o') {
      base = 8;
      i += 2;
    } else if (w[i + 1] == 'x') {
      base = 16;
      i += 2;
    }
  }
  unsigned total = 0;
  for (; i < w.size(); ++i) {
    unsigned digit;
    const std::uint32_t c = w[i];
    if (c >= '0' && c <= '9') digit = c - '0';
    else if (c >= 'A' && c <= 'Z') digit = c - 'A' + 10;
    else if (c >= 'a' && c <= 'z') digit = c - 'a' + 10;
    else break;
    if (digit >= base) break;
    total = total * base + digit;
  }
  return minus ? 0u - total : total;
}

// Finds the section a write goes to, creating it at the end when missing.
Section& SectionForWrite(Document& document, std::string_view name) {
  const std::string_view wanted = Trim(name);
  for (Section& s : document.sections)
    if (SameName(s.name, wanted)) return s;
  document.sections.push_back(Section{std::string(TrimLeft(name)), {}});
  return document.sections.back();
}

bool SetValue(Document& document, std::string_view rawSection, std::string_view rawKey,
              std::string_view rawValue, bool alwaysAdd) {
  const Asked section(rawSection), key(rawKey), asked(rawValue);
  std::string_view value = asked;
  Section& target = SectionForWrite(document, section);
  value = CutAtNul(TrimLeft(value));
  Entry* entry = nullptr;
  if (!alwaysAdd) {
    const std::string_view wanted = Trim(key);
    for (Entry& e : target.entries)
      if (SameName(e.name, wanted)) {
        entry = &e;
        break;
      }
  }
  if (!entry) {
    target.entries.push_back(Entry{std::string(CutAtNul(TrimLeft(key))), std::nullopt});
    entry = &target.entries.back();
  } else if (entry->value && *entry->value == value) {
    return false;
  }
  entry->value = std::string(value);
  return true;
}

}  // namespace

// The platform reads the file as characters: a lead byte takes the trail byte after
// it, so a trail byte is never a line end, a "]" or a blank. Either of CR and LF ends
// a line, wherever it stands.
Document Parse(std::string_view raw) {
  std::string fixed;
  const std::string_view bytes = FixLoneLeads(raw, fixed) ? std::string_view(fixed) : raw;
  Document document;
  document.sections.emplace_back();
  const std::size_t size = bytes.size();
  std::size_t pos = 0;
  while (pos < size) {
    // Line ends are blanks too, so this passes blank lines and leading blanks at once.
    while (pos < size && IsBlank(static_cast<unsigned char>(bytes[pos]))) ++pos;
    if (pos >= size) break;
    const std::size_t start = pos;
    std::size_t end = start;  // after the last character that is no blank
    std::size_t equals = std::string_view::npos;
    std::size_t nameEnd = start;
    std::size_t close = std::string_view::npos;
    while (pos < size) {
      const auto c = static_cast<unsigned char>(bytes[pos]);
      if (c == '\n' || c == '\r') break;
      if (text::IsLeadByte(c) && pos + 1 < size) {  // a trail byte follows: see FixLoneLeads
        pos += 2;
        end = pos;
        continue;
      }
      if (c == '=' && equals == std::string_view::npos) {
        equals = pos;
        nameEnd = end;
      } else if (c == ']') {
        close = pos;
      }
      ++pos;
      if (!IsBlank(c)) end = pos;
    }
    const std::string_view line = bytes.substr(start, end - start);
    if (line[0] == '[' && close != std::string_view::npos && close > start) {
      document.sections.push_back(
          Section{std::string(CutAtNul(TrimCharsRight(TrimLeft(line.substr(1, close - start - 1))))), {}});
      continue;
    }
    Entry entry;
    if (equals == std::string_view::npos) {
      entry.name = std::string(CutAtNul(line));
    } else {
      entry.name = std::string(CutAtNul(bytes.substr(start, nameEnd - start)));
      entry.value = std::string(CutAtNul(TrimLeft(bytes.substr(equals + 1, end - equals - 1))));
    }
    document.sections.back().entries.push_back(std::move(entry));
  }
  return document;
}

bool IsUtf16File(std::string_view bytes) {
  return bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE';
}

FileText DecodeFile(std::string_view bytes) {
  FileText file;
  if (!IsUtf16File(bytes)) {
    file.text = std::string(bytes);
    return file;
  }
  file.utf16 = true;
  file.text = text::FromUtf16Le(bytes.substr(2));
  file.lossless = EncodeFile(file.text, true) == bytes;
  return file;
}

std::string EncodeFile(std::string_view cp936, bool utf16) {
  if (!utf16) return std::string(cp936);
  return "\xFF\xFE" + text::ToUtf16Le(cp936);
}

std::string ProfilePath(std::string_view name, std::string_view windowsFolder) {
  if (name.empty() || windowsFolder.empty()) return std::string(name);
  const std::size_t first = text::CharLength(name, 0);
  if (first < name.size() && name[first] == ':') return std::string(name);  // "C:name"
  for (std::size_t pos = 0; pos < name.size(); pos += text::CharLength(name, pos)) {
    if (text::CharLength(name, pos) == 1 && (name[pos] == '\\' || name[pos] == '/'))
      return std::string(name);
  }
  std::string path(windowsFolder);
  // By character: a folder that ends in a trail byte 0x5C still needs its separator.
  bool separatorLast = false;
  for (std::size_t pos = 0; pos < path.size(); pos += text::CharLength(path, pos))
    separatorLast = text::CharLength(path, pos) == 1 && (path[pos] == '\\' || path[pos] == '/');
  if (!separatorLast) path += '\\';
  path += name;
  return path;
}

std::string Serialize(const Document& document) {
  std::size_t size = 0;
  for (const Section& section : document.sections) {
    size += section.name.size() + 4;
    for (const Entry& entry : section.entries)
      size += entry.name.size() + (entry.value ? entry.value->size() + 1 : 0) + 2;
  }
  std::string out;
  out.reserve(size);
  for (const Section& section : document.sections) {
    if (!section.name.empty()) {
      out += '[';
      out += section.name;
      out += "]\r\n";
    }
    for (const Entry& entry : section.entries) {
      out += entry.name;
      if (entry.value) {
        out += '=';
        out += *entry.value;
      }
      out += "\r\n";
    }
  }
  return out;
}

const Section* FindSection(const Document& document, std::string_view name) {
  const Asked asked(name);
  const std::string_view wanted = Trim(asked);
  for (const Section& s : document.sections)
    if (SameName(s.name, wanted)) return &s;
  return nullptr;
}

std::uint32_t GetString(const Document& document, std::string_view section, std::string_view key,
                        std::string_view def, char* buffer, std::uint32_t size) {
  if (size == 0) return 0;
  const Entry* entry = FindEntry(document, section, key);
  const std::string_view source = entry && entry->value ? std::string_view(*entry->value)
                                                        : CutAtNul(TrimDefault(def));
  Wide w(size, 0);
  const std::uint32_t n = CopyEntry(w.data(), ToWide(source), size);
  return NarrowString(w, n, buffer, size);
}

std::uint32_t GetKeyList(const Document& document, std::string_view section, std::string_view def,
                         char* buffer, std::uint32_t size) {
  if (size == 0) return 0;
  Wide w(size + 1, 0);
  bool cut = false;
  std::uint32_t n = SectionWide(document, section, false, w.data(), size, &cut);
  // Unlike a key's default, this one keeps its trailing blanks.
  if (w[0] == 0) {
    n = CopyEntry(w.data(), ToWide(CutAtNul(def)), size);
    cut = false;
  }
  const std::uint32_t ret = NarrowString(w, n, buffer, size);
  // Windows (since Server 2003) ends a cut list with a NUL in the buffer's last byte
  // too; Wine, and older Windows, leave that byte alone.
  if (cut) buffer[size - 1] = 0;
  return ret;
}

std::uint32_t GetSection(const Document& document, std::string_view section, char* buffer,
                         std::uint32_t size) {
  if (size == 0) return 0;
  Wide w(size + 1, 0);
  bool cut = false;
  const std::uint32_t n = SectionWide(document, section, true, w.data(), size, &cut);
  if (n == 0) {
    buffer[0] = 0;
    if (size > 1) buffer[1] = 0;
    return 0;
  }
  // The list and the NUL that ends it (both final NULs when the list was cut) must fit
  // with a byte to spare; otherwise the bytes are cut at the buffer's end, whatever
  // character that splits, and the last two become NULs.
  const std::uint32_t ends = cut ? 2 : 1;
  auto [written, whole] = Narrow(w.data(), n + ends, buffer, size);
  if (whole && written < size) return written - ends;
  buffer[size - 2] = 0;
  buffer[size - 1] = 0;
  return size - 2;
}

std::uint32_t GetSectionNames(const Document& document, char* buffer, std::uint32_t size) {
  if (size == 0) return 0;
  Wide w(size + 1, 0);
  bool cut = false;
  const std::uint32_t n = NamesWide(document, w.data(), size, cut);
  std::uint32_t ret = 0;
  if (n == 0) {
    buffer[0] = 0;
  } else if (auto [written, whole] = Narrow(w.data(), n + 1, buffer, size - 1); whole) {
    ret = written - 1;
  } else {
    ret = size - 2;
    cut = true;
  }
  // Windows (since Server 2003) ends a cut list with a NUL in the buffer's last byte
  // too; Wine, and older Windows, leave that byte alone.
  if (cut) buffer[size - 1] = 0;
  return ret;
}

unsigned GetInt(const Document& document, std::string_view section, std::string_view key,
                int def) {
  constexpr std::uint32_t kSize = 30;
  const Entry* entry = FindEntry(document, section, key);
  if (!entry || !entry->value) return static_cast<unsigned>(def);
  Wide w(kSize, 0);
  const std::uint32_t n = CopyEntry(w.data(), ToWide(*entry->value), kSize);
  if (n == 0) return static_cast<unsigned>(def);
  w.resize(n);
  return ParseProfileInt(w);
}

bool GetStruct(const Document& document, std::string_view section, std::string_view key,
               void* data, std::uint32_t size) {
  const Entry* entry = FindEntry(document, section, key);
  if (!entry || !entry->value) return false;
  const Wide w = ToWide(*entry->value);
  // The platform only asks that the characters it uses be letters or digits, not hex
  // digits, and ignores any beyond the checksum. Bytes are stored as they are decoded,
  // so a bad checksum still fills the buffer.
  const std::size_t used = std::size_t{size} * 2 + 2;
  if (w.size() < used) return false;
  for (std::size_t i = 0; i < used; ++i) {
    const std::uint32_t c = w[i];
    const bool alnum = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (!alnum) return false;
  }
  auto nibble = [](std::uint32_t c) -> std::uint8_t {
    if (c > '9') {
      if (c >= 'a' && c <= 'z') c -= 'a' - 'A';
      return static_cast<std::uint8_t>(c - 'A' + 10);
    }
    return static_cast<std::uint8_t>(c - '0');
  };
  auto* out = static_cast<unsigned char*>(data);
  unsigned sum = 0;
  for (std::uint32_t i = 0; i < size; ++i) {
    const auto byte = static_cast<std::uint8_t>((nibble(w[2 * i]) << 4) + nibble(w[2 * i + 1]));
    out[i] = byte;
    sum += byte;
  }
  const auto stored = static_cast<std::uint8_t>((nibble(w[2 * size]) << 4) + nibble(w[2 * size + 1]));
  return stored == (sum & 0xFF);
}

bool WriteString(Document& document, std::string_view section, std::string_view key,
                 std::string_view value) {
  return SetValue(document, section, key, value, false);
}

bool DeleteKey(Document& document, std::string_view rawSection, std::string_view rawKey) {
  const Asked section(rawSection), key(rawKey);
  for (Section& s : document.sections) {
    if (s.name.empty() || !SameName(s.name, section)) continue;
    for (auto it = s.entries.begin(); it != s.entries.end(); ++it) {
      if (SameName(it->name, key)) {
        s.entries.erase(it);
        return true;
      }
    }
  }
  return false;
}

bool DeleteSection(Document& document, std::string_view rawSection) {
  const Asked section(rawSection);
  for (auto it = document.sections.begin(); it != document.sections.end(); ++it) {
    if (SameName(it->name, section)) {
      document.sections.erase(it);
      return true;
    }
  }
  return false;
}

bool WriteSection(Document& document, std::string_view rawSection, std::string_view body) {
  const Asked section(rawSection);
  bool changed = false;
  for (Section& s : document.sections) {
    if (!s.name.empty() && SameName(s.name, section)) {
      changed = changed || !s.entries.empty();
      s.entries.clear();
    }
  }
  for (std::size_t pos = 0; pos < body.size();) {
    std::size_t end = body.find('\0', pos);
    if (end == std::string_view::npos) end = body.size();
    const std::string_view item = body.substr(pos, end - pos);
    if (item.empty()) break;
    const std::size_t equals = item.find('=');
    if (equals != std::string_view::npos) {
      SetValue(document, section, item.substr(0, equals), item.substr(equals + 1), true);
      changed = true;
    }
    pos = end + 1;
  }
  return changed;
}

std::string StructText(const void* data, std::uint32_t size) {
  static const char digits[] = "0123456789ABCDEF";
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::string out;
  unsigned sum = 0;
  for (std::uint32_t i = 0; i < size; ++i) {
    out += digits[bytes[i] >> 4];
    out += digits[bytes[i] & 15];
    sum += bytes[i];
  }
  out += digits[(sum >> 4) & 15];
  out += digits[sum & 15];
  return out;
}

bool WriteStruct(Document& document, std::string_view section, std::string_view key,
                 const void* data, std::uint32_t size) {
  if (data == nullptr) return DeleteKey(document, section, key);
  return WriteString(document, section, key, StructText(data, size));
}

namespace {

bool CleanText(std::string_view text) {
  for (char c : text)
    if (c == '\r' || c == '\n') return false;
  return text.empty() || (!IsBlank(static_cast<unsigned char>(text.front())) &&
                          !IsBlank(static_cast<unsigned char>(text.back())));
}

bool CleanName(std::string_view name) {
  return CleanText(name) && name.find('=') == std::string_view::npos &&
         (name.empty() || name.front() != '[');
}

}  // namespace

bool ReadsBackAsWritten(const Document& document) {
  for (std::size_t i = 0; i < document.sections.size(); ++i) {
    const Section& section = document.sections[i];
    if ((i > 0 && section.name.empty()) || !CleanText(section.name)) return false;
    for (const Entry& entry : section.entries) {
      if (!CleanName(entry.name) || (entry.name.empty() && !entry.value)) return false;
      if (entry.value && !CleanText(*entry.value)) return false;
    }
  }
  return true;
}

bool WriteReadsBack(std::string_view section, std::string_view key, std::string_view value) {
  const std::string_view name = CutAtNul(TrimLeft(section));
  return !name.empty() && CleanText(name) && CleanName(CutAtNul(TrimLeft(key))) &&
         CleanText(CutAtNul(TrimLeft(value)));
}

std::vector<std::string> SplitList(const char* buffer, std::uint32_t size) {
  std::vector<std::string> out;
  std::uint32_t pos = 0;
  while (pos < size && buffer[pos] != 0) {
    const std::uint32_t start = pos;
    while (pos < size && buffer[pos] != 0) ++pos;
    out.emplace_back(buffer + start, pos - start);
    ++pos;
  }
  return out;
}

}  // namespace tavlet::profile
