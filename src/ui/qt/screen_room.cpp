#include "ui/qt/screen_room.h"

#include <QScreen>
#include <algorithm>

namespace orvex {
namespace {

// In pixels. No window system tells the size of a window's frame before the window is up; these are
// what the usual desktops take.
constexpr int title_bar_and_border = 40;
constexpr int both_borders = 8;

}  // namespace

QRect room_on(const QScreen& screen) {
  return screen.availableGeometry().adjusted(0, 0, -both_borders, -title_bar_and_border);
}

QPoint place_in(const QRect& room, const QRect& wanted) {
  const int right_most = std::max(room.left(), room.right() + 1 - wanted.width());
  const int lowest = std::max(room.top(), room.bottom() + 1 - wanted.height());
  return {std::clamp(wanted.left(), room.left(), right_most),
          std::clamp(wanted.top(), room.top(), lowest)};
}

}  // namespace orvex
