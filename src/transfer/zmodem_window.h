#pragma once

#include <cstddef>
#include <cstdint>

#include "base/clock.h"

namespace orvex {

/// What of a file was sent, what the receiver has acknowledged, and how much more may go before it
/// answers.
///
/// The window begins with what the line carries in 1.4 s. Each answer then tells how many bytes the
/// line could have carried between a request and its answer, and the window becomes that and two
/// pieces: if that is more, it grows by no more than was acknowledged; if it is less, by an
/// eighth of the difference. A loss halves it. The most is what the line carries in 2.8 s, at most
/// 32 KiB. A line whose answers prove that bytes arrive in less time than its rate gives them (a
/// USB device or a pseudo-terminal, for which the rate is a mere number) gets 64 KiB: there a
/// repeat costs next to nothing, and turns cost more than bytes.
class ZmodemWindow {
 public:
  /// `bits_per_second` of the line, 0 if not known.
  explicit ZmodemWindow(std::uint32_t bits_per_second);

  /// Sends from `place`, which the receiver asked for; what was under way counts as gone.
  void restart_at(std::uint64_t place, Time now);
  /// Whether `place` is asked for where the last restart was, and too soon for a word about what
  /// went out since: the receiver says the same thing twice. True once for each restart.
  bool is_echo(std::uint64_t place, Time now);
  /// Goes back to what the receiver has acknowledged.
  void go_back() { offset_ = asked_ = acknowledged_; }
  void sent(std::size_t length, bool answer_asked);
  /// So many bytes, framing and all, went to the line.
  void handed_over(std::size_t bytes, Time now);
  /// The receiver has all bytes before `place`; how many of them are news.
  std::size_t acknowledge(std::uint64_t place, Time now);

  /// After the answer to a request that acknowledged `news` bytes: the window moves to what the
  /// line has shown to hold, and `spare` bytes. `unsent` bytes were not handed over yet.
  void fit(std::size_t news, std::size_t spare, std::size_t unsent, Time now);
  /// After all was acknowledged that may go at a time.
  void grow() { size_ = size_ * 2 < most_ ? size_ * 2 : most_; }
  /// After a loss.
  void shrink(std::size_t least) { size_ = size_ / 2 > least ? size_ / 2 : least; }
  /// After a silence: no more than `size`.
  void collapse(std::size_t size) { size_ = size_ < size ? size_ : size; }

  /// Bytes that may be under way.
  std::size_t size() const { return outruns_rate_ ? unpaced : size_; }
  bool has_room(std::size_t length) const;
  /// Whether an answer is to be asked for after the next `length` bytes.
  bool wants_answer(std::size_t length) const;

  /// Next byte to send.
  std::uint64_t offset() const { return offset_; }
  std::uint64_t acknowledged() const { return acknowledged_; }
  bool all_acknowledged() const { return acknowledged_ == offset_; }
  /// The highest offset() so far.
  std::uint64_t sent_most() const { return sent_most_; }
  /// Whether the line has shown that it is faster than its rate.
  bool outruns_rate() const { return outruns_rate_; }
  /// When the line, by its rate, has no more than `ahead` bytes before it. `unsent` were not handed
  /// over yet.
  Time ready_for_more(std::size_t ahead, std::size_t unsent) const;
  /// When what was handed over will have left the machine.
  Time left(Time now) const;

 private:
  static constexpr std::size_t unpaced = 65536;

  bool too_early_for_rate(Time now) const;

  const Time byte_time_;
  const std::size_t most_;
  std::size_t size_;
  bool outruns_rate_ = false;
  bool disturbed_ = false;  // what stands on the line before the next answer is not known
  Time busy_until_{};       // by the rate of the line
  Time heard_from_{};       // before, the receiver can't speak of what went out since the restart
  std::uint64_t offset_ = 0;
  std::uint64_t asked_ = 0;  // the last answer asked for covers the bytes before this
  std::uint64_t acknowledged_ = 0;
  std::uint64_t sent_most_ = 0;
};

}  // namespace orvex
