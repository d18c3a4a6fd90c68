#include "host/arx_module.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

#include "settings/memory_registry.h"
#include "sim/fake_window_system.h"
#include "sim/sim_host.h"

namespace tavlet::host {
namespace {

TEST(PadBannerLine, PlacesTextAndKeepsExactly78) {
  struct Case {
    std::string text;
    int align;
    std::size_t at;  // where the text starts
  } cases[] = {
      {"ab", kAlignCentre, 38},  {"abc", kAlignCentre, 37}, {"ab", kAlignLeft, 0},
      {"ab", kAlignRight, 76},   {"", kAlignCentre, 39},    {std::string(78, 'x'), kAlignRight, 0},
      {std::string(79, 'x'), kAlignCentre, 0},  // (78 - 79) / 2 truncates to 0
      {std::string(90, 'x'), kAlignRight, 0},   // negative offset counts as 0
  };
  for (const Case& c : cases) {
    std::string line = PadBannerLine(c.text, '.', c.align);
    ASSERT_EQ(line.size(), 78u) << c.text;
    std::string expected(78, '.');
    expected.replace(c.at, std::min(c.text.size(), 78 - c.at), c.text.substr(0, 78 - c.at));
    EXPECT_EQ(line, expected) << c.text.size() << " align " << c.align;
  }
}

TEST(PadBannerLine, CutNeverSplitsADoubleByteCharacter) {
  // 77 ASCII bytes then one two-byte character that would end at 79.
  std::string text = std::string(77, 'a') + "没";
  std::string line = PadBannerLine(text, '-', kAlignLeft);
  EXPECT_EQ(line, std::string(77, 'a') + "-");
  std::string fits = std::string(76, 'a') + "没";
  EXPECT_EQ(PadBannerLine(fits, '-', kAlignLeft), fits);
}

class RegistrationTest : public ::testing::Test {
 protected:
  RegistrationTest() {
    arx.currentYear = [] { return 2031; };
    host.ClearTranscript();
  }
  void Queue() {
    arx.QueueCommand(true, [this] { ++runs; }, "MVTL", "TLON", "Turns the Tavlet on", 0, -1);
    arx.QueueCommand(false, [this] { ++runs; }, "MVTL", "TLSKIP", "Dropped", 0, -1);
    arx.QueueCommand(true, [this] { ++runs; }, "MVTL", "TLQUIET", "", 0, -1);
    arx.QueueCommand(true, [this] { ++runs; }, "MVTL", "TLCMDCENTER", "No description", 0, -1);
  }
  std::string Dword(const std::string& path, const std::string& name) {
    RegValue v;
    if (!registry.QueryValue(path, name, v) || v.type != kRegDword) return "missing";
    return std::to_string(static_cast<unsigned char>(v.bytes[0]) | static_cast<unsigned char>(v.bytes[1]) << 8);
  }
  std::string Sz(const std::string& path, const std::string& name) {
    RegValue v;
    if (!registry.QueryValue(path, name, v) || v.type != kRegSz) return "missing";
    return v.bytes;
  }

  sim::SimHost host;
  sim::FakeWindowSystem windows;
  MemoryRegistry registry;
  ArxModule arx{host, windows, registry, "C:\\Tavlet\\Tavlet.arx"};
  int runs = 0;
};

std::string Framed(char c, const std::string& body) { return std::string(1, c) + body + c + "\n"; }

TEST_F(RegistrationTest, LoadBannerListsDescribedCommandsAndRegistersAll) {
  Queue();
  arx.Register(2, &arx);
  const std::string plus78(78, '+');
  std::string expected = "\n" + Framed('+', plus78) +
                         Framed('+', PadBannerLine(" Morvane Tavlet (build 2.0.7) LOADED ", ' ', kAlignCentre)) +
                         Framed('+', PadBannerLine(" Copyright (C) 2004-2031 Morvane. All rights reserved. ", ' ',
                                                   kAlignCentre)) +
                         Framed('+', plus78) +
                         Framed('+', PadBannerLine(" Registered commands : ", ' ', kAlignLeft)) +
                         Framed('+', PadBannerLine(" TLON - Turns the Tavlet on ", ' ', kAlignLeft)) +
                         Framed('+', PadBannerLine(" TLCMDCENTER - No description ", ' ', kAlignLeft)) +
                         Framed('+', plus78);
  EXPECT_EQ(host.Transcript(), expected);
  EXPECT_EQ(host.RegisteredCommands(), (std::vector<std::pair<std::string, std::string>>{
                                           {"MVTL", "TLON"}, {"MVTL", "TLQUIET"}, {"MVTL", "TLCMDCENTER"}}));
  EXPECT_TRUE(host.RunRegisteredCommand("TLQUIET"));
  EXPECT_EQ(runs, 1);
  EXPECT_EQ(arx.ModuleId, &arx);
}

TEST_F(RegistrationTest, RegistryEntriesCarryTheLoadControl) {
  Queue();
  for (long loadCtrl : {2L, 4L}) {
    ArxModule fresh(host, windows, registry, "C:\\Tavlet\\Tavlet.arx");
    fresh.Commands = arx.Commands;
    fresh.Register(loadCtrl, nullptr);
    const std::string path = "Software\\Host\\R16.1\\ACAD-301:804\\Applications\\MorvaneTavlet";
    EXPECT_EQ(fresh.ApplicationPath(), path);
    EXPECT_EQ(Dword(path, "LOADCTRLS"), std::to_string(loadCtrl));
    EXPECT_EQ(Sz(path, "LOADER"), std::string("C:\\Tavlet\\Tavlet.arx") + '\0');
    EXPECT_EQ(Sz(path, "DESCRIPTION"), std::string("Tavlet") + '\0');
    EXPECT_EQ(Sz(path + "\\Groups", "MVTL"), std::string("MVTL") + '\0');
    EXPECT_EQ(Sz(path + "\\Commands", "TLQUIET"), std::string("TLQUIET") + '\0');
    EXPECT_EQ(Sz(path + "\\Commands", "TLSKIP"), "missing");
    fresh.Unregister();
  }
}

TEST_F(RegistrationTest, NegativeLoadControlSkipsTheRegistryButAddsCommands) {
  Queue();
  arx.Register(-1, nullptr);
  EXPECT_TRUE(registry.WriteLog().empty());
  EXPECT_EQ(host.RegisteredCommands().size(), 3u);
}

TEST_F(RegistrationTest, LocalNameFromResourceOnlyWhileTheModulesResourcesAreCurrent) {
  std::vector<bool> current;
  arx.loadString = [&](std::int32_t id, std::string& text) {
    current.push_back(windows.ModuleResourcesCurrent());
    if (id != 7) return false;
    text = "TLLOCAL";
    return true;
  };
  arx.QueueCommand(true, [] {}, "MVTL", "TLON", "x", 0, 7);
  arx.QueueCommand(true, [] {}, "MVTL", "TLOFF", "x", 0, 8);  // resource missing: the global name
  arx.Register(2, nullptr);
  // Two look-ups for the registry, then two while adding, with the module's resources.
  EXPECT_EQ(current, (std::vector<bool>{false, false, true, true}));
  EXPECT_FALSE(windows.ModuleResourcesCurrent());
  const std::string path = arx.ApplicationPath() + "\\Commands";
  EXPECT_EQ(Sz(path, "TLON"), std::string("TLLOCAL") + '\0');
  EXPECT_EQ(Sz(path, "TLOFF"), std::string("TLOFF") + '\0');
}

TEST_F(RegistrationTest, UnregisterRemovesTheGroupAndPrintsTheClosingBanner) {
  Queue();
  arx.Register(2, nullptr);
  host.ClearTranscript();
  arx.Unregister();
  EXPECT_TRUE(host.RegisteredCommands().empty());
  const std::string minus78(78, '-');
  std::string expected = "\n" + Framed('-', minus78) +
                         Framed('-', PadBannerLine(" Morvane Tavlet (build 2.0.7) UNLOADED ", ' ', kAlignCentre)) +
                         Framed('-', PadBannerLine(" Copyright (C) 2004-2031 Morvane. All rights reserved. ", ' ',
                                                   kAlignCentre)) +
                         Framed('-', minus78);
  EXPECT_EQ(host.Transcript(), expected);
  EXPECT_EQ(host.RunRegisteredCommand("TLON"), false);
}

TEST_F(RegistrationTest, WithoutCommandsNoListAndNoGroupRemoval) {
  arx.Register(4, nullptr);
  EXPECT_EQ(host.Transcript().find("Registered"), std::string::npos);
  RegValue v;
  EXPECT_TRUE(registry.QueryValue(arx.ApplicationPath(), "LOADCTRLS", v));
  EXPECT_FALSE(registry.KeyExists(arx.ApplicationPath() + "\\Groups"));
  arx.Unregister();
  EXPECT_EQ(host.Faults().Count("Editor::RemoveGroup"), 0);
}

TEST(Banner, YearComesFromTheLocalClock) {
  sim::SimHost host;
  sim::FakeWindowSystem windows;
  MemoryRegistry registry;
  ArxModule arx(host, windows, registry, "");
  arx.PrintBanner("x", '*');
  std::time_t now = std::time(nullptr);
  const std::string year = std::to_string(std::localtime(&now)->tm_year + 1900);
  EXPECT_NE(host.Transcript().find("2004-" + year), std::string::npos);
  // Four lines, each 80 characters between its line feeds.
  const std::string& t = host.Transcript();
  ASSERT_EQ(t.size(), 1 + 4 * 81u);
  for (std::size_t i = 1; i < t.size(); i += 81) EXPECT_EQ(t[i + 80], '\n');
}

}  // namespace
}  // namespace tavlet::host
