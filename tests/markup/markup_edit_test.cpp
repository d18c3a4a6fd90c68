// Writing with MarkupDoc: each edit's exact text, the positions it leaves, and an
// index that still matches a fresh parse.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "worksets/markup_doc.h"

namespace tavlet {
namespace {

// Parses `text`, walks to the element named by `path` ("r/a": the main position on
// "a" below "r"), runs `edit`, and checks the result text and the index.
struct EditCase {
  const char* name;
  std::string text;
  std::vector<std::string> path;
  std::function<bool(MarkupDoc&)> edit;
  bool ok;
  std::string result;
};

void WalkTo(MarkupDoc& doc, const std::vector<std::string>& path) {
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (i > 0) {
      ASSERT_TRUE(doc.EnterChild());
    }
    if (i + 1 < path.size()) {
      ASSERT_TRUE(doc.FindElement(path[i])) << path[i];
      ASSERT_TRUE(doc.FindChildElement(path[i + 1])) << path[i + 1];
    } else if (i == 0) {
      ASSERT_TRUE(doc.FindElement(path[i])) << path[i];
    }
  }
}

void RunEditCases(const std::vector<EditCase>& cases) {
  for (const EditCase& c : cases) {
    SCOPED_TRACE(c.name);
    MarkupDoc doc;
    doc.SetDoc(c.text);
    WalkTo(doc, c.path);
    EXPECT_EQ(c.edit(doc), c.ok);
    EXPECT_EQ(doc.GetDoc(), c.result);
    EXPECT_EQ(doc.VerifyIndex(), "");
  }
}

TEST(MarkupEdit, SetContent) {
  RunEditCases({
      {"plain text is encoded", "<r><a>x</a><b/></r>", {"r", "a"},
       [](MarkupDoc& d) { return d.SetContent("1<2 & 3>0 \"'"); }, true,
       "<r><a>1&lt;2 &amp; 3&gt;0 \"'</a><b/></r>"},
      {"self-closing element opens", "<r><a/><b/></r>", {"r", "a"},
       [](MarkupDoc& d) { return d.SetContent("x"); }, true, "<r><a>x</a><b/></r>"},
      {"self-closing with a blank", "<r><a k='1' /></r>", {"r", "a"},
       [](MarkupDoc& d) { return d.SetContent("x"); }, true, "<r><a k='1' >x</a></r>"},
      {"empty content opens too", "<a/>", {"a"}, [](MarkupDoc& d) { return d.SetContent(""); }, true, "<a></a>"},
      {"cdata", "<a>old</a>", {"a"}, [](MarkupDoc& d) { return d.SetContent("<&>", true); }, true,
       "<a><![CDATA[<&>]]></a>"},
      {"cdata end split", "<a/>", {"a"}, [](MarkupDoc& d) { return d.SetContent("a]]>b", true); }, true,
       "<a><![CDATA[a]]]]><![CDATA[>b]]></a>"},
      {"refused with a child", "<r><a/></r>", {"r"}, [](MarkupDoc& d) { return d.SetContent("x"); }, false,
       "<r><a/></r>"},
      {"refused at position 0", "<r/>", {}, [](MarkupDoc& d) { return d.SetContent("x"); }, false, "<r/>"},
      {"refused where \"//>\" would stay self-closing", "<r//>", {"r"},
       [](MarkupDoc& d) { return d.SetContent("x") || d.AddChildElement("a"); }, false, "<r//>"},
      {"refused where the name holds a quote", "<r\"a\"/>", {""},
       [](MarkupDoc& d) { return d.SetContent("x") || d.AddChildElement("a"); }, false, "<r\"a\"/>"},
      {"refused where the \"/\" is a trail byte", "<r\x81/>", {""},
       [](MarkupDoc& d) { return d.SetContent("x") || d.AddChildElement("a"); }, false, "<r\x81/>"},
      {"refused for a dangling lead byte", "<r/>", {"r"}, [](MarkupDoc& d) { return d.SetContent("x\x81"); },
       false, "<r/>"},
  });
}

TEST(MarkupEdit, ContentRoundTrips) {
  const std::vector<std::string> texts = {"a]]>b", "]]>", "]]>]]>", "x]", "x]]", "中文]]>&<", "",
                                          "\x81]]><b>"};
  for (const std::string& text : texts) {
    for (bool cdata : {false, true}) {
      SCOPED_TRACE(text + (cdata ? " as CDATA" : " as text"));
      MarkupDoc doc;
      ASSERT_TRUE(doc.SetDoc("<r><a/><b/></r>"));
      ASSERT_TRUE(doc.FindChildElement("a"));
      ASSERT_TRUE(doc.EnterChild());
      ASSERT_TRUE(doc.SetContent(text, cdata));
      EXPECT_EQ(doc.GetContent(), text);
      EXPECT_EQ(doc.VerifyIndex(), "");
      MarkupDoc again;
      ASSERT_TRUE(again.SetDoc(doc.GetDoc()));
      ASSERT_TRUE(again.FindChildElement("a"));
      ASSERT_TRUE(again.EnterChild());
      EXPECT_EQ(again.GetContent(), text);
    }
  }
}

TEST(MarkupEdit, SetAttribute) {
  RunEditCases({
      {"replace keeps the quotes", "<r a='1' b=\"2\"><x/></r>", {"r"},
       [](MarkupDoc& d) { return d.SetAttribute("a", "it's <&>\""); }, true,
       "<r a='it&apos;s &lt;&amp;&gt;&quot;' b=\"2\"><x/></r>"},
      {"add before >", "<r><x/></r>", {"r"}, [](MarkupDoc& d) { return d.SetAttribute("n", "v"); }, true,
       "<r n=\"v\"><x/></r>"},
      {"add before />", "<r><x/></r>", {"r", "x"}, [](MarkupDoc& d) { return d.SetAttribute("n", 42); }, true,
       "<r><x n=\"42\"/></r>"},
      {"negative integer", "<r/>", {"r"}, [](MarkupDoc& d) { return d.SetAttribute("n", -7); }, true,
       "<r n=\"-7\"/>"},
      {"unquoted value is never found, so one is added", "<r a=1/>", {"r"},
       [](MarkupDoc& d) { return d.SetAttribute("a", "2"); }, true, "<r a=1 a=\"2\"/>"},
      {"shorter value", "<r><p a=\"long value\"><q/></p><s/></r>", {"r", "p"},
       [](MarkupDoc& d) { return d.SetAttribute("a", ""); }, true, "<r><p a=\"\"><q/></p><s/></r>"},
      {"name that would break the tag", "<r/>", {"r"}, [](MarkupDoc& d) { return d.SetAttribute("a b", "1"); },
       false, "<r/>"},
      {"no main position", "<r/>", {}, [](MarkupDoc& d) { return d.SetAttribute("a", "1"); }, false, "<r/>"},
      {"a value the search reads past the tag", "<r<r\" c=b=\"\n//>", {""},
       [](MarkupDoc& d) { return d.SetAttribute("b", "1"); }, false, "<r<r\" c=b=\"\n//>"},
      {"a lead byte before the insert point", "<r\x81/>", {""}, [](MarkupDoc& d) { return d.SetAttribute("a", "1"); },
       false, "<r\x81/>"},
  });
}

TEST(MarkupEdit, AddAndInsert) {
  RunEditCases({
      {"child into self-closing parent", "<r/>", {"r"}, [](MarkupDoc& d) { return d.AddChildElement("a"); }, true,
       "<r>\r\n<a/>\r\n</r>"},
      {"child with text into empty parent", "<r></r>", {"r"},
       [](MarkupDoc& d) { return d.AddChildElement("a", "x<y"); }, true, "<r>\r\n<a>x&lt;y</a>\r\n</r>"},
      {"child added last", "<r>\r\n<a/>\r\n</r>", {"r"}, [](MarkupDoc& d) { return d.AddChildElement("b"); },
       true, "<r>\r\n<a/>\r\n<b/>\r\n</r>"},
      {"child inserted first skips white space", "<r>\r\n  <a/>\r\n</r>", {"r"},
       [](MarkupDoc& d) { return d.InsertChildElement("b"); }, true, "<r>\r\n  <b/>\r\n<a/>\r\n</r>"},
      {"child inserted before text stays before it", "<r> t<a/></r>", {"r"},
       [](MarkupDoc& d) { return d.InsertChildElement("b"); }, true, "<r><b/>\r\n t<a/></r>"},
      {"sibling after", "<r><a/>\r\n<c/></r>", {"r", "a"}, [](MarkupDoc& d) { return d.AddElement("b"); }, true,
       "<r><a/>\r\n<b/>\r\n<c/></r>"},
      {"sibling before", "<r><a/><c/></r>", {"r", "c"}, [](MarkupDoc& d) { return d.InsertElement("b"); }, true,
       "<r><a/><b/>\r\n<c/></r>"},
      {"sibling with no main position goes last", "<r><a/></r>", {"r", "a"},
       [](MarkupDoc& d) {
         d.ResetPos();
         d.FindElement();
         d.EnterChild();
         return d.AddElement("z");
       },
       true, "<r><a/><z/>\r\n</r>"},
      {"root into an empty document", "", {}, [](MarkupDoc& d) { return d.AddElement("r", "t"); }, true,
       "<r>t</r>\r\n"},
      {"root after a declaration", "<?xml version=\"1.0\"?>\r\n", {},
       [](MarkupDoc& d) { return d.AddElement("r"); }, true, "<?xml version=\"1.0\"?>\r\n<r/>\r\n"},
      {"no second root", "<r/>", {"r"}, [](MarkupDoc& d) { return d.AddElement("s"); }, false, "<r/>"},
      {"no root into broken text", "<!-- x", {}, [](MarkupDoc& d) { return d.AddElement("r"); }, false,
       "<!-- x"},
      {"child needs a main position", "<r/>", {}, [](MarkupDoc& d) { return d.AddChildElement("a"); }, false,
       "<r/>"},
      {"bad names", "<r/>", {"r"},
       [](MarkupDoc& d) {
         return d.AddChildElement("") || d.AddChildElement("a b") || d.AddChildElement("1a") ||
                d.AddChildElement("a\"") || d.AddChildElement("a/");
       },
       false, "<r/>"},
      {"sub-document as child", "<r><a/></r>", {"r"},
       [](MarkupDoc& d) { return d.AddChildSubDocument("<s k='1'><t/>x</s>"); }, true,
       "<r><a/><s k='1'><t/>x</s>\r\n</r>"},
      {"sub-document inserted", "<r><a/></r>", {"r", "a"},
       [](MarkupDoc& d) { return d.InsertSubDocument("<s/>"); }, true, "<r><s/>\r\n<a/></r>"},
      {"sub-document into self-closing parent", "<r/>", {"r"},
       [](MarkupDoc& d) { return d.AddChildSubDocument("<s><t/></s>"); }, true, "<r>\r\n<s><t/></s>\r\n</r>"},
      {"broken sub-document changes nothing", "<r/>", {"r"},
       [](MarkupDoc& d) { return d.AddChildSubDocument("<s><t></s>"); }, false, "<r/>"},
      {"sub-document with two roots", "<r/>", {"r"},
       [](MarkupDoc& d) { return d.AddChildSubDocument("<s/><t/>"); }, false, "<r/>"},
  });
}

TEST(MarkupEdit, AddedElementsAreNavigable) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.AddElement("root"));
  ASSERT_TRUE(doc.AddChildElement("item", "1"));
  ASSERT_TRUE(doc.AddChildElement("item", "2"));
  ASSERT_TRUE(doc.InsertChildElement("item", "0"));
  ASSERT_TRUE(doc.AddChildSubDocument("<item>3</item>"));
  // Each add stands on the new element, so the sub-document follows "0".
  EXPECT_EQ(doc.GetDoc(), "<root>\r\n<item>1</item>\r\n<item>0</item>\r\n<item>3</item>\r\n<item>2</item>\r\n</root>\r\n");
  EXPECT_EQ(doc.VerifyIndex(), "");
  doc.ResetPos();
  std::string seen;
  while (doc.FindChildElement("item")) {
    doc.EnterChild();
    seen += doc.GetContent();
    doc.LeaveToParent();
  }
  EXPECT_EQ(seen, "1032");
}

TEST(MarkupEdit, AddRootAfterRemovingIt) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<!-- keep -->\r\n<r/>\r\n"));
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.RemoveElement());
  EXPECT_EQ(doc.GetDoc(), "<!-- keep -->\r\n");
  EXPECT_FALSE(doc.IsWellFormed());
  ASSERT_TRUE(doc.AddElement("s"));
  EXPECT_EQ(doc.GetDoc(), "<!-- keep -->\r\n<s/>\r\n");
  EXPECT_EQ(doc.VerifyIndex(), "");
}

TEST(MarkupRemove, WhiteSpaceRuleAndLinks) {
  RunEditCases({
      {"trailing white space goes before markup", "<r>\r\n<a/>\r\n<b/>\r\n</r>", {"r", "a"},
       [](MarkupDoc& d) { return d.RemoveElement(); }, true, "<r>\r\n<b/>\r\n</r>"},
      {"white space before text stays", "<r><a/> t</r>", {"r", "a"},
       [](MarkupDoc& d) { return d.RemoveElement(); }, true, "<r> t</r>"},
      {"last child", "<r><a/><b><c/></b></r>", {"r", "b"}, [](MarkupDoc& d) { return d.RemoveElement(); }, true,
       "<r><a/></r>"},
      {"middle child", "<r><a/><b/><c/></r>", {"r", "b"}, [](MarkupDoc& d) { return d.RemoveElement(); }, true,
       "<r><a/><c/></r>"},
      {"child form", "<r><a/><b/></r>", {"r"},
       [](MarkupDoc& d) { return d.FindChildElement("b") && d.RemoveChildElement(); }, true, "<r><a/></r>"},
      {"nothing to remove", "<r/>", {}, [](MarkupDoc& d) { return d.RemoveElement() || d.RemoveChildElement(); },
       false, "<r/>"},
  });
}

TEST(MarkupRemove, OnlyChildLeavesNoChild) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r><a><x/></a></r>"));
  ASSERT_TRUE(doc.FindChildElement("a"));
  const std::uint32_t r = doc.MainPosition();
  const std::uint32_t a = doc.ChildPosition();
  ASSERT_TRUE(doc.RemoveChildElement());
  EXPECT_EQ(doc.Record(r).child, 0u);
  EXPECT_EQ(doc.ChildPosition(), 0u);
  EXPECT_EQ(doc.GetDoc(), "<r></r>");
  EXPECT_EQ(doc.Record(r).length, 7u);
  EXPECT_EQ(doc.Record(a).flags, MarkupDoc::kRemovedRecord);
  EXPECT_EQ(doc.FreeChain(), a);
  EXPECT_EQ(doc.VerifyIndex(), "");
  // The freed record stays out of use; a saved position on it or below is refused.
  ASSERT_TRUE(doc.AddChildElement("b"));
  EXPECT_NE(doc.ChildPosition(), a);
}

TEST(MarkupRemove, LoopRemovesMatchesAndKeepsOthers) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r>\r\n<x/>\r\n<k/>\r\n<x/>\r\n<x><y/></x>\r\n<k/>\r\n</r>"));
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.EnterChild());
  ASSERT_TRUE(doc.FindElement("k"));
  ASSERT_TRUE(doc.SavePosition("k"));
  ASSERT_TRUE(doc.FindElement("x"));
  ASSERT_TRUE(doc.FindElement("x"));
  ASSERT_TRUE(doc.FindChildElement("y"));
  ASSERT_TRUE(doc.SavePosition("inside"));
  doc.ResetPos();
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.EnterChild());
  int removed = 0;
  while (doc.FindElement("x")) {
    ASSERT_TRUE(doc.RemoveElement());
    ++removed;
  }
  EXPECT_EQ(removed, 3);
  EXPECT_EQ(doc.GetDoc(), "<r>\r\n<k/>\r\n<k/>\r\n</r>");
  EXPECT_EQ(doc.VerifyIndex(), "");
  EXPECT_TRUE(doc.RestorePosition("k"));
  EXPECT_EQ(doc.GetTagName(), "k");
  EXPECT_FALSE(doc.RestorePosition("inside")) << "below a removed element";
}

}  // namespace
}  // namespace tavlet
