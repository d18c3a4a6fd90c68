#include <gtest/gtest.h>

#include <map>

#include "dwg/dwg_fixtures.h"
#include "previews/file_preview_panel.h"
#include "sim/memory_file_system.h"
#include "support/dwg_writer.h"

namespace tavlet {
namespace {

class FakeImage : public PanelImage {
 public:
  FakeImage(int w, int h) : w_(w), h_(h) {}
  int Width() const override { return w_; }
  int Height() const override { return h_; }

 private:
  int w_, h_;
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
    return std::make_unique<FakeImage>(it->second.first, it->second.second);
  }
};


class RecordingPanelCanvas : public PanelCanvas {
 public:
  testing::RecordingCanvas inner;
  std::vector<testing::CanvasCall>& calls = inner.calls;
  void Draw3dRect(const PreviewRect& rect) override { calls.push_back(testing::Call("frame", rect)); }
  void FillFace(const PreviewRect& rect) override { calls.push_back(testing::Call("face", rect)); }
  void DrawImage(const PanelImage&, const PreviewRect& dest) override {
    calls.push_back(testing::Call("image", dest));
  }
  void SaveState() override { inner.SaveState(); }
  void RestoreState() override { inner.RestoreState(); }
  void FillRect(const PreviewRect& rect, std::uint32_t color) override { inner.FillRect(rect, color); }
  int TextHeight(std::string_view text) override { return inner.TextHeight(text); }
  void DrawTextLine(const PreviewRect& band, std::string_view line, std::uint32_t textColor,
                    std::uint32_t backColor) override {
    inner.DrawTextLine(band, line, textColor, backColor);
  }
  void DrawDib(const PreviewRect& dest, const DibView& dib, StretchMode mode) override {
    inner.DrawDib(dest, dib, mode);
  }
};

TEST(FilePreviewPanel, ExtensionDecidesTheKind) {
  struct Case {
    const char* path;
    bool drawing;
  } cases[] = {
      {"C:\\a\\b.dwg", true},       {"C:\\a\\B.DWG", true},      {"b.Dwg", true},
      {"C:\\a\\b.dwg.bak", false},  {"C:\\a.dwg\\b", false},     {"C:\\a\\b.dwgx", false},
      {"C:\\a\\b", false},          {"C:\\a\\乗.dwg", true},
  };
  for (const Case& c : cases) EXPECT_EQ(IsDrawingPath(c.path), c.drawing) << c.path;
}

TEST(FilePreviewPanel, SetFilesMakesItemsInOrderAndReadsEveryDrawing) {
  MemoryFileSystem fs;
  testing::DibSpec dib;
  fs.AddFile("C:\\w\\a.dwg", testing::MakeDwgWithBitmap("AC1018", dib));
  fs.AddFile("C:\\w\\B.DWG", testing::MakeDwg(testing::DwgSpec{}));
  FakeShell shell;
  shell.images["C:\\w\\photo.jpg"] = {200, 100};
  FilePreviewPanel panel(fs, shell);
  panel.SetFiles({"C:\\w\\a.dwg", "C:\\w\\photo.jpg", "C:\\w\\B.DWG", "C:\\w\\note.txt"}, 96);
  const auto& items = panel.items();
  ASSERT_EQ(items.size(), 4u);
  EXPECT_EQ(items[0].kind, PreviewPanelItem::kDrawing);
  EXPECT_TRUE(items[0].thumbnail->HasDib());
  EXPECT_TRUE(items[0].thumbnail->recolor());
  EXPECT_EQ(items[0].thumbnail->backgroundColor(), 0u);
  EXPECT_EQ(items[1].kind, PreviewPanelItem::kOther);
  EXPECT_NE(items[1].bitmap, nullptr);
  EXPECT_EQ(items[2].kind, PreviewPanelItem::kDrawing);
  EXPECT_EQ(items[2].thumbnail->statusText(), "没有预览");
  EXPECT_EQ(items[3].bitmap, nullptr);
  EXPECT_EQ(shell.asked, (std::vector<std::string>{"C:\\w\\photo.jpg", "C:\\w\\note.txt"}));
  EXPECT_EQ(shell.askedSize, 96);

  panel.SetFiles({}, 96);
  EXPECT_TRUE(panel.items().empty());
}

TEST(FilePreviewPanel, BandsStackFromTheTopWithoutGapsAndStopBelowTheBottom) {
  MemoryFileSystem fs;
  FakeShell shell;
  shell.images["C:\\w\\wide.png"] = {300, 100};
  shell.images["C:\\w\\odd.png"] = {3, 2};
  FilePreviewPanel panel(fs, shell);
  // The drawings are missing: they still take their band, with the error text.
  panel.SetFiles({"C:\\w\\a.dwg", "C:\\w\\none.txt", "C:\\w\\wide.png", "C:\\w\\b.dwg", "C:\\w\\odd.png",
                  "C:\\w\\c.dwg", "C:\\w\\d.dwg"},
                 100);
  PreviewRect inner{2, 2, 102, 252};
  auto bands = LayoutPanel(panel.items(), inner);
  std::vector<std::pair<std::size_t, PreviewRect>> got;
  for (const PanelBand& b : bands) got.push_back({b.item, b.rect});
  std::vector<std::pair<std::size_t, PreviewRect>> expected = {
      {0, {2, 2, 102, 102}},     // a.dwg: a square
      {2, {2, 102, 102, 135}},   // wide.png: trunc(100 x 1/3); none.txt took nothing
      {3, {2, 135, 102, 235}},   // b.dwg
      {4, {2, 235, 102, 301}},   // odd.png: trunc(100 x 2/3) = 66, ends below the bottom
  };
  EXPECT_EQ(got, expected);
  // All files were read even though the last ones are never painted.
  EXPECT_EQ(panel.items()[6].thumbnail->errorText(), "文件错误\n 文件没有找到");
}

TEST(FilePreviewPanel, PaintFramesFillsAndPaintsEachBand) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\w\\a.dwg", testing::MakeDwg(testing::DwgSpec{}));
  FakeShell shell;
  shell.images["C:\\w\\p.png"] = {50, 25};
  FilePreviewPanel panel(fs, shell);

  RecordingPanelCanvas empty;
  panel.Paint(empty, {0, 0, 60, 200});
  ASSERT_EQ(empty.calls.size(), 2u);  // an empty list paints the plain panel
  EXPECT_EQ(empty.calls[0].what, "frame");
  EXPECT_EQ(empty.calls[0].rect, (PreviewRect{0, 0, 60, 200}));
  EXPECT_EQ(empty.calls[1].what, "face");
  EXPECT_EQ(empty.calls[1].rect, (PreviewRect{2, 2, 58, 198}));

  panel.SetFiles({"C:\\w\\a.dwg", "C:\\w\\p.png"}, 56);
  RecordingPanelCanvas canvas;
  panel.Paint(canvas, {0, 0, 60, 200});
  auto texts = canvas.inner.Of("text");
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_EQ(texts[0].text, "没有预览");
  EXPECT_EQ(texts[0].color, 0x0000FFu);  // red on black
  EXPECT_EQ(texts[0].backColor, 0u);
  auto fills = canvas.inner.Of("fill");
  ASSERT_EQ(fills.size(), 1u);
  EXPECT_EQ(fills[0].rect, (PreviewRect{2, 2, 58, 58}));
  auto images = canvas.inner.Of("image");
  ASSERT_EQ(images.size(), 1u);
  EXPECT_EQ(images[0].rect, (PreviewRect{2, 58, 58, 86}));
}

}  // namespace
}  // namespace tavlet
