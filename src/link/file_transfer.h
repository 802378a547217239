#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/timer.h"
#include "link/line.h"
#include "transfer/file_engine.h"

namespace orvex {

/// Gives the engine that sends the file at `path` on a line of this rate in bits a second. Throws
/// RunTimeError if the file can't be read.
using EngineFactory = std::function<std::unique_ptr<FileEngine>(const std::filesystem::path& path,
                                                                int rate, Time now)>;

/// The sending of one file at a time on a line: hands the engine what arrives, asks it for bytes
/// whenever the line has room, and wakes it when it wants to be woken.
class FileTransfer {
 public:
  /// `clock` and `line` must outlive the transfer.
  FileTransfer(const Clock& clock, Line& line, EngineFactory make_engine);

  /// Raised as it goes on, with what is done so far in the unit of total().
  std::function<void(std::int32_t)> progress;

  /// Starts and returns at once. Throws RunTimeError if the file can't be sent.
  void start(const std::filesystem::path& path, int rate);
  /// What is queued is thrown away, and the cancel sequence goes out. Only while is_on().
  void stop();
  /// Ends it if the line is gone.
  void lose_line();

  bool is_on() const { return engine_ != nullptr; }
  /// Size of the file under transfer, or of the last one: in bytes up to 2 GiB, else in KiB, a part
  /// of one counting as a whole.
  std::int32_t total() const { return total_; }
  /// Why the last transfer failed, in plain English; empty while one runs and after a complete one.
  const std::string& reason() const { return reason_; }

  /// The line has bytes for it.
  void receive();
  /// The line may have room.
  void work();
  /// As Scheduled.
  std::optional<Time> due() const;
  void run();

 private:
  void send_what_fits(std::size_t most_unsent);
  void report_progress();
  void end(std::string_view reason);

  const Clock& clock_;
  Line& line_;
  EngineFactory make_engine_;
  std::unique_ptr<FileEngine> engine_;
  std::int32_t total_ = 0;
  std::string reason_;
  std::uint64_t progress_told_ = 0;
  Time look_again_{};
};

}  // namespace orvex
