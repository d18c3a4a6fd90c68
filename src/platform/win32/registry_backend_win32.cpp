#include "platform/win32/registry_backend_win32.h"

#include <windows.h>

#include <cstring>
#include <string>

namespace tavlet {
namespace {

constexpr REGSAM kReadWrite = 0x2001F;  // KEY_READ | KEY_WRITE

class Key {
 public:
  Key() = default;
  ~Key() {
    if (handle_) RegCloseKey(handle_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY* Out() { return &handle_; }
  HKEY Get() const { return handle_; }

 private:
  HKEY handle_ = nullptr;
};

// Not every build of the platform treats a trailing "\" alike; the empty section's
// path ends in one, so it goes.
std::string KeyName(std::string_view path) {
  std::string name(path);
  while (!name.empty() && name.back() == '\\') name.pop_back();
  return name;
}

bool OpenKey(std::string_view path, Key& key, bool create) {
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
  Key key;
  return OpenKey(path, key, true);
}

bool Win32Registry::KeyExists(std::string_view path) {
  Key key;
  const std::string name = KeyName(path);
  return RegOpenKeyExA(HKEY_CURRENT_USER, name.c_str(), 0, KEY_READ, key.Out()) == ERROR_SUCCESS;
}

bool Win32Registry::QueryValue(std::string_view path, std::string_view name, RegValue& value) {
  Key key;
  if (!OpenKey(path, key, true)) return false;
  const std::string valueName(name);
  DWORD type = 0;
  DWORD size = 0;
  if (RegQueryValueExA(key.Get(), valueName.c_str(), nullptr, &type, nullptr, &size) !=
      ERROR_SUCCESS)
    return false;
  std::string bytes(size, '\0');
  if (RegQueryValueExA(key.Get(), valueName.c_str(), nullptr, &type,
                       reinterpret_cast<BYTE*>(bytes.data()), &size) != ERROR_SUCCESS)
    return false;
  bytes.resize(size);
  value.type = type;
  value.bytes = std::move(bytes);
  return true;
}

bool Win32Registry::SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                             std::string_view bytes) {
  Key key;
  if (!OpenKey(path, key, true)) return false;
  const std::string valueName(name);
  return RegSetValueExA(key.Get(), valueName.c_str(), 0, type,
                        reinterpret_cast<const BYTE*>(bytes.data()),
                        static_cast<DWORD>(bytes.size())) == ERROR_SUCCESS;
}

bool Win32Registry::DeleteValue(std::string_view path, std::string_view name) {
  Key key;
  if (!OpenKey(path, key, false)) return false;
  const std::string valueName(name);
  return RegDeleteValueA(key.Get(), valueName.c_str()) == ERROR_SUCCESS;
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
  GetFolderPath function = nullptr;
  HMODULE library = LoadLibraryA("shell32.dll");
  if (library)
    function = reinterpret_cast<GetFolderPath>(
        reinterpret_cast<void*>(GetProcAddress(library, "SHGetFolderPathA")));
  if (!function) {
    if (library) FreeLibrary(library);
    library = LoadLibraryA("shfolder.dll");
    if (library)
      function = reinterpret_cast<GetFolderPath>(
          reinterpret_cast<void*>(GetProcAddress(library, "SHGetFolderPathA")));
  }
  bool found = false;
  if (function) {
    char path[MAX_PATH] = {};
    if (SUCCEEDED(function(nullptr, 26 /* CSIDL_APPDATA */, nullptr, 0, path))) {
      folder = path;
      found = true;
    }
  }
  if (library) FreeLibrary(library);
  return found;
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
