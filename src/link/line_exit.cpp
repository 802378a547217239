#include "link/line_exit.h"

#include "base/run_time_error.h"

namespace orvex {

LineExit::LineExit(WindowSystem& windows, SerialControl& MSComm1)
    : windows_(windows), MSComm1_(MSComm1), drain_(windows, [] {}) {
  windows.schedule(drain_);
}

void LineExit::stop_transfer() {
  if (!MSComm1_.FileSendOn()) return;
  MSComm1_.FileSendOn(false);
  // 18 bytes at 1200 Bps.
  const Time until = windows_.now() + std::chrono::milliseconds(150);
  drain_.Interval(10);
  drain_.Enabled(true);
  while (MSComm1_.OutBufferCount() > 0 && windows_.now() < until) {
    windows_.pump(Wait::for_event);
  }
  drain_.Enabled(false);
}

void LineExit::close() {
  stop_transfer();
  try {
    MSComm1_.PortOpen(false);
  } catch (const RunTimeError&) {
    // The process ends, and the port with it.
  }
}

}  // namespace orvex
