#pragma once

#include <QScrollArea>

class QGridLayout;

namespace orvex {

/// A tab's page: a grid that scrolls if the window is too small for it. What has the focus is
/// always in view.
class Page final : public QScrollArea {
 public:
  Page();

  QGridLayout& grid() const { return *grid_; }

  /// Keeps what is in the grid at the top of the page; to be called when all is in.
  void close_grid();

  /// Scrolls to a control of the page, once the layout has given it its place.
  void reveal(QWidget& control);

 private:
  QGridLayout* grid_;
};

}  // namespace orvex
