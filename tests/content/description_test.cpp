// The description lines that give a drawing its content.
#include <gtest/gtest.h>

#include "content/db/objects.h"
#include "content_fixture.h"
#include "sim/drawing_description.h"

namespace tavlet::content {
namespace {

TEST(ContentDescription, EntitiesBelongToALayoutOrToABlockDeclaredBefore) {
  struct Case {
    std::string line;
    std::string error;  // empty when the line is good
  };
  const std::vector<Case> cases = {
      {"image block \"B\" \"C:\\i.png\" erased hyperlink \"h\"", ""},
      {"ole block \"B\" linked \"C:\\t.xls\"", ""},
      {"ole \"Model\" embedded erased hyperlink \"h\"", ""},
      {"entity block \"B\" hyperlink \"h\"", ""},
      {"image block \"Nope\" \"C:\\i.png\"", "unknown block 'Nope'"},
      {"entity \"Nope\"", "unknown layout 'Nope'"},
      {"ole \"Model\" sideways", "expected linked or embedded, found 'sideways'"},
      {"xref \"X\" \"C:\\x.dwg\" maybe", "expected resolved or unresolved, found 'maybe'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    sim::DrawingDescription d;
    sim::ParseResult r = sim::ParseDrawingDescription(
        "tavlet-drawing 1\nblock \"B\"\n" + c.line + "\npicture 1 1 background 0\n", "t.tdd", d);
    EXPECT_EQ(r.ok, c.error.empty());
    if (!c.error.empty()) {
      EXPECT_EQ(r.message.rfind("t.tdd:3: " + c.error, 0), 0u) << r.message;
    }
  }
  sim::DrawingDescription d;
  ASSERT_TRUE(sim::ParseDrawingDescription(
                  "tavlet-drawing 1\nblock \"B\"\nimage block \"B\" \"C:\\i.png\" erased hyperlink "
                  "\"h\"\npicture 1 1 background 0\n",
                  "t.tdd", d)
                  .ok);
  ASSERT_EQ(d.entities.size(), 1u);
  EXPECT_EQ(d.entities[0].block, "B");
  EXPECT_EQ(d.entities[0].layout, "");
  EXPECT_TRUE(d.entities[0].erased);
  EXPECT_EQ(d.entities[0].hyperlinks, std::vector<std::string>{"h"});
}

TEST(ContentDescription, BlockNamesTellAnonymousAndDependentBlocks) {
  SimDrawing d("block \"*U1\"\nblock \"Site|Tree\"\nblock \"Tree\"\n");
  db::BlockTable table = db::BlockTable::Open(d.Database(), d.db);
  db::RecordWalk walk = table.Records();
  std::vector<std::string> seen;
  port::ObjectId id = 0;
  while (walk.Next(id)) {
    port::BlockRecordInfo info;
    std::string name;
    ASSERT_TRUE(db::BlockRecord::Open(d.Database(), id).Info(info, &name));
    seen.push_back(name + (info.isLayout ? " layout" : "") + (info.isModelSpace ? " model" : "") +
                   (info.isAnonymous ? " anonymous" : "") + (info.isDependent ? " dependent" : ""));
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"*Model_Space layout model", "*U1 anonymous",
                                            "Site|Tree dependent", "Tree"}));
}

}  // namespace
}  // namespace tavlet::content
