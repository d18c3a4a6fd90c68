// dwgthumb: shows what a drawing file says about its version and thumbnail, and
// writes the thumbnail out, using the same reader as the file preview panel.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/file_system.h"
#include "previews/dwg_report.h"
#include "previews/dwg_thumbnail.h"
#include "previews/dwg_version.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

constexpr int kExitOk = 0;
constexpr int kExitFileProblem = 1;
constexpr int kExitUsage = 2;
constexpr int kPngCode = 6;

const char kUsage[] =
    "usage: dwgthumb info FILE...\n"
    "       dwgthumb extract FILE [-o OUT | -d FOLDER] [--background COLOUR] [--recolor]\n"
    "\n"
    "info     prints per drawing its version string and release name, the version\n"
    "         code, the release code, the format byte, the image block's offset and\n"
    "         its entries (code, offset, size). Of a damaged drawing it prints what\n"
    "         it could read, flags the damaged entry and says why on stderr.\n"
    "extract  writes the thumbnail: a bitmap (entry code 2) as FILE.bmp, or, for\n"
    "         newer drawings that only hold a PNG (entry code 6), FILE.png.\n"
    "         -o OUT              write to OUT instead\n"
    "         -d FOLDER           write into FOLDER, named as FILE with .bmp or .png\n"
    "         --recolor           recolour the bitmap for a black background, as the\n"
    "                             file preview panel shows it\n"
    "         --background COLOUR recolour for COLOUR: #RRGGBB, black or white\n"
    "                             (implies --recolor)\n"
    "\n"
    "exit status: 0 success, 1 a file could not be read or has no thumbnail,\n"
    "             2 wrong arguments.\n";

// Prints what could be read even of a damaged file, then why it is damaged.
bool Info(FileSystem& fs, const std::string& path) {
  const DrawingReport report = ReportDrawing(fs, path);
  std::fwrite(report.text.data(), 1, report.text.size(), stdout);
  std::fflush(stdout);
  if (!report.error.empty()) std::fprintf(stderr, "%s\n", report.error.c_str());
  return report.ok;
}

std::string WithExtension(const std::string& path, const char* extension) {
  std::size_t cut = path.size();
  for (std::size_t pos = 0; pos < path.size(); pos += text::CharLength(path, pos)) {
    if (path[pos] == '.') cut = pos;
    if (path[pos] == '\\' || path[pos] == '/') cut = path.size();
  }
  return path.substr(0, cut) + extension;
}

// Beside the input, or in `folder` when one was given.
std::string OutputName(const std::string& input, const std::string& folder, const char* extension) {
  const std::string beside = WithExtension(input, extension);
  if (folder.empty()) return beside;
  std::size_t nameStart = 0;
  for (std::size_t pos = 0; pos < beside.size(); pos += text::CharLength(beside, pos)) {
    if (beside[pos] == '\\' || beside[pos] == '/') nameStart = pos + 1;
  }
  const char last = folder.back();
  return folder + (last == '\\' || last == '/' ? "" : "/") + beside.substr(nameStart);
}

std::string BmpFile(const DibView& dib) {
  std::string out = "BM";
  auto put32 = [&out](std::uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<char>((v >> shift) & 0xFF));
  };
  const std::uint32_t fileHeader = 14;
  put32(static_cast<std::uint32_t>(fileHeader + dib.size));
  put32(0);
  put32(static_cast<std::uint32_t>(fileHeader + dib.bitsOffset));
  out.append(reinterpret_cast<const char*>(dib.data), dib.size);
  return out;
}

bool ParseColour(const std::string& text, std::uint32_t& colour) {
  if (text == "black") {
    colour = 0;
    return true;
  }
  if (text == "white") {
    colour = 0xFFFFFF;
    return true;
  }
  if (text.size() != 7 || text[0] != '#') return false;
  unsigned long rgb = 0;
  for (std::size_t i = 1; i < 7; ++i) {
    char c = text[i];
    int digit = c >= '0' && c <= '9' ? c - '0' : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                              : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
    if (digit < 0) return false;
    rgb = rgb * 16 + static_cast<unsigned long>(digit);
  }
  // The bar's colours are 0x00BBGGRR.
  colour = static_cast<std::uint32_t>(((rgb & 0xFF) << 16) | (rgb & 0xFF00) | ((rgb >> 16) & 0xFF));
  return true;
}

int Extract(FileSystem& fs, const std::vector<std::string>& args) {
  std::string input, output, folder;
  bool recolor = false;
  bool haveBackground = false;
  std::uint32_t background = 0;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (a == "-o" || a == "-d" || a == "--background") {
      if (i + 1 >= args.size()) {
        std::fprintf(stderr, "dwgthumb: %s needs a value\n", a.c_str());
        return kExitUsage;
      }
      const std::string& value = args[++i];
      if (a == "-o") {
        output = value;
      } else if (a == "-d") {
        folder = value;
      } else if (!ParseColour(value, background)) {
        std::fprintf(stderr, "dwgthumb: bad colour '%s' (use #RRGGBB, black or white)\n", value.c_str());
        return kExitUsage;
      } else {
        haveBackground = true;
      }
    } else if (a == "--recolor") {
      recolor = true;
    } else if (!a.empty() && a[0] == '-') {
      std::fprintf(stderr, "dwgthumb: unknown option '%s'\n", a.c_str());
      return kExitUsage;
    } else if (input.empty()) {
      input = a;
    } else {
      std::fprintf(stderr, "dwgthumb: extract takes one file\n");
      return kExitUsage;
    }
  }
  if (input.empty()) {
    std::fprintf(stderr, "dwgthumb: extract needs a file\n%s", kUsage);
    return kExitUsage;
  }

  DwgThumbnail thumbnail(fs);
  thumbnail.SetRecolor(recolor || haveBackground);
  thumbnail.SetInitialBackground(background);
  if (!thumbnail.Load(input, true) && !thumbnail.errorText().empty()) {
    std::fprintf(stderr, "%s: cannot read: %s\n", input.c_str(),
                 ThumbnailFailure(thumbnail).c_str());
    return kExitFileProblem;
  }
  std::string bytes;
  if (thumbnail.HasDib()) {
    bytes = BmpFile(thumbnail.Dib());
    if (output.empty()) output = OutputName(input, folder, ".bmp");
  } else {
    const ThumbnailEntry* png = nullptr;
    for (const ThumbnailEntry& entry : thumbnail.entries()) {
      if (entry.code == kPngCode && entry.size > 0) {
        png = &entry;
        break;
      }
    }
    if (png == nullptr) {
      std::fprintf(stderr, "%s: no thumbnail in the file\n", input.c_str());
      return kExitFileProblem;
    }
    FileErrorCause cause = ReadThumbnailEntryData(fs, input, *png, bytes);
    if (cause != FileErrorCause::None) {
      std::fprintf(stderr, "%s: cannot read the PNG entry: %s\n", input.c_str(),
                   text::ToUtf8(ThumbnailErrorText(static_cast<int>(cause))).c_str());
      return kExitFileProblem;
    }
    if (bytes.compare(0, 8, "\x89PNG\r\n\x1a\n", 8) != 0) {
      std::fprintf(stderr, "%s: the PNG entry does not hold a PNG image\n", input.c_str());
      return kExitFileProblem;
    }
    if (recolor || haveBackground) std::fprintf(stderr, "%s: a PNG picture is written as stored, not recoloured\n", input.c_str());
    if (output.empty()) output = OutputName(input, folder, ".png");
  }
  if (fs.WriteFileAtomic(output, bytes) != FileError::None) {
    std::fprintf(stderr, "dwgthumb: cannot write %s\n", output.c_str());
    return kExitFileProblem;
  }
  std::printf("%s\n", output.c_str());
  return kExitOk;
}

int Run(const std::vector<std::string>& args) {
  if (args.empty()) {
    std::fprintf(stderr, "%s", kUsage);
    return kExitUsage;
  }
  if (args[0] == "--help" || args[0] == "-h" || args[0] == "help") {
    std::printf("%s", kUsage);
    return kExitOk;
  }
  FileSystem& fs = NativeFileSystem();
  std::vector<std::string> rest(args.begin() + 1, args.end());
  if (args[0] == "info") {
    if (rest.empty()) {
      std::fprintf(stderr, "dwgthumb: info needs at least one file\n%s", kUsage);
      return kExitUsage;
    }
    int status = kExitOk;
    for (const std::string& path : rest) {
      if (!Info(fs, path)) status = kExitFileProblem;
    }
    return status;
  }
  if (args[0] == "extract") return Extract(fs, rest);
  std::fprintf(stderr, "dwgthumb: unknown command '%s'\n%s", args[0].c_str(), kUsage);
  return kExitUsage;
}

}  // namespace
}  // namespace tavlet

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  return tavlet::Run(args);
}
