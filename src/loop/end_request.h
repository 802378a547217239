#pragma once

#include <QObject>
#include <functional>

namespace orvex {

/// Has `act` called from the event loop once the system asks the process to end, as by Ctrl-C or at
/// a logout. Called once in a process; `context` must outlive the loop's last pump.
void on_end_request(QObject& context, std::function<void()> act);

}  // namespace orvex
