#include "host/update_check.h"

#include <algorithm>

#include "text/codepage.h"

namespace tavlet::host {
namespace {

constexpr std::size_t kMaxVersionParts = 4;
constexpr std::size_t kMaxPartDigits = 9;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view TrimRight(std::string_view text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text;
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

UpdateParseResult Fault(std::size_t line, std::string error) {
  UpdateParseResult result;
  result.line = line;
  result.error = std::move(error);
  return result;
}

}  // namespace

std::optional<BuildVersion> BuildVersion::Parse(std::string_view text) {
  BuildVersion version;
  std::size_t pos = 0;
  while (true) {
    const std::size_t start = pos;
    unsigned long value = 0;
    while (pos < text.size() && IsDigit(text[pos])) {
      if (pos - start == kMaxPartDigits) return std::nullopt;
      value = value * 10 + static_cast<unsigned long>(text[pos] - '0');
      ++pos;
    }
    if (pos == start || version.parts_.size() == kMaxVersionParts) return std::nullopt;
    version.parts_.push_back(value);
    if (pos == text.size()) return version;
    if (text[pos] != '.') return std::nullopt;
    ++pos;
  }
}

int BuildVersion::Compare(const BuildVersion& other) const {
  const std::size_t count = std::max(parts_.size(), other.parts_.size());
  for (std::size_t i = 0; i < count; ++i) {
    const unsigned long a = i < parts_.size() ? parts_[i] : 0;
    const unsigned long b = i < other.parts_.size() ? other.parts_[i] : 0;
    if (a != b) return a < b ? -1 : 1;
  }
  return 0;
}

std::string BuildVersion::ToString() const {
  std::string text;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    if (i > 0) text += '.';
    text += std::to_string(parts_[i]);
  }
  return text;
}

bool IsAcceptableUpdateUrl(std::string_view url) {
  if (url.size() > kMaxUpdateUrl) return false;
  std::string_view rest;
  if (StartsWith(url, "http://")) {
    rest = url.substr(7);
  } else if (StartsWith(url, "https://")) {
    rest = url.substr(8);
  } else {
    return false;
  }
  // A host must follow the scheme.
  if (rest.empty() || rest[0] == '/' || rest[0] == '?' || rest[0] == '#') return false;
  for (char c : url) {
    if (c <= 0x20 || c >= 0x7F) return false;
  }
  return true;
}

UpdateParseResult ParseUpdateAnswer(std::string_view body) {
  if (body.size() > kMaxUpdateAnswer) {
    return Fault(0, "the answer is larger than " + std::to_string(kMaxUpdateAnswer) + " bytes");
  }
  if (StartsWith(body, "\xEF\xBB\xBF")) body.remove_prefix(3);
  if (body.find('\0') != std::string_view::npos) return Fault(0, "the answer holds a NUL byte");

  UpdateParseResult result;
  bool sawFormat = false, sawVersion = false, sawUrl = false, sawNotes = false;
  std::size_t lineNumber = 0;
  while (!body.empty()) {
    ++lineNumber;
    const std::size_t end = body.find('\n');
    std::string_view line = body.substr(0, end);
    body = end == std::string_view::npos ? std::string_view() : body.substr(end + 1);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    for (char c : line) {
      const auto u = static_cast<unsigned char>(c);
      if ((u < 0x20 && c != '\t') || u == 0x7F)
        return Fault(lineNumber, "a control character in the line");
    }
    line = TrimRight(line);
    if (line.empty() || line[0] == '#') continue;
    if (!sawFormat) {
      if (StartsWith(line, "tavlet-update ") && line != kUpdateFormatLine) {
        return Fault(lineNumber, "answer format \"" + std::string(line.substr(14)) +
                                     "\" is not known to this build");
      }
      if (line != kUpdateFormatLine)
        return Fault(lineNumber, "the answer does not start with \"tavlet-update 1\"");
      sawFormat = true;
      continue;
    }
    std::size_t keyEnd = 0;
    // A key is a lower-case word: a letter, then letters, digits or '-'.
    while (keyEnd < line.size() &&
           ((line[keyEnd] >= 'a' && line[keyEnd] <= 'z') ||
            (keyEnd > 0 && (IsDigit(line[keyEnd]) || line[keyEnd] == '-')))) {
      ++keyEnd;
    }
    if (keyEnd == 0 || keyEnd == line.size() || (line[keyEnd] != ' ' && line[keyEnd] != '\t')) {
      return Fault(lineNumber, "not a \"key value\" line");
    }
    const std::string_view key = line.substr(0, keyEnd);
    std::string_view value = line.substr(keyEnd);
    while (!value.empty() && (value.front() == ' ' || value.front() == '\t'))
      value.remove_prefix(1);
    auto once = [&](bool& seen) {
      if (seen) return false;
      seen = true;
      return true;
    };
    if (key == "version") {
      if (!once(sawVersion)) return Fault(lineNumber, "\"version\" given twice");
      if (!BuildVersion::Parse(value))
        return Fault(lineNumber, "\"" + std::string(value.substr(0, 40)) + "\" is not a version");
      result.answer.version = std::string(value);
    } else if (key == "url") {
      if (!once(sawUrl)) return Fault(lineNumber, "\"url\" given twice");
      if (!IsAcceptableUpdateUrl(value))
        return Fault(lineNumber, "the link is not an http or https address");
      result.answer.url = std::string(value);
    } else if (key == "notes") {
      if (!once(sawNotes)) return Fault(lineNumber, "\"notes\" given twice");
      if (value.size() > kMaxUpdateNotes) {
        return Fault(lineNumber,
                     "the notes are longer than " + std::to_string(kMaxUpdateNotes) + " bytes");
      }
      // The answer is UTF-8; the dialogs show code page 936.
      result.answer.notes = text::FromUtf8(value);
    }
    // Other keys belong to later versions of the format and are passed over.
  }
  if (!sawFormat) return Fault(0, "the answer is empty");
  if (!sawVersion) return Fault(0, "the answer names no version");
  if (!sawUrl) return Fault(0, "the answer gives no link");
  result.ok = true;
  return result;
}

UpdateVerdict JudgeUpdateAnswer(std::string_view current, int httpStatus, std::string_view body) {
  UpdateVerdict verdict;
  if (httpStatus != 200) {
    verdict.status = UpdateStatus::HttpError;
    verdict.detail = "the server answered HTTP " + std::to_string(httpStatus);
    return verdict;
  }
  if (body.size() > kMaxUpdateAnswer) {
    verdict.status = UpdateStatus::TooLarge;
    verdict.detail = "the answer is larger than " + std::to_string(kMaxUpdateAnswer) + " bytes";
    return verdict;
  }
  UpdateParseResult parsed = ParseUpdateAnswer(body);
  if (!parsed.ok) {
    verdict.status = UpdateStatus::BadAnswer;
    verdict.detail = parsed.line > 0 ? "line " + std::to_string(parsed.line) + ": " + parsed.error
                                     : parsed.error;
    return verdict;
  }
  const auto mine = BuildVersion::Parse(current);
  if (!mine) {
    verdict.status = UpdateStatus::BadAnswer;
    verdict.detail = "this build's own version \"" + std::string(current) + "\" cannot be compared";
    return verdict;
  }
  const auto offered = BuildVersion::Parse(parsed.answer.version);
  verdict.version = parsed.answer.version;
  verdict.notes = parsed.answer.notes;
  if (*mine < *offered) {
    verdict.status = UpdateStatus::NewerBuild;
    verdict.url = parsed.answer.url;
  } else {
    // An older build on the server is no reason to offer it.
    verdict.status = UpdateStatus::UpToDate;
  }
  return verdict;
}

}  // namespace tavlet::host
