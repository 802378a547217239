#include "ui/qt/side_tabs.h"

#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

namespace orvex {
namespace {

class SideTabBar final : public QTabBar {
 public:
  SideTabBar() {
    setDrawBase(false);
    setElideMode(Qt::ElideNone);
  }

 protected:
  QSize tabSizeHint(int index) const override {
    const QFontMetrics metrics = fontMetrics();
    const int text = metrics.horizontalAdvance(tabText(index).trimmed());
    return {text + 2 * metrics.averageCharWidth() + 14, metrics.height() * 17 / 10};
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
}

}  // namespace orvex
