#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "dwg/dwg_fixtures.h"
#include "previews/dwg_thumbnail.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet {
namespace {

using testing::DibSpec;
using testing::DibSpecColor;
using testing::MakeDwgWithBitmap;

constexpr std::uint32_t kWhite = 0xFFFFFF;

DibSpec PaletteWithBackground(int backgroundEntry, std::uint32_t background) {
  DibSpec spec;
  for (int i = 0; i < 256; ++i) spec.palette.push_back(DibSpecColor(i));
  spec.palette[backgroundEntry] = background;
  return spec;
}

// Where the file's background sits: entry 245 before release 15, 225 from then on.
int BackgroundEntryOf(const std::string& version) { return version == "AC1014" || version == "AC1009" ? 245 : 225; }

// Palette after a load with recolouring for `background`, as index -> colour for
// the entries that changed.
std::map<int, std::uint32_t> Recoloured(const std::string& version, std::uint8_t formatByte,
                                        std::uint32_t fileBackground, std::uint32_t background) {
  DibSpec dib = PaletteWithBackground(BackgroundEntryOf(version), fileBackground);
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap(version, dib, formatByte));
  DwgThumbnail thumbnail(fs);
  thumbnail.SetRecolor(true);
  thumbnail.SetInitialBackground(background);
  EXPECT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  std::map<int, std::uint32_t> changed;
  for (int i = 0; i < 256; ++i) {
    if (thumbnail.DibColor(i) != dib.palette[i]) changed[i] = thumbnail.DibColor(i);
  }
  return changed;
}

TEST(DwgRecolor, EachRuleWritesItsEntries) {
  const std::uint32_t grey = 0x808080;
  struct Case {
    const char* name;
    const char* version;
    std::uint8_t formatByte;
    std::uint32_t fileBackground;
    std::uint32_t background;
    std::map<int, std::uint32_t> changed;
  } cases[] = {
      {"2004, format unknown, on black", "AC1018", 0x10, 0x123456, 0,
       {{226, kWhite}, {245, kWhite}, {255, kWhite}, {0, 0}, {164, 0}}},
      {"2004 dark file on grey", "AC1018", 0x19, 0x123456, grey,
       {{245, 0}, {255, 0}, {226, grey}, {0, grey}, {164, grey}}},
      {"2007 white file on black", "AC1021", 0x1B, kWhite, 0,
       {{226, kWhite}, {255, kWhite}, {245, 0}, {0, 0}, {164, 0}}},
      {"2000 white file on white", "AC1015", 0x17, kWhite, kWhite,
       {{226, 0}, {255, 0}, {245, kWhite}, {0, kWhite}, {164, kWhite}}},
      {"R14 dark file on black", "AC1014", 0x17, 0x123456, 0, {{225, kWhite}, {255, kWhite}, {0, 0}}},
      {"R12 white file on grey", "AC1009", 0x17, kWhite, grey, {{0, 0}, {255, 0}, {225, grey}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto changed = Recoloured(c.version, c.formatByte, c.fileBackground, c.background);
    // An entry that already had its new colour does not show as changed.
    std::map<int, std::uint32_t> expected;
    for (auto [index, colour] : c.changed) {
      std::uint32_t before = index == BackgroundEntryOf(c.version) ? c.fileBackground : DibSpecColor(index);
      if (before != colour) expected[index] = colour;
    }
    EXPECT_EQ(changed, expected);
  }
}

TEST(DwgRecolor, SetBackgroundRecoloursOnlyOnChange) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", PaletteWithBackground(225, kWhite), 0x19));
  DwgThumbnail thumbnail(fs);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  EXPECT_EQ(thumbnail.DibColor(0), DibSpecColor(0));  // recolouring is off by default
  thumbnail.SetBackground(0);
  EXPECT_EQ(thumbnail.DibColor(0), DibSpecColor(0));
  thumbnail.SetBackground(0x00FF00);
  EXPECT_EQ(thumbnail.backgroundColor(), 0x00FF00u);
  EXPECT_EQ(thumbnail.DibColor(0), 0x00FF00u);
  EXPECT_EQ(thumbnail.DibColor(245), 0x00FF00u);
  EXPECT_EQ(thumbnail.DibColor(255), 0u);
  EXPECT_EQ(thumbnail.DibColor(1), DibSpecColor(1));
}

TEST(DwgRecolor, SmallPaletteIsLeftAlone) {
  DibSpec dib;
  dib.bitCount = 4;
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", dib, 0x19));
  DwgThumbnail thumbnail(fs);
  thumbnail.SetRecolor(true);
  ASSERT_TRUE(thumbnail.Load("C:\\d\\a.dwg", true));
  EXPECT_EQ(thumbnail.fileBackground(), 0u);
  EXPECT_EQ(thumbnail.DibColor(0), 0u);  // entry 0 is in the table, and bg is 0
  EXPECT_EQ(thumbnail.DibColor(1), DibSpecColor(1));
}

TEST(DwgPaint, FitKeepsProportionsAndCentres) {
  struct Case {
    PreviewRect rect;
    int width, height;
    PreviewRect expected;
  } cases[] = {
      {{0, 0, 100, 100}, 200, 100, {0, 25, 100, 75}},     // wide: same space above and below
      {{0, 0, 100, 100}, 100, 200, {25, 0, 75, 100}},     // tall
      {{10, 20, 110, 70}, 4, 2, {10, 20, 110, 70}},       // same ratio
      {{0, 0, 101, 100}, 3, 1, {0, 33, 101, 66}},         // 101 / 3 = 33.67, cut to 33
      {{0, 0, 100, 33}, 1, 1, {33, 0, 66, 33}},           // 67 free: 33 left
      {{0, 0, 256, 256}, 256, 94, {0, 81, 256, 175}},     // 256 / 2.7234 = 94.0
      {{0, 0, 0, 0}, 4, 3, {0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.width << "x" << c.height);
    EXPECT_EQ(FitIntoRect(c.rect, c.width, c.height), c.expected);
  }
}

TEST(DwgPaint, StretchModeFollowsBackground) {
  EXPECT_EQ(StretchModeFor(0), StretchMode::WhiteOnBlack);
  EXPECT_EQ(StretchModeFor(0xFFFFFF), StretchMode::BlackOnWhite);
  EXPECT_EQ(StretchModeFor(0x010101), StretchMode::ColorOnColor);
  EXPECT_EQ(static_cast<int>(StretchMode::BlackOnWhite), 1);
  EXPECT_EQ(static_cast<int>(StretchMode::WhiteOnBlack), 2);
  EXPECT_EQ(static_cast<int>(StretchMode::ColorOnColor), 3);
}

TEST(DwgPaint, TextLinesAreSplitAndCentredAsABlock) {
  struct Case {
    std::string text;
    PreviewRect rect;
    std::vector<std::string> lines;
    int firstTop;
  } cases[] = {
      {"文件错误\n 一般的", {0, 0, 100, 100}, {"文件错误", " 一般的"}, 35},  // (100 - 30) / 2
      {"载入...", {0, 10, 50, 61}, {"载入..."}, 28},                         // 10 + (51 - 15) / 2
      {"a\n\nb", {0, 0, 10, 20}, {"a", "", "b"}, -12},                     // (20 - 45) / 2 cut toward 0
      {"", {0, 0, 10, 15}, {""}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    auto bands = LayoutTextLines(c.rect, c.text, 12);
    ASSERT_EQ(bands.size(), c.lines.size());
    for (std::size_t i = 0; i < bands.size(); ++i) {
      EXPECT_EQ(bands[i].line, c.lines[i]);
      EXPECT_EQ(bands[i].band, (PreviewRect{c.rect.left, c.firstTop + 15 * int(i), c.rect.right,
                                            c.firstTop + 15 * int(i + 1)}));
    }
  }
}

TEST(DwgPaint, PaintDrawsTextOrPictureOnTheBackground) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\none.dwg", testing::MakeDwg(testing::DwgSpec{}));
  DibSpec wide;
  wide.width = 20;
  wide.height = 10;
  fs.AddFile("C:\\d\\wide.dwg", MakeDwgWithBitmap("AC1018", wide));

  DwgThumbnail none(fs);
  none.SetPath("C:\\d\\none.dwg");
  testing::RecordingCanvas canvas;
  none.Paint(canvas, {0, 0, 80, 80});  // loads at once inside the paint
  EXPECT_TRUE(none.loaded());
  ASSERT_GE(canvas.calls.size(), 4u);
  EXPECT_EQ(canvas.calls.front().what, "save");
  EXPECT_EQ(canvas.calls[1].what, "fill");
  EXPECT_EQ(canvas.calls[1].rect, (PreviewRect{0, 0, 80, 80}));
  EXPECT_EQ(canvas.calls[1].color, 0u);
  EXPECT_EQ(canvas.calls.back().what, "restore");
  auto texts = canvas.Of("text");
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0].text, "没有预览");
  EXPECT_EQ(texts[0].color, 0x0000FFu);
  EXPECT_EQ(texts[0].backColor, 0u);
  EXPECT_EQ(texts[0].rect, (PreviewRect{0, 32, 80, 47}));
  EXPECT_TRUE(canvas.Of("dib").empty());

  DwgThumbnail picture(fs);
  ASSERT_TRUE(picture.Load("C:\\d\\wide.dwg", true));
  picture.SetBackground(0xFFFFFF);
  testing::RecordingCanvas canvas2;
  picture.Paint(canvas2, {10, 10, 50, 50});
  auto dibs = canvas2.Of("dib");
  ASSERT_EQ(dibs.size(), 1u);
  EXPECT_EQ(dibs[0].rect, (PreviewRect{10, 20, 50, 40}));
  EXPECT_EQ(dibs[0].mode, StretchMode::BlackOnWhite);
  EXPECT_EQ(dibs[0].imageWidth, 20);
  EXPECT_EQ(canvas2.calls[1].color, 0xFFFFFFu);
  EXPECT_TRUE(canvas2.Of("text").empty());
}

TEST(DwgPaint, ErrorTextWinsOverStatus) {
  MemoryFileSystem fs;
  DwgThumbnail thumbnail(fs);
  thumbnail.SetPath("C:\\d\\missing.dwg");
  testing::RecordingCanvas canvas;
  thumbnail.Paint(canvas, {0, 0, 100, 100});
  auto texts = canvas.Of("text");
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_EQ(texts[0].text, "文件错误");
  EXPECT_EQ(texts[1].text, " 文件没有找到");
  // A second paint does not load again.
  int statCalls = fs.CallCount(MemoryFileSystem::Op::Stat);
  thumbnail.Paint(canvas, {0, 0, 100, 100});
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::Stat), statCalls);
}

class ManualRunner : public ThumbnailLoadRunner {
 public:
  std::vector<std::function<void()>>* queue;
  explicit ManualRunner(std::vector<std::function<void()>>* q) : queue(q) {}
  bool Start(std::function<void()> work) override {
    queue->push_back(std::move(work));
    return true;
  }
  void Join() override {}
};

TEST(DwgPaint, BackgroundLoadStartsOnceAndShowsTheResultAfterTheNotice) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\d\\a.dwg", MakeDwgWithBitmap("AC1018", DibSpec{}));
  std::vector<std::function<void()>> queue;
  std::vector<PreviewRect> notices;
  DwgThumbnail thumbnail(fs);
  thumbnail.SetPath("C:\\d\\a.dwg");
  thumbnail.backgroundLoad = true;
  thumbnail.itemRect = {1, 2, 3, 4};
  thumbnail.onLoaded = [&](const PreviewRect& r) { notices.push_back(r); };
  thumbnail.SetLoadRunner(std::make_unique<ManualRunner>(&queue));

  testing::RecordingCanvas first;
  thumbnail.Paint(first, {0, 0, 40, 40});
  thumbnail.Paint(first, {0, 0, 40, 40});
  ASSERT_EQ(queue.size(), 1u);
  EXPECT_TRUE(thumbnail.loading());
  ASSERT_EQ(first.Of("text").size(), 2u);
  EXPECT_EQ(first.Of("text")[0].text, "载入...");
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::ReadAt), 0);

  queue[0]();
  EXPECT_FALSE(thumbnail.loading());
  EXPECT_EQ(notices, (std::vector<PreviewRect>{{1, 2, 3, 4}}));
  testing::RecordingCanvas after;
  thumbnail.Paint(after, {0, 0, 40, 40});
  EXPECT_EQ(after.Of("dib").size(), 1u);
  EXPECT_EQ(thumbnail.imageWidth(), 4);
}

}  // namespace
}  // namespace tavlet
