#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>

#include "platform/platform.h"
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
  QSocketNotifier end_request(orvex::platform::end_request(), QSocketNotifier::Read);
  QObject::connect(&end_request, &QSocketNotifier::activated, &application, [&] {
    end_request.setEnabled(false);
    desktop.windows.handle([&] { desktop.program.Form_Unload(); });
  });
  return desktop.run();
}
