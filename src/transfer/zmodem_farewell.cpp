#include "transfer/zmodem_farewell.h"

#include <utility>

namespace orvex {
namespace {

constexpr Time limit = std::chrono::seconds(5);
constexpr int most_sent = 5;

}  // namespace

ZmodemFarewell::ZmodemFarewell(ZmodemTransfer& transfer, Time now)
    : ZmodemPhase(transfer), clock_(now, limit, limit) {}

void ZmodemFarewell::on_header(const ZmodemHeader& header, Time) {
  if (header.frame == ZmodemFrame::znak) due_ = sent_ < most_sent;
  if (header.frame != ZmodemFrame::zfin || sent_ == 0) return;
  transfer_.wire.add_plain("OO");
  transfer_.step = ZmodemStep::over;
}

void ZmodemFarewell::on_cancelled(Time) {
  transfer_.step = ZmodemStep::over;
}

bool ZmodemFarewell::produce(Time) {
  if (!std::exchange(due_, false)) return false;
  ++sent_;
  transfer_.wire.add_hex_header(ZmodemFrame::zfin, 0);
  return true;
}

void ZmodemFarewell::handed_over(Time left, bool all) {
  if (all) clock_.sent(left);
}

void ZmodemFarewell::tick(Time now) {
  if (now >= clock_.give_up()) transfer_.step = ZmodemStep::over;
}

}  // namespace orvex
