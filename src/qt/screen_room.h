#pragma once

#include <QRect>

class QScreen;
class QWidget;

namespace orvex {

/// What a screen leaves for a window: all but its panels and, at the right and below, as much as
/// the window's frame takes.
QRect room_on(const QScreen& screen);

/// The corner of the place in the room that is nearest to the wanted one; the room's own corner
/// where that is too large for it.
QPoint place_in(const QRect& room, const QRect& wanted);

/// Height of the frame above a window's contents; a usual one if the window has none yet.
int frame_above(const QWidget& window);

/// Where a part of a window is on the screen, with the window's frame above it.
QRect part_with_frame(const QWidget& window, const QRect& part);

/// The corner of a place for the contents of a window, with a frame above them, that leaves `kept`
/// free: below it, else above it, to its right or to its left, whichever has the room first. If
/// none has, below it as far as the room goes.
QPoint place_beside(const QRect& kept, const QRect& wanted, int frame, const QRect& room);

/// Width in pixels of a window whose title bar shows the whole title beside its buttons.
int width_for_title(const QWidget& window);

}  // namespace orvex
