// Thumbnails kept across sessions: stored at each capture, shown for a drawing
// opened again before it has been active, and nothing of it with the setting off.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bar/preview_capture.h"
#include "host/module.h"
#include "previews/dib.h"
#include "previews/thumbnail_cache.h"
#include "settings/extra_settings.h"
#include "data_folder_user.h"
#include "sim/module_harness.h"

namespace tavlet::host {
namespace {

using extras_test::FixedUser;
using extras_test::kData;
const std::string kCacheFile = kData + previews::kThumbnailCacheFileName;
const std::string kA = "C:\\dwg\\A.dwg";
const std::string kB = "C:\\dwg\\b.dwg";

// A module with the strip docked at the top; `cache` is the file left by a
// session before (none when empty).
struct Session {
  Session(bool keep, const std::string& cache = {}) {
    h.files.AddFolder(kData);
    if (!cache.empty()) h.files.AddFile(kCacheFile, cache);
    for (const std::string& path : {kA, kB}) h.AddDrawing(path);
    if (keep) h.SetSetting(keys::KeepThumbnails, 1);
    h.services.user = &user;
    layout.SetDockSide(bar::kDockTop);
    layout.clientWidth = 600;
    layout.clientHeight = 70;
    layout.previewExtent = 68;
    layout.titleHeight = 16;
    layout.viewAspect = 320.0 / 240.0;
  }
  bar::DocEntry& Entry(port::Document doc) { return *h.Bar()->Strip().FindEntry(doc); }
  // What the strip's paint does before drawing each cell.
  void Paint() {
    for (const auto& entry : h.Bar()->Strip().Entries())
      if (entry->previewDirty) bar::UpdatePreview(*h.Bar(), layout, entry.get());
  }
  std::string CacheFile() {
    std::string bytes;
    h.files.ReadFile(kCacheFile, bytes);
    return bytes;
  }
  int Shots() { return h.host.Faults().Count("Graphics::TakeScreenShot"); }

  FixedUser user;
  sim::ModuleHarness h;
  bar::StripLayout layout;
};

// A cache file holding one picture of `width` x `height` for `path`, with
// `dibBytes` bytes of picture (a whole one when 0).
std::string CacheWith(const std::string& path, int width, int height, std::size_t dibBytes = 0) {
  previews::CachedThumbnail kept;
  kept.key = path;
  kept.stamp = 1;
  kept.width = width;
  kept.height = height;
  if (!dibBytes) dibBytes = kDibInfoHeaderSize + DibStride(width, 24) * static_cast<std::size_t>(height);
  kept.dib.assign(dibBytes, 0x5A);
  return previews::FormatThumbnailCache({kept});
}

TEST(KeptThumbnails, CapturedPictureComesBackForADrawingNotYetActive) {
  std::string left;
  std::vector<unsigned char> pictureOfB;
  {
    Session s(true);
    ASSERT_EQ(s.h.Load(), 0);
    s.h.OpenDrawing(kA);
    port::Document b = s.h.OpenDrawing(kB);
    s.Paint();
    pictureOfB = s.Entry(b).previewDib;
    ASSERT_FALSE(pictureOfB.empty());
    left = s.CacheFile();
  }
  std::vector<previews::CachedThumbnail> entries;
  ASSERT_TRUE(previews::ParseThumbnailCache(left, entries));
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].key, "c:\\dwg\\b.dwg");

  Session next(true, left);
  ASSERT_EQ(next.h.Load(), 0);
  port::Document b = next.h.OpenDrawing(kB);
  port::Document a = next.h.OpenDrawing(kA);
  EXPECT_EQ(next.Entry(b).previewDib, pictureOfB);
  EXPECT_EQ(next.Entry(b).previewWidth, 69);
  EXPECT_EQ(next.Entry(b).previewHeight, 52);
  EXPECT_TRUE(next.Entry(b).previewDirty);
  EXPECT_TRUE(next.Entry(a).previewDib.empty());

  // Only a is active: b keeps the kept picture until it is.
  next.Paint();
  EXPECT_EQ(next.Shots(), 1);
  EXPECT_TRUE(next.Entry(b).previewDirty);
  next.h.host.Activate(b);
  next.Paint();
  EXPECT_EQ(next.Shots(), 2);
  EXPECT_FALSE(next.Entry(b).previewDirty);
  ASSERT_TRUE(previews::ParseThumbnailCache(next.CacheFile(), entries));
  EXPECT_EQ(entries.size(), 2u);
}

TEST(KeptThumbnails, NothingShownOrWrittenUnlessOnAndWhole) {
  struct Case {
    const char* what;
    bool keep;
    std::string cache;
    bool shown;
  };
  const Case cases[] = {
      {"setting off: the file is not read", false, CacheWith("c:\\dwg\\b.dwg", 10, 8), false},
      {"a picture shorter than its size", true, CacheWith("c:\\dwg\\b.dwg", 10, 8, 100), false},
      {"a picture of no size", true, CacheWith("c:\\dwg\\b.dwg", 0, 8, 100), false},
      {"a whole picture, key matched without case", true, CacheWith("c:\\dwg\\b.dwg", 10, 8), true},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    Session s(k.keep, k.cache);
    ASSERT_EQ(s.h.Load(), 0);
    port::Document b = s.h.OpenDrawing(kB);
    s.h.OpenDrawing(kA);
    EXPECT_EQ(s.Entry(b).previewDib.empty(), !k.shown);
    EXPECT_EQ(s.Entry(b).previewWidth, k.shown ? 10 : 1);
    s.Paint();
    // The capture of a rewrites the file only when the setting is on.
    EXPECT_EQ(s.CacheFile() == k.cache, !k.keep);
  }
  Session off(false);
  ASSERT_EQ(off.h.Load(), 0);
  off.h.OpenDrawing(kA);
  off.Paint();
  EXPECT_FALSE(off.h.files.Stat(kCacheFile).exists);
}

TEST(KeptThumbnails, ADrawingNeverSavedIsNeitherKeptNorGivenAKeptPicture) {
  Session s(true, CacheWith("drawing1.dwg", 10, 8));
  ASSERT_EQ(s.h.Load(), 0);
  port::Document fresh = s.h.host.NewDrawing();
  ASSERT_EQ(s.Entry(fresh).path.GetFull(), "Drawing1.dwg");
  EXPECT_TRUE(s.Entry(fresh).previewDib.empty());
  s.Paint();
  ASSERT_FALSE(s.Entry(fresh).previewDib.empty());
  EXPECT_EQ(s.CacheFile(), CacheWith("drawing1.dwg", 10, 8));
}

TEST(KeptThumbnails, ThePreferencesOkTurnsTheKeepingOnAndOff) {
  Session s(false);
  ASSERT_EQ(s.h.Load(), 0);
  port::Document a = s.h.OpenDrawing(kA);
  s.h.SetSetting(keys::KeepThumbnails, 1);
  s.h.Module()->Extras()->ReloadSettings();
  ASSERT_NE(s.h.Module()->Extras()->Thumbnails(), nullptr);
  s.Paint();
  std::vector<previews::CachedThumbnail> entries;
  ASSERT_TRUE(previews::ParseThumbnailCache(s.CacheFile(), entries));
  EXPECT_EQ(entries.size(), 1u);

  const std::string kept = s.CacheFile();
  s.h.SetSetting(keys::KeepThumbnails, 0);
  s.h.Module()->Extras()->ReloadSettings();
  EXPECT_EQ(s.h.Module()->Extras()->Thumbnails(), nullptr);
  s.h.OpenDrawing(kB);
  s.Paint();
  EXPECT_EQ(s.CacheFile(), kept);
  EXPECT_FALSE(s.Entry(a).previewDib.empty());
}

}  // namespace
}  // namespace tavlet::host
