#include "link/exchange.h"

#include <algorithm>
#include <utility>

#include "link/frame.h"
#include "window/run_time_error.h"

namespace orvex {
namespace {

constexpr int most_sends = 3;
constexpr int ack_wait_ms = 1000;
constexpr int reply_wait_ms = 1500;
constexpr int slow_reply_wait_ms = 2500;
/// A device that talks without end must not fill the memory. A line at 115200 Bps brings less than
/// 30 kB in the longest wait.
constexpr std::size_t most_received = 1 << 20;

void append_bounded(std::string& text, std::string_view more) {
  text += more.substr(0, most_received - std::min(most_received, text.size()));
}

}  // namespace

Exchange::Exchange(WindowSystem& windows, Form1& form1, PortState& state, SerialControl& MSComm1,
                   ReplyWork reply_work)
    : windows_(windows),
      form1_(form1),
      state_(state),
      MSComm1_(MSComm1),
      reply_work_(std::move(reply_work)) {}

std::int16_t Exchange::Send_Tag(std::string_view tag) {
  try {
    windows_.pump(Wait::no);
    empty_receive_side();
    int failed_sends = 0;
    while (!send_and_wait(tag, failed_sends)) {
      if (++failed_sends == most_sends) return 0;
    }
    if (is_query(tag)) {
      if (!wait_for_reply()) return 0;
      reply_work_(tag, state_.ReplyText);
    }
    return 1;
  } catch (const RunTimeError& error) {
    windows_.MsgBox({.text = error.text, .icon = Icon::exclamation});
    return 0;
  }
}

std::string Exchange::Read_Port(std::int16_t mode) {
  append_bounded(state_.RxAccum, MSComm1_.Input());
  if (mode != 1) return {};
  return std::exchange(state_.RxAccum, {});
}

void Exchange::empty_receive_side() {
  state_.RxAccum.clear();
  Read_Port(1);
  state_.ReplyText.clear();
}

bool Exchange::wait_for_ping() {
  while (true) {
    try {
      pump_and_read();
    } catch (const RunTimeError&) {
      // On a port that is closed or lost the wait ends by its time-out.
    }
    if (state_.ReplyText.starts_with(ACK)) {
      form1_.Timer1.Enabled(false);
      state_.TimedOut = 0;
      return true;
    }
    state_.ReplyText.erase(0, 1);
    if (state_.TimedOut == 1) return false;
  }
}

void Exchange::show_port_line() {
  form1_.sbrStatus.Panels[1] =
      "Settings: " + MSComm1_.Settings() + "  Com Port: " + std::to_string(MSComm1_.CommPort());
  form1_.port_path = MSComm1_.device_path();
}

bool Exchange::send_and_wait(std::string_view tag, int failed_sends) {
  state_.TimedOut = 0;
  state_.ReplyText.clear();
  form1_.Timer1.Interval(ack_wait_ms);
  MSComm1_.Output(frame_of(tag));
  form1_.Timer1.Enabled(true);
  form1_.sbrStatus.Panels[2] = "TIME OUT COUNT = " + std::to_string(failed_sends);
  show_port_line();
  return wait_for_ack();
}

bool Exchange::wait_for_ack() {
  do {
    pump_and_read();
    if (state_.ReplyText.empty()) continue;
    const char first = state_.ReplyText.front();
    state_.ReplyText.erase(0, 1);
    if (first == ACK) {
      form1_.Timer1.Enabled(false);
      state_.TimedOut = 0;
      return true;
    }
    if (first == NAK) state_.TimedOut = 1;
  } while (state_.TimedOut != 1);
  form1_.Timer1.Enabled(false);
  return false;
}

bool Exchange::wait_for_reply() {
  const std::string_view settings = MSComm1_.Settings();
  const bool slow = settings.starts_with("2400") || settings.starts_with("1200");
  form1_.Timer1.Interval(slow ? slow_reply_wait_ms : reply_wait_ms);
  form1_.Timer1.Enabled(true);
  std::size_t searched = 0;
  Wait wait = Wait::no;
  do {
    windows_.pump(wait);
    append_bounded(state_.ReplyText, Read_Port(1));
    wait = Wait::for_event;
    if (state_.ReplyText.find("\r\n", searched) != std::string::npos) break;
    searched = state_.ReplyText.empty() ? 0 : state_.ReplyText.size() - 1;
  } while (state_.TimedOut != 1);
  form1_.Timer1.Enabled(false);
  return state_.TimedOut != 1;
}

void Exchange::pump_and_read() {
  windows_.pump(state_.ReplyText.empty() ? Wait::for_event : Wait::no);
  append_bounded(state_.ReplyText, Read_Port(1));
}

}  // namespace orvex
