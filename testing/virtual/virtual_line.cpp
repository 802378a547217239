#include "testing/virtual/virtual_line.h"

#include <algorithm>
#include <array>
#include <utility>

#include "link/frame.h"

namespace orvex::testing {
namespace {

constexpr int bits_in_byte = 10;

using ParityName = std::pair<Parity, std::string_view>;
constexpr std::array<ParityName, 3> parities{
    {{Parity::none, "NONE"}, {Parity::odd, "ODD"}, {Parity::even, "EVEN"}}};

Time byte_time(int rate) {
  return Time(1s) * bits_in_byte / rate;
}

/// What a byte at a wrong rate becomes; no ACK, NAK or line end.
char misread(char byte) {
  return static_cast<char>(static_cast<unsigned char>(byte) | 0xC0);
}

RunTimeError not_available(const char* cause) {
  return {error_number::device_error, cause};
}

}  // namespace

VirtualLine::VirtualLine(VirtualWindows& windows, simulator::Scanner& scanner)
    : windows_(windows), scanner_(scanner) {
  windows.join(*this);
}

void VirtualLine::unplug() {
  plugged_ = false;
  if (!open_) return;
  close();
  if (listener_ != nullptr) listener_->line_lost("unplugged");
}

std::string VirtualLine::texts() const {
  std::string all;
  for (const auto& frame : frames) all += frame.text;
  return all;
}

void VirtualLine::open(int com_port, const LineSettings& wanted) {
  if (!plugged_ || !ports.contains(com_port)) throw not_available("no such device");
  if (refuses_open) throw not_available("held by another program");
  await_server();
  open_ = true;
  port = com_port;
  settings = wanted;
  incoming_.clear();
  ++opens;
}

void VirtualLine::close() {
  open_ = false;
  outgoing_.clear();
  received_.clear();
}

std::string VirtualLine::device_path(int com_port) const {
  return ports.contains(com_port) ? "/dev/virtual" + std::to_string(com_port) : std::string{};
}

Time VirtualLine::configure(const LineSettings& wanted) {
  const Time waited = await_server();
  require_open();
  if (refuses_settings) throw error_of(std::make_error_code(std::errc::invalid_argument));
  settings = wanted;
  return waited;
}

/// Keeps the windows alive until the server of a far line has answered.
Time VirtualLine::await_server() {
  const Time began = windows_.now();
  const Time answer = began + 2 * latency + setting_time;
  if (answer == began) return {};
  windows_.at(answer, [] {});
  while (windows_.now() < answer) windows_.pump(Wait::for_event);
  return answer - began;
}

void VirtualLine::write(std::string_view bytes) {
  require_open();
  if (bytes.size() > 2 && bytes.front() == SOH && bytes.back() == EOT) {
    frames.push_back(
        {windows_.now(), std::string(bytes.substr(1, bytes.size() - 2)), settings.baud});
  }
  bytes_written += bytes.size();
  const bool idle = outgoing_.empty();
  outgoing_.insert(outgoing_.end(), bytes.begin(), bytes.end());
  if (!idle || outgoing_.empty()) return;
  outgoing_done_ = windows_.now();
  start_next();
}

std::string VirtualLine::read() {
  require_open();
  return std::exchange(received_, {});
}

void VirtualLine::discard_unsent() {
  if (!outgoing_.empty()) outgoing_.resize(1);  // the byte on the wire goes out all the same
}

std::optional<Time> VirtualLine::due() const {
  auto next = scanner_.due();
  const auto consider = [&](Time time) { next = next ? std::min(*next, time) : time; };
  if (!outgoing_.empty() && !stands) consider(outgoing_done_);
  if (!at_scanner_.empty()) consider(at_scanner_.front().at);
  if (!incoming_.empty()) consider(incoming_.front().at);
  return next;
}

bool VirtualLine::act() {
  const bool had_unsent = !outgoing_.empty();
  move_outgoing();
  let_scanner_hear();
  if (scanner_.wants_unplug()) {
    scanner_.unplugged();
    unplug();
    return true;
  }
  while (true) {
    const auto format = scanner_settings();
    const auto bytes = scanner_.say(windows_.now());
    if (bytes.empty()) break;
    put_on_way(bytes, format);
  }
  bool heard = move_incoming();
  if (had_unsent && outgoing_.empty() && open_ && listener_ != nullptr) {
    listener_->bytes_sent();
    heard = true;
  }
  return heard;
}

LineSettings VirtualLine::scanner_settings() const {
  const auto& parameters = scanner_.parameters;
  const auto parity = std::ranges::find(parities, parameters["RSPRTY"], &ParityName::second);
  return {scanner_.rate(), parity->first, parameters["RSBITS"] == "7" ? 7 : 8,
          parameters["RSSTOP"] == "2" ? 2 : 1};
}

void VirtualLine::match_scanner() {
  const auto parity = std::ranges::find(parities, settings.parity, &ParityName::first);
  scanner_.parameters.apply("<RSBAUD=" + std::to_string(settings.baud) +
                            "><RSPRTY=" + std::string(parity->second) +
                            "><RSBITS=" + std::to_string(settings.data_bits) +
                            "><RSSTOP=" + std::to_string(settings.stop_bits) + ">");
}

void VirtualLine::start_next() {
  outgoing_format_ = settings;
  if (paced) outgoing_done_ += byte_time(settings.baud);
}

void VirtualLine::move_outgoing() {
  while (!stands && !outgoing_.empty() && outgoing_done_ <= windows_.now()) {
    const char byte = outgoing_.front();
    outgoing_.pop_front();
    for (const auto& arrival : to_scanner.pass({&byte, 1})) {
      const Time earliest = at_scanner_.empty() ? Time{} : at_scanner_.back().at;
      const Time at = std::max(outgoing_done_ + arrival.late + latency, earliest);
      if (port == scanner_port) at_scanner_.push_back({arrival.byte, at, outgoing_format_});
    }
    start_next();
  }
}

void VirtualLine::let_scanner_hear() {
  while (!at_scanner_.empty() && at_scanner_.front().at <= windows_.now()) {
    const OnWay next = at_scanner_.front();
    at_scanner_.pop_front();
    const int rate = next.format == scanner_settings() ? next.format.baud : 0;
    scanner_.hear({&next.byte, 1}, rate, windows_.now());
  }
}

void VirtualLine::put_on_way(std::string_view bytes, const LineSettings& format) {
  const bool arrives = open_ && port == scanner_port;
  for (const auto& arrival : to_tool.pass(bytes)) {
    incoming_free_ = std::max(incoming_free_, windows_.now()) + arrival.late;
    if (paced) incoming_free_ += byte_time(format.baud);
    if (arrives) incoming_.push_back({arrival.byte, incoming_free_ + latency, format});
  }
}

bool VirtualLine::move_incoming() {
  bool heard = false;
  while (!incoming_.empty() && incoming_.front().at <= windows_.now()) {
    const OnWay next = incoming_.front();
    incoming_.pop_front();
    if (!open_ || received_.size() >= in_buffer_size) continue;
    received_ += next.format == settings ? next.byte : misread(next.byte);
    heard = true;
  }
  if (heard && listener_ != nullptr) listener_->bytes_arrived();
  return heard;
}

void VirtualLine::require_open() const {
  if (!open_) throw port_not_open_error();
}

}  // namespace orvex::testing
