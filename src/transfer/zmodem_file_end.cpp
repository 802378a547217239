#include "transfer/zmodem_file_end.h"

#include <algorithm>
#include <utility>

namespace orvex {
namespace {

using std::chrono::seconds;

constexpr Time limit = seconds(120);
constexpr Time again_after = seconds(10);
constexpr Time patience = seconds(1);

}  // namespace

ZmodemFileEnd::ZmodemFileEnd(ZmodemTransfer& transfer, Time now)
    : ZmodemPhase(transfer), clock_(now, limit, again_after) {}

void ZmodemFileEnd::on_header(const ZmodemHeader& header, Time now) {
  switch (header.frame) {
    case ZmodemFrame::zrinit:
      if (sent()) transfer_.complete();
      return;
    case ZmodemFrame::zrpos:
      return on_position(header.value, now);
    case ZmodemFrame::zack:
      return on_acknowledged(header.value, now);
    case ZmodemFrame::znak:
      if (!transfer_.retry.lost(transfer_.size)) {
        return transfer_.fail("the scanner asked for the same data again and again");
      }
      due_ = true;
      return;
    case ZmodemFrame::zcrc:
      due_ = true;
      return on_other_header(header, now);
    default:
      return on_other_header(header, now);
  }
}

void ZmodemFileEnd::on_position(std::uint32_t place, Time now) {
  if (place > transfer_.size) {
    return transfer_.fail("the scanner asked for data beyond the end of the file");
  }
  transfer_.gain(place);
  if (!transfer_.retry.lost(place)) {
    return transfer_.fail("the scanner asked for the same data again and again");
  }
  transfer_.wire.discard();
  transfer_.window.restart_at(place, now);
  transfer_.window.shrink(transfer_.retry.in_flight());
  transfer_.step = ZmodemStep::data;
}

void ZmodemFileEnd::on_acknowledged(std::uint32_t place, Time now) {
  if (transfer_.window.acknowledge(place, now) > 0) return transfer_.gain(place);
  const bool waits_there = place == transfer_.window.acknowledged() && place < transfer_.size;
  if (waits_there && sent() && now >= sent_at_ + patience) on_position(place, now);
}

void ZmodemFileEnd::on_damaged(Time now) {
  if (sent()) clock_.hurry(now + patience);
}

bool ZmodemFileEnd::produce(Time) {
  if (!std::exchange(due_, false)) return false;
  if (silences_ > 1) {
    transfer_.wire.add_header(ZmodemFrame::zdata, transfer_.size);
    transfer_.wire.add_subpacket({}, ZmodemEnd::frame);
  }
  transfer_.wire.add_header(ZmodemFrame::zeof, transfer_.size);
  return true;
}

void ZmodemFileEnd::handed_over(Time left, bool all) {
  if (!all) return;
  clock_.sent(left);
  if (!sent()) sent_at_ = left;
  if (!transfer_.end_by) transfer_.end_by = clock_.give_up();
  clock_.give_up_by(*transfer_.end_by);
}

Time ZmodemFileEnd::wake() const {
  return std::min(clock_.give_up(), clock_.again());
}

void ZmodemFileEnd::tick(Time now) {
  if (now >= clock_.give_up()) {
    transfer_.fail("the scanner did not confirm the end of the file");
  } else if (now >= clock_.again()) {
    ++silences_;
    clock_.sent(now);
    due_ = true;
  }
}

}  // namespace orvex
