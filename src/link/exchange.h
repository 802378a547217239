#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "link/port_state.h"
#include "link/serial_control.h"
#include "window/forms.h"
#include "window/window_system.h"

namespace orvex {

/// The tag that a scanner answers with a bare ACK: who hears it knows that it is there.
inline constexpr std::string_view ping_tag = "<TXPING:>";

/// All talk with the scanner, one transaction at a time. The callers see to it that no second one
/// begins while one runs.
class Exchange {
 public:
  /// What a good reply to a query leads to, before Send_Tag returns. It may throw RunTimeError.
  using ReplyWork = std::function<void(std::string_view tag, const std::string& reply)>;

  /// All references must outlive the exchange.
  Exchange(WindowSystem& windows, Form1& form1, PortState& state, SerialControl& MSComm1,
           ReplyWork reply_work);

  /// Sends one frame, three times at most, and awaits its ACK for 1000 ms each time and then, for a
  /// query, a reply that ends in CR LF within 1500 ms (2500 ms at 1200 and 2400 Bps). Gives 1 on
  /// success and 0 otherwise; a run-time failure shows its box here.
  std::int16_t Send_Tag(std::string_view tag);

  /// Moves what the serial control received into RxAccum. Mode 1 also hands RxAccum over and
  /// empties it; any other mode gives an empty text.
  std::string Read_Port(std::int16_t mode);

  /// Drops all that was received and not yet looked at.
  void empty_receive_side();

  /// Awaits the ACK of a ping until Timer1 ticks: true where it came. The ACK stays in ReplyText.
  /// Failures of the port are passed over.
  bool wait_for_ping();

  /// Panel 1: settings and number of the port.
  void show_port_line();

 private:
  bool send_and_wait(std::string_view tag, int failed_sends);
  bool wait_for_ack();
  bool wait_for_reply();
  void pump_and_read();

  WindowSystem& windows_;
  Form1& form1_;
  PortState& state_;
  SerialControl& MSComm1_;
  ReplyWork reply_work_;
};

}  // namespace orvex
