#include "settings/data_folder.h"

#include <cstdlib>

namespace tavlet {
namespace {

bool EndsWithSeparator(const std::string& path) {
  return !path.empty() && (path.back() == '\\' || path.back() == '/');
}

}  // namespace

std::string DecideDataFolder(UserEnvironment& environment, FileSystem& files) {
  std::string appData;
  if (environment.AppDataFolder(appData)) {
    std::string folder = appData;
    if (!EndsWithSeparator(folder)) folder += '\\';
    folder += "Morvane\\Tavlet\\";
    files.CreateFolders(folder);
    return folder;
  }
  return environment.ModuleFolder();
}

std::string DecideWorksetsPath(const std::string& stored, const std::string& dataFolder,
                               UserEnvironment& environment, FileSystem& files) {
  if (!stored.empty()) return stored;
  const std::string moduleFolder = environment.ModuleFolder();
  const std::string company = moduleFolder + "Company.worksets";
  if (files.Stat(company).exists) return company;
  std::string user;
  if (!environment.UserName(user)) return company;
  const std::string besideModule = moduleFolder + user + ".worksets";
  if (files.Stat(besideModule).exists) return besideModule;
  return dataFolder + user + ".worksets";
}

std::string WorksetsPathRule::ComputeWorksetsPath() {
  return DecideWorksetsPath("", dataFolder_, environment_, files_);
}

bool VariablesUserEnvironment::AppDataFolder(std::string& folder) {
  if (const char* v = std::getenv("APPDATA"); v && *v) {
    folder = v;
    return true;
  }
  if (const char* v = std::getenv("XDG_CONFIG_HOME"); v && *v) {
    folder = v;
    return true;
  }
  if (const char* v = std::getenv("HOME"); v && *v) {
    folder = std::string(v) + "/.config";
    return true;
  }
  return false;
}

bool VariablesUserEnvironment::UserName(std::string& name) {
  for (const char* variable : {"USER", "USERNAME", "LOGNAME"}) {
    if (const char* v = std::getenv(variable); v && *v) {
      name = v;
      return true;
    }
  }
  return false;
}

}  // namespace tavlet
