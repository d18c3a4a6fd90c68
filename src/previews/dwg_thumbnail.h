// The thumbnail that a drawing file carries, read straight from the file without
// the host, for the file preview panel. A drawing can come from anyone: every
// offset and size is checked against the file's length before use, and nothing
// is allocated beyond the file's size plus a few bytes.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "previews/dwg_dib.h"
#include "previews/dwg_paint.h"

namespace tavlet {

// The causes a file operation can fail with, numbered as the bar's messages are.
enum class FileErrorCause : int {
  None = 0,
  Generic = 1,
  FileNotFound = 2,
  BadPath = 3,
  TooManyOpenFiles = 4,
  AccessDenied = 5,
  InvalidFile = 6,
  RemoveCurrentDir = 7,
  DirectoryFull = 8,
  BadSeek = 9,
  HardIO = 10,
  SharingViolation = 11,
  LockViolation = 12,
  DiskFull = 13,
  EndOfFile = 14,
};

FileErrorCause CauseOf(FileError error);
// The message a thumbnail shows for a file error; any unknown cause has one too.
std::string ThumbnailErrorText(int cause);

// One entry of the image block. Its data is not kept here: only the entry that
// gives the picture is read, into the thumbnail's bitmap, so a load holds no
// more than one entry's bytes however many entries the block lists.
struct ThumbnailEntry {
  int code = 0;
  std::uint32_t start = 0;
  std::uint32_t size = 0;
  bool operator==(const ThumbnailEntry&) const = default;
};

inline constexpr std::uint32_t kMaxThumbnailEntrySize = 32u * 1024 * 1024;

// Runs a background load away from the paint; on Win32 an idle-priority thread.
// Reads an entry's data with the same checks as a load; for tools that want the
// entries a thumbnail does not draw (a PNG picture, code 6, for one).
FileErrorCause ReadThumbnailEntryData(FileSystem& fs, const std::string& path,
                                      const ThumbnailEntry& entry, std::string& data);

class ThumbnailLoadRunner {
 public:
  virtual ~ThumbnailLoadRunner() = default;
  // Starts `work`; false if it could not be started.
  virtual bool Start(std::function<void()> work) = 0;
  // Waits for started work to end.
  virtual void Join() = 0;
};

class DwgThumbnail {
 public:
  explicit DwgThumbnail(FileSystem& fs = NativeFileSystem());
  ~DwgThumbnail();
  DwgThumbnail(const DwgThumbnail&) = delete;
  DwgThumbnail& operator=(const DwgThumbnail&) = delete;

  // Fills the thumbnail from the file. With `keepRecords` the object is cleared
  // and takes `path`; without it only the old picture and entries are dropped.
  bool Load(const std::string& path, bool keepRecords);

  // Draws the picture, or the error or status text in red, into `rect`. Loads
  // first if no load has begun: at once, or through the runner in background mode.
  void Paint(ThumbnailCanvas& canvas, const PreviewRect& rect);

  void SetBackground(std::uint32_t color);
  // Sets the background without recolouring, for use before the first load.
  void SetInitialBackground(std::uint32_t color) { state_.backgroundColor = color; }
  // Replaces the palette entries that carry the drawing's background and line
  // colours, so that the picture suits `backgroundColor`.
  void Recolor();

  // Settings, made before the first load.
  PreviewRect itemRect;
  bool backgroundLoad = false;
  // Called when a load ends (the Win32 side repaints the notify window there).
  std::function<void(const PreviewRect&)> onLoaded;
  void SetLoadRunner(std::unique_ptr<ThumbnailLoadRunner> runner);
  void SetPath(const std::string& path) { path_ = path; }
  void SetRecolor(bool on) { state_.recolor = on; }
  bool recolor() const { return state_.recolor; }

  // State.
  const std::string& path() const { return path_; }
  const std::string& statusText() const { return state_.statusText; }
  const std::string& errorText() const { return state_.errorText; }
  std::uint32_t backgroundColor() const { return state_.backgroundColor; }
  std::uint32_t fileBackground() const { return state_.fileBackground; }
  int fileCode() const { return state_.fileCode; }
  int releaseCode() const { return state_.releaseCode; }
  std::uint8_t formatByte() const { return state_.formatByte; }
  std::uint32_t imageOffset() const { return state_.imageOffset; }
  int imageWidth() const { return state_.imageWidth; }
  int imageHeight() const { return state_.imageHeight; }
  const std::vector<ThumbnailEntry>& entries() const { return state_.entries; }
  // What a failed load got to, for tools that report on damaged files: whether
  // the image block's sentinel was found, the entry count it declares (-1 before
  // it is read) and the entry at which the load stopped (-1 for none). That entry
  // is in entries() when its data was the problem, and past its end when its
  // record was cut off.
  bool foundImageBlock() const { return state_.imageBlock; }
  int declaredEntries() const { return state_.declaredEntries; }
  int damagedEntry() const { return state_.damagedEntry; }
  bool loaded() const { return loaded_; }
  bool loading() const { return loading_.load(); }
  bool HasDib() const { return state_.dibLayout.has_value(); }
  // The packed bitmap followed by one zero byte; empty when there is none.
  const std::vector<std::uint8_t>& dib() const { return state_.dib; }
  DibView Dib() const;
  // Palette entry of the picture as 0x00BBGGRR; 0 without a picture or entry.
  std::uint32_t DibColor(int index) const;

 private:
  // What a load reads and writes. A background load works on a copy and hands
  // it back whole, so the thread never touches the object the paint reads.
  struct State {
    std::string statusText;
    std::string errorText;
    bool recolor = false;
    std::uint32_t backgroundColor = 0;
    std::uint32_t fileBackground = 0;
    int fileCode = 16;
    int releaseCode = 16;
    std::uint8_t formatByte = 0;
    std::uint32_t imageOffset = 0;
    int imageWidth = 0;
    int imageHeight = 0;
    std::vector<ThumbnailEntry> entries;
    bool imageBlock = false;
    int declaredEntries = -1;
    int damagedEntry = -1;
    std::vector<std::uint8_t> dib;
    std::optional<DwgDibLayout> dibLayout;
  };
  static bool Read(FileSystem& fs, const std::string& path, State& state);
  static void RecolorState(State& state);
  void Prepare(const std::string& path, bool keepRecords);
  void AdoptBackgroundResult();
  void StartBackgroundLoad();
  void NotifyLoaded();

  FileSystem& fs_;
  std::string path_;
  State state_;
  bool loaded_ = false;

  std::unique_ptr<ThumbnailLoadRunner> loadThread_;
  std::atomic<bool> loading_{false};
  std::atomic<State*> pending_{nullptr};
};

}  // namespace tavlet
