// The bar as painted on the screen, read back as pixels: the module loaded from
// its DLL into the demo host's frame, its windows captured after a repaint.
#include <windows.h>
#include <commctrl.h>
#include <vfw.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/image_file.h"
#include "demohost/script.h"
#include "bar/preview_capture.h"
#include "platform/win32/bar/tab_strip_win32.h"
#include "platform/win32/registry_backend_win32.h"
#include "previews/adjust.h"
#include "previews/capture.h"
#include "previews/dib.h"
#include "platform/win32/ui/themed_tab_ctrl.h"
#include "settings/settings_table.h"

namespace tavlet::demo {
namespace {

constexpr int kTop = 59419, kLeft = 59420, kRight = 59421, kBottom = 59422;
constexpr char kSettingsKey[] = "Software\\Morvane\\Tavlet\\2.0 - R16";

std::string WinePath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

std::uint32_t Rgb(COLORREF c) { return (std::uint32_t{GetRValue(c)} << 16) | (GetGValue(c) << 8) | GetBValue(c); }

// `over` on `under` at `alpha` of 255, per channel, as 0xRRGGBB.
std::uint32_t Blend(std::uint32_t under, std::uint32_t over, int alpha) {
  std::uint32_t out = 0;
  for (int shift : {16, 8, 0}) {
    const int u = (under >> shift) & 0xFF, o = (over >> shift) & 0xFF;
    out |= static_cast<std::uint32_t>(u + (o - u) * alpha / 255) << shift;
  }
  return out;
}

bool Near(std::uint32_t a, std::uint32_t b, int tolerance = 3) {
  for (int shift : {16, 8, 0})
    if (std::abs(static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF)) > tolerance)
      return false;
  return true;
}

// Pixels of `shot` in `area` (the shot's coordinates) for which `test` holds.
int Count(const Picture& shot, const RECT& area, const std::function<bool(std::uint32_t)>& test) {
  int n = 0;
  for (int y = area.top; y < area.bottom; ++y)
    for (int x = area.left; x < area.right; ++x) n += test(shot.At(x, y)) ? 1 : 0;
  return n;
}

struct Setting {
  std::string section, key;
  int value;
};

class BarPaint : public ::testing::Test {
 protected:
  void SetUp() override { RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane"); }
  void TearDown() override {
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }

  void Start(const std::vector<Setting>& settings, int width = 900, int height = 700) {
    for (const Setting& s : settings) ASSERT_TRUE(WriteSetting(s.section, s.key, s.value));
    demo = std::make_unique<DemoHost>(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo->CreateFrame(width, height)) << "no display";
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error, true)) << error;
    demo->Pump(50);
  }
  port::Document Open(const std::string& name, const std::string& extra = "") {
    port::Document doc = demo->Host().OpenDescription(
        "tavlet-drawing 1\npath \"C:\\dwg\\" + name + ".dwg\"\n" + extra + "picture 160 120 background 0xFFFFFF\n",
        name + ".tdd");
    demo->Pump(20);
    return doc;
  }
  void Modify() {
    demo->Host().RunCommand("LINE");
    demo->Pump(20);
  }
  HWND Bar() const {
    HWND strip = FindPreviewStrip();
    if (strip) return GetParent(strip);
    return FindWindowExA(demo->Frame(), nullptr, "MvTavlet", nullptr);
  }
  // The window repainted and captured; `cells` in the picture's coordinates.
  Picture Shot(HWND window, std::vector<RECT>* cells = nullptr) {
    RedrawWindow(Bar(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    demo->Pump(20);
    RECT at{};
    GetWindowRect(window, &at);
    if (cells) {
      RECT cell{};
      for (int i = 0; CellOnScreen(FindPreviewStrip(), i, cell); ++i) {
        OffsetRect(&cell, -at.left, -at.top);
        cells->push_back(cell);
      }
    }
    return CaptureWindow(window);
  }

  std::unique_ptr<DemoHost> demo;
};

TEST_F(BarPaint, TheActiveCellIsTintedAndFramedAndReadOnlyWinsOverModified) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 120}});
  Open("a-plan");
  Modify();
  Open("b-detail", "read-only yes\n");
  Modify();
  Open("c-site");
  std::vector<RECT> cells;
  const Picture shot = Shot(FindPreviewStrip(), &cells);
  ASSERT_EQ(cells.size(), 3u);
  const std::uint32_t caption = Rgb(GetSysColor(COLOR_ACTIVECAPTION)), face = Rgb(GetSysColor(COLOR_BTNFACE));
  const std::uint32_t modified = Rgb(keys::Modified.intDefault), readOnly = Rgb(keys::ReadOnly.intDefault);
  for (int i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    const RECT& c = cells[i];
    const bool active = i == 2;
    // Two pixels of highlight round the active cell, and a quarter of it over the empty picture.
    EXPECT_EQ(shot.At(c.left, (c.top + c.bottom) / 2) == caption, active);
    EXPECT_EQ(shot.At(c.left + 1, (c.top + c.bottom) / 2) == caption, active);
    // The picture is the background until a capture fills it with the drawing's white.
    const std::uint32_t inside = shot.At(c.left + 10, c.top + 10);
    const bool tinted = Near(inside, Blend(face, caption, 68)) || Near(inside, Blend(0xFFFFFF, caption, 68));
    const bool plain = inside == face || inside == 0xFFFFFF;
    EXPECT_EQ(tinted, active) << std::hex << inside;
    EXPECT_EQ(plain, !active) << std::hex << inside;
    const RECT glyph{c.left + 3, c.bottom - 14, c.left + 10, c.bottom - 3};
    const int inModified = Count(shot, glyph, [&](std::uint32_t p) { return p == modified; });
    const int inReadOnly = Count(shot, glyph, [&](std::uint32_t p) { return p == readOnly; });
    EXPECT_EQ(inModified > 10, i == 0) << inModified;
    EXPECT_EQ(inReadOnly > 10, i == 1) << inReadOnly;
  }
}

// The thumbnail on the screen is the drawing's view as the host gives it, reduced
// by the pipeline to the strip's width and the view's shape, and stretched into
// the cell by the draw-DIB call: the same call draws the expected picture here.
TEST_F(BarPaint, AThumbnailIsTheHostsPictureReducedByThePipeline) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 120}});
  port::Document plan = demo->Host().OpenDescription(
      "tavlet-drawing 1\npath \"C:\\dwg\\plan.dwg\"\npicture 160 120 background 0x000000\n"
      "fill 20 20 140 100 0xFF0000\nline 0 60 160 60 0xFFFF00\nrect 10 10 150 110 0x00FF00\n",
      "plan.tdd");
  ASSERT_NE(plan, nullptr);
  port::Document other = Open("other");
  // Made active again, the plan is captured at the strip's full width (its first
  // capture came while the bar was still taking its place); then it keeps that
  // picture, untinted, while the other drawing is active.
  demo->Host().Activate(plan);
  demo->Pump(20);
  RawPicture raw;
  bool fromScreen = false;
  ASSERT_TRUE(CaptureDrawingImage(demo->Session(), false, fromScreen, raw));
  RedrawWindow(Bar(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  demo->Host().Activate(other);
  demo->Pump(20);
  std::vector<RECT> cells;
  const Picture shot = Shot(FindPreviewStrip(), &cells);
  ASSERT_EQ(cells.size(), 2u);
  const RECT& c = cells[0];
  // The label: its raised frame's light edge, found from the bottom up.
  int title = 0;
  for (int y = c.bottom - 2; y > c.top && !title; --y)
    if (shot.At(c.right - 5, y) == Rgb(GetSysColor(COLOR_3DHILIGHT))) title = c.bottom - y;
  ASSERT_GT(title, 0);
  const RECT picture{c.left + 1, c.top + 1, c.right - 1, c.bottom - title};
  const int width = picture.right - picture.left, height = picture.bottom - picture.top;
  port::ColorSettings colors;
  ASSERT_TRUE(port::Succeeded(demo->Session().EditorService()->GetCurrentColors(&colors)));
  const bool dark = bar::IsDarkBackground(static_cast<std::uint32_t>(colors.modelBackground));
  Win32Registry registry;
  const SettingsStore store(registry, kSettingsKey);
  // The strip's width and the view's shape give the picture a pixel more each
  // way than the cell shows, give or take the rounding of the shape: each near
  // size is tried. The host's picture was taken again here, and the view may have
  // moved by a pixel meanwhile, so a pixel counts as the same within a small step;
  // a picture taken at another size, or none, is far from that.
  HDRAWDIB drawDib = DrawDibOpen();
  int best = 0;
  for (int th = height; th <= height + 2; ++th) {
    const AdjustedPreview expected = AdjustPreview(raw.source, width + 2, th, dark, store);
    ASSERT_NE(expected.dib, nullptr);
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    HGDIOBJ old = SelectObject(memory, bitmap);
    DrawDibDraw(drawDib, memory, 0, 0, width, height, static_cast<BITMAPINFOHEADER*>(expected.dib),
                static_cast<unsigned char*>(expected.dib) + sizeof(BITMAPINFOHEADER), 0, 0, expected.width,
                expected.height, 0);
    int same = 0;
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x)
        same += Near(Rgb(GetPixel(memory, x, y)), shot.At(picture.left + x, picture.top + y), 56) ? 1 : 0;
    best = std::max(best, same * 1000 / (width * height));
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    DibFree(expected.dib);
  }
  DrawDibClose(drawDib);
  EXPECT_GE(best, 970) << "per mille of the cell's pixels that show the reduced picture";
}

TEST_F(BarPaint, LabelsSitBelowOrAboveThePicture) {
  const COLORREF green = RGB(0, 192, 0);
  for (int above : {0, 1}) {
    SCOPED_TRACE(above);
    Start({{"", "DockSide", kLeft}, {"", "Size", 120}, {"Colors", "TitleBack", static_cast<int>(green)},
           {"Previews", "DwgNameAbove", above}});
    Open("a-plan");
    Open("b-detail");
    std::vector<RECT> cells;
    const Picture shot = Shot(FindPreviewStrip(), &cells);
    ASSERT_EQ(cells.size(), 2u);
    const RECT& c = cells[0];
    EXPECT_EQ(shot.At(c.right - 5, c.bottom - 4) == Rgb(green), above == 0);
    EXPECT_EQ(shot.At(c.right - 5, c.top + 4) == Rgb(green), above == 1);
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
}

TEST_F(BarPaint, ACollapsedCellAcrossTheTopKeepsItsTurnedNameInItsFirstSquare) {
  const COLORREF white = RGB(255, 255, 255);
  Start({{"", "DockSide", kTop}, {"", "Size", 90}, {"Colors", "TitleBack", static_cast<int>(white)},
         {"Colors", "TitleText", static_cast<int>(RGB(0, 0, 255))}},
        700, 600);
  for (int i = 0; i < 12; ++i) Open("drawing-" + std::to_string(10 + i));
  std::vector<RECT> cells;
  const Picture shot = Shot(FindPreviewStrip(), &cells);
  ASSERT_EQ(cells.size(), 12u);
  int checked = 0;
  for (const RECT& c : cells) {
    if (c.right - c.left > 30 || Near(shot.At(c.left, c.top + 5), Rgb(GetSysColor(COLOR_ACTIVECAPTION)), 0))
      continue;
    // The name's image is as wide as the strip is long and is drawn with that
    // stride: the turned name lands in the top square, the rest keeps the label colour.
    const RECT t{c.left + 1, c.top + 1, c.right - 1, c.bottom - 1 - 15};
    const long side = t.right - t.left;
    const RECT square{t.left, t.top, t.right, t.top + side}, rest{t.left, t.top + side, t.right, t.bottom};
    EXPECT_GT(Count(shot, square, [&](std::uint32_t p) { return p != Rgb(white); }), 5);
    EXPECT_EQ(Count(shot, rest, [&](std::uint32_t p) { return p != Rgb(white); }), 0);
    ++checked;
  }
  EXPECT_GT(checked, 0);
}

TEST_F(BarPaint, TheNoticeReadsUpwardsOnTheLeftAndDownwardsOnTheRight) {
  HDC screen = GetDC(nullptr);
  HGDIOBJ old = SelectObject(screen, GetStockObject(DEFAULT_GUI_FONT));
  SIZE notice{}, latin{};
  const std::string text = "Tavlet 2.0 - 没有图纸文件载入", start = "Tavlet 2.0 - ";
  GetTextExtentPoint32A(screen, text.c_str(), static_cast<int>(text.size()), &notice);
  GetTextExtentPoint32A(screen, start.c_str(), static_cast<int>(start.size()), &latin);
  SelectObject(screen, old);
  ReleaseDC(nullptr, screen);
  const int w = notice.cx + 8, h = notice.cy;

  for (int side : {kLeft, kRight}) {
    SCOPED_TRACE(side);
    Start({{"", "DockSide", side}});
    HWND bar = Bar();
    ASSERT_NE(bar, nullptr);
    const Picture shot = Shot(bar);
    RECT client{};
    GetClientRect(bar, &client);
    InflateRect(&client, -2, -2);
    const int o = (client.right - client.left - h) / 2;
    const int x0 = client.left + o, y0 = client.top + o;
    // Rows k of the turned image, 0 at its top; the image's 8 blank pixels end the text.
    const std::uint32_t back = shot.At(x0 + 1, y0 + w + 3);
    auto ink = [&](int from, int to) {
      return Count(shot, {x0, y0 + from, x0 + h, y0 + to}, [&](std::uint32_t p) { return p != back; });
    };
    if (side == kLeft) {
      EXPECT_GT(ink(w - latin.cx, w), 10);
      EXPECT_EQ(ink(0, 8), 0);
    } else {
      EXPECT_GT(ink(0, latin.cx), 10);
      EXPECT_EQ(ink(w - 8, w), 0);
    }
    EXPECT_TRUE(Near(shot.At(client.left + 1, y0 + w + 4),
                     Blend(Rgb(GetSysColor(COLOR_BTNFACE)), Rgb(GetSysColor(COLOR_ACTIVECAPTION)), 102)));
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
}

TEST_F(BarPaint, AFailingDrawingCountPrintsThePaintsErrorLine) {
  Start({{"", "DockSide", kLeft}});
  demo->Host().ClearTranscript();
  demo->Host().Faults().Fail("AcadDocuments::Count", 0, port::kFail, "count refused");
  RedrawWindow(Bar(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  demo->Host().Faults().Clear();
  EXPECT_NE(demo->Host().Transcript().find("错误在 MvTavlet::OnPaint() - count refused\n"), std::string::npos)
      << demo->Host().Transcript();
}

// Tabs at a side, in `shot`: whether item `i` carries the selected cover (over the
// plain face or over a theme's white tab), and whether its text runs along the side.
struct TabLook {
  bool covered = false;
  bool along = false;
  bool text = false;
};

TabLook LookOfTab(const Picture& shot, HWND tabs, int i) {
  RECT r{};
  SendMessageA(tabs, TCM_GETITEMRECT, i, reinterpret_cast<LPARAM>(&r));
  InflateRect(&r, -3, -3);
  const std::uint32_t caption = Rgb(GetSysColor(COLOR_ACTIVECAPTION));
  const std::uint32_t overFace = Blend(Rgb(GetSysColor(COLOR_BTNFACE)), caption, 0x44);
  const std::uint32_t overWhite = Blend(0xFFFFFF, caption, 0x44);
  TabLook look;
  look.covered = Count(shot, r, [&](std::uint32_t p) { return Near(p, overFace) || Near(p, overWhite); }) > 20;
  RECT ink{r.right, r.bottom, r.left, r.top};
  for (int y = r.top; y < r.bottom; ++y)
    for (int x = r.left; x < r.right; ++x)
      if ((shot.At(x, y) & 0xFF) < 0x60 && ((shot.At(x, y) >> 16) & 0xFF) < 0x60)
        ink = {std::min<LONG>(ink.left, x), std::min<LONG>(ink.top, y), std::max<LONG>(ink.right, x),
               std::max<LONG>(ink.bottom, y)};
  look.text = ink.left < ink.right;
  look.along = ink.bottom - ink.top > ink.right - ink.left;
  return look;
}

bool ThemesActive() {
  HMODULE theme = LoadLibraryA("UxTheme.dll");
  if (!theme) return false;
  auto active = reinterpret_cast<BOOL(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(theme, "IsThemeActive")));
  const bool on = active && active() && LOBYTE(LOWORD(GetVersion())) >= 5;
  FreeLibrary(theme);
  return on;
}

TEST_F(BarPaint, TabsOnEverySideCoverTheSelectedTab) {
  // With themes the text stays level (the theme's tab is drawn upright and
  // turned, its text drawn afterwards); without, the owner-draw path turns it.
  const bool themed = ThemesActive();
  for (int side : {kTop, kBottom, kLeft, kRight}) {
    SCOPED_TRACE(side);
    Start({{"", "DockSide", side}, {"", "TabMode", 1}});
    Open("first-drawing");
    Open("second-drawing");
    Open("third-drawing");
    HWND tabs = FindWindowExA(Bar(), nullptr, WC_TABCONTROLA, nullptr);
    ASSERT_NE(tabs, nullptr);
    const Picture shot = Shot(tabs);
    const int selected = static_cast<int>(SendMessageA(tabs, TCM_GETCURSEL, 0, 0));
    ASSERT_EQ(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0), 3);
    for (int i = 0; i < 3; ++i) {
      const TabLook look = LookOfTab(shot, tabs, i);
      EXPECT_EQ(look.covered, i == selected) << i;
      if (i == selected) continue;
      EXPECT_TRUE(look.text) << i;
      EXPECT_EQ(look.along, !themed && (side == kLeft || side == kRight)) << i;
    }
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
}

// A tab control of our own, owner-drawn by DrawTab, with the theme turned off.
LRESULT CALLBACK TabOwnerProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_DRAWITEM) {
    win32::DrawTab(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    return TRUE;
  }
  return DefWindowProcA(hwnd, message, wParam, lParam);
}

TEST(OwnerDrawnTabs, TurnTheirTextForASideAndCoverTheSelectedOne) {
  WNDCLASSA kind{};
  kind.lpfnWndProc = TabOwnerProcedure;
  kind.hInstance = GetModuleHandleA(nullptr);
  kind.lpszClassName = "TavletTabOwnerTest";
  kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  RegisterClassA(&kind);
  struct Case {
    DWORD style;
    bool along;
  };
  for (const Case c : {Case{0, false}, Case{TCS_BOTTOM, false}, Case{TCS_VERTICAL, true},
                       Case{TCS_VERTICAL | TCS_RIGHT, true}}) {
    SCOPED_TRACE(c.style);
    // Topmost, so that no window left by an earlier test hides it from the capture.
    HWND owner = CreateWindowExA(WS_EX_TOPMOST, "TavletTabOwnerTest", "", WS_POPUP | WS_VISIBLE, 50, 50, 400, 400,
                                 nullptr, nullptr, kind.hInstance, nullptr);
    HWND tabs = CreateWindowExA(0, WC_TABCONTROLA, "", WS_CHILD | WS_VISIBLE | TCS_OWNERDRAWFIXED | TCS_MULTILINE | c.style,
                                0, 0, 400, 400, owner, nullptr, kind.hInstance, nullptr);
    SendMessageA(tabs, WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(DEFAULT_GUI_FONT)), FALSE);
    for (const char* name : {"first-drawing", "second-drawing", "third-drawing"}) {
      TCITEMA item{};
      item.mask = TCIF_TEXT;
      item.pszText = const_cast<char*>(name);
      SendMessageA(tabs, TCM_INSERTITEMA, 10, reinterpret_cast<LPARAM>(&item));
    }
    SendMessageA(tabs, TCM_SETCURSEL, 1, 0);
    win32::ThemedTabCtrl* control = win32::ThemedTabCtrl::Attach(tabs);
    ASSERT_NE(control, nullptr);
    control->themedDrawing = false;
    // What a window draws reaches the screen a moment later: paint, let it settle, then read.
    RedrawWindow(owner, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    for (const DWORD end = GetTickCount() + 100; GetTickCount() < end; Sleep(5)) {
      MSG message;
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
    const Picture shot = CaptureWindow(tabs);
    for (int i = 0; i < 3; ++i) {
      const TabLook look = LookOfTab(shot, tabs, i);
      EXPECT_EQ(look.covered, i == 1) << i;
      if (i == 1) continue;
      EXPECT_TRUE(look.text) << i;
      EXPECT_EQ(look.along, c.along) << i;
    }
    DestroyWindow(owner);
  }
}

TEST_F(BarPaint, BrokenFontsAndColoursOutOfRangeGiveTheDefaults) {
  // The label's height (its raised frame's top, counted from the cell's bottom)
  // with the default font, then with the stored fonts cut short.
  long heights[2] = {};
  for (int broken : {0, 1}) {
    SCOPED_TRACE(broken);
    if (broken) {
      HKEY key = nullptr;
      ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kSettingsKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key,
                                nullptr),
                ERROR_SUCCESS);
      const BYTE shortFont[10] = {0xC4, 0xFF, 0xFF, 0xFF};
      RegSetValueExA(key, "LabelFont", 0, REG_BINARY, shortFont, sizeof shortFont);
      RegSetValueExA(key, "TabFont", 0, REG_BINARY, shortFont, sizeof shortFont);
      RegCloseKey(key);
    }
    Start({{"", "DockSide", kLeft}, {"", "Size", 120}, {"Colors", "TitleBack", broken ? 0x01FFFFFF : 0x00C0C0C0},
           {"Colors", "Background", broken ? -1 : 0x00FFFFFF}, {"Colors", "Modified", broken ? 0x7F000000 : 0xFF}});
    Open("a-plan");
    Modify();
    Open("b-detail");
    std::vector<RECT> cells;
    const Picture shot = Shot(FindPreviewStrip(), &cells);
    ASSERT_EQ(cells.size(), 2u);
    const RECT& c = cells[0];
    const std::uint32_t face = Rgb(GetSysColor(COLOR_BTNFACE));
    if (broken) {
      EXPECT_EQ(shot.At(c.right - 5, c.bottom - 4), face);  // the label's default colour
      EXPECT_EQ(shot.At(c.left + 10, cells[1].bottom + 10), face);  // the background's, below the cells
      const RECT glyph{c.left + 3, c.bottom - 14, c.left + 10, c.bottom - 3};
      EXPECT_GT(Count(shot, glyph, [](std::uint32_t p) { return p == Rgb(keys::Modified.intDefault); }), 10);
    }
    for (long y = c.bottom - 2; y > c.top; --y)
      if (shot.At(c.right - 5, static_cast<int>(y)) == Rgb(GetSysColor(COLOR_3DHILIGHT))) {
        heights[broken] = c.bottom - y;
        break;
      }
    demo.reset();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }
  EXPECT_GE(heights[0], 15);
  EXPECT_EQ(heights[1], heights[0]);
}

TEST_F(BarPaint, ManyPaintsLeaveNoGdiObjectsBehind) {
  Start({{"", "DockSide", kLeft}, {"", "Size", 120}});
  Open("a-plan");
  Modify();
  Open("b-detail", "read-only yes\n");
  const DWORD before = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  if (before == 0) GTEST_SKIP() << "this system does not count GDI objects";
  for (int i = 0; i < 200; ++i) {
    RedrawWindow(Bar(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  }
  demo->Pump(20);
  EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), before + 2);
}

}  // namespace
}  // namespace tavlet::demo
