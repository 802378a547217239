#include "console/watched_line.h"

#include <algorithm>

#include "console/trace.h"
#include "link/frame.h"

namespace orvex {
namespace {

constexpr std::size_t most_heard = 4096;

}  // namespace

bool WatchedLine::refused() const {
  const auto answer = heard_.find_first_of(std::string{ACK, NAK});
  return answer != std::string::npos && heard_[answer] == NAK;
}

void WatchedLine::listen(Line::Listener& listener) {
  listener_ = &listener;
  line_.listen(*this);
}

void WatchedLine::open(int com_port, const LineSettings& settings) {
  open_failure_.reset();
  lost_.reset();
  try {
    line_.open(com_port, settings);
  } catch (const RunTimeError& error) {
    open_failure_ = error;
    tell("not opened");
    throw;
  }
  tell("opened at " + settings_text(settings));
}

void WatchedLine::close() {
  if (line_.is_open()) tell("closed");
  line_.close();
}

Time WatchedLine::configure(const LineSettings& settings) {
  const Time waited = line_.configure(settings);
  tell(settings_text(settings));
  return waited;
}

void WatchedLine::write(std::string_view bytes) {
  heard_.clear();
  if (trace_ != nullptr) trace_->sent(bytes, transfer_runs());
  line_.write(bytes);
}

std::string WatchedLine::read() {
  std::string bytes = line_.read();
  heard_ += bytes.substr(0, most_heard - std::min(most_heard, heard_.size()));
  if (trace_ != nullptr) trace_->received(bytes, transfer_runs());
  return bytes;
}

void WatchedLine::discard_unsent() {
  tell("what was not sent is thrown away");
  line_.discard_unsent();
}

void WatchedLine::line_lost(std::string_view why) {
  lost_ = why;
  tell("the device went away: " + *lost_);
  listener_->line_lost(why);
}

void WatchedLine::tell(const std::string& event) {
  if (trace_ != nullptr) trace_->event(event);
}

std::string parity_letter(Parity parity) {
  constexpr std::string_view letters = "NOE";
  return {letters[static_cast<std::size_t>(parity)]};
}

std::string settings_text(const LineSettings& settings) {
  return std::to_string(settings.baud) + ',' + parity_letter(settings.parity) + ',' +
         std::to_string(settings.data_bits) + ',' + std::to_string(settings.stop_bits);
}

}  // namespace orvex
