#include "settings/settings_store.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace tavlet {

SettingsStore::SettingsStore(RegistryBackend& backend, std::string root)
    : backend_(&backend), root_(std::move(root)) {}

std::string SettingsStore::KeyPath(std::string_view section) const {
  std::string path = root_;
  path += '\\';
  path += section;
  return path;
}

int SettingsStore::GetInt(std::string_view section, std::string_view key, int def) const {
  const std::string path = KeyPath(section);
  if (!backend_->OpenOrCreateKey(path)) return def;
  RegValue value;
  if (!backend_->QueryValue(path, key, value) || value.bytes.size() > 4) return def;
  // The query fills a buffer preset with the default and never looks at the type,
  // so a short value (a REG_SZ "ab") overlays only its own bytes.
  unsigned char buffer[4];
  const auto bits = static_cast<std::uint32_t>(def);
  for (int i = 0; i < 4; ++i) buffer[i] = static_cast<unsigned char>(bits >> (8 * i));
  std::memcpy(buffer, value.bytes.data(), value.bytes.size());
  std::uint32_t result = 0;
  for (int i = 3; i >= 0; --i) result = (result << 8) | buffer[i];
  return static_cast<int>(result);
}

double SettingsStore::GetDouble(std::string_view section, std::string_view key,
                                double def) const {
  const std::string text = GetString(section, key, "");
  if (text.empty()) return def;
  return std::strtod(text.c_str(), nullptr);
}

std::string SettingsStore::GetString(std::string_view section, std::string_view key,
                                     std::string_view def) const {
  const std::string path = KeyPath(section);
  if (!backend_->OpenOrCreateKey(path)) return std::string(def);
  RegValue value;
  if (!backend_->QueryValue(path, key, value)) return std::string(def);
  std::string text = value.bytes.substr(0, value.bytes.find('\0'));
  if (text.empty()) return std::string(def);
  return text;
}

bool SettingsStore::GetBinary(std::string_view section, std::string_view key, void* buffer,
                              std::size_t size) const {
  const std::string path = KeyPath(section);
  if (!backend_->OpenOrCreateKey(path)) return false;
  RegValue value;
  if (!backend_->QueryValue(path, key, value)) return false;
  if (value.type != kRegBinary || value.bytes.size() != size) return false;
  if (size != 0) std::memcpy(buffer, value.bytes.data(), size);
  return true;
}

bool SettingsStore::SetInt(std::string_view section, std::string_view key, int value) const {
  const auto bits = static_cast<std::uint32_t>(value);
  char bytes[4];
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<char>(bits >> (8 * i));
  return backend_->SetValue(KeyPath(section), key, kRegDword, std::string_view(bytes, 4));
}

bool SettingsStore::SetDouble(std::string_view section, std::string_view key,
                              double value) const {
  char text[64];
  std::snprintf(text, sizeof text, "%g", value);
  return SetString(section, key, text);
}

bool SettingsStore::SetString(std::string_view section, std::string_view key,
                              std::string_view value) const {
  std::string bytes(value);
  bytes += '\0';
  return backend_->SetValue(KeyPath(section), key, kRegSz, bytes);
}

bool SettingsStore::SetBinary(std::string_view section, std::string_view key, const void* data,
                              std::size_t size) const {
  return backend_->SetValue(KeyPath(section), key, kRegBinary,
                            std::string_view(static_cast<const char*>(data), size));
}

bool SettingsStore::SaveWindowPlacement(std::string_view section, std::string_view key,
                                        WindowPort& window) const {
  if (!window.IsWindow()) return false;
  ScreenRect rect;
  if (!window.GetWindowRect(rect)) return false;
  char text[128];
  std::snprintf(text, sizeof text, "%i:%i:%i:%i:%s", rect.left, rect.top, rect.right,
                rect.bottom, window.IsZoomed() ? "MAXIMIZED" : "NORMAL");
  return SetString(section, key, text);
}

bool SettingsStore::RestoreWindowPlacement(std::string_view section, std::string_view key,
                                           WindowPort& window) const {
  const std::string text = GetString(section, key, "");
  if (text.empty()) return false;
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t colon = text.find(':', start);
    fields.push_back(text.substr(start, colon - start));
    if (colon == std::string::npos) break;
    start = colon + 1;
  }
  // A value of any other shape leaves the window where it is, yet counts as restored.
  if (fields.size() == 5) {
    if (fields[4] == "MAXIMIZED") {
      window.ShowWindow(3);
    } else {
      const int left = std::atoi(fields[0].c_str());
      const int top = std::atoi(fields[1].c_str());
      const int right = std::atoi(fields[2].c_str());
      const int bottom = std::atoi(fields[3].c_str());
      window.SetWindowPos(left, top, right - left, bottom - top);
    }
  }
  return true;
}

bool SettingsStore::SaveFont(std::string_view section, std::string_view key,
                             const LogFontA& font) const {
  return SetBinary(section, key, &font, sizeof font);
}

bool SettingsStore::RestoreFont(std::string_view section, std::string_view key,
                                LogFontA& font) const {
  LogFontA read;
  if (!GetBinary(section, key, &read, sizeof read)) return false;
  font = read;
  return true;
}

std::string MakeSettingsRoot(std::string_view productPath, std::string_view releaseSuffix) {
  std::string root = "Software\\";
  root += productPath;
  if (!releaseSuffix.empty()) {
    root += '\\';
    root += releaseSuffix;
  }
  return root;
}

std::string DefaultSettingsRoot() { return MakeSettingsRoot("Morvane\\Tavlet", "2.0 - R16"); }

}  // namespace tavlet
