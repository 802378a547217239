#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <random>
#include <utility>

#include "base/clock.h"

namespace orvex::bench {

/// What a direction of the relayed line is like.
struct LineKind {
  Time byte_time{};             ///< 0: as fast as both ends go.
  Time latency{};               ///< Between the last bit of a byte and its arrival.
  std::size_t flip_every = 0;   ///< One bit of each so many bytes is turned; 0: none.
  std::size_t drop_every = 0;   ///< One of each so many bytes is lost; 0: none.
  std::size_t flip_one_in = 0;  ///< So too, by chance.
  std::uint32_t seed = 1;       ///< Of that chance.
  Time dies_after{};            ///< From its first pump on; nothing comes through then. 0: never.
  std::size_t buffer = 0;       ///< Bytes taken from the source ahead of the line, as adapters do.
};

/// One direction of a line between two descriptors, in real time. It takes from the source what the
/// line could carry by now and what its buffer holds, no more.
class RelayedLine {
 public:
  /// Both descriptors are made non-blocking; they stay the caller's.
  RelayedLine(int from, int to, LineKind kind);

  /// Moves what is due. Call at next_due(), or when `from` can be read while that is Time::max().
  void pump(Time now);
  Time next_due() const;
  bool idle() const { return idle_; }
  /// The source is gone and all its bytes have arrived.
  bool over() const { return (source_gone_ || dead_) && under_way_.empty(); }
  int source() const { return from_; }
  std::size_t bytes() const { return bytes_; }
  /// When the last byte so far had left the source.
  Time last_byte() const { return last_byte_; }
  Time dies_at() const { return dies_at_; }
  Time source_left_at() const { return source_left_at_; }

 private:
  void take(Time now);
  Time next_take() const;
  void deliver(Time now);
  void carry(char byte);

  const int from_;
  const int to_;
  const LineKind kind_;
  const std::size_t chunk_;
  bool idle_ = true;
  bool source_gone_ = false;
  bool dead_ = false;
  Time dies_at_ = Time::max();
  Time source_left_at_{};
  Time free_at_{};
  Time blocked_until_{};  // the receiver takes nothing
  Time last_byte_{};
  std::size_t bytes_ = 0;
  std::mt19937 random_;
  std::deque<std::pair<Time, char>> under_way_;
};

/// Relays both directions until both are over, the sender `there` is gone for 3 s, or `until` has
/// come.
void relay(RelayedLine& there, RelayedLine& back, Time until);

}  // namespace orvex::bench
