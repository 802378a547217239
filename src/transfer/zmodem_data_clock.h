#pragma once

#include <cstdint>
#include <string_view>

#include "base/clock.h"

namespace orvex {

/// The clocks of the data: how long the receiver may owe an answer, how slowly it may take the
/// file, and when a silence is answered by a repeat.
class ZmodemDataClock {
 public:
  /// `place` is where the data begins.
  ZmodemDataClock(std::uint64_t place, Time now);

  /// Bytes that the receiver has to answer leave the machine at `left`.
  void handed_over(Time left);
  /// The receiver has all bytes before `place`, which is news. It owes more or not.
  void gained(std::uint64_t place, bool owes_more, Time now);
  /// The next repeat is due by `at`.
  void hurry(Time at) { again_ = at < again_ ? at : again_; }
  /// What was sent goes again.
  void restarted() { again_ = Time::max(); }

  /// 60 s after the last progress, or after the first bytes since then that it owes an answer to;
  /// also if it took 120 s for less than a KiB.
  Time give_up() const;
  std::string_view reason() const;
  /// 10 s after the last bytes, or after progress.
  Time again() const { return again_; }
  /// So long after the last bytes or progress.
  Time quiet_for(Time time) const { return quiet_since_ + time; }

 private:
  Time owed_since_;
  bool owes_ = false;
  Time quiet_since_;
  Time again_ = Time::max();
  std::uint64_t pace_mark_;
  Time pace_by_;
};

}  // namespace orvex
