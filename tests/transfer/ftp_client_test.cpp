// The client against a real FTP server (pyftpdlib) on 127.0.0.1, and against a
// fake one for the replies a real server never sends.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/python_server.h"
#include "support/transfer_files.h"
#include "text/codepage.h"
#include "transfer/ftp_client.h"

namespace tavlet::transfer {
namespace {

using testing::CompareFiles;
using testing::FileExists;
using testing::PythonServer;
using testing::ReadText;
using testing::ServerFolder;
using testing::WritePatternFile;

constexpr char kUser[] = "tavlet";
constexpr char kPassword[] = "secret";
const std::string kScript = testing::TestScript("transfer/ftp_server.py");

// Every test gets its own server on a fresh root and a fresh local folder.
class FtpServerTest : public ::testing::Test {
 protected:
  void StartServer(std::vector<std::string> extra = {}) {
    root_ = testing::MakeServerFolder("ftp-root");
    local_ = testing::MakeServerFolder("ftp-local").local;
    std::vector<std::string> args = {root_.unix};
    args.insert(args.end(), extra.begin(), extra.end());
    std::string error;
    ASSERT_TRUE(server_.Start(kScript, args, error)) << error;
  }
  FtpError ConnectAndLogon(FtpClient& client, const std::string& password = kPassword) {
    client.options.timeoutMilliseconds = 10000;
    if (FtpError e = client.Connect("127.0.0.1", server_.port())) return e;
    return client.Logon(kUser, password);
  }
  // Where the server keeps a remote name. Its disk holds UTF-8 names; under
  // Wine the ANSI calls take the code-page 936 name and Wine makes it UTF-8.
  std::string OnServer(const std::string& name) const {
#ifdef _WIN32
    return root_.local + "\\" + name;
#else
    return root_.local + "/" + text::ToUtf8(name);
#endif
  }
  std::string Local(const std::string& name) const { return local_ + "/" + name; }

  PythonServer server_;
  ServerFolder root_;
  std::string local_;
};

TEST_F(FtpServerTest, LogonTakesTheRightPasswordOnlyAndSaysWhy) {
  StartServer();
  struct Case {
    const char* user;
    const char* password;
    FtpErrorKind kind;
    int code;
  };
  const Case cases[] = {
      {kUser, kPassword, FtpErrorKind::None, 0},
      {kUser, "wrong", FtpErrorKind::LogonFailed, 530},
      {"nobody", kPassword, FtpErrorKind::LogonFailed, 530},
      {kUser, "", FtpErrorKind::LogonFailed, 530},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.user) + "/" + c.password);
    FtpClient client;
    ASSERT_FALSE(client.Connect("127.0.0.1", server_.port()));
    FtpError error = client.Logon(c.user, c.password);
    EXPECT_EQ(error.kind, c.kind) << error.message;
    EXPECT_EQ(error.replyCode, c.code);
    if (error) {
      EXPECT_NE(error.message.find("logon refused: 530"), std::string::npos) << error.message;
    } else {
      EXPECT_TRUE(client.ServerOffers("EPSV"));
      EXPECT_TRUE(client.ServerOffers("utf8"));
      EXPECT_EQ(client.LastReply().code, 200);  // TYPE I
    }
    EXPECT_FALSE(client.Quit());
    EXPECT_FALSE(client.Connected());
  }
}

TEST_F(FtpServerTest, ConnectingToAClosedPortIsANetworkError) {
  StartServer();
  server_.Stop();
  FtpClient client;
  FtpError error = client.Connect("127.0.0.1", server_.port());
  EXPECT_EQ(error.kind, FtpErrorKind::Network);
  EXPECT_NE(error.message.find("connection refused"), std::string::npos) << error.message;
  EXPECT_EQ(client.Download("a", Local("a")).kind, FtpErrorKind::NotConnected);
}

struct ModeCase {
  const char* name;
  TransferMode mode;
  bool epsv;
};
struct FileCase {
  const char* name;
  std::string remote;
  std::uint64_t size;
};
const ModeCase kModes[] = {
    {"Epsv", TransferMode::Passive, true},
    {"Pasv", TransferMode::Passive, false},
    {"Active", TransferMode::Active, false},
};
const FileCase kFiles[] = {
    {"Empty", "empty.bin", 0},
    {"ChineseName", "图纸 测试.dwg", 300 * 1000 + 7},
};
// PASV and EPSV differ only before the data flows: one large file each way is enough.
const ModeCase kLargeFileModes[] = {kModes[0], kModes[2]};
const FileCase kLargeFile[] = {{"FiftyMegabytes", "big.bin", 50u * 1024 * 1024}};

class FtpTransferTest : public FtpServerTest,
                        public ::testing::WithParamInterface<std::tuple<ModeCase, FileCase>> {};

TEST_P(FtpTransferTest, UploadAndDownloadAreByteForByte) {
  const auto& [mode, file] = GetParam();
  StartServer();
  FtpClient client;
  client.options.mode = mode.mode;
  client.options.useEpsv = mode.epsv;
  ASSERT_FALSE(ConnectAndLogon(client));

  const std::string source = Local("source-" + file.remote);
  ASSERT_TRUE(WritePatternFile(source, file.size, 7));
  std::uint64_t lastProgress = 0;
  client.onProgress = [&](std::uint64_t done) {
    EXPECT_GT(done, lastProgress);
    lastProgress = done;
    return true;
  };
  FtpError error = client.Upload(source, file.remote);
  ASSERT_FALSE(error) << error.message;
  EXPECT_EQ(lastProgress, file.size);
  EXPECT_EQ(CompareFiles(source, OnServer(file.remote)), "");
  const int uploadReply = client.LastReply().code;
  EXPECT_EQ(uploadReply, 226);

  // A different file under the same name on the server, so that a download that
  // merely found the upload's source would be caught.
  ASSERT_TRUE(WritePatternFile(OnServer(file.remote), file.size, 8));
  const std::string target = Local(file.remote);
  lastProgress = 0;
  error = client.Download(file.remote, target);
  ASSERT_FALSE(error) << error.message;
  EXPECT_EQ(CompareFiles(OnServer(file.remote), target), "");
  EXPECT_FALSE(FileExists(target + ".part"));

  std::uint64_t size = 99;
  ASSERT_FALSE(client.Size(file.remote, size));
  EXPECT_EQ(size, file.size);
  EXPECT_FALSE(client.Quit());
}

std::string CaseName(const ::testing::TestParamInfo<std::tuple<ModeCase, FileCase>>& info) {
  return std::string(std::get<0>(info.param).name) + std::get<1>(info.param).name;
}
INSTANTIATE_TEST_SUITE_P(Modes, FtpTransferTest,
                         ::testing::Combine(::testing::ValuesIn(kModes),
                                            ::testing::ValuesIn(kFiles)),
                         CaseName);
INSTANTIATE_TEST_SUITE_P(LargeFile, FtpTransferTest,
                         ::testing::Combine(::testing::ValuesIn(kLargeFileModes),
                                            ::testing::ValuesIn(kLargeFile)),
                         CaseName);

TEST_F(FtpServerTest, ListsFoldersChangesIntoThemAndDeletes) {
  StartServer();
  std::filesystem::create_directories(OnServer("drawings"));
  ASSERT_TRUE(WritePatternFile(OnServer("drawings/a.dwg"), 10, 1));
  ASSERT_TRUE(WritePatternFile(OnServer("drawings/图纸.dwg"), 20, 2));
  for (TransferMode mode : {TransferMode::Passive, TransferMode::Active}) {
    SCOPED_TRACE(mode == TransferMode::Passive ? "passive" : "active");
    FtpClient client;
    client.options.mode = mode;
    ASSERT_FALSE(ConnectAndLogon(client));
    std::string folder;
    ASSERT_FALSE(client.CurrentFolder(folder));
    EXPECT_EQ(folder, "/");
    ASSERT_FALSE(client.ChangeFolder("drawings"));
    ASSERT_FALSE(client.CurrentFolder(folder));
    EXPECT_EQ(folder, "/drawings");

    std::string names;
    ASSERT_FALSE(client.List("", true, names));
    EXPECT_TRUE(names == "a.dwg\r\n图纸.dwg\r\n" || names == "图纸.dwg\r\na.dwg\r\n") << names;
    std::string listing;
    ASSERT_FALSE(client.List("", false, listing));
    EXPECT_NE(listing.find(" 20 "), std::string::npos) << listing;
    EXPECT_NE(listing.find("图纸.dwg\r\n"), std::string::npos) << text::ToUtf8(listing);

    FtpError error = client.ChangeFolder("missing");
    EXPECT_EQ(error.kind, FtpErrorKind::Refused);
    EXPECT_EQ(error.replyCode, 550);
    EXPECT_TRUE(client.Connected());
    EXPECT_FALSE(client.Quit());
  }
  FtpClient client;
  ASSERT_FALSE(ConnectAndLogon(client));
  ASSERT_FALSE(client.Delete("drawings/图纸.dwg"));
  EXPECT_FALSE(FileExists(OnServer("drawings/图纸.dwg")));
  EXPECT_TRUE(FileExists(OnServer("drawings/a.dwg")));
  FtpError error = client.Delete("drawings/图纸.dwg");
  EXPECT_EQ(error.kind, FtpErrorKind::Refused);
  EXPECT_EQ(error.replyCode, 550);
  EXPECT_EQ(client.Delete("two\r\nDELE a.dwg").kind, FtpErrorKind::BadArgument);
  EXPECT_TRUE(FileExists(OnServer("drawings/a.dwg")));
}

TEST_F(FtpServerTest, AMissingRemoteFileLeavesTheLocalFolderAsItWas) {
  StartServer();
  FtpClient client;
  ASSERT_FALSE(ConnectAndLogon(client));
  const std::string target = Local("old.dwg");
  ASSERT_TRUE(WritePatternFile(target, 1000, 3));
  FtpError error = client.Download("missing.dwg", target);
  EXPECT_EQ(error.kind, FtpErrorKind::Refused);
  EXPECT_EQ(error.replyCode, 550);
  EXPECT_NE(error.message.find("RETR missing.dwg: 550"), std::string::npos) << error.message;
  EXPECT_EQ(ReadText(target).size(), 1000u);
  EXPECT_FALSE(FileExists(target + ".part"));
  // The session goes on.
  ASSERT_TRUE(WritePatternFile(OnServer("there.dwg"), 5, 4));
  EXPECT_FALSE(client.Download("there.dwg", Local("there.dwg")));

  error = client.Upload(Local("no such file"), "x.dwg");
  EXPECT_EQ(error.kind, FtpErrorKind::LocalFile);
  EXPECT_FALSE(FileExists(OnServer("x.dwg")));
}

TEST_F(FtpServerTest, ADroppedDownloadRemovesThePartFileAndNothingElse) {
  StartServer({"--drop-after", std::to_string(1 << 20)});
  ASSERT_TRUE(WritePatternFile(OnServer("big.bin"), 8u << 20, 5));
  const std::string target = Local("big.bin");
  ASSERT_TRUE(WritePatternFile(target, 100, 6));
  const std::string before = ReadText(target);
  ASSERT_TRUE(WritePatternFile(Local("neighbour.bin"), 100, 7));
  for (TransferMode mode : {TransferMode::Passive, TransferMode::Active}) {
    SCOPED_TRACE(mode == TransferMode::Passive ? "passive" : "active");
    FtpClient client;
    client.options.mode = mode;
    ASSERT_FALSE(ConnectAndLogon(client));
    FtpError error = client.Download("big.bin", target);
    EXPECT_TRUE(error.kind == FtpErrorKind::Closed || error.kind == FtpErrorKind::Incomplete)
        << error.message;
    EXPECT_NE(error.message.find("RETR big.bin"), std::string::npos) << error.message;
    EXPECT_FALSE(client.Connected());
    EXPECT_EQ(ReadText(target), before);
    EXPECT_FALSE(FileExists(target + ".part"));
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(local_))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"big.bin", "neighbour.bin"}));
  }
}

TEST_F(FtpServerTest, ADroppedUploadIsAnErrorAndLeavesTheSourceAlone) {
  StartServer({"--drop-after", std::to_string(1 << 20)});
  const std::string source = Local("big.bin");
  ASSERT_TRUE(WritePatternFile(source, 8u << 20, 5));
  const std::string copy = Local("copy.bin");
  ASSERT_TRUE(WritePatternFile(copy, 8u << 20, 5));
  FtpClient client;
  ASSERT_FALSE(ConnectAndLogon(client));
  FtpError error = client.Upload(source, "big.bin");
  EXPECT_EQ(error.kind, FtpErrorKind::Closed) << error.message;
  EXPECT_NE(error.message.find("STOR big.bin"), std::string::npos) << error.message;
  EXPECT_EQ(CompareFiles(source, copy), "");
}

TEST_F(FtpServerTest, CancellingADownloadKeepsTheSessionAndNoPartFile) {
  StartServer();
  ASSERT_TRUE(WritePatternFile(OnServer("big.bin"), 16u << 20, 5));
  FtpClient client;
  client.options.blockSize = 64 * 1024;
  ASSERT_FALSE(ConnectAndLogon(client));
  client.onProgress = [](std::uint64_t done) { return done < (1u << 20); };
  FtpError error = client.Download("big.bin", Local("big.bin"));
  EXPECT_EQ(error.kind, FtpErrorKind::Cancelled) << error.message;
  EXPECT_FALSE(FileExists(Local("big.bin")));
  EXPECT_FALSE(FileExists(Local("big.bin.part")));
  client.onProgress = nullptr;
  EXPECT_FALSE(client.Download("big.bin", Local("big.bin")));
  EXPECT_EQ(CompareFiles(OnServer("big.bin"), Local("big.bin")), "");
}

TEST(FtpFakeServer, BrokenConversationsEndInClearErrors) {
  struct Case {
    const char* scenario;
    FtpErrorKind kind;
    const char* message;
  };
  const Case cases[] = {
      {"garbage-greeting", FtpErrorKind::BadReply, "not an FTP reply: \"SSH-2.0-OpenSSH_9.2\""},
      {"bad-code", FtpErrorKind::BadReply, "not an FTP reply: \"2x0 ok\""},
      {"code-out-of-range", FtpErrorKind::BadReply, "not an FTP reply: \"650 odd\""},
      {"endless-line", FtpErrorKind::BadReply, "reply line longer than 8192 bytes"},
      {"unfinished-multiline", FtpErrorKind::Closed, "in the middle of a reply"},
      {"closed-after-greeting", FtpErrorKind::Closed, "the server closed the connection"},
      {"silent", FtpErrorKind::TimedOut, "waiting for the server's reply: timed out"},
      {"bad-pasv", FtpErrorKind::BadReply, "PASV: no address in \"passive mode, no address\""},
      {"pasv-out-of-range", FtpErrorKind::BadReply, "PASV: no address"},
      {"bad-pwd", FtpErrorKind::BadReply, "PWD: no quoted folder"},
      {"huge-multiline", FtpErrorKind::BadReply, "longer than 1000 lines"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.scenario);
    PythonServer server;
    std::string startError;
    ASSERT_TRUE(server.Start(kScript, {"--fake", c.scenario}, startError)) << startError;
    FtpClient client;
    client.options.timeoutMilliseconds = 500;
    FtpError error = client.Connect("127.0.0.1", server.port());
    if (!error) error = client.Logon(kUser, kPassword);
    if (!error) {
      std::string folder;
      error = std::string(c.scenario) == "bad-pwd" ? client.CurrentFolder(folder)
                                                   : client.List("", true, folder);
    }
    EXPECT_EQ(error.kind, c.kind) << error.message;
    EXPECT_NE(error.message.find(c.message), std::string::npos) << error.message;
  }
}

}  // namespace
}  // namespace tavlet::transfer
