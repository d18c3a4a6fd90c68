// The host's recent sheet sets, read out of a profile file of the host's shape.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "sim/memory_file_system.h"
#include "worksets/host_sheet_sets.h"

namespace tavlet {
namespace {

const std::string kRoot = "C:\\Users\\u\\AppData\\Roaming\\Host\\R16.1\\chs\\";
const std::string kProfile = kRoot + "Support\\Profiles\\FixedProfile.aws";

// A profile with `tools` inside ToolsInfo, and lines ending in `lineEnd`.
std::string Profile(const std::string& tools, const std::string& rootName = "Profile",
                    const std::string& lineEnd = "\r\n") {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + lineEnd + "<" + rootName + ">" + lineEnd +
         "  <StorageRoot>" + lineEnd + "    <AcApData>" + lineEnd + "      <AdUiTools>" + lineEnd +
         "        <ToolsInfo>" + lineEnd + tools + "        </ToolsInfo>" + lineEnd + "      </AdUiTools>" + lineEnd +
         "    </AcApData>" + lineEnd + "  </StorageRoot>" + lineEnd + "</" + rootName + ">" + lineEnd;
}

std::string SheetSetTool(const std::string& inner, const std::string& clsid =
                             "\"{BEBBB318-2898-4C03-ADA2-360DC6B7AA69}\"") {
  return "          <Tool Name=\"SheetSet\" CLSID=" + clsid + ">\r\n" + inner + "          </Tool>\r\n";
}

std::string MruFiles(const std::vector<std::string>& names) {
  std::string out = "            <MRU_FILES Count=\"" + std::to_string(names.size()) + "\">\r\n";
  for (const std::string& name : names) out += "              <MRU_FILE fileName=\"" + name + "\"/>\r\n";
  return out + "            </MRU_FILES>\r\n";
}

const std::string kOtherTool =
    "          <Tool CLSID=\"{00000000-0000-0000-0000-000000000000}\">\r\n" + MruFiles({"C:\\other.dst"}) +
    "          </Tool>\r\n";

struct ProfileCase {
  const char* name;
  std::string file;  // empty: no file
  std::vector<std::string> expected;
};

TEST(HostSheetSets, ProfileVariants) {
  const std::vector<ProfileCase> cases = {
      {"two recent sheet sets behind another tool",
       Profile(kOtherTool + SheetSetTool(MruFiles({"C:\\a.dst", "D:\\图纸\\集.dst"}))),
       {"C:\\a.dst", "D:\\图纸\\集.dst"}},
      {"lines ending in LF, root of any name", Profile(SheetSetTool(MruFiles({"C:\\a.dst"})), "Other", "\n"),
       {"C:\\a.dst"}},
      {"entity in a name is decoded", Profile(SheetSetTool(MruFiles({"C:\\R&amp;D.dst"}))), {"C:\\R&D.dst"}},
      {"MRU_FILE without a name gives an empty entry",
       Profile(SheetSetTool("            <MRU_FILES><MRU_FILE/><MRU_FILE fileName='x.dst'/></MRU_FILES>\r\n")),
       {"", "x.dst"}},
      {"no MRU_FILES", Profile(SheetSetTool("            <Other/>\r\n")), {}},
      {"MRU_FILE under another child is not looked at",
       Profile(SheetSetTool("            <Other><MRU_FILE fileName=\"C:\\x.dst\"/></Other>\r\n")), {}},
      {"CLSID without quotes", Profile(SheetSetTool(MruFiles({"C:\\a.dst"}), "{BEBBB318-2898-4C03-ADA2-360DC6B7AA69}")),
       {}},
      {"CLSID in lower case", Profile(SheetSetTool(MruFiles({"C:\\a.dst"}), "\"{bebbb318-2898-4c03-ada2-360dc6b7aa69}\"")),
       {}},
      {"only the first matching tool", Profile(SheetSetTool(MruFiles({"C:\\1.dst"})) + SheetSetTool(MruFiles({"C:\\2.dst"}))),
       {"C:\\1.dst"}},
      {"parse error", Profile(SheetSetTool(MruFiles({"C:\\a.dst"})) + "<Broken>\r\n"), {}},
      {"a step missing", "<P><StorageRoot><AcApData><ToolsInfo>" + SheetSetTool(MruFiles({"C:\\a.dst"})) +
                             "</ToolsInfo></AcApData></StorageRoot></P>",
       {}},
      {"no file", "", {}},
  };
  for (const ProfileCase& c : cases) {
    SCOPED_TRACE(c.name);
    MemoryFileSystem fs;
    if (!c.file.empty()) fs.AddFile(kProfile, c.file);
    std::vector<std::string> list;
    ReadHostSheetSetList(list, kRoot, fs);
    EXPECT_EQ(list, c.expected);
  }
}

TEST(HostSheetSets, NoRootFolderReadsNothing) {
  MemoryFileSystem fs;
  fs.AddFile("Support\\Profiles\\FixedProfile.aws", Profile(SheetSetTool(MruFiles({"C:\\a.dst"}))));
  std::vector<std::string> list;
  ReadHostSheetSetList(list, "", fs);
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(fs.CallCount(MemoryFileSystem::Op::ReadFile), 0);
}

TEST(HostSheetSets, AppendsToTheGivenList) {
  MemoryFileSystem fs;
  fs.AddFile(kProfile, Profile(SheetSetTool(MruFiles({"C:\\a.dst"}))));
  std::vector<std::string> list = {"kept"};
  ReadHostSheetSetList(list, kRoot, fs);
  EXPECT_EQ(list, (std::vector<std::string>{"kept", "C:\\a.dst"}));
}

}  // namespace
}  // namespace tavlet
