#include "previews/dwg_thumbnail.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "previews/dwg_version.h"

namespace tavlet {
namespace {

constexpr char kLoadingText[] = "载入...";
constexpr char kNoPreviewText[] = "没有预览";

constexpr std::array<std::uint8_t, 16> kSentinel = {0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28,
                                                    0x9D, 0x57, 0xCA, 0x3F, 0x9D, 0x44, 0x10, 0x2B};
constexpr std::size_t kHeadSize = 0x12;       // through the format byte
constexpr std::size_t kBlockHeadSize = 21;    // sentinel, overall size, entry count
constexpr std::size_t kEntrySize = 9;
constexpr int kBitmapCode = 2;
constexpr std::uint32_t kWhite = 0xFFFFFF;

std::uint32_t U32(const char* p) {
  auto b = reinterpret_cast<const unsigned char*>(p);
  return b[0] | (b[1] << 8) | (b[2] << 16) | (static_cast<std::uint32_t>(b[3]) << 24);
}

// Offsets in the file are sought as signed 32-bit values, so one with the top bit
// set is a failed seek rather than a far one.
bool IsBadSeek(std::uint32_t offset) { return offset > 0x7FFFFFFFu; }

struct RecolorRule {
  std::vector<int> toForeground;
  std::vector<int> toBackground;
};

const RecolorRule& RuleFor(int releaseCode, std::uint8_t formatByte, bool whiteBackground) {
  static const RecolorRule kUnknownFormat{{226, 245, 255}, {0, 164}};
  static const RecolorRule kDarkFile{{245, 255}, {226, 0, 164}};
  static const RecolorRule kWhiteFile{{226, 255}, {245, 0, 164}};
  static const RecolorRule kOldDarkFile{{225, 255}, {0}};
  static const RecolorRule kOldWhiteFile{{0, 255}, {225}};
  if (releaseCode >= 15 && releaseCode <= 17) {
    if (formatByte != 23 && formatByte != 25 && formatByte != 27) return kUnknownFormat;
    return whiteBackground ? kWhiteFile : kDarkFile;
  }
  return whiteBackground ? kOldWhiteFile : kOldDarkFile;
}

}  // namespace

FileErrorCause CauseOf(FileError error) {
  switch (error) {
    case FileError::None: return FileErrorCause::None;
    case FileError::NotFound: return FileErrorCause::FileNotFound;
    case FileError::AccessDenied: return FileErrorCause::AccessDenied;
    case FileError::SharingViolation: return FileErrorCause::SharingViolation;
    case FileError::EndOfFile: return FileErrorCause::EndOfFile;
    case FileError::BadSeek: return FileErrorCause::BadSeek;
    case FileError::TooLarge:
    case FileError::Other: break;
  }
  return FileErrorCause::Generic;
}

std::string ThumbnailErrorText(int cause) {
  // Two of these stayed English in the product and are kept that way.
  static const std::array<const char*, 15> kTexts = {
      nullptr,
      "文件错误\n 一般的",
      "文件错误\n 文件没有找到",
      "文件错误 \n错误路径",
      "文件错误\n 过多打开文件",
      "文件错误\n 拒绝访问",
      "文件错误 \n无效文件",
      "文件错误 \n删除当前目录",
      "文件错误 \n目录满",
      "文件错误\n 错误查找",
      "File Error\nhardIO",
      "文件错误 \n共享违规",
      "文件错误\n 锁定违规",
      "File Error\ndiskFull",
      "文件错误\n 文件的末端",
  };
  if (cause >= 1 && cause < static_cast<int>(kTexts.size())) return kTexts[cause];
  return "未知错误\n载入预览";
}

FileErrorCause ReadThumbnailEntryData(FileSystem& fs, const std::string& path,
                                      const ThumbnailEntry& entry, std::string& data) {
  data.clear();
  FileInfo info = fs.Stat(path);
  if (!info.exists) return FileErrorCause::FileNotFound;
  if (info.isFolder) return FileErrorCause::AccessDenied;
  if (IsBadSeek(entry.start)) return FileErrorCause::BadSeek;
  if (entry.size > kMaxThumbnailEntrySize) return FileErrorCause::InvalidFile;
  if (std::uint64_t{entry.start} + entry.size > info.size) return FileErrorCause::EndOfFile;
  if (entry.size == 0) return FileErrorCause::None;
  return CauseOf(fs.ReadAt(path, entry.start, entry.size, data));
}

DwgThumbnail::DwgThumbnail(FileSystem& fs) : fs_(fs) {}

DwgThumbnail::~DwgThumbnail() {
  if (loadThread_) loadThread_->Join();
  delete pending_.exchange(nullptr);
}

void DwgThumbnail::SetLoadRunner(std::unique_ptr<ThumbnailLoadRunner> runner) {
  if (loadThread_) loadThread_->Join();
  loadThread_ = std::move(runner);
}

void DwgThumbnail::Prepare(const std::string& path, bool keepRecords) {
  if (keepRecords) {
    State fresh;
    fresh.recolor = state_.recolor;
    fresh.backgroundColor = state_.backgroundColor;
    state_ = std::move(fresh);
    path_ = path;
  } else {
    state_.entries.clear();
    state_.imageBlock = false;
    state_.declaredEntries = -1;
    state_.damagedEntry = -1;
    state_.dib.clear();
    state_.dib.shrink_to_fit();
    state_.dibLayout.reset();
  }
  state_.statusText = kLoadingText;
}

bool DwgThumbnail::Load(const std::string& path, bool keepRecords) {
  if (path.empty()) return false;
  Prepare(path, keepRecords);
  loaded_ = true;
  bool ok = Read(fs_, path, state_);
  NotifyLoaded();
  return ok;
}

void DwgThumbnail::NotifyLoaded() {
  if (onLoaded) onLoaded(itemRect);
}

bool DwgThumbnail::Read(FileSystem& fs, const std::string& path, State& s) {
  auto fail = [&s](FileErrorCause cause) {
    s.errorText = ThumbnailErrorText(static_cast<int>(cause));
    return false;
  };
  FileInfo info = fs.Stat(path);
  if (!info.exists) return fail(FileErrorCause::FileNotFound);
  if (info.isFolder) return fail(FileErrorCause::AccessDenied);
  const std::uint64_t fileSize = info.size;
  std::string bytes;

  std::size_t headSize = static_cast<std::size_t>(std::min<std::uint64_t>(fileSize, kHeadSize));
  if (headSize > 0) {
    if (FileError e = fs.ReadAt(path, 0, headSize, bytes); e != FileError::None) return fail(CauseOf(e));
  }
  std::size_t versionLength = std::min<std::size_t>(bytes.size(), 7);
  s.fileCode = DrawingVersionCode(std::string_view(bytes.data(), strnlen(bytes.data(), versionLength)));
  if (headSize < kHeadSize) return fail(FileErrorCause::EndOfFile);
  s.formatByte = static_cast<std::uint8_t>(bytes[0x11]);
  s.imageOffset = U32(bytes.data() + 0x0D);

  if (IsBadSeek(s.imageOffset)) return fail(FileErrorCause::BadSeek);
  const std::uint64_t blockStart = s.imageOffset;
  if (blockStart + kSentinel.size() > fileSize) return fail(FileErrorCause::EndOfFile);
  std::size_t blockHead = static_cast<std::size_t>(std::min<std::uint64_t>(fileSize - blockStart, kBlockHeadSize));
  if (FileError e = fs.ReadAt(path, blockStart, blockHead, bytes); e != FileError::None) return fail(CauseOf(e));
  // Without the sentinel there is no image block: the status stays as it is.
  if (std::memcmp(bytes.data(), kSentinel.data(), kSentinel.size()) != 0) return false;
  s.imageBlock = true;
  if (blockHead < kBlockHeadSize) return fail(FileErrorCause::EndOfFile);
  const int entryCount = static_cast<signed char>(bytes[20]);
  s.declaredEntries = entryCount;

  if (entryCount > 0) {
    const std::uint64_t tableStart = blockStart + kBlockHeadSize;
    std::size_t tableSize = static_cast<std::size_t>(
        std::min<std::uint64_t>(std::uint64_t(entryCount) * kEntrySize, fileSize - tableStart));
    std::string table;
    if (tableSize > 0) {
      if (FileError e = fs.ReadAt(path, tableStart, tableSize, table); e != FileError::None) return fail(CauseOf(e));
    }
    for (int i = 0; i < entryCount; ++i) {
      // Entries before a cut in the table have been taken in, as a reader going
      // entry by entry would have.
      if ((static_cast<std::size_t>(i) + 1) * kEntrySize > table.size()) {
        s.damagedEntry = i;
        return fail(FileErrorCause::EndOfFile);
      }
      const char* record = table.data() + i * kEntrySize;
      ThumbnailEntry entry;
      entry.code = static_cast<unsigned char>(record[0]);
      entry.start = U32(record + 1);
      entry.size = U32(record + 5);
      s.entries.push_back(entry);
      // Drawings from "AC1021" on keep a header entry first; only the second counts.
      bool used = entry.code == kBitmapCode && (s.fileCode < 17 || i == 1);
      if (!used || entry.size > kMaxThumbnailEntrySize) continue;
      if (IsBadSeek(entry.start) || std::uint64_t{entry.start} + entry.size > fileSize) {
        s.damagedEntry = i;
        return fail(IsBadSeek(entry.start) ? FileErrorCause::BadSeek : FileErrorCause::EndOfFile);
      }
      if (entry.size > 0) {
        if (FileError e = fs.ReadAt(path, entry.start, entry.size, bytes); e != FileError::None) {
          s.damagedEntry = i;
          return fail(CauseOf(e));
        }
      } else {
        bytes.clear();
      }
      auto layout = CheckDwgDib(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      if (!layout) continue;
      s.dib.assign(bytes.size() + 1, 0);
      std::memcpy(s.dib.data(), bytes.data(), bytes.size());
      bytes.clear();
      bytes.shrink_to_fit();
      s.dibLayout = layout;
      if (s.fileCode < 15) {
        s.releaseCode = s.fileCode;
        s.fileBackground = DwgDibColor(s.dib.data(), *layout, 245);
      } else {
        s.fileBackground = DwgDibColor(s.dib.data(), *layout, 225);
        s.releaseCode = s.formatByte == 0x1B ? 17 : s.formatByte == 0x19 ? 16 : 15;
      }
      if (s.recolor) RecolorState(s);
      s.imageWidth = layout->width;
      s.imageHeight = layout->height;
    }
  }
  if (!s.dibLayout) s.statusText = kNoPreviewText;
  return true;
}

void DwgThumbnail::RecolorState(State& s) {
  if (!s.dibLayout) return;
  const std::uint32_t background = s.backgroundColor;
  const std::uint32_t foreground = background != 0 ? 0 : kWhite;
  const RecolorRule& rule = RuleFor(s.releaseCode, s.formatByte, s.fileBackground == kWhite);
  for (int index : rule.toForeground) SetDwgDibColor(s.dib.data(), *s.dibLayout, index, foreground);
  for (int index : rule.toBackground) SetDwgDibColor(s.dib.data(), *s.dibLayout, index, background);
}

void DwgThumbnail::Recolor() { RecolorState(state_); }

void DwgThumbnail::SetBackground(std::uint32_t color) {
  AdoptBackgroundResult();
  if (color == state_.backgroundColor) return;
  state_.backgroundColor = color;
  RecolorState(state_);
}

DibView DwgThumbnail::Dib() const {
  if (!state_.dibLayout) return {};
  return {state_.dib.data(), state_.dib.size() - 1, state_.dibLayout->bitsOffset, state_.imageWidth,
          state_.imageHeight};
}

std::uint32_t DwgThumbnail::DibColor(int index) const {
  if (!state_.dibLayout) return 0;
  return DwgDibColor(state_.dib.data(), *state_.dibLayout, index);
}

void DwgThumbnail::StartBackgroundLoad() {
  loaded_ = true;
  loading_ = true;
  state_.statusText = kLoadingText;
  auto work = [this, path = path_, rect = itemRect, snapshot = state_]() mutable {
    snapshot.entries.clear();
    snapshot.imageBlock = false;
    snapshot.declaredEntries = -1;
    snapshot.damagedEntry = -1;
    snapshot.dib.clear();
    snapshot.dibLayout.reset();
    Read(fs_, path, snapshot);
    delete pending_.exchange(new State(std::move(snapshot)));
    loading_ = false;
    if (onLoaded) onLoaded(rect);
  };
  if (!loadThread_->Start(std::move(work))) {
    loading_ = false;
    loaded_ = false;
  }
}

void DwgThumbnail::AdoptBackgroundResult() {
  State* result = pending_.exchange(nullptr);
  if (result == nullptr) return;
  const std::uint32_t background = state_.backgroundColor;
  const bool recolor = state_.recolor;
  state_ = std::move(*result);
  delete result;
  state_.recolor = recolor;
  if (state_.backgroundColor != background) {
    state_.backgroundColor = background;
    RecolorState(state_);
  }
}

void DwgThumbnail::Paint(ThumbnailCanvas& canvas, const PreviewRect& rect) {
  AdoptBackgroundResult();
  canvas.SaveState();
  canvas.FillRect(rect, state_.backgroundColor);
  if (!loaded_) {
    if (backgroundLoad && loadThread_) {
      if (!loading_ && !path_.empty()) StartBackgroundLoad();
    } else {
      Load(path_, false);
    }
  }
  if (!state_.dibLayout) {
    const std::string& text = state_.errorText.empty() ? state_.statusText : state_.errorText;
    for (const TextBand& band : LayoutTextLines(rect, text, canvas.TextHeight(text))) {
      canvas.DrawTextLine(band.band, band.line, kThumbnailTextColor, state_.backgroundColor);
    }
  } else {
    PreviewRect dest = FitIntoRect(rect, state_.imageWidth, std::abs(state_.imageHeight));
    canvas.DrawDib(dest, Dib(), StretchModeFor(state_.backgroundColor));
  }
  canvas.RestoreState();
}

}  // namespace tavlet
