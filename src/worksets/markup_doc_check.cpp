// VerifyIndex: the index against its text, and against a fresh parse of the text.
// Tests and the fuzzer run it after edits.
#include <vector>

#include "worksets/markup_doc.h"
#include "worksets/markup_doc_scan.h"

namespace tavlet {

using namespace markup;

namespace {

// The live children of `parent`, first to last, or an error text.
std::string Children(const MarkupDoc& doc, std::uint32_t parent, std::vector<std::uint32_t>& out) {
  out.clear();
  const ElementRecord& up = doc.Record(parent);
  const std::uint32_t first = up.child;
  if (!first) return {};
  if (!(doc.Record(first).flags & MarkupDoc::kFirstChild)) {
    return Format("record %u: first child %u lacks the first-child flag", parent, first);
  }
  std::uint32_t prev = doc.Record(first).prev;
  for (std::uint32_t pos = first; pos; pos = doc.Record(pos).next) {
    if (pos >= doc.RecordsUsed()) return Format("record %u: link to unused record %u", parent, pos);
    const ElementRecord& r = doc.Record(pos);
    if (r.flags & MarkupDoc::kRemovedRecord) return Format("record %u: removed record %u still linked", parent, pos);
    if (r.parent != parent) return Format("record %u: parent %u, expected %u", pos, r.parent, parent);
    if (pos != first && (r.flags & MarkupDoc::kFirstChild)) {
      return Format("record %u: first-child flag on a later child", pos);
    }
    if (pos != first && r.prev != prev) return Format("record %u: prev %u, expected %u", pos, r.prev, prev);
    prev = pos;
    out.push_back(pos);
    if (out.size() > doc.RecordsUsed()) return Format("record %u: sibling chain loops", parent);
  }
  if (doc.Record(first).prev != out.back()) {
    return Format("record %u: first child's prev %u is not the last child %u", parent, doc.Record(first).prev,
                  out.back());
  }
  return {};
}

std::string CheckTags(const MarkupDoc& doc, std::uint32_t pos) {
  const std::string& text = doc.GetDoc();
  const ElementRecord& r = doc.Record(pos);
  if (r.flags & MarkupDoc::kOversizedTags) return {};
  const std::size_t end = std::size_t{r.start} + r.length;
  const std::size_t startLength = MarkupDoc::StartTagLength(r);
  const int endLength = MarkupDoc::EndTagLength(r);
  if (end > text.size() || startLength < 3 || startLength > r.length) {
    return Format("record %u: extent %u+%u outside the text", pos, r.start, r.length);
  }
  if (text[r.start] != '<') return Format("record %u: no \"<\" at %u", pos, r.start);
  const std::string_view name = TagNameAt(text, r.start);
  if (name.empty()) return Format("record %u: no tag name at %u", pos, r.start);
  if (text[r.start + startLength - 1] != '>') return Format("record %u: start tag doesn't end in \">\"", pos);
  if (endLength == 0) {
    if (r.length != startLength || text[r.start + startLength - 2] != '/') {
      return Format("record %u: self-closing tag without \"/>\"", pos);
    }
    return {};
  }
  if (endLength < 3 || startLength + static_cast<std::size_t>(endLength) > r.length) {
    return Format("record %u: end tag length %d", pos, endLength);
  }
  const std::size_t endTag = end - static_cast<std::size_t>(endLength);
  if (text.compare(endTag, 2, "</") != 0 || text[end - 1] != '>') {
    return Format("record %u: no end tag at %u", pos, static_cast<unsigned>(endTag));
  }
  const std::string_view endName = TagNameAt(text, endTag + 1);
  if (!NameMatches(endName, name)) return Format("record %u: end tag doesn't match \"%.*s\"", pos,
                                                 static_cast<int>(name.size()), name.data());
  return {};
}

}  // namespace

std::string MarkupDoc::VerifyIndex() const {
  if (capacity_ == 0) return "no records";
  const ElementRecord& root = Rec(0);
  MarkupDoc fresh;
  const bool parses = fresh.SetDoc(doc_);
  if (root.child == 0) {
    return parses ? "the text has a root element the index lacks" : std::string();
  }
  if (!parses) return "the text no longer parses: " + fresh.GetError();
  if (root.length != doc_.size()) return Format("record 0 length %u, text %u", root.length, static_cast<unsigned>(doc_.size()));

  // Walk both trees side by side.
  struct Pair {
    std::uint32_t mine;
    std::uint32_t theirs;
  };
  std::vector<Pair> pending{{0, 0}};
  std::vector<std::uint32_t> mine;
  std::vector<std::uint32_t> theirs;
  while (!pending.empty()) {
    const Pair pair = pending.back();
    pending.pop_back();
    if (std::string e = Children(*this, pair.mine, mine); !e.empty()) return e;
    if (std::string e = Children(fresh, pair.theirs, theirs); !e.empty()) return "fresh parse: " + e;
    if (mine.size() != theirs.size()) {
      return Format("record %u: %u children, a fresh parse finds %u", pair.mine, static_cast<unsigned>(mine.size()),
                    static_cast<unsigned>(theirs.size()));
    }
    const ElementRecord& up = Rec(pair.mine);
    std::size_t low = pair.mine ? up.start + StartTagLength(up) : 0;
    const std::size_t high =
        pair.mine ? std::size_t{up.start} + up.length - static_cast<std::size_t>(EndTagLength(up)) : doc_.size();
    for (std::size_t i = 0; i < mine.size(); ++i) {
      const ElementRecord& a = Rec(mine[i]);
      const ElementRecord& b = fresh.Record(theirs[i]);
      if (std::string e = CheckTags(*this, mine[i]); !e.empty()) return e;
      if (a.start < low || std::size_t{a.start} + a.length > high) {
        return Format("record %u: %u+%u not inside its parent's content %u..%u", mine[i], a.start, a.length,
                      static_cast<unsigned>(low), static_cast<unsigned>(high));
      }
      low = std::size_t{a.start} + a.length;
      if (a.start != b.start || a.length != b.length || a.tagLengths != b.tagLengths) {
        return Format("record %u: start %u length %u tags %08X, a fresh parse gives %u %u %08X", mine[i], a.start,
                      a.length, a.tagLengths, b.start, b.length, b.tagLengths);
      }
      pending.push_back({mine[i], theirs[i]});
    }
  }
  return {};
}

}  // namespace tavlet
