// The same behaviour is asked of the in-memory file system and of the real one
// (on a fresh temporary folder), so that tests which use the former stay true.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "sim/memory_file_system.h"
#include "support/test_paths.h"

#ifndef _WIN32
#include <sys/resource.h>

#include <csignal>
#endif

namespace tavlet {
namespace {

using Names = std::vector<std::string>;

class FileSystemPortTest : public ::testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    if (GetParam()) {
      fs_ = &NativeFileSystem();
      root_ = testing::MakeTempFolder("fsport");
    } else {
      memory_ = std::make_unique<MemoryFileSystem>();
      fs_ = memory_.get();
      root_ = "C:\\work";
      memory_->AddFolder(root_);
    }
  }
  std::string At(const std::string& name) const { return root_ + "/" + name; }
  Names List() {
    Names names;
    EXPECT_EQ(fs_->ListFolder(root_, names), FileError::None);
    return names;
  }
  std::string Read(const std::string& name) {
    std::string bytes;
    EXPECT_EQ(fs_->ReadFile(At(name), bytes), FileError::None) << name;
    return bytes;
  }

  std::unique_ptr<MemoryFileSystem> memory_;
  FileSystem* fs_ = nullptr;
  std::string root_;
};

TEST_P(FileSystemPortTest, WritesReadBackAndReplaceWholeFiles) {
  const std::string path = At("a.ini");
  ASSERT_EQ(fs_->WriteFileAtomic(path, "first version\r\nAC1018abcdef"), FileError::None);
  ASSERT_EQ(fs_->WriteFileAtomic(path, std::string("two\0xabcdef", 11)), FileError::None);
  EXPECT_EQ(Read("a.ini"), std::string("two\0xabcdef", 11));
  std::string bytes;
  EXPECT_EQ(fs_->ReadFile(path, bytes, 3), FileError::None);
  EXPECT_EQ(bytes, "two");
  EXPECT_EQ(fs_->ReadAt(path, 5, 3, bytes), FileError::None);
  EXPECT_EQ(bytes, "abc");
  EXPECT_EQ(fs_->ReadAt(path, 9, 4, bytes), FileError::EndOfFile);  // a short read
  EXPECT_EQ(bytes, "ef");
  EXPECT_EQ(fs_->ReadAt(path, 100, 1, bytes), FileError::EndOfFile);

  const FileInfo info = fs_->Stat(path);
  EXPECT_TRUE(info.exists && !info.isFolder && !info.readOnly);
  EXPECT_EQ(info.size, 11u);
  EXPECT_TRUE(fs_->Stat(root_).isFolder);
  EXPECT_EQ(List(), Names{"a.ini"});  // no temporary file is left beside it
}

TEST_P(FileSystemPortTest, MissingThingsAreNotFound) {
  std::string bytes = "stale";
  EXPECT_EQ(fs_->ReadFile(At("none.ini"), bytes), FileError::NotFound);
  EXPECT_EQ(bytes, "");
  EXPECT_FALSE(fs_->Stat(At("none")).exists);
  EXPECT_EQ(fs_->ReadAt(At("none"), 0, 1, bytes), FileError::NotFound);
  EXPECT_EQ(fs_->WriteFileAtomic(At("no/such/folder.ini"), "x"), FileError::NotFound);
  EXPECT_EQ(fs_->Remove(At("none.ini")), FileError::NotFound);
  EXPECT_EQ(fs_->Rename(At("none.ini"), At("b.ini")), FileError::NotFound);
  Names names;
  EXPECT_EQ(fs_->ListFolder(At("nofolder"), names), FileError::NotFound);
}

TEST_P(FileSystemPortTest, ReadOnlyFilesAreNeitherReplacedNorRemoved) {
  const std::string path = At("locked.ini");
  ASSERT_EQ(fs_->WriteFileAtomic(path, "old"), FileError::None);
  if (memory_) {
    memory_->SetReadOnly(path, true);
  } else {
    using std::filesystem::perms;
    std::filesystem::permissions(path, perms::owner_write | perms::group_write | perms::others_write,
                                 std::filesystem::perm_options::remove);
  }
  EXPECT_TRUE(fs_->Stat(path).readOnly);
  EXPECT_EQ(fs_->WriteFileAtomic(path, "new"), FileError::AccessDenied);
  EXPECT_EQ(fs_->Remove(path), FileError::AccessDenied);
  ASSERT_EQ(fs_->WriteFileAtomic(At("other.ini"), "other"), FileError::None);
  EXPECT_EQ(fs_->Rename(At("other.ini"), path), FileError::AccessDenied);
  EXPECT_EQ(Read("locked.ini"), "old");
  EXPECT_EQ(List(), (Names{"locked.ini", "other.ini"}));
  // Windows removes no read-only file, so the temporary folder would outlive the run
  // and the next run's first write would fail.
  if (!memory_) std::filesystem::permissions(path, std::filesystem::perms::owner_write,
                                             std::filesystem::perm_options::add);
}

TEST_P(FileSystemPortTest, RenameReplacesAndFoldersNest) {
  ASSERT_EQ(fs_->WriteFileAtomic(At("a.tmp"), "A"), FileError::None);
  ASSERT_EQ(fs_->WriteFileAtomic(At("b.ini"), "B"), FileError::None);
  EXPECT_EQ(fs_->Rename(At("a.tmp"), At("b.ini")), FileError::None);
  EXPECT_EQ(Read("b.ini"), "A");
  EXPECT_EQ(fs_->CreateFolders(At("x/y/z")), FileError::None);
  EXPECT_EQ(fs_->CreateFolders(At("x/y")), FileError::None);
  EXPECT_TRUE(fs_->Stat(At("x/y/z")).isFolder);
  EXPECT_NE(fs_->CreateFolders(At("b.ini/sub")), FileError::None);
  EXPECT_EQ(fs_->WriteFileAtomic(At("x/y/z/deep.ini"), "d"), FileError::None);
  EXPECT_EQ(List(), (Names{"b.ini", "x"}));
  EXPECT_EQ(fs_->Remove(At("b.ini")), FileError::None);
  EXPECT_FALSE(fs_->Stat(At("b.ini")).exists);
}

TEST_P(FileSystemPortTest, TempFilesAreNewAndDistinct) {
  const std::string first = fs_->CreateTempFile("MV_xyz");
  const std::string second = fs_->CreateTempFile("MV_xyz");
  ASSERT_FALSE(first.empty() || second.empty());
  EXPECT_NE(first, second);
  EXPECT_TRUE(fs_->Stat(first).exists);
  EXPECT_EQ(fs_->Stat(first).size, 0u);
  EXPECT_NE(first.find("MV_"), std::string::npos);
  EXPECT_EQ(first.find("MV_x"), std::string::npos);  // the prefix is cut to three bytes
  EXPECT_EQ(fs_->Remove(first), FileError::None);
  EXPECT_EQ(fs_->Remove(second), FileError::None);
}

INSTANTIATE_TEST_SUITE_P(Ports, FileSystemPortTest, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Native" : "Memory"; });

#ifndef _WIN32
// A write that fails half-way (the file-size limit stops it) leaves the old file
// whole and no temporary file behind.
TEST(NativeFileSystemTest, AFailedWriteLeavesTheOldFileWhole) {
  const std::string root = testing::MakeTempFolder("atomic");
  const std::string path = root + "/settings.ini";
  FileSystem& fs = NativeFileSystem();
  ASSERT_EQ(fs.WriteFileAtomic(path, "old contents"), FileError::None);
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit small = saved;
  small.rlim_cur = 1000;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const FileError error = fs.WriteFileAtomic(path, std::string(5000, 'n'));
  setrlimit(RLIMIT_FSIZE, &saved);
  std::signal(SIGXFSZ, oldHandler);

  EXPECT_EQ(error, FileError::TooLarge);
  std::string bytes;
  EXPECT_EQ(fs.ReadFile(path, bytes), FileError::None);
  EXPECT_EQ(bytes, "old contents");
  Names names;
  EXPECT_EQ(fs.ListFolder(root, names), FileError::None);
  EXPECT_EQ(names, Names{"settings.ini"});
}

TEST(NativeFileSystemTest, BackslashesSeparateButTrailBytesDoNot) {
  const std::string root = testing::MakeTempFolder("sep");
  FileSystem& fs = NativeFileSystem();
  const std::string name = "\xB1\xED" "\x81\x5C";  // the second character's trail is 0x5C
  ASSERT_EQ(fs.CreateFolders(root + "\\sub"), FileError::None);
  ASSERT_EQ(fs.WriteFileAtomic(root + "\\sub\\" + name, "x"), FileError::None);
  Names names;
  EXPECT_EQ(fs.ListFolder(root + "/sub", names), FileError::None);
  EXPECT_EQ(names, Names{name});
}
#endif

}  // namespace
}  // namespace tavlet
