// The whole menu, entry by entry, for the situations a right click meets. Trees
// are compared as text in their compact form: ids, texts as bytes, flags and
// order. "<B2>" and "<BD>" stand for the lone lead bytes that end the two cut texts.
#include "menu_fixture.h"

namespace tavlet::menus {
namespace {

std::string Replace(std::string tree, const std::string& from, const std::string& to) {
  const std::size_t at = tree.find(from);
  EXPECT_NE(at, std::string::npos) << text::ToUtf8(from);
  if (at != std::string::npos) tree.replace(at, from.size(), to);
  return tree;
}

// No drawing open: an empty recent list ("空" at 5000, shared with the first
// workset), two worksets, no sheet sets, two templates.
const std::string kNoDrawing = R"(> 最近打开文件 {5000 空}
> 工作集 {4030 管理... | > Site plans {5000 All | 5001 Select...} | > B {5002 All | 5003 Select...}}
> 图纸集 {4031 设置图纸集搜索路径... | 4032 在管理器中打开图纸集 | )"
                               R"(> 最近 {5004 没有找到} | > 找到 {5005 没有找到}}
> 新<BD> {4028 更改模板路径... | 4029 空模板 | 5006 Std | 5007 acad}
-
4055 选项...
4016 关于 Tavlet...)";

// The lists below the drawing block with two drawings open and a.dwg in the
// recent list; the drawing's lists take their ids after the templates.
const std::string kSheetSetsMenu =
    "> 图纸集 {4031 设置图纸集搜索路径... | 4032 在管理器中打开图纸集 | > 最近 {5005 没有找到} | "
    "> 找到 {5006 没有找到}}\n";
const std::string kNewMenu =
    "> 新<BD> {4028 更改模板路径... | 4029 空模板 | 5007 Std | 5008 acad}\n";
const std::string kTail = R"(> 最近打开文件 {5000 C:\dwg\a.dwg}
> 工作集 {4030 管理... | > Site plans {5001 All | 5002 Select...} | > B {5003 All | 5004 Select...}}
)" + kSheetSetsMenu + kNewMenu +
                          R"(-
4013 快速打印全部
4007 保存全部
4008 关闭全部
4009 保存并关闭全部
4010 关闭全部,不保存
4034 退出,保存全部
4035 退出,不保存
-
4055 选项...
4016 关于 Tavlet...)";

// The plan, active, under the pointer.
const std::string kReferences =
    "> 参照 {> 外部<B2> {5012 总图.tdd} | > 图像 {5013 入口.jpg | 5014 立面.png} | "
    "> OLE 连接 {5015 门窗表.xls} | > 超链接 {5016 details | 5017 facade | 5018 门.pdf}}\n";
const std::string kPlan = R"(4011 关闭 [平面图]
4047 打开文件夹
4039 锁定预览
> 布局 {5009 Model | 5010 布局1 | 5011 Layout2}
)" + kReferences + R"(> 图层状态 {5019 墙体关闭 | 5020 Print}
> 视图 {4050 保存... | 5021 Detail | 5022 Old sheet | 5023 Sheet A | 5024 入口 | 5025 总图|Site}
-
)" + kTail;

// Every list id above 5000 one less: what the tree becomes when "空" takes no
// id of its own. Ids stand at the start of a line, after "{" and after "| ".
std::string IdsAfterFirstLessOne(std::string tree) {
  for (std::size_t at = 0; at + 5 <= tree.size(); ++at) {
    const bool starts = at == 0 || tree[at - 1] == '\n' || tree[at - 1] == '{' ||
                        (at >= 2 && tree.compare(at - 2, 2, "| ") == 0);
    if (!starts || tree[at + 4] != ' ') continue;
    const int id = std::atoi(tree.substr(at, 4).c_str());
    if (id > kFirstListId) tree.replace(at, 4, std::to_string(id - 1));
  }
  return tree;
}

struct Situation {
  const char* name;
  std::function<void(MenuWorld&)> settings;         // before the module loads
  std::function<port::Document(MenuWorld&)> click;  // after; the drawing under the pointer
  std::string expected;
};

TEST(MenuTree, EachSituationGivesItsWholeTree) {
  const port::Document none = nullptr;
  auto nothing = [](MenuWorld&) {};
  auto onEmptyBar = [none](MenuWorld&) { return none; };
  auto onPlan = [](MenuWorld& w) {
    w.h.OpenDrawing("C:\\dwg\\a.dwg");
    return w.OpenPlan();
  };
  auto onPlanAlone = [](MenuWorld& w) { return w.OpenPlan(); };
  auto onA = [](MenuWorld& w) { return w.h.OpenDrawing("C:\\dwg\\a.dwg"); };
  auto onBar = [](MenuWorld& w) {
    w.h.OpenDrawing("C:\\dwg\\a.dwg");
    w.OpenPlan();
    return port::Document{};
  };
  auto set = [](const SettingKey& key, int value) {
    return [&key, value](MenuWorld& w) { w.h.SetSetting(key, value); };
  };
  const Situation situations[] = {
      {"no drawing", nothing, onEmptyBar, kNoDrawing},
      {"no drawing, previews not updated", set(keys::AutoUpdatePreviews, 0), onEmptyBar,
       "4053 刷新预览\n" + kNoDrawing},
      {"empty bar", nothing, onBar, kTail},
      {"empty bar, previews not updated", set(keys::AutoUpdatePreviews, 0), onBar,
       "4053 刷新预览\n" + kTail},
      {"empty bar in tab mode, previews not updated",
       [](MenuWorld& w) {
         w.h.SetSetting(keys::AutoUpdatePreviews, 0);
         w.h.SetSetting(keys::TabMode, 1);
       },
       onBar, kTail},
      {"the plan", nothing, onPlan, kPlan},
      {"the plan in tab mode", set(keys::TabMode, 1), onPlan,
       Replace(kPlan, "4039 锁定预览\n", "")},
      {"the plan, previews not updated", set(keys::AutoUpdatePreviews, 0), onPlan,
       Replace(kPlan, "4039 锁定预览", "4051 刷新预览")},
      {"the plan, its preview locked", nothing,
       [&](MenuWorld& w) {
         port::Document plan = onPlan(w);
         w.bar->TogglePreviewLock(plan);
         return plan;
       },
       Replace(kPlan, "4039 锁定预览", "4039 锁定预览 (checked)")},
      {"the plan, not the active drawing", nothing,
       [](MenuWorld& w) {
         port::Document plan = w.OpenPlan();
         w.h.OpenDrawing("C:\\dwg\\a.dwg");
         return plan;
       },
       Replace(kPlan, "4050 保存... | ", "")},
      {"the plan, host 16.0", [](MenuWorld& w) { w.h.host.SetVersionText("16.0s (LMS Tech)"); },
       onPlan, Replace(kPlan, kSheetSetsMenu, "0 图纸集 (grayed)\n")},
      {"the plan, new menu disabled", set(keys::DisableNewMenu, 1), onPlan,
       Replace(kPlan, kNewMenu, "")},
      {"the plan, sheet sets opened in the manager", set(keys::OpenSheetSetInSSM, 1), onPlan,
       Replace(kPlan, "4032 在管理器中打开图纸集", "4032 在管理器中打开图纸集 (checked)")},
      {"the plan, references by full path", set(keys::ShowFullPathInRefs, 1), onPlan,
       Replace(kPlan, kReferences,
               "> 参照 {> 外部<B2> {5012 D:\\项目\\办公楼\\总图.tdd} | > 图像 {5013 D:\\项目\\"
               "办公楼\\照片\\入口.jpg | 5014 D:\\项目\\办公楼\\照片\\立面.png} | > OLE 连接 "
               "{5015 D:\\项目\\办公楼\\门窗表.xls} | > 超链接 {5016 http://example.com/details"
               " | 5017 http://example.com/facade | 5018 D:\\项目\\办公楼\\门.pdf}}\n")},
      {"one drawing with nothing in it", nothing, onA,
       R"(4011 关闭 [a]
4047 打开文件夹
4039 锁定预览
> 布局 {5009 Model}
> 参照 {> 外部<B2> (grayed) {5010 没有找到} | > 图像 (grayed) {5011 没有找到} | )"
       R"(> OLE 连接 (grayed) {5012 没有找到} | > 超链接 (grayed) {5013 没有找到}}
> 图层状态 {5014 没有找到}
> 视图 {4050 保存... | 5015 没有找到}
-
)" + kTail},
      {"the plan alone: an empty recent list", nothing, onPlanAlone,
       IdsAfterFirstLessOne(Replace(kPlan, "5000 C:\\dwg\\a.dwg", "5000 空"))},
  };
  for (const Situation& s : situations) {
    SCOPED_TRACE(s.name);
    MenuWorld w;
    w.AddWorksets("[Site plans]\n文件1=C:\\dwg\\a.dwg,0\n[B.v2]\n");
    w.AddTemplate("acad.dwt");
    w.AddTemplate("Std.DWT");
    w.AddTemplate("notes.txt");
    w.h.files.AddFolder(std::string(kTemplates) + "sub.dwt");
    w.h.files.AddFile(std::string(kTemplates) + "sub\\deep.dwt", "");
    s.settings(w);
    w.Start();
    w.Tree(s.click(w));
    const std::string tree = Compact(w.last);
    EXPECT_EQ(tree, Bytes(s.expected)) << text::ToUtf8(tree);
    w.ExpectIdsResolve();
  }
}

TEST(MenuTree, TheCloseEntryNamesTheDrawingByItsPathOrItsFileName) {
  MenuWorld w;
  w.Start();
  const port::Document saved = w.h.OpenDrawing("C:\\dwg\\项目.v2.dwg");
  const port::Document untitled = w.h.host.NewDrawing();
  ASSERT_NE(untitled, nullptr);
  for (const auto& [doc, text] :
       {std::pair{saved, "4011 关闭 [项目.v2]"}, std::pair{untitled, "4011 关闭 [Drawing1]"}}) {
    const std::string tree = w.Tree(doc);
    EXPECT_EQ(tree.substr(0, tree.find('\n')), text);
  }
}

// The bar's test compares a one-byte name with the id's low byte: ids from 5000
// have low bytes 0x88 and up, which no one-byte name can hold until the counter
// passes 5120. Kept as it stands.
TEST(MenuTree, TheCheckMarkTestIsTheBarsOwn) {
  struct Case {
    std::string name;
    int id;
    bool checked;
  };
  const Case cases[] = {
      {"A", 5185, true},      {"A", 5184, false},   {"AB", 5185, false}, {"", 5185, false},
      {"Model", 5000, false}, {"\x88", 5000, true}, {"A", 0x41, true},   {"A", 5185 + 256, true},
  };
  for (const Case& c : cases)
    EXPECT_EQ(ListEntryChecked(c.name, c.id), c.checked) << c.name << " " << c.id;
}

TEST(MenuTree, TheWorksetSubmenusAreFoundWhileThePopupIsUp) {
  MenuWorld w;
  w.AddWorksets("[Site plans]\n[B.v2]\n");
  w.Start();
  const MenuEntry top = w.menu->Build(nullptr);
  ASSERT_EQ(w.menu->WorksetSubmenus().size(), 2u);
  for (const auto& [id, path] : w.menu->WorksetSubmenus()) {
    const MenuEntry* submenu = EntryAt(top, path);
    ASSERT_NE(submenu, nullptr);
    ASSERT_EQ(submenu->children.size(), 2u);
    EXPECT_EQ(submenu->children[0].id, id);
    EXPECT_EQ(submenu->children[1].id, id + 1);
  }
  w.menu->EndTracking();
  EXPECT_TRUE(w.menu->WorksetSubmenus().empty());
}

}  // namespace
}  // namespace tavlet::menus
