#include "settings/profile_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "text/codepage.h"

namespace tavlet {

ProfileFile::ProfileFile(FileSystem& files, std::string path, bool removeEmptyValues)
    : files_(files),
      path_(profile::ProfilePath(path, files.WindowsFolder())),
      pathSet_(true),
      removeEmptyValues_(removeEmptyValues) {}

ProfileFile::ProfileFile(FileSystem& files, std::istream& stream) : files_(files) {
  path_ = files_.CreateTempFile("MV_");
  if (path_.empty()) return;
  pathSet_ = true;
  ownsTempFile_ = true;
  std::string content;
  std::string line;
  while (std::getline(stream, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    content += line;
    content += "\r\n";
  }
  files_.WriteFileAtomic(path_, content);
}

ProfileFile::~ProfileFile() {
  if (ownsTempFile_) files_.Remove(path_);
}

bool ProfileFile::Load(const profile::Document*& document) {
  document = &cachedDocument_;
  if (!pathSet_) {
    cachedDocument_ = profile::Document{};
    cacheValid_ = false;
    return false;
  }
  std::string bytes;
  const FileError error = files_.ReadFile(path_, bytes);
  fileMissing_ = error == FileError::NotFound;
  if (error != FileError::None) {
    cachedDocument_ = profile::Parse("");
    cacheValid_ = false;
    cacheReadsBack_ = true;
    cacheUtf16_ = false;
    cacheWritable_ = true;
    return error == FileError::NotFound;
  }
  if (!cacheValid_ || bytes != cachedBytes_) {
    cacheUtf16_ = profile::IsUtf16File(bytes);
    cacheWritable_ = true;
    if (cacheUtf16_) {
      const profile::FileText file = profile::DecodeFile(bytes);
      cachedDocument_ = profile::Parse(file.text);
      cacheWritable_ = file.lossless;
    } else {
      cachedDocument_ = profile::Parse(bytes);
    }
    cacheReadsBack_ = profile::ReadsBackAsWritten(cachedDocument_);
    cachedBytes_ = std::move(bytes);
    cacheValid_ = true;
  }
  return true;
}

template <typename Change>
bool ProfileFile::Modify(Change&& change, bool readsBack, bool emptyFileWhenMissing) {
  const profile::Document* current = nullptr;
  if (!Load(current)) return false;
  // A UTF-16 file holding characters that code page 936 lacks would lose them in
  // the rewrite: it is left whole, and the write fails.
  if (!cacheWritable_) return false;
  // The change is made on the cached document itself; a failed write takes it back
  // by parsing the bytes that are still on disk.
  if (!change(cachedDocument_)) {
    // Nothing changed: the file is left alone. But a deletion from a file that isn't
    // there leaves it there, empty, as Windows does (Wine writes nothing).
    if (!emptyFileWhenMissing || !fileMissing_) return true;
    if (files_.WriteFileAtomic(path_, "") != FileError::None) return false;
    fileMissing_ = false;
    cachedBytes_.clear();
    cacheValid_ = true;
    return true;
  }
  std::string text = profile::Serialize(cachedDocument_);
  std::string encoded = cacheUtf16_ ? profile::EncodeFile(text, true) : std::string();
  const std::string& bytes = cacheUtf16_ ? encoded : text;
  if (files_.WriteFileAtomic(path_, bytes) != FileError::None) {
    const profile::FileText old = profile::DecodeFile(cacheValid_ ? cachedBytes_ : std::string());
    cachedDocument_ = profile::Parse(old.text);
    cacheReadsBack_ = profile::ReadsBackAsWritten(cachedDocument_);
    return false;
  }
  // The file is what counts, not the document that made it: a value's trailing blanks
  // or a nameless section read back differently.
  if (!cacheReadsBack_ || !readsBack) {
    cachedDocument_ = profile::Parse(text);
    cacheReadsBack_ = profile::ReadsBackAsWritten(cachedDocument_);
  }
  cachedBytes_ = cacheUtf16_ ? std::move(encoded) : std::move(text);
  cacheValid_ = true;
  return true;
}

bool ProfileFile::WriteBool(std::string_view section, std::string_view key, bool value) {
  return WriteString(section, key, value ? "True" : "False");
}

bool ProfileFile::WriteInt(std::string_view section, std::string_view key, int value) {
  char text[16];
  std::snprintf(text, sizeof text, "%i", value);
  return WriteString(section, key, text);
}

bool ProfileFile::WriteDouble(std::string_view section, std::string_view key, double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", value);
  return WriteString(section, key, text);
}

bool ProfileFile::WriteString(std::string_view section, std::string_view key,
                              std::string_view value) {
  if (value.empty() && removeEmptyValues_)
    return Modify([&](profile::Document& d) { return profile::DeleteKey(d, section, key); }, true, true);
  return Modify([&](profile::Document& d) { return profile::WriteString(d, section, key, value); },
                profile::WriteReadsBack(section, key, value));
}

bool ProfileFile::WriteStruct(std::string_view section, std::string_view key, const void* data,
                              std::uint32_t size) {
  if (data == nullptr)
    return Modify([&](profile::Document& d) { return profile::DeleteKey(d, section, key); }, true, true);
  return Modify(
      [&](profile::Document& d) { return profile::WriteStruct(d, section, key, data, size); });
}

bool ProfileFile::GetBool(std::string_view section, std::string_view key, bool def) {
  const std::string value = GetString(section, key, def ? "True" : "False");
  return text::Mbsicmp(value, "True") == 0 || value == "1";
}

int ProfileFile::GetInt(std::string_view section, std::string_view key, int def) {
  const profile::Document* document = nullptr;
  Load(document);
  return static_cast<int>(profile::GetInt(*document, section, key, def));
}

double ProfileFile::GetDouble(std::string_view section, std::string_view key, double def) {
  const std::string value = GetString(section, key, "");
  if (value.empty()) return def;
  return std::strtod(value.c_str(), nullptr);
}

std::string ProfileFile::GetString(std::string_view section, std::string_view key,
                                   std::string_view def) {
  const profile::Document* document = nullptr;
  Load(document);
  char buffer[kStringBuffer] = {};
  profile::GetString(*document, section, key, def, buffer, kStringBuffer);
  return std::string(buffer);
}

bool ProfileFile::GetStruct(std::string_view section, std::string_view key, void* data,
                            std::uint32_t size) {
  if (size == 0) return false;
  const profile::Document* document = nullptr;
  Load(document);
  return profile::GetStruct(*document, section, key, data, size);
}

std::size_t ProfileFile::GetSectionLines(std::string_view section,
                                         std::vector<std::string>& list) {
  const profile::Document* document = nullptr;
  Load(document);
  auto buffer = std::make_unique<char[]>(kSectionBuffer);
  profile::GetSection(*document, section, buffer.get(), kSectionBuffer);
  std::vector<std::string> lines = profile::SplitList(buffer.get(), kSectionBuffer);
  list.insert(list.end(), lines.begin(), lines.end());
  return lines.size();
}

std::size_t ProfileFile::GetSectionKeys(std::string_view section,
                                        std::vector<std::string>& list) {
  std::vector<std::string> lines;
  GetSectionLines(section, lines);
  for (const std::string& line : lines) list.push_back(line.substr(0, line.find('=')));
  return lines.size();
}

std::size_t ProfileFile::GetSectionMap(std::string_view section,
                                       std::map<std::string, std::string>& map) {
  std::vector<std::string> lines;
  GetSectionLines(section, lines);
  for (const std::string& line : lines) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos)
      map[line] = "";
    else
      map[line.substr(0, equals)] = line.substr(equals + 1);
  }
  return lines.size();
}

std::size_t ProfileFile::GetSectionNames(std::vector<std::string>& list) {
  const profile::Document* document = nullptr;
  Load(document);
  char buffer[kNamesBuffer] = {};
  profile::GetSectionNames(*document, buffer, kNamesBuffer);
  std::vector<std::string> names = profile::SplitList(buffer, kNamesBuffer);
  list.insert(list.end(), names.begin(), names.end());
  return names.size();
}

bool ProfileFile::DeleteSection(std::string_view section) {
  return Modify([&](profile::Document& d) { return profile::DeleteSection(d, section); }, true, true);
}

bool ProfileFile::ClearSection(std::string_view section) {
  return Modify([&](profile::Document& d) { return profile::WriteSection(d, section, ""); });
}

bool ProfileFile::EnsureSection(std::string_view section) {
  std::vector<std::string> lines;
  if (GetSectionLines(section, lines) > 0) return true;
  return Modify([&](profile::Document& d) {
    for (const profile::Section& s : d.sections)
      if (!s.name.empty() && text::Mbsicmp(s.name, section) == 0) return false;
    std::string_view name = section;
    while (!name.empty() && name.front() == ' ') name.remove_prefix(1);
    d.sections.push_back(profile::Section{std::string(name), {}});
    return true;
  });
}

bool ProfileFile::CopySection(std::string_view from, std::string_view to) {
  const profile::Document* document = nullptr;
  Load(document);
  auto buffer = std::make_unique<char[]>(kCopyBuffer);
  const std::uint32_t length = profile::GetSection(*document, from, buffer.get(), kCopyBuffer);
  if (length == 0) return false;
  const std::string body(buffer.get(), std::min<std::uint32_t>(length + 2, kCopyBuffer));
  return Modify([&](profile::Document& d) { return profile::WriteSection(d, to, body); });
}

bool ProfileFile::RenameSection(std::string_view from, std::string_view to) {
  if (text::Mbsicmp(from, to) == 0) return true;
  if (!CopySection(from, to)) return false;
  return DeleteSection(from);
}

}  // namespace tavlet
