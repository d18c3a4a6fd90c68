// The module loaded from its DLL (Tavlet.arx) into the demo host's real frame,
// as the host's binding loads it: where the bar docks, what space it takes from
// the drawing area and the command line, sizing by the grip, collapse and
// scroll, clicks, unload and reload.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "platform/win32/bar/preview_strip_win32.h"
#include "platform/win32/host/frame_layout.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_table.h"
#include "support/test_paths.h"

namespace tavlet::demo {
namespace {

constexpr int kTop = 59419, kLeft = 59420, kRight = 59421, kBottom = 59422, kCommandLeft = 59424,
              kCommandRight = 59425;

std::string WinePath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

std::string Description(int n, std::uint32_t colour) {
  char text[256];
  std::snprintf(text, sizeof text,
                "tavlet-drawing 1\npath \"C:\\dwg\\d%02d.dwg\"\npicture 160 120 background 0x%06X\n"
                "rect 10 10 150 110 0xFFFFFF\n",
                n, static_cast<unsigned>(colour));
  return text;
}

// Rectangle of a window in its parent's client coordinates.
RECT InParent(HWND window) {
  RECT r{};
  GetWindowRect(window, &r);
  MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&r), 2);
  return r;
}

bool Same(const RECT& a, const RECT& b) {
  return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

std::string Show(const RECT& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom);
}

struct Setting {
  std::string section, key;
  int value;
};

BOOL CALLBACK CollectOurs(HWND hwnd, LPARAM found) {
  char name[64] = {};
  GetClassNameA(hwnd, name, sizeof name);
  const std::string kind = name;
  if (kind == "MvTavlet" || kind == "PreviewStrip" || kind == "TavletFloatFrame" || kind == "TavletWindow")
    reinterpret_cast<std::vector<HWND>*>(found)->push_back(hwnd);
  EnumChildWindows(hwnd, CollectOurs, found);
  return TRUE;
}

std::vector<HWND> ModuleWindows() {
  std::vector<HWND> found;
  EnumThreadWindows(GetCurrentThreadId(), CollectOurs, reinterpret_cast<LPARAM>(&found));
  return found;
}

class BarOnFrame : public ::testing::Test {
 protected:
  void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane"); }
  void TearDown() override {
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }

  // The frame with `drawings` open and the module loaded at start-up with `settings`.
  void Start(const std::vector<Setting>& settings, int drawings, int width = 900, int height = 700) {
    for (const Setting& s : settings) ASSERT_TRUE(WriteSetting(s.section, s.key, s.value));
    demo = std::make_unique<DemoHost>(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo->CreateFrame(width, height)) << "no display";
    for (int i = 0; i < drawings; ++i) OpenAnother();
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error, true)) << error;
    demo->Pump(50);
  }

  port::Document OpenAnother() {
    const int n = static_cast<int>(docs.size()) + 1;
    port::Document doc = demo->Host().OpenDescription(Description(n, 0x102030u * n), "d.tdd");
    docs.push_back(doc);
    demo->Pump(20);
    return doc;
  }

  // What the frame gives the MDI client without the bar.
  RECT FullArea() const {
    return win32::RepositionBars(demo->Frame(), 0, 0xFFFF, win32::kMdiClientId, true);
  }
  HWND Bar() const { return FindWindowExA(demo->Frame(), nullptr, "MvTavlet", nullptr); }
  HWND BarAnywhere() const {
    HWND strip = FindPreviewStrip();
    return strip ? GetParent(strip) : nullptr;
  }
  std::vector<RECT> Cells() const {
    std::vector<RECT> cells;
    HWND strip = FindPreviewStrip();
    RECT cell{};
    for (int i = 0; CellOnScreen(strip, i, cell); ++i) cells.push_back(cell);
    return cells;
  }
  void Nudge() {
    RECT r{};
    GetWindowRect(demo->Frame(), &r);
    MoveWindow(demo->Frame(), r.left, r.top, r.right - r.left - 20, r.bottom - r.top - 20, FALSE);
    MoveWindow(demo->Frame(), r.left, r.top, r.right - r.left, r.bottom - r.top, TRUE);
    demo->Pump(30);
  }
  int StoredInt(const std::string& key) {
    Win32Registry registry;
    SettingsStore store(registry, DefaultSettingsRoot());
    return store.GetInt("", key, -12345);
  }

  std::unique_ptr<DemoHost> demo;
  std::vector<port::Document> docs;
};

TEST_F(BarOnFrame, EachAreaSideTakesExactlyItsThicknessAndTheBarFillsTheStrip) {
  struct Case {
    int side;
    int size;
  };
  for (const Case c : {Case{kLeft, 100}, Case{kTop, 80}, Case{kRight, 120}, Case{kBottom, 90}}) {
    SCOPED_TRACE(c.side);
    Start({{"", "DockSide", c.side}, {"", "Size", c.size}}, 3);
    const RECT full = FullArea();
    const RECT area = InParent(demo->MdiClient());
    const RECT bar = InParent(Bar());
    RECT expectedArea = full, expectedBar = full;
    switch (c.side) {
      case kLeft:
        expectedArea.left += c.size;
        expectedBar.right = expectedArea.left;
        break;
      case kTop:
        expectedArea.top += c.size;
        expectedBar.bottom = expectedArea.top;
        break;
      case kRight:
        expectedArea.right -= c.size;
        expectedBar.left = expectedArea.right;
        break;
      default:
        expectedArea.bottom -= c.size;
        expectedBar.top = expectedArea.bottom;
        break;
    }
    EXPECT_TRUE(Same(area, expectedArea)) << Show(area) << " expected " << Show(expectedArea);
    EXPECT_TRUE(Same(bar, expectedBar)) << Show(bar) << " expected " << Show(expectedBar);
    EXPECT_EQ(Cells().size(), 3u);
    demo.reset();
    docs.clear();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
}

TEST_F(BarOnFrame, CommandSidesCutTheCommandHostAndTheBarTakesTheRest) {
  for (const int side : {kCommandLeft, kCommandRight}) {
    SCOPED_TRACE(side);
    Start({{"", "DockSide", side}, {"", "WidthOnCmdWnd", 300}}, 2);
    RECT dock{};
    GetClientRect(demo->CommandDock(), &dock);
    const RECT host = InParent(demo->CommandHost());
    const RECT bar = InParent(BarAnywhere());
    EXPECT_EQ(GetParent(BarAnywhere()), demo->CommandDock());
    EXPECT_EQ(host.right - host.left, dock.right - 300);
    EXPECT_EQ(bar.right - bar.left, 300);
    if (side == kCommandLeft) {
      EXPECT_EQ(bar.left, 0);
      EXPECT_EQ(host.left, 300);
    } else {
      EXPECT_EQ(host.left, 0);
      EXPECT_EQ(bar.left, dock.right - 300);
    }
    // The drawing area keeps its whole size.
    EXPECT_TRUE(Same(InParent(demo->MdiClient()), FullArea()));
    // The strip beside the command line runs horizontally.
    const std::vector<RECT> cells = Cells();
    ASSERT_EQ(cells.size(), 2u);
    EXPECT_GT(cells[1].left, cells[0].left);
    EXPECT_EQ(cells[1].top, cells[0].top);
    demo.reset();
    docs.clear();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
}

TEST_F(BarOnFrame, FloatingLeavesTheFrameWholeAndTurnsVerticalWhenTaller) {
  Start({{"", "Floating", 1}}, 3);
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), FullArea()));
  HWND bar = BarAnywhere();
  ASSERT_NE(bar, nullptr);
  HWND floatFrame = GetParent(bar);
  EXPECT_TRUE(GetWindowLongPtrA(floatFrame, GWL_EXSTYLE) & WS_EX_TOOLWINDOW);
  EXPECT_TRUE(IsWindowVisible(floatFrame));
  RECT r{};
  GetWindowRect(floatFrame, &r);
  EXPECT_EQ(r.right - r.left, 300);  // the first place: 300 by 100
  std::vector<RECT> cells = Cells();
  ASSERT_EQ(cells.size(), 3u);
  EXPECT_GT(cells[1].left, cells[0].left);
  // Taller than wide: the cells stack.
  SetWindowPos(floatFrame, nullptr, 0, 0, 160, 600, SWP_NOMOVE | SWP_NOZORDER);
  demo->Pump(50);
  RedrawWindow(bar, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  cells = Cells();
  ASSERT_EQ(cells.size(), 3u);
  EXPECT_GT(cells[1].top, cells[0].top);
  EXPECT_EQ(cells[1].left, cells[0].left);
  // Neither a close message nor Escape closes it.
  SendMessageA(floatFrame, WM_CLOSE, 0, 0);
  SendMessageA(bar, WM_CLOSE, 0, 0);
  EXPECT_TRUE(IsWindow(floatFrame));
  EXPECT_TRUE(IsWindow(bar));
  demo->UnloadModule();
  EXPECT_TRUE(ModuleWindows().empty());
  EXPECT_FALSE(IsWindow(floatFrame));
}

TEST_F(BarOnFrame, OffAndNudgeGiveTheAreaBackAndOnTakesItAgain) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 100}}, 2);
  const RECT full = FullArea();
  EXPECT_EQ(InParent(demo->MdiClient()).left, full.left + 100);
  demo->Execute("TLOFF");
  demo->Pump(30);
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), full));
  EXPECT_FALSE(IsWindowVisible(Bar()));
  Nudge();
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), full));
  demo->Execute("TLON");
  demo->Pump(30);
  EXPECT_EQ(InParent(demo->MdiClient()).left, full.left + 100);
  EXPECT_TRUE(IsWindowVisible(Bar()));
}

TEST_F(BarOnFrame, HideOnSingleGivesUpTheSpaceForOneDrawingOnly) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 100}, {"", "HideOnSingle", 1}}, 1);
  const RECT full = FullArea();
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), full));
  OpenAnother();
  demo->Pump(50);
  EXPECT_EQ(InParent(demo->MdiClient()).left, full.left + 100);
  demo->Host().CloseDrawing(docs.back());
  demo->Pump(50);
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), full));
}

TEST_F(BarOnFrame, DraggingTheGripChangesAndStoresSize) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 100}}, 2);
  HWND bar = Bar();
  RECT client{};
  GetClientRect(bar, &client);
  POINT edge{client.right - 1, client.bottom / 2};
  ClientToScreen(bar, &edge);
  SetCursorPos(edge.x, edge.y);
  EXPECT_EQ(SendMessageA(bar, WM_SETCURSOR, reinterpret_cast<WPARAM>(bar), MAKELPARAM(HTCLIENT, WM_LBUTTONDOWN)), 1);
  EXPECT_EQ(GetCapture(), bar);
  SendMessageA(bar, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(160, client.bottom / 2));
  // The bar keeps its size during the drag.
  EXPECT_EQ(InParent(bar).right - InParent(bar).left, 100);
  SendMessageA(bar, WM_LBUTTONUP, 0, MAKELPARAM(160, client.bottom / 2));
  demo->Pump(50);
  EXPECT_NE(GetCapture(), bar);
  EXPECT_EQ(StoredInt("Size"), 160);
  EXPECT_EQ(InParent(demo->MdiClient()).left, FullArea().left + 160);
  EXPECT_EQ(InParent(Bar()).right - InParent(Bar()).left, 160);
}

TEST_F(BarOnFrame, TwelveDrawingsCollapseOrScroll) {
  for (const int scroll : {0, 1}) {
    SCOPED_TRACE(scroll);
    Start({{"", "DockSide", kLeft}, {"", "Size", 100}, {"Previews", "ScrollOverflow", scroll}}, 12, 900, 600);
    RedrawWindow(Bar(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    const std::vector<RECT> cells = Cells();
    ASSERT_EQ(cells.size(), 12u);
    const long fullHeight = cells[0].bottom - cells[0].top;
    int collapsed = 0;
    for (const RECT& c : cells)
      if (c.bottom - c.top < fullHeight / 2) ++collapsed;
    HWND strip = FindPreviewStrip();
    HWND scrollBar = FindWindowExA(strip, nullptr, "SCROLLBAR", nullptr);
    bool scrollShown = false;
    for (HWND s = scrollBar; s; s = FindWindowExA(strip, s, "SCROLLBAR", nullptr)) scrollShown |= IsWindowVisible(s) != 0;
    if (scroll) {
      EXPECT_EQ(collapsed, 0);
      EXPECT_TRUE(scrollShown);
    } else {
      EXPECT_GT(collapsed, 0);
      EXPECT_FALSE(scrollShown);
      // The collapsed strips sit stacked at the far end of the strip.
      RECT stripRect{};
      GetWindowRect(strip, &stripRect);
      EXPECT_LE(cells.back().bottom, stripRect.bottom);
      EXPECT_GE(cells.back().bottom, stripRect.bottom - 2);
    }
    demo.reset();
    docs.clear();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
}

TEST_F(BarOnFrame, AClickOnACellActivatesItsDrawing) {
  Start({{"", "DockSide", kTop}, {"", "Size", 90}}, 3);
  ASSERT_EQ(demo->Host().MdiActive(), docs[2]);
  std::string error;
  Script script;
  ASSERT_TRUE(script.Parse("click cell 1\nwait 50\n", error)) << error;
  ScriptRunner runner(*demo, script, std::cout);
  ASSERT_TRUE(runner.Run(error)) << error;
  EXPECT_EQ(demo->Host().MdiActive(), docs[0]);
  HWND active = reinterpret_cast<HWND>(SendMessageA(demo->MdiClient(), WM_MDIGETACTIVE, 0, 0));
  EXPECT_EQ(active, demo->ViewOf(docs[0]));
  // The other way round: the user picks a drawing's window, and the bar follows the host.
  SendMessageA(demo->MdiClient(), WM_MDIACTIVATE, reinterpret_cast<WPARAM>(demo->ViewOf(docs[1])), 0);
  demo->Pump(30);
  EXPECT_EQ(demo->Host().MdiActive(), docs[1]);
  RedrawWindow(FindPreviewStrip(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  const Picture shot = CaptureWindow(FindPreviewStrip());
  RECT strip{};
  GetWindowRect(FindPreviewStrip(), &strip);
  const std::vector<RECT> cells = Cells();
  ASSERT_EQ(cells.size(), 3u);
  const COLORREF blue = win32::CellEdgeColor(true);
  const std::uint32_t activeFrame = (std::uint32_t{GetRValue(blue)} << 16) | (GetGValue(blue) << 8) | GetBValue(blue);
  for (int i = 0; i < 3; ++i) {
    const std::uint32_t pixel = shot.At(cells[i].left - strip.left, (cells[i].top + cells[i].bottom) / 2 - strip.top);
    EXPECT_EQ(pixel == activeFrame, i == 1) << "cell " << i << " " << std::hex << pixel;
  }
}

TEST_F(BarOnFrame, AClickDuringACommandWithSwitchOnBusyOffShowsTheMessage) {
  Start({{"", "DockSide", kLeft}, {"", "SwitchOnBusy", 0}}, 2);
  RECT cell = Cells().at(0);
  HWND strip = FindPreviewStrip();
  POINT at{(cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2};
  ScreenToClient(strip, &at);
  demo->Host().RunCommandDuring("LINE", [&] {
    SendMessageA(strip, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    SendMessageA(strip, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
  });
  ASSERT_FALSE(demo->Host().ShownBoxes().empty());
  EXPECT_EQ(demo->Host().ShownBoxes().back().text, "请结束活动的绘图命令");
  EXPECT_EQ(demo->Host().MdiActive(), docs[1]);
  // Once the command is over the same click switches.
  SendMessageA(strip, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
  demo->Pump(30);
  EXPECT_EQ(demo->Host().MdiActive(), docs[0]);
}

TEST_F(BarOnFrame, UnloadLeavesNothingBehindAndAReloadWorks) {
  demo = std::make_unique<DemoHost>(WinePath(TAVLET_ARX_PATH), false);
  ASSERT_TRUE(demo->CreateFrame(800, 600));
  OpenAnother();
  OpenAnother();
  const LONG_PTR mdiProcedure = GetWindowLongPtrA(demo->MdiClient(), GWLP_WNDPROC);
  const LONG_PTR hostProcedure = GetWindowLongPtrA(demo->CommandHost(), GWLP_WNDPROC);
  const RECT full = FullArea();
  for (int round = 0; round < 2; ++round) {
    SCOPED_TRACE(round);
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error)) << error;
    EXPECT_NE(GetWindowLongPtrA(demo->MdiClient(), GWLP_WNDPROC), mdiProcedure);
    EXPECT_FALSE(ModuleWindows().empty());
    EXPECT_EQ(Cells().size(), 2u);
    EXPECT_EQ(InParent(demo->MdiClient()).left, full.left + 100);
    demo->UnloadModule();
    EXPECT_EQ(GetWindowLongPtrA(demo->MdiClient(), GWLP_WNDPROC), mdiProcedure);
    EXPECT_EQ(GetWindowLongPtrA(demo->CommandHost(), GWLP_WNDPROC), hostProcedure);
    EXPECT_TRUE(ModuleWindows().empty());
    EXPECT_EQ(GetModuleHandleA("Tavlet.arx"), nullptr);
    EXPECT_TRUE(Same(InParent(demo->MdiClient()), full));
  }
}

TEST_F(BarOnFrame, StoredSettingsOutOfRangeDoWhatTheyStandFor) {
  // A negative Size carves a negative strip: the drawing area grows by it.
  Start({{"", "DockSide", kLeft}, {"", "Size", -40}}, 2);
  EXPECT_EQ(InParent(demo->MdiClient()).left, FullArea().left - 40);
  demo.reset();
  // A DockSide that names no side is still an area side below 59423: nothing is cut.
  Start({{"", "DockSide", 12345}}, 2);
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), FullArea()));
  demo.reset();
  // Above it, a command side that cuts nothing.
  Start({{"", "DockSide", 70000}}, 2);
  RECT dock{};
  GetClientRect(demo->CommandDock(), &dock);
  EXPECT_EQ(InParent(demo->CommandHost()).right, dock.right);
  EXPECT_TRUE(Same(InParent(demo->MdiClient()), FullArea()));
}

TEST_F(BarOnFrame, WithNoDrawingTheBarKeepsACaptionAndAnswersItsOwnMessages) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 100}}, 0);
  HWND bar = Bar();
  ASSERT_NE(bar, nullptr);
  // No tab is selected with no drawing open: the caption's height, not Size.
  EXPECT_EQ(InParent(demo->MdiClient()).left, FullArea().left + GetSystemMetrics(SM_CYCAPTION));
  EXPECT_EQ(SendMessageA(bar, 0x7101, 0, 0), 1);  // the host's keep-focus message
  SendMessageA(bar, WM_CLOSE, 0, 0);
  EXPECT_TRUE(IsWindow(bar));
  SendMessageA(bar, WM_LBUTTONDBLCLK, MK_CONTROL, 0);
  SendMessageA(bar, WM_LBUTTONDBLCLK, 0, 0);
  const auto& boxes = demo->Host().ShownBoxes();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[0].text, "还没有打开工作!");
  EXPECT_EQ(boxes[1].text, "最近文件使用列表中没有文件!");
}

TEST_F(BarOnFrame, TabModeTakesItsRowsAndSwitchesThroughTheTabControl) {
  Start({{"", "DockSide", kTop}, {"", "TabMode", 1}, {"", "SwitchOnBusy", 0}}, 3);
  HWND tabs = FindWindowExA(Bar(), nullptr, "SysTabControl32", nullptr);
  ASSERT_NE(tabs, nullptr);
  EXPECT_TRUE(IsWindowVisible(tabs));
  EXPECT_FALSE(IsWindowVisible(FindPreviewStrip()));
  ASSERT_EQ(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0), 3);
  EXPECT_EQ(SendMessageA(tabs, TCM_GETCURSEL, 0, 0), 2);
  // Top: rows times the tab's height, plus 6.
  RECT item{};
  ASSERT_TRUE(SendMessageA(tabs, TCM_GETITEMRECT, 2, reinterpret_cast<LPARAM>(&item)));
  const long rows = static_cast<long>(SendMessageA(tabs, TCM_GETROWCOUNT, 0, 0));
  EXPECT_EQ(InParent(demo->MdiClient()).top, FullArea().top + rows * (item.bottom - item.top) + 6);
  // During a command the change is refused with the message.
  demo->Host().RunCommandDuring("LINE", [&] { SendMessageA(tabs, TCM_SETCURFOCUS, 0, 0); });
  ASSERT_FALSE(demo->Host().ShownBoxes().empty());
  EXPECT_EQ(demo->Host().ShownBoxes().back().text, "请结束活动的绘图命令");
  demo->Pump(30);
  EXPECT_EQ(demo->Host().MdiActive(), docs[2]);
  EXPECT_EQ(SendMessageA(tabs, TCM_GETCURSEL, 0, 0), 2);
  // Otherwise the tab's drawing becomes the active one.
  SendMessageA(tabs, TCM_SETCURFOCUS, 0, 0);
  demo->Pump(30);
  EXPECT_EQ(demo->Host().MdiActive(), docs[0]);
  EXPECT_EQ(SendMessageA(tabs, TCM_GETCURSEL, 0, 0), 0);
}

TEST_F(BarOnFrame, TheCommandLineAndTheScriptVerbsDriveTheRealWindows) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 100}}, 3);
  // Typed at the command line and entered.
  SetWindowTextA(demo->CommandInput(), "tloff");
  SendMessageA(demo->CommandInput(), WM_KEYDOWN, VK_RETURN, 0);
  demo->Pump(30);
  EXPECT_FALSE(IsWindowVisible(Bar()));
  EXPECT_NE(demo->Host().Transcript().find("Command: tloff\n"), std::string::npos);
  char typed[16] = "x";
  GetWindowTextA(demo->CommandInput(), typed, sizeof typed);
  EXPECT_STREQ(typed, "");

  std::string error;
  Script script;
  ASSERT_TRUE(script.Parse("command TLON\nresize 700 520\nactivate 1\nwheel 120\nwheel 120\nwait 50\n"
                           "answer ok\ndblclick cell 2\nrclick cell 2\nwait 50\n",
                           error))
      << error;
  std::ostringstream log;
  ScriptRunner runner(*demo, script, log);
  ASSERT_TRUE(runner.Run(error)) << error;
  EXPECT_TRUE(IsWindowVisible(Bar()));
  RECT frame{};
  GetWindowRect(demo->Frame(), &frame);
  EXPECT_EQ(frame.right - frame.left, 700);
  EXPECT_EQ(frame.bottom - frame.top, 520);
  // The bar follows the frame's new size.
  EXPECT_EQ(InParent(Bar()).bottom, FullArea().bottom);
  // `activate 1` made the first drawing active for the wheel; the double click's
  // first press then switched to the second.
  EXPECT_DOUBLE_EQ(demo->ZoomOf(demo->ViewOf(docs[0])), 1.25 * 1.25);
  EXPECT_DOUBLE_EQ(demo->ZoomOf(demo->ViewOf(docs[2])), 1.0);
  EXPECT_EQ(demo->Host().MdiActive(), docs[1]);
  // The double click reached the bar through the strip: the recent list is empty.
  ASSERT_FALSE(demo->Host().ShownBoxes().empty());
  EXPECT_EQ(demo->Host().ShownBoxes().back().text, "最近文件使用列表中没有文件!");
  EXPECT_EQ(demo->Host().ShownBoxes().back().answer, port::kAnswerOk);
}

// ---------------------------------------------------------------- scripts

TEST(DemoScript, WrongScriptsFailWithFileLineAndWhatWasExpected) {
  struct Case {
    const char* text;
    const char* message;
  };
  const Case cases[] = {
      {"open a.tdd\n\nfrobnicate 3\n", "demo.txt:3: unknown verb 'frobnicate'; expected one of:"},
      {"wait soon\n", "demo.txt:1: expected a number in 'wait MILLISECONDS'"},
      {"click cell\n", "demo.txt:1: expected 'click cell N [ctrl] | click X Y [ctrl]'"},
      {"click 10 20 shift\n", "demo.txt:1: expected 'click cell N [ctrl]"},
      {"answer maybe\n", "demo.txt:1: expected 'answer ok|cancel|yes|no'"},
      {"quit now\n", "demo.txt:1: expected 'quit'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::string error;
    Script script;
    const std::string folder = tavlet::testing::MakeTempFolder("script");
    const std::string path = folder + "\\demo.txt";
    FILE* f = std::fopen(path.c_str(), "wb");
    ASSERT_NE(f, nullptr);
    std::fputs(c.text, f);
    std::fclose(f);
    EXPECT_FALSE(script.Load(path, error));
    EXPECT_NE(error.find(c.message), std::string::npos) << error;
  }
  std::string error;
  Script missing;
  EXPECT_FALSE(missing.Load("C:\\no\\such\\script.txt", error));
  EXPECT_NE(error.find("cannot read the script"), std::string::npos);
}

// Runs the demo host on `script`; its exit status, its standard error in `errors`.
DWORD RunDemoHost(const std::string& script, std::string& errors) {
  const std::string folder = tavlet::testing::MakeTempFolder("demohost");
  const std::string scriptPath = folder + "\\script.txt", errorPath = folder + "\\errors.txt";
  FILE* f = std::fopen(scriptPath.c_str(), "wb");
  if (!f) return 0xFFFFFFFF;
  std::fputs(script.c_str(), f);
  std::fclose(f);
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  HANDLE errorFile = CreateFileA(errorPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = errorFile;
  startup.hStdError = errorFile;
  PROCESS_INFORMATION process{};
  std::string command = "\"" + WinePath(TAVLET_DEMOHOST_PATH) + "\" --script \"" + scriptPath + "\"";
  DWORD status = 0xFFFFFFFF;
  if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
    WaitForSingleObject(process.hProcess, 120000);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(errorFile);
  std::ifstream in(errorPath);
  std::stringstream text;
  text << in.rdbuf();
  errors = text.str();
  return status;
}

TEST(DemoHostProgram, ExitsNonZeroAndNamesTheLineOfAWrongScript) {
  std::string errors;
  EXPECT_EQ(RunDemoHost("wait 10\nfly away\n", errors), 2u);
  EXPECT_NE(errors.find("script.txt:2: unknown verb 'fly'"), std::string::npos) << errors;
  EXPECT_EQ(RunDemoHost("open missing-drawing.tdd\n", errors), 1u);
  EXPECT_NE(errors.find("script.txt:1: open: no such file 'missing-drawing.tdd'"), std::string::npos) << errors;
  EXPECT_EQ(RunDemoHost("wait 10\nquit\n", errors), 0u) << errors;
}

TEST_F(BarOnFrame, AScriptStopsAtAMissingDrawingAndAScreenshotShowsTheCells) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 100}}, 3);
  const std::string folder = tavlet::testing::MakeTempFolder("shots");
  std::string error;
  Script good;
  ASSERT_TRUE(good.Parse("screenshot bar.bmp\ncheck-bar 3\n", error)) << error;
  std::ostringstream log;
  ScriptRunner runner(*demo, good, log, folder);
  ASSERT_TRUE(runner.Run(error)) << error << log.str();
  // The pixels: each cell's label edge, in the bar's strip.
  Picture shot;
  ASSERT_TRUE(ReadBmp(folder + "\\bar.bmp", shot));
  RECT frame{};
  GetWindowRect(demo->Frame(), &frame);
  const std::vector<RECT> cells = Cells();
  ASSERT_EQ(cells.size(), 3u);
  const COLORREF colours[] = {win32::CellEdgeColor(false), win32::CellEdgeColor(true)};
  for (const RECT& cell : cells) {
    const POINT probe = win32::CellProbe(cell);
    const std::uint32_t pixel = shot.At(probe.x - frame.left, probe.y - frame.top);
    bool framed = false;
    for (COLORREF c : colours)
      framed |= pixel == ((std::uint32_t{GetRValue(c)} << 16) | (GetGValue(c) << 8) | GetBValue(c));
    EXPECT_TRUE(framed) << std::hex << pixel;
  }
  // A check that does not match fails the script.
  Script wrong;
  ASSERT_TRUE(wrong.Parse("screenshot bar.bmp\ncheck-bar 5\n", error));
  ScriptRunner wrongRunner(*demo, wrong, log, folder);
  EXPECT_FALSE(wrongRunner.Run(error));
  EXPECT_NE(error.find("<script>:2: check-bar: expected 5 cells in the screenshot, found 3"), std::string::npos)
      << error;

  Script missing;
  ASSERT_TRUE(missing.Parse("# drawings\nopen no-such-drawing.tdd\n", error));
  ScriptRunner missingRunner(*demo, missing, log, folder);
  EXPECT_FALSE(missingRunner.Run(error));
  EXPECT_NE(error.find("<script>:2: open: no such file 'no-such-drawing.tdd'"), std::string::npos) << error;
}

}  // namespace
}  // namespace tavlet::demo
