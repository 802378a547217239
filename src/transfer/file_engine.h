#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/clock.h"

namespace orvex {

/// Sender's side of a file-transfer protocol: bytes in, bytes out, a clock handed in. It knows no
/// port and no thread.
class FileEngine {
 public:
  enum class State { running, complete, failed };

  virtual ~FileEngine() = default;
  /// Takes what came from the line, cut anywhere.
  virtual void receive(std::string_view bytes, Time now) = 0;
  /// Lets time-outs happen; wanted at or after wake().
  virtual void tick(Time now) = 0;
  /// True once after the engine decided that what it has handed over and the line has not yet sent
  /// is to be thrown away. To be asked before each transmit().
  virtual bool take_discard() = 0;
  /// The next bytes for the line, at most `room`. Empty if there is nothing to send at present.
  virtual std::string transmit(std::size_t room, Time now) = 0;
  /// So many bytes may stand unsent at the line: few if a discard of them would come too late,
  /// many if the line takes them in no time.
  virtual std::size_t most_unsent() const = 0;
  virtual std::optional<Time> wake() const = 0;
  /// The user's stop: what follows from transmit() is the protocol's cancel sequence.
  virtual void cancel(Time now) = 0;
  virtual State state() const = 0;
  /// True once state() isn't running and transmit() has nothing left.
  virtual bool finished() const = 0;
  /// Bytes that the receiver has confirmed. A receiver that confirms nothing within the file counts
  /// as having what left the machine some time ago. total() only once the end is confirmed.
  virtual std::uint64_t progress() const = 0;
  virtual std::uint64_t total() const = 0;
  /// Why it failed, in plain English; empty otherwise.
  virtual std::string_view reason() const = 0;
};

}  // namespace orvex
