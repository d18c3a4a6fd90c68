// The sheet-set component of the simulated host over in-memory files, with the
// sample sheet set of the checkout and a resource folder beside it.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/com_error.h"
#include "sheetsets/sheet_set_dialog.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"
#include "text/codepage.h"

namespace tavlet::sheetsets {

using Lines = std::vector<std::string>;

// The checkout's samples/project.dst: two folders above this file, whose name is
// relative to the build folder, or above the folder the test runs in.
inline std::string SampleSheetSet() {
  std::string fromThisFile = __FILE__;
  fromThisFile.erase(fromThisFile.size() - std::string("tests/sheetsets/sheetset_fixture.h").size());
  for (const std::string& root : {fromThisFile, std::string(), std::string("../"), std::string("../../"),
                                  std::string("../../../")}) {
    std::ifstream in(root + "samples/project.dst", std::ios::binary);
    if (!in) continue;
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
  }
  ADD_FAILURE() << "samples/project.dst not found";
  return {};
}

inline constexpr const char kSample[] = "D:\\项目\\办公楼\\project.dst";
inline constexpr const char kResources[] = "D:\\项目\\办公楼\\资源";
inline constexpr const char kModule[] = "C:\\Module\\Tavlet.arx";
inline constexpr const char kSideIni[] = "C:\\Module\\Tavlet.ini";

struct SheetSetWorld {
  SheetSetWorld() {
    files.AddFile(kSample, SampleSheetSet());
    files.AddFile(std::string(kResources) + "\\标题栏.dwg", "");
    files.AddFile(std::string(kResources) + "\\notes.txt", "");
    files.AddFile(std::string(kResources) + "\\Std.DWT", "");
    files.AddFile(std::string(kResources) + "\\块\\门.dwg", "");
    files.AddFolder(std::string(kResources) + "\\空");
    Connect();
  }
  void Connect() {
    manager = host::PortPtr<port::SheetSetManager>();
    host.CreateSheetSetManager(manager.Receive());
  }
  SheetSetTreeServices Services() { return {manager.Get(), files, *host.Boxes(), kModule}; }
  Lines BoxTexts() const {
    Lines out;
    for (const sim::ShownBox& b : host.ShownBoxes()) out.push_back(b.text);
    return out;
  }
  // The first item whose text is `text`; 0 when none.
  static ui::TreeItem Find(const SheetSetTree& tree, const std::string& text) {
    ui::TreeItem found = ui::kNoItem;
    tree.Items().Walk([&](ui::TreeItem item) {
      if (found == ui::kNoItem && tree.Items().Node(item).text == text) found = item;
    });
    return found;
  }

  MemoryFileSystem files;
  sim::SimHost host{files};
  host::ScopedSession session{&host};
  host::PortPtr<port::SheetSetManager> manager;
};

}  // namespace tavlet::sheetsets
