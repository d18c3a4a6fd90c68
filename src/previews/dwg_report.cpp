#include "previews/dwg_report.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "previews/dwg_thumbnail.h"
#include "previews/dwg_version.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

constexpr std::uint64_t kHeadSize = 0x12;  // through the format byte

void Line(std::string& out, const char* format, ...) {
  char buffer[512];
  va_list args;
  va_start(args, format);
  std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  out += buffer;
  out += '\n';
}

}  // namespace

std::string ThumbnailFailure(const DwgThumbnail& thumbnail) {
  std::string text = text::ToUtf8(thumbnail.errorText());
  for (char& c : text) {
    if (c == '\n') c = ' ';
  }
  struct Known {
    const char* text;
    const char* reason;
  };
  static const Known kKnown[] = {
      {"文件错误\n 文件没有找到", "file not found"},
      {"文件错误\n 拒绝访问", "access denied"},
      {"文件错误 \n共享违规", "sharing violation"},
      {"文件错误\n 文件的末端", "unexpected end of file (the file is cut short)"},
      {"文件错误\n 错误查找", "bad seek (an offset in the file is out of range)"},
  };
  for (const Known& k : kKnown) {
    if (thumbnail.errorText() == k.text) return std::string(k.reason) + " [" + text + "]";
  }
  return text;
}

namespace {

std::string EntryLine(const ThumbnailEntry& entry) {
  char buffer[96];
  std::snprintf(buffer, sizeof buffer, "    code %d  offset 0x%X  size %u", entry.code, entry.start,
                entry.size);
  return buffer;
}

}  // namespace

DrawingReport ReportDrawing(FileSystem& fs, const std::string& path) {
  DrawingReport report;
  const std::string& shownPath = path;
  DwgThumbnail thumbnail(fs);
  const bool loaded = thumbnail.Load(path, true);
  const bool damaged = !loaded && !thumbnail.errorText().empty();
  const FileInfo info = fs.Stat(path);
  // A file that cannot be opened has nothing to show.
  std::string version;
  if (!info.exists || info.isFolder || (damaged && !ReadDrawingVersionString(fs, path, version))) {
    report.error = shownPath + ": cannot read: " + ThumbnailFailure(thumbnail);
    return report;
  }
  ReadDrawingVersionString(fs, path, version);

  std::string& out = report.text;
  Line(out, "%s", shownPath.c_str());
  Line(out, "  version      %s (%s)", version.c_str(),
       std::string(DrawingReleaseName(version)).c_str());
  Line(out, "  code         %d", thumbnail.fileCode());
  if (thumbnail.HasDib()) {
    Line(out, "  releaseCode  %d", thumbnail.releaseCode());
  } else {
    Line(out, "  releaseCode  - (set only with a picture)");
  }
  if (info.size < kHeadSize) {
    Line(out, "  formatByte   - (the file ends at byte %llu, before it)",
         static_cast<unsigned long long>(info.size));
    Line(out, "  imageOffset  - (the file ends before it)");
  } else {
    Line(out, "  formatByte   0x%02X", thumbnail.formatByte());
    Line(out, "  imageOffset  0x%X", thumbnail.imageOffset());
    if (!thumbnail.foundImageBlock()) {
      if (!damaged) {
        Line(out, "  image block  none (no sentinel at the image offset)");
      } else {
        Line(out, "  image block  - (not in the file, which is %llu bytes)",
             static_cast<unsigned long long>(info.size));
      }
    } else if (thumbnail.declaredEntries() < 0) {
      Line(out, "  image block  cut off before its entry count");
    } else if (damaged) {
      Line(out, "  image block  %d entries declared", thumbnail.declaredEntries());
    }
  }
  int firstDamaged = -1;
  if (thumbnail.foundImageBlock() && thumbnail.declaredEntries() >= 0) {
    const auto& entries = thumbnail.entries();
    if (damaged &&
        entries.size() != static_cast<std::size_t>(std::max(0, thumbnail.declaredEntries()))) {
      Line(out, "  entries      %zu read", entries.size());
    } else {
      Line(out, "  entries      %zu", entries.size());
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
      std::string line = EntryLine(entries[i]);
      const ThumbnailEntry& entry = entries[i];
      // The reader only reads the entry it draws; an entry it skips can be
      // damaged too, and a tool that extracts it would fail.
      const bool outside =
          entry.start > 0x7FFFFFFFu || std::uint64_t{entry.start} + entry.size > info.size;
      if ((damaged && static_cast<int>(i) == thumbnail.damagedEntry()) || outside) {
        if (!damaged && firstDamaged < 0) firstDamaged = static_cast<int>(i);
        if (entry.start > 0x7FFFFFFFu) {
          line += "  DAMAGED: its offset is out of range";
        } else if (std::uint64_t{entry.start} + entry.size > info.size) {
          line += "  DAMAGED: its data runs past the end of the file (" +
                  std::to_string(info.size) + " bytes)";
        } else {
          line += "  DAMAGED: its data could not be read";
        }
      }
      Line(out, "%s", line.c_str());
    }
    if (damaged && thumbnail.damagedEntry() == static_cast<int>(entries.size())) {
      Line(out, "    entry %d      DAMAGED: its record is cut off by the end of the file",
           thumbnail.damagedEntry() + 1);
    }
    if (thumbnail.HasDib()) {
      Line(out, "  picture      %dx%d bitmap", thumbnail.imageWidth(), thumbnail.imageHeight());
    } else if (damaged) {
      Line(out, "  picture      none (the reader stopped at the damage)");
    } else {
      Line(out, "  picture      none the bar can show");
    }
  }
  if (damaged) {
    report.error = shownPath + ": damaged: " + ThumbnailFailure(thumbnail);
    return report;
  }
  if (firstDamaged >= 0) {
    report.error = shownPath + ": damaged: entry " + std::to_string(firstDamaged + 1) +
                   " lies outside the file, though the bar does not read it";
    return report;
  }
  report.ok = true;
  return report;
}

}  // namespace tavlet
