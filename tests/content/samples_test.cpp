// The project's sample drawings, as the demo's menus show them (the plan's whole
// menu is the menu tree test's).
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "content/layouts.h"
#include "content/references.h"
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
