// The context menu's fixed command ids and its texts, each once. Ids below
// kFirstListId go to a fixed handler; from kFirstListId up they are given out
// while the menu is built, one per list entry.
#pragma once

namespace tavlet::menus {

namespace ids {
inline constexpr int SaveAll = 4007;
inline constexpr int CloseAll = 4008;
inline constexpr int SaveAndCloseAll = 4009;
inline constexpr int CloseAllNoSave = 4010;
inline constexpr int Close = 4011;
inline constexpr int Plot = 4012;  // routed only, like PlotSetup and PlotAll
inline constexpr int QuickPlotAll = 4013;
inline constexpr int PlotSetup = 4014;
inline constexpr int PlotAll = 4015;
inline constexpr int About = 4016;
inline constexpr int ChangeTemplatePath = 4028;
inline constexpr int NewDrawing = 4029;
inline constexpr int ManageWorksets = 4030;
inline constexpr int SheetSetSearchPath = 4031;
inline constexpr int OpenSheetSetInManager = 4032;
inline constexpr int ExitSaveAll = 4034;
inline constexpr int ExitNoSave = 4035;
inline constexpr int LockPreview = 4039;
inline constexpr int OpenFolder = 4047;
inline constexpr int SaveView = 4050;
inline constexpr int RefreshPreview = 4051;
inline constexpr int RefreshAllPreviews = 4053;
inline constexpr int CurrentDocumentOnly = 4054;  // routed only; has no effect
inline constexpr int Options = 4055;
}  // namespace ids

inline constexpr int kFirstListId = 5000;

// The additions' own ids: between the fixed ids and the first list id, where the
// message map has nothing and no list starts, so with their setting off no id of
// theirs can mean anything.
namespace ids {
inline constexpr int CloseOthers = 4200;
inline constexpr int CopyFullPath = 4201;
inline constexpr int ShowInFolder = 4202;
}  // namespace ids

namespace texts {
inline constexpr const char SaveAll[] = "保存全部";
inline constexpr const char CloseAll[] = "关闭全部";
inline constexpr const char SaveAndCloseAll[] = "保存并关闭全部";
inline constexpr const char CloseAllNoSave[] = "关闭全部,不保存";
inline constexpr const char Close[] = "关闭 [%s]";
inline constexpr const char QuickPlotAll[] = "快速打印全部";
inline constexpr const char About[] = "关于 Tavlet...";
inline constexpr const char ChangeTemplatePath[] = "更改模板路径...";
inline constexpr const char NewDrawing[] = "空模板";
inline constexpr const char ManageWorksets[] = "管理...";
inline constexpr const char SheetSetSearchPath[] = "设置图纸集搜索路径...";
inline constexpr const char OpenSheetSetInManager[] = "在管理器中打开图纸集";
inline constexpr const char ExitSaveAll[] = "退出,保存全部";
inline constexpr const char ExitNoSave[] = "退出,不保存";
inline constexpr const char LockPreview[] = "锁定预览";
inline constexpr const char OpenFolder[] = "打开文件夹";
inline constexpr const char SaveView[] = "保存...";
inline constexpr const char RefreshPreview[] = "刷新预览";
inline constexpr const char Options[] = "选项...";
inline constexpr const char CloseOthers[] = "关闭其他图纸";
inline constexpr const char CopyFullPath[] = "复制完整路径";
inline constexpr const char ShowInFolder[] = "在文件夹中显示";

inline constexpr const char NoRecentFiles[] = "空";
inline constexpr const char RecentFiles[] = "最近打开文件";
inline constexpr const char Worksets[] = "工作集";
inline constexpr const char WorksetAll[] = "All";
inline constexpr const char WorksetSelect[] = "Select...";
inline constexpr const char SheetSets[] = "图纸集";
inline constexpr const char RecentSheetSets[] = "最近";
inline constexpr const char FoundSheetSets[] = "找到";
inline constexpr const char Layouts[] = "布局";
inline constexpr const char References[] = "参照";
// Cut after the first byte of "参" ("外部参照"): the lead byte stands alone, kept so.
inline constexpr const char ExternalReferences[] = "外部\xB2";
inline constexpr const char Images[] = "图像";
inline constexpr const char OleLinks[] = "OLE 连接";
inline constexpr const char Hyperlinks[] = "超链接";
inline constexpr const char LayerStates[] = "图层状态";
inline constexpr const char Views[] = "视图";
// Cut the same way after the first byte of "建" ("新建").
inline constexpr const char NewMenu[] = "新\xBD";

inline constexpr const char OleLinkManagerMissing[] = "AcAxGetOleLinkManager() 失败!";
inline constexpr const char UnknownError[] = "未知的错误在 MvTavlet!\n";
inline constexpr const char LayerStateFailed[] = "Error restoring layer state %s - %s\n";
}  // namespace texts

}  // namespace tavlet::menus
