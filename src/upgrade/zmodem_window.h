#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "window/clock.h"

namespace orvex {

/// What of a file was sent, what the receiver is known to have, and how much more may go before it
/// answers: 2 pieces, or 4 KiB where the line is fast. A line is fast by its rate (above 200
/// kbit/s), or because answers come within 10 ms, as on USB ports, whose rate means nothing.
class ZmodemWindow {
 public:
  static constexpr std::size_t largest_piece = 1024;
  static constexpr std::size_t largest = 4096;

  /// `bits_per_second` of the line, 0 where not known. Pieces have 32 to 1024 bytes: below 8,200
  /// bits a second they get smaller, so that each takes about a second.
  explicit ZmodemWindow(std::uint32_t bits_per_second);

  /// Sends from `place`, which the receiver asked for.
  void restart_at(std::uint64_t place);
  /// Goes back to what the receiver is known to have.
  void go_back() { offset_ = asked_ = acknowledged_; }
  /// Goes back to `place`, which lies between acknowledged() and offset().
  void go_back_to(std::uint64_t place) { offset_ = asked_ = place; }
  void sent(std::size_t length, bool answer_asked);
  /// All that was sent has been handed to the line.
  void handed_over(Time now);
  /// The receiver has all bytes before `place`; false where that is no news.
  bool acknowledge(std::uint64_t place, Time now);

  /// Whether `length` bytes more may be sent.
  bool has_room(std::size_t length) const;
  /// Whether an answer is to be asked for behind the next `length` bytes.
  bool wants_answer(std::size_t length) const;

  std::size_t piece() const { return piece_; }
  /// Bytes between two waits for an answer, where the receiver sets no limit of its own.
  std::size_t segment() const { return piece_ == largest_piece ? largest : 2 * piece_; }
  /// Next byte to send.
  std::uint64_t offset() const { return offset_; }
  std::uint64_t acknowledged() const { return acknowledged_; }
  /// The highest offset() so far.
  std::uint64_t sent_most() const { return sent_most_; }
  bool ever_acknowledged() const { return ever_acknowledged_; }

 private:
  std::size_t limit() const { return fast_ ? largest : 2 * piece_; }

  const bool fast_rate_;
  const std::size_t piece_;
  bool fast_;
  bool ever_acknowledged_ = false;
  std::uint64_t offset_ = 0;
  std::uint64_t asked_ = 0;  // the last answer asked for covers the bytes before this
  std::uint64_t acknowledged_ = 0;
  std::uint64_t sent_most_ = 0;
  std::uint64_t timed_place_ = 0;
  std::optional<Time> timed_since_;  // timed_place_ was handed over then
};

}  // namespace orvex
