#include "operations/session_list.h"

#include <algorithm>

#include "operations/drawing_operations.h"
#include "text/codepage.h"

namespace tavlet::operations {

namespace {

constexpr std::string_view kHeader = "Tavlet session 1";

bool HasFolder(const std::string& path) { return text::Mbschr(path, '\\') != std::string::npos; }

}  // namespace

std::string FormatSession(const std::vector<SessionDrawing>& drawings) {
  std::string out(kHeader);
  out += "\r\n";
  for (const SessionDrawing& d : drawings) {
    out += d.readOnly ? "r\t" : "w\t";
    out += d.path;
    out += "\r\n";
  }
  return out;
}

std::vector<SessionDrawing> ParseSession(std::string_view bytes) {
  std::vector<SessionDrawing> out;
  bool first = true;
  while (!bytes.empty()) {
    std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes = end == std::string_view::npos ? std::string_view{} : bytes.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (first) {
      if (line != kHeader) return {};
      first = false;
      continue;
    }
    if (line.size() < 3 || line[1] != '\t' || (line[0] != 'r' && line[0] != 'w')) continue;
    out.push_back({std::string(line.substr(2)), line[0] == 'r'});
  }
  return out;
}

SessionRecorder::SessionRecorder(FileSystem& files, std::string filePath)
    : files_(files), filePath_(std::move(filePath)) {
  std::string bytes;
  if (files_.ReadFile(filePath_, bytes) == FileError::None) lastSession_ = ParseSession(bytes);
}

void SessionRecorder::Opened(port::Document doc, const std::string& path, bool readOnly) {
  if (!HasFolder(path)) return;
  open_.push_back({doc, {path, readOnly}});
  Write();
}

void SessionRecorder::Renamed(port::Document doc, const std::string& path) {
  auto it = std::find_if(open_.begin(), open_.end(), [doc](const Open& o) { return o.doc == doc; });
  if (it == open_.end()) {
    // A first save gives a new drawing the path it lacked.
    Opened(doc, path, false);
    return;
  }
  it->drawing.path = path;
  Write();
}

void SessionRecorder::Closed(port::Document doc, bool hostQuitting) {
  auto it = std::find_if(open_.begin(), open_.end(), [doc](const Open& o) { return o.doc == doc; });
  if (it == open_.end()) return;
  open_.erase(it);
  if (!hostQuitting) Write();
}

std::vector<SessionDrawing> SessionRecorder::Current() const {
  std::vector<SessionDrawing> out;
  for (const Open& o : open_) out.push_back(o.drawing);
  return out;
}

void SessionRecorder::Write() { written_ = files_.WriteFileAtomic(filePath_, FormatSession(Current())) == FileError::None; }

RestoreResult RestoreSession(DrawingOperations& operations, FileSystem& files,
                             const std::vector<SessionDrawing>& drawings) {
  RestoreResult result;
  for (const SessionDrawing& d : drawings) {
    if (!files.Stat(d.path).exists) {
      result.missing.push_back(d.path);
      continue;
    }
    if (operations.IsAlreadyOpen(d.path, false)) continue;
    DrawingPath path(d.path, files);
    path.readOnly = d.readOnly;
    operations.OpenFile(path, false, false);
    ++result.opened;
  }
  return result;
}

std::string MissingDrawingsText(const std::vector<std::string>& missing) {
  if (missing.empty()) return {};
  std::string text = "下列图纸文件已不存在, 没有打开:\n";
  for (const std::string& path : missing) text += "\n" + path;
  return text;
}

}  // namespace tavlet::operations
