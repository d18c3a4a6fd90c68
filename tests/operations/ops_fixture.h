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
  void WriteViewLayout(const std::string& view, const std::string& layout,
                       port::Document) override {
    written.push_back(view + " > " + layout);
  }
  Lines written;
};

// A drawing description at a ".dwg" path, so that the open treats it as a drawing.
// Descriptions are UTF-8; the texts here are code page 936.
inline std::string Drawing(const std::string& path, const std::string& extra = "") {
  return text::ToUtf8("tavlet-drawing 1\npath \"" + path + "\"\n" + extra +
                      "picture 4 3 background 0x000000\n");
}

inline std::string PathOf(std::size_t n) { return "C:\\dwg\\" + std::to_string(n) + ".dwg"; }

// One simulated session with everything the operations use; a test that wants
// several runs from the same start makes one per run.
struct Environment {
  Environment() {
    sim::AddSimHostWindows(windows, host);
    windows.AddWindow(bar, "MvTavlet", host.WindowNamed("frame"), {0, 0, 100, 700});
    windows.ClearLog();
  }
  OperationServices Services() {
    return {host, host::GetAcadApplication(host), windows, store, files, recent, shell, nullptr,
            bar};
  }

  port::Document Open(const std::string& path, const std::string& extra = "") {
    files.AddFile(path, Drawing(path, extra));
    port::Document doc = host.OpenDrawing(path);
    EXPECT_NE(doc, nullptr) << host.LastOpenError();
    return doc;
  }
  // Opens C:\dwg\1.dwg ... in order; `extras[i]` goes to drawing i+1.
  std::vector<port::Document> OpenMany(const Lines& extras) {
    std::vector<port::Document> docs;
    for (std::size_t i = 0; i < extras.size(); ++i) docs.push_back(Open(PathOf(i + 1), extras[i]));
    return docs;
  }
  host::AcadDocumentPtr Object(port::Document doc) {
    port::Database db = nullptr;
    host.Documents()->DatabaseOf(doc, &db);
    return host::DocumentObjectOf(host, db);
  }
  long Dbmod(port::Document doc) const { return host.Find(doc)->dbmod; }
  bool IsOpen(port::Document doc) const { return !host.Find(doc)->closed; }
  Lines BoxTexts() const {
    Lines out;
    for (const sim::ShownBox& b : host.ShownBoxes()) out.push_back(b.text);
    return out;
  }
  // Which of `docs` are still open, as "1", "2", ... in order.
  Lines StillOpen(const std::vector<port::Document>& docs) const {
    Lines out;
    for (std::size_t i = 0; i < docs.size(); ++i)
      if (IsOpen(docs[i])) out.push_back(std::to_string(i + 1));
    return out;
  }
  // "DRAWING LAYOUT bg BACKGROUNDPLOT" for every plot, in order.
  Lines PlotsMade() const {
    Lines out;
    for (const sim::SimHost::PlotRecord& p : host.Plots())
      out.push_back(p.drawing + " " + p.layout + " bg " + std::to_string(p.backgroundPlot));
    return out;
  }
  long BackgroundPlot() {
    port::Value v;
    host.EditorService()->GetVariable("BACKGROUNDPLOT", &v, nullptr);
    return v.integer;
  }
  bool FrameVisible() { return windows.Find(host.WindowNamed("frame"))->visible; }
  Lines TranscriptLines() const {
    Lines out;
    std::size_t start = 0;
    const std::string& t = host.Transcript();
    while (start < t.size()) {
      std::size_t end = t.find('\n', start);
      if (end == std::string::npos) end = t.size();
      out.push_back(t.substr(start, end - start));
      start = end + 1;
    }
    return out;
  }

  MemoryFileSystem files;
  sim::SimHost host{files};
  host::ScopedSession session{&host};
  sim::FakeWindowSystem windows;
  MemoryRegistry registry;
  SettingsStore store{registry, DefaultSettingsRoot()};
  RecentFileList recent{store, files};
  sim::SimShell shell;
  port::Window bar = reinterpret_cast<port::Window>(0x7001);
};

class OpsFixture : public ::testing::Test, public Environment {
 protected:
  // Made at first use, so that a test may change settings before.
  DrawingOperations& Ops() {
    if (!ops_) ops_ = std::make_unique<DrawingOperations>(Services());
    return *ops_;
  }

 private:
  std::unique_ptr<DrawingOperations> ops_;
};

}  // namespace tavlet::operations
