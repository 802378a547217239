#pragma once

#include <cstddef>
#include <cstdint>

#include "window/clock.h"

namespace orvex {

/// What of a file was sent, what the receiver is known to have, and how much more may go before it
/// answers: 2 pieces at first, so that a repeat costs little. That becomes 4 KiB, until something
/// has to be repeated, once the line ran dry (answers take long, or this machine is busy), and is
/// 4 KiB all along above 200 kbit/s. Where answers prove that bytes reach the receiver in less time
/// than the rate gives them (a USB device or a pseudo-terminal, for which the rate is a mere
/// number), a repeat costs next to nothing and it becomes 64 KiB.
class ZmodemWindow {
 public:
  static constexpr std::size_t largest_piece = 1024;
  static constexpr std::size_t largest = 4096;
  static constexpr std::size_t unpaced = 65536;

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
  /// So many bytes, framing and all, went to the line.
  void handed_over(std::size_t bytes, Time now);
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
  /// Whether the line has shown that it is faster than its rate.
  bool outruns_rate() const { return outruns_rate_; }

 private:
  std::size_t limit() const;
  bool too_early_for_rate(Time now) const;

  void ran_dry() { large_ = large_ || (!repeated_ && piece_ == largest_piece); }

  const bool fast_;
  const Time byte_time_;
  const std::size_t piece_;
  bool large_;
  bool outruns_rate_ = false;
  Time busy_until_{};  // by the rate of the line
  bool repeated_ = false;
  bool ever_acknowledged_ = false;
  std::uint64_t offset_ = 0;
  std::uint64_t asked_ = 0;  // the last answer asked for covers the bytes before this
  std::uint64_t acknowledged_ = 0;
  std::uint64_t sent_most_ = 0;
};

}  // namespace orvex
