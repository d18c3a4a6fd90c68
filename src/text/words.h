// A line split into words at blanks and tabs, a word in double quotes keeping
// its blanks (the quotes dropped). The separators are ASCII below every trail
// byte of code page 936, so a double-byte character is never cut.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavlet::text {

std::vector<std::string> SplitWords(std::string_view line);

}  // namespace tavlet::text
