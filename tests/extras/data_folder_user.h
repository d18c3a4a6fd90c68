// The user whose data folder the additions' files go to in these tests.
#pragma once

#include <string>

#include "host/module.h"

namespace tavlet::host::extras_test {

inline const std::string kData = "C:\\Users\\me\\AppData\\Roaming\\Morvane\\Tavlet\\";

class FixedUser final : public UserEnvironment {
 public:
  bool AppDataFolder(std::string& folder) override {
    folder = "C:\\Users\\me\\AppData\\Roaming";
    return true;
  }
  std::string ModuleFolder() override { return "C:\\Program Files\\Morvane\\"; }
  bool UserName(std::string& name) override {
    name = "me";
    return true;
  }
};

}  // namespace tavlet::host::extras_test
