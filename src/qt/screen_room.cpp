#include "qt/screen_room.h"

#include <QFontMetrics>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace orvex {
namespace {

// In pixels. No window system tells the size of a window's frame before the window is up; these are
// what the usual desktops take.
constexpr int title_bar_and_border = 40;
constexpr int both_borders = 8;

/// An icon and three buttons, each as high as a line of the title and this much in pixels.
constexpr int parts_of_title_bar = 4;
constexpr int around_part = 12;

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

int frame_above(const QWidget& window) {
  const int frame = window.geometry().top() - window.frameGeometry().top();
  return frame > 0 ? frame : title_bar_and_border;
}

QRect part_with_frame(const QWidget& window, const QRect& part) {
  const QRect at(window.mapToGlobal(part.topLeft()), part.size());
  const int frame = window.geometry().top() - window.frameGeometry().top();
  // The frame of a window that was shown just now is still to come and moves its contents down.
  return frame == 0 ? at.adjusted(0, 0, 0, title_bar_and_border) : at.adjusted(0, -frame, 0, 0);
}

QPoint place_beside(const QRect& kept, const QRect& wanted, int frame, const QRect& room) {
  const QRect around = kept.adjusted(-both_borders, 0, both_borders, 0);
  const QPoint places[]{{wanted.left(), around.bottom() + 1 + frame},
                        {wanted.left(), around.top() - wanted.height() - both_borders},
                        {around.right() + 1, wanted.top()},
                        {around.left() - wanted.width(), wanted.top()}};
  for (const QPoint& place : places) {
    const QRect at(place_in(room, {place, wanted.size()}), wanted.size());
    if (!at.adjusted(0, -frame, 0, 0).intersects(kept)) return at.topLeft();
  }
  return place_in(room, {places[0], wanted.size()});
}

int width_for_title(const QWidget& window) {
  QFont font = window.font();
  font.setBold(true);
  const QFontMetrics metrics(font);
  return metrics.horizontalAdvance(window.windowTitle()) +
         parts_of_title_bar * (metrics.height() + around_part);
}

}  // namespace orvex
