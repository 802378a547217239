// Tells when the first window is on the screen: the tool's splash with the state folder as its
// argument, or an empty window without.

#include <QApplication>
#include <QEvent>
#include <cstdio>
#include <memory>

#include "ui/qt/desktop.h"

namespace {

class FirstPaint final : public QObject {
 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
      std::puts("painted");
      std::fflush(stdout);
    }
    return false;
  }
};

}  // namespace

int main(int argc, char* argv[]) {
  QApplication application(argc, argv);
  FirstPaint first_paint;
  application.installEventFilter(&first_paint);
  if (argc > 1) return orvex::Desktop(argv[1]).run();
  QWidget window;
  window.show();
  return QApplication::exec();
}
