#pragma once

#include "link/exchange.h"
#include "link/port_state.h"
#include "link/serial_control.h"
#include "window/forms.h"
#include "window/window_system.h"

namespace orvex {

/// The link to the scanner, and all that a job on the line works with: the windows' records, the
/// one PortState, the serial control and the exchange. Lives as long as the process.
class ScannerLink {
 public:
  /// `window_system` and `line` must outlive the link. Timer1 and the serial control run inside the
  /// pumps from now on.
  ScannerLink(WindowSystem& window_system, Line& line, EngineFactory make_engine,
              Exchange::ReplyWork reply_work);
  ScannerLink(const ScannerLink&) = delete;
  ScannerLink& operator=(const ScannerLink&) = delete;

  WindowSystem& windows;
  PortState state;
  Forms forms;
  SerialControl MSComm1;
  Exchange exchange;
};

/// Enables or disables cmdSend, cmdReceive, cmdFactory and cmdWeb.
inline void enable_scanner_buttons(Form1& form1, bool enabled) {
  form1.cmdSend.Enabled = form1.cmdReceive.Enabled = enabled;
  form1.cmdFactory.Enabled = form1.cmdWeb.Enabled = enabled;
}

}  // namespace orvex
