// The tab control's decisions that need no device.
#include "ui/tab_paint.h"

#include <gtest/gtest.h>

#include <string>

namespace tavlet::ui {
namespace {

std::string Text(const WindowRect& r) {
  return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
         std::to_string(r.bottom);
}

TEST(TabPaint, OrientationAndFlagsFollowTheStyleBits) {
  struct Case {
    unsigned long style;
    int orientation;
    unsigned flags;
    unsigned format, selectedFormat;
    int turns;
  };
  const Case cases[] = {
      {0, kTabTop, 0, 0x29, 0x25, 0},
      {kTcsBottom | kTcsMultiline, kTabBottom, kTabPartFarSide, 0x25, 0x25, 0},
      {kTcsVertical, kTabLeft, kTabPartOnSide, 0x29, 0x25, 3},
      {kTcsVertical | kTcsBottom, kTabRight, kTabPartFarSide | kTabPartOnSide, 0x29, 0x25, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.style);
    EXPECT_EQ(OrientationOf(c.style), c.orientation);
    EXPECT_EQ(BaseFlags(c.orientation), c.flags);
    EXPECT_EQ(OwnerDrawFormat(false, c.orientation), c.format);
    EXPECT_EQ(OwnerDrawFormat(true, c.orientation), c.selectedFormat);
    EXPECT_EQ(OwnerDrawTurns(c.orientation), c.turns);
  }
}

TEST(TabPaint, ThemesNeedVersionFivePointOneAndAnActiveService) {
  EXPECT_TRUE(UseThemedDrawing(true, true, 0x50001, true));
  EXPECT_TRUE(UseThemedDrawing(true, true, 0xA0000, true));
  EXPECT_FALSE(UseThemedDrawing(true, true, 0x50000, true));  // 5.0
  EXPECT_FALSE(UseThemedDrawing(true, true, 0x40009, true));
  EXPECT_FALSE(UseThemedDrawing(true, true, 0x60000, false));
  EXPECT_FALSE(UseThemedDrawing(false, true, 0x60000, true));
  EXPECT_FALSE(UseThemedDrawing(true, false, 0x60000, true));
}

TEST(TabPaint, ThePageReachesTowardsTheTabsAndTheSelectedTabGrows) {
  const WindowRect client{0, 0, 200, 100}, adjusted{4, 30, 196, 96};
  EXPECT_EQ(Text(PageRect(client, adjusted, kTabTop)), "0,28,200,100");
  EXPECT_EQ(Text(PageRect(client, adjusted, kTabBottom)), "0,0,200,99");
  EXPECT_EQ(Text(PageRect(client, adjusted, kTabLeft)), "3,0,200,100");
  EXPECT_EQ(Text(PageRect(client, adjusted, kTabRight)), "0,0,199,100");

  EXPECT_EQ(Text(SelectedTabRect({50, 30, 10, 10}, kTabTop, 1, 0, 100)), "8,8,52,31");
  EXPECT_EQ(Text(SelectedTabRect({10, 10, 50, 30}, kTabBottom, 1, 0, 100)), "8,8,52,32");
  // Several rows of a multi-line control: kept 2 above the page's bottom.
  EXPECT_EQ(Text(SelectedTabRect({10, 10, 50, 30}, kTabBottom, 2, kTcsMultiline, 30)), "8,8,52,28");
  EXPECT_EQ(Text(SelectedTabRect({10, 10, 50, 30}, kTabBottom, 2, 0, 30)), "8,8,52,32");
}

TEST(TabPaint, ImageAndTextOffsetsDependOnSideAndSelection) {
  struct Case {
    unsigned flags;
    bool image;
    long imageX, imageY, textLeft, textTop;
  };
  const Case cases[] = {
      {0, true, 6, 1, 25, 3},
      {kTabPartSelected, true, 8, 3, 25, 3},
      {kTabPartFarSide, false, 3, 1, 1, 3},
      {kTabPartFarSide | kTabPartSelected, false, 5, 4, 1, 4},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.flags);
    const TabContentPlace p = PlaceTabContent(c.flags, c.image);
    EXPECT_EQ(p.imageX, c.imageX);
    EXPECT_EQ(p.imageY, c.imageY);
    EXPECT_EQ(p.textLeft, c.textLeft);
    EXPECT_EQ(p.textTop, c.textTop);
  }
}

}  // namespace
}  // namespace tavlet::ui
