#include "qt/look.h"

#include <QApplication>
#include <QIcon>

#include "qt/focus_style.h"

namespace orvex {

void set_look() {
  QApplication::setStyle(new FocusStyle);  // the application owns it
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
    icon.addFile(QString(":/pictures/orvex-%1.png").arg(side), {side, side});
  }
  QApplication::setWindowIcon(icon);
}

}  // namespace orvex
