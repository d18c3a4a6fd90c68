// Reading with MarkupDoc: parse results and their messages, the nodes a parse
// skips, code-page 936 text, entities and CDATA, attributes and navigation.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "worksets/markup_doc.h"

namespace tavlet {
namespace {

struct ParseCase {
  const char* name;
  std::string text;
  bool ok;
  std::string error;
};

TEST(MarkupParse, ResultsAndMessages) {
  const std::vector<ParseCase> cases = {
      {"empty", "", false, "空文件"},
      {"white space only", " \r\n\t", false, "根目录没找到"},
      {"text only", "hello", false, "根目录没找到"},
      {"comment only", "<!-- x -->", false, "根目录没找到"},
      {"second root", "<a/><b/>", false, "单元码 'b' 上偏移 4 是同属根源"},
      {"second root after open one", "<a></a>\r\n<c x='1'>", false, "单元码 'c' 上偏移 9 是同属根源"},
      {"end tag mismatch", "<a><b></a>", false, "末端标记 'a' 上偏移 8 个不符合比开始标记 'b' 上偏移 3 个"},
      {"end tag alone", "</a>", false, "没开始标记和末端标记 'a' 上偏移 0 个"},
      {"end tag after root", "<a/></b>", false, "没开始标记和末端标记 'b' 上偏移 4 个"},
      {"not ended", "<a>", false, "单元码 'a' 上偏移 0 个没有结束"},
      {"inner not ended", "<a>\r\n <b>x</a>", false, "末端标记 'a' 上偏移 12 个不符合比开始标记 'b' 上偏移 6 个"},
      {"innermost not ended", "<a><b><c/>", false, "单元码 'b' 上偏移 3 个没有结束"},
      {"bad name character", "<a>< b/></a>", false, "错误的 标记名称性质 上偏移 3"},
      {"digit opens no tag", "<1/>", false, "错误的 标记名称性质 上偏移 0"},
      {"bad bang", "<a><!x></a>", false, "错误的 ! tag 上偏移 3"},
      {"bad comment", "<a><!-x--></a>", false, "错误的 注释标记 上偏移 3"},
      {"bad bracket", "<a><![X[y]]></a>", false, "错误的 tag 上偏移 3"},
      {"unterminated start tag", "<a><b x='1'", false, "单元码标记 上偏移 3 无端接的"},
      {"unterminated quote", "<a b=\"1>", false, "单元码标记 上偏移 0 无端接的"},
      {"unterminated end tag", "<a></a", false, "单元码末端标记 上偏移 3 无端接的"},
      {"unterminated comment", "<a/><!-- x ->", false, "Comment 上偏移 4 无端接的"},
      {"unterminated cdata", "<a><![CDATA[x]]</a>", false, "CDATA 区域 上偏移 3 无端接的"},
      {"unterminated instruction", "<?xml version='1.0'>", false, "配置指令 上偏移 0 无端接的"},
      {"unterminated doctype", "<!DOCTYPE a [ <!ENTITY e 'x'> ", false, "Doctype 上偏移 0 无端接的"},
      {"lone open", "<a/><", false, "tag 上偏移 4 无端接的"},
      {"one element", "<a/>", true, ""},
      {"name with a lead byte", "<根/>", true, ""},
      {"instruction, doctype, comments around", "<?xml version=\"1.0\"?>\r\n<!DOCTYPE r [<!ELEMENT r ANY>]>\r\n"
                                               "<!-- c --><r/><!-- d -->\r\n<?pi x?>",
       true, ""},
      {"declaration outside a doctype", "<!ELEMENT r ANY><r/>", true, ""},
      {"quoted \">\" in a tag", "<a b=\"x>y\" c='>'/>", true, ""},
      {"quotes in a comment are text", "<a><!-- it's \" --></a>", true, ""},
      {"end tag name with attributes of space", "<a></a >", true, ""},
      {"name match ends at \"[\"", "<a[1]></a>", true, ""},
  };
  for (const ParseCase& c : cases) {
    MarkupDoc doc;
    EXPECT_EQ(doc.SetDoc(c.text), c.ok) << c.name;
    EXPECT_EQ(doc.GetError(), c.error) << c.name;
    EXPECT_EQ(doc.IsWellFormed(), c.ok) << c.name;
    EXPECT_EQ(doc.GetDoc(), c.text) << c.name << ": the text stays after any parse";
    if (!c.ok) {
      EXPECT_FALSE(doc.FindElement()) << c.name << ": every find fails after a failed parse";
    }
  }
}

TEST(MarkupParse, NewParseForgetsTheOldTree) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<a><b/></a>"));
  ASSERT_TRUE(doc.FindChildElement("b"));
  EXPECT_FALSE(doc.SetDoc("<a>"));
  EXPECT_FALSE(doc.IsWellFormed());
  EXPECT_FALSE(doc.FindElement("a"));
  EXPECT_EQ(doc.RecordsUsed(), 1u);
  EXPECT_FALSE(doc.SetDoc(nullptr));
  EXPECT_EQ(doc.GetDoc(), "");
  EXPECT_EQ(doc.GetError(), "空文件");
}

TEST(MarkupParse, RecordsHoldOffsetsAndLengths) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r x='1'>\r\n <a/>\r\n <b>t</b >\r\n</r>"));
  const ElementRecord& root = doc.Record(0);
  EXPECT_EQ(root.length, doc.GetDoc().size());
  EXPECT_EQ(MarkupDoc::EndTagLength(root), 1);
  const ElementRecord& r = doc.Record(root.child);
  EXPECT_EQ(r.start, 0u);
  EXPECT_EQ(r.length, doc.GetDoc().size());
  EXPECT_EQ(MarkupDoc::StartTagLength(r), 9u);
  EXPECT_EQ(MarkupDoc::EndTagLength(r), 4);
  EXPECT_EQ(r.flags & MarkupDoc::kLevelMask, 0u);
  const ElementRecord& a = doc.Record(r.child);
  EXPECT_EQ(a.start, 12u);
  EXPECT_EQ(a.length, 4u);
  EXPECT_EQ(MarkupDoc::EndTagLength(a), 0) << "self-closing";
  EXPECT_NE(a.flags & MarkupDoc::kFirstChild, 0u);
  EXPECT_EQ(a.flags & MarkupDoc::kLevelMask, 1u);
  const ElementRecord& b = doc.Record(a.next);
  EXPECT_EQ(b.start, 19u);
  EXPECT_EQ(b.length, 9u);
  EXPECT_EQ(MarkupDoc::EndTagLength(b), 5);
  EXPECT_EQ(b.flags & MarkupDoc::kFirstChild, 0u);
  EXPECT_EQ(b.next, 0u);
  EXPECT_EQ(a.prev, r.child + 1) << "the first child's prev is the last child";
  EXPECT_EQ(b.prev, r.child);
  EXPECT_EQ(doc.VerifyIndex(), "");
}

// Every case below differs between stepping by byte and stepping by character:
// 0x81 is a lead byte, so the byte after it is never markup.
TEST(MarkupCodePage, TrailBytesAreNeverMarkup) {
  MarkupDoc doc;
  // "连" is 0xC1 0xAC; the value survives.
  ASSERT_TRUE(doc.SetDoc("<a b=\"连\"/>"));
  ASSERT_TRUE(doc.FindElement("a"));
  EXPECT_EQ(doc.GetAttribute("b"), "连");

  // A quote after a lead byte belongs to the character, not to the value's end.
  ASSERT_TRUE(doc.SetDoc("<a b=\"\x81\"\" c=\"2\"/>"));
  ASSERT_TRUE(doc.FindElement());
  EXPECT_EQ(doc.GetAttribute("b"), "\x81\"");
  EXPECT_EQ(doc.GetAttribute("c"), "2");

  // "<" after a lead byte opens no child.
  ASSERT_TRUE(doc.SetDoc("<a>\x81<b/></a>"));
  ASSERT_TRUE(doc.FindElement());
  EXPECT_FALSE(doc.FindChildElement("b"));
  EXPECT_EQ(doc.GetContent(), "\x81<b/>");

  // "&" after a lead byte starts no entity.
  ASSERT_TRUE(doc.SetDoc("<a>\x81&amp;</a>"));
  ASSERT_TRUE(doc.FindElement());
  EXPECT_EQ(doc.GetContent(), "\x81&amp;");

  // "\" (0x5C) is a common trail byte; it doesn't end an unquoted word.
  ASSERT_TRUE(doc.SetDoc("<\x95\x5cx k=\"v\"/>"));
  ASSERT_TRUE(doc.FindElement("\x95\x5cx"));
  EXPECT_EQ(doc.GetTagName(), "\x95\x5cx");
  EXPECT_EQ(doc.GetAttribute("k"), "v");

  // ">" after a lead byte doesn't end the tag.
  EXPECT_FALSE(doc.SetDoc("<a b=1\x81>"));
  EXPECT_EQ(doc.GetError(), "单元码标记 上偏移 0 无端接的");
}

struct ContentCase {
  const char* text;
  const char* content;
};

TEST(MarkupContent, EntitiesAndCdataDecode) {
  const std::vector<ContentCase> cases = {
      {"<a>x&lt;y<![CDATA[&]]></a>", "x<y&"},
      {"<a>&lt;&amp;&gt;&apos;&quot;</a>", "<&>'\""},
      {"<a>&#x41;&#66;&#x4e2d;</a>", "AB中"},
      {"<a>&#65</a>", "&#65"},
      {"<a>&foo;</a>", "&foo;"},
      {"<a>&#0;&#;</a>", "&#0;&#;"},
      {"<a>&#12345678;</a>", "&#12345678;"},  // eight digits: too long
      {"<a>&#65601;</a>", "A"},               // only the low 16 bits count
      {"<a>&#xD800;</a>", "&#xD800;"},         // a lone surrogate has no multibyte form
      {"<a>&#X41;</a>", "&#X41;"},             // only a lower-case x
      {"<a>&lt</a>", "&lt"},
      {"<a>&amp</a>", "&amp"},
      {"<a>a&</a>", "a&"},
      {"<a><![CDATA[<b>&amp;</b>]]></a>", "<b>&amp;</b>"},
      {"<a> <![CDATA[x]]> <!-- c --> y <?p?></a>", "x y "},
      {"<a><b/></a>", ""},
      {"<a/>", ""},
      {"<a></a>", ""},
      {"<a>中文&amp;</a>", "中文&"},
  };
  for (const ContentCase& c : cases) {
    MarkupDoc doc;
    ASSERT_TRUE(doc.SetDoc(c.text)) << c.text << ": " << doc.GetError();
    ASSERT_TRUE(doc.FindElement()) << c.text;
    EXPECT_EQ(doc.GetContent(), c.content) << c.text;
  }
}

TEST(MarkupContent, NumericReferenceUsesLow16Bits) {
  // 1234567 = 0x12D687; U+D687 is a Hangul syllable outside code page 936, so the
  // reference stays as written; 0x4E2D + 0x10000 * 3 decodes as U+4E2D.
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<a>&#1234567;&#216621;</a>"));
  ASSERT_TRUE(doc.FindElement());
  EXPECT_EQ(doc.GetContent(), "&#1234567;中");
}

struct AttributeCase {
  const char* text;
  const char* name;
  const char* value;
};

TEST(MarkupAttributes, SearchRules) {
  const std::vector<AttributeCase> cases = {
      {"<a b=\"1\"/>", "b", "1"},
      {"<a b='1'/>", "b", "1"},
      {"<a b=1/>", "b", ""},  // a value without quotes is never found
      {"<a b=1 b=\"2\"/>", "b", "2"},
      {"<a b = \"1\" c=\"2\"/>", "c", "2"},
      {"<a bc=\"1\" b=\"2\"/>", "b", "2"},
      {"<a b=\"1\"/>", "b[1]", "1"},
      {"<a b=\"1\"/>", "B", ""},
      {"<a x=\"&lt;&#x41;\"/>", "x", "<A"},
      {"<a x=\"1\"/ y=\"2\"/>", "y", ""},  // an unquoted "/" ends the search
      {"<a \"b\"=\"1\"/>", "b", ""},
      {"<a b=\"c=&quot;d&quot;\"/>", "b", "c=\"d\""},
      {"<a b=\"1\"/>", "a", ""},  // the tag name is no attribute
      {"<a b=\"1\"/>", "", "1"},
      {"<a b=1 c=\"2\"/>", "", ""},  // with no name, the first attribute answers
  };
  for (const AttributeCase& c : cases) {
    MarkupDoc doc;
    ASSERT_TRUE(doc.SetDoc(c.text)) << c.text << ": " << doc.GetError();
    ASSERT_TRUE(doc.FindElement()) << c.text;
    EXPECT_EQ(doc.GetAttribute(c.name), c.value) << c.text << " [" << c.name << "]";
  }
}

TEST(MarkupAttributes, NamesByIndex) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<a one=\"1\" two='2' three=3 名=\"4\"/>"));
  EXPECT_EQ(doc.GetAttributeName(0), "") << "no main position";
  ASSERT_TRUE(doc.FindElement());
  const std::vector<std::string> names = {"one", "two", "three", "3", "名", ""};
  for (int i = 0; i < static_cast<int>(names.size()); ++i) EXPECT_EQ(doc.GetAttributeName(i), names[i]) << i;
  EXPECT_EQ(doc.GetAttributeName(-1), "");
}

TEST(MarkupNavigation, FindsMoveForwardAndLevelsNest) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r><i n='1'/><j/><i n='2'><k/></i><i n='3'/></r>"));
  EXPECT_EQ(doc.GetTagName(), "");
  std::vector<std::string> seen;
  while (doc.FindChildElement("i")) {
    ASSERT_TRUE(doc.EnterChild());
    seen.push_back(doc.GetAttribute("n") + doc.GetTagName());
    if (doc.GetAttribute("n") == "2") {
      EXPECT_TRUE(doc.FindChildElement("k"));
      EXPECT_FALSE(doc.FindChildElement("k"));
    }
    ASSERT_TRUE(doc.LeaveToParent());
    EXPECT_EQ(doc.GetTagName(), "r");
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"1i", "2i", "3i"}));

  doc.ResetPos();
  EXPECT_FALSE(doc.LeaveToParent());
  EXPECT_FALSE(doc.EnterChild());
  ASSERT_TRUE(doc.FindElement("r"));
  EXPECT_FALSE(doc.FindElement("r")) << "one root, and the find moves on";
  ASSERT_TRUE(doc.FindChildElement());
  EXPECT_EQ(doc.Record(doc.ChildPosition()).start, 3u);
  ASSERT_TRUE(doc.EnterChild());
  EXPECT_TRUE(doc.FindElement("j"));
  EXPECT_TRUE(doc.FindElement());
  EXPECT_EQ(doc.GetAttribute("n"), "2");
  EXPECT_TRUE(doc.LeaveToParent());
  EXPECT_EQ(doc.GetTagName(), "r");
  // Entering with no child position leaves the main position empty: a find then
  // starts at the first child.
  doc.ResetPos();
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.EnterChild());
  EXPECT_EQ(doc.MainPosition(), 0u);
  EXPECT_EQ(doc.GetTagName(), "");
  EXPECT_TRUE(doc.FindElement("j"));
}

TEST(MarkupNavigation, NameMatchRules) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r><abc/><ab/><abcd/><a=b/></r>"));
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"abc", "abc"}, {"ab", "ab"}, {"abc[1]", "abc"}, {"abcd", "abcd"}, {"a=b", "a=b"}, {"ABC", ""}, {"a", "a=b"},
  };
  for (const auto& [name, found] : cases) {
    doc.ResetPos();
    const bool hit = doc.FindChildElement(name);
    EXPECT_EQ(hit, *found != '\0') << name;
    if (hit) {
      ASSERT_TRUE(doc.EnterChild());
      EXPECT_EQ(doc.GetTagName(), found) << name;
    }
  }
}

TEST(MarkupSubDocument, TrailingWhiteSpaceOnlyBeforeMarkup) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r><a x='1'>t</a> \r\n <b/>\r\n x<c/>\r\n</r>"));
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.EnterChild());
  ASSERT_TRUE(doc.FindElement("a"));
  EXPECT_EQ(doc.GetSubDocument(), "<a x='1'>t</a> \r\n ");
  ASSERT_TRUE(doc.FindElement("b"));
  EXPECT_EQ(doc.GetSubDocument(), "<b/>") << "text follows the white space";
  ASSERT_TRUE(doc.FindElement("c"));
  EXPECT_EQ(doc.GetSubDocument(), "<c/>\r\n");
}

TEST(MarkupSavedPositions, KeepMainChildAndParentPositions) {
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r><a><x/></a><b/></r>"));
  EXPECT_FALSE(doc.RestorePosition("nothing saved"));
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.FindChildElement("a"));
  ASSERT_TRUE(doc.SavePosition("child"));
  ASSERT_TRUE(doc.EnterChild());
  ASSERT_TRUE(doc.SavePosition("main"));
  ASSERT_TRUE(doc.EnterChild());
  ASSERT_TRUE(doc.SavePosition("parent"));
  ASSERT_TRUE(doc.SavePosition("名字"));  // bytes above 0x7F sum negative

  doc.ResetPos();
  ASSERT_TRUE(doc.RestorePosition("child"));
  EXPECT_EQ(doc.GetTagName(), "r");
  EXPECT_TRUE(doc.EnterChild());
  EXPECT_EQ(doc.GetTagName(), "a");

  ASSERT_TRUE(doc.RestorePosition("main"));
  EXPECT_EQ(doc.GetTagName(), "a");
  EXPECT_EQ(doc.ChildPosition(), 0u);
  EXPECT_TRUE(doc.FindElement("b"));

  ASSERT_TRUE(doc.RestorePosition("parent"));
  EXPECT_EQ(doc.MainPosition(), 0u);
  EXPECT_TRUE(doc.FindElement("x"));
  ASSERT_TRUE(doc.RestorePosition("名字"));
  EXPECT_TRUE(doc.FindElement("x"));

  // Saving again under a name replaces the entry.
  ASSERT_TRUE(doc.SavePosition("main"));
  ASSERT_TRUE(doc.RestorePosition("child"));
  ASSERT_TRUE(doc.RestorePosition("main"));
  EXPECT_EQ(doc.GetTagName(), "x");

  // A parse drops every saved position.
  ASSERT_TRUE(doc.SetDoc("<r/>"));
  EXPECT_FALSE(doc.RestorePosition("main"));
}

}  // namespace
}  // namespace tavlet
