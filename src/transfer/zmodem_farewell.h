#pragma once

#include "transfer/zmodem_phase.h"

namespace orvex {

/// Ends the session, after a complete file and after one that the receiver refused.
///
/// Sends ZFIN: again at once at a ZNAK, five times at most.
/// Waits for ZFIN, answers "OO" and is over; so it is at a cancel.
/// Gives up after 5 s. Nothing that happens here changes what became of the file.
class ZmodemFarewell final : public ZmodemPhase {
 public:
  ZmodemFarewell(ZmodemTransfer& transfer, Time now);
  void on_header(const ZmodemHeader& header, Time now) override;
  void on_cancelled(Time now) override;
  bool produce(Time now) override;
  void handed_over(Time left, bool all) override;
  Time wake() const override { return clock_.give_up(); }
  void tick(Time now) override;

 private:
  ZmodemClock clock_;
  bool due_ = true;
  int sent_ = 0;
};

}  // namespace orvex
