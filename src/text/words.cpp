#include "text/words.h"

namespace tavlet::text {

std::vector<std::string> SplitWords(std::string_view line) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    if (i >= line.size()) break;
    std::string word;
    if (line[i] == '"') {
      for (++i; i < line.size() && line[i] != '"'; ++i) word += line[i];
      ++i;
    } else {
      for (; i < line.size() && line[i] != ' ' && line[i] != '\t'; ++i) word += line[i];
    }
    words.push_back(std::move(word));
  }
  return words;
}

}  // namespace tavlet::text
