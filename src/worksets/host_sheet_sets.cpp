#include "worksets/host_sheet_sets.h"

#include "platform/file_system.h"
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

}  // namespace

void ReadHostSheetSetList(std::vector<std::string>& list, const std::string& roamableRoot, FileSystem& files) {
  if (roamableRoot.empty()) return;
  std::string bytes;
  if (files.ReadFile(roamableRoot + "Support\\Profiles\\FixedProfile.aws", bytes) != FileError::None) return;
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
      list.push_back(doc.GetAttribute("fileName"));
      doc.LeaveToParent();
    }
    return;
  }
}

}  // namespace tavlet
