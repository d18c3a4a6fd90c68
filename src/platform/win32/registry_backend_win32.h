// The settings backends of the Windows build: the user's registry hive, and the
// machine's colours, GUI font and folders for the settings defaults.
#pragma once

#include "settings/data_folder.h"
#include "settings/settings_store.h"
#include "settings/settings_table.h"

namespace tavlet {

// HKEY_CURRENT_USER through RegOpenKeyExA with KEY_READ | KEY_WRITE (0x2001F),
// falling back to RegCreateKeyExA; each call opens and closes its key.
class Win32Registry : public RegistryBackend {
 public:
  bool OpenOrCreateKey(std::string_view path) override;
  bool KeyExists(std::string_view path) override;
  bool QueryValue(std::string_view path, std::string_view name, RegValue& value) override;
  bool SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                std::string_view bytes) override;
  bool DeleteValue(std::string_view path, std::string_view name) override;
};

// GetSysColor, GetStockObject(17) and the host's command window width (given by the
// caller, who knows the window).
class Win32DisplayDefaults : public DisplayDefaults {
 public:
  explicit Win32DisplayDefaults(int commandWindowWidth = 0)
      : commandWindowWidth_(commandWindowWidth) {}
  std::uint32_t SysColor(int index) override;
  LogFontA DefaultGuiFont() override;
  int CommandWindowWidth() override { return commandWindowWidth_; }

 private:
  int commandWindowWidth_;
};

// SHGetFolderPathA looked up in shell32.dll, else shfolder.dll; the module's folder
// from GetModuleFileNameA of `module` (an HMODULE; null for the process's file);
// GetUserNameA.
class Win32UserEnvironment : public UserEnvironment {
 public:
  explicit Win32UserEnvironment(void* module = nullptr) : module_(module) {}
  bool AppDataFolder(std::string& folder) override;
  std::string ModuleFolder() override;
  bool UserName(std::string& name) override;

 private:
  void* module_;
};

}  // namespace tavlet
