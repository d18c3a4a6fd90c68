#include <algorithm>

#include "worksets/workset_fixture.h"

namespace tavlet {
namespace {

DrawingPath Path(const std::string& full, bool readOnly, FileSystem& fs) {
  DrawingPath p(full, fs);
  p.readOnly = readOnly;
  return p;
}

Lines Fulls(const std::vector<DrawingPath>& list) {
  Lines out;
  for (const DrawingPath& p : list) out.push_back(p.Full + (p.readOnly ? ",1" : ",0"));
  return out;
}

class WorksetStoreTest : public ::testing::Test, public WorksetWorld {};

TEST_F(WorksetStoreTest, WritesTheSampleFileByteForByteAndReadsItBack) {
  WorksetStore worksets(Services(true));
  ProfileFile file(files, worksets.GetWorksetsPath(), true);
  std::vector<DrawingPath> site = {Path("C:\\Jobs\\114\\site.dwg", false, files),
                                   Path("C:\\Jobs\\114\\survey.dwg", true, files)};
  std::vector<DrawingPath> details = {Path("D:\\Std\\details.dwg", false, files)};
  EXPECT_EQ(worksets.AddFiles(file, "Site plans", site), 2u);
  EXPECT_EQ(worksets.AddFiles(file, "Details", details), 1u);

  EXPECT_EQ(FileText(),
            "[Site plans]\r\n"
            "文件1=C:\\Jobs\\114\\site.dwg,0\r\n"
            "文件2=C:\\Jobs\\114\\survey.dwg,1\r\n"
            "[Details]\r\n"
            "文件1=D:\\Std\\details.dwg,0\r\n");
  EXPECT_TRUE(host.ShownBoxes().empty());

  Lines names;
  ListWorksets(file, names);
  EXPECT_EQ(names, (Lines{"Site plans", "Details"}));
  worksets.OpenWorkset("Site plans");
  worksets.OpenWorkset("Details");
  EXPECT_EQ(opened, (Lines{"C:\\Jobs\\114\\site.dwg rw c", "C:\\Jobs\\114\\survey.dwg ro c",
                           "D:\\Std\\details.dwg rw c"}));
  EXPECT_EQ(ReadString(store, keys::LastWorkset), "Details");
}

TEST_F(WorksetStoreTest, ReaderTakesOnlyKeysBeginningWithTheFourBytesFile) {
  UseFile(
      "[Mixed]\r\n"
      "File1=C:\\a.dwg,0\r\n"
      "文件2=C:\\b.dwg,0\r\n"
      "Files=C:\\c.dwg,1\r\n"
      "file4=C:\\d.dwg,0\r\n"
      "Fil=C:\\e.dwg,0\r\n");
  ProfileFile file(files, kUserFile, true);
  std::vector<DrawingPath> list;
  EXPECT_EQ(ReadWorkset(file, "Mixed", list, files), 2u);
  EXPECT_EQ(Fulls(list), (Lines{"C:\\a.dwg,0", "C:\\c.dwg,1"}));

  // OpenWorkset sees every entry, whatever its key.
  WorksetStore worksets(Services(true));
  worksets.OpenWorkset("Mixed");
  EXPECT_EQ(opened.size(), 5u);
}

TEST_F(WorksetStoreTest, ValuesAreCutAtTheFirstEqualsSignAndTheLastComma) {
  struct Case {
    const char* line;
    const char* opened;
  } cases[] = {
      {"文件1=C:\\a=b,c.dwg,1", "C:\\a rw c"},           // cut at "=": "C:\a" alone
      {"文件2=C:\\x,y.dwg,1", "C:\\x,y.dwg ro c"},        // a path with a comma survives
      {"文件3=C:\\a,b.dwg", "C:\\a rw c"},                // "b.dwg" is taken for the flag
      {"Other=D:\\k.dwg", "D:\\k.dwg rw c"},              // the key isn't looked at
      {"文件5=C:\\two,1 ", "C:\\two ro c"},               // atoi of "1 " is 1
      {"文件6=C:\\eleven.dwg,11", "C:\\eleven.dwg rw c"},  // only exactly 1 is read-only
      {"文件7=", " rw c"},                                // an empty value is an empty path
  };
  std::string bytes = "[W]\r\n";
  Lines expected;
  for (const Case& c : cases) {
    bytes += std::string(c.line) + "\r\n";
    expected.push_back(c.opened);
  }
  bytes += "no equals sign\r\n";
  UseFile(bytes);
  WorksetStore worksets(Services(true));
  worksets.OpenWorkset("W");
  EXPECT_EQ(opened, expected);
  EXPECT_EQ(ReadString(store, keys::LastWorkset), "W");
}

TEST_F(WorksetStoreTest, AnEmptyOrMissingWorksetShowsTheBoxAndKeepsLastWorkset) {
  UseFile("[Empty]\r\n[Full]\r\n文件1=C:\\a.dwg,0\r\n");
  WriteString(store, keys::LastWorkset, "Full");
  WorksetStore worksets(Services(true));
  worksets.OpenWorkset("Empty");
  worksets.OpenWorkset("Nowhere");
  EXPECT_EQ(BoxTexts(), (Lines{"在工作集中没有文件!", "在工作集中没有文件!"}));
  EXPECT_EQ(ReadString(store, keys::LastWorkset), "Full");
  EXPECT_TRUE(opened.empty());
}

TEST_F(WorksetStoreTest, LastWorksetCommand) {
  UseFile("[Kept]\r\n文件1=C:\\a.dwg,1\r\n");
  WorksetStore worksets(Services(true));
  worksets.OpenLastWorkset();  // never opened one
  WriteString(store, keys::LastWorkset, "Gone");
  worksets.OpenLastWorkset();  // deleted since
  WriteString(store, keys::LastWorkset, "Kept");
  worksets.OpenLastWorkset();
  EXPECT_EQ(BoxTexts(), (Lines{"还没有打开工作!", "在工作集中没有文件!"}));
  EXPECT_EQ(opened, (Lines{"C:\\a.dwg ro c"}));
}

TEST_F(WorksetStoreTest, AddFilesCountsDuplicatesByMbsicmpAndNumbersFromTheKeyCount) {
  // A lead byte 0x81 with trail 'A' or 'a': two different characters, which a
  // byte-wise case-blind comparison would take for one.
  const std::string upper = "C:\\\x81" "A.dwg";
  const std::string lower = "C:\\\x81" "a.dwg";
  UseFile("[W]\r\nFile1=c:\\JOBS\\a.dwg,0\r\n文件2=C:\\jobs\\b.dwg,0\r\nFile3=" + upper + ",0\r\n");
  WorksetStore worksets(Services(true));
  ProfileFile file(files, kUserFile, true);
  std::vector<DrawingPath> add = {Path("C:\\Jobs\\A.DWG", false, files), Path("C:\\jobs\\b.dwg", true, files),
                                  Path(lower, false, files), Path("C:\\jobs\\c.dwg", false, files)};
  EXPECT_EQ(worksets.AddFiles(file, "W", add), 3u);
  EXPECT_EQ(BoxTexts(), (Lines{"1 文件已经在选定的工作集中"}));
  EXPECT_EQ(Fulls(add), (Lines{"C:\\jobs\\b.dwg,1", lower + ",0", "C:\\jobs\\c.dwg,0"}));
  EXPECT_EQ(FileText(), "[W]\r\nFile1=c:\\JOBS\\a.dwg,0\r\n文件2=C:\\jobs\\b.dwg,0\r\nFile3=" + upper +
                            ",0\r\n文件4=C:\\jobs\\b.dwg,1\r\n文件5=" + lower + ",0\r\n文件6=C:\\jobs\\c.dwg,0\r\n");
}

TEST_F(WorksetStoreTest, AMalformedLineCountsAsAKeyForTheNextNumber) {
  UseFile("[W]\r\nFile1=C:\\a.dwg,0\r\nmalformed\r\n");
  WorksetStore worksets(Services(true));
  ProfileFile file(files, kUserFile, true);
  std::vector<DrawingPath> add = {Path("C:\\b.dwg", false, files)};
  worksets.AddFiles(file, "W", add);
  EXPECT_EQ(FileText(), "[W]\r\nFile1=C:\\a.dwg,0\r\nmalformed\r\n文件3=C:\\b.dwg,0\r\n");
}

TEST_F(WorksetStoreTest, RewritingRenumbersFromOneAndLeavesOtherWorksets) {
  UseFile("[A]\r\n文件1=C:\\1.dwg,0\r\n文件5=C:\\2.dwg,1\r\n[B]\r\n文件1=C:\\b.dwg,0\r\n");
  WorksetStore worksets(Services(true));
  ProfileFile file(files, kUserFile, true);
  worksets.RewriteWorkset(file, "A", {Path("C:\\2.dwg", true, files), Path("C:\\1.dwg", false, files)});
  EXPECT_EQ(FileText(), "[A]\r\n文件1=C:\\2.dwg,1\r\n文件2=C:\\1.dwg,0\r\n[B]\r\n文件1=C:\\b.dwg,0\r\n");
}

TEST_F(WorksetStoreTest, SelectAndOpenOpensTheTickedFilesInDialogOrder) {
  UseFile("[W]\r\n文件1=C:\\a.dwg,0\r\n");
  WriteString(store, keys::LastWorkset, "Before");
  selector.ticked = {Path("C:\\b.dwg", true, files), Path("C:\\a.dwg", false, files)};
  WorksetStore worksets(Services(true));
  worksets.SelectAndOpenWorkset("W");
  selector.answer = false;
  worksets.SelectAndOpenWorkset("W");
  EXPECT_EQ(selector.asked, (Lines{std::string(kUserFile) + "|W", std::string(kUserFile) + "|W"}));
  EXPECT_EQ(opened, (Lines{"C:\\b.dwg ro c", "C:\\a.dwg rw c"}));
  EXPECT_EQ(ReadString(store, keys::LastWorkset), "Before");
}

}  // namespace
}  // namespace tavlet
