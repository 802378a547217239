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

class Attempts;

/// Characters of a reply, a signed 16-bit number of them. A line at 115200 Bps brings less than
/// 30,000 in the longest wait.
inline constexpr std::size_t most_in_reply = 32767;

/// All talk with the scanner, one transaction at a time. The callers see to it that no second one
/// begins while one runs.
class Exchange {
 public:
  /// What a good reply to a query leads to, before Send_Tag returns. It may throw RunTimeError, and
  /// has to if the reply has more than `most_in_reply` characters: of such a one it is given the
  /// first, and one more.
  using ReplyWork = std::function<void(std::string_view tag, const std::string& reply)>;

  /// All references must outlive the exchange.
  Exchange(WindowSystem& windows, Form1& form1, PortState& state, SerialControl& MSComm1,
           ReplyWork reply_work);

  /// Sends one frame, three times at most, and awaits its ACK for 1000 ms each time and then, for a
  /// query, a reply that ends in CR LF within 1500 ms (2500 ms at 1200 and 2400 Bps). Gives 1 on
  /// success and 0 otherwise; a run-time failure shows its box here.
  std::int16_t Send_Tag(std::string_view tag);

  /// Moves what the serial control received into RxAccum. Mode 1 also hands RxAccum over and
  /// empties it; any other mode gives an empty text. RxAccum and ReplyText hold at most a reply
  /// and one character more: what comes beyond that is dropped.
  std::string Read_Port(std::int16_t mode);

  /// Drops all that was received and not yet looked at. On a port that can't be read, it throws
  /// once that is done.
  void empty_receive_side();

  /// Writes the frame that a scanner answers with a bare ACK. Throws RunTimeError.
  void send_ping();

  /// Awaits the ACK of a ping until Timer1 ticks: true if it came. The ACK stays in ReplyText.
  /// `attempts` remembers failures of the port; they don't end the wait.
  bool wait_for_ping(Attempts& attempts);

  /// Panel 1: settings and number of the port; its tool tip has the device.
  void show_port_line();
  /// Panel 1 and the lamp of a port that could not be opened; the tool tip tells why.
  void show_closed_port(std::string why);
  /// Why the port that was opened last isn't open, as the tool tip of panel 1.
  void explain_port(std::string_view cause) { form1_.port_tip = MSComm1_.about_port(cause); }

 private:
  bool send_and_wait(std::string_view tag, int failed_sends);
  bool wait_for_ack();
  bool wait_for_reply();
  void pump_and_read();
  void clear_reply();
  void append(std::string& text, std::string_view more);

  WindowSystem& windows_;
  Form1& form1_;
  PortState& state_;
  SerialControl& MSComm1_;
  ReplyWork reply_work_;
  bool dropped_ = false;  ///< what has come since the frame was sent is no longer kept
};

}  // namespace orvex
