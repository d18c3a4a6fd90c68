// Save all with the whole module loaded: the host's save events bring the new
// state back to the bar's list and tabs, and the walk ends where it began.
#include "bar/bar_model.h"
#include "ops_fixture.h"
#include "sim/module_harness.h"

namespace tavlet::operations {
namespace {

TEST(EndToEnd, SaveAllBringsEveryDrawingBackUnmodifiedAndRepaintsTheBar) {
  sim::ModuleHarness h;
  h.Load();
  ASSERT_NE(h.Bar(), nullptr);
  bar::BarModel& bar = *h.Bar();
  std::vector<port::Document> docs;
  for (const char* path : {"C:\\dwg\\a.dwg", "C:\\dwg\\b.dwg", "C:\\dwg\\c.dwg"}) {
    docs.push_back(h.OpenDrawing(path));
    h.host.RunCommand("LINE");
  }
  h.host.Activate(docs[1]);
  auto tabTexts = [&] {
    Lines out;
    for (const auto& t : bar.Tabs().Tabs()) out.push_back(t.text);
    return out;
  };
  ASSERT_EQ(tabTexts(), (Lines{"* a", "* b", "* c"}));

  sim::SimShell shell;
  DrawingOperations ops(OperationServices{h.host, host::GetAcadApplication(h.host), h.windows,
                                          h.store, h.files, bar.RecentFiles(), shell, nullptr,
                                          bar.Window()});
  h.windows.ClearLog();
  ops.OnSaveAll();

  EXPECT_EQ(tabTexts(), (Lines{"a", "b", "c"}));
  for (const auto& entry : bar.Strip().Entries()) EXPECT_FALSE(entry->modified) << entry->path.Full;
  EXPECT_EQ(h.host.MdiActive(), docs[1]);
  EXPECT_EQ(bar.Strip().Entries().at(static_cast<std::size_t>(bar.Strip().ActiveIndex()))->document,
            docs[1]);
  EXPECT_EQ(h.windows.LogOf("RedrawWindow MvTavlet"), (Lines{"RedrawWindow MvTavlet 0x105"}));
  // The saves went through the host's own command, last opened first.
  EXPECT_EQ(h.host.SentCommands(), (Lines{"_.QSAVE\n", "_.QSAVE\n", "_.QSAVE\n"}));
  EXPECT_EQ(h.store.GetString("MRU", "路径_1", ""), "C:\\dwg\\a.dwg");
  EXPECT_TRUE(h.host.ShownBoxes().empty());
}

}  // namespace
}  // namespace tavlet::operations
