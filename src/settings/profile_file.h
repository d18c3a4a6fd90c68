// A private-profile (.ini) file: the worksets file and the sheet-set side files are
// made of these. Every operation reads the file afresh (a parse is reused while the
// bytes are unchanged), does what the platform's private-profile call does, and a
// write replaces the file atomically: a write that fails leaves the old file whole
// and returns false. Reads of a missing or unreadable file see an empty file; the
// first write creates it. A name without a folder is in the Windows folder, and a
// UTF-16LE file (with its byte-order mark) is read and written back as UTF-16.
//
//   ProfileFile worksets(NativeFileSystem(), path, /*removeEmptyValues=*/true);
//   worksets.WriteString("Site plans", "文件1", "C:\\Jobs\\site.dwg,0");
//   std::vector<std::string> lines;
//   worksets.GetSectionLines("Site plans", lines);
#pragma once

#include <cstdint>
#include <istream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "settings/profile_engine.h"

namespace tavlet {

class ProfileFile {
 public:
  // The buffers the platform calls are given; results longer than these are cut as
  // the platform cuts them.
  static constexpr std::uint32_t kStringBuffer = 2000;
  static constexpr std::uint32_t kSectionBuffer = 32000;
  static constexpr std::uint32_t kNamesBuffer = 2000;
  static constexpr std::uint32_t kCopyBuffer = 32767;

  ProfileFile(FileSystem& files, std::string path, bool removeEmptyValues = false);
  // Copies every line of `stream`, each followed by a line end, into a new temporary
  // file named with the prefix "MV_", which this object owns and deletes.
  ProfileFile(FileSystem& files, std::istream& stream);
  ~ProfileFile();
  ProfileFile(const ProfileFile&) = delete;
  ProfileFile& operator=(const ProfileFile&) = delete;

  const std::string& Path() const { return path_; }
  bool HasPath() const { return pathSet_; }
  bool RemoveEmptyValues() const { return removeEmptyValues_; }
  bool OwnsTempFile() const { return ownsTempFile_; }

  bool WriteBool(std::string_view section, std::string_view key, bool value);  // "True"/"False"
  bool WriteInt(std::string_view section, std::string_view key, int value);    // "%i"
  bool WriteDouble(std::string_view section, std::string_view key, double value);  // "%g"
  // An empty value deletes the key when removeEmptyValues is set.
  bool WriteString(std::string_view section, std::string_view key, std::string_view value);
  // A null `data` deletes the key.
  bool WriteStruct(std::string_view section, std::string_view key, const void* data,
                   std::uint32_t size);

  // "True" in any case, or exactly "1"; a missing key gives `def`.
  bool GetBool(std::string_view section, std::string_view key, bool def);
  int GetInt(std::string_view section, std::string_view key, int def);
  // strtod of the text; an empty text gives `def`.
  double GetDouble(std::string_view section, std::string_view key, double def);
  std::string GetString(std::string_view section, std::string_view key,
                        std::string_view def = "");
  // Fails for a size of 0.
  bool GetStruct(std::string_view section, std::string_view key, void* data, std::uint32_t size);

  // Each appends to what the container holds and returns how many it appended.
  // Keys: the text before the first "=" of each entry, an entry without "=" whole.
  std::size_t GetSectionKeys(std::string_view section, std::vector<std::string>& list);
  std::size_t GetSectionLines(std::string_view section, std::vector<std::string>& list);
  // An entry without a value maps to "".
  std::size_t GetSectionMap(std::string_view section, std::map<std::string, std::string>& map);
  std::size_t GetSectionNames(std::vector<std::string>& list);

  bool DeleteSection(std::string_view section);  // header and entries go
  bool ClearSection(std::string_view section);   // the header stays, the entries go
  bool EnsureSection(std::string_view section);  // an empty section when it has no entries
  // Copies the body through a buffer of 32767; fails when the source is empty.
  bool CopySection(std::string_view from, std::string_view to);
  // Names that differ only by case succeed at once; otherwise copy, then delete.
  bool RenameSection(std::string_view from, std::string_view to);

 private:
  // The file's current document; false when the file exists but can't be read (a
  // write must not replace what it couldn't read).
  bool Load(const profile::Document*& document);
  // `readsBack`: the change keeps a document that reads back as written, so the
  // document needn't be parsed again from the bytes written. `emptyFileWhenMissing`:
  // the change is a deletion, which makes a missing file (empty) even when it has
  // nothing to delete.
  template <typename Change>
  bool Modify(Change&& change, bool readsBack = false, bool emptyFileWhenMissing = false);

  FileSystem& files_;
  std::string path_;
  bool pathSet_ = false;
  bool removeEmptyValues_ = false;
  bool ownsTempFile_ = false;
  bool cacheValid_ = false;
  bool cacheReadsBack_ = false;  // cachedDocument_ serializes to bytes that parse back to it
  bool cacheUtf16_ = false;      // the file is UTF-16LE with its mark, and is written back so
  bool cacheWritable_ = true;    // a rewrite keeps every character of the file
  bool fileMissing_ = false;     // the last read found no file
  std::string cachedBytes_;
  profile::Document cachedDocument_;
};

}  // namespace tavlet
