#include "bar/preview_capture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "bar/strip_actions.h"
#include "host/window_system.h"
#include "menus/bar_menu.h"
#include "menus/context_menu.h"
#include "menus/menu_ids.h"
#include "raster/oracle.h"
#include "settings/settings_table.h"
#include "sim/module_harness.h"

namespace tavlet::bar {
namespace {

// Drawings a, b and c on the simulated host, c active, and the strip docked at the
// top: 68 pixels across with a 16-pixel label, so a picture is 52 high and, for
// the host's 320 x 240 view, 69 wide.
class CaptureTest : public ::testing::Test {
 public:
  void SetUp() override { Start(); }

  void Start() {
    a = h.OpenDrawing("C:\\d\\a.dwg");
    b = h.OpenDrawing("C:\\d\\b.dwg");
    c = h.OpenDrawing("C:\\d\\c.dwg");
    for (port::Document doc : {a, b, c}) {
      h.host.Find(doc)->content.picture = {8, 6, 0x000000, {{sim::PictureItem::Kind::Line, 0, 0, 7, 5, 0xFFFF00}}};
    }
    ASSERT_EQ(h.Load(), 0);
    bar = h.Bar();
    layout.SetDockSide(kDockTop);
    layout.clientWidth = 600;
    layout.clientHeight = 70;
    layout.previewExtent = 68;
    layout.titleHeight = 16;
    layout.viewAspect = 320.0 / 240.0;
  }

  DocEntry& Entry(port::Document doc) {
    DocEntry* entry = bar->Strip().FindEntry(doc);
    EXPECT_NE(entry, nullptr);
    return *entry;
  }
  // What the strip's paint does before drawing each cell.
  void Paint() {
    for (const auto& entry : bar->Strip().Entries())
      if (entry->previewDirty) UpdatePreview(*bar, layout, entry.get());
  }
  int Shots() { return h.host.Faults().Count("Graphics::TakeScreenShot"); }
  int Copies() { return h.host.Faults().Count("Graphics::CopyViewWindow"); }
  // Every drawing captured once, c active again.
  void CaptureAll() {
    RefreshAllPreviews(*bar, PreviewCapture(*bar, layout));
    for (port::Document doc : {a, b, c}) ASSERT_FALSE(Entry(doc).previewDirty);
  }

  sim::ModuleHarness h;
  port::Document a = nullptr, b = nullptr, c = nullptr;
  BarModel* bar = nullptr;
  StripLayout layout;
};

TEST_F(CaptureTest, OnlyTheActiveDrawingIsEverCaptured) {
  Paint();
  EXPECT_EQ(Shots(), 1);
  EXPECT_FALSE(Entry(c).previewDirty);
  EXPECT_EQ(Entry(c).previewWidth, 69);
  EXPECT_EQ(Entry(c).previewHeight, 52);
  EXPECT_EQ(Entry(c).previewDib.size(), 40u + 208u * 52u);
  for (port::Document doc : {a, b}) {
    EXPECT_TRUE(Entry(doc).previewDirty);
    EXPECT_TRUE(Entry(doc).previewDib.empty());
  }
  Paint();  // nothing is stale that can be taken
  EXPECT_EQ(Shots(), 1);

  // A stale entry handed over while another drawing is active stays as it was.
  UpdatePreview(*bar, layout, &Entry(a));
  EXPECT_TRUE(Entry(a).previewDirty);
  // A null entry is the active drawing's.
  Entry(c).previewDirty = true;
  UpdatePreview(*bar, layout, nullptr);
  EXPECT_FALSE(Entry(c).previewDirty);
  EXPECT_EQ(Shots(), 2);

  // The walk's own activation of c makes c stale again before its turn.
  CaptureAll();
  EXPECT_EQ(h.host.MdiActive(), c);
  EXPECT_EQ(Shots(), 5);
}

// A fresh module for each case of a table.
struct World {
  struct Fresh : CaptureTest {
    void TestBody() override {}
  } t;
  World() { t.SetUp(); }
};

TEST(CaptureTable, EveryEventOfTheDirtyTable) {
  constexpr unsigned kWheel = host::kWmMouseWheel;
  struct Case {
    const char* what;
    int autoUpdate;
    std::function<void(CaptureTest&)> event;
    port::Document CaptureTest::*drawing;  // whose entry is looked at
    bool dirty, modified;
    std::vector<std::string> strip;  // the strip's calls, in order
  };
  const std::string redraw = "RedrawWindow PreviewStrip 0x105";
  const std::string cell = "RedrawWindow PreviewStrip 0,0,0,0 0x105";
  const Case cases[] = {
      {"command with a change", 1, [](CaptureTest& t) { t.h.host.RunCommand("LINE"); }, &CaptureTest::c, true,
       true, {redraw}},
      {"command with a change, updates off", 0, [](CaptureTest& t) { t.h.host.RunCommand("LINE"); },
       &CaptureTest::c, false, true, {redraw}},
      {"command without a change", 1, [](CaptureTest& t) { t.h.host.RunCommand("REDRAW", false); },
       &CaptureTest::c, false, false, {redraw}},
      {"save after a change", 1,
       [](CaptureTest& t) {
         t.h.host.RunCommand("LINE");
         t.Paint();
         t.h.host.RunCommand("QSAVE");
       },
       // the save's end of command and its completion each repaint
       &CaptureTest::c, false, false, {redraw, redraw, redraw}},
      {"activation, last picture a screen shot", 1, [](CaptureTest& t) { t.h.host.Activate(t.a); },
       &CaptureTest::a, true, false, {redraw}},
      {"activation, updates off", 0, [](CaptureTest& t) { t.h.host.Activate(t.a); }, &CaptureTest::a, false,
       false, {redraw}},
      {"activation, last picture a screen copy", 1,
       [](CaptureTest& t) {
         t.Entry(t.a).capturedFromScreen = true;
         t.h.host.Activate(t.a);
       },
       &CaptureTest::a, true, false, {redraw, "SetTimer PreviewStrip 100 800"}},
      {"timer 100 repaints only", 1, [](CaptureTest& t) { OnStripTimer(*t.bar, kActivationTimer); },
       &CaptureTest::c, false, false, {"KillTimer PreviewStrip 100", redraw}},
      {"wheel in the view, then timer 101", 1,
       [](CaptureTest& t) {
         t.h.host.PostWindowMessage(t.bar->CurrentDrawingView(), kWheel);
         OnStripTimer(*t.bar, kZoomTimer);
       },
       &CaptureTest::c, true, false, {"SetTimer PreviewStrip 101 800", "KillTimer PreviewStrip 101", cell}},
      {"timer 101, updates off", 0, [](CaptureTest& t) { OnStripTimer(*t.bar, kZoomTimer); }, &CaptureTest::c,
       false, false, {"KillTimer PreviewStrip 101"}},
      {"lock on", 1, [](CaptureTest& t) { t.bar->TogglePreviewLock(t.c); }, &CaptureTest::c, false, false,
       {cell}},
      {"lock on, then a change", 1,
       [](CaptureTest& t) {
         t.bar->TogglePreviewLock(t.c);
         t.h.host.RunCommand("LINE");
       },
       &CaptureTest::c, true, true, {cell, redraw}},
      {"lock on and off", 1,
       [](CaptureTest& t) {
         t.bar->TogglePreviewLock(t.c);
         t.bar->TogglePreviewLock(t.c);
       },
       &CaptureTest::c, true, false, {cell, cell}},
      {"refresh of one preview, updates off", 0,
       [](CaptureTest& t) {
         t.h.Module()->Menu()->Operations().contextDocument = t.a;
         t.h.Module()->Menu()->Menu().OnCommand(menus::ids::RefreshPreview);
       },
       &CaptureTest::a, true, false, {redraw, cell, redraw}},
      {"refresh of all previews, updates off", 0,
       [](CaptureTest& t) { t.h.Module()->Menu()->Menu().OnCommand(menus::ids::RefreshAllPreviews); },
       &CaptureTest::b, true, false, {redraw, cell, redraw, cell, redraw, cell}},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    World world;
    CaptureTest& t = world.t;
    t.CaptureAll();
    t.bar->SetAutoUpdatePreviews(k.autoUpdate);
    t.h.windows.ClearLog();
    k.event(t);
    const DocEntry& entry = t.Entry(t.*k.drawing);
    EXPECT_EQ(entry.previewDirty, k.dirty);
    EXPECT_EQ(entry.modified, k.modified);
    std::vector<std::string> strip;
    for (const std::string& call : t.h.windows.Log())
      if (call.find("PreviewStrip") != std::string::npos) strip.push_back(call);
    EXPECT_EQ(strip, k.strip);

    // The next paint with that drawing active takes exactly the stale picture.
    t.h.host.Activate(t.*k.drawing);
    t.Entry(t.*k.drawing).previewDirty = k.dirty;
    const int before = t.Shots();
    t.Paint();
    EXPECT_EQ(t.Shots() - before, k.dirty && !entry.previewLocked ? 1 : 0);
  }
}

TEST_F(CaptureTest, AFailedPictureKeepsTheOldOneAndStaysStale) {
  Paint();
  const std::vector<unsigned char> before = Entry(c).previewDib;
  ASSERT_FALSE(before.empty());
  struct Case {
    const char* what;
    std::function<void(CaptureTest&)> fault;
  };
  const Case cases[] = {
      {"the screen shot fails", [](CaptureTest& t) { t.h.host.Faults().Fail("Graphics::TakeScreenShot", 1, port::kFail, "no"); }},
      {"the host gives no screen shot", [](CaptureTest& t) { t.h.host.SetScreenShotUnavailable(true); }},
      {"the screen shot is empty", [](CaptureTest& t) { t.h.host.SetViewSize(0, 0); }},
      {"the strip has no size yet", [](CaptureTest& t) { t.layout.previewExtent = 0; }},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    h.host.Faults().Clear();
    h.host.SetScreenShotUnavailable(false);
    h.host.SetViewSize(320, 240);
    layout.previewExtent = 68;
    Entry(c).previewDirty = true;
    k.fault(*this);
    Paint();
    EXPECT_TRUE(Entry(c).previewDirty);
    EXPECT_EQ(Entry(c).previewDib, before);
  }
  // The next paint that gets a picture takes it.
  h.host.Faults().Clear();
  h.host.SetScreenShotUnavailable(false);
  h.host.SetViewSize(320, 240);
  layout.previewExtent = 68;
  Paint();
  EXPECT_FALSE(Entry(c).previewDirty);
}

TEST_F(CaptureTest, ATargetWithoutAreaLeavesNoPictureAndNothingStale) {
  Paint();
  ASSERT_FALSE(Entry(c).previewDib.empty());
  layout.previewExtent = 16;  // the label takes it all
  Entry(c).previewDirty = true;
  Paint();
  EXPECT_FALSE(Entry(c).previewDirty);
  EXPECT_TRUE(Entry(c).previewDib.empty());
  EXPECT_EQ(Entry(c).previewHeight, 52);  // the last picture's size stays

  // Down a vertical strip the label takes nothing: the width is the extent.
  layout.SetDockSide(kDockLeft);
  layout.clientWidth = 70;
  layout.clientHeight = 600;
  Entry(c).previewDirty = true;
  Paint();
  EXPECT_EQ(Entry(c).previewWidth, 16);
  EXPECT_EQ(Entry(c).previewHeight, 12);
  EXPECT_FALSE(Entry(c).previewDib.empty());
}

TEST(CaptureRules, TheLargestByteDecidesADarkBackground) {
  struct Case {
    std::uint32_t color;
    bool dark;
  };
  const Case cases[] = {{0x3F3F3F, true}, {0x404040, false}, {0x0000FF, false}, {0x000000, true},
                        {0x3F0000, true}, {0x400000, false}, {0x00003F, true}, {0xFF3F3F3F, true}};
  for (const Case& k : cases) EXPECT_EQ(IsDarkBackground(k.color), k.dark) << std::hex << k.color;
}

TEST(CaptureRules, TheTargetSizeFollowsTheStripsRun) {
  struct Case {
    const char* what;
    int dockSide;
    bool floating;
    long clientWidth, clientHeight;
    int showName;
    double aspect;
    long width, height;
  };
  // previewExtent 68, titleHeight 16 throughout.
  const Case cases[] = {
      {"top, label shown", kDockTop, false, 600, 70, 1, 4.0 / 3.0, 69, 52},
      {"bottom, label hidden", kDockBottom, false, 600, 70, 0, 4.0 / 3.0, 90, 68},
      {"beside the command line", kDockCommandLeft, false, 300, 70, 1, 16.0 / 9.0, 92, 52},
      {"left: the label takes nothing", kDockLeft, false, 70, 600, 1, 16.0 / 9.0, 68, 38},
      {"right, portrait view", kDockRight, false, 70, 600, 1, 0.5, 68, 136},
      {"floating, wider than high", kDockLeft, true, 600, 70, 1, 16.0 / 9.0, 92, 52},
      {"floating, higher than wide", kDockTop, true, 70, 600, 1, 16.0 / 9.0, 68, 38},
      {"an aspect never given", kDockLeft, false, 70, 600, 1, 0.0, 68, 0},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    StripLayout layout;
    layout.SetDockSide(k.dockSide);
    layout.floating = k.floating;
    layout.clientWidth = k.clientWidth;
    layout.clientHeight = k.clientHeight;
    layout.previewExtent = 68;
    layout.titleHeight = 16;
    layout.viewAspect = k.aspect;
    BarSettings settings;
    settings.ShowDwgName = k.showName;
    EXPECT_EQ(PreviewTargetSize(layout, settings), (CellExtent{k.width, k.height}));
  }
}

// The picture as the host hands it out, red first.
oracle::Buffer HostPicture(sim::SimHost& host) {
  port::ScreenImage* image = nullptr;
  EXPECT_EQ(host.GraphicsService()->TakeScreenShot(&image), port::kOk);
  long width = 0, height = 0, depth = 0;
  image->Size(&width, &height, &depth);
  oracle::Buffer rgb(static_cast<int>(width), static_cast<int>(height), 3);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const unsigned char* p = nullptr;
      image->PixelAddress(x, y, &p);
      for (int k = 0; k < 3; ++k) rgb.At(x, y, k) = p[2 - k];
    }
  }
  image->Release();
  return rgb;
}

// Reduce, gamma, sharpen, then the packed rows bottom-up, blue first.
std::vector<unsigned char> Thumbnail(const oracle::Buffer& raw, int width, int height, double gamma, int sharpness) {
  oracle::Buffer reduced(width, height, 3);
  oracle::Resize(raw, reduced);
  if (gamma != 0.0)
    for (auto& v : reduced.pixels) v = oracle::GammaEntry(v, gamma);
  oracle::Buffer sharp = reduced;
  if (sharpness > 0) oracle::Sharpen(reduced, sharp, sharpness);
  const int stride = (width * 24 + 31) / 32 * 4;
  std::vector<unsigned char> dib(40 + static_cast<std::size_t>(stride) * height, 0);
  const std::uint32_t header[] = {40, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)};
  std::memcpy(dib.data(), header, sizeof header);
  dib[12] = 1;
  dib[14] = 24;
  const std::uint32_t image = static_cast<std::uint32_t>(stride * height);
  std::memcpy(&dib[20], &image, 4);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (int k = 0; k < 3; ++k) dib[40 + static_cast<std::size_t>(height - 1 - y) * stride + x * 3 + k] = sharp.At(x, y, 2 - k);
  return dib;
}

TEST_F(CaptureTest, TheStoredThumbnailIsTheHostsPictureThroughThePipeline) {
  h.host.Find(c)->content.picture = {40, 30, 0xFFFFFF,
                                     {{sim::PictureItem::Kind::Line, 0, 0, 39, 29, 0x102030},
                                      {sim::PictureItem::Kind::Rect, 5, 5, 30, 20, 0xC00000},
                                      {sim::PictureItem::Kind::Fill, 10, 10, 12, 25, 0x00A0FF}}};
  port::ColorSettings colors;
  colors.modelBackground = 0x3F3F3F;
  colors.layoutBackground = 0x404040;
  h.host.SetColors(colors);
  bar->ReloadBackgroundColors();
  h.store.SetDouble("BlackBack", "Gamma", 2.5);
  h.store.SetDouble("WhiteBack", "Gamma", 0.5);
  h.store.SetInt("WhiteBack", "Sharpness", 60);
  struct Case {
    const char* what;
    const char* layout;
    bool paperSpace, dark;
    double gamma;
    int sharpness;
  };
  const Case cases[] = {{"model space, dark", "Model", false, true, 2.5, 20},
                        {"layout, light", "Layout1", true, false, 0.5, 60}};
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    h.host.Find(c)->content.layouts = {"Layout1"};
    h.host.Find(c)->content.activeLayout = k.layout;
    Entry(c).previewDirty = true;
    Paint();
    EXPECT_EQ(Entry(c).paperSpace, k.paperSpace);
    EXPECT_EQ(Entry(c).darkBackground, k.dark);
    EXPECT_FALSE(Entry(c).capturedFromScreen);
    EXPECT_EQ(Entry(c).previewDib, Thumbnail(HostPicture(h.host), 69, 52, k.gamma, k.sharpness));
  }
}

TEST(CaptureTable, AShadedViewIsCopiedFromTheViewWindow) {
  struct Case {
    const char* what;
    std::string activeLayout;
    int cvport;
    std::vector<sim::ViewportDesc> viewports;
    bool copied;
  };
  const Case cases[] = {
      {"2D wireframe model space", "Model", 2, {{"Model", 2, 0}}, false},
      {"shaded model space", "Model", 2, {{"Model", 2, 3}}, true},
      {"layout, paper space current, all wireframe", "Layout1", 1, {{"Layout1", 2, 0}, {"Layout1", 3, 0}}, false},
      {"layout, paper space current, one shaded", "Layout1", 1, {{"Layout1", 2, 0}, {"Layout1", 3, 5}}, true},
      {"layout, a wireframe viewport current", "Layout1", 2, {{"Layout1", 2, 0}, {"Layout1", 3, 5}}, false},
      {"layout, the shaded viewport current", "Layout1", 3, {{"Layout1", 2, 0}, {"Layout1", 3, 5}}, true},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    World world;
    CaptureTest& t = world.t;
    sim::DrawingDescription& content = t.h.host.Find(t.c)->content;
    content.layouts = {"Layout1"};
    content.activeLayout = k.activeLayout;
    content.cvport = k.cvport;
    content.viewports = k.viewports;
    t.Paint();
    EXPECT_FALSE(t.Entry(t.c).previewDirty);
    EXPECT_EQ(t.Entry(t.c).capturedFromScreen, k.copied);
    EXPECT_EQ(t.Copies(), k.copied ? 1 : 0);
    EXPECT_EQ(t.Shots(), k.copied ? 0 : 1);
    EXPECT_EQ(t.Entry(t.c).previewDib.size(), 40u + 208u * 52u);
    EXPECT_EQ(t.h.host.OpenDatabaseObjects(), 0);
  }
}

}  // namespace
}  // namespace tavlet::bar
