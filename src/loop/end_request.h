#pragma once

#include <QObject>
#include <functional>

namespace orvex {

/// Has `act` called from the event loop once the system asks the process to end, as by Ctrl-C or at
/// a logout. Called once in a process; `context` must outlive the loop's last pump.
void on_end_request(QObject& context, std::function<void()> act);

/// From now on such a request ends the process at once, with this exit code: there is nothing left
/// to put in order, and the process may wait for somebody who doesn't take its output.
void end_at_once(int code);

}  // namespace orvex
