// The update check's portable half: the endpoint's tiny answer (docs/update-check.md),
// its parser, the version comparison, and the verdict that the about box shows.
// The answer comes from a web server the user configured, so it is treated as
// hostile: size, characters, versions and links are all checked.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavlet::host {

inline constexpr std::size_t kMaxUpdateAnswer = 4096;
inline constexpr std::size_t kMaxUpdateUrl = 1024;
inline constexpr std::size_t kMaxUpdateNotes = 200;
inline constexpr char kUpdateFormatLine[] = "tavlet-update 1";

// A build number of 1 to 4 dot-separated decimal parts, each below 1,000,000,000.
// Missing parts count as 0, so "2.0" and "2.0.0" are the same build.
class BuildVersion {
 public:
  static std::optional<BuildVersion> Parse(std::string_view text);
  int Compare(const BuildVersion& other) const;  // <0, 0, >0
  bool operator<(const BuildVersion& other) const { return Compare(other) < 0; }
  bool operator==(const BuildVersion& other) const { return Compare(other) == 0; }
  std::string ToString() const;

 private:
  std::vector<unsigned long> parts_;
};

struct UpdateAnswer {
  std::string version;
  std::string url;
  std::string notes;  // may be empty
};

struct UpdateParseResult {
  bool ok = false;
  std::size_t line = 0;  // 1-based line of the fault; 0 for the answer as a whole
  std::string error;     // English, one line
  UpdateAnswer answer;
};

UpdateParseResult ParseUpdateAnswer(std::string_view body);

// An http:// or https:// address of printable ASCII without blanks, within the size limit.
bool IsAcceptableUpdateUrl(std::string_view url);

enum class UpdateStatus {
  UpToDate,
  NewerBuild,
  NoEndpoint,  // no address configured, or not an http(s) address
  NoNetwork,   // the server could not be reached
  TimedOut,
  HttpError,  // a status other than 200
  BadAnswer,  // not the format, or a version or link that fails the checks
  TooLarge,   // more than kMaxUpdateAnswer bytes
  Cancelled,
};

struct UpdateVerdict {
  UpdateStatus status = UpdateStatus::BadAnswer;
  std::string version;  // the offered build, for NewerBuild and UpToDate
  std::string url;      // for NewerBuild
  std::string notes;
  std::string detail;  // what went wrong, English, for a failure
};

// The verdict for a 200 answer's body; `current` is the build this module is
// (ArxModule::BuildText, the build the banners print).
UpdateVerdict JudgeUpdateAnswer(std::string_view current, int httpStatus, std::string_view body);

}  // namespace tavlet::host
