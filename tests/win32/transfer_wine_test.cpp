// The transfer client through Winsock, against the same pyftpdlib server as the
// native tests, started as a Unix program from under Wine.
#include <gtest/gtest.h>

#include "support/python_server.h"
#include "support/transfer_files.h"
#include "transfer/ftp_client.h"

namespace tavlet::transfer {
namespace {

using testing::CompareFiles;
using testing::ServerFolder;

class WinsockFtpTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    root_ = new ServerFolder(testing::MakeServerFolder("ftp-root"));
    local_ = new ServerFolder(testing::MakeServerFolder("ftp-local"));
    server_ = new testing::PythonServer;
    std::string error;
    if (!server_->Start(testing::TestScript("transfer/ftp_server.py"), {root_->unix}, error))
      startError_ = error;
  }
  static void TearDownTestSuite() {
    delete server_;
    delete root_;
    delete local_;
  }
  void SetUp() override { ASSERT_EQ(startError_, ""); }

  FtpError Logon(FtpClient& client, const char* password = "secret") {
    client.options.timeoutMilliseconds = 10000;
    if (FtpError e = client.Connect("127.0.0.1", server_->port())) return e;
    return client.Logon("tavlet", password);
  }

  static testing::PythonServer* server_;
  static ServerFolder* root_;
  static ServerFolder* local_;
  static std::string startError_;
};

testing::PythonServer* WinsockFtpTest::server_ = nullptr;
ServerFolder* WinsockFtpTest::root_ = nullptr;
ServerFolder* WinsockFtpTest::local_ = nullptr;
std::string WinsockFtpTest::startError_;

TEST_F(WinsockFtpTest, LogonTakesTheRightPasswordOnly) {
  FtpClient good;
  FtpError error = Logon(good);
  ASSERT_FALSE(error) << error.message;
  EXPECT_TRUE(good.ServerOffers("EPSV"));
  EXPECT_FALSE(good.Quit());

  FtpClient bad;
  error = Logon(bad, "wrong");
  EXPECT_EQ(error.kind, FtpErrorKind::LogonFailed) << error.message;
  EXPECT_EQ(error.replyCode, 530);
}

TEST_F(WinsockFtpTest, PassiveAndActiveTransfersAreByteForByte) {
  struct Case {
    const char* name;
    TransferMode mode;
    const char* remote;
  };
  const Case cases[] = {
      {"passive", TransferMode::Passive, "passive.bin"},
      {"active", TransferMode::Active, "图纸 active.bin"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    FtpClient client;
    client.options.mode = c.mode;
    ASSERT_FALSE(Logon(client));
    const ServerFolder source = testing::Inside(*local_, std::string("source-") + c.name);
    ASSERT_TRUE(testing::WritePatternFile(source.local, 3u << 20, 11));
    FtpError error = client.Upload(source.local, c.remote);
    ASSERT_FALSE(error) << error.message;

    const std::string target = testing::Inside(*local_, c.remote).local;
    error = client.Download(c.remote, target);
    ASSERT_FALSE(error) << error.message;
    EXPECT_EQ(CompareFiles(source.local, target), "");
    EXPECT_FALSE(testing::FileExists(target + ".part"));

    std::string names;
    ASSERT_FALSE(client.List("", true, names));
    EXPECT_NE(names.find(std::string(c.remote) + "\r\n"), std::string::npos) << names;
    EXPECT_FALSE(client.Quit());
  }
}

TEST_F(WinsockFtpTest, AClosedPortIsRefused) {
  FtpClient client;
  client.options.timeoutMilliseconds = 5000;
  // Nothing listens on port 1 of the loopback address.
  FtpError error = client.Connect("127.0.0.1", 1);
  EXPECT_EQ(error.kind, FtpErrorKind::Network) << error.message;
}

}  // namespace
}  // namespace tavlet::transfer
