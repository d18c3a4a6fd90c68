#include "worksets/markup_doc.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <new>
#include <cstring>

#include "platform/file_system.h"
#include "worksets/markup_doc_scan.h"

namespace tavlet {

using namespace markup;

MarkupDoc::MarkupDoc() {
  // Record 0 exists from the start, so that a new document can take a root element.
  GrowIndex(8);
  ClearRootRecord();
}

MarkupDoc::MarkupDoc(FileSystem& files) : MarkupDoc() { files_ = &files; }

MarkupDoc::~MarkupDoc() = default;

FileSystem& MarkupDoc::Files() const { return files_ ? *files_ : NativeFileSystem(); }

bool MarkupDoc::SetDoc(const char* text) { return SetDoc(text ? std::string_view(text) : std::string_view()); }

bool MarkupDoc::SetDoc(std::string_view text) {
  doc_.assign(text.data(), text.size());
  error_.clear();
  return Parse();
}

bool MarkupDoc::IsWellFormed() const { return capacity_ > 0 && Rec(0).child != 0; }

void MarkupDoc::ClearRootRecord() {
  ElementRecord& root = Rec(0);
  std::memset(&root, 0, sizeof root);
  root.tagLengths = 1u << kEndTagShift;
}

void MarkupDoc::SetTagLengths(ElementRecord& r, std::uint64_t startLength, std::uint64_t endLength) {
  r.tagLengths = static_cast<std::uint32_t>((startLength & 0x3FFFFF) | (endLength << kEndTagShift));
  if (startLength > 0xFFFFF || endLength > 0x1FF) r.flags |= kOversizedTags;
}

bool MarkupDoc::Parse() {
  const std::string kept = std::move(error_);
  error_.clear();
  parentPos_ = mainPos_ = childPos_ = 0;
  savedPositions_.reset();
  nextFreePos_ = 1;
  GrowIndex(doc_.size() / 64 + 8);
  freeChain_ = 0;
  ClearRootRecord();
  bool ok = false;
  textScannable_ = true;
  if (doc_.empty()) {
    error_ = "空文件";
  } else {
    const std::int64_t root = ParseElements(doc_, 0);
    if (root > 0) {
      Rec(0).child = static_cast<std::uint32_t>(root);
      Rec(0).length = static_cast<std::uint32_t>(doc_.size());
      ok = true;
    } else {
      ClearRootRecord();
      nextFreePos_ = 1;
      textScannable_ = root == 0;
    }
  }
  TrimIndex();
  nodeType_ = 0;
  nodeOffset_ = nodeLength_ = 0;
  if (!kept.empty()) error_ = error_.empty() ? kept : kept + ", " + error_;
  return ok;
}

void MarkupDoc::GrowIndex(std::uint64_t wanted) {
  if (wanted == 0) wanted = nextFreePos_ + nextFreePos_ / 2;
  if (wanted <= capacity_) return;
  const std::uint64_t maxRecords = std::uint64_t{1} << 32;
  // One call crosses at most one segment boundary.
  const std::uint64_t lastSegment = capacity_ ? (capacity_ - 1) >> kSegmentBits : UINT64_MAX;
  const std::uint64_t nextSegment = lastSegment + 1;  // 0 when there is none
  std::uint64_t newSegment = (wanted - 1) >> kSegmentBits;
  if (newSegment > nextSegment) {
    newSegment = nextSegment;
    wanted = (newSegment + 1) << kSegmentBits;
  }
  if (wanted >= maxRecords) wanted = maxRecords - 1;
  if (newSegment >= segments_.size()) segments_.resize(newSegment * 2 + 4);
  const std::uint64_t newBase = newSegment << kSegmentBits;
  if (newSegment != lastSegment && capacity_) {
    // A later segment starts: the partly filled last one is made whole first.
    ResizeSegment(lastSegment, kSegmentSize);
  }
  ResizeSegment(newSegment, wanted - newBase);
  capacity_ = static_cast<std::uint32_t>(wanted);
}

void MarkupDoc::FreeSegment::operator()(ElementRecord* block) const { std::free(block); }

void MarkupDoc::ResizeSegment(std::uint64_t segment, std::uint64_t records) {
  void* block = std::realloc(segments_[segment].get(), records * sizeof(ElementRecord));
  if (!block) throw std::bad_alloc();
  segments_[segment].release();
  segments_[segment].reset(static_cast<ElementRecord*>(block));
}

void MarkupDoc::TrimIndex() {
  // A parse reserves by the text's length and grows by half; what it didn't use
  // goes back, since a parsed document is mostly only read. An edit grows again.
  const std::uint64_t keep = std::max<std::uint64_t>(nextFreePos_, 8);
  if (keep >= capacity_) return;
  const std::uint64_t lastSegment = (keep - 1) >> kSegmentBits;
  for (std::uint64_t s = lastSegment + 1; s < segments_.size(); ++s) segments_[s].reset();
  ResizeSegment(lastSegment, keep - (lastSegment << kSegmentBits));
  capacity_ = static_cast<std::uint32_t>(keep);
}

std::uint32_t MarkupDoc::TakeRecord() {
  if (nextFreePos_ >= capacity_) GrowIndex(0);
  return nextFreePos_++;
}

std::size_t MarkupDoc::IndexBytes() const {
  return std::size_t{capacity_} * sizeof(ElementRecord) + segments_.size() * sizeof(segments_[0]);
}

// Navigation.

void MarkupDoc::SetPositions(std::uint32_t parent, std::uint32_t main, std::uint32_t child) {
  parentPos_ = parent;
  mainPos_ = main;
  childPos_ = child;
  nodeType_ = main ? 1 : 0;
  nodeOffset_ = nodeLength_ = 0;
}

void MarkupDoc::ResetPos() { SetPositions(0, 0, 0); }

bool MarkupDoc::NameMatchesAt(std::uint32_t pos, std::string_view name) const {
  ParseToken token;
  token.text = doc_;
  token.next = Rec(pos).start + 1;
  return ScanWord(token) && NameMatches(token.View(), name);
}

std::uint32_t MarkupDoc::FindSibling(std::uint32_t parent, std::uint32_t after, std::string_view name) const {
  std::uint32_t pos = after ? Rec(after).next : Rec(parent).child;
  while (pos && !name.empty() && !NameMatchesAt(pos, name)) pos = Rec(pos).next;
  return pos;
}

bool MarkupDoc::FindElement(std::string_view name) {
  const std::uint32_t pos = FindSibling(parentPos_, mainPos_, name);
  if (!pos) return false;
  SetPositions(parentPos_, pos, 0);
  return true;
}

bool MarkupDoc::FindChildElement(std::string_view name) {
  if (!mainPos_ && !FindElement()) return false;
  const std::uint32_t pos = FindSibling(mainPos_, childPos_, name);
  if (!pos) return false;
  SetPositions(parentPos_, mainPos_, pos);
  return true;
}

bool MarkupDoc::EnterChild() {
  if (!mainPos_ || nodeType_ != 1) return false;
  SetPositions(mainPos_, childPos_, 0);
  return true;
}

bool MarkupDoc::LeaveToParent() {
  if (!parentPos_) return false;
  SetPositions(Rec(parentPos_).parent, parentPos_, mainPos_);
  return true;
}

std::string MarkupDoc::GetTagName() const {
  if (!mainPos_) return {};
  return std::string(TagNameAt(doc_, Rec(mainPos_).start));
}

std::string MarkupDoc::GetContent() const {
  if (!mainPos_) return {};
  const ElementRecord& r = Rec(mainPos_);
  if (r.child || EndTagLength(r) <= 0 || (r.flags & kOversizedTags)) return {};
  const std::size_t begin = r.start + StartTagLength(r);
  const std::size_t end = std::size_t{r.start} + r.length - static_cast<std::size_t>(EndTagLength(r));
  if (begin > end || end > doc_.size()) return {};
  std::string out;
  const char* p = doc_.data();
  std::size_t i = begin;
  while (i < end && p[i] != '<') i += Step(p, i, end);
  if (i >= end) {
    AppendDecoded(out, std::string_view(p + begin, end - begin));
    return out;
  }
  ParseToken token;
  token.text = std::string_view(p, end);
  token.next = begin;
  NodeFrame frame;
  for (;;) {
    const int kind = ScanNode(token, frame);
    if (kind == kText) {
      AppendDecoded(out, std::string_view(p + frame.start, frame.length));
    } else if (kind == kCdataSection) {
      if (frame.length >= 12) out.append(p + frame.start + 9, frame.length - 12);
    } else if (kind == kEndOfDocument || kind == kTokenError) {
      break;
    }
  }
  return out;
}

std::string MarkupDoc::GetAttribute(std::string_view name) const {
  if (!mainPos_) return {};
  AttributeSpot spot;
  if (!FindAttribute(doc_, Rec(mainPos_).start + 1, name, spot)) return {};
  std::string out;
  AppendDecoded(out, std::string_view(doc_).substr(spot.valueStart, spot.valueLength));
  return out;
}

std::string MarkupDoc::GetAttributeName(int index) const {
  if (!mainPos_ || index < 0) return {};
  return std::string(AttributeNameAt(doc_, Rec(mainPos_).start + 1, index));
}

std::size_t MarkupDoc::SkipSpaceBeforeMarkup(std::size_t offset) const {
  std::size_t i = offset;
  while (i < doc_.size() && IsSpace(static_cast<unsigned char>(doc_[i]))) ++i;
  return (i >= doc_.size() || doc_[i] == '<') ? i : offset;
}

std::string MarkupDoc::GetSubDocument() const {
  if (!mainPos_) return {};
  const ElementRecord& r = Rec(mainPos_);
  const std::size_t end = SkipSpaceBeforeMarkup(std::size_t{r.start} + r.length);
  return doc_.substr(r.start, end - r.start);
}

// Saved positions.

namespace {

constexpr std::uint32_t kSavedMain = 1;
constexpr std::uint32_t kSavedChild = 2;
constexpr std::uint32_t kSavedInUse = 4;
constexpr std::uint32_t kSavedLast = 8;

std::size_t BucketOf(std::string_view name) {
  std::uint32_t sum = 0;
  for (char c : name) sum += static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(c)));
  return sum % 7;
}

}  // namespace

bool MarkupDoc::SavePosition(std::string_view name) {
  if (!savedPositions_) savedPositions_ = std::make_unique<SavedPositionTable>();
  std::vector<SavedPosition>& bucket = (*savedPositions_)[BucketOf(name)];
  SavedPosition* entry = nullptr;
  for (SavedPosition& candidate : bucket) {
    if (candidate.name == name) entry = &candidate;
  }
  if (!entry) {
    if (!bucket.empty()) bucket.back().flags &= ~kSavedLast;
    entry = &bucket.emplace_back();
    entry->name.assign(name.data(), name.size());
    entry->flags = kSavedLast;
  }
  entry->flags &= kSavedLast;
  entry->flags |= kSavedInUse;
  if (childPos_) {
    entry->position = childPos_;
    entry->flags |= kSavedChild;
  } else if (mainPos_) {
    entry->position = mainPos_;
    entry->flags |= kSavedMain;
  } else {
    entry->position = parentPos_;
  }
  return true;
}

bool MarkupDoc::LiveRecord(std::uint32_t pos) const {
  // A removed element's descendants are left as they were, so the whole parent
  // chain is checked.
  for (std::uint32_t up = pos; up != 0; up = Rec(up).parent) {
    if (up >= nextFreePos_ || (Rec(up).flags & kRemovedRecord)) return false;
  }
  return true;
}

bool MarkupDoc::RestorePosition(std::string_view name) {
  if (!savedPositions_) return false;
  for (const SavedPosition& entry : (*savedPositions_)[BucketOf(name)]) {
    if (!(entry.flags & kSavedInUse) || entry.name != name) continue;
    if (!LiveRecord(entry.position)) return false;
    if (entry.flags & kSavedChild) {
      const std::uint32_t main = Rec(entry.position).parent;
      SetPositions(Rec(main).parent, main, entry.position);
    } else if (entry.flags & kSavedMain) {
      SetPositions(Rec(entry.position).parent, entry.position, 0);
    } else {
      SetPositions(entry.position, 0, 0);
    }
    return true;
  }
  return false;
}

// Files.

namespace {

std::string FileErrorText(FileError error) {
  int code = EIO;
  switch (error) {
    case FileError::NotFound: code = ENOENT; break;
    case FileError::AccessDenied:
    case FileError::SharingViolation: code = EACCES; break;
    case FileError::TooLarge: code = EFBIG; break;
    default: break;
  }
  return std::strerror(code);
}

}  // namespace

bool MarkupDoc::Load(const std::string& path) {
  std::string bytes;
  const FileError result = Files().ReadFile(path, bytes);
  if (result != FileError::None) {
    error_ = FileErrorText(result);
    return false;
  }
  doc_ = std::move(bytes);
  error_ = Format("%s%d bytes", "", static_cast<int>(doc_.size()));
  return Parse();
}

bool MarkupDoc::Save(const std::string& path) {
  const FileError result = Files().WriteFileAtomic(path, doc_);
  if (result != FileError::None) {
    error_ = FileErrorText(result);
    return false;
  }
  error_ = Format("%s%d bytes", "", static_cast<int>(doc_.size()));
  return true;
}

}  // namespace tavlet
