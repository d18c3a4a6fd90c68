// The drawings open in the host, kept in a file of the data folder so that the
// next session can open them again (TLRESTORE). The file is rewritten whole,
// atomically, at each open, close and rename, so a crash of the host loses at
// most the change it was making; closes while the host quits are not written,
// which is what leaves the last session's drawings in the file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/port/documents.h"
#include "platform/file_system.h"

namespace tavlet::operations {

class DrawingOperations;

inline constexpr char kSessionFileName[] = "Session.lst";

struct SessionDrawing {
  std::string path;
  bool readOnly = false;
  bool operator==(const SessionDrawing&) const = default;
};

// A header line, then one drawing a line: "r" or "w", a tab, the path.
std::string FormatSession(const std::vector<SessionDrawing>& drawings);
// Without the header nothing; a line that does not parse is left out.
std::vector<SessionDrawing> ParseSession(std::string_view bytes);

class SessionRecorder {
 public:
  // Reads what the last session left (LastSession) before anything is written.
  SessionRecorder(FileSystem& files, std::string filePath);

  // A drawing without a folder in its path was never saved: nothing to reopen.
  void Opened(port::Document doc, const std::string& path, bool readOnly);
  void Renamed(port::Document doc, const std::string& path);
  void Closed(port::Document doc, bool hostQuitting);

  const std::vector<SessionDrawing>& LastSession() const { return lastSession_; }
  std::vector<SessionDrawing> Current() const;
  // False when the file could not be written; the next change tries again.
  bool Written() const { return written_; }

 private:
  struct Open {
    port::Document doc;
    SessionDrawing drawing;
  };
  void Write();

  FileSystem& files_;
  std::string filePath_;
  std::vector<SessionDrawing> lastSession_;
  std::vector<Open> open_;
  bool written_ = true;
};

struct RestoreResult {
  int opened = 0;
  std::vector<std::string> missing;  // in the file's order
};

// Opens every drawing of `drawings` that exists and is not open yet, read-only
// where it was, through OpenFile (which reports its own failures). The missing
// ones are gathered for one box (MissingDrawingsText), not a box each.
RestoreResult RestoreSession(DrawingOperations& operations, FileSystem& files,
                             const std::vector<SessionDrawing>& drawings);

// The one box for the drawings that have disappeared; empty with none.
std::string MissingDrawingsText(const std::vector<std::string>& missing);

}  // namespace tavlet::operations
