#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"
#include "sheetsets/sheet_set_dialog.h"
#include "ui/resizable_dialog.h"

namespace tavlet::ui {
namespace {

using Lines = std::vector<std::string>;

class RecordingWindow final : public WindowPort {
 public:
  bool IsWindow() override { return exists; }
  bool GetWindowRect(ScreenRect& r) override {
    r = rect;
    return exists;
  }
  bool IsZoomed() override { return zoomed; }
  void ShowWindow(int command) override { calls.push_back("show " + std::to_string(command)); }
  void SetWindowPos(int x, int y, int w, int h) override {
    calls.push_back("pos " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(w) + " " +
                    std::to_string(h));
  }
  bool exists = true;
  bool zoomed = false;
  ScreenRect rect{10, 20, 410, 320};
  Lines calls;
};

const std::string kRoot = "Software\\Morvane\\Tavlet\\2.0 - R16";

ResizableDialogState Dialog(const std::string& root = kRoot) {
  ResizableDialogState state;
  state.settingsRoot = root;
  state.settingsSection = "SheetSetDialog";
  return state;
}

// The placement rules themselves are the settings store's; here only where the
// dialog keeps it: the section's default value, read back in a second run.
TEST(ResizableDialog, PlacementIsWrittenUnderItsSectionAndReadBack) {
  MemoryRegistry registry;
  RecordingWindow window;
  EXPECT_FALSE(Dialog().RestorePlacement(registry, window));
  window.zoomed = true;
  EXPECT_TRUE(Dialog().SavePlacement(registry, window));
  RegValue value;
  ASSERT_TRUE(registry.QueryValue(kRoot + "\\SheetSetDialog", "", value));
  EXPECT_EQ(value.bytes, std::string("10:20:410:320:MAXIMIZED") + '\0');
  EXPECT_TRUE(Dialog().RestorePlacement(registry, window));
  EXPECT_EQ(window.calls, Lines{"show 3"});
}

TEST(ResizableDialog, AnEmptyRootStoresNothing) {
  MemoryRegistry registry;
  ResizableDialogState state = Dialog("");
  RecordingWindow window;
  EXPECT_FALSE(state.SavePlacement(registry, window));
  EXPECT_FALSE(state.SetInt(registry, "LastTab", 3));
  EXPECT_EQ(state.GetInt(registry, "LastTab", 7), 7);
  EXPECT_EQ(state.GetString(registry, "Name", "def"), "def");
  EXPECT_FALSE(registry.KeyExists("\\SheetSetDialog"));
  // With a root the typed values live under root\section.
  state = Dialog();
  EXPECT_TRUE(state.SetInt(registry, "LastTab", 3));
  EXPECT_TRUE(state.SetString(registry, "Name", "工作集"));
  EXPECT_TRUE(state.SetDouble(registry, "Ratio", 0.5));
  EXPECT_EQ(state.GetInt(registry, "LastTab", 7), 3);
  EXPECT_EQ(state.GetString(registry, "Name", ""), "工作集");
  EXPECT_EQ(state.GetDouble(registry, "Ratio", 0), 0.5);
  EXPECT_EQ(SettingsStore(registry, kRoot).GetInt("SheetSetDialog", "LastTab", 0), 3);
}

TEST(ResizableDialog, TheDraggedEdgeStopsAtTheMinimum) {
  const Rect start{100, 100, 150, 130};  // 50 by 30, below 200 by 120
  struct Case {
    unsigned edge;
    Rect expected;
  } cases[] = {
      {kSizeLeft, {-50, 100, 150, 130}},      {kSizeRight, {100, 100, 300, 130}},
      {kSizeTop, {100, 10, 150, 130}},        {kSizeBottom, {100, 100, 150, 220}},
      {kSizeTopLeft, {-50, 10, 150, 130}},    {kSizeTopRight, {100, 10, 300, 130}},
      {kSizeBottomLeft, {-50, 100, 150, 220}}, {kSizeBottomRight, {100, 100, 300, 220}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.edge);
    ResizableDialogState state;
    state.minWidth = 200;
    state.minHeight = 120;
    Rect r = start;
    EXPECT_TRUE(state.OnSizing(c.edge, r));
    EXPECT_EQ(r, c.expected);
    // Big enough: nothing moves.
    Rect big{0, 0, 500, 500};
    EXPECT_FALSE(state.OnSizing(c.edge, big));
  }
  // No minimum set, and a rectangle turned inside out (a huge unsigned width).
  Rect r = start;
  EXPECT_FALSE(ApplyMinimumSize(kSizeTopLeft, r, 0, 0));
  Rect inverted{150, 130, 100, 100};
  EXPECT_FALSE(ApplyMinimumSize(kSizeBottomRight, inverted, 200, 120));
  // Only the short side moves.
  Rect wide{0, 0, 400, 10};
  EXPECT_TRUE(ApplyMinimumSize(kSizeTopLeft, wide, 200, 120));
  EXPECT_EQ(wide, (Rect{0, -110, 400, 10}));
}

TEST(DialogUnits, ConvertAsMapDialogRectDoes) {
  FontDialogUnits units(6, 13);
  struct Case {
    long n, x, y;
  } cases[] = {{0, 0, 0}, {1, 2, 2}, {4, 6, 7}, {15, 23, 24}, {50, 75, 81}, {101, 152, 164}, {150, 225, 244}, {200, 300, 325}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.n);
    EXPECT_EQ(units.ToPixelsX(c.n), c.x);
    EXPECT_EQ(units.ToPixelsY(c.n), c.y);
  }
  EXPECT_EQ(MulDiv(-3, 6, 4), -5);  // rounded half away from zero
  EXPECT_EQ(MulDiv(1, 1, 0), -1);
}

TEST(DialogLayout, RowsGroupsAndHalves) {
  const Rect client = Deflate({0, 0, 300, 200}, 3);
  EXPECT_EQ(client, (Rect{3, 3, 297, 197}));
  RowWalker rows(client, 24);
  EXPECT_EQ(rows.NextRow(), (Rect{3, 3, 297, 27}));
  const Rect second = rows.NextRow();
  EXPECT_EQ(second, (Rect{3, 27, 297, 51}));
  EXPECT_EQ(ChildRect(second.left, second.top, second.right, second.bottom, 1), (Rect{4, 28, 296, 50}));
  EXPECT_EQ(rows.Rest(), (Rect{3, 51, 297, 197}));
  EXPECT_EQ(GroupInterior(rows.Rest()), (Rect{11, 69, 289, 197}));
  EXPECT_EQ(LeftHalf(second), (Rect{3, 27, 150, 51}));
  EXPECT_EQ(RightHalf(second), (Rect{150, 27, 297, 51}));
}

TEST(DialogLayout, SheetSetDialog) {
  FontDialogUnits units(6, 13);
  const sheetsets::SheetSetDialogLayout layout = sheetsets::LayOutSheetSetDialog({0, 0, 400, 300}, units);
  // Inside 2 pixels; a strip of 24 pixels; Cancel the last 75, OK the 77 before.
  EXPECT_EQ(layout.tree, (Rect{2, 2, 398, 274}));
  EXPECT_EQ(layout.cancel, (Rect{324, 275, 397, 297}));
  EXPECT_EQ(layout.ok, (Rect{247, 275, 322, 297}));

  // The minimum is 150 by 200 dialog units; with no component the tree says so.
  MemoryFileSystem files;
  sim::SimHost host(files);
  sheetsets::SheetSetDialog dialog({nullptr, files, *host.Boxes(), "C:\\m.arx"}, "C:\\a.dst", kRoot);
  dialog.OnInitDialog(units);
  EXPECT_EQ(dialog.state.minWidth, 225u);
  EXPECT_EQ(dialog.state.minHeight, 325u);
  EXPECT_EQ(dialog.state.settingsSection, "SheetSetDialog");
  EXPECT_EQ(dialog.tree.Items().Outline(), "不能加载 COM 界面\n");
  dialog.OnOK();
  EXPECT_TRUE(dialog.selectedFiles.empty());
}

}  // namespace
}  // namespace tavlet::ui
