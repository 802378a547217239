#include "link/exchange.h"

#include <algorithm>
#include <utility>

#include "base/attempts.h"
#include "base/run_time_error.h"
#include "link/frame.h"

namespace orvex {
namespace {

constexpr int most_sends = 3;
constexpr int ack_wait_ms = 1000;
constexpr int reply_wait_ms = 1500;
constexpr int slow_reply_wait_ms = 2500;

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
  append(state_.RxAccum, MSComm1_.Input());
  if (mode != 1) return {};
  return std::exchange(state_.RxAccum, {});
}

void Exchange::empty_receive_side() {
  state_.RxAccum.clear();
  clear_reply();
  Read_Port(1);
}

void Exchange::clear_reply() {
  state_.ReplyText.clear();
  dropped_ = false;
}

void Exchange::append(std::string& text, std::string_view more) {
  constexpr std::size_t most = most_in_reply + 1;
  const std::size_t room = most - std::min(most, text.size());
  dropped_ = dropped_ || more.size() > room;
  text += more.substr(0, room);
}

void Exchange::send_ping() {
  MSComm1_.Output(frame_of("<TXPING:>"));
}

bool Exchange::wait_for_ping(Attempts& attempts) {
  while (true) {
    attempts([&] { pump_and_read(); });
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
  form1_.port_tip = MSComm1_.device();
}

void Exchange::show_closed_port(std::string why) {
  form1_.sbrStatus.Panels[1] = "Settings: Closed";
  form1_.FrameLED = Indicator::imgNotConnected;
  form1_.port_tip = std::move(why);
}

bool Exchange::send_and_wait(std::string_view tag, int failed_sends) {
  state_.TimedOut = 0;
  clear_reply();
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
  if (dropped_) {
    // All of it came with the ACK, which has been taken off.
    state_.ReplyText.resize(most_in_reply + 1);
    return true;
  }
  const std::string_view settings = MSComm1_.Settings();
  const bool slow = settings.starts_with("2400") || settings.starts_with("1200");
  form1_.Timer1.Interval(slow ? slow_reply_wait_ms : reply_wait_ms);
  form1_.Timer1.Enabled(true);
  std::size_t searched = 0;
  Wait wait = Wait::no;
  do {
    windows_.pump(wait);
    append(state_.ReplyText, Read_Port(1));
    if (state_.ReplyText.size() > most_in_reply) break;
    wait = Wait::for_event;
    if (state_.ReplyText.find("\r\n", searched) != std::string::npos) break;
    searched = state_.ReplyText.empty() ? 0 : state_.ReplyText.size() - 1;
  } while (state_.TimedOut != 1);
  form1_.Timer1.Enabled(false);
  return state_.TimedOut != 1;
}

void Exchange::pump_and_read() {
  if (state_.ReplyText.empty()) dropped_ = false;  // what comes now has no hole ahead of it
  windows_.pump(state_.ReplyText.empty() ? Wait::for_event : Wait::no);
  append(state_.ReplyText, Read_Port(1));
}

}  // namespace orvex
