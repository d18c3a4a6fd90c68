#include "previews/thumbnail_cache.h"

#include <algorithm>

#include "text/codepage.h"

namespace tavlet::previews {

namespace {

constexpr char kMagic[] = {'T', 'V', 'T', 'C', 1, 0, 0, 0};
constexpr std::size_t kFixedEntryBytes = 4 + 8 + 4 + 4 + 4;

void PutU32(std::string& out, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

void PutU64(std::string& out, std::uint64_t v) {
  for (int i = 0; i < 8; ++i) out += static_cast<char>((v >> (8 * i)) & 0xFF);
}

class Reader {
 public:
  explicit Reader(const std::string& bytes) : bytes_(bytes) {}
  bool U32(std::uint32_t& v) {
    if (Left() < 4) return false;
    v = 0;
    for (int i = 0; i < 4; ++i) v |= static_cast<std::uint32_t>(Byte(pos_ + i)) << (8 * i);
    pos_ += 4;
    return true;
  }
  bool U64(std::uint64_t& v) {
    std::uint32_t low = 0, high = 0;
    if (!U32(low) || !U32(high)) return false;
    v = low | (static_cast<std::uint64_t>(high) << 32);
    return true;
  }
  bool Bytes(std::size_t count, const char*& at) {
    if (Left() < count) return false;
    at = bytes_.data() + pos_;
    pos_ += count;
    return true;
  }
  std::size_t Left() const { return bytes_.size() - pos_; }

 private:
  unsigned char Byte(std::size_t at) const { return static_cast<unsigned char>(bytes_[at]); }
  const std::string& bytes_;
  std::size_t pos_ = 0;
};

std::string KeyOf(const std::string& path) { return text::Mbslwr(path); }

}  // namespace

std::size_t EntryBytes(const CachedThumbnail& entry) { return kFixedEntryBytes + entry.key.size() + entry.dib.size(); }

std::string FormatThumbnailCache(const std::vector<CachedThumbnail>& entries) {
  std::string out(kMagic, sizeof kMagic);
  PutU32(out, static_cast<std::uint32_t>(entries.size()));
  for (const CachedThumbnail& e : entries) {
    PutU32(out, static_cast<std::uint32_t>(e.key.size()));
    out += e.key;
    PutU64(out, e.stamp);
    PutU32(out, static_cast<std::uint32_t>(e.width));
    PutU32(out, static_cast<std::uint32_t>(e.height));
    PutU32(out, static_cast<std::uint32_t>(e.dib.size()));
    out.append(reinterpret_cast<const char*>(e.dib.data()), e.dib.size());
  }
  return out;
}

bool ParseThumbnailCache(const std::string& bytes, std::vector<CachedThumbnail>& entries) {
  entries.clear();
  Reader in(bytes);
  const char* magic = nullptr;
  std::uint32_t count = 0;
  if (!in.Bytes(sizeof kMagic, magic) || !std::equal(magic, magic + sizeof kMagic, kMagic) || !in.U32(count))
    return false;
  for (std::uint32_t i = 0; i < count; ++i) {
    CachedThumbnail e;
    std::uint32_t keySize = 0, width = 0, height = 0, dibSize = 0;
    const char* key = nullptr;
    const char* dib = nullptr;
    if (!in.U32(keySize) || !in.Bytes(keySize, key) || !in.U64(e.stamp) || !in.U32(width) || !in.U32(height) ||
        !in.U32(dibSize) || !in.Bytes(dibSize, dib))
      return false;
    e.key.assign(key, keySize);
    e.width = static_cast<std::int32_t>(width);
    e.height = static_cast<std::int32_t>(height);
    if (e.width <= 0 || e.height <= 0) return false;
    e.dib.assign(reinterpret_cast<const unsigned char*>(dib), reinterpret_cast<const unsigned char*>(dib) + dibSize);
    entries.push_back(std::move(e));
  }
  return in.Left() == 0;
}

ThumbnailCache::ThumbnailCache(FileSystem& files, std::string filePath, std::size_t maxBytes)
    : files_(files), filePath_(std::move(filePath)), maxBytes_(maxBytes) {
  std::string bytes;
  if (files_.ReadFile(filePath_, bytes) != FileError::None) return;
  if (!ParseThumbnailCache(bytes, entries_)) {
    corrupt_ = true;
    entries_.clear();
    return;
  }
  for (const CachedThumbnail& e : entries_) nextStamp_ = std::max(nextStamp_, e.stamp + 1);
}

const CachedThumbnail* ThumbnailCache::Find(const std::string& path) const {
  const std::string key = KeyOf(path);
  auto it = std::find_if(entries_.begin(), entries_.end(), [&](const CachedThumbnail& e) { return e.key == key; });
  return it == entries_.end() ? nullptr : &*it;
}

std::size_t ThumbnailCache::Bytes() const {
  std::size_t total = 0;
  for (const CachedThumbnail& e : entries_) total += EntryBytes(e);
  return total;
}

void ThumbnailCache::Store(const std::string& path, std::int32_t width, std::int32_t height,
                           const std::vector<unsigned char>& dib) {
  CachedThumbnail entry{KeyOf(path), nextStamp_++, width, height, dib};
  std::erase_if(entries_, [&](const CachedThumbnail& e) { return e.key == entry.key; });
  if (width <= 0 || height <= 0 || EntryBytes(entry) > maxBytes_) {
    Write();
    return;
  }
  const std::size_t needed = EntryBytes(entry);
  std::size_t total = Bytes();
  while (!entries_.empty() && total + needed > maxBytes_) {
    auto oldest = std::min_element(entries_.begin(), entries_.end(),
                                   [](const CachedThumbnail& a, const CachedThumbnail& b) { return a.stamp < b.stamp; });
    total -= EntryBytes(*oldest);
    entries_.erase(oldest);
  }
  entries_.push_back(std::move(entry));
  Write();
}

void ThumbnailCache::Write() {
  if (files_.WriteFileAtomic(filePath_, FormatThumbnailCache(entries_)) == FileError::None) corrupt_ = false;
}

}  // namespace tavlet::previews
