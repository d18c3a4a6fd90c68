// A recent sheet set chosen from the bar's menu in the demo host's frame opens
// the module's sheet-selection dialog over the host's sheet-set component, and
// the sheets ticked there are opened.
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "demohost/demo_host.h"
#include "demohost/script.h"
#include "support/test_paths.h"

namespace tavlet::demo {
namespace {

struct Seen {
  std::string title;
  std::string set;    // the root's text
  std::string sheet;  // its first child's, the sheet ticked
  bool ticked = false;
  bool answered = false;
};
Seen seen;

constexpr char kSectionPath[] = "D:\\项目\\办公楼\\剖面图.dwg";

BOOL CALLBACK FindTree(HWND hwnd, LPARAM found) {
  char name[32] = {};
  GetClassNameA(hwnd, name, sizeof name);
  if (lstrcmpA(name, WC_TREEVIEWA) == 0) *reinterpret_cast<HWND*>(found) = hwnd;
  return TRUE;
}

BOOL CALLBACK FindDialog(HWND hwnd, LPARAM found) {
  char name[16] = {};
  GetClassNameA(hwnd, name, sizeof name);
  if (lstrcmpA(name, "#32770") == 0 && IsWindowVisible(hwnd)) *reinterpret_cast<HWND*>(found) = hwnd;
  return TRUE;
}

// Ticks the first sheet of the tree (the set's first child) with the space bar, then OK.
void CALLBACK AnswerDialog(HWND, UINT, UINT_PTR, DWORD) {
  HWND dialog = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), FindDialog, reinterpret_cast<LPARAM>(&dialog));
  if (!dialog || seen.answered) return;
  HWND tree = nullptr;
  EnumChildWindows(dialog, FindTree, reinterpret_cast<LPARAM>(&tree));
  if (!tree) return;
  if (seen.title.empty()) {
    char title[128] = {};
    GetWindowTextA(dialog, title, sizeof title);
    seen.title = title;
  }
  if (!seen.ticked) {
    HTREEITEM set = TreeView_GetRoot(tree);
    HTREEITEM sheet = set ? TreeView_GetChild(tree, set) : nullptr;
    if (!sheet) return;
    char text[128] = {};
    TVITEMA label{};
    label.mask = TVIF_TEXT | TVIF_HANDLE;
    label.pszText = text;
    label.cchTextMax = sizeof text;
    label.hItem = set;
    SendMessageA(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&label));
    seen.set = text;
    label.hItem = sheet;
    SendMessageA(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&label));
    seen.sheet = text;
    TVITEMA item{};
    item.mask = TVIF_STATE | TVIF_HANDLE;
    item.hItem = sheet;
    item.stateMask = TVIS_STATEIMAGEMASK;
    item.state = INDEXTOSTATEIMAGEMASK(2);
    SendMessageA(tree, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&item));
    seen.ticked = true;
    return;
  }
  seen.answered = true;
  PostMessageA(dialog, WM_COMMAND, IDOK, 0);
}

TEST(SheetSetEntry, OpensTheSelectionDialogAndTheTickedSheets) {
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
  const std::string root = testing::MakeTempFolder("roaming") + "\\";
  CreateDirectoryA((root + "Support").c_str(), nullptr);
  CreateDirectoryA((root + "Support\\Profiles").c_str(), nullptr);
  // The host's recent sheet sets name the sample set; its first sheet is a drawing written here.
  const std::string sheet = root + "a01.dwg";
  {
    std::ifstream in(testing::SamplesDir() + "\\section.tdd", std::ios::binary);
    std::ofstream(sheet, std::ios::binary) << in.rdbuf();
    std::ifstream set(testing::SamplesDir() + "\\project.dst", std::ios::binary);
    std::ostringstream text;
    text << set.rdbuf();
    std::string dst = text.str();
    // The description is UTF-8, unlike this file's narrow literals.
    const std::string old = reinterpret_cast<const char*>(u8"D:\\项目\\办公楼\\平面图.dwg");
    dst.replace(dst.find(old), old.size(), sheet);
    std::ofstream(root + "project.dst", std::ios::binary) << dst;
    std::ofstream(root + "Support\\Profiles\\FixedProfile.aws", std::ios::binary)
        << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<Profile><StorageRoot><AcApData><AdUiTools><ToolsInfo>\r\n"
           "<Tool Name=\"SheetSet\" CLSID=\"{BEBBB318-2898-4C03-ADA2-360DC6B7AA69}\">\r\n"
           "<MRU_FILES Count=\"1\"><MRU_FILE fileName=\""
        << root << "project.dst\"/></MRU_FILES>\r\n</Tool></ToolsInfo></AdUiTools></AcApData></StorageRoot></Profile>\r\n";
  }
  DemoHost demo(testing::WinePath(TAVLET_ARX_PATH), false);
  ASSERT_TRUE(demo.CreateFrame(900, 700)) << "no display";
  demo.Host().SetRoamableRootFolder(root);
  ASSERT_TRUE(demo.Open(testing::SamplesDir() + "\\plan.tdd"));
  std::string error;
  ASSERT_TRUE(demo.LoadModule(error, true)) << error;
  demo.Pump(100);

  seen = Seen{};
  const UINT_PTR timer = SetTimer(nullptr, 0, 40, AnswerDialog);
  Script script;
  ASSERT_TRUE(script.Parse("menu cell 1 \"图纸集 > 最近 > project\"\nwait 200\n", error)) << error;
  std::ostringstream log;
  ScriptRunner runner(demo, script, log, testing::MakeTempFolder("sheets"));
  const bool ran = runner.Run(error);
  KillTimer(nullptr, timer);
  ASSERT_TRUE(ran) << error << "\n" << log.str();

  EXPECT_EQ(seen.title, "选择图纸集");
  EXPECT_EQ(seen.set, "办公楼");
  EXPECT_EQ(seen.sheet, "平面图");
  EXPECT_TRUE(seen.answered);
  // The ticked sheet is open now, beside the plan.
  const std::vector<port::Document> open = demo.Host().OpenDocuments();
  ASSERT_EQ(open.size(), 2u);
  EXPECT_EQ(demo.Host().Find(open.back())->fileName, kSectionPath);
  RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
}

}  // namespace
}  // namespace tavlet::demo
