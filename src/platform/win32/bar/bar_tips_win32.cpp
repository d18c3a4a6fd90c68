#include "platform/win32/bar/bar_tips_win32.h"

#include <commctrl.h>

#include <map>
#include <string>

#include "platform/win32/port_handles.h"

namespace tavlet::win32 {
namespace {

std::map<const bar::BarModel*, BarTips*>& Registry() {
  static std::map<const bar::BarModel*, BarTips*> tips;
  return tips;
}

HWND MakeTip(HWND owner) {
  return CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX,
                         CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr, nullptr, nullptr);
}

TTTOOLINFOA Tool(HWND window, UINT_PTR id, const RECT& rect, const std::string* text) {
  TTTOOLINFOA tool{};
  tool.cbSize = TTTOOLINFOA_V2_SIZE;
  tool.uFlags = TTF_SUBCLASS;
  tool.hwnd = window;
  tool.uId = id;
  tool.rect = rect;
  tool.lpszText = text ? const_cast<char*>(text->c_str()) : nullptr;
  return tool;
}

void Delays(HWND tip, const BarSettings& s) {
  if (!tip) return;
  SendMessageA(tip, TTM_SETDELAYTIME, TTDT_AUTOPOP, MAKELPARAM(LOWORD(s.TipRemain), 0));
  SendMessageA(tip, TTM_SETDELAYTIME, TTDT_INITIAL, MAKELPARAM(LOWORD(s.TipDelay), 0));
  SendMessageA(tip, TTM_SETDELAYTIME, TTDT_RESHOW, MAKELPARAM(250, 0));
  // A width breaks the text at its line feeds; none (0) leaves the control's own way.
  SendMessageA(tip, TTM_SETMAXTIPWIDTH, 0, s.TipWidth > 0 ? s.TipWidth : -1);
}

}  // namespace

BarTips::~BarTips() {
  Registry().erase(&bar_);
  if (docTip_ && IsWindow(docTip_)) DestroyWindow(docTip_);
  if (menuTip_ && IsWindow(menuTip_)) DestroyWindow(menuTip_);
}

bool BarTips::Create(HWND owner) {
  docTip_ = MakeTip(owner);
  menuTip_ = MakeTip(owner);
  Registry()[&bar_] = this;
  return docTip_ && menuTip_;
}

BarTips* BarTips::Of(const bar::BarModel& bar) {
  const auto found = Registry().find(&bar);
  return found == Registry().end() ? nullptr : found->second;
}

std::string BarTips::Text(port::Document doc) const {
  return bar::TipText(bar_.Session(), bar_.Files(), bar_.Settings(), cache_, doc);
}

void BarTips::Apply() {
  const BarSettings& s = bar_.Settings();
  if (docTip_) SendMessageA(docTip_, TTM_ACTIVATE, s.ShowTips ? TRUE : FALSE, 0);
  Delays(docTip_, s);
  Delays(menuTip_, s);
  if (!bar_.Created()) return;
  cache_.clear();
  if (!bar_.TabMode()) {
    // Each painted cell refreshes its own tool.
    if (HWND strip = H(bar_.StripWindow())) RedrawWindow(strip, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    return;
  }
  ResetTabTools();
}

void BarTips::DeleteTools(HWND window) {
  const auto count = static_cast<UINT_PTR>(SendMessageA(docTip_, TTM_GETTOOLCOUNT, 0, 0));
  for (UINT_PTR id = 1; id <= count; ++id) {
    TTTOOLINFOA tool = Tool(window, id, {}, nullptr);
    SendMessageA(docTip_, TTM_DELTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

void BarTips::ResetTabTools() {
  HWND tabs = H(bar_.TabWindow());
  if (!docTip_ || !tabs) return;
  DeleteTools(tabs);
  tabTools_.clear();
  const auto& items = bar_.Tabs().Tabs();
  for (std::size_t i = 0; i < items.size(); ++i) {
    RECT r{};
    SendMessageA(tabs, TCM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&r));
    const std::string text = Text(items[i].document);
    TTTOOLINFOA tool = Tool(tabs, i + 1, r, &text);
    SendMessageA(docTip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
    tabTools_.push_back({items[i].document, items[i].text, r});
  }
}

void BarTips::UpdateTabTools() {
  HWND tabs = H(bar_.TabWindow());
  if (!docTip_ || !tabs || !bar_.Created()) return;
  const auto& items = bar_.Tabs().Tabs();
  bool same = items.size() == tabTools_.size();
  for (std::size_t i = 0; same && i < items.size(); ++i) {
    RECT r{};
    SendMessageA(tabs, TCM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&r));
    same = items[i].document == tabTools_[i].document && items[i].text == tabTools_[i].text &&
           EqualRect(&r, &tabTools_[i].rect);
  }
  if (!same) ResetTabTools();
}

void BarTips::ResetStripTools(HWND strip, const std::vector<bar::StripTipTool>& tools) {
  if (!docTip_ || !strip) return;
  DeleteTools(strip);
  for (const bar::StripTipTool& t : tools) {
    const std::string text = t.entry ? Text(t.entry->document) : std::string();
    TTTOOLINFOA tool = Tool(strip, t.id, ToRect(t.rect), &text);
    SendMessageA(docTip_, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

void BarTips::UpdateStripTool(HWND strip, const bar::DocEntry& entry) {
  if (!docTip_ || !strip) return;
  const auto id = static_cast<UINT_PTR>(entry.index + 1);
  TTTOOLINFOA tool = Tool(strip, id, ToRect(entry.itemRect), nullptr);
  SendMessageA(docTip_, TTM_NEWTOOLRECTA, 0, reinterpret_cast<LPARAM>(&tool));
  const std::string text = Text(entry.document);
  tool.lpszText = const_cast<char*>(text.c_str());
  SendMessageA(docTip_, TTM_UPDATETIPTEXTA, 0, reinterpret_cast<LPARAM>(&tool));
}

void ApplyTipSettings(bar::BarModel& bar) {
  if (BarTips* tips = BarTips::Of(bar)) tips->Apply();
}

}  // namespace tavlet::win32
