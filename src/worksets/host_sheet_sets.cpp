#include "worksets/host_sheet_sets.h"

#include <algorithm>

#include "platform/file_system.h"
#include "text/codepage.h"
#include "worksets/markup_doc.h"

namespace tavlet {

namespace {

// The file is read as a text file, line by line, each line given a "\n": a
// "\r\n" line end thus becomes "\n", as text mode makes it.
std::string ReadAsTextLines(const std::string& bytes) {
  std::string out;
  out.reserve(bytes.size());
  std::size_t start = 0;
  while (start < bytes.size()) {
    std::size_t end = bytes.find('\n', start);
    const std::size_t next = end == std::string::npos ? bytes.size() : end + 1;
    if (end == std::string::npos) end = bytes.size();
    if (end > start && bytes[end - 1] == '\r') --end;
    out.append(bytes, start, end - start);
    out += '\n';
    start = next;
  }
  return out;
}

bool StartsWith(const std::string& bytes, std::string_view prefix) {
  return bytes.compare(0, prefix.size(), prefix) == 0;
}

// The encoding named by an XML declaration at the start, in lower case; empty
// without one.
std::string DeclaredEncoding(const std::string& bytes) {
  if (!StartsWith(bytes, "<?xml")) return {};
  const std::size_t end = bytes.find("?>");
  const std::size_t name = bytes.find("encoding", 0);
  if (end == std::string::npos || name == std::string::npos || name > end) return {};
  std::size_t open = bytes.find_first_of("\"'", name);
  if (open == std::string::npos || open > end) return {};
  const std::size_t close = bytes.find(bytes[open], open + 1);
  if (close == std::string::npos || close > end) return {};
  std::string encoding = bytes.substr(open + 1, close - open - 1);
  std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                 [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); });
  return encoding;
}

std::string SwapUtf16Units(std::string_view text) {
  std::string out(text);
  for (std::size_t i = 0; i + 1 < out.size(); i += 2) std::swap(out[i], out[i + 1]);
  return out;
}

}  // namespace

std::string ProfileTextAsCp936(const std::string& bytes) {
  const std::string_view view(bytes);
  if (StartsWith(bytes, "\xEF\xBB\xBF")) return text::FromUtf8(view.substr(3));
  if (StartsWith(bytes, "\xFF\xFE")) return text::FromUtf16Le(view.substr(2));
  if (StartsWith(bytes, "\xFE\xFF")) return text::FromUtf16Le(SwapUtf16Units(view.substr(2)));
  const std::string declared = DeclaredEncoding(bytes);
  if (declared == "gb2312" || declared == "gbk" || declared == "gb18030" || declared == "cp936") return bytes;
  const bool high = std::any_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  if (high && text::IsValidUtf8(view)) return text::FromUtf8(view);
  return bytes;
}

void ReadHostSheetSetList(std::vector<std::string>& list, const std::string& roamableRoot, FileSystem& files,
                          bool byEncoding) {
  if (roamableRoot.empty()) return;
  std::string bytes;
  if (files.ReadFile(roamableRoot + "Support\\Profiles\\FixedProfile.aws", bytes) != FileError::None) return;
  if (byEncoding) bytes = ProfileTextAsCp936(bytes);
  MarkupDoc doc(files);
  doc.SetDoc(ReadAsTextLines(bytes));
  for (const char* step : {"StorageRoot", "AcApData", "AdUiTools", "ToolsInfo"}) {
    if (!doc.FindChildElement(step) || !doc.EnterChild()) return;
  }
  while (doc.FindChildElement("Tool")) {
    doc.EnterChild();
    if (doc.GetAttribute("CLSID") != kSheetSetToolClsid) {
      doc.LeaveToParent();
      continue;
    }
    if (!doc.FindChildElement("MRU_FILES") || !doc.EnterChild()) return;
    while (doc.FindChildElement("MRU_FILE")) {
      doc.EnterChild();
      std::string path = doc.GetAttribute("fileName");
      // "?" stands where a character had no code-page 936 form: no file has that name.
      if (!byEncoding || path.find('?') == std::string::npos) list.push_back(std::move(path));
      doc.LeaveToParent();
    }
    return;
  }
}

}  // namespace tavlet
