#pragma once

#include "transfer/zmodem_phase.h"

namespace orvex {

/// Ends the file.
///
/// Sends ZEOF: again at once at a ZNAK, a second after a damaged answer, otherwise after 10 s. From
/// the second silence on, an empty ZDATA at the file's end comes first: a receiver that misses
/// data, and whose ZRPOS was lost, then asks for it again.
/// Waits for ZRINIT, then the farewell follows. ZRPOS leads back to the data, and so does a ZACK
/// that is no news a second or more after the ZEOF: the receiver still waits there. Gives up after
/// 120 s, however often it came back here without progress.
class ZmodemFileEnd final : public ZmodemPhase {
 public:
  ZmodemFileEnd(ZmodemTransfer& transfer, Time now);
  void on_header(const ZmodemHeader& header, Time now) override;
  void on_damaged(Time now) override;
  bool produce(Time now) override;
  void handed_over(Time left, bool all) override;
  Time wake() const override;
  void tick(Time now) override;

 private:
  void on_position(std::uint32_t place, Time now);
  void on_acknowledged(std::uint32_t place, Time now);

  bool sent() const { return sent_at_ != Time::max(); }

  ZmodemClock clock_;
  bool due_ = true;
  Time sent_at_ = Time::max();  // for the first time
  int silences_ = 0;
};

}  // namespace orvex
