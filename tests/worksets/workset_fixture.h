// A workset store over in-memory files and registry, the simulated host's boxes,
// and the drawing operations' real OpenFile.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "operations/ops_fixture.h"
#include "settings/settings_table.h"
#include "worksets/workset_store.h"

namespace tavlet {

using Lines = std::vector<std::string>;

class FixedUser final : public UserEnvironment {
 public:
  bool AppDataFolder(std::string& folder) override {
    folder = "C:\\AppData";
    return true;
  }
  std::string ModuleFolder() override { return "C:\\Module\\"; }
  bool UserName(std::string& name) override {
    name = user;
    return hasUser;
  }
  std::string user = "mei";
  bool hasUser = true;
};

class RecordingSelector final : public WorksetFileSelector {
 public:
  bool SelectFiles(const std::string& path, const std::string& name, std::vector<DrawingPath>& out) override {
    asked.push_back(path + "|" + name);
    out = ticked;
    return answer;
  }
  Lines asked;
  std::vector<DrawingPath> ticked;
  bool answer = true;
};

inline constexpr const char kDataFolder[] = "C:\\AppData\\Morvane\\Tavlet\\";
inline constexpr const char kUserFile[] = "C:\\AppData\\Morvane\\Tavlet\\mei.worksets";

struct WorksetWorld : operations::Environment {
  WorksetWorld() { files.AddFolder(kDataFolder); }

  // Opens go to the real operations unless a test records them.
  WorksetServices Services(bool recordOpens = false) {
    OpenFileFunction open;
    if (recordOpens) {
      open = [this](const DrawingPath& p, bool complain, bool restore) {
        opened.push_back(p.Full + (p.readOnly ? " ro" : " rw") + (complain ? " c" : "") + (restore ? " r" : ""));
      };
    } else {
      open = [this](const DrawingPath& p, bool complain, bool restore) { Ops().OpenFile(p, complain, restore); };
    }
    return {files, store, *host.Boxes(), user, kDataFolder, open, &selector};
  }
  operations::DrawingOperations& Ops() {
    if (!ops) ops = std::make_unique<operations::DrawingOperations>(Environment::Services());
    return *ops;
  }
  std::string FileText(const std::string& path = kUserFile) const { return files.Contents(path).value_or("<none>"); }
  void UseFile(const std::string& bytes, const std::string& path = kUserFile) {
    files.AddFile(path, bytes);
    WriteString(store, keys::WorksetsPath, path);
  }

  FixedUser user;
  RecordingSelector selector;
  Lines opened;
  std::unique_ptr<operations::DrawingOperations> ops;
};

}  // namespace tavlet
