// Saving a named view of the drawing under the pointer, and choosing the
// template folder of the host's current profile.
#include <optional>

#include "content/views.h"
#include "ops_fixture.h"

namespace tavlet::operations {
namespace {

using SaveViewTest = OpsFixture;

// The layout recorded in the view's extended data; empty when none.
std::string LayoutOf(sim::SimHost& host, port::Document doc, const std::string& view) {
  port::Database db = nullptr;
  host.Documents()->DatabaseOf(doc, &db);
  return content::ReadViewLayout(view, *host.Databases(), db);
}

const sim::NamedViewDesc* FindView(sim::SimHost& host, port::Document doc,
                                   const std::string& name) {
  for (const sim::NamedViewDesc& v : host.Find(doc)->content.views)
    if (v.name == name) return &v;
  return nullptr;
}

TEST_F(SaveViewTest, EscapeAtThePromptCreatesNoView) {
  port::Document doc = Open(PathOf(1));
  Ops().contextDocument = doc;
  host.QueueStringAnswer(port::kRtCancel, "");
  Ops().OnSaveView();
  Ops().OnSaveView();  // an empty queue is Escape too
  EXPECT_EQ(host.Transcript(), "视图名称:*Cancel*\n视图名称:*Cancel*\n");
  EXPECT_EQ(host.Faults().Count("AcadViews::Add"), 0);
  EXPECT_TRUE(host.Find(doc)->content.views.empty());
}

TEST_F(SaveViewTest, AViewSavedInALayoutHoldsZeroZAndNamesItsLayout) {
  port::Document doc =
      Open(PathOf(1), "layout \"A1\"\nlayout \"立面\"\nactive-layout \"立面\"\ncvport 1\n");
  Ops().contextDocument = doc;
  host.QueueStringAnswer(port::kRtNormal, "前视 图");
  host.Faults().ClearLog();
  Ops().OnSaveView();
  const sim::NamedViewDesc* view = FindView(host, doc, "前视 图");
  ASSERT_NE(view, nullptr);
  EXPECT_DOUBLE_EQ(view->centerX, 2.0);  // the picture is 4 by 3
  EXPECT_DOUBLE_EQ(view->centerY, 1.5);
  EXPECT_DOUBLE_EQ(view->width, 4);
  EXPECT_DOUBLE_EQ(view->height, 3);
  EXPECT_TRUE(view->paperSpace);
  EXPECT_EQ(LayoutOf(host, doc, "前视 图"), "立面");
  EXPECT_TRUE(host.ShownBoxes().empty());
  Lines puts;
  for (const std::string& call : host.Faults().Log())
    if (call.rfind("AcadView::Put", 0) == 0) puts.push_back(call);
  EXPECT_EQ(puts, (Lines{"AcadView::PutCenter", "AcadView::PutDirection", "AcadView::PutHeight",
                         "AcadView::PutTarget", "AcadView::PutWidth"}));
  // The record is written under a document lock, given back.
  EXPECT_EQ(host.Faults().Count("DocManager::LockDocument"), 1);
  EXPECT_EQ(host.Faults().Count("DocManager::UnlockDocument"), 1);
  EXPECT_FALSE(host.IsLocked(doc));
}

TEST_F(SaveViewTest, AViewSavedInModelSpaceHasNoLayoutRecord) {
  port::Document doc = Open(PathOf(1));
  Ops().contextDocument = doc;
  host.QueueStringAnswer(port::kRtNormal, "top");
  host.Faults().ClearLog();
  Ops().OnSaveView();
  ASSERT_NE(FindView(host, doc, "top"), nullptr);
  EXPECT_FALSE(FindView(host, doc, "top")->paperSpace);
  EXPECT_EQ(LayoutOf(host, doc, "top"), "");
  // The model-space viewport's centre goes to the view exactly as it was read;
  // this host takes only three coordinates there, and says so in the error box.
  Lines boxes = BoxTexts();
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0], "错误 [0x80070057]\nInvalid argument Center in Center");
}

TEST_F(SaveViewTest, NoContextDrawingOrNoLinkManagerStopsQuietly) {
  port::Document doc = Open(PathOf(1), "layout \"A1\"\nactive-layout \"A1\"\n");
  host.QueueStringAnswer(port::kRtNormal, "v1");
  Ops().OnSaveView();
  host.SetOleLinkManagerMissing(true);
  Ops().contextDocument = doc;
  host.QueueStringAnswer(port::kRtNormal, "v2");
  Ops().OnSaveView();
  EXPECT_TRUE(host.Find(doc)->content.views.empty());
  EXPECT_TRUE(host.ShownBoxes().empty());
}

TEST_F(SaveViewTest, ANameTheHostRefusesEndsInTheErrorBox) {
  port::Document doc = Open(PathOf(1), "layout \"A1\"\nactive-layout \"A1\"\n");
  Ops().contextDocument = doc;
  host.QueueStringAnswer(port::kRtNormal, "a/b");
  Ops().OnSaveView();
  EXPECT_EQ(BoxTexts(), (Lines{"错误 [0x80070057]\nInvalid input"}));
  host.QueueStringAnswer(port::kRtNormal, "ok");
  host.Faults().Fail("AcadLayout::Name", 1, port::kHostException, "");
  Ops().OnSaveView();
  EXPECT_EQ(host.Transcript().substr(host.Transcript().rfind("ok\n") + 3),
            "未知的错误在 MvTavlet::OnSaveView()!\n");
  EXPECT_EQ(LayoutOf(host, doc, "ok"), "");
}

class TemplatePathTest : public OpsFixture {
 protected:
  // The current profile's key below HKEY_CURRENT_USER.
  std::string GeneralKey() const {
    return "Software\\Host\\R16.1\\ACAD-301:804\\Profiles\\<<Unnamed Profile>>\\General";
  }
  std::string Stored() {
    RegValue v;
    if (!registry.QueryValue(GeneralKey(), "TemplatePath", v)) return "(none)";
    return v.bytes;
  }
};

TEST_F(TemplatePathTest, TheChosenFolderIsWrittenWithATrailingBackslash) {
  struct Case {
    const char* what;
    std::string stored;  // "" : no value
    std::optional<std::string> chosen;
    std::string browse;
    std::string after;
  };
  const std::string nul(1, '\0');
  const std::vector<Case> cases = {
      {"from an existing folder", "C:\\old\\" + nul, "D:\\模板",
       "browse 选择新的模板路径 from C:\\old\\", "D:\\模板\\" + nul},
      {"a drive root keeps one backslash", "C:\\old\\" + nul, "E:\\",
       "browse 选择新的模板路径 from C:\\old\\", "E:\\" + nul},
      {"cancel writes nothing", "C:\\old\\" + nul, std::nullopt,
       "browse 选择新的模板路径 from C:\\old\\", "C:\\old\\" + nul},
      {"no value yet: the browser starts nowhere", "", "D:\\t", "browse 选择新的模板路径 from ",
       "D:\\t\\" + nul},
  };
  files.AddFile("C:\\old\\x.dwt", "");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    registry.DeleteValue(GeneralKey(), "TemplatePath");
    if (!c.stored.empty()) registry.SetValue(GeneralKey(), "TemplatePath", kRegSz, c.stored);
    shell.ClearCalls();
    shell.QueueFolderAnswer(c.chosen);
    Ops().OnChangeTemplatePath();
    EXPECT_EQ(shell.Calls(), (Lines{c.browse}));
    EXPECT_EQ(shell.LastOwner(), host.WindowNamed("frame"));
    EXPECT_EQ(Stored(), c.after);
  }
}

TEST_F(TemplatePathTest, AProfileWithNoRegistryRootStopsBeforeTheBrowser) {
  host.SetProfileRegistryRoot("<<Unnamed Profile>>", "");
  Ops().OnChangeTemplatePath();
  host.Faults().Fail("HostServices::ProfileRegistryRoot", 1, port::kFail, "");
  host.SetProfileRegistryRoot("<<Unnamed Profile>>", "HKEY_CURRENT_USER\\Software\\P\\Profiles\\x");
  Ops().OnChangeTemplatePath();
  EXPECT_TRUE(shell.Calls().empty());
  // A root read afresh each time: another profile, another key.
  shell.QueueFolderAnswer(std::string("F:\\t"));
  Ops().OnChangeTemplatePath();
  RegValue v;
  ASSERT_TRUE(registry.QueryValue("Software\\P\\Profiles\\x\\General", "TemplatePath", v));
  EXPECT_EQ(v.bytes, std::string("F:\\t\\") + '\0');
  EXPECT_TRUE(host.ShownBoxes().empty());
}

}  // namespace
}  // namespace tavlet::operations
