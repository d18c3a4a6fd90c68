// The three extra entries of a drawing's menu: absent, and their ids dead, while
// their setting is off; with it on, close all but one asks as close all does.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "menus/bar_menu.h"
#include "menus/menu_ids.h"
#include "settings/extra_settings.h"
#include "sim/module_harness.h"
#include "sim/sim_shell.h"

namespace tavlet::menus {
namespace {

constexpr long kIdYes = 6, kIdNo = 7, kIdCancel = 2;

struct World {
  explicit World(bool on) {
    h.services.shell = &shell;
    for (int n = 1; n <= 4; ++n) h.AddDrawing(Path(n));
    if (on) h.SetSetting(keys::ExtraDrawingCommands, 1);
    EXPECT_EQ(h.Load(), 0);
    for (int n = 1; n <= 4; ++n) docs.push_back(h.OpenDrawing(Path(n)));
  }
  static std::string Path(int n) { return "C:\\dwg\\" + std::to_string(n) + ".dwg"; }
  ContextMenu& Menu() { return h.Module()->Menu()->Menu(); }
  std::vector<int> TopIds(port::Document doc) {
    std::vector<int> out;
    for (const MenuEntry& e : Menu().Build(doc).children) out.push_back(e.id);
    return out;
  }
  std::vector<std::string> Open() {
    std::vector<std::string> out;
    for (port::Document doc : h.host.OpenDocuments()) out.push_back(h.host.Find(doc)->path);
    return out;
  }

  sim::SimShell shell;
  sim::ModuleHarness h;
  std::vector<port::Document> docs;
};

TEST(ExtraCommands, OffTheMenuAndTheIdsAreAsBefore) {
  std::vector<int> withExtras;
  {
    World on(true);
    withExtras = on.TopIds(on.docs[1]);
  }
  const std::size_t all = withExtras.size();
  std::erase_if(withExtras, [](int id) { return id == ids::CloseOthers || id == ids::CopyFullPath || id == ids::ShowInFolder; });
  EXPECT_EQ(all, withExtras.size() + 3);
  World off(false);  // one module at a time: the module is the process's
  EXPECT_EQ(off.TopIds(off.docs[1]), withExtras);
  for (int id : {ids::CloseOthers, ids::CopyFullPath, ids::ShowInFolder}) EXPECT_FALSE(off.Menu().OnCommand(id));
  EXPECT_TRUE(off.shell.Calls().empty());
  EXPECT_EQ(off.Open().size(), 4u);
  off.Menu().Build(off.docs[0]);
  for (const std::string& write : off.h.registry.WriteLog()) EXPECT_EQ(write.find("Extras"), std::string::npos) << write;
  for (const std::string& key : off.h.registry.Tree().KeyPaths()) EXPECT_EQ(key.find("Extras"), std::string::npos) << key;
}

TEST(ExtraCommands, EntriesFollowOpenFolderAndDoTheirWork) {
  World w(true);
  const MenuEntry top = w.Menu().Build(w.docs[2]);
  std::vector<std::string> texts;
  for (const MenuEntry& e : top.children) texts.push_back(e.text);
  const auto folder = std::find(texts.begin(), texts.end(), std::string(texts::OpenFolder));
  ASSERT_NE(folder, texts.end());
  EXPECT_EQ(std::vector<std::string>(folder + 1, folder + 4),
            (std::vector<std::string>{texts::CloseOthers, texts::CopyFullPath, texts::ShowInFolder}));
  EXPECT_TRUE(w.Menu().OnCommand(ids::CopyFullPath));
  EXPECT_TRUE(w.Menu().OnCommand(ids::ShowInFolder));
  EXPECT_EQ(w.shell.Calls(), (std::vector<std::string>{"clipboard C:\\dwg\\3.dwg", "select C:\\dwg\\3.dwg"}));
}

TEST(ExtraCommands, CloseOthersAsksAsCloseAllAndCancelStops) {
  struct Case {
    const char* name;
    std::vector<long> answers;  // one per modified drawing asked, from the last
    std::vector<std::string> left;
  };
  const Case cases[] = {
      {"No to both", {kIdNo, kIdNo}, {World::Path(3)}},
      {"cancelled at the second question", {kIdNo, kIdCancel}, {World::Path(1), World::Path(2), World::Path(3)}},
      {"Yes saves and closes", {kIdYes, kIdNo}, {World::Path(3)}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    World w(true);
    for (int n : {2, 4}) w.h.host.Find(w.docs[static_cast<std::size_t>(n - 1)])->dbmod = 1;
    w.Menu().Build(w.docs[2]);
    for (long answer : c.answers) w.h.host.QueueBoxAnswer(answer);
    EXPECT_TRUE(w.Menu().OnCommand(ids::CloseOthers));
    EXPECT_EQ(w.Open(), c.left);
  }
}

}  // namespace
}  // namespace tavlet::menus
