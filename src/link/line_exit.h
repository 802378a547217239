#pragma once

#include "base/timer.h"
#include "link/serial_control.h"
#include "window/window_system.h"

namespace orvex {

/// What leaves the line in order at the end of the process.
class LineExit {
 public:
  /// Both must outlive this. It runs inside the pumps.
  LineExit(WindowSystem& windows, SerialControl& MSComm1);

  /// Cancels a transfer that runs. The cancel sequence gets 150 ms to leave the machine.
  void stop_transfer();
  /// The same, and then closes the port.
  void close();

 private:
  WindowSystem& windows_;
  SerialControl& MSComm1_;
  Timer drain_;
};

}  // namespace orvex
