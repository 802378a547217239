#include <QApplication>

#include "loop/end_request.h"
#include "platform/ports.h"
#include "qt/desktop.h"
#include "qt/look.h"

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("orvex");
  QApplication::setDesktopFileName("orvex");
  QApplication::setQuitOnLastWindowClosed(false);
  orvex::set_look();
  orvex::Desktop desktop(orvex::platform::state_folder());
  // A logout closes the port like the window's own close does.
  orvex::on_end_request(
      application, [&desktop] { desktop.windows.handle([&] { desktop.program.Form_Unload(); }); });
  return desktop.run();
}
