#include <gtest/gtest.h>

#include "content/references.h"
#include "content_fixture.h"

namespace tavlet::content {
namespace {

struct Lists {
  std::vector<std::string> xrefs, images, oles, links;
};

Lists Collect(SimDrawing& d, bool fill, int* nextId = nullptr) {
  int id = 5000;
  ReferenceSet sets;
  CollectReferences(nextId ? *nextId : id, sets, d.Database(), d.db, fill, d.files);
  return {Fulls(sets.externalReferences), Fulls(sets.images), Fulls(sets.oleLinks),
          Fulls(sets.hyperlinks)};
}

void ExpectLists(const Lists& got, const Lists& want) {
  EXPECT_EQ(got.xrefs, want.xrefs);
  EXPECT_EQ(got.images, want.images);
  EXPECT_EQ(got.oles, want.oles);
  EXPECT_EQ(got.links, want.links);
}

TEST(CollectReferences, FindsWhatTheRulesFindAndNothingElse) {
  const std::string none = kNone;
  struct Case {
    const char* what;
    std::string body;
    Lists fill;  // without the fill the "没有找到" entries are gone
  };
  const std::vector<Case> cases = {
      {"an unresolved reference is left out",
       "xref \"Site\" \"C:\\x\\site.dwg\" resolved\nxref \"Grid\" \"C:\\x\\grid.dwg\" unresolved\n",
       {{"C:\\x\\site.dwg"}, {none}, {none}, {none}}},
      {"two spellings of one file give one entry in the first spelling",
       "xref \"A\" \"C:\\X\\Site.DWG\" resolved\nxref \"B\" \"c:\\x\\site.dwg\" resolved\n"
       "image \"Model\" \"C:\\P\\Photo.JPG\"\nimage \"Model\" \"c:\\p\\photo.jpg\"\n"
       "entity \"Model\" hyperlink \"HTTP://A.COM\" hyperlink \"http://a.com\"\n",
       {{"C:\\X\\Site.DWG"}, {"C:\\P\\Photo.JPG"}, {none}, {"HTTP://A.COM"}}},
      {"an embedded OLE object is not listed, a linked one is",
       "ole \"Model\" embedded\nole \"Model\" linked \"C:\\t\\table.xls\"\n",
       {{none}, {none}, {"C:\\t\\table.xls"}, {none}}},
      {"inside a block definition only the definition's own hyperlinks count",
       "block \"Door\" hyperlink \"C:\\d\\door.pdf\"\nimage block \"Door\" \"C:\\d\\door.png\"\n"
       "ole block \"Door\" linked \"C:\\d\\door.xls\"\nentity block \"Door\" hyperlink "
       "\"C:\\d\\inner.pdf\"\n",
       {{none}, {none}, {none}, {"C:\\d\\door.pdf"}}},
      {"erased entities are skipped",
       "image \"Model\" \"C:\\p\\gone.jpg\" erased\nole \"Model\" linked \"C:\\p\\gone.xls\" "
       "erased\n"
       "entity \"Model\" erased hyperlink \"C:\\p\\gone.pdf\"\nimage \"Model\" "
       "\"C:\\p\\kept.jpg\"\n",
       {{none}, {"C:\\p\\kept.jpg"}, {none}, {none}}},
      {"anonymous and dependent blocks are not plain named blocks",
       "block \"*U3\" hyperlink \"C:\\b\\anon.pdf\"\nblock \"Site|Tree\" hyperlink "
       "\"C:\\b\\dep.pdf\"\n"
       "block \"Tree\" hyperlink \"C:\\b\\tree.pdf\"\n",
       {{none}, {none}, {none}, {"C:\\b\\tree.pdf"}}},
      {"every layout's entities are walked, model space first, then the blocks",
       "layout \"L1\"\nlayout \"L2\"\nblock \"B\" hyperlink \"4\"\nentity \"L2\" hyperlink \"3\"\n"
       "image \"L1\" \"C:\\i\\2.png\"\nentity \"L1\" hyperlink \"2\"\nimage \"Model\" "
       "\"C:\\i\\1.png\"\n"
       "entity \"Model\" hyperlink \"1\" hyperlink \"1b\"\n",
       {{none}, {"C:\\i\\1.png", "C:\\i\\2.png"}, {none}, {"1", "1b", "2", "3", "4"}}},
      {"an image whose definition has no file is skipped; empty references are what the host gives",
       "image \"Model\" \"\"\nxref \"E\" \"\" resolved\nentity \"Model\" hyperlink \"\"\n",
       {{""}, {none}, {none}, {""}}},
      {"code-page 936 names, one entry for two spellings of the Latin part",
       Utf8(u8"xref \"总图\" \"D:\\项目\\总图.DWG\" resolved\nxref \"总图2\" "
            u8"\"d:\\项目\\总图.dwg\" resolved\n"
            u8"entity \"Model\" hyperlink \"D:\\项目\\说明.pdf\"\n"),
       {{Utf8(u8"D:\\项目\\总图.DWG")}, {none}, {none}, {Utf8(u8"D:\\项目\\说明.pdf")}}},
      {"a drawing that references itself lists itself once",
       "xref \"Self\" \"C:\\dwg\\a.dwg\" resolved\nxref \"Self2\" \"C:\\DWG\\A.dwg\" resolved\n",
       {{"C:\\dwg\\a.dwg"}, {none}, {none}, {none}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    SimDrawing d(c.body);
    ASSERT_NE(d.db, nullptr) << d.host.LastOpenError();
    ExpectLists(Collect(d, true), c.fill);
    Lists noFill = c.fill;
    for (std::vector<std::string>* list :
         {&noFill.xrefs, &noFill.images, &noFill.oles, &noFill.links})
      if (*list == std::vector<std::string>{none}) list->clear();
    ExpectLists(Collect(d, false), noFill);
    EXPECT_EQ(d.OpenObjects(), 0);
  }
}

TEST(CollectReferences, NullDatabaseGivesFourNotFoundWhateverFillSays) {
  SimDrawing d("");
  for (bool fill : {true, false}) {
    int id = 5010;
    ReferenceSet sets;
    sets.images.emplace(1, DrawingPath("stale", d.files));
    CollectReferences(id, sets, d.Database(), nullptr, fill, d.files);
    EXPECT_EQ(id, 5014);
    EXPECT_EQ(Ids(sets.externalReferences), std::vector<int>{5010});
    EXPECT_EQ(Ids(sets.images), std::vector<int>{5011});
    EXPECT_EQ(Ids(sets.oleLinks), std::vector<int>{5012});
    EXPECT_EQ(Ids(sets.hyperlinks), std::vector<int>{5013});
    EXPECT_EQ(Fulls(sets.hyperlinks), std::vector<std::string>{kNone});
  }
}

TEST(CollectReferences, IdsRunThroughTheListsInOrderFromTheCallersCounter) {
  SimDrawing d(
      "xref \"A\" \"C:\\a.dwg\" resolved\nxref \"B\" \"C:\\b.dwg\" resolved\n"
      "ole \"Model\" linked \"C:\\o.xls\"\nentity \"Model\" hyperlink \"h1\" hyperlink \"h2\"\n");
  int id = 7000;
  ReferenceSet sets;
  CollectReferences(id, sets, d.Database(), d.db, true, d.files);
  EXPECT_EQ(Ids(sets.externalReferences), (std::vector<int>{7000, 7001}));
  EXPECT_EQ(Ids(sets.images), std::vector<int>{7002});
  EXPECT_EQ(Ids(sets.oleLinks), std::vector<int>{7003});
  EXPECT_EQ(Ids(sets.hyperlinks), (std::vector<int>{7004, 7005}));
  EXPECT_EQ(id, 7006);
  id = 1;
  CollectReferences(id, sets, d.Database(), d.db, false, d.files);
  EXPECT_EQ(Ids(sets.images), std::vector<int>{});
  EXPECT_EQ(Ids(sets.oleLinks), std::vector<int>{3});
  EXPECT_EQ(id, 6);
}

TEST(CollectReferences, ALinkPathLongerThanTheFramesBufferIsCutToIt) {
  const std::string folder = "C:\\" + std::string(280, 'f') + "\\";
  SimDrawing d("ole \"Model\" linked \"" + folder + "one.xls\"\nole \"Model\" linked \"" + folder +
               "two.xls\"\n");
  Lists got = Collect(d, true);
  // Both are cut to the same 259 bytes, so they are one file for the list.
  ASSERT_EQ(got.oles.size(), 1u);
  EXPECT_EQ(got.oles[0], folder.substr(0, 259));
}

TEST(CollectReferences, ACutThatSplitsACharacterComparesAsTheRuntimeDoes) {
  // 258 ASCII bytes then a double-byte character: the cut keeps its lead byte
  // alone, which _mbscmp doesn't see; the same path without it is the same file.
  const std::string head = "C:\\" + std::string(255, 'g');
  SimDrawing d(Utf8(u8"ole \"Model\" linked \"") + head + Utf8(u8"图x.xls\"\n") +
               "ole \"Model\" linked \"" + head + "\"\n");
  int id = 0;
  ReferenceSet sets;
  CollectReferences(id, sets, d.Database(), d.db, false, d.files);
  ASSERT_EQ(sets.oleLinks.size(), 1u);
  EXPECT_EQ(sets.oleLinks.begin()->second.Full.size(), 259u);
}

TEST(CollectReferences, TwoDrawingsThatReferenceEachOtherEachListTheOther) {
  sim::SimHost host;
  MemoryFileSystem files;
  port::Document a = host.OpenDescription(
      "tavlet-drawing 1\npath \"C:\\a.dwg\"\nxref \"B\" \"C:\\b.dwg\" resolved\npicture 1 1 "
      "background 0\n",
      "a.tdd");
  port::Document b = host.OpenDescription(
      "tavlet-drawing 1\npath \"C:\\b.dwg\"\nxref \"A\" \"C:\\a.dwg\" resolved\npicture 1 1 "
      "background 0\n",
      "b.tdd");
  for (auto [doc, other] : {std::pair{a, "C:\\b.dwg"}, std::pair{b, "C:\\a.dwg"}}) {
    port::Database db = nullptr;
    host.Documents()->DatabaseOf(doc, &db);
    int id = 0;
    ReferenceSet sets;
    CollectReferences(id, sets, *host.Databases(), db, false, files);
    EXPECT_EQ(Fulls(sets.externalReferences), std::vector<std::string>{other});
  }
  EXPECT_EQ(host.OpenDatabaseObjects(), 0);
}

}  // namespace
}  // namespace tavlet::content
