// The demo's save-and-close session played on the simulated host alone. Its
// record is kept beside the script; the Wine suite plays the same script in the
// demo host's real windows and holds its record to the same text.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "support/script_replay.h"

namespace tavlet::operations {
namespace {

const std::string kScript = std::string(TAVLET_SOURCE_DIR) + "/apps/demohost/save-close.script";
const std::string kExpected = std::string(TAVLET_SOURCE_DIR) + "/apps/demohost/save-close.transcript";

TEST(SaveCloseSession, LeavesTheRecordKeptBesideTheScript) {
  testing::ScriptReplay replay;
  std::string error;
  ASSERT_TRUE(replay.Play(kScript, error)) << error;
  const std::string record = replay.Record();
  // TAVLET_UPDATE_EXPECTED=1 writes the record anew after a deliberate change.
  if (const char* update = std::getenv("TAVLET_UPDATE_EXPECTED"); update && *update == '1')
    std::ofstream(kExpected, std::ios::binary) << record;
  std::ifstream in(kExpected, std::ios::binary);
  ASSERT_TRUE(in) << kExpected;
  std::ostringstream expected;
  expected << in.rdbuf();
  EXPECT_EQ(record, expected.str());
}

}  // namespace
}  // namespace tavlet::operations
