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

// A fresh, empty folder for one test, removed at exit.
std::string MakeTempFolder(const std::string& tag);

}  // namespace tavlet::testing
