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
