#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "previews/dwg_thumbnail.h"
#include "previews/file_preview_panel.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

// Inside the writer's namespace, so that its names need no qualification.
namespace tavlet::testing {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF;
using Calls = std::vector<std::string>;
const std::string kEmptyDrawing = MakeDwg(DwgLayout{});

std::string Text(const PreviewRect& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom);
}

std::string Hex(std::uint32_t color) {
  char text[16];
  std::snprintf(text, sizeof text, "%06x", color);
  return text;
}

// Records what a thumbnail or panel paint asked for, one line per call.
class RecordingCanvas : public PanelCanvas {
 public:
  std::vector<std::string> calls;

  void SaveState() override { calls.push_back("save"); }
  void RestoreState() override { calls.push_back("restore"); }
  void FillRect(const PreviewRect& r, std::uint32_t color) override { Add("fill", r, Hex(color)); }
  int TextHeight(std::string_view) override { return 12; }
  void DrawTextLine(const PreviewRect& r, std::string_view line, std::uint32_t color, std::uint32_t back) override {
    Add("text", r, Hex(color) + "/" + Hex(back) + " " + std::string(line));
  }
  void DrawDib(const PreviewRect& r, const DibView& dib, StretchMode mode) override {
    Add("dib", r, std::to_string(dib.width) + "x" + std::to_string(dib.height) + " mode " +
                      std::to_string(static_cast<int>(mode)));
  }
  void Draw3dRect(const PreviewRect& r) override { Add("frame", r, ""); }
  void FillFace(const PreviewRect& r) override { Add("face", r, ""); }
  void DrawImage(const PanelImage&, const PreviewRect& r) override { Add("image", r, ""); }

 private:
  void Add(const char* what, const PreviewRect& r, const std::string& rest) {
    calls.push_back(what + (" " + Text(r)) + (rest.empty() ? "" : " ") + rest);
  }
};

DibShape PaletteWithBackground(int backgroundEntry, std::uint32_t background) {
  DibShape shape;
  for (int i = 0; i < 256; ++i) shape.palette.push_back(PaletteColor(i));
  shape.palette[backgroundEntry] = background;
  return shape;
}

// Where the file's background sits: entry 245 before release 15, 225 from then on.
int BackgroundEntryOf(const std::string& version) { return version == "AC1014" || version == "AC1009" ? 245 : 225; }

TEST(DwgRecolor, EachRuleWritesItsEntries) {
  const std::uint32_t grey = 0x808080;
  struct Case {
    const char* version;
    std::uint8_t formatByte;
    std::uint32_t fileBackground;
    std::uint32_t background;
    std::map<int, std::uint32_t> colours;  // index -> colour after the load
  } cases[] = {
      // 2004, format byte unknown, on black
      {"AC1018", 0x10, 0x123456, 0, {{226, kWhite}, {245, kWhite}, {255, kWhite}, {0, 0}, {164, 0}}},
      // 2004, a dark file on grey
      {"AC1018", 0x19, 0x123456, grey, {{245, 0}, {255, 0}, {226, grey}, {0, grey}, {164, grey}}},
      // 2007, a white file on black
      {"AC1021", 0x1B, kWhite, 0, {{226, kWhite}, {255, kWhite}, {245, 0}, {0, 0}, {164, 0}}},
      // 2000, a white file on white
      {"AC1015", 0x17, kWhite, kWhite, {{226, 0}, {255, 0}, {245, kWhite}, {0, kWhite}, {164, kWhite}}},
      // Release 14 and 12 keep their background in entry 245 and recolour fewer entries.
      {"AC1014", 0x17, 0x123456, 0, {{225, kWhite}, {255, kWhite}, {0, 0}}},
      {"AC1009", 0x17, kWhite, grey, {{0, 0}, {255, 0}, {225, grey}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.version) + " on " + std::to_string(c.background));
    DibShape dib = PaletteWithBackground(BackgroundEntryOf(c.version), c.fileBackground);
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap(c.version, dib, c.formatByte));
    DwgThumbnail thumbnail(fs);
    thumbnail.SetRecolor(true);
    thumbnail.SetInitialBackground(c.background);
    ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
    for (int i = 0; i < 256; ++i) {
      auto it = c.colours.find(i);
      EXPECT_EQ(thumbnail.DibColor(i), it == c.colours.end() ? dib.palette[i] : it->second) << i;
    }
  }
}

TEST(DwgRecolor, SetBackgroundRecoloursOnlyOnChangeAndNeverPastASmallPalette) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", PaletteWithBackground(225, kWhite), 0x19));
  DwgThumbnail thumbnail(fs);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  EXPECT_EQ(thumbnail.DibColor(0), PaletteColor(0));  // recolouring is off by default
  thumbnail.SetBackground(0);
  EXPECT_EQ(thumbnail.DibColor(0), PaletteColor(0));
  thumbnail.SetBackground(0x00FF00);
  EXPECT_EQ(thumbnail.backgroundColor(), 0x00FF00u);
  EXPECT_EQ(thumbnail.DibColor(0), 0x00FF00u);
  EXPECT_EQ(thumbnail.DibColor(245), 0x00FF00u);
  EXPECT_EQ(thumbnail.DibColor(255), 0u);
  EXPECT_EQ(thumbnail.DibColor(1), PaletteColor(1));

  DibShape small;
  small.bitCount = 4;
  fs.AddFile("C:\\d\\small.dwg", MakeDwgWithBitmap("AC1018", small, 0x19));
  DwgThumbnail sixteen(fs);
  sixteen.SetRecolor(true);
  ASSERT_TRUE(sixteen.Load("C:\\d\\small.dwg", true));
  EXPECT_EQ(sixteen.fileBackground(), 0u);
  EXPECT_EQ(sixteen.DibColor(0), 0u);  // entry 0 is in the table, and the background is 0
  EXPECT_EQ(sixteen.DibColor(1), PaletteColor(1));
}

TEST(DwgPaint, FitKeepsProportionsAndCentresAndTextLinesAreCentredAsABlock) {
  // Rect, picture width and height, where the picture goes.
  const std::tuple<PreviewRect, int, int, PreviewRect> fits[] = {
      {{0, 0, 100, 100}, 200, 100, {0, 25, 100, 75}},  // wide: same space above and below
      {{0, 0, 100, 100}, 100, 200, {25, 0, 75, 100}},  // tall
      {{10, 20, 110, 70}, 4, 2, {10, 20, 110, 70}},    // same ratio
      {{0, 0, 101, 100}, 3, 1, {0, 33, 101, 66}},      // 101 / 3 = 33.67, cut to 33
      {{0, 0, 100, 33}, 1, 1, {33, 0, 66, 33}},        // 67 free: 33 left
      {{0, 0, 256, 256}, 256, 94, {0, 81, 256, 175}},  // 256 / 2.7234 = 94.0 in floats
      {{0, 0, 0, 0}, 4, 3, {0, 0, 0, 0}},
  };
  for (const auto& [rect, width, height, expected] : fits) {
    EXPECT_EQ(FitIntoRect(rect, width, height), expected) << width << "x" << height << " in " << Text(rect);
  }
  EXPECT_EQ(StretchModeFor(0), StretchMode::WhiteOnBlack);
  EXPECT_EQ(StretchModeFor(0xFFFFFF), StretchMode::BlackOnWhite);
  EXPECT_EQ(StretchModeFor(0x010101), StretchMode::ColorOnColor);
  // Text, rect, the bands and lines for a text height of 12.
  const std::tuple<std::string, PreviewRect, std::string> texts[] = {
      {"文件错误\n 一般的", {0, 0, 100, 100}, "0,35,100,50 文件错误|0,50,100,65  一般的|"},  // (100 - 30) / 2
      {"载入...", {0, 10, 50, 61}, "0,28,50,43 载入...|"},                                    // 10 + (51 - 15) / 2
      {"a\n\nb", {0, 0, 10, 20}, "0,-12,10,3 a|0,3,10,18 |0,18,10,33 b|"},  // (20 - 45) / 2 cut toward 0
      {"", {0, 0, 10, 15}, "0,0,10,15 |"},
  };
  for (const auto& [text, rect, expected] : texts) {
    std::string bands;
    for (const TextBand& b : LayoutTextLines(rect, text, 12)) bands += Text(b.band) + " " + b.line + "|";
    EXPECT_EQ(bands, expected);
  }
}

TEST(DwgPaint, PaintDrawsStatusErrorOrPictureOnTheBackground) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\none.dwg", kEmptyDrawing);
  DibShape wide;
  wide.width = 20;
  wide.height = 10;
  fs.AddFile("C:\\d\\wide.dwg", MakeDwgWithBitmap("AC1018", wide));
  DwgThumbnail none(fs), missing(fs), picture(fs);
  none.SetPath("C:\\d\\none.dwg");  // loads at once inside the paint
  missing.SetPath("C:\\d\\missing.dwg");
  ASSERT_TRUE(picture.Load("C:\\d\\wide.dwg", true));
  picture.SetBackground(kWhite);
  RecordingCanvas canvas;
  none.Paint(canvas, {0, 0, 80, 80});
  missing.Paint(canvas, {0, 0, 100, 100});
  picture.Paint(canvas, {10, 10, 50, 50});
  EXPECT_EQ(canvas.calls, (Calls{"save", "fill 0,0,80,80 000000", "text 0,32,80,47 0000ff/000000 没有预览", "restore",
                                 // The error wins over the status text.
                                 "save", "fill 0,0,100,100 000000", "text 0,35,100,50 0000ff/000000 文件错误",
                                 "text 0,50,100,65 0000ff/000000  文件没有找到", "restore",
                                 "save", "fill 10,10,50,50 ffffff", "dib 10,20,50,40 20x10 mode 1", "restore"}));
  const int statCalls = fs.CallCount(MemoryFileSystem::Op::Stat);
  missing.Paint(canvas, {0, 0, 100, 100});  // does not load again
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::Stat), statCalls);
}

// Keeps the work for the test to run when it chooses.
struct ManualRunner : ThumbnailLoadRunner {
  std::vector<std::function<void()>> queue;
  bool Start(std::function<void()> work) override {
    queue.push_back(std::move(work));
    return true;
  }
  void Join() override {}
};

TEST(DwgPaint, BackgroundLoadStartsOnceAndShowsTheResultAfterTheNotice) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", {}));
  std::vector<PreviewRect> notices;
  DwgThumbnail thumbnail(fs);
  thumbnail.SetPath("C:\\d\\a.dwg");
  thumbnail.backgroundLoad = true;
  thumbnail.itemRect = {1, 2, 3, 4};
  thumbnail.onLoaded = [&](const PreviewRect& r) { notices.push_back(r); };
  auto owned = std::make_unique<ManualRunner>();
  std::vector<std::function<void()>>& queue = owned->queue;
  thumbnail.SetLoadRunner(std::move(owned));
  RecordingCanvas canvas;
  thumbnail.Paint(canvas, {0, 0, 40, 40});
  thumbnail.Paint(canvas, {0, 0, 40, 40});
  EXPECT_EQ(queue.size(), 1u);
  EXPECT_TRUE(thumbnail.loading());
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::ReadAt), 0);
  queue.at(0)();
  EXPECT_FALSE(thumbnail.loading());
  EXPECT_EQ(notices, (std::vector<PreviewRect>{{1, 2, 3, 4}}));
  thumbnail.Paint(canvas, {0, 0, 40, 40});
  const std::string loading[] = {"save", "fill 0,0,40,40 000000", "text 0,12,40,27 0000ff/000000 载入...", "restore"};
  EXPECT_EQ(canvas.calls, (Calls{loading[0], loading[1], loading[2], loading[3], loading[0], loading[1], loading[2],
                                 loading[3], "save", "fill 0,0,40,40 000000", "dib 0,5,40,35 4x3 mode 2", "restore"}));
}

struct FakeImage : PanelImage {
  std::pair<int, int> size;
  int Width() const override { return size.first; }
  int Height() const override { return size.second; }
};

class FakeShell : public ShellImageSource {
 public:
  std::map<std::string, std::pair<int, int>> images;  // absent: the shell gives nothing
  std::vector<std::string> asked;
  int askedSize = 0;
  std::unique_ptr<PanelImage> Extract(const std::string& path, int width, int height) override {
    asked.push_back(path);
    askedSize = width == height ? width : -1;
    auto it = images.find(path);
    if (it == images.end()) return nullptr;
    auto image = std::make_unique<FakeImage>();
    image->size = it->second;
    return image;
  }
};

TEST(FilePreviewPanel, ItemsOfEachKindStackFromTheTopWithoutGapsAndStopBelowTheBottom) {
  for (const char* path : {"C:\\a\\b.dwg", "C:\\a\\B.DWG", "b.Dwg", "C:\\a\\乗.dwg"}) EXPECT_TRUE(IsDrawingPath(path));
  for (const char* path : {"C:\\a\\b.dwg.bak", "C:\\a.dwg\\b", "C:\\a\\b.dwgx", "C:\\a\\b"}) {
    EXPECT_FALSE(IsDrawingPath(path)) << path;
  }
  MemoryFileSystem fs;
  fs.AddFile("C:\\w\\a.dwg", MakeDwgWithBitmap("AC1018", {}));
  fs.AddFile("C:\\w\\B.DWG", kEmptyDrawing);
  FakeShell shell;
  shell.images["C:\\w\\wide.png"] = {300, 100};
  shell.images["C:\\w\\odd.png"] = {3, 2};
  FilePreviewPanel panel(fs, shell);
  RecordingCanvas empty;
  panel.Paint(empty, {0, 0, 104, 254});
  EXPECT_EQ(empty.calls, (Calls{"frame 0,0,104,254", "face 2,2,102,252"}));

  // c.dwg and d.dwg are missing: they are read all the same, though never painted.
  panel.SetFiles({"C:\\w\\a.dwg", "C:\\w\\note.txt", "C:\\w\\wide.png", "C:\\w\\B.DWG", "C:\\w\\odd.png",
                  "C:\\w\\c.dwg", "C:\\w\\d.dwg"},
                 100);
  const auto& items = panel.items();
  ASSERT_EQ(items.size(), 7u);
  EXPECT_EQ(items[0].kind, PreviewPanelItem::kDrawing);
  EXPECT_TRUE(items[0].thumbnail->recolor());
  EXPECT_EQ(items[1].kind, PreviewPanelItem::kOther);
  EXPECT_EQ(items[6].thumbnail->errorText(), "文件错误\n 文件没有找到");
  EXPECT_EQ(shell.asked, (Calls{"C:\\w\\note.txt", "C:\\w\\wide.png", "C:\\w\\odd.png"}));
  EXPECT_EQ(shell.askedSize, 100);
  RecordingCanvas canvas;
  panel.Paint(canvas, {0, 0, 104, 254});
  EXPECT_EQ(canvas.calls, (Calls{"frame 0,0,104,254", "face 2,2,102,252",
                                 // a.dwg: a square, on black
                                 "save", "fill 2,2,102,102 000000", "dib 2,14,102,89 4x3 mode 2", "restore",
                                 // wide.png: trunc(100 x 1/3); note.txt took nothing
                                 "image 2,102,102,135",
                                 "save", "fill 2,135,102,235 000000", "text 2,177,102,192 0000ff/000000 没有预览", "restore",
                                 // odd.png: trunc(100 x 2/3) = 66 ends below the bottom, and the walk stops
                                 "image 2,235,102,301"}));
  panel.SetFiles({}, 100);
  EXPECT_TRUE(panel.items().empty());
}

}  // namespace
}  // namespace tavlet::testing
