// The world of the menu benchmarks: the module on the simulated host with a
// drawing of the content benchmark's 100,000 entities, 100 recent files, 100
// worksets and 50 templates, and the context menu over them. Every host call
// goes through the simulation's bookkeeping, so a figure is an upper bound of
// the bar's own.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "large_drawing.h"
#include "menus/context_menu.h"
#include "settings/settings_table.h"
#include "sim/module_harness.h"
#include "sim/sim_shell.h"

namespace tavlet::bench {

constexpr int kRecentFiles = 100;
constexpr int kWorksets = 100;
constexpr int kTemplates = 50;
constexpr char kTemplateFolder[] = "C:\\Templates\\";
constexpr char kWorksetsFile[] = "C:\\Data\\bench.worksets";

class BenchUser final : public UserEnvironment {
 public:
  bool AppDataFolder(std::string& folder) override {
    folder = "C:\\Data";
    return true;
  }
  std::string ModuleFolder() override { return "C:\\Data\\"; }
  bool UserName(std::string& name) override {
    name = "bench";
    return true;
  }
};

class NoChooser final : public content::LayoutChooser {
 public:
  std::vector<std::string> Choose(const std::string&, const std::vector<std::string>&) override {
    return {};
  }
};

struct World {
  World() {
    h.SetSetting(keys::MRUCount, kRecentFiles);
    for (int i = 0; i < kRecentFiles; ++i) {
      const std::string path = Numbered("C:\\dwg\\recent", i, ".dwg");
      h.files.AddFile(path, "");
      h.store.SetString("MRU", Numbered("路径_", i + 1), path);
    }
    std::string worksets;
    for (int i = 0; i < kWorksets; ++i)
      worksets += Numbered("[Workset ", i, "]\n") + Numbered("文件1=C:\\dwg\\w", i, ".dwg,0\n");
    h.files.AddFile(kWorksetsFile, worksets);
    h.store.SetString("工作集", "路径", kWorksetsFile);
    for (int i = 0; i < kTemplates; ++i)
      h.files.AddFile(kTemplateFolder + Numbered("t", i, ".dwt"), "");
    h.registry.SetValue(
        "Software\\Host\\R16.1\\ACAD-301:804\\Profiles\\<<Unnamed Profile>>\\General",
        "TemplatePath", kRegSz, std::string_view(kTemplateFolder, sizeof kTemplateFolder));
    h.Load();
    doc = h.host.OpenDescription("tavlet-drawing 1\npicture 1 1 background 0\n", "big.tdd");
    h.host.Find(doc)->content = LargeDrawing();
    bar::BarModel& bar = *h.Bar();
    auto open = [this](const DrawingPath& p, bool complain, bool restore) {
      ops->OpenFile(p, complain, restore);
    };
    ops = std::make_unique<operations::DrawingOperations>(
        operations::OperationServices{h.host, host::GetAcadApplication(h.host), h.windows, h.store,
                                      h.files, bar.RecentFiles(), shell, nullptr, bar.Window()});
    store = std::make_unique<WorksetStore>(
        WorksetServices{h.files, h.store, *h.host.Boxes(), user, "C:\\Data\\", open});
    sheetSets = std::make_unique<sheetsets::SheetSetCommands>(
        sheetsets::SheetSetServices{h.host, host::GetAcadApplication(h.host), h.files, h.store,
                                    shell, open, nullptr, bar.Window(), ops->hostVersion});
    menu =
        std::make_unique<menus::ContextMenu>(menus::MenuServices{h.host,
                                                                 host::GetAcadApplication(h.host),
                                                                 h.store,
                                                                 h.files,
                                                                 bar,
                                                                 *ops,
                                                                 shell,
                                                                 *store,
                                                                 *sheetSets,
                                                                 chooser,
                                                                 {}});
  }

  sim::ModuleHarness h;
  sim::SimShell shell;
  BenchUser user;
  NoChooser chooser;
  port::Document doc = nullptr;
  std::unique_ptr<operations::DrawingOperations> ops;
  std::unique_ptr<WorksetStore> store;
  std::unique_ptr<sheetsets::SheetSetCommands> sheetSets;
  std::unique_ptr<menus::ContextMenu> menu;
};

inline std::size_t CountEntries(const menus::MenuEntry& menu) {
  std::size_t n = menu.children.size();
  for (const menus::MenuEntry& e : menu.children) n += CountEntries(e);
  return n;
}

}  // namespace tavlet::bench
