// Real windows under Wine: the resizable dialog's minimum size and placement,
// and the sheet-selection dialog of the module's resources ticked by messages.
#ifdef _WIN32
#include <gtest/gtest.h>

#include <windows.h>

#include <commctrl.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "platform/win32/sheetsets/sheet_set_dialog_win32.h"
#include "platform/win32/ui/resizable_dialog_win32.h"
#include "platform/win32/window.h"
#include "settings/memory_registry.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"

namespace tavlet::win32 {
namespace {

const std::string kRoot = "Software\\Morvane\\Tavlet\\2.0 - R16";

// A resizable dialog of one button, as a template in memory.
std::vector<WORD> ResizableTemplate() {
  std::vector<WORD> t(sizeof(DLGTEMPLATE) / sizeof(WORD) + 3, 0);
  auto* d = reinterpret_cast<DLGTEMPLATE*>(t.data());
  d->style = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
  d->cdit = 0;
  d->cx = 200;
  d->cy = 150;
  return t;  // no menu, the standard class, no title
}

// A dialog whose OnInitDialog runs a script and closes it.
class ScriptedDialog final : public ResizableDialog {
 public:
  using ResizableDialog::ResizableDialog;
  std::function<void(ScriptedDialog&)> script;
  void Sizing(unsigned edge, RECT& rect) { SendMessageA(hwnd(), WM_SIZING, edge, reinterpret_cast<LPARAM>(&rect)); }

 protected:
  bool OnInitDialog() override {
    ResizableDialog::OnInitDialog();
    if (script) script(*this);
    EndDialog(IDOK);
    return true;
  }
};

ui::ResizableDialogState StateFor(const char* section) {
  ui::ResizableDialogState state;
  state.settingsRoot = kRoot;
  state.settingsSection = section;
  return state;
}

TEST(Win32Dialogs, DraggedBelowTheMinimumFromTheTopLeftCornerStops) {
  MemoryRegistry registry;
  std::vector<WORD> dialogTemplate = ResizableTemplate();
  ScriptedDialog dialog(registry, {});
  RECT dragged{};
  dialog.script = [&](ScriptedDialog& d) {
    d.State().minWidth = static_cast<std::uint32_t>(d.DluToPixelsX(150));
    d.State().minHeight = static_cast<std::uint32_t>(d.DluToPixelsY(200));
    dragged = {380, 290, 400, 300};
    d.Sizing(WMSZ_TOPLEFT, dragged);
  };
  ASSERT_EQ(dialog.DoModalIndirect(GetModuleHandleA(nullptr), reinterpret_cast<DLGTEMPLATE*>(dialogTemplate.data()),
                                   nullptr),
            IDOK);
  EXPECT_EQ(dragged.right, 400);
  EXPECT_EQ(dragged.bottom, 300);
  EXPECT_GT(400 - dragged.left, 20);
  EXPECT_EQ(static_cast<std::uint32_t>(dragged.right - dragged.left), dialog.State().minWidth);
  EXPECT_EQ(static_cast<std::uint32_t>(dragged.bottom - dragged.top), dialog.State().minHeight);
}

TEST(Win32Dialogs, PlacementIsRestoredInASecondRun) {
  MemoryRegistry registry;
  std::vector<WORD> dialogTemplate = ResizableTemplate();
  const auto* t = reinterpret_cast<DLGTEMPLATE*>(dialogTemplate.data());
  {
    ScriptedDialog first(registry, StateFor("TestDlg"));
    first.script = [](ScriptedDialog& d) { SetWindowPos(d.hwnd(), nullptr, 40, 50, 333, 244, SWP_NOZORDER); };
    ASSERT_EQ(first.DoModalIndirect(GetModuleHandleA(nullptr), t, nullptr), IDOK);
  }
  EXPECT_EQ(SettingsStore(registry, kRoot).GetString("TestDlg", "", ""), "40:50:373:294:NORMAL");
  RECT restored{};
  ScriptedDialog second(registry, StateFor("TestDlg"));
  second.script = [&](ScriptedDialog& d) { GetWindowRect(d.hwnd(), &restored); };
  ASSERT_EQ(second.DoModalIndirect(GetModuleHandleA(nullptr), t, nullptr), IDOK);
  EXPECT_EQ(restored.left, 40);
  EXPECT_EQ(restored.top, 50);
  EXPECT_EQ(restored.right, 373);
  EXPECT_EQ(restored.bottom, 294);
}

// The module built beside the tests holds the dialog resources.
HMODULE ModuleResources() {
  const char* build = std::getenv("TAVLET_BUILD_DIR");
  if (!build) return nullptr;
  std::string path = std::string(build) + "/Tavlet.arx";
  if (path.size() > 1 && path[0] == '/') path = "Z:" + path;
  for (char& c : path)
    if (c == '/') c = '\\';
  return LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
}

const char kSheetSet[] =
    "tavlet-sheetset 1\nname \"S\"\nsheet \"one\" file \"C:\\a.dwg\"\nsubset \"sub\"\n"
    "sheet \"two\" file \"C:\\b.dwg\"\nend-subset\nsheet \"three\" file \"C:\\c.dwg\"\n";

SheetSetDialogWindow* gDialog = nullptr;
std::vector<std::string> gTick;

void CALLBACK TickAndOk(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  if (!gDialog || !gDialog->hwnd()) return;
  HWND tree = GetDlgItem(gDialog->hwnd(), sheetsets::kSheetSetTreeId);
  const ui::TreeModel& model = gDialog->Logic().tree.Items();
  model.Walk([&](ui::TreeItem item) {
    for (const std::string& text : gTick) {
      if (model.Node(item).text != text) continue;
      TVITEMA change{};
      change.mask = TVIF_STATE;
      change.hItem = gDialog->ItemOf(item);
      change.stateMask = TVIS_STATEIMAGEMASK;
      change.state = INDEXTOSTATEIMAGEMASK(2);
      SendMessageA(tree, TVM_SETITEMA, 0, reinterpret_cast<LPARAM>(&change));
    }
  });
  SendMessageA(gDialog->hwnd(), WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
}

TEST(Win32Dialogs, SheetSetDialogReturnsTheTickedFilesInTreeOrder) {
  HMODULE resources = ModuleResources();
  if (!resources || !FindResourceA(resources, MAKEINTRESOURCEA(sheetsets::kSheetSetDialogId), RT_DIALOG))
    GTEST_SKIP() << "Tavlet.arx with its dialog resources is not built beside the tests";
  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_TREEVIEW_CLASSES};
  InitCommonControlsEx(&controls);
  MemoryFileSystem files;
  files.AddFile("C:\\s.dst", kSheetSet);
  sim::SimHost host(files);
  host::PortPtr<port::SheetSetManager> manager;
  host.CreateSheetSetManager(manager.Receive());
  MemoryRegistry registry;
  SheetSetDialogWindow dialog(registry, {manager.Get(), files, *host.Boxes(), "C:\\m.arx"}, "C:\\s.dst", kRoot);
  gDialog = &dialog;
  gTick = {"three", "two", "S"};
  SetTimer(nullptr, 0, 50, TickAndOk);
  EXPECT_EQ(dialog.DoModal(resources, sheetsets::kSheetSetDialogId, nullptr), IDOK);
  gDialog = nullptr;
  EXPECT_EQ(dialog.Logic().selectedFiles, (std::vector<std::string>{"C:\\c.dwg", "C:\\b.dwg"}));
  EXPECT_TRUE(SettingsStore(registry, kRoot).GetString("SheetSetDialog", "", "").find(":NORMAL") != std::string::npos);
  FreeLibrary(resources);
}

}  // namespace
}  // namespace tavlet::win32
#endif
