// The drawing operations over the simulated host, with in-memory files and
// registry, the fake window system and the recording shell.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/automation.h"
#include "operations/drawing_operations.h"
#include "settings/memory_registry.h"
#include "settings/settings_table.h"
#include "sim/fake_window_system.h"
#include "sim/memory_file_system.h"
#include "sim/sim_host.h"
#include "sim/sim_shell.h"
#include "text/codepage.h"

namespace tavlet::operations {

using Lines = std::vector<std::string>;

class RecordingLayouts final : public ViewLayoutWriter {
 public:
  void WriteViewLayout(const std::string& view, const std::string& layout, port::Document) override {
    written.push_back(view + " > " + layout);
  }
  Lines written;
};

// A drawing description at a ".dwg" path, so that the open treats it as a drawing.
// Descriptions are UTF-8; the texts here are code page 936.
inline std::string Drawing(const std::string& path, const std::string& extra = "") {
  return text::ToUtf8("tavlet-drawing 1\npath \"" + path + "\"\n" + extra + "picture 4 3 background 0x000000\n");
}

class OpsFixture : public ::testing::Test {
 protected:
  OpsFixture() { sim::AddSimHostWindows(windows, host); }

  // Made at first use, so that a test may change settings before.
  DrawingOperations& Ops() {
    if (!ops_) {
      OperationServices services{host,  host::GetAcadApplication(host), windows, store, files, recent, shell,
                                 &layouts, bar};
      ops_ = std::make_unique<DrawingOperations>(services);
    }
    return *ops_;
  }

  port::Document Open(const std::string& path, const std::string& extra = "") {
    files.AddFile(path, Drawing(path, extra));
    port::Document doc = host.OpenDrawing(path);
    EXPECT_NE(doc, nullptr) << host.LastOpenError();
    return doc;
  }
  // Opens drawings C:\dwg\1.dwg ... in order; `extras[i]` goes to drawing i+1.
  std::vector<port::Document> OpenMany(const Lines& extras) {
    std::vector<port::Document> docs;
    for (std::size_t i = 0; i < extras.size(); ++i) docs.push_back(Open(PathOf(i + 1), extras[i]));
    return docs;
  }
  static std::string PathOf(std::size_t n) { return "C:\\dwg\\" + std::to_string(n) + ".dwg"; }

  host::AcadDocumentPtr Object(port::Document doc) {
    port::Database db = nullptr;
    host.Documents()->DatabaseOf(doc, &db);
    return host::DocumentObjectOf(host, db);
  }
  long Dbmod(port::Document doc) { return host.Find(doc)->dbmod; }
  bool IsOpen(port::Document doc) { return !host.Find(doc)->closed; }
  const std::vector<std::string>& Actions(port::Document doc) { return host.Find(doc)->actions; }

  Lines BoxTexts() const {
    Lines out;
    for (const sim::ShownBox& b : host.ShownBoxes()) out.push_back(b.text);
    return out;
  }
  std::string FileNameOf(port::Document doc) { return host.Find(doc)->fileName; }

  MemoryFileSystem files;
  sim::SimHost host{files};
  sim::FakeWindowSystem windows;
  MemoryRegistry registry;
  SettingsStore store{registry, DefaultSettingsRoot()};
  RecentFileList recent{store, files};
  sim::SimShell shell;
  RecordingLayouts layouts;
  host::ScopedSession session{&host};
  port::Window bar = reinterpret_cast<port::Window>(0x7001);

 private:
  std::unique_ptr<DrawingOperations> ops_;
};

}  // namespace tavlet::operations
