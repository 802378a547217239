#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "base/clock.h"

namespace orvex {

/// A log of every byte on the line, for people: one line for each frame, answer or line of text,
/// with the time of its first byte in seconds since the program's start and its direction.
///
///     0.004310 > SOH "<HARDRV:>" EOT
///     0.016204 < ACK
///     0.021377 < "2.0B" CR LF
///
/// Text stands in quotes, with \\ and \" for these two and \x85 for 80 to 9F; control characters
/// stand outside under their names. Bytes of a transfer are hexadecimal.
class Trace {
 public:
  /// `clock` must outlive the trace. Throws RunTimeError if the file can't be written.
  Trace(const Clock& clock, const std::filesystem::path& path);
  ~Trace() { flush(); }
  Trace(const Trace&) = delete;
  Trace& operator=(const Trace&) = delete;

  void sent(std::string_view bytes, bool transfer);
  void received(std::string_view bytes, bool transfer);
  /// What happens to the line itself.
  void event(std::string_view text);
  /// Writes what is still incomplete. False if the file couldn't take everything.
  bool flush();

 private:
  struct Direction {
    char mark;
    std::string pending;
    Time begun{};
  };

  void take(Direction& direction, std::string_view bytes, bool transfer);
  void take_whole(Direction& direction);
  void write(const Direction& direction, std::string_view bytes);
  void write_line(Time at, char mark, const std::string& text);

  const Clock& clock_;
  std::ofstream file_;
  Direction out_{'>', {}};
  Direction in_{'<', {}};
};

/// The bytes as a trace shows them.
std::string traced_text(std::string_view bytes);
std::string traced_hex(std::string_view bytes);

}  // namespace orvex
