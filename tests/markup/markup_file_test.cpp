// MarkupDoc's file load and save reports, and an index that runs over several
// segments of records.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "sim/memory_file_system.h"
#include "support/test_paths.h"
#include "worksets/markup_doc.h"

namespace tavlet {
namespace {

struct LoadCase {
  const char* name;
  std::string bytes;
  bool ok;
  std::string error;
};

TEST(MarkupFile, LoadReportsBytesThenParse) {
  const std::vector<LoadCase> cases = {
      {"ten bytes", "<a>xyz</a>", true, "10 bytes"},
      {"parse error joins the report", "<a>", false, "3 bytes, 单元码 'a' 上偏移 0 个没有结束"},
      {"empty file", "", false, "0 bytes, 空文件"},
      {"no root", "  \r\n", false, "4 bytes, 根目录没找到"},
  };
  for (const LoadCase& c : cases) {
    MemoryFileSystem fs;
    fs.AddFile("C:\\d\\f.xml", c.bytes);
    MarkupDoc doc(fs);
    EXPECT_EQ(doc.Load("C:\\d\\f.xml"), c.ok) << c.name;
    EXPECT_EQ(doc.GetError(), c.error) << c.name;
    EXPECT_EQ(doc.GetDoc(), c.bytes) << c.name;
  }
}

TEST(MarkupFile, FailedOpenKeepsTheDocument) {
  MemoryFileSystem fs;
  MarkupDoc doc(fs);
  ASSERT_TRUE(doc.SetDoc("<keep/>"));
  EXPECT_FALSE(doc.Load("C:\\missing.xml"));
  EXPECT_EQ(doc.GetError(), std::strerror(ENOENT));
  EXPECT_EQ(doc.GetDoc(), "<keep/>");
  EXPECT_TRUE(doc.FindElement("keep")) << "nothing was parsed";
}

TEST(MarkupFile, SaveWritesTheTextAndReports) {
  MemoryFileSystem fs;
  fs.AddFolder("C:\\d");
  MarkupDoc doc(fs);
  ASSERT_TRUE(doc.SetDoc("<r/>"));
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.AddChildElement("名", "值"));
  doc.SetFileFlags(7);
  ASSERT_TRUE(doc.Save("C:\\d\\out.xml"));
  EXPECT_EQ(doc.GetError(), std::to_string(doc.GetDoc().size()) + " bytes");
  EXPECT_EQ(fs.Contents("C:\\d\\out.xml"), doc.GetDoc());
  EXPECT_EQ(doc.GetFileFlags(), 7);

  MarkupDoc back(fs);
  ASSERT_TRUE(back.Load("C:\\d\\out.xml"));
  ASSERT_TRUE(back.FindChildElement("名"));
  ASSERT_TRUE(back.EnterChild());
  EXPECT_EQ(back.GetContent(), "值");

  fs.FailOn(MemoryFileSystem::Op::WriteFileAtomic, 1, FileError::AccessDenied);
  EXPECT_FALSE(doc.Save("C:\\d\\out.xml"));
  EXPECT_EQ(doc.GetError(), std::strerror(EACCES));
  EXPECT_EQ(fs.Contents("C:\\d\\out.xml"), doc.GetDoc()) << "the old file stays whole";
}

TEST(MarkupFile, NativeFileSystemRoundTrip) {
  const std::string folder = testing::MakeTempFolder("markup");
  const std::string path = folder + "/doc.xml";
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc("<r a=\"1\">\r\n<b>中</b>\r\n</r>\r\n"));
  ASSERT_TRUE(doc.Save(path));
  MarkupDoc back;
  ASSERT_TRUE(back.Load(path));
  EXPECT_EQ(back.GetDoc(), doc.GetDoc()) << "binary mode: line ends unchanged";
  EXPECT_EQ(back.GetError(), "28 bytes");
}

TEST(MarkupIndex, SpansSegmentsAndStaysNavigable) {
  constexpr int kChildren = 150000;
  std::string text = "<r>";
  for (int i = 0; i < kChildren; ++i) text += "<a n=\"" + std::to_string(i) + "\"/>";
  text += "</r>";
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc(text));
  EXPECT_EQ(doc.RecordsUsed(), static_cast<std::uint32_t>(kChildren + 2));
  EXPECT_GE(doc.Capacity(), doc.RecordsUsed());
  // Growth by half at most, and whole segments below the last one.
  EXPECT_LE(doc.IndexBytes(), (doc.RecordsUsed() / 2 * 3 + 8) * sizeof(ElementRecord) + 4096);

  ASSERT_TRUE(doc.FindElement());
  int count = 0;
  std::uint32_t highest = 0;
  while (doc.FindChildElement("a")) {
    highest = doc.ChildPosition();
    ++count;
  }
  EXPECT_EQ(count, kChildren);
  EXPECT_GE(highest >> MarkupDoc::kSegmentBits, 2u);

  // Edit across the segment boundary: remove the child at position 65536 and
  // insert one before it.
  doc.ResetPos();
  ASSERT_TRUE(doc.FindElement());
  ASSERT_TRUE(doc.EnterChild());
  for (int i = 0; i < 65535; ++i) ASSERT_TRUE(doc.FindElement());
  EXPECT_EQ(doc.MainPosition(), MarkupDoc::kSegmentSize);
  EXPECT_EQ(doc.GetAttribute("n"), "65534");
  ASSERT_TRUE(doc.RemoveElement());
  ASSERT_TRUE(doc.InsertElement("b", "x"));
  EXPECT_GE(doc.MainPosition(), static_cast<std::uint32_t>(kChildren + 2));
  ASSERT_TRUE(doc.FindElement());
  EXPECT_EQ(doc.GetAttribute("n"), "65533") << "the element after the removed one's predecessor";
  EXPECT_EQ(doc.VerifyIndex(), "");
}

TEST(MarkupIndex, DeepNestingParsesWithoutRecursion) {
  constexpr int kDepth = 20000;
  std::string text;
  for (int i = 0; i < kDepth; ++i) text += "<d>";
  for (int i = 0; i < kDepth; ++i) text += "</d>";
  MarkupDoc doc;
  ASSERT_TRUE(doc.SetDoc(text)) << doc.GetError();
  int depth = 1;
  ASSERT_TRUE(doc.FindElement());
  while (doc.FindChildElement("d") && doc.EnterChild()) ++depth;
  EXPECT_EQ(depth, kDepth);
  EXPECT_EQ(doc.Record(doc.MainPosition()).flags & MarkupDoc::kLevelMask, static_cast<std::uint32_t>(kDepth - 1));
}

}  // namespace
}  // namespace tavlet
