// Tells when the first window is on the screen, and ends: the tool's splash with the state folder
// as its argument, or an empty window without.

#include <QApplication>
#include <QEvent>
#include <cstdio>
#include <memory>

#include "qt/desktop.h"

namespace {

class FirstPaint final : public QObject {
 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Paint && widget != nullptr && widget->isWindow()) {
      // By the next turn the picture and all that lies on it has gone to the screen.
      QMetaObject::invokeMethod(this, &FirstPaint::tell, Qt::QueuedConnection);
    }
    return false;
  }

 private:
  void tell() {
    std::puts("painted");
    std::fflush(stdout);
    for (QWidget* window : QApplication::topLevelWidgets()) window->close();
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
