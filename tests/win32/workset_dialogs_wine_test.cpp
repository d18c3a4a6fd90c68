// The two modal dialogs around worksets, from the module's resources: the file
// selector of a workset (ticks read back in the dialog's order) and the
// references dialog (a click ticks a node and everything under it).
#include <windows.h>
#include <commctrl.h>

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "platform/win32/content/references_dialog_win32.h"
#include "platform/win32/registry_backend_win32.h"
#include "platform/win32/window.h"
#include "platform/win32/worksets/workset_manager_win32.h"
#include "settings/settings_store.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"
#include "support/test_paths.h"
#include "win32/list_view_text.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

// The module DLL, where the build puts every resource script, loaded for its
// resources only and made the current resources.
class ModuleResources {
 public:
  ModuleResources()
      : module_(LoadLibraryExA((std::string("Z:") + TAVLET_ARX_PATH).c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE)) {
    if (module_) {
      previous_ = win32::ModuleInstance();
      win32::SetModuleInstance(module_);
    }
  }
  ~ModuleResources() {
    if (!module_) return;
    win32::SetModuleInstance(previous_);
    FreeLibrary(module_);
  }
  HMODULE get() const { return module_; }

 private:
  HMODULE module_;
  HINSTANCE previous_ = nullptr;
};

// Steps run one a timer tick inside the dialog's modal loop, once it is up.
struct Steps {
  const char* title;
  std::vector<std::function<void(HWND)>> steps;
  std::size_t next = 0;
};
Steps* running = nullptr;

void CALLBACK RunStep(HWND, UINT, UINT_PTR timer, DWORD) {
  if (!running) return;
  HWND dialog = FindWindowA("#32770", running->title);
  if (!dialog) return;
  if (running->next >= running->steps.size()) {
    KillTimer(nullptr, timer);
    return;
  }
  running->steps[running->next++](dialog);
}

void RunWith(Steps& steps, const std::function<void()>& modal) {
  running = &steps;
  const UINT_PTR timer = SetTimer(nullptr, 0, 50, RunStep);
  modal();
  KillTimer(nullptr, timer);
  running = nullptr;
}


void Tick(HWND list, int row) {
  LVITEMA item{};
  item.stateMask = LVIS_STATEIMAGEMASK;
  item.state = INDEXTOSTATEIMAGEMASK(2);
  SendMessageA(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

void Press(HWND dialog, int id) { PostMessageA(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), 0); }

class WorksetDialogs : public ::testing::Test {
 protected:
  void SetUp() override {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane");
    // A quit message left by an earlier test's frame would end the modal loop at once.
    MSG message;
    while (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE)) {
    }
  }
  void TearDown() override { RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Morvane"); }
  Win32Registry registry;
  SettingsStore settings{registry, DefaultSettingsRoot()};
  sim::SimHost host;
};

TEST_F(WorksetDialogs, TheFileSelectorGivesTheTickedFilesInTheDialogsOrder) {
  ModuleResources module;
  ASSERT_NE(module.get(), nullptr) << TAVLET_ARX_PATH;
  const std::string path = testing::MakeTempFolder("selector") + "\\s.worksets";
  std::ofstream(path, std::ios::binary) << "[W]\r\n文件1=C:\\a.dwg,1\r\nFile2=C:\\b.dwg,0\r\nother=C:\\c.txt\r\n";
  std::vector<std::string> seen;
  Steps steps{selector_texts::kTitle, {}};
  steps.steps = {
      [&](HWND dialog) {
        HWND list = GetDlgItem(dialog, selector_ids::kList);
        for (int row = 0; row < 3; ++row)
          seen.push_back(testing::ListViewText(list, row, 0) + "|" + testing::ListViewText(list, row, 1));
        Press(dialog, IDOK);  // nothing ticked: a box, and the dialog stays
      },
      [&](HWND dialog) {
        HWND list = GetDlgItem(dialog, selector_ids::kList);
        // Sorted by the file column, then turned round: c, b, a.
        HWND header = reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
        RECT item{};
        SendMessageA(header, HDM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&item));
        const LPARAM at = MAKELPARAM((item.left + item.right) / 2, (item.top + item.bottom) / 2);
        for (int click = 0; click < 2; ++click) {
          SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, at);
          SendMessageA(header, WM_LBUTTONUP, 0, at);
        }
        Tick(list, 0);
        Tick(list, 2);
        Press(dialog, IDOK);
      },
  };
  win32::WorksetFileSelectorWin32 selector(settings, *host.Boxes(), NativeFileSystem(), nullptr);
  std::vector<DrawingPath> ticked;
  bool ok = false;
  RunWith(steps, [&] { ok = selector.SelectFiles(path, "W", ticked); });
  EXPECT_EQ(seen, (std::vector<std::string>{"C:\\a.dwg|X", "C:\\b.dwg|", "C:\\c.txt|"}));
  ASSERT_EQ(host.ShownBoxes().size(), 1u);
  EXPECT_EQ(host.ShownBoxes()[0].text, selector_texts::kNothingTicked);
  ASSERT_TRUE(ok);
  ASSERT_EQ(ticked.size(), 2u);
  EXPECT_EQ(ticked[0].Full, "C:\\c.txt");
  EXPECT_FALSE(ticked[0].readOnly);
  EXPECT_EQ(ticked[1].Full, "C:\\a.dwg");
  EXPECT_TRUE(ticked[1].readOnly);
  EXPECT_EQ(settings.GetInt("SelectWsFilesDlg\\FileList", "Sort", 0), -1);
}

TEST_F(WorksetDialogs, AClickOnAKindTicksItsFilesAndOkGivesThem) {
  ModuleResources module;
  ASSERT_NE(module.get(), nullptr) << TAVLET_ARX_PATH;
  MemoryFileSystem files;
  host.OpenDescription(text::ToUtf8("tavlet-drawing 1\npath \"D:\\项目\\平面.dwg\"\n"
                                    "xref \"S\" \"D:\\项目\\总图.dwg\" resolved\nimage \"Model\" \"D:\\p\\a.jpg\"\n"
                                    "picture 1 1 background 0\n"),
                       "a.tdd");
  std::vector<std::string> shown;
  Steps steps{"图纸参照", {}};
  HTREEITEM images = nullptr;
  steps.steps = {
      [&](HWND dialog) {
        HWND tree = GetDlgItem(dialog, win32::kReferencesTreeId);
        // Root, then its kinds, each expanded with its files.
        for (HTREEITEM item = reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0)); item;
             item = reinterpret_cast<HTREEITEM>(SendMessageA(tree, TVM_GETNEXTITEM, TVGN_NEXTVISIBLE,
                                                             reinterpret_cast<LPARAM>(item)))) {
          char text[128] = {};
          TVITEMA data{};
          data.mask = TVIF_TEXT;
          data.hItem = item;
          data.pszText = text;
          data.cchTextMax = sizeof text;
          SendMessageA(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&data));
          shown.push_back(text);
          if (std::string(text) == "图像") images = item;
        }
        if (!images) return;
        RECT r{};
        *reinterpret_cast<HTREEITEM*>(&r) = images;
        SendMessageA(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&r));
        POINT at{(r.left + r.right) / 2, (r.top + r.bottom) / 2};
        POINT screen = at;
        ClientToScreen(tree, &screen);
        SetCursorPos(screen.x, screen.y);
        PostMessageA(tree, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        PostMessageA(tree, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
      },
      [&](HWND) {},
      [&](HWND dialog) { Press(dialog, IDOK); },
  };
  std::vector<std::string> paths;
  bool ok = false;
  RunWith(steps, [&] { ok = win32::ChooseReferences(settings, host, files, nullptr, paths); });
  // The external references' title ends in half a character, which the control
  // shows as it can: it is left out of the comparison.
  ASSERT_EQ(shown.size(), 5u);
  shown.erase(shown.begin() + 1);
  EXPECT_EQ(shown, (std::vector<std::string>{"平面.dwg", "总图.dwg", "图像", "a.jpg"}));
  ASSERT_TRUE(ok);
  EXPECT_EQ(paths, std::vector<std::string>{"D:\\p\\a.jpg"});
  // The placement is kept under its own name.
  EXPECT_NE(settings.GetString("ReferencesDialog", "", ""), "");
}

}  // namespace
}  // namespace tavlet
