// The workset manager ("工作集管理", dialog 500): a modeless window over the
// worksets file where worksets are made, deleted and filled. It has no OK or
// Cancel: every action is written to the file at once, through a ProfileFile the
// manager holds for its whole life. The logic talks to its controls through
// WorksetManagerView, which the Win32 dialog implements on real controls and tests
// implement in memory.
//
//   WorksetManager manager(services, view);
//   manager.OnInitDialog();
//   manager.OnEditChange("Site plans");
//   manager.OnCreate();             // the name checked, the section made, listed
//   manager.OnAddOpenDrawings();    // every open drawing, behind what is in
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/automation.h"
#include "host/port/frame.h"
#include "menus/menu_entry.h"
#include "settings/profile_file.h"
#include "settings/settings_store.h"
#include "sheetsets/sheet_set_commands.h"
#include "ui/dialog_geometry.h"
#include "worksets/workset_store.h"

namespace tavlet {

namespace manager_ids {
inline constexpr int kDialog = 500;
inline constexpr int kCombo = 2014;
inline constexpr int kLabel = 2016;
inline constexpr int kCreate = 2090;
inline constexpr int kDelete = 2075;
inline constexpr int kFilesGroup = 2063;
inline constexpr int kList = 2013;
inline constexpr int kOpenSelected = 2048;
inline constexpr int kRemoveSelected = 2074;
inline constexpr int kBrowse = 2087;
inline constexpr int kAddFromSheetSet = 2055;
inline constexpr int kAddOpenDrawings = 2057;
inline constexpr int kAddReferences = 2056;
inline constexpr int kPreview = 2042;
// The sheet-set popup's first id.
inline constexpr int kFirstSheetSetId = 100;
}  // namespace manager_ids

namespace manager_texts {
inline constexpr const char kTitle[] = "工作集管理";
inline constexpr const char kLabel[] = "工作集:";
inline constexpr const char kFilesGroup[] = "文件";
inline constexpr const char kTypeAName[] = "<输入工作集名称>";
inline constexpr const char kChooseOne[] = "<选择工作集>";
inline constexpr const char kEmptyCreateAbove[] = "<在上面创建工作集...>";
inline constexpr const char kEmptyChooseAbove[] = "<在上面选择或创建工作集...>";
inline constexpr const char kEmptyNoFilesYet[] = "还没有文件...";
inline constexpr const char kNoWorksetChosen[] = "没有选中工作集!";
inline constexpr const char kTypedNotCreated[] = "%s 已经被添加到工作集!";
inline constexpr const char kNeedsAName[] = "你需要给工作集命名!";
inline constexpr const char kNameInUse[] = "名称已经被使用!";
inline constexpr const char kRemoveQuestion[] = "移除 %s?";
inline constexpr const char kNeedsSheetSets[] = "此功能只在支持图纸集的 AutoCAD 的版本中有效!";
inline constexpr const char kNoFileChosen[] = "没有选定文件!";
inline constexpr const char kTooManyFiles[] = "一次选择了文件太多!";
inline constexpr const char kNothingSelected[] = "没有选定!";
inline constexpr const char kRecentMenu[] = "最近";
inline constexpr const char kFoundMenu[] = "找到";
inline constexpr const char kPathColumn[] = "路径";
inline constexpr const char kReadOnlyColumn[] = "只读";
inline constexpr const char kReadOnlyMark[] = "X";
inline constexpr const char kBrowseFilter[] = "所有文件(*.*)|*.*||";
}  // namespace manager_texts

// The open-file dialog of the browse button: OFN_ALLOWMULTISELECT | OFN_EXPLORER |
// OFN_HIDEREADONLY with the framework's own bits, a zeroed buffer of 13000 bytes,
// and FNERR_BUFFERTOOSMALL when the choice didn't fit.
inline constexpr unsigned long kBrowseFlags = 0x880200;
inline constexpr std::size_t kBrowseBufferSize = 13000;
inline constexpr unsigned long kBrowseBufferTooSmall = 0x3003;

// One image button: its bitmap resources (0: none) and its tip.
struct ManagerButton {
  int id;
  int image;
  int disabledImage;
  const char* tip;
};
inline constexpr ManagerButton kManagerButtons[] = {
    {manager_ids::kCreate, 5107, 5106, "创建新的空工作集"},
    {manager_ids::kDelete, 5104, 5103, "删除选定工作集"},
    {manager_ids::kOpenSelected, 5093, 0, "打开选定文件"},
    {manager_ids::kRemoveSelected, 5104, 0, "删除工作集中选定文件"},
    {manager_ids::kBrowse, 5105, 0, "浏览文件到增加"},
    {manager_ids::kAddFromSheetSet, 5097, 0, "加文件于工作集"},
    {manager_ids::kAddOpenDrawings, 5099, 0, "加文件于打开的文档"},
    {manager_ids::kAddReferences, 5098, 0, "加文件于打开的文档参照"},
};
// The bitmap's colour that takes the dialog face's colour (GetSysColor(15)).
inline constexpr std::uint32_t kButtonTransparentColor = 0xC0C0C0;

// The children's rectangles for a client rectangle, in pixels.
struct WorksetManagerLayout {
  ui::Rect label, combo, create, remove, group;
  ui::Rect open, removeFiles, browse, addReferences, addOpen, addSheetSet;
  ui::Rect list, preview;
};
// WM_SIZE: the client less 2 pixels a side; a top row of 16 units (the label's 40,
// the combo to 32 units before the right edge, two 16-unit buttons); the group box
// below it; inside it (insets 4, 10, 4, 4) six 16-unit buttons with a gap of 24
// units after the second; the list 2 pixels under them to 70 units before the
// inner right edge, and the preview in those 70 units.
WorksetManagerLayout LayOutWorksetManager(const ui::Rect& client, const ui::DialogUnits& units);

// What the open-file dialog gave.
struct BrowseOutcome {
  bool ok = false;
  std::vector<std::string> paths;    // on OK, in the dialog's order
  unsigned long extendedError = 0;   // CommDlgExtendedError on Cancel
};

// The dialog's controls, as the logic uses them.
class WorksetManagerView {
 public:
  virtual ~WorksetManagerView() = default;
  // The combo box; it is sorted (CBS_SORT), so it decides where a name goes.
  virtual void ResetCombo() = 0;
  virtual int AddComboName(const std::string& name) = 0;  // the index it took
  virtual int FindComboExact(const std::string& name) = 0;  // -1: not there
  virtual void SelectComboIndex(int index) = 0;
  virtual int ComboSelection() = 0;  // -1: none
  virtual std::string ComboItem(int index) = 0;
  virtual std::string ComboText() = 0;
  virtual void SetComboText(const std::string& text) = 0;
  // All of the combo's text selected, the focus moved there.
  virtual void SelectComboTextAndFocus() = 0;
  virtual void EnableCreate(bool enable) = 0;

  // The list of members: column 0 the path (with the file's small icon), column
  // 1 the read-only mark.
  virtual void SetListEmptyText(const std::string& text) = 0;
  virtual void DeleteAllRows() = 0;
  virtual void AddRow(const std::string& path, const std::string& readOnlyMark) = 0;
  virtual int RowCount() = 0;
  virtual std::string RowText(int row, int column) = 0;
  virtual std::vector<int> SelectedRows() = 0;
  virtual void SelectNoRow() = 0;
  virtual void SetRowText(int row, int column, const std::string& text) = 0;

  virtual void ClearPreview() = 0;
  virtual void ShowPreview(const std::vector<std::string>& paths) = 0;

  // The sheet-set popup under the add-from-sheet-set button: the id chosen, 0 for none.
  virtual int TrackSheetSetMenu(const menus::MenuEntry& menu) = 0;
  virtual BrowseOutcome BrowseFiles() = 0;
};

struct WorksetManagerServices {
  WorksetStore& store;
  port::MessageBoxes& boxes;
  FileSystem& files;
  const SettingsStore& settings;         // "最近工作集" of "WorkSetDlg"
  host::AcadApplicationPtr application;  // the open drawings
  OpenFileFunction openFile;
  double hostVersion = 0;                // above 16.0 for sheet sets
  sheetsets::SheetSetCommands* sheetSets = nullptr;
  sheetsets::SheetSetDialogRunner* sheetSetDialog = nullptr;
  // The references dialog: true on OK with the ticked paths.
  std::function<bool(std::vector<std::string>& paths)> chooseReferences;
};

class WorksetManager {
 public:
  // The worksets file's path is taken here, once, for the manager's life.
  WorksetManager(WorksetManagerServices services, WorksetManagerView& view);

  ProfileFile& Profile() { return profile_; }

  // After the controls exist: the names, and the workset shown last when it's there.
  void OnInitDialog();
  void FillCombo();
  // The workset the actions work on: the combo's selection. Without one, a box
  // says why (a name typed but not created, or none) and the result is false.
  bool GetSelectedWorkset(std::string& name);
  // The combo's text as a new name, or "" after a box.
  std::string ValidateNewName();
  void ListWorkset(const std::string& name);

  // The controls' notifications.
  void OnEditChange(const std::string& text);  // CBN_EDITCHANGE
  void OnSelectionChange();                    // CBN_SELCHANGE
  void OnCreate();
  void OnDelete();
  // LVN_ENDLABELEDIT of a column 0 or 1 with the text typed (null: cancelled); the
  // section is rewritten from the rows first, then the cell takes the text.
  void OnEndLabelEdit(int row, int column, const char* text);
  void OnAddOpenDrawings();
  void OnAddFromSheetSet();
  void OnBrowse();
  void OnRemoveSelected();
  void OnAddReferences();
  void OnOpenSelected();
  void OnRowSelectionChanged();

 private:
  int Ask(const std::string& text, unsigned long type);
  void Box(const std::string& text) { Ask(text, port::kBoxOk); }
  std::vector<DrawingPath> RowsAsPaths(const std::vector<int>& rows);
  std::vector<int> AllRows();
  void RewriteWorkset(const std::string& name);
  void AddAndList(const std::string& name, std::vector<DrawingPath> files);
  void ClearAndAdd(const std::string& name, std::vector<DrawingPath> files);
  std::vector<DrawingPath> FromPaths(const std::vector<std::string>& paths);

  WorksetManagerServices services_;
  WorksetManagerView& view_;
  ProfileFile profile_;
  std::string typedName_;
};

}  // namespace tavlet
