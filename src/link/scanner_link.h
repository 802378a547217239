#pragma once

#include "link/exchange.h"
#include "link/port_state.h"
#include "link/serial_control.h"
#include "window/forms.h"
#include "window/window_system.h"

namespace orvex {

/// What every job on the line works with. All of it lives as long as the process.
struct ScannerLink {
  WindowSystem& windows;
  Forms& forms;
  PortState& state;
  SerialControl& MSComm1;
  Exchange& exchange;
};

/// Enables or disables cmdSend, cmdReceive, cmdFactory and cmdWeb.
inline void enable_scanner_buttons(Form1& form1, bool enabled) {
  form1.cmdSend.Enabled = form1.cmdReceive.Enabled = enabled;
  form1.cmdFactory.Enabled = form1.cmdWeb.Enabled = enabled;
}

}  // namespace orvex
