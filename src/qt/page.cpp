#include "qt/page.h"

#include <QApplication>
#include <QGridLayout>
#include <QTimer>

namespace orvex {
namespace {

constexpr int margin = 6;
constexpr int between_columns = 8;
constexpr int between_rows = 10;
/// So large beside the stretch of the other rows that they get nothing of the page.
constexpr int all_that_is_left = 10000;

}  // namespace

Page::Page() {
  auto* content = new QWidget;
  grid_ = new QGridLayout(content);
  grid_->setContentsMargins(margin, margin, margin, margin);
  grid_->setHorizontalSpacing(between_columns);
  grid_->setVerticalSpacing(between_rows);
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setWidget(content);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget* /*old*/, QWidget* now) {
    if (now != nullptr && widget()->isAncestorOf(now)) ensureWidgetVisible(now);
  });
}

void Page::close_grid() {
  grid_->setRowStretch(grid_->rowCount(), all_that_is_left);
}

void Page::reveal(QWidget& control) {
  QTimer::singleShot(0, &control, [this, &control] { ensureWidgetVisible(&control); });
}

}  // namespace orvex
