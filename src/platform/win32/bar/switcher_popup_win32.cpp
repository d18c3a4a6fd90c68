#include "platform/win32/bar/switcher_popup_win32.h"

#include <optional>
#include <string>

#include "bar/doc_list.h"
#include "bar/switcher_input.h"
#include "platform/win32/bar/gdi_canvas.h"
#include "platform/win32/window.h"

namespace tavlet::win32 {
namespace {

constexpr char kSwitcherClass[] = "TavletSwitcher";

SwitcherRequest& PendingRequest() {
  static SwitcherRequest request;
  return request;
}

HWND& OpenWindow() {
  static HWND window = nullptr;
  return window;
}

CtrlTabHook*& ActiveHook() {
  static CtrlTabHook* hook = nullptr;
  return hook;
}

bool Down(int key) { return GetKeyState(key) < 0; }

RECT ToRect(const host::WindowRect& r) {
  return {static_cast<LONG>(r.left), static_cast<LONG>(r.top), static_cast<LONG>(r.right), static_cast<LONG>(r.bottom)};
}

// One drawing as the popup shows it: its picture is looked up at each paint, as
// a capture may replace it while the popup is open.
struct Item {
  port::Document doc = nullptr;
  std::string name;
};

std::string ShortName(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

class SwitcherWindowImpl final : public Window {
 public:
  SwitcherWindowImpl(bar::Switcher& switcher, bar::BarModel* bar, std::vector<Item> items, bar::SwitcherLayout layout)
      : switcher_(switcher), bar_(bar), items_(std::move(items)), layout_(layout), drawDib_(DrawDibOpen()) {}
  ~SwitcherWindowImpl() override {
    if (drawDib_) DrawDibClose(drawDib_);
  }
  SwitcherWindowImpl(const SwitcherWindowImpl&) = delete;
  SwitcherWindowImpl& operator=(const SwitcherWindowImpl&) = delete;

  bool deactivated = false;

 protected:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
    if (message == WM_ACTIVATE && LOWORD(wParam) == WA_INACTIVE) deactivated = true;
    if (message == WM_MOUSEACTIVATE) return MA_ACTIVATE;
    return Window::OnMessage(message, wParam, lParam);
  }
  bool OnEraseBackground(HDC) override { return true; }
  void OnPaint(HDC dc, const RECT&) override {
    RECT client{};
    GetClientRect(hwnd(), &client);
    // Drawn off screen, then copied, so Tab does not flicker.
    HDC memory = CreateCompatibleDC(dc);
    HBITMAP bitmap = CreateCompatibleBitmap(dc, client.right, client.bottom);
    HGDIOBJ oldBitmap = SelectObject(memory, bitmap);
    HGDIOBJ oldFont = SelectObject(memory, GetStockObject(DEFAULT_GUI_FONT));
    Paint(memory, client);
    BitBlt(dc, 0, 0, client.right, client.bottom, memory, 0, 0, SRCCOPY);
    SelectObject(memory, oldFont);
    SelectObject(memory, oldBitmap);
    DeleteObject(bitmap);
    DeleteDC(memory);
  }

 private:
  void Paint(HDC dc, const RECT& client) {
    GdiCanvas canvas(dc, nullptr, drawDib_);
    canvas.FillRect({0, 0, client.right, client.bottom}, GetSysColor(COLOR_BTNFACE));
    for (std::size_t i = 0; i < items_.size(); ++i) {
      const bool selected = static_cast<int>(i) == switcher_.Selected();
      const host::WindowRect cell = layout_.Cell(i);
      if (selected) canvas.FillRect(cell, GetSysColor(COLOR_HIGHLIGHT));
      const host::WindowRect box = layout_.Picture(i);
      canvas.FillRect(box, GetSysColor(COLOR_WINDOW));
      canvas.Draw3dRect(box, GetSysColor(COLOR_BTNSHADOW), GetSysColor(COLOR_BTNHIGHLIGHT));
      const bar::DocEntry* entry = bar_ ? bar_->Strip().FindEntry(items_[i].doc) : nullptr;
      if (entry && !entry->previewDib.empty()) {
        const host::WindowRect inner{box.left + 1, box.top + 1, box.right - 1, box.bottom - 1};
        canvas.DrawDib(entry->previewDib, entry->previewWidth, entry->previewHeight,
                       bar::FitPicture(entry->previewWidth, entry->previewHeight, inner));
      }
      RECT label = ToRect({cell.left + 4, box.bottom + 2, cell.right - 4, cell.bottom - 2});
      SetBkMode(dc, TRANSPARENT);
      SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT));
      DrawTextA(dc, items_[i].name.c_str(), static_cast<int>(items_[i].name.size()), &label,
                DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
  }

  bar::Switcher& switcher_;
  bar::BarModel* bar_;
  std::vector<Item> items_;
  bar::SwitcherLayout layout_;
  HDRAWDIB drawDib_ = nullptr;
};

std::optional<bar::SwitcherKey> KeyOf(const MSG& msg, bool byCtrlTab) {
  const bool down = msg.message == WM_KEYDOWN || msg.message == WM_SYSKEYDOWN;
  bar::KeyStroke stroke{static_cast<unsigned>(msg.wParam), down, Down(VK_CONTROL), Down(VK_SHIFT), Down(VK_MENU)};
  return bar::SwitcherKeyFor(stroke, byCtrlTab);
}

bool IsKey(UINT message) {
  return message == WM_KEYDOWN || message == WM_KEYUP || message == WM_SYSKEYDOWN || message == WM_SYSKEYUP ||
         message == WM_CHAR || message == WM_SYSCHAR;
}

bool IsButtonDown(UINT message) {
  return message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN || message == WM_MBUTTONDOWN ||
         message == WM_NCLBUTTONDOWN || message == WM_NCRBUTTONDOWN || message == WM_NCMBUTTONDOWN;
}

}  // namespace

SwitcherRequest CurrentSwitcherRequest() { return PendingRequest(); }

port::Document RunSwitcherPopup(HWND frame, bar::BarModel* bar, const std::vector<port::Document>& order,
                                const SwitcherRequest& request) {
  bar::Switcher switcher;
  if (OpenWindow() || !switcher.Open(order)) return nullptr;
  if (request.backward) {
    // Backward from the previous drawing: the one active longest ago.
    switcher.Press(bar::SwitcherKey::ShiftTab);
    switcher.Press(bar::SwitcherKey::ShiftTab);
  }
  // A quick Ctrl+Tab, released before the popup could show, switches at once.
  if (request.byCtrlTab && !Down(VK_CONTROL)) return switcher.Press(bar::SwitcherKey::ReleaseCtrl);

  std::vector<Item> items;
  for (port::Document doc : order) {
    Item item;
    item.doc = doc;
    if (const bar::DocEntry* entry = bar ? bar->Strip().FindEntry(doc) : nullptr) item.name = entry->path.Name;
    else if (bar) item.name = ShortName(bar::DocumentName(*bar->Session().Documents(), doc));
    items.push_back(std::move(item));
  }
  RECT frameRect{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  if (frame) GetWindowRect(frame, &frameRect);
  const bar::SwitcherLayout layout =
      bar::LayOutSwitcher(order.size(), {frameRect.left, frameRect.top, frameRect.right, frameRect.bottom});

  ResourceScope resources;
  RegisterWindowClass(kSwitcherClass, CS_SAVEBITS, IDC_ARROW, nullptr);
  SwitcherWindowImpl window(switcher, bar, std::move(items), layout);
  const host::WindowRect& w = layout.window;
  // The client area is the layout's; the thin border lies outside it.
  RECT outer{static_cast<LONG>(w.left), static_cast<LONG>(w.top), static_cast<LONG>(w.right), static_cast<LONG>(w.bottom)};
  AdjustWindowRectEx(&outer, WS_POPUP | WS_BORDER, FALSE, WS_EX_TOOLWINDOW);
  if (!window.Create(kSwitcherClass, WS_EX_TOOLWINDOW | WS_EX_TOPMOST, "", WS_POPUP | WS_BORDER, outer, frame, 0))
    return nullptr;
  HWND popup = window.hwnd();
  OpenWindow() = popup;
  ShowWindow(popup, SW_SHOW);
  SetForegroundWindow(popup);
  SetFocus(popup);
  UpdateWindow(popup);

  port::Document picked = nullptr;
  MSG msg{};
  while (switcher.IsOpen()) {
    if (window.deactivated || !IsWindow(popup)) {
      switcher.Press(bar::SwitcherKey::Escape);
      break;
    }
    const BOOL got = GetMessageA(&msg, nullptr, 0, 0);
    if (got <= 0) {
      switcher.Press(bar::SwitcherKey::Escape);
      if (got == 0) PostQuitMessage(static_cast<int>(msg.wParam));
      break;
    }
    if (IsKey(msg.message)) {
      // Every key is the popup's while it is open; none reaches the host.
      if (msg.message == WM_CHAR || msg.message == WM_SYSCHAR) continue;
      if (const auto key = KeyOf(msg, request.byCtrlTab)) {
        picked = switcher.Press(*key);
        InvalidateRect(popup, nullptr, FALSE);
      }
      continue;
    }
    if (IsButtonDown(msg.message)) {
      if (msg.hwnd == popup && msg.message == WM_LBUTTONDOWN) {
        const int index = layout.HitTest(static_cast<short>(LOWORD(msg.lParam)),
                                         static_cast<short>(HIWORD(msg.lParam)), order.size());
        if (index >= 0) {
          picked = switcher.Click(index);
          continue;
        }
      }
      // A click anywhere else closes the popup and does nothing more.
      switcher.Press(bar::SwitcherKey::Escape);
      continue;
    }
    TranslateMessage(&msg);
    DispatchMessageA(&msg);
  }
  OpenWindow() = nullptr;
  if (IsWindow(popup)) DestroyWindow(popup);
  if (frame && IsWindow(frame)) SetForegroundWindow(frame);
  return picked;
}

// ------------------------------------------------------------------ Ctrl+Tab

CtrlTabHook::CtrlTabHook(HWND frame, std::function<std::size_t()> drawings, std::function<void()> open)
    : frame_(frame), drawings_(std::move(drawings)), open_(std::move(open)) {
  if (ActiveHook()) return;
  hook_ = SetWindowsHookExA(WH_KEYBOARD, KeyboardProcedure, nullptr, GetCurrentThreadId());
  if (hook_) ActiveHook() = this;
}

CtrlTabHook::~CtrlTabHook() {
  if (timer_) KillTimer(nullptr, timer_);
  if (hook_) UnhookWindowsHookEx(hook_);
  if (ActiveHook() == this) ActiveHook() = nullptr;
}

LRESULT CALLBACK CtrlTabHook::KeyboardProcedure(int code, WPARAM wParam, LPARAM lParam) noexcept {
  CtrlTabHook* self = ActiveHook();
  if (!self || code != HC_ACTION) return CallNextHookEx(nullptr, code, wParam, lParam);
  try {
    HWND focus = GetFocus();
    const bool inFrame = focus && GetAncestor(focus, GA_ROOT) == self->frame_;
    const bar::KeyStroke stroke{static_cast<unsigned>(wParam), (lParam & 0x80000000) == 0, Down(VK_CONTROL),
                                Down(VK_SHIFT), (lParam & 0x20000000) != 0 || Down(VK_MENU)};
    const bar::CtrlTabAction action = bar::DecideCtrlTab(true, stroke, inFrame, OpenWindow() != nullptr,
                                                         self->drawings_ ? self->drawings_() : 0);
    if (action != bar::CtrlTabAction::PassOn) {
      // A repeat before the popup shows is the same request.
      if (self->timer_) return 1;
      self->backward_ = action == bar::CtrlTabAction::OpenBackward;
      // The popup runs its own loop: not inside the hook, once this key is done.
      self->timer_ = SetTimer(nullptr, 0, 0, OpenLater);
      if (self->timer_) return 1;
    }
  } catch (...) {
    // The key goes on to the host as if no one had looked.
  }
  return CallNextHookEx(nullptr, code, wParam, lParam);
}

void CALLBACK CtrlTabHook::OpenLater(HWND, UINT, UINT_PTR id, DWORD) noexcept {
  KillTimer(nullptr, id);
  CtrlTabHook* self = ActiveHook();
  if (!self || self->timer_ != id) return;
  self->timer_ = 0;
  PendingRequest() = {true, self->backward_};
  try {
    if (self->open_) self->open_();
  } catch (...) {
  }
  PendingRequest() = {};
}

}  // namespace tavlet::win32
