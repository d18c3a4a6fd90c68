#include <gtest/gtest.h>

#include "sim/memory_file_system.h"
#include "recorder.h"

namespace tavlet::sim {
namespace {

TEST(DrawingDescriptionFile, BadFilesAreRefusedNamingFileAndLine) {
  struct Case {
    const char* what;
    std::string text;
    int line;
    const char* says;
  };
  const std::string head = "tavlet-drawing 1\n";
  const std::string picture = "picture 4 3 background 0\n";
  const std::vector<Case> cases = {
      {"no header", "path \"x\"\n" + picture, 1, "expected 'tavlet-drawing 1'"},
      {"unterminated text", head + "path \"C:\\a.dwg\n" + picture, 2, "unterminated quoted text"},
      {"unknown element", head + picture + "\n# fine\nwidget 3\n", 5, "unknown element 'widget'"},
      {"missing picture", head + "path \"a\"\nlayout \"L1\"\n", 3, "missing picture"},
      {"not a number", head + "cvport two\n" + picture, 2, "expected an integer for cvport"},
      {"unknown layout", head + "layout \"L1\"\nimage \"L2\" \"x.png\"\n" + picture, 3, "unknown layout 'L2'"},
      {"primitive outside a picture", head + "line 0 0 1 1 0\n" + picture, 2, "'line' outside a picture"},
      {"left-over word", head + "read-only yes please\n" + picture, 2, "unexpected 'please'"},
      {"bad view space", head + "view \"V\" side 0 0 1 1\n" + picture, 2, "expected model or paper"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    DrawingDescription d;
    ParseResult r = ParseDrawingDescription(c.text, "C:\\dwg\\bad.tdd", d);
    EXPECT_FALSE(r.ok);
    EXPECT_EQ(r.line, c.line);
    EXPECT_EQ(r.message.rfind("C:\\dwg\\bad.tdd:" + std::to_string(c.line) + ": ", 0), 0u) << r.message;
    EXPECT_NE(r.message.find(c.says), std::string::npos) << r.message;
  }
}

TEST(DrawingDescriptionFile, ABadFileOpensNothingAndFiresNothing) {
  MemoryFileSystem fs;
  fs.AddFile("C:\\dwg\\bad.tdd", "tavlet-drawing 1\nlayout \"L1\"\n");
  SimHost host(fs);
  EventRecorder events(host);
  EXPECT_EQ(host.OpenDrawing("C:\\dwg\\bad.tdd"), nullptr);
  EXPECT_EQ(host.LastOpenError(), "C:\\dwg\\bad.tdd:2: missing picture");
  EXPECT_TRUE(events.Take().empty());
  EXPECT_TRUE(host.OpenDocuments().empty());
}

// Description files are UTF-8, while literals here are code page 936.
std::string Utf8(const char8_t* text) { return reinterpret_cast<const char*>(text); }

TEST(DrawingDescriptionFile, ReadsEveryElement) {
  const std::string text = Utf8(
      u8"tavlet-drawing 1\n"
      u8"# a sample\n"
      u8"path \"D:\\项目\\平面.dwg\"\n"
      u8"read-only yes\n"
      u8"layout \"布局1\"\n"
      u8"layout \"Layout2\"\n"
      u8"active-layout \"布局1\"\n"
      u8"cvport 3\n"
      u8"viewport \"布局1\" 3 2\n"
      u8"view \"Front\" model 10 20 100 50\n"
      u8"view \"Sheet\" paper 1.5 2 3 4 layout \"布局1\" dependent\n"
      u8"layer-state \"Walls off\"\n"
      u8"xref \"Site\" \"C:\\x\\site.dwg\" unresolved\n"
      u8"image \"Model\" \"C:\\img\\p.jpg\" hyperlink \"http://a\"\n"
      u8"ole \"Layout2\" linked \"C:\\d\\t.xls\"\n"
      u8"ole \"Model\" embedded erased\n"
      u8"block \"Door\" hyperlink \"C:\\doors.pdf\" hyperlink \"C:\\b.pdf\"\n"
      u8"summary author \"张三\"\n"
      u8"custom \"Client\" \"ACME \"\"West\"\"\"\n"
      u8"picture 200 100 background 0x3F3F3F\n"
      u8"line 0 0 199 99 0xFF0000\n"
      u8"fill 10 10 20 20 0x00FF00\n");
  DrawingDescription d;
  ParseResult r = ParseDrawingDescription(text, "s.tdd", d);
  ASSERT_TRUE(r.ok) << r.message;
  EXPECT_EQ(d.path, "D:\\项目\\平面.dwg");
  EXPECT_TRUE(d.readOnly);
  EXPECT_EQ(d.layouts, (std::vector<std::string>{"布局1", "Layout2"}));
  EXPECT_EQ(d.activeLayout, "布局1");
  EXPECT_EQ(d.cvport, 3);
  ASSERT_EQ(d.viewports.size(), 1u);
  EXPECT_EQ(d.viewports[0].renderMode, 2);
  ASSERT_EQ(d.views.size(), 2u);
  EXPECT_TRUE(d.views[1].paperSpace);
  EXPECT_TRUE(d.views[1].dependent);
  EXPECT_DOUBLE_EQ(d.views[1].centerX, 1.5);
  EXPECT_EQ(d.views[1].xdata, (std::vector<std::pair<long, std::string>>{{1001, "MRVN_TAVLET"}, {1000, "布局1"}}));
  EXPECT_FALSE(d.xrefs.at(0).resolved);
  ASSERT_EQ(d.entities.size(), 3u);
  EXPECT_EQ(d.entities[0].hyperlinks, std::vector<std::string>{"http://a"});
  EXPECT_TRUE(d.entities[1].linked);
  EXPECT_TRUE(d.entities[2].erased);
  EXPECT_FALSE(d.entities[2].linked);
  EXPECT_EQ(d.blocks.at(0).hyperlinks.size(), 2u);
  EXPECT_EQ(d.summary[0], "张三");
  EXPECT_EQ(d.custom.at(0).second, "ACME \"West\"");
  EXPECT_EQ(d.picture.background, 0x3F3F3Fu);
  EXPECT_EQ(d.picture.items.size(), 2u);
}

TEST(SheetSetDescriptionFile, ReadsSubsetsAndRefusesAnOpenSubset) {
  const std::string good =
      "tavlet-sheetset 1\nname \"Project\"\nsheet \"A\" number \"01\" title \"Plan\" file \"C:\\a.dwg\"\n"
      "subset \"Details\" description \"d\"\nsheet \"B\" number \"02\"\nend-subset\nresource-folder \"C:\\res\"\n";
  SheetSetDescription s;
  ParseResult r = ParseSheetSetDescription(good, "p.dst", s);
  ASSERT_TRUE(r.ok) << r.message;
  EXPECT_EQ(s.sheets.at(0).file, "C:\\a.dwg");
  EXPECT_EQ(s.subsets.at(0).sheets.at(0).number, "02");
  EXPECT_EQ(s.resourceFolders, std::vector<std::string>{"C:\\res"});
  r = ParseSheetSetDescription("tavlet-sheetset 1\nname \"P\"\nsubset \"S\"\nsheet \"A\"\n", "p.dst", s);
  EXPECT_FALSE(r.ok);
  EXPECT_EQ(r.message, "p.dst:4: subset 'S' has no 'end-subset'");
}

}  // namespace
}  // namespace tavlet::sim
