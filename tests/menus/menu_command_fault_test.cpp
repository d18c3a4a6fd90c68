// Host failures injected into every call of every dispatched action: each ends
// in its box or line or in nothing, never in a crash, and leaves no drawing
// locked and no database object open.
#include <functional>
#include <map>

#include "menu_fixture.h"

namespace tavlet::menus {
namespace {

struct Action {
  const char* name;
  std::function<int(MenuWorld&)> choose;  // the id to send, after the right click on the plan
};

struct Sweep : MenuWorld {
  Sweep() {
    AddWorksets("[Site plans]\n文件1=C:\\dwg\\b.dwg,0\n");
    h.AddDrawing("C:\\dwg\\b.dwg");
    AddTemplate("acad.dwt");
    h.files.AddFile("D:\\项目\\办公楼\\照片\\入口.jpg", "jpg");
    chooser.answer = {"Layout2"};
    Start();
    a = h.OpenDrawing("C:\\dwg\\a.dwg");
    plan = OpenPlan();
    Tree(plan);
    h.host.ClearTranscript();
  }
  port::Document a = nullptr;
  port::Document plan = nullptr;
};

bool Expected(const std::string& message) {
  for (const char* start :
       {"指定路径的文件不存在", "Error restoring layer state ", "未知的错误在 MvTavlet"})
    if (message.rfind(start, 0) == 0) return true;
  const std::string alreadyOpen = "已经打开!\n";
  return message.find("injected") != std::string::npos || message == workset_texts::kNoFiles ||
         message == texts::OleLinkManagerMissing ||
         (message.size() > alreadyOpen.size() &&
          message.compare(message.size() - alreadyOpen.size(), alreadyOpen.size(), alreadyOpen) ==
              0);
}

TEST(MenuCommandFaults, EveryCallOfEveryActionFailingEndsCleanly) {
  const Action actions[] = {
      {"recent file", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "C:\\dwg\\a.dwg"); }},
      {"workset", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, texts::WorksetAll); }},
      {"template", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "acad"); }},
      {"layout", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "Layout2"); }},
      {"image", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "入口.jpg"); }},
      {"hyperlink", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "details"); }},
      {"layer state", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "墙体关闭"); }},
      {"model view", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "入口"); }},
      {"paper view", [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "Sheet A"); }},
      {"paper view asking its layout",
       [](MenuWorld& w) { return MenuWorld::IdOf(w.last, "Old sheet"); }},
      {"open folder", [](MenuWorld&) { return ids::OpenFolder; }},
      {"refresh preview", [](MenuWorld&) { return ids::RefreshPreview; }},
      {"refresh all previews", [](MenuWorld&) { return ids::RefreshAllPreviews; }},
  };
  std::map<std::string, int> messages;
  int injections = 0;
  for (const Action& action : actions) {
    std::vector<std::string> calls;
    {
      Sweep s;
      const int id = action.choose(s);
      ASSERT_NE(id, 0) << action.name;
      s.h.host.Faults().ClearLog();
      s.menu->OnCommand(id);
      calls = s.h.host.Faults().Log();
    }
    std::map<std::string, int> seen;
    for (const std::string& call : calls) {
      const int occurrence = ++seen[call];
      for (port::Result error : {port::kFail, port::kHostException}) {
        SCOPED_TRACE(std::string(action.name) + ": " + call + " #" + std::to_string(occurrence) +
                     (error == port::kFail ? " fails" : " throws"));
        Sweep s;
        const int id = action.choose(s);
        s.h.host.Faults().Fail(call, occurrence, error, "injected");
        s.menu->OnCommand(id);
        ++injections;
        // A host that refuses the unlock keeps its lock; that is the host's affair.
        if (call != "DocManager::UnlockDocument") {
          for (port::Document doc : s.h.host.OpenDocuments()) EXPECT_FALSE(s.h.host.IsLocked(doc));
        }
        EXPECT_EQ(s.h.host.OpenDatabaseObjects(), 0);
        const Lines boxes = s.Boxes();
        EXPECT_LE(boxes.size(), 1u);
        for (const std::string& box : boxes) {
          EXPECT_TRUE(Expected(box)) << text::ToUtf8(box);
          ++messages[box.rfind("错误 [0x", 0) == 0 ? "handler's box"
                     : box == "injected"           ? "description alone"
                                                   : "other box"];
        }
        const std::string& transcript = s.h.host.Transcript();
        if (!transcript.empty()) {
          EXPECT_TRUE(Expected(transcript)) << text::ToUtf8(transcript);
          ++messages[transcript == texts::UnknownError ? "dispatcher's line" : "other line"];
        }
      }
    }
  }
  EXPECT_GT(injections, 200);
  // The sweep reached each kind of ending.
  for (const char* kind : {"handler's box", "description alone", "dispatcher's line", "other line"})
    EXPECT_GT(messages[kind], 0) << kind;
}

}  // namespace
}  // namespace tavlet::menus
