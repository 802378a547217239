#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/clock.h"
#include "link/line_settings.h"

namespace orvex {

/// Characters that the line keeps for a reader that doesn't come.
inline constexpr std::size_t in_buffer_size = 32000;

/// A serial line, of the machine or at the other end of the network, below the serial control. All
/// failures are thrown as RunTimeError. DTR and RTS are raised while it is open, and there is no
/// flow control.
///
/// open() and configure() of a line in the network pump until the other end has answered or a limit
/// has passed. So both may throw Ended, and what a pump delivers comes inside them: ticks, clicks,
/// and the loss of this line. A second one inside the first throws.
class Line {
 public:
  /// Hears of the line, on the one thread and only inside a pump.
  class Listener {
   public:
    virtual ~Listener() = default;
    virtual void bytes_arrived() = 0;
    /// unsent() has become less. Not every line can tell.
    virtual void bytes_sent() = 0;
    /// The device went away; `why` in a few words. The line has closed itself, once.
    virtual void line_lost(std::string_view why) = 0;
  };

  virtual ~Line() = default;
  /// `listener` must outlive the line's last pump.
  virtual void listen(Listener& listener) = 0;

  /// Opens the device of port COM `com_port` with nothing in either direction. The text of its
  /// failure is the cause in a few words, such as "held by another program".
  virtual void open(int com_port, const LineSettings& settings) = 0;
  /// Throws away what has not been sent. Does no harm on a closed line.
  virtual void close() = 0;
  virtual bool is_open() const = 0;
  /// Path of the device that port COM `com_port` stands for, empty if the machine has no such port.
  virtual std::string device_path(int com_port) const = 0;

  /// Changes the settings of the open line, for the next byte on: all of them, or none and a throw.
  /// Gives how long another machine was waited for, 0 where none was.
  virtual Time configure(const LineSettings& settings) = 0;
  virtual void write(std::string_view bytes) = 0;
  /// All that has come and was not read yet.
  virtual std::string read() = 0;
  /// How many bytes read() would give.
  virtual std::size_t waiting() const = 0;
  /// How many of the written bytes have not left the machine, as far as it knows.
  virtual std::size_t unsent() const = 0;
  virtual void discard_unsent() = 0;
};

}  // namespace orvex
