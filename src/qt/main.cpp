#include <QApplication>
#include <QIcon>

#include "loop/end_request.h"
#include "platform/ports.h"
#include "qt/desktop.h"
#include "qt/focus_style.h"

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("orvex");
  QApplication::setDesktopFileName("orvex");
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setStyle(new orvex::FocusStyle);  // the application owns it
  QIcon icon;
  for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
    icon.addFile(QString(":/pictures/orvex-%1.png").arg(side), {side, side});
  }
  QApplication::setWindowIcon(icon);
  orvex::Desktop desktop(orvex::platform::state_folder());
  // A logout closes the port like the window's own close does.
  orvex::on_end_request(
      application, [&desktop] { desktop.windows.handle([&] { desktop.program.Form_Unload(); }); });
  return desktop.run();
}
