#include "network/com_port_client.h"

#include <algorithm>
#include <utility>

#include "link/line.h"

namespace orvex {
namespace {

using telnet_option::com_port_control;

// What the client says; the server's answer has 100 more.
constexpr std::uint8_t set_rate = 1;
constexpr std::uint8_t set_data_bits = 2;
constexpr std::uint8_t set_parity = 3;
constexpr std::uint8_t set_stop_bits = 4;
constexpr std::array settings_commands{set_rate, set_data_bits, set_parity, set_stop_bits};
constexpr std::uint8_t set_control = 5;
constexpr std::uint8_t suspend = 8;
constexpr std::uint8_t resume = 9;
constexpr std::uint8_t purge = 12;
constexpr std::uint8_t from_server = 100;

// Values of set_control and of purge.
constexpr int no_flow_control = 1;
constexpr int dtr_on = 8;
constexpr int rts_on = 11;
constexpr int purge_to_scanner = 2;
constexpr int purge_both = 3;

std::array<std::int64_t, 4> values_of(const LineSettings& settings) {
  const int parity = settings.parity == Parity::odd ? 2 : settings.parity == Parity::even ? 3 : 1;
  return {settings.baud, settings.data_bits, parity, settings.stop_bits};
}

std::string in_words(std::uint8_t command, std::int64_t value) {
  constexpr std::array parities{"", "no parity", "odd parity", "even parity"};
  switch (command) {
    case set_rate:
      return std::to_string(value) + " Bps";
    case set_data_bits:
      return std::to_string(value) + " data bits";
    case set_parity:
      return parities.at(static_cast<std::size_t>(value));
    default:
      return std::to_string(value) + (value == 1 ? " stop bit" : " stop bits");
  }
}

std::string request(std::uint8_t command, std::int64_t value) {
  std::string content(1, static_cast<char>(command));
  for (int shift = command == set_rate ? 24 : 0; shift >= 0; shift -= 8) {
    content += static_cast<char>(value >> shift);
  }
  return telnet_subnegotiation(com_port_control, content);
}

/// The value of an answer, -1 where it has none. One server, on systems of 64 bits, sends a rate in
/// eight bytes: the four of the rule and four that are empty.
std::int64_t value_of(std::uint8_t command, std::string_view content) {
  const std::size_t size = command == set_rate ? 4 : 1;
  if (content.size() < size) return -1;
  std::int64_t value = 0;
  for (const char byte : content.substr(0, size)) {
    value = value * 256 + static_cast<std::uint8_t>(byte);
  }
  return value;
}

}  // namespace

ComPortClient::ComPortClient(const LineSettings& settings, Time now)
    : give_up_(now + answer_limit), wanted_(settings), output_(ComPortGreeting::wishes()) {}

void ComPortClient::receive(std::string_view bytes, Time now) {
  if (state_ == State::failed) return;
  heard_ = heard_ || !bytes.empty();
  decoder_.feed(bytes, *this);
  if (state_ == State::greeting && greeting_.is_done()) {
    begin_port(now);
  } else if (state_ == State::setting || state_ == State::undoing) {
    settle(now);
  }
}

void ComPortClient::tick(Time now) {
  const auto limit = due();
  if (!limit || now < *limit) return;
  const bool talks = state_ == State::greeting && heard_;
  fail(talks ? greeting_.missing() : "no answer from the server");
}

std::optional<Time> ComPortClient::due() const {
  if (state_ == State::ready || state_ == State::failed) return std::nullopt;
  return give_up_;
}

void ComPortClient::fail(std::string_view reason) {
  state_ = State::failed;
  reason_ = reason;
}

void ComPortClient::begin_port(Time now) {
  output_ += request(set_control, no_flow_control) + request(set_control, dtr_on) +
             request(set_control, rts_on) + request(purge, purge_both);
  state_ = State::setting;
  ask(wanted_, true, now);
}

void ComPortClient::set(const LineSettings& settings, Time now) {
  if (state_ != State::ready) return;
  if (!suspended_) output_ += telnet_data(std::exchange(data_out_, {}));
  wanted_ = settings;
  refusal_.clear();
  state_ = State::setting;
  ask(settings, false, now);
  settle(now);
}

void ComPortClient::ask(const LineSettings& settings, bool all, Time now) {
  const auto wanted = values_of(settings);
  const auto present = values_of(settings_.value_or(settings));
  for (std::size_t i = 0; i < items_.size(); ++i) {
    const bool known = !all && wanted[i] == present[i];
    items_[i] = {settings_commands[i], wanted[i], known};
    if (!known) output_ += request(items_[i].command, wanted[i]);
  }
  give_up_ = now + answer_limit;
}

void ComPortClient::settle(Time now) {
  if (!std::ranges::all_of(items_, &Item::answered)) return;
  const auto refused = std::ranges::find_if(items_, &Item::refused);
  if (refused == items_.end()) {
    settings_ = wanted_;
    state_ = State::ready;
    return;
  }
  const std::string text = "the server refused " + in_words(refused->command, refused->value);
  if (!settings_ || state_ == State::undoing) return fail(text);
  refusal_ = text;
  wanted_ = *settings_;
  state_ = State::undoing;
  ask(wanted_, true, now);
}

void ComPortClient::on_settlement(TelnetVerb verb, std::uint8_t option) {
  output_ += greeting_.answer_to(verb, option);
  if (state_ != State::failed && !greeting_.refusal().empty()) fail(greeting_.refusal());
}

void ComPortClient::on_subnegotiation(std::uint8_t option, std::string_view content) {
  if (option != com_port_control || content.empty()) return;
  const int command = static_cast<std::uint8_t>(content.front()) - from_server;
  content.remove_prefix(1);
  if (command == suspend || command == resume) suspended_ = command == suspend;
  if (command == purge) discarding_ = false;
  const auto item = std::ranges::find(items_, command, &Item::command);
  if (item == items_.end() || item->answered) return;
  item->answered = true;
  item->refused = value_of(item->command, content) != item->value;
}

// Data.

void ComPortClient::on_data(std::string_view bytes) {
  if (!settings_) return;
  data_in_ += bytes.substr(0, in_buffer_size - data_in_.size());
}

void ComPortClient::send(std::string_view data) {
  data_out_ += data;
}

void ComPortClient::discard() {
  data_out_.clear();
  discarding_ = true;
  output_ += request(purge, purge_to_scanner);
}

std::string ComPortClient::take_output() {
  if (state_ == State::ready && !suspended_) {
    output_ += telnet_data(std::exchange(data_out_, {}));
  }
  return std::exchange(output_, {});
}

std::string ComPortClient::take_data() {
  return std::exchange(data_in_, {});
}

}  // namespace orvex
