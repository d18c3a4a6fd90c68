#include "operations/ops_fixture.h"
#include "settings/settings_table.h"
#include "sheetsets/sheet_set_commands.h"
#include "sheetsets/sheetset_fixture.h"

namespace tavlet::sheetsets {
namespace {

const std::string kRoot = "C:\\Roaming\\Host\\";

std::string HostProfile(const Lines& recent) {
  std::string mru;
  for (const std::string& path : recent) mru += "<MRU_FILE fileName=\"" + path + "\"/>";
  return "<?xml version=\"1.0\"?>\r\n<Profile><StorageRoot><AcApData><AdUiTools><ToolsInfo>"
         "<Tool CLSID=\"{BEBBB318-2898-4C03-ADA2-360DC6B7AA69}\"><MRU_FILES>" +
         mru + "</MRU_FILES></Tool></ToolsInfo></AdUiTools></AcApData></StorageRoot></Profile>\r\n";
}

// The sheet-selection dialog run by a script: its logic over the simulated
// component, with the items named in `tick` ticked before OK.
class ScriptedDialog final : public SheetSetDialogRunner {
 public:
  explicit ScriptedDialog(operations::Environment& world) : world_(world) {
    world.host.CreateSheetSetManager(manager_.Receive());
  }
  bool Run(const std::string& path, std::vector<std::string>& selectedFiles) override {
    runs.push_back(path);
    SheetSetDialog dialog({manager_.Get(), world_.files, *world_.host.Boxes(), kModule}, path, "");
    dialog.OnInitDialog(ui::FontDialogUnits());
    for (const std::string& text : tick) {
      ui::TreeItem item = SheetSetWorld::Find(dialog.tree, text);
      if (item != ui::kNoItem) dialog.tree.Items().SetChecked(item, true);
    }
    if (!ok) return false;
    dialog.OnOK();
    selectedFiles = dialog.selectedFiles;
    return true;
  }
  Lines tick;
  bool ok = true;
  Lines runs;

 private:
  operations::Environment& world_;
  host::PortPtr<port::SheetSetManager> manager_;
};

class SheetSetCommandsTest : public ::testing::Test, public operations::Environment {
 protected:
  SheetSetCommandsTest() {
    files.AddFile(kSample, SampleSheetSet());
    host.SetRoamableRootFolder(kRoot);
  }
  SheetSetServices Services(double version = 16.1) {
    return {host, host::GetAcadApplication(host), files, store, shell,
            [this](const DrawingPath& p, bool complain, bool restore) {
              opened.push_back(p.Full + (p.readOnly ? " ro" : " rw") + (complain ? " c" : "") + (restore ? " r" : ""));
            },
            &dialog, bar, version};
  }
  static Lines Entries(const content::IdMap<DrawingPath>& list) {
    Lines out;
    for (const auto& [id, path] : list) out.push_back(std::to_string(id) + " " + path.Full);
    return out;
  }
  port::Value Variable(const char* name) {
    port::Value v;
    host.EditorService()->GetVariable(name, &v, nullptr);
    return v;
  }

  ScriptedDialog dialog{*this};
  Lines opened;
};

TEST_F(SheetSetCommandsTest, FillsTheRecentListAndTheSearchInFindingOrder) {
  files.AddFile(kRoot + "Support\\Profiles\\FixedProfile.aws", HostProfile({"D:\\a.dst", "E:\\图纸\\b.dst"}));
  files.AddFile("F:\\Sets\\one.dst", "");
  files.AddFile("F:\\Sets\\notes.txt", "");
  files.AddFile("F:\\Sets\\deep\\er\\two.DST", "");
  files.AddFile("F:\\Sets\\zz.dst.bak", "");
  SheetSetCommands sheetSets(Services());
  sheetSets.sheetSetSearchPath = "F:\\Sets\\";
  int nextId = 5000;
  sheetSets.FillSheetSetLists(nextId, true);
  EXPECT_EQ(Entries(sheetSets.recentSheetSets), (Lines{"5000 D:\\a.dst", "5001 E:\\图纸\\b.dst"}));
  EXPECT_EQ(Entries(sheetSets.foundSheetSets), (Lines{"5002 F:\\Sets\\deep\\er\\two.DST", "5003 F:\\Sets\\one.dst"}));
  EXPECT_EQ(nextId, 5004);
}

TEST_F(SheetSetCommandsTest, EmptyListsGetThePlaceholderOnlyWhenAsked) {
  WriteString(store, keys::SsSearchPath, "F:\\Sets\\");
  files.AddFile("F:\\Sets\\one.dst", "");
  // After a restart the search path is empty, whatever the setting holds.
  SheetSetCommands sheetSets(Services());
  EXPECT_EQ(sheetSets.sheetSetSearchPath, "");
  int nextId = 10;
  sheetSets.FillSheetSetLists(nextId, false);
  EXPECT_TRUE(sheetSets.recentSheetSets.empty());
  EXPECT_TRUE(sheetSets.foundSheetSets.empty());
  EXPECT_EQ(nextId, 10);
  sheetSets.FillSheetSetLists(nextId, true);
  EXPECT_EQ(Entries(sheetSets.recentSheetSets), (Lines{"10 没有找到"}));
  EXPECT_EQ(Entries(sheetSets.foundSheetSets), (Lines{"11 没有找到"}));
}

TEST_F(SheetSetCommandsTest, InTheManagerTheCommandIsSentAndNothingElse) {
  Open("C:\\dwg\\1.dwg");
  WriteBool(store, keys::OpenSheetSetInSSM, true);
  SheetSetCommands sheetSets(Services());
  host.Faults().ClearLog();
  sheetSets.OpenSheetSet("D:\\my sets\\a \"b\".dst");
  EXPECT_EQ(host.SentCommands().back(), "-OPENSHEETSET \"D:\\my sets\\a \"b\".dst\"\n");
  EXPECT_TRUE(dialog.runs.empty());
  EXPECT_EQ(host.Faults().Count("SheetSetManager::OpenDatabase"), 0);
  EXPECT_TRUE(opened.empty());
}

TEST_F(SheetSetCommandsTest, TheDialogsTickedDrawingsOpenSilentlyInTreeOrder) {
  dialog.tick = {"剖面图", "平面图"};
  SheetSetCommands sheetSets(Services());
  sheetSets.OpenSheetSet(kSample);
  EXPECT_EQ(dialog.runs, Lines{kSample});
  EXPECT_EQ(opened, (Lines{"D:\\项目\\办公楼\\平面图.dwg rw", "D:\\项目\\办公楼\\剖面图.dwg rw"}));

  opened.clear();
  dialog.tick.clear();  // OK with nothing ticked
  sheetSets.OpenSheetSet(kSample);
  dialog.tick = {"平面图"};
  dialog.ok = false;  // Cancel
  sheetSets.OpenSheetSet(kSample);
  EXPECT_TRUE(opened.empty());
}

TEST_F(SheetSetCommandsTest, ASheetWithoutALayoutFileOpensAnEmptyPath) {
  files.AddFile("D:\\empty.dst", text::ToUtf8("tavlet-sheetset 1\nname \"空\"\nsheet \"无文件\"\nsheet \"有\" file \"D:\\a.dwg,1\"\n"));
  dialog.tick = {"无文件", "有"};
  SheetSetCommands sheetSets(Services());
  sheetSets.OpenSheetSet("D:\\empty.dst");
  // The stored text form is parsed, so a layout file "path,1" opens read-only.
  EXPECT_EQ(opened, (Lines{" rw", "D:\\a.dwg ro"}));
}

TEST_F(SheetSetCommandsTest, ToggleWritesTheSettingAndAboveSixteenTheVariable) {
  for (const double version : {16.1, 16.0}) {
    SCOPED_TRACE(version);
    Environment world;
    SheetSetServices services{world.host, host::GetAcadApplication(world.host), world.files, world.store, world.shell,
                              nullptr, nullptr, nullptr, version};
    port::Value start;
    start.type = port::kValueShort;
    start.integer = 7;
    world.host.SetVariable("SSMAUTOOPEN", start);
    SheetSetCommands sheetSets(services);
    sheetSets.ToggleOpenInManager();
    EXPECT_EQ(ReadInt(world.store, keys::OpenSheetSetInSSM), 1);
    port::Value v;
    world.host.EditorService()->GetVariable("SSMAUTOOPEN", &v, nullptr);
    EXPECT_EQ(v.type, port::kValueShort);
    EXPECT_EQ(v.integer, version > 16.0 ? 1 : 7);
    sheetSets.ToggleOpenInManager();
    EXPECT_EQ(ReadInt(world.store, keys::OpenSheetSetInSSM), 0);
    world.host.EditorService()->GetVariable("SSMAUTOOPEN", &v, nullptr);
    EXPECT_EQ(v.integer, version > 16.0 ? 0 : 7);
    EXPECT_EQ(world.host.Faults().Count("Editor::SetVariable"), version > 16.0 ? 2 : 0);
  }
}

TEST_F(SheetSetCommandsTest, ChoosingASearchPathAddsTheBackslashAndWritesTheSetting) {
  SheetSetCommands sheetSets(Services());
  shell.QueueFolderAnswer("F:\\Sets");
  sheetSets.ChooseSearchPath();
  shell.QueueFolderAnswer(std::nullopt);
  sheetSets.ChooseSearchPath();
  shell.QueueFolderAnswer("G:\\");
  sheetSets.ChooseSearchPath();
  EXPECT_EQ(shell.Calls(), (Lines{"browse 选择新的图纸集文件夹搜索路径 from ",
                                  "browse 选择新的图纸集文件夹搜索路径 from F:\\Sets\\",
                                  "browse 选择新的图纸集文件夹搜索路径 from F:\\Sets\\"}));
  EXPECT_EQ(sheetSets.sheetSetSearchPath, "G:\\");
  EXPECT_EQ(store.GetString("", "SsSearchPath", ""), "G:\\");
}

}  // namespace
}  // namespace tavlet::sheetsets
