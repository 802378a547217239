#include "link/scanner_link.h"

#include <utility>

#include "base/run_time_error.h"

namespace orvex {

ScannerLink::ScannerLink(WindowSystem& window_system, Line& line, EngineFactory make_engine,
                         Exchange::ReplyWork reply_work)
    : windows(window_system),
      forms{Form1(window_system, [this] { state.TimedOut = 1; }), {}, {}, {}},
      MSComm1(window_system, line, std::move(make_engine)),
      exchange(window_system, forms.form1, state, MSComm1, std::move(reply_work)) {
  windows.schedule(forms.form1.Timer1);
  windows.schedule(MSComm1);
  MSComm1.Receive = [this] {
    try {
      exchange.Read_Port(2);
    } catch (const RunTimeError&) {
      // Who waits for these characters meets the failure itself.
    }
  };
}

}  // namespace orvex
