#include "transfer/zmodem_phase.h"

#include <utility>

namespace orvex {

void ZmodemPhase::on_cancelled(Time) {
  transfer_.end_quietly("the scanner cancelled the transfer");
}

void ZmodemPhase::on_other_header(const ZmodemHeader& header, Time now) {
  bool granted = true;
  switch (header.frame) {
    case ZmodemFrame::zskip:
      return transfer_.part("the scanner refused the file");
    case ZmodemFrame::zferr:
      return transfer_.part("the scanner could not write the file");
    case ZmodemFrame::zabort:
      return transfer_.part("the scanner aborted the transfer");
    case ZmodemFrame::zfin:
      return transfer_.part("the scanner ended the transfer too early");
    case ZmodemFrame::zcan:
      return on_cancelled(now);
    case ZmodemFrame::zcrc:
      granted = transfer_.favours.ask_crc(header.value, transfer_.size);
      break;
    case ZmodemFrame::zchallenge:
      granted = transfer_.favours.ask_echo(header.value);
      break;
    default:
      break;  // one that came late, or a sender's: an echo
  }
  if (!granted) transfer_.fail("the scanner asked for the same answer again and again");
}

void ZmodemClock::sent(Time left) {
  if (!std::exchange(counting_, true)) give_up_ = left + limit_;
  again_ = left + again_after_;
}

}  // namespace orvex
