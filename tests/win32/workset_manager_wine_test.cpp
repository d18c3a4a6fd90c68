// The workset manager in the demo host's real frame: opened from the bar's menu,
// driven by messages and by script steps, closed and opened again where it was;
// the worksets file afterwards compared byte for byte.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "demohost/demo_host.h"
#include "demohost/dialog_driver.h"
#include "demohost/script.h"
#include "platform/win32/registry_backend_win32.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"
#include "support/test_paths.h"
#include "win32/list_view_text.h"
#include "worksets/workset_manager.h"

namespace tavlet::demo {
namespace {

std::string WinePath(const char* unixPath) {
  std::string path = std::string("Z:") + unixPath;
  for (char& c : path)
    if (c == '/') c = '\\';
  return path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}


std::vector<std::string> Rows(HWND list) {
  std::vector<std::string> rows;
  const int count = static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < count; ++row)
    rows.push_back(testing::ListViewText(list, row, 0) + "|" + testing::ListViewText(list, row, 1));
  return rows;
}

// The top-left pixel of a button's image.
COLORREF CornerOf(HWND button) {
  auto bitmap = reinterpret_cast<HBITMAP>(SendMessageA(button, BM_GETIMAGE, IMAGE_BITMAP, 0));
  if (!bitmap) return CLR_INVALID;
  HDC dc = CreateCompatibleDC(nullptr);
  HGDIOBJ old = SelectObject(dc, bitmap);
  const COLORREF pixel = GetPixel(dc, 0, 0);
  SelectObject(dc, old);
  DeleteDC(dc);
  return pixel;
}

// The dialog's own tip control is the one with a tool for each image button; the
// list has a tip control of its own.
struct ToolCount {
  HWND owner;
  std::vector<LRESULT> tools;
};

BOOL CALLBACK CountTools(HWND window, LPARAM data) {
  auto* count = reinterpret_cast<ToolCount*>(data);
  char name[32] = {};
  GetClassNameA(window, name, sizeof name);
  if (lstrcmpiA(name, TOOLTIPS_CLASSA) == 0 && GetWindow(window, GW_OWNER) == count->owner)
    count->tools.push_back(SendMessageA(window, TTM_GETTOOLCOUNT, 0, 0));
  return TRUE;
}

// A closed frame posts WM_QUIT, as the host's own does; left in the queue it
// would end the next modal loop of this thread.
void DropQuit() {
  MSG message;
  while (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
  }
}

class WorksetManagerOnFrame : public ::testing::Test {
 public:
  void SetUp() override {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
    folder = testing::MakeTempFolder("worksets");
    worksets = folder + "\\manager.worksets";
    std::ofstream(worksets, std::ios::binary) << kOld;
    Win32Registry registry;
    SettingsStore store(registry, DefaultSettingsRoot());
    store.SetInt("", "DockSide", 59420);
    store.SetInt("", "Size", 110);
    WriteString(store, keys::WorksetsPath, worksets);
    demo = std::make_unique<DemoHost>(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo->CreateFrame(900, 700)) << "no display";
    // The drawings' full names are the paths their descriptions give.
    for (const char* name : {"plan.tdd", "section.tdd"}) {
      port::Document doc = demo->Open(testing::SamplesDir() + "\\" + name);
      ASSERT_TRUE(doc);
      (plan.empty() ? plan : section) = demo->Host().Find(doc)->path;
    }
    std::string error;
    ASSERT_TRUE(demo->LoadModule(error, true)) << error;
    demo->Pump(100);
  }
  void TearDown() override {
    demo.reset();
    DropQuit();
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  }

  std::string Run(const std::string& lines) {
    std::string error;
    Script script;
    if (!script.Parse(lines, error)) return error;
    ScriptRunner runner(*demo, script, log, folder);
    return runner.Run(error) ? "" : error;
  }
  HWND OpenManager() {
    EXPECT_EQ(Run("menu cell 1 \"工作集 > 管理...\"\nwait 200\n"), "");
    return FindDialog(manager_texts::kTitle);
  }
  std::string Placement() {
    Win32Registry registry;
    return SettingsStore(registry, DefaultSettingsRoot()).GetString("WorkSetDlg", "", "");
  }

  static constexpr const char kOld[] = "[Old]\r\nFile1=C:\\b.dwg,0\r\nFile2=C:\\a.dwg,1\r\n";
  static constexpr const char kOldLeft[] = "[Old]\r\n文件1=C:\\b.dwg,0\r\n";
  std::string folder, worksets, plan, section;
  std::unique_ptr<DemoHost> demo;
  std::ostringstream log;
};

TEST_F(WorksetManagerOnFrame, OpensFromTheMenuWithItsImagesTipsAndHints) {
  HWND dialog = OpenManager();
  ASSERT_NE(dialog, nullptr) << log.str();
  EXPECT_EQ(GetWindow(dialog, GW_OWNER), demo->Frame());
  const COLORREF face = GetSysColor(COLOR_3DFACE);
  for (const ManagerButton& button : kManagerButtons) {
    SCOPED_TRACE(button.id);
    HWND child = GetDlgItem(dialog, button.id);
    ASSERT_NE(child, nullptr);
    // Every picture has 0xC0C0C0 at its corner, which the face's colour replaced.
    EXPECT_EQ(CornerOf(child), face);
  }
  ToolCount tools{dialog, {}};
  EnumThreadWindows(GetCurrentThreadId(), CountTools, reinterpret_cast<LPARAM>(&tools));
  EXPECT_NE(std::find(tools.tools.begin(), tools.tools.end(), 8), tools.tools.end());
  char text[64] = {};
  GetDlgItemTextA(dialog, manager_ids::kCombo, text, sizeof text);
  EXPECT_STREQ(text, manager_texts::kChooseOne);
  EXPECT_EQ(SendDlgItemMessageA(dialog, manager_ids::kCombo, CB_GETCOUNT, 0, 0), 1);
  // The panel took the picture frame's place and id, to the right of the list.
  RECT list{}, preview{};
  GetWindowRect(GetDlgItem(dialog, manager_ids::kList), &list);
  ASSERT_NE(GetDlgItem(dialog, manager_ids::kPreview), nullptr);
  GetWindowRect(GetDlgItem(dialog, manager_ids::kPreview), &preview);
  EXPECT_EQ(preview.left, list.right);
  EXPECT_EQ(preview.top, list.top);
}

TEST_F(WorksetManagerOnFrame, AScriptedSessionLeavesTheFileAsExpectedAndThePlacementKept) {
  HWND dialog = OpenManager();
  ASSERT_NE(dialog, nullptr) << log.str();
  HWND list = GetDlgItem(dialog, manager_ids::kList);

  // A workset written in the reader's key form lists its members; a header click sorts them.
  ASSERT_EQ(Run("dialog 工作集管理 select 2014 Old\n"), "");
  EXPECT_EQ(Rows(list), (std::vector<std::string>{"C:\\b.dwg|", "C:\\a.dwg|X"}));
  ASSERT_EQ(Run("dialog 工作集管理 header 2013 0\n"), "");
  EXPECT_EQ(Rows(list), (std::vector<std::string>{"C:\\a.dwg|X", "C:\\b.dwg|"}));
  Win32Registry registry;
  const SettingsStore settings(registry, DefaultSettingsRoot());
  EXPECT_EQ(settings.GetInt("WorkSetDlg\\FileList", "Sort", 0), 1);
  // Selecting rows hands their files to the panel (one drawing that isn't there).
  LVITEMA select{};
  select.stateMask = select.state = LVIS_SELECTED;
  SendMessageA(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&select));
  // The Delete key takes the selected file out of the workset, file and list.
  SendMessageA(list, WM_KEYDOWN, VK_DELETE, 0);
  SendMessageA(list, WM_KEYUP, VK_DELETE, 0);
  EXPECT_EQ(ReadFile(worksets), kOldLeft);
  EXPECT_TRUE(Rows(list).empty());  // renumbered in the writer's key form

  ASSERT_EQ(Run("dialog 工作集管理 type 2014 \"Site plans\"\n"
                "dialog 工作集管理 click 2090\n"
                "dialog 工作集管理 click 2057\n"),
            "");
  EXPECT_EQ(ReadFile(worksets), std::string(kOldLeft) + "[Site plans]\r\n文件1=" + plan + ",0\r\n文件2=" + section +
                                    ",0\r\n");
  // The writer's keys hide the members from this list.
  EXPECT_TRUE(Rows(list).empty());

  // Below the minimum the drag stops at it.
  RECT minimum{0, 0, 200, 120};
  MapDialogRect(dialog, &minimum);
  ASSERT_EQ(Run("dialog 工作集管理 size 50 40\n"), "");
  RECT r{};
  GetWindowRect(dialog, &r);
  EXPECT_EQ(r.right - r.left, minimum.right);
  EXPECT_EQ(r.bottom - r.top, minimum.bottom);
  ASSERT_EQ(Run("dialog 工作集管理 size 620 410\ndialog 工作集管理 close\nwait 100\n"), "");
  EXPECT_EQ(FindDialog(manager_texts::kTitle), nullptr);
  GetWindowRect(dialog, &r);  // gone: the rectangle is read from the placement
  const std::string placement = Placement();
  int left = 0, top = 0, right = 0, bottom = 0;
  char state[16] = {};
  ASSERT_EQ(std::sscanf(placement.c_str(), "%i:%i:%i:%i:%15s", &left, &top, &right, &bottom, state), 5) << placement;
  EXPECT_STREQ(state, "NORMAL");
  EXPECT_EQ(right - left, 620);
  EXPECT_EQ(bottom - top, 410);

  HWND again = OpenManager();
  ASSERT_NE(again, nullptr);
  GetWindowRect(again, &r);
  EXPECT_EQ(r.left, left);
  EXPECT_EQ(r.top, top);
  EXPECT_EQ(r.right, right);
  EXPECT_EQ(r.bottom, bottom);
  // The workset shown last is chosen again.
  char text[64] = {};
  GetDlgItemTextA(again, manager_ids::kCombo, text, sizeof text);
  EXPECT_STREQ(text, "Old");
  ASSERT_EQ(Run("dialog 工作集管理 close\n"), "");
  EXPECT_EQ(ReadFile(worksets), std::string(kOldLeft) + "[Site plans]\r\n文件1=" + plan + ",0\r\n文件2=" + section +
                                    ",0\r\n");
}

// The demo's own script, as scripts/demohost.sh runs it, ends with its byte-for-byte check.
TEST(WorksetManagerScript, RunsToItsEndWithTheExpectedWorksetsFile) {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  {
    DemoHost demo(WinePath(TAVLET_ARX_PATH), false);
    ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
    std::string error;
    ASSERT_TRUE(demo.LoadModule(error, true)) << error;
    Script script;
    ASSERT_TRUE(script.Load(WinePath(TAVLET_SOURCE_DIR) + "\\apps\\demohost\\worksets.script", error)) << error;
    std::ostringstream log;
    ScriptRunner runner(demo, script, log, testing::MakeTempFolder("worksets-script"));
    EXPECT_TRUE(runner.Run(error)) << error << "\n" << log.str();
  }
  DropQuit();
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
}

}  // namespace
}  // namespace tavlet::demo
