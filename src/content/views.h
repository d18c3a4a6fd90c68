// Named views for the menu, and the one thing about them the host doesn't keep:
// the layout a paper-space view belongs to, stored as extended data on the view
// under the application MRVN_TAVLET.
#pragma once

#include <string>
#include <vector>

#include "content/id_map.h"
#include "host/port/host_session.h"

namespace tavlet::content {

struct ViewEntry {
  bool isModelView = true;  // also for the "没有找到" entry
  std::string name;
  std::string layout;  // a paper-space view's layout; empty when none is recorded
  double centerX = 0, centerY = 0;
};

inline constexpr const char kViewApplication[] = "MRVN_TAVLET";

// The views in _mbscmp order of their names (capitals before small letters),
// dependent ones too. A view that won't open takes no id.
void CollectViews(int& nextId, IdMap<ViewEntry>& views, port::DrawingDatabase& database,
                  port::Database db, bool fill);

// The layout recorded on a view; empty when there is none or it can't be read.
std::string ReadViewLayout(const std::string& view, port::DrawingDatabase& database,
                           port::Database db);

// Records `layout` on the view and marks it a paper-space view, with the
// document locked for write. A failure to register the application is printed
// on the command line; any other failure is silent.
void WriteViewLayout(const std::string& view, const std::string& layout, port::HostSession& session,
                     port::Document doc);

// SelectLayoutDialog: modal, titled `title`, the names in a sorted list with
// single selection. The selected names on OK, empty on cancel.
class LayoutChooser {
 public:
  virtual std::vector<std::string> Choose(const std::string& title,
                                          const std::vector<std::string>& names) = 0;

 protected:
  ~LayoutChooser() = default;
};

// Finds and records the layout of a paper-space view that has none: the one
// paper-space layout, or the user's choice among several. Empty when declined.
std::string AssignViewLayout(const std::string& view, port::HostSession& session,
                             port::Document doc, LayoutChooser& chooser);

}  // namespace tavlet::content
