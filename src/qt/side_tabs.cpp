#include "qt/side_tabs.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QToolButton>
#include <algorithm>

#include "qt/accessible_role.h"

namespace orvex {
namespace {

class SideTabBar final : public QTabBar {
 public:
  SideTabBar() {
    setDrawBase(false);
    setElideMode(Qt::ElideNone);
    // Those that scroll if there is no room for all tabs; the arrow keys do the same.
    for (QToolButton* button : findChildren<QToolButton*>()) button->setFocusPolicy(Qt::NoFocus);
  }

 protected:
  QSize tabSizeHint(int index) const override {
    const QFontMetrics metrics = fontMetrics();
    const int text = metrics.horizontalAdvance(tabText(index).trimmed());
    return {text + 2 * metrics.averageCharWidth() + 14, metrics.height() * 17 / 10};
  }

  /// The toolkit's bar knows the keys of tabs that lie side by side.
  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Up:
        setCurrentIndex(std::max(currentIndex() - 1, 0));
        break;
      case Qt::Key_Down:
        setCurrentIndex(std::min(currentIndex() + 1, count() - 1));
        break;
      case Qt::Key_Home:
        setCurrentIndex(0);
        break;
      case Qt::Key_End:
        setCurrentIndex(count() - 1);
        break;
      default:
        QTabBar::keyPressEvent(event);
    }
  }

  void paintEvent(QPaintEvent* /*event*/) override {
    QStylePainter painter(this);
    for (int index = 0; index < count(); ++index) paint_tab(painter, index);
  }

 private:
  void paint_tab(QStylePainter& painter, int index) {
    const bool selected = index == currentIndex();
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QRect area = tabRect(index).adjusted(2, 1, -3, -1);
    const QColor accent = palette().color(group, QPalette::Highlight);
    if (selected) {
      QColor tint = accent;
      tint.setAlphaF(0.18F);
      painter.fillRect(area, tint);
      painter.fillRect(QRect(area.left(), area.top(), 4, area.height()), accent);
    }
    painter.setPen(palette().color(group, QPalette::WindowText));
    painter.drawText(area.adjusted(10, 0, -2, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     tabText(index).trimmed());
    if (!selected || !hasFocus()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.rect = area;
    focus.state |= QStyle::State_KeyboardFocusChange;
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
  }
};

}  // namespace

SideTabs::SideTabs() {
  setTabBar(new SideTabBar);
  setTabPosition(QTabWidget::West);
  set_accessible_role(*this, QAccessible::Grouping, "Setup");
}

}  // namespace orvex
