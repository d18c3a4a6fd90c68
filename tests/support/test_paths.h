// Where tests find data that is not generated: the real drawings beside the
// checkout, which may be absent.
#pragma once

#include <string>

namespace tavlet::testing {

// The shared folder with real drawings, or "" when it is not there; tests
// that need it skip.
std::string SharedDir();
std::string SharedDrawing(const std::string& fileName);

// The checkout's samples folder (sample drawings and sheet sets).
std::string SamplesDir();

// A path of the build machine as a Windows program under Wine sees it: on
// drive Z:, with backslashes.
std::string WinePath(const std::string& unixPath);

// A fresh, empty folder for one test, removed at exit.
std::string MakeTempFolder(const std::string& tag);

}  // namespace tavlet::testing
