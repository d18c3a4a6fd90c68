// MarkupDoc: an XML document held as one code-page 936 string, with an index of
// element records beside it that refer to the text by offset. Parsing builds the
// index without copying anything out of the text; edits change the string in place
// and shift the offsets. Reading never builds a tree of nodes.
//
// Example:
//   MarkupDoc doc;
//   doc.SetDoc("<root><item id=\"1\">x</item></root>");
//   while (doc.FindChildElement("item")) {
//     doc.EnterChild();
//     std::string id = doc.GetAttribute("id");
//     doc.LeaveToParent();
//   }
//
// Every operation answers with a truth value or an empty string; a parse error
// leaves its message in GetError() and the text in GetDoc(), and every find then
// fails.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavlet {

class FileSystem;

// One element of the index, eight 32-bit words. Positions are 32-bit: the high 16
// bits pick a segment of 65536 records, the low 16 bits a record in it.
struct ElementRecord {
  std::uint32_t start;       // offset of the "<" of the start tag
  std::uint32_t length;      // to the end of the end tag; the document's length for record 0
  std::uint32_t tagLengths;  // start tag under kStartTagMask, end tag in the top ten bits
  std::uint32_t flags;       // level in the low 16 bits, kFirstChild, kRemovedRecord
  std::uint32_t parent;
  std::uint32_t child;       // first child
  std::uint32_t next;
  std::uint32_t prev;        // the first child's prev is the last child
};
static_assert(sizeof(ElementRecord) == 32, "an element record is eight words");

class MarkupDoc {
 public:
  // Record layout constants, shared with the index checks.
  static constexpr std::uint32_t kStartTagMask = 0x2FFFFF;
  static constexpr int kEndTagShift = 22;
  static constexpr std::uint32_t kLevelMask = 0xFFFF;
  static constexpr std::uint32_t kRemovedRecord = 0x20000;
  static constexpr std::uint32_t kFirstChild = 0x80000;
  // Set on a parsed element whose tag lengths don't fit their fields (a start tag
  // of 1 MB or more, an end tag of 512 bytes or more): it can be read and moved
  // over but not edited through its tags.
  static constexpr std::uint32_t kOversizedTags = 0x40000;
  static constexpr std::uint32_t kSegmentBits = 16;
  static constexpr std::uint32_t kSegmentSize = 1u << kSegmentBits;

  MarkupDoc();
  // Load and Save go through `files`, which must outlive the document.
  explicit MarkupDoc(FileSystem& files);
  ~MarkupDoc();
  MarkupDoc(const MarkupDoc&) = delete;
  MarkupDoc& operator=(const MarkupDoc&) = delete;

  // Replaces the text (a null pointer clears it), clears the error and parses.
  bool SetDoc(std::string_view text);
  bool SetDoc(const char* text);
  bool Load(const std::string& path);
  bool Save(const std::string& path);
  const std::string& GetDoc() const { return doc_; }
  const std::string& GetError() const { return error_; }
  bool IsWellFormed() const;

  // Navigation. A find moves forward from the current position at its level, so a
  // loop over the same find visits every match; an empty name matches any element.
  void ResetPos();
  bool FindElement(std::string_view name = {});
  bool FindChildElement(std::string_view name = {});
  bool EnterChild();
  bool LeaveToParent();

  std::string GetTagName() const;
  std::string GetContent() const;
  bool SetContent(std::string_view text, bool asCdata = false);
  std::string GetAttribute(std::string_view name) const;
  bool SetAttribute(std::string_view name, std::string_view value);
  bool SetAttribute(std::string_view name, int value);
  std::string GetAttributeName(int index) const;

  // New elements: after (Add) or before (Insert) the main position, or the child
  // position for the child forms. They end with "\r\n"; an empty text makes a
  // self-closing element.
  bool AddElement(std::string_view name, std::string_view text = {});
  bool InsertElement(std::string_view name, std::string_view text = {});
  bool AddChildElement(std::string_view name, std::string_view text = {});
  bool InsertChildElement(std::string_view name, std::string_view text = {});
  bool AddSubDocument(std::string_view text);
  bool InsertSubDocument(std::string_view text);
  bool AddChildSubDocument(std::string_view text);
  bool InsertChildSubDocument(std::string_view text);
  bool RemoveElement();
  bool RemoveChildElement();
  std::string GetSubDocument() const;

  bool SavePosition(std::string_view name);
  bool RestorePosition(std::string_view name);

  // Passed through file load and save unchanged.
  int GetFileFlags() const { return fileFlags_; }
  void SetFileFlags(int flags) { fileFlags_ = flags; }

  // Introspection for the index checks, tests and benchmarks.
  std::uint32_t ParentPosition() const { return parentPos_; }
  std::uint32_t MainPosition() const { return mainPos_; }
  std::uint32_t ChildPosition() const { return childPos_; }
  std::uint32_t RecordsUsed() const { return nextFreePos_; }
  std::uint32_t Capacity() const { return capacity_; }
  std::uint32_t FreeChain() const { return freeChain_; }
  const ElementRecord& Record(std::uint32_t pos) const { return Rec(pos); }
  // Bytes held by the index beside the text: records allocated plus segment table.
  std::size_t IndexBytes() const;
  static std::uint32_t StartTagLength(const ElementRecord& r) { return r.tagLengths & kStartTagMask; }
  // Read by an arithmetic shift, so an end tag too long for ten bits reads negative.
  static int EndTagLength(const ElementRecord& r) {
    return static_cast<std::int32_t>(r.tagLengths) >> kEndTagShift;
  }
  // "" when every live record agrees with the text and a fresh parse of the text
  // gives the same tree; otherwise what is wrong, for tests and the fuzzer.
  std::string VerifyIndex() const;

 private:
  struct SavedPosition {
    std::string name;
    std::uint32_t position = 0;
    std::uint32_t flags = 0;
  };
  using SavedPositionTable = std::array<std::vector<SavedPosition>, 7>;

  ElementRecord& Rec(std::uint32_t pos) { return segments_[pos >> kSegmentBits][pos & (kSegmentSize - 1)]; }
  const ElementRecord& Rec(std::uint32_t pos) const {
    return segments_[pos >> kSegmentBits][pos & (kSegmentSize - 1)];
  }
  FileSystem& Files() const;

  bool Parse();
  // The first element's position, 0 with none (the error then says so), -1 on error.
  std::int64_t ParseElements(std::string_view text, std::uint32_t parent);
  void GrowIndex(std::uint64_t wanted);
  void ResizeSegment(std::uint64_t segment, std::uint64_t records);
  void TrimIndex();
  std::uint32_t TakeRecord();
  void ClearRootRecord();
  void SetTagLengths(ElementRecord& r, std::uint64_t startLength, std::uint64_t endLength);

  void SetPositions(std::uint32_t parent, std::uint32_t main, std::uint32_t child);
  std::uint32_t FindSibling(std::uint32_t parent, std::uint32_t after, std::string_view name) const;
  bool NameMatchesAt(std::uint32_t pos, std::string_view name) const;
  std::size_t SkipSpaceBeforeMarkup(std::size_t offset) const;
  bool LiveRecord(std::uint32_t pos) const;

  // Edits.
  bool AddNode(bool asChild, bool before, std::string_view name, std::string_view text,
               bool isSubDocument);
  std::uint32_t RemoveNode(std::uint32_t pos);
  void LinkAfter(std::uint32_t parent, std::uint32_t after, std::uint32_t pos);
  void ShiftOffsets(std::uint32_t pos, std::int64_t delta, bool behindOwnTags);
  void Splice(std::size_t offset, std::size_t removed, std::string_view insert);
  bool CanAddRoot() const;
  // True when walking by character from `from` lands on `offset`.
  bool StandaloneAt(std::size_t from, std::size_t offset) const;
  bool OpenableSlash(std::size_t tagStart, std::size_t slash) const;

  std::string doc_;
  std::string error_;
  std::uint32_t parentPos_ = 0;
  std::uint32_t mainPos_ = 0;
  std::uint32_t childPos_ = 0;
  int nodeType_ = 0;
  int nodeOffset_ = 0;
  int nodeLength_ = 0;
  std::uint32_t nextFreePos_ = 1;
  std::uint32_t freeChain_ = 0;
  int fileFlags_ = 0;
  std::unique_ptr<SavedPositionTable> savedPositions_;
  struct FreeSegment {
    void operator()(ElementRecord* block) const;
  };
  // Blocks of records, grown with realloc so that a big block usually grows or
  // shrinks in place; segmentSlots is the vector's size.
  std::vector<std::unique_ptr<ElementRecord[], FreeSegment>> segments_;
  std::uint32_t capacity_ = 0;
  // False after a parse that stopped on bad markup: a new root element could then
  // land inside the broken part, so none is added.
  bool textScannable_ = true;
  FileSystem* files_ = nullptr;
};

}  // namespace tavlet
