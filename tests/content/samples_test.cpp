// The project's sample drawings, as the demo's menus show them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "content/layouts.h"
#include "content/references.h"
#include "content/views.h"
#include "content_fixture.h"
#include "support/test_paths.h"

namespace tavlet::content {
namespace {


std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

struct Opened {
  sim::SimHost host;
  port::Document doc = nullptr;
  port::Database db = nullptr;
};

void Open(Opened& o, const std::string& name) {
  const std::filesystem::path folder = testing::SamplesDir();
  o.doc = o.host.OpenDescription(ReadFile(folder / name), name);
  ASSERT_NE(o.doc, nullptr) << o.host.LastOpenError();
  o.host.Documents()->DatabaseOf(o.doc, &o.db);
}

TEST(Samples, ThePlanShowsEveryKindOfList) {
  Opened plan;
  Open(plan, "plan.tdd");
  if (!plan.db) return;
  MemoryFileSystem files;
  int id = 5000;
  IdMap<std::string> layouts, states;
  ReferenceSet refs;
  IdMap<ViewEntry> views;
  CollectLayouts(id, layouts, *plan.host.Databases(), plan.db, true);
  CollectReferences(id, refs, *plan.host.Databases(), plan.db, true, files);
  CollectLayerStates(id, states, *plan.host.Databases(), plan.db, true);
  CollectViews(id, views, *plan.host.Databases(), plan.db, true);
  EXPECT_EQ(Texts(layouts), (std::vector<std::string>{"Model", Utf8(u8"布局1"), "Layout2"}));
  EXPECT_EQ(Fulls(refs.externalReferences),
            std::vector<std::string>{Utf8(u8"D:\\项目\\办公楼\\总图.tdd")});
  EXPECT_EQ(Fulls(refs.images),
            (std::vector<std::string>{Utf8(u8"D:\\项目\\办公楼\\照片\\入口.jpg"),
                                      Utf8(u8"D:\\项目\\办公楼\\照片\\立面.png")}));
  EXPECT_EQ(Fulls(refs.oleLinks), std::vector<std::string>{Utf8(u8"D:\\项目\\办公楼\\门窗表.xls")});
  EXPECT_EQ(Fulls(refs.hyperlinks),
            (std::vector<std::string>{"http://example.com/details", "http://example.com/facade",
                                      Utf8(u8"D:\\项目\\办公楼\\门.pdf")}));
  EXPECT_EQ(Texts(states), (std::vector<std::string>{Utf8(u8"墙体关闭"), "Print"}));
  std::vector<std::string> viewLines;
  for (const auto& [key, v] : views) viewLines.push_back(text::ToUtf8(v.name + "/" + v.layout));
  EXPECT_EQ(viewLines,
            (std::vector<std::string>{"Detail/", "Old sheet/", "Sheet A/" + Utf8(u8"布局1"),
                                      Utf8(u8"入口/"), Utf8(u8"总图|Site/")}));
  EXPECT_EQ(id, 5000 + 3 + 1 + 2 + 1 + 3 + 2 + 5);
  EXPECT_EQ(plan.host.OpenDatabaseObjects(), 0);
}

TEST(Samples, TheSiteReferencesThePlanAndItself) {
  Opened site;
  Open(site, "site.tdd");
  if (!site.db) return;
  MemoryFileSystem files;
  int id = 0;
  ReferenceSet refs;
  CollectReferences(id, refs, *site.host.Databases(), site.db, false, files);
  EXPECT_EQ(Fulls(refs.externalReferences),
            (std::vector<std::string>{Utf8(u8"D:\\项目\\办公楼\\平面图.dwg"),
                                      Utf8(u8"D:\\项目\\办公楼\\总图.tdd")}));
  EXPECT_TRUE(refs.images.empty());
  EXPECT_EQ(Fulls(refs.hyperlinks), std::vector<std::string>{Utf8(u8"D:\\项目\\办公楼\\树.pdf")});
  IdMap<std::string> states;
  CollectLayerStates(id, states, *site.host.Databases(), site.db, true);
  EXPECT_EQ(Texts(states), std::vector<std::string>{kNone});
}

}  // namespace
}  // namespace tavlet::content
