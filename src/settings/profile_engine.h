// Our own private-profile engine: a parsed .ini document and the platform's
// GetPrivateProfile*A / WritePrivateProfile*A calls over it, rule for rule, including
// how they cut their results at the caller's buffer.
//
// The platform works on wide characters inside and converts at the edge, so a
// buffer limit first counts characters (a code-page 936 pair is one) and then bytes.
// The calls below reproduce both steps, so that a truncated result is the same
// byte for byte.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavlet::profile {

struct Entry {
  std::string name;
  std::optional<std::string> value;  // none: a line without "="
};

struct Section {
  std::string name;  // "" for the lines before the first header
  std::vector<Entry> entries;
};

// Lines before the first header form a first section with no name, always present.
struct Document {
  std::vector<Section> sections;
};

// A file's text as the engine works on it. A file that begins with the UTF-16LE
// byte-order mark is read as UTF-16 and its text converted to code page 936;
// `lossless` says whether writing that text back gives the same file again (a
// character that code page 936 lacks, a broken surrogate or an odd last byte don't).
// Any other file is code-page 936 bytes as they stand.
struct FileText {
  std::string text;
  bool utf16 = false;
  bool lossless = true;
};
FileText DecodeFile(std::string_view bytes);
bool IsUtf16File(std::string_view bytes);  // begins with the UTF-16LE mark
// The bytes a file of that form holds for `text`: UTF-16LE after its mark, or `text`.
std::string EncodeFile(std::string_view text, bool utf16);

// Where the platform looks for a profile file: a name without any folder (no
// separator and no drive) is in the Windows folder; any other path is used as it is.
// An empty `windowsFolder` leaves every name as it is.
std::string ProfilePath(std::string_view name, std::string_view windowsFolder);

// A lead byte without a trail byte after it (a line end, a NUL, the end) reads as
// "?", as the platform's conversion to UTF-16 and back leaves it; so do the names
// and values that the calls below are given.
Document Parse(std::string_view bytes);
// CR-LF lines, no blank lines; a section without a name gets no header.
std::string Serialize(const Document& document);

// Reads. `buffer` receives exactly what the platform's A call would leave in it (bytes
// it would not touch are left alone); the return value is the call's.
std::uint32_t GetString(const Document& document, std::string_view section,
                        std::string_view key, std::string_view def, char* buffer,
                        std::uint32_t size);
// The key list of GetPrivateProfileStringA with a null key.
std::uint32_t GetKeyList(const Document& document, std::string_view section, std::string_view def,
                         char* buffer, std::uint32_t size);
std::uint32_t GetSection(const Document& document, std::string_view section, char* buffer,
                         std::uint32_t size);
std::uint32_t GetSectionNames(const Document& document, char* buffer, std::uint32_t size);
unsigned GetInt(const Document& document, std::string_view section, std::string_view key,
                int def);
bool GetStruct(const Document& document, std::string_view section, std::string_view key,
               void* data, std::uint32_t size);

// Writes; each returns whether the document changed (the platform leaves the file
// alone when it didn't).
bool WriteString(Document& document, std::string_view section, std::string_view key,
                 std::string_view value);
bool DeleteKey(Document& document, std::string_view section, std::string_view key);
bool DeleteSection(Document& document, std::string_view section);
// WritePrivateProfileSectionA: `body` is "key=value" strings, each ended by a NUL.
bool WriteSection(Document& document, std::string_view section, std::string_view body);
// A null `data` deletes the key, as a null string does.
bool WriteStruct(Document& document, std::string_view section, std::string_view key,
                 const void* data, std::uint32_t size);
// The text WritePrivateProfileStructA stores: hex pairs and a checksum pair.
std::string StructText(const void* data, std::uint32_t size);

// Whether the document serializes to text that parses back to the same document: no
// nameless section after the first, and every name and value free of what the parse
// would read differently (line ends, edge blanks, "=" in a name, a "[" opening it).
// A writer can then keep the document instead of parsing the file it wrote.
bool ReadsBackAsWritten(const Document& document);
// The same for what one WriteString adds to a document that already reads back.
bool WriteReadsBack(std::string_view section, std::string_view key, std::string_view value);

// Splits a returned list (strings ended by NUL, ended by an empty string or by the
// end of the buffer) into its strings.
std::vector<std::string> SplitList(const char* buffer, std::uint32_t size);

// Finds the first section so named, as the reads do (blanks trimmed, case ignored).
const Section* FindSection(const Document& document, std::string_view name);

}  // namespace tavlet::profile
