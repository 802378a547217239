// What a ZmodemSender makes of the receiver's answers.

#include <algorithm>
#include <utility>

#include "upgrade/zmodem_sender.h"

namespace orvex {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Time farewell_limit = seconds(10);
constexpr Time pace_limit = seconds(120);
constexpr std::uint64_t pace_bytes = 1024;
constexpr Time earlier_transfer = milliseconds(500);
constexpr int most_attempts = 10;
constexpr int most_favours = 10;
constexpr int attempts_on_a_good_line = 3;
constexpr std::uint64_t careful_stretch = 16384;

// Eight CAN end the receiver's transfer; ten BS take them back from a terminal.
constexpr std::string_view cancel_sequence = "\x18\x18\x18\x18\x18\x18\x18\x18\b\b\b\b\b\b\b\b\b\b";

}  // namespace

void ZmodemSender::receive(std::string_view bytes, Time now) {
  for (const char byte : bytes) {
    if (phase_ == Phase::over) return;
    const auto event = parser_.feed(byte);
    if (event == ZmodemParser::Event::cancelled) on_cancelled(now);
    if (event == ZmodemParser::Event::header) on_header(parser_.header(), now);
  }
}

void ZmodemSender::on_header(const ZmodemHeader& header, Time now) {
  if (phase_ == Phase::farewell) {
    if (header.frame == ZmodemFrame::znak) header_due_ = true;
    if (header.frame != ZmodemFrame::zfin) return;
    pending_ += "OO";
    phase_ = Phase::over;
    return;
  }
  switch (header.frame) {
    case ZmodemFrame::zrinit:
      return on_ready(header, now);
    case ZmodemFrame::zrpos:
      return on_position(header.value, now);
    case ZmodemFrame::zack:
      return on_acknowledged(header.value, now);
    case ZmodemFrame::znak:
      return on_repeat_wish(now);
    case ZmodemFrame::zcrc:
      return on_crc_wish(now);
    case ZmodemFrame::zchallenge:
      return on_challenge(header.value);
    case ZmodemFrame::zskip:
      if (phase_ != Phase::greeting) fail("the scanner refused the file");
      return;
    case ZmodemFrame::zferr:
      return fail("the scanner could not write the file");
    case ZmodemFrame::zabort:
      return fail("the scanner aborted the transfer");
    case ZmodemFrame::zfin:
      return fail("the scanner ended the transfer too early");
    case ZmodemFrame::zcan:
      return on_cancelled(now);
    default:
      return;  // a sender's header: an echo
  }
}

void ZmodemSender::on_ready(const ZmodemHeader& zrinit, Time now) {
  if (phase_ == Phase::end && end_sent_) return complete(now);
  if (phase_ != Phase::greeting) return;  // a late or doubled one
  receiver_ = ZmodemReceiver::from(zrinit);
  if (receiver_.escape_eighth_bit) return fail("the scanner asks for a seven-bit line");
  escape_ = ZmodemEscape(receiver_.escape_controls);
  cancel_deadline_.reset();
  phase_ = Phase::offer;
  header_due_ = true;
  last_heard_ = now;
}

void ZmodemSender::on_position(std::uint32_t place, Time now) {
  if (phase_ == Phase::greeting) return;  // from an earlier transfer
  if (place > size_) return fail("the scanner asked for data beyond the end of the file");
  if (phase_ == Phase::offer) {
    pace_deadline_ = now + pace_limit;
    header_due_ = false;
  }
  if (unanswered_ > 0 && !window_.ever_acknowledged() && place > window_.acknowledged())
    windowless_ = true;
  gained(place, now);
  if (!count_attempt(place)) return;
  last_heard_ = now;
  restart_at(place);
}

void ZmodemSender::on_acknowledged(std::uint32_t place, Time now) {
  if (phase_ != Phase::data && phase_ != Phase::end) return;
  if (place > window_.sent_most()) return fail("the scanner acknowledged data that was never sent");
  if (!window_.acknowledge(place, now)) return;
  windowless_ = false;
  last_heard_ = now;
  gained(place, now);
}

void ZmodemSender::on_repeat_wish(Time now) {
  if (!count_attempt(window_.acknowledged())) return;
  last_heard_ = now;
  if (phase_ == Phase::data) {
    restart_at(window_.acknowledged());
  } else {
    header_due_ = true;
  }
}

void ZmodemSender::on_crc_wish(Time now) {
  if (phase_ == Phase::greeting || crc_done_ || !count_favour()) return;
  last_heard_ = now;
  if (phase_ == Phase::data) restart_at(window_.acknowledged());
  if (phase_ == Phase::end) header_due_ = true;
  crc_ = 0;
  crc_done_ = 0;
}

void ZmodemSender::on_challenge(std::uint32_t value) {
  const bool frame_possibly_open = phase_ == Phase::data || phase_ == Phase::end;
  if (!frame_possibly_open && count_favour()) challenge_ = value;
}

void ZmodemSender::on_cancelled(Time now) {
  if (phase_ == Phase::farewell) {
    phase_ = Phase::over;
  } else if (phase_ == Phase::greeting && now < began_ + earlier_transfer) {
    if (!cancel_deadline_) cancel_deadline_ = now + earlier_transfer;
  } else {
    fail_quietly("the scanner cancelled the transfer");
  }
}

bool ZmodemSender::count_attempt(std::uint64_t place) {
  attempts_ = place == attempt_place_ ? attempts_ + 1 : 1;
  attempt_place_ = place;
  if (attempts_ > attempts_on_a_good_line) careful_until_ = place + careful_stretch;
  if (attempts_ < most_attempts) return true;
  fail("the scanner asked for the same data again and again");
  return false;
}

bool ZmodemSender::count_favour() {
  if (++favours_ <= most_favours) return true;
  fail("the scanner asked for the same answer again and again");
  return false;
}

void ZmodemSender::gained(std::uint64_t place, Time now) {
  if (place <= gained_) return;
  gained_ = place;
  attempts_ = 0;
  if (gained_ < pace_mark_ + pace_bytes || phase_ == Phase::end) return;
  pace_mark_ = gained_;
  pace_deadline_ = now + pace_limit;
}

void ZmodemSender::restart_at(std::uint64_t place) {
  if (phase_ != Phase::offer) {
    pending_.clear();
    discard_ = true;
  }
  phase_ = Phase::data;
  window_.restart_at(place);
  frame_open_ = false;
}

void ZmodemSender::complete(Time now) {
  state_ = State::complete;
  phase_ = Phase::farewell;
  farewell_deadline_ = now + farewell_limit;
  header_due_ = false;
  crc_done_.reset();
  crc_answer_.reset();
  append_hex_header(ZmodemFrame::zfin, 0);
  discard_ = false;
}

void ZmodemSender::fail(std::string_view why) {
  fail_quietly(why);
  pending_ = cancel_sequence;
}

void ZmodemSender::fail_quietly(std::string_view why) {
  state_ = State::failed;
  phase_ = Phase::over;
  reason_ = why;
  pending_.clear();
  discard_ = true;
}

}  // namespace orvex
