// An in-memory FileSystem for tests: folders, files with contents, read-only marks,
// and failures injected on demand, so that callers can prove that a failed write
// leaves the old data whole.
//
// Paths follow Windows rules: '\\' and '/' are the same separator, a trailing
// separator is ignored, and names match ignoring ASCII case (code-page 936 aware:
// a trail byte is never folded). There is no current folder; relative paths are
// simply names rooted at "".
//
// Example:
//   MemoryFileSystem fs;
//   fs.AddFile("C:\\dwg\\a.dwg", "AC1018...");
//   fs.AddFile("C:\\dwg\\locked.ini", "[s]\n", /*readOnly=*/true);
//   fs.FailOn(MemoryFileSystem::Op::WriteFileAtomic, 2);  // 2nd write from now fails
//   fs.FailPath("C:\\dwg\\b.ini", FileError::SharingViolation);  // every op on it fails
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"

namespace tavlet {

class MemoryFileSystem : public FileSystem {
 public:
  enum class Op {
    Stat,
    ReadFile,
    ReadAt,
    WriteFileAtomic,
    Remove,
    Rename,
    CreateFolders,
    CreateTempFile,
    ListFolder,
  };

  // `tempFolder` is where CreateTempFile puts its files; it is created at once.
  // `windowsFolder` is only named (WindowsFolder()); AddFolder makes it when a test
  // needs it.
  explicit MemoryFileSystem(std::string tempFolder = "C:\\Temp",
                            std::string windowsFolder = "C:\\Windows");

  // Setup. Missing parent folders are created. Adding over an existing file
  // replaces it.
  void AddFolder(const std::string& path);
  void AddFile(const std::string& path, std::string bytes, bool readOnly = false);
  void SetReadOnly(const std::string& path, bool readOnly);

  // Inspection: the bytes of a file, or nothing when it is absent or a folder.
  std::optional<std::string> Contents(const std::string& path) const;
  // Every file and folder, in the spelling each was created with, sorted.
  std::vector<std::string> AllPaths() const;

  // Failure injection. FailOn makes the `occurrence`-th call of `op`, counted from
  // this call on (1 = the next one), return `error` without touching anything;
  // CreateTempFile then returns "". FailPath makes every operation that names
  // `path` (either side of a Rename) fail with `error` until ClearFailures.
  void FailOn(Op op, int occurrence = 1, FileError error = FileError::Other);
  void FailPath(const std::string& path, FileError error = FileError::AccessDenied);
  void ClearFailures();
  // How many times `op` was called since construction (failed calls included).
  int CallCount(Op op) const;

  // FileSystem.
  FileInfo Stat(const std::string& path) override;
  FileError ReadFile(const std::string& path, std::string& bytes,
                     std::uint64_t maxBytes = UINT64_MAX) override;
  FileError ReadAt(const std::string& path, std::uint64_t offset, std::size_t count,
                   std::string& bytes) override;
  FileError WriteFileAtomic(const std::string& path, std::string_view bytes) override;
  FileError Remove(const std::string& path) override;
  FileError Rename(const std::string& from, const std::string& to) override;
  FileError CreateFolders(const std::string& path) override;
  std::string CreateTempFile(std::string_view prefix) override;
  FileError ListFolder(const std::string& path, std::vector<std::string>& names) override;
  std::string WindowsFolder() override { return windowsFolder_; }

 private:
  struct Node {
    std::string spelling;  // the path as first given, separators made '\\'
    bool isFolder = false;
    bool readOnly = false;
    std::string bytes;
  };
  struct PendingFailure {
    Op op;
    int remaining;  // calls of `op` still to pass before the failing one
    FileError error;
  };

  static std::string Key(const std::string& path);
  static std::string Parent(const std::string& key);
  Node* Find(const std::string& path);
  const Node* Find(const std::string& path) const;
  bool ParentIsFolder(const std::string& path) const;
  // Counts the call and reports an injected failure, if one is due.
  std::optional<FileError> Injected(Op op, const std::string& path,
                                    const std::string* secondPath = nullptr);

  std::map<std::string, Node> nodes_;  // by Key()
  std::string tempFolder_;
  std::string windowsFolder_;
  unsigned tempCounter_ = 0;
  std::vector<PendingFailure> pending_;
  std::map<std::string, FileError> failingPaths_;  // by Key()
  std::map<Op, int> calls_;
};

}  // namespace tavlet
