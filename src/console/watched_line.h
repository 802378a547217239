#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/run_time_error.h"
#include "link/line.h"

namespace orvex {

class Trace;

/// A line that remembers what became of it, since the jobs tell only that something failed. It goes
/// into the trace, if there is one.
class WatchedLine final : public Line, private Line::Listener {
 public:
  /// `line`, and `trace` unless it is null, must outlive this.
  WatchedLine(Line& line, Trace* trace) : line_(line), trace_(trace) {}

  /// True while a file is under transfer.
  std::function<bool()> transfer_runs = [] { return false; };

  /// Why the last opening failed; none if it didn't.
  const std::optional<RunTimeError>& open_failure() const { return open_failure_; }
  /// Why the device went away, until the line is opened again; none if it didn't.
  const std::optional<std::string>& lost() const { return lost_; }
  /// True if the last frame that was written has been answered by NAK.
  bool refused() const;

  void listen(Line::Listener& listener) override;
  void open(int com_port, const LineSettings& settings) override;
  void close() override;
  bool is_open() const override { return line_.is_open(); }
  std::string device_path(int com_port) const override { return line_.device_path(com_port); }
  Time configure(const LineSettings& settings) override;
  void write(std::string_view bytes) override;
  std::string read() override;
  std::size_t waiting() const override { return line_.waiting(); }
  std::size_t unsent() const override { return line_.unsent(); }
  void discard_unsent() override;

 private:
  void bytes_arrived() override { listener_->bytes_arrived(); }
  void bytes_sent() override { listener_->bytes_sent(); }
  void line_lost(std::string_view why) override;
  void tell(const std::string& event);

  Line& line_;
  Trace* trace_;
  Line::Listener* listener_ = nullptr;
  std::optional<RunTimeError> open_failure_;
  std::optional<std::string> lost_;
  std::string heard_;  // since the last frame was written, the head of it
};

/// "N", "O" or "E".
std::string parity_letter(Parity parity);

/// Settings as "9600,N,8,1", with a capital for the parity.
std::string settings_text(const LineSettings& settings);

}  // namespace orvex
