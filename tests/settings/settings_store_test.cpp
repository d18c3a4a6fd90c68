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
    calls.push_back("pos " + std::to_string(x) + " " + std::to_string(y) + " " +
                    std::to_string(w) + " " + std::to_string(h));
  }
};

TEST(SettingsRoot, IsBuiltFromProductPathAndSuffix) {
  EXPECT_EQ(DefaultSettingsRoot(), kRoot);
  EXPECT_EQ(MakeSettingsRoot("Morvane\\Tavlet", ""), "Software\\Morvane\\Tavlet");
}

TEST(SettingsStore, KeyPathOfTheEmptySectionEndsInABackslash) {
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
  EXPECT_EQ(store.KeyPath(""), std::string(kRoot) + "\\");
  EXPECT_EQ(store.KeyPath("Colors"), std::string(kRoot) + "\\Colors");
}

TEST(SettingsStore, ReadsCreateTheKeyTheyRead) {
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
  EXPECT_FALSE(registry.KeyExists(std::string(kRoot) + "\\Previews"));
  EXPECT_EQ(store.GetInt("Previews", "ScrollBarSize", 12), 12);
  EXPECT_TRUE(registry.KeyExists(std::string(kRoot) + "\\Previews"));
  EXPECT_EQ(store.GetString("工作集", "路径", ""), "");
  EXPECT_TRUE(registry.KeyExists(std::string(kRoot) + "\\工作集"));
  RegValue none;
  EXPECT_FALSE(registry.QueryValue(std::string(kRoot) + "\\Previews", "ScrollBarSize", none));
}

// GetInt fills a four-byte buffer preset with the default and never looks at the type.
TEST(SettingsStore, GetIntTakesAnyValueOfAtMostFourBytes) {
  struct Case {
    const char* what;
    std::uint32_t type;
    std::string bytes;
    int def;
    int expected;
  };
  const Case cases[] = {
      {"dword", kRegDword, Bytes({0x2C, 0x01, 0, 0}), 7, 300},
      {"negative dword", kRegDword, Bytes({0xFF, 0xFF, 0xFF, 0xFF}), 7, -1},
      {"sz of two characters overlays three bytes", kRegSz, std::string("ab\0", 3), 0x11223344,
       0x11006261},
      {"sz of three characters fills the buffer", kRegSz, std::string("abc\0", 4), 5, 0x00636261},
      {"sz of four characters is too long", kRegSz, std::string("abcd\0", 5), 5, 5},
      {"binary of one byte", kRegBinary, Bytes({0x7F}), 0x100, 0x17F},
      {"empty value leaves the default", kRegBinary, "", 42, 42},
      {"eight-byte value gives the default", 11, std::string(8, '\1'), 9, 9},
  };
  for (const Case& c : cases) {
    MemoryRegistry registry;
    registry.SetValue(std::string(kRoot) + "\\", "V", c.type, c.bytes);
    SettingsStore store(registry, kRoot);
    EXPECT_EQ(store.GetInt("", "V", c.def), c.expected) << c.what;
  }
}

TEST(SettingsStore, GetStringCutsAtTheFirstNulAndTakesTheDefaultForEmpty) {
  struct Case {
    std::uint32_t type;
    std::string bytes;
    std::string expected;
  };
  const Case cases[] = {
      {kRegSz, std::string("abc\0def\0", 8), "abc"},
      {kRegSz, std::string("\0", 1), "dflt"},
      {kRegSz, "", "dflt"},
      {kRegSz, "no terminator", "no terminator"},
      {kRegDword, Bytes({0x41, 0, 0, 0}), "A"},
      {kRegSz, std::string("路径\0", 5), "路径"},
  };
  for (const Case& c : cases) {
    MemoryRegistry registry;
    registry.SetValue(std::string(kRoot) + "\\S", "V", c.type, c.bytes);
    SettingsStore store(registry, kRoot);
    EXPECT_EQ(store.GetString("S", "V", "dflt"), c.expected);
  }
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
  EXPECT_EQ(store.GetString("S", "missing", "_.QSAVE\n"), "_.QSAVE\n");
}

TEST(SettingsStore, GetBinaryNeedsExactSizeAndBinaryType) {
  struct Case {
    std::uint32_t type;
    std::string bytes;
    bool ok;
  };
  const Case cases[] = {
      {kRegBinary, "1234", true},
      {kRegBinary, "123", false},
      {kRegBinary, "12345", false},
      {kRegSz, "1234", false},
      {kRegDword, "1234", false},
  };
  for (const Case& c : cases) {
    MemoryRegistry registry;
    registry.SetValue(std::string(kRoot) + "\\", "B", c.type, c.bytes);
    SettingsStore store(registry, kRoot);
    char buffer[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(store.GetBinary("", "B", buffer, 4), c.ok);
    EXPECT_EQ(std::string(buffer, 4), c.ok ? "1234" : "xxxx");
  }
}

TEST(SettingsStore, ValuesAreStoredInTheirRegistryForms) {
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
  const std::string path = std::string(kRoot) + "\\";
  ASSERT_TRUE(store.SetInt("", "I", 300));
  ASSERT_TRUE(store.SetString("", "S", "_.QSAVE\n"));
  ASSERT_TRUE(store.SetDouble("", "D", 2.5));
  ASSERT_TRUE(store.SetDouble("", "E", 1e20));
  RegValue v;
  ASSERT_TRUE(registry.QueryValue(path, "I", v));
  EXPECT_EQ(v.type, kRegDword);
  EXPECT_EQ(v.bytes, Bytes({0x2C, 0x01, 0, 0}));
  ASSERT_TRUE(registry.QueryValue(path, "S", v));
  EXPECT_EQ(v.type, kRegSz);
  EXPECT_EQ(v.bytes, std::string("_.QSAVE\n\0", 9));
  ASSERT_TRUE(registry.QueryValue(path, "D", v));
  EXPECT_EQ(v.bytes, std::string("2.5\0", 4));
  ASSERT_TRUE(registry.QueryValue(path, "E", v));
  EXPECT_EQ(v.bytes, std::string("1e+20\0", 6));
}

TEST(SettingsStore, RealsAreReadWithStrtod) {
  struct Case {
    const char* text;
    double expected;
  };
  const Case cases[] = {{"2.5", 2.5}, {"-0.25", -0.25}, {"1e3", 1000}, {"abc", 0},
                        {"  7x", 7},  {"", 9.5}};
  for (const Case& c : cases) {
    MemoryRegistry registry;
    SettingsStore store(registry, kRoot);
    store.SetString("BlackBack", "Gamma", c.text);
    EXPECT_DOUBLE_EQ(store.GetDouble("BlackBack", "Gamma", 9.5), c.expected) << c.text;
  }
}

TEST(SettingsStore, NamesMatchIgnoringCase) {
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
  store.SetInt("colors", "background", 5);
  SettingsStore upper(registry, "SOFTWARE\\MORVANE\\TAVLET\\2.0 - r16");
  EXPECT_EQ(upper.GetInt("COLORS", "BackGround", 0), 5);
}

TEST(SettingsStore, RestoreWindowPlacementFollowsTheFiveFieldRule) {
  struct Case {
    const char* stored;  // nullptr: nothing stored
    bool restored;
    std::vector<std::string> calls;
  };
  const Case cases[] = {
      {nullptr, false, {}},
      {"", false, {}},
      {"10:20:310:120:NORMAL", true, {"pos 10 20 300 100"}},
      {"10:20:310:120:MAXIMIZED", true, {"show 3"}},
      {"10:20:310:120:maximized", true, {"pos 10 20 300 100"}},
      {"1:2:3:4", true, {}},
      {"1:2:3:4:NORMAL:x", true, {}},
      {"-5:x:7:9z:N", true, {"pos -5 0 12 9"}},
      {"1::3:4:NORMAL", true, {"pos 1 0 2 4"}},
  };
  for (const Case& c : cases) {
    MemoryRegistry registry;
    SettingsStore store(registry, kRoot);
    if (c.stored) store.SetString("", "FloatPosition", c.stored);
    RecordingWindow window;
    EXPECT_EQ(store.RestoreWindowPlacement("", "FloatPosition", window), c.restored)
        << (c.stored ? c.stored : "(none)");
    EXPECT_EQ(window.calls, c.calls) << (c.stored ? c.stored : "(none)");
  }
}

TEST(SettingsStore, SaveWindowPlacementWritesRectangleAndState) {
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
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

TEST(SettingsStore, FontsAreSixtyBytesAndOnlyExactOnesRestore) {
  MemoryRegistry registry;
  SettingsStore store(registry, kRoot);
  LogFontA font;
  font.lfHeight = -13;
  font.lfWeight = 700;
  font.lfCharSet = 134;
  std::strcpy(font.lfFaceName, "黑体");
  ASSERT_TRUE(store.SaveFont("", "LabelFont", font));
  RegValue v;
  ASSERT_TRUE(registry.QueryValue(store.KeyPath(""), "LabelFont", v));
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

TEST(SettingsStore, AFailingBackendGivesDefaultsAndFalse) {
  MemoryRegistry inner;
  SettingsStore good(inner, kRoot);
  good.SetInt("", "TipWidth", 500);
  FailingRegistry failing(inner);
  failing.FailAll(true);
  SettingsStore store(failing, kRoot);
  EXPECT_EQ(store.GetInt("", "TipWidth", 300), 300);
  EXPECT_EQ(store.GetString("", "SaveCommand", "d"), "d");
  EXPECT_DOUBLE_EQ(store.GetDouble("", "G", 2.5), 2.5);
  EXPECT_FALSE(store.SetInt("", "TipWidth", 1));
  EXPECT_FALSE(store.SetString("", "S", "x"));
  failing.FailAll(false);
  EXPECT_EQ(store.GetInt("", "TipWidth", 300), 500);
  failing.FailWrites(true);
  EXPECT_EQ(store.GetInt("", "TipWidth", 300), 500);
  EXPECT_FALSE(store.SetInt("", "TipWidth", 1));
  EXPECT_EQ(store.GetInt("", "TipWidth", 300), 500);
}

}  // namespace
}  // namespace tavlet
