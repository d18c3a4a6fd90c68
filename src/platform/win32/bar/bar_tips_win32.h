// The bar's two tip controls: DocTip, one tool per cell or tab, and MenuTip,
// which the context menu uses beside a workset's entry. Both take the delays and
// the width of the settings; the tools relay the mouse themselves (TTF_SUBCLASS).
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "bar/bar_model.h"
#include "bar/preview_layout.h"
#include "bar/tip_text.h"

namespace tavlet::win32 {

class BarTips {
 public:
  explicit BarTips(bar::BarModel& bar) : bar_(bar) {}
  ~BarTips();
  BarTips(const BarTips&) = delete;
  BarTips& operator=(const BarTips&) = delete;

  // Makes both controls, owned by the bar's window; the bar's tips from now on.
  bool Create(HWND owner);
  // ApplyTipSettings: activation, delays and width, then (once the bar is
  // created) fresh texts: the strip repaints, the tabs get their tools again.
  void Apply();
  // The tools of the tab control, one per tab, with the texts of now.
  void ResetTabTools();
  // Before the tabs paint: new tools when a tab came, went, or changed its text or place.
  void UpdateTabTools();
  // After a layout of the strip: every tool deleted, then one per entry.
  void ResetStripTools(HWND strip, const std::vector<bar::StripTipTool>& tools);
  // After a cell was painted: its place and its text of now.
  void UpdateStripTool(HWND strip, const bar::DocEntry& entry);

  HWND DocTip() const { return docTip_; }
  HWND MenuTip() const { return menuTip_; }
  const bar::TipCache& Cache() const { return cache_; }

  // The tips of `bar`'s window, or null before it made them.
  static BarTips* Of(const bar::BarModel& bar);

 private:
  std::string Text(port::Document doc) const;
  void DeleteTools(HWND tool);

  bar::BarModel& bar_;
  HWND docTip_ = nullptr;
  HWND menuTip_ = nullptr;
  bar::TipCache cache_;
  // What the tab tools were last made for: each tab's drawing, text and place.
  struct TabTool {
    port::Document document;
    std::string text;
    RECT rect;
  };
  std::vector<TabTool> tabTools_;
};

// The bar's ApplyTipSettings, for whoever changed the settings (the preferences' OK).
void ApplyTipSettings(bar::BarModel& bar);

}  // namespace tavlet::win32
