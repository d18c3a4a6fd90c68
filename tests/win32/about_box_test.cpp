// The about box from the module DLL's resources: its texts, and the update check
// run from it against a Python endpoint on 127.0.0.1.
#include <gtest/gtest.h>

#include <windows.h>

#include <memory>
#include <string>

#include "platform/win32/ui/about_box_win32.h"
#include "support/python_server.h"
#include "tavlet_version.h"

namespace tavlet::win32 {
namespace {

constexpr int kName = 2101, kVersion = 2102, kPath = 2103, kDate = 2104, kStatus = 2105, kCheck = 2106,
              kOpen = 2107;

std::wstring ChildText(HWND dialog, int id) {
  wchar_t text[512] = {};
  GetDlgItemTextW(dialog, id, text, 512);
  return text;
}

// Runs the thread's messages until `done` or the time is up.
template <typename Done>
bool PumpUntil(Done done, DWORD milliseconds) {
  const DWORD start = GetTickCount();
  while (!done()) {
    if (GetTickCount() - start > milliseconds) return false;
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
    Sleep(10);
  }
  return true;
}

class AboutBoxTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    server_ = new testing::PythonServer;
    std::string error;
    if (!server_->Start(testing::TestScript("transfer/update_server.py"), {}, error)) startError_ = error;
  }
  static void TearDownTestSuite() { delete server_; }
  void SetUp() override {
    module_ = LoadLibraryExA((std::string("Z:") + TAVLET_ARX_PATH).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_NE(module_, nullptr) << TAVLET_ARX_PATH;
  }
  void TearDown() override {
    if (module_) FreeLibrary(module_);
  }
  static std::string Url(const char* path) {
    return "http://127.0.0.1:" + std::to_string(server_->port()) + path;
  }
  static AboutInfo Info(const std::string& endpoint) {
    return {"Morvane Tavlet", TAVLET_VERSION, "C:\\Program Files\\Morvane\\Tavlet.arx", "2026-11-23", endpoint};
  }

  HMODULE module_ = nullptr;
  static testing::PythonServer* server_;
  static std::string startError_;
};

testing::PythonServer* AboutBoxTest::server_ = nullptr;
std::string AboutBoxTest::startError_;

TEST_F(AboutBoxTest, ShowsNameVersionPathAndDate) {
  AboutBox box(Info(""));
  HWND dialog = box.Create(module_, nullptr);
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(ChildText(dialog, kName), L"Morvane Tavlet");
  EXPECT_EQ(ChildText(dialog, kVersion), L"版本 2.0.7");
  EXPECT_EQ(ChildText(dialog, kPath), L"C:\\Program Files\\Morvane\\Tavlet.arx");
  EXPECT_EQ(ChildText(dialog, kDate), L"生成日期 2026-11-23");
  wchar_t caption[64] = {};
  GetWindowTextW(dialog, caption, 64);
  EXPECT_STREQ(caption, L"关于 Tavlet");
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, kOpen)));
  DestroyWindow(dialog);
  EXPECT_EQ(box.hwnd(), nullptr);
}

TEST_F(AboutBoxTest, TheRunningBuildIsTheBuildsOneVersion) {
  const AboutInfo info = CurrentAboutInfo();
  EXPECT_EQ(info.version, TAVLET_VERSION);
  EXPECT_EQ(info.version, "2.0.7");
  EXPECT_EQ(info.buildDate.size(), 10u) << info.buildDate;
  EXPECT_FALSE(info.modulePath.empty());
  struct Case {
    const char* compiler;
    const char* iso;
  };
  const Case cases[] = {{"Nov 23 2026", "2026-11-23"}, {"Jan  1 2027", "2027-01-01"},
                        {"Dec 31 1999", "1999-12-31"}, {"Foo  1 2027", "Foo  1 2027"},
                        {"anM  1 2027", "anM  1 2027"}, {"", ""}};
  for (const Case& c : cases) EXPECT_EQ(IsoBuildDate(c.compiler), c.iso) << c.compiler;
}

TEST_F(AboutBoxTest, TheCheckShowsEachVerdict) {
  ASSERT_EQ(startError_, "");
  struct Case {
    std::string endpoint;
    const wchar_t* status;
    bool link;
  };
  const Case cases[] = {
      {Url("/good"), L"有新版本: 2.0.9。\r\nFixes.", true},
      {Url("/same"), L"已是最新版本 (服务器上的最新版本为 2.0.7)。", false},
      {Url("/missing"), L"更新服务器出错: the server answered HTTP 404", false},
      {"", L"未设置检查更新的地址 (设置 UpdateEndpoint)。", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.endpoint);
    AboutBox box(Info(c.endpoint));
    HWND dialog = box.Create(module_, nullptr);
    ASSERT_NE(dialog, nullptr);
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(kCheck, BN_CLICKED), 0);
    EXPECT_TRUE(PumpUntil([&] { return IsWindowEnabled(GetDlgItem(dialog, kCheck)) != FALSE; }, 15000));
    EXPECT_EQ(ChildText(dialog, kStatus), c.status);
    EXPECT_EQ(IsWindowEnabled(GetDlgItem(dialog, kOpen)) != FALSE, c.link);
    DestroyWindow(dialog);
  }
}

TEST_F(AboutBoxTest, ClosingDuringTheCheckCancelsItWithoutALateMessage) {
  ASSERT_EQ(startError_, "");
  for (bool deleteBox : {false, true}) {
    SCOPED_TRACE(deleteBox ? "box deleted" : "dialog closed");
    auto box = std::make_unique<AboutBox>(Info(Url("/silent")), 1500);
    HWND dialog = box->Create(module_, nullptr);
    ASSERT_NE(dialog, nullptr);
    SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(kCheck, BN_CLICKED), 0);
    Sleep(300);
    EXPECT_TRUE(box->Checking());
    if (deleteBox) {
      box.reset();
    } else {
      SendMessageA(dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
      EXPECT_EQ(box->hwnd(), nullptr);
      EXPECT_FALSE(box->Checking());
    }
    EXPECT_FALSE(IsWindow(dialog));
    // Past the check's time limit: a note held back would arrive now.
    Sleep(2500);
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, AboutBox::kVerdictArrived, AboutBox::kVerdictArrived, PM_REMOVE));
    EXPECT_TRUE(HttpGet::WaitForWorkers(3000));
  }
}

}  // namespace
}  // namespace tavlet::win32
