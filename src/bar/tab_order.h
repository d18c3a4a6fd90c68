// The tab counterpart of the drawing list: one tab per open drawing, carrying its
// document, in an order of its own (_mbsicmp where the list uses _mbsicoll), with
// the text the tab shows. The tab control mirrors this model.
#pragma once

#include <string>
#include <vector>

#include "host/port/documents.h"
#include "platform/file_system.h"

namespace tavlet::bar {

inline constexpr char kReadOnlyPrefix[] = "[R]- ";
inline constexpr char kModifiedPrefix[] = "* ";

struct TabItem {
  port::Document document = nullptr;
  std::string text;
};

// The tab's text for a drawing: its name without extension, "[R]- " in front
// when read-only, and "* " in front of that when modified.
std::string TabText(const std::string& title, bool readOnly, bool modified);
// Takes the modified mark off by trimming every leading '*' and blank.
std::string WithoutModifiedMark(const std::string& text);

class TabOrder {
 public:
  TabOrder(port::DocManager& documents, FileSystem& files, const int& sortBy);

  // To the end with SortBy 0, else before the first tab whose key compares
  // greater with _mbsicmp.
  void AddTab(port::Document doc);
  // The first tab of the document.
  void RemoveTab(port::Document doc);
  // A new text; with SortBy non-zero and a changed text, all tabs are made again
  // from the host's walk and the active drawing's tab is selected.
  void RenameTab(port::Document doc, const std::string& path);
  void SetTabModified(port::Document doc, bool modified);
  // Selects the tab of `doc`; -1 when it has none.
  int SelectTab(port::Document doc);
  // All tabs made again in the order SortBy now gives, the active drawing's selected.
  void Resort() { Rebuild(); }

  int Find(port::Document doc) const;
  int Selected() const { return selected_; }
  const std::vector<TabItem>& Tabs() const { return tabs_; }

 private:
  // The sort key of a drawing of that path: its title with SortBy 1, else the path.
  std::string KeyOf(const std::string& path) const;
  void Insert(TabItem item, const std::string& key);
  void Rebuild();

  port::DocManager& documents_;
  FileSystem& files_;
  const int& sortBy_;
  std::vector<TabItem> tabs_;
  std::vector<std::string> keys_;  // parallel to tabs_
  int selected_ = -1;
};

}  // namespace tavlet::bar
