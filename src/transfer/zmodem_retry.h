#pragma once

#include <cstddef>
#include <cstdint>

namespace orvex {

/// How often a place of the file is tried, and in how small pieces.
///
/// A piece has what the line carries in about a second, 32 to 1024 bytes. It halves when a loss
/// follows the last one within eight pieces, and doubles after 24 pieces without one: so pieces are
/// about as long as the line lets through, and few of their bytes are framing.
class ZmodemRetry {
 public:
  static constexpr std::size_t largest_piece = 1024;
  static constexpr std::size_t smallest_piece = 32;

  /// `bits_per_second` of the line, 0 if not known.
  explicit ZmodemRetry(std::uint32_t bits_per_second);

  /// What is sent from `place` on was lost. False once it was tried a hundred times in vain.
  bool lost(std::uint64_t place);
  /// The receiver has all bytes before `place`, which is news.
  void gained(std::uint64_t place);

  std::size_t piece() const { return piece_; }
  /// A place that was lost again and again gets a piece at a time.
  bool one_at_a_time() const { return attempts_ > attempts_at_two; }
  /// Bytes that keep a line without latency busy while an answer comes back.
  std::size_t in_flight() const { return one_at_a_time() ? piece_ : 2 * piece_; }

 private:
  static constexpr int attempts_at_two = 5;

  const std::size_t most_;
  std::size_t piece_;
  std::uint64_t place_ = 0;    // that is tried
  int attempts_ = 0;           // in vain, there
  std::uint64_t reached_ = 0;  // by the receiver
  std::uint64_t good_from_ = 0;
};

}  // namespace orvex
