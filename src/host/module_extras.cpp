#include "host/module_extras.h"

#include <algorithm>

#include "bar/doc_list.h"
#include "host/com_error.h"
#include "operations/drawing_operations.h"
#include "previews/dib.h"
#include "settings/extra_settings.h"
#include "settings/settings_table.h"

namespace tavlet::host {

ModuleExtras::ModuleExtras(ExtrasServices services, bar::BarModel& bar) : services_(std::move(services)), bar_(bar) {
  if (ReadExtra(services_.settings, keys::SessionRestore) > 0)
    session_ = std::make_unique<operations::SessionRecorder>(services_.files,
                                                             services_.dataFolder + operations::kSessionFileName);
  FollowKeepThumbnails();
  for (const auto& entry : bar_.Strip().Entries()) DocumentCreated(entry->document);
  bar_.onDocumentEvent = [this](bar::BarModel::DocumentEvent event, port::Document doc) {
    switch (event) {
      case bar::BarModel::DocumentEvent::Created:
        DocumentCreated(doc);
        break;
      case bar::BarModel::DocumentEvent::ToBeDestroyed:
        DocumentToBeDestroyed(doc);
        break;
      case bar::BarModel::DocumentEvent::Activated:
        DocumentActivated(doc);
        break;
    }
  };
}

void ModuleExtras::FollowKeepThumbnails() {
  const bool keep = ReadExtra(services_.settings, keys::KeepThumbnails) != 0;
  if (keep == static_cast<bool>(thumbnails_)) return;
  bar_.onPreviewCaptured = nullptr;
  thumbnails_.reset();
  if (!keep) return;
  thumbnails_ = std::make_unique<previews::ThumbnailCache>(services_.files,
                                                           services_.dataFolder + previews::kThumbnailCacheFileName);
  bar_.onPreviewCaptured = [this](const bar::DocEntry& entry) {
    // A drawing never saved has only a name, which the next new drawing reuses.
    if (entry.path.Folder.empty()) return;
    thumbnails_->Store(entry.path.GetFull(), entry.previewWidth, entry.previewHeight, entry.previewDib);
  };
}

ModuleExtras::~ModuleExtras() {
  bar_.onDocumentEvent = nullptr;
  bar_.onPreviewCaptured = nullptr;
}

std::string ModuleExtras::PathOf(port::Document doc) { return bar::DocumentName(*services_.session.Documents(), doc); }

void ModuleExtras::Print(const std::string& text) { services_.session.EditorService()->Print(text.c_str()); }

void ModuleExtras::ShowKeptThumbnail(port::Document doc) {
  bar::DocEntry* entry = bar_.Strip().FindEntry(doc);
  if (!entry || !entry->previewDib.empty() || entry->path.Folder.empty()) return;
  const previews::CachedThumbnail* kept = thumbnails_->Find(entry->path.GetFull());
  if (!kept || kept->width <= 0 || kept->height <= 0) return;
  // A picture whose bytes do not match its size would be read past its end.
  const std::size_t expected = kDibInfoHeaderSize + static_cast<std::size_t>(DibStride(kept->width, 24)) *
                                                             static_cast<std::size_t>(kept->height);
  if (kept->dib.size() != expected) return;
  entry->previewDib = kept->dib;
  entry->previewWidth = kept->width;
  entry->previewHeight = kept->height;
  entry->previewDirty = true;
}

void ModuleExtras::DocumentCreated(port::Document doc) {
  order_.Added(doc);
  if (thumbnails_) ShowKeptThumbnail(doc);
  if (!session_) return;
  const std::string path = PathOf(doc);
  paths_.emplace_back(doc, path);
  bool readOnly = false;
  if (port::Failed(services_.session.Documents()->IsReadOnly(doc, &readOnly))) readOnly = false;
  session_->Opened(doc, path, readOnly);
}

void ModuleExtras::DocumentToBeDestroyed(port::Document doc) {
  order_.Removed(doc);
  if (!session_) return;
  std::erase_if(paths_, [doc](const auto& p) { return p.first == doc; });
  bool quitting = false;
  if (port::Failed(services_.session.EditorService()->IsQuitting(&quitting))) quitting = false;
  session_->Closed(doc, quitting);
}

void ModuleExtras::DocumentActivated(port::Document doc) {
  order_.Activated(doc);
  // A save under another name shows here, at the next activation of any drawing.
  for (auto& [known, path] : paths_) {
    const std::string now = PathOf(known);
    if (now == path) continue;
    path = now;
    session_->Renamed(known, now);
  }
}

void ModuleExtras::OnSwitch(const std::function<bool(port::Document)>& switchTo) {
  const std::vector<port::Document>& order = order_.Order();
  if (order.size() < 2) return;
  port::Document picked = nullptr;
  if (services_.switcherPopup) {
    picked = services_.switcherPopup(order);
  } else {
    bar::Switcher switcher;
    switcher.Open(order);
    picked = switcher.Press(bar::SwitcherKey::ReleaseCtrl);
  }
  if (picked && picked != order.front()) switchTo(picked);
}

void ModuleExtras::OnRestore(operations::DrawingOperations& operations) {
  if (!session_) {
    Print(extras_texts::kRestoreOff);
    return;
  }
  if (session_->LastSession().empty()) {
    Print(extras_texts::kNothingToRestore);
    return;
  }
  const operations::RestoreResult result =
      operations::RestoreSession(operations, services_.files, session_->LastSession());
  if (!result.missing.empty()) {
    long answer = 0;
    services_.session.Boxes()->Show(operations::MissingDrawingsText(result.missing).c_str(), port::kBoxOk, &answer);
  }
}

void ModuleExtras::OfferRestore(operations::DrawingOperations& operations) {
  if (!session_ || ReadExtra(services_.settings, keys::SessionRestore) < 2 || session_->LastSession().empty()) return;
  std::string question = extras_texts::kOfferRestore;
  question.replace(question.find("%d"), 2, std::to_string(session_->LastSession().size()));
  long answer = 0;
  if (port::Succeeded(services_.session.Boxes()->Show(question.c_str(), port::kBoxYesNo, &answer)) &&
      answer == port::kAnswerYes)
    OnRestore(operations);
}

void ModuleExtras::ReloadSettings() {
  FollowKeepThumbnails();
  const bool record = ReadExtra(services_.settings, keys::SessionRestore) > 0;
  if (record == static_cast<bool>(session_)) return;
  session_.reset();
  paths_.clear();
  if (!record) return;
  session_ = std::make_unique<operations::SessionRecorder>(services_.files,
                                                           services_.dataFolder + operations::kSessionFileName);
  for (const auto& entry : bar_.Strip().Entries()) {
    const port::Document doc = entry->document;
    const std::string path = PathOf(doc);
    paths_.emplace_back(doc, path);
    bool readOnly = false;
    if (port::Failed(services_.session.Documents()->IsReadOnly(doc, &readOnly))) readOnly = false;
    session_->Opened(doc, path, readOnly);
  }
}

}  // namespace tavlet::host
