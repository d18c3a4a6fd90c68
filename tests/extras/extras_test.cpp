// The additions behind their own settings and commands: the activation order and
// its switcher, the session list and its restore, the thumbnail cache.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "bar/activation_order.h"
#include "host/automation.h"
#include "operations/drawing_operations.h"
#include "operations/session_list.h"
#include "previews/thumbnail_cache.h"
#include "settings/memory_registry.h"
#include "settings/settings_table.h"
#include "sim/fake_window_system.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"
#include "sim/sim_shell.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

port::Document Doc(int n) { return reinterpret_cast<port::Document>(static_cast<std::uintptr_t>(0x1000 + n)); }

std::vector<port::Document> Docs(std::initializer_list<int> ns) {
  std::vector<port::Document> out;
  for (int n : ns) out.push_back(Doc(n));
  return out;
}

TEST(ActivationOrder, FollowsOpensActivationsAndCloses) {
  bar::ActivationOrder order;
  // The host reports a new drawing, then makes it active.
  for (int n : {1, 2, 3}) {
    order.Added(Doc(n));
    order.Activated(Doc(n));
  }
  EXPECT_EQ(order.Order(), Docs({3, 2, 1}));
  order.Activated(Doc(1));
  EXPECT_EQ(order.Order(), Docs({1, 3, 2}));
  order.Added(Doc(4));  // opened in the background: behind the others
  order.Added(Doc(1));  // a second report changes nothing
  EXPECT_EQ(order.Order(), Docs({1, 3, 2, 4}));
  order.Removed(Doc(3));
  order.Activated(nullptr);
  EXPECT_EQ(order.Order(), Docs({1, 2, 4}));
  order.Activated(Doc(9));  // never reported as added
  EXPECT_EQ(order.Order(), Docs({9, 1, 2, 4}));
}

TEST(Switcher, KeysMoveRoundAndPick) {
  using K = bar::SwitcherKey;
  struct Case {
    const char* name;
    std::vector<port::Document> items;
    std::vector<K> keys;  // the last one closes
    port::Document picked;
  };
  const std::vector<Case> cases = {
      {"Ctrl released at once: the previous drawing", Docs({1, 2, 3}), {K::ReleaseCtrl}, Doc(2)},
      {"Tab moves on", Docs({1, 2, 3}), {K::Tab, K::ReleaseCtrl}, Doc(3)},
      {"Tab wraps to the first", Docs({1, 2, 3}), {K::Tab, K::Tab, K::Enter}, Doc(1)},
      {"Shift+Tab goes back", Docs({1, 2, 3}), {K::ShiftTab, K::ReleaseCtrl}, Doc(1)},
      {"Shift+Tab wraps to the last", Docs({1, 2, 3}), {K::ShiftTab, K::ShiftTab, K::ReleaseCtrl}, Doc(3)},
      {"Escape cancels", Docs({1, 2, 3}), {K::Tab, K::Escape}, nullptr},
      {"one drawing: itself", Docs({1}), {K::Tab, K::ReleaseCtrl}, Doc(1)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    bar::Switcher s;
    ASSERT_TRUE(s.Open(c.items));
    port::Document result = nullptr;
    for (std::size_t i = 0; i < c.keys.size(); ++i) {
      result = s.Press(c.keys[i]);
      EXPECT_EQ(s.IsOpen(), i + 1 < c.keys.size());
    }
    EXPECT_EQ(result, c.picked);
    EXPECT_EQ(s.Press(K::Enter), nullptr);  // closed: keys do nothing
  }
  bar::Switcher s;
  EXPECT_FALSE(s.Open({}));
  ASSERT_TRUE(s.Open(Docs({1, 2})));
  EXPECT_EQ(s.Click(5), nullptr);
  EXPECT_TRUE(s.IsOpen());
  EXPECT_EQ(s.Click(0), Doc(1));
}

using operations::SessionDrawing;
using Session = std::vector<SessionDrawing>;

const std::string kSessionFile = "C:\\data\\Session.lst";

TEST(SessionList, FileFormatRoundTripsAndSkipsBadLines) {
  const Session drawings = {{"C:\\a\\1.dwg", false}, {"D:\\项目\\图 2.dwg", true}};
  EXPECT_EQ(operations::ParseSession(operations::FormatSession(drawings)), drawings);
  EXPECT_EQ(operations::ParseSession("Tavlet session 1\nw\tC:\\a.dwg\nx\tC:\\b.dwg\nr C:\\c.dwg\n\nr\tC:\\d.dwg"),
            (Session{{"C:\\a.dwg", false}, {"C:\\d.dwg", true}}));
  EXPECT_TRUE(operations::ParseSession("w\tC:\\a.dwg\n").empty());  // no header
  EXPECT_TRUE(operations::ParseSession("").empty());
}

TEST(SessionList, EveryChangeIsWrittenExceptClosesWhileQuitting) {
  MemoryFileSystem files;
  files.AddFile(kSessionFile, operations::FormatSession({{"C:\\old.dwg", true}}));
  operations::SessionRecorder recorder(files, kSessionFile);
  EXPECT_EQ(recorder.LastSession(), (Session{{"C:\\old.dwg", true}}));
  auto onDisk = [&] {
    std::string bytes;
    files.ReadFile(kSessionFile, bytes);
    return operations::ParseSession(bytes);
  };
  recorder.Opened(Doc(1), "C:\\dwg\\1.dwg", false);
  recorder.Opened(Doc(2), "Drawing1.dwg", false);  // never saved: nothing to reopen
  recorder.Opened(Doc(3), "C:\\dwg\\3.dwg", true);
  EXPECT_EQ(onDisk(), (Session{{"C:\\dwg\\1.dwg", false}, {"C:\\dwg\\3.dwg", true}}));
  recorder.Renamed(Doc(2), "C:\\dwg\\saved.dwg");  // its first save
  recorder.Renamed(Doc(1), "C:\\dwg\\one.dwg");
  EXPECT_EQ(onDisk(), (Session{{"C:\\dwg\\one.dwg", false}, {"C:\\dwg\\3.dwg", true}, {"C:\\dwg\\saved.dwg", false}}));
  // A close all that the host's crash cuts short after the first close.
  recorder.Closed(Doc(3), false);
  EXPECT_EQ(onDisk(), (Session{{"C:\\dwg\\one.dwg", false}, {"C:\\dwg\\saved.dwg", false}}));
  // The host quits: its closes leave the list for the next session.
  recorder.Closed(Doc(1), true);
  recorder.Closed(Doc(2), true);
  EXPECT_EQ(onDisk(), (Session{{"C:\\dwg\\one.dwg", false}, {"C:\\dwg\\saved.dwg", false}}));
  EXPECT_EQ(operations::SessionRecorder(files, kSessionFile).LastSession(), onDisk());
}

TEST(SessionList, UnwritableFileIsRetriedAtTheNextChange) {
  MemoryFileSystem files;
  files.CreateFolders("C:\\data");
  operations::SessionRecorder recorder(files, kSessionFile);
  files.FailOn(MemoryFileSystem::Op::WriteFileAtomic);
  recorder.Opened(Doc(1), "C:\\dwg\\1.dwg", false);
  EXPECT_FALSE(recorder.Written());
  recorder.Opened(Doc(2), "C:\\dwg\\2.dwg", false);
  EXPECT_TRUE(recorder.Written());
  std::string bytes;
  files.ReadFile(kSessionFile, bytes);
  EXPECT_EQ(operations::ParseSession(bytes).size(), 2u);
}

struct RestoreEnvironment {
  RestoreEnvironment() { sim::AddSimHostWindows(windows, host); }
  void AddDrawing(const std::string& path) {
    files.AddFile(path, text::ToUtf8("tavlet-drawing 1\npath \"" + path + "\"\npicture 4 3 background 0x000000\n"));
  }
  operations::OperationServices Services() {
    return {host, host::GetAcadApplication(host), windows, store, files, recent, shell, nullptr, nullptr};
  }
  MemoryFileSystem files;
  sim::SimHost host{files};
  host::ScopedSession session{&host};
  sim::FakeWindowSystem windows;
  MemoryRegistry registry;
  SettingsStore store{registry, DefaultSettingsRoot()};
  RecentFileList recent{store, files};
  sim::SimShell shell;
};

TEST(SessionList, RestoreOpensWhatIsThereAndGathersTheMissing) {
  RestoreEnvironment env;
  for (const char* path : {"C:\\dwg\\a.dwg", "C:\\dwg\\b.dwg", "C:\\dwg\\open.dwg"}) env.AddDrawing(path);
  env.host.OpenDrawing("C:\\dwg\\open.dwg");
  operations::DrawingOperations ops(env.Services());
  const operations::RestoreResult result = operations::RestoreSession(
      ops, env.files,
      {{"C:\\dwg\\a.dwg", false}, {"C:\\gone\\x.dwg", false}, {"C:\\DWG\\OPEN.dwg", false}, {"C:\\dwg\\b.dwg", true},
       {"C:\\gone\\y.dwg", true}});
  EXPECT_EQ(result.opened, 2);
  EXPECT_EQ(result.missing, (std::vector<std::string>{"C:\\gone\\x.dwg", "C:\\gone\\y.dwg"}));
  EXPECT_TRUE(env.host.ShownBoxes().empty());  // the caller shows one box for all
  std::vector<std::pair<std::string, bool>> open;
  for (port::Document doc : env.host.OpenDocuments()) open.emplace_back(env.host.Find(doc)->path, env.host.Find(doc)->readOnly);
  EXPECT_EQ(open, (std::vector<std::pair<std::string, bool>>{
                      {"C:\\dwg\\open.dwg", false}, {"C:\\dwg\\a.dwg", false}, {"C:\\dwg\\b.dwg", true}}));
  EXPECT_EQ(operations::MissingDrawingsText(result.missing),
            "下列图纸文件已不存在, 没有打开:\n\nC:\\gone\\x.dwg\nC:\\gone\\y.dwg");
  EXPECT_EQ(operations::MissingDrawingsText({}), "");
}

const std::string kCacheFile = "C:\\data\\Thumbnails.bin";

std::vector<unsigned char> Picture(std::size_t bytes, unsigned char fill) { return std::vector<unsigned char>(bytes, fill); }

TEST(ThumbnailCache, BoundedInBytesEvictingTheOldestStore) {
  MemoryFileSystem files;
  files.CreateFolders("C:\\data");
  const std::size_t entry = previews::EntryBytes({"c:\\d\\1.dwg", 0, 1, 1, Picture(100, 0)});
  previews::ThumbnailCache cache(files, kCacheFile, 3 * entry);
  cache.Store("C:\\d\\1.dwg", 4, 3, Picture(100, 1));
  cache.Store("C:\\d\\2.dwg", 4, 3, Picture(100, 2));
  cache.Store("C:\\d\\3.dwg", 4, 3, Picture(100, 3));
  cache.Store("c:\\D\\1.DWG", 4, 3, Picture(100, 4));  // the same drawing: now the newest
  cache.Store("C:\\d\\4.dwg", 4, 3, Picture(100, 5));  // evicts 2, the oldest
  EXPECT_LE(cache.Bytes(), 3 * entry);
  EXPECT_EQ(cache.Find("C:\\d\\2.dwg"), nullptr);
  ASSERT_NE(cache.Find("C:\\d\\1.dwg"), nullptr);
  EXPECT_EQ(cache.Find("C:\\d\\1.dwg")->dib, Picture(100, 4));
  cache.Store("C:\\d\\big.dwg", 40, 30, Picture(4 * entry, 6));  // larger than the bound: not kept
  EXPECT_EQ(cache.Find("C:\\d\\big.dwg"), nullptr);
  EXPECT_EQ(cache.Entries().size(), 3u);

  previews::ThumbnailCache reloaded(files, kCacheFile, 3 * entry);
  ASSERT_NE(reloaded.Find("C:\\d\\3.dwg"), nullptr);
  EXPECT_EQ(reloaded.Find("C:\\d\\3.dwg")->dib, Picture(100, 3));
  reloaded.Store("C:\\d\\5.dwg", 4, 3, Picture(100, 7));  // 3 is now the oldest
  EXPECT_EQ(reloaded.Find("C:\\d\\3.dwg"), nullptr);
  EXPECT_NE(reloaded.Find("C:\\d\\4.dwg"), nullptr);
}

TEST(ThumbnailCache, CorruptFileIsIgnoredAndReplaced) {
  std::string whole = previews::FormatThumbnailCache({{"c:\\a.dwg", 1, 4, 3, Picture(30, 9)}});
  const std::vector<std::string> corrupt = {"", "junk", whole.substr(0, whole.size() - 1), whole + "x",
                                            "TVTC\x02\0\0\0" + whole.substr(8)};
  for (const std::string& bytes : corrupt) {
    SCOPED_TRACE(testing::PrintToString(bytes.size()));
    MemoryFileSystem files;
    files.AddFile(kCacheFile, bytes);
    previews::ThumbnailCache cache(files, kCacheFile);
    EXPECT_TRUE(cache.Entries().empty());
    cache.Store("C:\\b.dwg", 4, 3, Picture(30, 1));
    std::string written;
    files.ReadFile(kCacheFile, written);
    std::vector<previews::CachedThumbnail> entries;
    ASSERT_TRUE(previews::ParseThumbnailCache(written, entries));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].key, "c:\\b.dwg");
  }
}

}  // namespace
}  // namespace tavlet
