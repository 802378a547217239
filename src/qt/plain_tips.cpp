#include "qt/plain_tips.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLabel>

namespace orvex {

PlainTips::PlainTips() {
  QCoreApplication::instance()->installEventFilter(this);
}

bool PlainTips::eventFilter(QObject* watched, QEvent* event) {
  // All tips are shown by labels of this class, which are polished before they get their text.
  if (event->type() == QEvent::Polish && watched->inherits("QTipLabel")) {
    static_cast<QLabel*>(watched)->setTextFormat(Qt::PlainText);
  }
  return false;
}

QString tip_of(const QString& text) {
  constexpr qsizetype most = 1000;
  constexpr qsizetype most_in_line = 60;
  QString tip;
  for (const QChar character : text.left(most)) {
    if (tip.size() % (most_in_line + 1) == most_in_line) tip += '\n';
    tip += character.isPrint() ? character : QChar(' ');
  }
  if (text.size() > most) tip += QChar(0x2026);
  return tip;
}

}  // namespace orvex
