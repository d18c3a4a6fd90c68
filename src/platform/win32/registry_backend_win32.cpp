#include "platform/win32/registry_backend_win32.h"

#include <windows.h>

#include <cstring>
#include <string>

#include "platform/win32/handles.h"

namespace tavlet {
namespace {

constexpr REGSAM kReadWrite = 0x2001F;  // KEY_READ | KEY_WRITE

// Not every build of the platform treats a trailing "\" alike; the empty section's
// path ends in one, so it goes.
std::string KeyName(std::string_view path) {
  std::string name(path);
  while (!name.empty() && name.back() == '\\') name.pop_back();
  return name;
}

bool OpenKey(std::string_view path, win32::RegKey& key, bool create) {
  const std::string name = KeyName(path);
  if (RegOpenKeyExA(HKEY_CURRENT_USER, name.c_str(), 0, kReadWrite, key.Out()) == ERROR_SUCCESS)
    return true;
  if (!create) return false;
  DWORD disposition = 0;
  return RegCreateKeyExA(HKEY_CURRENT_USER, name.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                         kReadWrite, nullptr, key.Out(), &disposition) == ERROR_SUCCESS;
}

}  // namespace

bool Win32Registry::OpenOrCreateKey(std::string_view path) {
  win32::RegKey key;
  return OpenKey(path, key, true);
}

bool Win32Registry::KeyExists(std::string_view path) {
  win32::RegKey key;
  const std::string name = KeyName(path);
  return RegOpenKeyExA(HKEY_CURRENT_USER, name.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS;
}

bool Win32Registry::QueryValue(std::string_view path, std::string_view name, RegValue& value) {
  win32::RegKey key;
  if (!OpenKey(path, key, true)) return false;
  const std::string valueName(name);
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExA(key.get(), valueName.c_str(), nullptr, &type, nullptr, &size) !=
      ERROR_SUCCESS)
    return false;
  std::string bytes(size, '\0');
  if (RegQueryValueExA(key.get(), valueName.c_str(), nullptr, &type,
                       reinterpret_cast<BYTE*>(bytes.data()), &size) != ERROR_SUCCESS)
    return false;
  bytes.resize(size);
  value.type = type;
  value.bytes = std::move(bytes);
  return true;
}

bool Win32Registry::SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                             std::string_view bytes) {
  win32::RegKey key;
  if (!OpenKey(path, key, true)) return false;
  const std::string valueName(name);
  return RegSetValueExA(key.get(), valueName.c_str(), 0, type,
                        reinterpret_cast<const BYTE*>(bytes.data()),
                        static_cast<DWORD>(bytes.size())) == ERROR_SUCCESS;
}

bool Win32Registry::DeleteValue(std::string_view path, std::string_view name) {
  win32::RegKey key;
  if (!OpenKey(path, key, false)) return false;
  const std::string valueName(name);
  return RegDeleteValueA(key.get(), valueName.c_str()) == ERROR_SUCCESS;
}

std::uint32_t Win32DisplayDefaults::SysColor(int index) { return GetSysColor(index); }

LogFontA Win32DisplayDefaults::DefaultGuiFont() {
  LogFontA font;
  LOGFONTA platform{};
  static_assert(sizeof platform == sizeof font);
  if (GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof platform, &platform) ==
      sizeof platform)
    std::memcpy(static_cast<void*>(&font), &platform, sizeof font);
  return font;
}

bool Win32UserEnvironment::AppDataFolder(std::string& folder) {
  using GetFolderPath = HRESULT(WINAPI*)(HWND, int, HANDLE, DWORD, LPSTR);
  const auto lookUp = [](const win32::Module& library) -> GetFolderPath {
    if (!library.valid()) return nullptr;
    return reinterpret_cast<GetFolderPath>(
        reinterpret_cast<void*>(GetProcAddress(library.get(), "SHGetFolderPathA")));
  };
  win32::Module library(LoadLibraryA("shell32.dll"));
  GetFolderPath function = lookUp(library);
  if (!function) {
    library.Close();
    library = win32::Module(LoadLibraryA("shfolder.dll"));
    function = lookUp(library);
  }
  if (!function) return false;
  char path[MAX_PATH] = {};
  if (FAILED(function(nullptr, 26 /* CSIDL_APPDATA */, nullptr, 0, path))) return false;
  folder = path;
  return true;
}

std::string Win32UserEnvironment::ModuleFolder() {
  char path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameA(static_cast<HMODULE>(module_), path, MAX_PATH);
  std::string folder(path, length);
  // Walk by character: a trail byte may be 0x5C.
  std::size_t last = std::string::npos;
  for (std::size_t i = 0; i < folder.size(); ++i) {
    if (IsDBCSLeadByte(static_cast<BYTE>(folder[i])) && i + 1 < folder.size()) {
      ++i;
      continue;
    }
    if (folder[i] == '\\' || folder[i] == '/') last = i;
  }
  return last == std::string::npos ? std::string() : folder.substr(0, last + 1);
}

bool Win32UserEnvironment::UserName(std::string& name) {
  char buffer[256] = {};
  DWORD size = sizeof buffer;
  if (!GetUserNameA(buffer, &size)) return false;
  name = buffer;
  return true;
}

}  // namespace tavlet
