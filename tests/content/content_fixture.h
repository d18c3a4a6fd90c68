// A simulated drawing for the content tests: one description opened in its own
// host, the lists read back as UTF-8 for readable expectations.
#pragma once

#include <string>
#include <vector>

#include "content/id_map.h"
#include "content/views.h"
#include "operations/drawing_path.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"
#include "text/codepage.h"

namespace tavlet::content {

// Description files are UTF-8, while literals here are code page 936.
inline std::string Utf8(const char8_t* text) { return reinterpret_cast<const char*>(text); }

struct SimDrawing {
  explicit SimDrawing(const std::string& bodyUtf8) : host(files) {
    doc = host.OpenDescription("tavlet-drawing 1\npath \"C:\\dwg\\a.dwg\"\n" + bodyUtf8 +
                                   "picture 4 3 background 0x000000\n",
                               "a.tdd");
    if (doc) host.Documents()->DatabaseOf(doc, &db);
  }
  port::DrawingDatabase& Database() { return *host.Databases(); }
  int OpenObjects() { return host.OpenDatabaseObjects(); }

  MemoryFileSystem files;
  sim::SimHost host;
  port::Document doc = nullptr;
  port::Database db = nullptr;
};

inline std::vector<std::string> Fulls(const IdMap<DrawingPath>& map) {
  std::vector<std::string> out;
  for (const auto& [id, path] : map) out.push_back(text::ToUtf8(path.Full));
  return out;
}

inline std::vector<std::string> Texts(const IdMap<std::string>& map) {
  std::vector<std::string> out;
  for (const auto& [id, text] : map) out.push_back(text::ToUtf8(text));
  return out;
}

inline std::vector<int> Ids(const auto& map) {
  std::vector<int> out;
  for (const auto& entry : map) out.push_back(entry.first);
  return out;
}

inline const std::string kNone = Utf8(u8"没有找到");

// A chooser that answers from a script and remembers what it was shown.
class ScriptedChooser final : public LayoutChooser {
 public:
  std::vector<std::string> Choose(const std::string& title,
                                  const std::vector<std::string>& names) override {
    titles.push_back(text::ToUtf8(title));
    shown.push_back(names);
    return answer;
  }
  std::vector<std::string> answer;
  std::vector<std::string> titles;
  std::vector<std::vector<std::string>> shown;
};

}  // namespace tavlet::content
