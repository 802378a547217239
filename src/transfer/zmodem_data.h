#pragma once

#include "transfer/zmodem_data_clock.h"
#include "transfer/zmodem_frames.h"
#include "transfer/zmodem_phase.h"

namespace orvex {

/// Sends the file's bytes. The file's end follows at once.
///
/// A receiver that has shown that it answers requests (ZCRCQ) gets as much as the window allows
/// before its answers. Before that, and if it never does, each run waits for its answer. One
/// that took data without any answer gets the rest without a wait.
///
/// Waits for ZACK. Sends again from where ZRPOS says, at once; from the last ZACK at a ZNAK, and
/// after 10 s of silence. A damaged answer to a wait is taken for its ZACK, twice in a row: a
/// receiver that meant something else says so at the next frame. Elsewhere it brings the repeat
/// forward to a second from then, and a ZACK that is no news to a second after the last bytes.
/// Gives up after 60 s without progress, after 120 s with less than a KiB, or after a hundred
/// losses at one place.
class ZmodemData final : public ZmodemPhase {
 public:
  ZmodemData(ZmodemTransfer& transfer, Time now);
  void on_header(const ZmodemHeader& header, Time now) override;
  void on_damaged(Time now) override;
  bool produce(Time now) override;
  void handed_over(Time left, bool all) override;
  Time wake() const override;
  void tick(Time now) override;

 private:
  void on_position(std::uint32_t place, Time now);
  void on_acknowledged(std::uint32_t place, Time now);
  void send_again_from(std::uint64_t place, Time now);
  void repeat();
  bool count_loss(std::uint64_t place);
  void gain(std::uint64_t place, Time now);

  bool may_send() const;
  bool paced_by_rate() const;
  bool answers(ZmodemAnswers which) const { return transfer_.answers == which; }

  ZmodemDataClock clock_;
  ZmodemFrames frames_;
  bool guessing_ = false;          // the next frame may go out without its answer
  int guesses_ = 0;                // in a row
  int silences_ = 0;               // in a row
  Time held_until_ = Time::max();  // by the rate
};

}  // namespace orvex
