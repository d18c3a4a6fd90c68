// The update check through WinINet under Wine, against a Python endpoint on
// 127.0.0.1 started by the test.
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "platform/win32/transfer/http_get_win32.h"
#include "support/python_server.h"

namespace tavlet::win32 {
namespace {

using host::UpdateStatus;
using host::UpdateVerdict;

// Collects the verdicts a check reports, from whatever thread reports them.
struct Verdicts {
  std::mutex lock;
  std::condition_variable arrived;
  std::vector<UpdateVerdict> got;
  std::atomic<DWORD> thread{0};

  UpdateCheck::Callback Sink() {
    return [this](const UpdateVerdict& verdict) {
      std::lock_guard<std::mutex> guard(lock);
      got.push_back(verdict);
      thread = GetCurrentThreadId();
      arrived.notify_all();
    };
  }
  bool WaitFor(std::size_t count, int milliseconds) {
    std::unique_lock<std::mutex> guard(lock);
    return arrived.wait_for(guard, std::chrono::milliseconds(milliseconds),
                            [&] { return got.size() >= count; });
  }
};

class UpdateCheckTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = new testing::PythonServer;
    std::string error;
    if (!server_->Start(testing::TestScript("transfer/update_server.py"), {}, error))
      startError_ = error;
  }
  static void TearDownTestSuite() { delete server_; }
  void SetUp() override { ASSERT_EQ(startError_, ""); }
  static std::string Url(const char* path) {
    return "http://127.0.0.1:" + std::to_string(server_->port()) + path;
  }

  static testing::PythonServer* server_;
  static std::string startError_;
};

testing::PythonServer* UpdateCheckTest::server_ = nullptr;
std::string UpdateCheckTest::startError_;

TEST_F(UpdateCheckTest, EachAnswerGivesItsVerdictOnTheWorkerThread) {
  struct Case {
    const char* path;
    UpdateStatus status;
    const char* version;
    const char* detail;
  };
  const Case cases[] = {
      {"/good", UpdateStatus::NewerBuild, "2.0.9", ""},
      {"/same", UpdateStatus::UpToDate, "2.0.7", ""},
      {"/missing", UpdateStatus::HttpError, "", "the server answered HTTP 404"},
      {"/malformed", UpdateStatus::BadAnswer, "",
       "line 1: the answer does not start with \"tavlet-update 1\""},
      {"/huge", UpdateStatus::TooLarge, "", "the answer is 10485776 bytes"},
      {"/huge-unsized", UpdateStatus::TooLarge, "", "the answer is larger than 4096 bytes"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    Verdicts verdicts;
    UpdateCheck check;
    ASSERT_TRUE(check.Start(Url(c.path), "2.0.7", verdicts.Sink(), 10000));
    ASSERT_TRUE(verdicts.WaitFor(1, 15000));
    check.Cancel();
    ASSERT_EQ(verdicts.got.size(), 1u);
    const UpdateVerdict& verdict = verdicts.got[0];
    EXPECT_EQ(verdict.status, c.status) << verdict.detail;
    EXPECT_EQ(verdict.version, c.version);
    EXPECT_EQ(verdict.detail, c.detail);
    EXPECT_NE(verdicts.thread.load(), GetCurrentThreadId());
    if (c.status == UpdateStatus::NewerBuild) {
      EXPECT_EQ(verdict.url, "https://downloads.example.invalid/tavlet-2.0.9.zip");
      EXPECT_EQ(verdict.notes, "Fixes.");
    }
  }
}

TEST_F(UpdateCheckTest, NoEndpointAndNoServerAreToldApart) {
  Verdicts verdicts;
  UpdateCheck check;
  EXPECT_FALSE(check.Start("", "2.0.7", verdicts.Sink()));
  EXPECT_FALSE(check.Start("file:///C:/x.txt", "2.0.7", verdicts.Sink()));
  ASSERT_EQ(verdicts.got.size(), 2u);
  EXPECT_EQ(verdicts.got[0].status, UpdateStatus::NoEndpoint);
  EXPECT_EQ(verdicts.got[0].detail, "no update address is configured");
  EXPECT_EQ(verdicts.got[1].status, UpdateStatus::NoEndpoint);
  EXPECT_EQ(verdicts.thread.load(), GetCurrentThreadId());

  ASSERT_TRUE(check.Start("http://127.0.0.1:1/good", "2.0.7", verdicts.Sink(), 5000));
  ASSERT_TRUE(verdicts.WaitFor(3, 10000));
  EXPECT_EQ(verdicts.got[2].status, UpdateStatus::NoNetwork) << verdicts.got[2].detail;
}

TEST_F(UpdateCheckTest, AServerThatNeverAnswersTimesOut) {
  Verdicts verdicts;
  UpdateCheck check;
  const DWORD start = GetTickCount();
  ASSERT_TRUE(check.Start(Url("/silent"), "2.0.7", verdicts.Sink(), 1000));
  ASSERT_TRUE(verdicts.WaitFor(1, 15000));
  EXPECT_EQ(verdicts.got[0].status, UpdateStatus::TimedOut) << verdicts.got[0].detail;
  EXPECT_LT(GetTickCount() - start, 8000u);
}

TEST_F(UpdateCheckTest, CancelDuringTheCheckEndsItWithoutALateCallback) {
  for (bool destroy : {false, true}) {
    SCOPED_TRACE(destroy ? "destroyed" : "cancelled");
    Verdicts verdicts;
    auto check = std::make_unique<UpdateCheck>();
    ASSERT_TRUE(check->Start(Url("/silent"), "2.0.7", verdicts.Sink(), 1500));
    Sleep(300);
    EXPECT_TRUE(check->Running());
    if (destroy) {
      check.reset();
    } else {
      check->Cancel();
      EXPECT_FALSE(check->Running());
    }
    // Past the time limit: a callback that was only held back would come now.
    EXPECT_FALSE(verdicts.WaitFor(1, 2000));
    EXPECT_TRUE(verdicts.got.empty());
    // A worker let go has ended by then too, so a module could unload.
    EXPECT_TRUE(HttpGet::WaitForWorkers(3000));
    if (check) {
      ASSERT_TRUE(check->Start(Url("/good"), "2.0.7", verdicts.Sink(), 5000));
      ASSERT_TRUE(verdicts.WaitFor(1, 10000));
      EXPECT_EQ(verdicts.got[0].status, UpdateStatus::NewerBuild);
    }
  }
}

}  // namespace
}  // namespace tavlet::win32
