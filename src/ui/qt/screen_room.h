#pragma once

#include <QRect>

class QScreen;

namespace orvex {

/// What a screen leaves for a window: all but its panels and, at the right and below, as much as
/// the window's frame takes.
QRect room_on(const QScreen& screen);

/// The corner of the place in the room that is nearest to the wanted one; the room's own corner
/// where that is too large for it.
QPoint place_in(const QRect& room, const QRect& wanted);

}  // namespace orvex
