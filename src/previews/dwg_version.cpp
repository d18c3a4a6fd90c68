#include "previews/dwg_version.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tavlet {
namespace {

// No string has code 11: releases 11 and 12 share one format, filed under 12.
constexpr std::array<DrawingVersion, 28> kVersions{{
    {"AC1021", "AutoCAD 2007", 17},
    {"AC1018", "AutoCAD 2004", 16},
    {"AC402b", "Internal: 2004 Late", 16},
    {"AC401h", "Internal: 2004 Early", 16},
    {"AC1015", "AutoCAD 2000", 15},
    {"AC1500", "Release T", 15},
    {"AC1014", "Release 14", 14},
    {"AC1013", "Internal: Early 14", 14},
    {"AC1012", "Release 13", 13},
    {"AC1011", "Internal: Late 13", 13},
    {"AC1010", "Internal: Early 13", 13},
    {"AC1009", "Release 11/12", 12},
    {"AC1008", "Internal: Late Z", 12},
    {"AC1007", "Internal: Early Z", 12},
    {"AC1006", "Release 10", 10},
    {"AC1005", "Version Y", 10},
    {"AC1004", "Release 9", 9},
    {"AC1003", "Version 2.60", 0},
    {"AC1002", "Version 2.50", 0},
    {"AC1001", "Version 2.22 (Unix)", 0},
    {"AC2.22", "Version 2.22 (MS-DOS)", 0},
    {"AC2.21", "Version 2.21", 0},
    {"AC2.20", "Internal: 2.20", 0},
    {"AC2.10", "Version 2.10", 0},
    {"AC1.50", "Version 1.50", 0},
    {"AC1.40", "Version 1.40", 0},
    {"AC1.2", "Version 1.2", 0},
    {"MC0.0", "Version 1.0", 0},
}};

const DrawingVersion* Find(std::string_view versionString) {
  auto it = std::find_if(kVersions.begin(), kVersions.end(), [&](const DrawingVersion& v) {
    return v.versionString == versionString;
  });
  return it == kVersions.end() ? nullptr : &*it;
}

}  // namespace

std::span<const DrawingVersion> DrawingVersionTable() { return kVersions; }

int DrawingVersionCode(std::string_view versionString) {
  const DrawingVersion* v = Find(versionString);
  return v ? v->code : 0;
}

std::string_view DrawingReleaseName(std::string_view versionString) {
  const DrawingVersion* v = Find(versionString);
  return v ? v->releaseName : std::string_view("Unknown");
}

bool ReadDrawingVersionString(FileSystem& fs, const std::string& path, std::string& version) {
  version.clear();
  FileInfo info = fs.Stat(path);
  if (!info.exists || info.isFolder) return false;
  std::size_t count = static_cast<std::size_t>(std::min<std::uint64_t>(info.size, 7));
  std::string bytes;
  if (count > 0 && fs.ReadAt(path, 0, count, bytes) != FileError::None) return false;
  version.assign(bytes.data(), strnlen(bytes.data(), bytes.size()));
  return true;
}

int ReadDrawingVersion(FileSystem& fs, const std::string& path) {
  std::string version;
  if (!ReadDrawingVersionString(fs, path, version)) return 0;
  return DrawingVersionCode(version);
}

int ReadDrawingVersion(const std::string& path) { return ReadDrawingVersion(NativeFileSystem(), path); }

bool ReadDrawingReleaseName(FileSystem& fs, const std::string& path, std::string& name) {
  std::string version;
  if (!ReadDrawingVersionString(fs, path, version)) return false;
  name = DrawingReleaseName(version);
  return true;
}

bool ReadDrawingReleaseName(const std::string& path, std::string& name) {
  return ReadDrawingReleaseName(NativeFileSystem(), path, name);
}

}  // namespace tavlet
