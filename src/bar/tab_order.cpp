#include "bar/tab_order.h"

#include <map>

#include "bar/doc_list.h"
#include "operations/drawing_path.h"
#include "text/codepage.h"

namespace tavlet::bar {

std::string TabText(const std::string& title, bool readOnly, bool modified) {
  std::string text = readOnly ? kReadOnlyPrefix + title : title;
  return modified ? kModifiedPrefix + text : text;
}

std::string WithoutModifiedMark(const std::string& text) {
  std::size_t start = text.find_first_not_of("* ");
  return start == std::string::npos ? std::string() : text.substr(start);
}

TabOrder::TabOrder(port::DocManager& documents, FileSystem& files, const int& sortBy)
    : documents_(documents), files_(files), sortBy_(sortBy) {}

std::string TabOrder::KeyOf(const std::string& path) const {
  if (sortBy_ == 1) return DrawingPath(path, files_).Name;
  return path;
}

int TabOrder::Find(port::Document doc) const {
  for (std::size_t i = 0; i < tabs_.size(); ++i)
    if (tabs_[i].document == doc) return static_cast<int>(i);
  return -1;
}

void TabOrder::Insert(TabItem item, const std::string& key) {
  std::size_t at = tabs_.size();
  if (sortBy_ != 0) {
    for (std::size_t i = 0; i < tabs_.size(); ++i) {
      if (text::Mbsicmp(keys_[i], key) > 0) {
        at = i;
        break;
      }
    }
  }
  tabs_.insert(tabs_.begin() + static_cast<std::ptrdiff_t>(at), std::move(item));
  keys_.insert(keys_.begin() + static_cast<std::ptrdiff_t>(at), key);
  if (selected_ >= static_cast<int>(at)) ++selected_;
}

void TabOrder::AddTab(port::Document doc) {
  if (!doc) return;
  const std::string path = DocumentName(documents_, doc);
  bool readOnly = false;
  if (port::Failed(documents_.IsReadOnly(doc, &readOnly))) readOnly = false;
  Insert({doc, TabText(DrawingPath(path, files_).Name, readOnly, false)}, KeyOf(path));
}

void TabOrder::RemoveTab(port::Document doc) {
  int at = Find(doc);
  if (at < 0) return;
  tabs_.erase(tabs_.begin() + at);
  keys_.erase(keys_.begin() + at);
  if (selected_ == at) selected_ = -1;
  else if (selected_ > at) --selected_;
}

void TabOrder::RenameTab(port::Document doc, const std::string& path) {
  int at = Find(doc);
  if (at < 0) return;
  TabItem& tab = tabs_[static_cast<std::size_t>(at)];
  bool readOnly = false;
  if (port::Failed(documents_.IsReadOnly(doc, &readOnly))) readOnly = false;
  const bool modified = WithoutModifiedMark(tab.text) != tab.text;
  std::string text = TabText(DrawingPath(path, files_).Name, readOnly, modified);
  keys_[static_cast<std::size_t>(at)] = KeyOf(path);
  if (text == tab.text) return;
  tab.text = text;
  if (sortBy_ != 0) Rebuild();
}

void TabOrder::Rebuild() {
  // The modified marks are the tabs' own state: they survive the rebuild.
  std::map<port::Document, bool> marked;
  for (const TabItem& tab : tabs_) marked[tab.document] = WithoutModifiedMark(tab.text) != tab.text;
  tabs_.clear();
  keys_.clear();
  selected_ = -1;
  long count = 0;
  if (port::Failed(documents_.DocumentCount(&count))) count = 0;
  for (long i = 0; i < count; ++i) {
    port::Document doc = nullptr;
    if (port::Failed(documents_.DocumentAt(i, &doc)) || !doc) continue;
    AddTab(doc);
    if (marked[doc]) SetTabModified(doc, true);
  }
  port::Document active = nullptr;
  if (port::Succeeded(documents_.MdiActiveDocument(&active))) SelectTab(active);
}

void TabOrder::SetTabModified(port::Document doc, bool modified) {
  int at = Find(doc);
  if (at < 0) return;
  std::string& text = tabs_[static_cast<std::size_t>(at)].text;
  text = WithoutModifiedMark(text);
  if (modified) text = kModifiedPrefix + text;
}

int TabOrder::SelectTab(port::Document doc) {
  selected_ = Find(doc);
  return selected_;
}

}  // namespace tavlet::bar
