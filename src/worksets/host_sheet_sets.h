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
// `byEncoding` off takes the file as code-page 936 bytes, whatever it holds. On,
// a file in UTF-8 or UTF-16 is converted first (ProfileTextAsCp936), and a path
// with a character that code page 936 lacks is left out.
void ReadHostSheetSetList(std::vector<std::string>& list, const std::string& roamableRoot, FileSystem& files,
                          bool byEncoding = false);

// The profile file's bytes as code-page 936 text. A byte-order mark decides
// first (UTF-8, UTF-16LE, UTF-16BE, each dropped). Without one, a declaration
// naming GB2312, GBK, GB18030 or CP936 keeps the bytes; otherwise bytes that are
// valid UTF-8 with any high byte are taken as UTF-8 (short code-page 936 texts
// can pass for UTF-8, which is why the declaration goes first); anything else is
// already code page 936. A character that code page 936 lacks becomes "?", which
// no Windows path can hold.
std::string ProfileTextAsCp936(const std::string& bytes);

}  // namespace tavlet
