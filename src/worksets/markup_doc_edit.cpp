// The writing side of MarkupDoc: every edit splices the text in place, mends the
// links of the records it touches and shifts the offsets of the records behind the
// change, so the index stays true without a new parse.
#include <cstring>
#include <initializer_list>
#include <string>

#include "worksets/markup_doc.h"
#include "worksets/markup_doc_scan.h"

namespace tavlet {

using namespace markup;

namespace {

constexpr std::uint64_t kMaxStartTag = 0xFFFFF;
constexpr std::uint64_t kMaxEndTag = 0x1FF;

// A name that reads back as the same tag: it must open a tag and hold nothing that
// ends a tag name or opens a quoted value.
bool UsableTagName(std::string_view name) {
  if (name.empty() || EndsInsideCharacter(name)) return false;
  const unsigned char first = static_cast<unsigned char>(name[0]);
  if (!(first > 0x60 || (first >= 'A' && first <= 'Z') || first == '_' || first == ':')) return false;
  for (std::size_t i = 0; i < name.size(); i += Step(name.data(), i, name.size())) {
    const unsigned char c = static_cast<unsigned char>(name[i]);
    if (IsSpace(c) || c == '/' || c == '>' || c == '"' || c == '\'') return false;
  }
  return true;
}

// An attribute name that the word scanner reads as one unquoted word.
bool UsableAttributeName(std::string_view name) {
  if (name.empty() || EndsInsideCharacter(name)) return false;
  for (std::size_t i = 0; i < name.size(); i += Step(name.data(), i, name.size())) {
    switch (name[i]) {
      case ' ': case '\t': case '\n': case '\r': case '<': case '>': case '=': case '\\':
      case '/': case '?': case '!': case '"': case '\'':
        return false;
      default:
        break;
    }
  }
  return true;
}

// Joins pieces by appending; g++ 12 gives false -Wrestrict warnings for chains of
// operator+ that begin with a literal.
std::string Concat(std::initializer_list<std::string_view> pieces) {
  std::size_t size = 0;
  for (std::string_view piece : pieces) size += piece.size();
  std::string out;
  out.reserve(size);
  for (std::string_view piece : pieces) out.append(piece.data(), piece.size());
  return out;
}

}  // namespace

void MarkupDoc::Splice(std::size_t offset, std::size_t removed, std::string_view insert) {
  const std::size_t newSize = doc_.size() - removed + insert.size();
  if (newSize > doc_.capacity()) doc_.reserve(newSize + newSize / 2 + 128);
  doc_.replace(offset, removed, insert.data(), insert.size());
}

void MarkupDoc::ShiftOffsets(std::uint32_t pos, std::int64_t delta, bool behindOwnTags) {
  // Document order from `pos` on: descendants and following siblings move; the
  // ancestors reached on the way up contain the change and grow instead.
  const std::uint32_t shift = static_cast<std::uint32_t>(delta);
  std::uint32_t cur = pos;
  std::size_t depth = 0;
  bool descend = !behindOwnTags;
  for (;;) {
    if (descend && Rec(cur).child) {
      cur = Rec(cur).child;
      ++depth;
      Rec(cur).start += shift;
      continue;
    }
    while (Rec(cur).next == 0) {
      if (cur == 0) return;
      cur = Rec(cur).parent;
      if (depth > 0) {
        --depth;
      } else {
        Rec(cur).length += shift;
        if (cur == 0) return;
      }
    }
    cur = Rec(cur).next;
    Rec(cur).start += shift;
    descend = true;
  }
}

void MarkupDoc::LinkAfter(std::uint32_t parent, std::uint32_t after, std::uint32_t pos) {
  ElementRecord& r = Rec(pos);
  ElementRecord& up = Rec(parent);
  r.parent = parent;
  if (after == 0) {
    const std::uint32_t oldFirst = up.child;
    r.flags |= kFirstChild;
    r.next = oldFirst;
    if (oldFirst) {
      ElementRecord& first = Rec(oldFirst);
      r.prev = first.prev;
      first.prev = pos;
      first.flags &= ~kFirstChild;
    } else {
      r.prev = pos;
    }
    up.child = pos;
    return;
  }
  ElementRecord& before = Rec(after);
  r.flags &= ~kFirstChild;
  r.next = before.next;
  r.prev = after;
  before.next = pos;
  if (r.next) {
    Rec(r.next).prev = pos;
  } else {
    Rec(up.child).prev = pos;
  }
}

bool MarkupDoc::StandaloneAt(std::size_t from, std::size_t offset) const {
  std::size_t i = from;
  while (i < offset) i += Step(doc_.data(), i, doc_.size());
  return i == offset;
}

bool MarkupDoc::OpenableSlash(std::size_t tagStart, std::size_t slash) const {
  // The "/" of "/>" must be a character of its own, and what is left in front of
  // the new ">" must not read as "/>" again.
  return doc_[slash] == '/' && doc_[slash - 1] != '/' && StandaloneAt(tagStart, slash);
}

bool MarkupDoc::CanAddRoot() const { return textScannable_ && !EndsInsideCharacter(doc_); }

bool MarkupDoc::SetContent(std::string_view text, bool asCdata) {
  if (!mainPos_ || nodeType_ != 1) return false;
  ElementRecord& r = Rec(mainPos_);
  if (r.child || (r.flags & kOversizedTags) || EndsInsideCharacter(text)) return false;
  const std::string content = asCdata ? CdataSection(text) : Encode(text, false);
  const std::uint32_t startLength = StartTagLength(r);
  std::int64_t delta = 0;
  if (EndTagLength(r) == 0) {
    // A self-closing element is opened: "<a/>" becomes "<a>" + content + "</a>".
    const std::size_t slash = r.start + startLength - 2;
    const std::string name(TagNameAt(doc_, r.start));
    if (!OpenableSlash(r.start, slash) || !UsableTagName(name) || name.size() + 3 > kMaxEndTag) return false;
    const std::string insert = Concat({">", content, "</", name});
    Splice(slash, 1, insert);
    delta = static_cast<std::int64_t>(insert.size()) - 1;
    SetTagLengths(r, startLength - 1, name.size() + 3);
  } else {
    const std::size_t begin = r.start + startLength;
    const std::size_t end = std::size_t{r.start} + r.length - static_cast<std::size_t>(EndTagLength(r));
    Splice(begin, end - begin, content);
    delta = static_cast<std::int64_t>(content.size()) - static_cast<std::int64_t>(end - begin);
  }
  r.length += static_cast<std::uint32_t>(delta);
  ShiftOffsets(mainPos_, delta, true);
  return true;
}

bool MarkupDoc::SetAttribute(std::string_view name, int value) {
  return SetAttribute(name, Format("%d", value));
}

bool MarkupDoc::SetAttribute(std::string_view name, std::string_view value) {
  if (!mainPos_ || nodeType_ != 1) return false;
  ElementRecord& r = Rec(mainPos_);
  if ((r.flags & kOversizedTags) || !UsableAttributeName(name) || EndsInsideCharacter(value)) return false;
  const std::string encoded = Encode(value, true);
  AttributeSpot spot;
  std::size_t offset = 0;
  std::size_t removed = 0;
  std::string insert;
  if (FindAttribute(doc_, r.start + 1, name, spot)) {
    // The search reads words, not the tag as the parse scanned it: a quote in a
    // tag's name can make a "value" that runs past the tag. That one isn't touched.
    if (spot.valueStart + spot.valueLength >= std::size_t{r.start} + StartTagLength(r) - 1) return false;
    offset = spot.valueStart;
    removed = spot.valueLength;
    insert = encoded;
  } else {
    // Before the ">" that closes the tag, or before "/>".
    offset = r.start + StartTagLength(r) - (EndTagLength(r) == 0 ? 2 : 1);
    if (!StandaloneAt(r.start, offset)) return false;
    insert = Concat({" ", name, "=\"", encoded, "\""});
  }
  const std::int64_t delta = static_cast<std::int64_t>(insert.size()) - static_cast<std::int64_t>(removed);
  const std::uint64_t startLength = static_cast<std::uint64_t>(StartTagLength(r) + delta);
  if (startLength > kMaxStartTag) return false;
  Splice(offset, removed, insert);
  SetTagLengths(r, startLength, static_cast<std::uint64_t>(EndTagLength(r)));
  r.length += static_cast<std::uint32_t>(delta);
  ShiftOffsets(mainPos_, delta, false);
  return true;
}

bool MarkupDoc::AddElement(std::string_view name, std::string_view text) {
  return AddNode(false, false, name, text, false);
}
bool MarkupDoc::InsertElement(std::string_view name, std::string_view text) {
  return AddNode(false, true, name, text, false);
}
bool MarkupDoc::AddChildElement(std::string_view name, std::string_view text) {
  return AddNode(true, false, name, text, false);
}
bool MarkupDoc::InsertChildElement(std::string_view name, std::string_view text) {
  return AddNode(true, true, name, text, false);
}
bool MarkupDoc::AddSubDocument(std::string_view text) { return AddNode(false, false, {}, text, true); }
bool MarkupDoc::InsertSubDocument(std::string_view text) { return AddNode(false, true, {}, text, true); }
bool MarkupDoc::AddChildSubDocument(std::string_view text) { return AddNode(true, false, {}, text, true); }
bool MarkupDoc::InsertChildSubDocument(std::string_view text) { return AddNode(true, true, {}, text, true); }

bool MarkupDoc::AddNode(bool asChild, bool before, std::string_view name, std::string_view text,
                        bool isSubDocument) {
  const std::uint32_t parent = asChild ? mainPos_ : parentPos_;
  const std::uint32_t sibling = asChild ? childPos_ : mainPos_;
  if (asChild && (!mainPos_ || nodeType_ != 1)) return false;
  if (parent == 0) {
    // The parser takes one root element only, so a second one is refused.
    if (Rec(0).child != 0 || !CanAddRoot()) return false;
    Rec(0).length = static_cast<std::uint32_t>(doc_.size());
  }
  if ((Rec(parent).flags & kOversizedTags) || EndsInsideCharacter(text)) return false;
  if (!isSubDocument && !UsableTagName(name)) return false;

  const bool parentSelfClosing = parent != 0 && EndTagLength(Rec(parent)) == 0;
  std::string parentName;
  if (parentSelfClosing) {
    // The name is repeated in a new end tag, where a quote in it would open a value.
    parentName = TagNameAt(doc_, Rec(parent).start);
    if (!UsableTagName(parentName) || parentName.size() + 3 > kMaxEndTag) return false;
  }

  // The new element's text, with its lengths, or a parsed sub-document.
  std::string nodeText;
  std::uint64_t startLength = 0;
  std::uint64_t endLength = 0;
  std::uint64_t length = 0;
  std::uint32_t pos = 0;
  const std::uint32_t level = ((Rec(parent).flags & kLevelMask) + 1) & kLevelMask;
  if (isSubDocument) {
    const std::uint32_t holder = TakeRecord();
    ElementRecord& h = Rec(holder);
    std::memset(&h, 0, sizeof h);
    h.flags = level;
    h.tagLengths = 1u << kEndTagShift;
    const std::int64_t root = ParseElements(text, holder);
    Rec(holder).flags = kRemovedRecord;
    if (root <= 0) return false;
    pos = static_cast<std::uint32_t>(root);
    nodeText.assign(text.data(), text.size());
    nodeText += "\r\n";
  } else {
    const std::string encoded = Encode(text, false);
    if (text.empty()) {
      nodeText = Concat({"<", name, "/>\r\n"});
      startLength = name.size() + 3;
      length = name.size() + 3;
    } else {
      nodeText = Concat({"<", name, ">", encoded, "</", name, ">\r\n"});
      startLength = name.size() + 2;
      endLength = name.size() + 3;
      length = 2 * name.size() + encoded.size() + 5;
    }
    if (endLength > kMaxEndTag || startLength > kMaxStartTag) return false;
  }

  // Where it goes.
  const ElementRecord& up = Rec(parent);
  std::size_t offset = 0;
  if (sibling) {
    const ElementRecord& s = Rec(sibling);
    offset = before ? s.start : std::size_t{s.start} + s.length;
  } else if (parent == 0) {
    offset = before ? 0 : doc_.size();
  } else if (parentSelfClosing) {
    offset = up.start + StartTagLength(up) - 2;  // the "/" of "/>"
  } else if (before) {
    offset = up.start + StartTagLength(up);
  } else {
    offset = std::size_t{up.start} + up.length - static_cast<std::size_t>(EndTagLength(up));
  }
  if (!parentSelfClosing) offset = SkipSpaceBeforeMarkup(offset);

  std::string insert;
  std::size_t removed = 0;
  std::size_t base = offset;
  if (parentSelfClosing) {
    if (!OpenableSlash(up.start, offset)) return false;
    insert = Concat({">\r\n", nodeText, "</", parentName});
    removed = 1;
    base = offset + 3;
  } else if (parent != 0 && up.length == StartTagLength(up) + static_cast<std::uint32_t>(EndTagLength(up))) {
    insert = Concat({"\r\n", nodeText});
    base = offset + 2;
  } else {
    insert = std::move(nodeText);
  }

  if (isSubDocument) {
    // The parsed records count from the start of the sub-document's text.
    const std::uint32_t shift = static_cast<std::uint32_t>(base);
    std::uint32_t cur = pos;
    for (;;) {
      Rec(cur).start += shift;
      if (Rec(cur).child) {
        cur = Rec(cur).child;
        continue;
      }
      while (cur != pos && Rec(cur).next == 0) cur = Rec(cur).parent;
      if (cur == pos) break;
      cur = Rec(cur).next;
    }
  } else {
    pos = TakeRecord();
    ElementRecord& r = Rec(pos);
    r.start = static_cast<std::uint32_t>(base);
    r.length = static_cast<std::uint32_t>(length);
    r.child = 0;
    r.flags = level;
    SetTagLengths(r, startLength, endLength);
  }

  std::uint32_t after = 0;
  if (sibling) {
    after = before ? ((Rec(sibling).flags & kFirstChild) ? 0 : Rec(sibling).prev) : sibling;
  } else if (!before && Rec(parent).child) {
    after = Rec(Rec(parent).child).prev;
  }
  LinkAfter(parent, after, pos);
  if (parentSelfClosing) {
    ElementRecord& p = Rec(parent);
    SetTagLengths(p, StartTagLength(p) - 1, parentName.size() + 3);
  }
  Splice(offset, removed, insert);
  ShiftOffsets(pos, static_cast<std::int64_t>(insert.size()) - static_cast<std::int64_t>(removed), true);

  if (asChild) {
    SetPositions(parentPos_, mainPos_, pos);
  } else {
    SetPositions(parentPos_, pos, 0);
  }
  return true;
}

std::uint32_t MarkupDoc::RemoveNode(std::uint32_t pos) {
  ElementRecord& r = Rec(pos);
  const std::size_t begin = r.start;
  const std::size_t end = SkipSpaceBeforeMarkup(std::size_t{r.start} + r.length);
  ShiftOffsets(pos, -static_cast<std::int64_t>(end - begin), true);
  Splice(begin, end - begin, {});

  ElementRecord& up = Rec(r.parent);
  const std::uint32_t previous = (r.flags & kFirstChild) ? 0 : r.prev;
  if (r.flags & kFirstChild) {
    up.child = r.next;
    if (r.next) {
      ElementRecord& next = Rec(r.next);
      next.prev = r.prev;
      next.flags |= kFirstChild;
    }
  } else {
    Rec(r.prev).next = r.next;
    if (r.next) {
      Rec(r.next).prev = r.prev;
    } else {
      Rec(up.child).prev = r.prev;
    }
  }
  r.flags = kRemovedRecord;
  r.next = freeChain_;
  freeChain_ = pos;
  return previous;
}

bool MarkupDoc::RemoveElement() {
  if (!mainPos_ || nodeType_ != 1) return false;
  SetPositions(parentPos_, RemoveNode(mainPos_), 0);
  return true;
}

bool MarkupDoc::RemoveChildElement() {
  if (!childPos_) return false;
  SetPositions(parentPos_, mainPos_, RemoveNode(childPos_));
  return true;
}

}  // namespace tavlet
