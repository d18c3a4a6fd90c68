// The decisions of the owner-drawn tab control that need no device: the
// orientation from the style, the theme test, the page's and the selected tab's
// rectangles, and where a tab's image and text go.
#pragma once

#include "host/window_system.h"

namespace tavlet::ui {

using host::WindowRect;

enum TabOrientation : int { kTabTop = 0, kTabBottom = 1, kTabLeft = 2, kTabRight = 3 };

// Tab control styles, with the platform's values.
inline constexpr unsigned long kTcsBottom = 0x0002;  // also TCS_RIGHT
inline constexpr unsigned long kTcsMultiline = 0x0200;
inline constexpr unsigned long kTcsVertical = 0x0080;

// DrawTabPart's flags.
inline constexpr unsigned kTabPartPage = 1;
inline constexpr unsigned kTabPartSelected = 2;
inline constexpr unsigned kTabPartHot = 4;
inline constexpr unsigned kTabPartFarSide = 8;
inline constexpr unsigned kTabPartOnSide = 16;

// The selected tab's cover: the caption colour at 27 percent.
inline constexpr int kSelectedCoverAlpha = 0x44;

int OrientationOf(unsigned long style);
unsigned BaseFlags(int orientation);

// Themes need a system of 5.1 or later (major in the high word) whose theme
// service says it is active, on a control that may draw itself.
bool UseThemedDrawing(bool themedDrawing, bool isWindow, unsigned long systemVersion, bool themeActive);

// The page: the client with its side toward the tabs moved to the adjusted one.
WindowRect PageRect(const WindowRect& client, const WindowRect& adjusted, int orientation);
// The selected tab, drawn last and larger: normalised, inflated by 2, its bottom
// one less at the top, and kept above the page on a multi-row control.
WindowRect SelectedTabRect(WindowRect item, int orientation, int rows, unsigned long style, long pageBottom);

// Where DrawTabPart puts an item's image and text, in the upright picture.
struct TabContentPlace {
  long imageX = 0, imageY = 0;
  long textLeft = 0, textTop = 0;
};
TabContentPlace PlaceTabContent(unsigned flags, bool hasImage);

// The owner-draw path: DrawText's format, and how often the upright picture is
// turned clockwise for the orientation (0 for top and bottom).
unsigned OwnerDrawFormat(bool selected, int orientation);
int OwnerDrawTurns(int orientation);

}  // namespace tavlet::ui
