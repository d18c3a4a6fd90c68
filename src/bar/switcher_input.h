// The switcher's window, as far as it is not Win32: when a key in the host's
// frame opens it instead of the MDI's own next window, which keys act inside it,
// and where its cells lie.
#pragma once

#include <cstddef>
#include <optional>

#include "bar/activation_order.h"
#include "host/window_system.h"

namespace tavlet::bar {

// Virtual-key codes, with the platform's values.
namespace vk {
inline constexpr unsigned Tab = 0x09;
inline constexpr unsigned Return = 0x0D;
inline constexpr unsigned Shift = 0x10;
inline constexpr unsigned Control = 0x11;
inline constexpr unsigned Escape = 0x1B;
inline constexpr unsigned Left = 0x25;
inline constexpr unsigned Up = 0x26;
inline constexpr unsigned Right = 0x27;
inline constexpr unsigned Down = 0x28;
}  // namespace vk

// A key as the host's thread takes it from its queue, with the modifiers' state then.
struct KeyStroke {
  unsigned key = 0;
  bool down = true;  // false: released
  bool ctrl = false, shift = false, alt = false;
};

enum class CtrlTabAction { PassOn, OpenForward, OpenBackward };

// Ctrl+Tab (Ctrl+Shift+Tab backward) pressed while the host's frame has the
// focus opens the switcher, when it is enabled, not open already and there are
// two drawings to switch between; everything else goes on to the host, which
// may still turn it into the MDI's next window.
CtrlTabAction DecideCtrlTab(bool enabled, const KeyStroke& stroke, bool inHostFrame, bool switcherOpen,
                            std::size_t drawings);

// What a key does in the open popup; none for keys it ignores. Releasing Ctrl
// picks only when the popup was opened with Ctrl held.
std::optional<SwitcherKey> SwitcherKeyFor(const KeyStroke& stroke, bool openedWithCtrl);

// The popup's cells: a row of up to kSwitcherColumns pictures with their names
// below, as many rows as needed, the whole centred on the frame.
inline constexpr long kSwitcherColumns = 5;
inline constexpr long kSwitcherPictureWidth = 128, kSwitcherPictureHeight = 96;
inline constexpr long kSwitcherLabelHeight = 20;
inline constexpr long kSwitcherMargin = 8;

struct SwitcherLayout {
  host::WindowRect window;  // in the coordinates of `frame`
  long columns = 0, rows = 0;

  // Cell `index` in the window's client coordinates: picture and label.
  host::WindowRect Cell(std::size_t index) const;
  host::WindowRect Picture(std::size_t index) const;
  // The cell under a client point, or -1.
  int HitTest(long x, long y, std::size_t count) const;
};

SwitcherLayout LayOutSwitcher(std::size_t count, const host::WindowRect& frame);

// A picture of `width` x `height` fitted into `box`, aspect kept, centred; never
// larger than it is.
host::WindowRect FitPicture(int width, int height, const host::WindowRect& box);

}  // namespace tavlet::bar
