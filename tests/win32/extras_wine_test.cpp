// The bar's additions in the demo host's real frame: Ctrl+Tab opens the
// switcher and its pick becomes active, the copied path is read back from the
// clipboard, a session killed in the middle is restored by the next run; and
// with the settings off, Ctrl+Tab is the MDI's own until the preferences turn
// the switcher on.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "bar/switcher_input.h"
#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "support/test_paths.h"

namespace tavlet::demo {
namespace {

using tavlet::testing::WinePath;

const std::string kScripts = WinePath(TAVLET_SOURCE_DIR "/apps/demohost/");

// Takes away what an earlier run left: the settings and the data folder's files.
void ForgetEverything() {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  char appData[MAX_PATH] = {};
  if (GetEnvironmentVariableA("APPDATA", appData, MAX_PATH) == 0) return;
  for (const char* name : {"Session.lst", "Thumbnails.bin"})
    DeleteFileA((std::string(appData) + "\\Morvane\\Tavlet\\" + name).c_str());
}

// Runs demohost.exe on `script` with screenshots going to `out`; its exit
// status, and what it wrote in `log`.
DWORD RunDemoHost(const std::string& script, const std::string& out, std::string& log) {
  const std::string logPath = out + "\\" + script + ".log";
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  HANDLE logFile = CreateFileA(logPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = logFile;
  startup.hStdError = logFile;
  PROCESS_INFORMATION process{};
  std::string command = "\"" + WinePath(TAVLET_DEMOHOST_PATH) + "\" --module \"" + WinePath(TAVLET_ARX_PATH) +
                        "\" --script \"" + kScripts + script + "\" --out \"" + out + "\"";
  DWORD status = 0xFFFFFFFF;
  if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
    if (WaitForSingleObject(process.hProcess, 180000) == WAIT_TIMEOUT) TerminateProcess(process.hProcess, 0xFFFFFFFE);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  CloseHandle(logFile);
  std::ifstream in(logPath, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  log = text.str();
  return status;
}

void SendKey(WORD key, bool up) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
  SendInput(1, &input, sizeof input);
}

// What a timer does in the popup once it shows: keys pressed, or a click on a cell.
struct PopupInput {
  std::vector<WORD> keys;
  int clickCell = -1;
  bool done = false;
};

PopupInput*& Pending() {
  static PopupInput* input = nullptr;
  return input;
}

void CALLBACK ActInPopup(HWND, UINT, UINT_PTR id, DWORD) {
  HWND popup = FindWindowA("TavletSwitcher", nullptr);
  PopupInput* input = Pending();
  if (!input || !popup || !IsWindowVisible(popup)) return;
  KillTimer(nullptr, id);
  input->done = true;
  for (WORD key : input->keys) {
    SendKey(key, false);
    SendKey(key, true);
  }
  if (input->clickCell >= 0) {
    const host::WindowRect cell = bar::LayOutSwitcher(3, {0, 0, 900, 700}).Cell(static_cast<std::size_t>(input->clickCell));
    PostMessageA(popup, WM_LBUTTONDOWN, MK_LBUTTON,
                 MAKELPARAM((cell.left + cell.right) / 2, (cell.top + cell.bottom) / 2));
  }
}

bool Exists(const std::string& path) { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }

TEST(ExtrasOnFrame, CtrlTabClipboardAndRestoreAfterTheHostIsKilled) {
  ForgetEverything();
  const std::string out = tavlet::testing::MakeTempFolder("extras");
  std::string log;
  // The script's own checks: the pick of Ctrl+Tab is active, the clipboard holds
  // the drawing's path; then it kills its process (status 3).
  EXPECT_EQ(RunDemoHost("extras.script", out, log), 3u) << log;
  EXPECT_NE(log.find("check-clipboard 1"), std::string::npos) << log;
  EXPECT_TRUE(Exists(out + "\\switcher.png"));
  // Nothing open at the start, the three drawings after TLRESTORE.
  EXPECT_EQ(RunDemoHost("extras-restore.script", out, log), 0u) << log;
  EXPECT_TRUE(Exists(out + "\\restored-switcher.png"));
  ForgetEverything();
}

TEST(ExtrasOnFrame, TheSwitchersKeysAndClickInItsWindow) {
  ForgetEverything();
  struct Case {
    const char* what;
    PopupInput input;
    int active;  // in the open order, after
  };
  // Opened in this order and activated last to first: the order of activation is
  // plan (active), detail, elevation, and detail is preselected.
  const Case cases[] = {
      {"Escape cancels", {{VK_ESCAPE}}, 0},
      {"Enter takes the previous drawing", {{VK_RETURN}}, 1},
      {"Tab moves on, Enter takes", {{VK_TAB, VK_RETURN}}, 2},
      {"Tab moves round to the active one", {{VK_TAB, VK_TAB, VK_RETURN}}, 0},
      {"a click on the third cell", {{}, 2}, 2},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    std::string error;
    DemoHost demo(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
    ASSERT_TRUE(WriteSetting("Extras", "CtrlTabSwitcher", 1));
    ASSERT_TRUE(demo.LoadModule(error, true)) << error;
    std::vector<port::Document> docs;
    for (const char* name : {"ex-plan.dwg", "ex-detail.dwg", "ex-elevation.dwg"})
      docs.push_back(demo.Open(kScripts + "drawings\\" + name));
    for (int i = 2; i >= 0; --i) demo.Host().Activate(docs[static_cast<std::size_t>(i)]);
    demo.Pump(200);
    PopupInput input = k.input;
    Pending() = &input;
    SetTimer(nullptr, 0, 100, ActInPopup);
    demo.Execute("TLSWITCH");
    demo.Pump(200);
    Pending() = nullptr;
    EXPECT_TRUE(input.done);
    EXPECT_EQ(FindWindowA("TavletSwitcher", nullptr), nullptr);
    EXPECT_EQ(demo.Host().MdiActive(), docs[static_cast<std::size_t>(k.active)]);
    demo.UnloadModule();
  }
  ForgetEverything();
}

TEST(ExtrasOnFrame, CtrlTabIsTheMdisOwnUntilThePreferencesTurnTheSwitcherOn) {
  ForgetEverything();
  std::string error;
  DemoHost demo(WinePath(TAVLET_ARX_PATH), false);
  ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
  ASSERT_TRUE(demo.LoadModule(error, true)) << error;
  for (const char* name : {"ex-plan.dwg", "ex-detail.dwg", "ex-elevation.dwg"})
    ASSERT_TRUE(demo.Open(kScripts + "drawings\\" + name));
  demo.Pump(300);
  const port::Document before = demo.Host().MdiActive();
  SetForegroundWindow(demo.Frame());
  SetFocus(demo.ViewOf(before));
  INPUT keys[4] = {};
  const WORD codes[4] = {VK_CONTROL, VK_TAB, VK_TAB, VK_CONTROL};
  for (int i = 0; i < 4; ++i) {
    keys[i].type = INPUT_KEYBOARD;
    keys[i].ki.wVk = codes[i];
    keys[i].ki.dwFlags = i >= 2 ? KEYEVENTF_KEYUP : 0;
  }
  ASSERT_EQ(SendInput(4, keys, sizeof keys[0]), 4u);
  demo.Pump(500);
  EXPECT_EQ(FindWindowA("TavletSwitcher", nullptr), nullptr);
  EXPECT_NE(demo.Host().MdiActive(), before);

  // Ticked on the preferences' third page, it hooks Ctrl+Tab from the OK on:
  // the switcher goes back to the drawing the MDI left.
  Script script;
  ASSERT_TRUE(script.Parse("preferences \"tab 2; click 4002; ok\"\nwait 200\nctrl-tab 0 on.png\n", error)) << error;
  std::ostringstream log;
  ScriptRunner runner(demo, script, log, tavlet::testing::MakeTempFolder("extras-on"));
  EXPECT_TRUE(runner.Run(error)) << error << "\n" << log.str();
  EXPECT_EQ(demo.Host().MdiActive(), before);
  demo.UnloadModule();
  ForgetEverything();
}

}  // namespace
}  // namespace tavlet::demo
