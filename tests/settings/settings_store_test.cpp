#include "settings/settings_store.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "settings/memory_registry.h"

namespace tavlet {
namespace {

constexpr const char* kRoot = "Software\\Morvane\\Tavlet\\2.0 - R16";

std::string Bytes(std::initializer_list<int> list) {
  std::string out;
  for (int b : list) out += static_cast<char>(b);
  return out;
}

class RecordingWindow : public WindowPort {
 public:
  bool isWindow = true;
  bool zoomed = false;
  ScreenRect rect{10, 20, 310, 120};
  std::vector<std::string> calls;

  bool IsWindow() override { return isWindow; }
  bool GetWindowRect(ScreenRect& r) override {
    r = rect;
    return true;
  }
  bool IsZoomed() override { return zoomed; }
  void ShowWindow(int command) override { calls.push_back("show " + std::to_string(command)); }
  void SetWindowPos(int x, int y, int w, int h) override {
    calls.push_back("pos " + std::to_string(x) + " " + std::to_string(y) + " " + std::to_string(w) + " " +
                    std::to_string(h));
  }
};

class SettingsStoreTest : public ::testing::Test {
 protected:
  // The root key's path as the store writes it: with a backslash for the "" section.
  const std::string top = std::string(kRoot) + "\\";
  MemoryRegistry registry;
  SettingsStore store{registry, kRoot};
};

TEST_F(SettingsStoreTest, RootAndKeyPaths) {
  EXPECT_EQ(DefaultSettingsRoot(), kRoot);
  EXPECT_EQ(MakeSettingsRoot("Morvane\\Tavlet", ""), "Software\\Morvane\\Tavlet");
  EXPECT_EQ(store.KeyPath(""), top);
  EXPECT_EQ(store.KeyPath("Colors"), top + "Colors");
  store.SetInt("colors", "background", 5);
  EXPECT_EQ(SettingsStore(registry, "SOFTWARE\\MORVANE\\TAVLET\\2.0 - r16").GetInt("COLORS", "BackGround", 0), 5);
}

// GetInt fills a four-byte buffer preset with the default and never looks at the type;
// GetString cuts at the first NUL; GetBinary wants the exact size and binary type.
TEST_F(SettingsStoreTest, StoredValuesAreReadByTheRawRules) {
  const struct {
    const char* what;
    std::uint32_t type;
    std::string bytes;
    int def, expected;
  } ints[] = {
      {"dword", kRegDword, Bytes({0x2C, 0x01, 0, 0}), 7, 300},
      {"negative dword", kRegDword, Bytes({0xFF, 0xFF, 0xFF, 0xFF}), 7, -1},
      {"sz of two characters overlays three bytes", kRegSz, std::string("ab\0", 3), 0x11223344, 0x11006261},
      {"sz of three characters fills the buffer", kRegSz, std::string("abc\0", 4), 5, 0x00636261},
      {"sz of four characters is too long", kRegSz, std::string("abcd\0", 5), 5, 5},
      {"binary of one byte", kRegBinary, Bytes({0x7F}), 0x100, 0x17F},
      {"empty value leaves the default", kRegBinary, "", 42, 42},
      {"eight-byte value gives the default", 11, std::string(8, '\1'), 9, 9},
  };
  for (const auto& c : ints) {
    registry.SetValue(top, "V", c.type, c.bytes);
    EXPECT_EQ(store.GetInt("", "V", c.def), c.expected) << c.what;
  }
  const struct {
    std::uint32_t type;
    std::string bytes, expected;
  } strings[] = {
      {kRegSz, std::string("abc\0def\0", 8), "abc"}, {kRegSz, std::string("\0", 1), "dflt"},
      {kRegSz, "", "dflt"},                          {kRegSz, "no terminator", "no terminator"},
      {kRegDword, Bytes({0x41, 0, 0, 0}), "A"},      {kRegSz, std::string("路径\0", 5), "路径"},
  };
  for (const auto& c : strings) {
    registry.SetValue(top, "V", c.type, c.bytes);
    EXPECT_EQ(store.GetString("", "V", "dflt"), c.expected);
  }
  EXPECT_EQ(store.GetString("", "missing", "_.QSAVE\n"), "_.QSAVE\n");
  const struct {
    std::uint32_t type;
    std::string bytes;
    bool ok;
  } binaries[] = {{kRegBinary, "1234", true}, {kRegBinary, "123", false}, {kRegBinary, "12345", false},
                  {kRegSz, "1234", false},    {kRegDword, "1234", false}};
  for (const auto& c : binaries) {
    registry.SetValue(top, "V", c.type, c.bytes);
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(store.GetBinary("", "V", buffer, 4), c.ok) << c.bytes;
    EXPECT_EQ(std::string(buffer, 4), c.ok ? "1234" : "xxxx");
  }
}

TEST_F(SettingsStoreTest, ValuesAreStoredInTheirRegistryFormsAndRealsReadWithStrtod) {
  ASSERT_TRUE(store.SetInt("", "I", 300) && store.SetString("", "S", "_.QSAVE\n") && store.SetDouble("", "D", 2.5) &&
              store.SetDouble("", "E", 1e20));
  const struct {
    const char* name;
    std::uint32_t type;
    std::string bytes;
  } stored[] = {{"I", kRegDword, Bytes({0x2C, 0x01, 0, 0})},
                {"S", kRegSz, std::string("_.QSAVE\n\0", 9)},
                {"D", kRegSz, std::string("2.5\0", 4)},
                {"E", kRegSz, std::string("1e+20\0", 6)}};
  for (const auto& c : stored) {
    RegValue v;
    ASSERT_TRUE(registry.QueryValue(top, c.name, v)) << c.name;
    EXPECT_EQ(v.type, c.type) << c.name;
    EXPECT_EQ(v.bytes, c.bytes) << c.name;
  }
  const std::pair<const char*, double> reals[] = {{"2.5", 2.5}, {"-0.25", -0.25}, {"1e3", 1000},
                                                  {"abc", 0},   {"  7x", 7},      {"", 9.5}};
  for (auto [text, expected] : reals) {
    store.SetString("BlackBack", "Gamma", text);
    EXPECT_DOUBLE_EQ(store.GetDouble("BlackBack", "Gamma", 9.5), expected) << text;
  }
}

TEST_F(SettingsStoreTest, RestoreWindowPlacementFollowsTheFiveFieldRule) {
  const struct {
    const char* stored;  // nullptr: nothing stored
    bool restored;
    std::vector<std::string> calls;
  } cases[] = {
      {nullptr, false, {}},
      {"", false, {}},
      {"10:20:310:120:NORMAL", true, {"pos 10 20 300 100"}},
      {"10:20:310:120:MAXIMIZED", true, {"show 3"}},
      {"10:20:310:120:maximized", true, {"pos 10 20 300 100"}},
      {"1:2:3:4", true, {}},
      {"1:2:3:4:NORMAL:x", true, {}},
      {"-5:x:7:9z:N", true, {"pos -5 0 12 9"}},
      {"1::3:4:NORMAL", true, {"pos 1 0 2 4"}},
      {"-10:-20:30:40:zoom", true, {"pos -10 -20 40 60"}},
      {"a:b:c:d:NORMAL", true, {"pos 0 0 0 0"}},
      {"\x81\xff garbage \x01", true, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.stored ? c.stored : "(none)");
    const std::string section = c.stored ? "Stored" : "Empty";
    if (c.stored) store.SetString(section, "FloatPosition", c.stored);
    RecordingWindow window;
    EXPECT_EQ(store.RestoreWindowPlacement(section, "FloatPosition", window), c.restored);
    EXPECT_EQ(window.calls, c.calls);
  }
}

TEST_F(SettingsStoreTest, SaveWindowPlacementWritesRectangleAndState) {
  RecordingWindow window;
  window.rect = {-4, 5, 600, 480};
  ASSERT_TRUE(store.SaveWindowPlacement("SheetSetDialog", "", window));
  EXPECT_EQ(store.GetString("SheetSetDialog", "", ""), "-4:5:600:480:NORMAL");
  window.zoomed = true;
  store.SaveWindowPlacement("SheetSetDialog", "", window);
  EXPECT_EQ(store.GetString("SheetSetDialog", "", ""), "-4:5:600:480:MAXIMIZED");
  window.isWindow = false;
  window.zoomed = false;
  EXPECT_FALSE(store.SaveWindowPlacement("SheetSetDialog", "", window));
  EXPECT_EQ(store.GetString("SheetSetDialog", "", ""), "-4:5:600:480:MAXIMIZED");
}

TEST_F(SettingsStoreTest, FontsAreSixtyBytesAndOnlyExactOnesRestore) {
  LogFontA font;
  font.lfHeight = -13;
  font.lfWeight = 700;
  font.lfCharSet = 134;
  std::strcpy(font.lfFaceName, "黑体");
  ASSERT_TRUE(store.SaveFont("", "LabelFont", font));
  RegValue v;
  ASSERT_TRUE(registry.QueryValue(top, "LabelFont", v));
  EXPECT_EQ(v.type, kRegBinary);
  ASSERT_EQ(v.bytes.size(), 60u);
  EXPECT_EQ(v.bytes.substr(0, 4), Bytes({0xF3, 0xFF, 0xFF, 0xFF}));
  LogFontA back;
  ASSERT_TRUE(store.RestoreFont("", "LabelFont", back));
  EXPECT_EQ(back, font);
  store.SetBinary("", "TabFont", v.bytes.data(), 59);
  LogFontA untouched;
  untouched.lfHeight = 99;
  EXPECT_FALSE(store.RestoreFont("", "TabFont", untouched));
  EXPECT_EQ(untouched.lfHeight, 99);
}

TEST_F(SettingsStoreTest, AFailingBackendGivesDefaultsAndFalse) {
  store.SetInt("", "TipWidth", 500);
  FailingRegistry failing(registry);
  failing.FailAll(true);
  SettingsStore broken(failing, kRoot);
  EXPECT_EQ(broken.GetInt("", "TipWidth", 300), 300);
  EXPECT_EQ(broken.GetString("", "SaveCommand", "d"), "d");
  EXPECT_DOUBLE_EQ(broken.GetDouble("", "G", 2.5), 2.5);
  EXPECT_FALSE(broken.SetInt("", "TipWidth", 1));
  EXPECT_FALSE(broken.SetString("", "S", "x"));
  failing.FailAll(false);
  failing.FailWrites(true);
  EXPECT_EQ(broken.GetInt("", "TipWidth", 300), 500);
  EXPECT_FALSE(broken.SetInt("", "TipWidth", 1));
  EXPECT_EQ(broken.GetInt("", "TipWidth", 300), 500);
}

}  // namespace
}  // namespace tavlet
