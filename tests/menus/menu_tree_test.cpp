// The whole menu, entry by entry, for the situations a right click meets. Trees
// are compared as text: ids, texts as bytes, flags and order. "<B2>" and "<BD>"
// stand for the lone lead bytes that end the two cut texts.
#include "menu_fixture.h"

namespace tavlet::menus {
namespace {

std::string Bytes(std::string tree) {
  for (const auto& [mark, byte] : {std::pair<const char*, const char*>{"<B2>", "\xB2"}, {"<BD>", "\xBD"}}) {
    for (std::size_t at = tree.find(mark); at != std::string::npos; at = tree.find(mark, at))
      tree.replace(at, 4, byte);
  }
  return tree;
}

std::string Replace(std::string tree, const std::string& from, const std::string& to) {
  const std::size_t at = tree.find(from);
  EXPECT_NE(at, std::string::npos) << text::ToUtf8(from);
  if (at != std::string::npos) tree.replace(at, from.size(), to);
  return tree;
}

// No drawing open: an empty recent list ("空" at 5000, shared with the first
// workset), two worksets, no sheet sets, two templates.
const std::string kNoDrawing = R"(> 最近打开文件
  5000 空
> 工作集
  4030 管理...
  > Site plans
    5000 All
    5001 Select...
  > B
    5002 All
    5003 Select...
> 图纸集
  4031 设置图纸集搜索路径...
  4032 在管理器中打开图纸集
  > 最近
    5004 没有找到
  > 找到
    5005 没有找到
> 新<BD>
  4028 更改模板路径...
  4029 空模板
  5006 Std
  5007 acad
-
4055 选项...
4016 关于 Tavlet...
)";

const std::string kAllDrawings = R"(4013 快速打印全部
4007 保存全部
4008 关闭全部
4009 保存并关闭全部
4010 关闭全部,不保存
4034 退出,保存全部
4035 退出,不保存
-
4055 选项...
4016 关于 Tavlet...
)";

// The plan, active, with its recent entry; ids of the drawing's lists follow
// the templates.
const std::string kPlan = R"(4011 关闭 [平面图]
4047 打开文件夹
4039 锁定预览
> 布局
  5008 Model
  5009 布局1
  5010 Layout2
> 参照
  > 外部<B2>
    5011 总图.tdd
  > 图像
    5012 入口.jpg
    5013 立面.png
  > OLE 连接
    5014 门窗表.xls
  > 超链接
    5015 details
    5016 facade
    5017 门.pdf
> 图层状态
  5018 墙体关闭
  5019 Print
> 视图
  4050 保存...
  5020 Detail
  5021 Old sheet
  5022 Sheet A
  5023 入口
  5024 总图|Site
-
> 最近打开文件
  5000 C:\dwg\a.dwg
> 工作集
  4030 管理...
  > Site plans
    5001 All
    5002 Select...
  > B
    5003 All
    5004 Select...
> 图纸集
  4031 设置图纸集搜索路径...
  4032 在管理器中打开图纸集
  > 最近
    5005 没有找到
  > 找到
    5006 没有找到
> 新<BD>
  4028 更改模板路径...
  4029 空模板
  5006 Std
  5007 acad
-
)" + kAllDrawings;

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
  const Situation situations[] = {
      {"no drawing", nothing, onEmptyBar, kNoDrawing},
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
    port::Document doc = s.click(w);
    const std::string tree = w.Tree(doc);
    EXPECT_EQ(tree, Bytes(s.expected)) << text::ToUtf8(tree);
  }
}

}  // namespace
}  // namespace tavlet::menus
