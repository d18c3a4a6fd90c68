// The host's own list of recent sheet sets, read out of its profile file
// "Support\Profiles\FixedProfile.aws" with MarkupDoc.
#pragma once

#include <string>
#include <vector>

namespace tavlet {

class FileSystem;

// The sheet-set tool's class id in the profile file.
inline constexpr const char* kSheetSetToolClsid = "{BEBBB318-2898-4C03-ADA2-360DC6B7AA69}";

// Appends to `list` the "fileName" of every MRU_FILE under root / StorageRoot /
// AcApData / AdUiTools / ToolsInfo / Tool (with the sheet-set class id) / MRU_FILES.
// `roamableRoot` is the host's roamable root folder with its trailing separator;
// with none, or a file that can't be read or parsed, nothing is added.
void ReadHostSheetSetList(std::vector<std::string>& list, const std::string& roamableRoot, FileSystem& files);

}  // namespace tavlet
