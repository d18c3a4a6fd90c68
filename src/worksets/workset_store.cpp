#include "worksets/workset_store.h"

#include <algorithm>
#include <cstdio>

#include "settings/settings_table.h"
#include "text/codepage.h"

namespace tavlet {
namespace {

// '=' and ',' are below 0x40, so neither is ever the trail byte of a character:
// a split by byte is a split by character.
std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t start = 0;;) {
    const std::size_t at = text.find(separator, start);
    parts.push_back(text.substr(start, at == std::string_view::npos ? at : at - start));
    if (at == std::string_view::npos) break;
    start = at + 1;
  }
  return parts;
}

// atoi: leading blanks, a sign, digits; anything else ends it.
int Atoi(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  long long value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = value * 10 + (text[i] - '0');
    if (value > 2147483648LL) value = 2147483648LL;
  }
  value = negative ? -value : value;
  return static_cast<int>(std::clamp<long long>(value, -2147483647LL - 1, 2147483647LL));
}

std::string KeyOf(std::size_t number) {
  char key[32];
  std::snprintf(key, sizeof key, workset_texts::kKeyFormat, static_cast<int>(number));
  return key;
}

}  // namespace

DrawingPath ParseWorksetValue(std::string_view value, FileSystem& files) {
  std::vector<std::string_view> parts = Split(value, ',');
  if (parts.size() < 2) return DrawingPath(value, files);
  const bool readOnly = Atoi(parts.back()) == 1;
  // Everything before the last ',' is the path, its own commas included.
  DrawingPath path(value.substr(0, value.size() - parts.back().size() - 1), files);
  path.readOnly = readOnly;
  return path;
}

std::size_t ReadWorkset(ProfileFile& file, std::string_view name, std::vector<DrawingPath>& list,
                        FileSystem& files) {
  std::vector<std::string> lines;
  file.GetSectionLines(name, lines);
  const std::size_t before = list.size();
  for (const std::string& line : lines) {
    std::vector<std::string_view> parts = Split(line, '=');
    if (parts.size() < 2) continue;
    if (parts[0].size() < 4 || parts[0].compare(0, 4, "File") != 0) continue;
    list.push_back(ParseWorksetValue(parts[1], files));
  }
  return list.size() - before;
}

std::size_t ListWorksets(ProfileFile& file, std::vector<std::string>& list) {
  return file.GetSectionNames(list);
}

WorksetStore::WorksetStore(WorksetServices services) : services_(std::move(services)) {}

void WorksetStore::ShowBox(const std::string& text) {
  long answer = 0;
  services_.boxes.Show(text.c_str(), port::kBoxOk, &answer);
}

std::string WorksetStore::GetWorksetsPath() {
  const std::string stored = ReadString(services_.settings, keys::WorksetsPath);
  if (!stored.empty()) return stored;
  std::string decided =
      DecideWorksetsPath(stored, services_.dataFolder, services_.environment, services_.files);
  WriteString(services_.settings, keys::WorksetsPath, decided);
  return decided;
}

void WorksetStore::OpenWorkset(const std::string& name) {
  std::vector<std::string> lines;
  {
    ProfileFile file(services_.files, GetWorksetsPath(), true);
    file.GetSectionLines(name, lines);
  }
  if (lines.empty()) {
    ShowBox(workset_texts::kNoFiles);
    return;
  }
  for (const std::string& line : lines) {
    // The key isn't looked at, and a path holding '=' is cut there.
    std::vector<std::string_view> parts = Split(line, '=');
    if (parts.size() < 2) continue;
    if (services_.openFile) services_.openFile(ParseWorksetValue(parts[1], services_.files), true, false);
  }
  WriteString(services_.settings, keys::LastWorkset, name);
}

void WorksetStore::SelectAndOpenWorkset(const std::string& name) {
  if (!services_.selector) return;
  std::vector<DrawingPath> ticked;
  if (!services_.selector->SelectFiles(GetWorksetsPath(), name, ticked)) return;
  for (const DrawingPath& path : ticked)
    if (services_.openFile) services_.openFile(path, true, false);
}

void WorksetStore::OpenLastWorkset() {
  const std::string last = ReadString(services_.settings, keys::LastWorkset);
  if (last.empty()) {
    ShowBox(workset_texts::kNoneOpenedYet);
    return;
  }
  OpenWorkset(last);
}

std::size_t WorksetStore::AddFiles(ProfileFile& file, std::string_view name, std::vector<DrawingPath>& list) {
  std::vector<DrawingPath> existing;
  ReadWorkset(file, name, existing, services_.files);
  int duplicates = 0;
  std::erase_if(list, [&](const DrawingPath& candidate) {
    const bool in = std::any_of(existing.begin(), existing.end(), [&](const DrawingPath& e) {
      return text::Mbsicmp(e.Full, candidate.Full) == 0;
    });
    duplicates += in ? 1 : 0;
    return in;
  });
  if (duplicates > 0) {
    char box[96];
    std::snprintf(box, sizeof box, workset_texts::kAlreadyIn, duplicates);
    ShowBox(box);
  }
  // A malformed line counts as a key here, so numbers may skip one.
  std::vector<std::string> keys;
  std::size_t n = file.GetSectionKeys(name, keys);
  for (const DrawingPath& path : list) {
    file.WriteString(name, KeyOf(n + 1), path.Full + (path.readOnly ? ",1" : ",0"));
    ++n;
  }
  return list.size();
}

std::size_t WorksetStore::RewriteWorkset(ProfileFile& file, std::string_view name, std::vector<DrawingPath> list) {
  file.ClearSection(name);
  return AddFiles(file, name, list);
}

void WorksetStore::ListWorksetsForMenu(int& nextId, content::IdMap<DrawingPath>& list, bool placeholder,
                                       bool sortWorksets) {
  std::vector<std::string> names;
  {
    ProfileFile file(services_.files, GetWorksetsPath(), true);
    ListWorksets(file, names);
  }
  if (sortWorksets) {
    std::stable_sort(names.begin(), names.end(),
                     [](const std::string& a, const std::string& b) { return text::Mbsicoll(a, b) < 0; });
  }
  for (const std::string& name : names) {
    list.emplace(nextId++, DrawingPath(name, services_.files));
    list.emplace(nextId++, DrawingPath(workset_texts::kSelectMarker + name, services_.files));
  }
  if (placeholder && names.empty()) list.emplace(nextId++, DrawingPath(content::kNotFound, services_.files));
}

}  // namespace tavlet
