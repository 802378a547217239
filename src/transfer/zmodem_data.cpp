#include "transfer/zmodem_data.h"

#include <algorithm>

namespace orvex {
namespace {

using std::chrono::seconds;

constexpr int most_guesses = 2;
/// With a receiver that said something, but nothing new.
constexpr Time patience = seconds(1);
/// What may have left the machine and not arrived: in an adapter, on the way, at the receiver.
constexpr std::uint64_t possibly_under_way = 8192;

}  // namespace

ZmodemData::ZmodemData(ZmodemTransfer& transfer, Time now)
    : ZmodemPhase(transfer), clock_(transfer.window.offset(), now), frames_(transfer) {}

// What the receiver says.

void ZmodemData::on_header(const ZmodemHeader& header, Time now) {
  switch (header.frame) {
    case ZmodemFrame::zrpos:
      return on_position(header.value, now);
    case ZmodemFrame::zack:
      return on_acknowledged(header.value, now);
    case ZmodemFrame::znak:
      return send_again_from(transfer_.window.acknowledged(), now);
    case ZmodemFrame::zrinit:
      if (!answers(ZmodemAnswers::guessed)) return;
      transfer_.wire.discard();
      transfer_.step = ZmodemStep::offer;
      return;
    case ZmodemFrame::zcrc:
      send_again_from(transfer_.window.acknowledged(), now);
      [[fallthrough]];
    default:
      if (transfer_.step == ZmodemStep::data) on_other_header(header, now);
  }
}

void ZmodemData::on_position(std::uint32_t place, Time now) {
  if (place > transfer_.size) {
    return transfer_.fail("the scanner asked for data beyond the end of the file");
  }
  const bool news = place > transfer_.confirmed;
  const bool took_it_in_silence =
      answers(ZmodemAnswers::not_known) && silences_ > 0 && news && !transfer_.receiver.segmented();
  if (took_it_in_silence) transfer_.answers = ZmodemAnswers::to_nothing;
  if (answers(ZmodemAnswers::guessed)) transfer_.answers = ZmodemAnswers::not_known;
  const bool out_of_step = news && (silences_ > 0 || guesses_ > 0);
  gain(place, now);
  if (!out_of_step) {
    if (!transfer_.window.is_echo(place, now)) send_again_from(place, now);
    return;
  }
  transfer_.wire.discard();
  transfer_.window.restart_at(place, now);
  frames_.close();
}

void ZmodemData::on_acknowledged(std::uint32_t place, Time now) {
  ZmodemWindow& window = transfer_.window;
  if (place > window.sent_most()) {
    return transfer_.fail("the scanner acknowledged data that was never sent");
  }
  const std::size_t news = window.acknowledge(place, now);
  if (news == 0) {
    if (place == window.acknowledged()) clock_.hurry(std::max(now, clock_.quiet_for(patience)));
    return;
  }
  gain(place, now);
  const bool to_wait = !frames_.open() && window.all_acknowledged();
  if (to_wait && !answers(ZmodemAnswers::to_requests)) {
    transfer_.answers = ZmodemAnswers::to_waits;
    window.grow();
    return;
  }
  transfer_.answers = ZmodemAnswers::to_requests;
  if (transfer_.receiver.segmented()) return;
  frames_.extend();
  window.fit(news, transfer_.retry.in_flight(), transfer_.wire.size(), now);
}

void ZmodemData::gain(std::uint64_t place, Time now) {
  if (place <= transfer_.confirmed) return;
  guesses_ = 0;
  silences_ = 0;
  transfer_.gain(place);
  clock_.gained(place, !transfer_.window.all_acknowledged(), now);
}

void ZmodemData::send_again_from(std::uint64_t place, Time now) {
  if (!count_loss(place)) return;
  transfer_.wire.discard();
  transfer_.window.restart_at(place, now);
  transfer_.window.shrink(transfer_.retry.in_flight());
  frames_.close();
  guessing_ = false;
  clock_.restarted();
}

bool ZmodemData::count_loss(std::uint64_t place) {
  if (transfer_.retry.lost(place)) return true;
  transfer_.fail("the scanner asked for the same data again and again");
  return false;
}

void ZmodemData::on_damaged(Time now) {
  if (answers(ZmodemAnswers::not_known)) transfer_.answers = ZmodemAnswers::to_waits;
  const bool waiting = !frames_.open() && !may_send();
  if (waiting && guesses_ < most_guesses) {
    ++guesses_;
    guessing_ = true;
  } else {
    clock_.hurry(now + patience);
  }
}

// Time.

Time ZmodemData::wake() const {
  return std::min(clock_.give_up(), may_send() ? held_until_ : clock_.again());
}

void ZmodemData::tick(Time now) {
  if (now >= held_until_) held_until_ = Time::max();  // the driver asks for bytes next
  if (now >= clock_.give_up()) {
    transfer_.fail(clock_.reason());
  } else if (now >= clock_.again() && !may_send() && transfer_.wire.empty()) {
    repeat();
  }
}

void ZmodemData::repeat() {
  if (!count_loss(transfer_.window.acknowledged())) return;
  ++silences_;
  guesses_ = 0;
  frames_.close();
  if (answers(ZmodemAnswers::to_requests)) transfer_.answers = ZmodemAnswers::to_waits;
  transfer_.window.collapse(transfer_.retry.in_flight());
  transfer_.window.go_back();
  clock_.restarted();
}

// What goes out.

bool ZmodemData::produce(Time now) {
  if (!may_send()) return false;
  if (paced_by_rate()) {
    const std::size_t two_pieces = 2 * transfer_.retry.piece();
    held_until_ = transfer_.window.ready_for_more(two_pieces, transfer_.wire.size());
    if (now < held_until_) return false;
  }
  held_until_ = Time::max();
  if (transfer_.window.offset() == transfer_.size) {
    transfer_.step = ZmodemStep::file_end;
    return true;
  }
  guessing_ = false;
  if (frames_.append()) return true;
  transfer_.fail("the file could not be read");
  transfer_.wire.keep_sent();  // the driver asked before: the cancel follows what is queued
  return true;
}

bool ZmodemData::paced_by_rate() const {
  return !transfer_.receiver.segmented() && !answers(ZmodemAnswers::to_requests);
}

bool ZmodemData::may_send() const {
  const ZmodemWindow& window = transfer_.window;
  if (window.all_acknowledged() || window.offset() == transfer_.size) return true;
  if (answers(ZmodemAnswers::to_nothing)) return true;
  if (transfer_.receiver.segmented() || !answers(ZmodemAnswers::to_requests)) {
    return frames_.open() || guessing_;
  }
  return transfer_.retry.one_at_a_time() ? guessing_ : window.has_room(frames_.next_piece());
}

void ZmodemData::handed_over(Time left, bool) {
  clock_.handed_over(left);
  if (!answers(ZmodemAnswers::to_nothing)) return;
  const std::uint64_t sent = transfer_.window.offset();
  const std::uint64_t held_back = possibly_under_way + transfer_.wire.size();
  if (sent <= held_back + transfer_.gained) return;
  transfer_.gained = sent - held_back;
  clock_.gained(transfer_.gained, true, left);
}

}  // namespace orvex
