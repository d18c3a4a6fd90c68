#include "bar/doc_list.h"

#include <algorithm>

#include "host/com_error.h"
#include "text/codepage.h"

namespace tavlet::bar {

std::string DocumentName(port::DocManager& documents, port::Document doc) {
  host::StringSink path;
  if (port::Failed(documents.PathName(doc, &path))) path.text.clear();
  if (!path.text.empty()) return path.text;
  host::StringSink name;
  if (port::Failed(documents.FileName(doc, &name))) name.text.clear();
  return name.text;
}

bool EntryBefore(const DocEntry* a, const DocEntry* b, int sortBy) {
  if (!a || !b) return false;
  if (sortBy == 1) return text::Mbsicoll(a->path.Name, b->path.Name) < 0;
  return text::Mbsicoll(a->path.Full, b->path.Full) < 0;
}

DocList::DocList(port::DocManager& documents, FileSystem& files, PreviewStripView& view,
                 const DocListSettings& settings)
    : documents_(documents), files_(files), view_(view), settings_(settings) {}

port::Document DocList::MdiActive() {
  port::Document doc = nullptr;
  if (port::Failed(documents_.MdiActiveDocument(&doc))) return nullptr;
  return doc;
}

DocEntry* DocList::FindEntry(port::Document doc) {
  if (busy_) return nullptr;
  if (!doc) doc = MdiActive();
  for (const auto& entry : entries_) {
    if (busy_) return nullptr;
    if (entry->document == doc) return entry.get();
  }
  return nullptr;
}

void DocList::Sort() {
  const int sortBy = settings_.SortBy;
  std::sort(entries_.begin(), entries_.end(),
            [sortBy](const auto& a, const auto& b) { return EntryBefore(a.get(), b.get(), sortBy); });
}

void DocList::AddDocument(port::Document doc) {
  if (!doc) return;
  busy_ = true;
  // Busy is raised before the look-up, so the look-up never finds anything and a
  // second add makes a second entry. The order is kept as the bar always had it.
  if (FindEntry(doc)) return;
  auto entry = std::make_unique<DocEntry>(doc, DrawingPath(DocumentName(documents_, doc), files_));
  entry->itemRect = {};
  entry->previewDirty = true;
  entries_.push_back(std::move(entry));
  if (settings_.SortBy != 0) Sort();
  busy_ = false;
  view_.LayOut();
}

void DocList::RemoveDocument(port::Document doc) {
  busy_ = true;
  bool removed = false;
  for (auto it = entries_.begin(); it != entries_.end(); ++it) {
    if ((*it)->document == doc) {
      entries_.erase(it);
      removed = true;
      break;
    }
  }
  busy_ = false;
  if (removed) view_.LayOut();
}

void DocList::RenameDocument(port::Document doc, const DrawingPath& path) {
  DocEntry* entry = FindEntry(doc);
  if (!entry) return;
  entry->path = path;
  if (settings_.SortBy == 0) return;
  Sort();
  int index = 0;
  for (auto& e : entries_) e->index = index++;
}

void DocList::SetDocumentModified(port::Document doc, bool modified) {
  if (!doc || doc != MdiActive()) return;
  if (DocEntry* entry = FindEntry(doc)) {
    entry->modified = modified;
    if (modified && settings_.AutoUpdatePreviews) entry->previewDirty = true;
  }
  view_.Redraw();
}

void DocList::MarkPreviewDirty(port::Document doc, bool force) {
  if (!settings_.AutoUpdatePreviews && !force) return;
  DocEntry* entry = FindEntry(doc);
  if (!entry) return;
  entry->previewDirty = true;
  view_.RedrawRect(entry->itemRect);
}

void DocList::OnDocumentActivated(port::Document doc) {
  DocEntry* entry = FindEntry(doc);
  if (!entry) return;
  if (!entry->capturedFromScreen) {
    if (settings_.AutoUpdatePreviews) entry->previewDirty = true;
    view_.Redraw();
    return;
  }
  // A copy of the view's window needs the view painted first: the repaint shows
  // the old picture and the timer captures once the host has drawn the drawing.
  view_.Redraw();
  if (settings_.AutoUpdatePreviews) entry->previewDirty = true;
  view_.StartTimer(kActivationTimer, kCaptureDelay);
}

void DocList::ResortEntries() {
  if (settings_.SortBy != 0) {
    Sort();
    return;
  }
  long count = 0;
  if (port::Failed(documents_.DocumentCount(&count))) return;
  std::vector<std::unique_ptr<DocEntry>> ordered;
  for (long i = 0; i < count; ++i) {
    port::Document doc = nullptr;
    if (port::Failed(documents_.DocumentAt(i, &doc))) continue;
    for (auto& entry : entries_)
      if (entry && entry->document == doc) ordered.push_back(std::move(entry));
  }
  // Entries the walk did not name stay, at the end, rather than vanish.
  for (auto& entry : entries_)
    if (entry) ordered.push_back(std::move(entry));
  entries_ = std::move(ordered);
}

int DocList::ActiveIndex() {
  port::Document active = MdiActive();
  if (!active) return -1;
  int index = 0;
  for (const auto& entry : entries_) {
    if (busy_) return -1;
    if (entry->document == active) return index;
    ++index;
  }
  return -1;
}

}  // namespace tavlet::bar
