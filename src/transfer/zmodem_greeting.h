#pragma once

#include <optional>

#include "transfer/zmodem_phase.h"

namespace orvex {

/// Finds the receiver.
///
/// Sends ZRQINIT: again after 10 s, and at once at a ZNAK or a damaged answer, ten times at most.
/// Waits for ZRINIT, then the offer follows. What belongs to an earlier transfer is passed over; a
/// cancel or an end that comes within 0.5 s may, too, and counts only if no ZRINIT follows it
/// within 0.5 s.
/// Gives up after 30 s.
class ZmodemGreeting final : public ZmodemPhase {
 public:
  ZmodemGreeting(ZmodemTransfer& transfer, Time now);
  void on_header(const ZmodemHeader& header, Time now) override;
  void on_damaged(Time now) override;
  void on_cancelled(Time now) override;
  bool produce(Time now) override;
  void handed_over(Time left, bool all) override;
  Time wake() const override;
  void tick(Time now) override;

 private:
  void on_goodbye(std::string_view why, Time now);

  ZmodemClock clock_;
  const Time began_;
  bool due_ = true;
  int asked_ = 0;
  std::optional<Time> goodbye_by_;
  std::string_view goodbye_;
};

}  // namespace orvex
