#include "bar/switcher_input.h"

#include <algorithm>

namespace tavlet::bar {
namespace {

constexpr long kCellWidth = kSwitcherPictureWidth + 2 * kSwitcherMargin;
constexpr long kCellHeight = kSwitcherPictureHeight + kSwitcherLabelHeight + 2 * kSwitcherMargin;

}  // namespace

CtrlTabAction DecideCtrlTab(bool enabled, const KeyStroke& stroke, bool inHostFrame, bool switcherOpen,
                            std::size_t drawings) {
  if (!enabled || switcherOpen || !inHostFrame || drawings < 2) return CtrlTabAction::PassOn;
  // Ctrl+Alt is AltGr on many keyboards, and Alt+Tab belongs to the system.
  if (stroke.key != vk::Tab || !stroke.down || !stroke.ctrl || stroke.alt) return CtrlTabAction::PassOn;
  return stroke.shift ? CtrlTabAction::OpenBackward : CtrlTabAction::OpenForward;
}

std::optional<SwitcherKey> SwitcherKeyFor(const KeyStroke& stroke, bool openedWithCtrl) {
  if (!stroke.down) {
    if (stroke.key == vk::Control && openedWithCtrl) return SwitcherKey::ReleaseCtrl;
    return std::nullopt;
  }
  switch (stroke.key) {
    case vk::Tab:
      return stroke.shift ? SwitcherKey::ShiftTab : SwitcherKey::Tab;
    case vk::Right:
    case vk::Down:
      return SwitcherKey::Tab;
    case vk::Left:
    case vk::Up:
      return SwitcherKey::ShiftTab;
    case vk::Return:
      return SwitcherKey::Enter;
    case vk::Escape:
      return SwitcherKey::Escape;
    default:
      return std::nullopt;
  }
}

host::WindowRect SwitcherLayout::Cell(std::size_t index) const {
  const long i = static_cast<long>(index);
  const long left = kSwitcherMargin + (i % std::max(columns, 1L)) * kCellWidth;
  const long top = kSwitcherMargin + (i / std::max(columns, 1L)) * kCellHeight;
  return {left, top, left + kCellWidth, top + kCellHeight};
}

host::WindowRect SwitcherLayout::Picture(std::size_t index) const {
  const host::WindowRect cell = Cell(index);
  return {cell.left + kSwitcherMargin, cell.top + kSwitcherMargin, cell.right - kSwitcherMargin,
          cell.top + kSwitcherMargin + kSwitcherPictureHeight};
}

int SwitcherLayout::HitTest(long x, long y, std::size_t count) const {
  if (columns <= 0 || x < kSwitcherMargin || y < kSwitcherMargin) return -1;
  const long column = (x - kSwitcherMargin) / kCellWidth, row = (y - kSwitcherMargin) / kCellHeight;
  if (column >= columns || row >= rows) return -1;
  const long index = row * columns + column;
  return index < static_cast<long>(count) ? static_cast<int>(index) : -1;
}

SwitcherLayout LayOutSwitcher(std::size_t count, const host::WindowRect& frame) {
  SwitcherLayout layout;
  if (count == 0) return layout;
  const long n = static_cast<long>(count);
  layout.columns = std::min(n, kSwitcherColumns);
  layout.rows = (n + layout.columns - 1) / layout.columns;
  const long width = layout.columns * kCellWidth + 2 * kSwitcherMargin;
  const long height = layout.rows * kCellHeight + 2 * kSwitcherMargin;
  const long left = frame.left + (frame.Width() - width) / 2, top = frame.top + (frame.Height() - height) / 2;
  layout.window = {left, top, left + width, top + height};
  return layout;
}

host::WindowRect FitPicture(int width, int height, const host::WindowRect& box) {
  if (width <= 0 || height <= 0 || box.Width() <= 0 || box.Height() <= 0) return {box.left, box.top, box.left, box.top};
  long w = width, h = height;
  if (w > box.Width() || h > box.Height()) {
    // The side that overflows most decides the scale.
    if (static_cast<long long>(w) * box.Height() >= static_cast<long long>(h) * box.Width()) {
      h = std::max(1L, static_cast<long>(static_cast<long long>(h) * box.Width() / w));
      w = box.Width();
    } else {
      w = std::max(1L, static_cast<long>(static_cast<long long>(w) * box.Height() / h));
      h = box.Height();
    }
  }
  const long left = box.left + (box.Width() - w) / 2, top = box.top + (box.Height() - h) / 2;
  return {left, top, left + w, top + h};
}

}  // namespace tavlet::bar
