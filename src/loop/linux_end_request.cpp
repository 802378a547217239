#include <QSocketNotifier>
#include <utility>

#include "loop/end_request.h"
#include "platform/linux_process.h"

namespace orvex {

void on_end_request(QObject& context, std::function<void()> act) {
  const int descriptor = platform::end_request();
  if (descriptor < 0) return;
  auto* notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, &context);
  QObject::connect(notifier, &QSocketNotifier::activated, &context,
                   [notifier, act = std::move(act)] {
                     notifier->setEnabled(false);
                     act();
                   });
}

void end_at_once(int code) {
  platform::end_at_once(code);
}

}  // namespace orvex
