#include "link/serial_control.h"

#include <utility>

#include "base/run_time_error.h"

namespace orvex {
namespace {

constexpr int zmodem = 5;

RunTimeError invalid_value() {
  return {error_number::invalid_value, "Invalid property value"};
}

}  // namespace

SerialControl::SerialControl(const Clock& clock, Line& line, EngineFactory make_engine)
    : line_(line), transfer_(clock, line, std::move(make_engine)) {
  transfer_.progress = [this](std::int32_t done) {
    if (FileProgress) FileProgress(done);
  };
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
    if (transfer_.is_on()) transfer_.stop();
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
  if (!on) return transfer_.stop();
  require_open();
  if (protocol_ != zmodem) throw invalid_value();
  transfer_.start(file_name_, parse_settings(settings_).value().baud);
}

void SerialControl::bytes_arrived() {
  if (transfer_.is_on()) return transfer_.receive();
  if (receive_threshold_ > 0 && Receive &&
      line_.waiting() >= static_cast<std::size_t>(receive_threshold_)) {
    Receive();
  }
}

void SerialControl::bytes_sent() {
  if (transfer_.is_on()) transfer_.work();
}

void SerialControl::line_lost(std::string_view why) {
  transfer_.lose_line();
  if (Lost) Lost(why);
}

void SerialControl::require_open() const {
  if (!line_.is_open()) throw port_not_open_error();
}

}  // namespace orvex
