// Thumbnails kept across sessions: the last picture captured of each drawing,
// in one file of the data folder, so that a drawing opened again shows it before
// it has been active. Bounded in bytes; the entry stored longest ago goes first.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace tavlet::previews {

inline constexpr char kThumbnailCacheFileName[] = "Thumbnails.bin";
inline constexpr std::size_t kDefaultThumbnailCacheBytes = 4u << 20;

struct CachedThumbnail {
  std::string key;  // the path, lower case
  std::uint64_t stamp = 0;
  std::int32_t width = 0, height = 0;
  std::vector<unsigned char> dib;  // packed 24-bit DIB, as the bar stores it
};

class ThumbnailCache {
 public:
  // Loads the file; one that is missing, cut short or not ours counts as empty
  // and is replaced at the next store.
  ThumbnailCache(FileSystem& files, std::string filePath, std::size_t maxBytes = kDefaultThumbnailCacheBytes);

  // Null when the drawing has none.
  const CachedThumbnail* Find(const std::string& path) const;
  // Replaces the drawing's entry, evicts the oldest until the whole fits, and
  // writes the file atomically. A picture larger than the bound is not kept.
  void Store(const std::string& path, std::int32_t width, std::int32_t height, const std::vector<unsigned char>& dib);

  std::size_t Bytes() const;
  const std::vector<CachedThumbnail>& Entries() const { return entries_; }
  bool LoadedCorrupt() const { return corrupt_; }

 private:
  void Write();

  FileSystem& files_;
  std::string filePath_;
  std::size_t maxBytes_;
  std::vector<CachedThumbnail> entries_;
  std::uint64_t nextStamp_ = 1;
  bool corrupt_ = false;
};

// The file's bytes for `entries`, and back; Parse gives false for anything that
// is not a whole file of ours.
std::string FormatThumbnailCache(const std::vector<CachedThumbnail>& entries);
bool ParseThumbnailCache(const std::string& bytes, std::vector<CachedThumbnail>& entries);
// What one entry takes in the file.
std::size_t EntryBytes(const CachedThumbnail& entry);

}  // namespace tavlet::previews
