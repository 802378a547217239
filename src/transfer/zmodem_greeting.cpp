#include "transfer/zmodem_greeting.h"

#include <algorithm>
#include <utility>

namespace orvex {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Time limit = seconds(30);
constexpr Time again_after = seconds(10);
constexpr Time earlier_transfer = milliseconds(500);
constexpr int most_asked = 10;

}  // namespace

ZmodemGreeting::ZmodemGreeting(ZmodemTransfer& transfer, Time now)
    : ZmodemPhase(transfer), clock_(now, limit, again_after), began_(now) {}

void ZmodemGreeting::on_header(const ZmodemHeader& header, Time now) {
  switch (header.frame) {
    case ZmodemFrame::zrinit:
      if (transfer_.meet(header)) transfer_.step = ZmodemStep::offer;
      return;
    case ZmodemFrame::znak:
      return on_damaged(now);
    case ZmodemFrame::zcan:
      return on_cancelled(now);
    case ZmodemFrame::zfin:
      return on_goodbye("the scanner ended the transfer too early", now);
    case ZmodemFrame::zabort:
      return on_goodbye("the scanner aborted the transfer", now);
    case ZmodemFrame::zchallenge:
      return on_other_header(header, now);
    default:
      return;
  }
}

void ZmodemGreeting::on_damaged(Time) {
  due_ = due_ || asked_ < most_asked;
}

void ZmodemGreeting::on_cancelled(Time now) {
  on_goodbye("the scanner cancelled the transfer", now);
}

void ZmodemGreeting::on_goodbye(std::string_view why, Time now) {
  goodbye_ = why;
  if (now >= began_ + earlier_transfer) return transfer_.end_quietly(why);
  if (!goodbye_by_) goodbye_by_ = now + earlier_transfer;
}

bool ZmodemGreeting::produce(Time) {
  if (!std::exchange(due_, false)) return false;
  ++asked_;
  transfer_.wire.add_hex_header(ZmodemFrame::zrqinit, 0);
  return true;
}

void ZmodemGreeting::handed_over(Time left, bool all) {
  if (all) clock_.sent(left);
}

Time ZmodemGreeting::wake() const {
  return std::min({clock_.give_up(), clock_.again(), goodbye_by_.value_or(Time::max())});
}

void ZmodemGreeting::tick(Time now) {
  if (goodbye_by_ && now >= *goodbye_by_) {
    transfer_.fail(goodbye_);
  } else if (now >= clock_.give_up()) {
    transfer_.fail("the scanner did not ask for the file");
  } else if (now >= clock_.again()) {
    clock_.sent(now);
    due_ = true;
  }
}

}  // namespace orvex
