// Which release wrote a drawing, from the version string at the start of a .dwg
// file. `code` is the number every version comparison uses; 0 stands for every
// release the code table does not name, including strings it does not know.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/file_system.h"

namespace tavlet {

struct DrawingVersion {
  std::string_view versionString;  // "AC1018"
  std::string_view releaseName;    // "AutoCAD 2004"
  int code;
};

// The table in look-up order; the first match wins.
std::span<const DrawingVersion> DrawingVersionTable();

// `code` of a version string; 0 when the table has no such string.
int DrawingVersionCode(std::string_view versionString);
// Release name of a version string; "Unknown" when the table has no such string.
std::string_view DrawingReleaseName(std::string_view versionString);

// The version string as the file holds it: up to 7 bytes read into a zeroed
// buffer, so it ends at the first NUL. Empty for a file that does not open.
bool ReadDrawingVersionString(FileSystem& fs, const std::string& path, std::string& version);

// `code` of the file; 0 when it does not open. Reports no error.
int ReadDrawingVersion(FileSystem& fs, const std::string& path);
int ReadDrawingVersion(const std::string& path);

// Sets `name` to the release name; false when the file does not open.
bool ReadDrawingReleaseName(FileSystem& fs, const std::string& path, std::string& name);
bool ReadDrawingReleaseName(const std::string& path, std::string& name);

}  // namespace tavlet
