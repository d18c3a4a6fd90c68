// Ctrl+Tab's decision in the host's frame, the popup's keys and its cells.
#include "bar/switcher_input.h"

#include <gtest/gtest.h>

namespace tavlet::bar {
namespace {

TEST(SwitcherInput, CtrlTabOpensOnlyWhenEnabledInTheFrameWithTwoDrawings) {
  const KeyStroke ctrlTab{vk::Tab, true, true, false, false};
  struct Case {
    const char* what;
    bool enabled;
    KeyStroke stroke;
    bool inFrame, open;
    std::size_t drawings;
    CtrlTabAction expected;
  };
  const Case cases[] = {
      {"Ctrl+Tab", true, ctrlTab, true, false, 2, CtrlTabAction::OpenForward},
      {"Ctrl+Shift+Tab", true, {vk::Tab, true, true, true, false}, true, false, 3, CtrlTabAction::OpenBackward},
      {"setting off", false, ctrlTab, true, false, 3, CtrlTabAction::PassOn},
      {"focus outside the frame", true, ctrlTab, false, false, 3, CtrlTabAction::PassOn},
      {"popup open already", true, ctrlTab, true, true, 3, CtrlTabAction::PassOn},
      {"one drawing", true, ctrlTab, true, false, 1, CtrlTabAction::PassOn},
      {"Tab alone", true, {vk::Tab, true, false, false, false}, true, false, 3, CtrlTabAction::PassOn},
      {"Ctrl+Alt+Tab", true, {vk::Tab, true, true, false, true}, true, false, 3, CtrlTabAction::PassOn},
      {"Tab released", true, {vk::Tab, false, true, false, false}, true, false, 3, CtrlTabAction::PassOn},
      {"Ctrl+Return", true, {vk::Return, true, true, false, false}, true, false, 3, CtrlTabAction::PassOn},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    EXPECT_EQ(DecideCtrlTab(k.enabled, k.stroke, k.inFrame, k.open, k.drawings), k.expected);
  }
}

TEST(SwitcherInput, KeysInThePopup) {
  struct Case {
    KeyStroke stroke;
    bool withCtrl;
    std::optional<SwitcherKey> expected;
  };
  const Case cases[] = {
      {{vk::Tab, true, true, false, false}, true, SwitcherKey::Tab},
      {{vk::Tab, true, true, true, false}, true, SwitcherKey::ShiftTab},
      {{vk::Down, true}, false, SwitcherKey::Tab},
      {{vk::Left, true}, false, SwitcherKey::ShiftTab},
      {{vk::Return, true}, false, SwitcherKey::Enter},
      {{vk::Escape, true}, true, SwitcherKey::Escape},
      {{vk::Control, false}, true, SwitcherKey::ReleaseCtrl},
      {{vk::Control, false}, false, std::nullopt},  // opened by the command: Ctrl means nothing
      {{vk::Control, true}, true, std::nullopt},
      {{vk::Tab, false}, true, std::nullopt},
      {{'A', true}, true, std::nullopt},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(testing::Message() << "key " << k.stroke.key << (k.stroke.down ? " down" : " up"));
    EXPECT_EQ(SwitcherKeyFor(k.stroke, k.withCtrl), k.expected);
  }
}

TEST(SwitcherInput, CellsAreCentredOnTheFrameAndHitByTheirArea) {
  const host::WindowRect frame{100, 50, 1100, 850};
  const SwitcherLayout one = LayOutSwitcher(1, frame);
  EXPECT_EQ(one.columns, 1);
  EXPECT_EQ(one.window.Width(), 160);  // a 144-wide cell and the margins
  EXPECT_EQ(one.window.left - frame.left, frame.right - one.window.right);
  EXPECT_EQ(one.window.top - frame.top, frame.bottom - one.window.bottom);

  const SwitcherLayout seven = LayOutSwitcher(7, frame);
  EXPECT_EQ(seven.columns, 5);
  EXPECT_EQ(seven.rows, 2);
  EXPECT_EQ(seven.Cell(5).left, seven.Cell(0).left);
  EXPECT_EQ(seven.Cell(5).top, seven.Cell(0).bottom);
  EXPECT_EQ(seven.Picture(1).Width(), kSwitcherPictureWidth);
  struct Hit {
    long x, y;
    int expected;
  };
  const Hit hits[] = {{9, 9, 0}, {7, 9, -1}, {8 + 144, 9, 1}, {8 + 144, 8 + 132, 6}, {8 + 144 * 3, 8 + 132, -1},
                      {8 + 144 * 5, 9, -1}};
  for (const Hit& h : hits) {
    SCOPED_TRACE(testing::Message() << h.x << "," << h.y);
    EXPECT_EQ(seven.HitTest(h.x, h.y, 7), h.expected);
  }
  EXPECT_EQ(LayOutSwitcher(0, frame).columns, 0);
  EXPECT_EQ(LayOutSwitcher(0, frame).HitTest(10, 10, 0), -1);
}

TEST(SwitcherInput, PicturesFitTheirBoxKeepingTheirAspect) {
  const host::WindowRect box{10, 20, 138, 116};  // 128 x 96
  struct Case {
    int width, height;
    host::WindowRect expected;
  };
  const Case cases[] = {
      {69, 52, {39, 42, 108, 94}},       // smaller: as it is, centred
      {256, 96, {10, 44, 138, 92}},      // too wide
      {64, 192, {58, 20, 90, 116}},      // too high
      {0, 52, {10, 20, 10, 20}},         // nothing
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(testing::Message() << k.width << "x" << k.height);
    EXPECT_EQ(FitPicture(k.width, k.height, box), k.expected);
  }
}

}  // namespace
}  // namespace tavlet::bar
