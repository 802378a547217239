#pragma once

#include "transfer/zmodem_phase.h"

namespace orvex {

/// Offers the file.
///
/// Sends ZFILE with the file's name, size, time and mode: again at once if the receiver asks for
/// it by ZRINIT or ZNAK, otherwise after 45 s, ten times at most. For a loader may erase its flash
/// at each ZFILE that it reads, and answer only then. A ZRINIT within a second of the ZFILE, up to
/// three of them, crossed it: receivers say it unasked, and once for each ZRQINIT.
/// Waits for ZRPOS, then the data follows from there. A damaged answer is taken for a ZRPOS at 0: a
/// receiver that meant something else says so at the data.
/// Gives up after 100 s.
class ZmodemOffer final : public ZmodemPhase {
 public:
  ZmodemOffer(ZmodemTransfer& transfer, Time now);
  void on_header(const ZmodemHeader& header, Time now) override;
  void on_damaged(Time now) override;
  bool produce(Time now) override;
  void handed_over(Time left, bool all) override;
  Time wake() const override;
  void tick(Time now) override;

 private:
  void on_position(std::uint32_t place, Time now);
  void on_ready(const ZmodemHeader& zrinit, Time now);
  void offer_again();

  ZmodemClock clock_;
  bool due_ = true;
  Time crossing_until_{};
  int may_cross_ = 3;
};

}  // namespace orvex
