#include <QApplication>
#include <QIcon>

#include "platform/platform.h"
#include "ui/qt/desktop.h"

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("orvex");
  QApplication::setDesktopFileName("orvex");
  QApplication::setQuitOnLastWindowClosed(false);
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
    icon.addFile(QString(":/pictures/orvex-%1.png").arg(side), {side, side});
  }
  QApplication::setWindowIcon(icon);
  orvex::Desktop desktop(orvex::platform::state_folder());
  return desktop.run();
}
