// The per-user data folder and the worksets file's path, settled once per user.
#pragma once

#include <string>

#include "platform/file_system.h"
#include "settings/settings_table.h"

namespace tavlet {

// What the two decisions need from the machine. Win32: SHGetFolderPathA (shell32.dll,
// else shfolder.dll), GetModuleFileNameA of the module, GetUserNameA.
class UserEnvironment {
 public:
  virtual ~UserEnvironment() = default;
  // SHGetFolderPathA(CSIDL_APPDATA); false when the function can't be found or fails.
  virtual bool AppDataFolder(std::string& folder) = 0;
  // The folder of the module's own file, with a trailing separator.
  virtual std::string ModuleFolder() = 0;
  // GetUserNameA with a buffer of 256; false on failure.
  virtual bool UserName(std::string& name) = 0;
};

// App data + "\Morvane\Tavlet\" (created level by level), else the module's folder.
std::string DecideDataFolder(UserEnvironment& environment, FileSystem& files);

// The precedence of the worksets path; `stored` is "路径" of "工作集".
std::string DecideWorksetsPath(const std::string& stored, const std::string& dataFolder,
                               UserEnvironment& environment, FileSystem& files);

// For LoadBarSettings: computes the path with an empty stored value.
class WorksetsPathRule : public WorksetsPathSource {
 public:
  WorksetsPathRule(std::string dataFolder, UserEnvironment& environment, FileSystem& files)
      : dataFolder_(std::move(dataFolder)), environment_(environment), files_(files) {}
  std::string ComputeWorksetsPath() override;

 private:
  std::string dataFolder_;
  UserEnvironment& environment_;
  FileSystem& files_;
};

// Environment variables stand in for the Windows calls in native builds: APPDATA,
// else XDG_CONFIG_HOME, else HOME + "/.config"; USER, else USERNAME.
class VariablesUserEnvironment : public UserEnvironment {
 public:
  explicit VariablesUserEnvironment(std::string moduleFolder)
      : moduleFolder_(std::move(moduleFolder)) {}
  bool AppDataFolder(std::string& folder) override;
  std::string ModuleFolder() override { return moduleFolder_; }
  bool UserName(std::string& name) override;

 private:
  std::string moduleFolder_;
};

}  // namespace tavlet
