// TLSWITCH and TLRESTORE in the running module on the simulated host.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/module.h"
#include "operations/session_list.h"
#include "settings/data_folder.h"
#include "settings/extra_settings.h"
#include "data_folder_user.h"
#include "sim/module_harness.h"

namespace tavlet::host {
namespace {

using extras_test::FixedUser;
using extras_test::kData;

std::string Path(char name) { return std::string("C:\\dwg\\") + name + ".dwg"; }

struct Session {
  explicit Session(int sessionRestore, const std::string& sessionFile = {}) {
    h.files.AddFolder(kData);
    if (!sessionFile.empty()) h.files.AddFile(kData + operations::kSessionFileName, sessionFile);
    for (char c : std::string("abcd")) h.AddDrawing(Path(c));
    if (sessionRestore) h.SetSetting(keys::SessionRestore, sessionRestore);
    h.services.user = &user;
  }
  std::vector<std::string> Open() const {
    std::vector<std::string> out;
    for (port::Document doc : h.host.OpenDocuments())
      out.push_back(h.host.Find(doc)->path + (h.host.Find(doc)->readOnly ? " ro" : ""));
    return out;
  }
  std::string SessionFile() {
    std::string bytes;
    h.files.ReadFile(kData + operations::kSessionFileName, bytes);
    return bytes;
  }
  FixedUser user;
  sim::ModuleHarness h;
};

TEST(ModuleExtras, SwitchGoesToThePreviouslyActiveDrawingOrThePopupsPick) {
  Session s(0);
  ASSERT_EQ(s.h.Load(), 0);
  port::Document a = s.h.OpenDrawing(Path('a'));
  port::Document b = s.h.OpenDrawing(Path('b'));
  port::Document c = s.h.OpenDrawing(Path('d'));
  s.h.host.Activate(a);
  ASSERT_NE(s.h.Module()->Extras(), nullptr);
  EXPECT_EQ(s.h.Module()->Extras()->Order().Order(), (std::vector<port::Document>{a, c, b}));
  EXPECT_TRUE(s.h.host.RunRegisteredCommand("TLSWITCH"));
  port::Document active = nullptr;
  s.h.host.Documents()->MdiActiveDocument(&active);
  EXPECT_EQ(active, c);
  s.h.host.CloseDrawing(c);
  const std::vector<port::Document>& order = s.h.Module()->Extras()->Order().Order();
  EXPECT_EQ(std::count(order.begin(), order.end(), c), 0);
  EXPECT_EQ(order.size(), 2u);
}

TEST(ModuleExtras, RestoreAfterACrashInTheMiddleOfAClose) {
  std::string left;
  {
    Session s(1);
    ASSERT_EQ(s.h.Load(), 0);
    std::vector<port::Document> docs;
    for (char c : std::string("ab")) docs.push_back(s.h.OpenDrawing(Path(c)));
    docs.push_back(s.h.host.OpenDrawing(Path('c'), true));
    s.h.host.CloseDrawing(docs[0]);  // the close all that the crash cut short
    left = s.SessionFile();
  }
  EXPECT_EQ(operations::ParseSession(left),
            (std::vector<operations::SessionDrawing>{{Path('b'), false}, {Path('c'), true}}));
  Session next(1, left);
  ASSERT_EQ(next.h.Load(), 0);
  EXPECT_TRUE(next.h.host.RunRegisteredCommand("TLRESTORE"));
  EXPECT_EQ(next.Open(), (std::vector<std::string>{Path('b'), Path('c') + " ro"}));
  EXPECT_TRUE(next.h.host.ShownBoxes().empty());
}

TEST(ModuleExtras, QuittingKeepsTheListAndMissingDrawingsShareOneBox) {
  std::string left;
  {
    Session s(2);
    ASSERT_EQ(s.h.Load(), 0);
    for (char c : std::string("abd")) s.h.OpenDrawing(Path(c));
    s.h.host.SetQuitting(true);
    for (port::Document doc : s.h.host.OpenDocuments()) s.h.host.CloseDrawing(doc);
    left = s.SessionFile();
  }
  EXPECT_EQ(operations::ParseSession(left).size(), 3u);
  Session next(2, left);
  next.h.files.Remove(Path('a'));
  next.h.files.Remove(Path('d'));
  next.h.host.QueueBoxAnswer(port::kAnswerYes);  // the offer at start-up
  ASSERT_EQ(next.h.Load(), 0);
  EXPECT_EQ(next.Open(), (std::vector<std::string>{Path('b')}));
  ASSERT_EQ(next.h.host.ShownBoxes().size(), 2u);
  EXPECT_EQ(next.h.host.ShownBoxes()[0].text, "重新打开上次退出时打开的 3 个图纸?");
  EXPECT_EQ(next.h.host.ShownBoxes()[1].text, operations::MissingDrawingsText({Path('a'), Path('d')}));
}

TEST(ModuleExtras, WithTheSettingOffNothingIsWrittenAndRestoreSaysSo) {
  Session s(0);
  ASSERT_EQ(s.h.Load(), 0);
  s.h.OpenDrawing(Path('a'));
  EXPECT_FALSE(s.h.files.Stat(kData + operations::kSessionFileName).exists);
  EXPECT_TRUE(s.h.host.RunRegisteredCommand("TLRESTORE"));
  EXPECT_NE(s.h.host.Transcript().find(extras_texts::kRestoreOff), std::string::npos);
}

}  // namespace
}  // namespace tavlet::host
