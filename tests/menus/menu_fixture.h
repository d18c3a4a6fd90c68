// The context menu over a whole module on the simulated host: the module's bar,
// the drawing operations, the workset store and the sheet-set commands, all
// over in-memory files and registry.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bar/bar_model.h"
#include "menus/context_menu.h"
#include "menus/menu_ids.h"
#include "settings/settings_table.h"
#include "sim/module_harness.h"
#include "sim/sim_shell.h"
#include "support/test_paths.h"
#include "text/codepage.h"
#include "worksets/workset_fixture.h"

namespace tavlet::menus {

using Lines = std::vector<std::string>;

class AnsweringChooser final : public content::LayoutChooser {
 public:
  std::vector<std::string> Choose(const std::string& title,
                                  const std::vector<std::string>& names) override {
    asked.push_back(title + ":" + std::to_string(names.size()));
    return answer;
  }
  std::vector<std::string> answer;
  Lines asked;
};

inline constexpr const char kWorksetsFile[] = "C:\\AppData\\Morvane\\Tavlet\\mei.worksets";
inline constexpr const char kTemplates[] = "C:\\Templates\\";
inline constexpr const char kGeneralKey[] =
    "Software\\Host\\R16.1\\ACAD-301:804\\Profiles\\<<Unnamed Profile>>\\General";
inline constexpr const char kPlanPath[] = "D:\\项目\\办公楼\\平面图.dwg";

inline std::string SampleText(const std::string& name) {
  std::ifstream in(std::filesystem::path(testing::SamplesDir()) / name, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

// "<B2>" and "<BD>" in an expected tree stand for the lone lead bytes that end
// the two cut texts.
inline std::string Bytes(std::string tree) {
  for (const auto& [mark, byte] :
       {std::pair<const char*, const char*>{"<B2>", "\xB2"}, {"<BD>", "\xBD"}}) {
    for (std::size_t at = tree.find(mark); at != std::string::npos; at = tree.find(mark, at))
      tree.replace(at, 4, byte);
  }
  return tree;
}

// A menu as text, a line for each entry of its top level, a submenu's entries
// in braces: "> 布局 {5009 Model | 5010 布局1}".
inline std::string CompactEntry(const MenuEntry& e);
inline std::string Compact(const MenuEntry& menu, const char* separator = "\n") {
  std::string out;
  for (const MenuEntry& e : menu.children) out += (out.empty() ? "" : separator) + CompactEntry(e);
  return out;
}
inline std::string CompactEntry(const MenuEntry& e) {
  if (e.IsSeparator()) return "-";
  std::string out = (e.IsPopup() ? std::string(">") : std::to_string(e.id)) + " " + e.text;
  if (e.flags & kGrayed) out += " (grayed)";
  if (e.flags & kChecked) out += " (checked)";
  return e.IsPopup() ? out + " {" + Compact(e, " | ") + "}" : out;
}

// Settings go in before Start, as the module reads them at load.
struct MenuWorld {
  MenuWorld() {
    h.files.AddFolder("C:\\AppData\\Morvane\\Tavlet\\");
    h.files.AddFolder(kTemplates);
    h.store.SetString("工作集", "路径", kWorksetsFile);
    h.registry.SetValue(kGeneralKey, "TemplatePath", kRegSz,
                        std::string_view(kTemplates, sizeof kTemplates));
  }

  void Start() {
    ASSERT_EQ(h.Load(), 0);
    bar = h.Bar();
    ASSERT_NE(bar, nullptr);
    ops = std::make_unique<operations::DrawingOperations>(
        operations::OperationServices{h.host, host::GetAcadApplication(h.host), h.windows, h.store,
                                      h.files, bar->RecentFiles(), shell, nullptr, bar->Window()});
    auto open = [this](const DrawingPath& p, bool complain, bool restore) {
      ops->OpenFile(p, complain, restore);
    };
    worksets = std::make_unique<WorksetStore>(WorksetServices{
        h.files, h.store, *h.host.Boxes(), user, "C:\\AppData\\Morvane\\Tavlet\\", open});
    sheetSets = std::make_unique<sheetsets::SheetSetCommands>(
        sheetsets::SheetSetServices{h.host, host::GetAcadApplication(h.host), h.files, h.store,
                                    shell, open, nullptr, bar->Window(), ops->hostVersion});
    menu = std::make_unique<ContextMenu>(
        MenuServices{h.host, host::GetAcadApplication(h.host), h.store, h.files, *bar, *ops, shell,
                     *worksets, *sheetSets, chooser, MenuDialogs{}});
  }

  port::Document OpenPlan() {
    port::Document doc = h.host.OpenDescription(SampleText("plan.tdd"), "plan.tdd");
    EXPECT_NE(doc, nullptr) << h.host.LastOpenError();
    return doc;
  }
  void AddWorksets(const std::string& profileText) { h.files.AddFile(kWorksetsFile, profileText); }
  void AddTemplate(const std::string& name) { h.files.AddFile(kTemplates + name, ""); }

  std::string Tree(port::Document doc) {
    last = menu->Build(doc);
    menu->EndTracking();
    return DescribeMenu(last);
  }
  // Whether the list's map (or the recent files) holds `id`.
  bool Holds(MenuList list, int id) const {
    const MenuLists& l = menu->Lists();
    switch (list) {
      case MenuList::RecentFiles:
        return static_cast<std::size_t>(id - kFirstListId) < bar->RecentFiles().Count();
      case MenuList::Worksets:
        return l.worksets.count(id) != 0;
      case MenuList::RecentSheetSets:
        return sheetSets->recentSheetSets.count(id) != 0;
      case MenuList::FoundSheetSets:
        return sheetSets->foundSheetSets.count(id) != 0;
      case MenuList::Templates:
        return l.templates.count(id) != 0;
      case MenuList::Layouts:
        return l.layouts.count(id) != 0;
      case MenuList::ExternalReferences:
        return l.references.externalReferences.count(id) != 0;
      case MenuList::Images:
        return l.references.images.count(id) != 0;
      case MenuList::OleLinks:
        return l.references.oleLinks.count(id) != 0;
      case MenuList::Hyperlinks:
        return l.references.hyperlinks.count(id) != 0;
      case MenuList::LayerStates:
        return l.layerStates.count(id) != 0;
      case MenuList::Views:
        return l.views.count(id) != 0;
      case MenuList::None:
        break;
    }
    return false;
  }
  // Every list id the last tree shows goes back, by the range test, to a list
  // that holds it ("空" aside, which stands for the first workset by design).
  void ExpectIdsResolve() const { ExpectIdsResolve(last); }
  void ExpectIdsResolve(const MenuEntry& menu) const {
    for (const MenuEntry& e : menu.children) {
      if (e.IsPopup()) ExpectIdsResolve(e);
      if (e.id < kFirstListId || e.text == texts::NoRecentFiles) continue;
      const MenuList list = ListOf(e.id, this->menu->Keys());
      EXPECT_TRUE(Holds(list, e.id))
          << e.id << " " << text::ToUtf8(e.text) << " in list " << static_cast<int>(list);
    }
  }
  // The first id whose entry has `text` somewhere in the tree; 0 when none.
  static int IdOf(const MenuEntry& menu, const std::string& text) {
    for (const MenuEntry& e : menu.children) {
      if (!e.IsPopup() && e.text == text) return e.id;
      if (int id = IdOf(e, text)) return id;
    }
    return 0;
  }
  Lines Boxes() const {
    Lines out;
    for (const sim::ShownBox& b : h.host.ShownBoxes()) out.push_back(b.text);
    return out;
  }
  Lines Actions(port::Document doc) const { return h.host.Find(doc)->actions; }

  sim::ModuleHarness h;
  sim::SimShell shell;
  FixedUser user;  // "mei", application data in C:\AppData
  AnsweringChooser chooser;
  bar::BarModel* bar = nullptr;
  std::unique_ptr<operations::DrawingOperations> ops;
  std::unique_ptr<WorksetStore> worksets;
  std::unique_ptr<sheetsets::SheetSetCommands> sheetSets;
  std::unique_ptr<ContextMenu> menu;
  MenuEntry last;
};

}  // namespace tavlet::menus
