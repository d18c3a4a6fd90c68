// The hover tip's text of a drawing.
#include "bar/tip_text.h"

#include <gtest/gtest.h>

#include <string>

#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::bar {
namespace {

class TipTextTest : public ::testing::Test {
 protected:
  port::Document Describe(const std::string& body) {
    return host.OpenDescription("tavlet-drawing 1\npath \"C:\\proj\\plan.a.dwg\"\n" + body +
                                    "picture 1 1 background 0\n",
                                "plan.tdd");
  }
  std::string Tip(port::Document doc, int fullPath, int props) {
    settings.ShowFullPathInTips = fullPath;
    settings.ShowDwgPropsInTips = props;
    return TipText(host, files, settings, cache, doc);
  }

  MemoryFileSystem files;
  sim::SimHost host{files};
  BarSettings settings;
  TipCache cache;
};

TEST_F(TipTextTest, NameOrPathThenTheFilledPropertiesInTheirOrder) {
  const std::string all =
      "summary author \"Ann\"\nsummary title \"T\"\nsummary subject \"S\"\nsummary keywords \"k1\"\n"
      "summary comments \"C\"\nsummary last-saved-by \"Bob\"\nsummary revision \"7\"\n"
      "summary hyperlink-base \"http://h/\"\ncustom \"Job\" \"42\"\ncustom \"Empty\" \"\"\ncustom \"Site\" \"N\"\n";
  struct Case {
    std::string body;
    int fullPath, props;
    std::string expected;
  };
  const Case cases[] = {
      {"", 0, 0, "plan.a"},
      {"", 1, 0, "C:\\proj\\plan.a"},
      {all, 0, 0, "plan.a"},
      {"", 0, 1, "plan.a"},  // nothing filled in: no line feed
      {"summary title \"T\"\nsummary revision \"\"\n", 0, 1, "plan.a\n标题:T"},
      {all, 1, 1,
       "C:\\proj\\plan.a\n作者:Ann\n标题:T\n主题:S\n关键字:k1\n注释:C\n最近保存者:Bob\n修改码:7\n超链接地址:http://h/"
       "\nJob: 42\nSite: N"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    EXPECT_EQ(Tip(Describe(c.body), c.fullPath, c.props), c.expected);
  }
}

TEST_F(TipTextTest, AnUnnamedDrawingShowsItsFileName) {
  EXPECT_EQ(Tip(host.NewDrawing(), 0, 1), "Drawing1");
}

TEST_F(TipTextTest, FailingPropertyCallsLeaveTheirPartOut) {
  port::Document doc = Describe("summary author \"Ann\"\nsummary title \"T\"\ncustom \"Job\" \"42\"\n");
  host.Faults().Fail("DrawingDatabase::HasSummaryInfo", 1, port::kFail, "no info");
  EXPECT_EQ(Tip(doc, 0, 1), "plan.a");
  host.Faults().Fail("DrawingDatabase::SummaryText", 1, port::kFail, "author");
  host.Faults().Fail("DrawingDatabase::CustomSummaryCount", 1, port::kFail, "count");
  EXPECT_EQ(Tip(doc, 0, 1), "plan.a\n标题:T");
}

TEST_F(TipTextTest, TheCacheIsOnlyReadWhenItHoldsText) {
  port::Document doc = Describe("");
  cache[doc] = "";
  EXPECT_EQ(Tip(doc, 0, 0), "plan.a");
  cache[doc] = "kept";
  EXPECT_EQ(Tip(doc, 0, 0), "kept");
}

}  // namespace
}  // namespace tavlet::bar
