// The host's recent sheet sets from a profile file the host wrote in UTF-8 or
// UTF-16, read by its encoding when the setting asks for it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/memory_file_system.h"
#include "text/codepage.h"
#include "worksets/host_sheet_sets.h"

namespace tavlet {
namespace {

const std::string kRoot = "C:\\Users\\u\\AppData\\Roaming\\Host\\R16.1\\chs\\";
const std::string kProfile = kRoot + "Support\\Profiles\\FixedProfile.aws";

// A code-page 936 profile with Chinese text outside the list too, as the host's
// palettes and titles put it there.
std::string Cp936Profile(const std::vector<std::string>& names, const std::string& declaration =
                                                                    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n") {
  std::string files;
  for (const std::string& name : names) files += "<MRU_FILE fileName=\"" + name + "\" 标题=\"图纸集\"/>\r\n";
  return declaration + "<Profile 名称=\"未命名配置\">\r\n<StorageRoot><AcApData><AdUiTools><ToolsInfo>\r\n"
         "<Tool Name=\"图纸集管理器\" CLSID=\"{BEBBB318-2898-4C03-ADA2-360DC6B7AA69}\">\r\n<MRU_FILES>\r\n" +
         files + "</MRU_FILES></Tool></ToolsInfo></AdUiTools></AcApData></StorageRoot></Profile>\r\n";
}

std::string Utf16(const std::string& cp936, bool bigEndian) {
  std::string units = text::ToUtf16Le(cp936);
  if (bigEndian)
    for (std::size_t i = 0; i + 1 < units.size(); i += 2) std::swap(units[i], units[i + 1]);
  return (bigEndian ? std::string("\xFE\xFF") : std::string("\xFF\xFE")) + units;
}

std::vector<std::string> Read(const std::string& file, bool byEncoding) {
  MemoryFileSystem fs;
  fs.AddFile(kProfile, file);
  std::vector<std::string> list;
  ReadHostSheetSetList(list, kRoot, fs, byEncoding);
  return list;
}

const std::vector<std::string> kNames = {"D:\\项目\\大楼.dst", "C:\\plain.dst", "E:\\图纸\\集 二.dst"};

TEST(HostSheetSetsByEncoding, EveryEncodingGivesTheCodePageList) {
  const std::string cp936 = Cp936Profile(kNames);
  ASSERT_EQ(Read(cp936, false), kNames);
  const struct {
    const char* name;
    std::string file;
  } cases[] = {
      {"code page 936 itself", cp936},
      {"UTF-8 without a mark", text::ToUtf8(cp936)},
      {"UTF-8 with a mark", "\xEF\xBB\xBF" + text::ToUtf8(cp936)},
      {"UTF-16LE with a mark", Utf16(cp936, false)},
      {"UTF-16BE with a mark", Utf16(cp936, true)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Read(c.file, true), kNames);
  }
}

TEST(HostSheetSetsByEncoding, SettingOffKeepsTakingBytesAsCodePage936) {
  // The UTF-8 file's bytes as they are: what the reader always gave for it.
  const std::string utf8 = text::ToUtf8(Cp936Profile(kNames));
  const std::vector<std::string> off = Read(utf8, false);
  EXPECT_NE(off, kNames);
  EXPECT_EQ(Read("\xEF\xBB\xBF" + utf8, false), std::vector<std::string>{});
  EXPECT_EQ(Read(Cp936Profile({"C:\\a?.dst"}), false), std::vector<std::string>{"C:\\a?.dst"});
}

TEST(HostSheetSetsByEncoding, CharacterWithoutCodePageFormSkipsOnlyItsEntry) {
  // U+1F600 has no code-page 936 form.
  const std::string utf8 = text::ToUtf8(Cp936Profile({"C:\\before.dst", "C:\\@.dst", "D:\\项目\\after.dst"}));
  std::string withEmoji = utf8;
  withEmoji.replace(withEmoji.find('@'), 1, "\xF0\x9F\x98\x80");
  EXPECT_EQ(Read(withEmoji, true), (std::vector<std::string>{"C:\\before.dst", "D:\\项目\\after.dst"}));
}

TEST(HostSheetSetsByEncoding, DeclaredCodePageWinsOverTextThatPassesForUtf8) {
  // C4 A3 is one code-page 936 character and also a valid UTF-8 sequence.
  const std::string name = "C:\\\xC4\xA3.dst";
  ASSERT_TRUE(text::IsValidUtf8(name));
  const std::string gbk = Cp936Profile({name}, "<?xml version=\"1.0\" encoding=\"GBK\"?>\r\n");
  std::string ascii = gbk;
  // Only the path may hold high bytes for the text to pass as UTF-8.
  for (const char* chinese : {"图纸集管理器", "未命名配置", "图纸集", "标题", "名称"}) {
    for (std::size_t at; (at = ascii.find(chinese)) != std::string::npos;) ascii.replace(at, std::string(chinese).size(), "x");
  }
  EXPECT_EQ(Read(ascii, true), std::vector<std::string>{name});
  const std::string undeclared = ascii.substr(ascii.find("?>\r\n") + 4);
  EXPECT_NE(Read(undeclared, true), std::vector<std::string>{name});
}

TEST(HostSheetSetsByEncoding, ValidUtf8Check) {
  EXPECT_TRUE(text::IsValidUtf8("plain"));
  EXPECT_TRUE(text::IsValidUtf8("\xE4\xB8\xAD\xEF\xBF\xBD"));   // 中 and a real U+FFFD
  EXPECT_FALSE(text::IsValidUtf8("\xD6\xD0"));                   // 中 in code page 936
  EXPECT_FALSE(text::IsValidUtf8("\xC0\xAF"));                   // overlong
  EXPECT_FALSE(text::IsValidUtf8("\xED\xA0\x80"));               // surrogate
  EXPECT_FALSE(text::IsValidUtf8("ok\xE4\xB8"));                 // cut short
}

}  // namespace
}  // namespace tavlet
