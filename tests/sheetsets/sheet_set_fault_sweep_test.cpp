// Every host call of a load, failed one at a time: as a COM error (its text in a
// box) and as a failure inside the host that is no COM error (the tree's line).
// The calls come from a clean run's log, so a call the load starts making is
// swept without a change here.
#include <map>

#include "sheetsets/sheetset_fixture.h"

namespace tavlet::sheetsets {
namespace {

TEST(SheetSetFaultSweep, EveryCallOfALoadFailsCleanly) {
  Lines cleanLog;
  std::string cleanOutline;
  {
    SheetSetWorld world;
    world.host.Faults().ClearLog();
    SheetSetTree tree(world.Services());
    tree.Load(kSample);
    cleanLog = world.host.Faults().Log();
    cleanOutline = tree.Items().Outline();
  }
  ASSERT_GE(cleanLog.size(), 20u);

  std::map<std::string, int> seen;
  int runs = 0;
  for (const std::string& call : cleanLog) {
    const int occurrence = ++seen[call];
    for (const bool comError : {true, false}) {
      SCOPED_TRACE(call + " #" + std::to_string(occurrence) + (comError ? " COM error" : " host exception"));
      SheetSetWorld world;
      world.host.Faults().Fail(call, occurrence, comError ? port::kFail : port::kHostException, "injected failure");
      SheetSetTree tree(world.Services());
      tree.Load(kSample);
      EXPECT_EQ(world.BoxTexts(), Lines{comError ? "injected failure" : tree_texts::kUnknownError});
      // Every call is made before the first item goes in: a failure leaves no tree.
      EXPECT_EQ(tree.Items().Size(), 0u);
      EXPECT_EQ(tree.CollectCheckedFiles(), Lines{});
      // The same tree loads whole once the host behaves.
      world.host.Faults().Clear();
      tree.Load(kSample);
      EXPECT_EQ(tree.Items().Outline(), cleanOutline);
      ++runs;
    }
  }
  EXPECT_EQ(runs, static_cast<int>(cleanLog.size()) * 2);
}

TEST(SheetSetFaultSweep, ANullObjectGivenWithSuccessIsAPointerError) {
  // A manager that hands out no database, as a broken component might.
  struct NullManager final : port::SheetSetManager {
    unsigned long TAVLET_PORT_CALL AddRef() override { return 1; }
    unsigned long TAVLET_PORT_CALL Release() override { return 1; }
    port::Result TAVLET_PORT_CALL OpenDatabase(const char*, bool, port::SheetSetDatabase** database) override {
      *database = nullptr;
      return port::kOk;
    }
  } manager;
  SheetSetWorld world;
  SheetSetTree tree({&manager, world.files, *world.host.Boxes(), kModule});
  tree.Load(kSample);
  EXPECT_EQ(world.BoxTexts(), Lines{"错误 [0x80004003]"});
  EXPECT_EQ(tree.Items().Size(), 0u);
}

}  // namespace
}  // namespace tavlet::sheetsets
