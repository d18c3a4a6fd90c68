// The settings store: one registry branch below HKEY_CURRENT_USER, addressed by
// section and key. It keeps no cache: every call opens (or creates) the key, does
// one value operation and lets the key go, so a read leaves the key behind just as
// the registry calls it stands on do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavlet {

// Registry value types, with the platform's numbers so that the Win32 backend can
// pass them through unchanged. Any other number may come back from a query.
inline constexpr std::uint32_t kRegSz = 1;
inline constexpr std::uint32_t kRegBinary = 3;
inline constexpr std::uint32_t kRegDword = 4;

struct RegValue {
  std::uint32_t type = 0;
  std::string bytes;  // raw data; a REG_SZ includes its terminating NUL
};

// Storage of keys and values below HKEY_CURRENT_USER. Paths use "\" between levels;
// empty levels (a trailing "\") are ignored, and names compare ignoring ASCII case,
// as the registry does. Implementations: the Win32 registry, a file-backed hive,
// an in-memory tree and a wrapper that fails on demand (settings/memory_registry.h).
class RegistryBackend {
 public:
  virtual ~RegistryBackend() = default;

  // Opens the key, creating it and every missing level when it isn't there.
  virtual bool OpenOrCreateKey(std::string_view path) = 0;
  virtual bool KeyExists(std::string_view path) = 0;
  // False when the key or the value is missing or cannot be read.
  virtual bool QueryValue(std::string_view path, std::string_view name, RegValue& value) = 0;
  // Creates the key when needed.
  virtual bool SetValue(std::string_view path, std::string_view name, std::uint32_t type,
                        std::string_view bytes) = 0;
  virtual bool DeleteValue(std::string_view path, std::string_view name) = 0;
};

// The bytes of a Windows LOGFONTA, field for field, so that the 60 bytes stored in
// the registry are exactly the platform's.
struct LogFontA {
  std::int32_t lfHeight = 0;
  std::int32_t lfWidth = 0;
  std::int32_t lfEscapement = 0;
  std::int32_t lfOrientation = 0;
  std::int32_t lfWeight = 0;
  std::uint8_t lfItalic = 0;
  std::uint8_t lfUnderline = 0;
  std::uint8_t lfStrikeOut = 0;
  std::uint8_t lfCharSet = 0;
  std::uint8_t lfOutPrecision = 0;
  std::uint8_t lfClipPrecision = 0;
  std::uint8_t lfQuality = 0;
  std::uint8_t lfPitchAndFamily = 0;
  char lfFaceName[32] = {};

  friend bool operator==(const LogFontA&, const LogFontA&) = default;
};
static_assert(sizeof(LogFontA) == 60, "LOGFONTA is 60 bytes");

struct ScreenRect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

// The few window calls a placement needs, for one window. The Win32 side wraps an
// HWND; tests record the calls.
class WindowPort {
 public:
  virtual ~WindowPort() = default;
  virtual bool IsWindow() = 0;
  virtual bool GetWindowRect(ScreenRect& rect) = 0;
  virtual bool IsZoomed() = 0;
  virtual void ShowWindow(int command) = 0;
  // SetWindowPos with SWP_NOZORDER: moves and sizes, keeps the Z order.
  virtual void SetWindowPos(int x, int y, int width, int height) = 0;
};

class SettingsStore {
 public:
  // `root` is the path below HKEY_CURRENT_USER, without leading or trailing "\".
  SettingsStore(RegistryBackend& backend, std::string root);

  const std::string& Root() const { return root_; }
  RegistryBackend& Backend() const { return *backend_; }
  // root + "\" + section: the empty section ends in "\" and names the root key.
  std::string KeyPath(std::string_view section) const;

  int GetInt(std::string_view section, std::string_view key, int def) const;
  double GetDouble(std::string_view section, std::string_view key, double def) const;
  std::string GetString(std::string_view section, std::string_view key,
                        std::string_view def) const;
  // Fills `buffer` only from a REG_BINARY of exactly `size` bytes.
  bool GetBinary(std::string_view section, std::string_view key, void* buffer,
                 std::size_t size) const;

  bool SetInt(std::string_view section, std::string_view key, int value) const;
  bool SetDouble(std::string_view section, std::string_view key, double value) const;
  bool SetString(std::string_view section, std::string_view key, std::string_view value) const;
  bool SetBinary(std::string_view section, std::string_view key, const void* data,
                 std::size_t size) const;

  // "%i:%i:%i:%i:%s" with "MAXIMIZED" or "NORMAL"; nothing when `window` isn't one.
  bool SaveWindowPlacement(std::string_view section, std::string_view key,
                           WindowPort& window) const;
  // True whenever a non-empty value was there, even one of the wrong shape.
  bool RestoreWindowPlacement(std::string_view section, std::string_view key,
                              WindowPort& window) const;

  bool SaveFont(std::string_view section, std::string_view key, const LogFontA& font) const;
  // True when the 60 bytes were there; `font` is untouched otherwise, and the caller
  // falls back to the stock GUI font (ReadFont in settings/settings_table.h does).
  bool RestoreFont(std::string_view section, std::string_view key, LogFontA& font) const;

 private:
  RegistryBackend* backend_;
  std::string root_;
};

// "Software\" + product path, then "\" + release suffix when the suffix isn't empty.
std::string MakeSettingsRoot(std::string_view productPath, std::string_view releaseSuffix);
// Software\Morvane\Tavlet\2.0 - R16
std::string DefaultSettingsRoot();

}  // namespace tavlet
