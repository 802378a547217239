#include "link/serial_control.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "base/run_time_error.h"

namespace orvex {
namespace {

using namespace std::chrono_literals;

constexpr int zmodem = 5;
/// How often a transfer looks whether the line has room again.
constexpr Time room_poll = 5ms;
/// A line that takes bytes without end still gives the window its turn.
constexpr std::size_t most_in_one_step = 32768;

RunTimeError invalid_value() {
  return {error_number::invalid_value, "Invalid property value"};
}

/// `done` bytes of a file of `total` in the unit of FileTotal. A part never counts as the whole.
std::int32_t as_count(std::uint64_t done, std::uint64_t total) {
  constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
  constexpr std::uint64_t kib = 1024;
  const std::uint64_t unit = total > most ? kib : 1;
  const std::uint64_t count = done < total ? done / unit : (total + unit - 1) / unit;
  return static_cast<std::int32_t>(std::min(count, most));
}

}  // namespace

SerialControl::SerialControl(const Clock& clock, Line& line, EngineFactory make_engine)
    : clock_(clock), line_(line), make_engine_(std::move(make_engine)) {
  line_.listen(*this);
}

void SerialControl::CommPort(int number) {
  if (number < 1 || number > 6) throw invalid_value();
  comm_port_ = number;
}

Time SerialControl::Settings(std::string_view text) {
  const auto settings = parse_settings(text);
  if (!settings) throw invalid_value();
  const Time waited = line_.is_open() ? line_.configure(*settings) : Time{};
  settings_ = without_blanks(text);
  return waited;
}

void SerialControl::PortOpen(bool open) {
  if (open == line_.is_open()) return;
  if (open) {
    device_ = device_path(comm_port_);
    line_.open(comm_port_, parse_settings(settings_).value());
  } else {
    if (engine_) stop_transfer();
    line_.close();
  }
}

std::string SerialControl::about_port(std::string_view what) const {
  return "COM " + std::to_string(comm_port_) + (device_.empty() ? "" : ", ") + device_ + ": " +
         std::string(what);
}

void SerialControl::Output(std::string_view text) {
  require_open();
  line_.write(text);
}

std::string SerialControl::Input() {
  require_open();
  return line_.read();
}

void SerialControl::InputLen(int characters) {
  if (characters != 0) throw invalid_value();
}

void SerialControl::FileSendOn(bool on) {
  if (on == FileSendOn()) return;
  if (on) {
    start_transfer();
  } else {
    stop_transfer();
  }
}

void SerialControl::bytes_arrived() {
  if (engine_) {
    engine_->receive(line_.read(), clock_.now());
    work_transfer();
    return;
  }
  if (receive_threshold_ > 0 && Receive &&
      line_.waiting() >= static_cast<std::size_t>(receive_threshold_)) {
    Receive();
  }
}

void SerialControl::bytes_sent() {
  if (engine_) work_transfer();
}

void SerialControl::line_lost(std::string_view why) {
  if (engine_) end_transfer("the line is gone");
  if (Lost) Lost(why);
}

std::optional<Time> SerialControl::due() const {
  if (!engine_) return std::nullopt;
  const auto wake = engine_->wake();
  if (look_again_ == Time::max()) return wake;
  return wake ? std::min(*wake, look_again_) : look_again_;
}

void SerialControl::run() {
  if (!engine_) return;
  engine_->tick(clock_.now());
  work_transfer();
}

void SerialControl::require_open() const {
  if (!line_.is_open()) throw port_not_open_error();
}

void SerialControl::start_transfer() {
  require_open();
  if (protocol_ != zmodem) throw invalid_value();
  engine_ = make_engine_(file_name_, parse_settings(settings_).value().baud, clock_.now());
  file_total_ = as_count(engine_->total(), engine_->total());
  progress_told_ = 0;
  file_reason_.clear();
  work_transfer();
}

void SerialControl::stop_transfer() {
  try {
    if (engine_->state() == FileEngine::State::running) engine_->cancel(clock_.now());
    send_what_fits(std::numeric_limits<std::size_t>::max());
  } catch (const RunTimeError&) {
    // The device is gone, and with it whoever should have been told of the stop.
  }
  end_transfer(engine_->reason());
}

void SerialControl::work_transfer() {
  try {
    send_what_fits(engine_->most_unsent());
  } catch (const RunTimeError& error) {
    end_transfer(error.text);
  }
  if (!engine_) return;
  report_progress();
  if (engine_ && engine_->finished()) end_transfer(engine_->reason());
}

void SerialControl::end_transfer(std::string_view reason) {
  file_reason_ = reason;
  engine_.reset();
}

void SerialControl::send_what_fits(std::size_t most_unsent) {
  if (engine_->take_discard()) line_.discard_unsent();
  std::size_t sent = 0;
  std::size_t unsent = line_.unsent();
  while (unsent < most_unsent && sent < most_in_one_step) {
    const auto bytes = engine_->transmit(most_unsent - unsent, clock_.now());
    if (bytes.empty()) break;
    line_.write(bytes);
    sent += bytes.size();
    unsent = line_.unsent();
  }
  if (sent >= most_in_one_step) {
    look_again_ = clock_.now();
  } else {
    look_again_ = unsent > 0 ? clock_.now() + room_poll : Time::max();
  }
}

void SerialControl::report_progress() {
  const auto progress = engine_->progress();
  if (progress == progress_told_) return;
  progress_told_ = progress;
  if (FileProgress) FileProgress(as_count(progress, engine_->total()));
}

}  // namespace orvex
